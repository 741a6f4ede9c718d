// SPDX-License-Identifier: MIT
#include "common/log_contexts.h"

#include <algorithm>

#include "common/near_names.h"
#include "standalone/log_masks.h"

namespace Tools
{

const std::vector<LogContextHelp>& GetLogContexts()
{
    static const std::vector<LogContextHelp> contexts{
        {"CdPlayer", "the player of audio CDs"},
        {"Fatal", "conditions that end the program"},
        {"Hardware", "the library; its mask holds for all contexts below it"},
        {"Hardware/ConsoleLights", "levels of the lights"},
        {"Hardware/Kontron", "packets to flat-panel controllers"},
        {"Hardware/LightFading", "fades, the screen saver and the keyboard drawer"},
        {"Hardware/LinkLights", "networks and the LEDs that show their links"},
        {"Hardware/Midi", "MIDI ports, reception and transmission"},
        {"Hardware/Serial", "serial ports"},
        {"Hardware/Timecode", "timecode; its mask holds for the contexts below it"},
        {"Hardware/Timecode/Cd", "timecode of the CD drive"},
        {"Hardware/Timecode/Ltc", "timecode of LTC boards"},
        {"Hardware/WingMapper", "wings that come and go"},
        {"LightSettings", "the file of the light settings"},
        {"Messages", "messages that nobody delivers"},
        {"NetworkAdapters", "network adapters as the platform sees them"},
        {"Tarnel4Backlight", "the hardware-monitor chip that dims a display"},
        {"Tarnel4Backlight/Set", "levels written to that chip"},
        {"Types", "the type registry"},
        {"Vex4Backlight", "the display controllers' registers"},
        {"Vex4Backlight/Set", "values written to these registers"},
        {"WidgetDriver", "widgets and their reports"},
        {"Zr4Backlight", "the flat-panel controllers that dim displays"}};
    return contexts;
}

std::string FindLogContext(const std::string& word)
{
    Names names;
    for (const LogContextHelp& context : GetLogContexts())
        names.push_back(context.path);
    for (const Standalone::LogContextInfo& context : Standalone::ListLogContexts())
        if (std::find(names.begin(), names.end(), context.path) == names.end())
            names.push_back(context.path);
    return ChooseName("log context", word, names);
}

} // namespace Tools
