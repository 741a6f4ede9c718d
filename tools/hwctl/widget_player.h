// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "common/widget_script.h"

namespace Hwctl
{

/// Does a script's steps at their times, on a thread of its own.
class WidgetPlayer
{
public:
    /// Throws CommandError when a step's widget is not on the bus, or does not have what it names.
    WidgetPlayer(Tools::WidgetScript script, Desk::WidgetBus& bus);
    ~WidgetPlayer();
    WidgetPlayer(const WidgetPlayer&) = delete;
    WidgetPlayer& operator=(const WidgetPlayer&) = delete;

    void Start();
    /// Stops at once, or waits for the step that is being done.
    void Stop();

private:
    void Play();

    const Tools::WidgetScript m_script;
    Desk::WidgetBus& m_bus;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isStopping = false; // guarded by m_mutex
    std::thread m_thread;
};

} // namespace Hwctl
