// SPDX-License-Identifier: MIT
#include "support/network_bench.h"

#include <fcntl.h>
#include <linux/ethtool.h>
#include <linux/if_tun.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <netlink/route/link.h>
#include <netlink/route/link/bridge.h>
#include <netlink/route/link/veth.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "desk/virtual_network.h"

namespace TestSupport
{

namespace
{

using Standalone::WidenAdapterName;

class VirtualBench final : public NetworkBench
{
public:
    void Add(const std::string& name) override { m_network.Add({WidenAdapterName(name)}); }
    void SetUp(const std::string& name) override { m_network.SetUp(WidenAdapterName(name)); }
    void SetDown(const std::string& name) override { m_network.SetDown(WidenAdapterName(name)); }
    void Remove(const std::string& name) override { m_network.Remove(WidenAdapterName(name)); }
    void Rename(const std::string& name, const std::string& newName) override
    {
        m_network.Rename(WidenAdapterName(name), WidenAdapterName(newName));
    }
    void Flap(const std::string& name, unsigned count) override
    {
        m_network.SetWaiting(false);
        m_network.Flap(WidenAdapterName(name), count);
        m_network.SetWaiting(true);
    }
    const char* GetName() const override { return "virtual"; }

private:
    Desk::VirtualNetwork m_network;
};

void Must(int error, const std::string& what)
{
    if (error < 0)
        throw std::runtime_error(what + ": " + nl_geterror(error));
}

class RealBench final : public KernelBench
{
public:
    RealBench() : m_socket(nl_socket_alloc())
    {
        Must(nl_connect(m_socket, NETLINK_ROUTE), "netlink");
    }
    ~RealBench() override
    {
        for (const int tap : m_taps)
            close(tap);
        nl_socket_free(m_socket);
    }
    RealBench(const RealBench&) = delete;
    RealBench& operator=(const RealBench&) = delete;

    void Add(const std::string& name) override
    {
        Must(rtnl_link_veth_add(m_socket, name.c_str(), GetPeer(name).c_str(), getpid()), "veth");
        SetUp(GetPeer(name));
        SetUp(name);
    }
    void SetUp(const std::string& name) override { SetFlag(name, true); }
    void SetDown(const std::string& name) override { SetFlag(name, false); }
    void Remove(const std::string& name) override
    {
        rtnl_link* const link = Find(name);
        Must(rtnl_link_delete(m_socket, link), "delete " + name);
        rtnl_link_put(link);
    }
    void Rename(const std::string& name, const std::string& newName) override
    {
        Change(name, [&](rtnl_link* change) { rtnl_link_set_name(change, newName.c_str()); });
    }
    void Flap(const std::string& name, unsigned count) override
    {
        for (unsigned i = 0; i < count; ++i) {
            SetDown(name);
            SetUp(name);
        }
    }
    const char* GetName() const override { return "kernel"; }

    void Pull(const std::string& name) override { SetDown(GetPeer(name)); }
    void Plug(const std::string& name) override { SetUp(GetPeer(name)); }
    void AddBridge(const std::string& name) override
    {
        Must(rtnl_link_bridge_add(m_socket, name.c_str()), "bridge");
    }
    void Join(const std::string& name, const std::string& bridge) override
    {
        rtnl_link* const master = Find(bridge);
        rtnl_link* const link = Find(name);
        Must(rtnl_link_enslave(m_socket, master, link), "join");
        rtnl_link_put(link);
        rtnl_link_put(master);
    }
    void Leave(const std::string& name) override
    {
        rtnl_link* const link = Find(name);
        Must(rtnl_link_release(m_socket, link), "leave");
        rtnl_link_put(link);
    }
    void SetLength(const std::string& name, unsigned bytes) override
    {
        Change(name, [bytes](rtnl_link* change) { rtnl_link_set_mtu(change, bytes); });
    }
    bool AddTap(const std::string& name) override
    {
        const int tap = open("/dev/net/tun", O_RDWR | O_CLOEXEC | O_NONBLOCK);
        if (tap == -1)
            return false;
        m_taps.push_back(tap);
        ifreq request{};
        name.copy(std::begin(request.ifr_name), IFNAMSIZ - 1);
        request.ifr_flags = IFF_TAP | IFF_NO_PI;
        if (ioctl(tap, TUNSETIFF, &request) != 0)
            return false;
        SetUp(name);
        return true;
    }
    void SetTapSpeed(const std::string& name, std::uint32_t megabits) override
    {
        Settings settings{};
        settings.room.fill(0);
        Ask(name, ETHTOOL_GLINKSETTINGS, settings);
        const auto words = static_cast<__s8>(-settings.known.link_mode_masks_nwords);
        settings.room.fill(0);
        settings.known.link_mode_masks_nwords = words;
        Ask(name, ETHTOOL_GLINKSETTINGS, settings);
        settings.known.speed = megabits;
        Ask(name, ETHTOOL_SLINKSETTINGS, settings);
    }

private:
    union Settings {
        ethtool_link_settings known;
        std::array<std::uint32_t, 512> room; // masks of link modes follow
    };

    static void Ask(const std::string& name, std::uint32_t command, Settings& settings)
    {
        const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        ifreq message{};
        name.copy(std::begin(message.ifr_name), IFNAMSIZ - 1);
        message.ifr_data = reinterpret_cast<char*>(&settings);
        settings.known.cmd = command;
        const int result = ioctl(socket, SIOCETHTOOL, &message);
        close(socket);
        if (result != 0)
            throw std::runtime_error(std::string("speed: ") + std::strerror(errno));
    }
    static std::string GetPeer(const std::string& name) { return name + "-far"; }

    rtnl_link* Find(const std::string& name)
    {
        rtnl_link* link = nullptr;
        Must(rtnl_link_get_kernel(m_socket, 0, name.c_str(), &link), "find " + name);
        return link;
    }
    template <class Set> void Change(const std::string& name, Set set)
    {
        rtnl_link* const link = Find(name);
        rtnl_link* const change = rtnl_link_alloc();
        set(change);
        Must(rtnl_link_change(m_socket, link, change, 0), "change " + name);
        rtnl_link_put(change);
        rtnl_link_put(link);
    }
    void SetFlag(const std::string& name, bool isUp)
    {
        Change(name, [isUp](rtnl_link* change) {
            if (isUp)
                rtnl_link_set_flags(change, IFF_UP);
            else
                rtnl_link_unset_flags(change, IFF_UP);
        });
    }

    nl_sock* const m_socket;
    std::vector<int> m_taps;
};

} // namespace

NetworkBench::~NetworkBench() = default;

std::unique_ptr<NetworkBench> MakeVirtualBench()
{
    return std::make_unique<VirtualBench>();
}

std::unique_ptr<KernelBench> MakeKernelBench(std::string& reason)
{
    // An ordinary user may have a namespace within a user namespace of its own.
    if (unshare(CLONE_NEWNET) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) {
        reason = std::string("the kernel grants no network namespace: ") + std::strerror(errno);
        return nullptr;
    }
    try {
        auto bench = std::make_unique<RealBench>();
        bench->Add("probe");
        bench->Remove("probe");
        return bench;
    } catch (const std::exception& error) {
        reason = std::string("the kernel grants no network adapters: ") + error.what();
        return nullptr;
    }
}

std::unique_ptr<NetworkBench> MakeBench(bool ofKernel, std::string& reason)
{
    if (ofKernel)
        return MakeKernelBench(reason);
    return MakeVirtualBench();
}

} // namespace TestSupport
