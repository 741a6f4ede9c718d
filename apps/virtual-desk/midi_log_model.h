// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>
#include <QString>
#include <cstddef>
#include <deque>
#include <vector>

#include "watch/event.h"

namespace VirtualDesk
{

/// What kind of message a line of the log is about.
enum class MidiKind {
    Clock,           ///< clock and active sensing, which come all the time
    Note,            ///< notes and the pressure on their keys
    Controller,      ///< controllers, programs, pressure of a channel, and pitch bend
    SystemExclusive, ///< with timecode, show control and machine control in it
    Other
};
inline constexpr int MidiKindCount = 5;

/// The kind of what an event says, in words or as bytes.
MidiKind ClassifyMidi(const QString& text);

/// What MIDI ports said lately, a line each: time, port, direction and text.
class MidiLogModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Column_Time, Column_Port, Column_Direction, Column_Text, ColumnCount };
    /// Gives a line's MidiKind as an int.
    static constexpr int KindRole = Qt::UserRole;
    /// Lines that are kept; of more, the newest.
    static constexpr int LineLimit = 5000;

    /// @param ports their names
    explicit MidiLogModel(std::vector<std::string> ports, QObject* parent = nullptr);

    /// Takes those of the events that MIDI ports have, in one step.
    /// @param dropped how many more there were before, of whatever source
    void Take(const std::vector<Tools::MonitorEvent>& events, std::size_t dropped);
    /// While paused, what comes waits, as much as there is room for.
    void SetPaused(bool isPaused);
    std::size_t CountWaiting() const { return m_waiting.size(); }
    /// Forgets all lines, those that wait included.
    void Clear();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Line {
        double seconds;
        QString port;
        QString direction;
        QString text;
        MidiKind kind;
    };

    Line MakeLine(const Tools::MonitorEvent& event) const;
    void Append(std::deque<Line> lines);

    const std::vector<std::string> m_ports;
    std::deque<Line> m_lines;
    std::deque<Line> m_waiting;
    bool m_isPaused = false;
};

/// Lets through the lines of chosen kinds that hold a text.
class MidiLogFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit MidiLogFilter(QObject* parent = nullptr);

    void SetShown(MidiKind kind, bool isShown);
    /// In any column, whatever the case; an empty one lets everything through.
    void SetText(const QString& text);

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    unsigned m_shown = ~0U; // a bit for each kind
    QString m_text;
};

} // namespace VirtualDesk
