// SPDX-License-Identifier: MIT
#include "desk/serial_peer.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include "kernel/terminal.h"

namespace Desk
{

namespace
{

/// Longest sleep of a peer to whom nobody talks; it is woken for everything.
constexpr unsigned IdleMilliseconds = 1000;

/// A script and how far it has come.
class Script
{
public:
    explicit Script(std::vector<SerialPeer::Exchange> exchanges) : m_exchanges(std::move(exchanges))
    {
    }

    SerialPeer::Bytes operator()(const SerialPeer::Bytes& heard)
    {
        m_pending.insert(m_pending.end(), heard.begin(), heard.end());
        SerialPeer::Bytes said;
        while (m_next < m_exchanges.size()) {
            const SerialPeer::Exchange& exchange = m_exchanges[m_next];
            const auto found = std::search(m_pending.begin(), m_pending.end(),
                                           exchange.heard.begin(), exchange.heard.end());
            if (found == m_pending.end() && !exchange.heard.empty())
                break;
            m_pending.erase(m_pending.begin(),
                            found + static_cast<std::ptrdiff_t>(exchange.heard.size()));
            said.insert(said.end(), exchange.said.begin(), exchange.said.end());
            ++m_next;
        }
        return said;
    }

private:
    const std::vector<SerialPeer::Exchange> m_exchanges;
    std::size_t m_next = 0;
    SerialPeer::Bytes m_pending; // heard, and not yet part of an exchange
};

} // namespace

struct SerialPeer::Private {
    Private(SerialPort& itsPort, const LineSettings& itsSettings, Answer itsAnswer)
        : port(itsPort), settings(itsSettings), answer(std::move(itsAnswer))
    {
    }

    SerialPort& port;
    const LineSettings settings;
    const Answer answer;
    std::atomic<bool> isEnding{false};

    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    Bytes heard; // guarded by mutex, as below
    std::size_t noise = 0;

    std::thread thread;

    void Listen();
    bool IsUnderstood() const;
};

bool SerialPeer::Private::IsUnderstood() const
{
    const LineSettings line = port.GetSettings();
    return line.baud == settings.baud && line.dataBits == settings.dataBits &&
           line.stopBits == settings.stopBits && line.parity == settings.parity;
}

void SerialPeer::Private::Listen()
{
    while (!isEnding) {
        const Bytes bytes = port.Receive(IdleMilliseconds);
        if (bytes.empty())
            continue;
        const bool isUnderstood = IsUnderstood();
        // It answers first, so that who waits for it finds that done.
        const Bytes said = isUnderstood && answer ? answer(bytes) : Bytes();
        if (!said.empty())
            port.Send(said);
        const std::lock_guard hold(mutex);
        if (isUnderstood)
            heard.insert(heard.end(), bytes.begin(), bytes.end());
        else
            noise += bytes.size();
        changed.notify_all();
    }
}

SerialPeer::SerialPeer(SerialPort& port, const LineSettings& settings, Answer answer)
    : m_private(new Private(port, settings, std::move(answer)))
{
    m_private->thread = std::thread([this] { m_private->Listen(); });
}

SerialPeer::~SerialPeer()
{
    m_private->isEnding = true;
    m_private->port.Wake();
    m_private->thread.join();
}

SerialPeer::Bytes SerialPeer::GetHeard() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->heard;
}

std::size_t SerialPeer::CountNoise() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->noise;
}

bool SerialPeer::WaitForBytes(std::size_t count) const
{
    std::unique_lock hold(m_private->mutex);
    return m_private->changed.wait_for(hold, Patience, [this, count] {
        return m_private->heard.size() + m_private->noise >= count;
    });
}

SerialPeer::Answer SerialPeer::MakeEcho()
{
    return [](const Bytes& heard) { return heard; };
}

SerialPeer::Answer SerialPeer::MakeScript(std::vector<Exchange> script)
{
    return Script(std::move(script));
}

} // namespace Desk
