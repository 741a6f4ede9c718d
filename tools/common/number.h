// SPDX-License-Identifier: MIT
#pragma once

#include <charconv>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>

namespace Tools
{

/// Whether a number from outside lies in a range, whose ends belong to it. What is not a number
/// lies in none: both comparisons are false for it.
template <class Number> constexpr bool IsInRange(Number number, Number lowest, Number highest)
{
    return number >= lowest && number <= highest;
}

/// The decimal number that @p text consists of. Nothing for any other text, for "nan" and "inf",
/// and for a number outside the range.
template <class Number>
std::optional<Number> ParseNumber(std::string_view text,
                                  Number lowest = std::numeric_limits<Number>::lowest(),
                                  Number highest = std::numeric_limits<Number>::max())
{
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || !IsInRange(number, lowest, highest))
        return std::nullopt;
    return number;
}

} // namespace Tools
