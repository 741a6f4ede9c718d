// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPalette>

namespace VirtualDesk
{

/// Colours of a wing, mixed from a palette; only lamps have colours of their own.
struct WingStyle {
    explicit WingStyle(const QPalette& palette);

    QColor body;
    QColor plate;
    QColor edge;
    QColor text;
    QColor faint; ///< text that is not to be looked at first
    QColor key;
    QColor keyEdge;
    QColor keyText;
    QColor track; ///< what is cut into the plate
    QColor glass; ///< a display without light
    QColor highlight;

    QColor lamp{255, 176, 32};
    QColor lampText{36, 22, 0};
    QColor link{40, 190, 90};
    QColor linkText{0, 24, 8};
};

/// A colour between two: the first at 0, the second at 1.
QColor Mix(const QColor& first, const QColor& second, double share);

} // namespace VirtualDesk
