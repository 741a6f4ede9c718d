// SPDX-License-Identifier: MIT
#include "virtual-desk/flow_layout.h"

#include <QWidget>
#include <algorithm>

namespace VirtualDesk
{

FlowLayout::FlowLayout(QWidget* parent) : QLayout(parent) {}

FlowLayout::~FlowLayout() = default;

/// The base class says that an item that is added becomes the layout's.
void FlowLayout::addItem(QLayoutItem* item)
{
    m_items.emplace_back(item);
}

QLayoutItem* FlowLayout::itemAt(int index) const
{
    return index >= 0 && index < count() ? m_items[static_cast<std::size_t>(index)].get() : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index)
{
    if (index < 0 || index >= count())
        return nullptr;
    QLayoutItem* const item = m_items[static_cast<std::size_t>(index)].release();
    m_items.erase(m_items.begin() + index);
    return item;
}

int FlowLayout::heightForWidth(int width) const
{
    return Arrange(QRect(0, 0, width, 0), false);
}

QSize FlowLayout::minimumSize() const
{
    QSize size;
    for (const auto& item : m_items)
        size = size.expandedTo(item->minimumSize());
    const QMargins margins = contentsMargins();
    return size + QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
}

void FlowLayout::setGeometry(const QRect& rect)
{
    QLayout::setGeometry(rect);
    Arrange(rect, true);
}

/// @return the height that it takes
int FlowLayout::Arrange(const QRect& rect, bool isReal) const
{
    const QRect inner = rect.marginsRemoved(contentsMargins());
    const int gap = std::max(spacing(), 0);
    QPoint corner = inner.topLeft();
    int rowHeight = 0;
    for (const auto& item : m_items) {
        if (item->isEmpty())
            continue;
        const QSize size = item->sizeHint();
        if (corner.x() > inner.left() && corner.x() + size.width() > inner.right() + 1) {
            corner = QPoint(inner.left(), corner.y() + rowHeight + gap);
            rowHeight = 0;
        }
        if (isReal)
            item->setGeometry(QRect(corner, size));
        corner.rx() += size.width() + gap;
        rowHeight = std::max(rowHeight, size.height());
    }
    return corner.y() + rowHeight - rect.y() + contentsMargins().bottom();
}

} // namespace VirtualDesk
