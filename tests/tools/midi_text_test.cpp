// SPDX-License-Identifier: MIT
#include "common/midi_text.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "hardware/link_control.h"

namespace
{

typedef std::vector<std::uint8_t> Bytes;

TEST(MidiText, DescribesShortMessages)
{
    const struct {
        std::uint32_t message;
        const char* text;
    } table[] = {
        {0x643C90, "note on ch 1 C4 vel 100"},
        {0x003C9F, "note on ch 16 C4 vel 0"},
        {0x403D80, "note off ch 1 C#4 vel 64"},
        {0x000080, "note off ch 1 C-1 vel 0"},
        {0x7F7F91, "note on ch 2 G9 vel 127"},
        {0x2045A2, "key pressure ch 3 A4 32"},
        {0x6407B0, "control ch 1 volume 100"},
        {0x0014B0, "control ch 1 20 0"},
        {0x0005C1, "program ch 2 5"},
        {0x0040D0, "pressure ch 1 64"},
        {0x4000E0, "pitch bend ch 1 0"},
        {0x7F7FE0, "pitch bend ch 1 +8191"},
        {0x0000E0, "pitch bend ch 1 -8192"},
        {0x0025F1, "timecode quarter frame 2 value 5"},
        {0x2010F2, "song position 4112"},
        {0xF3, "song select"},
        {0xF4, "undefined F4"},
        {0xF6, "tune request"},
        {0xF8, "clock"},
        {0xFA, "start"},
        {0xFB, "continue"},
        {0xFC, "stop"},
        {0xFD, "undefined FD"},
        {0xFE, "active sensing"},
        {0xFF, "reset"},
    };
    for (const auto& [message, text] : table)
        EXPECT_EQ(Tools::DescribeShortMessage(message), text);
}

TEST(MidiText, CountsTheBytesOfShortMessages)
{
    EXPECT_EQ(Tools::GetShortMessageLength(0x643C90), 3U);
    EXPECT_EQ(Tools::GetShortMessageLength(0x0005C0), 2U);
    EXPECT_EQ(Tools::GetShortMessageLength(0xF8), 1U);
    EXPECT_EQ(Tools::GetShortMessageLength(0x2010F2), 3U);
}

TEST(MidiText, DescribesShowControl)
{
    Hardware_LinkControl();
    const struct {
        Bytes bytes;
        const char* text;
    } table[] = {
        {{0xF0, 0x7F, 0x7F, 0x02, 0x01, 0x01, '3', 0xF7},
         "show control GO cue 3 [general lighting, all devices]"},
        {{0xF0, 0x7F, 0x01, 0x02, 0x02, 0x01, '1', '2', '.', '5', 0, '1', 0, '7', 0xF7},
         "show control GO cue 12.5 list 1 path 7 [moving lights, device 1]"},
        {{0xF0, 0x7F, 0x70, 0x02, 0x7F, 0x02, 0xF7}, "show control STOP [all types, group 1]"},
        {{0xF0, 0x7F, 0x7F, 0x02, 0x01, 0x04, 0x21, 2, 3, 4, 0, '9', 0xF7},
         "show control TIMED_GO cue 9 in 01:02:03:04 [general lighting, all devices]"},
        {{0xF0, 0x7F, 0x7F, 0x02, 0x01, 0x06, 0x05, 0x00, 0x00, 0x01, 0xF7},
         "show control SET control 5 to 128 [general lighting, all devices]"},
        {{0xF0, 0x7F, 0x7F, 0x02, 0x01, 0x07, 0x11, 0xF7},
         "show control FIRE macro 17 [general lighting, all devices]"},
        {{0xF0, 0x7F, 0x7F, 0x02, 0x10, 0x0B, 0xF7},
         "show control GO_OFF [format 16, all devices]"},
        {{0xF0, 0x7F, 0x7F, 0x02, 0x01, 0x7E, 0xF7},
         "show control command 7E [general lighting, all devices]"},
        // Data that ends too early says nothing, but is no harm.
        {{0xF0, 0x7F, 0x7F, 0x02, 0x01, 0x04, 0x21, 0xF7},
         "show control TIMED_GO [general lighting, all devices]"},
        {{0xF0, 0x7F, 0x7F, 0x02, 0x01, 0x06, 0xF7},
         "show control SET [general lighting, all devices]"},
    };
    for (const auto& [bytes, text] : table)
        EXPECT_EQ(Tools::DescribeSystemExclusive(bytes), text);
}

TEST(MidiText, DescribesMachineControlAndTimecode)
{
    EXPECT_EQ(Tools::DescribeSystemExclusive(Bytes{0xF0, 0x7F, 0x7F, 0x06, 0x02, 0xF7}),
              "machine control PLAY");
    EXPECT_EQ(Tools::DescribeSystemExclusive(Bytes{0xF0, 0x7F, 0x7F, 0x06, 0x55, 0xF7}),
              "machine control 55");
    EXPECT_EQ(
        Tools::DescribeSystemExclusive(Bytes{0xF0, 0x7F, 0x7F, 0x01, 0x01, 0x21, 2, 3, 4, 0xF7}),
        "timecode full frame 01:02:03:04");
    EXPECT_EQ(
        Tools::DescribeSystemExclusive(Bytes{0xF0, 0x7F, 0x7F, 0x01, 0x01, 0x41, 2, 3, 4, 0xF7}),
        "timecode full frame 01:02:03;04");
}

TEST(MidiText, ShowsTheBytesOfAnythingElse)
{
    EXPECT_EQ(Tools::DescribeSystemExclusive(Bytes{0xF0, 0xF7}), "system exclusive 2 bytes F0 F7");
    EXPECT_EQ(Tools::DescribeSystemExclusive(Bytes{0xF0, 0x7F, 0x7F, 0x02, 0x01, 0xF7}),
              "system exclusive 6 bytes F0 7F 7F 02 01 F7");
    Bytes dump(20);
    std::iota(dump.begin(), dump.end(), std::uint8_t(0));
    EXPECT_EQ(Tools::DescribeSystemExclusive(dump),
              "system exclusive 20 bytes 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F ...");
}

} // namespace
