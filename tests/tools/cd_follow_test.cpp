// SPDX-License-Identifier: MIT
#include "hwctl/cd_follow.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <array>
#include <cstdio>
#include <thread>

#include "desk/cd_drive.h"
#include "support/wait.h"

namespace
{

class HwctlCdFollow : public testing::Test
{
protected:
    HwctlCdFollow()
    {
        m_drive.Insert(Desk::CdDisc::MakeAudio({180}));
        m_player.Play();
    }
    ~HwctlCdFollow() override { std::fclose(m_out); }

    /// Follows the disc while a hand does something to the drive that plays.
    template <class Hand> Hwctl::CdFollowResult FollowWhile(Hand hand)
    {
        std::thread thread([&] {
            EXPECT_TRUE(TestSupport::WaitUntil([this] { return m_drive.CountOpened() > 1; }));
            hand();
        });
        const auto result = Hwctl::FollowCd(m_player, 0, m_printer);
        thread.join();
        return result;
    }

    char m_name[5] = "test";
    std::array<char*, 2> m_words{m_name, nullptr};
    int m_wordCount = 1;
    QCoreApplication m_application{m_wordCount, m_words.data()};
    Desk::KernelTestbed m_testbed;
    Desk::CdDrive m_drive{m_testbed};
    CdPlayer m_player;
    std::FILE* const m_out = std::tmpfile();
    Hwctl::EventPrinter m_printer{false, m_out};
};

} // namespace

TEST_F(HwctlCdFollow, ReportsADriveThatVanishes)
{
    EXPECT_EQ(FollowWhile([this] { m_drive.Vanish(); }).problem,
              "no CD drive: /dev/cdrom: No such file or directory");
}

TEST_F(HwctlCdFollow, ReportsADiscThatIsTakenOut)
{
    EXPECT_EQ(FollowWhile([this] { m_drive.Eject(); }).problem, "no disc: No medium found");
}

TEST_F(HwctlCdFollow, HasNoProblemWithADiscThatIsStopped)
{
    EXPECT_EQ(FollowWhile([this] { m_player.Stop(); }).problem, "");
}
