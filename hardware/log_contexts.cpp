// SPDX-License-Identifier: MIT
#include "hardware/log_contexts.h"

namespace Hardware
{

Os::Log::Context& HardwareLogContext()
{
    static Os::Log::Context context("Hardware", nullptr, Os::Log::AllLevels);
    return context;
}

} // namespace Hardware
