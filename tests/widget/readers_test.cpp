// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/ltc_widget.h"
#include "widget/signal_log.h"
#include "widget/trackball_widget.h"
#include "widget/um_wing.h"
#include "widget/vex4_top_box.h"
#include "widget/widget_facts.h"
#include "widget/widget_signaller.h"

using namespace Hardware;

namespace Report = Standalone::Report;

namespace
{

struct ReadCase {
    Report::Input report;
    const char* wing;      ///< what WingReader makes of it
    const char* trackball; ///< TrackballReader
    const char* topBox;    ///< Vex4TopBoxReader
    const char* ltc;       ///< LtcReader
};

const ReadCase Cases[] = {
    {Report::Button{3, 1}, "button 3 1", "nothing", "nothing", "nothing"},
    {Report::Button{65535, 0}, "button 65535 0", "nothing", "nothing", "nothing"},
    {Report::Fader{4, -5}, "fader 4 -5", "nothing", "nothing", "nothing"},
    {Report::MotorFader{5, 255}, "motor fader 5 255", "nothing", "nothing", "nothing"},
    {Report::Encoder{6, -7}, "encoder 6 -7", "nothing", "nothing", "nothing"},
    {Report::WingTrackball{-8, 9}, "wing trackball -8 9", "nothing", "nothing", "nothing"},
    {Report::LedChange{10, 2}, "led 10 2", "nothing", "nothing", "nothing"},
    {Report::LedChange{10, 200}, "led 10 200", "nothing", "nothing", "nothing"},
    {Report::KeyboardDrawer{0, 1}, "drawer 0 1", "nothing", "nothing", "nothing"},
    {Report::Configuration{8, 1, {2}}, "configuration 8", "nothing", "nothing", "nothing"},
    {Report::TrackballAxis{2, -3}, "nothing", "trackball 2 -3", "nothing", "nothing"},
    {Report::BarButton{31, 1}, "nothing", "nothing", "bar 31 1", "nothing"},
    {Report::Timecode{23, 59, 58, 24, 1}, "nothing", "nothing", "nothing",
     "timecode 23 59 58 24 1"},
};

/// What a reader makes of a report that a widget of @p model sends.
std::string Read(WidgetReader reader, const char* model, const Report::Input& report)
{
    Desk::WidgetBus bus;
    auto& widget = bus.Add({model, 1, L"a"});
    WidgetSignaller signaller(reader);
    signaller.SetAutoReadRegister(true);
    signaller.RegisterWidgetClass(widget.GetModel().classId);
    const TestSupport::SignalLog log(signaller);
    widget.Send(report);
    const auto texts = log.Get();
    return texts.size() == 1 ? texts.front() : "not one signal";
}

TEST(Readers, OfWingsReadWhatWingsReport)
{
    for (const ReadCase& c : Cases)
        EXPECT_EQ(Read(&UmWing::WingReader, "PlaybackWing", c.report),
                  "read a: " + std::string(c.wing));
}

TEST(Readers, OfTheTrackballReadItsAxes)
{
    for (const ReadCase& c : Cases)
        EXPECT_EQ(Read(&TrackballWidget::TrackballReader, "TrackballWidget", c.report),
                  "read a: " + std::string(c.trackball));
}

TEST(Readers, OfTheButtonBarReadItsButtons)
{
    for (const ReadCase& c : Cases)
        EXPECT_EQ(Read(&Vex4TopBox::Vex4TopBoxReader, "Vex4TopBox", c.report),
                  "read a: " + std::string(c.topBox));
}

TEST(Readers, OfTheTimecodeBoardReadFrames)
{
    for (const ReadCase& c : Cases)
        EXPECT_EQ(Read(&LtcWidget::LtcReader, "LtcWidget", c.report),
                  "read a: " + std::string(c.ltc));
}

} // namespace
