// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "os/adapter_callbacks.h"
#include "os/thread.h"
#include "os/wakeup.h"
#include "standalone/network_source.h"

namespace Standalone
{

/// Takes the news of a source on a thread of its own, and calls back about adapters that differ
/// from what was known of them. Any thread may call any operation.
class AdapterThread
{
public:
    /// A source, and its news from the moment on that counts.
    struct Subscription {
        std::shared_ptr<NetworkSource> source;
        std::shared_ptr<AdapterNews> news;
    };
    typedef std::vector<std::shared_ptr<AdapterThread>> Threads;

    /// @param links     as they are since the subscription
    /// @param previous  threads that are ending; this one waits for them, on its own, and begins
    AdapterThread(Subscription subscription, const std::vector<AdapterLink>& links,
                  AdapterCallbacks& callbacks, Threads previous);
    /// Waits until the thread has ended; it was told to.
    ~AdapterThread();
    AdapterThread(const AdapterThread&) = delete;
    AdapterThread& operator=(const AdapterThread&) = delete;

    /// Forgets what was read of an adapter while it was watched before.
    void Forget(const std::wstring& name);
    /// Reads of an adapter what its source does not send as news: the speed. To be called once a
    /// callback is registered, so that no change in between is missed.
    void Watch(const std::wstring& name);
    /// Goes on with another source.
    void Replace(Subscription subscription);
    /// Waits until all news of now have been acted on, or the thread is ending.
    void Flush();
    /// Has it make no further call, and end. Waits for nothing.
    void RequestStop();

    /// Whether the calling thread is one of these.
    static bool IsCurrent();

private:
    static unsigned int Main(void* self);
    void Work();
    void Pause(const AdapterNews& news, bool isQuiet);
    bool TakeNews(const std::shared_ptr<AdapterNews>& news);
    void TakeEvent(const AdapterEvent& event);
    void ListAnew();
    void Check(const AdapterLink& before, unsigned events);
    std::optional<std::uint64_t> KeepSpeed(const std::wstring& name, std::uint64_t speed);
    Subscription GetSubscription() const;

    AdapterCallbacks& m_callbacks;
    Threads m_previous; // of the thread alone
    // By index, watched or not, as the news left them: the state before a change is always known,
    // whenever a callback is registered. Of the thread alone.
    std::map<int, AdapterLink> m_links;
    bool m_mustList = false;             // of the thread alone
    std::shared_ptr<AdapterNews> m_used; // of the thread alone: whose news m_links follows

    Wakeup m_wakeup;
    std::atomic<bool> m_isStopping{false};
    mutable std::mutex m_mutex; // guards all below but the thread; never held over a call
    std::condition_variable m_changed;
    Subscription m_subscription;
    std::map<std::wstring, std::uint64_t> m_speeds; // of watched adapters, as last read
    unsigned long m_flushesWanted = 0;
    unsigned long m_flushesDone = 0;
    bool m_hasEnded = false;

    std::unique_ptr<Os::Thread> m_thread; // last: it uses all the others
};

} // namespace Standalone
