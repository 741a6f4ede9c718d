// SPDX-License-Identifier: MIT
#include "desk/midi_port.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <utility>

#include "kernel/faulty_device.h"
#include "kernel/terminal.h"

namespace Desk
{

namespace
{

bool WaitFor(int end, short events, std::chrono::milliseconds limit)
{
    pollfd waiting{end, events, 0};
    return poll(&waiting, 1, static_cast<int>(limit.count())) == 1;
}

} // namespace

struct MidiPort::Private {
    Private(KernelTestbed& itsTestbed, Sequencer& itsSequencer, std::string itsName)
        : testbed(itsTestbed), sequencer(itsSequencer), name(std::move(itsName)), device(itsTestbed)
    {
    }

    KernelTestbed& testbed;
    Sequencer& sequencer;
    const std::string name;
    int index = -1;
    std::string path;
    FaultyDevice device;
    Terminal terminal;

    void MakeDevice(int itsIndex);
    void FailWith(int error);
};

void MidiPort::Private::MakeDevice(int itsIndex)
{
    path = "/dev/midi";
    if (itsIndex != 0)
        path += std::to_string(itsIndex);
    device.Name(path);
    terminal.Open(testbed, path);
}

void MidiPort::Private::FailWith(int error)
{
    device.Change([error](DeskDeviceFaults& faults) {
        faults = DeskNoFaults;
        faults.openError = faults.readError = faults.writeError = error;
    });
}

MidiPort::MidiPort(KernelTestbed& testbed, Sequencer& sequencer, const std::string& name)
    : m_private(new Private(testbed, sequencer, name))
{
    Plug();
}

MidiPort::~MidiPort()
{
    Unplug();
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
    return m_private->terminal.IsOpen();
}

bool MidiPort::Send(std::span<const std::uint8_t> bytes, std::chrono::milliseconds patience)
{
    while (!bytes.empty()) {
        const ssize_t sent = write(m_private->terminal.GetFarEnd(), bytes.data(), bytes.size());
        if (sent > 0)
            bytes = bytes.subspan(static_cast<std::size_t>(sent));
        else if (errno != EAGAIN || !WaitFor(m_private->terminal.GetFarEnd(), POLLOUT, patience))
            return false;
    }
    return true;
}

std::vector<std::uint8_t> MidiPort::Receive(unsigned milliseconds)
{
    std::vector<std::uint8_t> bytes;
    if (!WaitFor(m_private->terminal.GetFarEnd(), POLLIN, std::chrono::milliseconds(milliseconds)))
        return bytes;
    std::array<std::uint8_t, 4096> piece{};
    for (ssize_t length = 0;
         (length = read(m_private->terminal.GetFarEnd(), piece.data(), piece.size())) > 0;)
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + length);
    return bytes;
}

std::vector<std::uint8_t> MidiPort::ReceiveCount(std::size_t count)
{
    const auto end = std::chrono::steady_clock::now() + Patience;
    std::vector<std::uint8_t> bytes;
    while (bytes.size() < count && std::chrono::steady_clock::now() < end) {
        std::uint8_t byte = 0;
        if (WaitFor(m_private->terminal.GetFarEnd(), POLLIN, std::chrono::milliseconds(100)) &&
            read(m_private->terminal.GetFarEnd(), &byte, 1) == 1)
            bytes.push_back(byte);
    }
    return bytes;
}

void MidiPort::Unplug()
{
    if (!IsPlugged())
        return;
    m_private->sequencer.RemovePort(m_private->index);
    // The faults come first, so that whoever wakes up finds them.
    m_private->FailWith(ENODEV);
    m_private->device.Remove();
    m_private->terminal.Close();
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
    m_private->device.Change(
        [busy](DeskDeviceFaults& faults) { faults.openError = busy ? EBUSY : 0; });
}

void MidiPort::Fill(std::size_t bytes)
{
    m_private->device.Change(
        [bytes](DeskDeviceFaults& faults) { faults.writeRoom = static_cast<long>(bytes); });
}

void MidiPort::Drain()
{
    m_private->device.Change([](DeskDeviceFaults& faults) { faults.writeRoom = -1; });
}

void MidiPort::SetAtEnd(bool atEnd)
{
    m_private->device.Change(
        [atEnd](DeskDeviceFaults& faults) { faults.readEnds = atEnd ? 1 : 0; });
}

long MidiPort::GetLastWait() const
{
    return m_private->device.GetUse().lastWait;
}

void MidiPort::KillServer()
{
    m_private->FailWith(ENOTCONN);
    // This is what makes the port readable for whoever waits.
    m_private->terminal.HangUp();
}

int MidiPort::CountOpen() const
{
    return m_private->device.GetUse().openNow;
}

int MidiPort::CountOpened() const
{
    return m_private->device.GetUse().openedEver;
}

int MidiPort::GetLastOpenFlags() const
{
    return m_private->device.GetUse().lastFlags;
}

} // namespace Desk
