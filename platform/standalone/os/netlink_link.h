// SPDX-License-Identifier: MIT
#pragma once

#include <netlink/route/link.h>
#include <netlink/socket.h>

#include <memory>

#include "standalone/network_source.h"

namespace Standalone
{

struct NetlinkDeleter {
    void operator()(nl_sock* socket) const { nl_socket_free(socket); }
    void operator()(rtnl_link* link) const { rtnl_link_put(link); }
    void operator()(nl_cache* cache) const { nl_cache_free(cache); }
};
typedef std::unique_ptr<nl_sock, NetlinkDeleter> NetlinkSocket;
typedef std::unique_ptr<rtnl_link, NetlinkDeleter> NetlinkLink;
typedef std::unique_ptr<nl_cache, NetlinkDeleter> NetlinkCache;

AdapterLink ToAdapterLink(rtnl_link* link);

/// Writes a line about something that failed.
/// @param error of libnl, negative
void LogNetlinkFailure(const char* what, int error);

} // namespace Standalone
