// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>
#include <QStringList>

#include "desk/desk_data.h"

namespace VirtualDesk
{

/// A box to type a line of a script into: it offers what a line can be with the desk's own names,
/// and up and down go through the lines before.
class LineBox : public QLineEdit
{
    Q_OBJECT

public:
    /// @param desk whose names are offered
    explicit LineBox(const Desk::DeskData& desk, QWidget* parent = nullptr);

Q_SIGNALS:
    /// Return was pressed on a line that is not empty; the box is empty again.
    void entered(const QString& line);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Enter();
    void Recall(int lines);

    QStringList m_history; // oldest first
    int m_place = 0;       // in the history; its end for what is being typed
    QString m_typed;
};

/// Every line that the verbs of a desk allow, with its devices' names; what is up to the user, such
/// as BUTTON, stands as the help has it.
QStringList GetPossibleLines(const Desk::DeskData& desk);

} // namespace VirtualDesk
