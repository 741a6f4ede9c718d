// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "hardware/midi/device.h"

using Hardware::Midi::Device;
using testing::ElementsAre;
using testing::ElementsAreArray;

// What applications are compiled against.
static_assert(std::is_same_v<decltype(&Device::GetInputs), std::list<std::wstring> (*)()>);
static_assert(std::is_same_v<decltype(&Device::GetOutputs), std::list<std::wstring> (*)()>);
static_assert(std::is_same_v<decltype(&Device::SetInput), void (Device::*)(const std::wstring&)>);
static_assert(std::is_same_v<decltype(&Device::SetOutput), void (Device::*)(const std::wstring&)>);
static_assert(std::is_same_v<decltype(&Device::EnableReceive), void (Device::*)(bool)>);
static_assert(std::is_same_v<decltype(&Device::IsReceiveEnabled), bool (Device::*)() const>);
static_assert(std::is_same_v<decltype(&Device::EnableTransmit), void (Device::*)(bool)>);
static_assert(std::is_same_v<decltype(&Device::IsTransmitEnabled), bool (Device::*)() const>);
static_assert(std::is_same_v<decltype(&Device::EnableTxRunningStatus), void (Device::*)(bool)>);
static_assert(std::is_same_v<decltype(&Device::SendShortMessage), bool (Device::*)(unsigned int)>);
static_assert(std::is_same_v<decltype(&Device::SendBuffer),
                             bool (Device::*)(const unsigned char*, unsigned int)>);
static_assert(std::is_default_constructible_v<Device>);
static_assert(!std::is_constructible_v<Device, QObject*>);

static_assert(std::is_same_v<decltype(Device::Id::device), Device*>);
static_assert(std::is_same_v<decltype(Device::Id::number), std::uint32_t>);
static_assert(std::is_same_v<decltype(Device::ShortMessage::id), const Device::Id*>);
static_assert(std::is_same_v<decltype(Device::ShortMessage::message), std::uint32_t>);
static_assert(std::is_same_v<decltype(Device::SysExMessage::id), const Device::Id*>);
static_assert(std::is_same_v<decltype(Device::SysExMessage::data), const unsigned char*>);
static_assert(std::is_same_v<decltype(Device::SysExMessage::length), std::uint32_t>);
static_assert(std::is_same_v<decltype(Device::noteMessageLength), const unsigned char[16]>);
static_assert(std::is_same_v<decltype(Device::systemMessageLength), const unsigned int[16]>);

TEST(MidiMessageLayout, IdIsTheDeviceThenTheNumber)
{
    EXPECT_EQ(offsetof(Device::Id, device), 0U);
    EXPECT_EQ(offsetof(Device::Id, number), sizeof(void*));
}

TEST(MidiMessageLayout, IdsCompareByDeviceAndNumber)
{
    Device devices[2];
    const Device::Id id{&devices[0], 0};
    EXPECT_EQ(id, (Device::Id{&devices[0], 0}));
    EXPECT_NE(id, (Device::Id{&devices[1], 0}));
    EXPECT_NE(id, (Device::Id{&devices[0], 1}));
    EXPECT_TRUE(id < (Device::Id{&devices[0], 1}));
    EXPECT_TRUE(id < (Device::Id{&devices[1], 0}));
    EXPECT_FALSE((Device::Id{&devices[1], 0}) < id);
    EXPECT_FALSE(id < id);
}

TEST(MidiMessageLayout, ShortMessageIsTheIdThenTheWord)
{
    EXPECT_EQ(offsetof(Device::ShortMessage, id), 0U);
    EXPECT_EQ(offsetof(Device::ShortMessage, message), sizeof(void*));
}

TEST(MidiMessageLayout, SystemExclusiveMessageIsTheIdThenTheBytesThenTheirNumber)
{
    EXPECT_EQ(offsetof(Device::SysExMessage, id), 0U);
    EXPECT_EQ(offsetof(Device::SysExMessage, data), sizeof(void*));
    EXPECT_EQ(offsetof(Device::SysExMessage, length), 2 * sizeof(void*));
}

TEST(MidiMessageLayout, MessagesStartEmpty)
{
    const Device::Id id;
    const Device::ShortMessage shortMessage;
    const Device::SysExMessage sysExMessage;
    EXPECT_EQ(id.device, nullptr);
    EXPECT_EQ(id.number, 0U);
    EXPECT_EQ(shortMessage.id, nullptr);
    EXPECT_EQ(shortMessage.message, 0U);
    EXPECT_EQ(sysExMessage.id, nullptr);
    EXPECT_EQ(sysExMessage.data, nullptr);
    EXPECT_EQ(sysExMessage.length, 0U);
}

TEST(MidiMessageLayout, SendBufferIsTheFirstVirtualOperationAfterThoseOfQObject)
{
    // How the compiler's ABI writes a pointer to a virtual operation: its place in bytes, plus 1.
    bool (Device::*const operation)(const unsigned char*, unsigned int) = &Device::SendBuffer;
    std::ptrdiff_t place = 0;
    std::memcpy(&place, &operation, sizeof place);
    // metaObject, qt_metacast, qt_metacall, two destructors and seven more.
    EXPECT_EQ(place, 12 * static_cast<std::ptrdiff_t>(sizeof(void*)) + 1);
}

TEST(MidiMessageLengths, OfChannelMessagesGoByTheHighNibble)
{
    EXPECT_THAT(Device::noteMessageLength,
                ElementsAreArray({0, 0, 0, 0, 0, 0, 0, 0, 3, 3, 3, 3, 2, 2, 3, 0}));
}

TEST(MidiMessageLengths, OfSystemMessagesGoByTheLowNibble)
{
    EXPECT_THAT(Device::systemMessageLength,
                ElementsAre(128U, 2U, 3U, 1U, 1U, 1U, 1U, 1U, 1U, 1U, 1U, 1U, 1U, 1U, 1U, 1U));
}

TEST(MidiMessageLengths, OfSongSelectIsOneUnlikeTheStandard)
{
    EXPECT_EQ(Device::systemMessageLength[0x3], 1U);
}
