// SPDX-License-Identifier: MIT
#include "virtual-desk/wing_style.h"

namespace VirtualDesk
{

QColor Mix(const QColor& first, const QColor& second, double share)
{
    const auto mix = [share](float a, float b) { return a + (b - a) * static_cast<float>(share); };
    return QColor::fromRgbF(mix(first.redF(), second.redF()), mix(first.greenF(), second.greenF()),
                            mix(first.blueF(), second.blueF()));
}

WingStyle::WingStyle(const QPalette& palette)
    : text(palette.color(QPalette::WindowText)), keyText(palette.color(QPalette::ButtonText)),
      highlight(palette.color(QPalette::Highlight))
{
    const QColor window = palette.color(QPalette::Window);
    const QColor base = palette.color(QPalette::Base);
    body = Mix(window, text, 0.08);
    plate = Mix(window, text, 0.03);
    edge = Mix(window, text, 0.26);
    faint = Mix(window, text, 0.68);
    key = Mix(palette.color(QPalette::Button), base, 0.35);
    keyEdge = Mix(window, text, 0.48);
    track = Mix(window, text, 0.20);
    glass = Mix(window, text, 0.14);
}

} // namespace VirtualDesk
