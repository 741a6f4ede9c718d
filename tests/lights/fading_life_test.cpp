// SPDX-License-Identifier: MIT

// The lights' start and end, and wings that come and go meanwhile.

#include <gmock/gmock.h>

#include <QMetaMethod>
#include <future>
#include <map>
#include <mutex>

#include "desk/kernel_testbed.h"
#include "desk/physical_memory.h"
#include "desk/virtual_widget.h"
#include "desk/widget_bus.h"
#include "hardware/console_light_things.h"
#include "hardware/wing_mapper.h"
#include "lights/fading_bench.h"
#include "os/log.h"
#include "standalone/light_settings.h"
#include "standalone/messages.h"
#include "support/log_capture.h"
#include "support/process_facts.h"

namespace
{

using namespace Hardware;
using namespace TestSupport;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

typedef std::map<ConsoleLightId, std::vector<uires16>> Fades;
typedef std::pair<ConsoleLightId, uires16> Change;

constexpr uires16 Percent(unsigned percent)
{
    return percent << 16U;
}

int ByteOf(unsigned percent)
{
    ConsoleLights::Get().set(DeskProgrammerDimmer8, Percent(percent));
    return static_cast<int>(ConsoleLights::Get().get_scaled(DeskProgrammerDimmer8) >> 8U);
}

/// A console of model 7 on virtual devices, started by Start().
class FadingLife : public testing::Test
{
protected:
    FadingLife() : m_settings(Standalone::MakeConsoleSettings(7))
    {
        QObject::connect(
            &ConsoleLights::Get(), &ConsoleLights::level_change, &m_context,
            [this](ConsoleLightId id) {
                const std::lock_guard hold(m_mutex);
                m_changes.emplace_back(id, ConsoleLights::Get().get(id));
            },
            Qt::DirectConnection);
    }
    ~FadingLife() override
    {
        Standalone::SetApplicationId(0);
        ConsoleLightFading::End();
    }
    void Start() const
    {
        const std::size_t waits = GetWaits().size();
        Standalone::ConfigurePlatform(m_settings);
        ConsoleLightFading::Begin();
        WaitForWaits(waits + 1);
    }
    /// Lets all fades run to their end.
    static void FinishFades()
    {
        Wake([] { ConsoleLightFading::Get().activate(); });
        while (AwaitWait() != Forever)
            TimeOut();
    }
    std::vector<Change> TakeChanges()
    {
        const std::lock_guard hold(m_mutex);
        return std::exchange(m_changes, {});
    }
    Desk::VirtualWidget& Add(const std::string& model, std::uint16_t serial = 1)
    {
        return m_bus.Add({model, serial, {}});
    }

    Desk::KernelTestbed m_testbed;
    Desk::PhysicalMemory m_memory{m_testbed};
    Desk::WidgetBus m_bus;
    Standalone::PlatformSettings m_settings;
    QObject m_context;

private:
    std::mutex m_mutex;
    std::vector<Change> m_changes;
};

} // namespace

TEST_F(FadingLife, TheStartBringsTheLightsUp)
{
    Fades expected;
    const auto expect = [&expected](ConsoleLightId id, unsigned from, unsigned to,
                                    unsigned duration) {
        ConsoleLights::Get().set(id, Percent(from));
        expected[id] = FadingBench::GetLevels(Percent(from), Percent(to), duration);
    };
    expect(WhiteDeskLight, 10, 100, 3000);
    expect(BlueDeskLight, 20, 0, 6000);
    expect(KeyboardDrawerLight, 30, 30, 100);
    expect(WorkLight, 40, 40, 100);
    expect(CenterBacklight, 50, 50, 100);
    TakeChanges();
    const std::size_t sets = CountSets();
    Start();
    EXPECT_EQ(CountSets() - sets, 2U); // one of them for a thread from before
    FinishFades();
    Fades fades;
    for (const auto& [id, level] : TakeChanges())
        fades[id].push_back(level);
    EXPECT_EQ(fades, expected);
}

TEST_F(FadingLife, TheLevelsReachWingsAndDisplays)
{
    Desk::VirtualWidget& wing = Add("Vex4DeskPlayback");
    Desk::VirtualWidget& programmer = Add("Vex4DeskProgrammer");
    ConsoleLights::Get().set(WorkLight, Percent(40));
    ConsoleLights::Get().set(KeyboardDrawerLight, Percent(30));
    ConsoleLights::Get().set(CenterBacklight, Percent(100));
    Start();
    FinishFades();
    EXPECT_EQ(wing.GetDimmer(4), ByteOf(40));
    EXPECT_EQ(programmer.GetDimmer(4), ByteOf(30));
    EXPECT_EQ(wing.GetDimmer(5), 255);
    EXPECT_EQ(wing.GetDimmer(3), 2); // short of 0
    EXPECT_NE(m_memory.Read(0xFE327AFC), 0U);
}

TEST_F(FadingLife, WingsSleepWithTheScreen)
{
    Desk::VirtualWidget& expansion = Add("ExpansionWing");
    Start();
    ConsoleLightFading::Get().save_screen_activate();
    EXPECT_TRUE(expansion.IsAsleep());
    ConsoleLightFading::Get().save_screen_reset();
    EXPECT_FALSE(expansion.IsAsleep());
}

TEST_F(FadingLife, TheStartIsLogged)
{
    const LogCapture log;
    Start();
    ASSERT_EQ(log.Count("Desk light fading initialized."), 1U);
    for (const auto& line : log.GetLines())
        if (line.text == "Desk light fading initialized.") {
            EXPECT_EQ(line.context, "Hardware/LightFading");
            EXPECT_EQ(line.level, 2U);
            EXPECT_EQ(line.file, "console_light_fading.cpp");
        }
    EXPECT_EQ(Os::Log::Context::Find("Hardware/LightFading")->GetMask(), 30U);
}

TEST_F(FadingLife, TheStartIsNotLoggedWhereNobodyWants)
{
    const LogCapture log("Hardware/LightFading", 29);
    Start();
    EXPECT_EQ(log.Count("Desk light fading initialized."), 0U);
}

TEST_F(FadingLife, ASecondInstanceDoesNothing)
{
    Standalone::SetApplicationId(1);
    Standalone::ConfigurePlatform(m_settings);
    const Desk::VirtualWidget& wing = Add("PlaybackWing");
    const LogCapture log;
    TakeChanges();
    ConsoleLightFading::Begin();
    ConsoleLightFading::End();
    EXPECT_THAT(log.GetTexts(), IsEmpty());
    EXPECT_THAT(TakeChanges(), IsEmpty());
    EXPECT_THAT(GetWaits(), IsEmpty());
    EXPECT_EQ(wing.GetDimmer(1), -1);
}

TEST_F(FadingLife, AfterASecondStartNothingComesTwice)
{
    Start();
    ConsoleLightFading::End();
    Start();
    FinishFades();
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    wing.ClearLog();
    TakeChanges();
    ConsoleLights::Get().set(WingLeds, Percent(50));
    EXPECT_EQ(wing.GetLog().size(), 1U);
    wing.ClearLog();
    ConsoleLightFading::Get().set(WingLeds, Percent(9), Percent(9), 50);
    TakeChanges();
    FinishFades();
    EXPECT_THAT(TakeChanges(), ElementsAre(Pair(WingLeds, Percent(9))));
    EXPECT_EQ(wing.GetLog().size(), 1U);
}

TEST_F(FadingLife, TheEndPutsFourLightsOutAtOnce)
{
    const Desk::VirtualWidget& wing = Add("Vex4DeskPlayback");
    Start();
    EXPECT_EQ(FindThreads("ConsoleLightFad").size(), 1U);
    ConsoleLightFading::Get().set(WingLeds, Percent(50), Percent(100), 6000);
    Wake([] { ConsoleLightFading::Get().activate(); });
    TakeChanges();
    ConsoleLightFading::End();
    EXPECT_THAT(TakeChanges(), ElementsAre(Pair(WhiteDeskLight, 0), Pair(WorkLight, 0),
                                           Pair(BlueDeskLight, 0), Pair(KeyboardDrawerLight, 0)));
    EXPECT_EQ(wing.GetDimmer(3), 0);
    EXPECT_EQ(wing.GetDimmer(4), 0);
    EXPECT_EQ(wing.GetDimmer(5), 0);
    EXPECT_TRUE(FindThreads("ConsoleLightFad").empty());
}

TEST_F(FadingLife, AnEndWithoutAStartPutsThemOutToo)
{
    TakeChanges();
    ConsoleLightFading::End();
    EXPECT_EQ(TakeChanges().size(), 4U);
    ConsoleLightFading::End();
}

TEST_F(FadingLife, AStepOnItsWayDoesNotLightWhatTheEndPutOut)
{
    const Desk::VirtualWidget& wing = Add("Vex4DeskPlayback");
    std::promise<void> isStepping;
    std::promise<void> arePutOut;
    bool isFirst = true;
    const QObject context; // goes before what its slots use
    // Ahead of the way to the levels, so that the step arrives there late.
    QObject::connect(
        &ConsoleLightFading::Get(), &ConsoleLightFading::fade_light, &context,
        [&](ConsoleLightId id) {
            if (id == WorkLight && std::exchange(isFirst, false)) {
                isStepping.set_value();
                arePutOut.get_future().wait();
            }
        },
        Qt::DirectConnection);
    int zeros = 0;
    QObject::connect(
        &ConsoleLights::Get(), &ConsoleLights::level_change, &context,
        [&](ConsoleLightId id, uires16 level) {
            if (id == KeyboardDrawerLight && level == 0 && zeros++ == 0)
                arePutOut.set_value();
        },
        Qt::DirectConnection);
    Standalone::ConfigurePlatform(m_settings);
    ConsoleLights::Get().set(WorkLight, Percent(60));
    ConsoleLightFading::Begin();
    // The first wake may come too early, which is accepted.
    std::future<void> stepping = isStepping.get_future();
    while (stepping.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready)
        ConsoleLightFading::Get().activate();
    TakeChanges();
    ConsoleLightFading::End();
    EXPECT_THAT(TakeChanges(), ElementsAre(Pair(WhiteDeskLight, 0), Pair(WorkLight, 0),
                                           Pair(BlueDeskLight, 0), Pair(KeyboardDrawerLight, 0),
                                           Pair(WorkLight, Percent(60)), Pair(WorkLight, 0)));
    EXPECT_EQ(wing.GetDimmer(4), 0);
}

TEST_F(FadingLife, AStepThatIsBeingShownDoesNotLightWhatTheEndPutOut)
{
    const Desk::VirtualWidget& wing = Add("Vex4DeskPlayback");
    std::promise<void> isShown;
    std::promise<void> goOn;
    bool isFirst = true;
    ConsoleLights::Get().set(WorkLight, Percent(60));
    const QObject context;
    // Stored, and not yet on the wings.
    QObject::connect(
        &ConsoleLights::Get(), &ConsoleLights::level_change, &context,
        [&](ConsoleLightId id) {
            if (id == WorkLight && std::exchange(isFirst, false)) {
                isShown.set_value();
                goOn.get_future().wait();
            }
        },
        Qt::DirectConnection);
    Standalone::ConfigurePlatform(m_settings);
    ConsoleLightFading::Begin();
    std::future<void> shown = isShown.get_future();
    while (shown.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready)
        ConsoleLightFading::Get().activate();
    auto end = std::async(std::launch::async, [] { ConsoleLightFading::End(); });
    EXPECT_EQ(end.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    goOn.set_value();
    end.wait();
    EXPECT_EQ(ConsoleLights::Get().get(WorkLight), 0U);
    EXPECT_EQ(wing.GetDimmer(4), 0);
}

TEST_F(FadingLife, NothingHearsOfTheDrawerUnlessTheApplicationSays)
{
    Desk::VirtualWidget& wing = Add("Vex4DeskPlayback");
    wing.CloseDrawer();
    Start();
    FinishFades();
    WingMapper::Begin();
    const std::size_t sets = CountSets();
    TakeChanges();
    wing.OpenDrawer();
    EXPECT_EQ(CountSets(), sets);
    EXPECT_THAT(TakeChanges(), IsEmpty());
    WingMapper::End();
}

TEST(FadingExit, TheProcessMayEndInTheMiddleOfAFade)
{
    EXPECT_EXIT(
        {
            ConsoleLightFading& fading = ConsoleLightFading::Get();
            fading.init_thread();
            WaitForWaits(1);
            fading.set(WorkLight, 0, Percent(100), 6000);
            Wake([] { ConsoleLightFading::Get().activate(); });
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(FadingExit, TheThreadEndsBeforeTheLightsGo)
{
    EXPECT_EXIT(
        {
            // What is registered before the light outputs are made runs after they are gone.
            ConsoleLightFading::Get();
            std::atexit([] {
                if (!FindThreads("ConsoleLightFad").empty())
                    std::_Exit(1);
            });
            ConsoleLightFading::Begin();
            WaitForWaits(1);
            Wake([] { ConsoleLightFading::Get().activate(); });
            std::exit(FindThreads("ConsoleLightFad").empty() ? 2 : 0);
        },
        testing::ExitedWithCode(0), "");
}

namespace
{

struct Drawer {
    const char* model;
    std::uint16_t serial;
    bool isOpen;
};

struct DrawerCase {
    std::vector<Drawer> wings;
    bool isOpen;
};

class DrawerAtStart : public FadingLife, public testing::WithParamInterface<DrawerCase>
{
};

} // namespace

TEST_P(DrawerAtStart, IsAskedOfTheFirstDeskPlayback)
{
    for (const Drawer& drawer : GetParam().wings) {
        Desk::VirtualWidget& wing = Add(drawer.model, drawer.serial);
        if (drawer.isOpen)
            wing.OpenDrawer();
        else
            wing.CloseDrawer();
    }
    Standalone::ConfigurePlatform(m_settings);
    WingMapper::Begin();
    ConsoleLightFading::Get();
    Standalone::LightSettings settings;
    settings.keyboardDrawer = Percent(12);
    Standalone::SetLightSettings(settings);
    ConsoleLightFading::Get().save_screen_reset();
    EXPECT_EQ(ConsoleLights::Get().get(KeyboardDrawerLight), Percent(GetParam().isOpen ? 12 : 100));
    WingMapper::End();
}

INSTANTIATE_TEST_SUITE_P(
    Wings, DrawerAtStart,
    testing::Values(
        DrawerCase{{}, false}, DrawerCase{{{"Vex4DeskPlayback", 5, true}}, true},
        DrawerCase{{{"Vex4DeskPlayback", 5, false}}, false},
        // The lower key is the first, in whatever order they came.
        DrawerCase{{{"Vex4DeskPlayback", 5, false}, {"Vex4DeskPlayback", 4, true}}, true},
        DrawerCase{{{"Vex4DeskPlayback", 5, true}, {"Vex4DeskPlayback", 4, false}}, false},
        DrawerCase{{{"PlaybackWing", 1, false}, {"Vex4DeskPlayback", 9, true}}, true}));

TEST_F(FadingLife, ADrawerThatIsAttachedLaterIsNotAsked)
{
    Standalone::ConfigurePlatform(m_settings);
    WingMapper::Begin();
    ConsoleLightFading::Get();
    Add("Vex4DeskPlayback").OpenDrawer();
    Standalone::LightSettings settings;
    settings.keyboardDrawer = Percent(12);
    Standalone::SetLightSettings(settings);
    ConsoleLightFading::Get().save_screen_reset();
    EXPECT_EQ(ConsoleLights::Get().get(KeyboardDrawerLight), Percent(100));
    WingMapper::End();
}

TEST_F(FadingLife, TheDrawerIsConnectedByPointersOnly)
{
    EXPECT_FALSE(QObject::connect(
        &WingMapper::Get(), SIGNAL(keyboard_change(Hardware::WidgetKey, int, int)),
        &ConsoleLightFading::Get(), SLOT(keyboard_changed(unsigned long, int, int))));
    Standalone::ConfigurePlatform(m_settings);
    Desk::VirtualWidget& wing = Add("Vex4DeskPlayback");
    wing.CloseDrawer();
    WingMapper::Begin();
    const auto connection = QObject::connect(
        &WingMapper::Get(), &WingMapper::keyboard_change, &ConsoleLightFading::Get(),
        &ConsoleLightFading::keyboard_changed, Qt::DirectConnection);
    const std::size_t sets = CountSets();
    wing.OpenDrawer();
    EXPECT_EQ(CountSets() - sets, 1U);
    QObject::disconnect(connection);
    WingMapper::End();
}

TEST_F(FadingLife, WingsThatComeGoAndFailChangeNothingForTheOthers)
{
    Desk::VirtualWidget& steady = Add("PlaybackWing", 1);
    Desk::VirtualWidget& leaving = Add("Vex4Pixi", 2);
    Desk::VirtualWidget& failing = Add("Vex4Sprig", 3);
    Start();
    FinishFades();
    steady.ClearLog();
    ConsoleLightFading::Get().set(WingLeds, 0, Percent(100), 1000);
    Wake([] { ConsoleLightFading::Get().activate(); });
    for (int step = 1; AwaitWait() != Forever; ++step) {
        if (step == 3)
            leaving.Unplug();
        if (step == 5)
            failing.SetFailing(true);
        if (step == 7)
            Add("ExpansionWing", 4);
        if (step == 9)
            leaving.Plug();
        if (step == 11)
            failing.SetFailing(false);
        TimeOut();
    }
    const std::vector<uires16> levels = FadingBench::GetLevels(0, Percent(100), 1000);
    const std::vector<Standalone::Report::Output> outputs = steady.GetLog();
    ASSERT_EQ(outputs.size(), levels.size());
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const auto* const dimmer = std::get_if<Standalone::Report::SetDimmer>(&outputs[i]);
        ASSERT_NE(dimmer, nullptr);
        EXPECT_EQ(dimmer->level, UDivUIRes16(levels[i], 0x00641000) >> 8U);
    }
    const int last = steady.GetDimmer(1);
    EXPECT_EQ(leaving.GetDimmer(1), last);
    EXPECT_EQ(failing.GetDimmer(1), last);
}

TEST(FadingMetaObject, ListsSignalsAndSlotsInTheirOrder)
{
    const QMetaObject& meta = ConsoleLightFading::staticMetaObject;
    std::vector<std::string> methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods.push_back(
            (meta.method(i).methodType() == QMetaMethod::Signal ? "signal " : "slot ") +
            meta.method(i).methodSignature().toStdString());
    EXPECT_THAT(methods,
                ElementsAre("signal fade_light(ConsoleLightId,uires16)", "signal sleep_wing(bool)",
                            "slot set(ConsoleLightId,uires16,uires16,uint)", "slot reset()",
                            "slot activate()", "slot save_screen_reset()",
                            "slot save_screen_activate()", "slot keyboard_changed(ulong,int,int)"));
}

TEST(FadingMetaObject, TheObjectIsFirstAQObjectThenAMessageHandler)
{
    ConsoleLightFading& fading = ConsoleLightFading::Get();
    EXPECT_EQ(static_cast<void*>(static_cast<QObject*>(&fading)), static_cast<void*>(&fading));
    EXPECT_GE(reinterpret_cast<char*>(static_cast<Gut::MessageHandler*>(&fading)) -
                  reinterpret_cast<char*>(&fading),
              static_cast<long>(sizeof(QObject)));
    EXPECT_EQ(&ConsoleLightFading::Get(), &fading);
}

TEST(FadingMetaObject, SlotsCanBeCalledByName)
{
    const std::size_t sets = CountSets();
    EXPECT_TRUE(QMetaObject::invokeMethod(&ConsoleLightFading::Get(), "activate"));
    EXPECT_EQ(CountSets(), sets + 1);
}
