// SPDX-License-Identifier: MIT
// Signals of a timecode device: names, order, and the thread that they are raised on.
#include <gmock/gmock.h>

#include <QMetaMethod>
#include <QMetaType>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "hardware/timecode/device_sim.h"
#include "support/wait.h"
#include "timecode/stub_device.h"
#include "timecode/watchdog.h"

namespace
{

using Hardware::Timecode::Device;
using Hardware::Timecode::DeviceSim;
using Hardware::Timecode::Frame;
using testing::ElementsAre;
using TestSupport::StubDevice;
using TestSupport::WaitUntil;

constexpr const char* Signatures[] = {
    "deviceAdded(Hardware::Timecode::Device::Id)", "deviceRemoved(Hardware::Timecode::Device::Id)",
    "frameRead(Hardware::Timecode::Device::Id,Hardware::Timecode::Frame)"};

/// Notes by name what reaches it.
class Listener : public QObject
{
    Q_OBJECT

public:
    std::vector<std::string> heard;

public Q_SLOTS:
    void onAdded(Hardware::Timecode::Device::Id id)
    {
        heard.push_back("added " + std::to_string(id.number));
    }
    void onRemoved(const Hardware::Timecode::Device::Id& id)
    {
        heard.push_back("removed " + std::to_string(id.number));
    }
    void onFrame(const Hardware::Timecode::Device::Id& id, const Hardware::Timecode::Frame& frame)
    {
        heard.push_back("frame " + std::to_string(id.number) + " " + frame.toString());
    }
};

void RaiseEachOnce(Device& device)
{
    device.emitDeviceAdded({&device, 1});
    device.emitDeviceRemoved({&device, 2});
    device.emitFrameRead({&device, 3}, Frame(1, 2, 3, 4, true));
}

TEST(DeviceSignals, StandInTheMetaObjectInOrder)
{
    const QMetaObject& meta = Device::staticMetaObject;
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 3);
    for (int i = 0; i < 3; ++i) {
        const QMetaMethod method = meta.method(meta.methodOffset() + i);
        EXPECT_EQ(method.methodSignature(), QMetaObject::normalizedSignature(Signatures[i]));
        EXPECT_EQ(method.methodType(), QMetaMethod::Signal);
    }
}

TEST(DeviceSignals, TheMetaObjectHasTheQualifiedName)
{
    EXPECT_STREQ(Device::staticMetaObject.className(), "Hardware::Timecode::Device");
    EXPECT_STREQ(DeviceSim::staticMetaObject.className(), "Hardware::Timecode::DeviceSim");
    EXPECT_EQ(DeviceSim::staticMetaObject.superClass(), &Device::staticMetaObject);
}

TEST(DeviceSignals, TheSimulatorAddsNoneOfItsOwn)
{
    const QMetaObject& meta = DeviceSim::staticMetaObject;
    EXPECT_EQ(meta.methodCount(), meta.methodOffset());
}

TEST(DeviceSignals, ReachSlotsConnectedByName)
{
    StubDevice device;
    Listener listener;
    EXPECT_TRUE(QObject::connect(&device, SIGNAL(deviceAdded(Hardware::Timecode::Device::Id)),
                                 &listener, SLOT(onAdded(Hardware::Timecode::Device::Id)),
                                 Qt::DirectConnection));
    EXPECT_TRUE(QObject::connect(
        &device, SIGNAL(deviceRemoved(const Hardware::Timecode::Device::Id&)), &listener,
        SLOT(onRemoved(const Hardware::Timecode::Device::Id&)), Qt::DirectConnection));
    EXPECT_TRUE(QObject::connect(
        &device, SIGNAL(frameRead(Hardware::Timecode::Device::Id, Hardware::Timecode::Frame)),
        &listener, SLOT(onFrame(Hardware::Timecode::Device::Id, Hardware::Timecode::Frame)),
        Qt::DirectConnection));
    RaiseEachOnce(device);
    EXPECT_THAT(listener.heard, ElementsAre("added 1", "removed 2", "frame 3 01;02;03;04"));
}

TEST(DeviceSignals, ReachSlotsConnectedByPointer)
{
    StubDevice device;
    Listener listener;
    QObject::connect(&device, &Device::deviceAdded, &listener, &Listener::onAdded,
                     Qt::DirectConnection);
    QObject::connect(&device, &Device::deviceRemoved, &listener, &Listener::onRemoved,
                     Qt::DirectConnection);
    QObject::connect(&device, &Device::frameRead, &listener, &Listener::onFrame,
                     Qt::DirectConnection);
    RaiseEachOnce(device);
    EXPECT_THAT(listener.heard, ElementsAre("added 1", "removed 2", "frame 3 01;02;03;04"));
}

TEST(DeviceSignals, CarryTheVeryObjectsThatWereGiven)
{
    StubDevice device;
    const Device::Id id{&device, 7};
    const Frame frame(1, 2, 3, 4, false);
    const Device::Id* seenId = nullptr;
    const Frame* seenFrame = nullptr;
    QObject::connect(&device, &Device::frameRead, [&](const Device::Id& i, const Frame& f) {
        seenId = &i;
        seenFrame = &f;
    });
    device.emitFrameRead(id, frame);
    EXPECT_EQ(seenId, &id);
    EXPECT_EQ(seenFrame, &frame);
}

TEST(DeviceSignals, AreRaisedOnTheCallingThread)
{
    StubDevice device;
    std::vector<std::thread::id> threads;
    const auto note = [&] { threads.push_back(std::this_thread::get_id()); };
    QObject::connect(&device, &Device::deviceAdded, note);
    QObject::connect(&device, &Device::deviceRemoved, note);
    QObject::connect(&device, &Device::frameRead, note);
    std::thread caller([&] { RaiseEachOnce(device); });
    const std::thread::id id = caller.get_id();
    caller.join();
    EXPECT_THAT(threads, ElementsAre(id, id, id));
}

TEST(DeviceSignals, TwoThreadsMayBeInsideOneSignal)
{
    const TestSupport::Watchdog watchdog;
    StubDevice device;
    std::atomic<int> inside{0};
    std::atomic<int> met{0};
    QObject::connect(&device, &Device::frameRead, [&] {
        ++inside;
        met += WaitUntil([&] { return inside == 2; });
    });
    std::thread first([&] { device.emitFrameRead({&device, 1}, Frame()); });
    std::thread second([&] { device.emitFrameRead({&device, 2}, Frame()); });
    first.join();
    second.join();
    EXPECT_EQ(met, 2) << "one waited for the other";
}

TEST(DeviceSignals, NoneIsRaisedAtTheEndOfADevice)
{
    int raised = 0;
    {
        StubDevice device;
        const auto count = [&] { ++raised; };
        QObject::connect(&device, &Device::deviceAdded, count);
        QObject::connect(&device, &Device::deviceRemoved, count);
        QObject::connect(&device, &Device::frameRead, count);
    }
    EXPECT_EQ(raised, 0);
}

TEST(DeviceMetatypes, AreKnownByName)
{
    EXPECT_EQ(QMetaType::fromName("Hardware::Timecode::Device::Id"),
              QMetaType::fromType<Device::Id>());
    EXPECT_EQ(QMetaType::fromName("Hardware::Timecode::Frame"), QMetaType::fromType<Frame>());
}

} // namespace

#include "device_signals_test.moc"
