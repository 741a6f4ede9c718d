// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QString>

namespace VirtualDesk
{

/// A button, named for tests and told apart for those who hear what is on the screen.
QPushButton* MakeButton(const QString& name, const QString& text, const QString& accessibleName);

/// Makes a button one that stays down, with a mark that tells whether it is, since its colour alone
/// may not be seen.
void MakeSwitch(QAbstractButton& button);

/// A label of plain text, named for tests. Who hears what is on the screen hears its text, and the
/// meaning as its description.
QLabel* MakeLabel(const QString& name, const QString& meaning);

/// A label that wraps and tells what went wrong; hidden while nothing did.
QLabel* MakeProblemLabel(const QString& name);
/// Shows what went wrong with a line, or hides the label when nothing did.
void ShowProblem(QLabel& label, const QString& line, const QString& error);

/// Gives a label or a button the colour of a fault that is in force, or takes the colour back.
void MarkFault(QWidget& widget, bool isInForce);

/// A field for a frame such as 10:00:00:00; it has acceptable input when it holds one.
QLineEdit* MakeFrameEdit(const QString& name, const QString& accessibleName);

/// A group with a title around a layout.
QGroupBox* MakeGroup(const QString& title, QLayout* layout);
/// The same around a widget alone.
QGroupBox* MakeGroup(const QString& title, QWidget* content);

/// Shows what may be larger than its place, with bars to scroll by.
QScrollArea* MakeScrollArea(QWidget* content);

/// Sets a text where it is another one, which lays nothing out anew where it is not.
template <class Target> void SetTextOf(Target& target, const QString& text)
{
    if (target.text() != text)
        target.setText(text);
}

} // namespace VirtualDesk
