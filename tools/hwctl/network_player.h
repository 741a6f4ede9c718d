// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

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
    void Do(const Tools::NetworkScript::Step& step);

    const Tools::NetworkScript m_script;
    Desk::VirtualNetwork& m_network;
    bool m_hasFailed = false;
    QObject m_context; // last: what is still to come ends with it
};

} // namespace Hwctl
