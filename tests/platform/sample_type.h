// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

#include "xtti/enum_handlers.h"

namespace TestSupport
{

/// An enumeration with a negative value and with values that have no name, at both ends.
enum class Tint : std::int32_t {
    Lowest = -2,
    Unnamed = 0,
    Red = 1,
    Green = 2,
    Blue = 3,
    Highest = 260
};

inline constexpr std::array<const wchar_t*, 3> TintNames{L"Red", L"Sea Green", L"Blu\u20AC"};

inline constexpr xtti::enum_desc TintDescriptor{-2, 260, 1, 3, 3, TintNames.data()};

/// The sample enumeration under a code and a name of the test's choice.
class TintType : public xtti::type_reg
{
public:
    explicit TintType(unsigned typeCode = 60001, const char* typeName = "Sample::Tint")
        : type_reg(typeCode, typeName, sizeof(Tint), TintDescriptor, xtti::save_enum,
                   xtti::load_enum, xtti::save_enum_text, xtti::load_enum_text, xtti::enum_pctor,
                   xtti::POD_pdtor, xtti::enum_ctor, xtti::POD_dtor, xtti::POD_cpyctor,
                   xtti::POD_ass, xtti::POD_pcpyctor, xtti::compare_enum, xtti::enum_to_text,
                   xtti::enum_from_text)
    {
    }
};

} // namespace TestSupport
