// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace VirtualDesk
{

/// Gives the application a light or a dark palette in place of the system's, tool tips included.
///
/// @return false for a name that is neither "light" nor "dark"
bool UsePalette(const QString& name);

/// Gives the application the style of a name, or the system's for an empty one.
void UseStyle(const QString& name);

} // namespace VirtualDesk
