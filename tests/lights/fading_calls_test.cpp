// SPDX-License-Identifier: MIT

// What the lights' start connects, call by call.

#include <gmock/gmock.h>

#include <cstdio>

#include "hardware/console_light_fading.h"
#include "standalone/fatal_handler.h"
#include "standalone/messages.h"
#include "support/recorded_calls.h"

using Hardware::ConsoleLightFading;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::GetRecordedCalls;

namespace
{

/// Connections of the lights to each other, without those of the light outputs to the driver.
std::vector<std::string> GetConnections()
{
    std::vector<std::string> connections;
    for (const std::string& call : GetRecordedCalls().calls)
        if (call.starts_with("connect") && call.find("widget") == std::string::npos)
            connections.push_back(call);
    return connections;
}

} // namespace

TEST(FadingCalls, ThreeConnectionsAreMadeInOrder)
{
    ConsoleLightFading::Begin();
    ConsoleLightFading::End();
    EXPECT_THAT(GetConnections(), ElementsAre("connect alone level_change change_level direct",
                                              "connect alone fade_light set direct",
                                              "connect alone sleep_wing wing_sleep direct"));
}

TEST(FadingCalls, NoneIsMadeInASecondInstance)
{
    Standalone::SetApplicationId(1);
    ConsoleLightFading::Begin();
    ConsoleLightFading::End();
    EXPECT_THAT(GetRecordedCalls().calls, IsEmpty());
}

TEST(FadingCalls, NoneIsMadeToTheDrawersSlot)
{
    ConsoleLightFading::Begin();
    ConsoleLightFading::End();
    for (const std::string& call : GetRecordedCalls().calls)
        EXPECT_EQ(call.find("keyboard_changed"), std::string::npos) << call;
}

namespace
{

/// Text, line and file of the fatal end that a failed connection of that signal leads to.
void FailAt(const std::string& signal)
{
    GetRecordedCalls().connects = [&signal](const std::string& call) {
        return call.find(" " + signal + " ") == std::string::npos;
    };
    Standalone::SetFatalHandler([](const char* text, unsigned line, const char* fileAndDate) {
        std::fprintf(stderr, "<%s|%u|%s>", text, line, fileAndDate);
    });
    ConsoleLightFading::Begin();
}

const std::string File = "\\|console_light_fading\\.cpp \\(... .. ....\\) >";

/// A text as a regular expression that matches it.
std::string Quote(const std::string& text)
{
    std::string quoted;
    for (const char c : text) {
        if (std::string("()|.&").find(c) != std::string::npos)
            quoted += '\\';
        quoted += c;
    }
    return quoted;
}

} // namespace

TEST(FadingCalls, AFailedWayFromLevelsToLightsIsFatal)
{
    EXPECT_DEATH(FailAt("level_change"),
                 Quote("<Verify: 'QObject::connect( &conlts, SIGNAL(level_change( ConsoleLightId, "
                       "uires16 )), &conthgs, SLOT(change_level( ConsoleLightId, uires16 )), "
                       "Qt::DirectConnection )' is FALSE|57") +
                     File);
}

TEST(FadingCalls, AFailedWayFromFadesToLevelsIsFatal)
{
    EXPECT_DEATH(FailAt("fade_light"),
                 Quote("<Verify: 'QObject::connect( &confade, SIGNAL(fade_light( ConsoleLightId, "
                       "uires16 )), &conlts, SLOT(set( ConsoleLightId, uires16 )), "
                       "Qt::DirectConnection )' is FALSE|63") +
                     File);
}

TEST(FadingCalls, AFailedWayToSleepingWingsIsFatal)
{
    EXPECT_DEATH(FailAt("sleep_wing"),
                 Quote("<Verify: 'QObject::connect( &confade, SIGNAL(sleep_wing( bool )), "
                       "&conthgs, SLOT(wing_sleep( bool )), Qt::DirectConnection )' is FALSE|69") +
                     File);
}
