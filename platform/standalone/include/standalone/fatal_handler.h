// SPDX-License-Identifier: MIT
#pragma once

#include "platform_export.h"

namespace Standalone
{

/// Runs before the program aborts, with the three arguments of Os::Fatal(). When it returns, the
/// program aborts all the same.
typedef void (*FatalHandler)(const char* text, unsigned line, const char* fileAndDate);

/// Replaces the handler; null for none. Returns the handler before.
PLATFORM_EXPORT FatalHandler SetFatalHandler(FatalHandler handler);

} // namespace Standalone
