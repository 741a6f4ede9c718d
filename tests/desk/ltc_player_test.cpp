// SPDX-License-Identifier: MIT
#include "desk/ltc_player.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <stdexcept>

#include "desk/ltc_bench.h"
#include "desk/raw_pcm.h"
#include "support/wait.h"

namespace
{

using namespace Desk;
using namespace TestSupport;

constexpr std::chrono::seconds Patience(240);

std::unique_ptr<AudioSource> MakeSource(const LtcSettings& settings)
{
    return std::make_unique<LtcGenerator>(settings);
}

/// What a player said, in order: times, and the frames of losses.
struct Said {
    std::vector<std::string> words; ///< read once the player has ended

    LtcPlayer::FrameTaker OnFrame()
    {
        return [this](const LtcFrame& frame) { words.push_back(ToText(frame.time)); };
    }
    LtcPlayer::LossTaker OnLoss()
    {
        return
            [this](const LtcLoss& loss) { words.push_back("lost " + std::to_string(loss.frames)); };
    }
};

/// Tells how often another source was asked, each time before it is.
class CountedSource : public AudioSource
{
public:
    CountedSource(std::unique_ptr<AudioSource> source, std::atomic<unsigned>& reads)
        : m_source(std::move(source)), m_reads(reads)
    {
    }

    unsigned GetSampleRate() const override { return m_source->GetSampleRate(); }
    AudioBlock Read(std::span<float> samples) override
    {
        ++m_reads;
        return m_source->Read(samples);
    }
    void Stop() override { m_source->Stop(); }

private:
    const std::unique_ptr<AudioSource> m_source;
    std::atomic<unsigned>& m_reads;
};

TEST(LtcPlayer, SaysEveryFrameAndLossInOrder)
{
    const LtcSettings settings{.frames = 6, .dropouts = {{0.09, 0.06, false}}};
    for (const LtcPace pace : {LtcPace_RealTime, LtcPace_AsFastAsPossible}) {
        Said said;
        LtcPlayer player(MakeSource(settings), said.OnFrame(), said.OnLoss(), pace);
        ASSERT_TRUE(player.WaitEnd(Patience));
        EXPECT_THAT(said.words, testing::ElementsAre("10:00:00:00", "10:00:00:01", "lost 2",
                                                     "10:00:00:04", "10:00:00:05"));
    }
}

TEST(LtcPlayer, TakesADiscontinuityAsOne)
{
    // Three bits of a frame, and then the next second's: without a discontinuity it would be a
    // jump.
    Said said;
    LtcPlayer player(MakeSource({.frames = 55, .dropouts = {{0.0815, 1.9985, true}}}),
                     said.OnFrame(), said.OnLoss(), LtcPace_AsFastAsPossible);
    ASSERT_TRUE(player.WaitEnd(Patience));
    EXPECT_THAT(said.words, testing::ElementsAre("10:00:00:00", "10:00:00:01", "lost 1",
                                                 "10:00:02:02", "10:00:02:03", "10:00:02:04"));
}

TEST(LtcPlayer, PlaysTenMinutesAsFastAsItCan)
{
    std::atomic<unsigned> frames = 0;
    LtcPlayer player(
        MakeSource({.frames = 25 * 600, .sampleRate = 8000}), [&](const LtcFrame&) { ++frames; },
        {}, LtcPace_AsFastAsPossible);
    ASSERT_TRUE(player.WaitEnd(Patience));
    EXPECT_EQ(frames, 25U * 600);
}

TEST(LtcPlayer, SaysNothingMoreOnceStopped)
{
    std::atomic<unsigned> frames = 0;
    LtcPlayer player(MakeSource({.frames = 100000}), [&](const LtcFrame&) { ++frames; }, {});
    EXPECT_TRUE(WaitUntil([&] { return frames > 0; }));
    player.Stop();
    const unsigned before = frames;
    EXPECT_TRUE(player.WaitEnd(std::chrono::milliseconds(0)));
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(frames, before);
}

TEST(LtcPlayer, HasNotEndedBeforeItsEnd)
{
    LtcPlayer player(MakeSource({.frames = 100000}), {}, {});
    EXPECT_FALSE(player.WaitEnd(std::chrono::milliseconds(0)));
}

TEST(LtcPlayer, IsStoppedInALongSilence)
{
    std::atomic<unsigned> reads = 0;
    const LtcPlayer player(
        std::make_unique<CountedSource>(MakeSource({.frames = 1, .leadIn = 3600}), reads), {}, {});
    EXPECT_TRUE(WaitUntil([&] { return reads > 2; }));
}

TEST(LtcPlayer, IsStoppedByItsTaker)
{
    std::atomic<LtcPlayer*> self = nullptr;
    std::atomic<unsigned> frames = 0;
    LtcPlayer player(
        MakeSource({.frames = 1000}),
        [&](const LtcFrame&) {
            ++frames;
            WaitUntil([&] { return self.load() != nullptr; });
            self.load()->Stop();
        },
        {}, LtcPace_AsFastAsPossible);
    self = &player;
    EXPECT_TRUE(player.WaitEnd(Patience));
    EXPECT_EQ(frames, 1U);
}

TEST(LtcPlayer, IsStoppedWhileItsSourceWaits)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    for (const bool explicitly : {true, false}) {
        std::atomic<unsigned> reads = 0;
        LtcPlayer player(
            std::make_unique<CountedSource>(std::make_unique<RawPcm>(ends[0], PcmLayout{}), reads),
            {}, {});
        EXPECT_TRUE(WaitUntil([&] { return reads == 1; }));
        if (explicitly)
            player.Stop();
    }
    close(ends[0]);
    close(ends[1]);
}

TEST(LtcPlayer, RefusesASampleRateThatNoDecoderTakes)
{
    EXPECT_THROW(LtcPlayer(std::make_unique<RawPcm>(-1, PcmLayout{.sampleRate = 4000}), {}, {}),
                 std::invalid_argument);
}

} // namespace
