// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace TestSupport
{

/// What this program's own factory operation does on each call, with the key as it comes in;
/// returns the key to give, 0 for the platform's own. The operation stands before the platform's
/// and does what that does.
std::function<unsigned long(unsigned long)>& OnCreate();

} // namespace TestSupport
