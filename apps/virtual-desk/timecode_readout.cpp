// SPDX-License-Identifier: MIT
#include "virtual-desk/timecode_readout.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <array>

#include "virtual-desk/fitting_label.h"
#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

QString DescribeDirection(int direction)
{
    constexpr std::array<const char*, 3> Texts{"\u25C0 backwards", "\u2013 no direction",
                                               "\u25B6 forwards"};
    return QString::fromUtf8(Texts.at(static_cast<std::size_t>(direction) + 1));
}

/// Tenths of a second while it is young, so that it changes no more often than can be read.
QString DescribeAge(double age)
{
    constexpr double Minute = 60;
    if (age < 10)
        return QString("last %1 s ago").arg(age, 0, 'f', 1);
    if (age < Minute)
        return QString("last %1 s ago").arg(age, 0, 'f', 0);
    return QString("last %1 min ago").arg(age / Minute, 0, 'f', 0);
}

void SetLarger(QLabel& label, double factor)
{
    QFont font = label.font();
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setBold(true);
    label.setFont(font);
}

} // namespace

TimecodeReadout::TimecodeReadout(const QString& source, QWidget* parent)
    : QFrame(parent), m_source(source)
{
    constexpr double Larger = 1.4;
    setObjectName("readout " + source);
    setAccessibleName("Timecode source " + source);
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    setForegroundRole(QPalette::Text);

    auto* const name = new QLabel(source);
    SetLarger(*name, Larger);
    m_dropFrame = MakeNamed("dropFrame", "Counts with drop frame");
    m_dropFrame->setText(" DF ");
    m_dropFrame->setToolTip("Drop frame");
    m_dropFrame->setFrameShape(QFrame::Box);
    m_dropFrame->hide();
    m_direction = MakeNamed("direction", "Direction");
    m_signal = MakeNamed("signal", "Whether frames come");
    for (QLabel* const label : {m_dropFrame, m_direction, m_signal})
        SetLarger(*label, Larger);
    auto* const head = new QHBoxLayout;
    head->addWidget(name);
    head->addWidget(m_dropFrame);
    head->addStretch();
    head->addWidget(m_direction);
    head->addSpacing(fontMetrics().averageCharWidth() * 2);
    head->addWidget(m_signal);

    m_time = new FittingLabel("00:00:00:00");
    m_time->setObjectName("time " + source);
    m_time->setAccessibleDescription("Last frame of " + source);
    m_time->setForegroundRole(QPalette::Text);

    m_rate = MakeNamed("rate", "Measured frames per second");
    m_age = MakeNamed("age", "Age of the last frame");
    m_frames = MakeNamed("frames", "Frames so far");
    m_lost = MakeNamed("lost", "Frames lost");
    m_repeated = MakeNamed("repeated", "Frames repeated");
    SetLarger(*m_rate, 1.0);
    auto* const foot = new QHBoxLayout;
    for (QLabel* const label : {m_rate, m_age, m_frames, m_lost, m_repeated}) {
        foot->addWidget(label);
        foot->addStretch();
    }

    auto* const layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addWidget(m_time, 1);
    layout->addLayout(foot);
}

bool TimecodeReadout::IsSilent(const Console::TimecodeReading& reading)
{
    constexpr double Patience = 1; // seconds
    constexpr double MissedFrames = 3;
    return reading.age > Patience &&
           (reading.rate == 0 || reading.age * reading.rate > MissedFrames);
}

QLabel* TimecodeReadout::MakeNamed(const QString& part, const QString& meaning) const
{
    QLabel* const label = MakeLabel(part + " " + m_source, meaning + " of " + m_source);
    label->setForegroundRole(QPalette::Text);
    return label;
}

void TimecodeReadout::Show(const Console::TimecodeReading& reading)
{
    const bool isSilent = IsSilent(reading);
    SetTextOf(*m_time, QString::fromStdString(reading.frame.toString()));
    m_dropFrame->setVisible(reading.frame.dropFrame);
    SetTextOf(*m_direction, DescribeDirection(reading.direction));
    SetTextOf(*m_signal, QString::fromUtf8(isSilent ? "\u25CB silent" : "\u25CF live"));
    SetTextOf(*m_rate, isSilent || reading.rate == 0
                           ? QString("no rate")
                           : QString("%1 frames/s").arg(reading.rate, 0, 'f', 2));
    SetTextOf(*m_age, DescribeAge(reading.age));
    SetTextOf(*m_frames,
              reading.frames == 1 ? QString("1 frame") : QString("%1 frames").arg(reading.frames));
    SetTextOf(*m_lost, QString("%1 lost").arg(reading.lost));
    SetTextOf(*m_repeated, QString("%1 repeated").arg(reading.repeated));
    // What stands there no longer counts, so it steps back.
    const QPalette::ColorRole role = isSilent ? QPalette::PlaceholderText : QPalette::Text;
    if (m_time->foregroundRole() != role)
        m_time->setForegroundRole(role);
}

} // namespace VirtualDesk
