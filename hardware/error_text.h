// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace Hardware
{

/// The system's text for an errno value, as strerror() gives it, from any thread.
std::string GetErrorText(int error);

} // namespace Hardware
