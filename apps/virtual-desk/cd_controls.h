// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QList>
#include <QPushButton>
#include <QTableWidget>
#include <QWidget>

#include "desk/cd_drive.h"
#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// The CD drive: what is in it and what it does, and the keys of a player.
///
/// Controls: the labels "cdStatus" and "cdPlace"; the table "cdTracks", whose rows play by a double
/// click or the return key; the buttons "cdPlay", "cdPause" (which plays on where it paused),
/// "cdStop", "cdPrevious", "cdNext", "cdBack" and "cdForward" (ten seconds), "cdInsert" (its dialog
/// is "cdDialog"), "cdSample" and "cdEject".
class CdControls : public QWidget
{
    Q_OBJECT

public:
    CdControls(PendingLines& lines, const Desk::VirtualDesk& desk, QWidget* parent = nullptr);

    void Refresh();

private:
    QLayout* MakeKeys();
    QPushButton* MakeKey(const QString& name, const QString& text, const QString& meaning,
                         const QString& verb);
    void MakeTable();
    void ShowDisc(const Desk::CdDisc& disc);
    void ShowState(const Desk::CdDrive::State& state);
    void MarkTrack(int number);
    void PlayRow(int row);
    void ChooseSheet();
    QString DescribeConditions() const;

    PendingLines& m_lines;
    const Desk::VirtualDesk& m_desk;
    QLabel* m_status = nullptr;
    QLabel* m_place = nullptr;
    QTableWidget* m_tracks = nullptr;
    QPushButton* m_play = nullptr;
    QPushButton* m_pause = nullptr;
    QPushButton* m_eject = nullptr;
    QList<QPushButton*> m_whilePlaying; // keys that need a disc that plays
    Desk::CdDisc m_disc;                // as shown
    int m_marked = 0;                   // number of the track that is marked; 0 for none
};

} // namespace VirtualDesk
