// SPDX-License-Identifier: MIT
#include "hwctl/light_run.h"

#include <QTimer>
#include <array>
#include <cstdint>
#include <cstdio>

#include "common/light_name.h"
#include "desk/light_levels.h"
#include "hardware/console_light_fading.h"
#include "hardware/console_light_things.h"
#include "hardware/wing_mapper.h"
#include "hwctl/stop_signals.h"
#include "os/platform.h"
#include "os/post.h"
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
constexpr qint64 StillMilliseconds = 700;
constexpr int LookMilliseconds = 50;
/// How often a thread that may just be falling asleep is woken for a fade.
constexpr int MostWakes = 5;
constexpr unsigned BarWidth = 40;

// The application's message of a pressed key, and the key's code.
constexpr std::uint32_t KeyMessage = 11;
constexpr std::uint32_t WorkLightKey = 473U << 16U; // the code is the word's upper half

void PressWorkLightKey()
{
    const std::array<std::uint32_t, 2> words{KeyMessage, WorkLightKey};
    Os::Post(Gut::Message(words.data(), sizeof words), 3);
    Standalone::DeliverMessages();
}

void Announce(bool fade)
{
    Standalone::AnnounceLightSettings(fade);
    Standalone::DeliverMessages();
}

bool MayFade(LightStep::Kind kind)
{
    using Kind = LightStep::Kind;
    return kind == Kind::Fade || kind == Kind::Start || kind == Kind::Sleep || kind == Kind::Open ||
           kind == Kind::Close || kind == Kind::Change;
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

void LightRun::Start()
{
    for (const QMetaObject::Connection& connection : m_connections)
        QObject::disconnect(connection);
    m_connections.clear();
    ConsoleLightFading::Begin();
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
            MonitorEvent event{GetSeconds(),
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
            MonitorEvent event{GetSeconds(),
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
    const StopSignals signals([this] {
        m_isInterrupted = true;
        m_loop.quit();
    });
    m_hasDone = true;
    std::string done;
    for (const LightStep& step : steps) {
        if (m_isInterrupted)
            return;
        const unsigned stepsBefore = m_steps;
        Do(step);
        if (MayFade(step.kind))
            WakeUntilItSteps(stepsBefore);
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
    ConsoleLightFading& fading = ConsoleLightFading::Get();
    switch (step.kind) {
    case LightStep::Kind::Set:
        ConsoleLights::Get().set(step.light, step.level);
        break;
    case LightStep::Kind::Fade:
        fading.set(step.light, ConsoleLights::Get().get(step.light), step.level, step.milliseconds);
        fading.activate();
        break;
    case LightStep::Kind::Start:
        Start();
        break;
    case LightStep::Kind::End:
        ConsoleLightFading::End();
        fading.init_thread(); // for what comes behind
        break;
    case LightStep::Kind::Reset:
        fading.reset();
        break;
    case LightStep::Kind::Key:
        PressWorkLightKey();
        break;
    case LightStep::Kind::Sleep:
        fading.save_screen_activate();
        break;
    case LightStep::Kind::Wake:
        fading.save_screen_reset();
        break;
    case LightStep::Kind::Open:
    case LightStep::Kind::Close:
        MoveDrawer(step.kind == LightStep::Kind::Open);
        break;
    case LightStep::Kind::Apply:
    case LightStep::Kind::Change:
        Announce(step.kind == LightStep::Kind::Change);
        break;
    case LightStep::Kind::Wait:
        Wait(step.milliseconds);
        break;
    case LightStep::Kind::Settle:
        Settle();
        break;
    }
}

/// A wake is lost on a thread that is about to fall asleep, which a new one is.
void LightRun::WakeUntilItSteps(unsigned steps)
{
    for (int wakes = 0; m_steps == steps && wakes < MostWakes && !m_isInterrupted; ++wakes) {
        Wait(LookMilliseconds);
        if (m_steps == steps)
            ConsoleLightFading::Get().activate();
    }
}

/// By hand where there is a virtual drawer, otherwise as if its wing had told.
void LightRun::MoveDrawer(bool open)
{
    if (m_devices)
        for (Desk::VirtualWidget* const widget : m_devices->GetBus().GetWidgets())
            if (widget->GetData().model == "Vex4DeskPlayback" && widget->IsPlugged()) {
                if (open)
                    widget->OpenDrawer();
                else
                    widget->CloseDrawer();
                return;
            }
    ConsoleLightFading::Get().keyboard_changed(0, 0, open ? 0 : 1);
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
        const uires16 level = lights.get(id);
        std::printf("  %-22s %s %s\n", Tools::GetLightName(id),
                    Tools::FormatBar(level, BarWidth).c_str(), Tools::FormatLevel(level).c_str());
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

} // namespace Hwctl
