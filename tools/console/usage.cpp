// SPDX-License-Identifier: MIT
#include "console/usage.h"

#include <algorithm>

namespace Console
{

namespace
{

bool HasCapitals(const std::string& word)
{
    return std::any_of(word.begin(), word.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

/// Words of the text; blanks in brackets do not part them.
std::vector<std::string> Split(const std::string& text)
{
    std::vector<std::string> words(1);
    int depth = 0;
    for (const char letter : text) {
        depth += letter == '[' ? 1 : letter == ']' ? -1 : 0;
        if (letter == ' ' && depth == 0)
            words.emplace_back();
        else
            words.back() += letter;
    }
    return words;
}

Usage::Part MakePart(std::string word)
{
    constexpr char Dots[] = "...";
    Usage::Part part;
    if (word.ends_with(Dots)) {
        part.repeats = true;
        word.resize(word.size() - std::string(Dots).size());
    }
    if (word.starts_with('[') && word.ends_with(']')) {
        part.isOptional = true;
        word = word.substr(1, word.size() - 2);
    }
    if (HasCapitals(word)) {
        part.value = word;
        return part;
    }
    for (std::size_t begin = 0; begin <= word.size();) {
        const std::size_t end = std::min(word.find('|', begin), word.size());
        part.literals.push_back(word.substr(begin, end - begin));
        begin = end + 1;
    }
    return part;
}

} // namespace

Usage::Usage(const std::string& text) : m_text(text)
{
    for (const std::string& word : Split(text))
        m_parts.push_back(MakePart(word));
}

bool Usage::Matches(const Words& words) const
{
    const bool isOpen = m_parts.back().repeats;
    if (words.size() > m_parts.size() && !isOpen)
        return false;
    for (std::size_t number = 0; number < m_parts.size(); ++number) {
        const Part& part = m_parts[number];
        if (number >= words.size()) {
            if (!part.isOptional)
                return false;
            continue;
        }
        const auto& literals = part.literals;
        if (!literals.empty() &&
            std::find(literals.begin(), literals.end(), words[number]) == literals.end())
            return false;
    }
    return true;
}

const Usage::Part& Usage::GetPart(std::size_t word) const
{
    return m_parts[std::min(word, m_parts.size() - 1)];
}

} // namespace Console
