// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QWidget>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "console/session.h"
#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// Works the simulated sources of timecode.
///
/// Controls: the list "simList"; for a new source "simNewRate", "simNewStart", "simNewBackwards"
/// and "simCreate"; for the one that is selected "simStart", "simStop", "simEnable", "simDisable",
/// "simDestroy", "simRate" with "simSetRate", "simFormat" with "simSetFormat", and "simFrame" with
/// "simJump". These show the selected source's own values until they are edited, and again once
/// what was edited is set: its rate, its format (none for a rate without one), and the frame where
/// it was when it was selected or stands now.
class SimulatorControls : public QWidget
{
    Q_OBJECT

public:
    explicit SimulatorControls(PendingLines& lines, QWidget* parent = nullptr);

    /// @param sources  as they are set
    /// @param readings of all sources of timecode, by name
    void Refresh(std::map<unsigned, Console::SimulatorState> sources,
                 std::map<std::string, Console::TimecodeReading> readings);

private:
    QLayout* MakeCreation();
    QLayout* MakeList();
    QLayout* MakeChanges();
    QPushButton* MakeVerb(const QString& name, const QString& text, const QString& verb);
    void Create();
    void TakeOutcome(const QString& line, const QString& error);
    /// Has a verb of the selected source done.
    void Do(const QString& verb);
    void RefreshList();
    void RefreshButtons();
    void ShowSelected();
    void ShowRate(const Console::SimulatorState& source);
    void ShowFrame(const Console::TimecodeReading& reading);
    const Console::TimecodeReading* FindReading(unsigned number) const;
    int GetFreeNumber() const;

    /// What of the selected source's values the user has changed and not set yet.
    struct Edits {
        bool rate = false;
        bool format = false;
        bool frame = false;
    };

    static constexpr int NoSource = -1;

    PendingLines& m_lines;
    std::map<unsigned, Console::SimulatorState> m_sources;
    std::map<std::string, Console::TimecodeReading> m_readings;
    int m_shown = NoSource;                     // number of the source whose values are shown
    std::optional<std::uint64_t> m_framesShown; // of that source, when its frame was shown
    bool m_isFollowing = false; // the controls follow the source, and nobody edits them
    Edits m_edits;
    QComboBox* m_newRate = nullptr;
    QLineEdit* m_newStart = nullptr;
    QCheckBox* m_newBackwards = nullptr;
    QPushButton* m_create = nullptr;
    QListWidget* m_list = nullptr;
    QDoubleSpinBox* m_rate = nullptr;
    QComboBox* m_format = nullptr;
    QPushButton* m_setFormat = nullptr;
    QLineEdit* m_frame = nullptr;
    QPushButton* m_jump = nullptr;
    QList<QPushButton*> m_verbs;    // for the selected source
    std::map<QString, int> m_asked; // numbers of sources that are being made, by their lines
};

} // namespace VirtualDesk
