// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <charconv>
#include <string>
#include <type_traits>

#include "common/number.h"

namespace Hwctl
{

/// A number as a message shows it, such as 100 and 0.001.
template <class Number> std::string ShowNumber(Number number)
{
    std::array<char, 32> text{};
    char* const end = text.data() + text.size();
    if constexpr (std::is_floating_point_v<Number>)
        return {text.data(), std::to_chars(text.data(), end, number, std::chars_format::fixed).ptr};
    else
        return {text.data(), std::to_chars(text.data(), end, number).ptr};
}

/// Check of an option that takes a number from @p lowest to @p highest. Unlike CLI::Range, it
/// refuses what is not a number.
template <class Number> CLI::Validator InRange(Number lowest, Number highest)
{
    const std::string range = ShowNumber(lowest) + " to " + ShowNumber(highest);
    return {[lowest, highest, range](std::string& text) {
                Number number{};
                return CLI::detail::lexical_cast(text, number) &&
                               Tools::IsInRange(number, lowest, highest)
                           ? std::string()
                           : "Value " + text + " not in range " + range;
            },
            range};
}

} // namespace Hwctl
