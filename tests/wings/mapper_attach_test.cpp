// SPDX-License-Identifier: MIT
// Wings that come and go.
#include "os/log.h"
#include "support/log_capture.h"
#include "widget/trackball_widget.h"
#include "wings/wing_bench.h"

using Hardware::NoWidgetKey;
using Hardware::WingMapper;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr Hardware::WidgetKey Playback = 0x10001;
constexpr Hardware::WidgetKey Programmer = 0x30001;

class WingMapperAttach : public TestSupport::WingBench
{
};

} // namespace

TEST_F(WingMapperAttach, BeginAnnouncesTheWingsThatAreAttached)
{
    Add("PlaybackWing");
    Add("ProgrammerWing");
    WingMapper::Begin();
    EXPECT_THAT(m_recorder.GetSignals(),
                ElementsAre("wing_change 65537 1", "wing_change 196609 1"));
    EXPECT_THAT(m_mapper.connected_wings(), ElementsAre(Playback, Programmer));
}

TEST_F(WingMapperAttach, ClassesAreAnnouncedInTheirOrder)
{
    for (const char* const model :
         {"ProgrammerWing", "PlaybackWing", "ExpansionWing", "Vex4ExternalPlayback", "Vex4Petite",
          "Vex4Sprig", "Vex4Pixi", "Vex4Keystone"})
        Add(model);
    WingMapper::Begin();
    EXPECT_THAT(m_recorder.GetSignals(),
                ElementsAre("wing_change 393217 1", "wing_change 327681 1", "wing_change 262145 1",
                            "wing_change 1114113 1", "wing_change 1179649 1",
                            "wing_change 131073 1", "wing_change 65537 1", "wing_change 196609 1"));
}

TEST_F(WingMapperAttach, WithinAClassWingsAreAnnouncedByTheirPath)
{
    Add("PlaybackWing", 1, L"b");
    Add("PlaybackWing", 2, L"a");
    WingMapper::Begin();
    EXPECT_THAT(m_recorder.GetSignals(), ElementsAre("wing_change 65538 1", "wing_change 65537 1"));
}

TEST_F(WingMapperAttach, AWingThatIsPluggedLaterIsAnnouncedAndLogged)
{
    WingMapper::Begin();
    const TestSupport::LogCapture log;
    Add("PlaybackWing");
    EXPECT_THAT(m_recorder.GetSignals(), ElementsAre("wing_change 65537 1"));
    EXPECT_THAT(log.GetTexts(), ElementsAre("Wing found 65537"));
    EXPECT_EQ(log.GetLines().front().level, Os::Log::Note);
    EXPECT_EQ(log.GetLines().front().context, "Hardware/WingMapper");
    EXPECT_TRUE(m_mapper.is_wing_connected(Playback));
}

TEST_F(WingMapperAttach, ARemovedWingKeepsItsEntryButNoWidget)
{
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    WingMapper::Begin();
    m_recorder.Take();
    const TestSupport::LogCapture log;
    wing.Unplug();
    EXPECT_THAT(m_recorder.GetSignals(), ElementsAre("wing_change 65537 0"));
    EXPECT_THAT(log.GetTexts(), ElementsAre("Wing removed 65537"));
    EXPECT_EQ(log.GetLines().front().level, Os::Log::Note);
    EXPECT_THAT(m_mapper.connected_wings(), ElementsAre(Playback));
    EXPECT_FALSE(m_mapper.is_wing_connected(Playback));
    EXPECT_EQ(m_mapper.get_wing(Playback), nullptr);
    EXPECT_EQ(wing.CountOpen(), 0);
}

TEST_F(WingMapperAttach, APluggedAgainWingReusesItsEntry)
{
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    WingMapper::Begin();
    m_recorder.Take();
    wing.Unplug();
    wing.Plug();
    EXPECT_THAT(m_recorder.GetSignals(), ElementsAre("wing_change 65537 0", "wing_change 65537 1"));
    EXPECT_THAT(m_mapper.connected_wings(), ElementsAre(Playback));
    EXPECT_NE(m_mapper.get_wing(Playback), nullptr);
}

TEST_F(WingMapperAttach, ASecondWingOfOneKeyReplacesTheFirst)
{
    Desk::VirtualWidget& first = Add("PlaybackWing", 1, L"a");
    WingMapper::Begin();
    Add("PlaybackWing", 1, L"b");
    EXPECT_EQ(m_mapper.get_wing(Playback)->GetMapData().GetDevicePath(), L"b");
    m_recorder.Take();
    first.Unplug(); // no entry holds it any more
    EXPECT_THAT(m_recorder.GetSignals(), IsEmpty());
    EXPECT_TRUE(m_mapper.is_wing_connected(Playback));
}

TEST_F(WingMapperAttach, AWingWithoutSerialNumberIsAnnouncedUnderNoKey)
{
    WingMapper::Begin();
    const TestSupport::LogCapture log;
    m_bus.Add({"PlaybackWing", {}, {}});
    EXPECT_THAT(m_recorder.GetSignals(), ElementsAre("wing_change 4294967295 1"));
    EXPECT_THAT(log.GetTexts(), ElementsAre("Wing found 4294967295"));
    EXPECT_TRUE(m_mapper.is_wing_connected(NoWidgetKey));
}

TEST_F(WingMapperAttach, TheRemovalOfAWingWithoutKeyIsSwallowed)
{
    WingMapper::Begin();
    Desk::VirtualWidget& wing = m_bus.Add({"PlaybackWing", {}, {}});
    m_recorder.Take();
    const TestSupport::LogCapture log;
    wing.Unplug();
    EXPECT_THAT(m_recorder.GetSignals(), IsEmpty());
    EXPECT_THAT(log.GetTexts(), IsEmpty());
    EXPECT_EQ(m_mapper.get_wing(NoWidgetKey), nullptr);
}

TEST_F(WingMapperAttach, EventsOfAWingWithoutKeyAreSwallowed)
{
    WingMapper::Begin();
    Desk::VirtualWidget& wing = m_bus.Add({"PlaybackWing", {}, {}});
    m_recorder.Take();
    wing.Press(0);
    EXPECT_THAT(m_recorder.GetSignals(), IsEmpty());
}

TEST_F(WingMapperAttach, TheRemovalOfAWingThatIsNotHeldIsSilent)
{
    WingMapper::Begin();
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    WingMapper::End();
    WingMapper::Begin();
    wing.Unplug();
    EXPECT_THAT(m_recorder.Take(),
                ElementsAre("wing_change 65537 1", "wing_change 65537 1", "wing_change 65537 0"));
    const TestSupport::LogCapture log;
    QMetaObject::invokeMethod(&m_mapper, "wing_remove", Qt::DirectConnection,
                              Q_ARG(Hardware::WidgetMapData, Hardware::WidgetMapData()));
    EXPECT_THAT(m_recorder.GetSignals(), IsEmpty());
    EXPECT_THAT(log.GetTexts(), IsEmpty());
}

TEST_F(WingMapperAttach, AWidgetThatTheFactoryDoesNotMakeIsKeptUnderKeyZero)
{
    WingMapper::Begin();
    QMetaObject::invokeMethod(&m_mapper, "wing_add", Qt::DirectConnection,
                              Q_ARG(Hardware::WidgetMapData, Hardware::WidgetMapData()));
    EXPECT_THAT(m_recorder.GetSignals(), ElementsAre("wing_change 0 1"));
    EXPECT_THAT(m_mapper.connected_wings(), ElementsAre(0U));
    EXPECT_EQ(m_mapper.get_wing(0), nullptr);
    EXPECT_FALSE(m_mapper.is_wing_connected(0));
}

TEST_F(WingMapperAttach, EndForgetsAllWingsWithoutASignal)
{
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    WingMapper::Begin();
    m_recorder.Take();
    WingMapper::End();
    EXPECT_THAT(m_recorder.GetSignals(), IsEmpty());
    EXPECT_THAT(m_mapper.connected_wings(), IsEmpty());
    wing.Press(0);
    wing.Unplug();
    wing.Plug();
    EXPECT_THAT(m_recorder.GetSignals(), IsEmpty());
}

TEST_F(WingMapperAttach, BeginAfterEndBringsEverythingOnce)
{
    TestSupport::SetConsole(7);
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    Desk::VirtualWidget& ball = Add("TrackballWidget");
    Desk::VirtualWidget& bar = Add("Vex4TopBox");
    for (int round = 0; round < 3; ++round) {
        WingMapper::Begin();
        EXPECT_THAT(m_recorder.Take(), ElementsAre("wing_change 65537 1", "wing_change 458753 1",
                                                   "wing_change 524289 1"));
        wing.Press(0);
        ball.RollAxis(0, 5);
        bar.TouchBar(1, true);
        EXPECT_THAT(m_recorder.Take(),
                    ElementsAre("button_press 65537 70 1 1", "trackball_move 524289 5 0 0",
                                "button_press 458753 769 65535 1"));
        if (round > 0)
            WingMapper::End();
    }
}

TEST_F(WingMapperAttach, TheTrackballIsNoWingButHasAWidget)
{
    TestSupport::SetConsole(9);
    Add("TrackballWidget");
    WingMapper::Begin();
    EXPECT_FALSE(m_mapper.is_wing_connected(0x80001));
    EXPECT_NE(dynamic_cast<Hardware::TrackballWidget*>(m_mapper.get_wing(0x80001)), nullptr);
}

TEST_F(WingMapperAttach, EndDestroysTheWingsItHeld)
{
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    WingMapper::Begin();
    Hardware::WidgetMapData mapData = m_mapper.get_wing(Playback)->GetMapData();
    mapData.StopReader();
    EXPECT_EQ(wing.CountOpen(), 1); // held by the wing alone
    WingMapper::End();
    EXPECT_EQ(wing.CountOpen(), 0);
}

TEST_F(WingMapperAttach, AWingThatIsReplacedIsDestroyed)
{
    Desk::VirtualWidget& first = Add("PlaybackWing", 1, L"a");
    WingMapper::Begin();
    Hardware::WidgetMapData mapData = m_mapper.get_wing(Playback)->GetMapData();
    mapData.StopReader();
    Add("PlaybackWing", 1, L"b");
    EXPECT_EQ(first.CountOpen(), 0);
}

TEST_F(WingMapperAttach, UnknownKeysHaveNoWing)
{
    WingMapper::Begin();
    EXPECT_FALSE(m_mapper.is_wing_connected(1));
    EXPECT_EQ(m_mapper.get_wing(1), nullptr);
    EXPECT_THAT(m_mapper.connected_wings(), IsEmpty());
}

TEST_F(WingMapperAttach, SignalsOfPluggedWingsComeOnTheDriversThread)
{
    WingMapper::Begin();
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    wing.Press(0);
    wing.Unplug();
    const auto threads = m_recorder.GetThreads();
    ASSERT_EQ(threads.size(), 3U);
    EXPECT_NE(threads[0], std::this_thread::get_id());
    EXPECT_EQ(threads[1], threads[0]);
    EXPECT_EQ(threads[2], threads[0]);
}

TEST_F(WingMapperAttach, SlotsMayAskAndWorkTheMapper)
{
    WingMapper::Begin();
    QObject::connect(
        &m_mapper, &WingMapper::wing_change, &m_recorder,
        [this](Hardware::WidgetKey k, bool isPresent) {
            EXPECT_EQ(m_mapper.is_wing_connected(k), isPresent);
            m_mapper.connected_wings();
            m_mapper.set_led_all(k, Hardware::UmWing::LedState_On);
        },
        Qt::DirectConnection);
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    EXPECT_EQ(wing.GetLed(0), Hardware::UmWing::LedState_On);
    wing.Unplug();
    EXPECT_EQ(m_recorder.GetSignals().size(), 2U);
}
