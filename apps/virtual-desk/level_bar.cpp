// SPDX-License-Identifier: MIT
#include "virtual-desk/level_bar.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace VirtualDesk
{

namespace
{

constexpr int Gap = 8;           // between the bar and its text
constexpr int MarkSize = 4;      // half the width of the mark's foot
constexpr double Thickness = 10; // of the bar
constexpr double Radius = 3;

} // namespace

LevelBar::LevelBar(QWidget* parent) : QWidget(parent), m_widestText("100.0 %")
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void LevelBar::SetLevel(double share, const QString& text)
{
    if (share == m_level && text == m_text)
        return;
    m_level = share;
    m_text = text;
    setAccessibleDescription(text);
    update();
}

void LevelBar::SetMark(double share)
{
    if (share == m_mark)
        return;
    m_mark = share;
    update();
}

void LevelBar::SetWidestText(const QString& text)
{
    m_widestText = text;
    updateGeometry();
}

QSize LevelBar::sizeHint() const
{
    constexpr int Usual = 180;
    return {Usual + Gap + GetTextWidth(), minimumSizeHint().height()};
}

QSize LevelBar::minimumSizeHint() const
{
    constexpr int Least = 80;
    const int bar = static_cast<int>(Thickness) + 2 * MarkSize + 2;
    return {Least + Gap + GetTextWidth(), std::max(fontMetrics().height(), bar)};
}

int LevelBar::GetTextWidth() const
{
    return std::max(fontMetrics().horizontalAdvance(m_widestText),
                    fontMetrics().horizontalAdvance(m_text));
}

QRectF LevelBar::GetTrack() const
{
    // Room on both sides for a mark at an end.
    const int room = width() - Gap - GetTextWidth() - 2 * MarkSize - 1;
    return {MarkSize + 0.5, (height() - Thickness) / 2, std::max(room, 0) * 1.0, Thickness};
}

void LevelBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF track = GetTrack();
    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(track, Radius, Radius);

    if (m_level > 0) {
        QPainterPath shape;
        shape.addRoundedRect(track.adjusted(0.5, 0.5, -0.5, -0.5), Radius, Radius);
        QRectF filled = track;
        filled.setWidth(track.width() * std::min(m_level, 1.0));
        painter.save();
        painter.setClipRect(filled);
        painter.fillPath(shape, palette().color(QPalette::Highlight));
        painter.restore();
    }
    if (m_mark >= 0) {
        const double x = track.left() + track.width() * std::min(m_mark, 1.0);
        const double foot = track.bottom() + MarkSize + 1;
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette().color(QPalette::WindowText));
        painter.drawPolygon(
            QPolygonF({{x, track.bottom() - 1}, {x - MarkSize, foot}, {x + MarkSize, foot}}));
    }
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect(), Qt::AlignRight | Qt::AlignVCenter, m_text);
}

} // namespace VirtualDesk
