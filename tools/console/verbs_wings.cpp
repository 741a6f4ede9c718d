// SPDX-License-Identifier: MIT

// What hands do to widgets, and what the application does to wings.

#include <map>
#include <stdexcept>

#include "common/widget_script.h"
#include "common/wing_name.h"
#include "common/wing_reach.h"
#include "console/limits.h"
#include "console/verb.h"
#include "desk/widget_controls.h"
#include "hardware/wing_beacon.h"
#include "hardware/wing_mapper.h"

namespace Console
{

namespace
{

using Hardware::WingMapper;

template <class Value>
Value Choose(const std::map<std::string, Value>& choices, const std::string& word)
{
    if (const auto found = choices.find(word); found != choices.end())
        return found->second;
    std::string all;
    for (const auto& [name, value] : choices)
        all += (all.empty() ? "" : ", ") + name;
    throw std::invalid_argument("'" + word + "' is none of " + all);
}

unsigned short ToId(const std::string& word)
{
    return static_cast<unsigned short>(ToInteger(word, 0, Limits::HighestId));
}

/// The application gets no answer about a call that cannot reach a wing; whoever asked does.
void Refuse(const std::string& problem)
{
    if (!problem.empty())
        throw std::runtime_error(problem);
}

void DoHand(Session::Parts& parts, const std::string& path, const std::string& act)
{
    Tools::WidgetScript::Do(Tools::WidgetScript::ParseAct(path, act), parts.desk.GetBus());
}

void DoWidget(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 2, 1000, "widget PATH VERB [NUMBER...]");
    const std::string& path = words[0];
    const std::string& verb = words[1];
    Desk::VirtualWidget& widget = parts.desk.GetWidget(path);
    if (verb == "tap") {
        CheckCount(words, 3, 3, "widget PATH tap BUTTON");
        DoHand(parts, path, "press " + words[2]);
        DoHand(parts, path, "release " + words[2]);
        return;
    }
    if (verb == "stuck") {
        CheckCount(words, 3, 3, "widget PATH stuck on|off");
        const bool isStuck = ToSwitch(words[2]);
        widget.SetFailing(isStuck);
        parts.desk.SetCondition("widget/" + path + "/stuck", isStuck ? "on" : "");
        return;
    }
    std::string line;
    for (std::size_t word = 1; word < words.size(); ++word)
        line += (line.empty() ? "" : " ") + words[word];
    DoHand(parts, path, line);
}

void DoWing(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 2, 5, "wing PATH led|leds|motor|beacon|refresh ...");
    const Desk::VirtualWidget& widget = parts.desk.GetWidget(words[0]);
    const std::uint32_t key = widget.GetKey();
    WingMapper& mapper = WingMapper::Get();
    const std::string& verb = words[1];
    if (!mapper.is_wing_connected(key))
        throw std::runtime_error("the application has no wing '" + words[0] + "'");
    if (verb == "led") {
        CheckCount(words, 5, 5, "wing PATH led PART MASTER off|on|flash|dim");
        Refuse(Tools::FindLedProblem(key, ToId(words[2]), ToId(words[3])));
        mapper.set_led(key, ToId(words[2]), ToId(words[3]),
                       Choose(Tools::GetLedStates(), words[4]));
    } else if (verb == "leds") {
        CheckCount(words, 3, 3, "wing PATH leds off|on|flash|dim");
        Refuse(Tools::FindAllLedsProblem(key));
        mapper.set_led_all(key, Choose(Tools::GetLedStates(), words[2]));
    } else if (verb == "motor") {
        CheckCount(words, 4, 4, "wing PATH motor MASTER POSITION");
        Refuse(Tools::FindFaderProblem(key, ToId(words[2])));
        mapper.set_fader(key, ToId(words[2]), ToInteger(words[3], 0, Desk::FaderEnd));
    } else if (verb == "beacon") {
        CheckCount(words, 3, 3, "wing PATH beacon all|left|right|centre");
        Refuse(Tools::FindBeaconProblem(key));
        Hardware::WingBeacon::Get().beacon(key, Choose(Tools::GetWingSections(), words[2]));
    } else if (verb == "refresh") {
        CheckCount(words, 2, 2, "wing PATH refresh");
        mapper.refresh_state(key);
    } else {
        throw std::invalid_argument("a wing knows no '" + verb + "'");
    }
}

} // namespace

void AddWingVerbs(VerbTable& table)
{
    table.Add(
        "widget", DoWidget,
        {{"widget PATH plug|unplug", "plugs a widget in or pulls it out"},
         {"widget PATH press|release|tap BUTTON", "a hand on a button, by its index"},
         {"widget PATH fader FADER VALUE", "moves a fader by hand"},
         {"widget PATH encoder ENCODER STEPS", "turns an encoder; below 0 is anticlockwise"},
         {"widget PATH roll DX DY", "rolls a trackball that is built into a wing"},
         {"widget PATH axis AXIS VALUE", "rolls the console's trackball, or turns its ring (2)"},
         {"widget PATH touch|untouch BUTTON", "a finger on the touch button bar"},
         {"widget PATH led LED STATE", "the wing changes a LED by itself"},
         {"widget PATH open|close", "the keyboard drawer"},
         {"widget PATH configure BYTE...", "sets up the displays of an expansion wing"},
         {"widget PATH stuck on|off", "lets all writes to it fail"}});
    table.Add("wing", DoWing,
              {{"wing PATH led PART MASTER off|on|flash|dim", "the application sets a LED"},
               {"wing PATH leds off|on|flash|dim", "the application sets all LEDs"},
               {"wing PATH motor MASTER POSITION", "the application moves a motor fader, 0 to 255"},
               {"wing PATH beacon all|left|right|centre", "has a wing identify itself"},
               {"wing PATH refresh", "has a wing report all its controls"}});
}

} // namespace Console
