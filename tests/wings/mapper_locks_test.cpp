// SPDX-License-Identifier: MIT

// What the mapper does outside its lock, and which of two entries goes.

#include <functional>
#include <future>

#include "widget/widget_manager.h"
#include "wings/own_factory.h"
#include "wings/wing_bench.h"

using Hardware::WingMapper;
using testing::ElementsAre;
using TestSupport::OnCreate;

namespace
{

/// Whether another thread gets an answer from the mapper meanwhile, which needs its lock.
bool CanAskMapper()
{
    auto answer = std::async(std::launch::async, [] { WingMapper::Get().connected_wings(); });
    return answer.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
}

class WingMapperLocks : public TestSupport::WingBench
{
protected:
    ~WingMapperLocks() override { OnCreate() = nullptr; }
};

} // namespace

TEST_F(WingMapperLocks, AWingIsMadeOutsideTheLockWithAKeyFromZero)
{
    WingMapper::Begin();
    std::vector<unsigned long> keys;
    bool couldAsk = false;
    OnCreate() = [&](unsigned long key) {
        keys.push_back(key);
        couldAsk = CanAskMapper();
        return 0UL;
    };
    Add("PlaybackWing");
    EXPECT_THAT(keys, ElementsAre(0));
    EXPECT_TRUE(couldAsk);
}

TEST_F(WingMapperLocks, ASignalIsRaisedOutsideTheLock)
{
    std::vector<bool> couldAsk;
    const QObject context;
    QObject::connect(
        &m_mapper, &WingMapper::wing_change, &context,
        [&couldAsk] { couldAsk.push_back(CanAskMapper()); }, Qt::DirectConnection);
    WingMapper::Begin();
    Add("PlaybackWing").Unplug();
    EXPECT_THAT(couldAsk, ElementsAre(true, true));
}

TEST_F(WingMapperLocks, AWingIsWorkedOutsideTheLock)
{
    WingMapper::Begin();
    Desk::VirtualWidget& wing = Add("Vex4Pixi");
    Desk::VirtualWidget& other = Add("Vex4Petite");
    other.Unplug();
    m_recorder.Take();
    bool wasPlugged = false;
    // In the middle of the output; the news of a plug takes the lock for writing.
    QObject::connect(
        &wing, &Desk::VirtualWidget::allLedsChanged, &wing,
        [&] {
            auto plug = std::async(std::launch::async, [&other] { other.Plug(); });
            wasPlugged = plug.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
        },
        Qt::DirectConnection);
    m_mapper.set_led_all(wing.GetKey(), Hardware::UmWing::LedState_On);
    EXPECT_TRUE(wasPlugged);
    EXPECT_TRUE(m_mapper.is_wing_connected(other.GetKey()));
}

TEST_F(WingMapperLocks, OfTwoEntriesForOneWingTheFirstByKeyGoes)
{
    WingMapper::Begin();
    unsigned long next = 20;
    OnCreate() = [&next](unsigned long) { return std::exchange(next, 10); };
    Desk::VirtualWidget& wing = Add("PlaybackWing");
    // As if the driver had told twice, with another serial number read.
    const auto map =
        *Hardware::WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMPLAYBACKWING).begin();
    ASSERT_TRUE(QMetaObject::invokeMethod(&m_mapper, "wing_add", Qt::DirectConnection,
                                          Q_ARG(Hardware::WidgetMapData, map)));
    EXPECT_THAT(m_recorder.Take(), ElementsAre("wing_change 20 1", "wing_change 10 1"));
    wing.Unplug();
    EXPECT_THAT(m_recorder.Take(), ElementsAre("wing_change 10 0"));
    EXPECT_NE(m_mapper.get_wing(20), nullptr);
    EXPECT_EQ(m_mapper.get_wing(10), nullptr);
}
