// SPDX-License-Identifier: MIT

// Starts and ends of the lights in great number, with all else going on meanwhile.

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <random>
#include <thread>

#include "desk/kernel_testbed.h"
#include "desk/physical_memory.h"
#include "desk/virtual_widget.h"
#include "desk/widget_bus.h"
#include "hardware/console_light_fading.h"
#include "message_mapper.h"
#include "os/post.h"
#include "standalone/messages.h"
#include "standalone/platform_settings.h"
#include "support/log_capture.h"

namespace
{

using namespace Hardware;

/// Numbers below a limit.
class Dice
{
public:
    explicit Dice(unsigned seed) : m_engine(seed) {}
    unsigned operator()(unsigned limit) { return static_cast<unsigned>(m_engine() % limit); }

private:
    std::minstd_rand m_engine;
};

unsigned GetRounds()
{
    const char* const rounds = std::getenv("HARDWARE_FADING_ROUNDS");
    return rounds ? static_cast<unsigned>(std::strtoul(rounds, nullptr, 10)) : 10000;
}

/// Does one thing at random that the application may do at any time.
void DoAnything(Dice& random)
{
    ConsoleLightFading& fading = ConsoleLightFading::Get();
    const auto id = static_cast<ConsoleLightId>(random(ConsoleLightCount));
    switch (random(8)) {
    case 0:
        fading.set(id, random(0x640001), random(0x640001), random(200));
        fading.activate();
        break;
    case 1:
        fading.reset();
        break;
    case 2:
        fading.activate();
        break;
    case 3:
        fading.save_screen_activate();
        break;
    case 4:
        fading.save_screen_reset();
        break;
    case 5:
        fading.keyboard_changed(0, 0, static_cast<int>(random(2)));
        break;
    case 6: {
        const std::array<std::uint32_t, 3> words{22, 11 + random(2), 1};
        Os::Post(Gut::Message(words.data(), sizeof words), 3);
        Standalone::DeliverMessages();
        break;
    }
    default:
        ConsoleLights::Get().set(id, random(0x640001));
    }
}

} // namespace

TEST(FadingRounds, NoStartOrEndHangsWhateverGoesOn)
{
    Desk::KernelTestbed testbed;
    const Desk::PhysicalMemory memory(testbed);
    Desk::WidgetBus bus;
    Standalone::ConfigurePlatform(Standalone::MakeConsoleSettings(7));
    const TestSupport::LogCapture log("Hardware/LightFading", 0); // a line for every start
    const Desk::VirtualWidget& desk = bus.Add({"Vex4DeskPlayback", 1, {}});
    Desk::VirtualWidget& guest = bus.Add({"ExpansionWing", 2, {}});
    ConsoleLightFading::Begin();
    std::atomic<bool> isOver{false};
    std::thread application([&isOver] {
        Dice random(1);
        while (!isOver) {
            DoAnything(random);
            std::this_thread::yield();
        }
    });
    std::thread hands([&isOver, &guest] {
        while (!isOver) {
            guest.Unplug();
            guest.Plug();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    });
    Dice random(2);
    for (unsigned round = 0; round < GetRounds(); ++round) {
        ConsoleLightFading::Begin();
        for (unsigned i = random(4); i > 0; --i)
            std::this_thread::yield();
        ConsoleLightFading::End();
    }
    isOver = true;
    application.join();
    hands.join();
    // And still all is as it should be.
    ConsoleLightFading::Get().reset();
    ConsoleLightFading::Begin();
    ConsoleLights::Get().set(WingLeds, 0x00640000);
    EXPECT_EQ(desk.GetDimmer(1), 255);
    EXPECT_EQ(guest.GetDimmer(1), 255);
    ConsoleLightFading::End();
    for (const std::uint8_t dimmer : {std::uint8_t{3}, std::uint8_t{4}, std::uint8_t{5}})
        EXPECT_EQ(desk.GetDimmer(dimmer), 0);
}
