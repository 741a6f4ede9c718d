// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "desk/virtual_desk.h"

namespace VirtualDesk
{

/// Something that can go wrong with a device, and how it is mended.
struct Fault {
    QString id;             ///< such as "unplug"; the same for every device of a kind
    QString text;           ///< on its button
    QString help;           ///< what it does
    QString word;           ///< what the device is while it is in force, such as "unplugged"
    QStringList begin = {}; ///< lines that bring it about
    QStringList end = {};   ///< lines that mend it; none for what passes by itself
    /// The desk's data begins with it: that is as it should be, and mending leaves it.
    bool isDesksOwn = false;
    /// Whether it is in force; none for what is over as soon as its lines are done.
    std::function<bool()> isInForce = {};
    /// Whether it can be brought about now; none where it always can.
    std::function<bool()> isPossible = {};
};

/// A device and all that can go wrong with it.
struct FaultyDevice {
    QString name;  ///< as lines name it, such as "/dev/ttyS0"; "cd" for the drive
    QString title; ///< such as "left (Vex4Pixi)"
    std::vector<Fault> faults;
};

/// Devices of a kind, which can have the same faults.
struct FaultGroup {
    QString id;    ///< such as "midi"
    QString title; ///< such as "MIDI ports"
    std::vector<FaultyDevice> devices;
};

/// The conditions that were seen last, by name; see Desk::VirtualDesk::GetCondition().
typedef std::map<std::string, std::string> Conditions;

/// Everything that can go wrong with a desk's devices; groups without devices are left out.
///
/// @param desk       outlives what is returned
/// @param conditions read whenever a fault is asked whether it is in force; outlives that too
std::vector<FaultGroup> ListFaults(const Desk::VirtualDesk& desk, const Conditions& conditions);

} // namespace VirtualDesk
