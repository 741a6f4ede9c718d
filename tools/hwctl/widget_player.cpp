// SPDX-License-Identifier: MIT
#include "hwctl/widget_player.h"

#include <chrono>
#include <stdexcept>
#include <utility>

#include "hwctl/command_error.h"

namespace Hwctl
{

WidgetPlayer::WidgetPlayer(Tools::WidgetScript script, Desk::WidgetBus& bus)
    : m_script(std::move(script)), m_bus(bus)
{
    for (const Tools::WidgetScript::Step& step : m_script.GetSteps())
        try {
            Tools::WidgetScript::Check(step, bus); // on its thread nobody could take the error
        } catch (const std::invalid_argument& error) {
            throw CommandError(step.place + ": " + error.what());
        }
}

WidgetPlayer::~WidgetPlayer()
{
    Stop();
}

void WidgetPlayer::Start()
{
    m_thread = std::thread([this] { Play(); });
}

void WidgetPlayer::Stop()
{
    {
        const std::lock_guard hold(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

void WidgetPlayer::Play()
{
    const auto start = std::chrono::steady_clock::now();
    for (const Tools::WidgetScript::Step& step : m_script.GetSteps()) {
        const auto time = start + std::chrono::duration_cast<std::chrono::nanoseconds>(
                                      std::chrono::duration<double>(step.seconds));
        {
            std::unique_lock hold(m_mutex);
            if (m_changed.wait_until(hold, time, [this] { return m_isStopping; }))
                return;
        }
        Tools::WidgetScript::Do(step, m_bus);
    }
}

} // namespace Hwctl
