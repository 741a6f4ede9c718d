// SPDX-License-Identifier: MIT
#include "virtual-desk/log_model.h"

#include <QFont>
#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace VirtualDesk
{

namespace
{

constexpr std::array<const char*, LogModel::ColumnCount> Titles{"Time",     "Level", "Context",
                                                                "Function", "Line",  "Text"};

QString ToQString(const std::string& text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// A text may hold anything; a cell is one line.
QString ToCell(const std::string& text)
{
    QString cell = ToQString(text);
    for (QChar& letter : cell)
        if (!letter.isPrint())
            letter = ' ';
    return cell;
}

QVariant GetCell(const LogLine& line, int column)
{
    constexpr int Digits = 3;
    switch (column) {
    case LogModel::Time:
        return QString::number(line.seconds, 'f', Digits);
    case LogModel::Level:
        return QString::fromLatin1(Standalone::GetLevelName(line.level));
    case LogModel::Context:
        return ToQString(line.context);
    case LogModel::Function:
        return ToQString(ShortenSignature(line.function));
    case LogModel::LineNumber:
        return line.line;
    default:
        return ToCell(line.text);
    }
}

/// Where the parameters of a signature begin; its size where it has none.
std::size_t FindParameters(const std::string& signature)
{
    int depth = 0; // of template arguments
    for (std::size_t i = 0; i < signature.size(); ++i) {
        const char letter = signature[i];
        const bool isArrow = letter == '>' && i > 0 && signature[i - 1] == '-';
        if (letter == '<')
            ++depth;
        else if (letter == '>' && !isArrow && depth > 0)
            --depth;
        else if (letter == '(' && depth == 0 && signature.compare(i, 11, "(anonymous ") != 0)
            return i;
    }
    return signature.size();
}

/// Where the last two names of a qualified name begin, which ends at @p end. What stands in
/// brackets is part of a name.
std::size_t FindName(const std::string& signature, std::size_t end)
{
    int depth = 0;
    bool isSecond = false;
    for (std::size_t begin = end; begin > 0; --begin) {
        const char letter = signature[begin - 1];
        if (letter == '>' || letter == ')' || letter == '}')
            ++depth;
        else if (letter == '<' || letter == '(' || letter == '{')
            --depth;
        else if (depth > 0)
            continue;
        else if (letter == ' ' || letter == '*' || letter == '&')
            return begin;
        else if (letter == ':') {
            if (isSecond)
                return begin;
            isSecond = true;
            --begin; // the other colon
        }
    }
    return 0;
}

} // namespace

std::string ShortenSignature(const std::string& signature)
{
    const std::size_t end = FindParameters(signature);
    const std::size_t begin = FindName(signature, end);
    return signature.substr(begin, end - begin);
}

void LogModel::MakeRoom(std::size_t count)
{
    if (count == 0)
        return;
    beginRemoveRows({}, 0, static_cast<int>(count) - 1);
    m_lines.erase(m_lines.begin(), m_lines.begin() + static_cast<std::ptrdiff_t>(count));
    endRemoveRows();
}

void LogModel::Append(std::deque<LogLine> lines)
{
    if (lines.size() > Limit)
        lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(Limit));
    if (lines.empty())
        return;
    const std::size_t all = m_lines.size() + lines.size();
    MakeRoom(all - std::min(all, Limit));
    const auto first = static_cast<int>(m_lines.size());
    beginInsertRows({}, first, first + static_cast<int>(lines.size()) - 1);
    std::move(lines.begin(), lines.end(), std::back_inserter(m_lines));
    endInsertRows();
}

void LogModel::Clear()
{
    beginResetModel();
    m_lines.clear();
    endResetModel();
}

int LogModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
}

int LogModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant LogModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const LogLine& line = GetLine(index.row());
    if (role == Qt::DisplayRole)
        return GetCell(line, index.column());
    if (role == Qt::ToolTipRole && index.column() == Function)
        return ToQString(line.function);
    if (role == Qt::TextAlignmentRole && (index.column() == Time || index.column() == LineNumber))
        return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
    if (role == Qt::FontRole && line.level >= Os::Log::Warning) {
        QFont font;
        font.setBold(true);
        return font;
    }
    return {};
}

QVariant LogModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= ColumnCount)
        return {};
    return QString::fromLatin1(Titles.at(static_cast<std::size_t>(section)));
}

void LogFilter::SetText(const QString& text)
{
    m_text = text;
    invalidateFilter();
}

void LogFilter::SetLevels(unsigned levels)
{
    m_levels = levels;
    invalidateFilter();
}

bool LogFilter::filterAcceptsRow(int row, const QModelIndex&) const
{
    const auto* const model = qobject_cast<const LogModel*>(sourceModel());
    const LogLine& line = model->GetLine(row);
    if ((line.level & m_levels) == 0)
        return false;
    const auto holds = [this](const std::string& text) {
        return ToQString(text).contains(m_text, Qt::CaseInsensitive);
    };
    return m_text.isEmpty() || holds(line.text) || holds(line.context) || holds(line.function);
}

} // namespace VirtualDesk
