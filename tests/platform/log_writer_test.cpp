// SPDX-License-Identifier: MIT

// Lines that standard error does not take at once.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "os/fatal.h"
#include "os/log.h"
#include "standalone/fatal_handler.h"
#include "standalone/log_sink.h"
#include "support/wait.h"

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::KilledBySignal;
using TestSupport::WaitUntil;

typedef std::vector<std::string> Texts;

/// Standard error as a full pipe that nobody reads, until Read() is called.
class FullPipe
{
public:
    FullPipe()
    {
        EXPECT_EQ(pipe(m_ends.data()), 0);
        fcntl(m_ends[1], F_SETFL, O_NONBLOCK);
        const std::string filling(1024, '\n');
        while (write(m_ends[1], filling.data(), filling.size()) > 0) {
        }
        fcntl(m_ends[1], F_SETFL, 0);
        dup2(m_ends[1], STDERR_FILENO);
    }
    ~FullPipe()
    {
        Read();
        Finish();
        close(m_ends[0]);
        close(m_saved);
    }
    FullPipe(const FullPipe&) = delete;
    FullPipe& operator=(const FullPipe&) = delete;

    /// Begins to read, and copies to the former standard error where that is asked for.
    void Read(bool withCopy = false)
    {
        if (m_reader.joinable() || m_hasFinished)
            return;
        m_reader = std::thread([this, withCopy] {
            std::array<char, 4096> bytes{};
            for (ssize_t size = 0; (size = read(m_ends[0], bytes.data(), bytes.size())) > 0;) {
                m_text.append(bytes.data(), static_cast<std::size_t>(size));
                if (withCopy && write(m_saved, bytes.data(), static_cast<std::size_t>(size)) < 0)
                    return;
            }
        });
    }
    /// Puts standard error back, and waits until the other end is read to its end.
    void Finish()
    {
        if (m_hasFinished)
            return;
        m_hasFinished = true;
        dup2(m_saved, STDERR_FILENO);
        close(m_ends[1]);
        m_reader.join();
    }
    /// The lines that came, without their places and without what the pipe was filled with.
    Texts GetLines() const
    {
        Texts lines;
        std::istringstream text(m_text);
        for (std::string line; std::getline(text, line);)
            if (!line.empty())
                lines.push_back(line.substr(0, line.find(" [")));
        return lines;
    }

private:
    const int m_saved = dup(STDERR_FILENO);
    std::array<int, 2> m_ends{};
    std::thread m_reader;
    std::string m_text; // of the reader until it is joined
    bool m_hasFinished = false;
};

Os::Log::Context& Context()
{
    static auto* const context = new Os::Log::Context("Full", nullptr, Os::Log::AllLevels);
    return *context;
}

void Log(int from, int to)
{
    for (int i = from; i < to; ++i)
        OS_LOG(Context(), Os::Log::Note, "a.cpp", "line " << i);
}

std::string MakeLine(int number)
{
    return "Full note: line " + std::to_string(number);
}

TEST(LogWriter, HoldsUpNobodyWhoseLinesAreNotRead)
{
    FullPipe pipe;
    std::atomic<bool> isDone{false};
    std::thread device([&isDone] {
        Log(0, 1000);
        isDone = true;
    });
    EXPECT_TRUE(WaitUntil([&isDone] { return isDone.load(); }));
    pipe.Read();
    device.join();
    EXPECT_TRUE(Standalone::FlushLog());
    pipe.Finish();
    const Texts lines = pipe.GetLines();
    ASSERT_EQ(lines.size(), 1000U);
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(lines[static_cast<std::size_t>(i)], MakeLine(i));
}

TEST(LogWriter, KeepsTheOrderOfLinesThatWaitAndLinesThatNeedNot)
{
    FullPipe pipe;
    Log(0, 10);
    pipe.Read();
    Log(10, 1000);
    EXPECT_TRUE(Standalone::FlushLog());
    Log(1000, 1010);
    pipe.Finish();
    const Texts lines = pipe.GetLines();
    ASSERT_EQ(lines.size(), 1010U);
    for (int i = 0; i < 1010; ++i)
        EXPECT_EQ(lines[static_cast<std::size_t>(i)], MakeLine(i));
}

TEST(LogWriter, LinesBeyondTheLimitAreCountedAndReportedInTheirPlace)
{
    constexpr int Count = 10500;
    FullPipe pipe;
    Log(0, Count);
    pipe.Read();
    EXPECT_TRUE(WaitUntil([] { return Standalone::FlushLog(); }));
    Log(Count, Count + 1);
    pipe.Finish();
    Texts lines = pipe.GetLines();
    ASSERT_GT(lines.size(), 10000U);
    EXPECT_EQ(lines.back(), MakeLine(Count));
    lines.pop_back();
    const std::string report = lines.back();
    lines.pop_back();
    for (std::size_t i = 0; i < lines.size(); ++i)
        EXPECT_EQ(lines[i], MakeLine(static_cast<int>(i)));
    EXPECT_EQ(report, "Log warning: " + std::to_string(Count - lines.size()) +
                          " log lines were lost: 10000 were waiting to be written");
}

TEST(LogWriter, FlushingReturnsWhenNobodyReads)
{
    const FullPipe pipe;
    Log(0, 10);
    EXPECT_FALSE(Standalone::FlushLog());
}

/// Ends the process where a test would hang for ever.
void LimitTime()
{
    constexpr unsigned Seconds = 60;
    alarm(Seconds);
}

class LogWriterDeathTest : public testing::Test
{
protected:
    LogWriterDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

[[noreturn]] void DieUnread()
{
    LimitTime();
    new FullPipe;
    Log(0, 10);
    Os::Fatal("Boom", 1, "b.cpp");
}

TEST_F(LogWriterDeathTest, AFatalStopAbortsWhereNobodyReads)
{
    EXPECT_EXIT(DieUnread(), KilledBySignal(SIGABRT), "");
}

FullPipe* g_pipe = nullptr;

void FinishPipe(const char*, unsigned, const char*)
{
    g_pipe->Finish();
}

[[noreturn]] void DieRead()
{
    LimitTime();
    g_pipe = new FullPipe;
    Log(0, 100);
    g_pipe->Read(true);
    Standalone::SetFatalHandler(&FinishPipe);
    Os::Fatal("Boom", 1, "b.cpp");
}

TEST_F(LogWriterDeathTest, AFatalStopComesAfterTheLinesThatWait)
{
    EXPECT_EXIT(DieRead(), KilledBySignal(SIGABRT),
                testing::AllOf(HasSubstr(MakeLine(0) + " ["),
                               testing::ContainsRegex("line 99 \\[.*\n.*Boom, line 1, b.cpp \\[.*\n"
                                                      "Boom, line 1, b.cpp\n")));
}

/// Runs after the platform's own end, being a destructor of the program itself.
[[gnu::destructor]] void FinishPipeAtTheEnd()
{
    if (g_pipe)
        g_pipe->Finish();
}

[[noreturn]] void ExitWithLines()
{
    LimitTime();
    g_pipe = new FullPipe;
    Log(0, 100);
    g_pipe->Read(true);
    std::exit(3);
}

TEST_F(LogWriterDeathTest, TheEndOfTheProcessWritesTheLinesThatWait)
{
    EXPECT_EXIT(ExitWithLines(), testing::ExitedWithCode(3), HasSubstr(MakeLine(99) + " ["));
}

[[noreturn]] void ExitUnread()
{
    LimitTime();
    [[maybe_unused]] static const auto* const pipe = new FullPipe;
    Log(0, 100);
    std::exit(3);
}

TEST_F(LogWriterDeathTest, TheEndOfTheProcessDoesNotWaitForEverWhereNobodyReads)
{
    EXPECT_EXIT(ExitUnread(), testing::ExitedWithCode(3), "");
}

} // namespace
