// SPDX-License-Identifier: MIT
#include "virtual-desk/timecode_panel.h"

#include <QEvent>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>

#include "desk/virtual_widget.h"
#include "desk/widget_controls.h"
#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

/// Sources up to which readouts stand below one another.
constexpr int MostInOneColumn = 3;

} // namespace

TimecodePanel::TimecodePanel(DeskController& desk, QWidget* parent)
    : QWidget(parent), m_desk(desk), m_lines(desk), m_status(MakeProblemLabel("timecodeStatus"))
{
    setObjectName("timecode");
    auto* const splitter = new QSplitter;
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(MakeReadouts());
    QScrollArea* const controls = MakeScrollArea(MakeControls());
    controls->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    controls->setMinimumWidth(controls->widget()->minimumSizeHint().width() +
                              controls->fontMetrics().height() * 2);
    splitter->addWidget(controls);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 0);

    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(splitter, 1);
    layout->addWidget(m_status);
    connect(&m_lines, &PendingLines::done, this, [this](const QString& line, const QString& error) {
        ShowProblem(*m_status, line, error);
    });
    connect(&m_desk, &DeskController::refreshed, this, &TimecodePanel::Refresh);
    Refresh();
}

QScrollArea* TimecodePanel::MakeReadouts()
{
    auto* const readouts = new QWidget;
    m_readoutGrid = new QGridLayout(readouts);
    m_readoutGrid->setContentsMargins(0, 0, 0, 0);
    m_none = MakeLabel("timecodeNone", "No timecode");
    m_none->setText("No timecode yet.\n\nCreate a simulated source, play a tape into an LTC "
                    "board, or play a CD.");
    m_none->setAlignment(Qt::AlignCenter);
    m_none->setWordWrap(true);
    m_readoutGrid->addWidget(m_none, 0, 0);
    m_readoutArea = MakeScrollArea(readouts);
    m_readoutArea->viewport()->installEventFilter(this);
    return m_readoutArea;
}

QWidget* TimecodePanel::MakeControls()
{
    auto* const controls = new QWidget;
    auto* const layout = new QVBoxLayout(controls);
    layout->setContentsMargins(0, 0, 0, 0);
    m_simulator = new SimulatorControls(m_lines);
    auto* const simulator = new QVBoxLayout;
    simulator->addWidget(m_simulator);
    layout->addWidget(MakeGroup("Simulator", simulator));
    MakeBoards(*layout);
    m_cd = new CdControls(m_lines, m_desk.GetDesk());
    auto* const cd = new QVBoxLayout;
    cd->addWidget(m_cd);
    layout->addWidget(MakeGroup("CD", cd), 1);
    return controls;
}

void TimecodePanel::MakeBoards(QLayout& layout)
{
    for (const Desk::VirtualWidget* const widget : m_desk.GetDesk().GetBus().GetWidgets()) {
        if (!Desk::IsLtcBoard(widget->GetModel()))
            continue;
        auto* const controls = new LtcControls(m_desk, m_lines, widget->GetData().path);
        auto* const inner = new QVBoxLayout;
        inner->addWidget(controls);
        QGroupBox* const group = MakeGroup("LTC board " + controls->GetPath(), inner);
        group->setObjectName("ltcBoard " + controls->GetPath());
        layout.addWidget(group);
        m_boards.push_back({widget, controls, group});
    }
    m_noBoard = MakeLabel("ltcNone", "No LTC board");
    m_noBoard->setText("No LTC board is plugged.");
    layout.addWidget(m_noBoard);
}

void TimecodePanel::Refresh()
{
    const auto readings = m_desk.GetSession().GetTimecode();
    RefreshReadouts(readings);
    m_simulator->Refresh(m_desk.GetSession().GetSimulators(), readings);
    bool hasBoard = false;
    for (const Board& board : m_boards) {
        const bool isPlugged = board.widget->IsPlugged();
        hasBoard = hasBoard || isPlugged;
        board.group->setVisible(isPlugged);
        board.controls->Refresh();
    }
    m_noBoard->setVisible(!hasBoard);
    m_cd->Refresh();
}

void TimecodePanel::RefreshReadouts(const std::map<std::string, Console::TimecodeReading>& readings)
{
    bool hasChanged = false;
    for (auto readout = m_readouts.begin(); readout != m_readouts.end();) {
        if (readings.contains(readout->first)) {
            ++readout;
            continue;
        }
        delete readout->second;
        readout = m_readouts.erase(readout);
        hasChanged = true;
    }
    for (const auto& [source, reading] : readings) {
        TimecodeReadout*& readout = m_readouts[source];
        if (!readout) {
            readout = new TimecodeReadout(QString::fromStdString(source));
            hasChanged = true;
        }
        readout->Show(reading);
    }
    if (hasChanged)
        ArrangeReadouts();
}

/// The readouts' place may become too narrow for two columns, or wide enough.
bool TimecodePanel::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Resize && GetColumns() != m_columns)
        ArrangeReadouts();
    return QWidget::eventFilter(object, event);
}

int TimecodePanel::GetColumns() const
{
    int widest = 0;
    for (const auto& [source, readout] : m_readouts)
        widest = std::max(widest, readout->minimumSizeHint().width());
    const int width = m_readoutArea->viewport()->width() - m_readoutGrid->horizontalSpacing();
    return m_readouts.size() > MostInOneColumn && width >= 2 * widest ? 2 : 1;
}

void TimecodePanel::ArrangeReadouts()
{
    m_none->setVisible(m_readouts.empty());
    const int columns = m_columns = GetColumns();
    int place = 0;
    for (const auto& [source, readout] : m_readouts) {
        m_readoutGrid->addWidget(readout, place / columns, place % columns);
        readout->show();
        ++place;
    }
}

} // namespace VirtualDesk
