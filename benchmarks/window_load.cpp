// SPDX-License-Identifier: MIT

// How much of a core the window takes while hands work sixteen wings, against a limit.

#include <QApplication>
#include <QTimer>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <thread>

#include "desk/preload.h"
#include "desk/widget_controls.h"
#include "hardware/link_control.h"
#include "hardware/wing_mapper.h"
#include "virtual-desk/main_window.h"

namespace
{

using Clock = std::chrono::steady_clock;

constexpr unsigned Wings = 16;
constexpr double Limit = 0.6; // of a core
constexpr std::chrono::seconds Length(10);
constexpr std::array<unsigned, 2> Rates{1000, 16000}; // events a second, of all wings

double GetProcessorSeconds(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

Desk::DeskData MakeDesk()
{
    Desk::DeskData data;
    data.name = "Load";
    data.platform = Standalone::MakeConsoleSettings(7);
    for (unsigned wing = 0; wing < Wings; ++wing)
        data.widgets.push_back({wing % 2 == 0 ? "Vex4ExternalPlayback" : "Vex4Keystone",
                                static_cast<std::uint16_t>(wing + 1),
                                L"wing" + std::to_wstring(wing)});
    return data;
}

/// Hands on all wings: keys, faders, and the LEDs and motors that follow, so many events a second.
class Hands
{
public:
    Hands(const Desk::WidgetBus& bus, unsigned rate)
        : m_widgets(bus.GetWidgets()), m_rate(rate), m_thread([this] { Work(); })
    {
    }
    ~Hands() { Stop(); }
    Hands(const Hands&) = delete;
    Hands& operator=(const Hands&) = delete;

    void Stop()
    {
        m_isStopping = true;
        if (m_thread.joinable())
            m_thread.join();
    }
    std::uint64_t GetEvents() const { return m_events; }

private:
    void Work()
    {
        const Clock::time_point start = Clock::now();
        for (std::uint64_t event = 0; !m_isStopping; ++event) {
            std::this_thread::sleep_until(start +
                                          std::chrono::nanoseconds(1'000'000'000) * event / m_rate);
            Act(*m_widgets[event % m_widgets.size()],
                static_cast<std::uint16_t>(event / m_widgets.size()));
            ++m_events;
        }
    }

    /// A key is pressed and its LED lit, it is let go and its LED goes out, a fader is moved and
    /// the motor of another one follows; of a wing without faders a key again.
    static void Act(Desk::VirtualWidget& widget, unsigned turn)
    {
        using Hardware::UmWing;
        const Hardware::WingModel& model = widget.GetModel();
        Hardware::WingMapper& application = Hardware::WingMapper::Get();
        const unsigned round = turn / 4;
        if (turn % 4 >= 2 && !model.faders.empty()) {
            const auto fader = static_cast<std::uint16_t>(round % model.faders.size());
            const int position = static_cast<int>(turn % (Desk::FaderEnd + 1));
            widget.MoveFader(fader, position);
            if (model.hasMotorFaders)
                application.set_fader(widget.GetKey(),
                                      model.faders[(fader + 1U) % model.faders.size()].second,
                                      position);
            return;
        }
        const bool isPress = turn % 2 == 0;
        const auto button = static_cast<std::uint16_t>(round % model.buttons.size());
        if (isPress)
            widget.Press(button);
        else
            widget.Release(button);
        if (!model.leds.empty()) {
            const auto& [part, master] = model.leds[round % model.leds.size()];
            application.set_led(widget.GetKey(), part, master,
                                isPress ? UmWing::LedState_On : UmWing::LedState_Off);
        }
    }

    const std::vector<Desk::VirtualWidget*> m_widgets;
    const unsigned m_rate;
    std::atomic<bool> m_isStopping{false};
    std::atomic<std::uint64_t> m_events{0};
    std::thread m_thread;
};

/// Returns whether the window kept to the limit and nothing was lost.
bool Measure(VirtualDesk::DeskController& desk, unsigned rate)
{
    const auto count = [&desk] {
        return desk.GetSession().GetState()["inputs"].get<std::uint64_t>();
    };
    const std::uint64_t before = count();
    const double thread = GetProcessorSeconds(CLOCK_THREAD_CPUTIME_ID);
    const double process = GetProcessorSeconds(CLOCK_PROCESS_CPUTIME_ID);
    const Clock::time_point start = Clock::now();
    Hands hands(desk.GetDesk().GetBus(), rate);
    QTimer::singleShot(Length, [] { QCoreApplication::quit(); });
    QCoreApplication::exec();
    hands.Stop();
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const double window = (GetProcessorSeconds(CLOCK_THREAD_CPUTIME_ID) - thread) / seconds;
    const double all = (GetProcessorSeconds(CLOCK_PROCESS_CPUTIME_ID) - process) / seconds;
    std::uint64_t heard = 0;
    // What is on its way may take a moment.
    for (int looks = 0; looks < 200 && (heard = count() - before) < hands.GetEvents(); ++looks)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    std::printf("%u wings, %.0f events a second: window %.1f %% of a core (limit %.0f %%), process "
                "%.1f %%, heard %llu of %llu\n",
                Wings, static_cast<double>(hands.GetEvents()) / seconds, 100 * window, 100 * Limit,
                100 * all, static_cast<unsigned long long>(heard),
                static_cast<unsigned long long>(hands.GetEvents()));
    return window <= Limit && heard == hands.GetEvents();
}

} // namespace

int main(int argc, char** argv)
{
    if (const char* const missing = Desk::EnsurePreloaded(argv); *missing != '\0') {
        std::fprintf(stderr, "%s\n", missing);
        return EXIT_FAILURE;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    Hardware_LinkControl();
    const QApplication application(argc, argv);
    VirtualDesk::DeskController desk(MakeDesk());
    for (Desk::VirtualWidget* const widget : desk.GetDesk().GetBus().GetWidgets())
        if (!widget->IsPlugged())
            return EXIT_FAILURE;
    VirtualDesk::MainWindow window(desk);
    window.show();
    bool isGood = true;
    for (const unsigned rate : Rates)
        isGood = Measure(desk, rate) && isGood;
    return isGood ? EXIT_SUCCESS : EXIT_FAILURE;
}
