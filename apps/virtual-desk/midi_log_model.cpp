// SPDX-License-Identifier: MIT
#include "virtual-desk/midi_log_model.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "common/hex.h"

namespace VirtualDesk
{

namespace
{

constexpr char Prefix[] = "midi ";
constexpr char OutSuffix[] = " out";

struct KindWord {
    const char* beginning;
    MidiKind kind;
};

constexpr std::array KindWords{KindWord{"clock", MidiKind::Clock},
                               KindWord{"active sensing", MidiKind::Clock},
                               KindWord{"note ", MidiKind::Note},
                               KindWord{"key pressure", MidiKind::Note},
                               KindWord{"control ", MidiKind::Controller},
                               KindWord{"program", MidiKind::Controller},
                               KindWord{"pressure", MidiKind::Controller},
                               KindWord{"pitch bend", MidiKind::Controller},
                               KindWord{"system exclusive", MidiKind::SystemExclusive},
                               KindWord{"show control", MidiKind::SystemExclusive},
                               KindWord{"machine control", MidiKind::SystemExclusive},
                               KindWord{"timecode full frame", MidiKind::SystemExclusive}};

MidiKind ClassifyStatus(unsigned status)
{
    switch (status >> 4U) {
    case 0x8:
    case 0x9:
    case 0xA:
        return MidiKind::Note;
    case 0xB:
    case 0xC:
    case 0xD:
    case 0xE:
        return MidiKind::Controller;
    default:
        break;
    }
    if (status == 0xF0)
        return MidiKind::SystemExclusive;
    return status == 0xF8 || status == 0xFE ? MidiKind::Clock : MidiKind::Other;
}

/// Of a port's time, in seconds with milliseconds.
QString ToTime(double seconds)
{
    return QString::number(seconds, 'f', 3);
}

} // namespace

MidiKind ClassifyMidi(const QString& text)
{
    // What arrived at a far end begins with its bytes.
    const auto bytes = Tools::ParseHex(text.section(',', 0, 0).toStdString());
    if (bytes && !bytes->empty())
        return ClassifyStatus(bytes->front());
    for (const KindWord& word : KindWords)
        if (text.startsWith(word.beginning))
            return word.kind;
    return text.contains("show control") ? MidiKind::SystemExclusive : MidiKind::Other;
}

MidiLogModel::MidiLogModel(std::vector<std::string> ports, QObject* parent)
    : QAbstractTableModel(parent), m_ports(std::move(ports))
{
}

void MidiLogModel::Take(const std::vector<Tools::MonitorEvent>& events, std::size_t dropped)
{
    std::deque<Line> lines;
    for (const Tools::MonitorEvent& event : events)
        if (event.source.starts_with(Prefix))
            lines.push_back(MakeLine(event));
    if (dropped != 0 && !lines.empty())
        lines.push_front({lines.front().seconds, QString(), QString(),
                          QString("\u26A0 up to %1 lines left out here").arg(dropped),
                          MidiKind::Other});
    if (!m_isPaused) {
        Append(std::move(lines));
        return;
    }
    std::move(lines.begin(), lines.end(), std::back_inserter(m_waiting));
    while (m_waiting.size() > LineLimit)
        m_waiting.pop_front();
}

MidiLogModel::Line MidiLogModel::MakeLine(const Tools::MonitorEvent& event) const
{
    std::string port = event.source.substr(sizeof Prefix - 1);
    // A port's own name may end like that, too.
    const bool isPort = std::find(m_ports.begin(), m_ports.end(), port) != m_ports.end();
    const bool isOut = !isPort && port.ends_with(OutSuffix);
    if (isOut)
        port.resize(port.size() - (sizeof OutSuffix - 1));
    const QString text = QString::fromStdString(event.text);
    const bool isMessage =
        isOut || event.signal == "txShortMessage" || event.signal == "txSysExMessage";
    return {event.seconds, QString::fromStdString(port),
            isOut       ? "\u2192 out"
            : isMessage ? "\u2190 in"
                        : "\u2013",
            text, isMessage ? ClassifyMidi(text) : MidiKind::Other};
}

void MidiLogModel::Append(std::deque<Line> lines)
{
    while (lines.size() > LineLimit)
        lines.pop_front();
    if (lines.empty())
        return;
    const int added = static_cast<int>(lines.size());
    const int old = std::max(rowCount() + added - LineLimit, 0);
    if (old > 0) {
        beginRemoveRows({}, 0, old - 1);
        m_lines.erase(m_lines.begin(), m_lines.begin() + old);
        endRemoveRows();
    }
    beginInsertRows({}, rowCount(), rowCount() + added - 1);
    std::move(lines.begin(), lines.end(), std::back_inserter(m_lines));
    endInsertRows();
}

void MidiLogModel::SetPaused(bool isPaused)
{
    m_isPaused = isPaused;
    if (!isPaused)
        Append(std::exchange(m_waiting, {}));
}

void MidiLogModel::Clear()
{
    beginResetModel();
    m_lines.clear();
    m_waiting.clear();
    endResetModel();
}

int MidiLogModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
}

int MidiLogModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(ColumnCount);
}

QVariant MidiLogModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const Line& line = m_lines.at(static_cast<std::size_t>(index.row()));
    if (role == KindRole)
        return static_cast<int>(line.kind);
    if (role == Qt::TextAlignmentRole && index.column() == Column_Time)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    const bool isText = role == Qt::DisplayRole;
    if (!isText && !(role == Qt::ToolTipRole && index.column() == Column_Text))
        return {};
    switch (index.column()) {
    case Column_Time:
        return ToTime(line.seconds);
    case Column_Port:
        return line.port;
    case Column_Direction:
        return line.direction;
    default:
        return line.text;
    }
}

QVariant MidiLogModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    constexpr std::array<const char*, ColumnCount> Names{"Time (s)", "Port", "Direction",
                                                         "Message"};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return Names.at(static_cast<std::size_t>(section));
}

MidiLogFilter::MidiLogFilter(QObject* parent) : QSortFilterProxyModel(parent) {}

void MidiLogFilter::SetShown(MidiKind kind, bool isShown)
{
    const unsigned bit = 1U << static_cast<unsigned>(kind);
    m_shown = isShown ? m_shown | bit : m_shown & ~bit;
    invalidateFilter();
}

void MidiLogFilter::SetText(const QString& text)
{
    m_text = text;
    invalidateFilter();
}

bool MidiLogFilter::filterAcceptsRow(int row, const QModelIndex& parent) const
{
    const QAbstractItemModel& model = *sourceModel();
    const int kind = model.index(row, 0, parent).data(MidiLogModel::KindRole).toInt();
    if ((m_shown & 1U << static_cast<unsigned>(kind)) == 0)
        return false;
    if (m_text.isEmpty())
        return true;
    for (int column = 0; column < model.columnCount(); ++column)
        if (model.index(row, column, parent)
                .data()
                .toString()
                .contains(m_text, Qt::CaseInsensitive))
            return true;
    return false;
}

} // namespace VirtualDesk
