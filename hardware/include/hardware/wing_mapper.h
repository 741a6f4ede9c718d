// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "hardware/export.h"
#include "os/rw_lock.h"
#include "widget/expansion_wing.h"
#include "widget/um_wing.h"
#include "widget/widget_key.h"
#include "widget/widget_signaller.h"

namespace Hardware
{

class WingNews;

/// The application's view of all control surfaces: wings, a console's own panel sections, its
/// trackball and its touch button bar. Every input becomes a signal, outputs are slots, and wings
/// go by their keys.
///
/// Signals are raised on the widget driver's thread; those for wings that Begin() finds attached,
/// on the caller's. Signals and slots can be connected queued, by pointer and by name. Queries and
/// slots may be called from any thread, also from a slot that a signal here is connected to.
/// Unknown keys, wings that are gone and wings of another class are ignored.
// Get() alone makes and destroys it.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor)
class HARDWARE_EXPORT WingMapper : public QObject
{
    Q_OBJECT

public:
    /// The record of a wing by its key. Borrows the widget: destroying the record does not destroy
    /// it.
    class HARDWARE_EXPORT WingMapData
    {
    public:
        explicit WingMapData(UmWidget* itsWidget) : widget(itsWidget) {}
        virtual ~WingMapData();
        WingMapData(const WingMapData&) = delete;
        WingMapData& operator=(const WingMapData&) = delete;

        UmWidget* widget; ///< null once the wing was removed
    };

    /// The only instance, made on first use and destroyed when the process ends.
    static WingMapper& Get();
    /// Starts: announces the wings that are attached and watches for more. May be called again
    /// after End(). Not on the widget driver's thread. Waits for slots that the driver's thread is
    /// running: do not call it while you hold a lock that such a slot takes. Wings that come or go
    /// meanwhile are announced on the caller's thread or on the driver's.
    static void Begin();
    /// Stops: forgets all wings, without a signal. What a slot is doing meanwhile is not waited
    /// for, and on some models sections of the panel go on signalling.
    static void End();

    /// True for the key of an attached wing; false for the trackball and the button bar.
    bool is_wing_connected(WidgetKey k);
    /// The widget of a key; null for an unknown key and for a wing that is gone. The mapper's own:
    /// it is destroyed when the wing is removed, when another wing of its key comes, and by End().
    /// Keep the pointer no longer than a slot that the driver's thread calls directly, since no
    /// wing is removed meanwhile. On any other thread work wings through the slots below.
    UmWidget* get_wing(WidgetKey k);
    /// Every key seen since the last End(), also those of wings that were removed.
    std::set<WidgetKey> connected_wings();

    // In the order and spelling that the meta-object lists: both are interface.

Q_SIGNALS:
    /// A button was pressed or released.
    /// @param p part id @param m master id, 65535 for a button without one
    void button_press(Hardware::WidgetKey k, unsigned short p, unsigned short m, bool ispress);
    /// A fader was moved. @param i its index on the wing @param v its position as the wing reports
    /// it, from 0 at the bottom to 255 at the top; not checked
    void fader_move(Hardware::WidgetKey k, unsigned short i, int v);
    /// A motor fader was moved, by hand or by its motor. @param i its index on the wing @param v as
    /// for fader_move()
    void fader_motor_move(Hardware::WidgetKey k, unsigned short i, int v);
    /// An encoder was turned. @param i its part id @param v steps, negative for anticlockwise
    void encoder_move(Hardware::WidgetKey k, unsigned short i, int v);
    /// A trackball was rolled, or its ring turned (dz). In counts of the device since its last
    /// report, with their sign, neither scaled nor limited.
    void trackball_move(Hardware::WidgetKey k, int dx, int dy, int dz);
    /// A wing changed a LED by itself. @param i the LED's index
    void led_change(Hardware::WidgetKey k, unsigned short i, UmWing::LedState v);
    /// A wing was attached or removed.
    void wing_change(Hardware::WidgetKey k, bool ispresent);
    /// The displays of an expansion wing were set up anew. The record is borrowed for the length of
    /// the signal; a queued slot gets a copy.
    void xwing_config(Hardware::WidgetKey k, QRT_XWING_CONFIGURATION& cfg);
    /// The keyboard drawer was moved. @param i the drawer @param v 0 for open
    void keyboard_change(Hardware::WidgetKey k, int i, int v);

public Q_SLOTS:
    /// Sets the LED of a part and a master. A wing of product id 1 is left alone.
    void set_led(Hardware::WidgetKey k, unsigned short pid, unsigned short mid,
                 Hardware::UmWing::LedState v);
    /// Sets all LEDs. A wing of product id 1 is left alone.
    void set_led_all(Hardware::WidgetKey k, Hardware::UmWing::LedState v);
    /// Sets the LEDs of all masters of a section, counted from 0.
    void set_led_section(Hardware::WidgetKey k, int s, Hardware::UmWing::LedState v);
    /// Moves a motor fader of a next-generation wing. @param v 0 to 255; the low 8 bits count
    void set_fader(Hardware::WidgetKey k, unsigned short mid, int v);
    /// Stages the surface byte of an expansion wing's display; nothing is sent.
    void set_xwing_surface(Hardware::WidgetKey k, unsigned char s, unsigned char i);
    /// Clears the text of an expansion wing's display and sends all texts.
    void clear_xwing_display(Hardware::WidgetKey k, unsigned char s);
    /// Has a wing report all its controls again. A wing of product id 1 is left alone.
    void refresh_state(Hardware::WidgetKey k);

private Q_SLOTS:
    void wing_read(const Hardware::WidgetSignaller::Event& event);
    void wing_add(const Hardware::WidgetMapData& mapData);
    void wing_remove(const Hardware::WidgetMapData& mapData);

private:
    /// A record and, beside it, the share in its widget. Whoever works the widget takes a share
    /// too, so that it lives until then even when the wing is removed meanwhile.
    struct Entry {
        std::unique_ptr<WingMapData> record;
        std::shared_ptr<UmWidget> widget;
    };
    /// Whether a widget is that of a device.
    typedef bool (*Match)(const UmWidget& widget, const WidgetMapData& mapData);

    WingMapper();
    ~WingMapper() override;

    void connect_signaller();
    void connect_console_sections(bool& success);
    void disconnect_signaller();
    void add_all(const GUID& classId);
    std::vector<WidgetMapData> list_watched() const;
    void catch_up();
    void make_wing(const WidgetMapData& mapData);
    void drop_wing(const WidgetMapData& mapData, Match isOf);
    void announce(WidgetKey key, bool isPresent);
    void announce_held_back();
    void emitReadEvent(WidgetKey k, UmWidget& widget, const UmWidget::Event* event);
    void emitConfiguration(WidgetKey k, UmWidget& widget, int kind);

    template <class Wing> std::shared_ptr<Wing> Find(WidgetKey k);
    /// A wing whose LEDs and state may be worked: not of product id 1.
    std::shared_ptr<UmWing> FindWorkable(WidgetKey k);

    std::vector<const GUID*> m_watched; // classes, in the order of their wings; of Begin() alone
    std::map<WidgetKey, Entry> m_wings; // guarded by m_lock
    Os::RwLock m_lock;
    const std::unique_ptr<WingNews> m_news; // guarded by m_lock
    WidgetSignaller m_wingSignaller;
    WidgetSignaller m_trackBallSignaller;
    WidgetSignaller m_buttonBarSignaller;
};

} // namespace Hardware
