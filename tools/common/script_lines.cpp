// SPDX-License-Identifier: MIT
#include "common/script_lines.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace Tools
{

void ForEachScriptLine(std::istream& text,
                       const std::function<void(const std::string& line, std::size_t number)>& take)
{
    std::string line;
    for (std::size_t number = 1; std::getline(text, line); ++number) {
        line.resize(std::min(line.find('#'), line.size()));
        if (line.find_first_not_of(" \t\r") != std::string::npos)
            take(line, number);
    }
}

void RefuseScriptLine(const std::string& kind, std::size_t line, const std::string& reason)
{
    throw std::invalid_argument(kind + ", line " + std::to_string(line) + ": " + reason);
}

std::string ReadWholeFile(const std::string& file)
{
    std::ifstream in(file);
    // A directory opens, and reads as nothing.
    if (!in || std::filesystem::is_directory(file))
        throw std::runtime_error("cannot read '" + file + "'");
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

} // namespace Tools
