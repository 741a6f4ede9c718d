// SPDX-License-Identifier: MIT

// The window as a whole.

#include "virtual-desk/main_window.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCompleter>
#include <QDir>
#include <QDockWidget>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QTableView>
#include <QTemporaryDir>
#include <QToolTip>
#include <fstream>
#include <set>

#include "support/wait.h"
#include "virtual-desk/line_box.h"
#include "virtual-desk/line_label.h"
#include "virtual-desk/log_model.h"
#include "virtual-desk/window_palette.h"
#include "window/window_bench.h"

namespace
{

using testing::HasSubstr;

class Window : public TestSupport::WindowBench
{
protected:
    Window() : WindowBench(MakeDesk(), true), m_window(Desk()) { m_window.show(); }

    std::string GetText(const char* name)
    {
        return Find<QPlainTextEdit>(m_window, name).toPlainText().toStdString();
    }
    void Type(const char* line)
    {
        auto& box = Find<QLineEdit>(m_window, "line");
        QTest::keyClicks(&box, QString::fromLatin1(line));
        box.completer()->popup()->hide();
        QTest::keyClick(&box, Qt::Key_Return);
        Settle();
    }

    VirtualDesk::MainWindow m_window;
};

/// On a console whose displays are dimmed by panels at serial lines, so that lights can be held up.
/// The window goes before the desk, which ends in the middle of what is under way.
class WindowThatCloses : public TestSupport::WindowBench
{
protected:
    WindowThatCloses() : WindowBench(MakeSerialDesk()) {}

    /// Has lines done, waits until the last one is under way, has more wait behind it, and closes.
    void CloseDuring(const QStringList& lines)
    {
        VirtualDesk::MainWindow window(Desk());
        window.show();
        for (const QString& line : lines)
            Desk().Do(line);
        EXPECT_TRUE(TestSupport::WaitUntil(
            [&] { return Desk().GetProgress().line == lines.back().toStdString(); }));
        Desk().RunScript({"wait 1000", "light key"});
        Desk().Do("widget motor unplug");
        window.close();
        EXPECT_EQ(Desk().GetProgress().line, lines.back().toStdString());
    }

private:
    static Desk::DeskData MakeSerialDesk()
    {
        Desk::DeskData data = MakeDesk();
        data.platform.productType = 8;
        return data;
    }
};

} // namespace

TEST_F(Window, HasATabForEachPanel)
{
    const auto& tabs = Find<QTabWidget>(m_window, "tabs");
    ASSERT_EQ(tabs.count(), 6);
    for (const char* const name : {"surface", "timecode", "midi", "lights", "faults", "log"})
        EXPECT_TRUE(m_window.findChild<QWidget*>(QString::fromLatin1(name))) << name;
    EXPECT_THAT(m_window.windowTitle().toStdString(), HasSubstr("Bench"));
}

TEST_F(Window, DoesTypedLinesAndKeepsThemAsAScript)
{
    Type("light vent=12");
    EXPECT_EQ(Get("lights/VentLight/level"), 12);
    EXPECT_THAT(GetText("lines"), HasSubstr("light vent=12"));
    const auto& message = Find<QLabel>(m_window, "message");
    EXPECT_EQ(message.text().toStdString(), Desk().GetDesk().GetData().description);
    Type("dance");
    EXPECT_THAT(GetText("lines"), HasSubstr("# dance: there is no verb 'dance'"));
    EXPECT_TRUE(message.text().startsWith("dance: there is no verb 'dance'; "));
    EXPECT_GT(message.width(), 200);
    EXPECT_EQ(m_window.GetScript(), QStringList{"light vent=12"});
}

TEST_F(Window, ShowsWhatHappens)
{
    Do("widget motor tap 3");
    EXPECT_THAT(GetText("events"), HasSubstr("button 70 of master 4 pressed"));
    Do("show lights/WorkLight/level");
    EXPECT_THAT(GetText("events"), HasSubstr("lights/WorkLight/level = 100"));
}

TEST_F(Window, KeepsTheNewestEventInSight)
{
    m_window.resize(2600, 900);
    const auto& events = Find<QPlainTextEdit>(m_window, "events");
    const QScrollBar& bar = *events.verticalScrollBar();
    for (int round = 0; round < 30; ++round)
        Do("widget motor tap 3");
    ASSERT_GT(bar.maximum(), 0);
    EXPECT_EQ(bar.value(), bar.maximum());
    Do("show widgets/motor"); // which is wide
    Do("widget motor tap 3");
    EXPECT_EQ(bar.value(), bar.maximum());
    // Who looks at what was before goes on to.
    events.verticalScrollBar()->setValue(2);
    Do("widget motor tap 3");
    EXPECT_EQ(bar.value(), 2);
}

TEST_F(Window, KeepsTheNewestEventInSightBehindAWideOne)
{
    m_window.resize(1280, 900);
    auto& dock = Find<QDockWidget>(m_window, "eventDock");
    auto& events = Find<QPlainTextEdit>(m_window, "events");
    const QScrollBar& bar = *events.verticalScrollBar();
    // A bar for what is too wide takes some of the room; whether that is a line of it is up to the
    // font, so some heights are tried.
    std::set<int> heights;
    for (int height = 200; height < 220; ++height) {
        m_window.resizeDocks({&dock}, {height}, Qt::Vertical);
        QCoreApplication::processEvents();
        heights.insert(events.height());
        events.clear();
        QCoreApplication::processEvents();
        for (int line = 0; line < 60; ++line)
            events.appendPlainText("a line");
        ASSERT_EQ(events.horizontalScrollBar()->maximum(), 0);
        events.appendPlainText(QString(1000, 'w'));
        QCoreApplication::processEvents(); // here the bar comes
        events.appendPlainText("a line");
        EXPECT_GT(events.horizontalScrollBar()->maximum(), 0);
        EXPECT_EQ(bar.value(), bar.maximum()) << height;
    }
    EXPECT_GT(heights.size(), 10U);
}

TEST_F(Window, HasTheLogFromTheDesksStart)
{
    Settle();
    const auto& lines = Find<QTableView>(m_window, "logLines");
    QStringList texts;
    for (int row = 0; row < lines.model()->rowCount(); ++row)
        texts += lines.model()->index(row, VirtualDesk::LogModel::Text).data().toString();
    EXPECT_TRUE(texts.contains("Desk light fading initialized.")) << texts.join('\n').toStdString();
}

TEST_F(Window, RunsScripts)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("script.txt");
    std::ofstream(file.toStdString())
        << "# first\nlight vent=3\nexpect lights/VentLight/level = 3\n"
           "light vent=\nlight vent=4\n";
    m_window.RunScriptFile(file);
    Settle();
    EXPECT_EQ(Get("lights/VentLight/level"), 3); // nothing is done behind a line that fails
    EXPECT_EQ(m_window.GetScript(),
              (QStringList{"light vent=3", "expect lights/VentLight/level = 3"}));
    EXPECT_THAT(GetText("lines"), HasSubstr("# light vent=: "));
    EXPECT_THAT(GetText("lines"), testing::EndsWith("(the script ends here)"));
    EXPECT_EQ(m_window.CountFailures(), 1);
}

TEST_F(Window, HandsWorkWhileAScriptRunsAndCanStopIt)
{
    auto& stop = Find<QPushButton>(m_window, "stopScript");
    EXPECT_FALSE(stop.isVisible());
    m_window.DoScript("wait 1000\nlight vent=5\n");
    ASSERT_TRUE(TestSupport::WaitUntil([&] {
        QCoreApplication::processEvents();
        return stop.isVisible() && Desk().GetScriptProgress().line == "wait 1000";
    }));
    Desk().Do("light vent=9");
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return Get("lights/VentLight/level") == 9; }));
    const auto& progress = Find<QLabel>(m_window, "progress");
    ASSERT_TRUE(TestSupport::WaitUntil([&] {
        QCoreApplication::processEvents();
        return progress.text().contains("s: wait 1000, 1 more wait");
    }));
    stop.click();
    Settle();
    EXPECT_EQ(Get("lights/VentLight/level"), 9);
    EXPECT_THAT(GetText("lines"), HasSubstr("# wait 1000: interrupted"));
    EXPECT_FALSE(stop.isVisible());
    EXPECT_EQ(progress.text(), "");
}

TEST_F(Window, BringsBackTheLinesBefore)
{
    Type("light vent=1");
    Type("light vent=2");
    auto& box = Find<QLineEdit>(m_window, "line");
    QTest::keyClicks(&box, "new");
    box.completer()->popup()->hide();
    const QStringList expected{"light vent=2", "light vent=1", "light vent=1"};
    for (const QString& line : expected) {
        QTest::keyClick(&box, Qt::Key_Up);
        EXPECT_EQ(box.text(), line);
    }
    QTest::keyClick(&box, Qt::Key_Down);
    QTest::keyClick(&box, Qt::Key_Down);
    EXPECT_EQ(box.text(), "new");
}

TEST_F(Window, AnOfferThatIsTakenIsNotDoneYet)
{
    auto& box = Find<QLineEdit>(m_window, "line");
    m_window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    box.setFocus();
    QTest::keyClicks(&box, "widget motor unpl");
    QAbstractItemView& offers = *box.completer()->popup();
    ASSERT_TRUE(offers.isVisible());
    QTest::keyClick(&offers, Qt::Key_Down);
    QTest::keyClick(&offers, Qt::Key_Return);
    Settle();
    EXPECT_EQ(box.text(), "widget motor unplug");
    EXPECT_EQ(m_window.GetScript(), QStringList());
    QTest::keyClick(&box, Qt::Key_Return);
    Settle();
    EXPECT_EQ(m_window.GetScript(), QStringList{"widget motor unplug"});
    EXPECT_EQ(box.text(), "");
}

TEST_F(Window, OffersLinesWithTheDesksOwnNames)
{
    const QStringList lines = VirtualDesk::GetPossibleLines(Desk().GetDesk().GetData());
    for (const char* const line :
         {"widget motor unplug", "widget PATH press BUTTON", "wing panel leds flash",
          "midi Keys busy on", "serial /dev/ttyS0 stall", "adapter eth0 up", "cd eject",
          "widget motor press BUTTON", "ltc ltc play FILE [loop]", "sim NUMBER start"})
        EXPECT_EQ(lines.contains(line), line != std::string("widget PATH press BUTTON")) << line;
}

TEST_F(Window, ShowsAndHidesTheDocksFromTheMenu)
{
    QAction* show = nullptr;
    for (QAction* const action : m_window.findChildren<QAction*>())
        if (action->text() == "Events")
            show = action;
    ASSERT_TRUE(show);
    auto& dock = Find<QDockWidget>(m_window, "eventDock");
    EXPECT_TRUE(dock.isVisible());
    show->trigger();
    EXPECT_FALSE(dock.isVisible());
    show->trigger();
    EXPECT_TRUE(dock.isVisible());
}

TEST_F(Window, RemembersItsSizeAndItsDocks)
{
    const QTemporaryDir folder;
    QSettings settings(folder.filePath("settings.ini"), QSettings::IniFormat);
    const auto find = [](VirtualDesk::MainWindow& window, const char* name) -> QDockWidget& {
        return Find<QDockWidget>(window, name);
    };
    m_window.resize(700, 500);
    find(m_window, "lineDock").hide();
    m_window.addDockWidget(Qt::TopDockWidgetArea, &find(m_window, "eventDock"));
    QCoreApplication::processEvents();
    m_window.close(); // kept after it was closed, as a user ends it
    m_window.SaveLayout(settings);

    VirtualDesk::MainWindow other(Desk());
    EXPECT_NE(other.size(), m_window.size());
    other.RestoreLayout(settings);
    other.show();
    QCoreApplication::processEvents();
    EXPECT_EQ(other.size(), m_window.size());
    EXPECT_FALSE(find(other, "lineDock").isVisible());
    EXPECT_TRUE(find(other, "eventDock").isVisible());
    EXPECT_EQ(other.dockWidgetArea(&find(other, "eventDock")), Qt::TopDockWidgetArea);
}

TEST_F(Window, ToolTipsFollowTheChosenPalette)
{
    for (const char* const name : {"dark", "light"}) {
        ASSERT_TRUE(VirtualDesk::UsePalette(name));
        const QPalette window = QApplication::palette();
        const QPalette tips = QToolTip::palette();
        EXPECT_EQ(tips.color(QPalette::ToolTipBase), window.color(QPalette::Base)) << name;
        EXPECT_EQ(tips.color(QPalette::ToolTipText), window.color(QPalette::WindowText)) << name;
    }
    EXPECT_FALSE(VirtualDesk::UsePalette("pink"));
}

TEST_F(Window, CutsNothingOffInASmallWindow)
{
    m_window.resize(1024, 700);
    EXPECT_EQ(m_window.size(), QSize(1024, 700));
    auto& tabs = Find<QTabWidget>(m_window, "tabs");
    for (int tab = 0; tab < tabs.count(); ++tab) {
        tabs.setCurrentIndex(tab);
        Settle();
        for (const QLabel* const label : m_window.findChildren<QLabel*>()) {
            // Some shorten or break their text themselves.
            if (!label->isVisible() || label->wordWrap() ||
                qobject_cast<const VirtualDesk::LineLabel*>(label))
                continue;
            EXPECT_GE(label->width(), label->minimumSizeHint().width())
                << label->text().toStdString();
        }
        for (const QAbstractButton* const button : m_window.findChildren<QAbstractButton*>()) {
            QString text = button->text();
            EXPECT_TRUE(!button->isVisible() || button->fontMetrics().horizontalAdvance(
                                                    text.remove('&')) <= button->width())
                << text.toStdString();
        }
        // Wings are as wide as they are, and "Fit" fits them.
        for (const QScrollArea* const area : m_window.findChildren<QScrollArea*>()) {
            if (!area->isVisible() || area->objectName() == "wings-area")
                continue;
            EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0) << tabs.tabText(tab).toStdString();
        }
    }
    const auto& log = Find<QTableView>(m_window, "logLines");
    const int text = VirtualDesk::LogModel::Text;
    EXPECT_LE(log.columnViewportPosition(text) + log.columnWidth(text), log.viewport()->width());
    EXPECT_GE(log.columnWidth(text), log.fontMetrics().averageCharWidth() * 40);
}

TEST_F(Window, SavesAPictureOfEachTab)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(m_window.SavePictures(folder.filePath("pictures")));
    const QStringList names = QDir(folder.filePath("pictures")).entryList(QDir::Files);
    EXPECT_EQ(names, (QStringList{"faults.png", "lights.png", "log.png", "midi.png", "surface.png",
                                  "timecode.png"}));
    for (const QString& name : names)
        EXPECT_GT(QImage(folder.filePath("pictures/" + name)).width(), 600) << name.toStdString();
    EXPECT_FALSE(m_window.SavePictures("/dev/null/nowhere"));
}

TEST_F(WindowThatCloses, BeforeThatAHandMendsWhatAScriptIsStuckIn)
{
    Desk().RunScript({"serial /dev/ttyS0 stall", "light left=77", "light vent=3"});
    EXPECT_TRUE(TestSupport::WaitUntil(
        [this] { return Desk().GetScriptProgress().line == "light left=77"; }));
    Do("serial /dev/ttyS0 resume");
    EXPECT_EQ(Get("lights/VentLight/level"), 3);
}

TEST_F(WindowThatCloses, BeforeThatAHandMendsWhatItsOwnLineIsStuckIn)
{
    Desk().Do("serial /dev/ttyS0 stall");
    Desk().Do("light left=77");
    EXPECT_TRUE(
        TestSupport::WaitUntil([this] { return Desk().GetProgress().line == "light left=77"; }));
    Do("serial /dev/ttyS0 resume");
    EXPECT_TRUE(Desk().IsIdle());
}

TEST_F(WindowThatCloses, WhileAVerbWaitsForAStalledLine)
{
    CloseDuring(
        {"light sleep", "sim 2 create 25", "cd play", "serial /dev/ttyS0 stall", "light left=77"});
}

TEST_F(WindowThatCloses, WhileMessagesWaitForAStalledLine)
{
    CloseDuring({"serial /dev/ttyS0 stall", "setting left=20", "light apply"});
}

TEST_F(WindowThatCloses, WhileADriveIsSlow)
{
    CloseDuring({"cd slow 60000", "cd play"});
}

TEST_F(WindowThatCloses, WhileItWaitsForWhatNeverComes)
{
    CloseDuring({"receive off", "transmit on", "midi Keys full on", "until midi/sent > 5"});
}

TEST_F(Window, EventsWithoutRoomAreCountedAndTheNewestShown)
{
    for (int press = 0; press < 150; ++press)
        Desk().Do("widget motor tap 3");
    ASSERT_TRUE(TestSupport::WaitUntil([this] { // nobody looks meanwhile
        const auto progress = Desk().GetProgress();
        return progress.line.empty() && progress.waiting == 0;
    }));
    EXPECT_FALSE(Desk().IsIdle()); // done() has not told yet
    Settle();
    EXPECT_THAT(GetText("events"), HasSubstr(" more ..."));
    EXPECT_THAT(GetText("events"), testing::EndsWith("released"));
}
