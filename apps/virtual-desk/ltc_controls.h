// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QWidget>

#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// Plays timecode audio into one LTC board.
///
/// Controls, each named after the board's path, such as "ltcFile ltc": "ltcFile", "ltcBrowse" (its
/// dialog is "ltcDialog"), "ltcLoop", "ltcPlay", "ltcStop", "ltcGap" (milliseconds), "ltcDropout",
/// and "ltcState", which tells what the board hears.
class LtcControls : public QWidget
{
    Q_OBJECT

public:
    /// @param path of the board
    LtcControls(DeskController& desk, PendingLines& lines, const std::wstring& path,
                QWidget* parent = nullptr);

    /// The board's path.
    const QString& GetPath() const { return m_path; }
    void Refresh();

private:
    void Arrange();
    void Browse();
    void Play();
    void Do(const QString& verb) { m_lines.Do("ltc " + ToWord(m_path) + " " + verb); }

    DeskController& m_desk;
    PendingLines& m_lines;
    const QString m_path;
    QLineEdit* const m_file;
    QPushButton* const m_browse;
    QCheckBox* const m_loop;
    QPushButton* const m_play;
    QPushButton* const m_stop;
    QSpinBox* const m_gap;
    QPushButton* const m_dropout;
    QLabel* const m_state;
};

} // namespace VirtualDesk
