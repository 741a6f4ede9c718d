// SPDX-License-Identifier: MIT
#include "common/cd_step.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace
{

using Tools::CdStep;
using Tools::ParseCdSteps;
typedef CdStep::Verb Verb;

TEST(CdStep, IsReadFromItsWords)
{
    const struct {
        std::vector<std::string> words;
        Verb verb;
        int number;
        double seconds;
    } table[] = {
        {{"status"}, Verb::Status, 0, 0},
        {{"contents"}, Verb::Contents, 0, 0},
        {{"play"}, Verb::Play, 0, 0},
        {{"play", "7"}, Verb::PlayTrack, 7, 0},
        {{"play", "1:02"}, Verb::PlayTime, 4650, 0},
        {{"play", "61:05:74"}, Verb::PlayTime, 274949, 0},
        {{"pause"}, Verb::Pause, 0, 0},
        {{"resume"}, Verb::Resume, 0, 0},
        {{"stop"}, Verb::Stop, 0, 0},
        {{"next"}, Verb::Next, 0, 0},
        {{"previous"}, Verb::Previous, 0, 0},
        {{"jog", "10"}, Verb::Jog, 750, 0},
        {{"jog", "+10"}, Verb::Jog, 750, 0},
        {{"jog", "-2.5"}, Verb::Jog, -188, 0},
        {{"follow"}, Verb::Follow, 0, 0},
        {{"follow", "0.5"}, Verb::Follow, 0, 0.5},
    };
    for (const auto& [words, verb, number, seconds] : table) {
        const auto steps = ParseCdSteps(words);
        ASSERT_EQ(steps.size(), 1U) << words.back();
        EXPECT_EQ(steps[0].verb, verb) << words.back();
        EXPECT_EQ(steps[0].number, number) << words.back();
        EXPECT_EQ(steps[0].seconds, seconds) << words.back();
    }
}

TEST(CdStep, FollowsAnother)
{
    const auto steps = ParseCdSteps({"play", "follow", "play", "2", "follow", "1", "stop"});
    ASSERT_EQ(steps.size(), 5U);
    EXPECT_EQ(steps[0].verb, Verb::Play);
    EXPECT_EQ(steps[1].verb, Verb::Follow);
    EXPECT_EQ(steps[1].seconds, 0);
    EXPECT_EQ(steps[2].verb, Verb::PlayTrack);
    EXPECT_EQ(steps[3].seconds, 1);
    EXPECT_EQ(steps[4].verb, Verb::Stop);
    EXPECT_TRUE(ParseCdSteps({}).empty());
}

TEST(CdStep, SaysWhatIsWrong)
{
    const std::pair<std::vector<std::string>, std::string> table[] = {
        {{"eject"},
         "'eject' is none of status, contents, play, pause, resume, stop, next, previous, jog and "
         "follow"},
        {{"stop", "2"},
         "'2' is none of status, contents, play, pause, resume, stop, next, previous, jog and "
         "follow"},
        {{"play", "x"}, "'x' is neither a track nor a time MM:SS:FF"},
        {{"play", "-1"}, "'-1' is neither a track nor a time MM:SS:FF"},
        {{"play", "1:60"}, "'1:60' is neither a track nor a time MM:SS:FF"},
        {{"play", "1:00:75"}, "'1:00:75' is neither a track nor a time MM:SS:FF"},
        {{"jog"}, "jog needs a number of seconds, such as 10 or -2.5"},
        {{"jog", "next"}, "jog needs a number of seconds, such as 10 or -2.5"},
        {{"jog", "1s"}, "jog needs a number of seconds, such as 10 or -2.5"},
        {{"jog", "nan"}, "jog needs a number of seconds, such as 10 or -2.5"},
        {{"jog", "6001"}, "jog needs a number of seconds, such as 10 or -2.5"},
        {{"follow", "0"}, "'0' is not a number of seconds to follow for"},
        {{"follow", "long"}, "'long' is not a number of seconds to follow for"},
    };
    for (const auto& [words, message] : table) {
        try {
            ParseCdSteps(words);
            ADD_FAILURE() << message;
        } catch (const std::invalid_argument& error) {
            EXPECT_EQ(error.what(), message);
        }
    }
}

} // namespace
