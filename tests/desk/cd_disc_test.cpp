// SPDX-License-Identifier: MIT
#include "desk/cd_disc.h"

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

namespace
{

using Desk::CdDisc;
using testing::HasSubstr;

TEST(CdDisc, IsMadeOfTracksWithGapsBeforeThem)
{
    const CdDisc disc = CdDisc::MakeAudio({10, 1, 30});
    ASSERT_EQ(disc.tracks.size(), 3U);
    EXPECT_EQ(disc.tracks[0].pregap, 0);
    EXPECT_EQ(disc.tracks[0].GetStart(), 150);
    EXPECT_EQ(disc.tracks[1].pregap, 900 - 150);
    EXPECT_EQ(disc.tracks[1].GetStart(), 900);
    EXPECT_EQ(disc.tracks[2].pregap, 901) << "no room for two seconds";
    EXPECT_EQ(disc.leadOut, 150 + 41 * 75);
    EXPECT_EQ(disc.GetLastNumber(), 3);
    EXPECT_TRUE(disc.HasAudio());
    EXPECT_FALSE(CdDisc::MakeData(10).HasAudio());
}

TEST(CdDisc, KnowsWhatIsWhere)
{
    CdDisc disc = CdDisc::MakeAudio({10, 20});
    disc.tracks[1].indices.push_back(1000);
    disc.firstNumber = 4;
    const struct {
        int frame, track, index, relative;
    } table[] = {{0, 4, 0, -150},   {149, 4, 0, -1}, {150, 4, 1, 0}, {749, 4, 1, 599},
                 {750, 5, 0, -150}, {899, 5, 0, -1}, {900, 5, 1, 0}, {1000, 5, 2, 100}};
    for (const auto& [frame, track, index, relative] : table) {
        const CdDisc::Place place = disc.Locate(frame);
        EXPECT_EQ(place.track, track) << frame;
        EXPECT_EQ(place.index, index) << frame;
        EXPECT_EQ(place.relative, relative) << frame;
    }
}

TEST(CdDisc, FindsTracksByNumber)
{
    CdDisc disc = CdDisc::MakeAudio({10, 20});
    disc.firstNumber = 4;
    EXPECT_EQ(disc.FindTrack(3), nullptr);
    EXPECT_EQ(disc.FindTrack(4), &disc.tracks[0]);
    EXPECT_EQ(disc.FindTrack(5), &disc.tracks[1]);
    EXPECT_EQ(disc.FindTrack(6), nullptr);
}

TEST(CdDisc, IsCheckedForWhatThereCannotBe)
{
    const std::pair<std::function<void(CdDisc&)>, const char*> table[] = {
        {[](CdDisc& disc) { disc.tracks.clear(); }, "at least one track"},
        {[](CdDisc& disc) { disc.firstNumber = 0; }, "tracks 1 to 99"},
        {[](CdDisc& disc) { disc.firstNumber = 98; }, "tracks 1 to 99"},
        {[](CdDisc& disc) { disc.tracks[1].indices.clear(); }, "at least one index"},
        {[](CdDisc& disc) { disc.tracks[1].pregap = 150; }, "behind the one before"},
        {[](CdDisc& disc) { disc.tracks[1].pregap = 901; }, "its gap ahead"},
        {[](CdDisc& disc) {
             disc.tracks[1].indices = {900, 900};
         },
         "indices of a track rise"},
        {[](CdDisc& disc) { disc.leadOut = disc.tracks[2].GetStart(); }, "lead-out is behind"},
        {[](CdDisc& disc) { disc.leadOut = 450000; }, "99:59:74"}};
    for (const auto& [spoil, reason] : table) {
        CdDisc disc = CdDisc::MakeAudio({10, 20, 30});
        disc.Check();
        spoil(disc);
        try {
            disc.Check();
            ADD_FAILURE() << reason;
        } catch (const std::invalid_argument& error) {
            EXPECT_THAT(error.what(), HasSubstr(reason));
        }
    }
    EXPECT_THROW(CdDisc::MakeAudio({}), std::invalid_argument);
    EXPECT_THROW(CdDisc::MakeAudio({10, 0}), std::invalid_argument);
    EXPECT_THROW(CdDisc::MakeAudio({6000}), std::invalid_argument);
    EXPECT_THROW(CdDisc::MakeAudio(std::vector<int>(10000, 6000)), std::invalid_argument);
    EXPECT_EQ(CdDisc::MakeAudio({5997}).leadOut, 449925);
}

TEST(CdDisc, TimesReadAsOnADisc)
{
    EXPECT_EQ(Desk::ToCdText(0), "00:00:00");
    EXPECT_EQ(Desk::ToCdText(274949), "61:05:74");
}

} // namespace
