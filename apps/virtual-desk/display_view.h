// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>

namespace VirtualDesk
{

/// One of the desk's displays, as bright as its backlight makes it.
class DisplayView : public QWidget
{
    Q_OBJECT

public:
    explicit DisplayView(const QString& name, QWidget* parent = nullptr);

    /// @param brightness 0 to 1
    void SetBrightness(double brightness);
    double GetBrightness() const { return m_brightness; }
    /// Whether the console's model dims it; true to begin with.
    void SetDimmed(bool isDimmed);
    /// Such as "left 50 %", or "left, not dimmed".
    QString GetText() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QString m_name;
    double m_brightness = -1;
    bool m_isDimmed = true;
};

} // namespace VirtualDesk
