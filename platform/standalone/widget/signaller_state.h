// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <mutex>
#include <optional>
#include <set>
#include <vector>

#include "widget/widget_signaller.h"

namespace Hardware
{

/// What a signaller knows; the driver keeps a share while it raises a signal.
struct WidgetSignaller::State {
    State(WidgetReader itsReader, void* itsContext) : reader(itsReader), context(itsContext) {}

    const WidgetReader reader;
    void* const context;
    std::atomic<bool> autoRead = false;

    std::mutex mutex;
    std::set<const GUID*> classes;                   // guarded by mutex; watched now
    std::set<const GUID*> everWatched;               // guarded by mutex
    std::vector<std::optional<WidgetMapData>> slots; // guarded by mutex; by widget index

    bool Watches(const GUID* classId);
    /// Whether widgets of the class get an index: it is or was watched.
    bool Counts(const GUID* classId);
    /// False when the class is watched already.
    bool Watch(const GUID* classId);
    /// The index of a device, an equal one of class and path; -1 when it is unknown.
    int Find(const WidgetMapData& mapData);
    /// Gives a device the lowest free index, unless it has one.
    void Keep(const WidgetMapData& mapData);
    void Drop(const WidgetMapData& mapData);

private:
    int FindLocked(const WidgetMapData& mapData) const;
};

} // namespace Hardware
