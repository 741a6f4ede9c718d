// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QRectF>
#include <cmath>

#include "virtual-desk/wing_controls.h"

namespace VirtualDesk
{

/// Half of a fader's cap; the cap's middle stays within the travel.
constexpr int HalfFaderCap = 7;

/// Where the middle of a fader's cap goes, within the fader; its value stands below.
inline QRectF GetFaderTravel(const QRect& fader)
{
    constexpr int Above = HalfFaderCap + 2;
    constexpr int Below = HalfFaderCap + 17;
    return QRectF(fader).adjusted(0, Above, 0, -Below);
}

inline double GetFaderY(const QRect& fader, int position)
{
    const QRectF travel = GetFaderTravel(fader);
    return travel.bottom() - travel.height() * position / FaderEnd;
}

/// May be beyond the ends.
inline int GetFaderPosition(const QRect& fader, double y)
{
    const QRectF travel = GetFaderTravel(fader);
    return static_cast<int>(std::lround((travel.bottom() - y) * FaderEnd / travel.height()));
}

} // namespace VirtualDesk
