// SPDX-License-Identifier: MIT
#include "desk/serial_port.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <stdexcept>

#include "kernel/faulty_device.h"
#include "kernel/line_settings.h"
#include "kernel/terminal.h"

namespace Desk
{

using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace
{

static_assert(SerialPort::BufferSize == DeskLineBuffer);

/// Of the clock that a board's own port has, 1.8432 MHz by 16. An adapter's at USB is faster.
constexpr long FastestUartSpeed = 115200;

/// Whether it is a board's own port, by its name.
bool IsUart(const std::string& path)
{
    return path.starts_with("/dev/ttyS");
}

void Raise(int event)
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(event, &one, sizeof one);
}

void Clear(int event)
{
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t taken = read(event, &count, sizeof count);
}

} // namespace

struct SerialPort::Private {
    Private(KernelTestbed& itsTestbed, std::string itsPath)
        : testbed(itsTestbed), path(std::move(itsPath)), device(itsTestbed),
          leaveEvent(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
          wakeEvent(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
          arrivedEvent(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC))
    {
        if (leaveEvent == -1 || wakeEvent == -1 || arrivedEvent == -1)
            throw std::runtime_error("no event for a virtual serial port");
    }
    ~Private()
    {
        close(leaveEvent);
        close(wakeEvent);
        close(arrivedEvent);
    }
    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;

    KernelTestbed& testbed;
    const std::string path;
    FaultyDevice device;
    Terminal terminal;
    const int leaveEvent;   // while leaving
    const int wakeEvent;    // while woken
    const int arrivedEvent; // while bytes have arrived beside the terminal

    /// Held while bytes are taken from the terminal; taken after the other.
    std::mutex reading;
    std::vector<std::uint8_t> arrived; // ahead of what the terminal holds

    mutable std::mutex mutex;
    std::condition_variable changed;
    bool plugged = false; // guarded by mutex, as all below
    bool leaving = false; // the plug is being pulled: nobody begins to use the terminal
    bool woken = false;   // the next Receive() returns
    int users = 0;        // of the terminal, without the lock

    bool Wait(short events, milliseconds limit, int event = -1) const;
    bool Enter(milliseconds limit);
    void Leave();
    void ClearWake();
    std::vector<std::uint8_t> Take(std::size_t most);
    void TakeAll(std::size_t most);
    void Resume();
    void SetLine(const LineSettings& settings);
};

/// Whether the far end is ready within the limit, with nobody leaving, nor @p event raised.
bool SerialPort::Private::Wait(short events, milliseconds limit, int event) const
{
    std::array<pollfd, 4> waiting{{{terminal.GetFarEnd(), events, 0},
                                   {leaveEvent, POLLIN, 0},
                                   {event, POLLIN, 0},
                                   {events == POLLIN ? arrivedEvent : -1, POLLIN, 0}}};
    poll(waiting.data(), waiting.size(), static_cast<int>(limit.count()));
    return (waiting[0].revents & events) != 0 || waiting[3].revents != 0;
}

/// Takes bytes that came over the line, without waiting. While the terminal is in use.
std::vector<std::uint8_t> SerialPort::Private::Take(std::size_t most)
{
    const std::lock_guard hold(reading);
    TakeAll(most);
    const auto end = arrived.begin() + static_cast<std::ptrdiff_t>(std::min(most, arrived.size()));
    std::vector<std::uint8_t> bytes(arrived.begin(), end);
    arrived.erase(arrived.begin(), end);
    if (arrived.empty())
        Clear(arrivedEvent);
    return bytes;
}

/// Takes what the terminal holds, until there are so many. The caller holds the lock for reading.
void SerialPort::Private::TakeAll(std::size_t most)
{
    std::array<std::uint8_t, 4096> piece{};
    while (arrived.size() < most) {
        const std::size_t wanted = std::min(most - arrived.size(), piece.size());
        const ssize_t length = read(terminal.GetFarEnd(), piece.data(), wanted);
        if (length <= 0)
            return;
        arrived.insert(arrived.end(), piece.begin(), piece.begin() + length);
    }
}

/// While the terminal is in use.
void SerialPort::Private::Resume()
{
    const std::lock_guard hold(reading);
    TakeAll(std::numeric_limits<std::size_t>::max()); // written before the line stalled
    std::array<char, DeskLineBuffer> buffer{};
    const long count =
        testbed.GetPrivate().resumeLine(device.GetHandle(), terminal.GetNearEnd(), buffer.data());
    arrived.insert(arrived.end(), buffer.begin(), buffer.begin() + count);
    if (!arrived.empty())
        Raise(arrivedEvent);
}

/// Begins a use of the terminal, which keeps it from being closed; waits for the plug.
bool SerialPort::Private::Enter(milliseconds limit)
{
    std::unique_lock hold(mutex);
    changed.wait_for(hold, limit, [this] { return (plugged && !leaving) || woken; });
    if (!plugged || leaving)
        return false;
    ++users;
    return true;
}

void SerialPort::Private::Leave()
{
    const std::lock_guard hold(mutex);
    --users;
    changed.notify_all();
}

void SerialPort::Private::ClearWake()
{
    const std::lock_guard hold(mutex);
    Clear(wakeEvent);
    woken = false;
}

/// While the terminal is open.
void SerialPort::Private::SetLine(const LineSettings& settings)
{
    termios all{};
    tcgetattr(terminal.GetNearEnd(), &all);
    WriteLineSettings(settings, all);
    tcsetattr(terminal.GetNearEnd(), TCSANOW, &all);
    testbed.GetPrivate().setLine(device.GetHandle(), &all);
}

namespace
{

/// A use of the terminal for as long as it lives, where one could begin within the limit.
template <class Port> class Use
{
public:
    explicit Use(Port& port, milliseconds limit = milliseconds(0))
        : m_port(port), m_begun(port.Enter(limit))
    {
    }
    ~Use()
    {
        if (m_begun)
            m_port.Leave();
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

    explicit operator bool() const { return m_begun; }

private:
    Port& m_port;
    const bool m_begun;
};

} // namespace

SerialPort::SerialPort(KernelTestbed& testbed, const std::string& path)
    : m_private(new Private(testbed, path))
{
    Plug();
}

SerialPort::~SerialPort()
{
    Unplug();
}

const std::string& SerialPort::GetPath() const
{
    return m_private->path;
}

bool SerialPort::IsPlugged() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->plugged && !m_private->leaving;
}

LineSettings SerialPort::GetSettings() const
{
    termios settings{};
    m_private->testbed.GetPrivate().getLine(m_private->device.GetHandle(), &settings);
    return ReadLineSettings(settings);
}

void SerialPort::SetSettings(const LineSettings& settings)
{
    if (IsUart(m_private->path) && settings.baud > FastestUartSpeed)
        throw std::invalid_argument(m_private->path + " has at most " +
                                    std::to_string(FastestUartSpeed) + " baud, not " +
                                    std::to_string(settings.baud));
    const Use use(*m_private);
    if (!use)
        return;
    m_private->SetLine(settings);
}

bool SerialPort::Send(std::span<const std::uint8_t> bytes)
{
    const Use use(*m_private);
    if (!use)
        return false;
    while (!bytes.empty()) {
        const ssize_t sent = write(m_private->terminal.GetFarEnd(), bytes.data(), bytes.size());
        if (sent > 0)
            bytes = bytes.subspan(static_cast<std::size_t>(sent));
        else if (errno != EAGAIN || !m_private->Wait(POLLOUT, Patience))
            break;
    }
    return bytes.empty();
}

std::vector<std::uint8_t> SerialPort::Receive(unsigned limit)
{
    std::vector<std::uint8_t> bytes;
    const Use use(*m_private, milliseconds(limit));
    if (use && m_private->Wait(POLLIN, milliseconds(limit), m_private->wakeEvent))
        bytes = m_private->Take(std::numeric_limits<std::size_t>::max());
    // What woke this one is done with; a wake that comes with bytes waits for the next.
    if (bytes.empty())
        m_private->ClearWake();
    return bytes;
}

std::vector<std::uint8_t> SerialPort::ReceiveCount(std::size_t count)
{
    const auto end = steady_clock::now() + Patience;
    std::vector<std::uint8_t> bytes;
    while (bytes.size() < count && steady_clock::now() < end) {
        const Use use(*m_private, milliseconds(100));
        if (!use)
            continue;
        if (!m_private->Wait(POLLIN, milliseconds(100)))
            continue;
        const auto piece = m_private->Take(count - bytes.size());
        bytes.insert(bytes.end(), piece.begin(), piece.end());
    }
    return bytes;
}

void SerialPort::Wake()
{
    const std::lock_guard hold(m_private->mutex);
    m_private->woken = true;
    Raise(m_private->wakeEvent);
    m_private->changed.notify_all();
}

void SerialPort::Unplug()
{
    std::unique_lock hold(m_private->mutex);
    if (!m_private->plugged)
        return;
    m_private->leaving = true;
    Raise(m_private->leaveEvent);
    m_private->changed.wait(hold, [this] { return m_private->users == 0; });
    m_private->device.Remove();
    m_private->terminal.Close();
    m_private->plugged = false;
    m_private->leaving = false;
}

void SerialPort::Plug()
{
    const std::lock_guard hold(m_private->mutex);
    if (m_private->plugged)
        return;
    Clear(m_private->leaveEvent);
    {
        const std::lock_guard holdReading(m_private->reading);
        Clear(m_private->arrivedEvent);
        m_private->arrived.clear();
    }
    m_private->device.Name(m_private->path);
    if (IsUart(m_private->path))
        m_private->testbed.GetPrivate().limitLine(m_private->device.GetHandle(), FastestUartSpeed);
    m_private->terminal.Open(m_private->testbed, m_private->path, [this] {
        // Before anybody can open it by its name.
        m_private->SetLine(LineSettings());
    });
    m_private->plugged = true;
    m_private->changed.notify_all();
}

void SerialPort::RefuseOpen(int error)
{
    m_private->device.Change([error](DeskDeviceFaults& faults) { faults.openError = error; });
}

void SerialPort::RefuseReads(int error)
{
    m_private->device.Change([error](DeskDeviceFaults& faults) { faults.readError = error; });
}

void SerialPort::Stall(std::size_t room)
{
    const Use use(*m_private);
    if (!use)
        return;
    const std::size_t taken = std::min(room, BufferSize);
    m_private->testbed.GetPrivate().stallLine(
        m_private->device.GetHandle(), m_private->terminal.GetNearEnd(), static_cast<long>(taken));
}

void SerialPort::Resume()
{
    const Use use(*m_private);
    if (use)
        m_private->Resume();
}

void SerialPort::SetDelay(unsigned microseconds)
{
    m_private->device.Change([microseconds](DeskDeviceFaults& faults) {
        faults.delay = static_cast<long>(microseconds);
    });
}

long SerialPort::GetDelayed() const
{
    return m_private->device.GetUse().delayed;
}

int SerialPort::CountOpen() const
{
    return m_private->device.GetUse().openNow;
}

int SerialPort::CountOpened() const
{
    return m_private->device.GetUse().openedEver;
}

int SerialPort::GetLastOpenFlags() const
{
    return m_private->device.GetUse().lastFlags;
}

} // namespace Desk
