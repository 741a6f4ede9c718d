// SPDX-License-Identifier: MIT
#pragma once

#include <map>

#include "lights/fading_bench.h"
#include "standalone/light_settings.h"
#include "standalone/messages.h"

namespace TestSupport
{

constexpr uires16 Percent(unsigned percent)
{
    return percent << 16U;
}

/// One combination of what a console has, how its drawer stands and what the user chose.
struct Combination {
    explicit Combination(unsigned bits)
        : hasVent((bits & 1U) != 0), hasWork((bits & 2U) != 0), hasDrawerLight((bits & 4U) != 0),
          isConsole((bits & 8U) != 0), hasBlue((bits & 16U) != 0), hasWhite((bits & 32U) != 0),
          isOpen((bits & 64U) != 0), isEnabled((bits & 128U) != 0), isBlue((bits & 256U) != 0),
          isWorkOn((bits & 512U) != 0)
    {
    }
    static constexpr unsigned Count = 1024;

    /// The work light's level of the moment.
    uires16 Work() const { return isWorkOn ? Percent(60) : 0; }
    /// What the drawer's light is to show.
    uires16 Drawer() const { return isEnabled && isOpen ? Percent(70) : Work(); }
    Hardware::ConsoleLightId Chosen() const
    {
        return isBlue ? Hardware::BlueDeskLight : Hardware::WhiteDeskLight;
    }
    Hardware::ConsoleLightId Other() const
    {
        return isBlue ? Hardware::WhiteDeskLight : Hardware::BlueDeskLight;
    }

    bool hasVent, hasWork, hasDrawerLight, isConsole, hasBlue, hasWhite;
    bool isOpen, isEnabled, isBlue, isWorkOn;
};

/// A bench in the state of a combination, with settings that all differ:
/// left 10, right 20, centre 30, desk 40, vent 50, work 60, drawer 70, LEDs 80, LCDs 90 percent.
class FadingTable : public FadingBench
{
protected:
    typedef std::map<Hardware::ConsoleLightId, uires16> Levels;
    typedef std::map<Hardware::ConsoleLightId, std::vector<uires16>> Fades;

    void SetUp(const Combination& combination)
    {
        m_settings.hasVentLight = combination.hasVent;
        m_settings.hasWorklights = combination.hasWork;
        m_settings.hasIlluminatedKeyboardDrawer = combination.hasDrawerLight;
        m_settings.isConsole = combination.isConsole;
        m_settings.hasBlueDesklights = combination.hasBlue;
        m_settings.hasWhiteDesklights = combination.hasWhite;
        Standalone::SetLightSettings({Percent(10), Percent(20), Percent(30), combination.isBlue,
                                      Percent(40), Percent(50), combination.isWorkOn, Percent(60),
                                      combination.isEnabled, Percent(70), Percent(80),
                                      Percent(90)});
        Hardware::ConsoleLights::Get().init();
        StartThread();
        Hardware::ConsoleLightFading::Get().keyboard_changed(1, 0, combination.isOpen ? 0 : 1);
        Hardware::ConsoleLightFading::Get().reset();
        RunAll();
        // Known, and different from every setting.
        for (unsigned id = 0; id < Hardware::ConsoleLightCount; ++id) {
            const auto light = static_cast<Hardware::ConsoleLightId>(id);
            Hardware::ConsoleLights::Get().set(light, Percent(5));
            Hardware::ConsoleLights::Get().set_preference(light, Percent(7));
        }
        Hardware::ConsoleLights::Get().set_preference_state(Hardware::KeyboardDrawerLight,
                                                            !combination.isEnabled);
        TakeChanges();
        TakeSteps();
    }

    /// Preferences that are not as SetUp() left them.
    static Levels GetNewPreferences()
    {
        Levels levels;
        for (unsigned id = 0; id < Hardware::ConsoleLightCount; ++id) {
            const auto light = static_cast<Hardware::ConsoleLightId>(id);
            if (Hardware::ConsoleLights::Get().get_preference(light) != Percent(7))
                levels[light] = Hardware::ConsoleLights::Get().get_preference(light);
        }
        return levels;
    }

    /// Levels of every fade that runs, to its end.
    Fades RunFades()
    {
        Fades fades;
        for (const auto& [id, level] : RunAll())
            fades[id].push_back(level);
        return fades;
    }
};

} // namespace TestSupport
