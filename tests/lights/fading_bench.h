// SPDX-License-Identifier: MIT
#pragma once

#include <gmock/gmock.h>

#include <mutex>
#include <utility>

#include "hardware/console_light_fading.h"
#include "standalone/platform_settings.h"
#include "support/stepped_event.h"

namespace TestSupport
{

/// The fading thread, of which each wait ends when the test says so, and what it and the lights
/// tell.
class FadingBench : public testing::Test
{
public:
    typedef std::pair<Hardware::ConsoleLightId, uires16> Step;
    typedef std::vector<Step> Steps;

    /// The levels that a fade goes through, by the books.
    static std::vector<uires16> GetLevels(uires16 from, uires16 to, unsigned duration)
    {
        std::vector<uires16> levels;
        for (std::uint64_t elapsed = 0; elapsed < duration; elapsed += 50) {
            const auto fraction = static_cast<std::int64_t>(elapsed * 65536 / duration);
            const std::int64_t product = (std::int64_t(to) - std::int64_t(from)) * fraction;
            // Rounds down, also below 0.
            const std::int64_t change =
                product >= 0 ? product / 65536 : -((-product + 65535) / 65536);
            levels.push_back(static_cast<uires16>(std::int64_t(from) + change));
        }
        return levels;
    }

protected:
    FadingBench()
    {
        using namespace Hardware;
        const auto note = [this](Steps& list, ConsoleLightId id, uires16 level) {
            const std::lock_guard hold(m_mutex);
            list.emplace_back(id, level);
        };
        ConsoleLightFading& fading = ConsoleLightFading::Get();
        QObject::connect(
            &fading, &ConsoleLightFading::fade_light, &m_context,
            [this, note](ConsoleLightId id, uires16 level) { note(m_steps, id, level); },
            Qt::DirectConnection);
        QObject::connect(
            &fading, &ConsoleLightFading::sleep_wing, &m_context,
            [this](bool sleeps) {
                m_sleeps.push_back(sleeps);
                m_setsAtSleep = CountSets();
                const std::lock_guard hold(m_mutex);
                m_changesAtSleep = m_changes.size();
            },
            Qt::DirectConnection);
        QObject::connect(&fading, &ConsoleLightFading::fade_light, &ConsoleLights::Get(),
                         &ConsoleLights::set, Qt::DirectConnection);
        QObject::connect(
            &ConsoleLights::Get(), &ConsoleLights::level_change, &m_context,
            [this, note](ConsoleLightId id) { note(m_changes, id, ConsoleLights::Get().get(id)); },
            Qt::DirectConnection);
    }
    ~FadingBench() override { Hardware::ConsoleLightFading::Get().end_thread(); }

    /// Starts the thread and waits until it has nothing to do or has made its first steps.
    void StartThread() const
    {
        const std::size_t waits = GetWaits().size();
        Standalone::ConfigurePlatform(m_settings);
        Hardware::ConsoleLightFading::Get().init_thread();
        WaitForWaits(waits + 1);
    }
    /// Wakes the thread and lets time pass until no fade runs any more. Returns the steps made,
    /// those from before too.
    Steps RunAll()
    {
        Wake([] { Hardware::ConsoleLightFading::Get().activate(); });
        while (AwaitWait() != Forever)
            TimeOut();
        return TakeSteps();
    }
    Steps TakeSteps() { return Take(m_steps); }
    /// Levels that were set, by the test, the product or a step, in percent for all lights.
    Steps TakeChanges() { return Take(m_changes); }

    std::vector<bool> TakeSleeps() { return std::exchange(m_sleeps, {}); }

    Standalone::PlatformSettings m_settings;
    std::size_t m_setsAtSleep = 0;    // of the event, when wings were last told to sleep or wake
    std::size_t m_changesAtSleep = 0; // of levels

private:
    Steps Take(Steps& list)
    {
        const std::lock_guard hold(m_mutex);
        return std::exchange(list, {});
    }

    std::mutex m_mutex;
    Steps m_steps;
    Steps m_changes;
    std::vector<bool> m_sleeps;
    QObject m_context;
};

} // namespace TestSupport
