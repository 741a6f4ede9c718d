// SPDX-License-Identifier: MIT

// Commands to a flat-panel controller, byte by byte and as the controller understands them.

#include "hardware/flatpanel_controller/kontron.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "desk/flat_panel.h"
#include "flatpanel_controller/serial_bench.h"
#include "support/system_calls.h"

namespace
{

using Desk::LineSettings;
using Desk::PanelPacket;
using Hardware::Kontron;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

typedef std::vector<std::uint8_t> Bytes;

class KontronTest : public testing::Test
{
protected:
    Desk::KernelTestbed m_testbed;
    Desk::SerialPort m_port{m_testbed, "/dev/ttyS0"};
    TestSupport::LogCapture m_log{"Hardware/Kontron", 31};
};

static_assert(std::has_virtual_destructor_v<Kontron> && !std::is_copy_constructible_v<Kontron>);
static_assert(sizeof(Kontron) == 2 * sizeof(void*)); // the virtual table and the port

/// Units, codes and values at the edges of a byte.
const unsigned Edges[] = {0, 1, 5, 0x7F, 0x80, 0xBB, 0xF0, 0xFF};

std::uint8_t Sum(std::initializer_list<unsigned> bytes)
{
    unsigned sum = 0;
    for (const unsigned byte : bytes)
        sum += byte;
    return static_cast<std::uint8_t>(sum % 256);
}

} // namespace

TEST_F(KontronTest, OpensTheFirstPortByItself)
{
    Kontron panel;
    LineSettings settings;
    settings.baud = 57600;
    settings.raw = true;
    settings.ignoresModem = true;
    EXPECT_EQ(m_port.CountOpen(), 1);
    EXPECT_EQ(m_port.GetSettings(), settings);
}

TEST_F(KontronTest, OpensThePortItIsGiven)
{
    Desk::SerialPort other(m_testbed, "/dev/ttyS1");
    {
        Kontron panel("/dev/ttyS1", 9600);
        EXPECT_EQ(m_port.CountOpen(), 0);
        EXPECT_EQ(other.CountOpen(), 1);
        EXPECT_EQ(other.GetSettings().baud, 9600);
        EXPECT_EQ(other.GetSettings().parity, LineSettings::Parity::None);
        EXPECT_FALSE(other.GetSettings().xonXoff);
    }
    EXPECT_EQ(other.CountOpen(), 0);
    EXPECT_EQ(other.GetSettings(), LineSettings());
}

TEST_F(KontronTest, KnownPackets)
{
    Kontron panel;
    EXPECT_EQ(panel.SetBacklightLevel(128), 0);
    EXPECT_THAT(m_port.ReceiveCount(8), ElementsAre(0xBB, 0, 0x0B, 3, 5, 0, 0x80, 0x93));
    EXPECT_EQ(panel.SetBacklightLevel(300), 0);
    EXPECT_THAT(m_port.ReceiveCount(8), ElementsAre(0xBB, 0, 0x0B, 3, 5, 0, 0x2C, 0x3F));
    panel.Reset(1);
    EXPECT_THAT(m_port.ReceiveCount(5), ElementsAre(0xBB, 1, 0, 0, 1));
    EXPECT_EQ(panel.CallAction(0, 2), 0);
    EXPECT_THAT(m_port.ReceiveCount(6), ElementsAre(0xBB, 0, 0x16, 0, 2, 0x18));
    EXPECT_EQ(panel.SetAdjuster(0xF0, 5, 0xF0), 0);
    EXPECT_THAT(m_port.ReceiveCount(8), ElementsAre(0xBB, 0xF0, 0x0B, 3, 5, 0, 0xF0, 0xF3));
}

TEST_F(KontronTest, EveryPacketAtTheEdges)
{
    Kontron panel;
    for (const unsigned u : Edges) {
        const auto unit = static_cast<std::uint8_t>(u);
        panel.Reset(unit);
        EXPECT_EQ(m_port.ReceiveCount(5), (Bytes{0xBB, unit, 0, 0, Sum({u})}));
        for (const unsigned c : Edges) {
            const auto code = static_cast<std::uint8_t>(c);
            EXPECT_EQ(panel.CallAction(unit, code), 0);
            EXPECT_EQ(m_port.ReceiveCount(6),
                      (Bytes{0xBB, unit, 0x16, 0, code, Sum({u, 0x16, c})}));
            for (const unsigned value : {0U, 1U, 0xFFU, 0x100U, 0x1BBU, 0xFFFFFFFFU}) {
                EXPECT_EQ(panel.ReadAdjuster(unit, code, value), 0);
                EXPECT_EQ(m_port.ReceiveCount(7),
                          (Bytes{0xBB, unit, 0x0A, 2, code, 0, Sum({u, 0x0C, c})}));
                const unsigned low = value % 256;
                EXPECT_EQ(panel.SetAdjuster(unit, code, value), 0);
                EXPECT_EQ(m_port.ReceiveCount(8),
                          (Bytes{0xBB, unit, 0x0B, 3, code, 0, static_cast<std::uint8_t>(low),
                                 Sum({u, 0x0E, c, low})}));
            }
        }
    }
    EXPECT_THAT(m_port.Receive(0), IsEmpty());
}

TEST_F(KontronTest, ControllerUnderstandsEveryCommand)
{
    Desk::FlatPanel controller(m_port);
    Kontron panel;
    std::vector<PanelPacket> expected;
    for (const unsigned u : Edges)
        for (const unsigned c : Edges) {
            const auto unit = static_cast<std::uint8_t>(u);
            const auto code = static_cast<std::uint8_t>(c);
            panel.Reset(unit);
            panel.CallAction(unit, code);
            panel.ReadAdjuster(unit, code, 3);
            panel.SetAdjuster(unit, code, 0x100 + c);
            expected.push_back({unit, PanelPacket::Command::Reset, 0, 0});
            expected.push_back({unit, PanelPacket::Command::CallAction, code, 0});
            expected.push_back({unit, PanelPacket::Command::ReadAdjuster, code, 0});
            expected.push_back({unit, PanelPacket::Command::SetAdjuster, code, code});
            ASSERT_TRUE(controller.WaitForPackets(expected.size()));
        }
    EXPECT_EQ(controller.GetPackets(), expected);
    EXPECT_EQ(controller.CountRejected(), 0U);
    EXPECT_EQ(controller.CountNoise(), 0U);
    panel.SetBacklightLevel(200);
    ASSERT_TRUE(controller.WaitForPackets(expected.size() + 1));
    EXPECT_EQ(controller.GetBacklight(), 200);
}

TEST_F(KontronTest, AskingForTheLevelSendsNothing)
{
    Kontron panel;
    EXPECT_EQ(panel.GetBacklightLevel(), 0U);
    EXPECT_THAT(m_port.Receive(20), IsEmpty());
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(KontronTest, ReadsNoAnswer)
{
    Kontron panel;
    TestSupport::SystemCalls calls("/dev/tty");
    ASSERT_TRUE(m_port.Send(Bytes{1, 2, 3}));
    EXPECT_EQ(panel.ReadAdjuster(0, 5, 0), 0);
    EXPECT_EQ(calls.Count("read"), 0);
}

TEST_F(KontronTest, SendsAPacketByOneWriteAndNeverTwice)
{
    TestSupport::SystemCalls calls("/dev/tty");
    Kontron panel;
    calls.Clear();
    panel.SetBacklightLevel(1);
    panel.CallAction(1, 2);
    calls.Fail("write", {EIO});
    panel.Reset(3);
    panel.ReadAdjuster(4, 5, 0);
    EXPECT_THAT(calls.GetCalls(), ElementsAre("write 8", "write 6", "write 5", "write 7"));
}

TEST_F(KontronTest, LogsThePacketBeforeItIsSent)
{
    TestSupport::SystemCalls calls("/dev/tty");
    Kontron panel;
    std::vector<std::string> before;
    calls.Before("write", [&] { before = m_log.GetTexts(); });
    panel.SetBacklightLevel(128);
    EXPECT_THAT(before, ElementsAre("Packet BB 00 0B 03 05 00 80 93 "));
    ASSERT_EQ(m_log.GetLines().size(), 1U);
    EXPECT_EQ(m_log.GetLines()[0].context, "Hardware/Kontron");
    EXPECT_EQ(m_log.GetLines()[0].level, 1U);
    EXPECT_EQ(m_log.GetLines()[0].file, "flatpanel_controller/kontron.cpp");
}

TEST_F(KontronTest, LogsNothingUnlessWidened)
{
    Kontron panel;
    Os::Log::Context::Find("Hardware/Kontron")->SetMask(30);
    panel.SetBacklightLevel(128);
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(KontronTest, SaysNothingOfAFailureButThroughThePort)
{
    m_port.Unplug();
    TestSupport::LogCapture serialLog("Hardware/Serial", 31);
    Kontron panel;
    EXPECT_EQ(panel.SetAdjuster(0, 5, 1), 0);
    EXPECT_EQ(panel.CallAction(0, 1), 0);
    EXPECT_EQ(panel.ReadAdjuster(0, 1, 0), 0);
    EXPECT_EQ(panel.SetBacklightLevel(0), 0);
    panel.Reset(0);
    EXPECT_EQ(serialLog.Count("Failed to write to /dev/ttyS0 error Invalid argument"), 5U);
}

TEST_F(KontronTest, LineThatIsPulledOutFailsEachWrite)
{
    Kontron panel;
    m_port.Unplug();
    TestSupport::LogCapture serialLog("Hardware/Serial", 31);
    EXPECT_EQ(panel.SetBacklightLevel(7), 0);
    EXPECT_EQ(serialLog.Count("Failed to write to /dev/ttyS0 error Input/output error"), 1U);
}

TEST_F(KontronTest, SpeedThatThereIsNotLeavesThePortClosed)
{
    Kontron panel("/dev/ttyS0", 600);
    EXPECT_EQ(m_port.CountOpen(), 0);
    EXPECT_EQ(panel.SetBacklightLevel(7), 0);
    EXPECT_THAT(m_port.Receive(20), IsEmpty());
}

TEST_F(KontronTest, PacketsAsText)
{
    const unsigned char packet[] = {0xBB, 0x00, 0x0F, 0xA1};
    EXPECT_EQ(Kontron::PacketToString(packet, 4), "BB 00 0F A1 ");
    EXPECT_EQ(Kontron::PacketToString(packet, 1), "BB ");
    EXPECT_EQ(Kontron::PacketToString(packet, 0), "");
}
