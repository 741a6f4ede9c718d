// SPDX-License-Identifier: MIT
#include "hwctl/light_run.h"

#include <QTimer>
#include <cstdio>

#include "common/light_name.h"
#include "common/light_work.h"
#include "common/stop_signals.h"
#include "desk/light_levels.h"
#include "hardware/console_light_fading.h"
#include "hardware/console_light_things.h"
#include "hardware/wing_mapper.h"
#include "hwctl/command_error.h"
#include "os/platform.h"
#include "standalone/light_settings.h"
#include "standalone/messages.h"

namespace Hwctl
{

namespace
{

using Hardware::ConsoleLightFading;
using Hardware::ConsoleLightId;
using Hardware::ConsoleLights;
using Hardware::ConsoleThings;
using Hardware::WingMapper;
using Tools::LightStep;

/// Fades step every 50 ms; nothing for so long means that none runs.
constexpr qint64 StillMilliseconds = 1500;
constexpr int LookMilliseconds = 50;
constexpr unsigned BarWidth = 40;

void Announce(bool fade)
{
    Standalone::AnnounceLightSettings(fade);
    Standalone::DeliverMessages();
}

ConsoleLightId ToLight(unsigned number)
{
    return static_cast<ConsoleLightId>(number);
}

} // namespace

LightRun::LightRun(Show show, VirtualDevices* devices, const VirtualDisplays* displays)
    : m_show(show), m_devices(devices), m_displays(displays), m_printer(show == Show::Json, stdout)
{
    m_clock.start();
    WingMapper::Begin(); // first: the lights ask a wing for the drawer
    ConsoleLightFading::Get();
    Announce(false); // before wings get levels
    ConnectLights();
    WatchLevels();
    Announce(false); // to the displays, and to what wings do not get when they are attached
    ConsoleLightFading::Get().init_thread();
}

LightRun::~LightRun()
{
    ConsoleLightFading::Get().end_thread();
    WingMapper::End();
    m_queue.Drain();
}

/// As the console's start does, without its fades.
void LightRun::ConnectLights()
{
    m_connections = {
        QObject::connect(&ConsoleLights::Get(), &ConsoleLights::level_change, &ConsoleThings::Get(),
                         &ConsoleThings::change_level, Qt::DirectConnection),
        QObject::connect(&ConsoleLightFading::Get(), &ConsoleLightFading::fade_light,
                         &ConsoleLights::Get(), &ConsoleLights::set, Qt::DirectConnection),
        QObject::connect(&ConsoleLightFading::Get(), &ConsoleLightFading::sleep_wing,
                         &ConsoleThings::Get(), &ConsoleThings::wing_sleep, Qt::DirectConnection)};
    QObject::connect(
        &WingMapper::Get(), &WingMapper::keyboard_change, &m_context,
        [](Hardware::WidgetKey key, int drawer, int state) {
            ConsoleLightFading::Get().keyboard_changed(key, drawer, state);
        },
        Qt::DirectConnection);
}

/// Ahead of the console's start, which makes connections of its own.
void LightRun::Disconnect()
{
    for (const QMetaObject::Connection& connection : m_connections)
        QObject::disconnect(connection);
    m_connections.clear();
}

void LightRun::WatchLevels()
{
    QObject::connect(
        &ConsoleLightFading::Get(), &ConsoleLightFading::fade_light, &m_context,
        [this] {
            m_lastStep = m_clock.elapsed();
            ++m_steps;
        },
        Qt::DirectConnection);
    if (m_show == Show::Bars)
        return;
    QObject::connect(
        &ConsoleLights::Get(), &ConsoleLights::level_change, &m_context,
        [this](ConsoleLightId id) {
            const uires16 level = ConsoleLights::Get().get(id);
            Tools::MonitorEvent event{GetSeconds(),
                                      std::string("light ") + Tools::GetLightName(id),
                                      "level_change",
                                      Tools::FormatLevel(level),
                                      {{"light", id}, {"level", level / double(0x10000)}}};
            m_queue.Post([this, event = std::move(event)] { m_printer.Print(event); });
        },
        Qt::DirectConnection);
    QObject::connect(
        &ConsoleLightFading::Get(), &ConsoleLightFading::sleep_wing, &m_context,
        [this](bool sleep) {
            Tools::MonitorEvent event{GetSeconds(),
                                      "lights",
                                      "sleep_wing",
                                      sleep ? "expansion wings sleep" : "expansion wings wake",
                                      {{"sleep", sleep}}};
            m_queue.Post([this, event = std::move(event)] { m_printer.Print(event); });
        },
        Qt::DirectConnection);
}

void LightRun::Run(const std::vector<LightStep>& steps)
{
    const Tools::StopSignals signals([this] {
        m_isInterrupted = true;
        m_loop.quit();
    });
    m_hasDone = true;
    std::string done;
    for (const LightStep& step : steps) {
        if (m_isInterrupted)
            return;
        Do(step);
        if (step.kind != LightStep::Kind::Wait && step.kind != LightStep::Kind::Settle) {
            done += (done.empty() ? "" : " ") + step.text;
        } else if (m_show == Show::Bars) {
            PrintBars(done.empty() ? step.text : done + " " + step.text);
            done.clear();
        }
    }
    Settle();
    m_queue.Drain();
    if (m_show == Show::Bars && !done.empty())
        PrintBars(done);
}

void LightRun::Do(const LightStep& step)
{
    switch (step.kind) {
    case LightStep::Kind::Wait:
        Wait(step.milliseconds);
        return;
    case LightStep::Kind::Settle:
        Settle();
        return;
    case LightStep::Kind::Start:
        Disconnect();
        break;
    default:
        break;
    }
    const unsigned before = m_steps;
    Tools::DoLightStep(step, m_devices ? &m_devices->GetBus() : nullptr);
    if (Tools::PostsMessages(step))
        Standalone::DeliverMessages();
    if (Tools::BeginsFades(step))
        Tools::WakeUntilItSteps([this, before] { return m_steps != before || m_isInterrupted; },
                                [this](unsigned milliseconds) { Wait(milliseconds); });
}

void LightRun::Wait(unsigned milliseconds)
{
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &m_loop, &QEventLoop::quit);
    timer.start(static_cast<int>(milliseconds));
    if (!m_isInterrupted)
        m_loop.exec();
}

void LightRun::Settle()
{
    m_lastStep = m_clock.elapsed();
    while (!m_isInterrupted && m_clock.elapsed() - m_lastStep < StillMilliseconds)
        Wait(LookMilliseconds);
}

void LightRun::PrintBars(const std::string& title) const
{
    ConsoleLights& lights = ConsoleLights::Get();
    std::printf("\nafter %s, %.1f s\n", title.c_str(), GetSeconds());
    for (unsigned number = 0; number < Hardware::ConsoleLightCount; ++number) {
        const ConsoleLightId id = ToLight(number);
        std::printf("  %s\n", Tools::FormatLight(id, lights.get(id), BarWidth).c_str());
    }
    std::fflush(stdout);
}

void LightRun::Print() const
{
    ConsoleLights& lights = ConsoleLights::Get();
    if (m_show == Show::Json) {
        nlohmann::json list = nlohmann::json::array();
        for (unsigned number = 0; number < Hardware::ConsoleLightCount; ++number)
            list.push_back(
                {{"light", number},
                 {"name", Tools::GetLightName(ToLight(number))},
                 {"level", lights.get(ToLight(number)) / double(0x10000)},
                 {"preference", lights.get_preference(ToLight(number)) / double(0x10000)},
                 {"preferenceState", lights.get_preference_state(ToLight(number))}});
        std::printf("%s\n", ToLine({{"lights", list}}).c_str());
        return;
    }
    if (m_hasDone)
        std::puts("");
    std::puts("Lights");
    for (unsigned number = 0; number < Hardware::ConsoleLightCount; ++number) {
        const ConsoleLightId id = ToLight(number);
        std::printf("  %2u  %-22s %8s  preferred %8s%s\n", number, Tools::GetLightName(id),
                    Tools::FormatLevel(lights.get(id)).c_str(),
                    Tools::FormatLevel(lights.get_preference(id)).c_str(),
                    lights.get_preference_state(id) ? "" : ", not wanted");
    }
    if (m_devices)
        PrintDevices();
}

void LightRun::PrintDevices() const
{
    std::puts("\nWings, levels of 255");
    for (const Desk::VirtualWidget* const widget : m_devices->GetBus().GetWidgets()) {
        const std::vector<Desk::LightLevel> levels = Desk::GetLightLevels(*widget);
        if (levels.empty())
            continue;
        const std::wstring& path = widget->GetData().path;
        std::string text;
        for (const Desk::LightLevel& light : levels)
            text += ", " + light.name + " " + std::to_string(light.level);
        if (widget->IsAsleep())
            text += ", asleep";
        std::printf("  %-12s %s\n", std::string(path.begin(), path.end()).c_str(),
                    text.c_str() + 2);
    }
    std::puts("\nDisplays");
    for (const std::string& line : m_displays->Describe(Os::Platform::GetKelProductType()))
        std::printf("  %s\n", line.c_str());
}

double LightRun::GetSeconds() const
{
    return static_cast<double>(m_clock.nsecsElapsed()) / 1e9;
}

void CheckLights(LogTap& tap)
{
    const std::vector<std::string> failures = tap.TakeFailures();
    const std::size_t count = tap.CountErrors() + failures.size();
    if (count == 0)
        return;
    const std::string first = failures.empty() ? tap.GetFirstError() : failures.front();
    throw CommandError("not everything could be set, " + std::to_string(count) +
                       (count == 1 ? " failure: " : " failures, such as: ") + first);
}

} // namespace Hwctl
