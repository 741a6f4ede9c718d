// SPDX-License-Identifier: MIT
// What the LTC device asks of the driver, call by call, and where it ends the program.
#include <gmock/gmock.h>

#include "hardware/timecode/device_ltc.h"
#include "os/log.h"
#include "standalone/fatal_handler.h"
#include "support/log_capture.h"
#include "support/recorded_calls.h"
#include "widget/ltc_widget.h"

using Hardware::Timecode::DeviceLtc;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using TestSupport::GetRecordedCalls;

namespace
{

/// Knows whether it was disabled through its virtual operation.
class Observed : public DeviceLtc
{
public:
    using DeviceLtc::DeviceLtc;
    bool Disable() override
    {
        ++disabled;
        wasEnabled = IsEnabled();
        return DeviceLtc::Disable();
    }
    int disabled = 0;
    bool wasEnabled = false;
};

std::vector<std::string> TakeCalls()
{
    return std::exchange(GetRecordedCalls().calls, {});
}

void PrintSite(const char* text, unsigned line, const char* file)
{
    std::fprintf(stderr, "[%s][%u][%s]\n", text, line, file);
}

std::string MakeVerify(const std::string& signal, const std::string& slot,
                       const std::string& argument, int line)
{
    return "[Verify: 'connect( &m_signaller, SIGNAL( " + signal + "( const Hardware::" + argument +
           " & ) ), this, SLOT( " + slot + "( const Hardware::" + argument +
           " & ) ), Qt::DirectConnection )' is FALSE][" + std::to_string(line) +
           "][timecode/timecode_ltc.cpp (";
}

} // namespace

TEST(TimecodeLtcCalls, EnableConnectsAndThenRegisters)
{
    DeviceLtc device(nullptr);
    EXPECT_TRUE(device.Enable());
    EXPECT_THAT(TakeCalls(),
                ElementsAre("connect 0 widgetAdded processAdd direct",
                            "connect 0 widgetRemoved processRemove direct",
                            "connect 0 widgetRead processTimecode direct", "register 0 LTCD"));
}

TEST(TimecodeLtcCalls, EnableLogsAndIsInForceBeforeItConnects)
{
    DeviceLtc device(nullptr);
    const TestSupport::LogCapture log("Hardware/Timecode/Ltc", Os::Log::AllLevels);
    bool wasEnabled = false;
    std::size_t lines = 0;
    GetRecordedCalls().connects = [&](const std::string&) {
        wasEnabled = device.IsEnabled();
        lines = log.GetTexts().size();
        return true;
    };
    device.Enable();
    EXPECT_TRUE(wasEnabled);
    EXPECT_EQ(lines, 1U);
}

TEST(TimecodeLtcCalls, ARefusedRegistrationDisablesThroughTheVirtualOperation)
{
    GetRecordedCalls().registers = [](const std::string& call) {
        return !call.starts_with("register");
    };
    Observed device(nullptr);
    EXPECT_FALSE(device.Enable());
    EXPECT_EQ(device.disabled, 1);
    EXPECT_TRUE(device.wasEnabled);
    EXPECT_FALSE(device.IsEnabled());
    EXPECT_EQ(TakeCalls().back(), "unregister 0 LTCD");
    EXPECT_FALSE(device.findChild<Hardware::WidgetSignaller*>()->disconnect(&device));
}

TEST(TimecodeLtcCalls, DisableReturnsWhatTheUnregisteringReturned)
{
    DeviceLtc device(nullptr);
    device.Enable();
    GetRecordedCalls().registers = [](const std::string&) { return false; };
    EXPECT_FALSE(device.Disable());
    EXPECT_FALSE(device.IsEnabled());
    GetRecordedCalls().registers = [](const std::string&) { return true; };
    device.Enable();
    EXPECT_TRUE(device.Disable());
    EXPECT_FALSE(device.findChild<Hardware::WidgetSignaller*>()->disconnect(&device));
}

TEST(TimecodeLtcCalls, DisableUnregistersWhenAllElseIsDone)
{
    DeviceLtc device(nullptr);
    device.Enable();
    bool wasEnabled = true;
    bool wasConnected = true;
    GetRecordedCalls().registers = [&](const std::string&) {
        wasEnabled = device.IsEnabled();
        wasConnected = device.findChild<Hardware::WidgetSignaller*>()->disconnect(&device);
        return true;
    };
    EXPECT_TRUE(device.Disable());
    EXPECT_FALSE(wasEnabled);
    EXPECT_FALSE(wasConnected);
}

TEST(TimecodeLtcCalls, ADisabledDeviceUnregistersNothing)
{
    DeviceLtc device(nullptr);
    device.Disable();
    EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST(TimecodeLtcCallsDeathTest, AConnectionThatFailsIsFatalAtItsSite)
{
    Standalone::SetFatalHandler(PrintSite);
    const std::pair<std::string, std::string> sites[] = {
        {"connect 0 widgetAdded processAdd direct",
         MakeVerify("widgetAdded", "processAdd", "WidgetMapData", 58)},
        {"connect 0 widgetRemoved processRemove direct",
         MakeVerify("widgetRemoved", "processRemove", "WidgetMapData", 64)},
        {"connect 0 widgetRead processTimecode direct",
         MakeVerify("widgetRead", "processTimecode", "WidgetSignaller::Event", 70)}};
    for (const auto& [failing, text] : sites) {
        const auto enable = [&call = failing] {
            GetRecordedCalls().connects = [&call](const std::string& made) { return made != call; };
            DeviceLtc(nullptr).Enable();
        };
        EXPECT_DEATH(enable(), HasSubstr(text));
    }
}

TEST(TimecodeLtcCallsDeathTest, ABoardWithoutIndexIsFatalAtItsSite)
{
    Standalone::SetFatalHandler(PrintSite);
    DeviceLtc device(nullptr);
    const Hardware::LtcWidget::TimecodeEvent timecode(1, 2, 3, 4, 0);
    const std::string trap = "[Trap: 'index == -1' is TRUE]";
    const std::string file = "[timecode/timecode_ltc.cpp (";
    EXPECT_DEATH(device.processAdd({}), HasSubstr(trap + "[143]" + file));
    EXPECT_DEATH(device.processRemove({}), HasSubstr(trap + "[154]" + file));
    EXPECT_DEATH(device.processTimecode({{}, &timecode}), HasSubstr(trap + "[180]" + file));
}
