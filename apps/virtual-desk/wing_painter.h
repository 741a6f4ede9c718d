// SPDX-License-Identifier: MIT
#pragma once

#include <QPainter>

#include "virtual-desk/wing_layout.h"
#include "virtual-desk/wing_style.h"

namespace VirtualDesk
{

/// Paints controls in units of a layout.
class WingPainter
{
public:
    /// @param isBlinkOn what flashes is lit now
    /// @param isAsleep the wing is dark
    WingPainter(QPainter& painter, const QPalette& palette, bool isBlinkOn, bool isAsleep);

    void PaintBody(const WingLayout& layout) const;
    void Paint(const PlacedControl& control, const ControlFace& face) const;
    /// Around what has the keyboard's focus.
    void PaintFocus(const QRect& rect) const;
    /// Around what identifies itself.
    void PaintBeacon(const QRect& rect) const;

private:
    void PaintKey(const PlacedControl& control, const ControlFace& face) const;
    void PaintLampMark(QPointF centre, Lamp lamp, const QColor& ink) const;
    void PaintTouch(const PlacedControl& control, const ControlFace& face) const;
    void PaintFader(const QRect& rect, const ControlFace& face) const;
    void PaintFaderScale(const QRectF& track) const;
    void PaintFaderCap(QPointF centre) const;
    void PaintEncoder(const PlacedControl& control, const ControlFace& face) const;
    void PaintLcd(const QRect& rect, const ControlFace& face) const;
    void PaintDisplay(const PlacedControl& control, const ControlFace& face) const;
    void PaintBall(const QRect& rect, const ControlFace& face) const;
    void PaintRing(const QRect& rect, const ControlFace& face) const;
    void PaintDrawer(const QRect& rect, const ControlFace& face) const;
    void PaintLink(const PlacedControl& control, const ControlFace& face) const;

    void PaintCap(const QRectF& rect, const QColor& colour, bool isDown) const;
    void PaintText(const QRectF& rect, const QString& text, int pixels, const QColor& colour,
                   bool isBold = false) const;

    QPainter& m_painter;
    const WingStyle m_style;
    const bool m_isBlinkOn;
    const bool m_isAsleep;
};

} // namespace VirtualDesk
