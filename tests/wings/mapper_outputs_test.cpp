// SPDX-License-Identifier: MIT
// What the slots make wings do.
#include "os/log.h"
#include "support/log_capture.h"
#include "wings/wing_bench.h"

using Hardware::UmWing;
using Hardware::WingMapper;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
namespace Report = Standalone::Report;

namespace
{

class WingMapperOutputs : public TestSupport::WingBench
{
protected:
    WingMapperOutputs() { WingMapper::Begin(); }

    static std::vector<std::pair<unsigned short, unsigned short>>
    GetLedsSet(const Desk::VirtualWidget& wing)
    {
        std::vector<std::pair<unsigned short, unsigned short>> leds;
        for (const Report::Output& output : wing.GetLog())
            if (const auto* const led = std::get_if<Report::SetLed>(&output))
                leds.push_back(wing.GetModel().leds.at(led->index));
        return leds;
    }
};

} // namespace

TEST_F(WingMapperOutputs, ALedIsSetByPartAndMaster)
{
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    m_mapper.set_led(wing.GetKey(), 72, 3, UmWing::LedState_Flash);
    EXPECT_THAT(wing.GetLog(), ElementsAre(Report::Output(Report::SetLed{22, 2})));
}

TEST_F(WingMapperOutputs, AllLedsAreSetAtOnce)
{
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    m_mapper.set_led_all(wing.GetKey(), UmWing::LedState_Dim);
    EXPECT_THAT(wing.GetLog(), ElementsAre(Report::Output(Report::SetAllLed{3})));
}

TEST_F(WingMapperOutputs, AWingOfProductIdOneKeepsItsLedsAndState)
{
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    ASSERT_EQ(wing.GetModel().productId, 1);
    m_mapper.set_led(wing.GetKey(), 70, 1, UmWing::LedState_On);
    m_mapper.set_led_all(wing.GetKey(), UmWing::LedState_On);
    m_mapper.refresh_state(wing.GetKey());
    EXPECT_THAT(wing.GetLog(), IsEmpty());
}

TEST_F(WingMapperOutputs, ASectionIsSetAlsoOnAWingOfProductIdOne)
{
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    m_mapper.set_led_section(wing.GetKey(), 0, UmWing::LedState_On);
    EXPECT_THAT(wing.GetLog(), SizeIs(50));
}

TEST_F(WingMapperOutputs, ASectionIsSetMasterByMasterAndPartByPart)
{
    Desk::VirtualWidget& wing = Add("Vex4Petite");
    m_mapper.set_led_section(wing.GetKey(), 0, UmWing::LedState_On);
    std::vector<std::pair<unsigned short, unsigned short>> expected;
    for (int master = 1; master <= 5; ++master)
        for (const int part : {70, 71, 72, 74, 54})
            expected.emplace_back(part, master);
    EXPECT_EQ(GetLedsSet(wing), expected);
}

TEST_F(WingMapperOutputs, SectionsAreTenMastersApart)
{
    Desk::VirtualWidget& wing = Add("Vex4Keystone");
    m_mapper.set_led_section(wing.GetKey(), 1, UmWing::LedState_On);
    const auto leds = GetLedsSet(wing);
    ASSERT_THAT(leds, SizeIs(50));
    EXPECT_THAT(leds.front(), testing::Pair(70, 11));
    EXPECT_THAT(leds.back(), testing::Pair(54, 20));
}

TEST_F(WingMapperOutputs, SectionsAreTenMastersApartAlsoWhereThereAreFewer)
{
    Desk::VirtualWidget& wing = Add("Vex4Petite");
    m_mapper.set_led_section(wing.GetKey(), 1, UmWing::LedState_On);
    EXPECT_THAT(wing.GetLog(), IsEmpty());
    // The master ids wrap to those of section 0, as they would not at five apart.
    m_mapper.set_led_section(wing.GetKey(), 32768, UmWing::LedState_On);
    EXPECT_THAT(GetLedsSet(wing), SizeIs(25));
}

TEST_F(WingMapperOutputs, TheMasterOfASectionIsCutTo16Bits)
{
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    // 32768 * 10 = 5 * 65536: the master ids wrap to those of section 0.
    m_mapper.set_led_section(wing.GetKey(), 32768, UmWing::LedState_On);
    EXPECT_THAT(GetLedsSet(wing), SizeIs(50));
    wing.ClearLog();
    m_mapper.set_led_section(wing.GetKey(), 2147483647, UmWing::LedState_On);
    m_mapper.set_led_section(wing.GetKey(), -2147483647 - 1, UmWing::LedState_On);
    m_mapper.set_led_section(wing.GetKey(), -1, UmWing::LedState_On);
    EXPECT_THAT(GetLedsSet(wing), SizeIs(50)); // the smallest int times ten is a multiple of 65536
}

TEST_F(WingMapperOutputs, ASectionOfAWingWithoutMastersSetsNothing)
{
    Desk::VirtualWidget& wing = Add("ProgrammerWing");
    m_mapper.set_led_section(wing.GetKey(), 0, UmWing::LedState_On);
    EXPECT_THAT(wing.GetLog(), IsEmpty());
}

TEST_F(WingMapperOutputs, AMotorFaderTakesTheLow8Bits)
{
    Desk::VirtualWidget& wing = Add("Vex4ExternalPlayback");
    m_mapper.set_fader(wing.GetKey(), 2, 0x1FE);
    EXPECT_EQ(wing.GetFader(1), 0xFE);
    m_mapper.set_fader(wing.GetKey(), 2, -1);
    EXPECT_EQ(wing.GetFader(1), 0xFF);
}

TEST_F(WingMapperOutputs, OnlyNextGenerationWingsHaveMotorFaders)
{
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    m_mapper.set_fader(wing.GetKey(), 1, 100);
    EXPECT_THAT(wing.GetLog(), IsEmpty());
}

TEST_F(WingMapperOutputs, ASurfaceIsStagedAndNotSent)
{
    Desk::VirtualWidget& wing = Add("ExpansionWing");
    m_mapper.set_xwing_surface(wing.GetKey(), 255, 77);
    EXPECT_THAT(wing.GetLog(), IsEmpty());
    const auto* const held =
        dynamic_cast<Hardware::ExpansionWing*>(m_mapper.get_wing(wing.GetKey()));
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(held->GetSurface(255), 77);
    EXPECT_EQ(held->GetSurface(254), 0);
    m_mapper.clear_xwing_display(wing.GetKey(), 0);
    EXPECT_EQ(wing.GetSurface(255), 77);
}

TEST_F(WingMapperOutputs, AClearedDisplayLosesItsTenCellsAndTheTextsAreSent)
{
    Desk::VirtualWidget& wing = Add("ExpansionWing");
    auto* const held = dynamic_cast<Hardware::ExpansionWing*>(m_mapper.get_wing(wing.GetKey()));
    ASSERT_NE(held, nullptr);
    for (unsigned cell = 0; cell < 10; ++cell)
        for (unsigned char display = 3; display <= 5; ++display)
            held->SetCell(display, cell, 0x41 + cell);
    m_mapper.clear_xwing_display(wing.GetKey(), 4);
    ASSERT_THAT(wing.GetLog(), SizeIs(1));
    for (unsigned cell = 0; cell < 10; ++cell) {
        EXPECT_EQ(wing.GetCell(3, cell), 0x41 + cell);
        EXPECT_EQ(wing.GetCell(4, cell), 0U);
        EXPECT_EQ(wing.GetCell(5, cell), 0x41 + cell);
    }
}

TEST_F(WingMapperOutputs, TheLastDisplayCanBeCleared)
{
    Desk::VirtualWidget& wing = Add("ExpansionWing");
    m_mapper.clear_xwing_display(wing.GetKey(), 255);
    EXPECT_THAT(wing.GetLog(), SizeIs(1));
}

TEST_F(WingMapperOutputs, OnlyAnExpansionWingHasDisplays)
{
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    m_mapper.set_xwing_surface(wing.GetKey(), 0, 1);
    m_mapper.clear_xwing_display(wing.GetKey(), 0);
    EXPECT_THAT(wing.GetLog(), IsEmpty());
}

TEST_F(WingMapperOutputs, ARefreshedWingReportsItsControlsAgain)
{
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    wing.MoveFader(2, 99);
    wing.Press(0);
    m_recorder.Take();
    m_mapper.refresh_state(wing.GetKey());
    m_bus.Flush();
    EXPECT_THAT(m_recorder.GetSignals(),
                ElementsAre("button_press 327681 70 1 1", "fader_move 327681 2 99"));
}

TEST_F(WingMapperOutputs, UnknownRemovedAndForeignWingsAreIgnoredWithoutALine)
{
    TestSupport::SetConsole(9);
    Desk::VirtualWidget& gone = Add("Vex4Pixi");
    Desk::VirtualWidget& ball = Add("TrackballWidget");
    WingMapper::Begin();
    gone.Unplug();
    const TestSupport::LogCapture log("Hardware/WingMapper", Os::Log::AllLevels);
    for (const Hardware::WidgetKey key : {gone.GetKey(), ball.GetKey(), 1U, 0xFFFFFFFFU}) {
        m_mapper.set_led(key, 70, 1, UmWing::LedState_On);
        m_mapper.set_led_all(key, UmWing::LedState_On);
        m_mapper.set_led_section(key, 0, UmWing::LedState_On);
        m_mapper.set_fader(key, 1, 1);
        m_mapper.set_xwing_surface(key, 1, 1);
        m_mapper.clear_xwing_display(key, 1);
        m_mapper.refresh_state(key);
    }
    EXPECT_THAT(gone.GetLog(), IsEmpty());
    EXPECT_THAT(ball.GetLog(), IsEmpty());
    EXPECT_THAT(log.GetTexts(), IsEmpty());
}

TEST_F(WingMapperOutputs, AStuckWingHoldsUpNobody)
{
    Desk::VirtualWidget& stuck = Add("Vex4Pixi", 1);
    Desk::VirtualWidget& other = Add("Vex4Pixi", 2);
    stuck.SetFailing(true);
    m_mapper.set_led_all(stuck.GetKey(), UmWing::LedState_On);
    m_mapper.set_led_all(other.GetKey(), UmWing::LedState_On);
    EXPECT_EQ(stuck.GetLed(0), -1);
    EXPECT_EQ(other.GetLed(0), UmWing::LedState_On);
}
