// SPDX-License-Identifier: MIT
// The system calls that the player makes, and what it does when they are interrupted.
#include <gmock/gmock.h>

#include <cerrno>

#include "cd/cd_bench.h"
#include "support/system_calls.h"

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class CdPlayerCalls : public TestSupport::CdPlayerBench
{
protected:
    CdPlayerCalls()
    {
        m_player.Open(); // once more, under the eyes of m_calls
        m_calls.Clear();
    }

    /// Makes them and takes them down.
    template <class Verb> std::vector<std::string> Take(Verb verb)
    {
        m_calls.Clear();
        verb();
        return m_calls.GetCalls();
    }

    TestSupport::SystemCalls m_calls{"/dev/cdrom"};
};

} // namespace

TEST_F(CdPlayerCalls, OpenOpensOnceMoreAfterClosing)
{
    EXPECT_THAT(Take([this] { m_player.Open(); }), ElementsAre("close", "open /dev/cdrom"));
    EXPECT_THAT(Take([this] { m_player.Close(); }), ElementsAre("close"));
    EXPECT_THAT(Take([this] { m_player.Close(); }), IsEmpty());
}

TEST_F(CdPlayerCalls, OpenIsRepeatedWhenInterrupted)
{
    m_calls.Fail("open", {EINTR, EINTR});
    m_player.Open();
    EXPECT_EQ(m_calls.Count("open"), 3);
    EXPECT_EQ(m_player.GetTrackCount(), 3);
}

TEST_F(CdPlayerCalls, OpenThatFailsLeavesThePlayerClosed)
{
    m_calls.Fail("open", {EACCES});
    m_player.Open();
    EXPECT_EQ(m_drive.CountOpen(), 0);
    EXPECT_THAT(Take([this] { m_player.Play(); }), IsEmpty());
}

TEST_F(CdPlayerCalls, RequestsAreTheKernelsForAudioDiscs)
{
    EXPECT_THAT(Take([this] { m_player.GetStatus(); }), ElementsAre("ioctl 530b"));
    EXPECT_THAT(Take([this] { m_player.GetCurrentTrack(); }), ElementsAre("ioctl 530b"));
    EXPECT_THAT(Take([this] { m_player.GetTrackCount(); }), ElementsAre("ioctl 5305"));
    EXPECT_THAT(Take([this] { m_player.GetTrackStart(1); }),
                ElementsAre("ioctl 5305", "ioctl 5306"));
    EXPECT_THAT(Take([this] { m_player.GetTrackStart(-1); }),
                ElementsAre("ioctl 530b", "ioctl 5305", "ioctl 5306"));
    EXPECT_THAT(Take([this] { m_player.GetDiscLength(); }),
                ElementsAre("ioctl 5305", "ioctl 5306"));
    EXPECT_THAT(Take([this] { m_player.GetCurrentDiscTime(); }), ElementsAre("ioctl 530b"));
    EXPECT_THAT(Take([this] { m_player.PlayTrack(1); }), ElementsAre("ioctl 5305", "ioctl 5304"));
    EXPECT_THAT(Take([this] { m_player.PlayTime(TestSupport::MakeCdTime(150)); }),
                ElementsAre("ioctl 5305", "ioctl 5306", "ioctl 5303"));
    EXPECT_THAT(Take([this] { m_player.Pause(); }), ElementsAre("ioctl 530b", "ioctl 5301"));
    EXPECT_THAT(Take([this] { m_player.Pause(); }), ElementsAre("ioctl 530b", "ioctl 5302"));
    EXPECT_THAT(Take([this] { m_player.Stop(); }), ElementsAre("ioctl 530b", "ioctl 5307"));
}

TEST_F(CdPlayerCalls, RequestsAreRepeatedWhenInterrupted)
{
    m_calls.Fail("ioctl 530b", {EINTR, EINTR});
    m_calls.Fail("ioctl 5305", {EINTR});
    m_calls.Fail("ioctl 5304", {EINTR});
    EXPECT_THAT(Take([this] { m_player.Play(); }),
                ElementsAre("ioctl 530b", "ioctl 530b", "ioctl 530b", "ioctl 5305", "ioctl 5305",
                            "ioctl 5304", "ioctl 5304"));
    EXPECT_EQ(GetState(), "playing 00:02:00");
}
