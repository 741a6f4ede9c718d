// SPDX-License-Identifier: MIT
#pragma once

#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>
#include <cstdio>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "console/runner.h"
#include "console/session.h"
#include "hwctl/desk_screen.h"
#include "hwctl/event_printer.h"
#include "hwctl/event_queue.h"
#include "standalone/log_sink.h"

namespace Hwctl
{

/// What a run of a desk does.
struct DeskRunOptions {
    /// A line to do, and where it stands, such as "test.txt:7".
    struct Line {
        std::string text;
        std::string place;
    };
    std::vector<Line> lines;
    bool readsInput = false;       ///< further lines come from standard input, as they come
    std::vector<Line> lastLines;   ///< done behind all of these
    std::optional<double> seconds; ///< goes on for so long behind the lines; otherwise they end it
    bool isEndless = false;        ///< goes on until an interrupt
    bool json = false;
    bool isQuiet = false;             ///< prints no events
    bool isLive = false;              ///< draws a live screen in place of printing events
    bool logsToScreen = false;        ///< lines of the log go to the live screen, nowhere else
    std::optional<std::string> state; ///< path of the state to print at the end; empty for all
};

/// Runs a desk and its application: does lines one after the other and prints what happens.
class DeskRun
{
public:
    /// Starts the desk. Throws what Console::Session throws.
    DeskRun(const Desk::DeskData& data, const DeskRunOptions& options);
    ~DeskRun();
    DeskRun(const DeskRun&) = delete;
    DeskRun& operator=(const DeskRun&) = delete;

    /// Runs and returns an ExitCode: failure when a line failed, or when an interrupt came before
    /// the last one was done.
    int Run();

private:
    void DoNext();
    void TakeDone(const std::string& error);
    void ReadInput();
    void End();
    void PrintState(const nlohmann::json& state);
    void Show(Tools::MonitorEvent event);
    void BeginScreen();
    void EndScreen();

    const DeskRunOptions m_options;
    EventPrinter m_printer;
    std::unique_ptr<DeskScreen> m_screen;
    std::deque<DeskRunOptions::Line> m_lines;
    DeskRunOptions::Line m_current;
    std::string m_input; // read so far of a line
    std::size_t m_inputLine = 0;
    bool m_isBusy = false;
    bool m_isOver = false; // nothing more is done or shown
    bool m_hasFailed = false;
    std::string m_error;
    EventQueue m_queue; // what is posted to it runs on the loop's thread
    std::shared_ptr<Standalone::LogSink> m_logSink; // before the live screen's
    QEventLoop m_loop;
    QTimer m_endTimer;
    QTimer m_drawTimer;
    std::unique_ptr<QSocketNotifier> m_inputNotifier;
    // Last, so that its threads end before what they report to.
    std::unique_ptr<Console::Session> m_session;
    std::unique_ptr<Console::Runner> m_runner;
};

} // namespace Hwctl
