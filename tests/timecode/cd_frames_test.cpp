// SPDX-License-Identifier: MIT
// What the CD device reads off a drive, and how often.
#include <gmock/gmock.h>

#include <cerrno>
#include <deque>

#include "timecode/cd_timecode_bench.h"

namespace
{

using Hardware::Timecode::DeviceCd;
using Hardware::Timecode::Frame;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Ne;
using testing::SizeIs;
using TestSupport::WaitUntil;

using CdFrames = TestSupport::CdTimecodeBench;

std::string ToText(int index)
{
    return Frame(index, 25.0).toString();
}

} // namespace

TEST_F(CdFrames, ComeEvery40MillisecondsWithThePlaceOnTheDisc)
{
    PlayFrom(0, 2, 0);
    m_device->Enable();
    EXPECT_THAT(Passes(30), Each(40U));
    m_clock.WaitForSleeps(31);
    const std::vector<std::string> frames = m_frames.GetFrames();
    ASSERT_THAT(frames, SizeIs(31));
    for (int i = 0; i <= 30; ++i)
        EXPECT_EQ(frames[static_cast<std::size_t>(i)], ToText(50 + i));
}

TEST_F(CdFrames, AreThoseOfAWholeDiscFromInsertionToTheLeadOut)
{
    m_drive.Eject();
    m_device->Enable();
    EXPECT_THAT(Passes(3), Each(250U));
    EXPECT_THAT(m_frames.GetFrames(), IsEmpty());
    m_clock.WaitForSleeps(4);
    m_drive.Insert(MakeDisc());
    m_player.Play();
    EXPECT_THAT(Passes(1), Each(250U));
    // It plays since a quarter of a second: 18 frames of the disc.
    constexpr int FramesLeft = (60 * 1000 - 250 + 39) / 40;
    EXPECT_THAT(Passes(FramesLeft), Each(40U));
    EXPECT_TRUE(WaitUntil([this] { return m_player.GetStatus() == CdPlayer::Status_Stopped; }));
    EXPECT_TRUE(AwaitPolls(10));
    const std::vector<std::string> frames = m_frames.GetFrames();
    ASSERT_THAT(frames, SizeIs(FramesLeft));
    for (int i = 0; i < FramesLeft; ++i) {
        const int place = Desk::CdFirstFrame + (250 + i * 40) * 75 / 1000;
        ASSERT_EQ(frames[static_cast<std::size_t>(i)], ToText(place / 3)) << i;
    }
    EXPECT_EQ(frames.back(), "00:01:01:24");
    EXPECT_THAT(m_clock.GetSleeps(), SizeIs(4 + FramesLeft)) << "and no sleep since the end";
    EXPECT_TRUE(m_device->IsActive());
}

TEST_F(CdFrames, HaveHoursOfMinutesAndEveryThirdFrameOfTheDisc)
{
    m_drive.Insert(Desk::CdDisc::MakeAudio({5900}));
    const struct {
        int minutes, seconds, frames;
        const char* text;
    } table[] = {{61, 5, 74, "01:01:05:24"}, {0, 2, 0, "00:00:02:00"},    {0, 2, 2, "00:00:02:00"},
                 {0, 2, 3, "00:00:02:01"},   {59, 59, 74, "00:59:59:24"}, {60, 0, 0, "01:00:00:00"},
                 {98, 20, 71, "01:38:20:23"}};
    std::vector<std::string> expected;
    for (const auto& [minutes, seconds, frames, text] : table) {
        PlayFrom(minutes, seconds, frames);
        m_device->Enable();
        m_clock.WaitForSleeps(expected.size() + 1);
        expected.emplace_back(text);
        EXPECT_EQ(m_frames.GetFrames(), expected);
        PlayFrom(minutes, seconds, frames);
        m_player.Stop();
        m_clock.Advance(40);
        m_device->Disable();
    }
}

TEST_F(CdFrames, AreWithoutDropFrame)
{
    bool isDropFrame = true;
    QObject::connect(m_device.get(), &DeviceCd::frameRead,
                     [&](const auto&, const Frame& frame) { isDropFrame = frame.dropFrame; });
    PlayFrom(0, 2, 0);
    m_device->Enable();
    m_clock.WaitForSleeps(1);
    End();
    EXPECT_FALSE(isDropFrame);
}

TEST_F(CdFrames, CarryTheDeviceAndSourceZeroOnTheDevicesThread)
{
    PlayFrom(0, 2, 0);
    m_device->Enable();
    Passes(2);
    m_clock.WaitForSleeps(3);
    const auto ids = m_frames.GetIds();
    ASSERT_THAT(ids, SizeIs(4)) << "the arrival and three frames";
    for (const auto& id : ids) {
        EXPECT_EQ(id.device, m_device.get());
        EXPECT_EQ(id.number, 0U);
    }
    EXPECT_THAT(m_frames.GetThreads(), Each(m_frames.GetThreads().front()));
    EXPECT_THAT(m_frames.GetThreads(), Each(Ne(TestSupport::GetThreadId())));
}

TEST_F(CdFrames, AreRepeatedWhereThePlaceIsTheSame)
{
    PlayFrom(0, 2, 0);
    m_frozen = m_clock.GetMillisecs();
    m_device->Enable();
    Passes(3);
    m_clock.WaitForSleeps(4);
    EXPECT_THAT(m_frames.GetFrames(),
                ElementsAre("00:00:02:00", "00:00:02:00", "00:00:02:00", "00:00:02:00"));
}

TEST_F(CdFrames, AreSleptForByWhatIsLeftOf40Milliseconds)
{
    std::deque<unsigned> durations{0, 1, 10, 39, 40, 41, 500, 38};
    PlayFrom(0, 2, 0);
    m_drive.SetObserver([&](unsigned long request) {
        if (request != Subchannel || durations.empty())
            return;
        m_clock.Advance(durations.front());
        durations.pop_front();
    });
    m_device->Enable();
    EXPECT_THAT(Passes(6), ElementsAre(40, 39, 30, 1, 2, 40)) << "none behind 40, 41 and 500";
    m_clock.WaitForSleeps(7);
    EXPECT_THAT(m_frames.GetFrames(), SizeIs(10)) << "one for every poll";
    m_drive.SetObserver({});
}

TEST_F(CdFrames, AreSleptForLessTheTimeThatSlotsTake)
{
    QObject::connect(m_device.get(), &DeviceCd::frameRead, [this] { m_clock.Advance(25); });
    PlayFrom(0, 2, 0);
    m_device->Enable();
    EXPECT_THAT(Passes(3), Each(15U));
}

TEST_F(CdFrames, AreNoneWhilePausedButTheSourceStaysActive)
{
    PlayFrom(0, 2, 0);
    m_device->Enable();
    m_clock.WaitForSleeps(1);
    m_player.Pause();
    Passes(1);
    EXPECT_TRUE(AwaitPolls(50));
    EXPECT_EQ(m_frames.CountFrames(), 1U);
    EXPECT_THAT(m_clock.GetSleeps(), SizeIs(1)) << "polled without a pause";
    EXPECT_TRUE(m_device->IsActive());
    m_player.Pause();
    m_clock.WaitForSleeps(2);
    EXPECT_EQ(m_frames.CountFrames(), 2U);
}

TEST_F(CdFrames, AreNoneFromADiscAtRestButTheSourceIsActive)
{
    m_device->Enable();
    EXPECT_TRUE(AwaitPolls(50));
    EXPECT_THAT(m_frames.GetFrames(), IsEmpty());
    EXPECT_THAT(m_clock.GetSleeps(), IsEmpty());
    EXPECT_TRUE(m_device->IsActive());
    EXPECT_EQ(m_log.GetTexts(), (std::vector<std::string>{"Enabling CD timecode device"}));
}

TEST_F(CdFrames, AreLoggedAsTracesWithTheDiscsOwnNumbers)
{
    m_drive.Insert(Desk::CdDisc::MakeAudio({5000}));
    PlayFrom(61, 5, 4);
    m_device->Enable();
    m_clock.WaitForSleeps(1);
    const auto lines = m_log.GetLines();
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_EQ(lines[1].text, "Read time value 61:5.4");
    EXPECT_EQ(lines[1].level, Os::Log::Trace);
    EXPECT_EQ(lines[1].context, "Hardware/Timecode/Cd");
    EXPECT_EQ(lines[1].file, "timecode/linux/timecode_cd.cpp");
}

TEST_F(CdFrames, HaveNoLogLineByDefault)
{
    Os::Log::Context* const context = Os::Log::Context::Find("Hardware/Timecode/Cd");
    ASSERT_NE(context, nullptr);
    context->SetMask(Os::Log::AllButTrace);
    PlayFrom(0, 2, 0);
    m_device->Enable();
    Passes(2);
    m_drive.Eject();
    Passes(2);
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}
