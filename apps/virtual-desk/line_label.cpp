// SPDX-License-Identifier: MIT
#include "virtual-desk/line_label.h"

#include <QPainter>
#include <QStyle>

namespace VirtualDesk
{

namespace
{

constexpr double SmallFont = 0.9;

} // namespace

LineLabel::LineLabel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    QFont font = this->font();
    font.setPointSizeF(font.pointSizeF() * SmallFont);
    setFont(font);
}

void LineLabel::ShowText(const QString& newText)
{
    if (newText == text())
        return;
    setText(newText);
    setToolTip(newText);
}

QSize LineLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

void LineLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
    style()->drawItemText(&painter, contentsRect(),
                          static_cast<int>(Qt::AlignVCenter | alignment()), palette(), isEnabled(),
                          shown, foregroundRole());
}

} // namespace VirtualDesk
