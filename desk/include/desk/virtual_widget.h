// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "desk/widget_bus.h"
#include "standalone/widget_report.h"
#include "standalone/wing_table.h"

namespace Desk
{

/// One widget of a bus: verbs that a hand would do to it, and what the driver did to it.
///
/// Any thread may call any operation. Signals are raised in the order of the changes that they
/// report, one at a time, with no lock held: on the thread that made the output or plugged, or,
/// while another call is raising signals of the same widget, by that call. So the last signal of a
/// kind reports what holds.
class VirtualWidget : public QObject
{
    Q_OBJECT

public:
    VirtualWidget(std::weak_ptr<WidgetBus::Private> bus, WidgetData data);
    ~VirtualWidget() override;

    const WidgetData& GetData() const;
    const Hardware::WingModel& GetModel() const;
    /// The key that the driver's factory gives it; all bits set when it has none.
    std::uint32_t GetKey() const;

    /// Plugs it in, dark: nothing is set. Plugged twice it is plugged once.
    void Plug();
    /// Pulls it out. What it reported before is delivered before. What the driver set is gone with
    /// the widget's power; where its faders stand is not.
    void Unplug();
    bool IsPlugged() const;

    // Verbs. An unplugged widget says nothing, but its controls keep the position.

    void Press(std::uint16_t button);
    void Release(std::uint16_t button);
    /// Moves a fader by hand; a motor fader reports as one.
    void MoveFader(std::uint16_t fader, std::int32_t value);
    void TurnEncoder(std::uint16_t encoder, std::int32_t delta);
    /// Rolls the trackball that is built into a wing.
    void RollTrackball(std::int32_t dx, std::int32_t dy);
    /// Rolls the console's trackball: axis 0 or 1, or its ring, axis 2.
    void RollAxis(std::int32_t axis, std::int32_t value);
    /// Touches or lets go a button of the touch button bar.
    void TouchBar(std::int32_t button, bool pressed);
    /// The wing changes a LED by itself.
    void ChangeLed(std::uint16_t led, std::uint8_t state);
    void OpenDrawer();
    void CloseDrawer();
    /// Sets up the displays of an expansion wing, the first ones as given.
    void Configure(const std::vector<std::uint8_t>& surfaces);
    /// An LTC board has decoded a frame.
    void SendTimecode(const Standalone::Report::Timecode& timecode);
    /// Sends any report, or bytes that are none.
    void Send(const Standalone::Report::Input& report);
    void SendBytes(const Standalone::Report::Bytes& bytes);
    /// Lets all writes to it fail, as a stuck device does, or ends that.
    void SetFailing(bool failing);
    bool IsFailing() const;

    // What the driver did since the widget was plugged. Positions and levels are -1 until set.

    int GetLed(std::uint16_t led) const;
    int GetFader(std::uint16_t fader) const;
    /// Level that was sent to a channel, whether or not the model has a light there: see
    /// GetLightLevels().
    int GetDimmer(std::uint8_t channel) const;
    /// Brightness of one small display, also when all were set at once.
    int GetLcdBrightness(std::uint16_t lcd) const;
    std::u32string GetLcdText(std::uint16_t lcd) const;
    /// Cells and surface bytes that were sent last; 0 before.
    std::uint32_t GetCell(unsigned display, unsigned cell) const;
    std::uint8_t GetSurface(unsigned display) const;
    bool IsAsleep() const;
    Standalone::Report::SetLinkLights GetLinkLights() const;
    /// Sections beaconed since ClearLog(), 0 for the whole unit; of very many the last LogLimit.
    std::vector<std::uint8_t> GetBeacons() const;
    /// Connections that the driver has open now, and ever had.
    int CountOpen() const;
    int CountOpened() const;
    /// Everything written to it, oldest first; of very many the last LogLimit.
    std::vector<Standalone::Report::Output> GetLog() const;
    /// Forgets what was written and beaconed.
    void ClearLog();

    static constexpr std::size_t LogLimit = 1000;

    // The bus's end.
    bool Accept(const Standalone::Report::Bytes& bytes);
    void CountConnection(int change);

Q_SIGNALS:
    void ledChanged(unsigned short led, unsigned char state);
    void allLedsChanged(unsigned char state);
    void faderMoved(unsigned short fader, unsigned char position);
    void dimmerChanged(unsigned char channel, unsigned char level);
    void lcdChanged(unsigned short lcd);
    void allLcdsChanged(unsigned char brightness);
    void cellsWritten();
    void sleepChanged(bool asleep);
    void beaconed(unsigned char section);
    void linkLightsChanged();
    void plugged(bool isPlugged);

private:
    struct Private;

    void SetPlugged(bool isPlugged);
    template <class Change> void Act(Change change);
    void Tell(const Standalone::Report::Bytes& bytes);
    void MoveDrawer(bool open);
    void ReportAll();

    const std::unique_ptr<Private> m_private;
};

} // namespace Desk
