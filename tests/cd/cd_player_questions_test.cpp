// SPDX-License-Identifier: MIT
// What the player tells of a drive and its disc.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/cdrom.h>

#include <cerrno>
#include <type_traits>

#include "cd/cd_bench.h"
#include "timecode/offers.h"

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Offers;
using TestSupport::ToCdFrames;

static_assert(sizeof(CdPlayer) == sizeof(int), "the drive's descriptor and nothing else");
static_assert(!std::is_polymorphic_v<CdPlayer> && !std::is_copy_constructible_v<CdPlayer>);
static_assert(std::is_same_v<decltype(CdPlayer::pInstance), CdPlayer*>);
static_assert(Offers<static_cast<CdTime (CdPlayer::*)(int, bool) const>(&CdPlayer::GetTrackStart)>);
static_assert(Offers<static_cast<CdTime (CdPlayer::*)(int) const>(&CdPlayer::GetTrackLength)>);
static_assert(Offers<static_cast<CdTime (CdPlayer::*)(bool) const>(&CdPlayer::GetCurrentDiscTime)>);
static_assert(Offers<static_cast<void (CdPlayer::*)(int)>(&CdPlayer::PlayTrack)>);
static_assert(Offers<static_cast<void (CdPlayer::*)(CdTime)>(&CdPlayer::PlayTime)>);
static_assert(Offers<static_cast<void (CdPlayer::*)(CdTime)>(&CdPlayer::Jog)>);
static_assert(CdPlayer::Status_Stopped == 0 && CdPlayer::Status_Playing == 1 &&
              CdPlayer::Status_Paused == 2);

/// Longer than an hour, so that minutes become hours.
Desk::CdDisc MakeLongDisc()
{
    return Desk::CdDisc::MakeAudio({3663, 120, 60});
}

class CdPlayerQuestions : public TestSupport::CdPlayerBench
{
protected:
    int GetStart(int track) const { return m_player.GetTrackStart(track).GetRawFrameCount(); }
    int GetLength(int track) const { return m_player.GetTrackLength(track).GetRawFrameCount(); }
    int GetDiscTime() const { return m_player.GetCurrentDiscTime().GetRawFrameCount(); }
    int GetTrackTime() const { return m_player.GetCurrentTrackTime().GetRawFrameCount(); }
};

} // namespace

TEST_F(CdPlayerQuestions, AreAskedOfADriveOpenForReadingAndNotBlocking)
{
    EXPECT_EQ(m_drive.CountOpen(), 1);
    EXPECT_EQ(m_drive.GetLastOpenFlags(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

TEST_F(CdPlayerQuestions, StatusIsStoppedPlayingOrPaused)
{
    EXPECT_EQ(m_player.GetStatus(), 0);
    m_player.PlayTrack(1);
    EXPECT_EQ(m_player.GetStatus(), 1);
    m_player.Pause();
    EXPECT_EQ(m_player.GetStatus(), 2);
    m_player.Stop();
    EXPECT_EQ(m_player.GetStatus(), 0);
}

TEST_F(CdPlayerQuestions, StatusIsStoppedAtTheEndOfTheDisc)
{
    m_player.PlayTrack(3);
    m_clock.Advance(29999);
    EXPECT_EQ(m_player.GetStatus(), 1);
    m_clock.Advance(1);
    EXPECT_EQ(m_player.GetStatus(), 0) << "completed";
    EXPECT_EQ(m_player.GetStatus(), 0) << "and nothing more to tell";
}

TEST_F(CdPlayerQuestions, CurrentTrackIsTheOnePlayingOrPaused)
{
    EXPECT_EQ(m_player.GetCurrentTrack(), 0);
    m_player.PlayTrack(2);
    EXPECT_EQ(m_player.GetCurrentTrack(), 2);
    m_clock.Advance(21000);
    EXPECT_EQ(m_player.GetCurrentTrack(), 3);
    m_player.Pause();
    EXPECT_EQ(m_player.GetCurrentTrack(), 3);
    m_player.Stop();
    EXPECT_EQ(m_player.GetCurrentTrack(), 0);
}

TEST_F(CdPlayerQuestions, TrackCountIsTheLastTracksNumber)
{
    EXPECT_EQ(m_player.GetTrackCount(), 3);
    Desk::CdDisc disc = MakeDisc();
    disc.firstNumber = 5;
    m_drive.Insert(disc);
    EXPECT_EQ(m_player.GetTrackCount(), 7);
}

TEST_F(CdPlayerQuestions, TrackStartsAreAbsolute)
{
    EXPECT_EQ(GetStart(1), ToCdFrames(0, 2, 0));
    EXPECT_EQ(GetStart(2), ToCdFrames(0, 12, 0));
    EXPECT_EQ(GetStart(3), ToCdFrames(0, 32, 0));
}

TEST_F(CdPlayerQuestions, MinutesOfAnAddressBecomeHours)
{
    Desk::CdDisc disc = MakeLongDisc();
    disc.tracks[1].indices = {ToCdFrames(61, 5, 74)};
    m_drive.Insert(disc);
    const CdTime start = m_player.GetTrackStart(2);
    EXPECT_EQ(start.GetHour(), 1);
    EXPECT_EQ(start.GetMinute(), 1);
    EXPECT_EQ(start.GetSecond(), 5);
    EXPECT_EQ(start.GetFrame(), 74);
}

TEST_F(CdPlayerQuestions, TrackAboveTheCountIsTheLeadOut)
{
    for (const int track : {4, 99, 100, 170, 200, 1000})
        EXPECT_EQ(GetStart(track), ToCdFrames(1, 2, 0)) << track;
}

TEST_F(CdPlayerQuestions, TrackStartOfMinusOneIsThatOfTheCurrentTrack)
{
    m_player.PlayTrack(2);
    EXPECT_EQ(GetStart(-1), ToCdFrames(0, 12, 0));
    m_player.Pause();
    EXPECT_EQ(GetStart(-1), ToCdFrames(0, 12, 0));
}

TEST_F(CdPlayerQuestions, TrackStartWithoutACountIsTheLeadOut)
{
    m_drive.FailRequest(CDROMREADTOCHDR, EIO);
    EXPECT_EQ(GetStart(1), ToCdFrames(1, 2, 0));
}

TEST_F(CdPlayerQuestions, TrackLengthReachesToTheNextTrackOrTheLeadOut)
{
    EXPECT_EQ(GetLength(1), 750);
    EXPECT_EQ(GetLength(2), 1500);
    EXPECT_EQ(GetLength(3), 2250);
}

TEST_F(CdPlayerQuestions, TrackLengthOfMinusOneIsThatOfTheCurrentTrack)
{
    m_player.PlayTrack(3);
    EXPECT_EQ(GetLength(-1), 2250);
}

TEST_F(CdPlayerQuestions, DiscLengthIsThePlaceOfTheLeadOut)
{
    EXPECT_EQ(m_player.GetDiscLength().GetRawFrameCount(), ToCdFrames(1, 2, 0));
}

TEST_F(CdPlayerQuestions, DiscTimeIsThePlaceWhileThePlayGoesOn)
{
    EXPECT_EQ(GetDiscTime(), 0);
    m_player.PlayTrack(1);
    EXPECT_EQ(GetDiscTime(), ToCdFrames(0, 2, 0));
    m_clock.Advance(5040);
    EXPECT_EQ(GetDiscTime(), ToCdFrames(0, 7, 3));
    m_clock.Advance(8000);
    EXPECT_EQ(GetDiscTime(), ToCdFrames(0, 15, 3));
}

TEST_F(CdPlayerQuestions, DiscTimeOfAPausedDiscIsZero)
{
    m_player.PlayTrack(2);
    m_player.Pause();
    EXPECT_EQ(GetDiscTime(), 0);
    m_player.Pause();
    EXPECT_EQ(GetDiscTime(), ToCdFrames(0, 12, 0));
}

TEST_F(CdPlayerQuestions, DiscTimeHasHours)
{
    m_drive.Insert(MakeLongDisc());
    m_player.PlayTrack(1);
    m_clock.Advance(3'660'000);
    const CdTime time = m_player.GetCurrentDiscTime();
    EXPECT_EQ(time.GetHour(), 1);
    EXPECT_EQ(time.GetMinute(), 1);
    EXPECT_EQ(time.GetSecond(), 2);
    EXPECT_EQ(time.GetFrame(), 0);
}

TEST_F(CdPlayerQuestions, TrackTimeCountsFromTheTracksStart)
{
    m_player.PlayTrack(2);
    m_clock.Advance(3000);
    EXPECT_EQ(GetTrackTime(), 225);
}

TEST_F(CdPlayerQuestions, TrackTimeIsNegativeInAGapAndWhilePaused)
{
    m_player.PlayTrack(1);
    m_clock.Advance(9000);
    EXPECT_EQ(GetTrackTime(), -75) << "the second track's gap belongs to it";
    m_player.Pause();
    EXPECT_EQ(GetTrackTime(), -ToCdFrames(0, 12, 0)) << "there is no disc time";
}

TEST_F(CdPlayerQuestions, FlagsOfTimesHaveNoEffect)
{
    m_player.PlayTrack(2);
    m_clock.Advance(1000);
    for (const bool flag : {false, true}) {
        EXPECT_EQ(m_player.GetCurrentDiscTime(flag).GetRawFrameCount(), ToCdFrames(0, 13, 0));
        EXPECT_EQ(m_player.GetTrackStart(2, flag).GetRawFrameCount(), ToCdFrames(0, 12, 0));
    }
}

TEST_F(CdPlayerQuestions, LeaveNoLogLine)
{
    m_log.Clear();
    m_player.GetStatus();
    m_player.GetCurrentTrack();
    m_player.GetTrackCount();
    m_player.GetTrackLength(-1);
    m_player.GetDiscLength();
    m_player.GetCurrentTrackTime();
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST(CdPlayerInstance, IsTheApplicationsToSet)
{
    EXPECT_EQ(CdPlayer::pInstance, nullptr);
    const Desk::KernelTestbed testbed;
    const CdPlayer player;
    EXPECT_EQ(CdPlayer::pInstance, nullptr);
}
