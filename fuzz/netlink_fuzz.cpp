// SPDX-License-Identifier: MIT

// Messages of the kernel about network adapters, compared with a reader that goes through their
// bytes by itself.
//
// The first byte of the input says what the message is about, links or settings; the message
// without its length follows.

#include <linux/ethtool_netlink.h>
#include <linux/genetlink.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <netlink/msg.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "os/netlink_messages.h"

namespace
{

using Standalone::AdapterEvent;

typedef std::span<const std::uint8_t> Span;

/// Type of the messages about settings; the kernel gives it out at run time.
constexpr int SettingsFamily = 30;

void Require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

template <class Number> Number Get(Span bytes, std::size_t place = 0)
{
    Number number = 0;
    if (bytes.size() >= place + sizeof number)
        std::memcpy(&number, bytes.data() + place, sizeof number);
    return number;
}

/// The last attribute of a type; attributes are as long as they say, and begin at multiples of
/// four.
std::optional<Span> FindAttribute(Span bytes, unsigned type)
{
    constexpr std::size_t Header = 4;
    std::optional<Span> found;
    while (bytes.size() >= Header) {
        const std::size_t length = Get<std::uint16_t>(bytes);
        if (length < Header || length > bytes.size())
            break;
        if ((Get<std::uint16_t>(bytes, 2) & NLA_TYPE_MASK) == type)
            found = bytes.subspan(Header, length - Header);
        bytes = bytes.subspan(std::min(bytes.size(), (length + 3) / 4 * 4));
    }
    return found;
}

void CheckLink(const AdapterEvent& event, Span payload)
{
    const auto index = Get<std::int32_t>(payload, 4);
    const auto flags = Get<std::uint32_t>(payload, 8);
    Require(event.link.index == index, "another index");
    const bool isUp = (flags & IFF_UP) != 0 && (flags & IFF_RUNNING) != 0;
    Require(event.link.state ==
                (isUp ? Os::NetworkAdapter::State_Up : Os::NetworkAdapter::State_Down),
            "another state");
    const auto name = FindAttribute(payload.subspan(sizeof(ifinfomsg)), IFLA_IFNAME);
    const std::string bytes = name ? std::string(name->begin(), name->end()) : std::string();
    // The kernel ends every name, and so does the check.
    const std::size_t length = bytes.find('\0');
    if (length < IFNAMSIZ)
        Require(Standalone::NarrowAdapterName(event.link.name) == bytes.substr(0, length),
                "another name");
}

void CheckSettings(const AdapterEvent& event, Span payload)
{
    const auto header = FindAttribute(payload.subspan(GENL_HDRLEN), ETHTOOL_A_LINKMODES_HEADER);
    Require(header.has_value(), "settings of no adapter");
    const auto index = FindAttribute(*header, ETHTOOL_A_HEADER_DEV_INDEX);
    Require(index.has_value(), "settings of an adapter without an index");
    Require(event.link.index == Get<std::int32_t>(*index), "settings of another adapter");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    constexpr std::size_t HeaderWithoutLength = sizeof(nlmsghdr) - sizeof(std::uint32_t);
    if (size < 1 + HeaderWithoutLength)
        return 0;
    const bool isSettings = (data[0] & 1U) != 0;
    // The library below hands on only messages that are as long as they say.
    const auto length = static_cast<std::uint32_t>(size - 1 + sizeof(std::uint32_t));
    std::vector<std::uint8_t> bytes(length);
    std::memcpy(bytes.data(), &length, sizeof length);
    std::memcpy(bytes.data() + sizeof length, data + 1, size - 1);
    nl_msg* const message = nlmsg_convert(reinterpret_cast<nlmsghdr*>(bytes.data()));
    Require(message != nullptr, "no memory");
    nlmsg_set_proto(message, isSettings ? NETLINK_GENERIC : NETLINK_ROUTE);
    const auto event = isSettings ? Standalone::ReadSettingsMessage(message, SettingsFamily)
                                  : Standalone::ReadLinkMessage(message);
    const Span payload = Span(bytes).subspan(sizeof(nlmsghdr));
    if (event && event->kind == AdapterEvent::Kind::Settings)
        CheckSettings(*event, payload);
    else if (event && event->kind != AdapterEvent::Kind::Lost)
        CheckLink(*event, payload);
    nlmsg_free(message);
    return 0;
}
