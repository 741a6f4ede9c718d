// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "gut/message.h"
#include "platform_export.h"

namespace Standalone
{

/// Number of this instance of the application, 0 at first. To be set before the library starts.
PLATFORM_EXPORT void SetApplicationId(int id);

/// Called for every posted message, on the thread that posts it, before it is delivered.
typedef std::function<void(const Gut::Message& message, unsigned systemObject)> PostObserver;
/// Replaces the observer; empty for none. Waits for calls of the one before that other threads are
/// in: hold no lock that it takes. None is made afterwards.
PLATFORM_EXPORT void SetPostObserver(PostObserver observer);

/// For programs whose own thread is not to wait for what messages bring about: called when there is
/// a message to deliver, on the thread that posts it, and the event loop delivers no more. Whoever
/// sets it calls DeliverMessages() soon, on a thread of its own; the waker itself only wakes that
/// thread, and posts and delivers nothing. Empty, as at first: the event loop of the
/// QCoreApplication delivers. No call of the one before is under way when this returns.
PLATFORM_EXPORT void SetMessageWaker(std::function<void()> waker);

/// Delivers what is waiting, and what is posted meanwhile, on the calling thread: for programs
/// without an event loop, and for those with a waker. Otherwise a posted message is delivered by
/// the event loop, on the thread of the QCoreApplication.
PLATFORM_EXPORT void DeliverMessages();

} // namespace Standalone
