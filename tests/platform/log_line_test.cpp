// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "os/log.h"
#include "support/log_capture.h"

using namespace std::string_view_literals;

using Os::Log::Context;

/// Named, so that every compiler spells its signature alike.
namespace LogProbe
{

struct Probe {
    explicit Probe(Context& context) : m_context(context) {}

    /// Returns the line number of the log call.
    unsigned Report(int count, double rate) const
    {
        OS_LOG(m_context, Os::Log::Note, "probe.cpp", "count " << count << (rate > 0 ? "+" : "-"));
        return __LINE__ - 1;
    }

    /// Returns the address to which this function returns.
    [[gnu::noinline]] const void* ReportAndReturn() const
    {
        OS_LOG(m_context, Os::Log::Note, "probe.cpp", "stack");
        return __builtin_return_address(0);
    }

    Context& m_context;
};

} // namespace LogProbe

namespace
{

class LogLine : public testing::Test
{
protected:
    std::string Expensive()
    {
        ++m_built;
        return "text";
    }

    Context& Count(Context& context)
    {
        ++m_built;
        return context;
    }

    TestSupport::LogCapture m_capture;
    Context m_top{"Top", nullptr, Os::Log::AllButTrace};
    Context m_context{"Line", &m_top, Os::Log::AllLevels};
    int m_built = 0;
};

TEST_F(LogLine, CarriesContextLevelFileSignatureAndLine)
{
    const unsigned number = LogProbe::Probe(m_context).Report(3, 1.0);
    ASSERT_EQ(m_capture.GetLines().size(), 1u);
    const auto line = m_capture.GetLines().front();
    EXPECT_EQ(line.context, "Top/Line");
    EXPECT_EQ(line.level, 2u);
    EXPECT_EQ(line.file, "probe.cpp");
    EXPECT_EQ(line.function, "unsigned int LogProbe::Probe::Report(int, double) const");
    EXPECT_EQ(line.line, number);
    EXPECT_EQ(line.text, "count 3+");
}

TEST_F(LogLine, CarriesTheCallStackFromTheLoggingFunctionUp)
{
    const void* const caller = LogProbe::Probe(m_context).ReportAndReturn();
    const auto stack = m_capture.GetLines().at(0).stack;
    ASSERT_GE(stack.size(), 2u);
    EXPECT_EQ(stack[1], caller);
}

TEST_F(LogLine, IsDroppedWhereItsLevelIsNotEnabled)
{
    OS_LOG(m_context, Os::Log::Trace, "a.cpp", "dropped");
    OS_LOG(m_context, Os::Log::Note, "a.cpp", "kept");
    EXPECT_EQ(m_capture.GetTexts(), std::vector<std::string>{"kept"});
}

TEST_F(LogLine, IsDroppedByADirectWriteAsWell)
{
    kel::text<char, 8> text;
    text << "x";
    m_context.Write(Os::Log::Trace, "a.cpp", "f()", 1, text);
    EXPECT_TRUE(m_capture.GetLines().empty());
    m_context.Write(Os::Log::Error, "a.cpp", "f()", 1, text);
    EXPECT_EQ(m_capture.GetLines().size(), 1u);
}

TEST_F(LogLine, BuildsItsTextOnlyWhereItIsWritten)
{
    OS_LOG(m_context, Os::Log::Trace, "a.cpp", Expensive());
    EXPECT_EQ(m_built, 0);
    OS_LOG(m_context, Os::Log::Note, "a.cpp", Expensive());
    EXPECT_EQ(m_built, 1);
}

TEST_F(LogLine, AsksForItsContextOnce)
{
    OS_LOG(Count(m_context), Os::Log::Note, "a.cpp", "x");
    EXPECT_EQ(m_built, 1);
}

TEST_F(LogLine, IsOneStatement)
{
    if (m_built == 1)
        OS_LOG(m_context, Os::Log::Note, "a.cpp", "not taken");
    else
        OS_LOG(m_context, Os::Log::Note, "a.cpp", "taken");
    EXPECT_EQ(m_capture.GetTexts(), std::vector<std::string>{"taken"});
}

TEST_F(LogLine, KeepsBytesOfAnyValue)
{
    OS_LOG(m_context, Os::Log::Note, "a.cpp",
           "raw " << static_cast<unsigned char>(0) << static_cast<unsigned char>(0xF7) << "\0."sv);
    EXPECT_EQ(m_capture.GetTexts().at(0), "raw \0\xF7\0."sv);
}

TEST_F(LogLine, HoldsFifteenHundredCharacters)
{
    OS_LOG(m_context, Os::Log::Note, "a.cpp", std::string(1499, 'a') << 'b');
    EXPECT_EQ(m_capture.GetTexts().at(0), std::string(1499, 'a') + 'b');
}

TEST_F(LogLine, IsCutAfterFifteenHundredCharacters)
{
    OS_LOG(m_context, Os::Log::Note, "a.cpp", std::string(1499, 'a') << "bc" << 7);
    EXPECT_EQ(m_capture.GetTexts().at(0), std::string(1499, 'a') + 'b');
}

} // namespace
