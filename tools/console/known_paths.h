// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include "desk/desk_data.h"

namespace Console
{

/// Every path that Session::GetState() can have on a desk, whether something is there yet or not:
/// an object with the state's names, null where values stand.
nlohmann::json GetKnownPaths(const Desk::DeskData& data);

/// What every adapter and every source of timecode has below its name.
nlohmann::json GetAdapterPaths();
nlohmann::json GetSourcePaths();

} // namespace Console
