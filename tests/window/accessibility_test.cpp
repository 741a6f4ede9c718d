// SPDX-License-Identifier: MIT

// What a screen reader hears of the window.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QLabel>
#include <QTextDocument>
#include <set>

#include "virtual-desk/main_window.h"
#include "window/surface_bench.h"

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using VirtualDesk::ControlKind;
using VirtualDesk::WingView;

class WingAccessibility : public TestSupport::SurfaceBench
{
protected:
    static QAccessibleInterface& GetInterface(QObject& object)
    {
        QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(&object);
        if (!interface)
            throw std::runtime_error("not accessible");
        return *interface;
    }
    /// A control as a child of its view.
    QAccessibleInterface& GetControl(const char* path, ControlKind kind, int index)
    {
        WingView& view = View(path);
        const auto place = view.GetLayout().Find({kind, index});
        if (!place)
            throw std::runtime_error("there is no such control");
        return *GetInterface(view).child(static_cast<int>(*place));
    }
    static std::string GetText(const QAccessibleInterface& interface, QAccessible::Text kind)
    {
        return interface.text(kind).toStdString();
    }
};

class WindowAccessibility : public TestSupport::WindowBench
{
protected:
    WindowAccessibility() : WindowBench(MakeDesk()) {}
};

TEST_F(WingAccessibility, EveryControlIsAChildWithRoleNameAndValue)
{
    for (WingView* const view : m_panel->findChildren<WingView*>()) {
        QAccessibleInterface& wing = GetInterface(*view);
        ASSERT_EQ(wing.childCount(), static_cast<int>(view->GetLayout().GetControls().size()));
        std::set<std::string> names;
        for (int index = 0; index < wing.childCount(); ++index) {
            QAccessibleInterface* const control = wing.child(index);
            ASSERT_TRUE(control && control->isValid()) << index;
            EXPECT_EQ(wing.indexOfChild(control), index);
            EXPECT_EQ(control->parent(), &wing);
            EXPECT_NE(control->role(), QAccessible::NoRole);
            EXPECT_NE(GetText(*control, QAccessible::Value), "");
            names.insert(GetText(*control, QAccessible::Name));
            EXPECT_EQ(wing.childAt(control->rect().center().x(), control->rect().center().y()),
                      control);
        }
        EXPECT_FALSE(names.contains(""));
        EXPECT_EQ(names.size(), static_cast<std::size_t>(wing.childCount()))
            << view->objectName().toStdString();
    }
}

TEST_F(WingAccessibility, ControlsHaveTheirOwnRoles)
{
    EXPECT_EQ(GetControl("playback", ControlKind::Button, 12).role(), QAccessible::Button);
    EXPECT_EQ(GetControl("playback", ControlKind::Fader, 0).role(), QAccessible::Slider);
    EXPECT_EQ(GetControl("left hand", ControlKind::Encoder, 0).role(), QAccessible::Dial);
    EXPECT_EQ(GetControl("trackball", ControlKind::Ring, 0).role(), QAccessible::Dial);
    EXPECT_EQ(GetControl("trackball", ControlKind::Ball, 0).role(), QAccessible::Graphic);
    EXPECT_EQ(GetControl("motor", ControlKind::Lcd, 0).role(), QAccessible::StaticText);
    EXPECT_EQ(GetControl("expansion", ControlKind::Display, 0).role(), QAccessible::StaticText);
    EXPECT_EQ(GetControl("bar", ControlKind::Touch, 0).role(), QAccessible::Button);
    EXPECT_EQ(GetControl("panel", ControlKind::Drawer, 0).role(), QAccessible::CheckBox);
    EXPECT_EQ(GetControl("ltc", ControlKind::Link, 0).role(), QAccessible::Indicator);
}

TEST_F(WingAccessibility, AKeyHasItsLedAndIsPressed)
{
    QAccessibleInterface& key = GetControl("stone", ControlKind::Button, 11);
    EXPECT_EQ(GetText(key, QAccessible::Name), "Key 11, part 71, master 2");
    Do("wing stone led 71 2 flash");
    EXPECT_EQ(GetText(key, QAccessible::Value), "LED flashing, up");
    EXPECT_EQ(GetText(key, QAccessible::Description), "LED flashing, up");
    ASSERT_NE(key.actionInterface(), nullptr);
    m_listener.Take();
    key.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    Settle();
    EXPECT_THAT(m_listener.Take(), ElementsAre("press 71/2", "release 71/2"));
    Press(View("stone"), ControlKind::Button, 11);
    EXPECT_TRUE(key.state().pressed);
    EXPECT_EQ(GetText(key, QAccessible::Value), "LED flashing, down");
}

TEST_F(WingAccessibility, AFaderHasAValueThatCanBeSet)
{
    QAccessibleValueInterface* const fader =
        GetControl("playback", ControlKind::Fader, 4).valueInterface();
    ASSERT_NE(fader, nullptr);
    EXPECT_EQ(fader->minimumValue().toInt(), 0);
    EXPECT_EQ(fader->maximumValue().toInt(), 255);
    Do("widget playback fader 4 17");
    EXPECT_EQ(fader->currentValue().toInt(), 17);
    m_listener.Take();
    fader->setCurrentValue(99);
    Settle();
    EXPECT_THAT(m_listener.Take(), ElementsAre("fader 4 99"));
    EXPECT_EQ(fader->currentValue().toInt(), 99);
}

TEST_F(WingAccessibility, AnEncoderIsTurnedAndADrawerMoved)
{
    QAccessibleInterface& encoder = GetControl("left hand", ControlKind::Encoder, 1);
    encoder.actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
    Settle();
    EXPECT_THAT(m_listener.Take(), ElementsAre("encoder 221 -1"));
    EXPECT_EQ(encoder.valueInterface()->currentValue().toInt(), -1);
    QAccessibleInterface& drawer = GetControl("panel", ControlKind::Drawer, 0);
    drawer.actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    Settle();
    EXPECT_TRUE(drawer.state().checked);
    EXPECT_EQ(GetText(drawer, QAccessible::Value), "open");
}

TEST_F(WingAccessibility, FollowsTheKeyboard)
{
    WingView& view = View("playback");
    QAccessibleInterface& key = GetControl("playback", ControlKind::Button, 3);
    EXPECT_FALSE(key.state().focused);
    key.actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_TRUE(view.hasFocus());
    EXPECT_TRUE(key.state().focused);
    EXPECT_EQ(GetInterface(view).focusChild(), &key);
}

TEST_F(WingAccessibility, EndsWithItsWing)
{
    GetControl("playback", ControlKind::Button, 3);
    Do("widget playback unplug");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(m_panel->FindView("playback"), nullptr);
    Do("widget playback plug");
    EXPECT_EQ(GetText(GetControl("playback", ControlKind::Button, 3), QAccessible::Name),
              "Key 3, part 70, master 4");
}

TEST_F(WindowAccessibility, LabelsKeepTheirText)
{
    VirtualDesk::MainWindow window(Desk());
    window.show();
    Do("sim 1 create 25");
    EXPECT_TRUE(SettleUntil([&] { return window.findChild<QLabel*>("time sim 1") != nullptr; }));
    Desk().Do("midi Keys fed"); // so that a status says what went wrong
    Settle();
    int count = 0;
    for (QLabel* const label : window.findChildren<QLabel*>()) {
        QTextDocument text;
        if (label->textFormat() == Qt::RichText)
            text.setHtml(label->text());
        else
            text.setPlainText(label->text());
        QString expected = text.toPlainText();
        if (label->buddy())
            expected.remove('&');
        const QAccessibleInterface* const known = QAccessible::queryAccessibleInterface(label);
        EXPECT_THAT(known->text(QAccessible::Name).toStdString(), HasSubstr(expected.toStdString()))
            << label->objectName().toStdString();
        ++count;
    }
    EXPECT_GT(count, 50);
}

} // namespace
