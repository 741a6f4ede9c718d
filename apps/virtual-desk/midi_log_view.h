// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QWidget>

#include "virtual-desk/desk_controller.h"
#include "virtual-desk/midi_log_model.h"

namespace VirtualDesk
{

/// The log of MIDI messages, with filters.
///
/// Controls: the table "midiLog"; "midiFilter"; the check boxes "midiShowClock" (off at the start),
/// "midiShowNotes", "midiShowControllers", "midiShowSystemExclusive", "midiShowOther", and
/// "midiFollow"; "midiPause" (checked while paused), "midiClear", and the label "midiCount".
class MidiLogView : public QWidget
{
    Q_OBJECT

public:
    explicit MidiLogView(DeskController& desk, QWidget* parent = nullptr);

private:
    QLayout* MakeFilters();
    QLayout* MakeFoot();
    void MakeTable();
    QCheckBox* MakeKindBox(const QString& name, const QString& text, MidiKind kind, bool isShown);
    void Take(const std::vector<Tools::MonitorEvent>& events, std::size_t dropped);
    void ShowCount();
    void CopySelection() const;

    MidiLogModel* const m_model;
    MidiLogFilter* const m_filter;
    QTableView* m_table = nullptr;
    QCheckBox* m_follow = nullptr;
    QPushButton* m_pause = nullptr;
    QLabel* m_count = nullptr;
};

} // namespace VirtualDesk
