// SPDX-License-Identifier: MIT

// Reads arbitrary bytes as a file of light settings. What is not one is refused with a reason; what
// is one keeps the settings that are written into it, and everything else that stands in it.

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "gut/light_settings_text.h"
#include "require.h"

using Fuzz::Require;
using Standalone::FindLevelAboveFull;
using Standalone::LightSettings;
using Standalone::LightSettingsText;

namespace
{

/// Settings that depend on the input, so that they differ from what it has.
LightSettings MakeSettings(std::string_view input)
{
    constexpr unsigned Full = 0x00640000;
    unsigned number = 1;
    for (const char character : input)
        number = number * 31 + static_cast<unsigned char>(character);
    const auto next = [&number] { return number = number * 1'103'515'245U + 12'345U; };
    LightSettings settings;
    for (uires16* const level :
         {&settings.backlightLeft, &settings.backlightRight, &settings.backlightCenter,
          &settings.desklight, &settings.ventlight, &settings.worklight, &settings.keyboardDrawer,
          &settings.leds, &settings.lcds})
        *level = (next() >> 4U) % (Full + 1);
    for (bool* const isOn :
         {&settings.desklightBlue, &settings.worklightOn, &settings.keyboardDrawerEnabled})
        *isOn = (next() >> 16U) % 2 != 0;
    return settings;
}

std::string Trim(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(" \t\r");
    return first == std::string::npos
               ? std::string()
               : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// A line that a change may replace: it has the name of a setting before its first '='.
bool MayBeSetting(const std::string& line)
{
    const std::size_t equals = line.find('=');
    std::string name = Trim(line.substr(0, equals));
    if (name.starts_with("\xEF\xBB\xBF"))
        name = Trim(name.substr(3));
    return equals != std::string::npos && Standalone::FindLightSetting(name) != nullptr;
}

/// Lines that have to survive every change.
std::vector<std::string> GetOtherLines(const std::string& bytes)
{
    std::vector<std::string> lines;
    std::istringstream stream(bytes);
    for (std::string line; std::getline(stream, line);)
        if (!MayBeSetting(line))
            lines.push_back(line);
    return lines;
}

bool IsPlain(const std::string& line)
{
    const std::string content = Trim(line);
    return content.empty() || content.starts_with(';') || content.starts_with('#') ||
           (content.starts_with('[') && content.ends_with(']')) ||
           (!content.starts_with('[') && content.find('=') != std::string::npos);
}

/// What may never pass, found without the reader under test.
void CheckAccepted(const std::string& bytes)
{
    Require(bytes.empty() || bytes.ends_with('\n'), "a cut file passes");
    Require(std::none_of(bytes.begin(), bytes.end(),
                         [](char character) {
                             return character >= 0 && character < ' ' && character != '\t' &&
                                    character != '\r' && character != '\n';
                         }),
            "control characters pass");
    std::istringstream stream(bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes);
    for (std::string line; std::getline(stream, line);)
        Require(IsPlain(line), "a line of something else passes");
}

void CheckChange(LightSettingsText text, const std::string& before, const LightSettings& settings)
{
    text.Write(settings);
    const std::string after = text.GetBytes();
    const LightSettingsText again(after);
    Require(again.GetProblem().empty(), "what was written is refused");
    LightSettings read;
    again.Read(read);
    Require(read == settings, "what was written reads as other settings");
    std::vector<std::string> others = GetOtherLines(after);
    const std::vector<std::string> kept = GetOtherLines(before);
    // A group that the new keys need may have come.
    if (others.size() > kept.size())
        std::erase(others, "[General]");
    std::vector<std::string> wanted = kept;
    if (others.size() < wanted.size())
        std::erase(wanted, "[General]");
    Require(others == wanted, "a line that is not a setting was changed");
    text.Write(settings);
    Require(text.GetBytes() == after, "settings that are there already are written once more");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const std::string bytes(data, data + size);
    const LightSettingsText text(bytes);
    if (!text.GetProblem().empty()) {
        Require(!bytes.empty(), "an empty file is refused");
        return 0;
    }
    CheckAccepted(bytes);
    Require(text.GetBytes() == bytes, "a file that nobody changes is changed");
    Require(text.GetWarnings().size() <= 10, "too many warnings");
    LightSettings settings;
    text.Read(settings);
    Require(FindLevelAboveFull(settings) == nullptr, "a level above 100 is read");
    CheckChange(text, bytes, settings);
    CheckChange(text, bytes, MakeSettings(bytes));
    return 0;
}
