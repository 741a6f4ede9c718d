// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "gut/message.h"

namespace Standalone
{

/// Number of this instance of the application, 0 at first. To be set before the library starts.
PLATFORM_EXPORT void SetApplicationId(int id);

/// Called for every posted message, on the thread that posts it, before it is delivered.
typedef std::function<void(const Gut::Message& message, unsigned systemObject)> PostObserver;
PLATFORM_EXPORT void SetPostObserver(PostObserver observer);

/// Delivers what is waiting, and what is posted meanwhile, on the calling thread: for programs
/// without an event loop. With one, a posted message is delivered by it, on the thread of the
/// QCoreApplication.
PLATFORM_EXPORT void DeliverMessages();

} // namespace Standalone
