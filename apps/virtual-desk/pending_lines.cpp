// SPDX-License-Identifier: MIT
#include "virtual-desk/pending_lines.h"

#include "console/script.h"

namespace VirtualDesk
{

PendingLines::PendingLines(DeskController& desk, QObject* parent) : QObject(parent), m_desk(desk)
{
    connect(&m_desk, &DeskController::done, this, &PendingLines::Take);
}

void PendingLines::Do(const QString& line)
{
    ++m_lines[line];
    m_desk.Do(line);
}

void PendingLines::Do(const QStringList& lines)
{
    for (const QString& line : lines)
        Do(line);
}

void PendingLines::Take(const QString& line, const QString& error)
{
    const auto found = m_lines.find(line);
    if (found == m_lines.end())
        return;
    if (--found.value() == 0)
        m_lines.erase(found);
    Q_EMIT done(line, error);
}

QString ToWord(const QString& word)
{
    return ToWord(word.toStdString());
}

QString ToWord(const std::string& word)
{
    return QString::fromStdString(Console::Quote(word));
}

QString ToWord(const std::wstring& word)
{
    return ToWord(QString::fromStdWString(word));
}

QString ToNumber(double number)
{
    return QString::number(number);
}

} // namespace VirtualDesk
