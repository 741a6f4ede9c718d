// SPDX-License-Identifier: MIT
#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace Tools
{

/// Turns SIGINT, SIGTERM, SIGHUP and SIGQUIT into a call on the thread of the event loop, for as
/// long as it lives. A hangup that was ignored before, as by nohup, stays ignored. One at a time.
class StopSignals
{
public:
    explicit StopSignals(const std::function<void()>& stop);
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace Tools
