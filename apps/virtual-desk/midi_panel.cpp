// SPDX-License-Identifier: MIT
#include "virtual-desk/midi_panel.h"

#include <QSplitter>
#include <QVBoxLayout>

#include "virtual-desk/midi_keyboard.h"
#include "virtual-desk/midi_log_view.h"
#include "virtual-desk/midi_send_box.h"
#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

MidiPanel::MidiPanel(DeskController& desk, QWidget* parent)
    : QWidget(parent), m_desk(desk), m_lines(desk), m_status(MakeProblemLabel("midiStatus"))
{
    setObjectName("midi");
    auto* const splitter = new QSplitter;
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(MakeControls());
    splitter->addWidget(MakeGroup("Messages", new MidiLogView(m_desk)));
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);

    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(splitter, 1);
    layout->addWidget(m_status);
    connect(&m_lines, &PendingLines::done, this, [this](const QString& line, const QString& error) {
        ShowProblem(*m_status, line, error);
    });
    connect(&m_desk, &DeskController::refreshed, m_ports, &MidiPortsView::Refresh);
}

QWidget* MidiPanel::MakeControls()
{
    QStringList ports;
    for (const Desk::MidiPortData& port : m_desk.GetDesk().GetData().midiPorts)
        ports << QString::fromStdString(port.name);
    m_ports = new MidiPortsView(m_desk, m_lines);
    auto* const controls = new QWidget;
    auto* const layout = new QVBoxLayout(controls);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(MakeGroup("Ports", m_ports));
    layout->addWidget(MakeGroup("Send from the application", new MidiSendBox(m_lines)));
    layout->addWidget(MakeGroup("Play into a port", new MidiKeyboard(m_lines, ports)));
    layout->addStretch();

    QScrollArea* const scroll = MakeScrollArea(controls);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setMinimumWidth(controls->minimumSizeHint().width() +
                            scroll->fontMetrics().height() * 2);
    return scroll;
}

} // namespace VirtualDesk
