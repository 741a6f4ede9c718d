// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <span>
#include <string>

#include "hardware/export.h"

namespace Hardware
{

class Serial;

/// Sends commands to a Kontron flat-panel controller on a serial port.
///
/// A packet is 0xBB, the unit, the command's code, the length of what follows, that, and the sum of
/// all but the first byte, modulo 256. It is sent by one write. Nothing is read back, tried again
/// or timed out, and no result tells of a failure: only the port's log lines do. One thread at a
/// time; two that overlap send whole packets in any order.
class HARDWARE_EXPORT Kontron
{
public:
    /// Opens /dev/ttyS0 at 57600 baud, without parity and flow control.
    Kontron();
    /// @param device the serial port
    /// @param baud   one of the speeds of Serial::Open()
    Kontron(const std::string& device, unsigned int baud);
    /// Closes the port at once: what was not yet sent is lost.
    virtual ~Kontron();
    Kontron(const Kontron&) = delete;
    Kontron& operator=(const Kontron&) = delete;

    // Commands return 0 whatever became of the packet.

    int CallAction(unsigned char unit, unsigned char action);
    /// Asks for an adjuster's value and does not read the answer. The third argument is ignored.
    int ReadAdjuster(unsigned char unit, unsigned char adjuster, unsigned int ignored);
    /// @param value only its low 8 bits are sent
    int SetAdjuster(unsigned char unit, unsigned char adjuster, unsigned int value);
    void Reset(unsigned char unit);

    /// Sets adjuster 5 of unit 0, the backlight. @param level 0 to 255; higher bits are dropped
    int SetBacklightLevel(unsigned int level);
    /// Neither sends nor reads anything. @return 0, which says nothing about the level
    unsigned int GetBacklightLevel();

    /// Each byte as two upper-case hexadecimal digits and a blank.
    static std::string PacketToString(const unsigned char* packet, int length);

private:
    void Send(std::span<unsigned char> packet);

    std::unique_ptr<Serial> m_port;
};

} // namespace Hardware
