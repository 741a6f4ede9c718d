// SPDX-License-Identifier: MIT
#include "common/script_lines.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "common/number.h"

namespace Tools
{

namespace
{

/// An hour of MIDI without a pause, in hexadecimal digits, is shorter. A device without an end is
/// not.
constexpr std::size_t LongestFile = std::size_t{64} << 20U;

} // namespace

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

double TakeScriptSeconds(std::istream& line)
{
    constexpr double Most = 1e6;
    std::string word;
    line >> word;
    const auto seconds = ParseNumber(word, 0.0, Most);
    if (!seconds)
        throw std::invalid_argument("it begins with seconds, 0 to 1000000");
    return *seconds;
}

std::string ReadWholeFile(const std::string& file)
{
    std::ifstream in(file);
    // A directory opens, and reads as nothing.
    if (!in || std::filesystem::is_directory(file))
        throw std::runtime_error(file + ": cannot be read");
    std::string text;
    std::array<char, 65536> piece{};
    while (in.read(piece.data(), piece.size()) || in.gcount() > 0) {
        text.append(piece.data(), static_cast<std::size_t>(in.gcount()));
        if (text.size() > LongestFile)
            throw std::runtime_error(file + ": is longer than " + std::to_string(LongestFile) +
                                     " bytes");
    }
    return text;
}

} // namespace Tools
