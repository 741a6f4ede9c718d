// SPDX-License-Identifier: MIT
#pragma once

#include <QSize>
#include <QString>
#include <optional>
#include <vector>

#include "standalone/wing_table.h"
#include "virtual-desk/wing_controls.h"

namespace VirtualDesk
{

/// Where each control of a model stands, computed from what the model's table tells. A value.
///
/// Masters stand in columns, section by section; to their right encoders, the keys that belong to
/// no master, and what else the model has.
class WingLayout
{
public:
    /// Controls that belong together, on a plate of their own.
    struct Group {
        QString title; ///< such as "Masters 1 to 10"
        QRect rect;
    };
    /// A word on a plate.
    struct Label {
        QString text;
        QRect rect;
    };

    /// @param displays how many displays of an expansion wing are to be seen; others have none
    explicit WingLayout(const Hardware::WingModel& model, int displays = 0);

    QSize GetSize() const { return m_size; }
    /// In the order in which the keyboard goes through them.
    const std::vector<PlacedControl>& GetControls() const { return m_controls; }
    const std::vector<Group>& GetGroups() const { return m_groups; }
    const std::vector<Label>& GetLabels() const { return m_labels; }

    /// A control's place among GetControls(); nothing for what the model does not have.
    std::optional<std::size_t> Find(ControlId id) const;
    std::optional<std::size_t> FindAt(QPoint point) const;
    /// The nearest control in a direction, of which one part is 0 and the other 1 or -1; the same
    /// where there is none.
    std::size_t FindBeside(std::size_t place, QPoint direction) const;
    /// The first control of the next or the previous stop: the controls of one kind in one group.
    /// Nothing beyond the last and the first.
    std::optional<std::size_t> FindNextStop(std::size_t place, bool forward) const;

private:
    friend class LayoutMaker;

    QSize m_size;
    std::vector<PlacedControl> m_controls;
    std::vector<Group> m_groups;
    std::vector<Label> m_labels;
};

} // namespace VirtualDesk
