// SPDX-License-Identifier: MIT
// Where controls stand, and what hands tell; neither needs a desk.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QStringList>
#include <map>

#include "virtual-desk/fader_travel.h"
#include "virtual-desk/wing_hands.h"
#include "virtual-desk/wing_layout.h"
#include "virtual-desk/wing_words.h"

namespace
{

using VirtualDesk::ControlId;
using VirtualDesk::ControlKind;
using VirtualDesk::PlacedControl;
using VirtualDesk::WingHands;
using VirtualDesk::WingLayout;

const Hardware::WingModel& Model(const char* name)
{
    return *Standalone::FindWingModel(name);
}

std::map<ControlKind, std::size_t> Count(const WingLayout& layout)
{
    std::map<ControlKind, std::size_t> counts;
    for (const PlacedControl& control : layout.GetControls())
        ++counts[control.id.kind];
    return counts;
}

/// Every control apart from all others, on its plate, and all plates within the size.
void CheckPlaces(const WingLayout& layout, const std::string& name)
{
    const QRect whole(QPoint(), layout.GetSize());
    const auto& controls = layout.GetControls();
    const auto& groups = layout.GetGroups();
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const QRect& rect = controls[i].rect;
        EXPECT_FALSE(rect.isEmpty()) << name << i;
        EXPECT_TRUE(groups.at(static_cast<std::size_t>(controls[i].group)).rect.contains(rect))
            << name << i;
        for (std::size_t j = i + 1; j < controls.size(); ++j) {
            EXPECT_FALSE(rect.intersects(controls[j].rect)) << name << i << ' ' << j;
            EXPECT_NE(controls[i].id, controls[j].id) << name << i << ' ' << j;
        }
        for (const auto& [text, labelRect] : layout.GetLabels())
            EXPECT_FALSE(rect.intersects(labelRect)) << name << text.toStdString();
    }
    for (std::size_t i = 0; i < groups.size(); ++i) {
        EXPECT_TRUE(whole.contains(groups[i].rect)) << name << i;
        for (std::size_t j = i + 1; j < groups.size(); ++j)
            EXPECT_FALSE(groups[i].rect.intersects(groups[j].rect)) << name << i << ' ' << j;
    }
}

TEST(SurfaceLayout, EveryControlOfEveryModelHasItsPlace)
{
    for (const Hardware::WingModel& model : Standalone::GetWingModels()) {
        const WingLayout layout(model);
        CheckPlaces(layout, model.name);
        auto counts = Count(layout);
        EXPECT_EQ(counts[ControlKind::Button] + counts[ControlKind::Touch], model.buttons.size())
            << model.name;
        EXPECT_EQ(counts[ControlKind::Fader], model.faders.size()) << model.name;
        EXPECT_EQ(counts[ControlKind::Encoder], model.encoders.size()) << model.name;
        EXPECT_EQ(counts[ControlKind::Lcd], model.lcds.size()) << model.name;
        EXPECT_EQ(counts[ControlKind::Display], 0U) << model.name;
        EXPECT_FALSE(layout.GetControls().empty()) << model.name;
    }
}

TEST(SurfaceLayout, ControlsKeepTheirPartsAndMasters)
{
    const auto& model = Model("Vex4Keystone");
    const WingLayout layout(model);
    for (const PlacedControl& control : layout.GetControls())
        if (control.id.kind == ControlKind::Button) {
            const auto index = static_cast<std::size_t>(control.id.index);
            EXPECT_EQ(std::make_pair(control.pid, control.mid), model.buttons.at(index)) << index;
        }
}

TEST(SurfaceLayout, AMasterIsAColumnWithItsFaderAmongItsKeys)
{
    for (const char* const name : {"PlaybackWing", "Vex4Keystone", "Vex4Petite"}) {
        const WingLayout layout(Model(name));
        for (const PlacedControl& fader : layout.GetControls()) {
            if (fader.id.kind != ControlKind::Fader)
                continue;
            int above = 0;
            int below = 0;
            for (const PlacedControl& other : layout.GetControls()) {
                if (other.mid != fader.mid || other.id.kind != ControlKind::Button)
                    continue;
                EXPECT_EQ(other.rect.left(), fader.rect.left()) << name << other.id.index;
                EXPECT_EQ(other.group, fader.group) << name << other.id.index;
                ++(other.rect.bottom() < fader.rect.top() ? above : below);
            }
            EXPECT_EQ(above, 3) << name << fader.id.index;
            EXPECT_EQ(below, 2) << name << fader.id.index;
        }
    }
}

TEST(SurfaceLayout, SectionsStandApart)
{
    const WingLayout layout(Model("Vex4Keystone"));
    const auto& groups = layout.GetGroups();
    ASSERT_GE(groups.size(), 2U);
    EXPECT_EQ(groups[0].title, "Masters 1 to 10");
    EXPECT_EQ(groups[1].title, "Masters 11 to 20");
    EXPECT_GT(groups[1].rect.left(), groups[0].rect.right());
    const auto first = layout.Find({ControlKind::Fader, 9});
    const auto second = layout.Find({ControlKind::Fader, 10});
    ASSERT_TRUE(first && second);
    EXPECT_EQ(layout.GetControls()[*first].group, 0);
    EXPECT_EQ(layout.GetControls()[*second].group, 1);
}

TEST(SurfaceLayout, WhatNoMasterHasIsPlacedTheSame)
{
    Hardware::WingModel model;
    model.sections = 1;
    model.mastersPerSection = 2;
    model.buttons = {{70, 1}, {70, 2}, {70, 9}, {150, 65535}};
    model.faders = {{80, 1}, {80, 2}, {80, 40}};
    model.lcds = {{90, 0}};
    const WingLayout layout(model);
    CheckPlaces(layout, "made up");
    EXPECT_EQ(layout.GetControls().size(), 8U);
}

TEST(SurfaceLayout, DisplaysUpToTheLast)
{
    for (const int displays : {1, 4, 13, 256}) {
        const WingLayout layout(Model("ExpansionWing"), displays);
        CheckPlaces(layout, std::to_string(displays));
        EXPECT_EQ(Count(layout)[ControlKind::Display], static_cast<std::size_t>(displays));
    }
}

TEST(SurfaceLayout, OnlySomeHaveABallADrawerAndARing)
{
    EXPECT_TRUE(WingLayout(Model("Vex4Pixi")).Find({ControlKind::Ball, 0}));
    EXPECT_FALSE(WingLayout(Model("PlaybackWing")).Find({ControlKind::Ball, 0}));
    EXPECT_TRUE(WingLayout(Model("TrackballWidget")).Find({ControlKind::Ring, 0}));
    EXPECT_FALSE(WingLayout(Model("Vex4Pixi")).Find({ControlKind::Ring, 0}));
    EXPECT_TRUE(WingLayout(Model("Vex4DeskPlayback")).Find({ControlKind::Drawer, 0}));
    EXPECT_FALSE(WingLayout(Model("Vex4ExternalPlayback")).Find({ControlKind::Drawer, 0}));
    EXPECT_EQ(Count(WingLayout(Model("LtcWidget")))[ControlKind::Link], 4U);
    EXPECT_EQ(Count(WingLayout(Model("Vex4TopBox")))[ControlKind::Touch], 32U);
}

TEST(SurfaceLayout, FindsWhatStandsAtAPoint)
{
    const WingLayout layout(Model("PlaybackWing"));
    for (std::size_t place = 0; place < layout.GetControls().size(); ++place)
        EXPECT_EQ(layout.FindAt(layout.GetControls()[place].rect.center()), place);
    EXPECT_EQ(layout.FindAt({0, 0}), std::nullopt);
}

TEST(SurfaceLayout, ArrowsGoToWhatIsBeside)
{
    const WingLayout layout(Model("PlaybackWing"));
    const auto go = [&](ControlId from, QPoint direction) {
        return layout.GetControls()[layout.FindBeside(*layout.Find(from), direction)].id;
    };
    const auto key = [](int index) { return ControlId{ControlKind::Button, index}; };
    const auto fader = [](int index) { return ControlId{ControlKind::Fader, index}; };
    EXPECT_EQ(go(key(3), {1, 0}), key(4));
    EXPECT_EQ(go(key(3), {-1, 0}), key(2));
    EXPECT_EQ(go(key(3), {0, 1}), key(13));
    EXPECT_EQ(go(key(23), {0, 1}), fader(3));
    EXPECT_EQ(go(fader(3), {0, 1}), key(33));
    EXPECT_EQ(go(fader(3), {0, -1}), key(23));
    EXPECT_EQ(go(fader(3), {1, 0}), fader(4));
    EXPECT_EQ(go(key(0), {-1, 0}), key(0)); // the end
    EXPECT_EQ(go(key(0), {0, -1}), key(0));
    EXPECT_EQ(go(key(9), {1, 0}), key(50)); // on to the next plate
}

TEST(SurfaceLayout, TabReachesEveryGroupThereAndBack)
{
    for (const Hardware::WingModel& model : Standalone::GetWingModels()) {
        const WingLayout layout(model);
        std::vector<std::size_t> stops{0};
        for (auto next = layout.FindNextStop(0, true); next;
             next = layout.FindNextStop(*next, true))
            stops.push_back(*next);
        std::set<std::pair<int, ControlKind>> reached;
        for (const std::size_t stop : stops)
            reached.emplace(layout.GetControls()[stop].group, layout.GetControls()[stop].id.kind);
        EXPECT_EQ(reached.size(), stops.size()) << model.name;
        for (const PlacedControl& control : layout.GetControls())
            EXPECT_TRUE(reached.contains({control.group, control.id.kind})) << model.name;
        for (std::size_t stop = stops.size() - 1; stop > 0; --stop)
            EXPECT_EQ(layout.FindNextStop(stops[stop], false), stops[stop - 1]) << model.name;
        EXPECT_EQ(layout.FindNextStop(0, false), std::nullopt) << model.name;
    }
}

TEST(SurfaceLayout, AFadersCapReachesBothEnds)
{
    const QRect fader(10, 20, 42, 148);
    for (const int position : {0, 1, 127, 254, 255})
        EXPECT_EQ(VirtualDesk::GetFaderPosition(fader, VirtualDesk::GetFaderY(fader, position)),
                  position);
    EXPECT_LT(VirtualDesk::GetFaderY(fader, 255), VirtualDesk::GetFaderY(fader, 0));
}

TEST(SurfaceLayout, CellsShowCharactersAndCodes)
{
    EXPECT_EQ(VirtualDesk::GetCellText(0), "");
    EXPECT_EQ(VirtualDesk::GetCellText(U'G'), "G");
    EXPECT_EQ(VirtualDesk::GetCellText(U'\u00E4'), "\u00E4");
    EXPECT_EQ(VirtualDesk::GetCellText(U' '), " ");
    EXPECT_EQ(VirtualDesk::GetCellText(7), "7");
    EXPECT_EQ(VirtualDesk::GetCellText(0xDEADBEEF), "DEADBEEF");
}

class SurfaceHands : public testing::Test
{
protected:
    QStringList m_lines;
    WingHands m_hands{"widget a", false, [this](const QString& line) { m_lines << line; }};

    QStringList Take() { return std::exchange(m_lines, {}); }
    void Follow(const QString& line, bool isDone = true)
    {
        std::vector<std::string> words;
        for (const QString& word : line.split(' '))
            words.push_back(word.toStdString());
        m_hands.Follow(line, words, isDone);
    }
};

TEST_F(SurfaceHands, TellTheFirstMoveAtOnceAndTheLastWhenFlushed)
{
    for (const int value : {10, 20, 30, 30})
        m_hands.MoveFader(2, value);
    m_hands.Turn(0, 1);
    m_hands.Turn(0, 2);
    m_hands.Turn(0, 3);
    m_hands.Roll(1, 0);
    m_hands.Roll(2, -1);
    EXPECT_EQ(Take(),
              QStringList({"widget a fader 2 10", "widget a encoder 0 1", "widget a roll 1 0"}));
    m_hands.Flush();
    EXPECT_EQ(Take(),
              QStringList({"widget a fader 2 30", "widget a encoder 0 5", "widget a roll 2 -1"}));
    m_hands.Flush();
    m_hands.MoveFader(2, 31);
    EXPECT_EQ(Take(), QStringList("widget a fader 2 31"));
}

TEST_F(SurfaceHands, TellOfMovesBeforeAPress)
{
    m_hands.MoveFader(2, 10);
    m_hands.MoveFader(2, 20);
    m_hands.Press({ControlKind::Button, 4});
    EXPECT_EQ(Take(),
              QStringList({"widget a fader 2 10", "widget a fader 2 20", "widget a press 4"}));
}

TEST_F(SurfaceHands, PressAKeyOnceUntilItIsLetGo)
{
    m_hands.Press({ControlKind::Button, 4});
    m_hands.Press({ControlKind::Button, 4});
    m_hands.Release({ControlKind::Button, 4});
    m_hands.Release({ControlKind::Button, 4});
    EXPECT_EQ(Take(), QStringList({"widget a press 4", "widget a release 4"}));
}

TEST_F(SurfaceHands, StepsThatCancelOutAreNotTold)
{
    m_hands.Turn(1, 1);
    m_hands.Turn(1, 2);
    m_hands.Turn(1, -2);
    m_hands.Flush();
    EXPECT_EQ(Take(), QStringList("widget a encoder 1 1"));
}

TEST_F(SurfaceHands, KeepFadersWithinTheirTravel)
{
    m_hands.MoveFader(0, 300);
    m_hands.Flush();
    m_hands.MoveFader(0, -5);
    EXPECT_EQ(Take(), QStringList({"widget a fader 0 255", "widget a fader 0 0"}));
}

TEST_F(SurfaceHands, FollowOthersButNotThemselves)
{
    m_hands.MoveFader(0, 10);
    m_hands.Flush();
    m_hands.MoveFader(0, 20);
    Follow("widget a fader 0 10"); // their own, which is past
    EXPECT_EQ(m_hands.GetFader(0), 20);
    Follow("widget a fader 0 20");
    Follow("widget a fader 0 10"); // somebody else's
    EXPECT_EQ(m_hands.GetFader(0), 10);
    Follow("widget a fader 0 99", false); // was not done
    EXPECT_EQ(m_hands.GetFader(0), 10);
    Follow("widget a encoder 3 -4");
    EXPECT_EQ(m_hands.GetSteps(3), -4);
    Follow("widget a touch 3");
    EXPECT_TRUE(m_hands.IsDown({ControlKind::Touch, 3}));
    Follow("widget a untouch 3");
    EXPECT_FALSE(m_hands.IsDown({ControlKind::Touch, 3}));
    Follow("widget a");
    Follow("widget a unplug");
}

TEST_F(SurfaceHands, FollowAMotorOnlyWhenItIsSentElsewhere)
{
    m_hands.FollowMotor(0, -1);
    EXPECT_EQ(m_hands.GetFader(0), -1);
    m_hands.FollowMotor(0, 100);
    EXPECT_EQ(m_hands.GetFader(0), 100);
    m_hands.MoveFader(0, 50);
    m_hands.FollowMotor(0, 100);
    EXPECT_EQ(m_hands.GetFader(0), 50);
    m_hands.FollowMotor(0, 0);
    EXPECT_EQ(m_hands.GetFader(0), 0);
}

TEST_F(SurfaceHands, LetGoOfEverythingAtOnce)
{
    m_hands.Press({ControlKind::Button, 1});
    m_hands.ToggleLatch({ControlKind::Touch, 2});
    m_hands.Press({ControlKind::Button, 1}); // is down
    Take();
    m_hands.ReleaseAll();
    EXPECT_EQ(Take(), QStringList({"widget a release 1", "widget a untouch 2"}));
    m_hands.ReleaseAll();
    m_hands.Release({ControlKind::Button, 1});
    EXPECT_EQ(Take(), QStringList());
}

} // namespace
