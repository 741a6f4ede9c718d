// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace Tools
{

/// A port name as the library gives it, in the driver's own bytes.
std::string NarrowPortName(const std::wstring& name);
/// A port name as somebody typed it, as the library wants it: one character per byte, with sign.
std::wstring WidenPortName(const std::string& name);

} // namespace Tools
