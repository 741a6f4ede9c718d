// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "desk/kernel_testbed.h"
#include "desk/midi_port.h"
#include "desk/sequencer.h"

namespace Hwctl
{

/// The devices that --virtual works on: a test bed with two MIDI ports.
class VirtualDevices
{
public:
    VirtualDevices();

    /// The port of that name; throws CommandError when there is none.
    Desk::MidiPort& GetPort(const std::string& name);
    /// The first port, which recordings play on unless told otherwise.
    Desk::MidiPort& GetFirstPort() { return *m_ports.front(); }

private:
    Desk::KernelTestbed m_testbed;
    Desk::Sequencer m_sequencer;
    std::vector<std::unique_ptr<Desk::MidiPort>> m_ports;
};

} // namespace Hwctl
