// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <atomic>
#include <vector>

#include "hardware/export.h"
#include "kel/fixed_point.h"

namespace Hardware
{

/// The console's lights.
enum ConsoleLightId : unsigned int {
    LeftBacklight = 0,
    RightBacklight = 1,
    CenterBacklight = 2,
    WingLeds = 3,            ///< LEDs of every wing
    Lcds = 4,                ///< small displays of next-generation wings
    KeyboardDrawerLight = 5, ///< work light of the desk programmer, which lights the drawer
    VentLight = 6,
    WorkLight = 7, ///< work lights of all other wings
    BlueDeskLight = 8,
    WhiteDeskLight = 9,
    ProgrammerWingLeds = 10, ///< LEDs of the older programmer wing
    DeskProgrammerDimmer6 = 11,
    DeskProgrammerDimmer7 = 12,
    DeskProgrammerDimmer8 = 13
};

/// How many there are.
inline constexpr unsigned ConsoleLightCount = 14;

/// What is kept for one light. Any thread may read and write the fields.
class HARDWARE_EXPORT ConsoleLight
{
public:
    ConsoleLight() = default;
    virtual ~ConsoleLight();
    // Copied only while the vector of them grows, before anybody else knows it.
    ConsoleLight(const ConsoleLight& other);
    ConsoleLight& operator=(const ConsoleLight& other);

    // A fresh record holds 256.0, which nobody ever sees.
    std::atomic<uires16> level{0x01000000};      ///< the level now shown
    std::atomic<uires16> preference{0x01000000}; ///< the level that the user chose
    std::atomic<bool> enabled{true};
    std::atomic<bool> preference_state{true}; ///< for the drawer: whether it is to be lit
};

/// The levels of all lights, and what the user wants them to be. It works no light itself: who
/// does listens to its signal.
///
/// Levels are percentages, 0 to 100.0. An id that is not in the enumeration must not be passed. Any
/// thread may call; the signal is raised on the calling thread. Levels are lost when the process
/// ends.
///
/// No lock is held during a signal. Where two threads set one light at once, a slot may get the
/// newer level before the older one, and a light may show the older one for a moment. It does not
/// stay: set() raises the signal once more if the level was set by another thread, or in a slot,
/// meanwhile. So the last signal for a light has the level that is stored.
// Get() alone makes and destroys it.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor)
class HARDWARE_EXPORT ConsoleLights : public QObject
{
    Q_OBJECT

public:
    /// The only instance, made on first use and destroyed when the process ends.
    static ConsoleLights& Get();
    /// Gives every light its level and preference from the start; what was set as state stays.
    void init();

    // In the order and spelling that the meta-object lists: both are interface.

Q_SIGNALS:
    /// A level was set, also to what it was. For the three backlights it is the level in percent,
    /// for all others what get_scaled() gives.
    void level_change(ConsoleLightId id, uires16 level);

public Q_SLOTS:
    /// Stores the level, then raises the signal. Returns when the level of its last signal is the
    /// one that is stored.
    void set(ConsoleLightId id, uires16 level);
    uires16 get(ConsoleLightId id);
    /// The level as a fraction that is just below 1.0 for full brightness, so that its bits 8 to 15
    /// are a byte from 0 to 255.
    uires16 get_scaled(ConsoleLightId id);
    // Preferences raise no signal.
    void set_preference(ConsoleLightId id, unsigned int preference);
    unsigned int get_preference(ConsoleLightId id);
    bool get_preference_state(ConsoleLightId id);
    void set_preference_state(ConsoleLightId id, bool state);
    /// True for every light.
    bool get_enabled(ConsoleLightId id);

private:
    ConsoleLights() = default;
    ~ConsoleLights() override = default;

    std::vector<ConsoleLight> m_lights;
};

} // namespace Hardware
