// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <vector>

#include "hardware/abstract_backlight.h"
#include "hardware/console_lights.h"
#include "hardware/export.h"
#include "os/rw_lock.h"
#include "widget/um_wing.h"
#include "widget/widget_signaller.h"

namespace Hardware
{

/// Works the lights: sends levels to every attached wing that has such a light, and to the display
/// backlights. Keeps its own list of wings; one that is attached gets the levels of the moment, and
/// those that other threads set while it does.
///
/// Any thread may call; wings are worked on the calling thread. Two threads that pass different
/// levels of one light at once leave it with the last one that reached it; ConsoleLights sees to it
/// that this is the level that it keeps.
// Get() alone makes and destroys it.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor)
class HARDWARE_EXPORT ConsoleThings : public QObject
{
    Q_OBJECT

public:
    /// The only instance, made on first use and destroyed when the process ends. The first call
    /// waits for the widget driver's thread and must not be made on it.
    static ConsoleThings& Get();
    /// Asks what lights the console has, and begins to listen for wings. For Get() alone.
    void init();

    /// Sets a backlight, in percent. Other ids than the first three are ignored.
    // Not static, whatever it uses: an operation of the one instance like its namesake.
    void set_level(ConsoleLightId id, uires16 level);
    /// Sets a light of one wing, where it has such a light and the console supports it.
    /// @param value a fraction below 1.0; its bits 8 to 15 are what the wing gets
    void set_level(UmWing& wing, ConsoleLightId id, uires16 value);

    /// The console's backlight controller, chosen by the first call.
    static AbstractBacklight& GetBacklight();

public Q_SLOTS:
    // Spelled in full: Qt compares the arguments of signals and slots as text.
    void wing_added(const Hardware::WidgetMapData& data);
    void wing_removed(const Hardware::WidgetMapData& data);
    /// A level was set: percent for the backlights, which only a console has, and a fraction below
    /// 1.0 for all others.
    void change_level(ConsoleLightId id, uires16 level);
    /// Has every expansion wing sleep or wake.
    void wing_sleep(bool sleep);

private:
    ConsoleThings();
    ~ConsoleThings() override;

    void PushLevels(UmWing& wing);

    Os::RwLock m_lock;
    std::vector<WidgetMapData> m_wings; // in order of attachment; guarded by m_lock
    bool m_hasVentLight = false;
    bool m_hasBlueDesklights = false;
    bool m_hasWorklights = false;
    bool m_hasWhiteDesklights = false;
    bool m_isConsole = false;
    // Last, so that it is destroyed first: that waits for a slot on the driver's thread.
    WidgetSignaller m_signaller;
};

} // namespace Hardware
