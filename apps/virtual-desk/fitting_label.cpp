// SPDX-License-Identifier: MIT
#include "virtual-desk/fitting_label.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <algorithm>

namespace VirtualDesk
{

namespace
{

constexpr int SmallestPixels = 24;
constexpr int UsualPixels = 56;
constexpr int LargestPixels = 220;

QFont MakeFont(int pixels)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(pixels);
    font.setBold(true);
    return font;
}

} // namespace

FittingLabel::FittingLabel(QString widest, QWidget* parent)
    : QLabel(parent), m_widest(std::move(widest))
{
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFont(MakeFont(UsualPixels));
}

QSize FittingLabel::sizeHint() const
{
    return MeasureAt(UsualPixels);
}

QSize FittingLabel::minimumSizeHint() const
{
    return MeasureAt(SmallestPixels);
}

void FittingLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    const QSize usual = MeasureAt(UsualPixels);
    const int byWidth = UsualPixels * contentsRect().width() / usual.width();
    const int byHeight = UsualPixels * contentsRect().height() / usual.height();
    const int pixels = std::clamp(std::min(byWidth, byHeight), SmallestPixels, LargestPixels);
    if (pixels != font().pixelSize())
        setFont(MakeFont(pixels));
}

QSize FittingLabel::MeasureAt(int pixels) const
{
    const QFontMetrics metrics(MakeFont(pixels));
    return {metrics.horizontalAdvance(m_widest) + pixels / 2, metrics.height()};
}

} // namespace VirtualDesk
