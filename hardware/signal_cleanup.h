// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>

namespace Hardware
{

/// Takes a signal handler of the library's away when the library is unloaded, so that it does not
/// point into nowhere. A handler that somebody else installed since stays.
class SignalCleanup
{
public:
    typedef void (*Handler)(int);

    SignalCleanup(int signal, Handler handler) : m_signal(signal), m_handler(handler) {}
    ~SignalCleanup()
    {
        struct sigaction current {
        };
        if (sigaction(m_signal, nullptr, &current) == 0 && current.sa_handler == m_handler)
            std::signal(m_signal, SIG_DFL);
    }
    SignalCleanup(const SignalCleanup&) = delete;
    SignalCleanup& operator=(const SignalCleanup&) = delete;

private:
    const int m_signal;
    const Handler m_handler;
};

} // namespace Hardware
