// SPDX-License-Identifier: MIT
#include "virtual-desk/desk_controller.h"

#include <chrono>
#include <utility>

namespace VirtualDesk
{

DeskController::DeskController(const Desk::DeskData& data, QObject* parent)
    : QObject(parent), m_log(std::make_unique<LogConnection>(std::chrono::steady_clock::now()))
{
    m_session = std::make_unique<Console::Session>(
        data, [this](Tools::MonitorEvent event) { Take(std::move(event)); });
    const auto print = [this](const std::string& text) {
        Take({m_session->GetSeconds(), "show", "show", text});
    };
    m_runner = std::make_unique<Console::Runner>(
        *m_session,
        [this](const std::string& line, const std::string& error) { TakeDone(line, error); },
        print);
    m_scripts = std::make_unique<Console::Runner>(
        *m_session,
        [this](const std::string& line, const std::string& error) {
            TakeDone(line, error.empty() ? error : error + " (the script ends here)");
        },
        print, Console::Runner::AtFailure::DropRest);
    constexpr int MillisecondsPerSecond = 1000;
    connect(&m_timer, &QTimer::timeout, this, &DeskController::Refresh);
    m_timer.start(MillisecondsPerSecond / RefreshRate);
}

DeskController::~DeskController()
{
    m_timer.stop();
    m_scripts->Drop();
    m_runner->Drop();
    m_scripts.reset();
    m_runner.reset();
    m_session.reset();
}

void DeskController::Do(const QString& line)
{
    m_runner->DoSoon(line.toStdString());
}

void DeskController::RunScript(const QStringList& lines)
{
    std::vector<std::string> texts;
    for (const QString& line : lines)
        texts.push_back(line.toStdString());
    m_scripts->DoAll(texts);
}

void DeskController::StopScript()
{
    m_scripts->Drop();
}

bool DeskController::IsIdle() const
{
    if (!m_runner->IsIdle() || !m_scripts->IsIdle())
        return false;
    const std::lock_guard hold(m_mutex);
    return m_results.empty();
}

void DeskController::TakeDone(const std::string& line, const std::string& error)
{
    const std::lock_guard hold(m_mutex);
    m_results.emplace_back(line, error);
}

void DeskController::Take(Tools::MonitorEvent event)
{
    const std::lock_guard hold(m_mutex);
    m_events.push_back(std::move(event));
    if (m_events.size() <= EventLimit)
        return;
    m_events.pop_front();
    ++m_dropped;
}

void DeskController::Refresh()
{
    std::deque<Tools::MonitorEvent> events;
    std::vector<std::pair<std::string, std::string>> results;
    std::size_t dropped = 0;
    {
        const std::lock_guard hold(m_mutex);
        events.swap(m_events);
        results.swap(m_results);
        dropped = std::exchange(m_dropped, 0);
    }
    if (!events.empty() || dropped > 0)
        Q_EMIT happened({events.begin(), events.end()}, dropped);
    for (const auto& [line, error] : results)
        Q_EMIT done(QString::fromStdString(line), QString::fromStdString(error));
    Q_EMIT refreshed();
}

} // namespace VirtualDesk
