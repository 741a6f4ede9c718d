// SPDX-License-Identifier: MIT
#pragma once

#include <signal.h>
#include <unistd.h>

namespace TestSupport
{

/// Ends the program when a test hangs, as one that waits for a thread for ever does.
class Watchdog
{
public:
    explicit Watchdog(unsigned seconds = 240)
    {
        signal(SIGALRM, [](int) {
            constexpr char Text[] = "The test hangs.\n";
            [[maybe_unused]] const auto written = write(STDERR_FILENO, Text, sizeof Text - 1);
            _exit(1);
        });
        alarm(seconds);
    }
    ~Watchdog() { alarm(0); }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;
};

} // namespace TestSupport
