// SPDX-License-Identifier: MIT
#include "virtual-desk/context_tree.h"

#include <QHeaderView>
#include <QScopedValueRollback>
#include <QSet>
#include <algorithm>
#include <array>

#include "os/log.h"
#include "standalone/log_sink.h"

namespace VirtualDesk
{

namespace
{

constexpr std::array<unsigned, 5> Levels{Os::Log::Trace, Os::Log::Note, Os::Log::Warning,
                                         Os::Log::Error, Os::Log::Critical};
constexpr int PathRole = Qt::UserRole;

int ToColumn(std::size_t level)
{
    return static_cast<int>(level) + 1;
}

unsigned GetMask(const QTreeWidgetItem& item)
{
    unsigned mask = 0;
    for (std::size_t i = 0; i < Levels.size(); ++i)
        if (item.checkState(ToColumn(i)) == Qt::Checked)
            mask |= Levels.at(i);
    return mask;
}

} // namespace

ContextTree::ContextTree(PendingLines& lines, QWidget* parent) : QTreeWidget(parent), m_lines(lines)
{
    QStringList titles("Context");
    for (const unsigned level : Levels)
        titles += QString::fromLatin1(Standalone::GetLevelName(level));
    setHeaderLabels(titles);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    header()->setSectionResizeMode(0, QHeaderView::Stretch);
    connect(this, &QTreeWidget::itemChanged, this, &ContextTree::TakeChange);
}

QSize ContextTree::sizeHint() const
{
    // Names of contexts that stand in one another, and the columns of the levels.
    constexpr int NameWidth = 30; // characters
    int width = NameWidth * fontMetrics().averageCharWidth() + 2 * frameWidth();
    for (std::size_t i = 0; i < Levels.size(); ++i)
        width += header()->sectionSizeHint(ToColumn(i));
    return {width, QTreeWidget::sizeHint().height()};
}

QTreeWidgetItem* ContextTree::Obtain(const QString& path)
{
    if (QTreeWidgetItem* const known = m_items.value(path))
        return known;
    const qsizetype slash = path.lastIndexOf('/');
    QTreeWidgetItem* const parent = slash < 0 ? nullptr : m_items.value(path.left(slash));
    // Owned by what it stands in.
    auto* const item = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(this);
    item->setText(0, parent ? path.mid(slash + 1) : path);
    item->setData(0, PathRole, path);
    item->setToolTip(0, path);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    item->setExpanded(true);
    m_items.insert(path, item);
    return item;
}

void ContextTree::RemoveOthers(const std::vector<Standalone::LogContextInfo>& contexts)
{
    QSet<QString> paths;
    for (const Standalone::LogContextInfo& context : contexts)
        paths.insert(QString::fromStdString(context.path));
    // A context outlives those below it, so what is gone has nothing living below.
    QStringList gone;
    for (auto item = m_items.cbegin(); item != m_items.cend(); ++item)
        if (!paths.contains(item.key()))
            gone += item.key();
    // Longer paths first: an item takes those below it along.
    std::sort(gone.begin(), gone.end(),
              [](const QString& one, const QString& other) { return one.size() > other.size(); });
    for (const QString& path : gone)
        delete m_items.take(path);
}

void ContextTree::Show(QTreeWidgetItem& item, const Standalone::LogContextInfo& context)
{
    for (std::size_t i = 0; i < Levels.size(); ++i) {
        const int column = ToColumn(i);
        const bool isOwn = (context.mask & Levels.at(i)) != 0;
        const bool passes = (context.effectiveMask & Levels.at(i)) != 0;
        item.setCheckState(column, isOwn ? Qt::Checked : Qt::Unchecked);
        const bool isHeld = isOwn && !passes;
        item.setText(column, isHeld ? "held" : QString());
        item.setToolTip(column,
                        isHeld ? QString("A context above holds this level back") : QString());
    }
}

void ContextTree::Refresh()
{
    // While a change is under way the check boxes are ahead of the masks.
    if (!m_lines.IsEmpty())
        return;
    const std::vector<Standalone::LogContextInfo> contexts = Standalone::ListLogContexts();
    const QScopedValueRollback isShowing(m_isShowing, true);
    RemoveOthers(contexts);
    for (const Standalone::LogContextInfo& context : contexts)
        Show(*Obtain(QString::fromStdString(context.path)), context);
}

void ContextTree::Send(const QTreeWidgetItem& item, unsigned mask)
{
    m_lines.Do("log " + ToWord(item.data(0, PathRole).toString()) + ' ' + QString::number(mask));
}

void ContextTree::SetMask(unsigned mask)
{
    if (const QTreeWidgetItem* const item = currentItem())
        Send(*item, mask);
}

void ContextTree::TakeChange(QTreeWidgetItem* item, int column)
{
    if (!m_isShowing && column > 0)
        Send(*item, GetMask(*item));
}

} // namespace VirtualDesk
