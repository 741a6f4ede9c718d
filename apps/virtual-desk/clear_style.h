// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace VirtualDesk
{

/// A style whose boxes to tick can be told from what is behind them in dark palettes too.
class ClearStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /// @param name of the style below, such as "Fusion"; empty for the system's
    explicit ClearStyle(const QString& name = QString());

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

} // namespace VirtualDesk
