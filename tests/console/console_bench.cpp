// SPDX-License-Identifier: MIT
#include "console/console_bench.h"

#include <chrono>
#include <thread>

#include "support/bench_desk.h"

namespace TestSupport
{

namespace
{

std::unique_ptr<QCoreApplication> MakeApplication()
{
    static int count = 1;
    static char name[] = "console-test";
    static char* arguments[] = {name, nullptr};
    return std::make_unique<QCoreApplication>(count, arguments);
}

} // namespace

ConsoleBench::ConsoleBench(int productType) : m_application(MakeApplication())
{
    m_session = std::make_unique<Console::Session>(
        MakeDesk(productType), [this](Tools::MonitorEvent event) {
            const std::lock_guard hold(m_mutex);
            m_events.push_back(event.source + ": " + event.text);
        });
}

ConsoleBench::~ConsoleBench() = default;

Desk::DeskData ConsoleBench::MakeDesk(int productType)
{
    Desk::DeskData data = MakeBenchDesk(productType);
    data.widgets.push_back({"Vex4Pixi", 5, L"pixi"});
    data.midiPorts = {{"Stage Keys"}, {"Show", false}};
    data.simulate = {"25,start=10:00:00:00"};
    return data;
}

std::string ConsoleBench::Do(const std::string& line)
{
    const auto pause = [this](double seconds) {
        m_session->Tick();
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
        return true;
    };
    // More patience than a session has of its own, for machines that are busy.
    const bool isImpatient =
        line.starts_with("until ") && line.find(" within ") == std::string::npos;
    try {
        Console::DoScriptLine(*m_session, isImpatient ? line + " within 60" : line, pause,
                              [this](const std::string& text) { m_shown.push_back(text); });
        m_session->Tick();
    } catch (const std::exception& problem) {
        return problem.what();
    }
    return "";
}

nlohmann::json ConsoleBench::Get(const std::string& path)
{
    return GetState(*m_session, path);
}

std::vector<std::string> ConsoleBench::GetEvents(const std::string& source)
{
    const std::lock_guard hold(m_mutex);
    std::vector<std::string> events;
    for (const std::string& event : m_events)
        if (event.starts_with(source))
            events.push_back(event);
    return events;
}

} // namespace TestSupport
