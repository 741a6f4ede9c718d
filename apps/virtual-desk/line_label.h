// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace VirtualDesk
{

/// A text in one line, shortened where there is no room for all of it; its tool tip has the rest.
class LineLabel : public QLabel
{
    Q_OBJECT

public:
    explicit LineLabel(QWidget* parent = nullptr);

    /// Does nothing where it stands already.
    void ShowText(const QString& text);
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace VirtualDesk
