// SPDX-License-Identifier: MIT
#include "common/hex.h"

#include <charconv>

namespace Tools
{

std::string FormatHex(std::span<const std::uint8_t> bytes)
{
    constexpr char Digits[] = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (!text.empty())
            text += ' ';
        text += Digits[byte >> 4];
        text += Digits[byte & 0x0F];
    }
    return text;
}

std::optional<std::vector<std::uint8_t>> ParseHex(std::string_view text)
{
    std::vector<std::uint8_t> bytes;
    while (!text.empty()) {
        if (text.front() == ' ') {
            text.remove_prefix(1);
            continue;
        }
        if (text.size() < 2)
            return std::nullopt;
        std::uint8_t byte = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + 2, byte, 16);
        if (error != std::errc() || end != text.data() + 2)
            return std::nullopt;
        bytes.push_back(byte);
        text.remove_prefix(2);
    }
    return bytes;
}

} // namespace Tools
