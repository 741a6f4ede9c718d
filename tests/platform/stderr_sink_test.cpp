// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "os/log.h"
#include "standalone/stderr_sink.h"

using namespace std::string_view_literals;

namespace
{

/// Standard error as a socket that keeps the bounds of each write.
class StderrWrites
{
public:
    StderrWrites()
    {
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, m_ends.data()), 0);
        dup2(m_ends[1], STDERR_FILENO);
    }
    ~StderrWrites()
    {
        dup2(m_saved, STDERR_FILENO);
        close(m_saved);
        close(m_ends[0]);
        close(m_ends[1]);
    }
    StderrWrites(const StderrWrites&) = delete;
    StderrWrites& operator=(const StderrWrites&) = delete;

    /// One text for each call of write() so far.
    std::vector<std::string> Take()
    {
        std::vector<std::string> writes;
        std::array<char, 65536> bytes{};
        for (;;) {
            const ssize_t size = recv(m_ends[0], bytes.data(), bytes.size(), MSG_DONTWAIT);
            if (size <= 0)
                return writes;
            writes.emplace_back(bytes.data(), static_cast<std::size_t>(size));
        }
    }

private:
    const int m_saved = dup(STDERR_FILENO);
    std::array<int, 2> m_ends{};
};

const std::string ContextPath = "Top/Line";
const std::array<const void*, 2> Stack{reinterpret_cast<const void*>(0x10),
                                       reinterpret_cast<const void*>(0x2A)};

Standalone::LogRecord MakeRecord(std::string_view text)
{
    return {ContextPath, 2, "a.cpp", "void f(int)", 12, text, Stack.data(), Stack.size()};
}

TEST(StderrSink, PrintsALineWithItsPlace)
{
    StderrWrites writes;
    Standalone::StderrSink().Write(MakeRecord("found it"));
    EXPECT_THAT(writes.Take(),
                testing::ElementsAre("Top/Line note: found it [a.cpp:12 void f(int)]\n"));
}

TEST(StderrSink, KeepsBytesOfValueZero)
{
    StderrWrites writes;
    Standalone::StderrSink().Write(MakeRecord("a\0b"sv));
    EXPECT_THAT(writes.Take(),
                testing::ElementsAre("Top/Line note: a\0b [a.cpp:12 void f(int)]\n"sv));
}

TEST(StderrSink, PrintsTheCallStackIndentedBelowInTheSameWrite)
{
    StderrWrites writes;
    Standalone::StderrSink(true).Write(MakeRecord("x"));
    EXPECT_THAT(
        writes.Take(),
        testing::ElementsAre("Top/Line note: x [a.cpp:12 void f(int)]\n    0x10\n    0x2a\n"));
}

TEST(StderrSink, TakesEachLineInAWriteOfItsOwn)
{
    StderrWrites writes;
    Standalone::StderrSink sink;
    sink.Write(MakeRecord("one"));
    sink.Write(MakeRecord("two"));
    EXPECT_EQ(writes.Take().size(), 2u);
}

TEST(StderrSink, IsTheSinkAtTheStart)
{
    Os::Log::Context context("Start", nullptr, Os::Log::AllLevels);
    StderrWrites writes;
    OS_LOG(context, Os::Log::Error, "a.cpp", "hello");
    EXPECT_THAT(writes.Take(),
                testing::ElementsAre(testing::StartsWith("Start error: hello [a.cpp:")));
}

} // namespace
