// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "descriptor.h"
#include "hardware/midi/device.h"
#include "os/critical_section.h"
#include "os/event.h"
#include "os/log.h"
#include "os/thread.h"

namespace Hardware::Midi
{

/// The Linux side of a Device: its ports, its parser and its receive thread.
///
/// The receive lock and the transmit lock are never held together.
class _DeviceImpl
{
public:
    explicit _DeviceImpl(Device& owner);
    ~_DeviceImpl();
    _DeviceImpl(const _DeviceImpl&) = delete;
    _DeviceImpl& operator=(const _DeviceImpl&) = delete;

    void SetInput(const std::wstring& name);
    void SetOutput(const std::wstring& name);
    void EnableReceive(bool enable);
    bool IsReceiveEnabled() const { return m_receiveEnabled.load(std::memory_order_relaxed); }
    void EnableTransmit(bool enable);
    bool IsTransmitEnabled() const { return m_transmitEnabled.load(std::memory_order_relaxed); }
    bool SendBuffer(const unsigned char* data, unsigned int length);

    /// Opens the port of the stored name without blocking. A descriptor for the caller, or -1.
    int OpenInput() const;
    int OpenOutput() const;

    /// Takes one byte of the input, in order, and emits at most one message. Receive thread only.
    void ReceivedByte(unsigned char byte);

    /// Body of the receive thread: runs while reception is enabled.
    void MidiReceiveThread();
    /// Entry of the receive thread; the argument is the _DeviceImpl.
    static unsigned int MidiReceiveEntry(void* argument);

private:
    /// What the parser is collecting.
    enum class ParserState { Idle, SystemExclusive, ShortMessage };

    /// Most bytes of a system-exclusive message before its end: 0xF0 and 127 data bytes.
    static constexpr unsigned SystemExclusiveRoom = 128;

    void ReceivedStatus(unsigned char status);
    void ReceivedData(unsigned char byte);
    void StartMessage(unsigned char status, ParserState state);
    void EndSystemExclusive();
    void StartShortMessage(unsigned char status);
    void CompleteShortMessage();
    void Store(unsigned char byte);
    void EmitShortMessage(std::uint32_t message);

    void StartReceiving();
    bool IsReceiverWanted(unsigned generation) const;
    bool TakeParser(unsigned generation);
    void ReceivePass(Descriptor& input);
    void OpenReceiver(Descriptor& input) const;

    Device& m_owner;
    const Device::Id m_id;
    std::wstring m_inputName OS_GUARDED_BY(m_receiveLock);
    std::wstring m_outputName OS_GUARDED_BY(m_transmitLock);

    // The parser's own; only the receive thread touches them. Nothing resets them when reception is
    // switched off and on. The last place takes a 0xF7 or one byte too many behind a full message.
    unsigned char m_buffer[SystemExclusiveRoom + 1] = {};
    unsigned m_position = 0;
    std::uint32_t m_count = 0;
    std::uint32_t m_expectedLength = 0;

    mutable Os::CriticalSection m_receiveLock;
    mutable Os::CriticalSection m_transmitLock;
    // Written under their locks, read without: a reader needs only to notice the change soon.
    std::atomic<bool> m_receiveEnabled{false};
    std::atomic<bool> m_transmitEnabled{false};
    ParserState m_state = ParserState::Idle;
    kel::ptr<Os::Thread> m_receiveThread OS_GUARDED_BY(m_receiveLock);
    Descriptor m_output OS_GUARDED_BY(m_transmitLock);

    // A thread serves the generation that it was started for, so that one that is still ending does
    // not take a new enable for its own.
    std::atomic<unsigned> m_receiveGeneration{0};
    Os::Event m_receiverStarted{false};
    std::atomic<bool> m_parserTaken{false}; // by the one receive thread that may parse
    Os::Log::Context& m_log;
};

} // namespace Hardware::Midi
