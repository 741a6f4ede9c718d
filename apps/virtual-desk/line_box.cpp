// SPDX-License-Identifier: MIT
#include "virtual-desk/line_box.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QRegularExpression>
#include <algorithm>

#include "console/session.h"
#include "standalone/network_source.h"
#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

namespace
{

constexpr qsizetype LongestHistory = 200;
/// Alternatives that are written out; of more a line stands as the help has it.
constexpr qsizetype MostAlternatives = 8;

/// The first word of a verb, and what stands in its help for a name of the desk.
QStringList GetNames(const QString& verb, const QString& place, const Desk::DeskData& desk)
{
    QStringList names;
    if (place == "PATH" && (verb == "widget" || verb == "wing" || verb == "ltc"))
        for (const Desk::WidgetData& widget : desk.widgets)
            names += ToWord(widget.path);
    else if (place == "PORT")
        for (const Desk::MidiPortData& port : desk.midiPorts)
            names += ToWord(port.name);
    else if (place == "DEVICE")
        for (const Desk::SerialLineData& line : desk.serialLines)
            names += ToWord(line.device);
    else if (place == "NAME" && verb == "adapter")
        for (const Desk::AdapterData& adapter : desk.adapters)
            names += ToWord(Standalone::NarrowAdapterName(adapter.name));
    return names;
}

/// A usage's words as what each can be.
QStringList ExpandUsage(const QString& usage, const Desk::DeskData& desk)
{
    static const QRegularExpression alternatives("^[a-z-]+(\\|[a-z-]+)+$");
    QStringList lines{QString()};
    const QStringList words = usage.split(' ');
    for (qsizetype place = 0; place < words.size(); ++place) {
        QStringList choices{words[place]};
        if (place == 1 && !GetNames(words[0], words[1], desk).isEmpty())
            choices = GetNames(words[0], words[1], desk);
        else if (alternatives.match(words[place]).hasMatch())
            choices = words[place].split('|');
        if (choices.size() > MostAlternatives && place != 1)
            choices = {words[place]};
        QStringList longer;
        for (const QString& line : lines)
            for (const QString& choice : choices)
                longer += line.isEmpty() ? choice : line + ' ' + choice;
        lines = longer;
    }
    return lines;
}

} // namespace

QStringList GetPossibleLines(const Desk::DeskData& desk)
{
    QStringList lines;
    for (const Console::VerbHelp& help : Console::Session::GetVerbs())
        lines += ExpandUsage(QString::fromStdString(help.usage), desk);
    return lines;
}

LineBox::LineBox(const Desk::DeskData& desk, QWidget* parent) : QLineEdit(parent)
{
    setObjectName("line");
    setAccessibleName(tr("A line to do"));
    setPlaceholderText(tr("A line to do, such as: light key"));
    setToolTip(tr("Up and down bring back the lines before"));
    setClearButtonEnabled(true);
    auto* const completer = new QCompleter(GetPossibleLines(desk), this);
    completer->setFilterMode(Qt::MatchContains);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    setCompleter(completer);
    connect(this, &QLineEdit::returnPressed, this, &LineBox::Enter);
}

void LineBox::keyPressEvent(QKeyEvent* event)
{
    const bool isOffering = completer()->popup()->isVisible();
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isOffering && isReturn && completer()->popup()->currentIndex().isValid())
        event->ignore(); // it takes the offer, which is not done yet
    else if (!isOffering && event->key() == Qt::Key_Up)
        Recall(-1);
    else if (!isOffering && event->key() == Qt::Key_Down)
        Recall(1);
    else
        QLineEdit::keyPressEvent(event);
}

void LineBox::Enter()
{
    const QString line = text().trimmed();
    clear();
    if (line.isEmpty())
        return;
    m_history.removeAll(line);
    m_history += line;
    if (m_history.size() > LongestHistory)
        m_history.removeFirst();
    m_place = static_cast<int>(m_history.size());
    Q_EMIT entered(line);
}

void LineBox::Recall(int lines)
{
    const int end = static_cast<int>(m_history.size());
    if (m_place == end)
        m_typed = text();
    m_place = std::clamp(m_place + lines, 0, end);
    setText(m_place == end ? m_typed : m_history.at(m_place));
}

} // namespace VirtualDesk
