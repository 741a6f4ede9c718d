// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

namespace Hwctl
{

/// One signal on its way to the screen.
struct MonitorEvent {
    double seconds;       ///< since the monitor started
    std::string source;   ///< such as "midi Stage Keyboard" or "timecode sim 1"
    std::string signal;   ///< the signal's name
    std::string text;     ///< what it says
    nlohmann::json facts; ///< fields of its own, for JSON only
};

/// Prints events as aligned text or as JSON, one line each, and flushes each line.
class EventPrinter
{
public:
    EventPrinter(bool json, std::FILE* out);

    void Print(const MonitorEvent& event);
    /// Prints the line that ends a run: @p text, or @p facts under "summary".
    void PrintSummary(const std::string& text, const nlohmann::json& facts);

private:
    void PrintLine(const std::string& line);

    const bool m_json;
    std::FILE* const m_out;
};

/// JSON as one line; bytes that are no UTF-8 are replaced.
std::string ToLine(const nlohmann::json& json);

} // namespace Hwctl
