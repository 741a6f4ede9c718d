// SPDX-License-Identifier: MIT

// Levels and preferences of the console's lights.

#include "hardware/console_lights.h"

#include <gmock/gmock.h>

#include <QMetaMethod>
#include <QThread>
#include <atomic>
#include <thread>

#include "os/log.h"
#include "support/log_capture.h"

namespace
{

using namespace Hardware;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr uires16 Full = 0x00640000;

/// Each signal as its two numbers.
class Recorder : public QObject
{
public:
    Recorder()
    {
        connect(
            &ConsoleLights::Get(), &ConsoleLights::level_change, this,
            [this](ConsoleLightId id, uires16 level) {
                signals_.emplace_back(id, level);
                thread = std::this_thread::get_id();
            },
            Qt::DirectConnection);
    }
    std::vector<std::pair<unsigned, unsigned>> signals_;
    std::thread::id thread;
};

ConsoleLightId ToId(unsigned number)
{
    return static_cast<ConsoleLightId>(number);
}

} // namespace

namespace
{

class ConsoleLightsRace : public testing::TestWithParam<ConsoleLightId>
{
};

} // namespace

TEST_P(ConsoleLightsRace, ShowTheStoredLevelWhereTwoThreadsSetOne)
{
    const ConsoleLightId id = GetParam();
    constexpr uires16 Older = 0x00140000;
    constexpr uires16 Newer = 0x00500000;
    std::atomic<bool> isFirst{true};
    const QObject context;
    // The other thread's signal comes to its end before this one reaches the recorder.
    QObject::connect(
        &ConsoleLights::Get(), &ConsoleLights::level_change, &context,
        [&] {
            if (isFirst.exchange(false))
                std::thread([id] { ConsoleLights::Get().set(id, Newer); }).join();
        },
        Qt::DirectConnection);
    const Recorder recorder;
    ConsoleLights::Get().set(id, Older);
    EXPECT_EQ(ConsoleLights::Get().get(id), Newer);
    const auto shown = [id](uires16 level) {
        return std::pair<unsigned, unsigned>(
            id, id <= CenterBacklight ? level : UDivUIRes16(level, 0x00641000));
    };
    EXPECT_THAT(recorder.signals_, ElementsAre(shown(Newer), shown(Older), shown(Newer)));
}

INSTANTIATE_TEST_SUITE_P(Lights, ConsoleLightsRace,
                         testing::Values(CenterBacklight, WingLeds, WorkLight));

TEST(ConsoleLights, ShowTheLevelThatASlotSets)
{
    const QObject context;
    QObject::connect(
        &ConsoleLights::Get(), &ConsoleLights::level_change, &context,
        [](ConsoleLightId id, uires16 level) {
            if (level == Full)
                ConsoleLights::Get().set(id, 0);
        },
        Qt::DirectConnection);
    const Recorder recorder;
    ConsoleLights::Get().set(LeftBacklight, Full);
    EXPECT_THAT(recorder.signals_,
                ElementsAre(std::pair(0U, 0U), std::pair(0U, Full), std::pair(0U, 0U)));
}

TEST(ConsoleLightIds, HaveTheirNumbers)
{
    const unsigned ids[] = {LeftBacklight,
                            RightBacklight,
                            CenterBacklight,
                            WingLeds,
                            Lcds,
                            KeyboardDrawerLight,
                            VentLight,
                            WorkLight,
                            BlueDeskLight,
                            WhiteDeskLight,
                            ProgrammerWingLeds,
                            DeskProgrammerDimmer6,
                            DeskProgrammerDimmer7,
                            DeskProgrammerDimmer8};
    for (unsigned i = 0; i < std::size(ids); ++i)
        EXPECT_EQ(ids[i], i);
    EXPECT_EQ(std::size(ids), ConsoleLightCount);
    static_assert(std::is_same_v<std::underlying_type_t<ConsoleLightId>, unsigned>);
}

TEST(ConsoleLightRecord, BeginsBeyondFullBrightness)
{
    const ConsoleLight light;
    EXPECT_EQ(light.level, 0x01000000U);
    EXPECT_EQ(light.preference, 0x01000000U);
    EXPECT_TRUE(light.enabled);
    EXPECT_TRUE(light.preference_state);
    static_assert(std::has_virtual_destructor_v<ConsoleLight>);
}

TEST(ConsoleLightRecord, FieldsStandInTheirOrder)
{
    struct Fields {
        void* table;
        uires16 level, preference;
        bool enabled, preferenceState;
    };
    static_assert(sizeof(Fields) == sizeof(ConsoleLight));
    ConsoleLight light;
    light.level = 1;
    light.preference = 2;
    light.enabled = false;
    const auto& fields = reinterpret_cast<const Fields&>(light);
    EXPECT_EQ(fields.level, 1U);
    EXPECT_EQ(fields.preference, 2U);
    EXPECT_FALSE(fields.enabled);
    EXPECT_TRUE(fields.preferenceState);
}

TEST(ConsoleLights, BeginWithTheirDefaults)
{
    ConsoleLights& lights = ConsoleLights::Get();
    const uires16 expected[] = {Full, Full, Full, 0, 0, Full, Full, Full, Full, Full, 0, 0, 0, 0};
    for (unsigned id = 0; id < ConsoleLightCount; ++id) {
        EXPECT_EQ(lights.get(ToId(id)), expected[id]) << id;
        EXPECT_EQ(lights.get_preference(ToId(id)), expected[id]) << id;
        EXPECT_TRUE(lights.get_enabled(ToId(id)));
        EXPECT_TRUE(lights.get_preference_state(ToId(id)));
    }
}

TEST(ConsoleLights, TheFirstGetIsLogged)
{
    const TestSupport::LogCapture log;
    ConsoleLights::Get();
    ConsoleLights::Get();
    ASSERT_EQ(log.GetLines().size(), 1U);
    EXPECT_EQ(log.GetLines()[0].text, "Console lights init");
    EXPECT_EQ(log.GetLines()[0].context, "Hardware/ConsoleLights");
    EXPECT_EQ(log.GetLines()[0].level, 2U);
    EXPECT_EQ(log.GetLines()[0].file, "console_lights.cpp");
    EXPECT_EQ(Os::Log::Context::Find("Hardware/ConsoleLights")->GetMask(), 30U);
}

TEST(ConsoleLights, TheFirstGetIsNotLoggedWhereNobodyWants)
{
    const TestSupport::LogCapture log("Hardware", 29);
    ConsoleLights::Get();
    EXPECT_THAT(log.GetTexts(), IsEmpty());
}

TEST(ConsoleLights, BacklightsAreAnnouncedInPercentAllOthersAsFractions)
{
    const Recorder recorder;
    for (unsigned id = 0; id < ConsoleLightCount; ++id)
        ConsoleLights::Get().set(ToId(id), 0x00320000);
    ASSERT_EQ(recorder.signals_.size(), ConsoleLightCount);
    for (unsigned id = 0; id < ConsoleLightCount; ++id) {
        EXPECT_EQ(recorder.signals_[id].first, id);
        EXPECT_EQ(recorder.signals_[id].second, id < 3 ? 0x00320000U : 0x7FEBU) << id;
        EXPECT_EQ(ConsoleLights::Get().get(ToId(id)), 0x00320000U);
    }
}

TEST(ConsoleLights, AnnounceALevelThatStaysTheSame)
{
    const Recorder recorder;
    ConsoleLights::Get().set(LeftBacklight, Full);
    ConsoleLights::Get().set(LeftBacklight, Full);
    EXPECT_EQ(recorder.signals_.size(), 2U);
}

TEST(ConsoleLights, AreStoredBeforeTheyAreAnnounced)
{
    uires16 seen = 1;
    const QObject context;
    QObject::connect(
        &ConsoleLights::Get(), &ConsoleLights::level_change, &context,
        [&seen](ConsoleLightId id) { seen = ConsoleLights::Get().get(id); }, Qt::DirectConnection);
    ConsoleLights::Get().set(VentLight, 77);
    EXPECT_EQ(seen, 77U);
}

TEST(ConsoleLights, AreAnnouncedOnTheCallersThread)
{
    const Recorder recorder;
    std::thread::id caller;
    std::thread([&caller] {
        caller = std::this_thread::get_id();
        ConsoleLights::Get().set(VentLight, 1);
    }).join();
    EXPECT_EQ(recorder.thread, caller);
}

TEST(ConsoleLights, ScaleToAByte)
{
    struct Case {
        unsigned percent, byte;
    };
    for (const auto& [percent, byte] :
         {Case{100, 255}, Case{75, 191}, Case{50, 127}, Case{25, 63}, Case{1, 2}, Case{0, 0}}) {
        ConsoleLights::Get().set(WorkLight, percent << 16U);
        const uires16 scaled = ConsoleLights::Get().get_scaled(WorkLight);
        EXPECT_LE(scaled, 0xFFFFU);
        EXPECT_EQ(scaled >> 8U, byte);
        // Backlights too, though nobody asks.
        ConsoleLights::Get().set(LeftBacklight, percent << 16U);
        EXPECT_EQ(ConsoleLights::Get().get_scaled(LeftBacklight), scaled);
    }
    ConsoleLights::Get().set(WorkLight, Full);
    EXPECT_EQ(ConsoleLights::Get().get_scaled(WorkLight), 0xFFD7U);
}

TEST(ConsoleLights, PreferencesAreAnnouncedToNobody)
{
    const Recorder recorder;
    ConsoleLights& lights = ConsoleLights::Get();
    lights.set_preference(WingLeds, 5);
    lights.set_preference_state(KeyboardDrawerLight, false);
    EXPECT_EQ(lights.get_preference(WingLeds), 5U);
    EXPECT_EQ(lights.get(WingLeds), 0U);
    EXPECT_FALSE(lights.get_preference_state(KeyboardDrawerLight));
    EXPECT_TRUE(lights.get_preference_state(WingLeds));
    lights.set_preference_state(KeyboardDrawerLight, true);
    EXPECT_TRUE(lights.get_preference_state(KeyboardDrawerLight));
    EXPECT_THAT(recorder.signals_, IsEmpty());
}

TEST(ConsoleLights, InitRestoresLevelsAndKeepsStates)
{
    ConsoleLights& lights = ConsoleLights::Get();
    lights.set(WingLeds, 5);
    lights.set_preference(VentLight, 6);
    lights.set_preference_state(KeyboardDrawerLight, false);
    const Recorder recorder;
    lights.init();
    EXPECT_EQ(lights.get(WingLeds), 0U);
    EXPECT_EQ(lights.get_preference(VentLight), Full);
    EXPECT_FALSE(lights.get_preference_state(KeyboardDrawerLight));
    EXPECT_THAT(recorder.signals_, IsEmpty());
}

TEST(ConsoleLights, MetaObjectListsEverythingInOrder)
{
    const QMetaObject& meta = ConsoleLights::staticMetaObject;
    std::vector<std::string> signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        signatures.push_back(meta.method(i).methodSignature().toStdString());
    EXPECT_THAT(signatures,
                ElementsAre("level_change(ConsoleLightId,uires16)", "set(ConsoleLightId,uires16)",
                            "get(ConsoleLightId)", "get_scaled(ConsoleLightId)",
                            "set_preference(ConsoleLightId,uint)", "get_preference(ConsoleLightId)",
                            "get_preference_state(ConsoleLightId)",
                            "set_preference_state(ConsoleLightId,bool)",
                            "get_enabled(ConsoleLightId)"));
}

TEST(ConsoleLights, AreConnectedByTheirWrittenSignatures)
{
    ConsoleLights& lights = ConsoleLights::Get();
    // clang-format off
    const QMetaObject::Connection connection =
        QObject::connect(&lights, SIGNAL(level_change( ConsoleLightId, uires16 )), &lights,
                         SLOT(set( ConsoleLightId, uires16 )), Qt::QueuedConnection);
    // clang-format on
    EXPECT_TRUE(static_cast<bool>(connection));
    QObject::disconnect(connection);
}

TEST(ConsoleLights, CanBeCalledByName)
{
    ConsoleLights& lights = ConsoleLights::Get();
    EXPECT_TRUE(QMetaObject::invokeMethod(&lights, "set", Q_ARG(ConsoleLightId, VentLight),
                                          Q_ARG(uires16, 9)));
    uires16 level = 0;
    EXPECT_TRUE(QMetaObject::invokeMethod(&lights, "get", Q_RETURN_ARG(uires16, level),
                                          Q_ARG(ConsoleLightId, VentLight)));
    EXPECT_EQ(level, 9U);
    EXPECT_TRUE(QMetaObject::invokeMethod(&lights, "set_preference_state",
                                          Q_ARG(ConsoleLightId, VentLight), Q_ARG(bool, false)));
    bool state = true;
    EXPECT_TRUE(QMetaObject::invokeMethod(&lights, "get_preference_state",
                                          Q_RETURN_ARG(bool, state),
                                          Q_ARG(ConsoleLightId, VentLight)));
    EXPECT_FALSE(state);
}

TEST(ConsoleLights, TakeLevelsFromSeveralThreads)
{
    std::vector<std::thread> threads;
    for (unsigned number = 1; number <= 4; ++number)
        threads.emplace_back([number] {
            for (int round = 0; round < 1000; ++round) {
                ConsoleLights::Get().set(VentLight, number);
                ConsoleLights::Get().set_preference(VentLight, number);
                ConsoleLights::Get().get_scaled(VentLight);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(ConsoleLights::Get().get(VentLight),
                testing::AllOf(testing::Ge(1U), testing::Le(4U)));
}
