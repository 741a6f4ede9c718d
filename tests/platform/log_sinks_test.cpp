// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "os/event.h"
#include "os/log.h"
#include "standalone/log_sink.h"
#include "standalone/memory_sink.h"
#include "support/log_capture.h"

using Os::Log::Context;
using Standalone::LogRecord;
using Standalone::MemorySink;

namespace
{

class LogSinks : public testing::Test
{
protected:
    ~LogSinks() override { Standalone::SetLogSink(m_previous); }

    void Log(int number) { OS_LOG(m_context, Os::Log::Note, "a.cpp", "line " << number); }

    Context m_context{"Sinks", nullptr, Os::Log::AllLevels};
    const std::shared_ptr<Standalone::LogSink> m_previous = Standalone::SetLogSink(nullptr);
};

TEST_F(LogSinks, HaveANameForEachLevel)
{
    const std::map<unsigned, std::string> names{{1, "trace"}, {2, "note"},      {4, "warning"},
                                                {8, "error"}, {16, "critical"}, {0, "level"},
                                                {3, "level"}, {32, "level"}};
    for (const auto& [level, name] : names)
        EXPECT_EQ(Standalone::GetLevelName(level), name) << level;
}

TEST_F(LogSinks, MemoryKeepsLinesInOrderUntilCleared)
{
    const auto sink = std::make_shared<MemorySink>();
    Standalone::SetLogSink(sink);
    Log(1);
    Log(2);
    EXPECT_EQ(sink->GetTexts(), (std::vector<std::string>{"line 1", "line 2"}));
    sink->Clear();
    EXPECT_TRUE(sink->GetLines().empty());
}

TEST_F(LogSinks, MemoryCopiesAllThatTheLineBorrowed)
{
    MemorySink sink;
    {
        const std::string context = "Top/Line";
        std::string text = "text";
        std::vector<const void*> stack{&context, &text};
        sink.Write({context, 4, std::string("a.cpp").c_str(), std::string("f()").c_str(), 7, text,
                    stack.data(), stack.size()});
        text = "gone";
        EXPECT_EQ(sink.GetLines().at(0).stack, stack);
    }
    const MemorySink::Line line = sink.GetLines().at(0);
    EXPECT_EQ(line.context, "Top/Line");
    EXPECT_EQ(line.level, 4u);
    EXPECT_EQ(line.file, "a.cpp");
    EXPECT_EQ(line.function, "f()");
    EXPECT_EQ(line.line, 7u);
    EXPECT_EQ(line.text, "text");
}

TEST_F(LogSinks, AreReplacedAndTheFormerOneIsHandedBack)
{
    const auto first = std::make_shared<MemorySink>();
    const auto second = std::make_shared<MemorySink>();
    EXPECT_EQ(Standalone::SetLogSink(first), nullptr);
    Log(1);
    EXPECT_EQ(Standalone::SetLogSink(second), first);
    Log(2);
    EXPECT_EQ(first->GetTexts(), std::vector<std::string>{"line 1"});
    EXPECT_EQ(second->GetTexts(), std::vector<std::string>{"line 2"});
}

TEST_F(LogSinks, MayBeNoneThenLinesAreDropped)
{
    Log(1);
    SUCCEED();
}

/// Stays inside Write() until it is let go.
class SlowSink : public Standalone::LogSink
{
public:
    explicit SlowSink(std::atomic<bool>& destroyed) : m_destroyed(destroyed) {}
    ~SlowSink() override { m_destroyed = true; }

    void Write(const LogRecord&) override
    {
        entered.Set();
        leave.Wait();
    }

    Os::Event entered, leave;

private:
    std::atomic<bool>& m_destroyed;
};

TEST_F(LogSinks, LiveUntilTheLastLineOnItsWayIsWritten)
{
    std::atomic<bool> destroyed{false};
    auto sink = std::make_shared<SlowSink>(destroyed);
    SlowSink& slow = *sink;
    Standalone::SetLogSink(std::move(sink));
    std::thread writer([this] { Log(1); });
    slow.entered.Wait();
    Standalone::SetLogSink(nullptr);
    EXPECT_FALSE(destroyed);
    slow.leave.Set();
    writer.join();
    EXPECT_TRUE(destroyed);
}

/// Logs a line of its own for each it gets.
class TalkativeSink : public Standalone::LogSink
{
public:
    explicit TalkativeSink(Context& context) : m_context(context) {}

    void Write(const LogRecord& record) override
    {
        texts.emplace_back(record.text);
        if (texts.size() < 3)
            OS_LOG(m_context, Os::Log::Note, "a.cpp", "again");
    }

    std::vector<std::string> texts;

private:
    Context& m_context;
};

TEST_F(LogSinks, MayLogThemselves)
{
    const auto sink = std::make_shared<TalkativeSink>(m_context);
    Standalone::SetLogSink(sink);
    Log(1);
    EXPECT_EQ(sink->texts, (std::vector<std::string>{"line 1", "again", "again"}));
}

TEST_F(LogSinks, LoseAndDoubleNoLineWhenSwappedWhileThreadsWrite)
{
    constexpr int Writers = 4;
    constexpr int LinesEach = 300;
    const std::shared_ptr<MemorySink> sinks[] = {std::make_shared<MemorySink>(),
                                                 std::make_shared<MemorySink>()};
    Standalone::SetLogSink(sinks[0]);
    std::atomic<int> running{Writers};
    std::vector<std::thread> writers;
    for (int writer = 0; writer < Writers; ++writer) {
        writers.emplace_back([&, writer] {
            for (int i = 0; i < LinesEach; ++i)
                Log(writer * LinesEach + i);
            --running;
        });
    }
    for (unsigned turn = 1; running > 0; ++turn)
        Standalone::SetLogSink(sinks[turn % 2]);
    for (std::thread& writer : writers)
        writer.join();

    std::map<std::string, int> seen;
    for (const auto& sink : sinks)
        for (const std::string& text : sink->GetTexts())
            ++seen[text];
    for (int i = 0; i < Writers * LinesEach; ++i)
        EXPECT_EQ(seen["line " + std::to_string(i)], 1) << i;
}

} // namespace
