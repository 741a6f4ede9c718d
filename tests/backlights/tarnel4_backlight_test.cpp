// SPDX-License-Identifier: MIT

// The backlight behind the hardware-monitor chip.

#include "hardware/tarnel4_backlight.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include <cerrno>

#include "desk/kernel_testbed.h"
#include "desk/sensor_chip.h"
#include "os/log.h"
#include "standalone/log_masks.h"
#include "support/log_capture.h"

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr uires16 Percent = 0x10000;

class Tarnel4BacklightTest : public testing::Test
{
protected:
    Tarnel4BacklightTest() { Standalone::SetLogMask("Tarnel4Backlight/Set", 31); }

    Desk::KernelTestbed m_testbed;
    Desk::SensorChip m_chip{m_testbed};
    TestSupport::LogCapture m_log{"Tarnel4Backlight", 31};
    Tarnel4Backlight m_backlight;
};

static_assert(sizeof(Tarnel4Backlight) == sizeof(void*)); // no fields

} // namespace

TEST_F(Tarnel4BacklightTest, WritesTheInvertedDutyCycleInThreePlaces)
{
    struct Case {
        uires16 level;
        const char* text;
    };
    for (const auto& [level, text] :
         {Case{100 * Percent, "  0\n"}, Case{0, "255\n"}, Case{1 * Percent, "252\n"},
          Case{50 * Percent, "127\n"}, Case{99 * Percent, "  2\n"}, Case{61 * Percent, " 99\n"},
          Case{1, "254\n"}}) {
        m_chip.SetStrict(false); // which shows what was written
        m_chip.SetText("");
        EXPECT_TRUE(m_backlight.SetRightBacklight(level));
        EXPECT_EQ(m_chip.GetText(), text);
    }
}

TEST_F(Tarnel4BacklightTest, OpensTheAttributeAnewForEachLevel)
{
    EXPECT_EQ(m_chip.CountOpened(), 0);
    for (int round = 1; round <= 3; ++round) {
        EXPECT_TRUE(m_backlight.SetRightBacklight(0));
        EXPECT_EQ(m_chip.CountOpened(), round);
        EXPECT_EQ(m_chip.CountOpen(), 0);
        EXPECT_EQ(m_chip.GetLastOpenFlags(), O_RDWR | O_DSYNC | O_CLOEXEC);
    }
}

TEST_F(Tarnel4BacklightTest, FailsWhereTheAttributeCannotBeOpened)
{
    const std::pair<int, const char*> cases[] = {{EACCES, "Permission denied"},
                                                 {ENODEV, "No such device"}};
    for (const auto& [error, text] : cases) {
        m_chip.RefuseOpen(error);
        m_log.Clear();
        EXPECT_FALSE(m_backlight.SetRightBacklight(0));
        ASSERT_EQ(m_log.GetLines().size(), 2U);
        const auto line = m_log.GetLines()[1];
        EXPECT_EQ(line.text,
                  std::string("Open on /sys/devices/platform/w83627ehf.656/pwm3 failed: ") + text);
        EXPECT_EQ(line.context, "Tarnel4Backlight");
        EXPECT_EQ(line.level, 8U);
        EXPECT_EQ(line.file, "tn4_backlight.cpp");
    }
    m_chip.RefuseOpen(0);
    EXPECT_TRUE(m_backlight.SetRightBacklight(0));
}

TEST_F(Tarnel4BacklightTest, FailsForAsLongAsTheChipIsGone)
{
    m_chip.Vanish();
    EXPECT_FALSE(m_backlight.SetRightBacklight(0));
    EXPECT_EQ(m_log.Count("Open on /sys/devices/platform/w83627ehf.656/pwm3 failed: No such file "
                          "or directory"),
              1U);
    m_chip.Appear();
    EXPECT_TRUE(m_backlight.SetRightBacklight(0));
    EXPECT_EQ(m_chip.GetText(), "255\n");
}

TEST_F(Tarnel4BacklightTest, DoesNotLookAtWhatBecomesOfTheText)
{
    m_chip.RefuseWrites(EIO);
    m_log.Clear();
    EXPECT_TRUE(m_backlight.SetRightBacklight(0));
    EXPECT_EQ(m_chip.GetText(), "127\n");
    EXPECT_EQ(m_chip.CountOpen(), 0);
    EXPECT_EQ(m_log.GetTexts().size(), 1U);
}

TEST_F(Tarnel4BacklightTest, DriverThatTakesNoBlanksKeepsItsOldValueForTheBrightestLevels)
{
    EXPECT_TRUE(m_backlight.SetRightBacklight(10 * Percent));
    EXPECT_EQ(m_chip.GetText(), "229\n");
    EXPECT_TRUE(m_backlight.SetRightBacklight(100 * Percent));
    EXPECT_EQ(m_chip.GetText(), "229\n");
}

TEST_F(Tarnel4BacklightTest, SlowChipOnlyTakesLonger)
{
    m_chip.SetDelay(20'000);
    EXPECT_TRUE(m_backlight.SetRightBacklight(0));
    EXPECT_EQ(m_chip.GetDelayed(), 40'000); // for its open and its write
    EXPECT_EQ(m_chip.GetText(), "255\n");
}

TEST_F(Tarnel4BacklightTest, TracesTheLevelAndTheText)
{
    m_backlight.SetRightBacklight(100 * Percent);
    m_backlight.SetRightBacklight(Percent / 2);
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Setting right backlight to 6553600(raw value is   0\n)",
                            "Setting right backlight to 32768(raw value is 253\n)"));
    for (const auto& line : m_log.GetLines()) {
        EXPECT_EQ(line.context, "Tarnel4Backlight/Set");
        EXPECT_EQ(line.level, 1U);
    }
}

TEST_F(Tarnel4BacklightTest, HasNoOtherSidesAndNoFrequencies)
{
    EXPECT_TRUE(m_backlight.SetLeftBacklight(100 * Percent));
    EXPECT_TRUE(m_backlight.SetCenterBacklight(100 * Percent));
    EXPECT_TRUE(m_backlight.SetLeftBacklightFrequency(1));
    EXPECT_TRUE(m_backlight.SetRightBacklightFrequency(2));
    EXPECT_TRUE(m_backlight.SetCenterBacklightFrequency(3));
    EXPECT_EQ(m_backlight.GetLeftBacklightFrequency(), 0U);
    EXPECT_EQ(m_backlight.GetRightBacklightFrequency(), 0U);
    EXPECT_EQ(m_backlight.GetCenterBacklightFrequency(), 0U);
    EXPECT_EQ(m_chip.CountOpened(), 0);
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST(Tarnel4BacklightLog, KeepsTracesBackUntilWidened)
{
    TestSupport::LogCapture log;
    const Desk::KernelTestbed testbed;
    Tarnel4Backlight backlight;
    EXPECT_FALSE(backlight.SetRightBacklight(0));
    EXPECT_EQ(log.GetTexts().size(), 1U); // that there is no chip
    EXPECT_EQ(Os::Log::Context::Find("Tarnel4Backlight")->GetMask(), 30U);
    EXPECT_EQ(Os::Log::Context::Find("Tarnel4Backlight")->GetParent(), nullptr);
    EXPECT_EQ(Os::Log::Context::Find("Tarnel4Backlight/Set")->GetMask(), 30U);
}
