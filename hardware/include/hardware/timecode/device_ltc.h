// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

#include "hardware/export.h"
#include "hardware/timecode/device.h"
#include "widget/widget_signaller.h"

namespace Hardware::Timecode
{

/// Longitudinal timecode, decoded by boards of the console. Every attached board is one source;
/// its number is the widget driver's index of the board.
///
/// All calls come from one application thread. Signals are raised on the widget driver's thread,
/// deviceAdded() for boards that are attached already before Enable() returns. Every frame that a
/// board delivers becomes one frameRead(): nothing is checked, filtered or measured. The
/// destructor waits for a signal that is being raised.
class HARDWARE_EXPORT DeviceLtc : public Device
{
    Q_OBJECT

public:
    explicit DeviceLtc(QObject* parent);
    /// Disables.
    ~DeviceLtc() override;

    /// Opens and reads all boards, now and as they are plugged. True when enabled already. False
    /// when the driver refuses; then the device stays disabled. Waits until the driver has acted on
    /// all that it was told before, slots included: do not call it while you hold a lock that a
    /// slot takes.
    bool Enable() override;
    /// Stops reading the boards, also for other devices that listen to them, and leaves them open.
    /// A signal that is being raised is not waited for. True when disabled already; else what the
    /// driver answers to the end of watching.
    bool Disable() override;
    bool IsEnabled() const override;
    /// True while a board is attached. Boards are counted from the first Enable() on, also while
    /// the device is disabled.
    bool IsActive() const override;

    /// The driver's record of a board by its number; one that stands for no device when there is
    /// none.
    WidgetMapData GetWidget(unsigned int index) const;

public Q_SLOTS:
    // What the driver's signals are connected to. Spelled in full: Qt compares them as text.
    void processAdd(const Hardware::WidgetMapData& data);
    void processRemove(const Hardware::WidgetMapData& data);
    void processTimecode(const Hardware::WidgetSignaller::Event& event);

private:
    WidgetSignaller m_signaller;
    std::atomic<bool> enabled = false;
};

} // namespace Hardware::Timecode
