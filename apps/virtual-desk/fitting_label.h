// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace VirtualDesk
{

/// A line of text in digits of one width that is as large as its place allows.
class FittingLabel : public QLabel
{
    Q_OBJECT

public:
    /// @param widest a text as long as the longest that will be shown
    explicit FittingLabel(QString widest, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QSize MeasureAt(int pixels) const;

    const QString m_widest;
};

} // namespace VirtualDesk
