// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "console/runner.h"
#include "console/session.h"
#include "virtual-desk/log_feed.h"

namespace VirtualDesk
{

/// The desk and its application as the window works them: what a hand does goes out as a line of
/// text, and what is to be seen is looked at some times a second. On the window's thread, which
/// never waits for a device.
class DeskController : public QObject
{
    Q_OBJECT

public:
    /// Starts the desk. Throws what Session throws.
    explicit DeskController(const Desk::DeskData& data, QObject* parent = nullptr);
    ~DeskController() override;

    /// Has a verb done soon, such as "widget motor press 71"; done() tells how it went.
    void Do(const QString& line);
    /// Has the lines of a script done beside those of hands, one verb at a time, in their order up
    /// to the first that fails; behind those of a script that runs.
    void RunScript(const QStringList& lines);
    /// Drops what is left of scripts. What a device holds up goes on until it lets go.
    void StopScript();
    /// What of a hand's lines, and of scripts, is under way.
    Console::Runner::Progress GetProgress() const { return m_runner->GetProgress(); }
    Console::Runner::Progress GetScriptProgress() const { return m_scripts->GetProgress(); }
    const Console::Session& GetSession() const { return *m_session; }
    const Desk::VirtualDesk& GetDesk() const { return m_session->GetDesk(); }
    /// Everything asked for so far is done, and done() has told.
    bool IsIdle() const;

    /// The log since before the desk's start, once; null for who asks later.
    std::unique_ptr<LogConnection> TakeLog() { return std::move(m_log); }

    /// Looks now, as the timer does.
    void Refresh();

    /// Refreshes a second.
    static constexpr int RefreshRate = 25;
    /// Events that one refresh hands on at most; more are counted, and the newest are kept.
    static constexpr std::size_t EventLimit = 200;

Q_SIGNALS:
    /// Time to look at the desk again.
    void refreshed();
    /// What has happened since the last refresh, oldest first, and how much more had no room.
    void happened(const std::vector<Tools::MonitorEvent>& events, std::size_t dropped);
    /// A line was done, told with a refresh; error is empty when it went well.
    void done(const QString& line, const QString& error);

private:
    void Take(Tools::MonitorEvent event);
    void TakeDone(const std::string& line, const std::string& error);

    mutable std::mutex m_mutex;
    std::deque<Tools::MonitorEvent> m_events;                   // guarded by m_mutex
    std::size_t m_dropped = 0;                                  // guarded by m_mutex
    std::vector<std::pair<std::string, std::string>> m_results; // guarded by m_mutex
    std::unique_ptr<LogConnection> m_log; // first: hears of the session's start
    std::unique_ptr<Console::Session> m_session;
    std::unique_ptr<Console::Runner> m_runner;
    std::unique_ptr<Console::Runner> m_scripts;
    QTimer m_timer;
};

} // namespace VirtualDesk
