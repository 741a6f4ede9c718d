// SPDX-License-Identifier: MIT
#include "hwctl/event_printer.h"

#include <array>

namespace Hwctl
{

namespace
{

/// Width of the source's column; a longer source pushes its line to the right.
constexpr int SourceWidth = 20;

} // namespace

EventPrinter::EventPrinter(bool json, std::FILE* out) : m_json(json), m_out(out) {}

void EventPrinter::Print(const Tools::MonitorEvent& event)
{
    if (m_json) {
        nlohmann::json line = event.facts;
        line["time"] = event.seconds;
        line["source"] = event.source;
        line["signal"] = event.signal;
        line["text"] = event.text;
        PrintLine(ToLine(line));
        return;
    }
    std::array<char, 32> time{};
    std::snprintf(time.data(), time.size(), "%9.3f  ", event.seconds);
    std::string line = time.data() + event.source;
    const std::size_t column = std::char_traits<char>::length(time.data()) + SourceWidth;
    line.resize(std::max(line.size(), column), ' ');
    PrintLine(line + "  " + event.text);
}

void EventPrinter::PrintSummary(const std::string& text, const nlohmann::json& facts)
{
    PrintLine(m_json ? ToLine({{"summary", facts}}) : "summary: " + text);
}

void EventPrinter::PrintLine(const std::string& line)
{
    std::fprintf(m_out, "%s\n", line.c_str());
    std::fflush(m_out);
}

std::string ToLine(const nlohmann::json& json)
{
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace Hwctl
