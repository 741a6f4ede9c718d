// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "hardware/midi/device.h"
#include "os/event.h"
#include "standalone/log_sink.h"
#include "support/log_capture.h"
#include "support/midi_log_levels.h"
#include "support/midi_recorder.h"
#include "support/process_facts.h"
#include "support/stepping_clock.h"
#include "support/virtual_midi.h"
#include "support/wait.h"

namespace
{

using Hardware::Midi::Device;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using Event = TestSupport::MidiRecorder::Event;

typedef std::vector<std::uint8_t> Bytes;

/// A device that receives while things go wrong. Pauses last until the test ends them.
class MidiReceiveFaults : public TestSupport::VirtualMidi
{
protected:
    MidiReceiveFaults() { m_device.SetInput(L"Keys"); }

    ~MidiReceiveFaults() override
    {
        m_clock.Release();
        m_device.EnableReceive(false);
        TestSupport::ExpectMidiLogLevels(m_log);
    }

    bool IsReceiving() const { return m_keys.CountOpen() == 1; }

    std::vector<std::string> GetErrors() const
    {
        std::vector<std::string> texts;
        for (const auto& line : m_log.GetLines())
            if (line.level == 8)
                texts.push_back(line.text);
        return texts;
    }

    Desk::MidiPort m_keys{m_testbed, m_sequencer, "Keys"};
    TestSupport::LogCapture m_log{"Hardware/Midi", 31};
    TestSupport::SteppingClock m_clock;
    Device m_device;
    TestSupport::MidiRecorder m_recorder{m_device};
};

TEST_F(MidiReceiveFaults, RetryAMissingPortEvery250Milliseconds)
{
    m_keys.Unplug();
    m_device.EnableReceive(true);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(m_clock.FinishNextSleep(), 250U);
    m_clock.WaitForSleeps(9);
    EXPECT_EQ(m_log.Count("Midi input Keys not found"), 9U);
    EXPECT_THAT(GetErrors(), IsEmpty());
    m_keys.Plug();
    m_clock.Advance(250);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
}

TEST_F(MidiReceiveFaults, RetryABusyPortWithAnErrorEachTime)
{
    m_keys.SetBusy(true);
    m_device.EnableReceive(true);
    EXPECT_EQ(m_clock.FinishNextSleep(), 250U);
    m_clock.WaitForSleeps(2);
    EXPECT_THAT(GetErrors(), ElementsAre("Error opening Midi input Keys: Device or resource busy",
                                         "Error opening Midi input Keys: Device or resource busy"));
    m_keys.SetBusy(false);
    m_clock.Advance(250);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
}

TEST_F(MidiReceiveFaults, EndAPauseOnlyWhenItIsOver)
{
    m_keys.Unplug();
    m_device.EnableReceive(true);
    m_clock.WaitForSleeps(1);
    m_keys.Plug();
    m_clock.Advance(249);
    usleep(20000);
    EXPECT_FALSE(IsReceiving());
    m_clock.Advance(1);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
}

TEST_F(MidiReceiveFaults, SurviveUnplugAndReplugWhileReceiving)
{
    m_device.EnableReceive(true);
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
    for (std::uint8_t round = 0; round < 10; ++round) {
        m_keys.Send(Bytes{0x90, round, 1});
        ASSERT_TRUE(m_recorder.WaitFor(Event::Short, round + 1U));
        const std::size_t slept = m_clock.GetSleeps().size();
        m_keys.Unplug();
        m_clock.WaitForSleeps(slept + 1);
        m_keys.Plug();
        m_clock.Advance(250);
        ASSERT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
    }
    EXPECT_THAT(GetErrors(), testing::SizeIs(10));
    EXPECT_THAT(GetErrors(), Each("Error reading Midi input: No such device"));
    EXPECT_THAT(m_clock.GetSleeps(), Each(250U));
}

TEST_F(MidiReceiveFaults, ReopenAtOnceAfterAFailedRead)
{
    Os::Event entered(false);
    Os::Event mayGo(false);
    QObject::connect(
        &m_device, &Device::txShortMessage, &m_device,
        [&](const Device::ShortMessage&) {
            entered.Set();
            mayGo.Wait(20000);
        },
        Qt::DirectConnection);
    m_device.EnableReceive(true);
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
    // Gone and back while the thread is held up: the reopen finds it without a pause.
    m_keys.Send(Bytes{0xF8});
    ASSERT_TRUE(entered.Wait(20000));
    m_keys.Unplug();
    m_keys.Plug();
    mayGo.Set();
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
    EXPECT_THAT(GetErrors(), ElementsAre("Error reading Midi input: No such device"));
    EXPECT_THAT(m_clock.GetSleeps(), IsEmpty());
}

TEST_F(MidiReceiveFaults, TakeTheEndOfTheFileForNoError)
{
    m_device.EnableReceive(true);
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
    m_keys.SetAtEnd(true);
    m_keys.Send(Bytes{0xF8});
    usleep(20000);
    EXPECT_EQ(m_recorder.Count(Event::Short), 0U);
    m_keys.SetAtEnd(false);
    EXPECT_TRUE(m_recorder.WaitFor(Event::Short, 1));
    EXPECT_THAT(GetErrors(), IsEmpty());
    EXPECT_EQ(m_keys.CountOpened(), 1);
    EXPECT_THAT(m_clock.GetSleeps(), IsEmpty());
}

TEST_F(MidiReceiveFaults, DoNotSpinOnADeadServer)
{
    m_device.EnableReceive(true);
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
    m_keys.KillServer();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(m_clock.FinishNextSleep(), 250U);
    const auto errors = GetErrors();
    ASSERT_GE(errors.size(), 5U);
    EXPECT_EQ(errors[0], "Error reading Midi input: Transport endpoint is not connected");
    for (std::size_t i = 1; i < errors.size(); ++i)
        EXPECT_EQ(errors[i], "Error opening Midi input Keys: Transport endpoint is not connected");
}

TEST_F(MidiReceiveFaults, SurviveASequencerThatVanishes)
{
    m_sequencer.Vanish();
    m_device.EnableReceive(true);
    EXPECT_EQ(m_clock.FinishNextSleep(), 250U);
    m_clock.WaitForSleeps(2);
    EXPECT_EQ(m_log.Count("Error opening Midi sequencer: No such file or directory"), 2U);
    EXPECT_EQ(m_log.Count("Midi input Keys not found"), 2U);
    m_sequencer.Appear();
    m_clock.Advance(250);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
    // Once the port is open the sequencer is not needed.
    m_sequencer.Vanish();
    m_keys.Send(Bytes{0xF8});
    EXPECT_TRUE(m_recorder.WaitFor(Event::Short, 1));
}

TEST_F(MidiReceiveFaults, CountASignalAsAFailedWaitAndReopenAtOnce)
{
    m_device.EnableReceive(true);
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
    const auto threads = TestSupport::FindThreads("Midi Receiver");
    ASSERT_EQ(threads.size(), 1U);
    // A signal outside the wait only logs, so it may take more than one.
    ASSERT_TRUE(TestSupport::WaitUntil([&] {
        TestSupport::SignalThread(threads[0], SIGUSR1);
        usleep(10000);
        return m_log.Count("Error selecting on Midi input: Interrupted system call") > 0;
    }));
    const std::vector<std::string> texts = m_log.GetTexts();
    const auto failure = std::find(texts.begin(), texts.end(),
                                   "Error selecting on Midi input: Interrupted system call");
    ASSERT_NE(failure, texts.begin());
    EXPECT_EQ(*std::prev(failure), "Received signal 10");
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return m_keys.CountOpened() >= 2 && IsReceiving(); }));
    EXPECT_THAT(m_clock.GetSleeps(), IsEmpty());
    m_keys.Send(Bytes{0xF8});
    EXPECT_TRUE(m_recorder.WaitFor(Event::Short, 1));
}

/// Gets a signal inside its first call on a thread of that device, and watches for a call in a
/// call.
class InterruptedSink : public Standalone::LogSink
{
public:
    void Write(const Standalone::LogRecord& record) override
    {
        static thread_local bool isInside = false;
        if (std::exchange(isInside, true)) {
            wasCalledInside = true; // a sink with a lock would wait for itself here
            return;
        }
        if (record.text.starts_with("Received midi status byte") &&
            !m_wasInterrupted.exchange(true))
            raise(SIGUSR1);
        next->Write(record);
        isInside = false;
    }

    std::shared_ptr<Standalone::LogSink> next;
    std::atomic<bool> wasCalledInside{false};

private:
    std::atomic<bool> m_wasInterrupted{false};
};

TEST_F(MidiReceiveFaults, LogNothingInsideACallOfTheLog)
{
    const auto sink = std::make_shared<InterruptedSink>();
    sink->next = Standalone::SetLogSink(nullptr);
    Standalone::SetLogSink(sink);
    m_device.EnableReceive(true);
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
    m_keys.Send(Bytes{0xF8});
    EXPECT_TRUE(m_recorder.WaitFor(Event::Short, 1));
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return m_log.Count("Received signal 10") == 1; }));
    EXPECT_FALSE(sink->wasCalledInside);
    m_keys.Send(Bytes{0xF8});
    EXPECT_TRUE(m_recorder.WaitFor(Event::Short, 2));
    m_device.EnableReceive(false);
    Standalone::SetLogSink(sink->next);
}

TEST_F(MidiReceiveFaults, TreatADescriptorTooLargeToWaitForAsAFailedOpen)
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = std::max<rlim_t>(limit.rlim_cur, std::min<rlim_t>(limit.rlim_max, 1200));
    setrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_cur < 1200)
        GTEST_SKIP() << "this process may not open 1200 files";
    std::vector<int> taken;
    while (taken.empty() || taken.back() < 1100)
        taken.push_back(dup(STDERR_FILENO));

    m_device.EnableReceive(true);
    EXPECT_EQ(m_clock.FinishNextSleep(), 250U);
    m_clock.WaitForSleeps(2);
    EXPECT_FALSE(IsReceiving());
    EXPECT_THAT(GetErrors(), ElementsAre("Error opening Midi input Keys: Too many open files",
                                         "Error opening Midi input Keys: Too many open files"));
    for (const int descriptor : taken)
        close(descriptor);
    m_clock.Advance(250);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return IsReceiving(); }));
}

TEST_F(MidiReceiveFaults, SwitchOffInThePauseOfAMissingPort)
{
    m_keys.Unplug();
    m_device.EnableReceive(true);
    m_clock.WaitForSleeps(1);
    m_clock.Release();
    m_device.EnableReceive(false);
    EXPECT_THAT(TestSupport::FindThreads("Midi Receiver"), IsEmpty());
}

} // namespace
