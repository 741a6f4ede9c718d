// SPDX-License-Identifier: MIT
#pragma once

namespace Os
{

/// Sleeps on the clock in force; what Thread::Sleep stands on.
void SleepOnClock(unsigned milliseconds);

} // namespace Os
