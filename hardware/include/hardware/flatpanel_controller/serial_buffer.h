// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>

#include "hardware/export.h"
#include "hardware/flatpanel_controller/serial.h"

namespace Hardware
{

/// Reads a serial port byte by byte, with a time-out, and writes to it. One thread at a time.
class HARDWARE_EXPORT SerialBuffer
{
public:
    /// @param port outlives the buffer
    /// @param size bytes that one read of the device may bring
    SerialBuffer(const Serial& port, unsigned int size);
    virtual ~SerialBuffer();
    SerialBuffer(const SerialBuffer&) = delete;
    SerialBuffer& operator=(const SerialBuffer&) = delete;

    /// Whether bytes and failures are logged, not 0 for yes, as it is at first.
    SerialBuffer& Trace(int on);
    /// How long Read() waits for the device, in microseconds, 100 at first. A negative number is
    /// taken as the huge unsigned one.
    SerialBuffer& BlockDuration(int microseconds);

    /// The next byte, 0 to 255. Asks the device, once, only when none is left here. -1 when nothing
    /// came in time, and at once where the line has hung up. A failed read of the device counts as
    /// that many bytes as its errno value says: what stands in the buffer from before, or 0; so -2,
    /// an error, does not come from a Serial as it is.
    int Read();
    /// One write to the port. @return what Serial::Write() returns
    int Write(unsigned char* buf, std::size_t len);

private:
    const Serial& m_port;
    int m_trace = 1;
    int m_blockDuration = 100;
    unsigned m_position = 1;
    unsigned m_fill = 0;
    unsigned m_size;
    std::unique_ptr<unsigned char[]> m_buffer; // NOLINT(*-avoid-c-arrays): sized at run time
};

} // namespace Hardware
