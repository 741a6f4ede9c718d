// SPDX-License-Identifier: MIT
#include "hwctl/network_player.h"

#include <QTimer>
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
}

void NetworkPlayer::Start()
{
    constexpr double Longest = 2e6; // a timer counts milliseconds in 32 bits
    for (const Tools::NetworkScript::Step& step : m_script.GetSteps())
        QTimer::singleShot(
            std::chrono::milliseconds(std::llround(std::min(step.seconds, Longest) * 1000)),
            Qt::PreciseTimer, &m_context, [this, &step] { Do(step); });
}

void NetworkPlayer::Do(const Tools::NetworkScript::Step& step)
{
    try {
        Tools::NetworkScript::Do(step, m_network);
    } catch (const std::invalid_argument& error) {
        std::fprintf(stderr, "hwctl: %s\n", error.what());
        m_hasFailed = true;
    }
}

} // namespace Hwctl
