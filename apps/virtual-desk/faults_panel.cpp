// SPDX-License-Identifier: MIT
#include "virtual-desk/faults_panel.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>

#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

constexpr int StatusMargin = 8;
constexpr int FirstFaultColumn = 2; // behind the device's name and state
const QString Sound = QStringLiteral("in order");

/// Every fault of a group's devices once, in their order, so that devices share columns.
std::vector<QString> ListColumns(const FaultGroup& group)
{
    std::vector<QString> columns;
    for (const FaultyDevice& device : group.devices)
        for (const Fault& fault : device.faults)
            if (std::find(columns.begin(), columns.end(), fault.id) == columns.end())
                columns.push_back(fault.id);
    return columns;
}

void SetBold(QLabel& label, bool bold)
{
    QFont font = label.font();
    if (font.bold() == bold)
        return;
    font.setBold(bold);
    label.setFont(font);
}

/// A label of the usual size, with room around its text for a colour to be seen.
LineLabel* MakeLine(QWidget* parent)
{
    constexpr int Around = 2;
    auto* const label = new LineLabel(parent);
    label->setFont(parent->font());
    const int beside = label->fontMetrics().averageCharWidth();
    label->setContentsMargins(beside, Around, beside, Around);
    return label;
}

/// In force against the desk's data, and not passing by itself.
bool IsToMend(const Fault& fault)
{
    return !fault.end.isEmpty() && !fault.isDesksOwn && fault.isInForce();
}

} // namespace

FaultsPanel::FaultsPanel(DeskController& desk, QWidget* parent)
    : QWidget(parent), m_desk(desk), m_lines(desk), m_status(MakeProblemLabel("faultStatus"))
{
    setObjectName("faults");
    auto* const content = new QWidget;
    auto* const groups = new QVBoxLayout(content);
    const std::vector<FaultGroup> list = ListFaults(m_desk.GetDesk(), m_conditions);
    std::size_t columns = 0;
    for (const FaultGroup& group : list)
        columns = std::max(columns, ListColumns(group).size());
    for (const FaultGroup& group : list)
        groups->addWidget(MakeGroup(group, static_cast<int>(columns)));
    LineUp();
    groups->addStretch();
    m_status->setMargin(StatusMargin);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(MakeTop());
    layout->addWidget(MakeScrollArea(content), 1);
    layout->addWidget(m_status);

    connect(&m_lines, &PendingLines::done, this, &FaultsPanel::ShowOutcome);
    connect(&m_desk, &DeskController::refreshed, this, &FaultsPanel::Refresh);
    Refresh();
}

QWidget* FaultsPanel::MakeTop()
{
    auto* const top = new QWidget(this);
    m_summary = MakeLine(top);
    m_summary->setObjectName("faultSummary");
    m_mend = new QPushButton("&Mend everything", top);
    m_mend->setObjectName("mendEverything");
    m_mend->setToolTip("Undoes all that is in force");
    connect(m_mend, &QPushButton::clicked, this, &FaultsPanel::MendEverything);
    auto* const row = new QHBoxLayout(top);
    row->addWidget(m_summary, 1);
    row->addWidget(m_mend);
    return top;
}

QWidget* FaultsPanel::MakeGroup(const FaultGroup& group, int mostFaults)
{
    auto* const box = new QGroupBox(group.title, this);
    auto* const grid = new QGridLayout(box);
    grid->setVerticalSpacing(4);
    const std::vector<QString> columns = ListColumns(group);
    for (std::size_t index = 0; index < group.devices.size(); ++index)
        m_devices.push_back(MakeDevice(*grid, group, index, columns));
    // A column without anything would have no gap beside it.
    for (int fault = static_cast<int>(columns.size()); fault < mostFaults; ++fault)
        grid->addWidget(new QWidget(box), 0, FirstFaultColumn + fault);
    m_grids.push_back(grid);
    return box;
}

/// Gives all groups columns of the same widths, which do not change with what is in force, so that
/// no button moves under the hand. What a wide window has left over goes to the states.
void FaultsPanel::LineUp()
{
    constexpr int MostTitle = 44; // characters; a tool tip has the rest
    QFont bold = font();
    bold.setBold(true);
    const int state = QFontMetrics(bold).horizontalAdvance("unplugged, stuck");
    int title = 0;
    int button = 0;
    std::size_t most = 0;
    for (const DeviceRow& device : m_devices) {
        title = std::max(title, device.title->sizeHint().width());
        most = std::max(most, device.faults.size());
        for (const FaultRow& row : device.faults)
            button = std::max(button, row.button->sizeHint().width());
    }
    title = std::min(title, MostTitle * fontMetrics().averageCharWidth());
    for (QGridLayout* const grid : m_grids) {
        grid->setColumnMinimumWidth(0, title);
        grid->setColumnMinimumWidth(1, state);
        grid->setColumnStretch(0, 1);
        grid->setColumnStretch(1, 2);
        for (int fault = 0; fault < static_cast<int>(most); ++fault)
            grid->setColumnMinimumWidth(FirstFaultColumn + fault, button);
    }
}

FaultsPanel::DeviceRow FaultsPanel::MakeDevice(QGridLayout& grid, const FaultGroup& group,
                                               std::size_t index,
                                               const std::vector<QString>& columns)
{
    const FaultyDevice& device = group.devices[index];
    const auto line = static_cast<int>(index);
    const QString name = group.id + ' ' + device.name;
    DeviceRow row;
    row.name = device.name;
    row.title = MakeLine(this);
    row.title->ShowText(device.title);
    grid.addWidget(row.title, line, 0);
    for (const Fault& fault : device.faults) {
        QPushButton* const button = MakeButton(fault, name);
        button->setAccessibleName(device.title + ": " + fault.text);
        const auto column = std::find(columns.begin(), columns.end(), fault.id) - columns.begin();
        grid.addWidget(button, line, FirstFaultColumn + static_cast<int>(column));
        row.faults.push_back({fault, button});
    }
    row.state = MakeLine(this);
    row.state->setObjectName("state " + name);
    row.state->setAccessibleDescription("State of " + device.title);
    grid.addWidget(row.state, line, 1);
    return row;
}

QPushButton* FaultsPanel::MakeButton(const Fault& fault, const QString& name)
{
    auto* const button = new QPushButton(fault.text, this);
    button->setObjectName("fault " + name + ' ' + fault.id);
    button->setToolTip(fault.help);
    if (!fault.end.isEmpty())
        MakeSwitch(*button);
    connect(button, &QPushButton::clicked, this, [this, fault] { Toggle(fault); });
    return button;
}

void FaultsPanel::Toggle(const Fault& fault)
{
    const bool isMending = !fault.end.isEmpty() && fault.isInForce();
    ClearOutcome();
    m_lines.Do(isMending ? fault.end : fault.begin);
}

void FaultsPanel::MendEverything()
{
    QStringList lines;
    for (const DeviceRow& device : m_devices)
        for (const FaultRow& row : device.faults)
            if (IsToMend(row.fault))
                lines += row.fault.end;
    // One line may mend more than one fault of a device.
    lines.removeDuplicates();
    ClearOutcome();
    m_lines.Do(lines);
}

void FaultsPanel::Refresh()
{
    m_conditions = m_desk.GetDesk().GetConditions();
    int faults = 0;
    bool canMend = false;
    QStringList desksOwn;
    for (DeviceRow& device : m_devices) {
        const Count count = RefreshDevice(device);
        faults += count.faults;
        if (count.desksOwn > 0)
            desksOwn += device.name;
        for (const FaultRow& row : device.faults)
            canMend = canMend || IsToMend(row.fault);
    }
    m_mend->setEnabled(canMend);
    ShowSummary(faults, desksOwn);
}

void FaultsPanel::ShowSummary(int faults, const QStringList& desksOwn)
{
    QString text = faults == 0   ? QString("Everything is in order.")
                   : faults == 1 ? QString("One fault is in force.")
                                 : QString::number(faults) + " faults are in force.";
    if (!desksOwn.isEmpty())
        text = (faults == 0 ? QString("No fault is in force.") : text) +
               " Not in order since the desk's start: " + desksOwn.join(", ") + '.';
    m_summary->ShowText(text);
    MarkFault(*m_summary, faults > 0);
}

FaultsPanel::Count FaultsPanel::RefreshDevice(DeviceRow& device)
{
    QStringList words;
    Count count;
    for (const FaultRow& row : device.faults) {
        const bool isInForce = row.fault.isInForce && row.fault.isInForce();
        if (isInForce) {
            words += row.fault.word;
            ++(row.fault.isDesksOwn ? count.desksOwn : count.faults);
        }
        // A button that was clicked is ahead of its device until the lines are done.
        if (row.button->isCheckable() && !IsUnderWay(row.fault))
            row.button->setChecked(isInForce);
        MarkFault(*row.button, isInForce && !row.fault.isDesksOwn);
        if (row.fault.isPossible)
            row.button->setEnabled(isInForce || row.fault.isPossible());
    }
    device.state->ShowText(words.isEmpty() ? Sound : words.join(", "));
    SetBold(*device.state, count.faults > 0);
    MarkFault(*device.state, count.faults > 0);
    return count;
}

bool FaultsPanel::IsUnderWay(const Fault& fault) const
{
    const auto isPending = [this](const QString& line) { return m_lines.Has(line); };
    return std::any_of(fault.begin.begin(), fault.begin.end(), isPending) ||
           std::any_of(fault.end.begin(), fault.end.end(), isPending);
}

void FaultsPanel::ShowOutcome(const QString& line, const QString& error)
{
    if (error.isEmpty())
        return;
    m_status->setText(line + ": " + error);
    m_status->show();
}

void FaultsPanel::ClearOutcome()
{
    m_status->clear();
    m_status->hide();
}

} // namespace VirtualDesk
