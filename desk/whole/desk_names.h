// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "desk/desk_data.h"

// Names that a desk's text has for fields of its data.

namespace Desk
{

/// What a console has or has not.
struct Capability {
    const char* name;
    bool Standalone::PlatformSettings::*field;
};
inline constexpr std::array<Capability, 5> Capabilities{
    {{"ventLight", &Standalone::PlatformSettings::hasVentLight},
     {"blueDesklights", &Standalone::PlatformSettings::hasBlueDesklights},
     {"whiteDesklights", &Standalone::PlatformSettings::hasWhiteDesklights},
     {"worklights", &Standalone::PlatformSettings::hasWorklights},
     {"illuminatedKeyboardDrawer", &Standalone::PlatformSettings::hasIlluminatedKeyboardDrawer}}};

/// Light settings, called as on the command line.
struct LevelSetting {
    const char* name;
    uires16 Standalone::LightSettings::*field;
};
inline constexpr std::array<LevelSetting, 9> LevelSettings{
    {{"left", &Standalone::LightSettings::backlightLeft},
     {"right", &Standalone::LightSettings::backlightRight},
     {"centre", &Standalone::LightSettings::backlightCenter},
     {"desk", &Standalone::LightSettings::desklight},
     {"vent", &Standalone::LightSettings::ventlight},
     {"work", &Standalone::LightSettings::worklight},
     {"drawer", &Standalone::LightSettings::keyboardDrawer},
     {"leds", &Standalone::LightSettings::leds},
     {"lcds", &Standalone::LightSettings::lcds}}};

struct SwitchSetting {
    const char* name;
    bool Standalone::LightSettings::*field;
};
inline constexpr std::array<SwitchSetting, 3> SwitchSettings{
    {{"blue", &Standalone::LightSettings::desklightBlue},
     {"work-on", &Standalone::LightSettings::worklightOn},
     {"drawer-on", &Standalone::LightSettings::keyboardDrawerEnabled}}};

/// Who is at the far end of a serial line.
struct PeerName {
    const char* name;
    SerialLineData::Peer peer;
};
inline constexpr std::array<PeerName, 3> Peers{{{"panel", SerialLineData::Peer::Panel},
                                                {"echo", SerialLineData::Peer::Echo},
                                                {"nobody", SerialLineData::Peer::Nobody}}};

} // namespace Desk
