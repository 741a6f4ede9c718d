// SPDX-License-Identifier: MIT
#include "cd/cue_words.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <sstream>

#include "desk/cd_disc.h"

namespace Desk
{

std::string Quote(const std::string& text)
{
    return "'" + text + "'";
}

std::string ToUpper(std::string word)
{
    std::transform(word.begin(), word.end(), word.begin(),
                   [](unsigned char sign) { return static_cast<char>(std::toupper(sign)); });
    return word;
}

bool IsCueRemark(const std::string& line)
{
    std::istringstream in(line);
    std::string first;
    std::string second;
    in >> first >> second;
    return ToUpper(first) == "REM" && ToUpper(second) != "LENGTH";
}

std::vector<std::string> SplitCueLine(const std::string& line)
{
    std::vector<std::string> words;
    std::size_t at = 0;
    while ((at = line.find_first_not_of(" \t", at)) != std::string::npos) {
        const bool quoted = line[at] == '"';
        const std::size_t begin = quoted ? at + 1 : at;
        const std::size_t end = quoted ? line.find('"', begin) : line.find_first_of(" \t", begin);
        if (quoted && end == std::string::npos)
            throw CueProblem("a quotation mark is missing");
        words.push_back(line.substr(begin, end - begin));
        if (end == std::string::npos)
            break;
        at = quoted ? end + 1 : end;
    }
    return words;
}

int ToCueNumber(const std::string& digits, std::size_t most)
{
    if (digits.empty() || digits.size() > most ||
        !std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return -1;
    return std::stoi(digits);
}

int ParseCueTime(const std::string& text)
{
    std::istringstream in(text);
    std::array<std::string, 3> parts;
    for (std::string& part : parts)
        std::getline(in, part, ':');
    const int minutes = ToCueNumber(parts[0], 3);
    const int seconds = ToCueNumber(parts[1], 2);
    const int frames = ToCueNumber(parts[2], 2);
    if (std::count(text.begin(), text.end(), ':') != 2 || minutes < 0 || seconds < 0 ||
        seconds >= 60 || frames < 0 || frames >= CdFramesPerSecond)
        throw CueProblem(Quote(text) + " is no time, which is mm:ss:ff");
    return (minutes * 60 + seconds) * CdFramesPerSecond + frames;
}

} // namespace Desk
