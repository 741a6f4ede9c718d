// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QWidget>

#include "virtual-desk/desk_controller.h"
#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// The desk's MIDI ports, and which of them the application uses how.
///
/// Controls: the table "midiPorts" with "midiPlug" and "midiUnplug" for the selected one;
/// "midiInput" and "midiOutput"; the check boxes "midiReceive", "midiTransmit" and
/// "midiRunningStatus"; and the label "midiTotals".
class MidiPortsView : public QWidget
{
    Q_OBJECT

public:
    MidiPortsView(DeskController& desk, PendingLines& lines, QWidget* parent = nullptr);

    void Refresh();

private:
    QLayout* MakeTable();
    QLayout* MakeSettings();
    QComboBox* MakeChoice(const QString& name, const QString& meaning, const QString& verb);
    QCheckBox* MakeSwitch(const QString& name, const QString& text, const QString& verb);
    QPushButton* MakeVerb(const QString& name, const QString& text, const QString& verb);
    void RefreshTable(const Console::MidiState& midi);
    void RefreshSettings(const Console::MidiState& midi);
    QString DescribeConditions(const std::string& port) const;

    DeskController& m_desk;
    PendingLines& m_lines;
    QTableWidget* m_table = nullptr;
    QComboBox* m_input = nullptr;
    QComboBox* m_output = nullptr;
    QCheckBox* m_receive = nullptr;
    QCheckBox* m_transmit = nullptr;
    QCheckBox* m_runningStatus = nullptr;
    QLabel* m_totals = nullptr;
};

} // namespace VirtualDesk
