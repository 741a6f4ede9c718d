// SPDX-License-Identifier: MIT
#pragma once

#include <termios.h>

#include <cstddef>
#include <string>
#include <vector>

#include "hardware/export.h"

namespace Hardware
{

/// A serial port, opened raw with eight data bits and one stop bit.
///
/// Operations that return an int give 0, or a number of bytes, where they succeed, and otherwise an
/// errno value, which is positive too: 22 (EINVAL) when the port is not open or an argument is
/// wrong. A device that cannot be opened or set up, a wrong speed, parity or flow control, and
/// failed reads and writes are logged at level 1. One owner uses the object, one thread at a time;
/// WaitForInput() holds nothing, and its result is another.
class HARDWARE_EXPORT Serial
{
public:
    enum parity_e : int { parity_none = 0, parity_even = 1, parity_odd = 2 };
    /// There is no control by the lines RTS and CTS: both values switch it off.
    enum flowcontrol_e : int { flowcontrol_xonxoff = 0, flowcontrol_none = 1 };

    /// Closed, without a name.
    Serial();
    /// Closed. @param name device file, such as "/dev/ttyS0"
    explicit Serial(const char* name);
    /// Closes.
    ~Serial();
    Serial(const Serial&) = delete;
    Serial& operator=(const Serial&) = delete;

    /// Takes effect at the next Open().
    void SetDeviceName(const char* name);
    bool IsValid() const;
    /// The descriptor, -1 while closed.
    int GetDeviceHandle() const;

    /// Opens the device, keeps its settings for Reset() and Close(), and gives it new ones. Later
    /// reads and writes block. The port does not become the controlling terminal, and programs that
    /// the process starts do not inherit the descriptor. Close an open port first: another open
    /// leaves the first descriptor behind.
    /// Returns 25 (ENOTTY) or 5 (EIO) for a device that opens but is not a serial port, such as one
    /// that stands for hardware that is not there.
    /// @param baud 300, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200, 230400 or 460800
    int Open(int baud, parity_e parity, flowcontrol_e flow);

    // These change the settings that are kept here and do not reach the device any more once it
    // has been opened.

    /// No processing of input or output, no echo, no signals; a read waits for one byte.
    int SetRaw();
    /// @param on ignores the modem's lines
    int SetLocal(bool on);
    /// One stop bit.
    int SetStopBits();
    /// Eight data bits.
    int SetDataBits();
    /// A value that is none is logged and changes nothing; the result is 0 for it as well.
    int SetParity(parity_e parity);
    /// As SetParity().
    int SetFlowControl(flowcontrol_e flow);
    /// Returns 22 for a speed that there is not, and 22 too when it was set; 0, with nothing
    /// changed, where the device is no terminal any more.
    int SetSpeed(int baud);

    /// One read of at most @p len bytes, which blocks until there is one.
    /// @return the number of bytes, 0 at the end of the line, or an errno value: the two cannot be
    ///         told apart by themselves
    int Read(unsigned char* buf, std::size_t len) const;
    /// One write, which blocks while the line takes nothing. @return as Read()
    int Write(unsigned char* buf, std::size_t len) const;

    /// Waits until one of the descriptors is readable. Skips those below 0, and from 1024 on,
    /// which it cannot watch. Any thread.
    /// @param descriptors of any ports; empty for a mere sleep
    /// @param timeout microseconds
    /// @return how many are readable, 0 after the time-out, -1 on an error
    static int WaitForInput(std::vector<int> descriptors, unsigned int timeout);

    /// Drops what is still to be read or sent and puts back the settings from before Open().
    int Reset();
    /// The same, and closes the device. Does not wait for anything still to be sent.
    void Close();

private:
    int Configure(parity_e parity, flowcontrol_e flow);

    int m_handle = -1;
    std::string m_name;
    termios m_saved{};
    termios m_working{};
};

} // namespace Hardware
