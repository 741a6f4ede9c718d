// SPDX-License-Identifier: MIT
#include "common/light_work.h"

#include <array>
#include <cstdint>
#include <stdexcept>

#include "desk/virtual_widget.h"
#include "gut/message.h"
#include "hardware/console_light_fading.h"
#include "os/post.h"
#include "standalone/light_settings.h"

namespace Tools
{

namespace
{

using Hardware::ConsoleLightFading;
using Hardware::ConsoleLights;
using Kind = LightStep::Kind;

// The application's message of a pressed key, and the key's code in the second word's upper half.
constexpr std::uint32_t KeyMessage = 11;
constexpr std::uint32_t WorkLightKey = 473U << 16U;
constexpr unsigned ApplicationObject = 3;

constexpr int MostWakes = 5;
constexpr unsigned WakeMilliseconds = 30;

void Fade(const LightStep& step)
{
    ConsoleLightFading& fading = ConsoleLightFading::Get();
    fading.set(step.light, ConsoleLights::Get().get(step.light), step.level, step.milliseconds);
    fading.activate();
}

void PressWorkLightKey()
{
    const std::array<std::uint32_t, 2> words{KeyMessage, WorkLightKey};
    Os::Post(Gut::Message(words.data(), sizeof words), ApplicationObject);
}

void MoveDrawer(Desk::WidgetBus* bus, bool open)
{
    if (bus)
        for (Desk::VirtualWidget* const widget : bus->GetWidgets())
            if (widget->GetData().model == "Vex4DeskPlayback" && widget->IsPlugged()) {
                if (open)
                    widget->OpenDrawer();
                else
                    widget->CloseDrawer();
                return;
            }
    ConsoleLightFading::Get().keyboard_changed(0, 0, open ? 0 : 1);
}

} // namespace

void DoLightStep(const LightStep& step, Desk::WidgetBus* bus)
{
    ConsoleLightFading& fading = ConsoleLightFading::Get();
    switch (step.kind) {
    case Kind::Set:
        ConsoleLights::Get().set(step.light, step.level);
        break;
    case Kind::Fade:
        Fade(step);
        break;
    case Kind::Start:
        ConsoleLightFading::Begin();
        break;
    case Kind::End:
        ConsoleLightFading::End();
        fading.init_thread();
        break;
    case Kind::Reset:
        fading.reset();
        break;
    case Kind::Key:
        PressWorkLightKey();
        break;
    case Kind::Sleep:
        fading.save_screen_activate();
        break;
    case Kind::Wake:
        fading.save_screen_reset();
        break;
    case Kind::Open:
    case Kind::Close:
        MoveDrawer(bus, step.kind == Kind::Open);
        break;
    case Kind::Apply:
    case Kind::Change:
        Standalone::AnnounceLightSettings(step.kind == Kind::Change);
        break;
    case Kind::Wait:
    case Kind::Settle:
        throw std::invalid_argument("'" + step.text + "' is no verb: a line of its own waits");
    }
}

bool PostsMessages(const LightStep& step)
{
    return step.kind == Kind::Key || step.kind == Kind::Apply || step.kind == Kind::Change;
}

bool BeginsFades(const LightStep& step)
{
    return step.kind == Kind::Fade || step.kind == Kind::Start || step.kind == Kind::Sleep ||
           step.kind == Kind::Open || step.kind == Kind::Close || step.kind == Kind::Change;
}

void WakeUntilItSteps(const std::function<bool()>& hasStepped,
                      const std::function<void(unsigned)>& wait)
{
    for (int wakes = 0; !hasStepped() && wakes < MostWakes; ++wakes) {
        wait(WakeMilliseconds);
        if (!hasStepped())
            ConsoleLightFading::Get().activate();
    }
}

} // namespace Tools
