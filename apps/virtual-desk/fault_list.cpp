// SPDX-License-Identifier: MIT
#include "virtual-desk/fault_list.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "desk/widget_controls.h"
#include "hardware/wing_mapper.h"

#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

namespace
{

/// Makes faults of one device whose lines begin alike, such as "midi Keys".
class FaultMaker
{
public:
    /// @param lines      how its lines begin
    /// @param key        how the names of its conditions begin
    FaultMaker(QString lines, std::string key, const Conditions& conditions)
        : m_lines(std::move(lines)), m_key(std::move(key)), m_conditions(conditions)
    {
    }

    /// One that lasts and is seen by a condition that has come about and is not off.
    Fault MakeLasting(const Fault& words, const QString& begin, const QString& end,
                      const std::string& condition) const
    {
        Fault fault = Make(words, {begin}, {end});
        fault.isInForce = [&conditions = m_conditions, key = m_key + condition] {
            const auto found = conditions.find(key);
            return found != conditions.end() && !found->second.empty() && found->second != "off" &&
                   found->second != "0";
        };
        return fault;
    }

    Fault MakeUnplugged(const std::function<bool()>& isUnplugged, const QString& begin = "unplug",
                        const QString& end = "plug") const
    {
        Fault fault = Make({"unplug", "Unplug", "Pulls it out; again plugs it in", "unplugged"},
                           {begin}, {end});
        fault.isInForce = isUnplugged;
        return fault;
    }
    /// The same, seen by the condition "plugged".
    Fault MakeUnplugged(const QString& begin = "unplug", const QString& end = "plug") const
    {
        const auto isUnplugged = [&conditions = m_conditions, key = m_key + "plugged"] {
            const auto found = conditions.find(key);
            return found != conditions.end() && found->second == "off";
        };
        return MakeUnplugged(isUnplugged, begin, end);
    }

    /// One with whatever lines.
    Fault Make(Fault fault, const QStringList& begin, const QStringList& end = {}) const
    {
        for (const QString& verb : begin)
            fault.begin += m_lines + ' ' + verb;
        for (const QString& verb : end)
            fault.end += m_lines + ' ' + verb;
        return fault;
    }

private:
    const QString m_lines;
    const std::string m_key;
    const Conditions& m_conditions;
};

/// What a hand does that is interrupted: it moves the first fader, or turns, rolls or presses
/// something else where there is none.
QStringList ListMove(const Desk::VirtualWidget& widget)
{
    const Hardware::WingModel& model = widget.GetModel();
    if (!model.faders.empty())
        return {"fader 0 10", "fader 0 60", "fader 0 120"};
    if (!model.encoders.empty())
        return {"encoder 0 1", "encoder 0 2", "encoder 0 3"};
    if (!model.buttons.empty())
        return {Desk::IsTouchBar(model) ? "touch 0" : "press 0"};
    if (Desk::IsTrackball(model))
        return {"axis 0 5", "axis 0 10"};
    return {};
}

FaultyDevice MakeWidget(const Desk::VirtualWidget& widget, const Conditions& conditions)
{
    const QString path = QString::fromStdWString(widget.GetData().path);
    const FaultMaker maker("widget " + ToWord(path), "widget/" + path.toStdString() + '/',
                           conditions);
    FaultyDevice device{
        path, path + " (" + QString::fromStdString(widget.GetData().model) + ')', {}};
    device.faults.push_back(maker.MakeUnplugged([&widget] { return !widget.IsPlugged(); }));
    device.faults.push_back(maker.MakeLasting({"stuck", "Stuck", "Takes no output", "stuck"},
                                              "stuck on", "stuck off", "stuck"));
    const Hardware::WingModel& model = widget.GetModel();
    const QStringList move = ListMove(widget);
    if (!move.isEmpty()) {
        Fault fault = maker.Make(
            {"midmove", "Mid-move", "Moves a control and pulls the wing out while it moves", ""},
            move + QStringList("unplug"));
        if (model.hasMotorFaders) // the motor is on its way too
            fault.begin.prepend("wing " + ToWord(path) + " motor " +
                                QString::number(model.faders.front().second) + " 255");
        fault.isPossible = [&widget] {
            return widget.IsPlugged() &&
                   (!widget.GetModel().hasMotorFaders ||
                    Hardware::WingMapper::Get().is_wing_connected(widget.GetKey()));
        };
        device.faults.push_back(std::move(fault));
    }
    return device;
}

FaultyDevice MakeBoard(const Desk::VirtualDesk& desk, const Desk::VirtualWidget& widget,
                       const Conditions& conditions)
{
    FaultyDevice device = MakeWidget(widget, conditions);
    const FaultMaker maker("ltc " + ToWord(device.name), "", conditions);
    Fault fault = maker.Make({"dropout", "Dropout of 1 s",
                              "Hears nothing for a second, while timecode plays", "hears nothing"},
                             {"dropout 1"});
    fault.isInForce = [&desk, path = device.name.toStdString()] {
        return desk.IsTimecodeDropped(path);
    };
    fault.isPossible = [&desk, path = device.name.toStdString()] {
        return desk.IsTimecodePlaying(path);
    };
    device.faults.push_back(std::move(fault));
    return device;
}

FaultyDevice MakePort(const Desk::MidiPortData& port, const Conditions& conditions)
{
    const FaultMaker maker("midi " + ToWord(port.name), "midi/" + port.name + '/', conditions);
    const QString title = QString::fromStdString(port.name);
    Fault unplugged = maker.MakeUnplugged();
    unplugged.isDesksOwn = !port.isPlugged;
    return {title,
            title,
            {unplugged,
             maker.MakeLasting({"busy", "Busy", "Another program has the port", "busy"}, "busy on",
                               "busy off", "busy"),
             maker.MakeLasting({"full", "Full buffer", "Takes nothing more", "full"}, "full on",
                               "full off", "full"),
             maker.MakeLasting({"hangup", "Hang up", "Reads find the end of the file", "hung up"},
                               "hangup on", "hangup off", "hangup"),
             maker.MakeLasting({"dead", "Dead", "The program behind the port dies", "dead"}, "kill",
                               "plug", "dead")}};
}

FaultyDevice MakeLine(const std::string& name, const Conditions& conditions)
{
    const FaultMaker maker("serial " + ToWord(name), "serial/" + Desk::GetLineName(name) + '/',
                           conditions);
    const QString title = QString::fromStdString(name);
    return {title,
            title,
            {maker.MakeUnplugged(),
             maker.MakeLasting({"slow", "Slow", "Every call takes 100 ms longer", "slow"},
                               "slow 100", "slow 0", "slow"),
             maker.MakeLasting({"stalled", "Stalled", "What is written waits", "stalled"}, "stall",
                               "resume", "stalled")}};
}

/// The verb that puts the desk's own disc in; none where its drive is empty.
std::optional<QString> MakeInsert(const Desk::CdData& data)
{
    if (!data.sheet.empty())
        return "insert " + ToWord(data.sheet);
    if (data.dataDisc)
        return "insert data " + QString::number(*data.dataDisc);
    if (data.tracks.empty())
        return std::nullopt;
    QString verb = "insert tracks";
    for (const int seconds : data.tracks)
        verb += ' ' + QString::number(seconds);
    return verb;
}

Fault MakeEject(const FaultMaker& maker, const Desk::VirtualDesk& desk)
{
    const Fault words{"eject", "Eject", "Opens the tray; again puts the desk's disc in",
                      "without a disc"};
    const auto hasDisc = [&desk] { return desk.GetCdDrive()->GetState().hasDisc; };
    const std::optional<QString> insert = MakeInsert(*desk.GetData().cd);
    if (!insert) {
        Fault fault = maker.Make(words, {"eject"});
        fault.help = "Opens the tray";
        fault.isPossible = hasDisc;
        return fault;
    }
    Fault fault = maker.Make(words, {"eject"}, {*insert});
    fault.isInForce = [hasDisc] { return !hasDisc(); };
    return fault;
}

FaultyDevice MakeDrive(const Desk::VirtualDesk& desk, const Conditions& conditions)
{
    const FaultMaker maker("cd", "cd/", conditions);
    Fault vanished = maker.MakeUnplugged("vanish", "appear");
    vanished.id = "vanish";
    vanished.text = "Vanish";
    return {"cd",
            "Drive",
            {vanished, MakeEject(maker, desk),
             maker.MakeLasting({"scratch", "Scratched", "The disc cannot be read", "scratched"},
                               "scratch on", "scratch off", "scratch"),
             maker.MakeLasting({"busy", "Busy", "Another program has the drive", "busy"}, "busy on",
                               "busy off", "busy"),
             maker.MakeLasting({"slow", "Slow", "Every call takes 100 ms longer", "slow"},
                               "slow 100", "slow 0", "slow")}};
}

std::optional<Desk::AdapterData> FindAdapter(const Desk::VirtualDesk& desk,
                                             const std::wstring& name)
{
    for (Desk::AdapterData& adapter : desk.GetNetwork().GetAdapters())
        if (adapter.name == name)
            return std::move(adapter);
    return std::nullopt;
}

FaultyDevice MakeAdapter(const Desk::VirtualDesk& desk, const Desk::AdapterData& data,
                         const Conditions& conditions)
{
    const std::wstring& name = data.name;
    const FaultMaker maker("adapter " + ToWord(name), "", conditions);
    const auto isThere = [&desk, name] { return FindAdapter(desk, name).has_value(); };

    Fault removed = maker.MakeUnplugged([isThere] { return !isThere(); }, "remove", "add");
    removed.id = "remove";
    removed.text = "Remove";
    removed.word = "removed";
    Fault down = maker.Make({"down", "Down", "Takes the link down; again brings it up", "down"},
                            {"down"}, {"up"});
    down.isDesksOwn = !data.isUp;
    down.isInForce = [&desk, name] {
        const auto adapter = FindAdapter(desk, name);
        return adapter && !adapter->isUp;
    };
    down.isPossible = isThere;
    Fault flap = maker.Make({"flap", "Flap 10 times", "Takes the link down and up ten times", ""},
                            {"flap 10"});
    flap.isPossible = isThere;
    Fault overrun = maker.Make(
        {"overrun", "Overrun", "The link changes while the news of it are lost", ""}, {"overrun"});
    overrun.isPossible = isThere;

    const QString title = QString::fromStdWString(name);
    return {title, title, {removed, down, flap, overrun}};
}

void AddWidgets(std::vector<FaultGroup>& groups, const Desk::VirtualDesk& desk,
                const Conditions& conditions)
{
    FaultGroup wings{"widgets", "Wings", {}};
    FaultGroup boards{"ltc", "Timecode boards", {}};
    for (const Desk::VirtualWidget* const widget : desk.GetBus().GetWidgets())
        if (Desk::IsLtcBoard(widget->GetModel()))
            boards.devices.push_back(MakeBoard(desk, *widget, conditions));
        else
            wings.devices.push_back(MakeWidget(*widget, conditions));
    groups.push_back(std::move(wings));
    groups.push_back(std::move(boards));
}

} // namespace

std::vector<FaultGroup> ListFaults(const Desk::VirtualDesk& desk, const Conditions& conditions)
{
    std::vector<FaultGroup> groups;
    AddWidgets(groups, desk, conditions);
    FaultGroup ports{"midi", "MIDI ports", {}};
    for (const Desk::MidiPortData& port : desk.GetData().midiPorts)
        ports.devices.push_back(MakePort(port, conditions));
    groups.push_back(std::move(ports));
    FaultGroup lines{"serial", "Serial lines", {}};
    for (const Desk::SerialLineData& line : desk.GetData().serialLines)
        lines.devices.push_back(MakeLine(line.device, conditions));
    groups.push_back(std::move(lines));
    if (desk.GetCdDrive())
        groups.push_back({"cd", "CD drive", {MakeDrive(desk, conditions)}});
    FaultGroup adapters{"network", "Network adapters", {}};
    for (const Desk::AdapterData& adapter : desk.GetData().adapters)
        adapters.devices.push_back(MakeAdapter(desk, adapter, conditions));
    groups.push_back(std::move(adapters));
    std::erase_if(groups, [](const FaultGroup& group) { return group.devices.empty(); });
    return groups;
}

} // namespace VirtualDesk
