// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include "desk/virtual_widget.h"
#include "virtual-desk/wing_controls.h"
#include "virtual-desk/wing_hands.h"

namespace VirtualDesk
{

/// What the driver did to a control, and how the hands left it.
ControlFace ReadFace(const Desk::VirtualWidget& widget, const WingHands& hands,
                     const PlacedControl& control);

/// Displays of an expansion wing that are worth a place: those in use, at least the first few. 0
/// for other models.
int CountDisplays(const Desk::VirtualWidget& widget);

/// Facts of a whole widget, in words.
struct WingFacts {
    QString levels; ///< such as "LEDs 50 %, displays 100 %"; empty while nothing is lit
    QString status; ///< such as "asleep, beacon left"
    bool isAsleep = false;
    bool isStuck = false; ///< takes no output
    std::size_t beacons = 0;
    int section = 0; ///< beaconed last, 0 for all

    bool operator==(const WingFacts&) const = default;
};
WingFacts ReadFacts(const Desk::VirtualWidget& widget);

/// Model, path, serial number and key, which do not change.
QString GetIdentity(const Desk::VirtualWidget& widget);

} // namespace VirtualDesk
