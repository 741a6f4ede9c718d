// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standalone/widget_report.h"

using namespace Standalone::Report;

namespace
{

struct InputCase {
    Input report;
    Bytes bytes;
};
struct OutputCase {
    Output report;
    Bytes bytes;
};

TEST(WidgetReportBytes, InputsAreTheirCodeAndTheirFieldsLeastByteFirst)
{
    const InputCase cases[] = {
        {Button{0x1234, 1}, {0x01, 0x34, 0x12, 0x01}},
        {Fader{2, -2}, {0x02, 0x02, 0x00, 0xFE, 0xFF, 0xFF, 0xFF}},
        {MotorFader{3, 0x01020304}, {0x03, 0x03, 0x00, 0x04, 0x03, 0x02, 0x01}},
        {Encoder{1, -1}, {0x04, 0x01, 0x00, 0xFF, 0xFF, 0xFF, 0xFF}},
        {WingTrackball{1, -1}, {0x05, 0x01, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF}},
        {LedChange{0x0102, 3}, {0x06, 0x02, 0x01, 0x03}},
        {KeyboardDrawer{0, 1}, {0x07, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00}},
        {Configuration{8, 0x01020304, {5, 6}},
         {0x08, 0x08, 0x00, 0x00, 0x00, 0x04, 0x03, 0x02, 0x01, 0x02, 0x00, 0x05, 0x06}},
        {TrackballAxis{2, 256}, {0x09, 0x02, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00}},
        {BarButton{7, 1}, {0x0A, 0x07, 0x00, 0x00, 0x00, 0x01}},
        {Timecode{23, 59, 58, 24, 1}, {0x0B, 0x17, 0x3B, 0x3A, 0x18, 0x01}},
    };
    for (const InputCase& c : cases)
        EXPECT_EQ(Encode(c.report), c.bytes) << c.report.index();
}

TEST(WidgetReportBytes, OutputsAreTheirCodeAndTheirFieldsLeastByteFirst)
{
    const OutputCase cases[] = {
        {SetLed{0x0102, 2}, {0x81, 0x02, 0x01, 0x02}},
        {SetAllLed{3}, {0x82, 0x03}},
        {SetDimmer{9, 255}, {0x83, 0x09, 0xFF}},
        {SetFader{4, 128}, {0x84, 0x04, 0x00, 0x80}},
        {SetLcdColor{0x0102, 0x00AABBCC}, {0x85, 0x02, 0x01, 0xCC, 0xBB, 0xAA, 0x00}},
        {SetLcdBrightness{1, 2}, {0x86, 0x01, 0x00, 0x02}},
        {SetAllLcdBrightness{200}, {0x87, 0xC8}},
        {SetLcdText{1, {U'A', 0x1F600}},
         {0x88, 0x01, 0x00, 0x02, 0x00, 0x41, 0x00, 0x00, 0x00, 0x00, 0xF6, 0x01, 0x00}},
        {SetLcdFlash{1, 1}, {0x89, 0x01, 0x00, 0x01}},
        {SetHash{0xDEADBEEF}, {0x8A, 0xEF, 0xBE, 0xAD, 0xDE}},
        {SetSleep{1}, {0x8B, 0x01}},
        {Beacon{3}, {0x8C, 0x03}},
        {Refresh{}, {0x8D}},
        {WriteCells{{1}, {2}}, {0x8E, 0x01, 0x00, 0x01, 0x01, 0x00, 0x02, 0x00, 0x00, 0x00}},
        {SetLinkLights{1, 0, 1, 0}, {0x8F, 0x01, 0x00, 0x01, 0x00}},
    };
    for (const OutputCase& c : cases)
        EXPECT_EQ(Encode(c.report), c.bytes) << c.report.index();
}

TEST(WidgetReportBytes, NoBytesAreNoReport)
{
    EXPECT_FALSE(DecodeInput({}));
    EXPECT_FALSE(DecodeOutput({}));
}

TEST(WidgetReportBytes, UnknownCodesAreNoInput)
{
    for (unsigned code = 0; code < 256; ++code) {
        if (code >= 0x01 && code <= 0x0B)
            continue;
        for (std::size_t length = 1; length < 40; ++length) {
            Bytes bytes(length);
            bytes.front() = static_cast<std::uint8_t>(code);
            EXPECT_FALSE(DecodeInput(bytes)) << code << " " << length;
        }
    }
}

TEST(WidgetReportBytes, UnknownCodesAreNoOutput)
{
    for (unsigned code = 0; code < 256; ++code) {
        if (code >= 0x81 && code <= 0x8F)
            continue;
        for (std::size_t length = 1; length < 40; ++length) {
            Bytes bytes(length);
            bytes.front() = static_cast<std::uint8_t>(code);
            EXPECT_FALSE(DecodeOutput(bytes)) << code << " " << length;
        }
    }
}

TEST(WidgetReportBytes, AListThatEndsBeforeItsLengthIsNoReport)
{
    EXPECT_FALSE(DecodeInput(Bytes{0x08, 8, 0, 0, 0, 1, 0, 0, 0, 0xFF, 0xFF, 1, 2, 3}));
    EXPECT_FALSE(DecodeOutput(Bytes{0x88, 1, 0, 1, 0, 0x41, 0, 0}));
    EXPECT_FALSE(DecodeOutput(Bytes{0x8E, 0, 0, 1, 0}));
}

TEST(WidgetReportBytes, AListIsCutAtTheLengthThatCanBeTold)
{
    constexpr std::size_t Longest = 65535;
    const auto report =
        DecodeInput(Encode(Input(Configuration{8, 1, std::vector<std::uint8_t>(70000, 7)})));
    ASSERT_TRUE(report);
    EXPECT_EQ(std::get<Configuration>(*report).surfaces, std::vector<std::uint8_t>(Longest, 7));

    std::vector<std::uint32_t> text(Longest + 1, U'x');
    text[Longest - 1] = U'y';
    const auto cut = DecodeOutput(Encode(Output(SetLcdText{1, text})));
    text.pop_back();
    ASSERT_TRUE(cut);
    EXPECT_EQ(std::get<SetLcdText>(*cut).text, text);
}

TEST(WidgetReportBytes, ACutListDoesNotSpoilTheOneBehindIt)
{
    const std::vector<std::uint32_t> cells{1, 2, 3};
    const auto report =
        DecodeOutput(Encode(Output(WriteCells{std::vector<std::uint8_t>(65536, 9), cells})));
    ASSERT_TRUE(report);
    EXPECT_EQ(std::get<WriteCells>(*report).surfaces.size(), 65535u);
    EXPECT_EQ(std::get<WriteCells>(*report).cells, cells);
}

} // namespace
