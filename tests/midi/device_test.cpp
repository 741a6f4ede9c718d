// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <thread>

#include "support/midi_recorder.h"
#include "support/process_facts.h"

using Hardware::Midi::Device;
using TestSupport::MidiRecorder;

namespace
{

/// No driver's name is that long, so that no test opens a port of the machine it runs on.
const wchar_t* const NoSuchPort = L"no port has a name of more than thirty characters";

std::size_t CountAdded(const MidiRecorder& recorder)
{
    return recorder.Count(MidiRecorder::Event::Added);
}

std::size_t CountRemoved(const MidiRecorder& recorder)
{
    return recorder.Count(MidiRecorder::Event::Removed);
}

} // namespace

TEST(MidiDevice, StartsWithReceptionAndTransmissionOff)
{
    const Device device;
    EXPECT_FALSE(device.IsReceiveEnabled());
    EXPECT_FALSE(device.IsTransmitEnabled());
}

TEST(MidiDevice, StartsWithoutParent)
{
    const Device device;
    EXPECT_EQ(device.parent(), nullptr);
}

TEST(MidiDevice, StartsNoThreadAndOpensNothing)
{
    const std::size_t threads = TestSupport::CountThreads();
    const std::size_t descriptors = TestSupport::CountDescriptors();
    Device device;
    device.SetInput(NoSuchPort);
    device.SetOutput(NoSuchPort);
    device.EnableTransmit(true);
    EXPECT_EQ(TestSupport::CountThreads(), threads);
    EXPECT_EQ(TestSupport::CountDescriptors(), descriptors);
}

TEST(MidiDevice, TransmissionFollowsItsSwitch)
{
    Device device;
    device.EnableTransmit(true);
    EXPECT_TRUE(device.IsTransmitEnabled());
    device.EnableTransmit(false);
    EXPECT_FALSE(device.IsTransmitEnabled());
}

TEST(MidiDevice, SwitchingTransmissionRaisesNothing)
{
    Device device;
    const MidiRecorder recorder(device);
    device.EnableTransmit(true);
    device.EnableTransmit(false);
    EXPECT_TRUE(recorder.GetEvents().empty());
}

TEST(MidiDevice, SendsNothingWithTransmissionOff)
{
    Device device;
    const unsigned char byte = 0xF8;
    EXPECT_FALSE(device.SendBuffer(&byte, 1));
    EXPECT_FALSE(device.SendShortMessage(byte));
}

TEST(MidiDevice, ReceptionFollowsItsSwitch)
{
    Device device;
    device.SetInput(NoSuchPort);
    device.EnableReceive(true);
    EXPECT_TRUE(device.IsReceiveEnabled());
    device.EnableReceive(false);
    EXPECT_FALSE(device.IsReceiveEnabled());
}

TEST(MidiDevice, ReceptionIsReportedOnceHoweverOftenItIsSwitchedOn)
{
    Device device;
    const MidiRecorder recorder(device);
    device.SetInput(NoSuchPort);
    device.EnableReceive(true);
    device.EnableReceive(true);
    EXPECT_EQ(CountAdded(recorder), 1U);
    EXPECT_EQ(CountRemoved(recorder), 0U);
}

TEST(MidiDevice, EndOfReceptionIsReportedAlsoWhenItWasOff)
{
    Device device;
    const MidiRecorder recorder(device);
    device.EnableReceive(false);
    EXPECT_EQ(CountRemoved(recorder), 1U);
    device.EnableReceive(false);
    EXPECT_EQ(CountRemoved(recorder), 2U);
    EXPECT_EQ(CountAdded(recorder), 0U);
}

TEST(MidiDevice, ReceptionIsReportedOnTheThreadThatSwitchesIt)
{
    Device device;
    const MidiRecorder recorder(device);
    device.SetInput(NoSuchPort);
    std::thread::id switching;
    std::thread([&] {
        switching = std::this_thread::get_id();
        device.EnableReceive(true);
        device.EnableReceive(false);
    }).join();
    const auto events = recorder.GetEvents();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].kind, MidiRecorder::Event::Added);
    EXPECT_EQ(events[0].thread, switching);
    EXPECT_EQ(events[1].kind, MidiRecorder::Event::Removed);
    EXPECT_EQ(events[1].thread, switching);
}

TEST(MidiDevice, ReportsCarryTheDeviceAndNumberZero)
{
    Device device;
    const MidiRecorder recorder(device);
    device.SetInput(NoSuchPort);
    device.EnableReceive(true);
    device.EnableReceive(false);
    for (const auto& event : recorder.GetEvents()) {
        EXPECT_EQ(event.device, &device);
        EXPECT_EQ(event.number, 0U);
    }
}

TEST(MidiDevice, ReportsCarryTheSameIdEachTime)
{
    std::vector<const Device::Id*> ids; // outlives the device, which reports its end too
    Device device;
    QObject::connect(
        &device, &Device::txMidiDeviceRemoved, &device,
        [&](const Device::Id& id) { ids.push_back(&id); }, Qt::DirectConnection);
    device.EnableReceive(false);
    device.EnableReceive(false);
    ASSERT_EQ(ids.size(), 2U);
    EXPECT_EQ(ids[0], ids[1]);
}

TEST(MidiDevice, DestructionReportsTheEndOfReceptionAlsoWhenItWasOff)
{
    auto device = std::make_unique<Device>();
    const MidiRecorder recorder(*device);
    device.reset();
    EXPECT_EQ(CountRemoved(recorder), 1U);
    EXPECT_EQ(CountAdded(recorder), 0U);
}

TEST(MidiDevice, DestructionEndsReceptionAndItsThread)
{
    auto device = std::make_unique<Device>();
    const MidiRecorder recorder(*device);
    device->SetInput(NoSuchPort);
    device->EnableReceive(true);
    EXPECT_EQ(TestSupport::FindThreads("Midi Receiver").size(), 1U);
    device.reset();
    EXPECT_EQ(CountRemoved(recorder), 1U);
    EXPECT_TRUE(TestSupport::FindThreads("Midi Receiver").empty());
}

TEST(MidiDevice, SlotMayAskTheDeviceThatIsBeingDestroyed)
{
    auto device = std::make_unique<Device>();
    bool asked = false;
    bool receiving = true;
    QObject::connect(
        device.get(), &Device::txMidiDeviceRemoved, device.get(),
        [&](const Device::Id& id) {
            asked = true;
            receiving = id.device->IsReceiveEnabled();
        },
        Qt::DirectConnection);
    device.reset();
    EXPECT_TRUE(asked);
    EXPECT_FALSE(receiving);
}
