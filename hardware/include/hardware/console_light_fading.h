// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <array>
#include <atomic>
#include <memory>
#include <vector>

#include "gut/message_handler.h"
#include "hardware/console_lights.h"
#include "hardware/export.h"
#include "os/event.h"
#include "os/thread.h"

namespace Hardware
{

/// Brings the console's lights to what the user has set, with timed fades; dims them for the screen
/// saver and brings them back; and lights the keyboard drawer when it is opened.
///
/// The application's messages reach it as a filter. Fades are stepped every 50 ms on a thread of
/// its own, and with no fade running that thread sleeps. Slots may be called from any thread. The
/// step of a fade is told on the fading thread.
///
/// Begin(), End(), init_thread(), end_thread() and the first Get() wait for the fading thread or
/// for the widget driver's. Do not call them in a slot that a signal of the library calls directly:
/// in one of fade_light or level_change, End() would wait for the thread that it is on, which is
/// fatal.
///
/// Nothing in the library connects the keyboard drawer. An application whose console has one does,
/// by pointers. The string form fails, since signal and slot spell their first argument
/// differently.
///
///     QObject::connect(&mapper, &WingMapper::keyboard_change,
///                      &fading, &ConsoleLightFading::keyboard_changed, Qt::DirectConnection);
// Get() alone makes and destroys it.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor)
class HARDWARE_EXPORT ConsoleLightFading : public QObject, public Gut::MessageHandler
{
    Q_OBJECT

public:
    /// One light's fade. It runs while elapsed is less than duration. Any thread may read and write
    /// the fields.
    struct FadeActivity {
        std::atomic<uires16> from{0};
        std::atomic<uires16> to{0};
        std::atomic<unsigned> duration{0}; ///< milliseconds; 0 for no fade
        std::atomic<unsigned> elapsed{0};  ///< milliseconds, in steps of 50
    };

    /// Connects levels to the lights that show them, the first time, starts the fading thread and
    /// brings the lights up. Only in the primary instance of the application. To be called behind
    /// WingMapper::Begin(), since the drawer's switch is asked once, of a wing that should not be
    /// pulled out in that moment.
    static void Begin();
    /// Puts out the desk lights, the work light and the drawer's light at once, whatever is fading,
    /// and ends the thread. Only in the primary instance. To be called before the process ends: at
    /// the exit of a process that did not, the thread ends and the lights stay as they are.
    static void End();
    /// The only instance, made on first use and destroyed when the process ends.
    static ConsoleLightFading& Get();

    /// Looks whether the drawer is open, empties the fades and becomes a message filter. For Get().
    void init();
    void init_thread();
    void end_thread();

    /// Takes two types of message. Fields are in the machine's byte order. A message that ends
    /// before its type, subtype or key is passed on; a missing byte of flags counts as 0.
    ///
    /// - Type 11, a key: the type in 32 bits, and at offset 6 the key's code in 16 bits. Code 473
    ///   toggles the work light, sets it and the drawer's light, and posts the words 22, 13, 0 to
    ///   system object 3.
    /// - Type 22, light settings: the type in 32 bits, at offset 4 the subtype in 32 bits, and at
    ///   offset 8 a byte of flags. Subtype 11 shows all settings at once. Subtype 12 fades to those
    ///   that differ if bit 0 of the flags is set. Both then set the LEDs and the displays at once.
    ///
    /// @return true for these; false for all other messages, other keys and other subtypes
    bool FilterMessage(const Gut::Message& message) override;

    // In the order and spelling that the meta-object lists: both are interface.

Q_SIGNALS:
    /// A step of a fade. The last one falls short of the target by as much as a step is.
    void fade_light(ConsoleLightId id, uires16 level);
    /// Expansion wings are to sleep or to wake.
    void sleep_wing(bool sleep);

public Q_SLOTS:
    /// Begins a fade, in place of one that runs; activate() has to follow.
    void set(ConsoleLightId id, uires16 from, uires16 to, unsigned int duration_ms);
    /// Stops all fades where they stand.
    void reset();
    /// Wakes the fading thread. Where a fade runs, a step is made at once.
    void activate();
    void save_screen_reset();
    void save_screen_activate();
    /// The keyboard drawer was moved. @param state 0 for open
    void keyboard_changed(unsigned long wing, int drawer, int state);

private:
    ConsoleLightFading();
    ~ConsoleLightFading() override;

    static unsigned int Run(void* argument);
    bool StepAll(bool isConsole);
    bool Step(ConsoleLightId id);
    void AwaitPass() const;
    void Fade(ConsoleLightId id, uires16 to, unsigned int duration_ms);
    void FadeWhereDifferent(ConsoleLightId id, uires16 to, unsigned int duration_ms);
    bool ToggleWorkLight();
    void ApplyAtOnce();
    void ApplyWithFades();
    void FadeDeskLights();
    void FadeWorkLights();
    bool IsDrawerLit() const;

    std::unique_ptr<Os::Thread> m_thread;
    std::atomic<bool> m_stopRequested{false};
    std::vector<FadeActivity> m_fades;
    Os::Event m_wake;
    std::atomic<bool> m_keyboardDrawerOpen{false};
    std::atomic<bool> m_isConnected{false};
    std::atomic<bool> m_isStepping{false};                          // the thread is in a pass
    std::array<std::atomic<unsigned>, ConsoleLightCount> m_steps{}; // made of each light's fades
};

} // namespace Hardware
