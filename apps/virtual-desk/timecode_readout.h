// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>
#include <QLabel>
#include <QString>

#include "console/timecode_meter.h"

namespace VirtualDesk
{

/// One source of timecode, to be read from a distance.
///
/// Labels, each named after the source, such as "time sim 1": "time", "dropFrame" (shown only for
/// frames that count so), "direction", "signal", "rate", "age", "frames", "lost" and "repeated".
class TimecodeReadout : public QFrame
{
    Q_OBJECT

public:
    explicit TimecodeReadout(const QString& source, QWidget* parent = nullptr);

    void Show(const Console::TimecodeReading& reading);

    /// Whether a source has been quiet for longer than its frames lie apart.
    static bool IsSilent(const Console::TimecodeReading& reading);

private:
    QLabel* MakeNamed(const QString& part, const QString& meaning) const;

    const QString m_source;
    QLabel* m_time = nullptr;
    QLabel* m_dropFrame = nullptr;
    QLabel* m_direction = nullptr;
    QLabel* m_signal = nullptr;
    QLabel* m_rate = nullptr;
    QLabel* m_age = nullptr;
    QLabel* m_frames = nullptr;
    QLabel* m_lost = nullptr;
    QLabel* m_repeated = nullptr;
};

} // namespace VirtualDesk
