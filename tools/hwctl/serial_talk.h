// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Hwctl
{

/// Sends bytes on an open serial port and takes what comes, in an event loop.
///
/// No read and no write blocks, so that the end always comes: a line that takes nothing and another
/// program that reads the same port hold nothing up. A byte counts as sent once it has left the
/// driver's queue and, where the driver says so, the transmitter.
class SerialTalk
{
public:
    struct Options {
        std::vector<std::uint8_t> send; ///< bytes to send first
        std::size_t count = 0;          ///< ends after so many received bytes; 0 for no such end
        double seconds = 0;             ///< ends after so long; 0 for no such end
        unsigned baud = 9600;           ///< the line's speed
        int output = -1; ///< reading pauses while this descriptor takes nothing; -1 for none
        /// Takes bytes that came. False ends the talk.
        std::function<bool(std::span<const std::uint8_t> bytes)> take;
        /// Called once, when all bytes are sent.
        std::function<void()> tellSent;
    };
    struct Result {
        std::size_t received = 0;
        std::size_t unsent = 0; ///< bytes that did not leave the port
        std::string problem;    ///< why the talk broke off; empty when it ended as asked
    };

    /// Lets reads and writes on @p descriptor no longer block.
    SerialTalk(int descriptor, Options options);
    SerialTalk(const SerialTalk&) = delete;
    SerialTalk& operator=(const SerialTalk&) = delete;

    /// Talks until the time or the count is reached, Stop(), or a failure. Waits then for what the
    /// driver has still to send, as long as that takes on a line that moves, but not after Stop().
    Result Run();
    /// Ends Run() at once. On the thread of the event loop.
    void Stop();

private:
    void Read();
    void Write();
    void CheckSent();
    void Drain();
    bool CanPrint();
    std::size_t CountQueued() const;
    bool IsDriverDone();
    void Fail(const std::string& problem);
    void End();

    const int m_descriptor;
    const Options m_options;
    Result m_result;
    std::size_t m_written = 0; // bytes that the driver took
    bool m_isSent = false;     // all of them have left the port
    bool m_isEnding = false;   // only what the driver took is waited for
    bool m_isStopped = false;
    QElapsedTimer m_sinceQueueIsEmpty; // invalid while it is not
    QEventLoop m_loop;
    QTimer m_endTimer;
    QTimer m_sendTimer; // while anything is to be sent
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
    std::optional<QSocketNotifier> m_printable; // enabled while the output takes nothing
};

} // namespace Hwctl
