// SPDX-License-Identifier: MIT
#include "virtual-desk/log_view.h"

#include <QEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QScrollBar>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <utility>

#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

constexpr std::array<unsigned, 5> Levels{Os::Log::Trace, Os::Log::Note, Os::Log::Warning,
                                         Os::Log::Error, Os::Log::Critical};

QToolButton* MakeTool(QWidget* parent, const QString& name, const QString& text)
{
    auto* const tool = new QToolButton(parent);
    tool->setObjectName(name);
    tool->setText(text);
    tool->setFocusPolicy(Qt::StrongFocus);
    tool->setToolButtonStyle(Qt::ToolButtonTextOnly);
    return tool;
}

QString Describe(const LogLine& line)
{
    constexpr int Digits = 6;
    return QString::fromStdString(line.text) + "\n\n" +
           QString::fromLatin1(Standalone::GetLevelName(line.level)) + " of " +
           QString::fromStdString(line.context) + " at " +
           QString::number(line.seconds, 'f', Digits) + " s\n" + QString::fromStdString(line.file) +
           ':' + QString::number(line.line) + '\n' + QString::fromStdString(line.function) +
           "\n\nCall stack:\n";
}

} // namespace

LogView::LogView(LogFeed& feed, QWidget* parent)
    : QWidget(parent), m_feed(feed), m_table(new QTableView(this)),
      m_detail(new QPlainTextEdit(this))
{
    m_filter.setSourceModel(&m_model);
    MakeTable();
    MakeDetail();
    auto* const splitter = new QSplitter(Qt::Vertical, this);
    splitter->addWidget(m_table);
    splitter->addWidget(m_detail);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(MakeControls());
    layout->addWidget(splitter, 1);
}

QLayout* LogView::MakeControls()
{
    m_filterText = new QLineEdit(this);
    m_filterText->setObjectName("logFilter");
    m_filterText->setAccessibleName("Show only lines with this text");
    m_filterText->setPlaceholderText("Filter: text, context or function");
    m_filterText->setClearButtonEnabled(true);
    connect(m_filterText, &QLineEdit::textChanged, &m_filter, &LogFilter::SetText);
    m_counts = new QLabel(this);
    m_counts->setObjectName("logCounts");
    auto* const first = new QHBoxLayout;
    first->addWidget(m_filterText, 1);
    first->addWidget(m_counts);
    auto* const row = new QHBoxLayout;
    for (const unsigned level : Levels) {
        const QString name = QString::fromLatin1(Standalone::GetLevelName(level));
        auto* const tool = MakeTool(this, "show " + name, name);
        tool->setAccessibleName("Show lines of level " + name);
        MakeSwitch(*tool);
        tool->setChecked(true);
        connect(tool, &QToolButton::toggled, this, &LogView::ChooseLevels);
        row->addWidget(tool);
        m_levels.push_back(tool);
    }
    m_pause = MakeTool(this, "logPause", "&Pause");
    MakeSwitch(*m_pause);
    m_pause->setToolTip("Lines wait meanwhile, the newest 5000 of them");
    auto* const clear = MakeTool(this, "logClear", "&Clear");
    connect(clear, &QToolButton::clicked, this, &LogView::Clear);
    row->addStretch();
    row->addWidget(m_pause);
    row->addWidget(clear);
    auto* const rows = new QVBoxLayout;
    rows->addLayout(first);
    rows->addLayout(row);
    return rows;
}

void LogView::MakeTable()
{
    m_table->setObjectName("logLines");
    m_table->setAccessibleName("Lines of the log");
    m_table->setModel(&m_filter);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);
    m_table->setShowGrid(false);
    m_table->setAlternatingRowColors(true);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    const std::array<int, LogModel::Text> characters{10, 9, 26, 26, 7};
    for (std::size_t column = 0; column < characters.size(); ++column)
        m_table->setColumnWidth(static_cast<int>(column),
                                characters.at(column) * fontMetrics().averageCharWidth());
    // If not all columns fit, the text stays visible.
    m_table->horizontalHeader()->moveSection(LogModel::Text, LogModel::Context);
    m_table->viewport()->installEventFilter(this);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &LogView::ShowLine);
}

bool LogView::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        WidenText();
    return QWidget::eventFilter(object, event);
}

/// Gives the text what the other columns leave, but no less than can be read.
void LogView::WidenText()
{
    constexpr int LeastCharacters = 48;
    int width = m_table->viewport()->width();
    for (int column = 0; column < LogModel::Text; ++column)
        width -= m_table->columnWidth(column);
    m_table->setColumnWidth(LogModel::Text,
                            std::max(width, LeastCharacters * fontMetrics().averageCharWidth()));
}

void LogView::MakeDetail()
{
    m_detail->setObjectName("logDetail");
    m_detail->setAccessibleName("The chosen line");
    m_detail->setReadOnly(true);
    m_detail->setTabChangesFocus(true);
    m_detail->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_detail->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_detail->setPlaceholderText("Choose a line to see where it was written");
}

void LogView::ChooseLevels()
{
    unsigned levels = 0;
    for (std::size_t i = 0; i < Levels.size(); ++i)
        if (m_levels.at(i)->isChecked())
            levels |= Levels.at(i);
    m_filter.SetLevels(levels);
}

void LogView::Clear()
{
    m_feed.Take();
    m_model.Clear();
    m_dropped = 0;
    ShowCounts();
}

void LogView::Refresh()
{
    if (!m_pause->isChecked()) {
        const QScrollBar& bar = *m_table->verticalScrollBar();
        const bool isAtEnd = bar.value() == bar.maximum();
        LogFeed::Batch batch = m_feed.Take();
        m_dropped += batch.dropped;
        if (!batch.lines.empty()) {
            m_model.Append(std::move(batch.lines));
            if (isAtEnd)
                m_table->scrollToBottom();
        }
    }
    ShowCounts();
    if (const std::optional<std::string> stack = m_reader.Take())
        m_detail->setPlainText(m_lineText + QString::fromStdString(*stack));
}

void LogView::ShowCounts()
{
    const int all = m_model.rowCount();
    QString text = all == 1 ? QString("1 line") : QString::number(all) + " lines";
    if (m_filter.rowCount() < all)
        text = QString::number(m_filter.rowCount()) + " of " + text;
    if (m_dropped > 0)
        text += ", " + QString::number(m_dropped) + " dropped";
    if (m_pause->isChecked())
        text += ", " + QString::number(m_feed.CountWaiting()) + " waiting";
    m_counts->setText(text);
}

void LogView::ShowLine(const QModelIndex& index)
{
    // A line that had to make room stays in the pane.
    if (!index.isValid())
        return;
    const LogLine& line = m_model.GetLine(m_filter.mapToSource(index).row());
    m_lineText = Describe(line);
    m_detail->setPlainText(m_lineText + "looking it up ...");
    m_reader.Read(line.stack);
}

} // namespace VirtualDesk
