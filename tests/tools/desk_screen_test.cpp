// SPDX-License-Identifier: MIT
#include "hwctl/desk_screen.h"

#include <gmock/gmock.h>

namespace
{

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

json MakeState()
{
    return {{"name", "Bench"},
            {"seconds", 12.34},
            {"midi", {{"received", 3}, {"sent", 4}}},
            {"timecode",
             {{"sim 1",
               {{"frame", "10:00:00:12"},
                {"dropFrame", false},
                {"direction", "backwards"},
                {"rate", 24.99},
                {"age", 0.04},
                {"lost", 2},
                {"repeated", 1}}},
              {"ltc 0",
               {{"frame", "01;02;03;04"},
                {"dropFrame", true},
                {"direction", "forwards"},
                {"rate", 29.97},
                {"age", 12.5},
                {"lost", 0},
                {"repeated", 0}}}}},
            {"lights", {{"WorkLight", {{"level", 50.0}}}, {"VentLight", {{"level", 0.0}}}}},
            {"screenSaver", "on"},
            {"cd", {{"status", "playing"}, {"track", 2}}},
            {"adapters", {{"eth0", {{"up", true}}}, {"eth1", {{"up", false}}}}}};
}

std::deque<Tools::MonitorEvent> MakeEvents(int count)
{
    std::deque<Tools::MonitorEvent> events;
    for (int event = 0; event < count; ++event)
        events.push_back({event * 0.5, "midi Keys", "", "event " + std::to_string(event)});
    return events;
}

} // namespace

TEST(DeskScreen, ShowsTimecodeLightsAndEvents)
{
    const std::vector<std::string> lines = Hwctl::DrawDesk(MakeState(), MakeEvents(3), 80, 24);
    EXPECT_EQ(lines.front(), "Bench   12.3 s   MIDI received 3, sent 4 bytes");
    EXPECT_THAT(lines, Contains("sim 1    10:00:00:12     backwards  24.99/s  age 0.0 s  lost 2  "
                                "repeated 1"));
    EXPECT_THAT(lines, Contains("ltc 0    01;02;03;04 DF  forwards   29.97/s  age 12.5 s  lost 0  "
                                "repeated 0"));
    EXPECT_THAT(lines, Contains("WorkLight              [####################                    ] "
                                "50.0 %"));
    EXPECT_THAT(lines, Contains("screen saver on   cd playing, track 2   eth0 up   eth1 down"));
    EXPECT_EQ(lines.back(), "    1.000  midi Keys            event 2");
}

TEST(DeskScreen, KeepsToItsRoom)
{
    for (const std::size_t height : {0U, 1U, 5U, 9U, 12U, 100U})
        for (const std::size_t width : {1U, 20U, 40U, 200U}) {
            const std::vector<std::string> lines =
                Hwctl::DrawDesk(MakeState(), MakeEvents(50), width, height);
            EXPECT_THAT(lines.size(), testing::Le(height));
            EXPECT_THAT(lines, Each(SizeIs(testing::Le(width))));
        }
    // Lights that are off make room for events.
    const std::vector<std::string> lines = Hwctl::DrawDesk(MakeState(), MakeEvents(50), 120, 9);
    EXPECT_THAT(lines, Contains(StartsWith("WorkLight ")));
    EXPECT_THAT(lines, Not(Contains(StartsWith("VentLight "))));
    EXPECT_THAT(lines, Contains(HasSubstr("at 0 % and not shown: 1")));
    EXPECT_THAT(lines.back(), HasSubstr("event 49"));
    // The newest events stay.
    EXPECT_THAT(Hwctl::DrawDesk(MakeState(), MakeEvents(50), 80, 12).back(), HasSubstr("event 49"));
}

TEST(DeskScreen, DrawsOnATerminalOnly)
{
    std::FILE* const file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    EXPECT_FALSE(Hwctl::DeskScreen::IsTerminal(file));
    {
        Hwctl::DeskScreen screen(file);
        screen.Take({1, "midi Keys", "", "hello"});
        screen.Draw(MakeState());
    }
    std::rewind(file);
    std::string text(10000, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::fclose(file);
    // Another page and back, as it was, with the last drawing below.
    EXPECT_THAT(text, AllOf(StartsWith("\x1b[?1049h"), HasSubstr("hello\x1b[K"),
                            HasSubstr("\x1b[?1049lBench "), testing::EndsWith("hello\n")));
}
