// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <linux/soundcard.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <unistd.h>

#include <array>
#include <boost/lexical_cast.hpp>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <map>
#include <utility>

#include "enum_registration.h"
#include "error_text.h"
#include "hardware/link_control.h"
#include "hardware/log_contexts.h"
#include "hardware/midi/msc_com_format.h"
#include "metatype_registration.h"
#include "midi/linux/midi_device_impl.h"
#include "signal_cleanup.h"
#include "source_site.h"

namespace
{

constexpr char SourceFile[] = "midi/linux/midi_device.cpp";
constexpr char FatalSite[] = HARDWARE_FATAL_SITE("midi/linux/midi_device.cpp");

/// Pause before a port that could not be opened is tried again, and the longest wait for input.
constexpr unsigned RetryMilliseconds = 250;

/// How often a receive thread looks whether the one before it has ended.
constexpr unsigned TurnMilliseconds = 10;

constexpr unsigned char SystemExclusiveStart = 0xF0;
constexpr unsigned char SystemExclusiveEnd = 0xF7;

bool IsSystemStatus(unsigned char status)
{
    return status >= 0xF0;
}

const wchar_t* const MscComFormatNames[] = {
    L"01: General Lighting", L"02: Moving Lights", L"03: Colour Changers", L"04: Strobes",
    L"05: Lasers",           L"06: Chasers",       L"MscComFormat_MAX"};
// lowest, highest, first named, last named, number of names
constexpr xtti::enum_desc MscComFormatDescriptor{1, 127, 1, 7, 7, MscComFormatNames};

using Hardware::MetatypeRegistration;
using Hardware::Midi::Device;
const MetatypeRegistration<Device::Id> IdMetaType("Hardware::Midi::Device::Id");
const MetatypeRegistration<Device::ShortMessage>
    ShortMessageMetaType("Hardware::Midi::Device::ShortMessage");
const MetatypeRegistration<Device::SysExMessage>
    SysExMessageMetaType("Hardware::Midi::Device::SysExMessage");

/// The MIDI ports that the sequencer lists, by name.
class DevMap
{
public:
    struct Entry {
        std::string path; ///< device file
        int index;        ///< number in the sequencer's list
    };
    typedef std::map<std::wstring, Entry> Ports;

    /// Asks the sequencer. Never kept, since ports come and go.
    static DevMap GetDevMap();

    const Ports& GetPorts() const { return m_ports; }
    const Entry* Find(const std::wstring& name) const;

private:
    void Add(const midi_info& info, int index);

    Ports m_ports;
};

/// A driver's name: its bytes up to a zero or the end of the field. Each byte becomes one wide
/// character with its sign, so bytes from 0x80 up become negative ones.
std::wstring Widen(const midi_info& info)
{
    const std::size_t length = strnlen(info.name, sizeof info.name);
    std::wstring wide;
    for (std::size_t i = 0; i < length; ++i)
        wide.push_back(static_cast<wchar_t>(static_cast<signed char>(info.name[i])));
    return wide;
}

DevMap DevMap::GetDevMap()
{
    Os::Log::Context& log = Hardware::MidiLogContext();
    DevMap map;
    const Hardware::Descriptor sequencer(open("/dev/sequencer", O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    if (!sequencer.IsOpen()) {
        // A trace and no error, on purpose: a desk without MIDI is a normal desk.
        HARDWARE_LOG(log, Os::Log::Trace,
                     "Error opening Midi sequencer: " << Hardware::GetErrorText(errno));
        return map;
    }
    int count = 0;
    if (ioctl(sequencer.Get(), SNDCTL_SEQ_NRMIDIS, &count) == -1) {
        HARDWARE_LOG(
            log, Os::Log::Error,
            "Error getting midi device count from sequencer: " << Hardware::GetErrorText(errno));
        return map;
    }
    for (int i = 0; i < count; ++i) {
        midi_info info{};
        info.device = i;
        if (ioctl(sequencer.Get(), SNDCTL_MIDI_INFO, &info) == -1) {
            HARDWARE_LOG(log, Os::Log::Error,
                         "Error enumerating midi device index " << i << ": "
                                                                << Hardware::GetErrorText(errno));
            continue;
        }
        map.Add(info, i);
    }
    return map;
}

void DevMap::Add(const midi_info& info, int index)
{
    const std::wstring name = Widen(info);
    std::string path = "/dev/midi";
    if (index != 0)
        path += boost::lexical_cast<std::string>(index);
    HARDWARE_LOG(Hardware::MidiLogContext(), Os::Log::Trace,
                 "Found midi device " << name << " at index " << index << ", path " << path);
    // Of two ports with one name the later wins.
    m_ports.insert_or_assign(name, Entry{std::move(path), index});
}

const DevMap::Entry* DevMap::Find(const std::wstring& name) const
{
    const auto port = m_ports.find(name);
    return port == m_ports.end() ? nullptr : &port->second;
}

/// Opens the port called @p name; @p direction is how log lines call it.
int OpenPort(const char* direction, const std::wstring& name, int flags)
{
    Os::Log::Context& log = Hardware::MidiLogContext();
    const DevMap map = DevMap::GetDevMap();
    const DevMap::Entry* const port = map.Find(name);
    if (!port) {
        HARDWARE_LOG(log, Os::Log::Trace, "Midi " << direction << ' ' << name << " not found");
        return -1;
    }
    const int descriptor = open(port->path.c_str(), flags | O_NONBLOCK | O_CLOEXEC);
    if (descriptor == -1)
        HARDWARE_LOG(log, Os::Log::Error,
                     "Error opening Midi " << direction << ' ' << name << ": "
                                           << Hardware::GetErrorText(errno));
    return descriptor;
}

/// A signal that no receive thread has logged yet; 0 for none.
std::atomic<int> g_notedSignal{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler takes no lock");

void LogNotedSignal()
{
    if (const int signal = g_notedSignal.exchange(0, std::memory_order_relaxed))
        HARDWARE_LOG(Hardware::MidiLogContext(), Os::Log::Trace, "Received signal " << signal);
}

/// For SIGUSR1, which interrupts the receive thread's wait. It may come while this very thread is
/// writing a line, so the line about it is left to a receive thread.
void HandleSignal(int signal)
{
    g_notedSignal.store(signal, std::memory_order_relaxed);
}

const Hardware::SignalCleanup g_handlerCleanup(SIGUSR1, &HandleSignal);

} // namespace

HARDWARE_REGISTER_ENUM(MscComFormat, MscComFormatDescriptor);

template <> unsigned int get_type_code(const Hardware::MscComFormat*)
{
    return 975;
}

void Midi_LinkControl() {}

namespace Hardware
{

Os::Log::Context& MidiLogContext()
{
    static Os::Log::Context context("Midi", &HardwareLogContext(), Os::Log::AllButTrace);
    return context;
}

namespace Midi
{

const unsigned char Device::noteMessageLength[16] = {0, 0, 0, 0, 0, 0, 0, 0,
                                                     3, 3, 3, 3, 2, 2, 3, 0};

// Song select (0xF3) is 1 on purpose, not the 2 of the MIDI standard: it goes out, and comes in, as
// a lone status byte.
const unsigned int Device::systemMessageLength[16] = {128, 2, 3, 1, 1, 1, 1, 1,
                                                      1,   1, 1, 1, 1, 1, 1, 1};

Device::Device() : m_impl(new _DeviceImpl(*this)) {}

Device::~Device()
{
    // While this is still a whole Device, since it reports the end of reception. Not by reset(),
    // which takes m_impl away first: a slot may ask the device.
    delete m_impl.get();
    static_cast<void>(m_impl.release());
}

std::list<std::wstring> Device::GetInputs()
{
    const DevMap map = DevMap::GetDevMap();
    std::list<std::wstring> names;
    for (const auto& [name, port] : map.GetPorts())
        names.push_back(name);
    return names;
}

std::list<std::wstring> Device::GetOutputs()
{
    return GetInputs();
}

void Device::SetInput(const std::wstring& name)
{
    m_impl->SetInput(name);
}

void Device::SetOutput(const std::wstring& name)
{
    m_impl->SetOutput(name);
}

void Device::EnableReceive(bool enable)
{
    m_impl->EnableReceive(enable);
}

bool Device::IsReceiveEnabled() const
{
    return m_impl->IsReceiveEnabled();
}

void Device::EnableTransmit(bool enable)
{
    m_impl->EnableTransmit(enable);
}

bool Device::IsTransmitEnabled() const
{
    return m_impl->IsTransmitEnabled();
}

void Device::EnableTxRunningStatus(bool enable)
{
    m_runningStatus = enable;
}

bool Device::SendShortMessage(unsigned int message)
{
    const std::array<unsigned char, 3> bytes{static_cast<unsigned char>(message),
                                             static_cast<unsigned char>(message >> 8),
                                             static_cast<unsigned char>(message >> 16)};
    return IsSystemStatus(bytes[0]) ? SendSystemMessage(bytes) : SendChannelMessage(bytes);
}

/// Remembers the status in place of a channel's, so that real-time bytes too make the next channel
/// message carry its own: intended, although the MIDI standard lets them pass.
bool Device::SendSystemMessage(const std::array<unsigned char, 3>& bytes)
{
    const unsigned length = systemMessageLength[bytes[0] & 0x0F] & 0xFF;
    const bool sent = length <= bytes.size() && SendBuffer(bytes.data(), length);
    m_lastStatus = sent ? bytes[0] : 0;
    return false;
}

/// True only for a successful send without the status byte, on purpose.
bool Device::SendChannelMessage(const std::array<unsigned char, 3>& bytes)
{
    const unsigned length = noteMessageLength[bytes[0] >> 4];
    const bool running = length >= 2 && m_runningStatus && m_lastStatus == bytes[0];
    const unsigned skipped = running ? 1 : 0;
    const bool sent = SendBuffer(bytes.data() + skipped, length - skipped);
    m_lastStatus = sent ? bytes[0] : 0;
    return running && sent;
}

bool Device::SendBuffer(const unsigned char* data, unsigned int length)
{
    return m_impl->SendBuffer(data, length);
}

_DeviceImpl::_DeviceImpl(Device& owner) : m_owner(owner), m_id{&owner, 0}, m_log(MidiLogContext())
{
}

_DeviceImpl::~_DeviceImpl()
{
    EnableReceive(false);
    EnableTransmit(false);
}

void _DeviceImpl::SetInput(const std::wstring& name)
{
    HARDWARE_LOG(m_log, Os::Log::Trace, "Setting Midi input to " << name);
    const Os::Key hold(m_receiveLock);
    m_inputName = name;
}

void _DeviceImpl::SetOutput(const std::wstring& name)
{
    HARDWARE_LOG(m_log, Os::Log::Trace, "Setting Midi output to " << name);
    const Os::Key hold(m_transmitLock);
    m_outputName = name;
}

void _DeviceImpl::EnableReceive(bool enable)
{
    HARDWARE_LOG(m_log, Os::Log::Trace, "Setting receive enable to " << enable);
    kel::ptr<Os::Thread> ending; // waits for its thread after the lock is released
    const Os::Key hold(m_receiveLock);
    if (enable) {
        if (!IsReceiveEnabled())
            StartReceiving();
        return;
    }
    ending = std::move(m_receiveThread);
    m_receiveEnabled.store(false, std::memory_order_relaxed);
    // Reported also when reception was off; kept so.
    Q_EMIT m_owner.txMidiDeviceRemoved(m_id);
}

/// The caller holds the receive lock.
void _DeviceImpl::StartReceiving() OS_REQUIRES(m_receiveLock)
{
    m_receiveEnabled.store(true, std::memory_order_relaxed);
    m_receiveGeneration.fetch_add(1, std::memory_order_relaxed);
    m_receiverStarted.Reset();
    m_receiveThread.reset(new Os::Thread(&_DeviceImpl::MidiReceiveEntry, this, "Midi Receiver", 0,
                                         Os::Thread::DefaultSlice, Os::Thread::DefaultStack));
    m_receiverStarted.Wait();
    Q_EMIT m_owner.txMidiDeviceAdded(m_id);
}

void _DeviceImpl::EnableTransmit(bool enable)
{
    HARDWARE_LOG(m_log, Os::Log::Trace, "Setting transmit enable to " << enable);
    const Os::Key hold(m_transmitLock);
    m_transmitEnabled.store(enable, std::memory_order_relaxed);
    if (!enable)
        m_output.Reset();
}

bool _DeviceImpl::SendBuffer(const unsigned char* data, unsigned int length)
{
    const Os::Key hold(m_transmitLock);
    if (!IsTransmitEnabled())
        return false;
    if (!m_output.IsOpen())
        m_output.Reset(OpenOutput());
    if (!m_output.IsOpen())
        return false;

    const ssize_t written = write(m_output.Get(), data, length);
    if (written == static_cast<ssize_t>(length))
        return true;
    const int error = errno;
    m_output.Reset();
    if (written == -1)
        HARDWARE_LOG(m_log, Os::Log::Error,
                     "Error writing to Midi output " << m_outputName << ": "
                                                     << GetErrorText(error));
    else
        HARDWARE_LOG(m_log, Os::Log::Error, "Partial write to Midi output " << m_outputName);
    return false;
}

int _DeviceImpl::OpenInput() const
{
    const Os::Key hold(m_receiveLock);
    return OpenPort("input", m_inputName, O_RDONLY);
}

int _DeviceImpl::OpenOutput() const
{
    const Os::Key hold(m_transmitLock);
    return OpenPort("output", m_outputName, O_WRONLY);
}

void _DeviceImpl::ReceivedByte(unsigned char byte)
{
    // The byte goes into both lines as a raw character, not as a number, on purpose.
    if (byte >= 0x80) {
        HARDWARE_LOG(m_log, Os::Log::Trace, "Received midi status byte: " << byte);
        ReceivedStatus(byte);
    } else {
        HARDWARE_LOG(m_log, Os::Log::Trace, "Received midi data byte: " << byte);
        ReceivedData(byte);
    }
}

void _DeviceImpl::ReceivedStatus(unsigned char status)
{
    if (status == SystemExclusiveStart) {
        HARDWARE_LOG(m_log, Os::Log::Trace, "Start of sysEx message");
        StartMessage(status, ParserState::SystemExclusive);
    } else if (status == SystemExclusiveEnd) {
        HARDWARE_LOG(m_log, Os::Log::Trace, "End of sysEx message");
        EndSystemExclusive();
    } else if (IsSystemStatus(status)) {
        m_expectedLength = Device::systemMessageLength[status & 0x0F];
        HARDWARE_LOG(m_log, Os::Log::Trace,
                     "Midi System message - expected size: " << m_expectedLength);
        StartShortMessage(status);
    } else {
        m_expectedLength = Device::noteMessageLength[status >> 4];
        HARDWARE_LOG(m_log, Os::Log::Trace, "Midi Note - expected size: " << m_expectedLength);
        StartShortMessage(status);
    }
}

void _DeviceImpl::ReceivedData(unsigned char byte)
{
    switch (m_state) {
    case ParserState::Idle:
        return;
    case ParserState::ShortMessage:
        Store(byte);
        if (m_count >= m_expectedLength)
            CompleteShortMessage();
        return;
    case ParserState::SystemExclusive:
        Store(byte);
        if (m_count > SystemExclusiveRoom)
            m_state = ParserState::Idle; // too long: abandoned without a signal
        return;
    }
}

void _DeviceImpl::StartMessage(unsigned char status, ParserState state)
{
    m_state = state;
    m_buffer[0] = status;
    m_position = 1;
    m_count = 1;
}

/// Also without a message to end: a lone 0xF7 ends running status and drops what was collected.
void _DeviceImpl::EndSystemExclusive()
{
    const bool complete = m_state == ParserState::SystemExclusive;
    m_state = ParserState::Idle;
    if (!complete)
        return;
    Store(SystemExclusiveEnd);
    Q_EMIT m_owner.txSysExMessage({&m_id, m_buffer, m_count});
}

/// A status byte that is a whole message ends whatever was being collected and running status with
/// it, real-time bytes included, on purpose unlike the MIDI standard.
void _DeviceImpl::StartShortMessage(unsigned char status)
{
    if (m_expectedLength >= 2) {
        StartMessage(status, ParserState::ShortMessage);
        return;
    }
    m_state = ParserState::Idle;
    m_count = 0;
    EmitShortMessage(status);
}

void _DeviceImpl::CompleteShortMessage()
{
    std::uint32_t message = m_buffer[0] | static_cast<std::uint32_t>(m_buffer[1]) << 8;
    if (m_count > 2)
        message |= static_cast<std::uint32_t>(m_buffer[2]) << 16;
    // State and status stay: running status.
    m_position = 1;
    m_count = 1;
    EmitShortMessage(message);
}

void _DeviceImpl::Store(unsigned char byte)
{
    m_buffer[m_position] = byte;
    ++m_position;
    ++m_count;
}

void _DeviceImpl::EmitShortMessage(std::uint32_t message)
{
    Q_EMIT m_owner.txShortMessage({&m_id, message});
}

unsigned int _DeviceImpl::MidiReceiveEntry(void* argument)
{
    auto* const pDev = static_cast<_DeviceImpl*>(argument);
    OS_TRAP(!pDev, FatalSite);
    pDev->MidiReceiveThread();
    return 0;
}

void _DeviceImpl::MidiReceiveThread()
{
    const unsigned generation = m_receiveGeneration.load(std::memory_order_relaxed);
    HARDWARE_LOG(m_log, Os::Log::Trace, "Starting midi receive thread");
    std::signal(SIGUSR1, &HandleSignal);
    m_receiverStarted.Set();

    if (TakeParser(generation)) {
        Descriptor input;
        while (IsReceiverWanted(generation)) {
            ReceivePass(input);
            LogNotedSignal(); // one that came outside the wait
        }
        input.Reset();
        m_parserTaken.store(false, std::memory_order_release);
    }
    HARDWARE_LOG(m_log, Os::Log::Trace, "Finished midi receive thread");
}

/// Waits until a thread that is still ending has left the parser. False when this one is no longer
/// wanted either, since another may have come first.
bool _DeviceImpl::TakeParser(unsigned generation)
{
    while (m_parserTaken.exchange(true, std::memory_order_acquire)) {
        if (!IsReceiverWanted(generation))
            return false;
        Os::Thread::Sleep(TurnMilliseconds);
    }
    return true;
}

bool _DeviceImpl::IsReceiverWanted(unsigned generation) const
{
    return IsReceiveEnabled() && m_receiveGeneration.load(std::memory_order_relaxed) == generation;
}

/// Opens the input, waits for a byte or reads one; a failed input is closed for the next pass.
void _DeviceImpl::ReceivePass(Descriptor& input)
{
    if (!input.IsOpen()) {
        OpenReceiver(input);
        return;
    }

    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(input.Get(), &readable);
    timeval limit{0, RetryMilliseconds * 1000L};
    const int ready = select(input.Get() + 1, &readable, nullptr, nullptr, &limit);
    if (ready == -1) {
        // A signal ends the wait too, and counts as a failure.
        const int error = errno;
        LogNotedSignal();
        HARDWARE_LOG(m_log, Os::Log::Error,
                     "Error selecting on Midi input: " << GetErrorText(error));
        input.Reset();
        return;
    }
    if (ready == 0)
        return;

    unsigned char byte = 0;
    const ssize_t length = read(input.Get(), &byte, 1);
    if (length == -1) {
        HARDWARE_LOG(m_log, Os::Log::Error, "Error reading Midi input: " << GetErrorText(errno));
        input.Reset();
    } else if (length == 1) {
        ReceivedByte(byte);
    }
}

void _DeviceImpl::OpenReceiver(Descriptor& input) const
{
    input.Reset(OpenInput());
    if (input.Get() >= FD_SETSIZE) {
        // select() has no place for so large a number, and a second try at once would get the same.
        const Os::Key hold(m_receiveLock);
        HARDWARE_LOG(m_log, Os::Log::Error,
                     "Error opening Midi input " << m_inputName << ": " << GetErrorText(EMFILE));
        input.Reset();
    }
    if (!input.IsOpen())
        Os::Thread::Sleep(RetryMilliseconds);
}

} // namespace Midi
} // namespace Hardware
