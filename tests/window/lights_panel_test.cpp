// SPDX-License-Identifier: MIT
#include "virtual-desk/lights_panel.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <stdexcept>

#include "common/light_name.h"
#include "hardware/console_lights.h"
#include "standalone/light_settings.h"
#include "window/window_bench.h"

namespace
{

using Hardware::ConsoleLights;
using VirtualDesk::DisplayView;
using VirtualDesk::LevelBar;
using VirtualDesk::LightsPanel;

constexpr uires16 Percent = 0x10000;

Desk::DeskData MakeLitDesk()
{
    Desk::DeskData data;
    data.platform = Standalone::MakeConsoleSettings(8);
    data.platform.consoleNetwork = {L"eth0"};
    data.platform.fixtureNetwork = {L"eth1"};
    data.widgets = {{"Vex4DeskPlayback", 1, L"wing"}, {"LtcWidget", std::nullopt, L"board"}};
    data.serialLines = {{"/dev/ttyS0", Desk::SerialLineData::Peer::Panel},
                        {"/dev/ttyS1", Desk::SerialLineData::Peer::Panel},
                        {"/dev/ttyS2", Desk::SerialLineData::Peer::Echo}};
    data.adapters = {{L"eth0"}, {L"eth1", true, 100000000}};
    return data;
}

class LightsWindow : public TestSupport::WindowBench
{
protected:
    LightsWindow() : WindowBench(MakeLitDesk()), m_panel(Desk())
    {
        m_panel.show();
        Do("light reset"); // the fades of the console's start
    }

    template <class Control> Control& GetControl(const QString& name)
    {
        auto* const control = m_panel.findChild<Control*>(name);
        if (!control)
            throw std::runtime_error("there is no " + name.toStdString());
        return *control;
    }
    void Click(const QString& name)
    {
        QTest::mouseClick(&GetControl<QPushButton>(name), Qt::LeftButton);
        Settle();
    }
    uires16 GetLevel(Hardware::ConsoleLightId id) { return ConsoleLights::Get().get(id); }

    LightsPanel m_panel;
};

TEST_F(LightsWindow, SetsALightAtOnce)
{
    GetControl<QDoubleSpinBox>("level WorkLight").setValue(37.5);
    Click("set WorkLight");
    EXPECT_EQ(GetLevel(Hardware::WorkLight), 37 * Percent + Percent / 2);
    EXPECT_EQ(GetControl<LevelBar>("bar WorkLight").GetText(), "37.5 %");
    EXPECT_DOUBLE_EQ(GetControl<LevelBar>("bar WorkLight").GetLevel(), 0.375);
}

TEST_F(LightsWindow, ANewLevelStaysUntilItIsSet)
{
    auto& editor = GetControl<QDoubleSpinBox>("level VentLight");
    editor.setValue(40);
    Do("light vent=20");
    EXPECT_EQ(editor.value(), 40);
    Click("set VentLight");
    Do("light vent=25");
    EXPECT_EQ(editor.value(), 25);
}

TEST_F(LightsWindow, SetsALightByTheEnterKey)
{
    auto& editor = GetControl<QDoubleSpinBox>("level VentLight");
    editor.setFocus();
    editor.selectAll();
    QTest::keyClicks(&editor, "12");
    QTest::keyClick(&editor, Qt::Key_Return);
    Settle();
    EXPECT_EQ(GetLevel(Hardware::VentLight), 12 * Percent);
}

TEST_F(LightsWindow, FadesALight)
{
    QStringList lines;
    QObject::connect(&Desk(), &VirtualDesk::DeskController::done, &m_panel,
                     [&](const QString& line, const QString&) { lines += line; });
    GetControl<QDoubleSpinBox>("fadeSeconds").setValue(0.3);
    GetControl<QDoubleSpinBox>("level WorkLight").setValue(10);
    Click("set WorkLight");
    EXPECT_EQ(lines, QStringList("light WorkLight=10/0.3"));
    // A fade ends a step before its target.
    EXPECT_TRUE(SettleUntil([&] { return GetLevel(Hardware::WorkLight) <= 30 * Percent; }));
    EXPECT_TRUE(SettleUntil([&] {
        return GetControl<LevelBar>("bar WorkLight").GetText().toStdString() ==
               Tools::FormatLevel(GetLevel(Hardware::WorkLight));
    }));
}

TEST_F(LightsWindow, HasAControlForEveryLight)
{
    const QList<LevelBar*> bars =
        m_panel.findChildren<LevelBar*>(QRegularExpression("^bar "), Qt::FindChildrenRecursively);
    ASSERT_EQ(bars.size(), Hardware::ConsoleLightCount);
    for (qsizetype id = 0; id < bars.size(); ++id) {
        const QString name = bars[id]->objectName().mid(4);
        GetControl<QDoubleSpinBox>("level " + name).setValue(50.0 + double(id));
        Click("set " + name);
        EXPECT_EQ(GetLevel(static_cast<Hardware::ConsoleLightId>(id)),
                  (50 + static_cast<unsigned>(id)) * Percent);
        EXPECT_EQ(bars[id]->GetText(), QString::number(50 + id) + ".0 %");
    }
}

TEST_F(LightsWindow, MarksWhatIsPreferred)
{
    ConsoleLights::Get().set_preference(Hardware::VentLight, 25 * Percent);
    Settle();
    EXPECT_DOUBLE_EQ(GetControl<LevelBar>("bar VentLight").GetMark(), 0.25);
}

TEST_F(LightsWindow, TellsThatTheDrawerIsNotWanted)
{
    auto& title = GetControl<QLabel>("title KeyboardDrawerLight");
    ConsoleLights::Get().set_preference_state(Hardware::KeyboardDrawerLight, false);
    Settle();
    EXPECT_EQ(title.text(), "Keyboard drawer light (not wanted)");
    ConsoleLights::Get().set_preference_state(Hardware::KeyboardDrawerLight, true);
    Settle();
    EXPECT_EQ(title.text(), "Keyboard drawer light");
}

TEST_F(LightsWindow, DimsTheDisplays)
{
    GetControl<QDoubleSpinBox>("level LeftBacklight").setValue(40);
    Click("set LeftBacklight");
    auto& display = GetControl<DisplayView>("display left");
    EXPECT_TRUE(SettleUntil([&] { return display.GetText() == "left 40 %"; }))
        << display.GetText().toStdString();
    EXPECT_DOUBLE_EQ(display.GetBrightness(), Desk().GetDesk().GetDisplays()[0]);
    // Nothing dims the third one of this console.
    EXPECT_EQ(GetControl<DisplayView>("display centre").GetText(), "centre, not dimmed");
    EXPECT_EQ(Desk().GetDesk().GetDisplays()[2], 1);
}

TEST_F(LightsWindow, ShowsWhatSerialPanelsAreTold)
{
    GetControl<QDoubleSpinBox>("level LeftBacklight").setValue(0);
    Click("set LeftBacklight");
    EXPECT_TRUE(
        SettleUntil([&] { return GetControl<LevelBar>("backlight /dev/ttyS0").GetLevel() == 0; }));
    const Desk::FlatPanel& panel = *Desk().GetDesk().FindPanel("/dev/ttyS0");
    EXPECT_EQ(GetControl<LevelBar>("backlight /dev/ttyS0").GetText(), "0 of 255");
    EXPECT_TRUE(
        GetControl<QLabel>("counts /dev/ttyS0").text().endsWith("0 rejected, 0 bytes of noise"));
    EXPECT_TRUE(SettleUntil([&] {
        return GetControl<QPlainTextEdit>("packets /dev/ttyS0").toPlainText().split('\n').last() ==
               QString::fromStdString(Desk::ToText(panel.GetPackets().back()));
    }));
    // An echo is no panel.
    EXPECT_EQ(m_panel.findChild<QLabel*>("counts /dev/ttyS2"), nullptr);
}

TEST_F(LightsWindow, ChangesSettings)
{
    GetControl<QDoubleSpinBox>("setting left").setValue(45);
    auto& drawer = GetControl<QCheckBox>("setting drawer-on");
    ASSERT_TRUE(drawer.isChecked());
    QTest::keyClick(&drawer, Qt::Key_Space);
    Settle();
    EXPECT_EQ(Standalone::GetLightSettings().backlightLeft, 45 * Percent);
    EXPECT_FALSE(Standalone::GetLightSettings().keyboardDrawerEnabled);
    EXPECT_DOUBLE_EQ(GetControl<QDoubleSpinBox>("setting left").value(), 45);
    EXPECT_FALSE(drawer.isChecked());
}

TEST_F(LightsWindow, ShowsSettingsThatChangeElsewhere)
{
    Desk().Do("setting vent=33.5 blue=on");
    Settle();
    EXPECT_DOUBLE_EQ(GetControl<QDoubleSpinBox>("setting vent").value(), 33.5);
    EXPECT_TRUE(GetControl<QCheckBox>("setting blue").isChecked());
}

TEST_F(LightsWindow, AppliesSettings)
{
    GetControl<QDoubleSpinBox>("setting vent").setValue(15);
    Settle();
    EXPECT_NE(GetLevel(Hardware::VentLight), 15 * Percent);
    Click("applySettings");
    EXPECT_EQ(GetLevel(Hardware::VentLight), 15 * Percent);
    GetControl<QDoubleSpinBox>("setting vent").setValue(80);
    Click("fadeSettings");
    EXPECT_TRUE(SettleUntil([&] { return GetLevel(Hardware::VentLight) >= 75 * Percent; }));
    EXPECT_DOUBLE_EQ(GetControl<LevelBar>("bar VentLight").GetMark(), 0.8);
}

TEST_F(LightsWindow, SavesTheScreen)
{
    Click("screenSaver");
    EXPECT_TRUE(Desk().GetSession().IsScreenSaverOn());
    EXPECT_EQ(GetControl<QPushButton>("screenSaver").text(), "Screen save&r: on");
    Click("screenSaver");
    EXPECT_FALSE(Desk().GetSession().IsScreenSaverOn());
    EXPECT_EQ(GetControl<QPushButton>("screenSaver").text(), "Screen save&r: off");
    Desk().Do("light sleep");
    Settle();
    EXPECT_TRUE(GetControl<QPushButton>("screenSaver").isChecked());
}

TEST_F(LightsWindow, AsksForEveryActOfTheConsole)
{
    QStringList lines;
    QObject::connect(&Desk(), &VirtualDesk::DeskController::done, &m_panel,
                     [&](const QString& line, const QString& error) {
                         lines += line;
                         EXPECT_TRUE(error.isEmpty()) << error.toStdString();
                     });
    for (const char* const name :
         {"consoleStart", "openDrawer", "closeDrawer", "workLightKey", "consoleEnd"})
        Click(name);
    EXPECT_EQ(lines,
              QStringList({"light start", "light open", "light close", "light key", "light end"}));
}

TEST_F(LightsWindow, ShowsLinkLights)
{
    auto& lights = GetControl<VirtualDesk::LinkLights>("links board");
    EXPECT_TRUE(SettleUntil([&] {
        return lights.GetText() == "Console network: link, gigabit; fixture network: link";
    })) << lights.GetText().toStdString();
    EXPECT_EQ(GetControl<QLabel>("adapter eth1").text(), "up, 100 Mbit/s");
    Click("down eth0");
    EXPECT_TRUE(SettleUntil([&] {
        return lights.GetText() == "Console network: no link; fixture network: link";
    })) << lights.GetText().toStdString();
    EXPECT_EQ(GetControl<QLabel>("adapter eth0").text(), "down");
    EXPECT_FALSE(GetControl<QPushButton>("down eth0").isEnabled());
    Click("up eth0");
    EXPECT_EQ(GetControl<QLabel>("adapter eth0").text(), "up, 1 Gbit/s");
}

TEST_F(LightsWindow, FollowsBoardsAndAdaptersThatGo)
{
    EXPECT_TRUE(GetControl<VirtualDesk::LinkLights>("links board").isVisible());
    Desk().Do("widget board unplug");
    Desk().Do("adapter eth1 remove");
    Settle();
    EXPECT_FALSE(GetControl<VirtualDesk::LinkLights>("links board").isVisible());
    EXPECT_EQ(m_panel.findChild<QLabel*>("adapter eth1"), nullptr);
    EXPECT_EQ(GetControl<QLabel>("adapter eth0").text(), "up, 1 Gbit/s");
}

TEST_F(LightsWindow, TellsWhatWentWrong)
{
    EXPECT_FALSE(GetControl<QLabel>("lightsStatus").isVisible());
    Desk().Do("adapter eth1 remove");
    Click("down eth1"); // which is on its way out
    EXPECT_TRUE(GetControl<QLabel>("lightsStatus").isVisible());
    EXPECT_TRUE(GetControl<QLabel>("lightsStatus").text().startsWith("adapter eth1 down: "));
}

} // namespace
