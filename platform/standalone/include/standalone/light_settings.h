// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "kel/fixed_point.h"
#include "platform_export.h"

namespace Standalone
{

/// What MessageMapper answers. Levels are percentages, 0 to 100.0. As it stands: all lights on, the
/// desk in white.
struct LightSettings {
    uires16 backlightLeft = 0x00640000;
    uires16 backlightRight = 0x00640000;
    uires16 backlightCenter = 0x00640000;
    bool desklightBlue = false;
    uires16 desklight = 0x00640000;
    uires16 ventlight = 0x00640000;
    bool worklightOn = true;
    uires16 worklight = 0x00640000;
    bool keyboardDrawerEnabled = true;
    uires16 keyboardDrawer = 0x00640000;
    uires16 leds = 0x00320000;
    uires16 lcds = 0x00320000;

    bool operator==(const LightSettings&) const = default;
};

// Any thread.

/// The settings as this process knows them. What another process has changed in the file is taken
/// over by the next change here.
PLATFORM_EXPORT LightSettings GetLightSettings();

/// Changes some of the settings, and the file's content where there is one, with no other change in
/// between, neither of this process nor of another one that uses the same file. What another
/// process has changed before is taken over first. Announces nothing.
/// @param change gets the settings as they are and changes them. It must not call the functions of
/// this header. If it throws, nothing has changed.
/// @return false, with a line in the log that says why, in two cases: a level is above 100.0, and
/// nothing has changed; or the file could not be written, within two seconds if another process
/// holds it, and the settings hold all the same and are written by the next change
PLATFORM_EXPORT bool ChangeLightSettings(const std::function<void(LightSettings&)>& change);

/// Replaces all of the settings, including what another process has changed. Otherwise like
/// ChangeLightSettings(), which is the one to use for a single setting.
PLATFORM_EXPORT bool SetLightSettings(const LightSettings& settings);

/// Reads the settings from a file and keeps them there from now on. An empty name keeps them
/// nowhere.
///
/// The file is an INI file in UTF-8 with its settings in the group General and levels in percent. A
/// setting that it does not have stays as it is. Two things are logged as warnings and do not make
/// the file unusable: a key that is not a setting, which every change leaves alone, as it does
/// comments and other groups; and a wrong value, which costs its own setting only: that stays as it
/// is, and the next change replaces the value.
///
/// A file that is missing or empty is written when a setting changes. Any other file has to be a
/// regular one. Each of its lines has to be blank, a comment, a group, or a key with a value, and
/// has to end in a line break. If it has keys, one of them has to be a setting, or all of them have
/// to be in a group General that is spelled out. Anything else is damaged or belongs to somebody
/// else: it is refused and never written, also where it takes the file's place later.
/// @return an empty text, or why the file is refused; then nothing has changed
PLATFORM_EXPORT std::string UseLightSettingsFile(const std::string& file);

/// Posts the message that tells of changed settings: to be faded to, or to be shown at once.
PLATFORM_EXPORT void AnnounceLightSettings(bool fade);

} // namespace Standalone
