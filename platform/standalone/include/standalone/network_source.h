// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "os/network_adapter.h"
#include "platform_export.h"

namespace Standalone
{

/// A network adapter, as a source of them tells of it.
struct AdapterLink {
    int index = 0;     ///< names it for as long as it exists, whatever it is called
    std::wstring name; ///< of at most 15 bytes
    Os::NetworkAdapter::State state = Os::NetworkAdapter::State_Unknown;
    std::wstring hardwareAddress;

    bool operator==(const AdapterLink&) const = default;
};

/// The same with what has to be asked for.
struct AdapterFacts {
    AdapterLink link;
    Os::NetworkAdapter::Statistics statistics;
};

/// Something that happened to an adapter.
struct AdapterEvent {
    enum class Kind {
        Changed,  ///< there is an adapter like @p link, perhaps a new one or by a new name
        Removed,  ///< the adapter of that index is gone
        Settings, ///< a setting of the adapter of that index was made, such as its speed
        Lost      ///< events were dropped: everything may be otherwise
    };
    Kind kind = Kind::Lost;
    AdapterLink link;
};

/// Events from the moment on when it was made. One thread uses it.
class PLATFORM_EXPORT AdapterNews
{
public:
    virtual ~AdapterNews();
    /// A descriptor that is readable while there is something to take.
    virtual int GetDescriptor() const = 0;
    /// Takes some of what is there, the oldest first, without waiting; empty when there is nothing.
    virtual std::vector<AdapterEvent> Take() = 0;
};

/// What the monitor learns of adapters from: the kernel, or adapters made of software. Any thread
/// may call any operation. Each returns in bounded time, and calls nothing of the monitor.
class PLATFORM_EXPORT NetworkSource
{
public:
    virtual ~NetworkSource();
    /// All adapters of now; none of a value when it could not be found out.
    virtual std::optional<std::vector<AdapterLink>> Enumerate() = 0;
    /// The adapter of that name. Without one it is absent, with no index.
    virtual AdapterFacts Read(const std::wstring& name) = 0;
    /// Null when it does not let itself be watched.
    virtual std::unique_ptr<AdapterNews> Subscribe() = 0;
};

/// Puts a source in place of the one before; null for the kernel, as at the start. Whoever is
/// registered with the monitor is told that everything may be otherwise.
PLATFORM_EXPORT void SetNetworkSource(std::shared_ptr<NetworkSource> source);

/// Waits until the monitor has acted on all that its source had told before, calls included. On the
/// monitor's own thread, and while nobody is registered, it returns at once.
PLATFORM_EXPORT void FlushNetworkMonitor();

/// Names as the system has them, which are bytes, usually UTF-8, and as the platform has them.
/// Bytes that are no UTF-8 become characters of their value with sign, so that every name comes
/// back as it was.
PLATFORM_EXPORT std::wstring WidenAdapterName(const std::string& name);
PLATFORM_EXPORT std::string NarrowAdapterName(const std::wstring& name);
/// Whether the system could give an adapter that name.
PLATFORM_EXPORT bool IsAdapterName(const std::wstring& name);

} // namespace Standalone
