// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "os/netlink_link.h"

namespace Standalone
{

/// Listens to the kernel: to what it tells of links, and to what it tells of settings that somebody
/// made, which is not told among the former.
class NetlinkNews final : public AdapterNews
{
public:
    /// Null when the kernel does not let itself be listened to; settings it may keep to itself.
    static std::unique_ptr<NetlinkNews> Make();
    ~NetlinkNews() override;
    NetlinkNews(const NetlinkNews&) = delete;
    NetlinkNews& operator=(const NetlinkNews&) = delete;

    int GetDescriptor() const override { return m_poll; }
    std::vector<AdapterEvent> Take() override;

private:
    NetlinkNews();
    bool ListenToLinks();
    void ListenToSettings();
    bool Watch(nl_sock* socket) const;
    void Keep(std::optional<AdapterEvent> event);
    static int TakeLinkMessage(nl_msg* message, void* self);
    static int TakeSettingsMessage(nl_msg* message, void* self);

    const int m_poll; // readable when one of the sockets is
    NetlinkSocket m_links;
    NetlinkSocket m_settings;
    int m_settingsFamily = 0;
    std::vector<AdapterEvent> m_events; // being taken
    bool m_hasLost = false;
};

} // namespace Standalone
