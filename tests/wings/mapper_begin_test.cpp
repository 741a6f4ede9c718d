// SPDX-License-Identifier: MIT
// Wings that come and go after their class was listed and before the mapper hears of changes.
#include <atomic>

#include "support/wait.h"
#include "wings/own_factory.h"
#include "wings/wing_bench.h"

using Hardware::UmWing;
using Hardware::WingMapper;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::OnCreate;

namespace
{

/// The programmer's wing is of the class that is listed last, the keystone of the first.
class WingMapperBegin : public TestSupport::WingBench
{
protected:
    ~WingMapperBegin() override { OnCreate() = nullptr; }

    /// Begins; @p act is done once, while the first wing is made.
    static void BeginWith(const std::function<void()>& act)
    {
        OnCreate() = [&act](unsigned long) {
            OnCreate() = nullptr;
            act();
            return 0UL;
        };
        WingMapper::Begin();
    }

    Desk::VirtualWidget& AddUnplugged(const std::string& model, std::uint16_t serialNumber = 1)
    {
        Desk::VirtualWidget& wing = Add(model, serialNumber);
        wing.Unplug();
        return wing;
    }
};

} // namespace

TEST_F(WingMapperBegin, FindsAWingThatComesMeanwhile)
{
    Add("ProgrammerWing");
    Desk::VirtualWidget& keystone = AddUnplugged("Vex4Keystone");
    BeginWith([&] { keystone.Plug(); });
    EXPECT_THAT(m_recorder.Take(), ElementsAre("wing_change 196609 1", "wing_change 393217 1"));
    m_mapper.set_led_all(keystone.GetKey(), UmWing::LedState_On);
    EXPECT_EQ(keystone.GetLed(0), UmWing::LedState_On);
    keystone.Unplug();
    keystone.Plug();
    EXPECT_THAT(m_recorder.Take(), ElementsAre("wing_change 393217 0", "wing_change 393217 1"));
}

TEST_F(WingMapperBegin, DropsAWingThatGoesMeanwhile)
{
    Add("Vex4Keystone");
    Desk::VirtualWidget& sprig = Add("Vex4Sprig");
    Add("ProgrammerWing");
    // The sprig is listed, the wing after it is being made.
    OnCreate() = [&](unsigned long) {
        if (m_mapper.is_wing_connected(sprig.GetKey()))
            sprig.Unplug();
        return 0UL;
    };
    WingMapper::Begin();
    EXPECT_THAT(m_recorder.Take(), ElementsAre("wing_change 393217 1", "wing_change 1114113 1",
                                               "wing_change 196609 1", "wing_change 1114113 0"));
    EXPECT_FALSE(m_mapper.is_wing_connected(sprig.GetKey()));
    EXPECT_EQ(sprig.CountOpen(), 0);
}

TEST_F(WingMapperBegin, TakesAWingAnewThatWasPluggedAgainMeanwhile)
{
    Desk::VirtualWidget& sprig = Add("Vex4Sprig");
    Add("ProgrammerWing");
    OnCreate() = [&](unsigned long) {
        if (m_mapper.is_wing_connected(sprig.GetKey())) {
            OnCreate() = nullptr;
            sprig.Unplug();
            sprig.Plug();
        }
        return 0UL;
    };
    WingMapper::Begin();
    EXPECT_THAT(m_recorder.Take(), ElementsAre("wing_change 1114113 1", "wing_change 196609 1",
                                               "wing_change 1114113 0", "wing_change 1114113 1"));
    m_mapper.set_led_all(sprig.GetKey(), UmWing::LedState_On);
    EXPECT_EQ(sprig.GetLed(0), UmWing::LedState_On);
}

TEST_F(WingMapperBegin, AnnouncesOnItsThreadWhatChangesWhileItCatchesUp)
{
    Add("ProgrammerWing");
    Desk::VirtualWidget& keystone = AddUnplugged("Vex4Keystone");
    Desk::VirtualWidget& sprig = AddUnplugged("Vex4Sprig");
    QObject::connect(
        &m_mapper, &WingMapper::wing_change, &m_recorder,
        [&](Hardware::WidgetKey k, bool isPresent) {
            if (k == keystone.GetKey() && isPresent)
                keystone.Unplug();
        },
        Qt::DirectConnection);
    BeginWith([&] {
        keystone.Plug();
        sprig.Plug();
    });
    EXPECT_THAT(m_recorder.GetSignals(),
                ElementsAre("wing_change 196609 1", "wing_change 393217 1", "wing_change 1114113 1",
                            "wing_change 393217 0"));
    EXPECT_THAT(m_recorder.GetThreads(), Each(std::this_thread::get_id()));
}

TEST_F(WingMapperBegin, AnnouncesNothingTwice)
{
    Add("ProgrammerWing");
    Add("Vex4Keystone");
    WingMapper::Begin();
    EXPECT_THAT(m_recorder.Take(), ElementsAre("wing_change 393217 1", "wing_change 196609 1"));
    WingMapper::End();
    EXPECT_THAT(m_recorder.GetSignals(), IsEmpty());
}

TEST_F(WingMapperBegin, EndsUpWithTheWingsThatArePluggedWhateverTheyDoMeanwhile)
{
    m_bus.SetWaiting(false);
    Desk::VirtualWidget* const wings[] = {&Add("Vex4Keystone"), &Add("Vex4Sprig"),
                                          &Add("PlaybackWing"), &Add("ProgrammerWing")};
    for (int round = 0; round < 100; ++round) {
        std::atomic<bool> isEnding{false};
        std::thread hands([&] {
            for (unsigned step = 0; !isEnding; ++step) {
                Desk::VirtualWidget& wing = *wings[step % std::size(wings)];
                wing.IsPlugged() ? wing.Unplug() : wing.Plug();
                m_bus.Flush();
            }
        });
        WingMapper::Begin();
        isEnding = true;
        hands.join();
        m_bus.Flush();
        const std::vector<std::string> all = m_recorder.Take();
        for (Desk::VirtualWidget* const wing : wings) {
            const std::string key = std::to_string(wing->GetKey());
            std::string last = "wing_change " + key + " 0";
            for (const std::string& signal : all)
                if (signal.starts_with("wing_change " + key + " "))
                    last = signal;
            ASSERT_EQ(m_mapper.is_wing_connected(wing->GetKey()), wing->IsPlugged()) << round;
            ASSERT_EQ(last.back() == '1', wing->IsPlugged()) << round << ": " << last;
        }
        WingMapper::End();
    }
}
