// SPDX-License-Identifier: MIT
#include "virtual-desk/log_panel.h"

#include <gtest/gtest.h>

#include <QPushButton>
#include <QTest>
#include <thread>

#include "os/log.h"
#include "support/log_capture.h"
#include "window/window_bench.h"

namespace
{

using VirtualDesk::ContextTree;
using VirtualDesk::LogFeed;
using VirtualDesk::LogModel;
using VirtualDesk::LogPanel;

constexpr int Patience = 20000; // milliseconds, which no healthy run needs

Os::Log::Context& LogContext()
{
    static Os::Log::Context context("WindowTest", nullptr, Os::Log::AllLevels);
    return context;
}

void Write(unsigned level, const std::string& text)
{
    OS_LOG(LogContext(), level, "some_file.cpp", text.c_str());
}

class LogWindow : public TestSupport::WindowBench
{
protected:
    LogWindow() : WindowBench(Desk::DeskData()), m_panel(std::make_unique<LogPanel>(Desk()))
    {
        LogContext();
        m_panel->resize(1000, 600);
        m_panel->show();
        RefreshContexts();
        Clear();
    }

    template <class Control> Control& GetControl(const QString& name)
    {
        auto* const control = m_panel->findChild<Control*>(name);
        if (!control)
            throw std::runtime_error("there is no " + name.toStdString());
        return *control;
    }
    void Clear()
    {
        QTest::mouseClick(&GetControl<QToolButton>("logClear"), Qt::LeftButton);
        Settle();
    }
    void RefreshContexts()
    {
        for (int i = 0; i < VirtualDesk::DeskController::RefreshRate; ++i)
            Settle();
    }
    /// Texts of this test's own lines; the library may write some meanwhile.
    QStringList ListTexts()
    {
        const QAbstractItemModel& model = *GetControl<QTableView>("logLines").model();
        QStringList texts;
        for (int row = 0; row < model.rowCount(); ++row)
            if (model.index(row, LogModel::Context).data() == "WindowTest")
                texts += model.index(row, LogModel::Text).data().toString();
        return texts;
    }
    QTreeWidgetItem* FindItem(const QString& path)
    {
        return GetControl<ContextTree>("logContexts").Find(path);
    }
    void PressSpaceAt(const QString& path, int column)
    {
        auto& tree = GetControl<ContextTree>("logContexts");
        tree.setCurrentItem(FindItem(path), column);
        QTest::keyClick(&tree, Qt::Key_Space);
        Settle();
    }

    const TestSupport::LogCapture m_others; // whom lines go on to
    std::unique_ptr<LogPanel> m_panel;
};

TEST_F(LogWindow, ShowsLinesAsTheyCome)
{
    Write(Os::Log::Warning, "first\nline");
    Write(Os::Log::Note, "second");
    Settle();
    EXPECT_EQ(ListTexts(), QStringList({"first line", "second"}));

    const QAbstractItemModel& model = *GetControl<QTableView>("logLines").model();
    for (int row = 0; row < model.rowCount(); ++row)
        if (model.index(row, LogModel::Text).data() == "first line") {
            EXPECT_EQ(model.index(row, LogModel::Level).data(), "warning");
            EXPECT_EQ(model.index(row, LogModel::Function).data(), "{anonymous}::Write");
            EXPECT_GT(model.index(row, LogModel::LineNumber).data().toUInt(), 0U);
            EXPECT_LE(model.index(row, LogModel::Time).data().toDouble(),
                      Desk().GetSession().GetSeconds());
        }
}

TEST_F(LogWindow, FiltersByTextAndLevel)
{
    Write(Os::Log::Trace, "apples and pears");
    Write(Os::Log::Error, "Pears only");
    Write(Os::Log::Error, "apples only");
    QTest::keyClicks(&GetControl<QLineEdit>("logFilter"), "pears");
    Settle();
    EXPECT_EQ(ListTexts(), QStringList({"apples and pears", "Pears only"}));
    QTest::mouseClick(&GetControl<QToolButton>("show trace"), Qt::LeftButton);
    EXPECT_EQ(ListTexts(), QStringList("Pears only"));
    GetControl<QLineEdit>("logFilter").clear();
    EXPECT_EQ(ListTexts(), QStringList({"Pears only", "apples only"}));
    EXPECT_TRUE(GetControl<QLabel>("logCounts").text().contains("lines"));
}

TEST_F(LogWindow, LinesWaitWhilePaused)
{
    QTest::mouseClick(&GetControl<QToolButton>("logPause"), Qt::LeftButton);
    Write(Os::Log::Note, "waits");
    Settle();
    EXPECT_EQ(ListTexts(), QStringList());
    EXPECT_TRUE(GetControl<QLabel>("logCounts").text().endsWith("waiting"));
    QTest::mouseClick(&GetControl<QToolButton>("logPause"), Qt::LeftButton);
    Settle();
    EXPECT_EQ(ListTexts(), QStringList("waits"));
    Clear();
    EXPECT_EQ(ListTexts(), QStringList());
}

TEST_F(LogWindow, KeepsTheNewestAndCountsWhatHadNoRoom)
{
    QTest::mouseClick(&GetControl<QToolButton>("logPause"), Qt::LeftButton);
    for (std::size_t i = 0; i < LogFeed::Limit + 7; ++i)
        Write(Os::Log::Note, std::to_string(i));
    QTest::mouseClick(&GetControl<QToolButton>("logPause"), Qt::LeftButton);
    Settle();
    EXPECT_EQ(ListTexts().last(), QString::number(LogFeed::Limit + 6));
    EXPECT_EQ(ListTexts().count(QString::number(LogFeed::Limit)), 1); // oldest made room, no other
    EXPECT_TRUE(GetControl<QLabel>("logCounts").text().endsWith("dropped"));
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < LogFeed::Limit; ++i)
            Write(Os::Log::Note, "more");
        Settle();
    }
    EXPECT_EQ(GetControl<QTableView>("logLines").model()->rowCount(), int(LogModel::Limit));
    EXPECT_EQ(ListTexts().last(), "more");
}

TEST_F(LogWindow, TellsWhereALineWasWritten)
{
    Write(Os::Log::Note, "a line with a story");
    Settle();
    auto& table = GetControl<QTableView>("logLines");
    const QAbstractItemModel& model = *table.model();
    int row = 0;
    while (model.index(row, LogModel::Text).data() != "a line with a story")
        ASSERT_LT(++row, model.rowCount());
    table.scrollTo(model.index(row, 0));
    QTest::mouseClick(table.viewport(), Qt::LeftButton, {},
                      table.visualRect(model.index(row, LogModel::Text)).center());
    auto& detail = GetControl<QPlainTextEdit>("logDetail");
    EXPECT_TRUE(detail.toPlainText().contains("some_file.cpp:"));
    EXPECT_TRUE(detail.toPlainText().contains("Write("));
    EXPECT_TRUE(QTest::qWaitFor([&] { return detail.toPlainText().contains("\n0x"); }, Patience))
        << detail.toPlainText().toStdString();
}

TEST_F(LogWindow, CanBeClosedWhileACallStackIsLookedUp)
{
    Write(Os::Log::Note, "a line");
    Settle();
    GetControl<QTableView>("logLines").selectRow(0);
    m_panel.reset();
    Settle();
}

TEST_F(LogWindow, SetsLevelsOfContexts)
{
    EXPECT_EQ(FindItem("WindowTest")->checkState(1), Qt::Checked);
    PressSpaceAt("WindowTest", 1);
    EXPECT_EQ(LogContext().GetMask(), Os::Log::AllButTrace);
    EXPECT_EQ(FindItem("WindowTest")->checkState(1), Qt::Unchecked);
    PressSpaceAt("WindowTest", 5);
    EXPECT_EQ(LogContext().GetMask(), Os::Log::Note | Os::Log::Warning | Os::Log::Error);
    QTest::mouseClick(&GetControl<QPushButton>("maskAll"), Qt::LeftButton);
    Settle();
    EXPECT_EQ(LogContext().GetMask(), Os::Log::AllLevels);
    EXPECT_EQ(FindItem("WindowTest")->checkState(5), Qt::Checked);
    EXPECT_FALSE(GetControl<QLabel>("logStatus").isVisible());
}

TEST_F(LogWindow, FindsContextsThatComeAndGo)
{
    {
        const Os::Log::Context late("Late", &LogContext(), Os::Log::Error);
        EXPECT_EQ(FindItem("WindowTest/Late"), nullptr);
        RefreshContexts();
        ASSERT_NE(FindItem("WindowTest/Late"), nullptr);
        EXPECT_EQ(FindItem("WindowTest/Late")->parent(), FindItem("WindowTest"));
        EXPECT_EQ(FindItem("WindowTest/Late")->checkState(4), Qt::Checked);
        EXPECT_EQ(FindItem("WindowTest/Late")->checkState(3), Qt::Unchecked);
        PressSpaceAt("WindowTest", 4);
        EXPECT_EQ(FindItem("WindowTest/Late")->text(4), "held");
        PressSpaceAt("WindowTest", 4);
        EXPECT_EQ(FindItem("WindowTest/Late")->text(4), "");
    }
    RefreshContexts();
    EXPECT_EQ(FindItem("WindowTest/Late"), nullptr);
    EXPECT_NE(FindItem("WindowTest"), nullptr);
}

TEST_F(LogWindow, HandsLinesOnAndGivesTheLogBack)
{
    Write(Os::Log::Note, "for both");
    Settle();
    EXPECT_EQ(ListTexts(), QStringList("for both"));
    EXPECT_EQ(m_others.Count("for both"), 1U);
    m_panel.reset();
    Write(Os::Log::Note, "for one");
    EXPECT_EQ(m_others.Count("for one"), 1U);
}

TEST_F(LogWindow, LeavesTheLogToWhoTookItMeanwhile)
{
    const TestSupport::LogCapture capture;
    m_panel.reset();
    Write(Os::Log::Note, "still here");
    EXPECT_EQ(capture.Count("still here"), 1U);
    EXPECT_EQ(m_others.Count("still here"), 0U);
}

TEST_F(LogWindow, TakesLinesOfAnyThread)
{
    constexpr int Each = 200;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 4; ++writer)
        writers.emplace_back([] {
            for (int i = 0; i < Each; ++i)
                Write(Os::Log::Note, "busy");
        });
    for (std::thread& writer : writers)
        writer.join();
    Settle();
    EXPECT_EQ(ListTexts().count("busy"), 4 * Each);
}

TEST(LogSignature, IsShortenedToTheLastTwoNames)
{
    using VirtualDesk::ShortenSignature;
    EXPECT_EQ(ShortenSignature("bool Hardware::Midi::Device::Send(unsigned int)"), "Device::Send");
    EXPECT_EQ(ShortenSignature("int main()"), "main");
    EXPECT_EQ(ShortenSignature("const char* Tools::{anonymous}::Name(Id)"), "{anonymous}::Name");
    EXPECT_EQ(ShortenSignature("void (anonymous namespace)::Run(int)"),
              "(anonymous namespace)::Run");
    EXPECT_EQ(ShortenSignature("Base::Base(const std::map<int, int>&)"), "Base::Base");
    EXPECT_EQ(ShortenSignature("std::map<a::b, c> Box<a::b>::Get() const [with T = int]"),
              "Box<a::b>::Get");
    EXPECT_EQ(ShortenSignature("X::Y::Z()::<lambda(int)>"), "Y::Z");
    EXPECT_EQ(ShortenSignature(""), "");
    EXPECT_EQ(ShortenSignature("no signature"), "signature");
}

} // namespace
