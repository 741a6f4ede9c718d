// SPDX-License-Identifier: MIT
#include "console/known_paths.h"

#include <initializer_list>
#include <string>

#include "common/light_name.h"
#include "common/light_setting.h"
#include "desk/light_levels.h"
#include "desk/widget_controls.h"
#include "standalone/network_source.h"

namespace Console
{

namespace
{

using nlohmann::json;

json MakeObject(std::initializer_list<const char*> names)
{
    json object = json::object();
    for (const char* const name : names)
        object[name] = nullptr;
    return object;
}

/// An object with the numbers from 0 on as its names.
json MakeIndices(std::size_t count)
{
    json object = json::object();
    for (std::size_t index = 0; index < count; ++index)
        object[std::to_string(index)] = nullptr;
    return object;
}

std::string GetPath(const Desk::WidgetData& widget)
{
    return {widget.path.begin(), widget.path.end()};
}

json GetWidgetPaths(const Hardware::WingModel& model)
{
    json widget = MakeObject({"model", "plugged", "attached", "asleep", "beacons"});
    widget["leds"] = MakeIndices(model.leds.size());
    widget["motors"] = MakeIndices(model.faders.size());
    widget["lights"] = json::object();
    for (const std::string& light : Desk::GetLightNames(model))
        widget["lights"][light] = nullptr;
    if (Desk::IsLtcBoard(model))
        widget["links"] =
            MakeObject({"consoleActive", "consoleGigabit", "fixtureActive", "fixtureGigabit"});
    return widget;
}

json GetLightPaths()
{
    json lights = json::object();
    for (unsigned number = 0; number < Hardware::ConsoleLightCount; ++number)
        lights[Tools::GetLightName(static_cast<Hardware::ConsoleLightId>(number))] =
            MakeObject({"level", "preference", "wanted"});
    return lights;
}

json GetSettingPaths(const Desk::DeskData& data)
{
    json settings = json::object();
    for (const auto& [name, value] : Tools::DescribeLightSettings(data.settings))
        settings[name] = nullptr;
    return settings;
}

json GetTimecodePaths(const Desk::DeskData& data)
{
    json sources = json::object();
    unsigned boards = 0;
    for (const Desk::WidgetData& widget : data.widgets)
        if (const auto* const model = Standalone::FindWingModel(widget.model);
            model && Desk::IsLtcBoard(*model))
            sources["ltc " + std::to_string(boards++)] = GetSourcePaths();
    for (std::size_t number = 1; number <= data.simulate.size(); ++number)
        sources["sim " + std::to_string(number)] = GetSourcePaths();
    if (data.cd)
        sources["cd"] = GetSourcePaths();
    return sources;
}

json GetSerialPaths(const Desk::DeskData& data)
{
    json lines = json::object();
    for (const Desk::SerialLineData& line : data.serialLines)
        lines[Desk::GetLineName(line.device)] =
            line.peer == Desk::SerialLineData::Peer::Panel
                ? MakeObject({"backlight", "packets", "last", "rejected", "noise"})
                : json::object();
    return lines;
}

/// What verbs set that lasts.
json GetConditionPaths(const Desk::DeskData& data)
{
    json conditions = json::object();
    const auto add = [&conditions](const std::string& device,
                                   std::initializer_list<const char*> names) {
        for (const char* const name : names)
            conditions[device + "/" + name] = nullptr;
    };
    for (const Desk::MidiPortData& port : data.midiPorts)
        add("midi/" + port.name, {"plugged", "busy", "full", "hangup", "dead"});
    for (const Desk::SerialLineData& line : data.serialLines)
        add("serial/" + Desk::GetLineName(line.device), {"plugged", "stalled", "slow"});
    for (const Desk::WidgetData& widget : data.widgets)
        add("widget/" + GetPath(widget), {"stuck"});
    if (data.cd)
        add("cd", {"plugged", "scratch", "busy", "slow"});
    return conditions;
}

} // namespace

json GetAdapterPaths()
{
    return MakeObject({"up", "speed"});
}

json GetSourcePaths()
{
    return MakeObject(
        {"frame", "dropFrame", "direction", "rate", "age", "frames", "lost", "repeated"});
}

json GetKnownPaths(const Desk::DeskData& data)
{
    json paths = MakeObject({"name", "seconds", "events", "inputs", "screenSaver"});
    paths["widgets"] = json::object();
    for (const Desk::WidgetData& widget : data.widgets)
        if (const auto* const model = Standalone::FindWingModel(widget.model))
            paths["widgets"][GetPath(widget)] = GetWidgetPaths(*model);
    paths["lights"] = GetLightPaths();
    paths["settings"] = GetSettingPaths(data);
    paths["displays"] = MakeObject({"left", "right", "centre"});
    paths["timecode"] = GetTimecodePaths(data);
    paths["midi"] = MakeObject(
        {"input", "output", "receive", "transmit", "running-status", "received", "sent", "last"});
    paths["serial"] = GetSerialPaths(data);
    paths["adapters"] = json::object();
    for (const Desk::AdapterData& adapter : data.adapters)
        paths["adapters"][Standalone::NarrowAdapterName(adapter.name)] = GetAdapterPaths();
    paths["conditions"] = GetConditionPaths(data);
    if (data.cd)
        paths["cd"] = MakeObject({"disc", "status", "track", "position"});
    return paths;
}

} // namespace Console
