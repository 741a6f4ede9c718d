// SPDX-License-Identifier: MIT
#pragma once

#include "os/log.h"

namespace Standalone
{

/// Of the network adapters; never destroyed.
Os::Log::Context& GetNetworkLogContext();

} // namespace Standalone
