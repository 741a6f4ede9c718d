// SPDX-License-Identifier: MIT
#pragma once

#include "xtti/enum_handlers.h"
#include "xtti/type_reg.h"

/// Defines the object that registers enumeration Hardware::@p type while the library is loaded,
/// with the registry's stock operations for an enumeration.
#define HARDWARE_REGISTER_ENUM(type, descriptor)                                                   \
    static const xtti::type_reg Hardware_##type##_type_reg(                                        \
        get_type_code<Hardware::type>(), "Hardware::" #type, sizeof(Hardware::type), descriptor,   \
        xtti::save_enum, xtti::load_enum, xtti::save_enum_text, xtti::load_enum_text,              \
        xtti::enum_pctor, xtti::POD_pdtor, xtti::enum_ctor, xtti::POD_dtor, xtti::POD_cpyctor,     \
        xtti::POD_ass, xtti::POD_pcpyctor, xtti::compare_enum, xtti::enum_to_text,                 \
        xtti::enum_from_text)
