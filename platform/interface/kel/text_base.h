// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

namespace kel
{

/// Bounded, append-only text of characters @p C over storage that a derived class owns.
///
/// The length is counted and nothing is terminated, so a text may hold any character, zero
/// included. What does not fit is cut off silently, and nothing more is taken after a cut;
/// truncated() tells. Not thread-safe.
template <class C> class text_base
{
public:
    text_base(const text_base&) = delete;
    text_base& operator=(const text_base&) = delete;

    const C* data() const noexcept { return m_storage; }
    /// Number of characters held, 0 to capacity().
    std::size_t length() const noexcept { return m_length; }
    std::size_t capacity() const noexcept { return m_capacity; }
    /// True once an append did not fit whole.
    bool truncated() const noexcept { return m_truncated; }
    std::basic_string_view<C> view() const noexcept { return {m_storage, m_length}; }

    void clear() noexcept
    {
        m_length = 0;
        m_truncated = false;
    }

    /// Appends @p count characters from @p text, as many as fit.
    void append(const C* text, std::size_t count) noexcept
    {
        const std::size_t taken = std::min(count, room());
        std::copy_n(text, taken, m_storage + m_length);
        m_length += taken;
        m_truncated = m_truncated || taken != count;
    }

    /// Appends all @p count characters, or none of them where they do not fit.
    void append_whole(const C* text, std::size_t count) noexcept
    {
        if (count <= room())
            append(text, count);
        else
            m_truncated = true;
    }

protected:
    text_base(C* storage, std::size_t capacity) noexcept : m_storage(storage), m_capacity(capacity)
    {
    }
    ~text_base() = default;

private:
    std::size_t room() const noexcept { return m_truncated ? 0 : m_capacity - m_length; }

    C* m_storage;
    std::size_t m_capacity;
    std::size_t m_length = 0;
    bool m_truncated = false;
};

/// A text_base with room for @p Capacity characters inside the object itself.
template <class C, std::size_t Capacity> class text : public text_base<C>
{
public:
    text() noexcept : text_base<C>(m_room, Capacity) {}

private:
    C m_room[Capacity]; // NOLINT(*-avoid-c-arrays): its address is taken before it is built
};

/// An integer to be appended in hexadecimal: lower case, no prefix, no padding.
struct hex {
    template <std::integral T>
    explicit constexpr hex(T number) noexcept
        : value(static_cast<std::uint64_t>(static_cast<std::make_unsigned_t<T>>(number)))
    {
    }
    std::uint64_t value;
};

inline text_base<char>& operator<<(text_base<char>& out, std::string_view text) noexcept
{
    out.append(text.data(), text.size());
    return out;
}

inline text_base<char>& operator<<(text_base<char>& out, const char* text) noexcept
{
    return out << std::string_view(text);
}

inline text_base<char>& operator<<(text_base<char>& out, const std::string& text) noexcept
{
    return out << std::string_view(text);
}

inline text_base<char>& operator<<(text_base<char>& out, char character) noexcept
{
    out.append(&character, 1);
    return out;
}

/// Appends the byte itself as one raw character, not its number.
inline text_base<char>& operator<<(text_base<char>& out, unsigned char byte) noexcept
{
    return out << static_cast<char>(byte);
}

inline text_base<char>& operator<<(text_base<char>& out, bool flag) noexcept
{
    return out << (flag ? std::string_view("true") : std::string_view("false"));
}

namespace detail
{

template <class T>
concept number =
    std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> &&
    !std::same_as<T, signed char> && !std::same_as<T, unsigned char> && !std::same_as<T, wchar_t> &&
    !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

template <class T> void append_number(text_base<char>& out, T value, int base) noexcept
{
    std::array<char, std::numeric_limits<std::uint64_t>::digits + 1> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, base).ptr;
    out.append(digits.data(), static_cast<std::size_t>(end - digits.data()));
}

} // namespace detail

/// Appends an integer in decimal.
template <detail::number T> text_base<char>& operator<<(text_base<char>& out, T value) noexcept
{
    detail::append_number(out, value, 10);
    return out;
}

inline text_base<char>& operator<<(text_base<char>& out, hex number) noexcept
{
    detail::append_number(out, number.value, 16);
    return out;
}

/// Appends one wide character. Values -128 to 255 become their low byte, which undoes the signed
/// widening of names that drivers report as bytes; larger ones become UTF-8; what is no character
/// becomes '?'.
inline text_base<char>& operator<<(text_base<char>& out, wchar_t wide) noexcept
{
    const auto value = static_cast<std::int64_t>(wide);
    if (value >= -128 && value <= 255)
        return out << static_cast<char>(static_cast<unsigned char>(value & 0xFF));
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value < 0 || surrogate || value > 0x10FFFF)
        return out << '?';

    std::array<char, 4> utf8{};
    std::size_t length = 0;
    const auto put = [&](std::int64_t bits) { utf8[length++] = static_cast<char>(bits); };
    if (value < 0x800) {
        put(0xC0 | (value >> 6));
    } else if (value < 0x10000) {
        put(0xE0 | (value >> 12));
        put(0x80 | ((value >> 6) & 0x3F));
    } else {
        put(0xF0 | (value >> 18));
        put(0x80 | ((value >> 12) & 0x3F));
        put(0x80 | ((value >> 6) & 0x3F));
    }
    put(0x80 | (value & 0x3F));
    out.append_whole(utf8.data(), length);
    return out;
}

inline text_base<char>& operator<<(text_base<char>& out, std::wstring_view text) noexcept
{
    for (const wchar_t wide : text)
        out << wide;
    return out;
}

inline text_base<char>& operator<<(text_base<char>& out, const wchar_t* text) noexcept
{
    return out << std::wstring_view(text);
}

inline text_base<char>& operator<<(text_base<char>& out, const std::wstring& text) noexcept
{
    return out << std::wstring_view(text);
}

} // namespace kel
