// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace Standalone
{

/// Writes to standard error what it takes without waiting, and cuts that off @p text. What can
/// never be written, for example because nobody has the other end open, is dropped.
/// @return false when something is left: whoever reads standard error does not keep up
bool WriteToStandardError(std::string_view& text);

/// Waits until standard error may take more, but only for a moment, so that the caller can look
/// whether it still wants to.
void WaitForStandardError();

} // namespace Standalone
