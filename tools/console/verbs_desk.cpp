// SPDX-License-Identifier: MIT

// Network adapters, serial lines and the log.

#include <stdexcept>

#include "common/log_contexts.h"
#include "common/network_script.h"
#include "console/limits.h"
#include "console/verb.h"
#include "standalone/log_masks.h"

namespace Console
{

namespace
{

constexpr unsigned MicrosecondsPerMillisecond = 1000;

void DoAdapter(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 2, 3, "adapter NAME VERB [WORD]");
    if (words.size() == 3 && words[1] == "flap")
        ToInteger(words[2], 1, Limits::MostFlaps);
    const std::string text = words.size() == 3 ? words[1] + " " + words[2] : words[1];
    Tools::NetworkScript::Do(Tools::NetworkScript::ParseAct(words[0], text),
                             parts.desk.GetNetwork());
}

void DoSerial(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 2, 3, "serial DEVICE slow MILLISECONDS | stall | resume | unplug | plug");
    const std::lock_guard turn(parts.serialMutex);
    Desk::SerialPort& line = parts.desk.GetLine(words[0]);
    const std::string name = "serial/" + Desk::GetLineName(words[0]) + "/";
    const std::string& verb = words[1];
    if (verb == "slow") {
        CheckCount(words, 3, 3, "serial DEVICE slow MILLISECONDS");
        const int delay = ToInteger(words[2], 0, Limits::LongestDelay);
        line.SetDelay(static_cast<unsigned>(delay) * MicrosecondsPerMillisecond);
        parts.desk.SetCondition(name + "slow", delay > 0 ? words[2] : "");
        return;
    }
    CheckCount(words, 2, 2, "serial DEVICE stall|resume|unplug|plug");
    if (verb == "stall") {
        if (!line.IsPlugged())
            throw std::runtime_error("the line is not plugged");
        line.Stall();
        parts.desk.SetCondition(name + "stalled", "on");
    } else if (verb == "resume") {
        line.Resume();
        parts.desk.SetCondition(name + "stalled", "");
    } else if (verb == "unplug") {
        line.Unplug();
        parts.desk.SetCondition(name + "plugged", "off");
    } else if (verb == "plug") {
        if (line.IsPlugged())
            return;
        line.Plug(); // a fresh line, with nothing wrong
        for (const char* const condition : {"plugged", "stalled", "slow"})
            parts.desk.SetCondition(name + condition, "");
    } else {
        throw std::invalid_argument("a serial line knows no '" + verb + "'");
    }
}

void SetLog(Session::Parts&, const Words& words)
{
    CheckCount(words, 2, 2, "log CONTEXT MASK");
    Standalone::SetLogMask(Tools::FindLogContext(words[0]),
                           static_cast<unsigned>(ToInteger(words[1], 0, Limits::AllLevels)));
}

} // namespace

void AddDeskVerbs(VerbTable& table)
{
    table.Add("adapter", DoAdapter,
              {{"adapter NAME add|remove|up|down", "a network adapter and its link"},
               {"adapter NAME speed BITS-PER-SECOND", "how fast the link is"},
               {"adapter NAME rename NAME", "gives it another name"},
               {"adapter NAME flap COUNT", "takes the link down and up so often"},
               {"adapter NAME overrun", "the link changes while the news of it are lost"}});
    table.free.insert("serial");
    table.Add("serial", DoSerial,
              {{"serial DEVICE slow MILLISECONDS", "every call takes so much longer"},
               {"serial DEVICE stall|resume", "what is written waits"},
               {"serial DEVICE unplug|plug", "pulls the line out or plugs it in"}});
    table.Add("log", SetLog, {{"log CONTEXT MASK", "which levels of a log context are heard"}});
}

} // namespace Console
