// SPDX-License-Identifier: MIT
#include "console/words.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "common/number.h"

namespace Console
{

namespace
{

constexpr char Blanks[] = " \t\r\n";

template <class Number>
Number Parse(const std::string& word, Number lowest, Number highest, const std::string& range)
{
    const auto number = Tools::ParseNumber(word, lowest, highest);
    if (!number)
        throw std::invalid_argument("'" + word + "' is not a number from " + range);
    return *number;
}

/// Takes a word in quotes, the first of which stands at @p position.
std::string TakeQuoted(const std::string& line, std::size_t& position)
{
    std::string word;
    for (++position; position < line.size(); ++position) {
        if (line[position] == '"') {
            ++position;
            return word;
        }
        if (line[position] == '\\' && position + 1 < line.size())
            ++position;
        word += line[position];
    }
    throw std::invalid_argument("a quote does not end");
}

std::string ToText(double number)
{
    std::string text = std::to_string(number);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text;
}

} // namespace

Words SplitWords(const std::string& line)
{
    Words words;
    std::size_t position = 0;
    while ((position = line.find_first_not_of(Blanks, position)) != std::string::npos) {
        if (line[position] == '"') {
            words.push_back(TakeQuoted(line, position));
            continue;
        }
        const std::size_t end = std::min(line.find_first_of(Blanks, position), line.size());
        words.push_back(line.substr(position, end - position));
        position = end;
    }
    return words;
}

std::string Quote(const std::string& word)
{
    if (!word.empty() && word.find_first_of(" \t\r\n\"#\\") == std::string::npos)
        return word;
    std::string quoted = "\"";
    for (const char letter : word) {
        if (letter == '"' || letter == '\\')
            quoted += '\\';
        quoted += letter;
    }
    return quoted + '"';
}

void CheckCount(const Words& words, std::size_t least, std::size_t most, const char* usage)
{
    if (words.size() < least || words.size() > most)
        throw std::invalid_argument(std::string("it is: ") + usage);
}

bool ToSwitch(const std::string& word)
{
    if (word != "on" && word != "off")
        throw std::invalid_argument("'" + word + "' is neither on nor off");
    return word == "on";
}

std::string ToFile(const std::string& word)
{
    std::error_code error;
    if (std::filesystem::exists(word, error) && !std::filesystem::is_regular_file(word, error))
        throw std::runtime_error("'" + word + "' is no file");
    return word;
}

int ToInteger(const std::string& word, int lowest, int highest)
{
    return Parse(word, lowest, highest, std::to_string(lowest) + " to " + std::to_string(highest));
}

double ToNumber(const std::string& word, double lowest, double highest)
{
    return Parse(word, lowest, highest, ToText(lowest) + " to " + ToText(highest));
}

} // namespace Console
