// SPDX-License-Identifier: MIT

// What the LEDs of LTC boards show, on virtual adapters and boards.

#include "hardware/linklights.h"

#include <array>
#include <atomic>
#include <thread>

#include "links/links_bench.h"
#include "os/log.h"
#include "standalone/fatal_handler.h"
#include "support/log_capture.h"
#include "support/process_facts.h"
#include "support/wait.h"

namespace
{

using Hardware::LinkLights;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::GetLights;
using TestSupport::Gigabit;
using TestSupport::LogCapture;

constexpr char Context[] = "Hardware/LinkLights";

/// The line about an update.
std::string MakeLine(const std::string& flags, int boards)
{
    const auto word = [&flags](int i) {
        return std::string(flags.at(static_cast<std::size_t>(i)) == '1' ? "true" : "false");
    };
    return "Updated linklight state VexNet active = " + word(0) + ", VexNet gigabit = " + word(1) +
           ", FixtureNet active = " + word(2) + ", FixtureNet gigabit = " + word(3) + " to " +
           std::to_string(boards) + " LTC device(s)";
}

class LinkLightsTest : public TestSupport::LinksBench
{
};

} // namespace

TEST_F(LinkLightsTest, ShowBothNetworksFromTheStart)
{
    const Desk::VirtualWidget& board = AddBoard();
    m_network.SetDown(L"fix0");
    EXPECT_TRUE(LinkLights::Get().Start());
    EXPECT_EQ(GetLights(board), "1100");
}

TEST_F(LinkLightsTest, ModelElevenHasThemToo)
{
    TestSupport::SetLinkConsole(11, {L"vex0"}, {L"fix0"});
    const Desk::VirtualWidget& board = AddBoard();
    EXPECT_TRUE(LinkLights::Get().Start());
    EXPECT_EQ(GetLights(board), "1111");
}

TEST_F(LinkLightsTest, OtherModelsDoNothing)
{
    const LogCapture log(Context, 31);
    const Desk::VirtualWidget& board = AddBoard();
    for (int productType = -1; productType <= 20; ++productType) {
        if (productType == 8 || productType == 11)
            continue;
        TestSupport::SetLinkConsole(productType, {L"vex0"}, {L"fix0"});
        EXPECT_FALSE(LinkLights::Get().Start()) << productType;
    }
    m_network.SetDown(L"vex0");
    Standalone::DeliverMessages();
    EXPECT_EQ(GetLights(board), "0000");
    EXPECT_THAT(board.GetLog(), IsEmpty());
    EXPECT_THAT(log.GetTexts(), IsEmpty());
    EXPECT_THAT(TestSupport::FindThreads("Network Monitor"), IsEmpty());
}

/// The flags of each network by the state and the speed of its adapter.
TEST_F(LinkLightsTest, FlagsFollowStateAndSpeed)
{
    struct Case {
        bool isUp;
        std::uint64_t speed;
        const char* flags;
    };
    const Case cases[] = {{true, 0, "10"},           {true, 100000000, "10"},
                          {true, 999999999, "10"},   {true, 1000000000, "11"},
                          {true, 2500000000, "11"},  {true, 4294967296, "11"}, // 2^32
                          {true, 10000000000, "11"}, {false, 0, "00"},
                          {false, 1000000000, "00"}, {false, 10000000000, "00"}};
    const Desk::VirtualWidget& board = AddBoard();
    ASSERT_TRUE(LinkLights::Get().Start());
    const auto set = [this](const wchar_t* name, const Case& state) {
        if (state.isUp)
            m_network.SetUp(name);
        else
            m_network.SetDown(name);
        m_network.SetSpeed(name, state.speed);
    };
    for (const Case& vexNet : cases)
        for (const Case& fixtureNet : cases) {
            set(L"vex0", vexNet);
            set(L"fix0", fixtureNet);
            EXPECT_EQ(GetLights(board), std::string(vexNet.flags) + fixtureNet.flags);
        }
}

TEST_F(LinkLightsTest, OnlyALinkThatIsUpIsActive)
{
    // The kinds of nothing: no adapter, none of that name, one that was pulled out.
    const Desk::VirtualWidget& board = AddBoard();
    ASSERT_TRUE(LinkLights::Get().Start());
    m_network.Remove(L"vex0");
    EXPECT_EQ(GetLights(board), "0011");
    m_network.Add({L"vex0", true, 100000000});
    EXPECT_EQ(GetLights(board), "1011");
    m_network.SetDown(L"fix0");
    m_network.Rename(L"fix0", L"other");
    m_network.SetUp(L"other");
    EXPECT_EQ(GetLights(board), "1000");
    m_network.SetDown(L"other");
    m_network.Rename(L"other", L"fix0");
    EXPECT_EQ(GetLights(board), "1000");
    m_network.SetUp(L"fix0");
    EXPECT_EQ(GetLights(board), "1011");
}

TEST_F(LinkLightsTest, AfterAnOverrunTheyShowWhatIs)
{
    const Desk::VirtualWidget& board = AddBoard();
    ASSERT_TRUE(LinkLights::Get().Start());
    m_network.Overrun([this] { m_network.SetDown(L"vex0"); });
    EXPECT_EQ(GetLights(board), "0011");
}

TEST_F(LinkLightsTest, AThousandFlapsEndInTheRightState)
{
    const Desk::VirtualWidget& board = AddBoard();
    ASSERT_TRUE(LinkLights::Get().Start());
    m_network.Flap(L"vex0", 1000);
    m_network.SetDown(L"vex0");
    m_network.Flap(L"fix0", 1000);
    EXPECT_EQ(GetLights(board), "0011");
}

TEST_F(LinkLightsTest, EveryBoardIsSet)
{
    std::vector<Desk::VirtualWidget*> boards;
    for (int i = 0; i < 3; ++i)
        boards.push_back(&AddBoard());
    boards[1]->Unplug();
    const Desk::VirtualWidget& wing = m_bus.Add({"PlaybackWing", 1, {}});
    ASSERT_TRUE(LinkLights::Get().Start());
    EXPECT_EQ(GetLights(*boards[0]), "1111");
    EXPECT_EQ(GetLights(*boards[1]), "0000");
    EXPECT_EQ(GetLights(*boards[2]), "1111");
    EXPECT_THAT(wing.GetLog(), IsEmpty());
}

TEST_F(LinkLightsTest, ABoardThatFailsHoldsNobodyUp)
{
    Desk::VirtualWidget& failing = AddBoard();
    const Desk::VirtualWidget& board = AddBoard();
    failing.SetFailing(true);
    const LogCapture log(Context, 31);
    ASSERT_TRUE(LinkLights::Get().Start());
    EXPECT_EQ(GetLights(board), "1111");
    EXPECT_EQ(log.Count(MakeLine("1111", 2)), 1U); // those that are there
}

TEST_F(LinkLightsTest, ABoardIsClosedAgain)
{
    const Desk::VirtualWidget& board = AddBoard();
    ASSERT_TRUE(LinkLights::Get().Start());
    EXPECT_EQ(board.CountOpened(), 1);
    EXPECT_EQ(board.CountOpen(), 0);
}

TEST_F(LinkLightsTest, LogsEachStepAtLevelOne)
{
    const LogCapture log(Context, 31);
    ASSERT_TRUE(LinkLights::Get().Start());
    m_network.SetSpeed(L"vex0", 1);
    AddBoard();
    AddBoard();
    m_network.SetDown(L"fix0");
    LinkLights::Get().Stop();
    EXPECT_THAT(log.GetTexts(),
                ElementsAre("Starting linklights driver", MakeLine("1111", 0), MakeLine("1011", 0),
                            MakeLine("1000", 2), "Stopping linklight driver"));
    for (const auto& line : log.GetLines()) {
        EXPECT_EQ(line.level, 1U);
        EXPECT_EQ(line.file, "linklights.cpp");
        EXPECT_EQ(line.context, Context);
    }
    EXPECT_EQ(log.GetTexts()[1],
              "Updated linklight state VexNet active = true, VexNet gigabit = true, FixtureNet "
              "active = true, FixtureNet gigabit = true to 0 LTC device(s)");
}

TEST_F(LinkLightsTest, TraceLinesAreDroppedByDefault)
{
    const LogCapture log;
    ASSERT_TRUE(LinkLights::Get().Start());
    LinkLights::Get().Stop();
    EXPECT_THAT(log.GetTexts(), IsEmpty());
    EXPECT_EQ(Os::Log::Context::Find(Context)->GetMask(), 30U);
}

TEST_F(LinkLightsTest, TheContextStandsFromTheFirstGetOn)
{
    EXPECT_EQ(Os::Log::Context::Find(Context), nullptr);
    LinkLights::Get();
    EXPECT_NE(Os::Log::Context::Find(Context), nullptr);
}

TEST_F(LinkLightsTest, StartedAgainTheyDoNothing)
{
    const Desk::VirtualWidget& board = AddBoard();
    ASSERT_TRUE(LinkLights::Get().Start());
    const LogCapture log(Context, 31);
    const std::size_t outputs = board.GetLog().size();
    EXPECT_TRUE(LinkLights::Get().Start());
    EXPECT_EQ(board.GetLog().size(), outputs);
    EXPECT_THAT(log.GetTexts(), IsEmpty());
}

TEST_F(LinkLightsTest, OnceStoppedTheyAreNotStartedAgain)
{
    Desk::VirtualWidget& board = AddBoard();
    ASSERT_TRUE(LinkLights::Get().Start());
    LinkLights::Get().Stop();
    EXPECT_TRUE(LinkLights::Get().Start());
    m_network.SetDown(L"vex0");
    EXPECT_EQ(GetLights(board), "1111");
    board.Unplug();
    board.Plug();
    Standalone::DeliverMessages();
    EXPECT_EQ(GetLights(board), "0000"); // dark, as it was plugged
    EXPECT_TRUE(
        TestSupport::WaitUntil([] { return TestSupport::FindThreads("Network Monitor").empty(); }));
}

TEST_F(LinkLightsTest, TheModelIsAskedAtEveryStart)
{
    ASSERT_TRUE(LinkLights::Get().Start());
    TestSupport::SetLinkConsole(7, {}, {});
    EXPECT_FALSE(LinkLights::Get().Start());
}

TEST_F(LinkLightsTest, CanBeUpdatedByHand)
{
    // Before the start there are no adapters.
    const Desk::VirtualWidget& board = AddBoard();
    LinkLights::Get().Update();
    EXPECT_EQ(GetLights(board), "0000");
    EXPECT_EQ(board.GetLog().size(), 1U);
}

TEST_F(LinkLightsTest, ABoardThatComesIsSetOnTheMessageThread)
{
    ASSERT_TRUE(LinkLights::Get().Start());
    Desk::VirtualWidget& first = AddBoard();
    EXPECT_EQ(GetLights(first), "0000"); // not on the driver's thread
    EXPECT_EQ(first.CountOpened(), 0);
    Standalone::DeliverMessages();
    EXPECT_EQ(GetLights(first), "1111");
    first.ClearLog();
    AddBoard();
    Standalone::DeliverMessages();
    EXPECT_EQ(first.GetLog().size(), 1U); // all boards, not only the new one
    const LogCapture log(Context, 31);
    first.Unplug();
    Standalone::DeliverMessages();
    EXPECT_THAT(log.GetTexts(), ElementsAre(MakeLine("1111", 1)));
}

TEST_F(LinkLightsTest, ABoardsNewsIsPostedToTheMessageThread)
{
    struct Posted {
        std::vector<std::uint32_t> words;
        const Gut::MessageHandler* target;
        unsigned systemObject;
    };
    std::vector<Posted> posted;
    Standalone::SetPostObserver([&posted](const Gut::Message& message, unsigned systemObject) {
        std::vector<std::uint32_t> words(message.Size() / 4);
        std::memcpy(words.data(), message.Data(), message.Size());
        posted.push_back({words, message.GetTarget(), systemObject});
    });
    ASSERT_TRUE(LinkLights::Get().Start());
    EXPECT_THAT(posted, IsEmpty());
    AddBoard().Unplug();
    Standalone::SetPostObserver({});
    ASSERT_EQ(posted.size(), 2U);
    for (const Posted& each : posted) {
        EXPECT_THAT(each.words, ElementsAre(15U, 0U, 0U));
        EXPECT_EQ(each.target, static_cast<Gut::MessageHandler*>(&LinkLights::Get()));
        EXPECT_EQ(each.systemObject, 32U);
    }
}

TEST_F(LinkLightsTest, ConsumeOnlyTheirOwnMessage)
{
    const Desk::VirtualWidget& board = AddBoard();
    struct Case {
        std::vector<std::uint32_t> words;
        bool isConsumed;
    };
    for (const auto& [words, isConsumed] :
         {Case{{15, 0, 0}, true}, Case{{15, 0, 7}, true}, Case{{15, 0}, true},
          Case{{15, 1, 0}, false}, Case{{15, 0x100}, false}, Case{{14, 0, 0}, false},
          Case{{16, 0, 0}, false}, Case{{0x1000F, 0, 0}, false}, Case{{22, 13, 0}, false},
          Case{{15}, false}, Case{{}, false}}) {
        const std::size_t before = board.GetLog().size();
        const Gut::Message message(words.data(), words.size() * 4);
        EXPECT_EQ(LinkLights::Get().FilterMessage(message), isConsumed);
        EXPECT_EQ(board.GetLog().size() - before, isConsumed ? 1U : 0U);
    }
    const std::array<unsigned char, 7> cut{15};
    EXPECT_FALSE(LinkLights::Get().FilterMessage(Gut::Message(cut.data(), cut.size())));
}

TEST_F(LinkLightsTest, AHandlerWithoutInstanceIsFatal)
{
    EXPECT_DEATH(
        {
            Standalone::SetFatalHandler([](const char* text, unsigned, const char* fileAndDate) {
                std::fprintf(stderr, "[%s][%.16s", text, fileAndDate);
            });
            LinkLights::LtcHandler({}, Hardware::WidgetEvent_Added, nullptr);
        },
        testing::HasSubstr("[Trap: '!pLl' is TRUE][linklights.cpp ("));
}

TEST_F(LinkLightsTest, AreUpdatedOnTheMonitorsThread)
{
    Desk::VirtualWidget& board = AddBoard();
    ASSERT_TRUE(LinkLights::Get().Start());
    std::vector<int> threads;
    const QObject context;
    QObject::connect(
        &board, &Desk::VirtualWidget::linkLightsChanged, &context,
        [&threads] {
            threads = TestSupport::FindThreads("Network Monitor");
            if (std::find(threads.begin(), threads.end(), gettid()) == threads.end())
                threads.clear();
        },
        Qt::DirectConnection);
    m_network.SetDown(L"vex0");
    EXPECT_EQ(threads.size(), 1U);
}

TEST_F(LinkLightsTest, TheFirstAdapterThatCanBeWatchedServesANetwork)
{
    m_network.Add({L"vex1", true, 100000000});
    TestSupport::SetLinkConsole(8, {L"a name too long", L"gone0", L"", L"vex1", L"vex0"}, {});
    const LogCapture log(Context, 30);
    const Desk::VirtualWidget& board = AddBoard();
    ASSERT_TRUE(LinkLights::Get().Start());
    EXPECT_THAT(log.GetTexts(), IsEmpty()); // those that exist stand first
    EXPECT_EQ(GetLights(board), "1000");
    m_network.SetDown(L"vex0"); // another one's
    EXPECT_EQ(GetLights(board), "1000");
    m_network.SetSpeed(L"vex1", Gigabit);
    EXPECT_EQ(GetLights(board), "1100");
}

TEST_F(LinkLightsTest, NamesThatCannotBeAreLoggedAndSkipped)
{
    TestSupport::SetLinkConsole(8, {L"", L"a/b", L"later0"}, {L"", L"b/c"});
    const LogCapture log(Context, 30);
    const Desk::VirtualWidget& board = AddBoard();
    ASSERT_TRUE(LinkLights::Get().Start());
    EXPECT_THAT(log.GetTexts(), ElementsAre("Null adapter name",
                                            "Failed to register adapter monitor for adapter a/b",
                                            "Null adapter name",
                                            "Failed to register adapter monitor for adapter b/c"));
    for (const auto& line : log.GetLines())
        EXPECT_EQ(line.level, 8U);
    EXPECT_EQ(GetLights(board), "0000");
    m_network.Add({L"later0"}); // it was registered before it came
    EXPECT_EQ(GetLights(board), "1100");
}

TEST_F(LinkLightsTest, OneAdapterMayServeBothNetworks)
{
    TestSupport::SetLinkConsole(8, {L"vex0"}, {L"vex0"});
    const Desk::VirtualWidget& board = AddBoard();
    ASSERT_TRUE(LinkLights::Get().Start());
    EXPECT_EQ(GetLights(board), "1111");
    board.GetLog();
    m_network.SetDown(L"vex0");
    EXPECT_EQ(GetLights(board), "0000");
    EXPECT_EQ(board.GetLog().size(), 2U);
}

TEST_F(LinkLightsTest, StopWhileLinksFlapAndBoardsComeAndGo)
{
    const LogCapture log; // news are lost
    Desk::VirtualWidget& board = AddBoard();
    ASSERT_TRUE(LinkLights::Get().Start());
    m_network.SetWaiting(false);
    m_bus.SetWaiting(false);
    std::atomic<bool> isOver{false};
    std::thread flapper([&] {
        while (!isOver.load()) {
            m_network.Flap(L"vex0", 1);
            m_network.SetSpeed(L"fix0", m_network.GetAdapters()[1].speed ^ 1U);
        }
    });
    std::thread hand([&] {
        for (int i = 0; i < 200; ++i) {
            board.Unplug();
            board.Plug();
            m_bus.Flush();
        }
    });
    EXPECT_TRUE(TestSupport::WaitUntil([&board] { return board.GetLog().size() > 100; }));
    for (int i = 0; i < 20; ++i) {
        LinkLights::Get().Update();
        Standalone::DeliverMessages();
    }
    LinkLights::Get().Stop();
    isOver.store(true);
    flapper.join();
    hand.join();
    EXPECT_TRUE(
        TestSupport::WaitUntil([] { return TestSupport::FindThreads("Network Monitor").empty(); }));
}

namespace
{

/// Ends the process while links flap; whatever is called too late makes it end otherwise.
[[noreturn]] void ExitWhileLinksFlap(bool isStopped)
{
    // News are lost where they come this fast, which is told; the test is about the end.
    [[maybe_unused]] static const auto* const log = new TestSupport::LogCapture;
    // Never destroyed, as an application's threads may be when it ends.
    auto* const network = new Desk::VirtualNetwork;
    network->Add({L"vex0"});
    TestSupport::SetLinkConsole(8, {L"vex0"}, {});
    LinkLights::Get().Start();
    network->SetWaiting(false);
    std::thread([network] {
        for (;;)
            network->Flap(L"vex0", 1);
    }).detach();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    if (isStopped)
        LinkLights::Get().Stop();
    std::exit(3);
}

} // namespace

TEST(LinkLightsEnd, AreDestroyedWhileLinksFlap)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(ExitWhileLinksFlap(false), testing::ExitedWithCode(3), "^$");
    EXPECT_EXIT(ExitWhileLinksFlap(true), testing::ExitedWithCode(3), "^$");
}
