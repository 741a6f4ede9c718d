// SPDX-License-Identifier: MIT
#pragma once

#include "os/clock.h"
#include "platform_export.h"

namespace Standalone
{

/// What Os::GetMillisecs() and Os::Thread::Sleep() stand on. Called by several threads at once.
class PLATFORM_EXPORT ClockSource
{
public:
    virtual ~ClockSource();
    virtual Os::TimeMs GetMillisecs() = 0;
    virtual void Sleep(unsigned milliseconds) = 0;
};

/// Replaces the clock; null restores the system's. The source is borrowed, so it must outlive every
/// thread that may be sleeping in it. Returns the source before, null for the system's.
PLATFORM_EXPORT ClockSource* SetClockSource(ClockSource* source);

} // namespace Standalone
