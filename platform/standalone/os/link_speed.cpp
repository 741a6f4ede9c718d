// SPDX-License-Identifier: MIT
#include "os/link_speed.h"

#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace Standalone
{

namespace
{

constexpr std::uint64_t BitsPerMegabit = 1000000;

/// Settings with room for what follows them: three masks of link modes, each of as many words as
/// the kernel has, which must be told to it exactly.
union Request {
    ethtool_link_settings settings;
    std::array<std::uint32_t, sizeof(ethtool_link_settings) / sizeof(std::uint32_t) + 3UL * 127UL>
        room;
};

bool Ask(int socket, const std::string& adapter, Request& request)
{
    ifreq message{};
    std::copy_n(adapter.data(), std::min<std::size_t>(adapter.size(), IFNAMSIZ - 1),
                std::begin(message.ifr_name));
    message.ifr_data = reinterpret_cast<char*>(&request);
    request.settings.cmd = ETHTOOL_GLINKSETTINGS;
    return ioctl(socket, SIOCETHTOOL, &message) == 0;
}

std::uint64_t Ask(int socket, const std::string& adapter)
{
    Request request{};
    request.room.fill(0);
    // The first answer holds nothing but the number of words, negative.
    if (!Ask(socket, adapter, request) || request.settings.link_mode_masks_nwords >= 0)
        return 0;
    const auto words = static_cast<__s8>(-request.settings.link_mode_masks_nwords);
    request.room.fill(0);
    request.settings.link_mode_masks_nwords = words;
    if (!Ask(socket, adapter, request))
        return 0;
    const std::uint32_t speed = request.settings.speed;
    return speed == static_cast<std::uint32_t>(SPEED_UNKNOWN) ? 0 : speed * BitsPerMegabit;
}

} // namespace

// Asked of a socket and not of /sys, which shows the network namespace that it was mounted in.
std::uint64_t ReadLinkSpeed(const std::string& adapter)
{
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket == -1)
        return 0;
    const std::uint64_t speed = Ask(socket, adapter);
    close(socket);
    return speed;
}

} // namespace Standalone
