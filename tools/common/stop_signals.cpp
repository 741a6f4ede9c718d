// SPDX-License-Identifier: MIT
#include "common/stop_signals.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>

namespace Tools
{

namespace
{

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
    std::signal(SIGINT, &HandleSignal);
    std::signal(SIGTERM, &HandleSignal);
}

StopSignals::~StopSignals()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    m_notifier.reset();
    close(g_event);
    g_event = -1;
}

} // namespace Tools
