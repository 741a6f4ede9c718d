// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <tuple>
#include <type_traits>

#include "widget/ltc_widget.h"
#include "widget/trackball_widget.h"
#include "widget/um_vex_next_wing.h"
#include "widget/vex4_top_box.h"

using namespace Hardware;

namespace
{

typedef std::tuple<UmWing::ButtonEvent, UmWing::FaderEvent, UmWing::EncoderEvent,
                   UmWing::TrackballEvent, UmWing::LedEvent, UmWing::ConfigurationEvent,
                   UmVexNextWing::MotorizedFaderEvent, UmVexNextWing::KeyboardDrawerEvent,
                   TrackballWidget::TrackballEvent, Vex4TopBox::ButtonEvent,
                   LtcWidget::TimecodeEvent>
    EventClasses;

/// How many of the event classes are the same as a class or its base.
template <class Derived, class... Events> constexpr int CountBases(const std::tuple<Events...>*)
{
    return (... + (std::is_base_of_v<Events, Derived> ? 1 : 0));
}

template <class... Events> constexpr bool StandAlone(const std::tuple<Events...>* all)
{
    return (... && (CountBases<Events>(all) == 1));
}

template <class... Events> constexpr bool AreEvents(const std::tuple<Events...>*)
{
    return (... && std::is_base_of_v<UmWidget::Event, Events>);
}

constexpr const EventClasses* All = nullptr;

TEST(WidgetEventClasses, NoneDerivesFromAnother)
{
    EXPECT_TRUE(StandAlone(All));
}

TEST(WidgetEventClasses, AllAreEventsOfAWidget)
{
    EXPECT_TRUE(AreEvents(All));
}

} // namespace
