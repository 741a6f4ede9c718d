// SPDX-License-Identifier: MIT
// What the mapper asks of the driver, call by call, on every console model.
#include <gmock/gmock.h>

#include "hardware/wing_mapper.h"
#include "os/log.h"
#include "standalone/fatal_handler.h"
#include "standalone/platform_settings.h"
#include "support/log_capture.h"
#include "support/recorded_calls.h"

using Hardware::WingMapper;
using testing::Contains;
using testing::ElementsAre;

namespace
{

typedef std::vector<std::string> Calls;

Calls operator+(Calls list, const Calls& more)
{
    list.insert(list.end(), more.begin(), more.end());
    return list;
}

// Place 0 is the wings' signaller, 1 the trackball's, 2 the button bar's.

const Calls Connects(const std::string& place)
{
    return {"connect " + place + " widgetAdded wing_add direct",
            "connect " + place + " widgetRemoved wing_remove direct",
            "connect " + place + " widgetRead wing_read direct"};
}

const Calls Wings = {"register 0 KEYSTONE",
                     "register 0 EXTERNAL_PIXI",
                     "register 0 SPRIG",
                     "register 0 PETITE",
                     "register 0 EXTERNAL_PLAYBACKWING",
                     "register 0 EXPANSIONWING",
                     "register 0 PLAYBACKWING",
                     "register 0 PROGRAMMERWING",
                     "list KEYSTONE",
                     "list EXTERNAL_PIXI",
                     "list EXTERNAL_PLAYBACKWING",
                     "list SPRIG",
                     "list PETITE",
                     "list EXPANSIONWING",
                     "list PLAYBACKWING",
                     "list PROGRAMMERWING"};
const Calls Trackball = Calls{"register 1 TBALLD", "list TBALLD"} + Connects("1");
const Calls Bramble = {"register 0 BRAMBLE", "list BRAMBLE"};
const Calls Tarnel = {"register 0 TARNEL", "list TARNEL"};
const Calls Sections = {"register 0 VNEXTPLAYBACKWING", "register 0 VNEXTPROGRAMWING",
                        "list VNEXTPLAYBACKWING", "list VNEXTPROGRAMWING"};
const Calls ButtonBar = Calls{"register 2 VEX4TOUCHD", "list VEX4TOUCHD"} + Connects("2");

const Calls EndOfWings = {
    "unregister 0 KEYSTONE",     "unregister 0 EXTERNAL_PIXI", "unregister 0 EXTERNAL_PLAYBACKWING",
    "unregister 0 SPRIG",        "unregister 0 PETITE",        "unregister 0 EXPANSIONWING",
    "unregister 0 PLAYBACKWING", "unregister 0 PROGRAMMERWING"};

Calls GetSectionCalls(int productType)
{
    switch (productType) {
    case 7:
        return Sections + ButtonBar;
    case 8:
        return Sections;
    case 9:
        return Tarnel;
    case 10:
    case 12:
    case 13:
    case 14:
        return Bramble;
    default:
        return {};
    }
}

/// Not the mirror of the above: 13 and 14 are among the others.
Calls GetEndOfSectionCalls(int productType)
{
    switch (productType) {
    case 9:
        return {"unregister 0 TARNEL"};
    case 10:
    case 12:
        return {"unregister 0 BRAMBLE"};
    case 7:
        return {"unregister 0 VNEXTPLAYBACKWING", "unregister 0 VNEXTPROGRAMWING",
                "unregister 2 VEX4TOUCHD"};
    default:
        return {"unregister 0 VNEXTPLAYBACKWING", "unregister 0 VNEXTPROGRAMWING"};
    }
}

Calls GetLists(const Calls& calls)
{
    Calls lists;
    for (const std::string& call : calls)
        if (call.starts_with("list"))
            lists.push_back(call);
    return lists;
}

void SetPlatform(int productType, bool isConsole)
{
    Standalone::PlatformSettings settings;
    settings.productType = productType;
    settings.isConsole = isConsole;
    Standalone::ConfigurePlatform(settings);
}

Calls TakeCalls()
{
    return std::exchange(TestSupport::GetRecordedCalls().calls, {});
}

void PrintSite(const char* text, unsigned line, const char* file)
{
    std::fprintf(stderr, "[%s][%s][%d]\n", text, file, line > 0);
}

std::string MakeFatalText(const std::string& signaller, const std::string& signal,
                          const std::string& argument, const std::string& slot)
{
    return "[Verify: 'connect( &" + signaller + ", SIGNAL( " + signal +
           "( const Hardware::" + argument + " & ) ), this, SLOT( " + slot +
           "( const Hardware::" + argument + " & ) ), Qt::DirectConnection )' is FALSE]";
}

} // namespace

TEST(WingMapperCalls, BeginRegistersListsAndConnectsByConsoleModel)
{
    for (int productType = 0; productType <= 20; ++productType) {
        for (const bool isConsole : {false, true}) {
            SetPlatform(productType, isConsole);
            TakeCalls();
            WingMapper::Begin();
            Calls expected = Wings;
            if (isConsole)
                expected = expected + GetSectionCalls(productType);
            if (isConsole || productType == 11)
                expected = expected + Trackball;
            // At the end the same classes are listed once more.
            expected = expected + Connects("0") + GetLists(expected);
            EXPECT_EQ(TakeCalls(), expected) << productType << isConsole;
        }
    }
}

TEST(WingMapperCalls, EndUnregistersByAnotherRule)
{
    for (int productType = 0; productType <= 20; ++productType) {
        for (const bool isConsole : {false, true}) {
            SetPlatform(productType, isConsole);
            TakeCalls();
            WingMapper::End();
            Calls expected = EndOfWings;
            if (isConsole)
                expected =
                    expected + GetEndOfSectionCalls(productType) + Calls{"unregister 1 TBALLD"};
            EXPECT_EQ(TakeCalls(), expected) << productType << isConsole;
        }
    }
}

TEST(WingMapperCalls, TheFirstGetIsLoggedOnce)
{
    const TestSupport::LogCapture log;
    WingMapper::Get();
    WingMapper::Get();
    WingMapper::Begin();
    EXPECT_EQ(log.Count("WingMapper initialized."), 1U);
    EXPECT_EQ(log.GetLines().front().text, "WingMapper initialized.");
    EXPECT_EQ(log.GetLines().front().level, Os::Log::Note);
    EXPECT_EQ(log.GetLines().front().file, "wing_mapper.cpp");
    EXPECT_EQ(log.GetLines().front().function,
              "static Hardware::WingMapper& Hardware::WingMapper::Get()");
}

TEST(WingMapperCalls, OneRegistrationIsEnoughForAConnection)
{
    SetPlatform(7, true);
    TestSupport::RecordedCalls& recorded = TestSupport::GetRecordedCalls();
    WingMapper::Begin();
    for (const std::string& only : TakeCalls()) {
        if (!only.starts_with("register"))
            continue;
        recorded.registers = [&](const std::string& call) { return call == only; };
        const TestSupport::LogCapture log;
        WingMapper::Begin();
        EXPECT_THAT(log.GetTexts(), ElementsAre("Connection complete")) << only;
        EXPECT_EQ(log.GetLines().front().level, Os::Log::Note);
    }
}

TEST(WingMapperCalls, NoRegistrationAtAllIsAnError)
{
    TestSupport::GetRecordedCalls().registers = [](const std::string&) { return false; };
    WingMapper::Get();
    const TestSupport::LogCapture log;
    WingMapper::Begin();
    EXPECT_THAT(log.GetTexts(), ElementsAre("Unable to register widgets for callbacks"));
    EXPECT_EQ(log.GetLines().front().level, Os::Log::Error);
    EXPECT_THAT(TakeCalls(), Contains("connect 0 widgetAdded wing_add direct"));
}

TEST(WingMapperCalls, EndIsLogged)
{
    WingMapper::Get();
    const TestSupport::LogCapture log;
    WingMapper::End();
    EXPECT_THAT(log.GetTexts(), ElementsAre("Disconnection complete"));
    EXPECT_EQ(log.GetLines().front().level, Os::Log::Note);
}

TEST(WingMapperCallsDeathTest, AConnectionThatFailsIsFatal)
{
    SetPlatform(7, true);
    Standalone::SetFatalHandler(PrintSite);
    for (const auto& [place, signaller] :
         {std::pair("0", "m_wingSignaller"), std::pair("1", "m_trackBallSignaller"),
          std::pair("2", "m_buttonBarSignaller")}) {
        const Calls calls = Connects(place);
        const std::string texts[] = {
            MakeFatalText(signaller, "widgetAdded", "WidgetMapData", "wing_add"),
            MakeFatalText(signaller, "widgetRemoved", "WidgetMapData", "wing_remove"),
            MakeFatalText(signaller, "widgetRead", "WidgetSignaller::Event", "wing_read")};
        for (std::size_t signal = 0; signal < calls.size(); ++signal) {
            const auto begin = [failing = calls[signal]] {
                TestSupport::GetRecordedCalls().connects = [failing](const std::string& call) {
                    return call != failing;
                };
                WingMapper::Begin();
            };
            EXPECT_DEATH(begin(), testing::HasSubstr(texts[signal] + "[wing_mapper.cpp ("))
                << calls[signal];
        }
    }
}

TEST(WingMapperCalls, ItsSignallersAreItsChildren)
{
    const auto signallers = WingMapper::Get().findChildren<Hardware::WidgetSignaller*>();
    EXPECT_EQ(signallers.size(), 3);
    for (const auto* const signaller : signallers)
        EXPECT_EQ(signaller->parent(), &WingMapper::Get());
}
