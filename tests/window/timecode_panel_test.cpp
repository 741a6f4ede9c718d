// SPDX-License-Identifier: MIT
#include "virtual-desk/timecode_panel.h"

#include <gmock/gmock.h>

#include <QFileDialog>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "window/window_bench.h"

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using VirtualDesk::TimecodePanel;

class TimecodeWindow : public TestSupport::WindowBench
{
protected:
    explicit TimecodeWindow(const Desk::DeskData& data = MakeDesk())
        : WindowBench(data), m_panel(Desk())
    {
        m_panel.resize(1200, 900);
        m_panel.show();
        QObject::connect(&Desk(), &VirtualDesk::DeskController::done, &m_panel,
                         [this](const QString& line, const QString& error) {
                             m_lines.push_back(line.toStdString());
                             m_errors += error.toStdString();
                         });
        Settle();
    }

    template <class Control> Control& Get(const char* name) { return Find<Control>(m_panel, name); }
    nlohmann::json GetState(const std::string& path) { return WindowBench::Get(path); }
    std::string GetText(const char* name) { return Get<QLabel>(name).text().toStdString(); }
    void Push(const char* name) { QTest::mouseClick(&Get<QPushButton>(name), Qt::LeftButton); }
    void Click(const char* name)
    {
        Push(name);
        Settle();
    }
    /// Creates a source and waits until it is listed.
    void Create(const char* rate, const char* start, int number = 1)
    {
        Get<QComboBox>("simNewRate").setEditText(rate);
        Get<QLineEdit>("simNewStart").setText(start);
        Push("simCreate");
        ASSERT_TRUE(SettleUntil([&] { return Get<QListWidget>("simList").count() == number; }));
    }
    bool HasReadout(const char* source)
    {
        return m_panel.findChild<QWidget*>(QString("readout ") + source) != nullptr;
    }
    /// Waits for a source's first frame.
    bool AwaitReadout(const char* source)
    {
        return SettleUntil([&] { return HasReadout(source); });
    }

    TimecodePanel m_panel;
    std::vector<std::string> m_lines; // that were done
    std::string m_errors;
};

TEST_F(TimecodeWindow, SaysThatThereIsNoSource)
{
    EXPECT_TRUE(Get<QLabel>("timecodeNone").isVisible());
    EXPECT_FALSE(Get<QPushButton>("simStart").isEnabled());
    EXPECT_FALSE(Get<QPushButton>("simDestroy").isEnabled());
    EXPECT_TRUE(Get<QPushButton>("simCreate").isEnabled());
}

TEST_F(TimecodeWindow, ShowsASimulatedSource)
{
    Create("25", "10:00:00:00");
    ASSERT_TRUE(AwaitReadout("sim 1"));
    EXPECT_FALSE(Get<QLabel>("timecodeNone").isVisible());
    ASSERT_TRUE(SettleUntil([&] { return GetText("direction sim 1") == "▶ forwards"; }));
    EXPECT_TRUE(SettleUntil([&] { return GetText("signal sim 1") == "● live"; }));
    EXPECT_FALSE(Get<QLabel>("dropFrame sim 1").isVisible());
    Click("simStop");
    // A frame may have been on its way.
    EXPECT_TRUE(SettleUntil([&] {
        return GetText("time sim 1") == GetState("timecode/sim 1/frame").get<std::string>() &&
               GetText("frames sim 1") ==
                   std::to_string(GetState("timecode/sim 1/frames").get<int>()) + " frames";
    }));
    EXPECT_THAT(GetText("time sim 1"), StartsWith("10:0"));
    EXPECT_EQ(m_errors, "");
}

TEST_F(TimecodeWindow, TellsOfASourceThatFellSilent)
{
    Create("25", "10:00:00:00");
    ASSERT_TRUE(AwaitReadout("sim 1"));
    Click("simStop");
    ASSERT_TRUE(SettleUntil([&] { return GetText("signal sim 1") == "○ silent"; }));
    EXPECT_EQ(GetText("rate sim 1"), "no rate");
    EXPECT_EQ(Get<QListWidget>("simList").item(0)->text(), "sim 1 – silent");
    Click("simStart");
    ASSERT_TRUE(SettleUntil([&] { return GetText("signal sim 1") == "● live"; }));
}

TEST_F(TimecodeWindow, ASourceCanRunBackwards)
{
    Get<QCheckBox>("simNewBackwards").setChecked(true);
    Create("ebu25", "10:00:10:00");
    ASSERT_TRUE(AwaitReadout("sim 1"));
    ASSERT_TRUE(SettleUntil([&] { return GetText("direction sim 1") == "◀ backwards"; }));
    EXPECT_THAT(m_lines, ElementsAre("sim 1 create ebu25,start=10:00:10:00,backwards"));
}

TEST_F(TimecodeWindow, SourcesMadeAtOnceGetNumbersOfTheirOwn)
{
    Push("simCreate");
    Push("simCreate");
    ASSERT_TRUE(SettleUntil([&] { return Get<QListWidget>("simList").count() == 2; }));
    EXPECT_EQ(m_errors, "");
    EXPECT_TRUE(AwaitReadout("sim 1"));
    EXPECT_TRUE(AwaitReadout("sim 2"));
    // A number that came free is given away again.
    Get<QListWidget>("simList").setCurrentRow(0);
    Click("simDestroy");
    EXPECT_FALSE(HasReadout("sim 1"));
    Create("25", "10:00:00:00", 2);
    EXPECT_TRUE(AwaitReadout("sim 1"));
}

TEST_F(TimecodeWindow, ChangesTheSelectedSource)
{
    Create("25", "10:00:00:00", 1);
    Create("25", "10:00:00:00", 2);
    ASSERT_TRUE(AwaitReadout("sim 1"));
    ASSERT_TRUE(AwaitReadout("sim 2"));
    Get<QListWidget>("simList").setCurrentRow(1);
    m_lines.clear();
    Get<QDoubleSpinBox>("simRate").setValue(-12.5);
    Click("simSetRate");
    ASSERT_TRUE(SettleUntil([&] { return GetText("direction sim 2") == "◀ backwards"; }));
    Get<QComboBox>("simFormat").setCurrentText("film24");
    Click("simSetFormat");
    ASSERT_TRUE(SettleUntil([&] { return GetText("direction sim 2") == "▶ forwards"; }));
    Get<QLineEdit>("simFrame").setText("05:06:07:08");
    Click("simJump");
    ASSERT_TRUE(SettleUntil([&] { return GetText("time sim 2").starts_with("05:06:"); }));
    Click("simDisable");
    Click("simEnable");
    EXPECT_THAT(m_lines, ElementsAre("sim 2 rate -12.5", "sim 2 format film24",
                                     "sim 2 jump 05:06:07:08", "sim 2 disable", "sim 2 enable"));
    EXPECT_THAT(GetText("time sim 1"), StartsWith("10:0"));
    EXPECT_EQ(m_errors, "");
}

TEST_F(TimecodeWindow, ShowsTheSelectedSourcesOwnValues)
{
    auto& list = Get<QListWidget>("simList");
    const auto& rate = Get<QDoubleSpinBox>("simRate");
    const auto& format = Get<QComboBox>("simFormat");
    const auto& frame = Get<QLineEdit>("simFrame");
    Create("24", "01:00:00:00", 1);
    Get<QCheckBox>("simNewBackwards").setChecked(true);
    Create("27", "20:00:00:00", 2);
    ASSERT_TRUE(AwaitReadout("sim 1"));
    ASSERT_TRUE(AwaitReadout("sim 2"));
    list.setCurrentRow(0);
    EXPECT_EQ(rate.value(), 24);
    EXPECT_EQ(format.currentText(), "film24");
    EXPECT_TRUE(frame.text().startsWith("01:00:")) << frame.text().toStdString();
    list.setCurrentRow(1);
    EXPECT_EQ(rate.value(), -27);
    EXPECT_EQ(format.currentIndex(), -1); // no format runs at 27
    EXPECT_FALSE(Get<QPushButton>("simSetFormat").isEnabled());
    EXPECT_TRUE(frame.text().startsWith("20:00:00:00") || frame.text().startsWith("19:59:"))
        << frame.text().toStdString();
    // Also what is set elsewhere.
    Do("sim 2 format smpte30");
    EXPECT_EQ(rate.value(), 30);
    EXPECT_EQ(format.currentText(), "smpte30");
    Do("sim 2 stop");
    EXPECT_TRUE(SettleUntil([&] {
        return frame.text().toStdString() == GetState("timecode/sim 2/frame").get<std::string>();
    }));
}

TEST_F(TimecodeWindow, KeepsWhatIsBeingEdited)
{
    auto& rate = Get<QDoubleSpinBox>("simRate");
    auto& frame = Get<QLineEdit>("simFrame");
    Create("25", "01:00:00:00");
    ASSERT_TRUE(AwaitReadout("sim 1"));
    rate.setValue(12);
    frame.setText("02:00:00:00");
    Do("sim 1 stop");
    Do("sim 1 format film24");
    EXPECT_EQ(rate.value(), 12);
    EXPECT_EQ(frame.text(), "02:00:00:00");
    EXPECT_EQ(Get<QComboBox>("simFormat").currentText(), "film24");
    Click("simSetRate");
    Do("sim 1 rate 30"); // what was edited is set, and follows the source again
    EXPECT_EQ(rate.value(), 30);
}

TEST_F(TimecodeWindow, ListsASourceWithoutAFrame)
{
    Do("sim 1 create 25");
    Do("sim 1 stop");
    Do("sim 7 create 0.001");
    auto& list = Get<QListWidget>("simList");
    ASSERT_EQ(list.count(), 2);
    list.setCurrentRow(1);
    m_lines.clear();
    Click("simDestroy");
    EXPECT_THAT(m_lines, ElementsAre("sim 7 destroy"));
    EXPECT_EQ(list.count(), 1);
}

TEST_F(TimecodeWindow, TakesNoFrameThatIsNone)
{
    Get<QLineEdit>("simNewStart").setText("10:00:00");
    EXPECT_FALSE(Get<QPushButton>("simCreate").isEnabled());
    Get<QLineEdit>("simNewStart").setText("10:00:00:00");
    EXPECT_TRUE(Get<QPushButton>("simCreate").isEnabled());
    Create("25", "10:00:00:00");
    Get<QLineEdit>("simFrame").setText("1:2:3");
    EXPECT_FALSE(Get<QPushButton>("simJump").isEnabled());
}

TEST_F(TimecodeWindow, TellsWhatWentWrong)
{
    Get<QComboBox>("simNewRate").setEditText("fast");
    Click("simCreate");
    EXPECT_TRUE(Get<QLabel>("timecodeStatus").isVisible());
    EXPECT_THAT(GetText("timecodeStatus"), HasSubstr("'fast' is neither"));
    EXPECT_FALSE(HasReadout("sim 1"));
    Create("25", "10:00:00:00"); // the number was not used up
    EXPECT_TRUE(AwaitReadout("sim 1"));
    EXPECT_FALSE(Get<QLabel>("timecodeStatus").isVisible());
}

TEST_F(TimecodeWindow, ShowsDropFrameAndLoss)
{
    Do("ltc ltc frame 10;00;00;02");
    ASSERT_TRUE(SettleUntil([&] { return HasReadout("ltc 0"); }));
    EXPECT_EQ(GetText("time ltc 0"), "10;00;00;02");
    EXPECT_TRUE(Get<QLabel>("dropFrame ltc 0").isVisible());
    Do("ltc ltc frame 10;00;00;05");
    Do("ltc ltc frame 10;00;00;05");
    ASSERT_TRUE(SettleUntil([&] { return GetText("frames ltc 0") == "3 frames"; }));
    EXPECT_EQ(GetText("lost ltc 0"), "2 lost");
    EXPECT_EQ(GetText("repeated ltc 0"), "1 repeated");
    Do("ltc ltc frame 10:00:00:06");
    ASSERT_TRUE(SettleUntil([&] { return GetText("time ltc 0") == "10:00:00:06"; }));
    EXPECT_FALSE(Get<QLabel>("dropFrame ltc 0").isVisible());
}

TEST_F(TimecodeWindow, PlaysATapeIntoABoard)
{
    EXPECT_FALSE(Get<QPushButton>("ltcPlay ltc").isEnabled());
    Get<QLineEdit>("ltcFile ltc").setText(DATA_FOLDER "/ltc/timecode_25fps.flac");
    Get<QCheckBox>("ltcLoop ltc").setChecked(true);
    Click("ltcPlay ltc");
    EXPECT_EQ(GetText("ltcState ltc"), "▶ plays");
    ASSERT_TRUE(SettleUntil([&] { return HasReadout("ltc 0"); }));
    ASSERT_TRUE(SettleUntil([&] { return GetText("direction ltc 0") == "▶ forwards"; }));
    Get<QSpinBox>("ltcGap ltc").setValue(250);
    Click("ltcDropout ltc");
    Click("ltcStop ltc");
    EXPECT_EQ(GetText("ltcState ltc"), "■ stopped");
    EXPECT_FALSE(Get<QPushButton>("ltcDropout ltc").isEnabled());
    EXPECT_THAT(m_lines, ElementsAre("ltc ltc play " DATA_FOLDER "/ltc/timecode_25fps.flac loop",
                                     "ltc ltc dropout 0.25", "ltc ltc stop"));
    EXPECT_EQ(m_errors, "");
}

TEST_F(TimecodeWindow, ATapeThatCannotBeReadIsToldOf)
{
    Get<QLineEdit>("ltcFile ltc").setText("/no such tape.flac");
    Click("ltcPlay ltc");
    EXPECT_THAT(GetText("timecodeStatus"), HasSubstr("/no such tape.flac"));
    EXPECT_EQ(GetText("ltcState ltc"), "■ stopped");
}

TEST_F(TimecodeWindow, ADialogChoosesTheTape)
{
    const QTemporaryDir folder;
    QFile tape(folder.filePath("a tape.flac"));
    ASSERT_TRUE(tape.open(QIODevice::WriteOnly));
    tape.close();
    Push("ltcBrowse ltc");
    auto& dialog = Get<QFileDialog>("ltcDialog");
    dialog.setDirectory(folder.path());
    dialog.selectFile(tape.fileName());
    QMetaObject::invokeMethod(&dialog, "accept");
    EXPECT_EQ(Get<QLineEdit>("ltcFile ltc").text(), tape.fileName());
}

TEST_F(TimecodeWindow, OnlyBoardsThatArePluggedHaveControls)
{
    EXPECT_TRUE(Get<QWidget>("ltcBoard ltc").isVisible());
    EXPECT_FALSE(Get<QWidget>("ltcNone").isVisible());
    Do("widget ltc unplug");
    EXPECT_FALSE(Get<QWidget>("ltcBoard ltc").isVisible());
    EXPECT_TRUE(Get<QWidget>("ltcNone").isVisible());
}

TEST_F(TimecodeWindow, ListsTheDisc)
{
    const auto& tracks = Get<QTableWidget>("cdTracks");
    ASSERT_EQ(tracks.rowCount(), 2);
    EXPECT_EQ(tracks.item(0, 0)->text(), "1");
    EXPECT_EQ(tracks.item(0, 2)->text(), "00:02:00");
    EXPECT_EQ(tracks.item(0, 3)->text(), "03:00:00");
    EXPECT_EQ(tracks.item(1, 0)->text(), "2");
    EXPECT_EQ(tracks.item(1, 3)->text(), "04:00:00");
    EXPECT_THAT(GetText("cdStatus"), StartsWith("■ stopped"));
    Click("cdEject");
    EXPECT_EQ(tracks.rowCount(), 0);
    EXPECT_EQ(GetText("cdStatus"), "⏏ no disc");
    EXPECT_FALSE(Get<QPushButton>("cdEject").isEnabled());
    Click("cdSample");
    EXPECT_GT(tracks.rowCount(), 2);
    Do("cd insert tracks 100 200 300");
    EXPECT_EQ(tracks.rowCount(), 3);
    EXPECT_EQ(m_errors, "");
}

TEST_F(TimecodeWindow, ADoubleClickPlaysATrack)
{
    auto& tracks = Get<QTableWidget>("cdTracks");
    const QPoint place = tracks.visualItemRect(tracks.item(1, 1)).center();
    QTest::mouseClick(tracks.viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(tracks.viewport(), Qt::LeftButton, {}, place);
    Settle();
    EXPECT_THAT(m_lines, ElementsAre("cd play 2"));
    EXPECT_EQ(GetState("cd/status"), "playing");
    EXPECT_EQ(GetState("cd/track"), 2);
    EXPECT_THAT(GetText("cdStatus"), StartsWith("▶ playing"));
    EXPECT_THAT(GetText("cdPlace"), StartsWith("Track 2 of 2"));
    EXPECT_TRUE(tracks.item(1, 1)->font().bold());
    EXPECT_THAT(tracks.item(1, 1)->text().toStdString(), StartsWith("▶"));
    EXPECT_FALSE(tracks.item(0, 1)->font().bold());
    ASSERT_TRUE(SettleUntil([&] { return HasReadout("cd"); }));
}

TEST_F(TimecodeWindow, HasThePlayersKeys)
{
    EXPECT_FALSE(Get<QPushButton>("cdPause").isEnabled());
    EXPECT_FALSE(Get<QPushButton>("cdForward").isEnabled());
    Click("cdPlay");
    EXPECT_EQ(GetState("cd/track"), 1);
    Click("cdPause");
    EXPECT_EQ(GetState("cd/status"), "paused");
    EXPECT_EQ(Get<QPushButton>("cdPause").text(), "Pl&ay on");
    EXPECT_FALSE(Get<QPushButton>("cdBack").isEnabled());
    Click("cdPause");
    EXPECT_EQ(GetState("cd/status"), "playing");
    Click("cdForward");
    EXPECT_GE(GetState("cd/position").get<std::string>(), "00:12:00");
    Click("cdNext");
    EXPECT_EQ(GetState("cd/track"), 2);
    Click("cdPrevious");
    EXPECT_EQ(GetState("cd/track"), 1);
    Click("cdForward");
    Click("cdBack");
    Click("cdStop");
    EXPECT_EQ(GetState("cd/status"), "stopped");
    EXPECT_EQ(GetText("cdPlace"), "at rest");
    EXPECT_THAT(m_lines, ElementsAre("cd play", "cd pause", "cd resume", "cd jog 10", "cd next",
                                     "cd previous", "cd jog 10", "cd jog -10", "cd stop"));
    EXPECT_EQ(m_errors, "");
}

TEST_F(TimecodeWindow, ADialogInsertsADisc)
{
    Push("cdInsert");
    auto& dialog = Get<QFileDialog>("cdDialog");
    dialog.setDirectory(DATA_FOLDER "/cd");
    dialog.selectFile(DATA_FOLDER "/cd/soundtrack.cue");
    QMetaObject::invokeMethod(&dialog, "accept");
    Settle();
    EXPECT_THAT(m_lines, ElementsAre("cd insert " DATA_FOLDER "/cd/soundtrack.cue"));
    EXPECT_EQ(m_errors, "");
    EXPECT_GT(Get<QTableWidget>("cdTracks").rowCount(), 2);
}

TEST_F(TimecodeWindow, TellsWhatIsWrongWithTheDrive)
{
    Do("cd scratch on");
    Do("cd slow 20");
    EXPECT_THAT(GetText("cdStatus"), HasSubstr("⚠ scratched, 20 ms slower"));
    Click("cdPlay");
    EXPECT_TRUE(Get<QLabel>("timecodeStatus").isVisible());
    Do("cd scratch off");
    Do("cd slow 0");
    EXPECT_THAT(GetText("cdStatus"), testing::Not(HasSubstr("⚠")));
}

class BareTimecodeWindow : public TimecodeWindow
{
protected:
    BareTimecodeWindow() : TimecodeWindow(MakeBareDesk()) {}

    static Desk::DeskData MakeBareDesk()
    {
        Desk::DeskData data = MakeDesk();
        data.widgets.clear();
        data.cd.reset();
        data.simulate = {"25", "30"};
        return data;
    }
};

TEST_F(BareTimecodeWindow, SaysWhatTheDeskDoesNotHave)
{
    EXPECT_TRUE(Get<QLabel>("ltcNone").isVisible());
    EXPECT_EQ(GetText("cdStatus"), "The desk has no CD drive.");
    EXPECT_FALSE(Get<QPushButton>("cdPlay").isEnabled());
}

TEST_F(BareTimecodeWindow, ListsSourcesThatTheDeskBeganWith)
{
    ASSERT_TRUE(SettleUntil([&] { return HasReadout("sim 1") && HasReadout("sim 2"); }));
    EXPECT_EQ(Get<QListWidget>("simList").count(), 2);
}

} // namespace
