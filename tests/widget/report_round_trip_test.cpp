// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <set>

#include "standalone/widget_report.h"

using namespace Standalone::Report;

namespace
{

constexpr std::int32_t Low = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t High = std::numeric_limits<std::int32_t>::max();

const std::vector<Input>& GetInputs()
{
    static const std::vector<Input> inputs{
        Button{0, 0},
        Button{65535, 255},
        Fader{0, Low},
        Fader{65535, High},
        MotorFader{0, -1},
        MotorFader{65535, High},
        Encoder{0, Low},
        Encoder{65535, High},
        WingTrackball{Low, High},
        WingTrackball{High, Low},
        LedChange{0, 0},
        LedChange{65535, 255},
        KeyboardDrawer{Low, High},
        KeyboardDrawer{0, 1},
        Configuration{Low, 0, {}},
        Configuration{High, 0xFFFFFFFF, {0, 255}},
        Configuration{8, 1, std::vector<std::uint8_t>(65535, 3)},
        TrackballAxis{Low, High},
        TrackballAxis{2, 0},
        BarButton{Low, 0},
        BarButton{High, 255},
        Timecode{0, 0, 0, 0, 0},
        Timecode{255, 254, 253, 252, 251},
    };
    return inputs;
}

const std::vector<Output>& GetOutputs()
{
    static const std::vector<Output> outputs{
        SetLed{0, 0},
        SetLed{65535, 255},
        SetAllLed{255},
        SetDimmer{255, 0},
        SetDimmer{0, 255},
        SetFader{65535, 255},
        SetLcdColor{65535, 0xFFFFFFFF},
        SetLcdColor{0, 0x00FF0000},
        SetLcdBrightness{65535, 255},
        SetAllLcdBrightness{255},
        SetLcdText{0, {}},
        SetLcdText{65535, {0, 0x10FFFF, 0xFFFFFFFF}},
        SetLcdFlash{65535, 1},
        SetHash{0},
        SetHash{0xFFFFFFFF},
        SetSleep{0},
        SetSleep{255},
        Beacon{0},
        Beacon{255},
        Refresh{},
        WriteCells{{}, {}},
        WriteCells{std::vector<std::uint8_t>(256, 255),
                   std::vector<std::uint32_t>(2560, 0xFFFFFFFF)},
        SetLinkLights{0, 1, 2, 255},
        SetLinkLights{255, 2, 1, 0},
    };
    return outputs;
}

TEST(WidgetReportRoundTrip, TheListsHoldEveryKindOfReport)
{
    std::set<std::size_t> inputs, outputs;
    for (const Input& report : GetInputs())
        inputs.insert(report.index());
    for (const Output& report : GetOutputs())
        outputs.insert(report.index());
    EXPECT_EQ(inputs.size(), std::variant_size_v<Input>);
    EXPECT_EQ(outputs.size(), std::variant_size_v<Output>);
}

TEST(WidgetReportRoundTrip, AnInputIsReadAsItWasWritten)
{
    for (const Input& report : GetInputs()) {
        const auto read = DecodeInput(Encode(report));
        ASSERT_TRUE(read) << report.index();
        EXPECT_TRUE(*read == report) << report.index();
    }
}

TEST(WidgetReportRoundTrip, AnOutputIsReadAsItWasWritten)
{
    for (const Output& report : GetOutputs()) {
        const auto read = DecodeOutput(Encode(report));
        ASSERT_TRUE(read) << report.index();
        EXPECT_TRUE(*read == report) << report.index();
    }
}

TEST(WidgetReportRoundTrip, AnInputIsNoOutput)
{
    for (const Input& report : GetInputs())
        EXPECT_FALSE(DecodeOutput(Encode(report))) << report.index();
}

TEST(WidgetReportRoundTrip, AnOutputIsNoInput)
{
    for (const Output& report : GetOutputs())
        EXPECT_FALSE(DecodeInput(Encode(report))) << report.index();
}

TEST(WidgetReportRoundTrip, AShorterReportIsNone)
{
    for (const Input& report : GetInputs()) {
        const Bytes bytes = Encode(report);
        for (std::size_t length = 0; length < std::min<std::size_t>(bytes.size(), 100); ++length)
            EXPECT_FALSE(DecodeInput(std::span(bytes).first(length))) << report.index();
        EXPECT_FALSE(DecodeInput(std::span(bytes).first(bytes.size() - 1))) << report.index();
    }
    for (const Output& report : GetOutputs()) {
        const Bytes bytes = Encode(report);
        for (std::size_t length = 0; length < std::min<std::size_t>(bytes.size(), 100); ++length)
            EXPECT_FALSE(DecodeOutput(std::span(bytes).first(length))) << report.index();
        EXPECT_FALSE(DecodeOutput(std::span(bytes).first(bytes.size() - 1))) << report.index();
    }
}

TEST(WidgetReportRoundTrip, ALongerReportIsNone)
{
    for (const Input& report : GetInputs()) {
        Bytes bytes = Encode(report);
        bytes.push_back(0);
        EXPECT_FALSE(DecodeInput(bytes)) << report.index();
    }
    for (const Output& report : GetOutputs()) {
        Bytes bytes = Encode(report);
        bytes.push_back(0);
        EXPECT_FALSE(DecodeOutput(bytes)) << report.index();
    }
}

} // namespace
