// SPDX-License-Identifier: MIT

// The screen saver, and the keyboard drawer.

#include <chrono>
#include <future>
#include <utility>

#include "lights/fading_table.h"

namespace
{

using namespace Hardware;
using namespace TestSupport;
using testing::ElementsAre;
using testing::IsEmpty;

ConsoleLightFading& Fading()
{
    return ConsoleLightFading::Get();
}

class ScreenSaver : public FadingTable
{
};

class KeyboardDrawer : public FadingTable
{
};

} // namespace

TEST_F(ScreenSaver, DimsTheConsoleAndLightsTheDeskInBlue)
{
    for (unsigned bits = 0; bits < Combination::Count; ++bits) {
        SCOPED_TRACE(bits);
        const Combination all(bits);
        SetUp(all);
        const std::size_t sets = CountSets();
        Fading().save_screen_activate();
        EXPECT_EQ(CountSets() - sets, 1U);
        EXPECT_EQ(m_setsAtSleep - sets, 1U); // wings last
        EXPECT_THAT(TakeSleeps(), ElementsAre(true));
        // In blue whatever the colour that is chosen, and nothing for the left and right display.
        Fades expected{{WhiteDeskLight, GetLevels(Percent(5), 0, 3000)},
                       {BlueDeskLight, GetLevels(Percent(5), Percent(40), 3000)}};
        if (all.isConsole)
            expected[CenterBacklight] = GetLevels(Percent(5), 0, 3000);
        EXPECT_EQ(RunFades(), expected);
        EXPECT_THAT(GetNewPreferences(), IsEmpty());
        if (HasFailure())
            return;
    }
}

TEST_F(ScreenSaver, LeavesAnotherComputersBacklightRecordAlone)
{
    SetUp(Combination(0));
    Fading().save_screen_activate();
    RunFades();
    m_settings.isConsole = true;
    StartThread(); // a console's thread would now make a fade that was left
    EXPECT_THAT(RunFades(), IsEmpty());
}

TEST_F(ScreenSaver, ItsEndBringsEverythingBackAtOnce)
{
    for (unsigned bits = 0; bits < Combination::Count; ++bits) {
        SCOPED_TRACE(bits);
        const Combination all(bits);
        SetUp(all);
        Fading().set(WingLeds, 0, Percent(100), 6000); // to be stopped
        Fading().save_screen_reset();
        Steps expected;
        if (all.isConsole)
            expected.emplace_back(CenterBacklight, Percent(30));
        expected.emplace_back(all.Chosen(), Percent(40));
        expected.emplace_back(all.Other(), 0);
        expected.emplace_back(WorkLight, all.Work());
        expected.emplace_back(KeyboardDrawerLight, all.Drawer());
        expected.emplace_back(VentLight, Percent(50));
        EXPECT_EQ(TakeChanges(), expected);
        EXPECT_EQ(m_changesAtSleep, expected.size()); // wings last
        EXPECT_EQ(GetNewPreferences(), (Levels{{WorkLight, all.Work()}, {VentLight, Percent(50)}}));
        EXPECT_EQ(ConsoleLights::Get().get_preference_state(KeyboardDrawerLight), !all.isEnabled);
        EXPECT_THAT(TakeSleeps(), ElementsAre(false));
        EXPECT_THAT(RunFades(), IsEmpty());
        if (HasFailure())
            return;
    }
}

TEST_F(ScreenSaver, FadesAreStoppedBeforeAnythingIsSet)
{
    SetUp(Combination(Combination::Count - 1));
    Fading().set(WhiteDeskLight, Percent(1), Percent(2), 6000);
    bool isFirst = true;
    const QObject context;
    QObject::connect(
        &ConsoleLights::Get(), &ConsoleLights::level_change, &context,
        [&](ConsoleLightId id) {
            if (id == CenterBacklight && std::exchange(isFirst, false)) {
                EXPECT_THAT(RunFades(), IsEmpty());
            }
        },
        Qt::DirectConnection);
    Fading().save_screen_reset();
    EXPECT_FALSE(isFirst);
}

TEST_F(ScreenSaver, AStepOnItsWayDoesNotDimWhatItsEndBroughtBack)
{
    SetUp(Combination(Combination::Count - 1));
    std::promise<void> isStepping;
    std::promise<void> goOn;
    bool isFirst = true;
    const QObject context;
    // Between the level that is stored and the lights that show it.
    QObject::connect(
        &ConsoleLights::Get(), &ConsoleLights::level_change, &context,
        [&](ConsoleLightId id) {
            if (id == CenterBacklight && std::exchange(isFirst, false)) {
                isStepping.set_value();
                goOn.get_future().wait();
            }
        },
        Qt::DirectConnection);
    Fading().save_screen_activate();
    isStepping.get_future().wait();
    auto end = std::async(std::launch::async, [] { Fading().save_screen_reset(); });
    EXPECT_EQ(end.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    goOn.set_value();
    end.wait();
    EXPECT_EQ(ConsoleLights::Get().get(CenterBacklight), Percent(30));
    EXPECT_THAT(RunFades()[CenterBacklight].size(), testing::Le(1U));
    EXPECT_EQ(ConsoleLights::Get().get(CenterBacklight), Percent(30));
}

TEST_F(ScreenSaver, ItsEndInAStepDoesNotWaitForItself)
{
    SetUp(Combination(Combination::Count - 1));
    bool isFirst = true;
    const QObject context;
    QObject::connect(
        &Fading(), &ConsoleLightFading::fade_light, &context,
        [&isFirst] {
            if (std::exchange(isFirst, false))
                Fading().save_screen_reset();
        },
        Qt::DirectConnection);
    Fading().set(WingLeds, 0, 0, 100);
    RunFades();
    EXPECT_FALSE(isFirst);
    EXPECT_EQ(ConsoleLights::Get().get(CenterBacklight), Percent(30));
}

TEST_F(KeyboardDrawer, LightsWhenItIsOpenedAndFollowsTheWorkLightOtherwise)
{
    struct Case {
        int state;
        bool isLightWanted;
        bool isLit;
    };
    for (const auto& [state, isLightWanted, isLit] :
         {Case{0, true, true}, Case{0, false, false}, Case{1, true, false}, Case{1, false, false},
          Case{-1, true, false}, Case{256, true, false}}) {
        SCOPED_TRACE(state);
        SetUp(Combination(0));
        ConsoleLights& lights = ConsoleLights::Get();
        lights.set_preference(WorkLight, Percent(33));
        lights.set_preference(KeyboardDrawerLight, Percent(44));
        lights.set_preference_state(KeyboardDrawerLight, isLightWanted);
        const std::size_t sets = CountSets();
        Fading().keyboard_changed(0x50001, 99, state);
        EXPECT_EQ(CountSets() - sets, 1U);
        EXPECT_EQ(RunFades(), (Fades{{KeyboardDrawerLight,
                                      GetLevels(Percent(5), Percent(isLit ? 44 : 33), 3000)}}));
    }
}

TEST_F(KeyboardDrawer, HowItStandsIsRemembered)
{
    SetUp(Combination(128 + 512)); // the light enabled, the drawer closed
    Fading().save_screen_reset();
    EXPECT_EQ(ConsoleLights::Get().get(KeyboardDrawerLight), Percent(60));
    Fading().keyboard_changed(0, 0, 0);
    Fading().save_screen_reset();
    EXPECT_EQ(ConsoleLights::Get().get(KeyboardDrawerLight), Percent(70));
    Fading().keyboard_changed(0, 0, 1);
    Fading().save_screen_reset();
    EXPECT_EQ(ConsoleLights::Get().get(KeyboardDrawerLight), Percent(60));
}
