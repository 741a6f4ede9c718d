// SPDX-License-Identifier: MIT

// Backlights through flat-panel controllers on two serial ports.

#include "hardware/zr4_backlight.h"

#include <gmock/gmock.h>

#include "desk/flat_panel.h"
#include "desk/kernel_testbed.h"
#include "os/log.h"
#include "support/log_capture.h"
#include "support/system_calls.h"

namespace
{

using Hardware::Zr4Backlight;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr uires16 Percent = 0x10000;

class Zr4BacklightTest : public testing::Test
{
protected:
    Desk::KernelTestbed m_testbed;
    Desk::SerialPort m_leftPort{m_testbed, "/dev/ttyS0"};
    Desk::SerialPort m_rightPort{m_testbed, "/dev/ttyS1"};
    TestSupport::LogCapture m_log{"Zr4Backlight", 31};
};

} // namespace

TEST_F(Zr4BacklightTest, OpensLeftThenRightAndClosesTheOtherWayRound)
{
    TestSupport::SystemCalls calls("/dev/tty");
    std::vector<std::string> openings;
    int closings = 0;
    {
        Zr4Backlight backlight;
        for (const std::string& call : calls.GetCalls())
            if (call.starts_with("open"))
                openings.push_back(call);
        EXPECT_EQ(m_leftPort.GetSettings().baud, 57600);
        EXPECT_EQ(m_rightPort.GetSettings().baud, 57600);
        calls.Before("close", [&] {
            EXPECT_EQ(m_leftPort.CountOpen(), 1);
            EXPECT_EQ(m_rightPort.CountOpen(), closings == 0 ? 1 : 0);
            ++closings;
        });
    }
    EXPECT_THAT(openings, ElementsAre("open /dev/ttyS0", "open /dev/ttyS1"));
    EXPECT_EQ(closings, 2);
    EXPECT_EQ(m_leftPort.CountOpen() + m_rightPort.CountOpen(), 0);
}

TEST_F(Zr4BacklightTest, SendsEachSideItsLevel)
{
    Desk::FlatPanel left(m_leftPort);
    Desk::FlatPanel right(m_rightPort);
    Zr4Backlight backlight;
    EXPECT_TRUE(backlight.SetLeftBacklight(100 * Percent));
    ASSERT_TRUE(left.WaitForPackets(1));
    EXPECT_EQ(left.GetBacklight(), 255);
    EXPECT_EQ(right.GetBacklight(), -1);
    EXPECT_TRUE(backlight.SetRightBacklight(0));
    ASSERT_TRUE(right.WaitForPackets(1));
    EXPECT_EQ(right.GetBacklight(), 0);
    EXPECT_EQ(left.GetPackets().size(), 1U);
    EXPECT_EQ(right.GetPackets().size(), 1U);
}

TEST_F(Zr4BacklightTest, LevelsAreCutDown)
{
    struct Case {
        uires16 level;
        std::uint8_t value;
    };
    Zr4Backlight backlight;
    for (const auto& [level, value] :
         {Case{0, 0}, Case{1, 0}, Case{1 * Percent, 2}, Case{50 * Percent, 127},
          Case{99 * Percent, 252}, Case{100 * Percent - 1, 254}, Case{100 * Percent, 255}}) {
        const auto sum = static_cast<std::uint8_t>(0x13 + value);
        EXPECT_TRUE(backlight.SetLeftBacklight(level));
        EXPECT_THAT(m_leftPort.ReceiveCount(8), ElementsAre(0xBB, 0, 0x0B, 3, 5, 0, value, sum));
        EXPECT_TRUE(backlight.SetRightBacklight(level));
        EXPECT_THAT(m_rightPort.ReceiveCount(8), ElementsAre(0xBB, 0, 0x0B, 3, 5, 0, value, sum));
    }
    EXPECT_THAT(m_leftPort.Receive(0), IsEmpty());
    EXPECT_THAT(m_rightPort.Receive(0), IsEmpty());
}

TEST_F(Zr4BacklightTest, LogsTheValueInHexadecimal)
{
    Zr4Backlight backlight;
    m_log.Clear();
    backlight.SetLeftBacklight(100 * Percent);
    backlight.SetRightBacklight(4 * Percent);
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Setting backlight to ff", "Setting backlight to a"));
    for (const auto& line : m_log.GetLines()) {
        EXPECT_EQ(line.context, "Zr4Backlight");
        EXPECT_EQ(line.level, 1U);
        EXPECT_EQ(line.file, "zr4_backlight.cpp");
    }
    Os::Log::Context::Find("Zr4Backlight")->SetMask(30);
    backlight.SetLeftBacklight(0);
    EXPECT_EQ(m_log.GetTexts().size(), 2U);
}

TEST_F(Zr4BacklightTest, HasNoCentreAndNoFrequencies)
{
    Zr4Backlight backlight;
    m_log.Clear();
    EXPECT_TRUE(backlight.SetCenterBacklight(100 * Percent));
    EXPECT_TRUE(backlight.SetLeftBacklightFrequency(1));
    EXPECT_TRUE(backlight.SetRightBacklightFrequency(2));
    EXPECT_TRUE(backlight.SetCenterBacklightFrequency(3));
    EXPECT_EQ(backlight.GetLeftBacklightFrequency(), 0U);
    EXPECT_EQ(backlight.GetRightBacklightFrequency(), 0U);
    EXPECT_EQ(backlight.GetCenterBacklightFrequency(), 0U);
    EXPECT_THAT(m_leftPort.Receive(20), IsEmpty());
    EXPECT_THAT(m_rightPort.Receive(20), IsEmpty());
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(Zr4BacklightTest, SucceedsWhateverBecomesOfThePorts)
{
    m_rightPort.Unplug();
    Zr4Backlight backlight;
    EXPECT_TRUE(backlight.SetRightBacklight(100 * Percent));
    EXPECT_TRUE(backlight.SetLeftBacklight(100 * Percent));
    EXPECT_EQ(m_leftPort.ReceiveCount(8).size(), 8U);
    m_leftPort.Unplug();
    EXPECT_TRUE(backlight.SetLeftBacklight(100 * Percent));
}
