// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

namespace VirtualDesk
{

/// A field for bytes in hexadecimal, which says what is wrong with them before they go anywhere.
///
/// Controls, each named after the box: NAME + "Bytes" and "Go", and the label NAME + "Check".
class MidiHexBox : public QWidget
{
    Q_OBJECT

public:
    /// @param action text of the button
    MidiHexBox(const QString& name, const QString& action, const QString& meaning,
               QWidget* parent = nullptr);

    void SetText(const QString& text) { m_bytes->setText(text); }

Q_SIGNALS:
    /// The button was pushed, or the return key; bytes are two digits each, with blanks between.
    void entered(const QString& bytes);

private:
    void Check();
    void Enter();

    QLineEdit* const m_bytes;
    QPushButton* const m_go;
    QLabel* const m_check;
};

} // namespace VirtualDesk
