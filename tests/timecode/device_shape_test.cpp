// SPDX-License-Identifier: MIT
// Shape of a timecode device: types, signatures, order of the virtual operations.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>
#include <type_traits>

#include "hardware/timecode/device.h"
#include "timecode/offers.h"
#include "timecode/stub_device.h"

namespace
{

using Hardware::TimecodeType;
using Hardware::VideoFormat;
using Hardware::Timecode::Device;
using Hardware::Timecode::Frame;
using TestSupport::Offers;
using TestSupport::StubDevice;

static_assert(sizeof(TimecodeType) == 4 && sizeof(VideoFormat) == 4);
static_assert(Hardware::TimecodeType_None == 0);
static_assert(Hardware::TimecodeType_Ltc == 1);
static_assert(Hardware::TimecodeType_Vitc == 2);
static_assert(Hardware::TimecodeType_Midi == 3);
static_assert(Hardware::TimecodeType_Cd == 4);
static_assert(Hardware::TimecodeType_Simulated == 5);
static_assert(Hardware::TimecodeType_Invalid == 6);
static_assert(Hardware::VideoFormat_Pal == 0);
static_assert(Hardware::VideoFormat_Ntsc == 1);
static_assert(Hardware::VideoFormat_Invalid == 2);

static_assert(std::is_same_v<decltype(Device::Id::device), Device*>);
static_assert(std::is_same_v<decltype(Device::Id::number), std::uint32_t>);
static_assert(offsetof(Device::Id, device) == 0 && offsetof(Device::Id, number) == sizeof(void*));
static_assert(std::is_trivially_copyable_v<Device::Id> && !std::is_polymorphic_v<Device::Id>);

static_assert(std::is_base_of_v<QObject, Device> && std::is_abstract_v<Device>);
static_assert(sizeof(Device) <= sizeof(QObject) + sizeof(void*), "its type and nothing else");

static_assert(Offers<static_cast<bool (Device::*)()>(&Device::Enable)>);
static_assert(Offers<static_cast<bool (Device::*)()>(&Device::Disable)>);
static_assert(Offers<static_cast<bool (Device::*)() const>(&Device::IsEnabled)>);
static_assert(Offers<static_cast<bool (Device::*)() const>(&Device::IsActive)>);
static_assert(Offers<static_cast<TimecodeType (Device::*)() const>(&Device::GetType)>);
static_assert(Offers<static_cast<void (Device::*)(const Device::Id&)>(&Device::emitDeviceAdded)>);
static_assert(Offers<static_cast<void (Device::*)(const Device::Id&)>(&Device::emitDeviceRemoved)>);
static_assert(
    Offers<static_cast<void (Device::*)(const Device::Id&, const Frame&)>(&Device::emitFrameRead)>);
static_assert(Offers<static_cast<void (Device::*)(const Device::Id&)>(&Device::deviceAdded)>);
static_assert(Offers<static_cast<void (Device::*)(const Device::Id&)>(&Device::deviceRemoved)>);
static_assert(
    Offers<static_cast<void (Device::*)(const Device::Id&, const Frame&)>(&Device::frameRead)>);

TEST(DeviceShape, TypeIsTheOneGiven)
{
    for (const auto type :
         {Hardware::TimecodeType_None, Hardware::TimecodeType_Ltc, Hardware::TimecodeType_Invalid})
        EXPECT_EQ(StubDevice(type).GetType(), type);
}

TEST(DeviceShape, BelongsToItsParent)
{
    QObject parent;
    auto* const device = new StubDevice(Hardware::TimecodeType_Ltc, &parent);
    EXPECT_EQ(device->parent(), &parent);
}

TEST(DeviceShape, AnIdNamesNothingAtFirst)
{
    const Device::Id id;
    EXPECT_EQ(id.device, nullptr);
    EXPECT_EQ(id.number, 0U);
}

TEST(DeviceShape, IdsCompareByDeviceAndNumber)
{
    StubDevice devices[2];
    const Device::Id id{&devices[0], 1};
    EXPECT_EQ(id, (Device::Id{&devices[0], 1}));
    EXPECT_NE(id, (Device::Id{&devices[0], 2}));
    EXPECT_NE(id, (Device::Id{&devices[1], 1}));
    const std::set<Device::Id> ids{{&devices[1], 0}, {&devices[0], 2}, id, id};
    EXPECT_EQ(ids.size(), 3U);
    EXPECT_TRUE(id < (Device::Id{&devices[0], 2}));
    EXPECT_TRUE(id < (Device::Id{&devices[1], 0}));
    EXPECT_FALSE((Device::Id{&devices[1], 0}) < id);
    EXPECT_FALSE(id < id);
}

/// Makes QObject's last virtual operation visible.
struct Probe : StubDevice {
    static auto GetLastOfQObject() { return &Probe::disconnectNotify; }
};

/// Place of a virtual operation in the table, in bytes, as the C++ ABI of this platform keeps it in
/// pointers to members.
template <class Member> std::ptrdiff_t GetSlot(Member member)
{
    std::ptrdiff_t slot = 0;
    std::memcpy(&slot, &member, sizeof slot);
    return slot - 1;
}

TEST(DeviceShape, VirtualOperationsFollowThoseOfQObjectInOrder)
{
    constexpr std::ptrdiff_t Slot = sizeof(void*);
    const std::ptrdiff_t last = GetSlot(Probe::GetLastOfQObject());
    EXPECT_EQ(GetSlot(&Device::Enable), last + Slot);
    EXPECT_EQ(GetSlot(&Device::Disable), last + 2 * Slot);
    EXPECT_EQ(GetSlot(&Device::IsEnabled), last + 3 * Slot);
    EXPECT_EQ(GetSlot(&Device::IsActive), last + 4 * Slot);
}

} // namespace
