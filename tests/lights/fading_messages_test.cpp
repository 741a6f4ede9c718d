// SPDX-License-Identifier: MIT

// What becomes of the application's messages, for every console, drawer and choice of the user.

#include <array>
#include <cstring>

#include "gut/application.h"
#include "lights/fading_table.h"
#include "message_mapper.h"
#include "os/post.h"

namespace
{

using namespace Hardware;
using namespace TestSupport;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

typedef std::vector<unsigned char> Bytes;

Bytes MakeBytes(std::initializer_list<std::uint32_t> words)
{
    Bytes bytes(words.size() * 4);
    std::memcpy(bytes.data(), std::data(words), bytes.size());
    return bytes;
}

Bytes MakeKey(std::uint16_t code)
{
    Bytes bytes = MakeBytes({11, 0});
    std::memcpy(bytes.data() + 6, &code, 2);
    return bytes;
}

bool Filter(const Bytes& bytes)
{
    return ConsoleLightFading::Get().FilterMessage(Gut::Message(bytes.data(), bytes.size()));
}

class FadingMessages : public FadingTable
{
protected:
    FadingMessages()
    {
        Standalone::SetPostObserver([this](const Gut::Message& message, unsigned systemObject) {
            m_posted.emplace_back(Bytes(message.Data(), message.Data() + message.Size()),
                                  systemObject);
        });
    }
    ~FadingMessages() override { Standalone::SetPostObserver({}); }

    /// Behind the work of a settings message.
    static Steps GetTail()
    {
        return {{WingLeds, Percent(80)}, {ProgrammerWingLeds, Percent(80)}, {Lcds, Percent(90)}};
    }

    std::vector<std::pair<Bytes, unsigned>> m_posted;
};

} // namespace

TEST_F(FadingMessages, TheWorkLightKeyToggles)
{
    for (unsigned bits = 0; bits < Combination::Count; ++bits) {
        SCOPED_TRACE(bits);
        const Combination before(bits);
        SetUp(before);
        m_posted.clear();
        ASSERT_TRUE(Filter(MakeKey(473)));
        const Combination after(bits ^ 512U);
        EXPECT_EQ(MessageMapper::GetWorklightOn(), after.isWorkOn);
        EXPECT_THAT(TakeChanges(), ElementsAre(Pair(WorkLight, after.Work()),
                                               Pair(KeyboardDrawerLight, after.Drawer())));
        EXPECT_THAT(GetNewPreferences(), IsEmpty());
        EXPECT_EQ(ConsoleLights::Get().get_preference_state(KeyboardDrawerLight),
                  !before.isEnabled);
        EXPECT_THAT(m_posted, ElementsAre(Pair(MakeBytes({22, 13, 0}), 3)));
        EXPECT_THAT(RunFades(), IsEmpty());
        if (HasFailure())
            return;
    }
}

TEST_F(FadingMessages, SettingsAreAppliedAtOnce)
{
    for (unsigned bits = 0; bits < Combination::Count; ++bits) {
        SCOPED_TRACE(bits);
        const Combination all(bits);
        SetUp(all);
        ASSERT_TRUE(Filter(MakeBytes({22, 11, 0})));
        Steps expected{{LeftBacklight, Percent(10)},
                       {RightBacklight, Percent(20)},
                       {CenterBacklight, Percent(30)},
                       {all.Chosen(), Percent(40)},
                       {all.Other(), 0}};
        Levels preferences;
        if (all.hasWork) {
            expected.emplace_back(WorkLight, all.Work());
            preferences[WorkLight] = all.Work();
        }
        if (all.hasVent) {
            expected.emplace_back(VentLight, Percent(50));
            preferences[VentLight] = Percent(50);
        }
        expected.emplace_back(KeyboardDrawerLight, all.hasDrawerLight ? all.Drawer() : all.Work());
        preferences[KeyboardDrawerLight] = all.hasDrawerLight ? Percent(70) : all.Work();
        for (const Step& step : GetTail())
            expected.push_back(step);
        EXPECT_EQ(TakeChanges(), expected);
        EXPECT_EQ(GetNewPreferences(), preferences);
        EXPECT_EQ(ConsoleLights::Get().get_preference_state(KeyboardDrawerLight),
                  all.hasDrawerLight == all.isEnabled);
        EXPECT_THAT(RunFades(), IsEmpty());
        if (HasFailure())
            return;
    }
}

namespace
{

/// The lights that settings fade, by what they are for.
enum Role : unsigned { Left, Right, Centre, Chosen, Other, Vent, Work, Drawer, RoleCount };
constexpr unsigned AllRoles = (1U << RoleCount) - 1;

/// Which lights have other levels, and other preferences, than the settings, before those are faded
/// to: a bit for each role.
struct Before {
    unsigned otherLevels;
    unsigned otherPreferences;
};

class FadingToSettings : public FadingMessages, public testing::WithParamInterface<Before>
{
protected:
    static bool HasOtherLevel(Role role) { return (GetParam().otherLevels >> role & 1U) != 0; }
    static bool HasOtherPreference(Role role)
    {
        return (GetParam().otherPreferences >> role & 1U) != 0;
    }
    void Prepare(const Combination& all)
    {
        SetUp(all);
        const std::pair<ConsoleLightId, uires16> settings[RoleCount] = {
            {LeftBacklight, Percent(10)},
            {RightBacklight, Percent(20)},
            {CenterBacklight, Percent(30)},
            {all.Chosen(), Percent(40)},
            {all.Other(), 0},
            {VentLight, Percent(50)},
            {WorkLight, all.Work()},
            {KeyboardDrawerLight, all.hasDrawerLight ? all.Drawer() : all.Work()}};
        ConsoleLights& lights = ConsoleLights::Get();
        for (unsigned role = 0; role < RoleCount; ++role) {
            const auto& [id, level] = settings[role];
            if (!HasOtherLevel(static_cast<Role>(role)))
                lights.set(id, level);
            if (!HasOtherPreference(static_cast<Role>(role)))
                lights.set_preference(id, level);
        }
        m_preferences.clear();
        for (unsigned id = 0; id < ConsoleLightCount; ++id) {
            const auto light = static_cast<ConsoleLightId>(id);
            m_preferences[light] = lights.get_preference(light);
        }
        TakeChanges();
    }
    void ExpectFade(ConsoleLightId id, uires16 to, unsigned duration)
    {
        m_fades[id] = GetLevels(ConsoleLights::Get().get(id), to, duration);
    }
    void ExpectWork(const Combination& all)
    {
        if (HasOtherPreference(Work)) {
            ExpectFade(WorkLight, all.Work(), 3000);
            m_preferences[WorkLight] = all.Work();
        }
        if (all.hasDrawerLight) {
            m_preferences[KeyboardDrawerLight] = Percent(70);
            m_drawerState = all.isEnabled;
            if (HasOtherLevel(Drawer))
                ExpectFade(KeyboardDrawerLight, all.Drawer(), 3000);
        } else if (HasOtherPreference(Work)) {
            // The work light's preference decides for both.
            ExpectFade(KeyboardDrawerLight, all.Work(), 3000);
            m_preferences[KeyboardDrawerLight] = all.Work();
        }
    }
    void Expect(const Combination& all)
    {
        m_fades.clear();
        m_drawerState = !all.isEnabled;
        if (HasOtherLevel(Left)) {
            if (all.isConsole)
                ExpectFade(LeftBacklight, Percent(10), 5000);
            // The left one alone keeps it, on purpose.
            m_preferences[LeftBacklight] = Percent(10);
        }
        if (all.isConsole && HasOtherLevel(Right))
            ExpectFade(RightBacklight, Percent(20), 5000);
        if (all.isConsole && HasOtherLevel(Centre))
            ExpectFade(CenterBacklight, Percent(30), 5000);
        if (HasOtherLevel(Chosen))
            ExpectFade(all.Chosen(), Percent(40), 3000);
        if (HasOtherLevel(Other))
            ExpectFade(all.Other(), 0, 5000);
        if (all.hasVent && HasOtherPreference(Vent)) {
            ExpectFade(VentLight, Percent(50), 3000);
            m_preferences[VentLight] = Percent(50);
        }
        if (all.hasWork)
            ExpectWork(all);
    }

    Levels m_preferences;
    Fades m_fades;
    bool m_drawerState = false;
};

std::vector<Before> MakeBefores()
{
    std::vector<Before> list{{0, 0}, {AllRoles, 0}, {0, AllRoles}, {AllRoles, AllRoles}};
    for (unsigned role = 0; role < RoleCount; ++role) {
        list.push_back({1U << role, 0});
        list.push_back({0, 1U << role});
    }
    return list;
}

} // namespace

TEST_P(FadingToSettings, StartsWhatDiffers)
{
    // Which colours the desk has does not matter: they are varied together, to be quick.
    constexpr unsigned BlueOnly = 16;
    constexpr unsigned WhiteOnly = 32;
    for (unsigned bits = 0; bits < Combination::Count; ++bits) {
        if ((bits & BlueOnly) * 2 != (bits & WhiteOnly) && GetParam().otherLevels != AllRoles)
            continue;
        SCOPED_TRACE(bits);
        const Combination all(bits);
        Prepare(all);
        Expect(all);
        ASSERT_TRUE(Filter(MakeBytes({22, 12, 1})));
        Steps changes = TakeChanges();
        std::erase_if(changes, [this](const Step& step) { return m_fades.contains(step.first); });
        EXPECT_EQ(changes, GetTail());
        EXPECT_EQ(RunFades(), m_fades);
        for (const auto& [id, preference] : m_preferences)
            EXPECT_EQ(ConsoleLights::Get().get_preference(id), preference) << id;
        EXPECT_EQ(ConsoleLights::Get().get_preference_state(KeyboardDrawerLight), m_drawerState);
        if (HasFailure())
            return;
    }
}

INSTANTIATE_TEST_SUITE_P(FromEverything, FadingToSettings, testing::ValuesIn(MakeBefores()));

TEST_F(FadingMessages, EveryFadeWakesTheThread)
{
    SetUp(Combination(Combination::Count - 1));
    const std::size_t sets = CountSets();
    ASSERT_TRUE(Filter(MakeBytes({22, 12, 1})));
    // Three backlights, two desk lights, the vent light, the work light, the drawer's.
    EXPECT_EQ(CountSets() - sets, 8U);
}

TEST_F(FadingMessages, WithoutTheFlagOnlyLedsAndLcdsChange)
{
    SetUp(Combination(Combination::Count - 1));
    // Also where other flags are set, and where the message ends before them.
    for (Bytes message : {MakeBytes({22, 12, 0}), MakeBytes({22, 12, 0xFFFFFFFE}),
                          MakeBytes({22, 12, 0x100}), MakeBytes({22, 12})}) {
        ASSERT_TRUE(Filter(message));
        EXPECT_EQ(TakeChanges(), GetTail());
        EXPECT_THAT(RunFades(), IsEmpty());
        EXPECT_THAT(GetNewPreferences(), IsEmpty());
    }
}

TEST_F(FadingMessages, TheFlagIsABitOfItsByte)
{
    SetUp(Combination(Combination::Count - 1));
    Bytes message = MakeBytes({22, 12});
    message.push_back(3);
    ASSERT_TRUE(Filter(message));
    EXPECT_EQ(RunFades().size(), 8U);
}

TEST_F(FadingMessages, AllOthersArePassedOn)
{
    SetUp(Combination(Combination::Count - 1));
    m_posted.clear();
    for (std::uint32_t type : {0U, 1U, 10U, 12U, 15U, 21U, 23U, 0xB00U, 0x1600U, 0xFFFFFFFFU})
        EXPECT_FALSE(Filter(MakeBytes({type, 11, 1}))) << type;
    for (std::uint32_t subtype : {0U, 10U, 13U, 14U, 0xB00U, 0xFFFFFFFFU})
        EXPECT_FALSE(Filter(MakeBytes({22, subtype, 1}))) << subtype;
    for (std::uint16_t code :
         {std::uint16_t{0}, std::uint16_t{472}, std::uint16_t{474}, std::uint16_t{0xD901}})
        EXPECT_FALSE(Filter(MakeKey(code))) << code;
    EXPECT_FALSE(Filter(MakeBytes({11, 473}))); // the code in front of its place
    EXPECT_THAT(TakeChanges(), IsEmpty());
    EXPECT_THAT(m_posted, IsEmpty());
    EXPECT_THAT(RunFades(), IsEmpty());
}

TEST_F(FadingMessages, OnesThatEndTooEarlyArePassedOn)
{
    SetUp(Combination(Combination::Count - 1));
    const Bytes key = MakeKey(473);
    for (std::size_t size = 0; size < 8; ++size)
        EXPECT_FALSE(Filter({key.begin(), key.begin() + static_cast<long>(size)})) << size;
    for (std::uint32_t subtype : {11U, 12U}) {
        const Bytes settings = MakeBytes({22, subtype, 1});
        for (std::size_t size = 0; size < 8; ++size)
            EXPECT_FALSE(Filter({settings.begin(), settings.begin() + static_cast<long>(size)}))
                << size;
    }
    EXPECT_THAT(TakeChanges(), IsEmpty());
}

TEST_F(FadingMessages, LongerOnesAreUnderstood)
{
    SetUp(Combination(0));
    Bytes key = MakeKey(473);
    key.resize(100);
    EXPECT_TRUE(Filter(key));
    EXPECT_TRUE(Filter(MakeBytes({22, 11, 0, 0, 0, 0})));
}

TEST_F(FadingMessages, ArriveThroughTheApplication)
{
    // Behind the lights, which were there first.
    class Next : public Gut::MessageHandler
    {
    public:
        Next() { GutConsoleApplication::Get()->InstallMessageFilter(this); }
        bool FilterMessage(const Gut::Message& message) override
        {
            messages.emplace_back(message.Data(), message.Data() + message.Size());
            return true;
        }
        std::vector<Bytes> messages;
    };
    SetUp(Combination(0));
    const Next next;
    for (const Bytes& bytes : {MakeBytes({22, 11, 0}), MakeKey(473), MakeBytes({99})})
        Os::Post(Gut::Message(bytes.data(), bytes.size()), 3);
    Standalone::DeliverMessages();
    // Theirs are consumed; the one that the key posts comes back and is passed on.
    EXPECT_THAT(next.messages, ElementsAre(MakeBytes({99}), MakeBytes({22, 13, 0})));
    EXPECT_EQ(ConsoleLights::Get().get(LeftBacklight), Percent(10));
}
