// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "os/log.h"
#include "standalone/journal_sink.h"

using namespace std::string_view_literals;

namespace
{

constexpr int NotPermitted = 77;

/// Makes /run empty for this process alone. False where that is not allowed.
bool HideRun()
{
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/run", "tmpfs", 0, nullptr) == 0;
}

/// Stands where the journal's socket would be; returns the descriptor.
int ListenAsJournal()
{
    mkdir("/run/systemd", 0755);
    mkdir("/run/systemd/journal", 0755);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, "/run/systemd/journal/socket");
    const int listener = socket(AF_UNIX, SOCK_DGRAM, 0);
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        _exit(1);
    return listener;
}

struct ChildResult {
    int exitCode;
    std::string output;
};

/// Runs @p act in a process of its own, because the journal's library keeps its socket for good.
ChildResult RunInChild(const std::function<void(int output)>& act)
{
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    const pid_t child = fork();
    if (child == 0) {
        if (!HideRun())
            _exit(NotPermitted);
        act(ends[1]);
        _exit(0);
    }
    close(ends[1]);
    std::string output;
    std::array<char, 4096> bytes{};
    for (ssize_t size; (size = read(ends[0], bytes.data(), bytes.size())) > 0;)
        output.append(bytes.data(), static_cast<std::size_t>(size));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

/// Fields of one datagram: "NAME=value\n", or name, length in 8 bytes, and value where the value
/// holds a line feed.
std::multimap<std::string, std::string> ParseEntry(std::string_view entry)
{
    std::multimap<std::string, std::string> fields;
    while (!entry.empty()) {
        const std::size_t end = entry.find('\n');
        const std::string_view line = entry.substr(0, end);
        entry.remove_prefix(end + 1);
        const std::size_t equals = line.find('=');
        if (equals != std::string_view::npos) {
            fields.emplace(line.substr(0, equals), line.substr(equals + 1));
            continue;
        }
        std::uint64_t size = 0;
        std::memcpy(&size, entry.data(), sizeof size); // little-endian, as this machine
        fields.emplace(line, entry.substr(sizeof size, size));
        entry.remove_prefix(sizeof size + size + 1);
    }
    return fields;
}

std::optional<std::string> GetOnly(const std::multimap<std::string, std::string>& fields,
                                   const char* name)
{
    if (fields.count(name) != 1)
        return std::nullopt;
    return fields.find(name)->second;
}

const std::string ContextPath = "Top/Line";

Standalone::LogRecord MakeRecord(unsigned level, std::string_view text)
{
    return {ContextPath, level, "a.cpp", "void f(int)", 12, text, nullptr, 0};
}

TEST(JournalSink, MakesAFieldOfEachPartOfALine)
{
    const std::array<const void*, 1> stack{reinterpret_cast<const void*>(0x2A)};
    EXPECT_THAT(Standalone::JournalSink::MakeFields({ContextPath, 2, "a.cpp", "void f(int)", 12,
                                                     "text", stack.data(), stack.size()}),
                testing::UnorderedElementsAre(
                    "MESSAGE=text", "PRIORITY=6", "CODE_FILE=a.cpp", "CODE_FUNC=void f(int)",
                    "CODE_LINE=12", "LOG_CONTEXT=Top/Line", "LOG_LEVEL=2", "CALL_STACK=0x2a\n"));
}

TEST(JournalSink, ReadsThePriorityOffTheLevel)
{
    const std::map<unsigned, std::string> priorities{{1, "PRIORITY=7"},
                                                     {2, "PRIORITY=6"},
                                                     {4, "PRIORITY=4"},
                                                     {8, "PRIORITY=3"},
                                                     {16, "PRIORITY=2"}};
    for (const auto& [level, priority] : priorities)
        EXPECT_THAT(Standalone::JournalSink::MakeFields(MakeRecord(level, "")),
                    testing::Contains(priority));
}

TEST(JournalSink, KeepsBytesOfValueZeroInTheMessage)
{
    EXPECT_THAT(Standalone::JournalSink::MakeFields(MakeRecord(2, "a\0b"sv)),
                testing::Contains("MESSAGE=a\0b"sv));
}

TEST(JournalSink, SendsEachLineToTheJournalAsOneEntry)
{
    const ChildResult result = RunInChild([](int output) {
        const int listener = ListenAsJournal();
        Os::Log::Context context("Wire", nullptr, Os::Log::AllLevels);
        Standalone::SetLogSink(std::make_shared<Standalone::JournalSink>());
        OS_LOG(context, Os::Log::Warning, "a.cpp", "two\nlines" << '\0');
        Standalone::FlushLog();
        std::array<char, 65536> bytes{};
        const ssize_t size = recv(listener, bytes.data(), bytes.size(), MSG_DONTWAIT);
        if (size < 0 || write(output, bytes.data(), static_cast<std::size_t>(size)) != size)
            _exit(1);
    });
    if (result.exitCode == NotPermitted)
        GTEST_SKIP() << "a /run of the test's own needs the right to mount";
    ASSERT_EQ(result.exitCode, 0);

    const auto fields = ParseEntry(result.output);
    EXPECT_EQ(GetOnly(fields, "MESSAGE"), "two\nlines\0"sv);
    EXPECT_EQ(GetOnly(fields, "PRIORITY"), "4");
    EXPECT_EQ(GetOnly(fields, "CODE_FILE"), "a.cpp");
    EXPECT_THAT(GetOnly(fields, "CODE_FUNC").value_or(""), testing::HasSubstr("JournalSink"));
    EXPECT_THAT(GetOnly(fields, "CODE_LINE").value_or(""), testing::MatchesRegex("[0-9]+"));
    EXPECT_EQ(GetOnly(fields, "LOG_CONTEXT"), "Wire");
    EXPECT_EQ(GetOnly(fields, "LOG_LEVEL"), "4");
    EXPECT_THAT(GetOnly(fields, "CALL_STACK").value_or(""), testing::StartsWith("0x"));
}

TEST(JournalSink, HoldsUpNobodyWhereTheJournalIsStuck)
{
    const ChildResult result = RunInChild([](int) {
        alarm(60);
        ListenAsJournal(); // and takes nothing
        Standalone::JournalSink sink;
        for (int i = 0; i < 2000; ++i)
            sink.Write(MakeRecord(8, "untaken"));
    });
    if (result.exitCode == NotPermitted)
        GTEST_SKIP() << "a /run of the test's own needs the right to mount";
    EXPECT_EQ(result.exitCode, 0);
}

TEST(JournalSink, GoesOnWhereThereIsNoJournal)
{
    const ChildResult result = RunInChild([](int) {
        Standalone::JournalSink().Write(MakeRecord(8, "unheard"));
        if (!Standalone::FlushLog())
            _exit(1);
    });
    if (result.exitCode == NotPermitted)
        GTEST_SKIP() << "a /run of the test's own needs the right to mount";
    EXPECT_EQ(result.exitCode, 0);
}

} // namespace
