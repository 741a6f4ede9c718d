// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gmock/gmock.h>

#include <memory>
#include <thread>
#include <vector>

#include "hardware/midi/device.h"
#include "os/event.h"
#include "standalone/log_masks.h"
#include "support/log_capture.h"
#include "support/midi_log_levels.h"
#include "support/midi_recorder.h"
#include "support/process_facts.h"
#include "support/virtual_midi.h"
#include "support/wait.h"

namespace
{

using Hardware::Midi::Device;
using testing::ElementsAre;
using testing::IsEmpty;
using Event = TestSupport::MidiRecorder::Event;

typedef std::vector<std::uint8_t> Bytes;

/// A device that listens to the first of two virtual ports once it is told to.
class MidiReceive : public TestSupport::VirtualMidi
{
protected:
    MidiReceive() { m_device.SetInput(L"Keys"); }

    ~MidiReceive() override
    {
        m_device.EnableReceive(false);
        TestSupport::ExpectMidiLogLevels(m_log);
    }

    /// Switches reception on and waits until the port is open.
    bool StartOn(const Desk::MidiPort& port)
    {
        m_device.EnableReceive(true);
        return TestSupport::WaitUntil([&] { return port.CountOpen() == 1; });
    }

    Desk::MidiPort m_keys{m_testbed, m_sequencer, "Keys"};
    Desk::MidiPort m_pads{m_testbed, m_sequencer, "Pads"};
    TestSupport::LogCapture m_log{"Hardware/Midi", 31};
    Device m_device;
    TestSupport::MidiRecorder m_recorder{m_device};
};

TEST_F(MidiReceive, OpensThePortForReadingAndNotBlocking)
{
    ASSERT_TRUE(StartOn(m_keys));
    EXPECT_EQ(m_keys.GetLastOpenFlags(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(m_pads.CountOpened(), 0);
}

TEST_F(MidiReceive, TurnsBytesIntoMessages)
{
    ASSERT_TRUE(StartOn(m_keys));
    m_keys.Send(Bytes{0x90, 0x3C, 0x64, 0x3E, 0x00, 0xF0, 0x01, 0x02, 0xF7, 0xF8});
    ASSERT_TRUE(m_recorder.WaitFor(Event::Short, 3));
    EXPECT_THAT(m_recorder.GetMessages(), ElementsAre(0x643C90, 0x003E90, 0xF8));
    const auto events = m_recorder.GetEvents();
    ASSERT_EQ(events.size(), 5U);
    EXPECT_EQ(events[3].kind, Event::SysEx);
    EXPECT_EQ(events[3].data, (std::vector<unsigned char>{0xF0, 0x01, 0x02, 0xF7}));
    for (const Event& event : events) {
        EXPECT_EQ(event.device, &m_device);
        EXPECT_EQ(event.number, 0U);
    }
}

TEST_F(MidiReceive, LosesNothingOfALongStream)
{
    constexpr int Count = 20000;
    ASSERT_TRUE(StartOn(m_keys));
    Bytes stream{0xB0};
    for (int i = 0; i < Count; ++i) {
        stream.push_back(static_cast<std::uint8_t>(i & 0x7F));
        stream.push_back(static_cast<std::uint8_t>(i >> 7 & 0x7F));
    }
    Standalone::SetLogMask("Hardware/Midi", 30);
    ASSERT_TRUE(m_keys.Send(stream));
    ASSERT_TRUE(m_recorder.WaitFor(Event::Short, Count));
    const auto messages = m_recorder.GetMessages();
    ASSERT_EQ(messages.size(), static_cast<std::size_t>(Count));
    for (unsigned i = 0; i < Count; ++i)
        ASSERT_EQ(messages[i], 0xB0U | (i & 0x7F) << 8 | (i >> 7 & 0x7F) << 16);
}

TEST_F(MidiReceive, ReportsMessagesOnItsThreadAndSwitchingOnTheCallers)
{
    ASSERT_TRUE(StartOn(m_keys));
    m_keys.Send(Bytes{0xF8});
    ASSERT_TRUE(m_recorder.WaitFor(Event::Short, 1));
    m_device.EnableReceive(false);
    const auto events = m_recorder.GetEvents();
    ASSERT_EQ(events.size(), 3U);
    EXPECT_EQ(events[0].kind, Event::Added);
    EXPECT_EQ(events[0].thread, std::this_thread::get_id());
    EXPECT_NE(events[1].thread, std::this_thread::get_id());
    EXPECT_EQ(events[2].kind, Event::Removed);
    EXPECT_EQ(events[2].thread, std::this_thread::get_id());
}

TEST_F(MidiReceive, RunsItsThreadAsSoonAsItIsOn)
{
    m_device.EnableReceive(true);
    EXPECT_TRUE(m_device.IsReceiveEnabled());
    EXPECT_EQ(TestSupport::FindThreads("Midi Receiver").size(), 1U);
    m_device.EnableReceive(false);
    EXPECT_FALSE(m_device.IsReceiveEnabled());
    EXPECT_THAT(TestSupport::FindThreads("Midi Receiver"), IsEmpty());
    EXPECT_EQ(m_keys.CountOpen(), 0);
}

TEST_F(MidiReceive, SwitchedOnTwiceIsOneThreadAndOneReport)
{
    m_device.EnableReceive(true);
    m_device.EnableReceive(true);
    EXPECT_EQ(TestSupport::FindThreads("Midi Receiver").size(), 1U);
    EXPECT_EQ(m_recorder.Count(Event::Added), 1U);
    EXPECT_EQ(m_log.Count("Setting receive enable to true"), 2U);
}

TEST_F(MidiReceive, SwitchedOffReportsTheRemovalEvenWhenItWasOff)
{
    m_device.EnableReceive(false);
    m_device.EnableReceive(false);
    EXPECT_EQ(m_recorder.Count(Event::Removed), 2U);
    EXPECT_EQ(m_recorder.Count(Event::Added), 0U);
    EXPECT_EQ(m_log.Count("Setting receive enable to false"), 2U);
}

TEST_F(MidiReceive, LogsItsThreadsStartAndEnd)
{
    m_device.EnableReceive(true);
    EXPECT_TRUE(
        TestSupport::WaitUntil([&] { return m_log.Count("Starting midi receive thread") == 1; }));
    EXPECT_EQ(m_log.Count("Finished midi receive thread"), 0U);
    m_device.EnableReceive(false);
    EXPECT_EQ(m_log.Count("Finished midi receive thread"), 1U);
}

/// Changes the input on another thread, which must be able to at the end of the test.
class InputChange
{
public:
    explicit InputChange(Device& device)
        : m_thread([this, &device] {
              device.SetInput(L"Pads");
              m_done.Set();
          })
    {
    }
    ~InputChange() { m_thread.join(); }
    InputChange(const InputChange&) = delete;
    InputChange& operator=(const InputChange&) = delete;
    bool IsHeldUp() { return !m_done.Wait(200); }
    bool IsThrough() { return m_done.Wait(20000); }

private:
    Os::Event m_done{false};
    std::thread m_thread;
};

TEST_F(MidiReceive, ReportsTheAdditionWithTheReceiveLockHeld)
{
    std::unique_ptr<InputChange> change;
    QObject::connect(
        &m_device, &Device::txMidiDeviceAdded, &m_device,
        [&](const Device::Id&) {
            change = std::make_unique<InputChange>(m_device);
            EXPECT_TRUE(change->IsHeldUp());
        },
        Qt::DirectConnection);
    m_device.EnableReceive(true);
    EXPECT_TRUE(change->IsThrough());
}

TEST_F(MidiReceive, ReportsTheRemovalWithTheReceiveLockHeldAndTheThreadStillThere)
{
    ASSERT_TRUE(StartOn(m_keys));
    std::unique_ptr<InputChange> change;
    QObject::connect(
        &m_device, &Device::txMidiDeviceRemoved, &m_device,
        [&](const Device::Id&) {
            EXPECT_EQ(TestSupport::FindThreads("Midi Receiver").size(), 1U);
            EXPECT_FALSE(m_device.IsReceiveEnabled());
            change = std::make_unique<InputChange>(m_device);
            EXPECT_TRUE(change->IsHeldUp());
        },
        Qt::DirectConnection);
    m_device.EnableReceive(false);
    ASSERT_TRUE(change);
    EXPECT_TRUE(change->IsThrough());
    m_device.disconnect(&m_device);
}

TEST_F(MidiReceive, LetsOthersSendWhileTheReceiveLockIsHeld)
{
    m_device.SetOutput(L"Pads");
    m_device.EnableTransmit(true);
    QObject::connect(
        &m_device, &Device::txMidiDeviceAdded, &m_device,
        [&](const Device::Id&) {
            std::thread sender([&] {
                const unsigned char clock = 0xF8;
                EXPECT_TRUE(m_device.SendBuffer(&clock, 1));
            });
            sender.join();
        },
        Qt::DirectConnection);
    m_device.EnableReceive(true);
    EXPECT_EQ(m_pads.ReceiveCount(1), Bytes{0xF8});
}

TEST_F(MidiReceive, StopsBehindTheByteInHand)
{
    Os::Event entered(false);
    QObject::connect(
        &m_device, &Device::txShortMessage, &m_device,
        [&](const Device::ShortMessage&) {
            entered.Set();
            EXPECT_TRUE(TestSupport::WaitUntil([&] { return !m_device.IsReceiveEnabled(); }));
        },
        Qt::DirectConnection);
    ASSERT_TRUE(StartOn(m_keys));
    m_keys.Send(Bytes{0xF8, 0xFA, 0xFB});
    ASSERT_TRUE(entered.Wait(20000));
    m_device.EnableReceive(false);
    EXPECT_THAT(m_recorder.GetMessages(), ElementsAre(0xF8));
}

TEST_F(MidiReceive, WaitsForInputAQuarterOfASecondAtMost)
{
    ASSERT_TRUE(StartOn(m_keys));
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return m_keys.GetLastWait() != 0; }));
    EXPECT_EQ(m_keys.GetLastWait(), 250000);
}

TEST_F(MidiReceive, KeepsItsPortWhenTheNameChangesUntilItIsSwitched)
{
    ASSERT_TRUE(StartOn(m_keys));
    m_device.SetInput(L"Pads");
    EXPECT_EQ(m_log.Count("Setting Midi input to Pads"), 1U);
    m_keys.Send(Bytes{0xFA});
    ASSERT_TRUE(m_recorder.WaitFor(Event::Short, 1));
    m_keys.Send(Bytes{0xFC}); // also in the wait that begins after the change
    ASSERT_TRUE(m_recorder.WaitFor(Event::Short, 2));
    EXPECT_EQ(m_pads.CountOpened(), 0);
    m_device.EnableReceive(false);
    ASSERT_TRUE(StartOn(m_pads));
    m_pads.Send(Bytes{0xFB});
    ASSERT_TRUE(m_recorder.WaitFor(Event::Short, 3));
    EXPECT_THAT(m_recorder.GetMessages(), ElementsAre(0xFA, 0xFC, 0xFB));
}

TEST_F(MidiReceive, GoesToTheNewNameWhenThePortFails)
{
    ASSERT_TRUE(StartOn(m_keys));
    m_device.SetInput(L"Pads");
    m_keys.Unplug();
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return m_pads.CountOpen() == 1; }));
}

TEST_F(MidiReceive, KeepsRunningStatusWhileSwitchedOffAndOn)
{
    ASSERT_TRUE(StartOn(m_keys));
    m_keys.Send(Bytes{0x90, 0x3C, 0x64, 0x3D});
    ASSERT_TRUE(m_recorder.WaitFor(Event::Short, 1));
    ASSERT_TRUE(
        TestSupport::WaitUntil([&] { return m_log.Count("Received midi data byte: \x3D") == 1; }));
    m_device.EnableReceive(false);
    ASSERT_TRUE(StartOn(m_keys));
    m_keys.Send(Bytes{0x65});
    ASSERT_TRUE(m_recorder.WaitFor(Event::Short, 2));
    EXPECT_THAT(m_recorder.GetMessages(), ElementsAre(0x643C90, 0x653D90));
}

TEST_F(MidiReceive, IsOffAfterTheDeviceAndReportsThat)
{
    auto device = std::make_unique<Device>();
    const TestSupport::MidiRecorder recorder(*device);
    device->SetInput(L"Pads");
    device->EnableReceive(true);
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return m_pads.CountOpen() == 1; }));
    device.reset();
    EXPECT_EQ(recorder.Count(Event::Removed), 1U);
    EXPECT_THAT(TestSupport::FindThreads("Midi Receiver"), IsEmpty());
    EXPECT_EQ(m_pads.CountOpen(), 0);
}

} // namespace
