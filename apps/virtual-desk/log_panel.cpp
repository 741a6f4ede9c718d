// SPDX-License-Identifier: MIT
#include "virtual-desk/log_panel.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

/// The desk's own, or for a later panel one from now on.
std::unique_ptr<LogConnection> TakeConnection(DeskController& desk)
{
    if (auto connection = desk.TakeLog())
        return connection;
    const std::chrono::duration<double> age(desk.GetSession().GetSeconds());
    return std::make_unique<LogConnection>(
        std::chrono::steady_clock::now() -
        std::chrono::duration_cast<std::chrono::steady_clock::duration>(age));
}

} // namespace

LogPanel::LogPanel(DeskController& desk, QWidget* parent)
    : QWidget(parent), m_desk(desk), m_lines(desk), m_connection(TakeConnection(desk)),
      m_view(new LogView(m_connection->GetFeed(), this)), m_status(MakeProblemLabel("logStatus"))
{
    setObjectName("log");
    m_status->setAccessibleDescription("What went wrong with the log last");

    auto* const splitter = new QSplitter(this);
    splitter->addWidget(MakeContexts());
    splitter->addWidget(m_view);
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(splitter, 1);
    layout->addWidget(m_status);

    connect(&m_lines, &PendingLines::done, this, &LogPanel::TakeOutcome);
    connect(&m_desk, &DeskController::refreshed, this, &LogPanel::Refresh);
    m_contexts->Refresh();
}

QWidget* LogPanel::MakeContexts()
{
    auto* const side = new QWidget(this);
    m_contexts = new ContextTree(m_lines, side);
    m_contexts->setObjectName("logContexts");
    m_contexts->setAccessibleName("Contexts of the log and their levels");
    auto* const layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_contexts, 1);

    auto* const row = new QHBoxLayout;
    const auto addButton = [&](const QString& name, const QString& text, unsigned mask) {
        auto* const button = new QPushButton(text, side);
        button->setObjectName(name);
        button->setToolTip("For the chosen context");
        button->setEnabled(false);
        connect(button, &QPushButton::clicked, this, [this, mask] { m_contexts->SetMask(mask); });
        connect(m_contexts, &QTreeWidget::currentItemChanged, button,
                [button](const QTreeWidgetItem* item) { button->setEnabled(item != nullptr); });
        row->addWidget(button);
    };
    addButton("maskAll", "&All", Os::Log::AllLevels);
    addButton("maskUsual", "All &but trace", Os::Log::AllButTrace);
    addButton("maskNone", "&None", 0);
    layout->addLayout(row);
    return side;
}

void LogPanel::Refresh()
{
    m_view->Refresh();
    // Contexts come while the program runs, but not often.
    if (++m_refreshes < DeskController::RefreshRate)
        return;
    m_refreshes = 0;
    m_contexts->Refresh();
}

void LogPanel::TakeOutcome(const QString& line, const QString& error)
{
    m_status->setVisible(!error.isEmpty());
    m_status->setText(error.isEmpty() ? QString() : line + ": " + error);
    m_contexts->Refresh();
}

} // namespace VirtualDesk
