// SPDX-License-Identifier: MIT
#include "console/desk_names.h"

#include <stdexcept>
#include <utility>

#include "console/known_paths.h"
#include "console/limits.h"
#include "desk/widget_controls.h"

namespace Console
{

namespace
{

using nlohmann::json;

Tools::Names GetKeys(const json& object)
{
    Tools::Names keys;
    for (const auto& [key, value] : object.items())
        keys.push_back(key);
    return keys;
}

/// The name that a path goes on with; how much of the path it takes is in @p length. Nothing where
/// there is none.
std::optional<std::string> TakeName(const std::string& rest, const Tools::Names& keys,
                                    std::size_t& length)
{
    // A name may hold a stroke itself: the longest that there is counts.
    for (length = rest.size(); length != std::string::npos && length > 0;
         length = rest.rfind('/', length - 1))
        if (auto name = Tools::FindName(rest.substr(0, length), keys))
            return name;
    return std::nullopt;
}

[[noreturn]] void RefusePath(const std::string& path, const std::string& found,
                             const std::string& rest, const Tools::Names& keys)
{
    const std::string place = found.empty() ? "the desk" : "'" + found + "'";
    throw std::invalid_argument(
        "there is no '" + path + "': " +
        (keys.empty() ? "nothing stands below " + place
                      : place + " has no '" + rest.substr(0, rest.find('/')) + "'" +
                            Tools::SuggestNames(rest.substr(0, rest.find('/')), keys)));
}

std::string GetSourceName(unsigned number)
{
    return "sim " + std::to_string(number);
}

} // namespace

std::string FindPathIn(const json& known, const std::string& path)
{
    const json* value = &known;
    std::string found;
    for (std::string rest = path;;) {
        const Tools::Names keys = value->is_object() ? GetKeys(*value) : Tools::Names();
        std::size_t length = 0;
        const auto name = TakeName(rest, keys, length);
        if (!name)
            RefusePath(path, found, rest, keys);
        found += (found.empty() ? "" : "/") + *name;
        value = &value->at(*name);
        if (length == rest.size())
            return found;
        rest.erase(0, length + 1);
    }
}

DeskNames::DeskNames(const Desk::DeskData& data)
    : m_hasDrive(data.cd.has_value()), m_paths(GetKnownPaths(data))
{
    for (const Desk::WidgetData& widget : data.widgets)
        if (const auto* const model = Standalone::FindWingModel(widget.model)) {
            const std::string path(widget.path.begin(), widget.path.end());
            m_models[path] = model;
            if (Desk::IsLtcBoard(*model))
                m_boards.push_back(path);
        }
    for (const Desk::MidiPortData& port : data.midiPorts)
        m_ports.push_back(port.name);
    for (const Desk::SerialLineData& line : data.serialLines)
        m_lines.push_back(line.device);
}

Tools::Names DeskNames::GetNames(const char* group) const
{
    const std::lock_guard hold(m_mutex);
    return GetKeys(m_paths.at(group));
}

const Hardware::WingModel& DeskNames::GetModel(const std::string& path) const
{
    return *m_models.at(path);
}

bool DeskNames::HasSource(unsigned number) const
{
    const std::lock_guard hold(m_mutex);
    return m_paths.at("timecode").contains(GetSourceName(number));
}

Words DeskNames::Resolve(Words words) const
{
    if (words.size() < 2)
        return words;
    const std::string& verb = words[0];
    std::string& word = words[1];
    if (verb == "widget" || verb == "wing")
        word = Tools::ChooseName("widget at", word, GetNames("widgets"));
    else if (verb == "ltc")
        word = Tools::ChooseName("LTC board at", word, m_boards);
    else if (verb == "midi" || verb == "input" || verb == "output")
        word = Tools::ChooseName("MIDI port", word, m_ports);
    else if (verb == "serial")
        word = Tools::ChooseName("serial line", word, m_lines);
    else if (verb == "adapter" && words.size() > 2 && words[2] != "add")
        word = Tools::ChooseName("adapter", word, GetNames("adapters"));
    return words;
}

std::string DeskNames::FindPath(const std::string& path) const
{
    const std::lock_guard hold(m_mutex);
    return FindPathIn(m_paths, path);
}

std::string DeskNames::FindPath(const std::string& path, const json& state) const
{
    try {
        return FindPathIn(state, path);
    } catch (const std::invalid_argument&) {
        return FindPath(path); // there is nothing yet
    }
}

void DeskNames::Note(const Words& words)
{
    const std::lock_guard hold(m_mutex);
    if (words.size() == 3 && words[0] == "adapter" && words[2] == "add")
        m_paths["adapters"][words[1]] = GetAdapterPaths();
    else if (words.size() == 4 && words[0] == "adapter" && words[2] == "rename")
        m_paths["adapters"][words[3]] = GetAdapterPaths();
    else if (words.size() == 4 && words[0] == "sim" && words[2] == "create")
        m_paths["timecode"][GetSourceName(static_cast<unsigned>(
            ToInteger(words[1], 0, Limits::HighestSource)))] = GetSourcePaths();
}

} // namespace Console
