// SPDX-License-Identifier: MIT
#pragma once

#include "gut/message.h"

namespace Os
{

/// Sends a copy of a message on its way and returns at once. It is delivered on the application's
/// thread, in the order of posting. Any thread.
/// @param systemObject number of the system object that it is for
PLATFORM_EXPORT void Post(const Gut::Message& message, unsigned int systemObject);

} // namespace Os
