// SPDX-License-Identifier: MIT
#pragma once

#include <netlink/msg.h>

#include <optional>

#include "standalone/network_source.h"

namespace Standalone
{

/// What a message of the kernel about a link says: nothing when it is about something else, and
/// that an event was lost when it cannot be read.
std::optional<AdapterEvent> ReadLinkMessage(nl_msg* message);

/// The same for a message about the settings of an adapter.
/// @param family type of such messages
std::optional<AdapterEvent> ReadSettingsMessage(nl_msg* message, int family);

} // namespace Standalone
