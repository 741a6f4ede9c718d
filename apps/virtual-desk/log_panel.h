// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QWidget>

#include "virtual-desk/context_tree.h"
#include "virtual-desk/desk_controller.h"
#include "virtual-desk/log_feed.h"
#include "virtual-desk/log_view.h"
#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// The library's log: contexts, their levels, and the lines, with those since the desk's start in
/// the first panel of a desk. Takes the log while it lives, and hands each line on to who had it
/// before.
///
/// Controls: the ContextTree "logContexts"; the buttons "maskAll", "maskUsual" and "maskNone" for
/// the context that is chosen in it; the label "logStatus", which tells what went wrong last. The
/// part LogView names its own.
class LogPanel : public QWidget
{
    Q_OBJECT

public:
    explicit LogPanel(DeskController& desk, QWidget* parent = nullptr);

private:
    QWidget* MakeContexts();
    void Refresh();
    void TakeOutcome(const QString& line, const QString& error);

    DeskController& m_desk;
    PendingLines m_lines;
    const std::unique_ptr<LogConnection> m_connection;
    ContextTree* m_contexts = nullptr;
    LogView* m_view = nullptr; // uses the connection's feed, and no more once that is gone
    QLabel* m_status = nullptr;
    int m_refreshes = 0; // since contexts were looked at
};

} // namespace VirtualDesk
