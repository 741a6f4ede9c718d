// SPDX-License-Identifier: MIT

// Peers at the far end of a virtual serial line, and the flat panel among them.

#include "desk/serial_peer.h"

#include <gmock/gmock.h>

#include "desk/flat_panel.h"
#include "desk/kernel_testbed.h"
#include "hardware/flatpanel_controller/serial.h"

namespace
{

using Desk::LineSettings;
using Desk::PanelPacket;
using Desk::SerialPeer;
using Hardware::Serial;
using testing::ElementsAre;
using testing::IsEmpty;

typedef std::vector<std::uint8_t> Bytes;

class DeskSerialPeer : public testing::Test
{
protected:
    void Open(int baud, Serial::parity_e parity = Serial::parity_none)
    {
        ASSERT_EQ(m_serial.Open(baud, parity, Serial::flowcontrol_none), 0);
    }
    void Write(Bytes bytes)
    {
        ASSERT_EQ(m_serial.Write(bytes.data(), bytes.size()), static_cast<int>(bytes.size()));
    }
    Bytes Read(std::size_t count)
    {
        Bytes all;
        while (all.size() < count) {
            Bytes piece(count - all.size());
            const int length = m_serial.Read(piece.data(), piece.size());
            if (length <= 0)
                break;
            all.insert(all.end(), piece.begin(), piece.begin() + length);
        }
        return all;
    }

    Desk::KernelTestbed m_testbed;
    Desk::SerialPort m_port{m_testbed, "/dev/ttyS0"};
    Serial m_serial{"/dev/ttyS0"};
};

} // namespace

TEST_F(DeskSerialPeer, TakesDownWhatItHears)
{
    SerialPeer peer(m_port, LineSettings());
    Open(9600);
    Write({1, 2, 3});
    ASSERT_TRUE(peer.WaitForBytes(3));
    EXPECT_THAT(peer.GetHeard(), ElementsAre(1, 2, 3));
    EXPECT_EQ(peer.CountNoise(), 0U);
}

TEST_F(DeskSerialPeer, HearsOnlyNoiseAtOtherSettings)
{
    SerialPeer peer(m_port, LineSettings(), SerialPeer::MakeEcho());
    Open(19200);
    Write({1, 2});
    ASSERT_TRUE(peer.WaitForBytes(2));
    m_serial.Close();
    Open(9600, Serial::parity_even);
    Write({3});
    ASSERT_TRUE(peer.WaitForBytes(3));
    EXPECT_EQ(peer.CountNoise(), 3U);
    EXPECT_THAT(peer.GetHeard(), IsEmpty());
    EXPECT_EQ(Serial::WaitForInput({m_serial.GetDeviceHandle()}, 1000), 0);
}

TEST_F(DeskSerialPeer, EchoesAllBytes)
{
    const SerialPeer peer(m_port, LineSettings(), SerialPeer::MakeEcho());
    Open(9600);
    Write({7, 8, 9});
    EXPECT_THAT(Read(3), ElementsAre(7, 8, 9));
}

TEST_F(DeskSerialPeer, FollowsItsScript)
{
    const SerialPeer peer(m_port, LineSettings(),
                          SerialPeer::MakeScript({{{1, 2}, {10}}, {{3}, {20, 21}}, {{}, {30}}}));
    Open(9600);
    Write({1});
    Write({9, 3, 1});
    Write({2, 5});
    EXPECT_THAT(Read(1), ElementsAre(10));
    Write({3, 1, 2});
    EXPECT_THAT(Read(3), ElementsAre(20, 21, 30));
    Write({1, 2, 3});
    ASSERT_TRUE(peer.WaitForBytes(12));
    EXPECT_EQ(Serial::WaitForInput({m_serial.GetDeviceHandle()}, 1000), 0);
}

TEST_F(DeskSerialPeer, GoesOnOverAPulledPlug)
{
    SerialPeer peer(m_port, LineSettings());
    m_port.Unplug();
    m_port.Plug();
    Open(9600);
    Write({4});
    ASSERT_TRUE(peer.WaitForBytes(1));
    EXPECT_THAT(peer.GetHeard(), ElementsAre(4));
}

TEST_F(DeskSerialPeer, PanelUnderstandsItsOwnSpeedOnly)
{
    std::vector<PanelPacket> taken;
    Desk::FlatPanel panel(m_port, [&taken](const PanelPacket& packet) { taken.push_back(packet); });
    EXPECT_EQ(panel.GetBacklight(), -1);
    Open(9600);
    Write({0xBB, 0, 0x0B, 3, 5, 0, 0x80, 0x93});
    ASSERT_TRUE(panel.WaitForBytes(8));
    EXPECT_EQ(panel.CountNoise(), 8U);
    m_serial.Close();
    Open(57600);
    Write({0xBB, 0, 0x0B, 3, 5, 0, 0x80, 0x94});
    Write({0xBB, 2, 0x0B, 3, 7, 1, 0x02, 0x1A});
    ASSERT_TRUE(panel.WaitForPackets(1));
    EXPECT_EQ(panel.CountRejected(), 1U);
    EXPECT_EQ(panel.GetBacklight(), -1);
    EXPECT_EQ(panel.GetAdjuster(2, 7), 258);
    EXPECT_THAT(panel.GetPackets(),
                ElementsAre(PanelPacket{2, PanelPacket::Command::SetAdjuster, 7, 258}));
    EXPECT_EQ(taken, panel.GetPackets());
    ASSERT_EQ(panel.CountPackets(), taken.size());
    EXPECT_EQ(panel.GetPackets(taken.size() - 1), std::vector{taken.back()});
    EXPECT_TRUE(panel.GetPackets(taken.size()).empty());
    EXPECT_TRUE(panel.GetPackets(taken.size() + 1).empty());
}
