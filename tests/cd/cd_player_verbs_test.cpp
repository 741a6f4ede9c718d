// SPDX-License-Identifier: MIT
// What the player makes a drive do.
#include <gmock/gmock.h>
#include <linux/cdrom.h>

#include <cerrno>

#include "cd/cd_bench.h"

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::MakeCdTime;
using TestSupport::ToCdFrames;

class CdPlayerVerbs : public TestSupport::CdPlayerBench
{
protected:
    CdPlayerVerbs() { m_log.Clear(); }
};

} // namespace

TEST_F(CdPlayerVerbs, PlayTrackPlaysToTheEndOfTheLastTrack)
{
    m_player.PlayTrack(2);
    EXPECT_THAT(m_drive.GetCommands(), ElementsAre("play track 2 index 0 to track 3 index 0"));
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Playing track 2"));
    m_clock.Advance(49999);
    EXPECT_EQ(GetState(), "playing 01:01:74");
    m_clock.Advance(1);
    EXPECT_EQ(GetState(), "stopped 01:02:00");
}

TEST_F(CdPlayerVerbs, PlayTrackOfATrackThatThereIsNotSendsNothingButIsLogged)
{
    for (const int track : {0, 4, -1, 1000})
        m_player.PlayTrack(track);
    EXPECT_THAT(m_drive.GetCommands(), IsEmpty());
    EXPECT_EQ(m_drive.CountRequests(CDROMPLAYTRKIND), 0U);
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Playing track 0", "Playing track 4",
                                              "Playing track -1", "Playing track 1000"));
}

TEST_F(CdPlayerVerbs, PlayTrackStartsOverWhilePlaying)
{
    m_player.PlayTrack(3);
    m_clock.Advance(5000);
    m_player.PlayTrack(3);
    EXPECT_EQ(GetState(), "playing 00:32:00");
}

TEST_F(CdPlayerVerbs, PlayTimePlaysToTheEndOfTheDisc)
{
    m_player.PlayTime(MakeCdTime(ToCdFrames(0, 20, 11)));
    EXPECT_THAT(m_drive.GetCommands(), ElementsAre("play 00:20:11 to 01:02:00"));
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
    EXPECT_EQ(GetState(), "playing 00:20:11");
}

TEST_F(CdPlayerVerbs, PlayTimeFoldsHoursIntoMinutes)
{
    m_drive.Insert(Desk::CdDisc::MakeAudio({5000}));
    m_player.PlayTime(MakeCdTime(ToCdFrames(61, 5, 74)));
    EXPECT_THAT(m_drive.GetCommands(), ElementsAre("play 61:05:74 to 83:22:00"));
}

TEST_F(CdPlayerVerbs, PlayTimeWrapsMinutesAbove255)
{
    m_player.PlayTime(MakeCdTime(ToCdFrames(4 * 60 + 16, 30, 0))); // minute 256
    EXPECT_THAT(m_drive.GetCommands(), ElementsAre("play 00:30:00 to 01:02:00"));
    m_player.PlayTime(MakeCdTime(ToCdFrames(4 * 60 + 15, 30, 0)));
    EXPECT_THAT(m_drive.GetCommands(), SizeIs(1)) << "minute 255 is sent as it is";
}

TEST_F(CdPlayerVerbs, PlayTimeTakesANegativeTimeWithoutItsSign)
{
    m_player.PlayTime(MakeCdTime(-ToCdFrames(0, 20, 11)));
    EXPECT_THAT(m_drive.GetCommands(), ElementsAre("play 00:20:11 to 01:02:00"));
}

TEST_F(CdPlayerVerbs, PlayTimeThatTheDriveRefusesChangesNothing)
{
    m_player.PlayTrack(1);
    m_player.PlayTime(MakeCdTime(ToCdFrames(1, 2, 0)));
    EXPECT_EQ(GetState(), "playing 00:02:00");
}

TEST_F(CdPlayerVerbs, PlayTimeWithoutALengthIsStillSent)
{
    m_drive.FailRequest(CDROMREADTOCENTRY, EIO);
    m_player.PlayTime(MakeCdTime(0));
    EXPECT_THAT(m_drive.GetCommands(), ElementsAre("play 00:00:00 to 00:00:00"));
}

TEST_F(CdPlayerVerbs, JogGoesThereFromWhereTheDiscPlays)
{
    m_player.PlayTrack(2);
    m_clock.Advance(1000);
    m_player.Jog(MakeCdTime(750));
    EXPECT_EQ(GetState(), "playing 00:23:00");
    m_player.Jog(MakeCdTime(-1500));
    EXPECT_EQ(GetState(), "playing 00:03:00");
    EXPECT_EQ(m_drive.GetCommands().back(), "play 00:03:00 to 01:02:00");
}

TEST_F(CdPlayerVerbs, JogWhilePausedPlaysFromTheDistanceItself)
{
    m_player.PlayTrack(2);
    m_player.Pause();
    m_player.Jog(MakeCdTime(ToCdFrames(0, 5, 0)));
    EXPECT_EQ(GetState(), "playing 00:05:00");
}

TEST_F(CdPlayerVerbs, JogBelowZeroPlaysFromTheMagnitude)
{
    m_player.PlayTrack(1);
    m_player.Jog(MakeCdTime(-ToCdFrames(0, 12, 0)));
    EXPECT_EQ(GetState(), "playing 00:10:00");
}

TEST_F(CdPlayerVerbs, PreviousTrackGoesBackAndRoundTheDisc)
{
    m_player.PlayTrack(2);
    m_player.PreviousTrack();
    EXPECT_EQ(GetState(), "playing 00:02:00");
    m_player.PreviousTrack();
    EXPECT_EQ(GetState(), "playing 00:32:00");
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Playing track 2", "Playing track 1", "Playing track 3"));
}

TEST_F(CdPlayerVerbs, NextTrackGoesOnAndRoundTheDisc)
{
    m_player.PlayTrack(2);
    m_player.NextTrack();
    EXPECT_EQ(GetState(), "playing 00:32:00");
    m_player.NextTrack();
    EXPECT_EQ(GetState(), "playing 00:02:00");
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Playing track 2", "Playing track 3", "Playing track 1"));
}

TEST_F(CdPlayerVerbs, NextTrackPlaysTheFirstAndPreviousTheLastWhenNothingPlays)
{
    m_player.NextTrack();
    EXPECT_EQ(GetState(), "playing 00:02:00");
    m_player.Stop();
    m_player.PreviousTrack();
    EXPECT_EQ(GetState(), "playing 00:32:00");
}

TEST_F(CdPlayerVerbs, TracksAreSteppedFromAPausedOneToo)
{
    m_player.PlayTrack(2);
    m_player.Pause();
    m_player.NextTrack();
    EXPECT_EQ(GetState(), "playing 00:32:00");
}

TEST_F(CdPlayerVerbs, StopEndsPlayAndPauses)
{
    m_player.PlayTrack(1);
    m_log.Clear();
    m_player.Stop();
    EXPECT_EQ(GetState(), "stopped 00:02:00");
    m_player.PlayTrack(1);
    m_player.Pause();
    m_player.Stop();
    EXPECT_EQ(GetState(), "stopped 00:02:00");
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Stopping", "Playing track 1", "Pausing", "Stopping"));
}

TEST_F(CdPlayerVerbs, StopOfAStoppedDiscSendsNothing)
{
    m_player.Stop();
    EXPECT_EQ(m_drive.CountRequests(CDROMSTOP), 0U);
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(CdPlayerVerbs, PauseGoesBothWays)
{
    m_player.PlayTrack(1);
    m_clock.Advance(2000);
    m_player.Pause();
    m_clock.Advance(60000);
    EXPECT_EQ(GetState(), "paused 00:04:00");
    m_player.Pause();
    m_clock.Advance(1000);
    EXPECT_EQ(GetState(), "playing 00:05:00");
    EXPECT_EQ(m_drive.GetCommands().at(1), "pause");
    EXPECT_EQ(m_drive.GetCommands().at(2), "resume");
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Playing track 1", "Pausing", "Unpausing"));
}

TEST_F(CdPlayerVerbs, PauseOfAStoppedDiscSendsNothing)
{
    m_player.Pause();
    EXPECT_EQ(m_drive.CountRequests(CDROMPAUSE) + m_drive.CountRequests(CDROMRESUME), 0U);
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(CdPlayerVerbs, PlayOfAStoppedDiscPlaysTheFirstTrackAndSaysSoTwice)
{
    m_player.Play();
    EXPECT_THAT(m_drive.GetCommands(), ElementsAre("play track 1 index 0 to track 3 index 0"));
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Playing track 1", "Playing track 1"));
}

TEST_F(CdPlayerVerbs, PlayOfAPausedDiscGoesOnAndSaysSoTwice)
{
    m_player.PlayTrack(2);
    m_player.Pause();
    m_log.Clear();
    m_player.Play();
    EXPECT_EQ(GetState(), "playing 00:12:00");
    EXPECT_EQ(m_drive.GetCommands().back(), "resume");
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Unpausing", "Unpausing"));
}

TEST_F(CdPlayerVerbs, PlayOfADiscThatPlaysDoesNothing)
{
    m_player.PlayTrack(2);
    m_log.Clear();
    m_player.Play();
    EXPECT_THAT(m_drive.GetCommands(), SizeIs(1));
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(CdPlayerVerbs, OpeningAndClosingAreLogged)
{
    m_player.Close();
    EXPECT_EQ(m_drive.CountOpen(), 0);
    m_player.Open();
    EXPECT_EQ(m_drive.CountOpen(), 1);
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Closing CD player device", "Opening CD player device"));
    for (const auto& line : m_log.GetLines()) {
        EXPECT_EQ(line.level, Os::Log::Trace);
        EXPECT_EQ(line.context, "CdPlayer");
        EXPECT_EQ(line.file, "cd_player.cpp");
    }
}

TEST_F(CdPlayerVerbs, EveryLineIsATrace)
{
    m_player.Play();
    m_player.Pause();
    m_player.Play();
    m_player.Stop();
    EXPECT_THAT(m_log.GetLines(), SizeIs(6));
    for (const auto& line : m_log.GetLines())
        EXPECT_EQ(line.level, Os::Log::Trace) << line.text;
}

TEST_F(CdPlayerVerbs, ConstructionOpensAndDestructionCloses)
{
    {
        const CdPlayer other;
        EXPECT_EQ(m_drive.CountOpen(), 2);
    }
    EXPECT_EQ(m_drive.CountOpen(), 1);
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Opening CD player device", "Closing CD player device"));
}

TEST_F(CdPlayerVerbs, OpeningAnOpenPlayerClosesTheOldDriveWithoutALine)
{
    m_player.Open();
    EXPECT_EQ(m_drive.CountOpen(), 1);
    EXPECT_EQ(m_drive.CountOpened(), 2);
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Opening CD player device"));
}

TEST_F(CdPlayerVerbs, ClosingLeavesTheDiscPlaying)
{
    m_player.PlayTrack(1);
    m_player.Close();
    m_clock.Advance(1000);
    EXPECT_EQ(GetState(), "playing 00:03:00");
}

TEST(CdPlayerLog, HasAContextOfItsOwnThatDropsTraces)
{
    const Desk::KernelTestbed testbed;
    const TestSupport::LogCapture log;
    {
        CdPlayer player;
        player.Play();
    }
    EXPECT_THAT(log.GetTexts(), IsEmpty());
    const Os::Log::Context* const context = Os::Log::Context::Find("CdPlayer");
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(context->GetParent(), nullptr);
    EXPECT_EQ(context->GetMask(), 30U);
}
