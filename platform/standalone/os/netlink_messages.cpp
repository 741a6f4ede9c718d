// SPDX-License-Identifier: MIT
#include "os/netlink_messages.h"

#include <linux/ethtool_netlink.h>
#include <net/if.h>
#include <netlink/addr.h>
#include <netlink/genl/genl.h>

#include <array>
#include <string>

#include "os/netlink_link.h"

namespace Standalone
{

namespace
{

using Os::NetworkAdapter;

/// Puts a link's object into an AdapterLink.
void ToLink(nl_object* object, void* link)
{
    *static_cast<AdapterLink*>(link) = ToAdapterLink(reinterpret_cast<rtnl_link*>(object));
}

} // namespace

AdapterLink ToAdapterLink(rtnl_link* link)
{
    // Running is what the kernel calls a link that is up, and not waiting for what lies below it or
    // for authentication. The carrier alone may come and go without any news.
    constexpr unsigned Up = IFF_UP | IFF_RUNNING;
    const char* const name = rtnl_link_get_name(link);
    AdapterLink result;
    result.index = rtnl_link_get_ifindex(link);
    result.name = WidenAdapterName(name ? name : "");
    result.state = (rtnl_link_get_flags(link) & Up) == Up ? NetworkAdapter::State_Up
                                                          : NetworkAdapter::State_Down;
    if (nl_addr* const address = rtnl_link_get_addr(link)) {
        std::array<char, 128> text{};
        const std::string digits = nl_addr2str(address, text.data(), text.size());
        if (digits != "none")
            result.hardwareAddress.assign(digits.begin(), digits.end());
    }
    return result;
}

std::optional<AdapterEvent> ReadLinkMessage(nl_msg* message)
{
    const nlmsghdr* const header = nlmsg_hdr(message);
    const bool isRemoval = header->nlmsg_type == RTM_DELLINK;
    if ((header->nlmsg_type != RTM_NEWLINK && !isRemoval) ||
        header->nlmsg_len < NLMSG_LENGTH(sizeof(ifinfomsg)))
        return std::nullopt;
    // Others are about an adapter's part in something else: one that leaves a bridge is not gone.
    if (static_cast<const ifinfomsg*>(nlmsg_data(header))->ifi_family != AF_UNSPEC)
        return std::nullopt;
    AdapterEvent event;
    event.kind = isRemoval ? AdapterEvent::Kind::Removed : AdapterEvent::Kind::Changed;
    if (nl_msg_parse(message, &ToLink, &event.link) != 0)
        return AdapterEvent{AdapterEvent::Kind::Lost, {}};
    return event;
}

std::optional<AdapterEvent> ReadSettingsMessage(nl_msg* message, int family)
{
    nlmsghdr* const header = nlmsg_hdr(message);
    if (header->nlmsg_type != family || !genlmsg_valid_hdr(header, 0))
        return std::nullopt;
    const unsigned command = genlmsg_hdr(header)->cmd;
    if (command != ETHTOOL_MSG_LINKINFO_NTF && command != ETHTOOL_MSG_LINKMODES_NTF)
        return std::nullopt;
    // Both begin with the same attribute.
    static_assert(int{ETHTOOL_A_LINKINFO_HEADER} == int{ETHTOOL_A_LINKMODES_HEADER});
    std::array<nlattr*, ETHTOOL_A_LINKMODES_HEADER + 1> parts{};
    std::array<nlattr*, ETHTOOL_A_HEADER_MAX + 1> names{};
    std::array<nla_policy, ETHTOOL_A_HEADER_MAX + 1> policy{};
    policy[ETHTOOL_A_HEADER_DEV_INDEX].type = NLA_U32; // not shorter than it is read
    if (genlmsg_parse(header, 0, parts.data(), ETHTOOL_A_LINKMODES_HEADER, nullptr) < 0 ||
        !parts[ETHTOOL_A_LINKMODES_HEADER] ||
        nla_parse_nested(names.data(), ETHTOOL_A_HEADER_MAX, parts[ETHTOOL_A_LINKMODES_HEADER],
                         policy.data()) < 0 ||
        !names[ETHTOOL_A_HEADER_DEV_INDEX])
        return std::nullopt;
    AdapterEvent event;
    event.kind = AdapterEvent::Kind::Settings;
    event.link.index = static_cast<int>(nla_get_u32(names[ETHTOOL_A_HEADER_DEV_INDEX]));
    return event;
}

} // namespace Standalone
