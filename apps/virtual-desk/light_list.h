// SPDX-License-Identifier: MIT
#pragma once

#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QWidget>
#include <array>
#include <optional>

#include "hardware/console_lights.h"
#include "virtual-desk/level_bar.h"
#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// The console's lights: their levels, what the user prefers, and controls to set or fade each.
///
/// Controls: "fadeSeconds"; and for each light, by its name: the label "title WorkLight", the
/// LevelBar "bar WorkLight", the spin box "level WorkLight" and the button "set WorkLight".
class LightList : public QWidget
{
    Q_OBJECT

public:
    explicit LightList(PendingLines& lines, QWidget* parent = nullptr);

    void Refresh();

private:
    struct Row {
        QLabel* title = nullptr;
        LevelBar* bar = nullptr;
        QDoubleSpinBox* target = nullptr; ///< follows the light until the user edits it
        bool isEdited = false;
        std::optional<double> sent; ///< percent that the light is on its way to
    };

    Row AddRow(QGridLayout& grid, Hardware::ConsoleLightId id);
    QDoubleSpinBox* MakeTarget(Hardware::ConsoleLightId id);
    void Send(Hardware::ConsoleLightId id);
    void Follow(Row& row, double percent);

    PendingLines& m_lines;
    QDoubleSpinBox* m_seconds = nullptr;
    std::array<Row, Hardware::ConsoleLightCount> m_rows; // by id
    bool m_isFollowing = false;                          // it is not the user who edits
};

} // namespace VirtualDesk
