// SPDX-License-Identifier: MIT
#pragma once

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QScrollArea>
#include <QWidget>
#include <map>
#include <string>
#include <vector>

#include "virtual-desk/cd_controls.h"
#include "virtual-desk/desk_controller.h"
#include "virtual-desk/ltc_controls.h"
#include "virtual-desk/pending_lines.h"
#include "virtual-desk/simulator_controls.h"
#include "virtual-desk/timecode_readout.h"

namespace VirtualDesk
{

/// Timecode sources, the simulator, LTC boards and the CD.
///
/// Controls: the label "timecodeStatus", which tells what went wrong last, and "timecodeNone",
/// shown until a source has delivered. The parts TimecodeReadout, SimulatorControls, LtcControls
/// and CdControls name theirs themselves.
class TimecodePanel : public QWidget
{
    Q_OBJECT

public:
    explicit TimecodePanel(DeskController& desk, QWidget* parent = nullptr);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    struct Board {
        const Desk::VirtualWidget* widget;
        LtcControls* controls;
        QGroupBox* group;
    };

    QScrollArea* MakeReadouts();
    QWidget* MakeControls();
    void MakeBoards(QLayout& layout);
    void Refresh();
    void RefreshReadouts(const std::map<std::string, Console::TimecodeReading>& readings);
    int GetColumns() const;
    void ArrangeReadouts();

    DeskController& m_desk;
    PendingLines m_lines;
    QLabel* m_none = nullptr;
    QScrollArea* m_readoutArea = nullptr;
    QGridLayout* m_readoutGrid = nullptr;
    int m_columns = 1; // of readouts
    std::map<std::string, TimecodeReadout*> m_readouts;
    SimulatorControls* m_simulator = nullptr;
    std::vector<Board> m_boards;
    QLabel* m_noBoard = nullptr;
    CdControls* m_cd = nullptr;
    QLabel* m_status = nullptr;
};

} // namespace VirtualDesk
