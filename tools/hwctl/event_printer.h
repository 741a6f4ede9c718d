// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

#include "watch/event.h"

namespace Hwctl
{

/// Prints events as aligned text or as JSON, one line each, and flushes each line.
class EventPrinter
{
public:
    EventPrinter(bool json, std::FILE* out);

    void Print(const Tools::MonitorEvent& event);
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
