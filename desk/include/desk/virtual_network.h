// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "standalone/network_source.h"

namespace Desk
{

/// A virtual network adapter as data.
struct AdapterData {
    std::wstring name;
    bool isUp = true;
    std::uint64_t speed = 1000000000; ///< in bits per second; kept while the link is down
};

/// Network adapters made of software, in place of the kernel's. Any thread may call any operation.
/// One network at a time: a second takes the place of the first.
///
/// While it waits, which it does unless told otherwise, every verb returns when the adapter monitor
/// has acted on it and all its calls have returned. On the monitor's own thread verbs never wait.
class VirtualNetwork
{
public:
    /// Takes the kernel's place, without adapters.
    VirtualNetwork();
    /// Gives it back.
    ~VirtualNetwork();
    VirtualNetwork(const VirtualNetwork&) = delete;
    VirtualNetwork& operator=(const VirtualNetwork&) = delete;

    // Verbs. They throw std::invalid_argument where there is no such adapter, for a name that is
    // taken or that no adapter can have, and where the kernel would refuse.

    /// Plugs an adapter.
    void Add(const AdapterData& data);
    void SetUp(const std::wstring& name);
    void SetDown(const std::wstring& name);
    /// @param speed in bits per second
    void SetSpeed(const std::wstring& name, std::uint64_t speed);
    /// Pulls it out. One that is up goes down first, which the monitor is told on its own.
    void Remove(const std::wstring& name);
    /// Refused while the adapter is up, as kernels before 6.2 do.
    void Rename(const std::wstring& name, const std::wstring& newName);
    /// Takes the link down and up again, or the other way round, @p count times.
    void Flap(const std::wstring& name, unsigned count);
    /// The monitor is told that news were lost, and not told of what is done @p meanwhile.
    void Overrun(const std::function<void()>& meanwhile = {});

    bool Has(const std::wstring& name) const;
    std::vector<AdapterData> GetAdapters() const;

    void SetWaiting(bool waiting);
    /// Waits until the monitor has acted on every verb so far.
    void Flush() const;

    struct Private;

private:
    void WaitIfWaiting() const;

    const std::shared_ptr<Private> m_private;
};

} // namespace Desk
