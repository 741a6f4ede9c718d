// SPDX-License-Identifier: MIT
#include "virtual-desk/clear_style.h"

#include <QPainter>
#include <QStyleOption>

#include "virtual-desk/wing_style.h"

namespace VirtualDesk
{

ClearStyle::ClearStyle(const QString& name) : QProxyStyle(name) {}

void ClearStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element != PE_IndicatorCheckBox && element != PE_IndicatorItemViewItemCheck)
        return;
    constexpr double Strength = 0.55;
    const QColor outline = Mix(option->palette.color(QPalette::Window),
                               option->palette.color(QPalette::WindowText), Strength);
    painter->save();
    painter->setPen(QPen(outline, 1));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5));
    painter->restore();
}

} // namespace VirtualDesk
