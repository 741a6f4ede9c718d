// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <QMetaMethod>
#include <string>
#include <type_traits>

#include "hardware/wing_mapper.h"

using Hardware::WingMapper;

namespace
{

struct Method {
    int index;
    const char* signature;
    const char* parameters;
    QMetaMethod::MethodType type;
    QMetaMethod::Access access;
};

constexpr auto Signal = QMetaMethod::Signal;
constexpr auto Slot = QMetaMethod::Slot;
constexpr auto Public = QMetaMethod::Public;
constexpr auto Private = QMetaMethod::Private;

constexpr Method Methods[] = {
    {0, "button_press(Hardware::WidgetKey,unsigned short,unsigned short,bool)", "k,p,m,ispress",
     Signal, Public},
    {1, "fader_move(Hardware::WidgetKey,unsigned short,int)", "k,i,v", Signal, Public},
    {2, "fader_motor_move(Hardware::WidgetKey,unsigned short,int)", "k,i,v", Signal, Public},
    {3, "encoder_move(Hardware::WidgetKey,unsigned short,int)", "k,i,v", Signal, Public},
    {4, "trackball_move(Hardware::WidgetKey,int,int,int)", "k,dx,dy,dz", Signal, Public},
    {5, "led_change(Hardware::WidgetKey,unsigned short,UmWing::LedState)", "k,i,v", Signal, Public},
    {6, "wing_change(Hardware::WidgetKey,bool)", "k,ispresent", Signal, Public},
    {7, "xwing_config(Hardware::WidgetKey,QRT_XWING_CONFIGURATION&)", "k,cfg", Signal, Public},
    {8, "keyboard_change(Hardware::WidgetKey,int,int)", "k,i,v", Signal, Public},
    {9, "set_led(Hardware::WidgetKey,unsigned short,unsigned short,Hardware::UmWing::LedState)",
     "k,pid,mid,v", Slot, Public},
    {10, "set_led_all(Hardware::WidgetKey,Hardware::UmWing::LedState)", "k,v", Slot, Public},
    {11, "set_led_section(Hardware::WidgetKey,int,Hardware::UmWing::LedState)", "k,s,v", Slot,
     Public},
    {12, "set_fader(Hardware::WidgetKey,unsigned short,int)", "k,mid,v", Slot, Public},
    {13, "set_xwing_surface(Hardware::WidgetKey,unsigned char,unsigned char)", "k,s,i", Slot,
     Public},
    {14, "clear_xwing_display(Hardware::WidgetKey,unsigned char)", "k,s", Slot, Public},
    {15, "refresh_state(Hardware::WidgetKey)", "k", Slot, Public},
    {16, "wing_read(Hardware::WidgetSignaller::Event)", "event", Slot, Private},
    {17, "wing_add(Hardware::WidgetMapData)", "mapData", Slot, Private},
    {18, "wing_remove(Hardware::WidgetMapData)", "mapData", Slot, Private},
};

const QMetaObject& Meta = WingMapper::staticMetaObject;

} // namespace

TEST(WingMapperMetaObject, ClassNameIsQualifiedAndDerivesFromQObject)
{
    EXPECT_STREQ(Meta.className(), "Hardware::WingMapper");
    EXPECT_EQ(Meta.superClass(), &QObject::staticMetaObject);
}

TEST(WingMapperMetaObject, ListsSignalsAndSlotsInTheirOrder)
{
    ASSERT_EQ(Meta.methodCount() - Meta.methodOffset(), 19);
    for (const Method& expected : Methods) {
        const QMetaMethod method = Meta.method(Meta.methodOffset() + expected.index);
        EXPECT_EQ(method.methodSignature(), QMetaObject::normalizedSignature(expected.signature));
        EXPECT_EQ(method.parameterNames().join(','), expected.parameters) << expected.signature;
        EXPECT_EQ(method.methodType(), expected.type) << expected.signature;
        EXPECT_EQ(method.access(), expected.access) << expected.signature;
    }
}

TEST(WingMapperMetaObject, ARecordIsPolymorphicAndDoesNotOwnItsWidget)
{
    static_assert(std::has_virtual_destructor_v<WingMapper::WingMapData>);
    static_assert(std::is_same_v<decltype(WingMapper::WingMapData::widget), Hardware::UmWidget*>);
    auto* const widget = new Hardware::UmWidget(Hardware::WidgetMapData());
    {
        const WingMapper::WingMapData record(widget);
        EXPECT_EQ(record.widget, widget);
    }
    EXPECT_EQ(widget->SerialNumber(), 0U);
    delete widget;
}

TEST(WingMapperMetaObject, QueriesAndLifeCycleHaveTheirSignatures)
{
    static_assert(std::is_same_v<decltype(&WingMapper::Get), WingMapper& (*)()>);
    static_assert(std::is_same_v<decltype(&WingMapper::Begin), void (*)()>);
    static_assert(std::is_same_v<decltype(&WingMapper::End), void (*)()>);
    static_assert(std::is_same_v<decltype(&WingMapper::is_wing_connected),
                                 bool (WingMapper::*)(Hardware::WidgetKey)>);
    static_assert(std::is_same_v<decltype(&WingMapper::get_wing),
                                 Hardware::UmWidget* (WingMapper::*)(Hardware::WidgetKey)>);
    static_assert(std::is_same_v<decltype(&WingMapper::connected_wings),
                                 std::set<Hardware::WidgetKey> (WingMapper::*)()>);
    static_assert(std::is_same_v<Hardware::WidgetKey, std::uint32_t>);
}
