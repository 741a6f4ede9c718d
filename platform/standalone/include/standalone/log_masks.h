// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "platform_export.h"

namespace Standalone
{

/// A log context as a tool shows it.
struct LogContextInfo {
    std::string path;       ///< such as "Hardware/Midi"
    unsigned mask;          ///< own mask
    unsigned effectiveMask; ///< what passes, ancestors taken into account
};

/// Sets the mask of the context at @p path, now and whenever a context of that path is made later.
PLATFORM_EXPORT void SetLogMask(const std::string& path, unsigned mask);

/// Forgets the masks that are kept for contexts not made yet; living contexts stay as they are.
PLATFORM_EXPORT void ForgetLogMasks();

/// Applies a list such as "Hardware/Midi=31,CdPlayer=0x1f" by SetLogMask().
///
/// Nothing is applied unless the whole list is right. Returns an empty text, or what is wrong.
PLATFORM_EXPORT std::string ApplyLogMasks(const std::string& list);

/// Every living context, parents before children.
PLATFORM_EXPORT std::vector<LogContextInfo> ListLogContexts();

} // namespace Standalone
