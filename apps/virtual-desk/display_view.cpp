// SPDX-License-Identifier: MIT
#include "virtual-desk/display_view.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>

namespace VirtualDesk
{

namespace
{

constexpr double Aspect = 16.0 / 10;
constexpr double Bezel = 5;
constexpr int CaptionGap = 4;

/// What the display shows; its light comes from behind, so black stays black.
struct Patch {
    double x, y, width, height; // shares of the screen
    int hue, saturation, value;
};
constexpr std::array<Patch, 9> Picture{{{0, 0, 1, 0.12, 215, 120, 110},
                                        {0.03, 0.17, 0.21, 0.33, 215, 40, 235},
                                        {0.27, 0.17, 0.21, 0.33, 40, 130, 245},
                                        {0.51, 0.17, 0.21, 0.33, 150, 90, 220},
                                        {0.75, 0.17, 0.21, 0.33, 215, 40, 235},
                                        {0.03, 0.56, 0.45, 0.16, 215, 20, 205},
                                        {0.51, 0.56, 0.45, 0.16, 215, 20, 205},
                                        {0.03, 0.78, 0.69, 0.14, 215, 20, 165},
                                        {0.75, 0.78, 0.21, 0.14, 355, 110, 225}}};

/// Light as the eye takes it: half of it is not half as bright.
double ToValue(double brightness)
{
    constexpr double Gamma = 2.2;
    return brightness <= 0 ? 0 : std::pow(std::min(brightness, 1.0), 1 / Gamma);
}

void PaintScreen(QPainter& painter, const QRectF& screen, double brightness)
{
    constexpr int Background = 48;
    const double share = ToValue(brightness);
    const auto dim = [share](int value) { return static_cast<int>(std::lround(value * share)); };
    painter.fillRect(screen, QColor::fromHsv(215, 90, dim(Background)));
    for (const Patch& patch : Picture)
        painter.fillRect(QRectF(screen.left() + patch.x * screen.width(),
                                screen.top() + patch.y * screen.height(),
                                patch.width * screen.width(), patch.height * screen.height()),
                         QColor::fromHsv(patch.hue, patch.saturation, dim(patch.value)));
}

} // namespace

DisplayView::DisplayView(const QString& name, QWidget* parent) : QWidget(parent), m_name(name)
{
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(false);
    setSizePolicy(policy);
    setAccessibleName(name + " display");
    SetBrightness(0);
}

void DisplayView::SetBrightness(double brightness)
{
    if (brightness == m_brightness)
        return;
    m_brightness = brightness;
    setAccessibleDescription(GetText());
    update();
}

void DisplayView::SetDimmed(bool isDimmed)
{
    m_isDimmed = isDimmed;
    setToolTip(isDimmed ? QString() : QString("The library does not dim it on this console"));
    setAccessibleDescription(GetText());
    update();
}

QString DisplayView::GetText() const
{
    if (!m_isDimmed)
        return m_name + ", not dimmed";
    return m_name + ' ' + QString::number(std::lround(m_brightness * 100)) + " %";
}

QSize DisplayView::sizeHint() const
{
    constexpr int Width = 170;
    return {Width, static_cast<int>(Width / Aspect) + CaptionGap + fontMetrics().height()};
}

QSize DisplayView::minimumSizeHint() const
{
    constexpr int Width = 90;
    return {Width, static_cast<int>(Width / Aspect) + CaptionGap + fontMetrics().height()};
}

void DisplayView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int caption = fontMetrics().height() + CaptionGap;
    const double most = height() - caption;
    const double frameWidth = std::min<double>(width() - 1, most * Aspect);
    const double frameHeight = frameWidth / Aspect;
    const QRectF frame((width() - frameWidth) / 2, 0.5, frameWidth, frameHeight - 1);

    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    painter.setBrush(palette().color(QPalette::Dark));
    painter.drawRoundedRect(frame, Bezel, Bezel);
    PaintScreen(painter, frame.adjusted(Bezel, Bezel, -Bezel, -Bezel), m_brightness);

    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(QRectF(0, frame.bottom(), width(), caption),
                     Qt::AlignHCenter | Qt::AlignBottom, GetText());
}

} // namespace VirtualDesk
