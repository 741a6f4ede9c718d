// SPDX-License-Identifier: MIT
// The CD device with drives and discs that do not answer.
#include <gmock/gmock.h>

#include <cerrno>
#include <functional>
#include <ostream>

#include "timecode/cd_timecode_bench.h"

namespace
{

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::WaitUntil;

/// A drive that does not answer any more, the system's words for that, and its end.
struct Trouble {
    const char* name;
    const char* text;
    std::function<void(Desk::CdDrive&)> begin;
    std::function<void(Desk::CdDrive&)> end;
};

void PrintTo(const Trouble& trouble, std::ostream* out)
{
    *out << trouble.name;
}

class CdFailures : public TestSupport::CdTimecodeBench, public testing::WithParamInterface<Trouble>
{
};

const Desk::CdDisc Disc = Desk::CdDisc::MakeAudio({60});

INSTANTIATE_TEST_SUITE_P(
    Of, CdFailures,
    testing::Values(Trouble{"AnOpenTray", "No medium found",
                            [](Desk::CdDrive& drive) { drive.Eject(); },
                            [](Desk::CdDrive& drive) { drive.Insert(Disc); }},
                    Trouble{"AScratch", "Input/output error",
                            [](Desk::CdDrive& drive) { drive.SetScratched(true); },
                            [](Desk::CdDrive& drive) { drive.SetScratched(false); }},
                    Trouble{"ABusyDrive", "Device or resource busy",
                            [](Desk::CdDrive& drive) { drive.SetBusy(true); },
                            [](Desk::CdDrive& drive) { drive.SetBusy(false); }},
                    Trouble{"ADiscOfData", "Operation not supported",
                            [](Desk::CdDrive& drive) { drive.Insert(Desk::CdDisc::MakeData(60)); },
                            [](Desk::CdDrive& drive) { drive.Insert(Disc); }},
                    Trouble{"AFailedRequest", "Invalid argument",
                            [](Desk::CdDrive& drive) { drive.FailRequest(0x530B, EINVAL); },
                            [](Desk::CdDrive& drive) { drive.FailRequest(0x530B, 0); }}),
    [](const auto& trouble) { return std::string(trouble.param.name); });

} // namespace

TEST_P(CdFailures, SlowThePollAreLoggedAndNeverEndIt)
{
    PlayFrom(0, 2, 0);
    m_device->Enable();
    Passes(1);
    m_clock.WaitForSleeps(2);
    EXPECT_TRUE(m_device->IsActive());
    m_log.Clear();
    const std::size_t frames = m_frames.CountFrames();

    GetParam().begin(m_drive);
    const std::size_t requests = m_drive.CountRequests(Subchannel);
    EXPECT_THAT(Passes(6), ElementsAre(40, 250, 250, 250, 250, 250));
    m_clock.WaitForSleeps(8);
    EXPECT_FALSE(m_device->IsActive());
    EXPECT_TRUE(m_device->IsEnabled());
    EXPECT_EQ(m_frames.CountFrames(), frames);
    EXPECT_EQ(m_drive.CountRequests(Subchannel), requests + 6) << "one for each sleep";
    EXPECT_THAT(m_log.GetTexts(), SizeIs(6));
    EXPECT_THAT(m_log.GetTexts(),
                Each(std::string("Subchannel read from CD failed: ") + GetParam().text));
    EXPECT_EQ(m_log.GetLines().front().level, Os::Log::Trace);

    GetParam().end(m_drive);
    m_player.Play();
    Passes(1);
    m_clock.WaitForSleeps(9);
    EXPECT_TRUE(m_device->IsActive());
    EXPECT_EQ(m_frames.CountFrames(), frames + 1);
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0"));
}

TEST_P(CdFailures, LetTheDeviceBeDisabled)
{
    m_device->Enable();
    EXPECT_TRUE(AwaitPolls(1));
    GetParam().begin(m_drive);
    m_clock.WaitForSleeps(1);
    m_clock.Release();
    EXPECT_TRUE(m_device->Disable());
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0", "removed 0"));
    EXPECT_FALSE(m_device->IsActive());
}

namespace
{

using CdDrives = TestSupport::CdTimecodeBench;

} // namespace

TEST_F(CdDrives, ThatVanishFailWithoutAnEndUntilTheDeviceIsEnabledAgain)
{
    PlayFrom(0, 2, 0);
    m_device->Enable();
    m_clock.WaitForSleeps(1);
    m_drive.Vanish();
    EXPECT_THAT(Passes(4), ElementsAre(40, 250, 250, 250));
    m_drive.Appear(); // a new device: what is open is still the old one
    EXPECT_THAT(Passes(2), ElementsAre(250, 250));
    EXPECT_EQ(m_log.GetTexts().back(), "Subchannel read from CD failed: No such device");
    EXPECT_FALSE(m_device->IsActive());
    m_clock.Release();
    EXPECT_TRUE(m_device->Disable());
    EXPECT_TRUE(m_device->Enable());
    EXPECT_TRUE(WaitUntil([this] { return m_device->IsActive(); }));
}

TEST_F(CdDrives, ThatAreEmptyCanBeEnabledAndReadOnceADiscComes)
{
    m_drive.Eject();
    EXPECT_TRUE(m_device->Enable());
    m_clock.WaitForSleeps(1);
    EXPECT_THAT(m_clock.GetSleeps(), ElementsAre(250));
    EXPECT_FALSE(m_device->IsActive());
    m_drive.Insert(MakeDisc());
    PlayFrom(0, 12, 0);
    Passes(1);
    m_clock.WaitForSleeps(2);
    EXPECT_TRUE(m_device->IsActive());
    EXPECT_THAT(m_frames.GetFrames(), ElementsAre("00:00:12:06"));
}

TEST_F(CdDrives, ThatAreSlowAreWaitedForWhenTheDeviceIsDisabled)
{
    m_drive.SetDelay(100'000);
    m_device->Enable();
    EXPECT_TRUE(AwaitPolls(1));
    EXPECT_TRUE(m_device->Disable());
    EXPECT_EQ(m_drive.CountOpen(), 1) << "the player's";
    EXPECT_GE(m_drive.GetDelayed(), 200'000) << "the open and a request";
}
