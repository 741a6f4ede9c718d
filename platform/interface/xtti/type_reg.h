// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "kel/streams.h"
#include "platform_export.h"

namespace xtti
{

class type_reg;

/// What there is to know of an enumeration's values.
struct enum_desc {
    int lowest;                  ///< lowest value that may be stored
    int highest;                 ///< highest value that may be stored
    int first_named;             ///< value that names[0] belongs to
    int last_named;              ///< value that the last name belongs to
    int name_count;              ///< entries of names
    const wchar_t* const* names; ///< display names in the order of the values
};

// The operations of a registered type. Each gets the registration it acts for.
typedef void (*save_handler)(const type_reg&, const void* value, kel::ostream&);
typedef bool (*load_handler)(const type_reg&, void* value, kel::istream&);
typedef void (*save_text_handler)(const type_reg&, const void* value, kel::ostream&);
typedef bool (*load_text_handler)(const type_reg&, void* value, kel::istream&);
typedef void (*pctor_handler)(const type_reg&, void* where);
typedef void (*pdtor_handler)(const type_reg&, void* where);
typedef void* (*ctor_handler)(const type_reg&);
typedef void (*dtor_handler)(const type_reg&, void* object);
typedef void* (*cpyctor_handler)(const type_reg&, const void* from);
typedef void (*ass_handler)(const type_reg&, void* to, const void* from);
typedef void (*pcpyctor_handler)(const type_reg&, void* where, const void* from);
typedef int (*compare_handler)(const type_reg&, const void* left, const void* right);
typedef std::wstring (*to_text_handler)(const type_reg&, const void* value);
typedef bool (*from_text_handler)(const type_reg&, void* value, const std::wstring& text);

/// Registers a type for as long as the object lives: usually from library load to unload.
///
/// The first registration of a code holds; a second one with the same code is reported on the log
/// and finds no entry in the registry. The names and the descriptor's table are borrowed.
class PLATFORM_EXPORT type_reg
{
public:
    type_reg(unsigned code, const char* name, std::size_t size, const enum_desc& descriptor,
             save_handler, load_handler, save_text_handler, load_text_handler, pctor_handler,
             pdtor_handler, ctor_handler, dtor_handler, cpyctor_handler, ass_handler,
             pcpyctor_handler, compare_handler, to_text_handler, from_text_handler);
    ~type_reg();
    type_reg(const type_reg&) = delete;
    type_reg& operator=(const type_reg&) = delete;

    const unsigned code;        ///< fixed numeric type code
    const char* const name;     ///< qualified name
    const std::size_t size;     ///< bytes of one value
    const enum_desc descriptor; ///< value range and display names

    const save_handler save;           ///< writes the binary form
    const load_handler load;           ///< reads it; false leaves the value unchanged
    const save_text_handler save_text; ///< writes the text form
    const load_text_handler load_text; ///< reads it; false leaves the value unchanged
    const pctor_handler pctor;         ///< constructs in place
    const pdtor_handler pdtor;         ///< destroys in place
    const ctor_handler ctor;           ///< allocates and constructs
    const dtor_handler dtor;           ///< destroys and frees
    const cpyctor_handler cpyctor;     ///< allocates a copy
    const ass_handler ass;             ///< assigns
    const pcpyctor_handler pcpyctor;   ///< copies in place
    const compare_handler compare;     ///< negative, zero or positive
    const to_text_handler to_text;     ///< display name, empty where a value has none
    const from_text_handler from_text; ///< value of a display name; false leaves it unchanged
};

/// The registration with that code, or null. Any thread.
PLATFORM_EXPORT const type_reg* find(unsigned code);
/// The registration with that qualified name, or null. Any thread.
PLATFORM_EXPORT const type_reg* find(const char* name);
/// Every registration, in ascending order of code. Any thread.
PLATFORM_EXPORT std::vector<const type_reg*> registered_types();

} // namespace xtti
