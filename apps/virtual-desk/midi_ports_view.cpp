// SPDX-License-Identifier: MIT
#include "virtual-desk/midi_ports_view.h"

#include <QAbstractItemView>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>
#include <utility>

#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

enum Column { Column_Name, Column_Plugged, Column_Condition, Column_Use, ColumnCount };

constexpr int ShownRows = 4;

QString DescribeUse(const Console::MidiState& midi, const std::string& port)
{
    QStringList uses;
    if (port == midi.input)
        uses << (midi.isReceiving ? "\u2190 input" : "(input)");
    if (port == midi.output)
        uses << (midi.isSending ? "\u2192 output" : "(output)");
    return uses.join(", ");
}

/// Shows a choice that was made elsewhere, unless somebody is choosing.
void SetChoice(QComboBox& box, const std::string& text)
{
    if (!box.view()->isVisible() && box.currentText().toStdString() != text)
        box.setCurrentIndex(box.findText(QString::fromStdString(text)));
}

} // namespace

MidiPortsView::MidiPortsView(DeskController& desk, PendingLines& lines, QWidget* parent)
    : QWidget(parent), m_desk(desk), m_lines(lines),
      m_totals(MakeLabel("midiTotals", "What went through so far"))
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(MakeTable());
    layout->addLayout(MakeSettings());
    layout->addWidget(m_totals);
    Refresh();
}

QLayout* MidiPortsView::MakeTable()
{
    const auto& ports = m_desk.GetDesk().GetData().midiPorts;
    m_table = new QTableWidget(static_cast<int>(ports.size()), ColumnCount);
    m_table->setObjectName("midiPorts");
    m_table->setAccessibleName("MIDI ports");
    m_table->setHorizontalHeaderLabels({"Port", "Plug", "Condition", "Used as"});
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(Column_Condition, QHeaderView::Stretch);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);
    m_table->setFixedHeight((ShownRows + 1) * (fontMetrics().height() + 8));
    for (int row = 0; row < m_table->rowCount(); ++row)
        for (int column = 0; column < ColumnCount; ++column)
            m_table->setItem(row, column, new QTableWidgetItem);
    for (int row = 0; row < m_table->rowCount(); ++row)
        m_table->item(row, Column_Name)
            ->setText(QString::fromStdString(ports[static_cast<std::size_t>(row)].name));
    m_table->setCurrentCell(0, Column_Name);

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(MakeVerb("midiPlug", "Plu&g in", "plug"));
    buttons->addWidget(MakeVerb("midiUnplug", "&Unplug", "unplug"));
    auto* const layout = new QVBoxLayout;
    layout->addWidget(m_table);
    layout->addLayout(buttons);
    return layout;
}

QPushButton* MidiPortsView::MakeVerb(const QString& name, const QString& text, const QString& verb)
{
    QPushButton* const button =
        MakeButton(name, text, QString(text).remove('&') + " the selected port");
    button->setEnabled(m_table->rowCount() > 0);
    connect(button, &QPushButton::clicked, this, [this, verb] {
        if (m_table->currentRow() >= 0)
            m_lines.Do("midi " + ToWord(m_table->item(m_table->currentRow(), Column_Name)->text()) +
                       " " + verb);
    });
    return button;
}

QLayout* MidiPortsView::MakeSettings()
{
    m_input = MakeChoice("midiInput", "The application's input", "input");
    m_output = MakeChoice("midiOutput", "The application's output", "output");
    m_receive = MakeSwitch("midiReceive", "&Receive", "receive");
    m_transmit = MakeSwitch("midiTransmit", "&Transmit", "transmit");
    m_runningStatus = MakeSwitch("midiRunningStatus", "Running &status", "running-status");
    m_runningStatus->setToolTip("Leaves out status bytes that repeat");
    auto* const input = new QLabel("&Input");
    input->setBuddy(m_input);
    auto* const output = new QLabel("&Output");
    output->setBuddy(m_output);
    auto* const grid = new QGridLayout;
    grid->addWidget(input, 0, 0);
    grid->addWidget(m_input, 0, 1);
    grid->addWidget(m_receive, 0, 2);
    grid->addWidget(output, 1, 0);
    grid->addWidget(m_output, 1, 1);
    grid->addWidget(m_transmit, 1, 2);
    grid->addWidget(m_runningStatus, 2, 1, 1, 2);
    grid->setColumnStretch(1, 1);
    return grid;
}

QComboBox* MidiPortsView::MakeChoice(const QString& name, const QString& meaning,
                                     const QString& verb)
{
    auto* const box = new QComboBox;
    box->setObjectName(name);
    box->setAccessibleName(meaning);
    for (const Desk::MidiPortData& port : m_desk.GetDesk().GetData().midiPorts)
        box->addItem(QString::fromStdString(port.name));
    connect(box, &QComboBox::textActivated, this,
            [this, verb](const QString& port) { m_lines.Do(verb + " " + ToWord(port)); });
    return box;
}

QCheckBox* MidiPortsView::MakeSwitch(const QString& name, const QString& text, const QString& verb)
{
    auto* const box = new QCheckBox(text);
    box->setObjectName(name);
    box->setAccessibleName(QString(text).remove('&'));
    connect(box, &QCheckBox::clicked, this,
            [this, verb](bool isOn) { m_lines.Do(verb + (isOn ? " on" : " off")); });
    return box;
}

void MidiPortsView::Refresh()
{
    const Console::MidiState midi = m_desk.GetSession().GetMidi();
    RefreshTable(midi);
    // What was asked for stays as it was set until it is done.
    if (m_lines.IsEmpty())
        RefreshSettings(midi);
    SetTextOf(*m_totals,
              QString("%1 messages received, %2 bytes sent").arg(midi.received).arg(midi.sent));
}

void MidiPortsView::RefreshTable(const Console::MidiState& midi)
{
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const std::string port = m_table->item(row, Column_Name)->text().toStdString();
        const bool isPlugged = m_desk.GetDesk().GetCondition("midi/" + port + "/plugged") != "off";
        SetTextOf(*m_table->item(row, Column_Plugged),
                  QString::fromUtf8(isPlugged ? "\u25CF plugged" : "\u25CB unplugged"));
        SetTextOf(*m_table->item(row, Column_Condition), DescribeConditions(port));
        SetTextOf(*m_table->item(row, Column_Use), DescribeUse(midi, port));
    }
}

void MidiPortsView::RefreshSettings(const Console::MidiState& midi)
{
    SetChoice(*m_input, midi.input);
    SetChoice(*m_output, midi.output);
    m_receive->setChecked(midi.isReceiving);
    m_transmit->setChecked(midi.isSending);
    m_runningStatus->setChecked(midi.isRunningStatusOn);
}

QString MidiPortsView::DescribeConditions(const std::string& port) const
{
    QStringList texts;
    for (const auto& [name, text] : {std::pair{"busy", "busy"}, std::pair{"full", "full"},
                                     std::pair{"hangup", "hung up"}, std::pair{"dead", "dead"}})
        if (m_desk.GetDesk().GetCondition("midi/" + port + "/" + name) == "on")
            texts << text;
    return texts.isEmpty() ? QString("fine") : "\u26A0 " + texts.join(", ");
}

} // namespace VirtualDesk
