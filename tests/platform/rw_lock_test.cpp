// SPDX-License-Identifier: MIT
#include "os/rw_lock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "os/event.h"
#include "platform/contender.h"
#include "support/wait.h"

using Os::ReadKey;
using Os::RwLock;
using Os::WriteKey;
using TestSupport::Contender;

namespace
{

TEST(RwLock, AdmitsReadersTogetherMoreThanWereExpectedToo)
{
    constexpr int Readers = 14;
    RwLock lock(10);
    EXPECT_EQ(lock.GetReaders(), 10u);
    std::atomic<int> inside{0};
    Os::Event leave;
    std::vector<std::thread> threads;
    for (int i = 0; i < Readers; ++i) {
        threads.emplace_back([&] {
            const ReadKey key(lock);
            ++inside;
            leave.Wait();
        });
    }
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return inside == Readers; }));
    leave.Set();
    for (std::thread& thread : threads)
        thread.join();
}

TEST(RwLock, KeepsAWriterOutWhileOneReads)
{
    RwLock lock(10);
    std::optional<ReadKey> reader(lock);
    const Contender writer([&] { const WriteKey key(lock); });
    EXPECT_TRUE(writer.ComesToWait());
    reader.reset();
}

TEST(RwLock, KeepsReadersAndWritersOutWhileOneWrites)
{
    RwLock lock(10);
    std::optional<WriteKey> holder(lock);
    const Contender reader([&] { const ReadKey key(lock); });
    const Contender writer([&] { const WriteKey key(lock); });
    EXPECT_TRUE(reader.ComesToWait());
    EXPECT_TRUE(writer.ComesToWait());
    holder.reset();
}

TEST(RwLock, IsFreeAfterEachScope)
{
    RwLock lock(10);
    {
        const ReadKey key(lock);
    }
    {
        const WriteKey key(lock);
    }
    const Contender writer([&] { const WriteKey key(lock); });
    EXPECT_FALSE(writer.ComesToWait());
}

TEST(RwLock, LetsAWaitingWriterGoBeforeAllReadersThatComeLater)
{
    RwLock lock(10);
    std::mutex mutex;
    std::vector<std::string> order;
    order.reserve(8);
    const auto note = [&](const char* who) {
        const std::lock_guard hold(mutex);
        order.emplace_back(who);
    };
    {
        std::deque<Contender> others; // joined before what they use
        std::optional<ReadKey> first(lock);
        others.emplace_back([&] {
            const WriteKey key(lock);
            note("writer");
        });
        EXPECT_TRUE(others.back().ComesToWait());
        for (int i = 0; i < 5; ++i) {
            others.emplace_back([&] {
                const ReadKey key(lock);
                note("reader");
            });
            EXPECT_TRUE(others.back().ComesToWait());
        }
        first.reset();
    }
    ASSERT_EQ(order.size(), 6u);
    EXPECT_EQ(order.front(), "writer");
}

TEST(RwLock, GuardsWhatWritersChangeFromReaders)
{
    RwLock lock(10);
    int left = 0;
    int right = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < 5000; ++n) {
                const WriteKey key(lock);
                ++left;
                ++right;
            }
        });
        threads.emplace_back([&] {
            for (int n = 0; n < 5000; ++n) {
                const ReadKey key(lock);
                ASSERT_EQ(left, right);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(left, 10000);
}

template <class Holder> class RwLockKeys : public testing::Test
{
};

using BothKeys = testing::Types<ReadKey, WriteKey>;
TYPED_TEST_SUITE(RwLockKeys, BothKeys);

TYPED_TEST(RwLockKeys, ReleaseEarlyWhereAsked)
{
    RwLock lock(10);
    TypeParam key(lock);
    key.Unlock();
    const Contender writer([&] { const WriteKey other(lock); });
    EXPECT_FALSE(writer.ComesToWait());
}

TYPED_TEST(RwLockKeys, ReleaseOnceHoweverOftenAsked)
{
    RwLock lock(10);
    auto key = std::make_unique<TypeParam>(lock);
    key->Unlock();
    auto other = std::make_unique<ReadKey>(lock); // a second release would let go of this one
    key->Unlock();
    key.reset();
    const Contender writer([&] { const WriteKey held(lock); });
    EXPECT_TRUE(writer.ComesToWait());
    other.reset();
}

void WriteTwice()
{
    RwLock lock(10);
    const WriteKey outer(lock);
    const WriteKey inner(lock);
}

void ReadWhileWriting()
{
    RwLock lock(10);
    const WriteKey outer(lock);
    const ReadKey inner(lock);
}

TEST(RwLockDeathTest, TakingItTwiceForWritingIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(WriteTwice(), testing::KilledBySignal(SIGABRT),
                testing::HasSubstr("os/rw_lock.cpp"));
}

TEST(RwLockDeathTest, ReadingWhileWritingIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(ReadWhileWriting(), testing::KilledBySignal(SIGABRT),
                testing::HasSubstr("os/rw_lock.cpp"));
}

} // namespace
