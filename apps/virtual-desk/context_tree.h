// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QString>
#include <QTreeWidget>
#include <vector>

#include "standalone/log_masks.h"
#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// The log's contexts with a check box for each level. A level that an ancestor holds back says so.
///
/// Columns: 0 the name, 1 to 5 the levels from trace to critical.
class ContextTree : public QTreeWidget
{
    Q_OBJECT

public:
    explicit ContextTree(PendingLines& lines, QWidget* parent = nullptr);

    QSize sizeHint() const override;

    /// Looks for contexts that have come or gone, and at their masks.
    void Refresh();
    /// The item of a path; null where there is none.
    QTreeWidgetItem* Find(const QString& path) const { return m_items.value(path); }
    /// Has the mask of the chosen context set.
    void SetMask(unsigned mask);

private:
    QTreeWidgetItem* Obtain(const QString& path);
    void RemoveOthers(const std::vector<Standalone::LogContextInfo>& contexts);
    void Show(QTreeWidgetItem& item, const Standalone::LogContextInfo& context);
    void Send(const QTreeWidgetItem& item, unsigned mask);
    void TakeChange(QTreeWidgetItem* item, int column);

    PendingLines& m_lines;
    QHash<QString, QTreeWidgetItem*> m_items; // by path
    bool m_isShowing = false;                 // changes of items are not the user's
};

} // namespace VirtualDesk
