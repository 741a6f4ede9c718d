// SPDX-License-Identifier: MIT
#include "virtual-desk/midi_log_view.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>

#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

std::vector<std::string> GetPortNames(const DeskController& desk)
{
    std::vector<std::string> names;
    for (const Desk::MidiPortData& port : desk.GetDesk().GetData().midiPorts)
        names.push_back(port.name);
    return names;
}

} // namespace

MidiLogView::MidiLogView(DeskController& desk, QWidget* parent)
    : QWidget(parent), m_model(new MidiLogModel(GetPortNames(desk), this)),
      m_filter(new MidiLogFilter(this))
{
    m_filter->setSourceModel(m_model);
    MakeTable();
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(MakeFilters());
    layout->addWidget(m_table, 1);
    layout->addLayout(MakeFoot());
    connect(&desk, &DeskController::happened, this, &MidiLogView::Take);
    connect(m_filter, &MidiLogFilter::rowsInserted, this, &MidiLogView::ShowCount);
    connect(m_filter, &MidiLogFilter::rowsRemoved, this, &MidiLogView::ShowCount);
    connect(m_filter, &MidiLogFilter::modelReset, this, &MidiLogView::ShowCount);
    ShowCount();
}

void MidiLogView::MakeTable()
{
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const QFontMetrics metrics(fixed);
    m_table = new QTableView;
    m_table->setObjectName("midiLog");
    m_table->setAccessibleName("Log of MIDI messages");
    m_table->setModel(m_filter);
    m_table->setFont(fixed);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setWordWrap(false);
    m_table->setShowGrid(false);
    m_table->setAlternatingRowColors(true);
    m_table->setTabKeyNavigation(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(metrics.height() + 2);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->setColumnWidth(MidiLogModel::Column_Time, metrics.horizontalAdvance("000000.000  "));
    m_table->setColumnWidth(MidiLogModel::Column_Port,
                            metrics.horizontalAdvance("A port's name  "));
    m_table->setColumnWidth(MidiLogModel::Column_Direction,
                            metrics.horizontalAdvance("Direction  "));

    auto* const copy = new QAction("&Copy", m_table);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, &MidiLogView::CopySelection);
    m_table->addAction(copy);
    m_table->setContextMenuPolicy(Qt::ActionsContextMenu);
}

QLayout* MidiLogView::MakeFilters()
{
    auto* const edit = new QLineEdit;
    edit->setObjectName("midiFilter");
    edit->setAccessibleName("Show only messages that hold this text");
    edit->setPlaceholderText("Filter, such as C4 or Keys");
    edit->setClearButtonEnabled(true);
    connect(edit, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_filter->SetText(text);
        ShowCount();
    });

    auto* const row = new QHBoxLayout;
    row->addWidget(MakeKindBox("midiShowClock", "Cloc&k, sensing", MidiKind::Clock, false));
    row->addWidget(MakeKindBox("midiShowNotes", "&Notes", MidiKind::Note, true));
    row->addWidget(MakeKindBox("midiShowControllers", "Contro&llers", MidiKind::Controller, true));
    row->addWidget(MakeKindBox("midiShowSystemExclusive", "S&ystem exclusive",
                               MidiKind::SystemExclusive, true));
    row->addWidget(MakeKindBox("midiShowOther", "Ot&her", MidiKind::Other, true));
    row->addStretch();
    auto* const rows = new QVBoxLayout;
    rows->addWidget(edit);
    rows->addLayout(row);
    return rows;
}

QCheckBox* MidiLogView::MakeKindBox(const QString& name, const QString& text, MidiKind kind,
                                    bool isShown)
{
    auto* const box = new QCheckBox(text);
    box->setObjectName(name);
    box->setAccessibleName("Show " + QString(text).remove('&'));
    box->setChecked(isShown);
    m_filter->SetShown(kind, isShown);
    connect(box, &QCheckBox::toggled, this, [this, kind](bool isOn) {
        m_filter->SetShown(kind, isOn);
        ShowCount();
    });
    return box;
}

QLayout* MidiLogView::MakeFoot()
{
    m_follow = new QCheckBox("Follo&w");
    m_follow->setObjectName("midiFollow");
    m_follow->setAccessibleName("Keep the newest message in sight");
    m_follow->setChecked(true);
    connect(m_follow, &QCheckBox::toggled, this, [this](bool isOn) {
        if (isOn)
            m_table->scrollToBottom();
    });
    m_pause = MakeButton("midiPause", "&Pause", "Pause the log");
    m_pause->setCheckable(true);
    connect(m_pause, &QPushButton::toggled, this, [this](bool isOn) {
        m_model->SetPaused(isOn);
        if (m_follow->isChecked())
            m_table->scrollToBottom();
        ShowCount();
    });
    QPushButton* const clear = MakeButton("midiClear", "Cle&ar", "Clear the log");
    connect(clear, &QPushButton::clicked, m_model, &MidiLogModel::Clear);
    m_count = MakeLabel("midiCount", "Number of messages shown");

    auto* const row = new QHBoxLayout;
    row->addWidget(m_count, 1);
    row->addWidget(m_follow);
    row->addWidget(m_pause);
    row->addWidget(clear);
    return row;
}

void MidiLogView::Take(const std::vector<Tools::MonitorEvent>& events, std::size_t dropped)
{
    const int rows = m_filter->rowCount();
    m_model->Take(events, dropped);
    if (m_pause->isChecked())
        ShowCount();
    else if (m_follow->isChecked() && (m_filter->rowCount() != rows || rows > 0))
        m_table->scrollToBottom();
}

void MidiLogView::ShowCount()
{
    QString text =
        QString("%1 of %2 lines shown").arg(m_filter->rowCount()).arg(m_model->rowCount());
    if (m_pause->isChecked())
        text += QString(", %1 waiting").arg(m_model->CountWaiting());
    SetTextOf(*m_count, text);
}

/// As lines with tabs between the columns, in the order of the log.
void MidiLogView::CopySelection() const
{
    QModelIndexList rows = m_table->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QString text;
    for (const QModelIndex& row : rows) {
        QStringList cells;
        for (int column = 0; column < MidiLogModel::ColumnCount; ++column)
            cells << row.siblingAtColumn(column).data().toString();
        text += cells.join('\t') + '\n';
    }
    QApplication::clipboard()->setText(text);
}

} // namespace VirtualDesk
