// SPDX-License-Identifier: MIT
#include "common/midi_sender.h"

namespace Tools
{

void MidiSender::EnableRunningStatus(bool enable)
{
    m_isRunningStatusOn = enable;
    m_device.EnableTxRunningStatus(enable);
}

void MidiSender::SetOutput(const std::wstring& name)
{
    m_device.SetOutput(name);
    m_needsStatus = true;
}

void MidiSender::EnableTransmit(bool enable)
{
    m_device.EnableTransmit(enable);
    // While it was off, another receiver may have been plugged in.
    m_needsStatus = true;
}

void MidiSender::SendShortMessage(std::uint32_t message)
{
    m_device.EnableTxRunningStatus(m_isRunningStatusOn && !m_needsStatus);
    m_device.SendShortMessage(message);
    m_device.EnableTxRunningStatus(m_isRunningStatusOn);
    m_needsStatus = false;
}

bool MidiSender::SendBuffer(std::span<const std::uint8_t> bytes)
{
    m_needsStatus = true;
    return m_device.SendBuffer(bytes.data(), static_cast<unsigned>(bytes.size()));
}

} // namespace Tools
