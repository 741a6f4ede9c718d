// SPDX-License-Identifier: MIT
#include "virtual-desk/networks_view.h"

#include <QVBoxLayout>
#include <algorithm>

#include "common/network_text.h"
#include "desk/widget_controls.h"

namespace VirtualDesk
{

namespace
{

// Product types whose application drives link lights.
constexpr int FirstLinkModel = 8;
constexpr int SecondLinkModel = 11;

QString DescribeState(const Desk::AdapterData& adapter)
{
    if (!adapter.isUp)
        return "down";
    return "up, " + QString::fromStdString(Tools::DescribeSpeed(adapter.speed));
}

} // namespace

NetworksView::NetworksView(const DeskController& desk, PendingLines& lines, QWidget* parent)
    : QWidget(parent), m_desk(desk), m_lines(lines)
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_noBoard = new QLabel("No board with link lights is plugged.", this);
    m_noBoard->setWordWrap(true);
    layout->addWidget(m_noBoard);
    const int model = m_desk.GetDesk().GetData().platform.productType;
    if (model != FirstLinkModel && model != SecondLinkModel)
        AddNote();
    AddBoards();
    m_noAdapter = new QLabel("There are no adapters.", this);
    layout->addWidget(m_noAdapter);
    m_adapterRows = new QWidget(this);
    layout->addWidget(m_adapterRows);
}

void NetworksView::AddNote()
{
    auto* const note = new QLabel("This model of console leaves link lights alone; those of type 8 "
                                  "and 11 light them.",
                                  this);
    note->setObjectName("linkNote");
    note->setWordWrap(true);
    note->setForegroundRole(QPalette::PlaceholderText);
    layout()->addWidget(note);
}

void NetworksView::AddBoards()
{
    for (const Desk::VirtualWidget* const widget : m_desk.GetDesk().GetBus().GetWidgets()) {
        if (!Desk::IsLtcBoard(widget->GetModel()))
            continue;
        const QString path = QString::fromStdWString(widget->GetData().path);
        Board board{widget, new QLabel("Board " + path, this), new LinkLights(this)};
        board.lights->setObjectName("links " + path);
        board.lights->setAccessibleName("Link lights of board " + path);
        layout()->addWidget(board.title);
        layout()->addWidget(board.lights);
        m_boards.push_back(board);
    }
}

void NetworksView::RebuildAdapters(const std::vector<Desk::AdapterData>& adapters)
{
    delete m_adapterRows;
    m_adapterRows = new QWidget(this);
    layout()->addWidget(m_adapterRows);
    m_rows.clear();
    m_names.clear();
    auto* const grid = new QGridLayout(m_adapterRows);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(1, 1);
    for (const Desk::AdapterData& adapter : adapters) {
        const QString name = QString::fromStdWString(adapter.name);
        const auto makeButton = [&](const QString& text, const QString& verb) {
            auto* const button = new QPushButton(text, m_adapterRows);
            button->setObjectName(verb + ' ' + name);
            button->setAccessibleName("Link " + verb + ": " + name);
            connect(button, &QPushButton::clicked, this,
                    [this, line = "adapter " + ToWord(name) + ' ' + verb] { m_lines.Do(line); });
            return button;
        };
        Row row{new QLabel(m_adapterRows), makeButton("Up", "up"), makeButton("Down", "down")};
        row.state->setObjectName("adapter " + name);
        const auto line = static_cast<int>(m_rows.size());
        grid->addWidget(new QLabel(name, m_adapterRows), line, 0);
        grid->addWidget(row.state, line, 1);
        grid->addWidget(row.up, line, 2);
        grid->addWidget(row.down, line, 3);
        m_rows.push_back(row);
        m_names.push_back(adapter.name);
    }
    m_adapterRows->show();
}

void NetworksView::RefreshBoards()
{
    bool isAnyPlugged = false;
    for (const Board& board : m_boards) {
        const bool isPlugged = board.widget->IsPlugged();
        isAnyPlugged = isAnyPlugged || isPlugged;
        board.title->setVisible(isPlugged);
        board.lights->setVisible(isPlugged);
        board.lights->SetLights(board.widget->GetLinkLights());
    }
    m_noBoard->setVisible(!isAnyPlugged);
}

void NetworksView::Refresh()
{
    RefreshBoards();
    const std::vector<Desk::AdapterData> adapters = m_desk.GetDesk().GetNetwork().GetAdapters();
    const bool isSame = std::equal(adapters.begin(), adapters.end(), m_names.begin(), m_names.end(),
                                   [](const Desk::AdapterData& adapter, const std::wstring& name) {
                                       return adapter.name == name;
                                   });
    if (!isSame)
        RebuildAdapters(adapters);
    m_noAdapter->setVisible(adapters.empty());
    for (std::size_t i = 0; i < adapters.size(); ++i) {
        m_rows[i].state->setText(DescribeState(adapters[i]));
        m_rows[i].up->setEnabled(!adapters[i].isUp);
        m_rows[i].down->setEnabled(adapters[i].isUp);
    }
}

} // namespace VirtualDesk
