// SPDX-License-Identifier: MIT
#pragma once

/// The fixed numeric code under which @p T is registered. Each registered type brings its own
/// specialisation; asking for any other type does not link.
template <class T> unsigned int get_type_code(const T* = nullptr);
