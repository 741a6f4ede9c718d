// SPDX-License-Identifier: MIT
#include "hwctl/serial_talk.h"

#include <fcntl.h>
#include <linux/serial.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <system_error>
#include <utility>

namespace Hwctl
{

namespace
{

using std::chrono::milliseconds;

/// At most: start, eight, parity, two to stop.
constexpr unsigned BitsPerByte = 12;
/// How often the driver is asked what it has still to send.
constexpr milliseconds LookInterval(20);
/// How much longer than the line needs the driver may take.
constexpr milliseconds Patience(2000);
/// What a usual UART holds beyond the driver's queue.
constexpr std::size_t TransmitterRoom = 16;

milliseconds GetLineTime(std::size_t bytes, unsigned baud)
{
    return milliseconds(bytes * BitsPerByte * 1000 / std::max(baud, 1U));
}

/// What poll() says about a descriptor at this moment.
short GetEvents(int descriptor, short wanted)
{
    pollfd waiting{descriptor, wanted, 0};
    return poll(&waiting, 1, 0) == 1 ? waiting.revents : short{0};
}

bool IsPassing(int error)
{
    return error == EAGAIN || error == EINTR;
}

std::string GetErrorText(int error)
{
    return std::generic_category().message(error);
}

} // namespace

SerialTalk::SerialTalk(int descriptor, Options options)
    : m_descriptor(descriptor), m_options(std::move(options)),
      m_readable(descriptor, QSocketNotifier::Read), m_writable(descriptor, QSocketNotifier::Write)
{
    // A descriptor that is readable when poll() returns may not be when it is read: another program
    // may read the same port.
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    QObject::connect(&m_readable, &QSocketNotifier::activated, &m_loop, [this] { Read(); });
    QObject::connect(&m_writable, &QSocketNotifier::activated, &m_loop, [this] { Write(); });
    QObject::connect(&m_endTimer, &QTimer::timeout, &m_loop, [this] { End(); });
    QObject::connect(&m_sendTimer, &QTimer::timeout, &m_loop, [this] { CheckSent(); });
    m_isSent = m_options.send.empty();
    m_writable.setEnabled(!m_isSent);
    m_endTimer.setSingleShot(true);
    if (m_options.output == -1)
        return;
    m_printable.emplace(m_options.output, QSocketNotifier::Write);
    m_printable->setEnabled(false);
    QObject::connect(&*m_printable, &QSocketNotifier::activated, &m_loop, [this] {
        m_printable->setEnabled(false);
        m_readable.setEnabled(true);
    });
}

SerialTalk::Result SerialTalk::Run()
{
    if (m_options.seconds > 0)
        m_endTimer.start(milliseconds(std::llround(m_options.seconds * 1000)));
    if (!m_isSent)
        m_sendTimer.start(LookInterval);
    m_loop.exec();
    if (!m_isSent && !m_isStopped && m_result.problem.empty())
        Drain();
    if (!m_isSent)
        m_result.unsent = m_options.send.size() - m_written + CountQueued();
    return m_result;
}

void SerialTalk::Stop()
{
    m_isStopped = true;
    End();
}

void SerialTalk::Read()
{
    if (!CanPrint())
        return;
    std::array<std::uint8_t, 256> bytes{};
    std::size_t room = bytes.size();
    if (m_options.count > 0)
        room = std::min(room, m_options.count - m_result.received);
    const ssize_t count = read(m_descriptor, bytes.data(), room);
    if (count > 0) {
        m_result.received += static_cast<std::size_t>(count);
        const bool goesOn = m_options.take(std::span(bytes).first(static_cast<std::size_t>(count)));
        if (!goesOn || (m_options.count > 0 && m_result.received >= m_options.count))
            End();
    } else if (count == -1 && !IsPassing(errno)) {
        Fail("cannot be read: " + GetErrorText(errno));
    } else if (count == 0 && (GetEvents(m_descriptor, POLLIN) & (POLLHUP | POLLERR)) != 0) {
        // Without a hangup it is only that another program took the bytes.
        Fail("the line is gone");
    }
}

/// Whether the output takes what a read brings; otherwise reading pauses until it does.
bool SerialTalk::CanPrint()
{
    if (!m_printable || GetEvents(m_options.output, POLLOUT) != 0)
        return true;
    m_readable.setEnabled(false);
    m_printable->setEnabled(true);
    return false;
}

void SerialTalk::Write()
{
    const std::span<const std::uint8_t> rest = std::span(m_options.send).subspan(m_written);
    const ssize_t count = write(m_descriptor, rest.data(), rest.size());
    if (count >= 0) {
        m_written += static_cast<std::size_t>(count);
        m_writable.setEnabled(m_written < m_options.send.size());
    } else if (!IsPassing(errno)) {
        Fail("cannot be written: " + GetErrorText(errno));
    }
}

void SerialTalk::CheckSent()
{
    if (!IsDriverDone())
        return;
    if (m_written < m_options.send.size()) {
        if (m_isEnding)
            m_loop.quit();
        return;
    }
    m_isSent = true;
    m_sendTimer.stop();
    if (m_options.tellSent)
        m_options.tellSent();
    if (m_isEnding)
        m_loop.quit();
}

/// Bytes that the driver took and has still to send.
std::size_t SerialTalk::CountQueued() const
{
    int queued = 0;
    if (ioctl(m_descriptor, TIOCOUTQ, &queued) == -1)
        return 0; // the device has no queue to ask for
    if (queued > 0)
        return std::min(static_cast<std::size_t>(queued), m_written);
    // How much a transmitter holds it does not say; it is one byte at least.
    unsigned state = TIOCSER_TEMT;
    ioctl(m_descriptor, TIOCSERGETLSR, &state);
    return (state & TIOCSER_TEMT) != 0 ? 0 : 1;
}

/// Whether all that was written has left. Where the driver says nothing about the transmitter, that
/// is given the time that it needs.
bool SerialTalk::IsDriverDone()
{
    if (CountQueued() != 0) {
        m_sinceQueueIsEmpty.invalidate();
        return false;
    }
    unsigned state = 0;
    if (ioctl(m_descriptor, TIOCSERGETLSR, &state) == 0)
        return true;
    if (!m_sinceQueueIsEmpty.isValid())
        m_sinceQueueIsEmpty.start();
    const std::size_t held = std::min(TransmitterRoom, m_written);
    return m_sinceQueueIsEmpty.elapsed() >= GetLineTime(held, m_options.baud).count();
}

/// Nothing new goes out any more: waits for what the driver took.
void SerialTalk::Drain()
{
    m_isEnding = true;
    m_endTimer.start(Patience + GetLineTime(m_written, m_options.baud));
    m_loop.exec();
}

void SerialTalk::Fail(const std::string& problem)
{
    m_result.problem = problem;
    End();
}

void SerialTalk::End()
{
    m_readable.setEnabled(false);
    m_writable.setEnabled(false);
    m_loop.quit();
}

} // namespace Hwctl
