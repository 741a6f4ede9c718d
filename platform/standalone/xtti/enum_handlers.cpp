// SPDX-License-Identifier: MIT
#include "xtti/enum_handlers.h"

#include <array>
#include <cstdint>
#include <cstring>

#include "kel/text_base.h"

namespace xtti
{

namespace
{

constexpr unsigned EnumSize = 4;
/// Longest text form that is read; display names are far shorter.
constexpr std::size_t TextLimit = 256;

std::int32_t Get(const void* value)
{
    std::int32_t number = 0;
    std::memcpy(&number, value, sizeof number);
    return number;
}

void Set(void* value, std::int32_t number)
{
    std::memcpy(value, &number, sizeof number);
}

std::string Narrow(const wchar_t* name)
{
    kel::text<char, TextLimit> text;
    text << name;
    return std::string(text.view());
}

} // namespace

void save_enum(const type_reg&, const void* value, kel::ostream& out)
{
    const auto number = static_cast<std::uint32_t>(Get(value));
    const std::array<unsigned char, EnumSize> bytes{
        static_cast<unsigned char>(number >> 24), static_cast<unsigned char>(number >> 16),
        static_cast<unsigned char>(number >> 8), static_cast<unsigned char>(number)};
    out.write(bytes.data(), EnumSize);
}

bool load_enum(const type_reg& type, void* value, kel::istream& in)
{
    std::array<unsigned char, EnumSize> bytes{};
    if (in.read(bytes.data(), EnumSize) != EnumSize)
        return false;
    std::uint32_t number = 0;
    for (const unsigned char byte : bytes)
        number = number << 8 | byte;
    const auto loaded = static_cast<std::int32_t>(number);
    if (loaded < type.descriptor.lowest || loaded > type.descriptor.highest)
        return false;
    Set(value, loaded);
    return true;
}

void save_enum_text(const type_reg& type, const void* value, kel::ostream& out)
{
    kel::text<char, TextLimit> text;
    text << type.to_text(type, value) << '\n';
    out.write(text.data(), static_cast<unsigned>(text.length()));
}

bool load_enum_text(const type_reg& type, void* value, kel::istream& in)
{
    std::string text;
    for (char next = 0; in.read(&next, 1) == 1 && next != '\n';) {
        text.push_back(next);
        if (text.size() > TextLimit)
            return false;
    }
    const enum_desc& descriptor = type.descriptor;
    for (int i = 0; i < descriptor.name_count; ++i)
        if (text == Narrow(descriptor.names[i]))
            return type.from_text(type, value, descriptor.names[i]);
    return false;
}

void enum_pctor(const type_reg& type, void* where)
{
    Set(where, type.descriptor.lowest);
}

void POD_pdtor(const type_reg&, void*) {}

void* enum_ctor(const type_reg& type)
{
    void* const object = ::operator new(type.size);
    type.pctor(type, object);
    return object;
}

void POD_dtor(const type_reg&, void* object)
{
    ::operator delete(object);
}

void* POD_cpyctor(const type_reg& type, const void* from)
{
    void* const object = ::operator new(type.size);
    std::memcpy(object, from, type.size);
    return object;
}

void POD_ass(const type_reg& type, void* to, const void* from)
{
    std::memmove(to, from, type.size);
}

void POD_pcpyctor(const type_reg& type, void* where, const void* from)
{
    std::memcpy(where, from, type.size);
}

int compare_enum(const type_reg&, const void* left, const void* right)
{
    const std::int32_t a = Get(left);
    const std::int32_t b = Get(right);
    return a < b ? -1 : a > b ? 1 : 0;
}

std::wstring enum_to_text(const type_reg& type, const void* value)
{
    const enum_desc& descriptor = type.descriptor;
    const std::int32_t number = Get(value);
    if (number < descriptor.first_named || number > descriptor.last_named)
        return {};
    return descriptor.names[number - descriptor.first_named];
}

bool enum_from_text(const type_reg& type, void* value, const std::wstring& text)
{
    const enum_desc& descriptor = type.descriptor;
    for (int i = 0; i < descriptor.name_count; ++i) {
        if (text == descriptor.names[i]) {
            Set(value, descriptor.first_named + i);
            return true;
        }
    }
    return false;
}

} // namespace xtti
