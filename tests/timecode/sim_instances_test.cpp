// SPDX-License-Identifier: MIT
// Instances of the simulator: coming, going, and what each has at first.
#include <gmock/gmock.h>

#include <list>
#include <type_traits>

#include "os/log.h"
#include "support/log_capture.h"
#include "timecode/offers.h"
#include "timecode/sim_bench.h"

namespace
{

using namespace Hardware;
using Hardware::Timecode::Device;
using Hardware::Timecode::DeviceSim;
using Hardware::Timecode::Frame;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::FrameLog;
using TestSupport::Offers;

static_assert(std::is_base_of_v<Device, DeviceSim> && !std::is_abstract_v<DeviceSim>);
static_assert(std::is_constructible_v<DeviceSim, QObject*>);
static_assert(Offers<static_cast<void (DeviceSim::*)(unsigned)>(&DeviceSim::Create)>);
static_assert(Offers<static_cast<void (DeviceSim::*)(unsigned)>(&DeviceSim::Destroy)>);
static_assert(Offers<static_cast<bool (DeviceSim::*)(unsigned)>(&DeviceSim::Start)>);
static_assert(Offers<static_cast<bool (DeviceSim::*)(unsigned)>(&DeviceSim::Stop)>);
static_assert(Offers<static_cast<bool (DeviceSim::*)(unsigned)>(&DeviceSim::Enable)>);
static_assert(Offers<static_cast<bool (DeviceSim::*)(unsigned)>(&DeviceSim::Disable)>);
static_assert(Offers<static_cast<bool (DeviceSim::*)()>(&DeviceSim::Enable)>);
static_assert(Offers<static_cast<bool (DeviceSim::*)()>(&DeviceSim::Disable)>);
static_assert(Offers<static_cast<bool (DeviceSim::*)(unsigned, const Frame&)>(&DeviceSim::Jump)>);
static_assert(Offers<static_cast<bool (DeviceSim::*)(unsigned, double)>(&DeviceSim::SetRate)>);
static_assert(
    Offers<static_cast<bool (DeviceSim::*)(unsigned, TimecodeFormat)>(&DeviceSim::SetFormat)>);
static_assert(Offers<static_cast<double (DeviceSim::*)(unsigned) const>(&DeviceSim::GetRate)>);
static_assert(
    Offers<static_cast<TimecodeFormat (DeviceSim::*)(unsigned) const>(&DeviceSim::GetFormat)>);
static_assert(Offers<static_cast<bool (DeviceSim::*)(unsigned) const>(&DeviceSim::IsStarted)>);
static_assert(Offers<static_cast<bool (DeviceSim::*)(unsigned) const>(&DeviceSim::IsEnabled)>);
static_assert(Offers<static_cast<bool (DeviceSim::*)() const>(&DeviceSim::IsEnabled)>);
static_assert(Offers<static_cast<bool (DeviceSim::*)() const>(&DeviceSim::IsActive)>);
static_assert(
    Offers<static_cast<std::list<unsigned> (DeviceSim::*)() const>(&DeviceSim::GetInstances)>);

TEST(SimInstances, ThereAreNoneAtFirst)
{
    const DeviceSim device(nullptr);
    EXPECT_THAT(device.GetInstances(), IsEmpty());
    EXPECT_FALSE(device.IsEnabled());
    EXPECT_FALSE(device.IsActive());
}

TEST(SimInstances, BelongToADeviceOfTypeSimulated)
{
    const DeviceSim device(nullptr);
    EXPECT_EQ(device.GetType(), TimecodeType_Simulated);
}

TEST(SimInstances, TheDeviceBelongsToItsParent)
{
    QObject parent;
    auto* const device = new DeviceSim(&parent);
    EXPECT_EQ(device->parent(), &parent);
}

TEST(SimInstances, AreReportedWhenCreated)
{
    DeviceSim device(nullptr);
    const FrameLog log(device);
    device.Create(3);
    EXPECT_THAT(log.GetEvents(), ElementsAre("added 3"));
    EXPECT_EQ(log.GetIds()[0].device, &device);
}

TEST(SimInstances, AreThereWhenReported)
{
    DeviceSim device(nullptr);
    std::list<unsigned> seen;
    QObject::connect(&device, &Device::deviceAdded, [&] { seen = device.GetInstances(); });
    device.Create(3);
    EXPECT_THAT(seen, ElementsAre(3));
}

TEST(SimInstances, CreatingOneAgainReportsNothing)
{
    DeviceSim device(nullptr);
    const FrameLog log(device);
    device.Create(3);
    device.Create(3);
    EXPECT_THAT(log.GetEvents(), ElementsAre("added 3"));
    EXPECT_THAT(device.GetInstances(), ElementsAre(3));
}

TEST(SimInstances, CreatingOneAgainLeavesItAlone)
{
    DeviceSim device(nullptr);
    device.Create(3);
    device.SetRate(3, 25.0);
    device.Disable(3);
    device.Create(3);
    EXPECT_EQ(device.GetRate(3), 25.0);
    EXPECT_FALSE(device.IsEnabled(3));
}

TEST(SimInstances, AreStoppedEnabledAndWithoutRateAtFirst)
{
    DeviceSim device(nullptr);
    device.Create(3);
    EXPECT_FALSE(device.IsStarted(3));
    EXPECT_TRUE(device.IsEnabled(3));
    EXPECT_EQ(device.GetRate(3), 0.0);
    EXPECT_EQ(device.GetFormat(3), TimecodeFormat_Invalid);
}

TEST(SimInstances, AreReportedWhenDestroyed)
{
    DeviceSim device(nullptr);
    device.Create(3);
    const FrameLog log(device);
    device.Destroy(3);
    EXPECT_THAT(log.GetEvents(), ElementsAre("removed 3"));
    EXPECT_EQ(log.GetIds()[0].device, &device);
}

TEST(SimInstances, AreGoneWhenTheirRemovalIsReported)
{
    DeviceSim device(nullptr);
    device.Create(3);
    std::list<unsigned> seen{99};
    QObject::connect(&device, &Device::deviceRemoved, [&] { seen = device.GetInstances(); });
    device.Destroy(3);
    EXPECT_THAT(seen, IsEmpty());
}

TEST(SimInstances, DestroyingOneThatIsNotThereIsReportedAllTheSame)
{
    DeviceSim device(nullptr);
    const FrameLog log(device);
    device.Destroy(7);
    device.Destroy(7);
    EXPECT_THAT(log.GetEvents(), ElementsAre("removed 7", "removed 7"));
    EXPECT_EQ(log.GetIds()[0].device, &device);
}

TEST(SimInstances, AreListedInAscendingOrder)
{
    DeviceSim device(nullptr);
    for (const unsigned n : {7U, 0xFFFFFFFFU, 0U, 0x80000000U, 3U})
        device.Create(n);
    EXPECT_THAT(device.GetInstances(), ElementsAre(0U, 3U, 7U, 0x80000000U, 0xFFFFFFFFU));
    device.Destroy(7);
    EXPECT_THAT(device.GetInstances(), ElementsAre(0U, 3U, 0x80000000U, 0xFFFFFFFFU));
}

TEST(SimInstances, StartAfreshWhenCreatedAnew)
{
    DeviceSim device(nullptr);
    device.Create(3);
    device.SetRate(3, 25.0);
    device.Destroy(3);
    device.Create(3);
    EXPECT_EQ(device.GetRate(3), 0.0);
}

TEST(SimInstances, OfOneDeviceAreNotThoseOfAnother)
{
    DeviceSim one(nullptr);
    DeviceSim other(nullptr);
    one.Create(3);
    EXPECT_THAT(other.GetInstances(), IsEmpty());
}

TEST(SimInstances, TheEndOfTheDeviceReportsNoRemoval)
{
    auto device = std::make_unique<DeviceSim>(nullptr);
    device->Create(1);
    device->Create(2);
    const FrameLog log(*device);
    device.reset();
    EXPECT_THAT(log.GetEvents(), IsEmpty());
}

TEST(SimInstances, ThatAreNotThereAnswerNo)
{
    DeviceSim device(nullptr);
    device.Create(1);
    EXPECT_FALSE(device.Start(9));
    EXPECT_FALSE(device.Stop(9));
    EXPECT_FALSE(device.Enable(9));
    EXPECT_FALSE(device.Disable(9));
    EXPECT_FALSE(device.Jump(9, Frame(1, 2, 3, 4, false)));
    EXPECT_FALSE(device.SetRate(9, 25.0));
    EXPECT_FALSE(device.SetFormat(9, TimecodeFormat_Ebu25));
    EXPECT_FALSE(device.IsStarted(9));
    EXPECT_FALSE(device.IsEnabled(9));
    EXPECT_EQ(device.GetRate(9), 0.0);
    EXPECT_EQ(device.GetFormat(9), TimecodeFormat_Invalid);
    EXPECT_THAT(device.GetInstances(), ElementsAre(1)) << "asking makes none";
}

TEST(SimInstances, ThatAreNotThereAreNotLogged)
{
    const TestSupport::LogCapture capture("Hardware", Os::Log::AllLevels);
    DeviceSim device(nullptr);
    device.Start(9);
    device.Stop(9);
    device.Enable(9);
    device.Disable(9);
    device.Jump(9, Frame());
    device.SetRate(9, 25.0);
    device.SetFormat(9, TimecodeFormat_Ebu25);
    device.IsStarted(9);
    device.IsEnabled(9);
    device.GetRate(9);
    device.GetFormat(9);
    device.Destroy(9);
    EXPECT_THAT(capture.GetTexts(), IsEmpty());
}

} // namespace
