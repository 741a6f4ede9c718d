// SPDX-License-Identifier: MIT
#include "gut/light_settings_text.h"

#include <QStringDecoder>
#include <algorithm>

namespace Standalone
{

namespace
{

constexpr std::string_view Blanks = " \t";
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t MostWarnings = 10;

std::string_view Trim(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(Blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

/// The line without its end, which may be that of another system.
std::string_view WithoutEnd(std::string_view line)
{
    for (const char end : {'\n', '\r'})
        if (line.ends_with(end))
            line.remove_suffix(1);
    return line;
}

bool IsGeneral(std::string_view group)
{
    return std::equal(group.begin(), group.end(), std::begin("general"), std::end("general") - 1,
                      [](char one, char other) { return (one | 0x20) == other; });
}

bool IsUtf8(std::string_view bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    static_cast<void>(
        QString(decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())))));
    return !decoder.hasError();
}

bool HasControlCharacter(std::string_view content)
{
    return std::any_of(content.begin(), content.end(), [](char character) {
        return (character >= 0 && character < ' ' && character != '\t') || character == 0x7F;
    });
}

std::string InLine(std::size_t number)
{
    return "line " + std::to_string(number);
}

} // namespace

LightSettingsText::LightSettingsText(std::string_view bytes)
{
    if (!IsUtf8(bytes)) {
        m_problem = "it is not text in UTF-8";
        return;
    }
    while (!bytes.empty() && m_problem.empty()) {
        const std::size_t end = bytes.find('\n');
        if (end == std::string_view::npos) {
            m_problem = InLine(m_lines.size() + 1) +
                        " has no line break; the file is cut, or needs one there";
            return;
        }
        AddLine(bytes.substr(0, end + 1));
        bytes.remove_prefix(end + 1);
    }
    if (m_problem.empty() && BelongsToOthers())
        m_problem = "it has keys, but no light setting, and so belongs to another program";
}

void LightSettingsText::AddLine(std::string_view text)
{
    Line line;
    line.text = text;
    std::string_view content = WithoutEnd(text);
    if (m_lines.empty() && content.starts_with(ByteOrderMark))
        content.remove_prefix(ByteOrderMark.size());
    if (HasControlCharacter(content)) {
        m_problem = InLine(m_lines.size() + 1) + " has a control character, so that it is not text";
        return;
    }
    content = Trim(content);
    const bool isComment = content.starts_with(';') || content.starts_with('#');
    if (!content.empty() && !isComment && !AddGroup(content, line) && !AddKey(content, line)) {
        m_problem = InLine(m_lines.size() + 1) + " is neither a group, a setting nor a comment";
        return;
    }
    m_hasForeign = m_hasForeign || (!line.key.empty() && !(m_hasGroup && line.isGeneral));
    m_lines.push_back(std::move(line));
}

bool LightSettingsText::AddGroup(std::string_view content, Line& line)
{
    if (!content.starts_with('[') || !content.ends_with(']'))
        return false;
    const std::string_view name = Trim(content.substr(1, content.size() - 2));
    line.isGeneral = IsGeneral(name);
    m_group = line.isGeneral ? std::string_view() : name;
    m_hasGroup = true;
    return true;
}

bool LightSettingsText::AddKey(std::string_view content, Line& line) const
{
    const std::size_t equals = content.find('=');
    if (content.starts_with('[') || equals == std::string_view::npos)
        return false;
    const std::string_view name = Trim(content.substr(0, equals));
    if (name.empty())
        return false;
    line.isGeneral = m_group.empty();
    line.key = line.isGeneral ? std::string(name) : m_group + '/' + std::string(name);
    line.value = Trim(content.substr(equals + 1));
    if (line.isGeneral)
        line.setting = FindLightSetting(name);
    return true;
}

/// Whether all that it has is somebody else's: keys, none of which is a setting, and not under
/// General alone, where they may be mistyped or those of another version.
bool LightSettingsText::BelongsToOthers() const
{
    return m_hasForeign && std::none_of(m_lines.begin(), m_lines.end(),
                                        [](const Line& line) { return line.setting != nullptr; });
}

std::vector<std::string> LightSettingsText::GetWarnings() const
{
    std::vector<std::string> warnings;
    LightSettings ignored;
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        const Line& line = m_lines[i];
        if (line.key.empty())
            continue;
        if (!line.setting)
            warnings.push_back(InLine(i + 1) + ": no light setting is called '" + line.key +
                               "'; the line is kept");
        else if (!ParseLightSetting(line.value, *line.setting, ignored))
            warnings.push_back(InLine(i + 1) + ": '" + line.value + "' is not a value for " +
                               line.key + ", which stays as it is; the next change replaces it");
    }
    if (warnings.size() > MostWarnings) {
        const std::size_t left = warnings.size() - (MostWarnings - 1);
        warnings.resize(MostWarnings - 1);
        warnings.push_back("there are " + std::to_string(left) + " more such lines");
    }
    return warnings;
}

void LightSettingsText::Read(LightSettings& settings) const
{
    for (const Line& line : m_lines)
        if (line.setting)
            ParseLightSetting(line.value, *line.setting, settings);
}

void LightSettingsText::Write(const LightSettings& settings)
{
    std::vector<Line> added;
    for (const LightSettingField& field : LightSettingFields) {
        const std::string value = FormatLightSetting(field, settings);
        const std::string text = std::string(field.name) + '=' + value + '\n';
        bool isThere = false;
        // All of them: the last one holds, and a reader may think of the first.
        for (Line& line : m_lines) {
            if (line.setting != &field)
                continue;
            isThere = true;
            LightSettings current;
            if (ParseLightSetting(line.value, field, current) &&
                IsSameLightSetting(field, current, settings))
                continue;
            line.text = text;
            line.value = value;
        }
        if (!isThere)
            added.push_back({text, true, field.name, value, &field});
    }
    if (added.empty())
        return;
    const auto place = static_cast<std::ptrdiff_t>(FindPlaceForNew()); // may add a line itself
    m_lines.insert(m_lines.begin() + place, added.begin(), added.end());
}

/// After the last key of the group General, which is begun where there is none.
std::size_t LightSettingsText::FindPlaceForNew()
{
    const auto last = std::find_if(m_lines.rbegin(), m_lines.rend(),
                                   [](const Line& line) { return line.isGeneral; });
    if (last != m_lines.rend())
        return static_cast<std::size_t>(m_lines.rend() - last);
    m_lines.push_back({"[General]\n", true, {}, {}, nullptr});
    return m_lines.size();
}

std::string LightSettingsText::GetBytes() const
{
    std::string bytes;
    for (const Line& line : m_lines)
        bytes += line.text;
    return bytes;
}

} // namespace Standalone
