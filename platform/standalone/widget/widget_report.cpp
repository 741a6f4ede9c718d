// SPDX-License-Identifier: MIT
#include "standalone/widget_report.h"

#include <concepts>
#include <type_traits>

namespace Standalone::Report
{

namespace
{

template <std::integral Value> void Put(Bytes& out, Value value)
{
    auto rest = static_cast<std::make_unsigned_t<Value>>(value);
    for (std::size_t byte = 0; byte < sizeof value; ++byte) {
        out.push_back(static_cast<std::uint8_t>(rest & 0xFFU));
        if constexpr (sizeof value > 1)
            rest = static_cast<decltype(rest)>(rest >> 8U);
    }
}

/// Lists are never longer than their length can tell; what is beyond is cut.
template <std::integral Value> void Put(Bytes& out, const std::vector<Value>& list)
{
    const auto count = static_cast<std::uint16_t>(std::min<std::size_t>(list.size(), 0xFFFF));
    Put(out, count);
    for (std::size_t entry = 0; entry < count; ++entry)
        Put(out, list[entry]);
}

/// Reads fields off the front; once they do not fit, nothing fits any more.
struct Source {
    std::span<const std::uint8_t> rest;
    bool fits = true;

    template <std::integral Value> void Get(Value& value)
    {
        fits = fits && rest.size() >= sizeof value;
        if (!fits)
            return;
        std::uint64_t bits = 0;
        for (std::size_t byte = 0; byte < sizeof value; ++byte)
            bits |= static_cast<std::uint64_t>(rest[byte]) << (8 * byte);
        value = static_cast<Value>(bits);
        rest = rest.subspan(sizeof value);
    }

    template <std::integral Value> void Get(std::vector<Value>& list)
    {
        std::uint16_t count = 0;
        Get(count);
        fits = fits && rest.size() >= count * sizeof(Value);
        if (!fits)
            return;
        list.resize(count);
        for (Value& value : list)
            Get(value);
    }
};

template <class Any> Bytes EncodeAny(Any report)
{
    Bytes out;
    std::visit(
        [&out](auto& what) {
            out.push_back(what.Code);
            std::apply([&out](const auto&... field) { (Put(out, field), ...); }, what.GetFields());
        },
        report);
    return out;
}

/// Reads the alternative whose code stands first, if it is @p Report.
template <class Report, class Any>
bool DecodeAs(std::span<const std::uint8_t> bytes, std::optional<Any>& report)
{
    if (bytes.front() != Report::Code)
        return false;
    Report found;
    Source source{bytes.subspan(1)};
    std::apply([&source](auto&... field) { (source.Get(field), ...); }, found.GetFields());
    if (source.fits && source.rest.empty())
        report = std::move(found);
    return true;
}

template <class... Reports>
std::optional<std::variant<Reports...>> DecodeAny(std::span<const std::uint8_t> bytes,
                                                  const std::variant<Reports...>*)
{
    std::optional<std::variant<Reports...>> report;
    if (!bytes.empty())
        static_cast<void>((DecodeAs<Reports>(bytes, report) || ...));
    return report;
}

} // namespace

Bytes Encode(const Input& input)
{
    return EncodeAny(input);
}

Bytes Encode(const Output& output)
{
    return EncodeAny(output);
}

std::optional<Input> DecodeInput(std::span<const std::uint8_t> bytes)
{
    return DecodeAny(bytes, static_cast<const Input*>(nullptr));
}

std::optional<Output> DecodeOutput(std::span<const std::uint8_t> bytes)
{
    return DecodeAny(bytes, static_cast<const Output*>(nullptr));
}

} // namespace Standalone::Report
