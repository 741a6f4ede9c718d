// SPDX-License-Identifier: MIT
#include "virtual-desk/wing_painter.h"

#include <QLinearGradient>
#include <QPainterPath>

#include "virtual-desk/wing_words.h"

namespace VirtualDesk
{

namespace
{

constexpr double Corner = 3;
constexpr double PlateCorner = 5;
constexpr int KeyPixels = 11;
constexpr int SmallPixels = 9;
constexpr int TitlePixels = 10;
constexpr double MarkSize = 8;
constexpr double MarkColumn = 9; ///< the lamp's mark stands so far from a key's left edge
constexpr double DimShare = 0.38;
constexpr int TitleInset = 8;
constexpr int TitleHeight = 18;

/// A lamp that is lit now.
double GetGlow(Lamp lamp, bool isBlinkOn, bool isAsleep)
{
    if (isAsleep)
        return 0;
    if (lamp == Lamp::On || (lamp == Lamp::Flash && isBlinkOn))
        return 1;
    return lamp == Lamp::Dim ? DimShare : 0;
}

} // namespace

WingPainter::WingPainter(QPainter& painter, const QPalette& palette, bool isBlinkOn, bool isAsleep)
    : m_painter(painter), m_style(palette), m_isBlinkOn(isBlinkOn), m_isAsleep(isAsleep)
{
    m_painter.setRenderHint(QPainter::Antialiasing);
}

void WingPainter::PaintBody(const WingLayout& layout) const
{
    m_painter.fillRect(QRect(QPoint(), layout.GetSize()), m_style.body);
    for (const auto& [title, rect] : layout.GetGroups()) {
        m_painter.setPen(QPen(m_style.edge, 1));
        m_painter.setBrush(m_style.plate);
        m_painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), PlateCorner,
                                  PlateCorner);
        QFont font = m_painter.font();
        font.setPixelSize(TitlePixels);
        font.setBold(false);
        m_painter.setFont(font);
        m_painter.setPen(m_style.faint);
        m_painter.drawText(
            QRect(rect.left() + TitleInset, rect.top(), rect.width() - 2 * TitleInset, TitleHeight),
            Qt::AlignVCenter | Qt::AlignLeft, title);
    }
    for (const auto& [text, rect] : layout.GetLabels())
        PaintText(rect, text, TitlePixels, m_style.faint);
}

void WingPainter::PaintText(const QRectF& rect, const QString& text, int pixels,
                            const QColor& colour, bool isBold) const
{
    QFont font = m_painter.font();
    font.setPixelSize(pixels);
    font.setBold(isBold);
    m_painter.setFont(font);
    m_painter.setPen(colour);
    m_painter.drawText(rect, Qt::AlignCenter, text);
}

void WingPainter::PaintFocus(const QRect& rect) const
{
    m_painter.setBrush(Qt::NoBrush);
    m_painter.setPen(QPen(m_style.highlight, 2));
    m_painter.drawRoundedRect(QRectF(rect).adjusted(-2, -2, 2, 2), Corner + 2, Corner + 2);
}

void WingPainter::PaintBeacon(const QRect& rect) const
{
    if (!m_isBlinkOn)
        return;
    m_painter.setBrush(Qt::NoBrush);
    m_painter.setPen(QPen(m_style.lamp, 4));
    m_painter.drawRoundedRect(QRectF(rect).adjusted(2, 2, -2, -2), PlateCorner, PlateCorner);
}

void WingPainter::Paint(const PlacedControl& control, const ControlFace& face) const
{
    switch (control.id.kind) {
    case ControlKind::Button:
        return PaintKey(control, face);
    case ControlKind::Touch:
        return PaintTouch(control, face);
    case ControlKind::Fader:
        return PaintFader(control.rect, face);
    case ControlKind::Encoder:
        return PaintEncoder(control, face);
    case ControlKind::Lcd:
        return PaintLcd(control.rect, face);
    case ControlKind::Display:
        return PaintDisplay(control, face);
    case ControlKind::Ball:
        return PaintBall(control.rect, face);
    case ControlKind::Ring:
        return PaintRing(control.rect, face);
    case ControlKind::Drawer:
        return PaintDrawer(control.rect, face);
    case ControlKind::Link:
        return PaintLink(control, face);
    }
}

/// A raised cap, or one that is pressed in.
void WingPainter::PaintCap(const QRectF& rect, const QColor& colour, bool isDown) const
{
    QLinearGradient gradient(rect.topLeft(), rect.bottomLeft());
    gradient.setColorAt(0, isDown ? colour.darker(118) : colour.lighter(106));
    gradient.setColorAt(1, isDown ? colour.darker(106) : colour.darker(108));
    m_painter.setBrush(gradient);
    m_painter.setPen(QPen(isDown ? m_style.text : m_style.keyEdge, isDown ? 2 : 1));
    const double inset = isDown ? 1.5 : 0.5;
    m_painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), Corner, Corner);
}

/// A key glows as its LED does; the mark at its left says the same without colour.
void WingPainter::PaintKey(const PlacedControl& control, const ControlFace& face) const
{
    const double glow = GetGlow(face.lamp, m_isBlinkOn, m_isAsleep);
    const QRectF rect(control.rect);
    PaintCap(rect, Mix(m_style.key, m_style.lamp, glow), face.isDown);
    const bool isDark = m_style.keyText.lightnessF() > 0.5F;
    const QColor ink =
        glow > DimShare || (glow > 0 && !isDark) ? m_style.lampText : m_style.keyText;
    const double drop = face.isDown ? 1 : 0;
    PaintLampMark({rect.left() + MarkColumn, rect.center().y() + drop}, face.lamp, ink);
    PaintText(rect.adjusted(MarkColumn + 3, drop, 0, drop), QString::number(control.id.index),
              KeyPixels, ink, face.isDown);
    if (face.isLatched)
        PaintText({rect.right() - 11, rect.top() + 3, 8, 9}, QStringLiteral("L"), SmallPixels, ink,
                  true);
}

/// Off is a ring, on a disc, dim half a disc, and flashing a diamond; unset is a dot.
void WingPainter::PaintLampMark(QPointF centre, Lamp lamp, const QColor& ink) const
{
    const double half = MarkSize / 2;
    const QRectF box(centre.x() - half, centre.y() - half, MarkSize, MarkSize);
    m_painter.setPen(QPen(ink, 1.2));
    m_painter.setBrush(Qt::NoBrush);
    if (lamp == Lamp::Unset) {
        m_painter.setBrush(ink);
        m_painter.drawEllipse(centre, 0.8, 0.8);
        return;
    }
    if (lamp == Lamp::Flash) {
        if (m_isBlinkOn)
            m_painter.setBrush(ink);
        QPainterPath diamond(QPointF(centre.x(), box.top() - 1));
        diamond.lineTo(box.right() + 1, centre.y());
        diamond.lineTo(centre.x(), box.bottom() + 1);
        diamond.lineTo(box.left() - 1, centre.y());
        diamond.closeSubpath();
        m_painter.drawPath(diamond);
        return;
    }
    if (lamp == Lamp::On)
        m_painter.setBrush(ink);
    m_painter.drawEllipse(box.adjusted(0.6, 0.6, -0.6, -0.6));
    if (lamp == Lamp::Dim) {
        m_painter.setBrush(ink);
        m_painter.drawChord(box.adjusted(0.6, 0.6, -0.6, -0.6), 90 * 16, 180 * 16);
    }
}

void WingPainter::PaintTouch(const PlacedControl& control, const ControlFace& face) const
{
    const QRectF rect(control.rect);
    m_painter.setBrush(face.isDown ? Mix(m_style.glass, m_style.highlight, 0.45) : m_style.glass);
    m_painter.setPen(QPen(face.isDown ? m_style.text : m_style.keyEdge, face.isDown ? 2 : 1));
    m_painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), PlateCorner, PlateCorner);
    PaintText(rect, QString::number(control.id.index), KeyPixels, m_style.text, face.isDown);
    if (face.isLatched)
        PaintText({rect.right() - 12, rect.top() + 3, 8, 9}, QStringLiteral("L"), SmallPixels,
                  m_style.text, true);
}

void WingPainter::PaintLink(const PlacedControl& control, const ControlFace& face) const
{
    const QRectF rect(control.rect);
    const bool isLit = face.lamp == Lamp::On;
    m_painter.setBrush(isLit ? m_style.link : m_style.glass);
    m_painter.setPen(QPen(m_style.keyEdge, 1));
    m_painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), Corner, Corner);
    const QColor ink = isLit ? m_style.linkText : m_style.text;
    PaintLampMark({rect.left() + 13, rect.center().y()}, face.lamp, ink);
    PaintText(rect.adjusted(20, 0, -2, 0), GetLinkName(control.id.index), KeyPixels, ink);
}

} // namespace VirtualDesk
