// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

#include "common/near_names.h"
#include "console/words.h"
#include "desk/desk_data.h"
#include "standalone/wing_table.h"

namespace Console
{

/// What lines can name on a desk: its devices, and the paths of what it shows. Known before
/// anything runs; adapters and sources of timecode join when a line makes them.
///
/// Names count whatever their case where that is unambiguous. Each operation that takes a word
/// throws std::invalid_argument, with the nearest names and all that there are, for one that is not
/// known. Any thread.
class DeskNames
{
public:
    explicit DeskNames(const Desk::DeskData& data);
    DeskNames(const DeskNames&) = delete;
    DeskNames& operator=(const DeskNames&) = delete;

    /// The model of the widget at a path, which is a name already.
    const Hardware::WingModel& GetModel(const std::string& path) const;
    bool HasDrive() const { return m_hasDrive; }
    bool HasSource(unsigned number) const;

    /// The words of a line, its verb among them, with the names of devices as the desk has them. A
    /// verb that names no device comes back as it is.
    Words Resolve(Words words) const;
    /// A path of the state as the state has it.
    std::string FindPath(const std::string& path) const;
    /// The same, also for what only this state has.
    std::string FindPath(const std::string& path, const nlohmann::json& state) const;

    /// Takes note of the names that a line makes when it is done.
    void Note(const Words& words);

private:
    Tools::Names GetNames(const char* group) const;

    const bool m_hasDrive;
    Tools::Names m_boards;
    Tools::Names m_ports;
    Tools::Names m_lines;
    std::map<std::string, const Hardware::WingModel*> m_models; // by path
    mutable std::mutex m_mutex;
    nlohmann::json m_paths; // guarded by m_mutex
};

/// A path as @p known has it, whatever the case of its letters. Throws std::invalid_argument with
/// the nearest ones for an unknown path.
std::string FindPathIn(const nlohmann::json& known, const std::string& path);

} // namespace Console
