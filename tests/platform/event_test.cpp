// SPDX-License-Identifier: MIT
#include "os/event.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/contender.h"
#include "support/wait.h"

using TestSupport::Contender;

namespace
{

constexpr unsigned FarOff = std::numeric_limits<unsigned>::max();

TEST(Event, BeginsAsAsked)
{
    EXPECT_FALSE(Os::Event().Wait(0));
    EXPECT_FALSE(Os::Event(false).Wait(0));
    EXPECT_TRUE(Os::Event(true).Wait(0));
}

TEST(Event, StaysSetUntilReset)
{
    Os::Event event;
    event.Set();
    EXPECT_TRUE(event.Wait(0));
    EXPECT_TRUE(event.Wait(0));
    EXPECT_TRUE(event.Wait());
    event.Reset();
    EXPECT_FALSE(event.Wait(0));
}

TEST(Event, CountsNothing)
{
    Os::Event event;
    event.Set();
    event.Set();
    event.Reset();
    EXPECT_FALSE(event.Wait(0));
}

TEST(Event, LetsATimedWaitRunOut)
{
    Os::Event event;
    EXPECT_FALSE(event.Wait(5));
}

TEST(Event, HoldsAWaiterUntilItIsSet)
{
    Os::Event event;
    const Contender waiter([&] { EXPECT_TRUE(event.Wait()); });
    EXPECT_TRUE(waiter.ComesToWait());
    event.Set();
}

TEST(Event, WakesATimedWaiter)
{
    Os::Event event;
    const Contender waiter([&] { EXPECT_TRUE(event.Wait(FarOff)); });
    EXPECT_TRUE(waiter.ComesToWait());
    event.Set();
}

TEST(Event, WakesAllWaiters)
{
    Os::Event event;
    const Contender first([&] { event.Wait(); });
    const Contender second([&] { event.Wait(); });
    const Contender third([&] { event.Wait(FarOff); });
    EXPECT_TRUE(first.ComesToWait());
    EXPECT_TRUE(second.ComesToWait());
    EXPECT_TRUE(third.ComesToWait());
    const auto allAreThrough = [&] { return first.IsDone() && second.IsDone() && third.IsDone(); };
    event.Set();
    EXPECT_TRUE(TestSupport::WaitUntil(allAreThrough));
    while (!allAreThrough()) // so that a failure is one, and no hang
        event.Set();
}

TEST(Event, MayBeDestroyedByTheWaiterItWoke)
{
    for (int i = 0; i < 200; ++i) {
        auto* const event = new Os::Event;
        const Contender setter([=] { event->Set(); });
        event->Wait();
        delete event;
    }
}

} // namespace
