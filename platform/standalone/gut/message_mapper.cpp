// SPDX-License-Identifier: MIT
#include "message_mapper.h"

#include <QSettings>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <mutex>
#include <utility>

#include "os/log.h"
#include "os/post.h"
#include "standalone/light_settings.h"

namespace Standalone
{

namespace
{

constexpr double FixedOne = 0x10000;
constexpr double FullPercent = 100;

// The message that tells of changed light settings, and for whom it is.
constexpr std::uint32_t LightMessage = 22;
constexpr std::uint32_t ApplyAtOnce = 11;
constexpr std::uint32_t ApplyWithFades = 12;
constexpr std::uint32_t SettingsChanged = 1;
constexpr unsigned Application = 3;

std::mutex Mutex;
LightSettings Settings; // guarded by Mutex, as the file
std::string& File()
{
    static auto* const file = new std::string;
    return *file;
}

/// Names of the fields in a file.
constexpr std::array<std::pair<const char*, uires16 LightSettings::*>, 9> Levels{
    {{"backlightLeft", &LightSettings::backlightLeft},
     {"backlightRight", &LightSettings::backlightRight},
     {"backlightCenter", &LightSettings::backlightCenter},
     {"desklight", &LightSettings::desklight},
     {"ventlight", &LightSettings::ventlight},
     {"worklight", &LightSettings::worklight},
     {"keyboardDrawer", &LightSettings::keyboardDrawer},
     {"leds", &LightSettings::leds},
     {"lcds", &LightSettings::lcds}}};
constexpr std::array<std::pair<const char*, bool LightSettings::*>, 3> Switches{
    {{"desklightBlue", &LightSettings::desklightBlue},
     {"worklightOn", &LightSettings::worklightOn},
     {"keyboardDrawerEnabled", &LightSettings::keyboardDrawerEnabled}}};

constexpr char SourceFile[] = "gut/message_mapper.cpp";

Os::Log::Context& LogContext()
{
    // Never destroyed: settings may change until the process ends.
    static auto* const context =
        new Os::Log::Context("LightSettings", nullptr, Os::Log::AllButTrace);
    return *context;
}

/// The caller holds the lock. What cannot be saved holds until the process ends.
bool Save()
{
    if (File().empty())
        return true;
    QSettings file(QString::fromStdString(File()), QSettings::IniFormat);
    for (const auto& [name, level] : Levels)
        file.setValue(name, Settings.*level / FixedOne);
    for (const auto& [name, isOn] : Switches)
        file.setValue(name, Settings.*isOn);
    file.sync();
    if (file.status() == QSettings::NoError)
        return true;
    OS_LOG(LogContext(), Os::Log::Error, SourceFile,
           "Cannot write the light settings to '" << File() << "'");
    return false;
}

/// Reads a level in percent; false for what is none.
bool ReadLevel(const QSettings& file, const char* name, uires16& level)
{
    if (!file.contains(name))
        return true;
    bool isNumber = false;
    const double percent = file.value(name).toDouble(&isNumber);
    if (!isNumber || !(percent >= 0 && percent <= FullPercent))
        return false;
    level = static_cast<uires16>(std::lround(percent * FixedOne));
    return true;
}

bool IsSetting(const QString& key)
{
    const auto isIt = [&key](const auto& field) { return key == field.first; };
    return std::any_of(Levels.begin(), Levels.end(), isIt) ||
           std::any_of(Switches.begin(), Switches.end(), isIt);
}

bool ReadSwitch(const QSettings& file, const char* name, bool& isOn)
{
    if (!file.contains(name))
        return true;
    const QString text = file.value(name).toString();
    if (text != "true" && text != "false")
        return false;
    isOn = text == "true";
    return true;
}

template <class Result> Result Ask(Result LightSettings::*field)
{
    const std::lock_guard hold(Mutex);
    return Settings.*field;
}

} // namespace

LightSettings GetLightSettings()
{
    const std::lock_guard hold(Mutex);
    return Settings;
}

bool SetLightSettings(const LightSettings& settings)
{
    const std::lock_guard hold(Mutex);
    Settings = settings;
    return Save();
}

std::string UseLightSettingsFile(const std::string& file)
{
    const std::lock_guard hold(Mutex);
    if (file.empty()) {
        File().clear();
        return {};
    }
    const QSettings source(QString::fromStdString(file), QSettings::IniFormat);
    if (source.status() != QSettings::NoError)
        return "cannot read the light settings in '" + file + "'";
    LightSettings read = Settings;
    for (const QString& key : source.allKeys())
        if (!IsSetting(key))
            return "'" + file + "': no setting is called " + key.toStdString();
    const auto complain = [&file](const char* name) {
        return "'" + file + "': " + name + " is not what it should be";
    };
    for (const auto& [name, level] : Levels)
        if (!ReadLevel(source, name, read.*level))
            return complain(name);
    for (const auto& [name, isOn] : Switches)
        if (!ReadSwitch(source, name, read.*isOn))
            return complain(name);
    Settings = read;
    File() = file;
    return {};
}

void AnnounceLightSettings(bool fade)
{
    const std::array<std::uint32_t, 3> words{LightMessage, fade ? ApplyWithFades : ApplyAtOnce,
                                             SettingsChanged};
    Os::Post(Gut::Message(words.data(), sizeof words), Application);
}

} // namespace Standalone

using Standalone::Ask;
using Standalone::LightSettings;

bool MessageMapper::GetWorklightOn()
{
    return Ask(&LightSettings::worklightOn);
}

void MessageMapper::SetWorklightOn(bool on)
{
    const std::lock_guard hold(Standalone::Mutex);
    Standalone::Settings.worklightOn = on;
    Standalone::Save();
}

uires16 MessageMapper::GetWorklightCurrentLevel()
{
    const LightSettings settings = Standalone::GetLightSettings();
    return settings.worklightOn ? settings.worklight : 0;
}

uires16 MessageMapper::GetKeyboardDrawerLevel()
{
    return Ask(&LightSettings::keyboardDrawer);
}

bool MessageMapper::IsKeyboardDrawerEnabled()
{
    return Ask(&LightSettings::keyboardDrawerEnabled);
}

uires16 MessageMapper::GetBacklightLeft()
{
    return Ask(&LightSettings::backlightLeft);
}

uires16 MessageMapper::GetBacklightRight()
{
    return Ask(&LightSettings::backlightRight);
}

uires16 MessageMapper::GetBacklightCenter()
{
    return Ask(&LightSettings::backlightCenter);
}

bool MessageMapper::IsDesklightBlue()
{
    return Ask(&LightSettings::desklightBlue);
}

uires16 MessageMapper::GetDesklightLevel()
{
    return Ask(&LightSettings::desklight);
}

uires16 MessageMapper::GetVentlightLevel()
{
    return Ask(&LightSettings::ventlight);
}

uires16 MessageMapper::GetLedLevel()
{
    return Ask(&LightSettings::leds);
}

uires16 MessageMapper::GetLcdLevel()
{
    return Ask(&LightSettings::lcds);
}
