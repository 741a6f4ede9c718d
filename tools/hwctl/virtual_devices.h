// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "desk/cd_drive.h"
#include "desk/kernel_testbed.h"
#include "desk/ltc_player.h"
#include "desk/midi_port.h"
#include "desk/sequencer.h"
#include "desk/virtual_network.h"
#include "desk/virtual_widget.h"
#include "desk/widget_bus.h"
#include "hwctl/event_printer.h"

namespace Hwctl
{

/// The devices that --virtual works on: a test bed with two MIDI ports and a CD drive that has a
/// disc, a bus with widgets, and the network adapters that the platform is to have.
class VirtualDevices
{
public:
    /// @param widgetFile JSON file with the widgets; empty for a desk of one of each kind
    explicit VirtualDevices(const std::string& widgetFile);
    ~VirtualDevices();
    VirtualDevices(const VirtualDevices&) = delete;
    VirtualDevices& operator=(const VirtualDevices&) = delete;

    /// The port of that name, whatever its case; throws std::invalid_argument when there is none.
    Desk::MidiPort& GetPort(const std::string& name);
    /// The first port, which recordings play on unless told otherwise.
    Desk::MidiPort& GetFirstPort() { return *m_ports.front(); }

    Desk::KernelTestbed& GetTestbed() { return m_testbed; }
    Desk::CdDrive& GetCdDrive() { return m_cd; }
    Desk::WidgetBus& GetBus() { return m_bus; }
    const Desk::WidgetBus& GetBus() const { return m_bus; }
    Desk::VirtualNetwork& GetNetwork() { return m_network; }
    /// The plugged widget of a key; null when there is none.
    Desk::VirtualWidget* FindWidget(std::uint32_t key) const;

    /// Opens timecode audio for the first LTC board; throws CommandError when there is none, and
    /// std::runtime_error when the file cannot be read.
    void LoadTimecode(const std::string& file);
    /// Plays what was loaded, once, in real time.
    void PlayTimecode();
    void StopTimecode() { m_ltc.reset(); }

private:
    Desk::VirtualWidget* FindBoard() const;
    void AddAdapters(const std::vector<std::wstring>& names, std::uint64_t speed);

    Desk::KernelTestbed m_testbed;
    Desk::Sequencer m_sequencer;
    std::vector<std::unique_ptr<Desk::MidiPort>> m_ports;
    Desk::CdDrive m_cd;
    Desk::WidgetBus m_bus;
    Desk::VirtualNetwork m_network;
    std::unique_ptr<Desk::AudioSource> m_tape; // until it plays
    std::unique_ptr<Desk::LtcPlayer> m_ltc;    // plays into the bus
};

} // namespace Hwctl
