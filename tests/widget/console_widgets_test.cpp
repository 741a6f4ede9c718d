// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/ltc_widget.h"
#include "widget/vex4_top_box.h"
#include "widget/widget_facts.h"

using Hardware::LtcWidget;
using Hardware::Vex4TopBox;
using testing::ElementsAre;

namespace Report = Standalone::Report;

namespace
{

TEST(TopBox, ItsKeysCarryThePartIdInTheirLowSixteenBits)
{
    for (int button = 0; button < 32; ++button)
        EXPECT_EQ(Vex4TopBox::GetKey(button) & 0xFFFF, 0x0300 + button);
}

TEST(TopBox, ItsKeysHaveBitsAboveThePartId)
{
    for (int button = 0; button < 32; ++button)
        EXPECT_NE(Vex4TopBox::GetKey(button) & ~0xFFFF, 0);
}

class LtcBoard : public testing::Test
{
protected:
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"LtcWidget", 1, L"a"});
    const std::unique_ptr<LtcWidget> board = TestSupport::Open<LtcWidget>(widget);
};

TEST_F(LtcBoard, ShowsEachLinkLightByItself)
{
    for (unsigned lights = 0; lights < 16; ++lights) {
        const auto lit = [lights](unsigned light) { return (lights >> light & 1U) != 0; };
        const auto expect = [lights](unsigned light) {
            return static_cast<std::uint8_t>(lights >> light & 1U);
        };
        EXPECT_TRUE(board->SetLinkLights(lit(0), lit(1), lit(2), lit(3)));
        EXPECT_EQ(widget.GetLinkLights(),
                  (Report::SetLinkLights{expect(0), expect(1), expect(2), expect(3)}))
            << lights;
    }
}

TEST_F(LtcBoard, ShowsNothingOnADetachedBoard)
{
    widget.Unplug();
    EXPECT_FALSE(board->SetLinkLights(true, true, true, true));
    EXPECT_EQ(widget.GetLinkLights(), Report::SetLinkLights());
}

} // namespace
