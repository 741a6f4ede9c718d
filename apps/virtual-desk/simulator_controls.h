// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QWidget>
#include <map>
#include <string>

#include "console/timecode_meter.h"
#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// Works the simulated sources of timecode.
///
/// Controls: the list "simList"; for a new source "simNewRate", "simNewStart", "simNewBackwards"
/// and "simCreate"; for the one that is selected "simStart", "simStop", "simEnable", "simDisable",
/// "simDestroy", "simRate" with "simSetRate", "simFormat" with "simSetFormat", and "simFrame" with
/// "simJump".
class SimulatorControls : public QWidget
{
    Q_OBJECT

public:
    explicit SimulatorControls(PendingLines& lines, QWidget* parent = nullptr);

    void Refresh(const std::map<std::string, Console::TimecodeReading>& readings);

private:
    QLayout* MakeCreation();
    QLayout* MakeList();
    QLayout* MakeChanges();
    QPushButton* MakeVerb(const QString& name, const QString& text, const QString& verb);
    void Create();
    void TakeOutcome(const QString& line, const QString& error);
    /// Has a verb of the selected source done.
    void Do(const QString& verb);
    void RefreshButtons();
    int GetFreeNumber() const;

    PendingLines& m_lines;
    QComboBox* m_newRate = nullptr;
    QLineEdit* m_newStart = nullptr;
    QCheckBox* m_newBackwards = nullptr;
    QPushButton* m_create = nullptr;
    QListWidget* m_list = nullptr;
    QDoubleSpinBox* m_rate = nullptr;
    QComboBox* m_format = nullptr;
    QLineEdit* m_frame = nullptr;
    QPushButton* m_jump = nullptr;
    QList<QPushButton*> m_verbs;    // for the selected source
    std::map<QString, int> m_asked; // numbers of sources to be, by the lines that make them
};

} // namespace VirtualDesk
