// SPDX-License-Identifier: MIT
#pragma once

#include "xtti/type_reg.h"

namespace xtti
{

// The registry's stock operations for an enumeration of four bytes.

/// Writes the value as four bytes, most significant first.
PLATFORM_EXPORT void save_enum(const type_reg&, const void* value, kel::ostream&);
/// Reads four bytes; false for a short read or a value outside lowest to highest.
PLATFORM_EXPORT bool load_enum(const type_reg&, void* value, kel::istream&);
/// Writes the display name in UTF-8 and a line feed.
PLATFORM_EXPORT void save_enum_text(const type_reg&, const void* value, kel::ostream&);
/// Reads up to a line feed or the end; false for what is no display name of the type.
PLATFORM_EXPORT bool load_enum_text(const type_reg&, void* value, kel::istream&);
/// Constructs the lowest value in place.
PLATFORM_EXPORT void enum_pctor(const type_reg&, void* where);
/// Does nothing: plain data needs no destruction.
PLATFORM_EXPORT void POD_pdtor(const type_reg&, void* where);
/// Allocates the lowest value; free it with POD_dtor.
PLATFORM_EXPORT void* enum_ctor(const type_reg&);
/// Frees what enum_ctor or POD_cpyctor made.
PLATFORM_EXPORT void POD_dtor(const type_reg&, void* object);
/// Allocates a copy; free it with POD_dtor.
PLATFORM_EXPORT void* POD_cpyctor(const type_reg&, const void* from);
/// Copies the bytes of @p from over @p to.
PLATFORM_EXPORT void POD_ass(const type_reg&, void* to, const void* from);
/// Copies the bytes of @p from to fresh memory.
PLATFORM_EXPORT void POD_pcpyctor(const type_reg&, void* where, const void* from);
/// Compares by number: -1, 0 or 1.
PLATFORM_EXPORT int compare_enum(const type_reg&, const void* left, const void* right);
/// The display name; empty for a value that has none.
PLATFORM_EXPORT std::wstring enum_to_text(const type_reg&, const void* value);
/// The value of a display name; false, and the value unchanged, for any other text.
PLATFORM_EXPORT bool enum_from_text(const type_reg&, void* value, const std::wstring& text);

} // namespace xtti
