// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "desk/kernel_testbed.h"

namespace Desk
{

/// How a serial line is set, as a real port's registers would tell.
struct LineSettings {
    enum class Parity { None, Even, Odd };

    int baud = 9600;
    Parity parity = Parity::None;
    int dataBits = 8;
    int stopBits = 1;
    bool xonXoff = false;      ///< output stops and goes on at the far end's word, and asks it to
    bool hardwareFlow = false; ///< the lines RTS and CTS
    bool ignoresModem = false;
    bool raw = false; ///< bytes pass as they are, without echo and signals
    /// Bytes that a read waits for, and tenths of a second between them.
    int minimum = 1;
    int time = 0;

    bool operator==(const LineSettings&) const = default;
};

/// A virtual serial port; this is the far end of its line. Any thread may call any operation, but
/// only one at a time plugs and unplugs.
///
/// A port named "/dev/ttyS..." has a UART with the usual clock. As on a real one, tcsetattr() with
/// more than 115200 baud succeeds and leaves the speed as it is; tcgetattr() tells. Other ports
/// take every speed. Bytes take no time on the line.
class SerialPort
{
public:
    /// Plugged, with the settings of a login line: 9600 baud, cooked.
    /// @param path device file, such as "/dev/ttyS0"
    SerialPort(KernelTestbed& testbed, const std::string& path);
    ~SerialPort();
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    const std::string& GetPath() const;
    bool IsPlugged() const;

    /// Settings that the library gave the port last.
    LineSettings GetSettings() const;
    /// As another program left them. Throws std::invalid_argument for a speed that the port cannot
    /// have.
    void SetSettings(const LineSettings& settings);

    /// Puts bytes on the library's input. Waits up to 20 s for a reader who makes room.
    /// @return false when the port is unplugged or nobody read for so long
    bool Send(std::span<const std::uint8_t> bytes);
    /// Takes the bytes that the library wrote, waiting up to @p milliseconds for the first one, or
    /// for the port to be plugged.
    std::vector<std::uint8_t> Receive(unsigned milliseconds);
    /// Takes exactly @p count bytes; fewer when they do not come within 20 s.
    std::vector<std::uint8_t> ReceiveCount(std::size_t count);
    /// Lets a Receive() that waits return at once, or the next one.
    void Wake();

    /// Pulls the plug: the device file goes, who waits in a read finds the end, who writes gets
    /// EIO.
    void Unplug();
    /// Plugs it in again, as a fresh device.
    void Plug();
    /// Lets further opens fail with that errno value; 0 ends it.
    void RefuseOpen(int error);
    /// Lets every read fail with that errno value, as a defective port's; 0 ends it.
    void RefuseReads(int error);
    /// Bytes that a port keeps while its line takes none.
    static constexpr std::size_t BufferSize = 4096;
    /// Stops the line. The port's buffer takes @p room bytes, at most BufferSize, which count as
    /// written; TIOCOUTQ counts them, tcdrain() waits for them, and tcflush() and the last close
    /// lose them. Once it is full, whoever writes waits.
    /// @param room none, as where the line has stood for long
    void Stall(std::size_t room = 0);
    /// Ends Stall(): the line takes what waited, in its order.
    void Resume();
    /// Lets every open, read and write take so much longer; 0 ends it.
    void SetDelay(unsigned microseconds);

    /// Descriptors that the library has open now.
    int CountOpen() const;
    /// Opens that succeeded, since the port was plugged.
    int CountOpened() const;
    /// Flags of the last of them, as passed to open().
    int GetLastOpenFlags() const;
    /// Microseconds by which its calls were delayed, together.
    long GetDelayed() const;

private:
    struct Private;

    const std::unique_ptr<Private> m_private;
};

} // namespace Desk
