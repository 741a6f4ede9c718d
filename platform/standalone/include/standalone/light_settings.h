// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "kel/fixed_point.h"
#include "platform_export.h"

namespace Standalone
{

/// What MessageMapper answers. As it stands: all lights on, the desk in white.
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

PLATFORM_EXPORT LightSettings GetLightSettings();
/// Replaces the settings, and the file's content where there is one. Announces nothing.
/// @return false when the file could not be written; the settings hold all the same
PLATFORM_EXPORT bool SetLightSettings(const LightSettings& settings);

/// Reads the settings from a file and keeps them there from now on: an INI file with levels in
/// percent. What it does not have stays as it is; what is no setting is wrong. An empty name keeps
/// them nowhere.
/// @return an empty text, or what is wrong with the file; then nothing has changed
PLATFORM_EXPORT std::string UseLightSettingsFile(const std::string& file);

/// Posts the message that tells of changed settings: to be faded to, or to be shown at once.
PLATFORM_EXPORT void AnnounceLightSettings(bool fade);

} // namespace Standalone
