// SPDX-License-Identifier: MIT
// Wings that come and go while everybody works them. A short run by default; the environment
// variable HARDWARE_STORM_CALLS makes it longer.
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <map>
#include <random>

#include "hardware/wing_beacon.h"
#include "os/log.h"
#include "wings/wing_bench.h"

using Hardware::UmWing;
using Hardware::WingMapper;

namespace
{

constexpr unsigned Threads = 4;
/// Calls after which a thread waits for the driver, so that what is under way stays bounded.
constexpr unsigned CallsBetweenWaits = 64;

unsigned long GetCallCount()
{
    const char* const text = std::getenv("HARDWARE_STORM_CALLS");
    return text ? std::strtoul(text, nullptr, 10) : 20000;
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool HasOwnAllocator = true; // the sanitizers' tell nothing of their use
#else
constexpr bool HasOwnAllocator = false;
#endif

class WingStorm : public testing::Test
{
protected:
    WingStorm()
    {
        TestSupport::SetConsole(7);
        Os::Log::Context::Find("Hardware/WingMapper")->SetMask(0); // a line for each plugging
        const char* const models[] = {"PlaybackWing",         "ExpansionWing",  "ProgrammerWing",
                                      "Vex4ExternalPlayback", "Vex4Pixi",       "Vex4Keystone",
                                      "Vex4DeskPlayback",     "TrackballWidget"};
        for (std::uint16_t serialNumber = 1; serialNumber <= 2; ++serialNumber)
            for (const char* const model : models)
                m_wings.push_back(&m_bus.Add({model, serialNumber, {}}));
        QObject::connect(
            &m_mapper, &WingMapper::wing_change, &m_context,
            [this](Hardware::WidgetKey k, bool isPresent) {
                const std::lock_guard hold(m_mutex);
                m_present[k] = isPresent;
            },
            Qt::DirectConnection);
        QObject::connect(
            &m_mapper, &WingMapper::button_press, &m_context,
            [this](Hardware::WidgetKey k, auto pid, auto mid, bool isPress) {
                m_presses.fetch_add(1, std::memory_order_relaxed);
                m_mapper.set_led(k, pid, mid, isPress ? UmWing::LedState_On : UmWing::LedState_Off);
            },
            Qt::DirectConnection);
    }

    ~WingStorm() override { WingMapper::End(); }

    void Call(Desk::VirtualWidget& wing, unsigned what)
    {
        const Hardware::WidgetKey key = wing.GetKey();
        switch (what) {
        case 0:
        case 1:
            wing.Plug();
            break;
        case 2:
            wing.Unplug();
            break;
        case 3:
            wing.Press(1);
            break;
        case 4:
            wing.Release(1);
            break;
        case 5:
            wing.MoveFader(2, 100);
            break;
        case 6:
            m_mapper.set_led_all(key, UmWing::LedState_Flash);
            break;
        case 7:
            m_mapper.set_led_section(key, 0, UmWing::LedState_Dim);
            break;
        case 8:
            m_mapper.set_fader(key, 1, 77);
            break;
        case 9:
            m_mapper.set_xwing_surface(key, 1, 2);
            break;
        case 10:
            m_mapper.clear_xwing_display(key, 1);
            break;
        case 11:
            m_mapper.refresh_state(key);
            break;
        case 12:
            m_mapper.is_wing_connected(key);
            m_mapper.connected_wings();
            break;
        case 13:
            wing.Configure({1, 2, 3});
            break;
        case 14:
            Hardware::WingBeacon::Get().beacon(key, UmWing::WingSections_All);
            break;
        default:
            wing.TurnEncoder(0, 1);
            break;
        }
    }

    void Rage(unsigned long calls)
    {
        m_bus.SetWaiting(false);
        std::vector<std::thread> threads;
        for (unsigned seed = 1; seed <= Threads; ++seed)
            threads.emplace_back([this, seed, calls] {
                std::mt19937 random(seed);
                for (unsigned long call = 0; call < calls / Threads; ++call) {
                    Call(*m_wings[random() % m_wings.size()], random() % 16);
                    if (call % CallsBetweenWaits == 0)
                        m_bus.Flush();
                }
            });
        for (std::thread& thread : threads)
            thread.join();
        m_bus.SetWaiting(true);
        m_bus.Flush();
    }

    void ExpectConsistentMap()
    {
        for (Desk::VirtualWidget* const wing : m_wings) {
            const bool isPlugged = wing->IsPlugged();
            EXPECT_EQ(m_mapper.get_wing(wing->GetKey()) != nullptr, isPlugged);
            const std::lock_guard hold(m_mutex);
            const auto last = m_present.find(wing->GetKey());
            EXPECT_TRUE(last == m_present.end() || last->second == isPlugged)
                << wing->GetData().model;
        }
    }

    WingMapper& m_mapper = WingMapper::Get();
    Desk::WidgetBus m_bus;
    std::vector<Desk::VirtualWidget*> m_wings;
    QObject m_context;
    std::atomic<unsigned long> m_presses = 0;
    std::mutex m_mutex;
    std::map<Hardware::WidgetKey, bool> m_present; // guarded by m_mutex
};

} // namespace

TEST_F(WingStorm, LeavesTheMapAsTheLastPluggingSays)
{
    WingMapper::Begin();
    Rage(GetCallCount());
    ExpectConsistentMap();
    EXPECT_GT(m_presses.load(), 0U);
    WingMapper::End();
    m_context.disconnect();
    for (Desk::VirtualWidget* const wing : m_wings) {
        wing->Unplug();
        EXPECT_EQ(wing->CountOpen(), 0);
    }
}

TEST_F(WingStorm, GoesOnWhileTheMapperBeginsAndEnds)
{
    WingMapper::Begin();
    std::atomic<bool> isOver = false;
    std::thread restarter([&] {
        while (!isOver.load()) {
            WingMapper::End();
            WingMapper::Begin();
        }
    });
    Rage(GetCallCount() / 2);
    isOver.store(true);
    restarter.join();
    WingMapper::End();
    {
        const std::lock_guard hold(m_mutex);
        m_present.clear();
    }
    WingMapper::Begin();
    ExpectConsistentMap();
}

TEST(WingStormDeathTest, TheProcessEndsWhileWingsAreAtWork)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto work = [] {
        // The bus is never destroyed: wings are at work until the very end. The mapper is made
        // first, so that it goes last.
        WingMapper::Get();
        auto* const bus = new Desk::WidgetBus;
        Desk::VirtualWidget& wing = bus->Add({"PlaybackWing", 1, {}});
        WingMapper::Begin();
        bus->SetWaiting(false);
        std::thread([&wing] {
            for (;;) {
                wing.Press(1);
                wing.Unplug();
                wing.Plug();
                std::this_thread::sleep_for(std::chrono::microseconds(100));
            }
        }).detach();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        std::exit(0);
    };
    for (int round = 0; round < 5; ++round)
        EXPECT_EXIT(work(), testing::ExitedWithCode(0), "");
}

TEST(WingStormDeathTest, ASlotMayEndTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto quit = [] {
        auto* const bus = new Desk::WidgetBus;
        bus->SetWaiting(false);
        WingMapper::Begin();
        QObject::connect(&WingMapper::Get(), &WingMapper::wing_change, [] { std::exit(3); });
        bus->Add({"PlaybackWing", 1, {}});
        for (;;)
            std::this_thread::sleep_for(std::chrono::seconds(1));
    };
    EXPECT_EXIT(quit(), testing::ExitedWithCode(3), "");
}

TEST_F(WingStorm, KeepsToItsMemory)
{
    if (HasOwnAllocator)
        GTEST_SKIP() << "the sanitizer's allocator does not tell";
    constexpr std::size_t Slack = 1U << 20U;
    WingMapper::Begin();
    // Full logs first: they grow up to their limit.
    for (Desk::VirtualWidget* const wing : m_wings)
        for (std::size_t n = 0; n < Desk::VirtualWidget::LogLimit; ++n)
            m_mapper.clear_xwing_display(wing->GetKey(), 0);
    Rage(GetCallCount() / 2);
    const std::size_t before = mallinfo2().uordblks;
    Rage(GetCallCount());
    EXPECT_LT(mallinfo2().uordblks, before + Slack);
}
