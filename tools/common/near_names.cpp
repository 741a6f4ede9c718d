// SPDX-License-Identifier: MIT
#include "common/near_names.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <stdexcept>

namespace Tools
{

namespace
{

constexpr std::size_t MostNear = 3;
/// Of a long list the rest is a number.
constexpr std::size_t MostListed = 24;

std::string ToLower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

/// How many letters must be inserted, removed, replaced or swapped with the next to make one word
/// of the other.
std::size_t GetDistance(const std::string& one, const std::string& other)
{
    // The last three rows of the table; the first of its columns is for no letter at all.
    std::vector<std::size_t> before;
    std::vector<std::size_t> above(other.size() + 1);
    std::iota(above.begin(), above.end(), 0);
    for (std::size_t i = 1; i <= one.size(); ++i) {
        std::vector<std::size_t> row{i};
        for (std::size_t j = 1; j <= other.size(); ++j) {
            const std::size_t replaced = above[j - 1] + (one[i - 1] == other[j - 1] ? 0 : 1);
            row.push_back(std::min({replaced, above[j] + 1, row[j - 1] + 1}));
            const bool isSwapped =
                i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1];
            if (isSwapped)
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before = std::move(above);
        above = std::move(row);
    }
    return above.back();
}

std::string Join(const Names& names, const char* last)
{
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i)
        text += (i == 0 ? "" : i + 1 == names.size() ? last : ", ") + names[i];
    return text;
}

} // namespace

std::optional<std::string> FindName(const std::string& word, const Names& names)
{
    if (std::find(names.begin(), names.end(), word) != names.end())
        return word;
    const std::string lower = ToLower(word);
    const auto isSame = [&lower](const std::string& name) { return ToLower(name) == lower; };
    const auto found = std::find_if(names.begin(), names.end(), isSame);
    if (found == names.end() || std::any_of(found + 1, names.end(), isSame))
        return std::nullopt;
    return *found;
}

Names FindNearNames(const std::string& word, const Names& names)
{
    const std::string lower = ToLower(word);
    // By distance; names that are equally far keep their order.
    std::multimap<std::size_t, std::string> near;
    for (const std::string& name : names) {
        const std::string other = ToLower(name);
        const std::size_t distance = GetDistance(lower, other);
        const std::size_t most = std::max<std::size_t>(1, std::min(lower.size(), other.size()) / 3);
        if (!lower.empty() && (distance <= most || other.starts_with(lower)))
            near.emplace(distance, name);
    }
    Names nearest;
    for (const auto& [distance, name] : near)
        if (nearest.size() < MostNear)
            nearest.push_back(name);
    return nearest;
}

std::string SuggestNames(const std::string& word, const Names& names)
{
    if (names.empty())
        return "; there is none";
    std::string text;
    if (const Names near = FindNearNames(word, names); !near.empty())
        text = std::string("; the nearest ") + (near.size() == 1 ? "is " : "are ") +
               Join(near, " and ");
    Names listed = names;
    listed.resize(std::min(listed.size(), MostListed));
    text += std::string("; there ") + (names.size() == 1 ? "is " : "are ") + Join(listed, ", ");
    if (listed.size() < names.size())
        text += " and " + std::to_string(names.size() - listed.size()) + " more";
    return text;
}

std::string ChooseName(const std::string& what, const std::string& word, const Names& names)
{
    const auto name = FindName(word, names);
    if (!name)
        throw std::invalid_argument("there is no " + what + " '" + word + "'" +
                                    SuggestNames(word, names));
    return *name;
}

} // namespace Tools
