// SPDX-License-Identifier: MIT
#include "common/widget_script.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "desk/virtual_widget.h"

using testing::ElementsAre;
using testing::IsEmpty;
using Tools::WidgetScript;
namespace Report = Standalone::Report;

namespace
{

std::string GetRefusal(const std::string& text)
{
    try {
        WidgetScript::Parse(text, "work.txt");
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "accepted";
}

} // namespace

TEST(WidgetScript, ReadsStepsAndSkipsRemarks)
{
    const auto script = WidgetScript::Parse("# first\n\n0.5 playback press 3 # now\n  1 ball axis "
                                            "1 -7\r\n2 expansion configure 1 2 3\n",
                                            "work.txt");
    const auto& steps = script.GetSteps();
    ASSERT_EQ(steps.size(), 3U);
    EXPECT_EQ(steps[0].seconds, 0.5);
    EXPECT_EQ(steps[0].path, L"playback");
    EXPECT_EQ(steps[0].verb, "press");
    EXPECT_THAT(steps[0].numbers, ElementsAre(3));
    EXPECT_THAT(steps[1].numbers, ElementsAre(1, -7));
    EXPECT_THAT(steps[2].numbers, ElementsAre(1, 2, 3));
}

TEST(WidgetScript, AnEmptyTextHasNoSteps)
{
    EXPECT_THAT(WidgetScript::Parse("", "work.txt").GetSteps(), IsEmpty());
}

TEST(WidgetScript, RefusesWhatIsNoStepAndNamesTheLine)
{
    EXPECT_EQ(GetRefusal("\nx y z"), "work.txt:2: it begins with seconds, 0 to 1000000");
    EXPECT_EQ(GetRefusal("-1 a plug"), "work.txt:1: it begins with seconds, 0 to 1000000");
    EXPECT_EQ(GetRefusal("1 a"), "work.txt:1: a path and a verb follow the seconds");
    EXPECT_EQ(GetRefusal("1 a fly"), "work.txt:1: there is no verb 'fly'");
    EXPECT_EQ(GetRefusal("1 a press"), "work.txt:1: press takes one number");
    EXPECT_EQ(GetRefusal("1 a press 1 2"), "work.txt:1: press takes one number");
    EXPECT_EQ(GetRefusal("1 a press x"), "work.txt:1: only numbers follow the verb");
    EXPECT_EQ(GetRefusal("2 a plug\n1 a plug"), "work.txt:2: it is earlier than the line before");
}

TEST(WidgetScript, AFileThatCannotBeReadIsAnError)
{
    EXPECT_THROW(WidgetScript::Read("/nonexistent/script"), std::runtime_error);
}

TEST(WidgetScript, StepsWorkTheWidgetAtTheirPath)
{
    Desk::WidgetBus bus;
    Desk::VirtualWidget& wing = bus.Add({"PlaybackWing", 1, L"a"});
    const auto script = WidgetScript::Parse("0 a unplug\n0 a plug", "work.txt");
    WidgetScript::Do(script.GetSteps()[0], bus);
    EXPECT_FALSE(wing.IsPlugged());
    WidgetScript::Do(script.GetSteps()[1], bus);
    EXPECT_TRUE(wing.IsPlugged());
    EXPECT_THROW(WidgetScript::Do(WidgetScript::Parse("0 b plug", "work.txt").GetSteps()[0], bus),
                 std::invalid_argument);
}
