// SPDX-License-Identifier: MIT
#pragma once

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QWidget>
#include <cstddef>
#include <vector>

#include "virtual-desk/desk_controller.h"
#include "virtual-desk/fault_list.h"
#include "virtual-desk/line_label.h"
#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

/// Faults of every device, one click each.
///
/// Controls: for each fault of each device the button "fault GROUP DEVICE FAULT", such as "fault
/// midi Keys busy", checked while it is in force; for each device the label "state GROUP DEVICE"
/// with words for all that is in force. What the desk's data begins with is shown and named in the
/// summary, but is not a fault.
/// The groups are widgets, ltc, midi, serial, cd and network; the faults of
///
/// - widgets: unplug, stuck, midmove; ltc: these and dropout
/// - midi: unplug, busy, full, hangup, dead; serial: unplug, slow, stalled
/// - cd, whose device is "cd": vanish, eject, scratch, busy, slow
/// - network: remove, down, flap, overrun
///
/// Further the button "mendEverything" and the labels "faultSummary" and "faultStatus", which tells
/// what went wrong last.
class FaultsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit FaultsPanel(DeskController& desk, QWidget* parent = nullptr);

private:
    struct FaultRow {
        Fault fault;
        QPushButton* button = nullptr;
    };
    struct DeviceRow {
        QString name;
        LineLabel* title = nullptr;
        LineLabel* state = nullptr;
        std::vector<FaultRow> faults;
    };

    QWidget* MakeTop();
    QWidget* MakeGroup(const FaultGroup& group, int mostFaults);
    void LineUp();
    DeviceRow MakeDevice(QGridLayout& grid, const FaultGroup& group, std::size_t index,
                         const std::vector<QString>& columns);
    QPushButton* MakeButton(const Fault& fault, const QString& name);
    void Toggle(const Fault& fault);
    void MendEverything();
    void Refresh();
    /// What of a device's faults is in force.
    struct Count {
        int faults = 0;
        int desksOwn = 0; ///< as the desk's data begins
    };
    Count RefreshDevice(DeviceRow& device);
    void ShowSummary(int faults, const QStringList& desksOwn);
    bool IsUnderWay(const Fault& fault) const;
    void ShowOutcome(const QString& line, const QString& error);
    void ClearOutcome();

    DeskController& m_desk;
    PendingLines m_lines;
    Conditions m_conditions;
    std::vector<DeviceRow> m_devices;
    std::vector<QGridLayout*> m_grids; // one for each group
    QPushButton* m_mend = nullptr;
    LineLabel* m_summary = nullptr;
    QLabel* m_status = nullptr;
};

} // namespace VirtualDesk
