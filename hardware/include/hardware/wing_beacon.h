// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include "hardware/export.h"
#include "widget/um_wing.h"
#include "widget/widget_key.h"

namespace Hardware
{

/// Has an attached wing identify itself, so that a user sees which unit a key stands for. Opens
/// wing objects of its own for a moment; the wing mapper has no part in it. Any thread may call.
// Get() alone makes and destroys it.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor)
class HARDWARE_EXPORT WingBeacon : public QObject
{
    Q_OBJECT

public:
    /// The only instance, made on first use and destroyed when the process ends.
    static WingBeacon& Get();

public Q_SLOTS:
    // Spelled short: Qt compares the arguments of signals and slots as text.
    /// Beacons every attached wing of the key's kind and serial number. Kinds 11 to 14, a
    /// console's own sections, beacon all sections of that console, whatever the serial number.
    /// Where there is no such wing, or the kind cannot beacon, nothing happens.
    /// @param ws the section, for the wings that can beacon one
    void beacon(WidgetKey k, UmWing::WingSections ws);

private:
    WingBeacon() = default;
    ~WingBeacon() override = default;
};

} // namespace Hardware
