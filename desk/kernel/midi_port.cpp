// SPDX-License-Identifier: MIT
#include "desk/midi_port.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "kernel/testbed_private.h"

namespace Desk
{

namespace
{

/// Longest wait for the other side of a port.
constexpr std::chrono::seconds Patience(20);

void CloseEnd(int& end)
{
    if (end != -1)
        close(std::exchange(end, -1));
}

bool WaitFor(int end, short events, std::chrono::milliseconds limit)
{
    pollfd waiting{end, events, 0};
    return poll(&waiting, 1, static_cast<int>(limit.count())) == 1;
}

} // namespace

struct MidiPort::Private {
    Private(KernelTestbed& itsTestbed, Sequencer& itsSequencer, std::string itsName)
        : testbed(itsTestbed), sequencer(itsSequencer), name(std::move(itsName))
    {
    }

    KernelTestbed& testbed;
    Sequencer& sequencer;
    const std::string name;
    int index = -1;
    std::string path;
    int device = -1;
    DeskDeviceFaults faults{0, 0, 0, -1, 0};
    int farEnd = -1;
    int nearEnd = -1; // kept open, since a terminal without any near end reports a hang-up

    void MakeDevice(int itsIndex);
    void OpenTerminal();
    void ApplyFaults() { testbed.GetPrivate().setFaults(device, &faults); }
};

void MidiPort::Private::MakeDevice(int itsIndex)
{
    path = "/dev/midi";
    if (itsIndex != 0)
        path += std::to_string(itsIndex);
    faults = {0, 0, 0, -1, 0};
    if (device != -1)
        testbed.GetPrivate().releaseDevice(device);
    device = testbed.GetPrivate().addDevice(path.c_str());
    if (device == -1)
        throw std::runtime_error("too many virtual devices");
    OpenTerminal();
}

/// A raw pseudo-terminal, whose name in the test bed is the port's device file.
void MidiPort::Private::OpenTerminal()
{
    farEnd = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    std::array<char, 64> terminal{};
    if (farEnd == -1 || grantpt(farEnd) != 0 || unlockpt(farEnd) != 0 ||
        ptsname_r(farEnd, terminal.data(), terminal.size()) != 0)
        throw std::runtime_error("no pseudo-terminal for a virtual MIDI port");
    termios settings{};
    tcgetattr(farEnd, &settings);
    cfmakeraw(&settings);
    tcsetattr(farEnd, TCSANOW, &settings);
    nearEnd = ioctl(farEnd, TIOCGPTPEER, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (nearEnd == -1)
        throw std::runtime_error("no near end for a virtual MIDI port");
    std::filesystem::create_symlink(terminal.data(), testbed.GetPathOf(path));
}

MidiPort::MidiPort(KernelTestbed& testbed, Sequencer& sequencer, const std::string& name)
    : m_private(new Private(testbed, sequencer, name))
{
    Plug();
}

MidiPort::~MidiPort()
{
    Unplug();
    m_private->testbed.GetPrivate().releaseDevice(m_private->device);
}

const std::string& MidiPort::GetName() const
{
    return m_private->name;
}

int MidiPort::GetIndex() const
{
    return m_private->index;
}

const std::string& MidiPort::GetPath() const
{
    return m_private->path;
}

bool MidiPort::IsPlugged() const
{
    return m_private->farEnd != -1;
}

bool MidiPort::Send(std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        const ssize_t sent = write(m_private->farEnd, bytes.data(), bytes.size());
        if (sent > 0)
            bytes = bytes.subspan(static_cast<std::size_t>(sent));
        else if (errno != EAGAIN || !WaitFor(m_private->farEnd, POLLOUT, Patience))
            return false;
    }
    return true;
}

std::vector<std::uint8_t> MidiPort::Receive(unsigned milliseconds)
{
    std::vector<std::uint8_t> bytes;
    if (!WaitFor(m_private->farEnd, POLLIN, std::chrono::milliseconds(milliseconds)))
        return bytes;
    std::array<std::uint8_t, 4096> piece{};
    for (ssize_t length = 0; (length = read(m_private->farEnd, piece.data(), piece.size())) > 0;)
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + length);
    return bytes;
}

std::vector<std::uint8_t> MidiPort::ReceiveCount(std::size_t count)
{
    const auto end = std::chrono::steady_clock::now() + Patience;
    std::vector<std::uint8_t> bytes;
    while (bytes.size() < count && std::chrono::steady_clock::now() < end) {
        std::uint8_t byte = 0;
        if (WaitFor(m_private->farEnd, POLLIN, std::chrono::milliseconds(100)) &&
            read(m_private->farEnd, &byte, 1) == 1)
            bytes.push_back(byte);
    }
    return bytes;
}

void MidiPort::Unplug()
{
    if (!IsPlugged())
        return;
    m_private->sequencer.RemovePort(m_private->index);
    std::filesystem::remove(m_private->testbed.GetPathOf(m_private->path));
    // The faults come first, so that whoever wakes up finds them.
    m_private->faults = {ENODEV, ENODEV, ENODEV, -1, 0};
    m_private->ApplyFaults();
    m_private->testbed.GetPrivate().removeDevice(m_private->device);
    CloseEnd(m_private->farEnd);
    CloseEnd(m_private->nearEnd);
}

void MidiPort::Plug()
{
    if (IsPlugged())
        return;
    // The file comes before the entry in the list, so that whoever finds one finds the other.
    m_private->index = m_private->sequencer.AddPort(
        m_private->name, [this](int index) { m_private->MakeDevice(index); });
}

void MidiPort::SetBusy(bool busy)
{
    m_private->faults.openError = busy ? EBUSY : 0;
    m_private->ApplyFaults();
}

void MidiPort::Fill(std::size_t bytes)
{
    m_private->faults.writeRoom = static_cast<long>(bytes);
    m_private->ApplyFaults();
}

void MidiPort::Drain()
{
    m_private->faults.writeRoom = -1;
    m_private->ApplyFaults();
}

void MidiPort::SetAtEnd(bool atEnd)
{
    m_private->faults.readEnds = atEnd ? 1 : 0;
    m_private->ApplyFaults();
}

long MidiPort::GetLastWait() const
{
    return m_private->testbed.GetPrivate().GetUse(m_private->device).lastWait;
}

void MidiPort::KillServer()
{
    m_private->faults = {ENOTCONN, ENOTCONN, ENOTCONN, -1, 0};
    m_private->ApplyFaults();
    // Hangs up, which is what makes the port readable for whoever waits.
    const int farEnd = posix_openpt(O_RDWR | O_NOCTTY);
    dup2(farEnd, m_private->farEnd);
    close(farEnd);
}

int MidiPort::CountOpen() const
{
    return m_private->testbed.GetPrivate().GetUse(m_private->device).openNow;
}

int MidiPort::CountOpened() const
{
    return m_private->testbed.GetPrivate().GetUse(m_private->device).openedEver;
}

int MidiPort::GetLastOpenFlags() const
{
    return m_private->testbed.GetPrivate().GetUse(m_private->device).lastFlags;
}

} // namespace Desk
