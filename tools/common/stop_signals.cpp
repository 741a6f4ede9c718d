// SPDX-License-Identifier: MIT
#include "common/stop_signals.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>

namespace Tools
{

namespace
{

constexpr std::array Signals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};

/// What each of them did before.
std::array<struct sigaction, Signals.size()> g_before{};

/// Written by the handler, which may do little else.
int g_event = -1;

void HandleSignal(int)
{
    const int error = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(g_event, &one, sizeof one);
    errno = error;
}

} // namespace

StopSignals::StopSignals(const std::function<void()>& stop)
{
    g_event = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    m_notifier = std::make_unique<QSocketNotifier>(g_event, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this, stop] {
        m_notifier->setEnabled(false);
        stop();
    });
    struct sigaction action {
    };
    action.sa_handler = &HandleSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < Signals.size(); ++i) {
        sigaction(Signals[i], nullptr, &g_before[i]);
        if (Signals[i] != SIGHUP || g_before[i].sa_handler != SIG_IGN)
            sigaction(Signals[i], &action, nullptr);
    }
}

StopSignals::~StopSignals()
{
    for (std::size_t i = 0; i < Signals.size(); ++i)
        sigaction(Signals[i], &g_before[i], nullptr);
    m_notifier.reset();
    close(g_event);
    g_event = -1;
}

} // namespace Tools
