// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>
#include <deque>
#include <string>

#include "os/log.h"
#include "virtual-desk/log_feed.h"

namespace VirtualDesk
{

/// Lines of the log as a table. The oldest make room when there are too many.
class LogModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Time, Level, Context, Function, LineNumber, Text, ColumnCount };
    static constexpr std::size_t Limit = 10000;

    using QAbstractTableModel::QAbstractTableModel;

    /// @param lines oldest first
    void Append(std::deque<LogLine> lines);
    void Clear();
    const LogLine& GetLine(int row) const { return m_lines.at(static_cast<std::size_t>(row)); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void MakeRoom(std::size_t count);

    std::deque<LogLine> m_lines;
};

/// The lines of a LogModel whose level is wanted and in which a text stands.
class LogFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    /// Part of the text, of the context or of the function, in whatever case.
    void SetText(const QString& text);
    /// Level bits.
    void SetLevels(unsigned levels);
    unsigned GetLevels() const { return m_levels; }

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    QString m_text;
    unsigned m_levels = Os::Log::AllLevels;
};

/// "Device::Send" of a signature such as "bool Hardware::Midi::Device::Send(unsigned int)".
std::string ShortenSignature(const std::string& signature);

} // namespace VirtualDesk
