// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "standalone/log_sink.h"

namespace Os::Log
{

/// The sink in force, held for the caller as long as it writes.
std::shared_ptr<Standalone::LogSink> GetLogSink();

} // namespace Os::Log
