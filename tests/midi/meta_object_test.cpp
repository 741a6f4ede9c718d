// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaType>

#include "hardware/midi/device.h"

using Hardware::Midi::Device;

namespace
{

const QMetaObject& Meta = Device::staticMetaObject;

QByteArray GetSignature(int index)
{
    return Meta.method(Meta.methodOffset() + index).methodSignature();
}

/// What a slot connected by name would take.
QMetaType GetArgumentType(int index)
{
    return Meta.method(Meta.methodOffset() + index).parameterMetaType(0);
}

} // namespace

TEST(MidiMetaObject, ClassNameIsQualified)
{
    EXPECT_STREQ(Meta.className(), "Hardware::Midi::Device");
}

TEST(MidiMetaObject, ClassDerivesFromQObjectDirectly)
{
    EXPECT_EQ(Meta.superClass(), &QObject::staticMetaObject);
}

TEST(MidiMetaObject, HasFourMethodsAllOfThemSignals)
{
    ASSERT_EQ(Meta.methodCount() - Meta.methodOffset(), 4);
    for (int i = Meta.methodOffset(); i < Meta.methodCount(); ++i)
        EXPECT_EQ(Meta.method(i).methodType(), QMetaMethod::Signal) << i;
}

TEST(MidiMetaObject, HasNoPropertiesAndNoEnumerations)
{
    EXPECT_EQ(Meta.propertyCount(), Meta.propertyOffset());
    EXPECT_EQ(Meta.enumeratorCount(), Meta.enumeratorOffset());
    EXPECT_EQ(Meta.constructorCount(), 0);
}

TEST(MidiMetaObject, SignalsStandInTheirOrder)
{
    EXPECT_EQ(GetSignature(0), "txMidiDeviceAdded(Hardware::Midi::Device::Id)");
    EXPECT_EQ(GetSignature(1), "txMidiDeviceRemoved(Hardware::Midi::Device::Id)");
    EXPECT_EQ(GetSignature(2), "txSysExMessage(Hardware::Midi::Device::SysExMessage)");
    EXPECT_EQ(GetSignature(3), "txShortMessage(Hardware::Midi::Device::ShortMessage)");
}

TEST(MidiMetaObject, SignaturesAreNormalised)
{
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(QMetaObject::normalizedSignature(GetSignature(i)), GetSignature(i));
}

TEST(MidiMetaObject, ArgumentTypesAreKnown)
{
    EXPECT_EQ(GetArgumentType(0), QMetaType::fromType<Device::Id>());
    EXPECT_EQ(GetArgumentType(1), QMetaType::fromType<Device::Id>());
    EXPECT_EQ(GetArgumentType(2), QMetaType::fromType<Device::SysExMessage>());
    EXPECT_EQ(GetArgumentType(3), QMetaType::fromType<Device::ShortMessage>());
}

// By name: nothing else in this test's process has asked for the types.
TEST(MidiMetaTypes, AreRegisteredByNameWhenTheLibraryIsLoaded)
{
    for (const char* const name :
         {"Hardware::Midi::Device::Id", "Hardware::Midi::Device::ShortMessage",
          "Hardware::Midi::Device::SysExMessage"}) {
        const QMetaType type = QMetaType::fromName(name);
        EXPECT_TRUE(type.isValid()) << name;
        EXPECT_TRUE(type.isRegistered()) << name;
        EXPECT_STREQ(type.name(), name);
    }
}

TEST(MidiMetaTypes, HaveTheSizesOfTheirTypes)
{
    EXPECT_EQ(QMetaType::fromName("Hardware::Midi::Device::Id").sizeOf(),
              static_cast<qsizetype>(sizeof(Device::Id)));
    EXPECT_EQ(QMetaType::fromName("Hardware::Midi::Device::ShortMessage").sizeOf(),
              static_cast<qsizetype>(sizeof(Device::ShortMessage)));
    EXPECT_EQ(QMetaType::fromName("Hardware::Midi::Device::SysExMessage").sizeOf(),
              static_cast<qsizetype>(sizeof(Device::SysExMessage)));
}
