// SPDX-License-Identifier: MIT

// What a flat-panel controller makes of its input.

#include "desk/panel_packet.h"

#include <gmock/gmock.h>

namespace
{

using Desk::PanelDecoder;
using Desk::PanelPacket;
using testing::ElementsAre;
using testing::IsEmpty;
using Command = PanelPacket::Command;

std::vector<PanelPacket> Decode(PanelDecoder& decoder, const std::vector<std::uint8_t>& bytes)
{
    std::vector<PanelPacket> packets;
    for (const std::uint8_t byte : bytes)
        for (const PanelPacket& packet : decoder.Take(byte))
            packets.push_back(packet);
    return packets;
}

} // namespace

TEST(PanelDecoder, TakesEveryCommand)
{
    PanelDecoder decoder;
    EXPECT_THAT(Decode(decoder, {0xBB, 0, 0x0B, 3, 5, 0,    0x80, 0x93, //
                                 0xBB, 1, 0,    0, 1,                   //
                                 0xBB, 0, 0x16, 0, 2, 0x18,             //
                                 0xBB, 3, 0x0A, 2, 9, 0,    0x18}),
                ElementsAre(PanelPacket{0, Command::SetAdjuster, 5, 128},
                            PanelPacket{1, Command::Reset, 0, 0},
                            PanelPacket{0, Command::CallAction, 2, 0},
                            PanelPacket{3, Command::ReadAdjuster, 9, 0}));
    EXPECT_EQ(decoder.CountRejected(), 0U);
    EXPECT_EQ(decoder.CountSkipped(), 0U);
}

TEST(PanelDecoder, RejectsAWrongChecksum)
{
    PanelDecoder decoder;
    EXPECT_THAT(Decode(decoder, {0xBB, 0, 0x16, 0, 2, 0x19}), IsEmpty());
    EXPECT_EQ(decoder.CountRejected(), 1U);
    EXPECT_THAT(Decode(decoder, {0xBB, 0, 0x16, 0, 2, 0x18}), testing::SizeIs(1));
}

TEST(PanelDecoder, RejectsUnknownCommandsAndLengths)
{
    for (const std::vector<std::uint8_t>& bytes : {std::vector<std::uint8_t>{0xBB, 0, 0x01, 0, 1},
                                                   {0xBB, 0, 0x00, 1, 0, 1},
                                                   {0xBB, 0, 0x16, 1, 2, 0x19},
                                                   {0xBB, 0, 0x0B, 2, 5, 0, 0x12},
                                                   {0xBB, 0, 0x0A, 3, 5, 0, 0, 0x12}}) {
        PanelDecoder decoder;
        EXPECT_THAT(Decode(decoder, bytes), IsEmpty());
        EXPECT_EQ(decoder.CountRejected(), 1U);
    }
}

TEST(PanelDecoder, SkipsWhatIsBetweenPackets)
{
    PanelDecoder decoder;
    EXPECT_THAT(
        Decode(decoder, {1, 2, 0xBB, 7, 0, 0, 7, 3, 0xBB, 8, 0, 0, 8}),
        ElementsAre(PanelPacket{7, Command::Reset, 0, 0}, PanelPacket{8, Command::Reset, 0, 0}));
    EXPECT_EQ(decoder.CountSkipped(), 3U);
    EXPECT_EQ(decoder.CountRejected(), 0U);
}

TEST(PanelDecoder, FindsAPacketInsideARejectedOne)
{
    PanelDecoder decoder;
    // Half a packet, then two whole ones, of which the first completes the half one wrongly.
    EXPECT_THAT(
        Decode(decoder, {0xBB, 0, 0x0B, 3, 5, 0xBB, 1, 0, 0, 1, 0xBB, 2, 0, 0, 2}),
        ElementsAre(PanelPacket{1, Command::Reset, 0, 0}, PanelPacket{2, Command::Reset, 0, 0}));
    EXPECT_EQ(decoder.CountRejected(), 1U);
}

TEST(PanelDecoder, StartByteInsideAPacketIsAByteLikeAnyOther)
{
    PanelDecoder decoder;
    EXPECT_THAT(Decode(decoder, {0xBB, 0xBB, 0x0B, 3, 0xBB, 0xBB, 0xBB, 0xFA}),
                ElementsAre(PanelPacket{0xBB, Command::SetAdjuster, 0xBB, 0xBBBB}));
}

TEST(PanelDecoder, PacketsAsText)
{
    EXPECT_EQ(Desk::ToText({0, Command::SetAdjuster, 5, 128}), "unit 0: adjuster 5 set to 128");
    EXPECT_EQ(Desk::ToText({1, Command::Reset, 0, 0}), "unit 1: reset");
    EXPECT_EQ(Desk::ToText({2, Command::CallAction, 7, 0}), "unit 2: action 7");
    EXPECT_EQ(Desk::ToText({3, Command::ReadAdjuster, 9, 0}), "unit 3: adjuster 9 asked for");
}
