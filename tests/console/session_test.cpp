// SPDX-License-Identifier: MIT

// A session as a whole, and the lines that wait and expect.

#include <algorithm>
#include <condition_variable>
#include <set>

#include "console/console_bench.h"
#include "console/known_paths.h"
#include "console/runner.h"
#include "hardware/wing_mapper.h"
#include "support/bench_desk.h"
#include "support/wait.h"

namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// Every name of a state stands among the known paths.
void ExpectKnown(const nlohmann::json& state, const nlohmann::json& known, const std::string& path)
{
    if (!state.is_object())
        return;
    for (const auto& [name, value] : state.items()) {
        const std::string below = path + "/" + name;
        ASSERT_TRUE(known.contains(name)) << below;
        ExpectKnown(value, known.at(name), below);
    }
}

class Session : public TestSupport::ConsoleBench
{
};

class ScriptLines : public TestSupport::ConsoleBench
{
};

class Runner : public TestSupport::ConsoleBench
{
protected:
    /// Lets the application's loop run until so many lines were done.
    std::vector<std::string> Await(std::size_t count)
    {
        EXPECT_TRUE(TestSupport::WaitUntil([&] {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
            return CountDone() >= count;
        }));
        const std::lock_guard hold(m_mutex);
        return m_done;
    }
    std::size_t CountDone() const
    {
        const std::lock_guard hold(m_mutex);
        return m_done.size();
    }
    void Take(const std::string& line, const std::string& error)
    {
        const std::lock_guard hold(m_mutex);
        m_done.push_back(line + ": " + error);
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_done; // guarded by m_mutex
};

} // namespace

TEST_F(Session, StartsAsAnApplicationDoes)
{
    EXPECT_EQ(Get("name"), "Bench");
    for (const char* const path : {"expansion", "motor", "panel", "pixi"})
        EXPECT_EQ(Get(std::string("widgets/") + path + "/attached"), true) << path;
    EXPECT_EQ(Get("midi/input"), "Stage Keys");
    EXPECT_EQ(Get("midi/receive"), "on");
    EXPECT_EQ(Get("conditions/midi/Show/plugged"), "off");
    EXPECT_FALSE(GetSession().GetDesk().GetPort("Show").IsPlugged());
    // All lights as the settings say, at the displays too.
    EXPECT_EQ(Get("lights/LeftBacklight/level"), 100);
    Expect("until displays/left = 100");
    Expect("until displays/right = 100");
    EXPECT_THAT(GetEvents("network console"), ElementsAre(HasSubstr("eth0 up, 1 Gbit/s")));
}

TEST_F(Session, TellsOfEveryVerb)
{
    std::set<std::string> words;
    std::set<std::pair<std::string, std::string>> texts;
    for (const Console::VerbHelp& help : Console::Session::GetVerbs()) {
        EXPECT_FALSE(help.text.empty()) << help.usage;
        const std::string word = help.usage.substr(0, help.usage.find(' '));
        words.insert(word);
        EXPECT_TRUE(texts.emplace(word, help.text).second) << help.usage << " has no own text";
    }
    EXPECT_THAT(words, ElementsAre("adapter", "cd", "input", "light", "log", "ltc", "midi",
                                   "output", "receive", "running-status", "send", "serial",
                                   "setting", "sim", "transmit", "widget", "wing"));
}

TEST_F(ScriptLines, ExpectAndWait)
{
    Expect("wait 0.01");
    EXPECT_EQ(Do("wait long"), "'long' is not a number from 0 to 1000000");
    EXPECT_EQ(Do("wait"), "it is: wait SECONDS");
    Expect("expect cd/status = stopped");
    EXPECT_EQ(Do("expect cd/status = playing"), "expected cd/status = playing, found stopped");
    EXPECT_EQ(Do("expect cd/status"), "a condition is PATH OPERATOR VALUE");
    EXPECT_EQ(Do("until cd/status = playing within 0.05"),
              "in 0.05 s never came cd/status = playing, found stopped");
    Expect("show cd/status");
    Expect("show conditions/cd/scratch");
    EXPECT_THAT(GetShown(), ElementsAre("cd/status = stopped", "conditions/cd/scratch = nothing"));
}

TEST_F(ScriptLines, APathThatThereCannotBeIsAnErrorWithTheNearOnes)
{
    for (const char* const line :
         {"expect lights/WorkLigth/level != 3", "until lights/WorkLigth/level != 3",
          "show lights/WorkLigth/level"})
        EXPECT_THAT(Do(line), StartsWith("there is no 'lights/WorkLigth/level': 'lights' has no "
                                         "'WorkLigth'; the nearest is WorkLight; "))
            << line;
    EXPECT_EQ(Do("expect cd/status/now = stopped"),
              "there is no 'cd/status/now': nothing stands below 'cd/status'");
    EXPECT_THAT(
        Do("expect adapters/eth9/up = nothing"),
        StartsWith("there is no 'adapters/eth9/up': 'adapters' has no 'eth9'; the nearest "));
    Expect("adapter eth9 add");
    Expect("adapter eth9 remove");
    Expect("expect adapters/eth9/up = nothing");
}

TEST_F(ScriptLines, EveryPathOfTheStateIsKnownBeforehand)
{
    Expect("light start vent=20 sleep");
    Expect("until \"timecode/sim 1/frames\" > 2");
    Expect("midi Show busy on");
    Expect("widget motor stuck on");
    Expect("serial /dev/ttyS0 slow 1");
    Expect("cd busy on");
    const nlohmann::json known = Console::GetKnownPaths(MakeDesk(8));
    ExpectKnown(GetSession().GetState(), known, "");
}

TEST_F(Runner, DoesLinesInTheirOrder)
{
    Console::Runner runner(GetSession(), [this](const std::string& line, const std::string& error) {
        Take(line, error);
    });
    for (const char* const line :
         {"light vent=1", "expect lights/VentLight/level = 1", "dance", "light key"})
        runner.Do(line);
    EXPECT_THAT(Await(4),
                ElementsAre("light vent=1: ", "expect lights/VentLight/level = 1: ",
                            StartsWith("dance: there is no verb 'dance'"), "light key: "));
    EXPECT_EQ(Get("settings/work-on"), "off");
    while (!runner.IsIdle())
        QCoreApplication::processEvents();
}

TEST_F(Runner, DropsTheRestOfAScriptBehindAFailure)
{
    Console::Runner runner(
        GetSession(),
        [this](const std::string& line, const std::string& error) { Take(line, error); },
        [](const std::string&) {}, Console::Runner::AtFailure::DropRest);
    runner.DoAll({"light vent=1", "dance", "light vent=2"});
    EXPECT_THAT(Await(2),
                ElementsAre("light vent=1: ", StartsWith("dance: there is no verb 'dance'")));
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return runner.IsIdle(); }));
    EXPECT_EQ(Get("lights/VentLight/level"), 1);
    runner.Do("light vent=3"); // a new one
    EXPECT_EQ(Await(3).back(), "light vent=3: ");
}

TEST_F(Runner, AFailureDropsTheRestOfItsOwnScriptOnly)
{
    Console::Runner runner(
        GetSession(),
        [this](const std::string& line, const std::string& error) { Take(line, error); },
        [](const std::string&) {}, Console::Runner::AtFailure::DropRest);
    runner.DoAll({"wait 0.01", "dance", "light vent=1"});
    runner.DoAll({"light vent=2", "light vent=3"});
    EXPECT_THAT(Await(4), ElementsAre("wait 0.01: ", StartsWith("dance: there is no verb 'dance'"),
                                      "light vent=2: ", "light vent=3: "));
}

TEST_F(Runner, TellsWhatIsUnderWayAndDropsIt)
{
    Console::Runner runner(GetSession(), [this](const std::string& line, const std::string& error) {
        Take(line, error);
    });
    EXPECT_EQ(runner.GetProgress().line, "");
    runner.Do("wait 100000");
    runner.Do("light vent=1");
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return runner.GetProgress().line == "wait 100000"; }));
    EXPECT_EQ(runner.GetProgress().waiting, 1U);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return runner.GetProgress().seconds > 0; }));
    runner.Drop();
    runner.Do("light vent=2");
    EXPECT_THAT(Await(2), ElementsAre("wait 100000: interrupted", "light vent=2: "));
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return runner.IsIdle(); }));
    EXPECT_EQ(runner.GetProgress().line, "");
    runner.Drop(); // of nothing: what comes next is not ended
    runner.Do("wait 0.01");
    EXPECT_EQ(Await(3).back(), "wait 0.01: ");
}

TEST_F(Runner, EndsInTheMiddleOfAWait)
{
    {
        Console::Runner runner(
            GetSession(),
            [this](const std::string& line, const std::string& error) { Take(line, error); });
        runner.Do("wait 100000");
        while (runner.GetProgress().waiting > 0)
            std::this_thread::yield();
        runner.Do("light vent=1");
        EXPECT_EQ(runner.GetProgress().waiting, 1U);
        EXPECT_FALSE(runner.IsIdle());
    }
    EXPECT_THAT(Await(1), ElementsAre("wait 100000: interrupted")); // what is behind is dropped
}

TEST_F(Runner, EndsInTheMiddleOfUntil)
{
    {
        Console::Runner runner(
            GetSession(),
            [this](const std::string& line, const std::string& error) { Take(line, error); });
        runner.Do("until cd/status = playing within 100000");
        while (runner.GetProgress().waiting > 0)
            std::this_thread::yield();
    }
    EXPECT_THAT(Await(1), ElementsAre(HasSubstr("interrupted before cd/status = playing")));
}

TEST_F(Runner, AStalledLineHoldsUpNeitherItsMendingNorTheEnd)
{
    Expect("serial /dev/ttyS0 stall");
    {
        Console::Runner runner(
            GetSession(),
            [this](const std::string& line, const std::string& error) { Take(line, error); });
        runner.Do("light left=77");
        while (runner.GetProgress().waiting > 0)
            std::this_thread::yield();
        runner.Do("light key");                    // waits its turn
        runner.DoSoon("expect screenSaver = off"); // mends nothing
        runner.DoSoon("serial /dev/ttyS0 resume");
        const std::string mended = "serial /dev/ttyS0 resume: ";
        EXPECT_THAT(Await(1), Contains(mended)) << "reported before the call returns";
        // The stalled line ends as soon as it is mended, so either may be reported first.
        std::vector<std::string> queued = Await(4);
        std::erase(queued, mended);
        EXPECT_THAT(queued,
                    ElementsAre("light left=77: ", "light key: ", "expect screenSaver = off: "));
        runner.Do("serial /dev/ttyS0 stall");
        Await(5);
        runner.Do("light left=78");
        while (runner.GetProgress().waiting > 0)
            std::this_thread::yield();
    }
    EXPECT_THAT(Await(6).back(), "light left=78: ");
}

TEST(SessionStart, ThatFailsLeavesNothingBehind)
{
    int count = 1;
    char name[] = "console-test";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(count, arguments);
    Desk::DeskData data;
    data.simulate = {"25fps"};
    EXPECT_THROW(Console::Session{data}, std::invalid_argument);
    data.simulate = {"25"};
    Console::Session session(data);
    session.Do("light vent=7");
    EXPECT_EQ(session.GetState()["lights"]["VentLight"]["level"], 7);
}

TEST(SessionStart, ThatBreaksOffEndsWhatItBegan)
{
    int count = 1;
    char name[] = "console-test";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(count, arguments);
    Desk::DeskData data = TestSupport::MakeBenchDesk(7);
    const auto isLit = [] {
        return Hardware::ConsoleLights::Get().get(Hardware::WhiteDeskLight) > 0;
    };
    // This event comes when nearly everything has begun, and the light comes up by a fade.
    const auto refuse = [&](const Tools::MonitorEvent& event) {
        if (event.source != "network console")
            return;
        EXPECT_TRUE(TestSupport::WaitUntil(isLit));
        throw std::runtime_error("no room");
    };
    EXPECT_THROW(Console::Session(data, refuse), std::runtime_error);
    // As the console's end leaves it.
    EXPECT_FALSE(isLit());
    EXPECT_TRUE(Hardware::WingMapper::Get().connected_wings().empty());
}
