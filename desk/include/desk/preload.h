// SPDX-License-Identifier: MIT
#pragma once

namespace Desk
{

/// True when this process can hold virtual kernel devices: both preloaded libraries are in it.
bool IsPreloaded();

/// Makes sure of that: starts the program anew with the libraries preloaded, once, and otherwise
/// returns. It keeps its name, by which ps and pkill know it. To be called first thing in main().
///
/// @return an empty text when the libraries are there, else what is missing
const char* EnsurePreloaded(char** arguments);

/// Hides the machine's own devices from this process, also while there is no test bed.
void HideMachineDevices();

} // namespace Desk
