// SPDX-License-Identifier: MIT

// MIDI: what is done to ports, and what the application does with them.

#include <chrono>
#include <stdexcept>

#include "common/hex.h"
#include "common/midi_text.h"
#include "common/port_name.h"
#include "console/limits.h"
#include "console/verb.h"

namespace Console
{

namespace
{

constexpr std::chrono::seconds FeedPatience(2);
constexpr unsigned ArrivalMilliseconds = 500;

std::vector<std::uint8_t> ToBytes(const Words& words, std::size_t first)
{
    std::string text;
    for (std::size_t word = first; word < words.size(); ++word)
        text += words[word] + " ";
    if (!text.empty())
        text.pop_back();
    const auto bytes = Tools::ParseHex(text);
    if (!bytes || bytes->empty())
        throw std::invalid_argument("'" + text + "' is no row of hexadecimal bytes");
    if (bytes->size() > Limits::MostBytes)
        throw std::invalid_argument("more than " + std::to_string(Limits::MostBytes) +
                                    " bytes at once");
    return *bytes;
}

/// A switch that lasts, such as "midi PORT busy on".
template <class Set>
void Switch(Session::Parts& parts, const Words& words, const char* usage, Set set)
{
    CheckCount(words, 3, 3, usage);
    const bool isOn = ToSwitch(words[2]);
    set(isOn);
    parts.desk.SetCondition("midi/" + words[0] + "/" + words[1], isOn ? "on" : "");
}

/// A port that is plugged again is a new one, with nothing wrong.
void Plug(Session::Parts& parts, Desk::MidiPort& port)
{
    const std::string name = "midi/" + port.GetName() + "/";
    port.Unplug();
    port.Plug();
    for (const char* const condition : {"plugged", "busy", "full", "hangup", "dead"})
        parts.desk.SetCondition(name + condition, "");
}

void Feed(Desk::MidiPort& port, const Words& words)
{
    const std::vector<std::uint8_t> bytes = ToBytes(words, 2);
    if (port.CountOpen() == 0)
        throw std::runtime_error("nobody has the port open");
    if (!port.Send(bytes, FeedPatience))
        throw std::runtime_error("the application does not read");
}

void DoPort(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 2, Limits::MostBytes, "midi PORT VERB ...");
    Desk::MidiPort& port = parts.desk.GetPort(words[0]);
    const std::string& verb = words[1];
    if (verb == "plug") {
        Plug(parts, port);
    } else if (verb == "unplug") {
        port.Unplug();
        parts.desk.SetCondition("midi/" + words[0] + "/plugged", "off");
    } else if (verb == "busy") {
        Switch(parts, words, "midi PORT busy on|off", [&](bool isOn) { port.SetBusy(isOn); });
    } else if (verb == "full") {
        Switch(parts, words, "midi PORT full on|off", [&](bool isOn) {
            if (isOn)
                port.Fill();
            else
                port.Drain();
        });
    } else if (verb == "hangup") {
        Switch(parts, words, "midi PORT hangup on|off", [&](bool isOn) { port.SetAtEnd(isOn); });
    } else if (verb == "kill") {
        port.KillServer();
        parts.desk.SetCondition("midi/" + words[0] + "/dead", "on");
    } else if (verb == "feed") {
        if (!port.IsPlugged())
            throw std::runtime_error("the port is not plugged");
        Feed(port, words);
    } else {
        throw std::invalid_argument("a MIDI port knows no '" + verb + "'");
    }
}

void CheckPort(Session::Parts& parts, const std::string& name)
{
    parts.desk.GetPort(name);
}

/// The port holds from the next opening on, so what is open is opened anew.
void SetInput(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 1, 1, "input PORT");
    CheckPort(parts, words[0]);
    const bool wasOn = parts.midi.IsReceiveEnabled();
    if (wasOn)
        parts.midi.EnableReceive(false);
    parts.midi.SetInput(Tools::WidenPortName(words[0]));
    {
        const std::lock_guard hold(parts.mutex);
        parts.midiState.input = words[0];
    }
    if (!wasOn)
        return;
    parts.StartReceiving(words[0]);
}

void SetOutput(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 1, 1, "output PORT");
    CheckPort(parts, words[0]);
    const bool wasOn = parts.midi.IsTransmitEnabled();
    if (wasOn)
        parts.sender.EnableTransmit(false);
    parts.sender.SetOutput(Tools::WidenPortName(words[0]));
    {
        const std::lock_guard hold(parts.mutex);
        parts.midiState.output = words[0];
    }
    if (wasOn)
        parts.sender.EnableTransmit(true);
}

void Receive(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 1, 1, "receive on|off");
    const bool isOn = ToSwitch(words[0]);
    std::string input;
    {
        const std::lock_guard hold(parts.mutex);
        parts.midiState.isReceiving = isOn;
        input = parts.midiState.input;
    }
    if (isOn && !input.empty() && !parts.midi.IsReceiveEnabled())
        parts.StartReceiving(input);
    else
        parts.midi.EnableReceive(isOn);
}

void Transmit(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 1, 1, "transmit on|off");
    const bool isOn = ToSwitch(words[0]);
    parts.sender.EnableTransmit(isOn);
    const std::lock_guard hold(parts.mutex);
    parts.midiState.isSending = isOn;
}

void SetRunningStatus(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 1, 1, "running-status on|off");
    const bool isOn = ToSwitch(words[0]);
    parts.sender.EnableRunningStatus(isOn);
    const std::lock_guard hold(parts.mutex);
    parts.midiState.isRunningStatusOn = isOn;
}

/// One short message goes as such, so that running status can hold; everything else as it is.
void Send(Session::Parts& parts, const Words& words)
{
    const std::vector<std::uint8_t> bytes = ToBytes(words, 0);
    if (!parts.midi.IsTransmitEnabled())
        throw std::runtime_error("transmission is off");
    if (const auto message = Tools::PackShortMessage(bytes)) {
        std::string output;
        {
            const std::lock_guard hold(parts.mutex);
            output = parts.midiState.output;
        }
        // Its result tells nothing of success, so the far end is asked.
        if (!output.empty())
            parts.TakeSent(output, 0);
        parts.sender.SendShortMessage(*message);
        if (output.empty() || !parts.TakeSent(output, ArrivalMilliseconds))
            throw std::runtime_error("the port did not take it");
        return;
    }
    if (!parts.sender.SendBuffer(bytes))
        throw std::runtime_error("the port did not take it");
}

} // namespace

void AddMidiVerbs(VerbTable& table)
{
    table.Add("midi", DoPort,
              {{"midi PORT plug|unplug", "plugs a port in or pulls it out"},
               {"midi PORT feed HEX...", "bytes come in at a port"},
               {"midi PORT busy on|off", "another program has the port"},
               {"midi PORT full on|off", "the port takes nothing more"},
               {"midi PORT hangup on|off", "reads find the end of the file"},
               {"midi PORT kill", "the program behind the port dies; plug mends it"}});
    table.Add("input", SetInput, {{"input PORT", "the application's MIDI input"}});
    table.Add("output", SetOutput, {{"output PORT", "the application's MIDI output"}});
    table.Add("receive", Receive, {{"receive on|off", "switches reception"}});
    table.Add("transmit", Transmit, {{"transmit on|off", "switches transmission"}});
    table.Add("running-status", SetRunningStatus,
              {{"running-status on|off", "lets status bytes that repeat be left out"}});
    table.Add("send", Send, {{"send HEX...", "the application sends bytes"}});
}

} // namespace Console
