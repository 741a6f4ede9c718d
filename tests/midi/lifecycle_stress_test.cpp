// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include "hardware/midi/device.h"
#include "support/midi_recorder.h"
#include "support/process_facts.h"
#include "support/stepping_clock.h"
#include "support/virtual_midi.h"
#include "support/wait.h"

namespace
{

using Hardware::Midi::Device;
using Event = TestSupport::MidiRecorder::Event;

typedef std::vector<std::uint8_t> Bytes;

/// Sends a timing clock on a port all the time, so that no wait for input takes a quarter of a
/// second.
class Traffic
{
public:
    explicit Traffic(Desk::MidiPort& port)
        : m_thread([this, &port] {
              while (!m_done) {
                  port.Send(Bytes{0xF8});
                  std::this_thread::sleep_for(std::chrono::microseconds(200));
              }
          })
    {
    }
    ~Traffic()
    {
        m_done = true;
        m_thread.join();
    }
    Traffic(const Traffic&) = delete;
    Traffic& operator=(const Traffic&) = delete;

private:
    std::atomic<bool> m_done{false};
    std::thread m_thread;
};

/// Whether a count falls back to where it was. The test bed has a few threads and descriptors of
/// its own that come and go; one left behind by every round would be a thousand.
bool IsBackTo(std::size_t before, std::size_t (*count)())
{
    return TestSupport::WaitUntil([&] { return count() <= before + 10; });
}

class MidiLifecycle : public TestSupport::VirtualMidi
{
protected:
    MidiLifecycle()
    {
        m_device.SetInput(L"Keys");
        m_device.SetOutput(L"Keys");
    }

    Desk::MidiPort m_keys{m_testbed, m_sequencer, "Keys"};
    Device m_device;
};

TEST_F(MidiLifecycle, ThousandRoundsWithoutAPortLeaveNothingBehind)
{
    m_device.SetInput(L"Nothing");
    TestSupport::SteppingClock clock;
    clock.Release();
    m_device.EnableReceive(true);
    m_device.EnableReceive(false);
    const std::size_t threads = TestSupport::CountThreads();
    const std::size_t descriptors = TestSupport::CountDescriptors();
    for (int i = 0; i < 1000; ++i) {
        m_device.EnableReceive(true);
        m_device.EnableReceive(false);
    }
    EXPECT_TRUE(IsBackTo(threads, TestSupport::CountThreads));
    EXPECT_TRUE(IsBackTo(descriptors, TestSupport::CountDescriptors));
}

TEST_F(MidiLifecycle, ThousandRoundsUnderTrafficLeaveNothingBehind)
{
    const Traffic traffic(m_keys);
    m_device.EnableReceive(true);
    m_device.EnableReceive(false);
    const std::size_t threads = TestSupport::CountThreads();
    const std::size_t descriptors = TestSupport::CountDescriptors();
    for (int i = 0; i < 1000; ++i) {
        m_device.EnableReceive(true);
        m_device.EnableTransmit(true);
        m_device.SendShortMessage(0x643C90);
        m_device.EnableReceive(false);
        m_device.EnableTransmit(false);
        m_keys.Receive(0);
    }
    EXPECT_TRUE(IsBackTo(threads, TestSupport::CountThreads));
    EXPECT_TRUE(IsBackTo(descriptors, TestSupport::CountDescriptors));
}

TEST_F(MidiLifecycle, ASecondReceiverDoesNotKeepTheFirstAlive)
{
    // Off on one thread and at once on again on another: the first thread must not take the new
    // enable for its own, or the switching off would wait for ever.
    const Traffic traffic(m_keys);
    for (int i = 0; i < 500; ++i) {
        m_device.EnableReceive(true);
        std::thread off([&] { m_device.EnableReceive(false); });
        std::thread on([&] { m_device.EnableReceive(true); });
        off.join();
        on.join();
        m_device.EnableReceive(false);
    }
    EXPECT_THAT(TestSupport::FindThreads("Midi Receiver"), testing::IsEmpty());
}

TEST_F(MidiLifecycle, SendersAndNamesMayChangeWhileReceiving)
{
    const TestSupport::MidiRecorder recorder(m_device);
    m_device.EnableReceive(true);
    m_device.EnableTransmit(true);
    std::atomic<bool> done{false};
    std::thread names([&] {
        while (!done) {
            m_device.SetInput(L"Keys");
            m_device.SetOutput(L"Keys");
            Device::GetInputs();
        }
    });
    std::thread drain([&] {
        while (!done)
            m_keys.Receive(1);
    });
    for (int i = 0; i < 2000; ++i)
        m_device.SendShortMessage(0x643C90);
    for (int i = 0; i < 500; ++i)
        m_keys.Send(Bytes{0xF8});
    EXPECT_TRUE(recorder.WaitFor(Event::Short, 500));
    done = true;
    names.join();
    drain.join();
}

} // namespace
