// SPDX-License-Identifier: MIT

// The fading thread, step by step.

#include <array>
#include <cstring>
#include <future>
#include <thread>

#include "lights/fading_bench.h"
#include "support/wait.h"

namespace
{

using namespace Hardware;
using namespace TestSupport;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr uires16 Full = 0x00640000;

ConsoleLightFading& Fading()
{
    return ConsoleLightFading::Get();
}

void Activate()
{
    Fading().activate();
}

class FadingSteps : public FadingBench
{
protected:
    FadingSteps() { m_settings.isConsole = true; }
    /// Levels of one light's fade, run to its end.
    std::vector<uires16> Run(ConsoleLightId id, uires16 from, uires16 to, unsigned duration)
    {
        Fading().set(id, from, to, duration);
        std::vector<uires16> levels;
        for (const Step& step : RunAll()) {
            EXPECT_EQ(step.first, id);
            levels.push_back(step.second);
        }
        return levels;
    }
};

} // namespace

TEST_F(FadingSteps, AShortFadeIsItsBeginAndItsMiddle)
{
    StartThread();
    EXPECT_THAT(Run(WorkLight, 0x00280000, 0x00500000, 100), ElementsAre(0x00280000, 0x003C0000));
    EXPECT_THAT(GetWaits(), ElementsAre(Forever, 50, 50, Forever));
}

struct FadeCase {
    uires16 from, to;
    unsigned duration;
    std::size_t steps;
};

class FadeTable : public FadingSteps, public testing::WithParamInterface<FadeCase>
{
};

TEST_P(FadeTable, GoesThroughItsLevelsAndStopsShortOfTheLast)
{
    const auto& [from, to, duration, steps] = GetParam();
    StartThread();
    const std::vector<uires16> levels = Run(VentLight, from, to, duration);
    EXPECT_EQ(levels, GetLevels(from, to, duration));
    EXPECT_EQ(levels.size(), steps);
    EXPECT_EQ(levels.front(), from);
    EXPECT_EQ(levels.back() == to, from == to);
    EXPECT_EQ(ConsoleLights::Get().get(VentLight), levels.back());
}

std::vector<FadeCase> MakeFadeCases()
{
    std::vector<FadeCase> cases;
    typedef std::pair<unsigned, unsigned> Numbers;
    for (const auto& [duration, steps] : {Numbers{100, 2}, Numbers{3000, 60}, Numbers{5000, 100},
                                          Numbers{6000, 120}, Numbers{49, 1}, Numbers{3001, 61}})
        for (const auto& [from, to] :
             {Numbers{0, Full}, Numbers{Full, 0}, Numbers{0x00123457, 0x00561235},
              Numbers{0x00561235, 0x00123457}, Numbers{Full, Full}, Numbers{0, 0x12345},
              Numbers{0x12345, 0}})
            cases.push_back({from, to, duration, steps});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(AllDurations, FadeTable, testing::ValuesIn(MakeFadeCases()));

TEST_F(FadingSteps, ALongFadeEndsWhereItAlwaysDid)
{
    StartThread();
    EXPECT_EQ(Run(WhiteDeskLight, Full, 0, 3000).back(), 0x0001AAF4U);
}

// Numbers worked out by hand, so that they do not follow from the code: a third and two thirds of
// the way of an odd difference, up and down.
TEST_F(FadingSteps, OddDifferencesAreRoundedDownBothWays)
{
    StartThread();
    // Fractions 0, 0x5555 and 0xAAAA of 0x10001.
    EXPECT_THAT(Run(WorkLight, 0, 0x00010001, 150), ElementsAre(0, 0x00005555, 0x0000AAAA));
    EXPECT_THAT(Run(WorkLight, 0x00010001, 0, 150),
                ElementsAre(0x00010001, 0x0000AAAB, 0x00005556));
}

TEST_F(FadingSteps, AFadeOfNoDurationIsNone)
{
    StartThread();
    EXPECT_THAT(Run(WorkLight, 0, Full, 0), IsEmpty());
    EXPECT_THAT(GetWaits(), ElementsAre(Forever, Forever));
}

TEST_F(FadingSteps, APassGoesThroughTheLightsInOrder)
{
    StartThread();
    Steps expected;
    for (unsigned id = ConsoleLightCount; id-- > 0;)
        Fading().set(static_cast<ConsoleLightId>(id), id << 16U, 0, 50);
    for (unsigned id = 0; id < ConsoleLightCount; ++id)
        expected.emplace_back(static_cast<ConsoleLightId>(id), id << 16U);
    EXPECT_EQ(RunAll(), expected);
}

TEST_F(FadingSteps, SetDoesNotWakeTheThread)
{
    StartThread();
    const std::size_t sets = CountSets();
    Fading().set(WorkLight, 0, Full, 50);
    EXPECT_EQ(CountSets(), sets);
    EXPECT_THAT(GetWaits(), ElementsAre(Forever));
    EXPECT_THAT(TakeSteps(), IsEmpty());
    Wake(Activate);
    EXPECT_THAT(TakeSteps(), ElementsAre(Pair(WorkLight, 0)));
}

TEST_F(FadingSteps, AWakeInBetweenIsAStepToo)
{
    StartThread();
    Fading().set(WorkLight, 0, Full, 200);
    Wake(Activate);
    Wake(Activate);
    Wake(Activate);
    EXPECT_THAT(TakeSteps(), ElementsAre(Pair(WorkLight, 0), Pair(WorkLight, 0x00190000),
                                         Pair(WorkLight, 0x00320000)));
}

TEST_F(FadingSteps, AFadeThatIsRewrittenGoesOnWithTheNewValues)
{
    StartThread();
    Fading().set(WorkLight, 0, Full, 3000);
    Wake(Activate);
    TimeOut();
    TakeSteps();
    Fading().set(WorkLight, 0x00280000, 0x00500000, 100);
    for (int pass = 0; pass < 3; ++pass)
        TimeOut();
    EXPECT_THAT(TakeSteps(), ElementsAre(Pair(WorkLight, 0x00280000), Pair(WorkLight, 0x003C0000)));
    EXPECT_EQ(AwaitWait(), Forever);
}

TEST_F(FadingSteps, AResetStopsEveryFadeWhereItStands)
{
    StartThread();
    for (const ConsoleLightId id : {LeftBacklight, WorkLight, DeskProgrammerDimmer8})
        Fading().set(id, Full, 0, 5000);
    Wake(Activate);
    TimeOut();
    const uires16 level = ConsoleLights::Get().get(WorkLight);
    TakeSteps();
    Fading().reset();
    TimeOut();
    EXPECT_EQ(AwaitWait(), Forever);
    Wake(Activate);
    EXPECT_THAT(TakeSteps(), IsEmpty());
    EXPECT_EQ(ConsoleLights::Get().get(WorkLight), level);
    Fading().set(WorkLight, 7, 7, 50);
    EXPECT_THAT(RunAll(), ElementsAre(Pair(WorkLight, 7)));
}

TEST_F(FadingSteps, AResetInTheMiddleOfAPassHoldsForTheRestOfIt)
{
    StartThread();
    const QObject context;
    QObject::connect(
        &Fading(), &ConsoleLightFading::fade_light, &context, [] { Fading().reset(); },
        Qt::DirectConnection);
    Fading().set(WingLeds, 1, 1, 3000);
    Fading().set(Lcds, 2, 2, 3000);
    EXPECT_THAT(RunAll(), ElementsAre(Pair(WingLeds, 1)));
}

TEST_F(FadingSteps, AFadeThatASlotRewritesBeginsAtItsBegin)
{
    StartThread();
    bool isFirst = true;
    const QObject context;
    QObject::connect(
        &Fading(), &ConsoleLightFading::fade_light, &context,
        [&isFirst] {
            if (std::exchange(isFirst, false))
                Fading().set(WorkLight, 0x00280000, 0x00500000, 100);
        },
        Qt::DirectConnection);
    EXPECT_THAT(Run(WorkLight, 7, 7, 3000), ElementsAre(7, 0x00280000, 0x003C0000));
}

TEST_F(FadingSteps, StepsAreToldOnTheFadingThread)
{
    StartThread();
    std::thread::id thread;
    const QObject context;
    QObject::connect(
        &Fading(), &ConsoleLightFading::fade_light, &context,
        [&thread] { thread = std::this_thread::get_id(); }, Qt::DirectConnection);
    Run(WorkLight, 0, 0, 50);
    EXPECT_NE(thread, std::thread::id());
    EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(FadingSteps, WithoutAConsoleBacklightsStandStill)
{
    m_settings.isConsole = false;
    StartThread();
    for (const ConsoleLightId id : {LeftBacklight, RightBacklight, CenterBacklight})
        Fading().set(id, id, id, 100);
    EXPECT_THAT(RunAll(), IsEmpty());
    EXPECT_THAT(GetWaits(), ElementsAre(Forever, Forever));
    // Asked once, when the thread starts.
    m_settings.isConsole = true;
    Standalone::ConfigurePlatform(m_settings);
    EXPECT_THAT(RunAll(), IsEmpty());
    // The fades are still there: a console's thread makes them.
    const std::size_t waits = GetWaits().size();
    Fading().init_thread();
    WaitForWaits(waits + 1);
    EXPECT_THAT(TakeSteps(), ElementsAre(Pair(LeftBacklight, 0), Pair(RightBacklight, 1),
                                         Pair(CenterBacklight, 2)));
}

TEST_F(FadingSteps, TheNewThreadEndsTheOneBefore)
{
    StartThread();
    StartThread();
    StartThread();
    EXPECT_THAT(GetWaits(), ElementsAre(Forever, Forever, Forever));
    EXPECT_THAT(Run(WorkLight, 1, 1, 100), ElementsAre(1, 1)); // not twice
}

// Accepted: the next activate() makes up for it.
TEST_F(FadingSteps, AWakeDuringAPassThatFoundNothingIsLost)
{
    StartThread();
    DoInNextReset([] {
        Fading().set(WorkLight, 5, 5, 50);
        Activate();
    });
    Wake(Activate);
    EXPECT_EQ(AwaitWait(), Forever);
    EXPECT_THAT(TakeSteps(), IsEmpty());
    EXPECT_THAT(RunAll(), ElementsAre(Pair(WorkLight, 5)));
}

TEST_F(FadingSteps, AFadeThatIsRewrittenNeverPutsTheThreadToSleep)
{
    StartThread();
    Fading().set(WorkLight, 5, 5, 100);
    Wake(Activate);
    // Behind the pass that it is found running in, with its wake taken back by the thread.
    DoInNextReset([] {
        Fading().set(WorkLight, 6, 6, 100);
        Activate();
    });
    TimeOut();
    EXPECT_EQ(AwaitWait(), 50);
}

TEST_F(FadingSteps, AStopJustBeforeTheThreadSleepsIsHeard)
{
    StartThread();
    std::future<void> end;
    std::promise<void> isAsked;
    DoInNextReset([&] {
        const std::size_t sets = CountSets();
        end = std::async(std::launch::async, [] { Fading().end_thread(); });
        WaitUntil([sets] { return CountSets() > sets; });
        isAsked.set_value();
    });
    Activate();
    isAsked.get_future().wait();
    // A thread that sleeps over it would never end.
    if (end.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
        ADD_FAILURE() << "the thread sleeps";
        Activate();
    }
    EXPECT_THAT(GetWaits(), ElementsAre(Forever));
}

TEST_F(FadingSteps, AStopInTheMiddleOfAFadeEndsItWithoutAnotherPass)
{
    StartThread();
    Fading().set(WorkLight, 5, 5, 6000);
    Wake(Activate);
    TakeSteps();
    Fading().end_thread();
    EXPECT_THAT(TakeSteps(), IsEmpty());
    EXPECT_THAT(GetWaits(), ElementsAre(Forever, 50));
}

TEST(FadeActivity, BeginsAtZeroWithItsFieldsInOrder)
{
    static_assert(sizeof(ConsoleLightFading::FadeActivity) == 16);
    ConsoleLightFading::FadeActivity fade;
    EXPECT_EQ(fade.from + fade.to + fade.duration + fade.elapsed, 0U);
    fade.from = 1;
    fade.to = 2;
    fade.duration = 3;
    fade.elapsed = 4;
    std::array<std::uint32_t, 4> words{};
    std::memcpy(words.data(), static_cast<const void*>(&fade), sizeof words);
    EXPECT_THAT(words, ElementsAre(1, 2, 3, 4));
}
