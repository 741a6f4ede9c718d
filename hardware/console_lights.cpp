// SPDX-License-Identifier: MIT
#include "hardware/console_lights.h"

#include "hardware/log_contexts.h"
#include "metatype_registration.h"
#include "source_site.h"

namespace Hardware
{

namespace
{

constexpr char SourceFile[] = "console_lights.cpp";

constexpr uires16 Full = 0x00640000;

/// Levels from the start, by id.
constexpr uires16 Defaults[ConsoleLightCount] = {Full, Full, Full, 0, 0, Full, Full,
                                                 Full, Full, Full, 0, 0, 0,    0};

/// A little above 100, on purpose: full brightness stays below 1.0.
constexpr uires16 ScaleDivisor = 0x00641000;

uires16 Scale(uires16 level)
{
    return UDivUIRes16(level, ScaleDivisor);
}

// By the names that the signal is spelled with.
const MetatypeRegistration<ConsoleLightId> IdMetaType("ConsoleLightId");
const MetatypeRegistration<uires16> LevelMetaType("uires16");

Os::Log::Context& LogContext()
{
    static Os::Log::Context context("ConsoleLights", &HardwareLogContext(), Os::Log::AllButTrace);
    return context;
}

} // namespace

ConsoleLight::~ConsoleLight() = default;

ConsoleLight::ConsoleLight(const ConsoleLight& other)
    : level(other.level.load()), preference(other.preference.load()), enabled(other.enabled.load()),
      preference_state(other.preference_state.load())
{
}

ConsoleLight& ConsoleLight::operator=(const ConsoleLight& other)
{
    if (this != &other) {
        level = other.level.load();
        preference = other.preference.load();
        enabled = other.enabled.load();
        preference_state = other.preference_state.load();
    }
    return *this;
}

ConsoleLights& ConsoleLights::Get()
{
    static ConsoleLights instance;
    static const bool isInitialized = [] {
        instance.init();
        HARDWARE_LOG(LogContext(), Os::Log::Note, "Console lights init");
        return true;
    }();
    static_cast<void>(isInitialized);
    return instance;
}

void ConsoleLights::init()
{
    m_lights.resize(ConsoleLightCount, ConsoleLight());
    for (unsigned id = 0; id < ConsoleLightCount; ++id) {
        m_lights[id].level = Defaults[id];
        m_lights[id].preference = Defaults[id];
    }
}

void ConsoleLights::set(ConsoleLightId id, uires16 level)
{
    std::atomic<uires16>& stored = m_lights[id].level;
    stored = level;
    // Another thread may set the light meanwhile, and its signal may come to the end first: then
    // the lights would keep the level of this one. So the last signal is always the stored level's.
    for (bool isStored = false; !isStored;) {
        // Not scaled for the backlights: they take percent, the wings' dimmers a fraction.
        Q_EMIT level_change(id, id <= CenterBacklight ? level : Scale(level));
        const uires16 latest = stored;
        isStored = latest == level;
        level = latest;
    }
}

uires16 ConsoleLights::get(ConsoleLightId id)
{
    return m_lights[id].level;
}

uires16 ConsoleLights::get_scaled(ConsoleLightId id)
{
    return Scale(get(id));
}

void ConsoleLights::set_preference(ConsoleLightId id, unsigned int preference)
{
    m_lights[id].preference.store(preference, std::memory_order_relaxed);
}

unsigned int ConsoleLights::get_preference(ConsoleLightId id)
{
    return m_lights[id].preference.load(std::memory_order_relaxed);
}

bool ConsoleLights::get_preference_state(ConsoleLightId id)
{
    return m_lights[id].preference_state.load(std::memory_order_relaxed);
}

void ConsoleLights::set_preference_state(ConsoleLightId id, bool state)
{
    m_lights[id].preference_state.store(state, std::memory_order_relaxed);
}

bool ConsoleLights::get_enabled(ConsoleLightId id)
{
    return m_lights[id].enabled.load(std::memory_order_relaxed);
}

} // namespace Hardware
