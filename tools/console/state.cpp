// SPDX-License-Identifier: MIT

// What a session shows, as data.

#include <array>

#include "common/light_name.h"
#include "common/light_setting.h"
#include "common/wing_name.h"
#include "console/parts.h"
#include "desk/light_levels.h"
#include "desk/widget_controls.h"
#include "hardware/wing_mapper.h"
#include "standalone/network_source.h"

namespace Console
{

namespace
{

using Hardware::ConsoleLightId;
using Hardware::ConsoleLights;
using nlohmann::json;

constexpr double One = 0x10000;

json DescribeLed(int state)
{
    if (state < 0)
        return nullptr; // nobody has set it
    const std::optional<std::string> name = Tools::FindLedStateName(state);
    return name ? json(*name) : json(state);
}

json GetLeds(const Desk::VirtualWidget& widget)
{
    json leds = json::object();
    for (std::size_t led = 0; led < widget.GetModel().leds.size(); ++led)
        leds[std::to_string(led)] = DescribeLed(widget.GetLed(static_cast<std::uint16_t>(led)));
    return leds;
}

/// Where the application last moved the motors to.
json GetMotors(const Desk::VirtualWidget& widget)
{
    json motors = json::object();
    for (std::size_t fader = 0; fader < widget.GetModel().faders.size(); ++fader)
        if (const int position = widget.GetFader(static_cast<std::uint16_t>(fader)); position >= 0)
            motors[std::to_string(fader)] = position;
    return motors;
}

json GetLinks(const Desk::VirtualWidget& board)
{
    const Standalone::Report::SetLinkLights lights = board.GetLinkLights();
    return {{"consoleActive", lights.consoleActive != 0},
            {"consoleGigabit", lights.consoleGigabit != 0},
            {"fixtureActive", lights.fixtureActive != 0},
            {"fixtureGigabit", lights.fixtureGigabit != 0}};
}

/// Whether the application has it: a wing by its key, and what is no wing by its connection.
bool IsAttached(const Desk::VirtualWidget& widget)
{
    const bool isWing =
        !Desk::IsTrackball(widget.GetModel()) && !Desk::IsLtcBoard(widget.GetModel());
    return widget.IsPlugged() &&
           (isWing ? Hardware::WingMapper::Get().is_wing_connected(widget.GetKey())
                   : widget.CountOpen() > 0);
}

json GetWidgets(const Session::Parts& parts)
{
    json widgets = json::object();
    for (const Desk::VirtualWidget* const widget : parts.desk.GetBus().GetWidgets()) {
        const std::wstring& path = widget->GetData().path;
        json lights = json::object();
        for (const Desk::LightLevel& light : Desk::GetLightLevels(*widget))
            lights[light.name] = light.level;
        json facts{{"model", widget->GetData().model}, {"plugged", widget->IsPlugged()},
                   {"attached", IsAttached(*widget)},  {"leds", GetLeds(*widget)},
                   {"motors", GetMotors(*widget)},     {"lights", std::move(lights)},
                   {"asleep", widget->IsAsleep()},     {"beacons", widget->GetBeacons().size()}};
        if (Desk::IsLtcBoard(widget->GetModel()))
            facts["links"] = GetLinks(*widget);
        widgets[std::string(path.begin(), path.end())] = std::move(facts);
    }
    return widgets;
}

json GetLights()
{
    json lights = json::object();
    for (unsigned number = 0; number < Hardware::ConsoleLightCount; ++number) {
        const auto id = static_cast<ConsoleLightId>(number);
        lights[Tools::GetLightName(id)] = {
            {"level", ConsoleLights::Get().get(id) / One},
            {"preference", ConsoleLights::Get().get_preference(id) / One},
            {"wanted", ConsoleLights::Get().get_preference_state(id)}};
    }
    return lights;
}

json GetSettings()
{
    json settings = json::object();
    for (const auto& [name, value] : Tools::DescribeLightSettings(Standalone::GetLightSettings())) {
        if (value == "on" || value == "off")
            settings[name] = value;
        else
            settings[name] = std::stod(value);
    }
    return settings;
}

json GetTimecodeState(const Session& session)
{
    constexpr std::array<const char*, 3> Directions{"backwards", "standing", "forwards"};
    json sources = json::object();
    for (const auto& [name, reading] : session.GetTimecode())
        sources[name] = {
            {"frame", reading.frame.toString()},
            {"dropFrame", reading.frame.dropFrame},
            {"direction", Directions.at(static_cast<std::size_t>(reading.direction) + 1)},
            {"rate", reading.rate},
            {"age", reading.age},
            {"frames", reading.frames},
            {"lost", reading.lost},
            {"repeated", reading.repeated}};
    return sources;
}

json GetMidiState(Session::Parts& parts)
{
    const std::lock_guard hold(parts.mutex);
    const MidiState& midi = parts.midiState;
    return {{"input", midi.input},
            {"output", midi.output},
            {"receive", midi.isReceiving ? "on" : "off"},
            {"transmit", midi.isSending ? "on" : "off"},
            {"running-status", midi.isRunningStatusOn ? "on" : "off"},
            {"received", midi.received},
            {"sent", midi.sent},
            {"last", parts.lastMessage}};
}

json GetCd(const Desk::CdDrive& drive)
{
    constexpr std::array<const char*, 3> Names{"stopped", "playing", "paused"};
    const Desk::CdDrive::State state = drive.GetState();
    return {{"disc", state.hasDisc},
            {"status", Names.at(static_cast<std::size_t>(state.status))},
            {"track", state.status == Desk::CdDrive::Status::Stopped ? 0 : state.place.track},
            {"position", Desk::ToCdText(state.position)}};
}

json GetSerial(const Session::Parts& parts)
{
    json lines = json::object();
    for (const Desk::SerialLineData& line : parts.desk.GetData().serialLines) {
        json facts = json::object();
        if (const Desk::FlatPanel* const panel = parts.desk.FindPanel(line.device)) {
            const std::size_t count = panel->CountPackets();
            const std::vector<Desk::PanelPacket> last =
                panel->GetPackets(count > 0 ? count - 1 : 0);
            facts = {{"backlight", panel->GetBacklight()},
                     {"packets", count},
                     {"last", last.empty() ? std::string() : Desk::ToText(last.back())},
                     {"rejected", panel->CountRejected()},
                     {"noise", panel->CountNoise()}};
        }
        lines[Desk::GetLineName(line.device)] = std::move(facts);
    }
    return lines;
}

json GetAdapters(const Session::Parts& parts)
{
    json adapters = json::object();
    for (const Desk::AdapterData& adapter : parts.desk.GetNetwork().GetAdapters())
        adapters[Standalone::NarrowAdapterName(adapter.name)] = {{"up", adapter.isUp},
                                                                 {"speed", adapter.speed}};
    return adapters;
}

json GetDisplays(const Session::Parts& parts)
{
    constexpr double Percent = 100;
    const std::array<double, 3> levels = parts.desk.GetDisplays();
    return {{"left", levels[0] * Percent},
            {"right", levels[1] * Percent},
            {"centre", levels[2] * Percent}};
}

} // namespace

nlohmann::json Session::GetState() const
{
    json state{{"name", GetDesk().GetData().name},
               {"seconds", GetSeconds()},
               {"events", m_parts->events.load()},
               {"inputs", m_parts->inputs.load()},
               {"widgets", GetWidgets(*m_parts)},
               {"lights", GetLights()},
               {"settings", GetSettings()},
               {"displays", GetDisplays(*m_parts)},
               {"screenSaver", IsScreenSaverOn() ? "on" : "off"},
               {"timecode", GetTimecodeState(*this)},
               {"midi", GetMidiState(*m_parts)},
               {"serial", GetSerial(*m_parts)},
               {"adapters", GetAdapters(*m_parts)},
               {"conditions", GetDesk().GetConditions()}};
    if (const Desk::CdDrive* const drive = GetDesk().GetCdDrive())
        state["cd"] = GetCd(*drive);
    return state;
}

} // namespace Console
