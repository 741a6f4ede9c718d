// SPDX-License-Identifier: MIT
#include "virtual-desk/midi_panel.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QTableView>
#include <QTableWidget>

#include "virtual-desk/midi_log_model.h"
#include "window/midi_log_texts.h"
#include "window/window_bench.h"

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using TestSupport::ListTexts;
using VirtualDesk::MidiLogModel;

class MidiWindow : public TestSupport::WindowBench
{
protected:
    MidiWindow() : WindowBench(MakeDesk()), m_panel(Desk())
    {
        m_panel.resize(1200, 800);
        m_panel.show();
        QObject::connect(&Desk(), &VirtualDesk::DeskController::done, &m_panel,
                         [this](const QString& line, const QString& error) {
                             m_lines.push_back(line.toStdString());
                             m_errors += error.toStdString();
                         });
        SettleUntil([this] { return IsOpen("Keys"); });
    }

    bool IsOpen(const char* port) { return Desk().GetDesk().GetPort(port).CountOpen() > 0; }
    template <class Control> Control& Get(const char* name) { return Find<Control>(m_panel, name); }
    std::string GetText(const char* name) { return Get<QLabel>(name).text().toStdString(); }
    nlohmann::json GetState(const std::string& path) { return WindowBench::Get(path); }
    void Click(const char* name)
    {
        QTest::mouseClick(&Get<QPushButton>(name), Qt::LeftButton);
        Settle();
    }
    void Toggle(const char* name)
    {
        Get<QCheckBox>(name).click();
        Settle();
    }
    void Choose(const char* name, const char* text)
    {
        auto& box = Get<QComboBox>(name);
        box.setFocus();
        QTest::keyClicks(&box, text); // picks what begins so
        Settle();
    }
    std::vector<std::string> GetLog() { return ListTexts(*Get<QTableView>("midiLog").model()); }
    bool AwaitLog(const std::string& text)
    {
        return SettleUntil([&] {
            const auto log = GetLog();
            return std::find(log.begin(), log.end(), text) != log.end();
        });
    }
    std::string GetPort(int row, int column)
    {
        return Get<QTableWidget>("midiPorts").item(row, column)->text().toStdString();
    }

    VirtualDesk::MidiPanel m_panel;
    std::vector<std::string> m_lines; // that were done
    std::string m_errors;
};

TEST_F(MidiWindow, ListsThePorts)
{
    ASSERT_EQ(Get<QTableWidget>("midiPorts").rowCount(), 2);
    EXPECT_EQ(GetPort(0, 0), "Keys");
    EXPECT_EQ(GetPort(0, 1), "● plugged");
    EXPECT_EQ(GetPort(0, 2), "fine");
    EXPECT_EQ(GetPort(0, 3), "← input, → output");
    EXPECT_EQ(GetPort(1, 0), "Show");
    EXPECT_EQ(GetPort(1, 3), "");
    Do("midi Show busy on");
    Do("midi Show full on");
    EXPECT_EQ(GetPort(1, 2), "⚠ busy, full");
}

TEST_F(MidiWindow, PlugsTheSelectedPort)
{
    Get<QTableWidget>("midiPorts").setCurrentCell(1, 0);
    Click("midiUnplug");
    EXPECT_EQ(GetPort(1, 1), "○ unplugged");
    EXPECT_FALSE(Desk().GetDesk().GetPort("Show").IsPlugged());
    Click("midiPlug");
    EXPECT_EQ(GetPort(1, 1), "● plugged");
    EXPECT_TRUE(Desk().GetDesk().GetPort("Show").IsPlugged());
    EXPECT_THAT(m_lines, ElementsAre("midi Show unplug", "midi Show plug"));
}

TEST_F(MidiWindow, SetsInputAndOutput)
{
    Choose("midiInput", "Show");
    EXPECT_EQ(GetState("midi/input"), "Show");
    EXPECT_EQ(GetState("midi/output"), "Keys");
    Choose("midiOutput", "Show");
    EXPECT_EQ(GetState("midi/output"), "Show");
    EXPECT_EQ(GetPort(1, 3), "← input, → output");
    Do("input Keys");
    EXPECT_EQ(Get<QComboBox>("midiInput").currentText(), "Keys");
}

TEST_F(MidiWindow, SwitchesShowWhatIsSet)
{
    EXPECT_TRUE(Get<QCheckBox>("midiReceive").isChecked());
    Toggle("midiReceive");
    EXPECT_EQ(GetState("midi/receive"), "off");
    EXPECT_EQ(GetPort(0, 3), "(input), → output");
    Toggle("midiTransmit");
    EXPECT_EQ(GetState("midi/transmit"), "off");
    Toggle("midiRunningStatus");
    EXPECT_EQ(GetState("midi/running-status"), "off");
    Do("receive on");
    EXPECT_TRUE(Get<QCheckBox>("midiReceive").isChecked());
    EXPECT_FALSE(Get<QCheckBox>("midiTransmit").isChecked());
}

TEST_F(MidiWindow, LogsWhatComesIn)
{
    Do("midi Keys feed 90 3C 64");
    ASSERT_TRUE(AwaitLog("note on ch 1 C4 vel 100"));
    const QAbstractItemModel& model = *Get<QTableView>("midiLog").model();
    const int row = model.rowCount() - 1;
    EXPECT_EQ(model.index(row, MidiLogModel::Column_Port).data(), "Keys");
    EXPECT_EQ(model.index(row, MidiLogModel::Column_Direction).data(), "← in");
    EXPECT_EQ(GetText("midiTotals"), "1 messages received, 0 bytes sent");
}

TEST_F(MidiWindow, FiltersByKindAndText)
{
    Toggle("midiShowOther"); // reception was switched on
    Do("midi Keys feed F8 90 3C 64 B0 07 05 F0 7D 01 F7 FE FA 90 40 64");
    ASSERT_TRUE(AwaitLog("note on ch 1 E4 vel 100"));
    const std::vector<std::string> all{"note on ch 1 C4 vel 100", "control ch 1 volume 5",
                                       "system exclusive 4 bytes F0 7D 01 F7",
                                       "note on ch 1 E4 vel 100"};
    EXPECT_EQ(GetLog(), all);
    Toggle("midiShowNotes");
    EXPECT_THAT(GetLog(), ElementsAre(all[1], all[2]));
    Toggle("midiShowControllers");
    EXPECT_THAT(GetLog(), ElementsAre(all[2]));
    Toggle("midiShowSystemExclusive");
    EXPECT_THAT(GetLog(), IsEmpty());
    Toggle("midiShowClock");
    EXPECT_THAT(GetLog(), ElementsAre("clock", "active sensing"));
    Toggle("midiShowNotes");
    QTest::keyClicks(&Get<QLineEdit>("midiFilter"), "e4");
    EXPECT_THAT(GetLog(), ElementsAre(all[3]));
    EXPECT_THAT(GetText("midiCount"), StartsWith("1 of "));
    Get<QLineEdit>("midiFilter").setText("KEYS");
    EXPECT_EQ(GetLog().size(), 4U);
}

TEST_F(MidiWindow, LinesWaitWhilePaused)
{
    Click("midiPause");
    Click("midiClear");
    Do("midi Keys feed 90 3C 64");
    ASSERT_TRUE(SettleUntil([&] { return GetText("midiCount").ends_with("1 waiting"); }));
    EXPECT_THAT(GetLog(), IsEmpty());
    Click("midiPause");
    EXPECT_THAT(GetLog(), ElementsAre("note on ch 1 C4 vel 100"));
    Click("midiClear");
    EXPECT_THAT(GetLog(), IsEmpty());
    EXPECT_EQ(GetText("midiCount"), "0 of 0 lines shown");
}

TEST_F(MidiWindow, FollowsTheNewestLine)
{
    auto& table = Get<QTableView>("midiLog");
    for (int i = 0; i < 60; ++i)
        Do("midi Keys feed 90 3C 64 80 3C 00");
    ASSERT_TRUE(SettleUntil([&] { return GetLog().size() >= 120; }));
    const auto isAtEnd = [&] {
        const QScrollBar& bar = *table.verticalScrollBar();
        return bar.maximum() > 0 && bar.value() == bar.maximum();
    };
    EXPECT_TRUE(isAtEnd());
    Toggle("midiFollow");
    table.scrollToTop();
    Do("midi Keys feed 90 41 64");
    ASSERT_TRUE(AwaitLog("note on ch 1 F4 vel 100"));
    EXPECT_FALSE(isAtEnd());
    Toggle("midiFollow");
    EXPECT_TRUE(isAtEnd());
}

TEST_F(MidiWindow, CopiesLines)
{
    Click("midiClear");
    Do("midi Keys feed 90 3C 64");
    ASSERT_TRUE(AwaitLog("note on ch 1 C4 vel 100"));
    auto& table = Get<QTableView>("midiLog");
    table.selectAll();
    table.setFocus();
    QTest::keySequence(&table, QKeySequence::Copy);
    EXPECT_THAT(QApplication::clipboard()->text().toStdString(),
                HasSubstr("\tKeys\t← in\tnote on ch 1 C4 vel 100\n"));
}

TEST_F(MidiWindow, SaysWhatBytesAreBeforeTheyGo)
{
    auto& bytes = Get<QLineEdit>("midiSendBytes");
    EXPECT_FALSE(Get<QPushButton>("midiSendGo").isEnabled());
    QTest::keyClicks(&bytes, "90 3c 6");
    EXPECT_THAT(GetText("midiSendCheck"), StartsWith("⚠ No bytes"));
    EXPECT_FALSE(Get<QPushButton>("midiSendGo").isEnabled());
    QTest::keyClick(&bytes, Qt::Key_Return);
    Settle();
    EXPECT_THAT(m_lines, IsEmpty());
    QTest::keyClicks(&bytes, "4");
    EXPECT_EQ(GetText("midiSendCheck"), "note on ch 1 C4 vel 100");
    bytes.setText("F0 7D F7");
    EXPECT_EQ(GetText("midiSendCheck"), "system exclusive 3 bytes F0 7D F7");
    bytes.setText("90 3C 64 3D 64");
    EXPECT_EQ(GetText("midiSendCheck"), "5 bytes");
    bytes.setText("90");
    EXPECT_EQ(GetText("midiSendCheck"), "1 byte");
}

TEST_F(MidiWindow, SendsBytes)
{
    auto& bytes = Get<QLineEdit>("midiSendBytes");
    QTest::keyClicks(&bytes, "903c64");
    QTest::keyClick(&bytes, Qt::Key_Return);
    ASSERT_TRUE(AwaitLog("90 3C 64, note on ch 1 C4 vel 100"));
    EXPECT_THAT(m_lines, ElementsAre("send 90 3C 64"));
    const QAbstractItemModel& model = *Get<QTableView>("midiLog").model();
    const int row = model.rowCount() - 1;
    EXPECT_EQ(model.index(row, MidiLogModel::Column_Port).data(), "Keys");
    EXPECT_EQ(model.index(row, MidiLogModel::Column_Direction).data(), "→ out");
}

TEST_F(MidiWindow, SendsQuickMessages)
{
    Get<QSpinBox>("midiChannel").setValue(2);
    Get<QSpinBox>("midiNumber").setValue(61);
    Get<QSpinBox>("midiVelocity").setValue(99);
    for (const char* const button :
         {"midiNoteOn", "midiNoteOff", "midiProgram", "midiStart", "midiStop", "midiClock"})
        Click(button);
    EXPECT_THAT(m_lines, ElementsAre("send 91 3D 63", "send 81 3D 63", "send C1 3D", "send FA",
                                     "send FC", "send F8"));
    EXPECT_EQ(m_errors, "");
    EXPECT_TRUE(SettleUntil([&] { return GetState("midi/sent") == 11; }));
}

TEST_F(MidiWindow, TellsWhatWentWrong)
{
    Do("transmit off");
    Click("midiClock");
    EXPECT_TRUE(Get<QLabel>("midiStatus").isVisible());
    EXPECT_THAT(GetText("midiStatus"), HasSubstr("transmission is off"));
    Do("transmit on");
    Click("midiClock");
    EXPECT_FALSE(Get<QLabel>("midiStatus").isVisible());
}

TEST_F(MidiWindow, PlaysNotesWhileKeysAreHeld)
{
    Get<QSpinBox>("midiKeyVelocity").setValue(80);
    auto& key = Get<QPushButton>("midiKey4");
    QTest::mousePress(&key, Qt::LeftButton);
    ASSERT_TRUE(AwaitLog("note on ch 1 E4 vel 80"));
    // The note ends where it began.
    Get<QSpinBox>("midiKeyOctave").setValue(2);
    Get<QSpinBox>("midiKeyChannel").setValue(5);
    Get<QComboBox>("midiKeyPort").setCurrentText("Show");
    QTest::mouseRelease(&key, Qt::LeftButton);
    ASSERT_TRUE(AwaitLog("note off ch 1 E4 vel 0"));
    EXPECT_THAT(m_lines, ElementsAre("midi Keys feed 90 40 50", "midi Keys feed 80 40 00"));
    EXPECT_EQ(m_errors, "");
}

TEST_F(MidiWindow, PlaysByTheSpaceKey)
{
    Get<QSpinBox>("midiKeyOctave").setValue(-1);
    auto& key = Get<QPushButton>("midiKey12");
    QTest::keyPress(&key, Qt::Key_Space);
    Settle();
    QTest::keyRelease(&key, Qt::Key_Space);
    Settle();
    EXPECT_THAT(m_lines, ElementsAre("midi Keys feed 90 0C 64", "midi Keys feed 80 0C 00"));
}

TEST_F(MidiWindow, ANoteEndsWhenItsKeyIsHidden)
{
    auto& key = Get<QPushButton>("midiKey0");
    key.setFocus();
    QTest::keyPress(&key, Qt::Key_Space);
    m_panel.hide();
    Settle();
    EXPECT_THAT(m_lines, ElementsAre("midi Keys feed 90 3C 64", "midi Keys feed 80 3C 00"));
}

TEST_F(MidiWindow, KeysBeyondTheLastNoteAreSilent)
{
    Get<QSpinBox>("midiKeyOctave").setValue(9);
    EXPECT_EQ(Get<QSpinBox>("midiKeyOctave").value(), 9);
    QTest::mouseClick(&Get<QPushButton>("midiKey8"), Qt::LeftButton);
    QTest::mouseClick(&Get<QPushButton>("midiKey7"), Qt::LeftButton);
    Settle();
    EXPECT_THAT(m_lines, ElementsAre("midi Keys feed 90 7F 64", "midi Keys feed 80 7F 00"));
}

TEST_F(MidiWindow, FeedsBytes)
{
    Get<QLineEdit>("midiFeedBytes").setText("C0 05");
    Click("midiFeedGo");
    EXPECT_THAT(m_lines, ElementsAre("midi Keys feed C0 05"));
    ASSERT_TRUE(AwaitLog("program ch 1 5"));
}

} // namespace
