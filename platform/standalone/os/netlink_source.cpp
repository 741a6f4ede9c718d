// SPDX-License-Identifier: MIT
#include "os/netlink_source.h"

#include <netlink/cache.h>
#include <netlink/errno.h>

#include <string>

#include "os/link_speed.h"
#include "os/netlink_link.h"
#include "os/netlink_news.h"
#include "os/network_log.h"

namespace Standalone
{

namespace
{

constexpr char SourceFile[] = "os/netlink_source.cpp";

using Os::NetworkAdapter;

NetlinkSocket OpenSocket()
{
    NetlinkSocket socket(nl_socket_alloc());
    const int error = socket ? nl_connect(socket.get(), NETLINK_ROUTE) : -NLE_NOMEM;
    if (error == 0)
        return socket;
    LogNetlinkFailure("open a netlink socket", error);
    return nullptr;
}

} // namespace

void LogNetlinkFailure(const char* what, int error)
{
    OS_LOG(GetNetworkLogContext(), Os::Log::Error, SourceFile,
           "Failed to " << what << ": " << nl_geterror(error));
}

std::optional<std::vector<AdapterLink>> NetlinkSource::Enumerate()
{
    const NetlinkSocket socket = OpenSocket();
    if (!socket)
        return std::nullopt;
    nl_cache* links = nullptr;
    const int error = rtnl_link_alloc_cache(socket.get(), AF_UNSPEC, &links);
    if (error != 0) {
        LogNetlinkFailure("list network adapters", error);
        return std::nullopt;
    }
    const NetlinkCache cache(links);
    std::vector<AdapterLink> adapters;
    for (nl_object* object = nl_cache_get_first(links); object; object = nl_cache_get_next(object))
        adapters.push_back(ToAdapterLink(reinterpret_cast<rtnl_link*>(object)));
    return adapters;
}

AdapterFacts NetlinkSource::Read(const std::wstring& name)
{
    AdapterFacts facts;
    facts.link.name = name;
    facts.link.state = NetworkAdapter::State_Absent;
    if (!IsAdapterName(name))
        return facts;
    const NetlinkSocket socket = OpenSocket();
    if (!socket) {
        facts.link.state = NetworkAdapter::State_Unknown;
        return facts;
    }
    const std::string bytes = NarrowAdapterName(name);
    rtnl_link* found = nullptr;
    if (const int error = rtnl_link_get_kernel(socket.get(), 0, bytes.c_str(), &found)) {
        if (error != -NLE_NODEV && error != -NLE_OBJ_NOTFOUND)
            facts.link.state = NetworkAdapter::State_Unknown;
        return facts;
    }
    const NetlinkLink link(found);
    // The kernel also finds an adapter by a second name of it, by which there is no news.
    const char* const itsName = rtnl_link_get_name(found);
    if (!itsName || bytes != itsName)
        return facts;
    facts.link = ToAdapterLink(found);
    facts.statistics.speed = ReadLinkSpeed(bytes);
    facts.statistics.receivedBytes = rtnl_link_get_stat(found, RTNL_LINK_RX_BYTES);
    facts.statistics.sentBytes = rtnl_link_get_stat(found, RTNL_LINK_TX_BYTES);
    return facts;
}

std::unique_ptr<AdapterNews> NetlinkSource::Subscribe()
{
    return NetlinkNews::Make();
}

} // namespace Standalone
