// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <string>

#include "virtual-desk/desk_controller.h"

namespace VirtualDesk
{

/// The lines that one panel asked for, until they are done. On the window's thread.
class PendingLines : public QObject
{
    Q_OBJECT

public:
    explicit PendingLines(DeskController& desk, QObject* parent = nullptr);

    void Do(const QString& line);
    void Do(const QStringList& lines);
    /// Whether none is under way: what is to be seen is what came of them.
    bool IsEmpty() const { return m_lines.isEmpty(); }
    bool Has(const QString& line) const { return m_lines.contains(line); }

Q_SIGNALS:
    /// A line is done that the panel asked for; error is empty when it went well.
    void done(const QString& line, const QString& error);

private:
    void Take(const QString& line, const QString& error);

    DeskController& m_desk;
    QHash<QString, int> m_lines; // how often each is under way
};

/// A word of a line, in quotes where it needs them.
QString ToWord(const QString& word);
QString ToWord(const std::string& word);
QString ToWord(const std::wstring& word);

/// A number as lines have it, whatever the user's locale.
QString ToNumber(double number);

} // namespace VirtualDesk
