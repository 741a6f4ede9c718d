// SPDX-License-Identifier: MIT
// What becomes of the events of widgets.
#include "os/log.h"
#include "support/log_capture.h"
#include "widget/ltc_widget.h"
#include "widget/trackball_widget.h"
#include "widget/um_vex_next_wing.h"
#include "widget/vex4_top_box.h"
#include "wings/wing_bench.h"

using Hardware::UmVexNextWing;
using Hardware::UmWidget;
using Hardware::UmWing;
using Hardware::WingMapper;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class WingMapperEvents : public TestSupport::WingBench
{
protected:
    WingMapperEvents()
    {
        TestSupport::SetConsole(7);
        WingMapper::Begin();
    }

    /// What an event of a widget is signalled as.
    std::vector<std::string> GetSignalsOf(Desk::VirtualWidget& widget, const UmWidget::Event* event)
    {
        m_recorder.Take();
        UmWidget* const held = m_mapper.get_wing(widget.GetKey());
        QMetaObject::invokeMethod(
            &m_mapper, "wing_read", Qt::DirectConnection,
            Q_ARG(Hardware::WidgetSignaller::Event,
                  (Hardware::WidgetSignaller::Event{held->GetMapData(), event})));
        return m_recorder.Take();
    }
};

struct UnknownEvent : UmWidget::Event {
};

} // namespace

TEST_F(WingMapperEvents, AButtonIsSignalledThroughItsMap)
{
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    m_recorder.Take();
    wing.Press(11);
    wing.Release(11);
    wing.Press(50);
    EXPECT_THAT(m_recorder.GetSignals(),
                ElementsAre("button_press 65537 71 2 1", "button_press 65537 71 2 0",
                            "button_press 65537 150 65535 1"));
}

TEST_F(WingMapperEvents, AnyPressedByteButZeroIsAPress)
{
    EXPECT_THAT(
        GetSignalsOf(Add("PlaybackWing"), std::make_unique<UmWing::ButtonEvent>(0, 255).get()),
        ElementsAre("button_press 65537 70 1 1"));
}

TEST_F(WingMapperEvents, AButtonOfTheBarHasTheLow16BitsOfItsKey)
{
    Desk::VirtualWidget& bar = Add("Vex4TopBox");
    m_recorder.Take();
    bar.TouchBar(2, true);
    bar.TouchBar(2, false);
    ASSERT_GT(Hardware::Vex4TopBox::GetKey(2), 0xFFFF);
    EXPECT_THAT(m_recorder.GetSignals(),
                ElementsAre("button_press 458753 770 65535 1", "button_press 458753 770 65535 0"));
}

TEST_F(WingMapperEvents, FadersAndMotorFadersAreSignalledApart)
{
    Desk::VirtualWidget& plain = Add("PlaybackWing");
    Desk::VirtualWidget& motor = Add("Vex4ExternalPlayback");
    m_recorder.Take();
    plain.MoveFader(3, 200);
    motor.MoveFader(4, -1);
    EXPECT_THAT(m_recorder.GetSignals(),
                ElementsAre("fader_move 65537 3 200", "fader_motor_move 262145 4 -1"));
}

TEST_F(WingMapperEvents, AnEncoderHasTheFirstFieldOfItsMap)
{
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    m_recorder.Take();
    wing.TurnEncoder(1, -4);
    wing.TurnEncoder(7, 2);
    EXPECT_THAT(m_recorder.GetSignals(),
                ElementsAre("encoder_move 327681 221 -4", "encoder_move 327681 207 2"));
}

TEST_F(WingMapperEvents, ATrackballOfAWingHasNoThirdAxis)
{
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    m_recorder.Take();
    wing.RollTrackball(3, -4);
    EXPECT_THAT(m_recorder.GetSignals(), ElementsAre("trackball_move 327681 3 -4 0"));
}

TEST_F(WingMapperEvents, TheTrackballMovesAlongItsAxis)
{
    Desk::VirtualWidget& ball = Add("TrackballWidget");
    m_recorder.Take();
    for (int axis = 0; axis < 4; ++axis)
        ball.RollAxis(axis, 7);
    ball.RollAxis(-1, 7);
    EXPECT_THAT(m_recorder.GetSignals(),
                ElementsAre("trackball_move 524289 7 0 0", "trackball_move 524289 0 7 0",
                            "trackball_move 524289 0 0 7", "trackball_move 524289 0 0 0",
                            "trackball_move 524289 0 0 0"));
}

TEST_F(WingMapperEvents, AChangedLedIsSignalled)
{
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    m_recorder.Take();
    wing.ChangeLed(5, UmWing::LedState_Flash);
    EXPECT_THAT(m_recorder.GetSignals(), ElementsAre("led_change 65537 5 2"));
}

TEST_F(WingMapperEvents, TheDrawerIsSignalledWithBothNumbers)
{
    Desk::VirtualWidget& wing = Add("Vex4DeskPlayback");
    m_recorder.Take();
    wing.CloseDrawer();
    wing.OpenDrawer();
    EXPECT_THAT(m_recorder.GetSignals(),
                ElementsAre("button_press 720897 75 0 1", "keyboard_change 720897 0 1",
                            "button_press 720897 75 0 0", "keyboard_change 720897 0 0"));
    EXPECT_THAT(
        GetSignalsOf(wing, std::make_unique<UmVexNextWing::KeyboardDrawerEvent>(8, 9).get()),
        ElementsAre("keyboard_change 720897 8 9"));
}

TEST_F(WingMapperEvents, AConfiguredExpansionWingIsSignalledWithItsConfiguration)
{
    Desk::VirtualWidget& wing = Add("ExpansionWing");
    m_recorder.Take();
    wing.Configure({17, 18});
    EXPECT_THAT(m_recorder.GetSignals(), ElementsAre("xwing_config 131073 1 17 18"));
}

TEST_F(WingMapperEvents, AnotherKindOfConfigurationIsSilent)
{
    Desk::VirtualWidget& wing = Add("ExpansionWing");
    const TestSupport::LogCapture log("Hardware/WingMapper", Os::Log::AllLevels);
    for (const int kind : {7, 9, 0, -8})
        EXPECT_THAT(GetSignalsOf(wing, std::make_unique<UmWing::ConfigurationEvent>(kind).get()),
                    IsEmpty());
    EXPECT_THAT(log.GetTexts(), IsEmpty());
}

TEST_F(WingMapperEvents, AConfigurationOfAnotherWingIsSilent)
{
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    const TestSupport::LogCapture log("Hardware/WingMapper", Os::Log::AllLevels);
    EXPECT_THAT(GetSignalsOf(wing, std::make_unique<UmWing::ConfigurationEvent>(8).get()),
                IsEmpty());
    EXPECT_THAT(log.GetTexts(), IsEmpty());
}

TEST_F(WingMapperEvents, WhatHasNoSignalIsLoggedAsTrace)
{
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    const TestSupport::LogCapture log("Hardware/WingMapper", Os::Log::AllLevels);
    EXPECT_THAT(GetSignalsOf(wing, std::make_unique<UnknownEvent>().get()), IsEmpty());
    EXPECT_THAT(
        GetSignalsOf(wing,
                     std::make_unique<Hardware::LtcWidget::TimecodeEvent>(1, 2, 3, 4, 0).get()),
        IsEmpty());
    EXPECT_THAT(GetSignalsOf(wing, nullptr), IsEmpty());
    EXPECT_EQ(log.Count("Event without signal"), 3U);
    EXPECT_EQ(log.GetLines().front().level, Os::Log::Trace);
}

TEST_F(WingMapperEvents, NoEventWithoutSignalIsLoggedByDefault)
{
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    const TestSupport::LogCapture log;
    EXPECT_THAT(GetSignalsOf(wing, nullptr), IsEmpty());
    EXPECT_THAT(log.GetTexts(), IsEmpty());
}

TEST_F(WingMapperEvents, AButtonOfWhatIsNoWingIsIgnored)
{
    Desk::VirtualWidget& ball = Add("TrackballWidget");
    const TestSupport::LogCapture log("Hardware/WingMapper", Os::Log::AllLevels);
    EXPECT_THAT(GetSignalsOf(ball, std::make_unique<UmWing::ButtonEvent>(0, 1).get()), IsEmpty());
    EXPECT_THAT(GetSignalsOf(ball, std::make_unique<UmWing::EncoderEvent>(0, 1).get()), IsEmpty());
    EXPECT_THAT(log.GetTexts(), IsEmpty());
}

TEST_F(WingMapperEvents, AnEventOfAWingThatIsGoneIsIgnored)
{
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    const auto mapData = m_mapper.get_wing(wing.GetKey())->GetMapData();
    wing.Unplug();
    m_recorder.Take();
    const UmWing::ButtonEvent event(0, 1);
    QMetaObject::invokeMethod(&m_mapper, "wing_read", Qt::DirectConnection,
                              Q_ARG(Hardware::WidgetSignaller::Event,
                                    (Hardware::WidgetSignaller::Event{mapData, &event})));
    EXPECT_THAT(m_recorder.GetSignals(), IsEmpty());
}

TEST_F(WingMapperEvents, AnEventGoesToTheWingOfItsDeviceNotOfItsKey)
{
    Add("PlaybackWing", 1, L"a");
    Desk::VirtualWidget& second = Add("PlaybackWing", 2, L"b");
    m_recorder.Take();
    second.Press(0);
    EXPECT_THAT(m_recorder.GetSignals(), ElementsAre("button_press 65538 70 1 1"));
}

TEST_F(WingMapperEvents, NoLockIsHeldOverASignal)
{
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    // End() takes the lock for writing.
    QObject::connect(
        &m_mapper, &WingMapper::button_press, &m_recorder, [] { WingMapper::End(); },
        Qt::DirectConnection);
    wing.Press(0);
    EXPECT_THAT(m_mapper.connected_wings(), IsEmpty());
}

TEST_F(WingMapperEvents, ASlotMayUnplugTheWingItHearsFrom)
{
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    QObject::connect(
        &m_mapper, &WingMapper::button_press, &m_recorder,
        [&] {
            wing.Unplug();
            m_mapper.set_led_all(wing.GetKey(), UmWing::LedState_On);
        },
        Qt::DirectConnection);
    m_recorder.Take();
    wing.Press(0);
    m_bus.Flush();
    EXPECT_THAT(m_recorder.GetSignals(),
                ElementsAre("button_press 327681 70 1 1", "wing_change 327681 0"));
}
