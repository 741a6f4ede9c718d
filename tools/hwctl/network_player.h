// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <cstddef>

#include "common/network_script.h"

namespace Hwctl
{

/// Does a script's steps at their times, on the thread of the event loop that it is started on.
class NetworkPlayer
{
public:
    /// @param network outlives it; its verbs no longer wait
    NetworkPlayer(Tools::NetworkScript script, Desk::VirtualNetwork& network);
    NetworkPlayer(const NetworkPlayer&) = delete;
    NetworkPlayer& operator=(const NetworkPlayer&) = delete;

    void Start();
    /// Whether a step could not be done; standard error has the reason.
    bool HasFailed() const { return m_hasFailed; }

private:
    void Go();
    void Do(const Tools::NetworkScript::Step& step);

    const Tools::NetworkScript m_script;
    Desk::VirtualNetwork& m_network;
    bool m_hasFailed = false;
    std::size_t m_next = 0;
    QElapsedTimer m_clock;
    QTimer m_timer;
};

} // namespace Hwctl
