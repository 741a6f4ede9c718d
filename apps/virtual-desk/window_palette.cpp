// SPDX-License-Identifier: MIT
#include "virtual-desk/window_palette.h"

#include <QApplication>
#include <QColor>
#include <QPalette>
#include <QToolTip>

#include "virtual-desk/clear_style.h"

namespace VirtualDesk
{

// NOLINTBEGIN(clang-analyzer-cplusplus.NewDeleteLeaks): the application owns its style
void UseStyle(const QString& name)
{
    QApplication::setStyle(new ClearStyle(name));
}
// NOLINTEND(clang-analyzer-cplusplus.NewDeleteLeaks)

bool UsePalette(const QString& name)
{
    if (name != "light" && name != "dark")
        return false;
    UseStyle(QStringLiteral("Fusion"));
    // Of two colours the style makes all others.
    const bool isDark = name == "dark";
    QPalette palette(isDark ? QColor(53, 53, 53) : QColor(239, 239, 239),
                     isDark ? QColor(42, 42, 42) : QColor(239, 239, 239));
    palette.setColor(QPalette::Base, isDark ? QColor(30, 30, 30) : QColor(Qt::white));
    palette.setColor(QPalette::Highlight, QColor(48, 140, 198));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, palette.color(QPalette::Base));
    palette.setColor(QPalette::ToolTipText, palette.color(QPalette::WindowText));
    QApplication::setPalette(palette);
    // Tool tips have a palette of their own, which does not follow the application's.
    QToolTip::setPalette(palette);
    return true;
}

} // namespace VirtualDesk
