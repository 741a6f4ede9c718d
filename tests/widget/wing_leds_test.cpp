// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <tuple>

#include "desk/widget_bus.h"
#include "os/event.h"
#include "standalone/widget_transport.h"
#include "widget/widget_facts.h"
#include "widget/widget_manager.h"
#include "widget/wings.h"

using Hardware::PlaybackWing;
using Hardware::UmWing;
using testing::ElementsAre;
using testing::IsEmpty;

namespace Report = Standalone::Report;

namespace
{

class WingLeds : public testing::Test
{
protected:
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    const std::unique_ptr<PlaybackWing> wing = TestSupport::Open<PlaybackWing>(widget);
};

TEST_F(WingLeds, AreSetByPartAndMaster)
{
    EXPECT_TRUE(wing->SetLed(71, 3, UmWing::LedState_Flash));
    EXPECT_THAT(widget.GetLog(), ElementsAre(Report::Output(Report::SetLed{12, 2})));
    EXPECT_EQ(widget.GetLed(12), UmWing::LedState_Flash);
    EXPECT_EQ(wing->GetLedState(12), UmWing::LedState_Flash);
}

TEST_F(WingLeds, TakeEveryState)
{
    for (const UmWing::LedState state : {UmWing::LedState_On, UmWing::LedState_Flash,
                                         UmWing::LedState_Dim, UmWing::LedState_Off}) {
        EXPECT_TRUE(wing->SetLed(70, 1, state));
        EXPECT_EQ(widget.GetLed(0), static_cast<int>(state));
        EXPECT_EQ(wing->GetLedState(0), static_cast<int>(state));
    }
}

TEST_F(WingLeds, OfAnUnknownPartOrMasterAreRefused)
{
    EXPECT_FALSE(wing->SetLed(99, 1, UmWing::LedState_On));
    EXPECT_FALSE(wing->SetLed(70, 11, UmWing::LedState_On));
    EXPECT_FALSE(wing->SetLed(70, 0, UmWing::LedState_On));
    EXPECT_FALSE(wing->SetLed(170, 65535, UmWing::LedState_On));
    EXPECT_THAT(widget.GetLog(), IsEmpty());
}

TEST_F(WingLeds, StayAsTheyAreWhenTheWingFails)
{
    wing->SetLed(70, 1, UmWing::LedState_On);
    widget.SetFailing(true);
    EXPECT_FALSE(wing->SetLed(70, 1, UmWing::LedState_Flash));
    EXPECT_FALSE(wing->SetAllLed(UmWing::LedState_Flash));
    EXPECT_EQ(wing->GetLedState(0), UmWing::LedState_On);
    EXPECT_EQ(wing->GetLedState(1), -1);
    widget.SetFailing(false);
    EXPECT_TRUE(wing->SetLed(70, 1, UmWing::LedState_Dim));
}

TEST_F(WingLeds, OfADetachedWingAreRefused)
{
    widget.Unplug();
    EXPECT_FALSE(wing->SetLed(70, 1, UmWing::LedState_On));
    EXPECT_EQ(wing->GetLedState(0), -1);
}

TEST_F(WingLeds, AreSetAllAtOnce)
{
    EXPECT_TRUE(wing->SetAllLed(UmWing::LedState_Dim));
    EXPECT_THAT(widget.GetLog(), ElementsAre(Report::Output(Report::SetAllLed{3})));
    for (unsigned short led = 0; led < 70; ++led) {
        EXPECT_EQ(wing->GetLedState(led), UmWing::LedState_Dim) << led;
        EXPECT_EQ(widget.GetLed(led), UmWing::LedState_Dim) << led;
    }
    EXPECT_EQ(wing->GetLedState(70), -1);
    EXPECT_EQ(widget.GetLed(70), -1);
}

TEST_F(WingLeds, AreSharedByAllObjectsOfTheWing)
{
    const auto another = TestSupport::Open<PlaybackWing>(widget);
    wing->SetLed(70, 2, UmWing::LedState_On);
    EXPECT_EQ(another->GetLedState(1), UmWing::LedState_On);
}

TEST_F(WingLeds, AreUnknownAtFirstAndKnownFromTheWingsOwnReports)
{
    EXPECT_EQ(wing->GetLedState(4), -1);
    widget.ChangeLed(4, 1);
    EXPECT_EQ(wing->GetLedState(4), 1);
    EXPECT_EQ(widget.GetLed(4), 1);
}

TEST_F(WingLeds, AreUnknownOnAWingThatWasPluggedAgain)
{
    wing->SetLed(70, 1, UmWing::LedState_On);
    widget.Unplug();
    widget.Plug();
    EXPECT_EQ(TestSupport::Open<PlaybackWing>(widget)->GetLedState(0), -1);
}

TEST_F(WingLeds, OfASecondSectionHaveMastersFromEleven)
{
    auto& keystone = bus.Add({"Vex4Keystone", 1, L"b"});
    EXPECT_TRUE(
        TestSupport::Open<Hardware::Vex4Keystone>(keystone)->SetLed(70, 11, UmWing::LedState_On));
    EXPECT_EQ(keystone.GetLed(50), UmWing::LedState_On);
}

/// A wing that can be held up while it takes a LED's state.
class SlowWing final : public Standalone::WidgetTransport,
                       public std::enable_shared_from_this<SlowWing>
{
public:
    enum class Hold { None, BeforeItShows, AfterItShows };

    void SetObserver(Standalone::WidgetObserver*) override {}
    std::vector<Standalone::WidgetDescription> Enumerate() override
    {
        return {{&GUID_DEVINTERFACE_QRTUMPLAYBACKWING, L"slow", 1}};
    }
    std::unique_ptr<Standalone::WidgetConnection> Open(const std::wstring&) override
    {
        return std::make_unique<Connection>(shared_from_this());
    }

    /// For the next state.
    void HoldUp(Hold hold) { m_hold = hold; }
    void AwaitHeldUp() { m_isHeldUp.Wait(); }
    void LetGo() { m_gate.Set(); }
    int GetShown() const { return m_shown; }

private:
    struct Connection final : Standalone::WidgetConnection {
        explicit Connection(std::shared_ptr<SlowWing> itsWing) : wing(std::move(itsWing)) {}
        bool Write(const Report::Bytes& report) override { return wing->Take(report); }
        const std::shared_ptr<SlowWing> wing;
    };

    bool Take(const Report::Bytes& report)
    {
        const auto output = Report::DecodeOutput(report);
        const Hold hold = m_hold.exchange(Hold::None);
        if (hold == Hold::BeforeItShows)
            Wait();
        if (const auto* const one = std::get_if<Report::SetLed>(&*output))
            m_shown = one->state;
        else if (const auto* const all = std::get_if<Report::SetAllLed>(&*output))
            m_shown = all->state;
        if (hold == Hold::AfterItShows)
            Wait();
        return true;
    }
    void Wait()
    {
        m_isHeldUp.Set();
        m_gate.Wait();
    }

    std::atomic<Hold> m_hold{Hold::None};
    std::atomic<int> m_shown{-1};
    Os::Event m_isHeldUp, m_gate;
};

class TwoWriters : public testing::TestWithParam<std::tuple<SlowWing::Hold, bool, bool>>
{
};

TEST_P(TwoWriters, OfALedLeaveItAsItIsKnown)
{
    const auto& [hold, isFirstAll, isSecondAll] = GetParam();
    const auto slow = std::make_shared<SlowWing>();
    Standalone::SetWidgetTransport(slow);
    {
        PlaybackWing wing(
            *Hardware::WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMPLAYBACKWING).begin());
        const auto set = [&wing](bool isAll, UmWing::LedState state) {
            return isAll ? wing.SetAllLed(state) : wing.SetLed(70, 1, state);
        };
        slow->HoldUp(hold);
        std::thread first(
            [&, isAll = isFirstAll] { EXPECT_TRUE(set(isAll, UmWing::LedState_On)); });
        slow->AwaitHeldUp();
        EXPECT_TRUE(set(isSecondAll, UmWing::LedState_Flash));
        slow->LetGo();
        first.join();
        EXPECT_EQ(wing.GetLedState(0), UmWing::LedState_Flash);
        EXPECT_EQ(slow->GetShown(), UmWing::LedState_Flash);
    }
    Standalone::SetWidgetTransport(nullptr);
}

INSTANTIATE_TEST_SUITE_P(WingLeds, TwoWriters,
                         testing::Combine(testing::Values(SlowWing::Hold::BeforeItShows,
                                                          SlowWing::Hold::AfterItShows),
                                          testing::Bool(), testing::Bool()));

TEST_F(WingLeds, AreSetInTheSlotThatHearsOfThem)
{
    QObject::connect(
        &widget, &Desk::VirtualWidget::ledChanged, &widget,
        [this](auto, int state) {
            if (state == UmWing::LedState_On)
                wing->SetLed(70, 1, UmWing::LedState_Dim);
        },
        Qt::DirectConnection);
    wing->SetLed(70, 1, UmWing::LedState_On);
    EXPECT_EQ(widget.GetLed(0), UmWing::LedState_Dim);
    EXPECT_EQ(wing->GetLedState(0), UmWing::LedState_Dim);
}

} // namespace
