// SPDX-License-Identifier: MIT
// What becomes of the library's signal handlers when it is unloaded.
#include "signal_cleanup.h"

#include <gtest/gtest.h>

namespace
{

void Ours(int) {}
void Theirs(int) {}

typedef void (*Handler)(int);

Handler GetHandler()
{
    struct sigaction action {
    };
    sigaction(SIGUSR2, nullptr, &action);
    return action.sa_handler;
}

TEST(SignalCleanup, TakesTheLibrarysHandlerAway)
{
    {
        const Hardware::SignalCleanup cleanup(SIGUSR2, &Ours);
        std::signal(SIGUSR2, &Ours);
        EXPECT_EQ(GetHandler(), &Ours);
    }
    EXPECT_EQ(GetHandler(), SIG_DFL);
}

TEST(SignalCleanup, LeavesAHandlerOfSomebodyElses)
{
    {
        const Hardware::SignalCleanup cleanup(SIGUSR2, &Ours);
        std::signal(SIGUSR2, &Theirs);
    }
    EXPECT_EQ(GetHandler(), &Theirs);
}

} // namespace
