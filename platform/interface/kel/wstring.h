// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kel
{

/// Wide text as the system's interfaces pass it.
typedef std::wstring wstring;

} // namespace kel
