// SPDX-License-Identifier: MIT
// The part of the painter that paints what moves and what shows text.
#include <QLinearGradient>
#include <QPainterPath>
#include <QRadialGradient>
#include <QTextOption>
#include <QtMath>
#include <algorithm>
#include <cmath>

#include "virtual-desk/fader_travel.h"
#include "virtual-desk/wing_painter.h"
#include "virtual-desk/wing_words.h"

namespace VirtualDesk
{

namespace
{

constexpr double Corner = 3;
constexpr int ValuePixels = 10;
constexpr int SmallPixels = 8;
constexpr double TrackWidth = 5;
constexpr QSizeF CapSize(26, 14);
constexpr int ScaleMarks = 10;
constexpr double DegreesPerStep = 12;
constexpr int FullLevel = 255;
constexpr double SurfaceWidth = 34;
constexpr double BallSpacing = 26;
constexpr double RibSpacing = 7;

/// What remains of a number after whole multiples, from 0, also of negative ones.
double Wrap(double number, double by)
{
    return number - by * std::floor(number / by);
}

/// How many steps fit from the first place on, the end left out.
int CountSteps(double start, double end, double step)
{
    return std::max(0, static_cast<int>(std::ceil((end - start) / step)));
}

} // namespace

void WingPainter::PaintFader(const QRect& rect, const ControlFace& face) const
{
    const QRectF travel = GetFaderTravel(rect);
    const QRectF track(travel.center().x() - TrackWidth / 2, travel.top(), TrackWidth,
                       travel.height());
    PaintFaderScale(track);
    m_painter.setPen(QPen(m_style.keyEdge, 1));
    m_painter.setBrush(m_style.track);
    m_painter.drawRoundedRect(track.adjusted(0, -3, 0, 3), 2, 2);
    const double y = GetFaderY(rect, std::max(face.position, 0));
    if (face.position > 0)
        m_painter.fillRect(
            QRectF(QPointF(track.left() + 1, y), QPointF(track.right() - 1, track.bottom() + 2)),
            m_style.highlight);
    PaintFaderCap({travel.center().x(), y});
    if (face.target >= 0 && face.target != face.position) {
        const double target = GetFaderY(rect, face.target);
        QPainterPath mark(QPointF(track.right() + 2, target));
        mark.lineTo(rect.right(), target - 5);
        mark.lineTo(rect.right(), target + 5);
        mark.closeSubpath();
        m_painter.setPen(QPen(m_style.text, 1));
        m_painter.setBrush(m_style.lamp);
        m_painter.drawPath(mark);
    }
    PaintText(QRectF(rect.left(), rect.bottom() - 13, rect.width(), 14),
              face.position < 0 ? QStringLiteral("\u2013") : QString::number(face.position),
              ValuePixels, face.position < 0 ? m_style.faint : m_style.text);
}

void WingPainter::PaintFaderScale(const QRectF& track) const
{
    for (int mark = 0; mark <= ScaleMarks; ++mark) {
        const double y = track.bottom() - track.height() * mark / ScaleMarks;
        const double length = mark % (ScaleMarks / 2) == 0 ? 9 : 5;
        m_painter.setPen(QPen(m_style.edge, 1));
        m_painter.drawLine(QPointF(track.left() - 5 - length, y), QPointF(track.left() - 5, y));
    }
}

void WingPainter::PaintFaderCap(QPointF centre) const
{
    const QRectF cap(centre.x() - CapSize.width() / 2, centre.y() - CapSize.height() / 2,
                     CapSize.width(), CapSize.height());
    PaintCap(cap, m_style.key, false);
    m_painter.setPen(QPen(m_style.keyText, 1.4));
    m_painter.drawLine(QPointF(cap.left() + 4, centre.y()), QPointF(cap.right() - 4, centre.y()));
}

void WingPainter::PaintEncoder(const PlacedControl& control, const ControlFace& face) const
{
    const QRectF rect(control.rect);
    const double radius = rect.width() / 2 - 3;
    const QPointF centre(rect.center().x(), rect.top() + radius + 2);
    m_painter.setPen(QPen(m_style.edge, 1));
    m_painter.setBrush(m_style.track);
    m_painter.drawEllipse(centre, radius, radius);
    QLinearGradient gradient(centre.x(), centre.y() - radius, centre.x(), centre.y() + radius);
    gradient.setColorAt(0, m_style.key.lighter(108));
    gradient.setColorAt(1, m_style.key.darker(112));
    m_painter.setBrush(gradient);
    m_painter.setPen(QPen(m_style.keyEdge, 1));
    m_painter.drawEllipse(centre, radius - 4, radius - 4);
    const double angle = qDegreesToRadians(face.position * DegreesPerStep);
    const QPointF way(std::sin(angle), -std::cos(angle));
    m_painter.setPen(QPen(m_style.highlight, 3, Qt::SolidLine, Qt::RoundCap));
    m_painter.drawLine(centre + way * (radius - 13), centre + way * (radius - 7));
    PaintText(QRectF(rect.left(), rect.bottom() - 13, rect.width(), 13),
              QStringLiteral("%1: %2").arg(control.id.index).arg(face.position), ValuePixels,
              m_style.text);
}

/// The glass is lit as bright as the display; a bar below tells the same by its length.
void WingPainter::PaintLcd(const QRect& rect, const ControlFace& face) const
{
    const double share = m_isAsleep ? 0 : static_cast<double>(std::max(face.level, 0)) / FullLevel;
    const QRectF glass = QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5);
    m_painter.setPen(QPen(m_style.keyEdge, 1));
    m_painter.setBrush(Mix(m_style.glass, m_style.highlight, share * 0.30));
    m_painter.drawRoundedRect(glass, 2, 2);
    m_painter.fillRect(QRectF(glass.left() + 3, glass.bottom() - 4, (glass.width() - 6) * share, 2),
                       m_style.highlight);
    QFont font = m_painter.font();
    font.setPixelSize(SmallPixels);
    font.setBold(false);
    m_painter.setFont(font);
    m_painter.setPen(m_style.text);
    QTextOption option(Qt::AlignCenter);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    const QRectF room = glass.adjusted(2, 1, -2, -4);
    m_painter.save();
    m_painter.setClipRect(room, Qt::IntersectClip);
    m_painter.drawText(room, GetLcdText(face), option);
    m_painter.restore();
}

/// The display's number, ten cells, and its surface byte.
void WingPainter::PaintDisplay(const PlacedControl& control, const ControlFace& face) const
{
    const QRectF rect(control.rect);
    const double left = rect.left() + 20;
    const double width = (rect.right() - SurfaceWidth - left) / CellsPerDisplay;
    PaintText(QRectF(rect.left(), rect.top(), 18, rect.height()), QString::number(control.id.index),
              ValuePixels, m_style.faint);
    for (std::size_t cell = 0; cell < face.text.size(); ++cell) {
        const QRectF box(left + width * static_cast<double>(cell), rect.top() + 1, width - 1,
                         rect.height() - 2);
        m_painter.setPen(QPen(m_style.edge, 1));
        m_painter.setBrush(m_style.glass);
        m_painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
        const char32_t code = face.text[cell];
        const bool hasGlyph = m_painter.fontMetrics().inFontUcs4(code);
        const QString text = hasGlyph || code == 0 ? GetCellText(code) : GetCodeText(code);
        const bool isShort = text.size() <= 2;
        PaintText(box,
                  isShort ? text : text.left(text.size() / 2) + '\n' + text.mid(text.size() / 2),
                  isShort ? 12 : 7, m_style.text);
    }
    PaintText(QRectF(rect.right() - SurfaceWidth + 2, rect.top(), SurfaceWidth - 2, rect.height()),
              QStringLiteral("s %1").arg(face.level), ValuePixels, m_style.text);
}

void WingPainter::PaintBall(const QRect& rect, const ControlFace& face) const
{
    const QRectF ball = QRectF(rect).adjusted(5, 5, -5, -5);
    m_painter.setPen(QPen(m_style.keyEdge, 1));
    m_painter.setBrush(m_style.track);
    m_painter.drawEllipse(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5));
    QRadialGradient gradient(ball.center() - QPointF(14, 18), ball.width() * 0.75);
    gradient.setColorAt(0, m_style.key.lighter(150));
    gradient.setColorAt(1, m_style.key.darker(140));
    m_painter.setBrush(gradient);
    m_painter.drawEllipse(ball);
    // Dots on it, so that it is seen to roll.
    m_painter.save();
    QPainterPath edge;
    edge.addEllipse(ball.adjusted(4, 4, -4, -4));
    m_painter.setClipPath(edge, Qt::IntersectClip);
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(m_style.keyEdge);
    const double startX = ball.left() + Wrap(face.roll.x(), BallSpacing);
    const double startY = ball.top() + Wrap(face.roll.y(), BallSpacing);
    const int columns = CountSteps(startX, ball.right(), BallSpacing);
    const int rows = CountSteps(startY, ball.bottom(), BallSpacing);
    for (int column = 0; column < columns; ++column)
        for (int row = 0; row < rows; ++row)
            m_painter.drawEllipse(
                QPointF(startX + column * BallSpacing, startY + row * BallSpacing), 1.6, 1.6);
    m_painter.restore();
}

/// A wheel seen from its edge.
void WingPainter::PaintRing(const QRect& rect, const ControlFace& face) const
{
    const QRectF wheel = QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5);
    PaintCap(QRectF(rect), m_style.key, false);
    m_painter.setPen(QPen(m_style.keyEdge, 1.4));
    const double start = wheel.left() + 4 + Wrap(face.position * RibSpacing / 2, RibSpacing);
    const int ribs = CountSteps(start, wheel.right() - 3, RibSpacing);
    for (int rib = 0; rib < ribs; ++rib) {
        const double x = start + rib * RibSpacing;
        m_painter.drawLine(QPointF(x, wheel.top() + 4), QPointF(x, wheel.bottom() - 4));
    }
}

/// A tray that stands out of its slot while it is open.
void WingPainter::PaintDrawer(const QRect& rect, const ControlFace& face) const
{
    const QRectF slot = QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5);
    m_painter.setPen(QPen(m_style.keyEdge, 1));
    m_painter.setBrush(m_style.track);
    m_painter.drawRoundedRect(slot, Corner, Corner);
    const bool isOpen = face.position == 1;
    const double depth = isOpen ? slot.height() - 6 : slot.height() / 2 - 3;
    PaintCap(QRectF(slot.left() + 6, slot.top() + 2, slot.width() - 12, depth), m_style.key, false);
    const QString text = face.position < 0 ? QStringLiteral("drawer ?")
                                           : QString(isOpen ? "\u25BC open" : "\u25B2 closed");
    PaintText(QRectF(slot.left() + 6, slot.top() + 2, slot.width() - 12, depth), text, ValuePixels,
              m_style.keyText);
}

} // namespace VirtualDesk
