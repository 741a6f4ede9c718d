// SPDX-License-Identifier: MIT
#include "hwctl/network_player.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace Hwctl
{

NetworkPlayer::NetworkPlayer(Tools::NetworkScript script, Desk::VirtualNetwork& network)
    : m_script(std::move(script)), m_network(network)
{
    network.SetWaiting(false);
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { Go(); });
}

void NetworkPlayer::Start()
{
    m_clock.start();
    Go();
}

/// Does what is due and waits for the next.
void NetworkPlayer::Go()
{
    constexpr double Longest = 2e6; // a timer counts milliseconds in 32 bits
    const auto& steps = m_script.GetSteps();
    for (; m_next < steps.size(); ++m_next) {
        const double seconds =
            std::min(steps[m_next].seconds, Longest) - static_cast<double>(m_clock.elapsed()) / 1e3;
        if (seconds > 0) {
            m_timer.start(std::chrono::milliseconds(std::llround(std::ceil(seconds * 1000))));
            return;
        }
        Do(steps[m_next]);
    }
}

void NetworkPlayer::Do(const Tools::NetworkScript::Step& step)
{
    try {
        Tools::NetworkScript::Do(step, m_network);
        // Steps that are overdue follow at once, and each change is to be seen.
        m_network.Flush();
    } catch (const std::invalid_argument& error) {
        std::fprintf(stderr, "hwctl: %s: %s\n", step.place.c_str(), error.what());
        m_hasFailed = true;
    }
}

} // namespace Hwctl
