// SPDX-License-Identifier: MIT
#include "virtual-desk/faults_panel.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <algorithm>
#include <array>
#include <map>

#include "window/window_bench.h"

namespace
{

using VirtualDesk::FaultsPanel;

const QString InOrder = "in order";

Desk::DeskData MakeFaultyDesk()
{
    Desk::DeskData data;
    data.platform = Standalone::MakeConsoleSettings(8);
    data.widgets = {{"Vex4DeskPlayback", 1, L"my wing"},
                    {"TrackballWidget", std::nullopt, L"ball"},
                    {"LtcWidget", std::nullopt, L"board"}};
    data.midiPorts = {{"Stage Keyboard"}, {"Spare"}};
    data.serialLines = {{"/dev/ttyS0", Desk::SerialLineData::Peer::Panel}};
    data.cd = Desk::CdData{"", {60, 30}, std::nullopt};
    data.adapters = {{L"eth0"}};
    return data;
}

class FaultsWindow : public TestSupport::WindowBench
{
protected:
    explicit FaultsWindow(const Desk::DeskData& desk = MakeFaultyDesk())
        : WindowBench(desk), m_panel(Desk())
    {
        m_panel.show();
        Settle();
    }

    QPushButton& GetButton(const QString& name)
    {
        auto* const button = m_panel.findChild<QPushButton*>(name);
        if (!button)
            throw std::runtime_error("there is no " + name.toStdString());
        return *button;
    }
    QString GetText(const QString& name)
    {
        auto* const label = m_panel.findChild<QLabel*>(name);
        return label ? label->text() : "there is no " + name;
    }
    void Click(const QString& name)
    {
        QTest::mouseClick(&GetButton(name), Qt::LeftButton);
        Settle();
    }
    std::string GetCondition(const std::string& name)
    {
        return Desk().GetDesk().GetCondition(name);
    }
    const Desk::VirtualWidget& GetWidget(const std::string& path)
    {
        return Desk().GetDesk().GetWidget(path);
    }
    QStringList ListStates()
    {
        QStringList states;
        for (const QLabel* const label :
             m_panel.findChildren<QLabel*>(QRegularExpression("^state ")))
            states += label->text();
        return states;
    }

    FaultsPanel m_panel;
};

/// On a desk that begins with a port that is not plugged and an adapter without a link.
class UnpluggedFaultsWindow : public FaultsWindow
{
protected:
    UnpluggedFaultsWindow() : FaultsWindow(MakeUnpluggedDesk()) {}

private:
    static Desk::DeskData MakeUnpluggedDesk()
    {
        Desk::DeskData data = MakeFaultyDesk();
        data.midiPorts.back().isPlugged = false;
        data.adapters.push_back({L"eth1", false});
        return data;
    }
};

TEST_F(FaultsWindow, HasFaultsOfEveryDevice)
{
    QStringList names;
    for (const QPushButton* const button :
         m_panel.findChildren<QPushButton*>(QRegularExpression("^fault ")))
        names += button->objectName().mid(6);
    const QStringList expected{"widgets my wing unplug",
                               "widgets my wing stuck",
                               "widgets my wing midmove",
                               "widgets ball unplug",
                               "widgets ball stuck",
                               "widgets ball midmove",
                               "ltc board unplug",
                               "ltc board stuck",
                               "ltc board dropout",
                               "midi Stage Keyboard unplug",
                               "midi Stage Keyboard busy",
                               "midi Stage Keyboard full",
                               "midi Stage Keyboard hangup",
                               "midi Stage Keyboard dead",
                               "midi Spare unplug",
                               "midi Spare busy",
                               "midi Spare full",
                               "midi Spare hangup",
                               "midi Spare dead",
                               "serial /dev/ttyS0 unplug",
                               "serial /dev/ttyS0 slow",
                               "serial /dev/ttyS0 stalled",
                               "cd cd vanish",
                               "cd cd eject",
                               "cd cd scratch",
                               "cd cd busy",
                               "cd cd slow",
                               "network eth0 remove",
                               "network eth0 down",
                               "network eth0 flap",
                               "network eth0 overrun"};
    EXPECT_EQ(names, expected);
}

TEST_F(FaultsWindow, EveryFaultThatLastsIsPutInForceAndMendedByAClick)
{
    EXPECT_EQ(GetText("faultSummary"), "Everything is in order.");
    for (QPushButton* const button :
         m_panel.findChildren<QPushButton*>(QRegularExpression("^fault "))) {
        if (!button->isCheckable())
            continue;
        const std::string name = button->objectName().toStdString();
        Click(button->objectName());
        EXPECT_TRUE(button->isChecked()) << name;
        EXPECT_EQ(ListStates().count(InOrder), ListStates().size() - 1) << name;
        EXPECT_EQ(GetText("faultSummary"), "One fault is in force.") << name;
        Click(button->objectName());
        EXPECT_FALSE(button->isChecked()) << name;
        EXPECT_EQ(ListStates().count(InOrder), ListStates().size()) << name;
        EXPECT_EQ(GetText("faultStatus"), "") << name;
    }
}

TEST_F(FaultsWindow, WorksTheDevices)
{
    Click("fault widgets my wing unplug");
    EXPECT_FALSE(GetWidget("my wing").IsPlugged());
    EXPECT_EQ(GetText("state widgets my wing"), "unplugged");
    Click("fault midi Stage Keyboard busy");
    Click("fault midi Stage Keyboard dead");
    EXPECT_EQ(GetCondition("midi/Stage Keyboard/busy"), "on");
    EXPECT_EQ(GetText("state midi Stage Keyboard"), "busy, dead");
    Click("fault serial /dev/ttyS0 slow");
    EXPECT_EQ(GetCondition("serial/ttyS0/slow"), "100");
    Click("fault cd cd eject");
    EXPECT_FALSE(Desk().GetDesk().GetCdDrive()->GetState().hasDisc);
    EXPECT_EQ(GetText("state cd cd"), "without a disc");
    Click("fault network eth0 remove");
    EXPECT_TRUE(Desk().GetDesk().GetNetwork().GetAdapters().empty());
    EXPECT_EQ(GetText("state network eth0"), "removed");
    EXPECT_FALSE(GetButton("fault network eth0 flap").isEnabled());
}

TEST_F(FaultsWindow, UnplugsInMidMove)
{
    QStringList lines;
    QObject::connect(&Desk(), &VirtualDesk::DeskController::done, &m_panel,
                     [&](const QString& line, const QString& error) {
                         lines += line;
                         EXPECT_TRUE(error.isEmpty()) << error.toStdString();
                     });
    Click("fault widgets my wing midmove");
    EXPECT_FALSE(GetWidget("my wing").IsPlugged());
    EXPECT_EQ(lines, QStringList({"wing \"my wing\" motor 1 255", "widget \"my wing\" fader 0 10",
                                  "widget \"my wing\" fader 0 60", "widget \"my wing\" fader 0 120",
                                  "widget \"my wing\" unplug"}));
    EXPECT_FALSE(GetButton("fault widgets my wing midmove").isEnabled());
    Click("fault widgets ball midmove");
    EXPECT_FALSE(GetWidget("ball").IsPlugged());
    EXPECT_EQ(GetText("faultSummary"), "2 faults are in force.");
}

TEST_F(FaultsWindow, FaultsThatPassLeaveTheDeviceAsItWas)
{
    QStringList lines;
    QObject::connect(&Desk(), &VirtualDesk::DeskController::done, &m_panel,
                     [&](const QString& line, const QString& error) {
                         lines += line;
                         EXPECT_TRUE(error.isEmpty()) << error.toStdString();
                     });
    Click("fault network eth0 flap");
    EXPECT_EQ(lines, QStringList("adapter eth0 flap 10"));
    EXPECT_EQ(GetText("state network eth0"), InOrder);
    // Without timecode there is nothing to drop.
    EXPECT_FALSE(GetButton("fault ltc board dropout").isEnabled());
}

TEST_F(FaultsWindow, MendsEverything)
{
    QPushButton& mend = GetButton("mendEverything");
    EXPECT_FALSE(mend.isEnabled());
    for (QPushButton* const button :
         m_panel.findChildren<QPushButton*>(QRegularExpression("^fault ")))
        if (button->isCheckable())
            Click(button->objectName());
    EXPECT_EQ(ListStates().count(InOrder), 0);
    Click("mendEverything");
    EXPECT_EQ(ListStates().count(InOrder), ListStates().size())
        << ListStates().join("; ").toStdString();
    EXPECT_EQ(GetText("faultSummary"), "Everything is in order.");
    EXPECT_EQ(GetText("faultStatus"), "");
    EXPECT_FALSE(mend.isEnabled());
    EXPECT_TRUE(GetWidget("my wing").IsPlugged());
    EXPECT_TRUE(Desk().GetDesk().GetCdDrive()->GetState().hasDisc);
}

TEST_F(UnpluggedFaultsWindow, WhatTheDeskBeginsWithIsNoFault)
{
    EXPECT_EQ(GetText("state midi Spare"), "unplugged");
    EXPECT_EQ(GetText("state network eth1"), "down");
    EXPECT_TRUE(GetButton("fault midi Spare unplug").isChecked());
    EXPECT_EQ(GetText("faultSummary"),
              "No fault is in force. Not in order since the desk's start: Spare, eth1.");
    EXPECT_FALSE(GetButton("mendEverything").isEnabled());
    Click("fault network eth0 down");
    Click("mendEverything");
    EXPECT_EQ(GetText("state network eth0"), InOrder);
    EXPECT_EQ(GetText("state network eth1"), "down");
    EXPECT_EQ(GetText("state midi Spare"), "unplugged");
    Click("fault midi Spare unplug");
    EXPECT_EQ(GetText("state midi Spare"), InOrder);
    Click("fault network eth1 down");
    EXPECT_EQ(GetText("faultSummary"), "Everything is in order.");
}

TEST_F(FaultsWindow, ABoardThatHearsNothingIsNotInOrder)
{
    Do("ltc board play " DATA_FOLDER "/ltc/timecode_25fps.flac loop");
    EXPECT_EQ(GetText("faultSummary"), "Everything is in order.");
    Do("ltc board dropout 3600");
    EXPECT_EQ(GetText("state ltc board"), "hears nothing");
    EXPECT_EQ(GetText("faultSummary"), "One fault is in force.");
    EXPECT_FALSE(GetButton("mendEverything").isEnabled()); // it passes by itself
    Do("ltc board dropout 0");
    EXPECT_TRUE(SettleUntil([&] { return GetText("state ltc board") == InOrder; }));
}

TEST_F(FaultsWindow, WhatIsInForceHasAColourOfItsOwn)
{
    const auto getColour = [this](const char* name) {
        auto* const widget = m_panel.findChild<QWidget*>(QString::fromLatin1(name));
        const QImage image = widget->grab().toImage();
        return image.pixelColor(image.width() - 6, image.height() / 2);
    };
    const std::array<const char*, 3> names{"fault cd cd busy", "state cd cd", "faultSummary"};
    std::map<std::string, QColor> sound;
    for (const char* const name : names)
        sound[name] = getColour(name);
    Click("fault cd cd busy");
    for (const char* const name : names) {
        EXPECT_NE(getColour(name), sound[name]) << name;
        EXPECT_GT(getColour(name).red(), 2 * getColour(name).green()) << name;
    }
    EXPECT_NE(getColour("fault cd cd busy"), getColour("fault cd cd slow"));
    Click("fault cd cd busy");
    for (const char* const name : names)
        EXPECT_EQ(getColour(name), sound[name]) << name;
}

TEST_F(FaultsWindow, ButtonsStayWhereTheyAre)
{
    m_panel.resize(1200, 700);
    Settle();
    const QPushButton& button = GetButton("fault cd cd busy");
    const QPoint place = button.mapTo(&m_panel, QPoint());
    Click("fault cd cd scratch");
    Click("fault cd cd eject");
    Click("fault cd cd slow");
    EXPECT_EQ(GetText("state cd cd"), "without a disc, scratched, slow");
    EXPECT_EQ(button.mapTo(&m_panel, QPoint()), place);
}

TEST_F(FaultsWindow, ShowsWhatIsDoneElsewhere)
{
    Desk().Do("cd scratch on");
    Desk().Do("widget board stuck on");
    Settle();
    EXPECT_EQ(GetText("state cd cd"), "scratched");
    EXPECT_EQ(GetText("state ltc board"), "stuck");
    EXPECT_TRUE(GetButton("fault cd cd scratch").isChecked());
    Desk().Do("cd scratch off");
    Settle();
    EXPECT_EQ(GetText("state cd cd"), InOrder);
    EXPECT_FALSE(GetButton("fault cd cd scratch").isChecked());
}

TEST_F(FaultsWindow, TellsWhatWentWrongUntilTheNextClick)
{
    Desk().Do("adapter eth0 remove");
    Click("fault network eth0 flap"); // of an adapter that is on its way out
    EXPECT_TRUE(GetText("faultStatus").startsWith("adapter eth0 flap 10: "))
        << GetText("faultStatus").toStdString();
    Click("fault cd cd busy");
    EXPECT_EQ(GetText("faultStatus"), "");
}

TEST_F(FaultsWindow, LeavesErrorsOfOthersToThem)
{
    Desk().Do("adapter nowhere down");
    Settle();
    EXPECT_EQ(GetText("faultStatus"), "");
}

} // namespace
