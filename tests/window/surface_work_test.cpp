// SPDX-License-Identifier: MIT
#include "virtual-desk/surface_panel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "widget/vex4_top_box.h"
#include "window/surface_bench.h"

namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using VirtualDesk::ControlId;
using VirtualDesk::ControlKind;
using VirtualDesk::WingView;

class SurfaceWork : public TestSupport::SurfaceBench
{
};

TEST_F(SurfaceWork, AKeyIsDownWhileTheMouseHoldsIt)
{
    WingView& view = View("playback");
    Press(view, ControlKind::Button, 13);
    EXPECT_THAT(m_listener.Take(), ElementsAre("press 71/4"));
    EXPECT_TRUE(view.GetFace(ControlKind::Button, 13).isDown);
    Release(view, ControlKind::Button, 13);
    EXPECT_THAT(m_listener.Take(), ElementsAre("release 71/4"));
    EXPECT_FALSE(view.GetFace(ControlKind::Button, 13).isDown);
}

TEST_F(SurfaceWork, TheRightButtonAndShiftLatchAKey)
{
    WingView& view = View("left hand");
    Click(view, ControlKind::Button, 0, Qt::NoModifier, Qt::RightButton);
    Click(view, ControlKind::Button, 1, Qt::ShiftModifier);
    EXPECT_THAT(m_listener.Take(), ElementsAre("press 70/1", "press 70/2"));
    EXPECT_TRUE(view.GetFace(ControlKind::Button, 0).isLatched);
    EXPECT_TRUE(view.GetFace(ControlKind::Button, 1).isLatched);
    Click(view, ControlKind::Button, 0); // a plain click lets go
    Click(view, ControlKind::Button, 1, Qt::NoModifier, Qt::RightButton);
    EXPECT_THAT(m_listener.Take(), ElementsAre("release 70/1", "release 70/2"));
    EXPECT_FALSE(view.GetFace(ControlKind::Button, 0).isDown);
}

TEST_F(SurfaceWork, HandsLetGoOfAWidgetThatIsPulledOut)
{
    Click(View("playback"), ControlKind::Button, 2, Qt::ShiftModifier);
    Do("widget playback unplug");
    Settle();
    Do("widget playback plug");
    Settle();
    EXPECT_FALSE(View("playback").GetFace(ControlKind::Button, 2).isDown);
    m_listener.Take();
    Do("widget playback press 3");
    EXPECT_TRUE(View("playback").GetFace(ControlKind::Button, 3).isDown); // others' hands show too
    Do("widget playback release 3");
    EXPECT_FALSE(View("playback").GetFace(ControlKind::Button, 3).isDown);
}

TEST_F(SurfaceWork, AFaderIsDraggedByTheMouse)
{
    WingView& view = View("playback");
    EXPECT_EQ(view.GetFace(ControlKind::Fader, 4).position, -1);
    Press(view, ControlKind::Fader, 4);
    const int middle = view.GetFace(ControlKind::Fader, 4).position;
    EXPECT_GT(middle, 100);
    EXPECT_LT(middle, 155);
    EXPECT_THAT(m_listener.Take(), ElementsAre("fader 4 " + std::to_string(middle)));
    Release(view, ControlKind::Fader, 4);

    Drag(view, ControlKind::Fader, 4, {0, -500});
    EXPECT_EQ(view.GetFace(ControlKind::Fader, 4).position, 255);
    QTest::mouseRelease(&view, Qt::LeftButton);
    Settle();
    EXPECT_THAT(m_listener.Take(), Contains("fader 4 255"));
    EXPECT_EQ(view.GetFace(ControlKind::Fader, 4).position, 255);
    Do("widget playback fader 4 17");
    EXPECT_EQ(view.GetFace(ControlKind::Fader, 4).position, 17);
}

TEST_F(SurfaceWork, AnEncoderTurnsWithTheWheelAndADrag)
{
    WingView& view = View("left hand");
    Wheel(view, ControlKind::Encoder, 1, -3);
    EXPECT_THAT(m_listener.Take(), ElementsAre("encoder 221 -3"));
    Drag(view, ControlKind::Encoder, 2, {8, -12});
    EXPECT_THAT(m_listener.Take(), ElementsAre("encoder 222 5"));
    QTest::mouseRelease(&view, Qt::LeftButton);
    Settle();
    EXPECT_THAT(m_listener.Take(), IsEmpty());
    EXPECT_EQ(view.GetFace(ControlKind::Encoder, 1).position, -3);
    EXPECT_EQ(view.GetFace(ControlKind::Encoder, 2).position, 5);
}

TEST_F(SurfaceWork, BallsRollAndTheRingTurns)
{
    Drag(View("trackball"), ControlKind::Ball, 0, {7, -4});
    EXPECT_THAT(m_listener.Take(), ElementsAre("roll 7 0 0", "roll 0 -4 0"));
    QTest::mouseRelease(&View("trackball"), Qt::LeftButton);
    Wheel(View("trackball"), ControlKind::Ring, 0, 2);
    EXPECT_THAT(m_listener.Take(), ElementsAre("roll 0 0 2"));
    Drag(View("left hand"), ControlKind::Ball, 0, {3, 5});
    EXPECT_THAT(m_listener.Take(), ElementsAre("roll 3 5 0"));
    EXPECT_EQ(View("left hand").GetFace(ControlKind::Ball, 0).roll, QPoint(3, 5));
}

TEST_F(SurfaceWork, TheDrawerOpensAndCloses)
{
    WingView& view = View("panel");
    EXPECT_EQ(view.GetFace(ControlKind::Drawer, 0).position, -1);
    Click(view, ControlKind::Drawer, 0);
    EXPECT_THAT(m_listener.Take(), ElementsAre("release 75/0", "drawer 0 0"));
    EXPECT_EQ(view.GetFace(ControlKind::Drawer, 0).position, 1);
    EXPECT_FALSE(view.GetFace(ControlKind::Button, 50).isDown);
    Click(view, ControlKind::Drawer, 0);
    EXPECT_THAT(m_listener.Take(), ElementsAre("press 75/0", "drawer 0 1"));
    EXPECT_TRUE(view.GetFace(ControlKind::Button, 50).isDown); // it holds its switch
    Do("widget panel open");
    EXPECT_EQ(view.GetFace(ControlKind::Drawer, 0).position, 1);
}

TEST_F(SurfaceWork, TheTouchBarIsTouched)
{
    WingView& view = View("bar");
    const auto part = std::to_string(Hardware::Vex4TopBox::GetKey(31) & 0xFFFF);
    Press(view, ControlKind::Touch, 31);
    EXPECT_THAT(m_listener.Take(), ElementsAre("press " + part + "/65535"));
    EXPECT_TRUE(view.GetFace(ControlKind::Touch, 31).isDown);
    Release(view, ControlKind::Touch, 31);
    EXPECT_THAT(m_listener.Take(), ElementsAre("release " + part + "/65535"));
}

TEST_F(SurfaceWork, TheKeyboardWorksEverything)
{
    WingView& view = View("left hand");
    view.setFocus();
    view.SetFocused({ControlKind::Button, 0});
    Key(view, Qt::Key_Right);
    EXPECT_EQ(view.GetFocused(), (ControlId{ControlKind::Button, 1}));
    QTest::keyPress(&view, Qt::Key_Space);
    Settle();
    EXPECT_THAT(m_listener.Take(), ElementsAre("press 70/2"));
    QTest::keyRelease(&view, Qt::Key_Space);
    Settle();
    EXPECT_THAT(m_listener.Take(), ElementsAre("release 70/2"));
    Key(view, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_TRUE(view.GetFace(ControlKind::Button, 1).isLatched);
    Key(view, Qt::Key_Return);
    EXPECT_THAT(m_listener.Take(), ElementsAre("press 70/2", "release 70/2"));

    Key(view, Qt::Key_Tab);
    EXPECT_EQ(view.GetFocused(), (ControlId{ControlKind::Fader, 0}));
    Key(view, Qt::Key_Up);
    Key(view, Qt::Key_PageUp);
    Key(view, Qt::Key_End);
    Key(view, Qt::Key_PageDown);
    Key(view, Qt::Key_Home);
    EXPECT_THAT(m_listener.Take(),
                ElementsAre("fader 0 1", "fader 0 17", "fader 0 255", "fader 0 239", "fader 0 0"));
    Key(view, Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(view.GetFocused(), (ControlId{ControlKind::Button, 20}));

    Key(view, Qt::Key_Tab);
    Key(view, Qt::Key_Tab);
    EXPECT_EQ(view.GetFocused(), (ControlId{ControlKind::Encoder, 0}));
    Key(view, Qt::Key_Up);
    Key(view, Qt::Key_Down);
    EXPECT_THAT(m_listener.Take(), ElementsAre("encoder 220 1", "encoder 220 -1"));
    Key(view, Qt::Key_Tab);
    Key(view, Qt::Key_Tab);
    EXPECT_EQ(view.GetFocused(), (ControlId{ControlKind::Ball, 0}));
    Key(view, Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_THAT(m_listener.Take(), ElementsAre("roll -1 0 0"));
    Key(view, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(view.GetFocused(), (ControlId{ControlKind::Button, 50}));
}

TEST_F(SurfaceWork, AKeyIsLetGoWhenTheKeyboardGoesElsewhere)
{
    WingView& view = View("playback");
    view.setFocus();
    view.SetFocused({ControlKind::Button, 5});
    QTest::keyPress(&view, Qt::Key_Space);
    Settle();
    view.clearFocus();
    Settle();
    EXPECT_THAT(m_listener.Take(), ElementsAre("press 70/6", "release 70/6"));
}

} // namespace
