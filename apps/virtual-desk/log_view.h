// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTableView>
#include <QToolButton>
#include <QWidget>
#include <cstdint>

#include "virtual-desk/log_feed.h"
#include "virtual-desk/log_model.h"
#include "virtual-desk/stack_reader.h"

namespace VirtualDesk
{

/// Lines of the log as they come, and all about the one that is chosen.
///
/// Controls: the table "logLines", whose model is a LogFilter; "logFilter", a text to look for; the
/// buttons "show trace", "show note", "show warning", "show error" and "show critical", "logPause"
/// and "logClear"; the label "logCounts"; the text "logDetail".
class LogView : public QWidget
{
    Q_OBJECT

public:
    /// @param feed outlives the view
    explicit LogView(LogFeed& feed, QWidget* parent = nullptr);

    /// Takes what the feed has.
    void Refresh();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QLayout* MakeControls();
    void MakeTable();
    void WidenText();
    void MakeDetail();
    void ChooseLevels();
    void Clear();
    void ShowCounts();
    void ShowLine(const QModelIndex& index);

    LogFeed& m_feed;
    LogModel m_model;
    LogFilter m_filter;
    QTableView* m_table = nullptr;
    QLineEdit* m_filterText = nullptr;
    std::vector<QToolButton*> m_levels; // in the order of their bits
    QToolButton* m_pause = nullptr;
    QLabel* m_counts = nullptr;
    QPlainTextEdit* m_detail = nullptr;
    std::uint64_t m_dropped = 0;
    QString m_lineText; // what is shown of a line before its call stack
    StackReader m_reader;
};

} // namespace VirtualDesk
