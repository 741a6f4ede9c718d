// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace Hwctl
{

/// Reads the light settings from a file and keeps them there; the user's own file for an empty
/// name. Returns the file's name. Throws CommandError when it cannot be read.
std::string UseSettings(const std::string& file);

} // namespace Hwctl
