// SPDX-License-Identifier: MIT

// Desks from files, worked by lines, on the command line.

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "tools/hwctl_process.h"

namespace
{

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using TestSupport::HwctlRun;
using TestSupport::RunHwctl;

constexpr char HomeDesk[] = DATA_FOLDER "/desk/home-desk.json";

/// A folder of its own, gone afterwards.
class HwctlDesk : public testing::Test
{
protected:
    HwctlDesk()
    {
        std::string name = (std::filesystem::temp_directory_path() / "hwctl-desk-XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        m_folder = name;
    }
    ~HwctlDesk() override { std::filesystem::remove_all(m_folder); }

    std::string Write(const std::string& name, const std::string& text) const
    {
        const std::filesystem::path file = m_folder / name;
        std::ofstream(file) << text;
        return file.string();
    }

    std::filesystem::path m_folder;
};

} // namespace

TEST_F(HwctlDesk, DoesScriptsAndLines)
{
    const std::string script = Write("script.txt", "widget pixi tap 3 # a hand\n"
                                                   "wing pixi leds on\n"
                                                   "until widgets/pixi/leds/3 = on\n"
                                                   "show widgets/pixi/leds/3\n");
    const HwctlRun run =
        RunHwctl({"desk", HomeDesk, "--script", script, "--do",
                  "midi \"USB Keyboard\" feed 90 3C 64", "--until", "midi/received", "=", "1"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const std::vector<std::string> lines = run.GetLines();
    EXPECT_THAT(lines, Contains(AllOf(HasSubstr("wing Vex4Pixi/291"), HasSubstr("pressed"))));
    EXPECT_THAT(lines, Contains(HasSubstr("widgets/pixi/leds/3 = on")));
    EXPECT_THAT(lines, Contains(HasSubstr("midi USB Keyboard     note on ch 1 C4 vel 100")));
}

TEST_F(HwctlDesk, AFailedLineEndsItAndSaysWhere)
{
    const std::string script =
        Write("script.txt", "\nexpect widgets/pixi/plugged = false\nlight key\n");
    const HwctlRun run = RunHwctl({"desk", HomeDesk, "--quiet", "--script", script, "--state"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr(script + ":2: expect widgets/pixi/plugged = false: expected "
                                            "widgets/pixi/plugged = false, found true"));
    EXPECT_THAT(run.out, IsEmpty());
    EXPECT_EQ(RunHwctl({"desk", HomeDesk, "--do", "dance"}).exitCode, 1);
    const HwctlRun late =
        RunHwctl({"desk", HomeDesk, "--until", "cd/status", "=", "playing", "--within", "0.1"});
    EXPECT_EQ(late.exitCode, 1);
    EXPECT_THAT(late.err, HasSubstr("found stopped"));
}

TEST_F(HwctlDesk, ReadsEveryLineBeforeTheFirstIsDone)
{
    const std::string script =
        Write("script.txt", "widget pixi tap 3\nwidget pixy tap 3\n"
                            "expect lights/WorkLigth/level != 3\nligth key\nwait 0.01\n");
    for (const bool isCheck : {true, false}) {
        std::vector<std::string> arguments{"desk", HomeDesk, "--script",
                                           script, "--do",   "wait nan"};
        if (isCheck)
            arguments.emplace_back("--check");
        const HwctlRun run = RunHwctl(arguments);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.out, "") << "nothing was done";
        EXPECT_THAT(run.err, StartsWith("hwctl: " + script +
                                        ":2: widget pixy tap 3: there is no "
                                        "widget at 'pixy'; the nearest is pixi; "));
        EXPECT_THAT(run.err, HasSubstr("\nhwctl: " + script +
                                       ":3: expect lights/WorkLigth/level "
                                       "!= 3: there is no 'lights/WorkLigth/level': 'lights' has "
                                       "no 'WorkLigth'; the nearest is WorkLight; "));
        EXPECT_THAT(run.err, HasSubstr("\nhwctl: " + script + ":4: ligth key: there is no verb "));
        EXPECT_THAT(run.err, HasSubstr("\nhwctl: --do: wait nan: 'nan' is not a number"));
    }
    const std::string good = Write("good.txt", "widget pixi tap 3\nexpect name = x\n");
    const HwctlRun run = RunHwctl({"desk", HomeDesk, "--script", good, "--check"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, std::string(HomeDesk) + ": Home desk\n");
    const HwctlRun input = RunHwctl({"desk", HomeDesk, "--script", "-", "--check"}, {}, {}, script);
    EXPECT_EQ(input.exitCode, 1);
    EXPECT_THAT(input.err, StartsWith("hwctl: input:2: "));
}

TEST_F(HwctlDesk, TheScriptsThatComeAlongAreRight)
{
    for (const auto& [desk, name] : {std::pair("full-console.json", "performance.txt"),
                                     std::pair("panel-console.json", "pictures.txt")}) {
        std::ifstream file(std::string(DATA_FOLDER "/desk/") + name);
        std::string text{std::istreambuf_iterator<char>(file), {}};
        // Their names of files begin in the project's folder.
        const std::string folder = " data/";
        for (std::size_t at = 0; (at = text.find(folder, at)) != std::string::npos;)
            text.replace(at, folder.size(), " " DATA_FOLDER "/");
        const HwctlRun run = RunHwctl({"desk", std::string(DATA_FOLDER "/desk/") + desk, "--check",
                                       "--script", Write(name, text)});
        EXPECT_EQ(run.exitCode, 0) << run.err;
    }
}

TEST_F(HwctlDesk, APathThatThereCannotBeIsNoState)
{
    const HwctlRun run = RunHwctl({"desk", HomeDesk, "--state", "widgts"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err,
                StartsWith("hwctl: --state: there is no 'widgts': the desk has no 'widgts'; the "));
    const HwctlRun nothing =
        RunHwctl({"desk", HomeDesk, "--quiet", "--state", "widgets/pixi/leds/3"});
    EXPECT_EQ(nothing.exitCode, 0) << nothing.err;
    EXPECT_EQ(nothing.out, "null\n");
}

TEST_F(HwctlDesk, DoesTheLinesOfStandardInput)
{
    const std::string input = Write("input.txt", "show name\n\n# a remark\nlight dark\n");
    const HwctlRun run = RunHwctl({"desk", HomeDesk, "--script", "-"}, {}, {}, input);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.GetLines(), Contains(HasSubstr("name = Home desk")));
    EXPECT_THAT(run.err, HasSubstr("input:4: light dark: "));
}

TEST_F(HwctlDesk, PrintsLinesWhereThereIsNothingToDrawOn)
{
    const HwctlRun run = RunHwctl({"desk", HomeDesk, "--live", "--do", "show name"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.GetLines(), Contains(HasSubstr("name = Home desk")));
    EXPECT_THAT(run.out, testing::Not(HasSubstr("\x1b")));
}

TEST_F(HwctlDesk, PrintsTheStateAtTheEnd)
{
    const HwctlRun run =
        RunHwctl({"desk", HomeDesk, "--quiet", "--do", "light vent=25", "--state"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const nlohmann::json state = nlohmann::json::parse(run.out);
    EXPECT_EQ(state["name"], "Home desk");
    EXPECT_EQ(state["lights"]["VentLight"]["level"], 25);
    const HwctlRun part = RunHwctl({"desk", HomeDesk, "--quiet", "--state", "cd/disc"});
    EXPECT_EQ(part.out, "false\n");
}

TEST_F(HwctlDesk, PrintsEventsAsJson)
{
    const HwctlRun run = RunHwctl({"desk", HomeDesk, "--json", "--do", "widget pixi tap 3"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    bool isPressed = false;
    for (const std::string& line : run.GetLines()) {
        const nlohmann::json event = nlohmann::json::parse(line);
        isPressed = isPressed || (event["signal"] == "button_press" && event["pressed"] == true);
    }
    EXPECT_TRUE(isPressed);
}

TEST_F(HwctlDesk, RunsUntilAnInterrupt)
{
    const HwctlRun run = RunHwctl({"desk", HomeDesk}, {}, "timecode sim 1");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    // In the middle of a line the run is not what was asked for.
    const HwctlRun waiting =
        RunHwctl({"desk", HomeDesk, "--do", "wait 100000"}, {}, "timecode sim");
    EXPECT_EQ(waiting.exitCode, 1);
    EXPECT_THAT(waiting.err, HasSubstr("--do: wait 100000: interrupted"));
    // The same with more behind it, which is dropped.
    const HwctlRun more = RunHwctl({"desk", HomeDesk, "--do", "wait 100000", "--do", "light key"},
                                   {}, "timecode sim");
    EXPECT_EQ(more.exitCode, 1);
    EXPECT_THAT(more.err, HasSubstr("--do: wait 100000: interrupted"));
}

TEST_F(HwctlDesk, ReadsAndListsWithoutADesk)
{
    EXPECT_EQ(RunHwctl({"desk", HomeDesk, "--check"}).out, std::string(HomeDesk) + ": Home desk\n");
    const std::string bad = Write("bad.json", "{\n  \"name\": \"x\",\n  \"nmae\": 1\n}\n");
    const HwctlRun run = RunHwctl({"desk", bad, "--check"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, StartsWith("hwctl: " + bad + ":3: "));
    const std::string rate =
        Write("rate.json", "{\"name\": \"x\",\n\"timecode\": {\"simulate\": [\"pal\"]}}");
    const HwctlRun source = RunHwctl({"desk", rate, "--check"});
    EXPECT_EQ(source.exitCode, 1);
    EXPECT_THAT(source.err, StartsWith("hwctl: " + rate + ":2: 'pal' is neither a rate"));
    EXPECT_EQ(RunHwctl({"desk", "/nowhere.json"}).exitCode, 1);
    EXPECT_EQ(RunHwctl({"desk"}).exitCode, 2);
    const HwctlRun verbs = RunHwctl({"desk", "--verbs"});
    EXPECT_EQ(verbs.exitCode, 0);
    for (const char* const verb :
         {"widget PATH press", "sim NUMBER create", "wait SECONDS", "until"})
        EXPECT_THAT(verbs.GetLines(), Contains(StartsWith(verb))) << verb;
    EXPECT_EQ(RunHwctl({"desk", HomeDesk, "--until", "cd", "is", "on"}).exitCode, 2);
    EXPECT_EQ(RunHwctl({"desk", HomeDesk, "--within", "3", "--do", "light key"}).exitCode, 2);
}

TEST_F(HwctlDesk, EveryDeskThatComesAlongRuns)
{
    for (const char* const name :
         {"full-console", "panel-console", "compact-console", "home-desk"}) {
        const HwctlRun run =
            RunHwctl({"desk", std::string(DATA_FOLDER "/desk/") + name + ".json", "--quiet", "--do",
                      "until \"timecode/sim 1/frames\" > 1", "--state", "widgets"});
        EXPECT_EQ(run.exitCode, 0) << name << run.err;
        const nlohmann::json widgets = nlohmann::json::parse(run.out);
        for (const auto& [path, widget] : widgets.items())
            EXPECT_EQ(widget["plugged"], true) << name << " " << path;
    }
}
