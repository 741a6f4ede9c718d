// SPDX-License-Identifier: MIT
#include "virtual-desk/surface_panel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QHelpEvent>
#include <QLabel>
#include <QPaintEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QToolButton>
#include <QToolTip>
#include <algorithm>
#include <map>
#include <utility>

#include "desk/virtual_widget.h"
#include "window/surface_bench.h"

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using VirtualDesk::ControlFace;
using VirtualDesk::ControlKind;
using VirtualDesk::Lamp;
using VirtualDesk::WingView;

class SurfaceWindow : public TestSupport::SurfaceBench
{
};

TEST_F(SurfaceWindow, ShowsEachWidgetThatIsPlugged)
{
    for (const char* const path : {"playback", "expansion", "motor", "panel", "trackball", "bar",
                                   "ltc", "left hand", "stone"}) {
        EXPECT_EQ(View(path).objectName(), QStringLiteral("wing-%1").arg(path));
        EXPECT_TRUE(View(path).isVisible()) << path;
        EXPECT_FALSE(Find<QPushButton>(*m_panel, QByteArray("plug-").append(path)).isVisible());
    }
    EXPECT_EQ(Find<QLabel>(*m_panel, "identity-playback").text(), "serial 291, key 00010123");
}

TEST_F(SurfaceWindow, AViewGoesAndComesWithItsWidget)
{
    auto& plug = Find<QPushButton>(*m_panel, "plug-left hand");
    EXPECT_FALSE(plug.isVisible());
    QTest::mouseClick(&Find<QToolButton>(*m_panel, "unplug-left hand"), Qt::LeftButton);
    Settle();
    EXPECT_EQ(m_panel->FindView("left hand"), nullptr);
    EXPECT_EQ(Get("widgets/left hand/plugged"), false);
    EXPECT_EQ(Find<QLabel>(*m_panel, "status-left hand").text(), "unplugged");
    EXPECT_TRUE(plug.isVisible());
    EXPECT_TRUE(plug.hasFocus());

    QTest::mouseClick(&plug, Qt::LeftButton);
    Settle();
    EXPECT_TRUE(View("left hand").isVisible());
    EXPECT_EQ(Get("widgets/left hand/plugged"), true);
    EXPECT_FALSE(plug.isVisible());

    Do("widget playback unplug");
    EXPECT_EQ(m_panel->FindView("playback"), nullptr);
}

TEST_F(SurfaceWindow, AnUnpluggedWingLeavesItsPlaceEmpty)
{
    const auto takePlaces = [&] {
        std::map<std::string, QRect> taken;
        for (const auto* const frame : m_panel->findChildren<VirtualDesk::WingFrame*>())
            taken[frame->GetUnplugButton().objectName().toStdString()] = frame->geometry();
        return taken;
    };
    const auto before = takePlaces();
    ASSERT_EQ(before.size(), 9U);
    for (const char* const path : {"playback", "trackball", "ltc"})
        QTest::mouseClick(&Find<QToolButton>(*m_panel, QByteArray("unplug-").append(path)),
                          Qt::LeftButton);
    Settle();
    EXPECT_EQ(takePlaces(), before);
}

TEST_F(SurfaceWindow, ASecondClickOnUnplugDoesNothing)
{
    const QPoint at =
        Find<QToolButton>(*m_panel, "unplug-playback").mapTo(m_panel.get(), QPoint(5, 5));
    for (int click = 0; click < 3; ++click) {
        QWidget* const under = m_panel->childAt(at);
        ASSERT_NE(under, nullptr);
        QTest::mouseClick(under, Qt::LeftButton, Qt::NoModifier, under->mapFrom(m_panel.get(), at));
        Settle();
        EXPECT_EQ(Get("widgets/playback/plugged"), false);
    }
    for (const char* const path :
         {"expansion", "motor", "panel", "trackball", "bar", "ltc", "left hand", "stone"})
        EXPECT_NE(m_panel->FindView(path), nullptr) << path;
}

TEST_F(SurfaceWindow, AMotorTakesAFaderAlong)
{
    WingView& view = View("motor");
    Do("wing motor motor 3 200");
    EXPECT_EQ(view.GetFace(ControlKind::Fader, 2).position, 200);
    EXPECT_EQ(view.GetFace(ControlKind::Fader, 2).target, 200);
    m_listener.Take();
    Wheel(view, ControlKind::Fader, 2, -2);
    EXPECT_EQ(view.GetFace(ControlKind::Fader, 2).position, 192);
    EXPECT_EQ(view.GetFace(ControlKind::Fader, 2).target, 200);
    EXPECT_THAT(m_listener.Take(), ElementsAre("motor 2 192"));
    Do("wing motor motor 3 10");
    EXPECT_EQ(view.GetFace(ControlKind::Fader, 2).position, 10);
}

TEST_F(SurfaceWindow, ShowsHowLedsStand)
{
    WingView& view = View("stone");
    EXPECT_EQ(view.GetFace(ControlKind::Button, 0).lamp, Lamp::Unset);
    Do("wing stone leds off");
    EXPECT_EQ(view.GetFace(ControlKind::Button, 0).lamp, Lamp::Off);
    Do("wing stone led 70 11 on");
    Do("wing stone led 71 2 flash");
    Do("wing stone led 203 65535 dim");
    EXPECT_EQ(view.GetFace(ControlKind::Button, 50).lamp, Lamp::On);
    EXPECT_EQ(view.GetFace(ControlKind::Button, 11).lamp, Lamp::Flash);
    EXPECT_EQ(view.GetFace(ControlKind::Button, 103).lamp, Lamp::Dim);
    view.SetFocused({ControlKind::Button, 11});
    EXPECT_EQ(view.accessibleDescription(), "Key 11, part 71, master 2: LED flashing, up");
    Do("widget stone led 11 0"); // by itself
    EXPECT_EQ(view.GetFace(ControlKind::Button, 11).lamp, Lamp::Off);
    EXPECT_EQ(view.accessibleDescription(), "Key 11, part 71, master 2: LED off, up");
}

TEST_F(SurfaceWindow, ShowsWhereAWingBeacons)
{
    EXPECT_FALSE(View("stone").IsBeaconing());
    Do("wing stone beacon right");
    EXPECT_TRUE(SettleUntil([this] { return View("stone").IsBeaconing(); }));
    EXPECT_THAT(Find<QLabel>(*m_panel, "status-stone").text().toStdString(),
                HasSubstr("beacon right"));
    EXPECT_FALSE(View("motor").IsBeaconing());
    EXPECT_TRUE(SettleUntil([this] { return !View("stone").IsBeaconing(); }));
}

TEST_F(SurfaceWindow, ShowsWhatDisplaysAndLampsShow)
{
    namespace Report = Standalone::Report;
    Desk::VirtualWidget& motor = Desk().GetDesk().GetWidget("motor");
    motor.Accept(Report::Encode(Report::Output(Report::SetLcdText{1, {'W', 'a', 's', 'h'}})));
    motor.Accept(Report::Encode(Report::Output(Report::SetLcdBrightness{1, 99})));
    Report::WriteCells cells;
    cells.surfaces.assign(7, 0);
    cells.surfaces[6] = 3;
    cells.cells.assign(70, 0);
    cells.cells[62] = 'G';
    Desk().GetDesk().GetWidget("expansion").Accept(Report::Encode(Report::Output(cells)));
    Desk().GetDesk().GetWidget("ltc").Accept(
        Report::Encode(Report::Output(Report::SetLinkLights{1, 0, 0, 1})));
    Settle();
    EXPECT_EQ(View("motor").GetFace(ControlKind::Lcd, 1).text, U"Wash");
    EXPECT_EQ(View("motor").GetFace(ControlKind::Lcd, 1).level, 99);
    const ControlFace display = View("expansion").GetFace(ControlKind::Display, 6);
    EXPECT_EQ(display.level, 3);
    EXPECT_EQ(display.text.at(2), U'G');
    View("expansion").SetFocused({ControlKind::Display, 6});
    EXPECT_EQ(View("expansion").accessibleDescription(),
              "Display 6: surface 3, cells - - G - - - - - - -");
    EXPECT_EQ(View("ltc").GetFace(ControlKind::Link, 0).lamp, Lamp::On);
    EXPECT_EQ(View("ltc").GetFace(ControlKind::Link, 1).lamp, Lamp::Off);
    EXPECT_EQ(View("ltc").GetFace(ControlKind::Link, 3).lamp, Lamp::On);
}

TEST_F(SurfaceWindow, ShowsLightLevelsAndSleep)
{
    namespace Report = Standalone::Report;
    Desk::VirtualWidget& stone = Desk().GetDesk().GetWidget("stone");
    stone.Accept(Report::Encode(Report::Output(Report::SetDimmer{1, 51})));
    stone.Accept(Report::Encode(Report::Output(Report::SetSleep{1})));
    Settle();
    EXPECT_THAT(Find<QLabel>(*m_panel, "levels-stone").text().toStdString(),
                HasSubstr("LEDs 20 %"));
    EXPECT_THAT(Find<QLabel>(*m_panel, "status-stone").text().toStdString(),
                StartsWith("asleep, "));
    stone.Accept(Report::Encode(Report::Output(Report::SetSleep{0})));
    Settle();
    EXPECT_THAT(Find<QLabel>(*m_panel, "status-stone").text().toStdString(),
                Not(HasSubstr("asleep")));
}

TEST_F(SurfaceWindow, TabGoesOnToTheNextWing)
{
    WingView& view = View("trackball");
    view.setFocus();
    view.SetFocused({ControlKind::Ring, 0});
    Key(view, Qt::Key_Tab);
    ASSERT_NE(m_panel->focusWidget(), nullptr);
    EXPECT_EQ(m_panel->focusWidget()->objectName().toStdString(), "unplug-bar");

    // Also to one that came later than those behind it.
    Do("widget bar unplug");
    Do("widget bar plug");
    view.setFocus();
    view.SetFocused({ControlKind::Ring, 0});
    Key(view, Qt::Key_Tab);
    EXPECT_EQ(m_panel->focusWidget()->objectName().toStdString(), "unplug-bar");
}

TEST_F(SurfaceWindow, ToolTipsTellOfControls)
{
    WingView& view = View("playback");
    const QPoint at = Middle(view, ControlKind::Button, 12);
    QHelpEvent event(QEvent::ToolTip, at, view.mapToGlobal(at));
    QApplication::sendEvent(&view, &event);
    EXPECT_THAT(QToolTip::text().toStdString(),
                StartsWith("Key 12 (part 71, master 3)\nLED not set, up\n"));
}

TEST_F(SurfaceWindow, Zooms)
{
    WingView& view = View("motor");
    const QSize natural = view.sizeHint();
    const QRect key = view.GetRectOf(ControlKind::Button, 7);
    QTest::mouseClick(&Find<QToolButton>(*m_panel, "zoom-in"), Qt::LeftButton);
    EXPECT_EQ(Find<QLabel>(*m_panel, "zoom").text(), "115 %");
    EXPECT_GT(view.sizeHint().width(), natural.width());
    Press(view, ControlKind::Button, 7); // where it stands now
    EXPECT_THAT(m_listener.Take(), ElementsAre("press 70/8"));
    Release(view, ControlKind::Button, 7);
    Wheel(view, ControlKind::Fader, 0, -2, Qt::ControlModifier);
    EXPECT_LT(view.sizeHint().width(), natural.width());
    Key(view, Qt::Key_0);
    EXPECT_EQ(view.sizeHint(), natural);
    EXPECT_EQ(view.GetRectOf(ControlKind::Button, 7), key);
    EXPECT_EQ(View("playback").GetFace(ControlKind::Fader, 0).position, -1);
}

TEST_F(SurfaceWindow, FitsTheWidestWing)
{
    const auto& scroll = Find<QScrollArea>(*m_panel, "wings-area");
    for (const int width : {1600, 1024, 700}) {
        m_panel->resize(width, 600);
        QTest::mouseClick(&Find<QToolButton>(*m_panel, "zoom-fit"), Qt::LeftButton);
        Settle();
        EXPECT_EQ(scroll.horizontalScrollBar()->maximum(), 0) << width;
        int widest = 0;
        for (const auto* const view : m_panel->findChildren<WingView*>())
            widest = std::max(widest, view->width());
        // Nothing wider would do, unless it is as large as wings are shown.
        EXPECT_TRUE(widest > scroll.viewport()->width() - 50 || m_panel->GetZoom() == 2) << width;
    }
}

TEST_F(SurfaceWindow, GoesOnFittingWhenTheWindowChanges)
{
    const auto& scroll = Find<QScrollArea>(*m_panel, "wings-area");
    auto& fit = Find<QToolButton>(*m_panel, "zoom-fit");
    QTest::mouseClick(&fit, Qt::LeftButton);
    EXPECT_TRUE(fit.isChecked());
    m_panel->resize(800, 600);
    Settle();
    EXPECT_EQ(scroll.horizontalScrollBar()->maximum(), 0);
    const double fitting = m_panel->GetZoom();
    QTest::mouseClick(&Find<QToolButton>(*m_panel, "zoom-in"), Qt::LeftButton);
    EXPECT_FALSE(fit.isChecked());
    const double larger = m_panel->GetZoom();
    EXPECT_GT(larger, fitting);
    m_panel->resize(900, 600);
    Settle();
    EXPECT_EQ(m_panel->GetZoom(), larger);
}

TEST_F(SurfaceWindow, RemembersItsZoom)
{
    const QTemporaryDir folder;
    QSettings settings(folder.filePath("settings.ini"), QSettings::IniFormat);
    const auto restore = [&] {
        m_panel->SaveZoom(settings);
        VirtualDesk::SurfacePanel other(Desk());
        other.RestoreZoom(settings);
        return std::pair(other.GetZoom(), Find<QToolButton>(other, "zoom-fit").isChecked());
    };
    QTest::mouseClick(&Find<QToolButton>(*m_panel, "zoom-out"), Qt::LeftButton);
    EXPECT_EQ(restore(), std::pair(m_panel->GetZoom(), false));
    QTest::mouseClick(&Find<QToolButton>(*m_panel, "zoom-fit"), Qt::LeftButton);
    EXPECT_TRUE(restore().second);
    settings.setValue("surface/zoom", "nonsense");
    m_panel->RestoreZoom(settings);
    EXPECT_TRUE(Find<QToolButton>(*m_panel, "zoom-fit").isChecked());
}

TEST_F(SurfaceWindow, RepaintsOnlyWhatChanged)
{
    struct PaintCounter : QObject {
        QRegion region;
        bool eventFilter(QObject* object, QEvent* event) override
        {
            if (event->type() == QEvent::Paint)
                region += static_cast<QPaintEvent*>(event)->region();
            return QObject::eventFilter(object, event);
        }
    } counter;
    WingView& view = View("playback");
    Settle();
    view.installEventFilter(&counter);
    Settle();
    EXPECT_TRUE(counter.region.isEmpty());
    Do("widget playback led 12 1");
    const QRect key = view.GetRectOf(ControlKind::Button, 12);
    EXPECT_TRUE(counter.region.contains(key));
    EXPECT_TRUE(key.adjusted(-8, -8, 8, 8).contains(counter.region.boundingRect()));
}

} // namespace
