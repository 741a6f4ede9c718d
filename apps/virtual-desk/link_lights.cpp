// SPDX-License-Identifier: MIT
#include "virtual-desk/link_lights.h"

#include <QPainter>
#include <algorithm>

#include "virtual-desk/wing_style.h"

namespace VirtualDesk
{

namespace
{

constexpr int Lamp = 12; // its diameter
constexpr int Gap = 6;
constexpr int LineGap = 4;

const QString ConsoleTitle = QStringLiteral("Console network");
const QString FixtureTitle = QStringLiteral("Fixture network");
const QString LinkOn = QStringLiteral("link");
const QString LinkOff = QStringLiteral("no link");
const QString GigabitOn = QStringLiteral("gigabit");
const QString GigabitOff = QStringLiteral("not gigabit");

/// A lamp that is on is filled and has a bright spot, one that is off is a ring.
void PaintLamp(QPainter& painter, const QRectF& place, bool on, const QColor& colour,
               const QPalette& palette)
{
    // Colours of a palette for edges nearly vanish in a dark one.
    constexpr double RingStrength = 0.6;
    const QColor text = palette.color(QPalette::WindowText);
    painter.setPen(on ? QPen(text, 1)
                      : QPen(Mix(palette.color(QPalette::Window), text, RingStrength), 1.5));
    painter.setBrush(on ? QBrush(colour) : QBrush(Qt::NoBrush));
    painter.drawEllipse(place.adjusted(1, 1, -1, -1));
    if (!on)
        return;
    constexpr double Spot = 0.3;
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour.lighter(170));
    painter.drawEllipse(QRectF(place.left() + place.width() * Spot,
                               place.top() + place.height() * Spot, place.width() * Spot,
                               place.height() * Spot));
}

QString Describe(bool active, bool gigabit)
{
    return (active ? LinkOn : LinkOff) + (gigabit ? ", " + GigabitOn : QString());
}

} // namespace

LinkLights::LinkLights(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAccessibleName("Link lights");
    setAccessibleDescription(GetText());
}

void LinkLights::SetLights(const Standalone::Report::SetLinkLights& lights)
{
    if (lights == m_lights)
        return;
    m_lights = lights;
    setAccessibleDescription(GetText());
    update();
}

QString LinkLights::GetText() const
{
    return ConsoleTitle + ": " +
           Describe(m_lights.consoleActive != 0, m_lights.consoleGigabit != 0) +
           "; fixture network: " +
           Describe(m_lights.fixtureActive != 0, m_lights.fixtureGigabit != 0);
}

QSize LinkLights::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    const int title =
        std::max(metrics.horizontalAdvance(ConsoleTitle), metrics.horizontalAdvance(FixtureTitle));
    const int width = title + 4 * Gap + 2 * (Lamp + Gap) + metrics.horizontalAdvance(LinkOff) +
                      metrics.horizontalAdvance(GigabitOff);
    return {width, 2 * std::max(metrics.height(), Lamp) + LineGap};
}

void LinkLights::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QFontMetrics metrics = fontMetrics();
    const int line = std::max(metrics.height(), Lamp);
    const int link =
        std::max(metrics.horizontalAdvance(ConsoleTitle), metrics.horizontalAdvance(FixtureTitle)) +
        2 * Gap;
    const int gigabit = link + Lamp + metrics.horizontalAdvance(LinkOff) + 3 * Gap;
    const auto paint = [&](int top, const QString& title, bool active, bool fast) {
        const auto text = [&](int left, const QString& words) {
            painter.setPen(palette().color(QPalette::WindowText));
            painter.drawText(QRect(left, top, width() - left, line), Qt::AlignVCenter, words);
        };
        text(0, title);
        const double lampTop = top + (line - Lamp) / 2.0;
        PaintLamp(painter, {link * 1.0, lampTop, Lamp, Lamp}, active, QColor(60, 190, 80),
                  palette());
        text(link + Lamp + Gap, active ? LinkOn : LinkOff);
        PaintLamp(painter, {gigabit * 1.0, lampTop, Lamp, Lamp}, fast, QColor(240, 170, 40),
                  palette());
        text(gigabit + Lamp + Gap, fast ? GigabitOn : GigabitOff);
    };
    paint(0, ConsoleTitle, m_lights.consoleActive != 0, m_lights.consoleGigabit != 0);
    paint(line + LineGap, FixtureTitle, m_lights.fixtureActive != 0, m_lights.fixtureGigabit != 0);
}

} // namespace VirtualDesk
