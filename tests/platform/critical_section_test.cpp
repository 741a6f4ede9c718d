// SPDX-License-Identifier: MIT
#include "os/critical_section.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/contender.h"

using Os::CriticalSection;
using Os::Key;
using TestSupport::Contender;

namespace
{

TEST(CriticalSection, LetsTheThreadThatHoldsItEnterAgain)
{
    CriticalSection section;
    const Key outer(section);
    const Key inner(section);
    SUCCEED();
}

TEST(CriticalSection, KeepsOtherThreadsOut)
{
    CriticalSection section;
    section.Enter();
    const Contender other([&] { const Key key(section); });
    EXPECT_TRUE(other.ComesToWait());
    section.Leave();
}

TEST(CriticalSection, IsFreeOnlyAfterAsManyLeavesAsEnters)
{
    CriticalSection section;
    section.Enter();
    section.Enter();
    section.Leave();
    const Contender other([&] { const Key key(section); });
    EXPECT_TRUE(other.ComesToWait());
    section.Leave();
}

TEST(CriticalSection, IsFreeAtTheEndOfTheKeysScope)
{
    CriticalSection section;
    {
        const Key key(section);
    }
    const Contender other([&] { const Key key(section); });
    EXPECT_FALSE(other.ComesToWait());
}

TEST(CriticalSection, GuardsAPlainCounter)
{
    CriticalSection section;
    int counter = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < 10000; ++n) {
                const Key key(section);
                ++counter;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counter, 40000);
}

} // namespace
