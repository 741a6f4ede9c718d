// SPDX-License-Identifier: MIT

// Levels on their way to wings and backlights.

#include "hardware/console_light_things.h"

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "desk/kernel_testbed.h"
#include "desk/physical_memory.h"
#include "desk/sensor_chip.h"
#include "desk/virtual_widget.h"
#include "desk/widget_bus.h"
#include "hardware/vex4_backlight.h"
#include "standalone/fatal_handler.h"
#include "standalone/platform_settings.h"
#include "standalone/wing_table.h"
#include "support/log_capture.h"
#include "widget/scripted_transport.h"
#include "widget/widget_factory.h"
#include "widget/widget_manager.h"
#include "widget/wings.h"

namespace
{

using namespace Hardware;
using testing::ElementsAre;
using testing::IsEmpty;

typedef std::vector<std::string> Texts;

/// The classes that may have lights.
const char* const LightModels[] = {"Vex4DeskProgrammer", "Vex4DeskPlayback", "Vex4ExternalPlayback",
                                   "Vex4Tarnel",         "Vex4Bramble",      "Vex4Sprig",
                                   "Vex4Petite",         "Vex4Pixi",         "Vex4Keystone",
                                   "ProgrammerWing",     "PlaybackWing",     "ExpansionWing"};

/// What the driver wrote to a widget, such as "dimmer 1 255".
Texts GetOutputs(const Desk::VirtualWidget& widget)
{
    namespace Report = Standalone::Report;
    Texts texts;
    for (const Report::Output& output : widget.GetLog()) {
        if (const auto* const dimmer = std::get_if<Report::SetDimmer>(&output))
            texts.push_back("dimmer " + std::to_string(dimmer->channel) + " " +
                            std::to_string(dimmer->level));
        else if (const auto* const lcds = std::get_if<Report::SetAllLcdBrightness>(&output))
            texts.push_back("lcds " + std::to_string(lcds->brightness));
        else if (const auto* const sleep = std::get_if<Report::SetSleep>(&output))
            texts.push_back("sleep " + std::to_string(sleep->sleep));
        else
            texts.emplace_back("other");
    }
    return texts;
}

/// Nothing supported, and no console, until told otherwise.
class ConsoleThingsTest : public testing::Test
{
protected:
    void Begin() const
    {
        Standalone::ConfigurePlatform(m_settings);
        ConsoleThings::Get();
    }
    Desk::VirtualWidget& Add(const std::string& model, const std::wstring& path = {})
    {
        return m_bus.Add({model, 1, path});
    }
    void SupportAll()
    {
        m_settings.hasVentLight = m_settings.hasBlueDesklights = m_settings.hasWhiteDesklights =
            m_settings.hasWorklights = true;
    }

    Desk::KernelTestbed m_testbed;
    Desk::PhysicalMemory m_memory{m_testbed};
    Desk::WidgetBus m_bus;
    Standalone::PlatformSettings m_settings;
};

std::uint8_t ByteOf(uires16 value)
{
    return static_cast<std::uint8_t>(value >> 8U & 0xFFU);
}

} // namespace

TEST_F(ConsoleThingsTest, WithoutWingsNothingHappens)
{
    SupportAll();
    Begin();
    for (unsigned id = 3; id < 16; ++id)
        ConsoleThings::Get().change_level(static_cast<ConsoleLightId>(id), 0xFFD7);
    ConsoleThings::Get().wing_sleep(true);
    EXPECT_EQ(m_memory.CountOpened(), 0);
}

TEST_F(ConsoleThingsTest, EveryModelWithLightsGetsItsLevels)
{
    Begin();
    for (const WingModel& model : Standalone::GetWingModels()) {
        if (model.dimmers.empty())
            continue;
        const Desk::VirtualWidget& wing = Add(model.name);
        EXPECT_THAT(GetOutputs(wing), testing::Contains(testing::StartsWith("dimmer 1 ")))
            << model.name;
    }
}

/// Capabilities in every combination: bit 0 vent, 1 blue, 2 work, 3 white.
class ConsoleThingsTable : public ConsoleThingsTest, public testing::WithParamInterface<unsigned>
{
};

TEST_P(ConsoleThingsTable, EveryLightReachesTheWingsThatHaveIt)
{
    const bool vent = (GetParam() & 1U) != 0;
    const bool blue = (GetParam() & 2U) != 0;
    const bool work = (GetParam() & 4U) != 0;
    const bool white = (GetParam() & 8U) != 0;
    m_settings.hasVentLight = vent;
    m_settings.hasBlueDesklights = blue;
    m_settings.hasWorklights = work;
    m_settings.hasWhiteDesklights = white;
    Begin();
    std::vector<Desk::VirtualWidget*> wings;
    for (const char* const model : LightModels)
        wings.push_back(&Add(model));
    for (unsigned id = 0; id <= 15; ++id) {
        for (Desk::VirtualWidget* const wing : wings)
            wing->ClearLog();
        if (id >= 3)
            ConsoleThings::Get().change_level(static_cast<ConsoleLightId>(id), 0xFFFF8300);
        for (const Desk::VirtualWidget* const wing : wings) {
            const std::string model = wing->GetData().model;
            const bool isDeskProgrammer = model == "Vex4DeskProgrammer";
            const bool isNext = model.starts_with("Vex4");
            std::map<unsigned, std::string> expected;
            expected[WingLeds] = "dimmer 1 131";
            if (isNext)
                expected[Lcds] = "lcds 131";
            if (work && isDeskProgrammer)
                expected[KeyboardDrawerLight] = "dimmer 4 131";
            if (vent)
                expected[VentLight] = "dimmer 9 131";
            if (work && !isDeskProgrammer)
                expected[WorkLight] = "dimmer 4 131";
            if (blue)
                expected[BlueDeskLight] = "dimmer 3 131";
            if (white)
                expected[WhiteDeskLight] = "dimmer 5 131";
            if (model == "ProgrammerWing")
                expected[ProgrammerWingLeds] = "dimmer 2 131";
            if (isDeskProgrammer) {
                expected[DeskProgrammerDimmer6] = "dimmer 6 131";
                expected[DeskProgrammerDimmer7] = "dimmer 7 131";
                expected[DeskProgrammerDimmer8] = "dimmer 8 131";
            }
            EXPECT_EQ(GetOutputs(*wing), expected.contains(id) ? Texts{expected[id]} : Texts{})
                << model << " light " << id;
        }
    }
}

TEST_P(ConsoleThingsTable, AttachedWingsGetTheLevelsOfTheMoment)
{
    const bool vent = (GetParam() & 1U) != 0;
    const bool blue = (GetParam() & 2U) != 0;
    const bool work = (GetParam() & 4U) != 0;
    const bool white = (GetParam() & 8U) != 0;
    m_settings.hasVentLight = vent;
    m_settings.hasBlueDesklights = blue;
    m_settings.hasWorklights = work;
    m_settings.hasWhiteDesklights = white;
    Begin();
    ConsoleLights& lights = ConsoleLights::Get();
    for (unsigned id = 0; id < ConsoleLightCount; ++id)
        lights.set(static_cast<ConsoleLightId>(id), (10 + 5 * id) << 16U);
    const auto push = [&lights](const char* dimmer, ConsoleLightId id) {
        return std::string("dimmer ") + dimmer + " " +
               std::to_string(ByteOf(lights.get_scaled(id)));
    };
    for (const char* const model : LightModels) {
        Texts expected;
        if (blue)
            expected.push_back(push("3", BlueDeskLight));
        if (white)
            expected.push_back(push("5", WhiteDeskLight));
        const bool isDeskProgrammer = std::string(model) == "Vex4DeskProgrammer";
        // The desk programmer's channel 4 is the drawer's, which is not pushed.
        if (work && !isDeskProgrammer)
            expected.push_back(push("4", WorkLight));
        if (vent)
            expected.push_back(push("9", VentLight));
        expected.push_back(push("1", WingLeds));
        if (isDeskProgrammer) {
            expected.push_back(push("6", DeskProgrammerDimmer6));
            expected.push_back(push("7", DeskProgrammerDimmer7));
            expected.push_back(push("8", DeskProgrammerDimmer8));
        }
        if (std::string(model) == "ProgrammerWing")
            expected.push_back(push("2", ProgrammerWingLeds));
        EXPECT_EQ(GetOutputs(Add(model)), expected) << model;
    }
}

INSTANTIATE_TEST_SUITE_P(AllCapabilities, ConsoleThingsTable, testing::Range(0U, 16U));

TEST_F(ConsoleThingsTest, WingsThatAreThereAlreadyGetTheirLevelsToo)
{
    const Desk::VirtualWidget& wing = Add("PlaybackWing");
    Begin();
    EXPECT_THAT(GetOutputs(wing), ElementsAre("dimmer 1 0"));
}

TEST_F(ConsoleThingsTest, FullAndDarkReachTheWingAs255And0)
{
    Begin();
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    QObject::connect(&ConsoleLights::Get(), SIGNAL(level_change(ConsoleLightId, uires16)),
                     &ConsoleThings::Get(), SLOT(change_level(ConsoleLightId, uires16)),
                     Qt::DirectConnection);
    wing.ClearLog();
    ConsoleLights::Get().set(WingLeds, 0x00640000);
    ConsoleLights::Get().set(WingLeds, 0);
    EXPECT_THAT(GetOutputs(wing), ElementsAre("dimmer 1 255", "dimmer 1 0"));
}

TEST_F(ConsoleThingsTest, CapabilitiesAreAskedOnce)
{
    Begin();
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    Desk::VirtualWidget& programmer = Add("Vex4DeskProgrammer");
    wing.ClearLog();
    programmer.ClearLog();
    SupportAll();
    m_settings.isConsole = true;
    Standalone::ConfigurePlatform(m_settings);
    for (const ConsoleLightId id :
         {LeftBacklight, KeyboardDrawerLight, VentLight, WorkLight, BlueDeskLight, WhiteDeskLight})
        ConsoleThings::Get().change_level(id, 0x8000);
    EXPECT_THAT(GetOutputs(wing), IsEmpty());
    EXPECT_THAT(GetOutputs(programmer), IsEmpty());
    EXPECT_EQ(m_memory.CountOpened(), 0);
}

TEST_F(ConsoleThingsTest, TwoOfOneModelAreTwo)
{
    Begin();
    Desk::VirtualWidget& first = Add("PlaybackWing", L"a");
    Desk::VirtualWidget& second = Add("PlaybackWing", L"b");
    first.ClearLog();
    second.ClearLog();
    ConsoleThings::Get().change_level(WingLeds, 0x8000);
    EXPECT_THAT(GetOutputs(first), ElementsAre("dimmer 1 128"));
    EXPECT_THAT(GetOutputs(second), ElementsAre("dimmer 1 128"));
    second.Unplug();
    ConsoleThings::Get().change_level(WingLeds, 0x4000);
    EXPECT_THAT(GetOutputs(first), ElementsAre("dimmer 1 128", "dimmer 1 64"));
}

TEST_F(ConsoleThingsTest, TwoModelsAtOnePlaceAreTwo)
{
    Begin();
    Add("PlaybackWing", L"place");
    const auto before =
        *WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMPLAYBACKWING).begin();
    Desk::WidgetBus other; // takes the first one's place
    Desk::VirtualWidget& wing = other.Add({"Vex4Pixi", 1, L"place"});
    ConsoleThings::Get().wing_removed(before);
    wing.ClearLog();
    ConsoleThings::Get().change_level(WingLeds, 0x8000);
    EXPECT_THAT(GetOutputs(wing), ElementsAre("dimmer 1 128"));
}

TEST_F(ConsoleThingsTest, WingsAreServedInTheOrderTheyCame)
{
    Begin();
    Texts order;
    const QObject context;
    std::vector<Desk::VirtualWidget*> wings;
    for (const wchar_t* const path : {L"c", L"a", L"d", L"b"}) {
        Desk::VirtualWidget& wing = Add("PlaybackWing", path);
        wings.push_back(&wing);
        QObject::connect(
            &wing, &Desk::VirtualWidget::dimmerChanged, &context,
            [&order, path] { order.emplace_back(1, static_cast<char>(*path)); },
            Qt::DirectConnection);
    }
    ConsoleThings::Get().change_level(WingLeds, 0x8000);
    EXPECT_THAT(order, ElementsAre("c", "a", "d", "b"));
    wings[1]->Unplug();
    order.clear();
    ConsoleThings::Get().change_level(WingLeds, 0x4000);
    EXPECT_THAT(order, ElementsAre("c", "d", "b"));
    wings[1]->Plug();
    order.clear();
    ConsoleThings::Get().change_level(WingLeds, 0x2000);
    EXPECT_THAT(order, ElementsAre("c", "d", "b", "a"));
}

TEST_F(ConsoleThingsTest, LevelsOutliveTheOutputs)
{
    // Whoever asks for the outputs first; wings that come while the process ends ask for levels.
    const TestSupport::LogCapture log;
    ConsoleThings::Get();
    EXPECT_EQ(log.Count("Console lights init"), 1U);
}

TEST_F(ConsoleThingsTest, OneThatIsToldTwiceIsListedOnce)
{
    Begin();
    Desk::VirtualWidget& wing = Add("PlaybackWing", L"here");
    const auto all = WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMPLAYBACKWING);
    ASSERT_EQ(all.size(), 1U);
    ConsoleThings::Get().wing_added(*all.begin());
    wing.ClearLog();
    ConsoleThings::Get().change_level(WingLeds, 0);
    EXPECT_THAT(GetOutputs(wing), ElementsAre("dimmer 1 0"));
}

TEST_F(ConsoleThingsTest, RemovedWingsAreLeftAlone)
{
    Begin();
    Desk::VirtualWidget& first = Add("PlaybackWing", L"a");
    Desk::VirtualWidget& second = Add("Vex4Pixi", L"b");
    const auto map = *WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMPLAYBACKWING).begin();
    ConsoleThings::Get().wing_removed(map);
    ConsoleThings::Get().wing_removed(map); // not listed any more
    first.ClearLog();
    second.ClearLog();
    ConsoleThings::Get().change_level(WingLeds, 0);
    EXPECT_THAT(GetOutputs(first), IsEmpty());
    EXPECT_THAT(GetOutputs(second), ElementsAre("dimmer 1 0"));
    second.Unplug();
    second.ClearLog();
    ConsoleThings::Get().change_level(WingLeds, 0);
    EXPECT_THAT(GetOutputs(second), IsEmpty());
}

TEST_F(ConsoleThingsTest, OneThatIsGoneIsSkippedAndTheOthersAreServed)
{
    // Told before the list's own slot: the wing is gone and still listed.
    WidgetSignaller early;
    early.RegisterWidgetClass(&GUID_DEVINTERFACE_QRTUMPLAYBACKWING);
    bool wasTold = false;
    QObject::connect(
        &early, &WidgetSignaller::widgetRemoved, &early,
        [&wasTold] {
            wasTold = true;
            ConsoleThings::Get().change_level(WingLeds, 0x8000);
        },
        Qt::DirectConnection);
    Begin();
    Desk::VirtualWidget& gone = Add("PlaybackWing", L"a");
    Desk::VirtualWidget& stays = Add("Vex4Pixi", L"b");
    gone.ClearLog();
    stays.ClearLog();
    gone.Unplug();
    EXPECT_TRUE(wasTold);
    EXPECT_THAT(GetOutputs(gone), IsEmpty());
    EXPECT_THAT(GetOutputs(stays), ElementsAre("dimmer 1 128"));
}

TEST_F(ConsoleThingsTest, OneThatTakesNothingHoldsUpNobody)
{
    Begin();
    Desk::VirtualWidget& stuck = Add("PlaybackWing");
    Desk::VirtualWidget& other = Add("PlaybackWing", L"other");
    stuck.SetFailing(true);
    other.ClearLog();
    ConsoleThings::Get().change_level(WingLeds, 0x8000);
    EXPECT_THAT(GetOutputs(other), ElementsAre("dimmer 1 128"));
}

TEST_F(ConsoleThingsTest, OnlyExpansionWingsSleep)
{
    Begin();
    std::vector<Desk::VirtualWidget*> wings;
    for (const char* const model : LightModels)
        wings.push_back(&Add(model));
    for (const bool sleep : {true, false}) {
        for (Desk::VirtualWidget* const wing : wings)
            wing->ClearLog();
        ConsoleThings::Get().wing_sleep(sleep);
        for (const Desk::VirtualWidget* const wing : wings)
            EXPECT_EQ(GetOutputs(*wing), wing->GetData().model == "ExpansionWing"
                                             ? Texts{sleep ? "sleep 1" : "sleep 0"}
                                             : Texts{});
    }
}

TEST_F(ConsoleThingsTest, BacklightsGetPercentOnAConsole)
{
    m_settings.isConsole = true;
    Begin();
    EXPECT_EQ(m_memory.CountOpened(), 0); // not before the first level
    ConsoleThings::Get().change_level(LeftBacklight, 0x00640000);
    EXPECT_EQ(m_memory.Read(0xFE627AFC), 0xFF01U);
    EXPECT_EQ(m_memory.Read(0xFE127AFC), 0U);
    ConsoleThings::Get().change_level(RightBacklight, 0x00320000);
    EXPECT_EQ(m_memory.Read(0xFE127AFC), 0x7F01U);
    ConsoleThings::Get().change_level(CenterBacklight, 0);
    EXPECT_EQ(m_memory.Read(0xFE327AFC), 0xD801U);
    // Ids that are no backlights do nothing here.
    ConsoleThings::Get().set_level(WingLeds, 0);
    ConsoleThings::Get().set_level(static_cast<ConsoleLightId>(99), 0);
    EXPECT_EQ(m_memory.Read(0xFE627AFC), 0xFF01U);
    EXPECT_EQ(m_memory.CountOpened(), 1);
}

TEST_F(ConsoleThingsTest, BacklightsAreLeftAloneElsewhere)
{
    // The model whose controller would be worked on any computer.
    m_settings.productType = 9;
    const Desk::SensorChip chip(m_testbed);
    const std::string before = chip.GetText();
    Begin();
    for (const ConsoleLightId id : {LeftBacklight, RightBacklight, CenterBacklight})
        ConsoleThings::Get().change_level(id, 0x00320000);
    EXPECT_EQ(chip.GetText(), before);
    EXPECT_EQ(m_memory.CountOpened(), 0);
}

TEST_F(ConsoleThingsTest, TheControllerIsChosenOnce)
{
    m_settings.isConsole = true;
    Begin();
    AbstractBacklight& controller = ConsoleThings::GetBacklight();
    EXPECT_NE(dynamic_cast<Vex4Backlight*>(&controller), nullptr);
    m_settings.productType = 9;
    Standalone::ConfigurePlatform(m_settings);
    EXPECT_EQ(&ConsoleThings::GetBacklight(), &controller);
}

TEST_F(ConsoleThingsTest, BacklightIdsDoNothingToAWing)
{
    SupportAll();
    Begin();
    Desk::VirtualWidget& wing = Add("Vex4DeskProgrammer");
    unsigned long key = 0;
    const auto map =
        *WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING).begin();
    const std::unique_ptr<UmWidget> widget(WidgetFactory::Get().Create(map, key));
    auto& work = dynamic_cast<UmWing&>(*widget);
    wing.ClearLog();
    for (const unsigned id : {0U, 1U, 2U, 14U, 15U, 1000U})
        ConsoleThings::Get().set_level(work, static_cast<ConsoleLightId>(id), 0x8000);
    EXPECT_THAT(GetOutputs(wing), IsEmpty());
}

TEST_F(ConsoleThingsTest, ThatWhichIsNoWingIsFatal)
{
    Begin();
    Add("TrackballWidget");
    const auto map = *WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMTBALLD).begin();
    EXPECT_DEATH(
        {
            Standalone::SetFatalHandler(
                [](const char* text, unsigned line, const char* fileAndDate) {
                    std::fprintf(stderr, "%s|%u|%s|", text, line, fileAndDate);
                });
            ConsoleThings::Get().wing_added(map);
        },
        "Trap: '!pw' is TRUE\\|147\\|console_light_things.cpp \\([A-Z][a-z][a-z] [ 0-9][0-9] "
        "[0-9]{4}\\) \\|");
    EXPECT_DEATH(ConsoleThings::Get().wing_added(WidgetMapData()), "Trap: '!pw' is TRUE");
}

namespace
{

/// A bus with one wing, of which a test sees each level on its way.
class WatchedBus : public TestSupport::ScriptedTransport
{
public:
    std::unique_ptr<Standalone::WidgetConnection> Open(const std::wstring& /*path*/) override
    {
        class Connection : public Standalone::WidgetConnection
        {
        public:
            explicit Connection(WatchedBus& bus) : m_bus(bus) {}
            bool Write(const Standalone::Report::Bytes& bytes) override
            {
                const auto report = Standalone::Report::DecodeOutput(bytes);
                if (!report)
                    return false;
                if (const auto* const dimmer = std::get_if<Standalone::Report::SetDimmer>(&*report))
                    m_bus.Dim(dimmer->channel, dimmer->level);
                return true;
            }

        private:
            WatchedBus& m_bus;
        };
        return std::make_unique<Connection>(*this);
    }
    int GetDimmer(std::uint8_t channel)
    {
        const std::lock_guard hold(m_mutex);
        return m_dimmers.contains(channel) ? m_dimmers[channel] : -1;
    }
    std::function<void(std::uint8_t channel)> beforeDimming;

private:
    void Dim(std::uint8_t channel, std::uint8_t level)
    {
        beforeDimming(channel);
        const std::lock_guard hold(m_mutex);
        m_dimmers[channel] = level;
    }

    std::mutex m_mutex;
    std::map<std::uint8_t, int> m_dimmers;
};

} // namespace

TEST(ConsoleThings, AWingThatComesGetsALevelThatIsSetMeanwhile)
{
    Standalone::PlatformSettings settings;
    settings.hasBlueDesklights = true;
    Standalone::ConfigurePlatform(settings);
    const auto bus = std::make_shared<WatchedBus>();
    std::atomic<int> blue{0};
    std::atomic<int> leds{0};
    // Another thread's level overtakes the one that is on its way to the new wing.
    const auto overtake = [](std::atomic<int>& count, ConsoleLightId id, uires16 level) {
        if (++count == 1)
            std::thread([id, level] { ConsoleLights::Get().set(id, level); }).join();
    };
    bus->beforeDimming = [&](std::uint8_t channel) {
        if (channel == UmWing::DimmerIndex_BlueDeskLight)
            overtake(blue, BlueDeskLight, 0x00140000);
        else if (channel == UmWing::DimmerIndex_Leds)
            overtake(leds, WingLeds, 0x00500000);
    };
    bus->attached = {{&GUID_DEVINTERFACE_QRTUMPLAYBACKWING, L"a", 1}};
    const QMetaObject::Connection connection =
        QObject::connect(&ConsoleLights::Get(), &ConsoleLights::level_change, &ConsoleThings::Get(),
                         &ConsoleThings::change_level, Qt::DirectConnection);
    Standalone::SetWidgetTransport(bus);
    EXPECT_EQ(bus->GetDimmer(UmWing::DimmerIndex_BlueDeskLight),
              ByteOf(ConsoleLights::Get().get_scaled(BlueDeskLight)));
    EXPECT_EQ(ConsoleLights::Get().get(BlueDeskLight), 0x00140000U);
    EXPECT_EQ(bus->GetDimmer(UmWing::DimmerIndex_Leds),
              ByteOf(ConsoleLights::Get().get_scaled(WingLeds)));
    EXPECT_EQ(ConsoleLights::Get().get(WingLeds), 0x00500000U);
    QObject::disconnect(connection);
    Standalone::SetWidgetTransport(nullptr);
}

TEST_F(ConsoleThingsTest, LevelsAndPlugsAtOnceHarmNobody)
{
    SupportAll();
    Begin();
    std::vector<Desk::VirtualWidget*> wings;
    for (const char* const model : LightModels)
        wings.push_back(&Add(model));
    std::atomic<bool> isEnding{false};
    std::vector<std::thread> threads;
    for (unsigned number = 0; number < 2; ++number)
        threads.emplace_back([&isEnding, number] {
            for (unsigned i = number; !isEnding; ++i) {
                ConsoleThings::Get().change_level(static_cast<ConsoleLightId>(3 + i % 11), i << 8U);
                ConsoleThings::Get().wing_sleep(i % 2 == 0);
            }
        });
    for (int round = 0; round < 20; ++round)
        for (Desk::VirtualWidget* const wing : wings) {
            wing->Unplug();
            wing->Plug();
        }
    isEnding = true;
    for (std::thread& thread : threads)
        thread.join();
    for (Desk::VirtualWidget* const wing : wings) {
        wing->ClearLog();
        ConsoleThings::Get().change_level(WingLeds, 0x4000);
        EXPECT_THAT(GetOutputs(*wing), ElementsAre("dimmer 1 64"));
    }
}
