// SPDX-License-Identifier: MIT

// What the lights ask of the widget driver, call by call.

#include <gmock/gmock.h>

#include "hardware/console_light_things.h"
#include "standalone/fatal_handler.h"
#include "support/recorded_calls.h"

using Hardware::ConsoleThings;
using testing::ElementsAre;
using TestSupport::GetRecordedCalls;

TEST(ConsoleThingsCalls, ConnectsThenRegistersEveryClassInOrderOnce)
{
    ConsoleThings::Get();
    ConsoleThings::Get();
    EXPECT_THAT(GetRecordedCalls().calls,
                ElementsAre("connect alone widgetAdded wing_added direct",
                            "connect alone widgetRemoved wing_removed direct",
                            "register alone VNEXTPROGRAMWING", "register alone VNEXTPLAYBACKWING",
                            "register alone EXTERNAL_PLAYBACKWING", "register alone TARNEL",
                            "register alone BRAMBLE", "register alone SPRIG",
                            "register alone PETITE", "register alone EXTERNAL_PIXI",
                            "register alone KEYSTONE", "register alone PROGRAMMERWING",
                            "register alone PLAYBACKWING", "register alone EXPANSIONWING"));
}

TEST(ConsoleThingsCalls, AFailedConnectionIsFatal)
{
    for (const std::string& member : {std::string("widgetAdded"), std::string("widgetRemoved")}) {
        const std::string slot = member == "widgetAdded" ? "wing_added" : "wing_removed";
        GetRecordedCalls().connects = [&member](const std::string& call) {
            return call.find(member) == std::string::npos;
        };
        EXPECT_DEATH(
            {
                Standalone::SetFatalHandler(
                    [](const char* text, unsigned, const char* fileAndDate) {
                        std::fprintf(stderr, "[%s][%.24s", text, fileAndDate);
                    });
                ConsoleThings::Get();
            },
            testing::HasSubstr("[Verify: 'connect( &m_signaller, SIGNAL(" + member +
                               "( const Hardware::WidgetMapData & )), this, SLOT(" + slot +
                               "( const Hardware::WidgetMapData & )), Qt::DirectConnection )' is "
                               "FALSE][console_light_things.cpp"));
    }
}
