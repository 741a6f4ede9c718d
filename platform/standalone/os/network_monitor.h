// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>

#include "os/adapter_callbacks.h"
#include "os/adapter_thread.h"

namespace Standalone
{

/// The source of adapters, who is told of them, and the thread that tells. The thread is made for
/// the first registration and ends with the last. Any thread may call any operation.
class NetworkMonitor
{
public:
    typedef Os::NetworkAdapterMonitor::Callback Callback;

    /// Never destroyed: callbacks may be destroyed while the process ends.
    static NetworkMonitor& Get();

    bool Register(const std::wstring& name, unsigned mask, Callback& callback);
    bool Unregister(const std::wstring& name, unsigned mask, const Callback& callback);
    void Unregister(const Callback& callback);

    std::shared_ptr<NetworkSource> GetSource() const;
    void SetSource(std::shared_ptr<NetworkSource> source);
    void Flush() const;

private:
    NetworkMonitor();
    bool StartThread();
    void RetireThread();

    AdapterCallbacks m_callbacks; // outlives the threads
    mutable std::mutex m_mutex;   // guards all below; held over nothing that waits for a callback
    std::shared_ptr<NetworkSource> m_source;
    std::shared_ptr<AdapterThread> m_thread; // null while nobody is registered
    AdapterThread::Threads m_retired;        // told to end
};

} // namespace Standalone
