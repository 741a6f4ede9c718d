// SPDX-License-Identifier: MIT
#pragma once

#include <QLayout>
#include <memory>
#include <vector>

namespace VirtualDesk
{

/// Items side by side at their natural size, in as many rows as they need.
class FlowLayout : public QLayout
{
    Q_OBJECT

public:
    explicit FlowLayout(QWidget* parent = nullptr);
    ~FlowLayout() override;

    void addItem(QLayoutItem* item) override;
    int count() const override { return static_cast<int>(m_items.size()); }
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override { return minimumSize(); }
    QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

private:
    int Arrange(const QRect& rect, bool isReal) const;

    std::vector<std::unique_ptr<QLayoutItem>> m_items;
};

} // namespace VirtualDesk
