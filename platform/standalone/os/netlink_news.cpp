// SPDX-License-Identifier: MIT
#include "os/netlink_news.h"

#include <linux/ethtool_netlink.h>
#include <netlink/genl/ctrl.h>
#include <netlink/genl/genl.h>
#include <netlink/netlink.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <utility>

#include "os/netlink_messages.h"

namespace Standalone
{

namespace
{

/// What the kernel keeps for a slow listener, in bytes: some hundred messages.
constexpr int ReceiveBuffer = 1 << 18;

/// A socket for messages that nobody asked for, each of which is handed to @p take.
NetlinkSocket MakeListener(nl_recvmsg_msg_cb_t take, void* self)
{
    NetlinkSocket socket(nl_socket_alloc());
    if (!socket)
        return nullptr;
    nl_socket_disable_seq_check(socket.get());
    nl_socket_enable_msg_peek(socket.get()); // a message may be longer than the usual buffer
    nl_socket_modify_cb(socket.get(), NL_CB_VALID, NL_CB_CUSTOM, take, self);
    return socket;
}

} // namespace

NetlinkNews::NetlinkNews() : m_poll(epoll_create1(EPOLL_CLOEXEC)) {}

NetlinkNews::~NetlinkNews()
{
    if (m_poll != -1)
        close(m_poll);
}

std::unique_ptr<NetlinkNews> NetlinkNews::Make()
{
    std::unique_ptr<NetlinkNews> news(new NetlinkNews);
    if (news->m_poll == -1 || !news->ListenToLinks())
        return nullptr;
    news->ListenToSettings();
    return news;
}

bool NetlinkNews::ListenToLinks()
{
    m_links = MakeListener(&NetlinkNews::TakeLinkMessage, this);
    int error = m_links ? nl_connect(m_links.get(), NETLINK_ROUTE) : -NLE_NOMEM;
    if (error == 0)
        error = nl_socket_add_memberships(m_links.get(), RTNLGRP_LINK, RTNLGRP_NONE);
    if (error != 0) {
        LogNetlinkFailure("listen to network adapters", error);
        return false;
    }
    nl_socket_set_buffer_size(m_links.get(), ReceiveBuffer, 0);
    return Watch(m_links.get());
}

void NetlinkNews::ListenToSettings()
{
    NetlinkSocket socket = MakeListener(&NetlinkNews::TakeSettingsMessage, this);
    if (!socket || genl_connect(socket.get()) != 0)
        return;
    m_settingsFamily = genl_ctrl_resolve(socket.get(), ETHTOOL_GENL_NAME);
    const int group =
        genl_ctrl_resolve_grp(socket.get(), ETHTOOL_GENL_NAME, ETHTOOL_MCGRP_MONITOR_NAME);
    if (m_settingsFamily < 0 || group < 0 || nl_socket_add_memberships(socket.get(), group, 0) != 0)
        return;
    if (Watch(socket.get()))
        m_settings = std::move(socket);
}

bool NetlinkNews::Watch(nl_sock* socket) const
{
    nl_socket_set_nonblocking(socket);
    epoll_event event{};
    event.events = EPOLLIN;
    return epoll_ctl(m_poll, EPOLL_CTL_ADD, nl_socket_get_fd(socket), &event) == 0;
}

std::vector<AdapterEvent> NetlinkNews::Take()
{
    constexpr int Datagrams = 100; // at a time
    // Of an overrun libnl says that memory is short.
    constexpr int Overrun = -NLE_NOMEM;
    const auto takeFrom = [this](nl_sock* socket) {
        for (int i = 0; i < Datagrams; ++i) {
            const int error = nl_recvmsgs_default(socket);
            if (error == -NLE_AGAIN)
                return;
            m_hasLost = m_hasLost || error < 0;
            if (error < 0 && error != Overrun)
                return; // asked again the next time
        }
    };
    takeFrom(m_links.get());
    if (m_settings)
        takeFrom(m_settings.get());
    if (std::exchange(m_hasLost, false)) {
        // What is still there is older than what was lost, and than what is asked for anew. The
        // kernel adds nothing until all of it is taken.
        constexpr int MostDatagrams = 100000;
        for (int i = 0; i < MostDatagrams; ++i) {
            const int error = nl_recvmsgs_default(m_links.get());
            m_events.clear();
            if (error < 0 && error != Overrun)
                break;
        }
        m_hasLost = false;
        m_events.assign(1, AdapterEvent());
    }
    return std::exchange(m_events, {});
}

int NetlinkNews::TakeLinkMessage(nl_msg* message, void* self)
{
    static_cast<NetlinkNews*>(self)->Keep(ReadLinkMessage(message));
    return NL_OK;
}

int NetlinkNews::TakeSettingsMessage(nl_msg* message, void* self)
{
    auto* const news = static_cast<NetlinkNews*>(self);
    news->Keep(ReadSettingsMessage(message, news->m_settingsFamily));
    return NL_OK;
}

void NetlinkNews::Keep(std::optional<AdapterEvent> event)
{
    if (!event)
        return;
    if (event->kind == AdapterEvent::Kind::Lost)
        m_hasLost = true;
    else
        m_events.push_back(std::move(*event));
}

} // namespace Standalone
