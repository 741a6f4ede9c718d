// SPDX-License-Identifier: MIT
// What the player tells and does without a drive, without a disc, and when requests fail.
#include <gmock/gmock.h>
#include <linux/cdrom.h>

#include <cerrno>
#include <functional>
#include <ostream>

#include "cd/cd_bench.h"

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::MakeCdTime;

/// A way in which there is nothing to play any more.
struct Lack {
    const char* name;
    std::function<void(Desk::CdDrive&, CdPlayer&)> cause;
};

void PrintTo(const Lack& lack, std::ostream* out)
{
    *out << lack.name;
}

class CdPlayerFallbacks : public TestSupport::CdPlayerBench,
                          public testing::WithParamInterface<Lack>
{
protected:
    CdPlayerFallbacks()
    {
        m_player.PlayTrack(2);
        m_clock.Advance(1000);
        m_commands = m_drive.GetCommands().size();
        GetParam().cause(m_drive, m_player);
        m_log.Clear();
    }

    std::size_t m_commands = 0;
};

INSTANTIATE_TEST_SUITE_P(
    Lacks, CdPlayerFallbacks,
    testing::Values(
        Lack{"Closed", [](auto&, CdPlayer& player) { player.Close(); }},
        Lack{"NoDrive",
             [](Desk::CdDrive& drive, CdPlayer& player) {
                 drive.Vanish();
                 player.Open();
             }},
        Lack{"BusyDrive",
             [](Desk::CdDrive& drive, CdPlayer& player) {
                 drive.SetBusy(true);
                 player.Open();
             }},
        Lack{"VanishedDrive", [](Desk::CdDrive& drive, auto&) { drive.Vanish(); }},
        Lack{"DriveThatCameBack",
             [](Desk::CdDrive& drive, auto&) {
                 drive.Vanish();
                 drive.Appear();
             }},
        Lack{"TrayThatOpenedWhilePlaying", [](Desk::CdDrive& drive, auto&) { drive.Eject(); }},
        Lack{"Scratch", [](Desk::CdDrive& drive, auto&) { drive.SetScratched(true); }},
        Lack{"DriveTakenByAnother", [](Desk::CdDrive& drive, auto&) { drive.SetBusy(true); }}),
    [](const auto& lack) { return std::string(lack.param.name); });

} // namespace

TEST_P(CdPlayerFallbacks, AnswerQuestionsByZero)
{
    EXPECT_EQ(m_player.GetStatus(), 0);
    EXPECT_EQ(m_player.GetCurrentTrack(), 0);
    EXPECT_EQ(m_player.GetTrackCount(), 0);
    for (const int track : {-1, 0, 1, 2, 170})
        EXPECT_EQ(m_player.GetTrackStart(track).GetRawFrameCount(), 0) << track;
    EXPECT_EQ(m_player.GetTrackLength(1).GetRawFrameCount(), 0);
    EXPECT_EQ(m_player.GetTrackLength(-1).GetRawFrameCount(), 0);
    EXPECT_EQ(m_player.GetDiscLength().GetRawFrameCount(), 0);
    EXPECT_EQ(m_player.GetCurrentDiscTime().GetRawFrameCount(), 0);
    EXPECT_EQ(m_player.GetCurrentTrackTime().GetRawFrameCount(), 0);
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_P(CdPlayerFallbacks, MakeVerbsDoNothing)
{
    m_player.PlayTrack(1);
    m_player.PlayTime(MakeCdTime(300));
    m_player.Jog(MakeCdTime(75));
    m_player.PreviousTrack();
    m_player.NextTrack();
    m_player.Stop();
    m_player.Pause();
    m_player.Play();
    EXPECT_EQ(m_drive.GetCommands().size(), m_commands);
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Playing track 1", "Playing track 0", "Playing track 1",
                            "Playing track 1", "Playing track 1"));
}

TEST_P(CdPlayerFallbacks, EndWithAnOpenDriveAndADisc)
{
    m_drive.SetBusy(false);
    m_drive.SetScratched(false);
    m_drive.Appear();
    m_drive.Insert(MakeDisc());
    m_player.Open();
    m_player.Play();
    EXPECT_EQ(m_player.GetStatus(), 1);
    EXPECT_EQ(m_player.GetTrackCount(), 3);
}

namespace
{

/// A request that fails alone, and what the player tells then.
class CdPlayerFailedRequests : public TestSupport::CdPlayerBench
{
};

} // namespace

TEST_F(CdPlayerFailedRequests, OfThePositionAreAStoppedDisc)
{
    m_player.PlayTrack(2);
    m_drive.FailRequest(CDROMSUBCHNL, EIO);
    EXPECT_EQ(m_player.GetStatus(), 0);
    EXPECT_EQ(m_player.GetCurrentTrack(), 0);
    EXPECT_EQ(m_player.GetCurrentDiscTime().GetRawFrameCount(), 0);
    EXPECT_EQ(m_player.GetTrackCount(), 3);
}

TEST_F(CdPlayerFailedRequests, OfTheTableAreNoTracks)
{
    m_drive.FailRequest(CDROMREADTOCHDR, EIO);
    EXPECT_EQ(m_player.GetTrackCount(), 0);
    m_player.PlayTrack(1);
    m_player.NextTrack();
    m_player.PreviousTrack();
    EXPECT_THAT(m_drive.GetCommands(), IsEmpty());
}

TEST_F(CdPlayerFailedRequests, OfAVerbAreNotTold)
{
    m_drive.FailRequest(CDROMPLAYTRKIND, EIO);
    m_player.Play();
    EXPECT_EQ(m_player.GetStatus(), 0);
    m_drive.FailRequest(CDROMPLAYTRKIND, 0);
    m_player.Play();
    m_drive.FailRequest(CDROMPAUSE, EIO);
    m_player.Pause();
    EXPECT_EQ(m_player.GetStatus(), 1);
    m_drive.FailRequest(CDROMSTOP, EIO);
    m_player.Stop();
    EXPECT_EQ(m_player.GetStatus(), 1);
    m_drive.FailRequest(CDROMPAUSE, 0);
    m_drive.FailRequest(CDROMRESUME, EIO);
    m_player.Pause();
    m_player.Pause();
    EXPECT_EQ(m_player.GetStatus(), 2);
}

TEST_F(CdPlayerFailedRequests, OfADiscOfDataLeaveOnlyItsTable)
{
    m_drive.Insert(Desk::CdDisc::MakeData(60));
    m_player.Play();
    EXPECT_THAT(m_drive.GetCommands(), IsEmpty());
    EXPECT_EQ(m_player.GetStatus(), 0);
    EXPECT_EQ(m_player.GetTrackCount(), 1);
    EXPECT_EQ(m_player.GetTrackLength(1).GetRawFrameCount(), 4500);
}
