// SPDX-License-Identifier: MIT
#include "os/adapter_thread.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <utility>

#include "os/network_log.h"

namespace Standalone
{

namespace
{

constexpr char SourceFile[] = "os/adapter_thread.cpp";

using Os::NetworkAdapter;
using Os::NetworkAdapterMonitor;

/// Everything that may have changed without being told.
constexpr unsigned AnyEvent = NetworkAdapterMonitor::Event_Link |
                              NetworkAdapterMonitor::Event_Address |
                              NetworkAdapterMonitor::Event_Settings;

/// Pause after lost news, so that a storm can pass, and before a failed listing is tried again.
constexpr int LossPauseMilliseconds = 20;
constexpr int RetryMilliseconds = 1000;

thread_local bool IsAdapterThread = false;

NetworkAdapter ToAdapter(const AdapterLink& link, const AdapterFacts& facts)
{
    return {link.name, link.state, facts.statistics, link.hardwareAddress};
}

unsigned Compare(const NetworkAdapter& one, const NetworkAdapter& other)
{
    unsigned events = 0;
    if (one.GetState() != other.GetState())
        events |= NetworkAdapterMonitor::Event_Link;
    if (one.GetHardwareAddress() != other.GetHardwareAddress())
        events |= NetworkAdapterMonitor::Event_Address;
    if (one.GetStatistics().speed != other.GetStatistics().speed)
        events |= NetworkAdapterMonitor::Event_Settings;
    return events;
}

std::map<int, AdapterLink> ToMap(const std::vector<AdapterLink>& links)
{
    std::map<int, AdapterLink> map;
    for (const AdapterLink& link : links)
        map[link.index] = link;
    return map;
}

} // namespace

AdapterThread::AdapterThread(Subscription subscription, const std::vector<AdapterLink>& links,
                             AdapterCallbacks& callbacks, Threads previous)
    : m_callbacks(callbacks), m_previous(std::move(previous)), m_links(ToMap(links)),
      m_used(subscription.news), m_subscription(std::move(subscription))
{
    m_thread = std::make_unique<Os::Thread>(&AdapterThread::Main, this, "Network Monitor", 0,
                                            Os::Thread::DefaultSlice, Os::Thread::DefaultStack);
}

AdapterThread::~AdapterThread()
{
    RequestStop();
}

void AdapterThread::Watch(const std::wstring& name)
{
    const AdapterFacts facts = GetSubscription().source->Read(name);
    const std::lock_guard hold(m_mutex);
    m_watched.insert_or_assign(name, ToAdapter(facts.link, facts));
}

void AdapterThread::Replace(Subscription subscription)
{
    {
        const std::lock_guard hold(m_mutex);
        m_subscription = std::move(subscription);
    }
    m_wakeup.Set();
}

void AdapterThread::Flush()
{
    std::unique_lock hold(m_mutex);
    const unsigned long number = ++m_flushesWanted;
    m_wakeup.Set();
    m_changed.wait(hold, [&] { return m_flushesDone >= number || m_hasEnded; });
}

void AdapterThread::RequestStop()
{
    m_isStopping.store(true, std::memory_order_relaxed);
    m_wakeup.Set();
}

bool AdapterThread::IsCurrent()
{
    return IsAdapterThread;
}

AdapterThread::Subscription AdapterThread::GetSubscription() const
{
    const std::lock_guard hold(m_mutex);
    return m_subscription;
}

unsigned int AdapterThread::Main(void* self)
{
    IsAdapterThread = true;
    static_cast<AdapterThread*>(self)->Work();
    return 0;
}

void AdapterThread::Work()
{
    m_previous.clear(); // one thread calls at a time
    while (!m_isStopping.load(std::memory_order_relaxed)) {
        m_wakeup.Clear();
        std::shared_ptr<AdapterNews> news;
        unsigned long flush = 0;
        {
            const std::lock_guard hold(m_mutex);
            news = m_subscription.news;
            flush = m_flushesWanted;
        }
        m_mustList = m_mustList || news != m_used;
        m_used = news;
        const bool isQuiet = TakeNews(news);
        if (isQuiet) {
            const std::lock_guard hold(m_mutex);
            m_flushesDone = flush;
            m_changed.notify_all();
        }
        Pause(*news, isQuiet);
    }
    const std::lock_guard hold(m_mutex);
    m_hasEnded = true;
    m_changed.notify_all();
}

/// Waits for news, or to be woken; without looking at news where there were too many.
void AdapterThread::Pause(const AdapterNews& news, bool isQuiet)
{
    std::array<pollfd, 2> descriptors{
        {{m_wakeup.GetDescriptor(), POLLIN, 0}, {news.GetDescriptor(), POLLIN, 0}}};
    if (!isQuiet)
        poll(descriptors.data(), 1, LossPauseMilliseconds);
    else
        poll(descriptors.data(), descriptors.size(), m_mustList ? RetryMilliseconds : -1);
}

/// Acts on all there is. False when some were lost.
bool AdapterThread::TakeNews(const std::shared_ptr<AdapterNews>& news)
{
    bool isQuiet = true;
    for (;;) {
        const std::vector<AdapterEvent> events = news->Take();
        for (const AdapterEvent& event : events) {
            if (m_isStopping.load(std::memory_order_relaxed))
                return true;
            TakeEvent(event);
            isQuiet = isQuiet && event.kind != AdapterEvent::Kind::Lost;
        }
        if (m_mustList)
            ListAnew();
        if (events.empty() || !isQuiet)
            return isQuiet;
    }
}

void AdapterThread::TakeEvent(const AdapterEvent& event)
{
    const auto known = m_links.find(event.link.index);
    switch (event.kind) {
    case AdapterEvent::Kind::Changed: {
        const std::wstring before = known == m_links.end() ? event.link.name : known->second.name;
        m_links[event.link.index] = event.link;
        if (before != event.link.name)
            Check(before, 0);
        Check(event.link.name, 0);
        break;
    }
    case AdapterEvent::Kind::Removed:
        if (known != m_links.end()) {
            const std::wstring name = known->second.name;
            m_links.erase(known);
            Check(name, 0);
        }
        break;
    case AdapterEvent::Kind::Settings:
        if (known != m_links.end())
            Check(known->second.name, NetworkAdapterMonitor::Event_Settings);
        break;
    case AdapterEvent::Kind::Lost:
        OS_LOG(GetNetworkLogContext(), Os::Log::Warning, SourceFile,
               "News of network adapters were lost, all are looked at");
        m_mustList = true;
        break;
    }
}

/// Everything may be otherwise, and may have been in between: everyone is called.
void AdapterThread::ListAnew()
{
    const auto links = GetSubscription().source->Enumerate();
    m_mustList = !links;
    if (!links)
        return;
    m_links = ToMap(*links);
    std::vector<std::wstring> names;
    {
        const std::lock_guard hold(m_mutex);
        for (const auto& [name, adapter] : m_watched)
            names.push_back(name);
    }
    for (const std::wstring& name : names)
        Check(name, AnyEvent);
}

/// Calls back where an adapter differs from what was known of it, or @p events happened anyway.
void AdapterThread::Check(const std::wstring& name, unsigned events)
{
    if (!m_callbacks.IsWatched(name))
        return;
    AdapterLink link;
    link.name = name;
    link.state = NetworkAdapter::State_Absent;
    AdapterFacts facts;
    const auto found = std::find_if(m_links.begin(), m_links.end(), [&name](const auto& entry) {
        return entry.second.name == name;
    });
    if (found != m_links.end()) {
        // As it was told: what it is by now has news of its own, and no state may be skipped.
        link = found->second;
        facts = GetSubscription().source->Read(name);
    }
    const NetworkAdapter now = ToAdapter(link, facts);
    NetworkAdapter before;
    {
        const std::lock_guard hold(m_mutex);
        const auto watched = m_watched.find(name);
        if (watched == m_watched.end())
            return;
        before = std::exchange(watched->second, now);
    }
    events |= Compare(before, now);
    if (events != 0)
        m_callbacks.Call(now, before.GetState(), events, m_isStopping);
}

} // namespace Standalone
