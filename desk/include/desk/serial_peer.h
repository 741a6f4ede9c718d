// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "desk/serial_port.h"

namespace Desk
{

/// Whoever is at the far end of a serial line: listens, takes down what it hears, and answers. It
/// understands a line that is set as it is itself; at another speed or format it hears only noise.
/// Any thread may call any operation.
class SerialPeer
{
public:
    typedef std::vector<std::uint8_t> Bytes;
    /// What it does with bytes it hears, in pieces as they come, and says to them. Called on the
    /// peer's own thread with no lock held.
    typedef std::function<Bytes(const Bytes& heard)> Answer;

    /// A piece of a conversation.
    struct Exchange {
        Bytes heard; ///< to be heard first, whole
        Bytes said;
    };

    /// Listens at once. @param port outlives the peer; of @p settings speed and format count
    SerialPeer(SerialPort& port, const LineSettings& settings, Answer answer = Answer());
    /// Ends the listening, at once.
    ~SerialPeer();
    SerialPeer(const SerialPeer&) = delete;
    SerialPeer& operator=(const SerialPeer&) = delete;

    /// Everything that was understood, oldest first.
    Bytes GetHeard() const;
    /// Bytes that came at other settings.
    std::size_t CountNoise() const;
    /// Waits until so many bytes came, understood or not. @return false when they do not within 20
    /// s
    bool WaitForBytes(std::size_t count) const;

    /// Says back all that it hears.
    static Answer MakeEcho();
    /// Follows a script from its beginning to its end, whatever comes between what it waits for.
    static Answer MakeScript(std::vector<Exchange> script);

private:
    struct Private;

    const std::unique_ptr<Private> m_private;
};

} // namespace Desk
