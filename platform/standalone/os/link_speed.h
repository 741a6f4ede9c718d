// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace Standalone
{

/// Speed of an adapter's link in bits per second, as its driver tells it; 0 when it does not know.
std::uint64_t ReadLinkSpeed(const std::string& adapter);

} // namespace Standalone
