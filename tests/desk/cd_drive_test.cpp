// SPDX-License-Identifier: MIT
// The virtual CD drive as a program sees it that asks the kernel.
#include "desk/cd_drive.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/cdrom.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <stdexcept>

#include "support/wait.h"

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int Frames(int minutes, int seconds, int frames)
{
    return (minutes * 60 + seconds) * 75 + frames;
}

/// A drive with three tracks of 10, 20 and 30 seconds, and a descriptor of it.
class CdDriveNode : public testing::Test
{
protected:
    CdDriveNode()
    {
        m_drive.Insert(MakeDisc());
        Open();
    }
    ~CdDriveNode() override { Close(); }

    static Desk::CdDisc MakeDisc() { return Desk::CdDisc::MakeAudio({10, 20, 30}); }

    bool Open()
    {
        Close();
        m_descriptor = open("/dev/cdrom", O_RDONLY | O_NONBLOCK);
        return m_descriptor != -1;
    }

    void Close()
    {
        if (m_descriptor != -1)
            close(m_descriptor);
        m_descriptor = -1;
    }

    /// The errno value of a request, 0 when it succeeded.
    template <class... Argument> int Ask(unsigned long request, Argument... argument) const
    {
        return ioctl(m_descriptor, request, argument...) == 0 ? 0 : errno;
    }

    int PlayTracks(int from, int to, int fromIndex = 0) const
    {
        cdrom_ti range{static_cast<unsigned char>(from), static_cast<unsigned char>(fromIndex),
                       static_cast<unsigned char>(to), 0};
        return Ask(CDROMPLAYTRKIND, &range);
    }

    int PlayRange(int from, int to) const
    {
        cdrom_msf range{Minute(from), Second(from), Frame(from), Minute(to), Second(to), Frame(to)};
        return Ask(CDROMPLAYMSF, &range);
    }

    cdrom_subchnl GetSubchannel(int format = CDROM_MSF) const
    {
        cdrom_subchnl subchannel{};
        subchannel.cdsc_format = static_cast<unsigned char>(format);
        EXPECT_EQ(Ask(CDROMSUBCHNL, &subchannel), 0);
        return subchannel;
    }

    int GetAudioStatus() const { return GetSubchannel().cdsc_audiostatus; }

    /// Such as "2.1 00:13:00 00:01:00": track and index, place, distance from the track's start.
    std::string GetPlace() const
    {
        const cdrom_subchnl subchannel = GetSubchannel();
        const cdrom_subchnl blocks = GetSubchannel(CDROM_LBA);
        EXPECT_EQ(blocks.cdsc_absaddr.lba, ToFrames(subchannel.cdsc_absaddr.msf) - 150);
        EXPECT_EQ(std::abs(blocks.cdsc_reladdr.lba), ToFrames(subchannel.cdsc_reladdr.msf));
        return std::to_string(subchannel.cdsc_trk) + "." + std::to_string(subchannel.cdsc_ind) +
               " " + Desk::ToCdText(ToFrames(subchannel.cdsc_absaddr.msf)) + " " +
               (blocks.cdsc_reladdr.lba < 0 ? "-" : "") +
               Desk::ToCdText(ToFrames(subchannel.cdsc_reladdr.msf));
    }

    /// The place of a track, or "errno N".
    std::string GetEntry(int track) const
    {
        cdrom_tocentry entry{};
        entry.cdte_track = static_cast<unsigned char>(track);
        entry.cdte_format = CDROM_MSF;
        const int error = Ask(CDROMREADTOCENTRY, &entry);
        if (error != 0)
            return "errno " + std::to_string(error);
        cdrom_tocentry blocks{};
        blocks.cdte_track = static_cast<unsigned char>(track);
        blocks.cdte_format = CDROM_LBA;
        EXPECT_EQ(Ask(CDROMREADTOCENTRY, &blocks), 0);
        EXPECT_EQ(blocks.cdte_addr.lba, ToFrames(entry.cdte_addr.msf) - 150);
        return Desk::ToCdText(ToFrames(entry.cdte_addr.msf)) +
               ((entry.cdte_ctrl & CDROM_DATA_TRACK) != 0 ? " data" : "");
    }

    static int ToFrames(const cdrom_msf0& address)
    {
        return Frames(address.minute, address.second, address.frame);
    }

    static unsigned char Minute(int frames) { return static_cast<unsigned char>(frames / 4500); }
    static unsigned char Second(int frames) { return static_cast<unsigned char>(frames / 75 % 60); }
    static unsigned char Frame(int frames) { return static_cast<unsigned char>(frames % 75); }

    std::atomic<std::uint32_t> m_now{1000};
    Desk::KernelTestbed m_testbed;
    Desk::CdDrive m_drive{m_testbed, [this] { return m_now.load(); }};
    int m_descriptor = -1;
};

} // namespace

TEST_F(CdDriveNode, HasATableOfContents)
{
    cdrom_tochdr header{};
    ASSERT_EQ(Ask(CDROMREADTOCHDR, &header), 0);
    EXPECT_EQ(header.cdth_trk0, 1);
    EXPECT_EQ(header.cdth_trk1, 3);
    EXPECT_EQ(GetEntry(1), "00:02:00");
    EXPECT_EQ(GetEntry(2), "00:12:00");
    EXPECT_EQ(GetEntry(3), "00:32:00");
    EXPECT_EQ(GetEntry(CDROM_LEADOUT), "01:02:00");
    EXPECT_EQ(GetEntry(0), GetEntry(1)) << "the first one from there on";
    EXPECT_EQ(GetEntry(4), "errno " + std::to_string(EIO));
}

TEST_F(CdDriveNode, MayBeginWithAnotherNumber)
{
    Desk::CdDisc disc = MakeDisc();
    disc.firstNumber = 12;
    m_drive.Insert(disc);
    cdrom_tochdr header{};
    ASSERT_EQ(Ask(CDROMREADTOCHDR, &header), 0);
    EXPECT_EQ(header.cdth_trk0, 12);
    EXPECT_EQ(header.cdth_trk1, 14);
    EXPECT_EQ(GetEntry(12), "00:02:00");
    EXPECT_EQ(GetEntry(11), "errno " + std::to_string(EIO));
}

TEST_F(CdDriveNode, RefusesAddressesInAFormThatIsNone)
{
    cdrom_subchnl subchannel{};
    EXPECT_EQ(Ask(CDROMSUBCHNL, &subchannel), EINVAL);
    cdrom_tocentry entry{};
    entry.cdte_track = 1;
    EXPECT_EQ(Ask(CDROMREADTOCENTRY, &entry), EINVAL);
}

TEST_F(CdDriveNode, HasADiscAtRestAtFirst)
{
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_NO_STATUS);
    EXPECT_EQ(GetPlace(), "1.0 00:00:00 -00:02:00");
    EXPECT_TRUE(m_drive.GetState().hasDisc);
    EXPECT_EQ(m_drive.GetState().status, Desk::CdDrive::Status::Stopped);
}

TEST_F(CdDriveNode, PlaysByTheClock)
{
    EXPECT_EQ(PlayTracks(1, 3), 0);
    EXPECT_EQ(GetPlace(), "1.1 00:02:00 00:00:00");
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_PLAY);
    m_now += 13;
    EXPECT_EQ(GetPlace(), "1.1 00:02:00 00:00:00") << "not a whole frame yet";
    m_now += 1;
    EXPECT_EQ(GetPlace(), "1.1 00:02:01 00:00:01");
    m_now += 986;
    EXPECT_EQ(GetPlace(), "1.1 00:03:00 00:01:00");
    m_now += 7000;
    EXPECT_EQ(GetPlace(), "2.0 00:10:00 -00:02:00") << "the gap counts down";
    m_now += 1000;
    EXPECT_EQ(GetPlace(), "2.0 00:11:00 -00:01:00");
    m_now += 1000;
    EXPECT_EQ(GetPlace(), "2.1 00:12:00 00:00:00");
    const auto state = m_drive.GetState();
    EXPECT_EQ(state.status, Desk::CdDrive::Status::Playing);
    EXPECT_EQ(state.position, Frames(0, 12, 0));
    EXPECT_EQ(state.place.track, 2);
}

TEST_F(CdDriveNode, PlaysOnWhileItsClockWraps)
{
    m_now = 0xFFFFFF00U;
    PlayTracks(1, 3);
    m_now += 1000;
    EXPECT_EQ(GetPlace(), "1.1 00:03:00 00:01:00");
}

TEST_F(CdDriveNode, TellsOfTheEndOnceAndThenOfNothing)
{
    PlayTracks(3, 3);
    m_now += 29999;
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_PLAY);
    m_now += 1;
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_COMPLETED);
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_NO_STATUS);
    m_now += 5000;
    EXPECT_EQ(Desk::ToCdText(m_drive.GetState().position), "01:02:00") << "the lead-out";
}

TEST_F(CdDriveNode, PlaysTracksToTheEndOfTheLastOne)
{
    PlayTracks(1, 2);
    m_now += 29999;
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_PLAY);
    m_now += 1;
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_COMPLETED);
    EXPECT_EQ(Desk::ToCdText(m_drive.GetState().position), "00:32:00");
}

TEST_F(CdDriveNode, PlaysFromAnIndex)
{
    Desk::CdDisc disc = MakeDisc();
    disc.tracks[1].indices = {Frames(0, 12, 0), Frames(0, 15, 0), Frames(0, 20, 0)};
    m_drive.Insert(disc);
    EXPECT_EQ(PlayTracks(2, 3, 3), 0);
    EXPECT_EQ(GetPlace(), "2.3 00:20:00 00:08:00");
    EXPECT_EQ(PlayTracks(2, 3, 1), 0);
    EXPECT_EQ(GetPlace(), "2.1 00:12:00 00:00:00");
    EXPECT_EQ(PlayTracks(2, 3, 4), EIO);
}

TEST_F(CdDriveNode, PlaysBetweenPlaces)
{
    EXPECT_EQ(PlayRange(Frames(0, 12, 5), Frames(0, 13, 5)), 0);
    m_now += 999;
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_PLAY);
    m_now += 1;
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_COMPLETED);
    EXPECT_EQ(PlayRange(0, Frames(1, 2, 0)), 0) << "the whole disc, with the first gap";
}

TEST_F(CdDriveNode, RefusesPlacesAndTracksThatThereAreNot)
{
    EXPECT_EQ(PlayRange(Frames(0, 13, 0), Frames(0, 12, 74)), EIO);
    EXPECT_EQ(PlayRange(Frames(1, 2, 0), Frames(1, 2, 0)), EIO);
    EXPECT_EQ(PlayRange(Frames(0, 2, 0), Frames(1, 2, 1)), EIO);
    cdrom_msf wrong{0, 60, 0, 1, 2, 0};
    EXPECT_EQ(Ask(CDROMPLAYMSF, &wrong), EIO);
    wrong = {0, 2, 75, 1, 2, 0};
    EXPECT_EQ(Ask(CDROMPLAYMSF, &wrong), EIO);
    EXPECT_EQ(PlayTracks(0, 3), EIO);
    EXPECT_EQ(PlayTracks(1, 4), EIO);
    EXPECT_EQ(PlayTracks(3, 2), EIO);
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_NO_STATUS);
    EXPECT_THAT(m_drive.GetCommands(), IsEmpty());
}

TEST_F(CdDriveNode, PausesAndGoesOn)
{
    PlayTracks(1, 3);
    m_now += 2000;
    EXPECT_EQ(Ask(CDROMPAUSE), 0);
    m_now += 10000;
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_PAUSED);
    EXPECT_EQ(GetPlace(), "1.1 00:04:00 00:02:00");
    EXPECT_EQ(Ask(CDROMPAUSE), 0) << "once more";
    EXPECT_EQ(m_drive.GetState().status, Desk::CdDrive::Status::Paused);
    EXPECT_EQ(Ask(CDROMRESUME), 0);
    EXPECT_EQ(Ask(CDROMRESUME), 0) << "once more";
    m_now += 1000;
    EXPECT_EQ(GetPlace(), "1.1 00:05:00 00:03:00");
}

TEST_F(CdDriveNode, CannotPauseOrGoOnAtRest)
{
    EXPECT_EQ(Ask(CDROMPAUSE), EIO);
    EXPECT_EQ(Ask(CDROMRESUME), EIO);
}

TEST_F(CdDriveNode, StopsAtAnyTime)
{
    EXPECT_EQ(Ask(CDROMSTOP), 0);
    PlayTracks(2, 3);
    EXPECT_EQ(Ask(CDROMSTOP), 0);
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_NO_STATUS);
    m_now += 1000;
    EXPECT_EQ(Desk::ToCdText(m_drive.GetState().position), "00:12:00");
}

TEST_F(CdDriveNode, KeepsTheVerbsThatItTook)
{
    PlayTracks(2, 3);
    PlayTracks(9, 9);
    PlayRange(Frames(0, 2, 3), Frames(1, 0, 0));
    Ask(CDROMPAUSE);
    Ask(CDROMRESUME);
    Ask(CDROMSTOP);
    EXPECT_THAT(m_drive.GetCommands(),
                ElementsAre("play track 2 index 0 to track 3 index 0", "play 00:02:03 to 01:00:00",
                            "pause", "resume", "stop"));
    EXPECT_EQ(m_drive.CountRequests(CDROMPLAYTRKIND), 2U);
    EXPECT_EQ(m_drive.CountRequests(CDROMSUBCHNL), 0U);
}

TEST_F(CdDriveNode, WithoutADiscIsOpenedAndHasNoMedium)
{
    m_drive.Eject();
    EXPECT_TRUE(Open());
    cdrom_tochdr header{};
    EXPECT_EQ(Ask(CDROMREADTOCHDR, &header), ENOMEDIUM);
    EXPECT_EQ(GetEntry(1), "errno " + std::to_string(ENOMEDIUM));
    EXPECT_EQ(PlayTracks(1, 1), ENOMEDIUM);
    EXPECT_EQ(Ask(CDROMSTOP), ENOMEDIUM);
    cdrom_subchnl subchannel{};
    subchannel.cdsc_format = CDROM_MSF;
    EXPECT_EQ(Ask(CDROMSUBCHNL, &subchannel), ENOMEDIUM);
    EXPECT_FALSE(m_drive.GetState().hasDisc);
}

TEST_F(CdDriveNode, ThatIsOpenedWhileItPlaysStopsForGood)
{
    PlayTracks(1, 3);
    m_drive.Eject();
    m_drive.Insert(MakeDisc());
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_NO_STATUS);
    EXPECT_EQ(GetPlace(), "1.0 00:00:00 -00:02:00");
}

TEST_F(CdDriveNode, WithADiscOfDataHasATableAndNothingToPlay)
{
    m_drive.Insert(Desk::CdDisc::MakeData(60));
    EXPECT_EQ(GetEntry(1), "00:02:00 data");
    EXPECT_EQ(GetEntry(CDROM_LEADOUT), "01:02:00 data");
    cdrom_subchnl subchannel{};
    subchannel.cdsc_format = CDROM_MSF;
    EXPECT_EQ(Ask(CDROMSUBCHNL, &subchannel), EOPNOTSUPP);
    EXPECT_EQ(PlayTracks(1, 1), EOPNOTSUPP);
    EXPECT_EQ(PlayTracks(2, 2), EOPNOTSUPP);
    EXPECT_EQ(PlayRange(Frames(0, 2, 0), Frames(1, 0, 0)), EOPNOTSUPP);
    EXPECT_EQ(PlayRange(Frames(9, 2, 0), Frames(1, 0, 0)), EOPNOTSUPP);
    EXPECT_EQ(Ask(CDROMPAUSE), EOPNOTSUPP);
    EXPECT_EQ(Ask(CDROMRESUME), EOPNOTSUPP);
    EXPECT_EQ(Ask(CDROMSTOP), 0);
}

TEST_F(CdDriveNode, WithADiscOfBothPlaysAsFarAsTheAudioGoes)
{
    Desk::CdDisc disc = MakeDisc();
    disc.tracks[2].isData = true;
    m_drive.Insert(disc);
    EXPECT_EQ(GetEntry(3), "00:32:00 data");
    EXPECT_EQ(PlayTracks(3, 3), EIO);
    EXPECT_EQ(PlayTracks(2, 3), 0);
    m_now += 20000;
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_ERROR);
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_NO_STATUS);
    EXPECT_EQ(GetSubchannel().cdsc_ctrl & CDROM_DATA_TRACK, CDROM_DATA_TRACK);
}

TEST_F(CdDriveNode, WithAScratchFailsAndGoesOnTurning)
{
    PlayTracks(1, 3);
    m_drive.SetScratched(true);
    m_now += 1000;
    EXPECT_EQ(GetEntry(1), "errno " + std::to_string(EIO));
    EXPECT_EQ(PlayTracks(1, 1), EIO);
    m_now += 1000;
    m_drive.SetScratched(false);
    EXPECT_EQ(GetPlace(), "1.1 00:04:00 00:02:00");
}

TEST_F(CdDriveNode, ThatIsBusyRefusesOpensAndRequests)
{
    m_drive.SetBusy(true);
    EXPECT_EQ(Ask(CDROMSTOP), EBUSY);
    EXPECT_FALSE(Open());
    EXPECT_EQ(errno, EBUSY);
    m_drive.SetBusy(false);
    EXPECT_TRUE(Open());
    EXPECT_EQ(Ask(CDROMSTOP), 0);
}

TEST_F(CdDriveNode, FailsTheRequestsItIsToldTo)
{
    m_drive.FailRequest(CDROMREADTOCENTRY, EINVAL);
    EXPECT_EQ(GetEntry(1), "errno " + std::to_string(EINVAL));
    EXPECT_EQ(PlayTracks(1, 1), 0);
    m_drive.FailRequest(CDROMREADTOCENTRY, 0);
    EXPECT_EQ(GetEntry(1), "00:02:00");
}

TEST_F(CdDriveNode, VanishesAndComesBackAsANewDevice)
{
    PlayTracks(1, 3);
    m_drive.Vanish();
    EXPECT_EQ(Ask(CDROMSTOP), ENODEV);
    const int second = open("/dev/cdrom", O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(second, -1);
    EXPECT_EQ(errno, ENOENT);
    m_drive.Appear();
    EXPECT_EQ(Ask(CDROMSTOP), ENODEV) << "the old one has gone for good";
    EXPECT_TRUE(Open());
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_NO_STATUS);
    EXPECT_EQ(GetEntry(1), "00:02:00");
}

TEST_F(CdDriveNode, TakesItsTime)
{
    m_drive.SetDelay(2000);
    EXPECT_TRUE(Open());
    EXPECT_EQ(Ask(CDROMSTOP), 0);
    EXPECT_EQ(Ask(CDROMSTOP), 0);
    EXPECT_EQ(m_drive.GetDelayed(), 6000);
    m_drive.SetDelay(0);
    EXPECT_EQ(Ask(CDROMSTOP), 0);
    EXPECT_EQ(m_drive.GetDelayed(), 6000);
}

TEST_F(CdDriveNode, ShowsEachRequestBeforeItsAnswer)
{
    std::vector<unsigned long> requests;
    m_drive.SetObserver([&](unsigned long request) {
        requests.push_back(request);
        m_now += 1000;
    });
    PlayTracks(1, 3);
    EXPECT_EQ(GetAudioStatus(), CDROM_AUDIO_PLAY);
    m_drive.SetObserver({});
    EXPECT_EQ(GetPlace(), "1.1 00:03:00 00:01:00");
    EXPECT_THAT(requests, ElementsAre(CDROMPLAYTRKIND, CDROMSUBCHNL));
}

TEST_F(CdDriveNode, RefusesRequestsItDoesNotKnow)
{
    EXPECT_EQ(Ask(CDROMEJECT), ENOTTY);
}

TEST_F(CdDriveNode, CountsItsOpens)
{
    EXPECT_EQ(m_drive.CountOpen(), 1);
    const int second = open("/dev/cdrom", O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(m_drive.CountOpen(), 2);
    close(second);
    EXPECT_EQ(m_drive.CountOpen(), 1);
    EXPECT_EQ(m_drive.CountOpened(), 2);
    EXPECT_EQ(m_drive.GetLastOpenFlags(), O_RDONLY | O_NONBLOCK);
}

TEST_F(CdDriveNode, TakesNoDiscThatThereCannotBe)
{
    EXPECT_THROW(m_drive.Insert(Desk::CdDisc()), std::invalid_argument);
    EXPECT_EQ(GetEntry(1), "00:02:00") << "the one before is still in it";
}

TEST(CdDriveClock, IsTheSystemsUnlessGiven)
{
    Desk::KernelTestbed testbed;
    Desk::CdDrive drive(testbed);
    drive.Insert(Desk::CdDisc::MakeAudio({60}));
    const int descriptor = open("/dev/cdrom", O_RDONLY | O_NONBLOCK);
    cdrom_ti range{1, 0, 1, 0};
    ASSERT_EQ(ioctl(descriptor, CDROMPLAYTRKIND, &range), 0);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return drive.GetState().position > 150; }));
    close(descriptor);
}
