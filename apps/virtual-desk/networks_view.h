// SPDX-License-Identifier: MIT
#pragma once

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QWidget>
#include <map>
#include <string>
#include <vector>

#include "virtual-desk/link_lights.h"
#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// The link lights of the boards that have them, and the network adapters that they tell of.
///
/// Controls: the LinkLights "links PATH" of each board; for each adapter the label "adapter NAME"
/// and the buttons "up NAME" and "down NAME".
class NetworksView : public QWidget
{
    Q_OBJECT

public:
    NetworksView(const DeskController& desk, PendingLines& lines, QWidget* parent = nullptr);

    void Refresh();

private:
    struct Row {
        QLabel* state = nullptr;
        QPushButton* up = nullptr;
        QPushButton* down = nullptr;
    };
    struct Board {
        const Desk::VirtualWidget* widget = nullptr;
        QLabel* title = nullptr;
        LinkLights* lights = nullptr;
    };

    void AddBoards();
    void AddNote();
    void RebuildAdapters(const std::vector<Desk::AdapterData>& adapters);
    void RefreshBoards();

    const DeskController& m_desk;
    PendingLines& m_lines;
    QLabel* m_noBoard = nullptr;
    QLabel* m_noAdapter = nullptr;
    QWidget* m_adapterRows = nullptr;
    std::vector<Board> m_boards;
    std::vector<std::wstring> m_names; // of the adapters that have rows, in their order
    std::vector<Row> m_rows;
};

} // namespace VirtualDesk
