// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <QPushButton>
#include <QSpinBox>
#include <QWidget>
#include <map>

#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// A keyboard that is plugged into a port: what is played comes in at the library.
///
/// Controls: "midiKeyPort", "midiKeyChannel", "midiKeyOctave" and "midiKeyVelocity"; the keys,
/// named after their distance from C, "midiKey0" to "midiKey12"; and a MidiHexBox "midiFeed". A key
/// sends note on when it is pressed, by the mouse or by the space key, and note off when it is let
/// go.
class MidiKeyboard : public QWidget
{
    Q_OBJECT

public:
    MidiKeyboard(PendingLines& lines, const QStringList& ports, QWidget* parent = nullptr);

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QLayout* MakeChoices(const QStringList& ports);
    QLayout* MakeKeys();
    QPushButton* MakeKey(int distance);
    void Press(int distance);
    void Release(int distance);
    void Feed(const QString& bytes);
    QString GetLine(const QString& bytes) const;

    PendingLines& m_lines;
    QComboBox* m_port = nullptr;
    QSpinBox* m_channel = nullptr;
    QSpinBox* m_octave = nullptr;
    QSpinBox* m_velocity = nullptr;
    std::map<int, QString> m_held; // lines that end the notes of keys that are held
};

} // namespace VirtualDesk
