// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <functional>
#include <string>

#include "watch/event.h"
#include "widget/widget_key.h"

namespace Tools
{

/// Watches all wings through the wing mapper and reports each of its signals.
class WingWatch
{
public:
    /// @param echo whether a pressed button lights its LED for as long as it is held
    WingWatch(EventTaker take, bool echo);
    ~WingWatch();
    WingWatch(const WingWatch&) = delete;
    WingWatch& operator=(const WingWatch&) = delete;

    void Start();
    void Stop();

private:
    void Report(Hardware::WidgetKey key, const char* signal, const std::string& text,
                nlohmann::json facts) const;
    void ConnectInputs();
    void ConnectRest();
    void Echo(Hardware::WidgetKey key, unsigned short pid, unsigned short mid, bool isPress) const;

    const EventTaker m_take;
    const bool m_echo;
    bool m_isStarted = false;
    QObject m_context;
};

} // namespace Tools
