// SPDX-License-Identifier: MIT
#include "hwctl/virtual_devices.h"

#include <algorithm>
#include <stdexcept>

#include "common/near_names.h"
#include "common/script_lines.h"
#include "desk/audio_file.h"
#include "desk/virtual_desk.h"
#include "desk/widget_controls.h"
#include "hwctl/command_error.h"
#include "standalone/platform_settings.h"
#include "watch/cd_facts.h"

namespace Hwctl
{

namespace
{

constexpr std::uint64_t Gigabit = 1000000000;

std::vector<Desk::WidgetData> ReadWidgets(const std::string& file)
{
    if (file.empty())
        return {{"PlaybackWing", 291, L"playback"},
                {"ExpansionWing", 2, L"expansion"},
                {"Vex4ExternalPlayback", 3, L"motor"},
                {"Vex4Pixi", 291, L"pixi"},
                {"Vex4DeskPlayback", 4, L"panel"},
                {"Vex4DeskProgrammer", 5, L"keyboard"},
                {"TrackballWidget", 6, L"trackball"},
                {"Vex4TopBox", 7, L"bar"},
                {"LtcWidget", 8, L"ltc"}};
    try {
        return Desk::ReadWidgetData(Tools::ReadWholeFile(file));
    } catch (const std::invalid_argument& error) {
        throw CommandError(file + ": " + error.what());
    }
}

} // namespace

VirtualDevices::VirtualDevices(const std::string& widgetFile)
    : m_sequencer(m_testbed), m_cd(m_testbed)
{
    m_cd.Insert(Tools::MakeVirtualDisc(""));
    for (const char* const name : {"Stage Keyboard", "Show Control"})
        m_ports.push_back(std::make_unique<Desk::MidiPort>(m_testbed, m_sequencer, name));
    for (const Desk::WidgetData& data : ReadWidgets(widgetFile))
        m_bus.Add(data);
    AddAdapters(Standalone::GetPlatformSettings().consoleNetwork, Gigabit);
    AddAdapters(Standalone::GetPlatformSettings().fixtureNetwork, Gigabit / 10);
}

/// All of them up, so that there is something to see.
void VirtualDevices::AddAdapters(const std::vector<std::wstring>& names, std::uint64_t speed)
{
    for (const std::wstring& name : names)
        if (!m_network.Has(name))
            m_network.Add({name, true, speed});
}

VirtualDevices::~VirtualDevices() = default;

Desk::MidiPort& VirtualDevices::GetPort(const std::string& name)
{
    Tools::Names names;
    for (const auto& port : m_ports)
        names.push_back(port->GetName());
    const std::string chosen = Tools::ChooseName("MIDI port", name, names);
    return **std::find_if(m_ports.begin(), m_ports.end(),
                          [&chosen](const auto& port) { return port->GetName() == chosen; });
}

Desk::VirtualWidget* VirtualDevices::FindWidget(std::uint32_t key) const
{
    for (Desk::VirtualWidget* const widget : m_bus.GetWidgets())
        if (widget->GetKey() == key && widget->IsPlugged())
            return widget;
    return nullptr;
}

Desk::VirtualWidget* VirtualDevices::FindBoard() const
{
    for (Desk::VirtualWidget* const widget : m_bus.GetWidgets())
        if (Desk::IsLtcBoard(widget->GetModel()))
            return widget;
    return nullptr;
}

void VirtualDevices::LoadTimecode(const std::string& file)
{
    if (!FindBoard())
        throw CommandError("there is no LTC board to play timecode into");
    m_tape = std::make_unique<Desk::AudioFile>(file);
}

void VirtualDevices::PlayTimecode()
{
    const auto send = [board = FindBoard()](const Desk::LtcFrame& frame) {
        Desk::SendTimecode(*board, frame.time);
    };
    m_ltc =
        std::make_unique<Desk::LtcPlayer>(std::move(m_tape), send, Desk::LtcPlayer::LossTaker());
}

} // namespace Hwctl
