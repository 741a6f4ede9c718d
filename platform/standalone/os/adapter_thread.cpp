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

unsigned Compare(const AdapterLink& one, const AdapterLink& other)
{
    unsigned events = 0;
    if (one.state != other.state)
        events |= NetworkAdapterMonitor::Event_Link;
    if (one.hardwareAddress != other.hardwareAddress)
        events |= NetworkAdapterMonitor::Event_Address;
    return events;
}

typedef std::map<int, AdapterLink> Links;

Links ToMap(const std::vector<AdapterLink>& links)
{
    Links map;
    for (const AdapterLink& link : links)
        map[link.index] = link;
    return map;
}

/// The adapter of that name; an absent one where there is none.
AdapterLink Find(const Links& links, const std::wstring& name)
{
    const auto found = std::find_if(links.begin(), links.end(), [&name](const auto& entry) {
        return entry.second.name == name;
    });
    if (found != links.end())
        return found->second;
    AdapterLink absent;
    absent.name = name;
    absent.state = NetworkAdapter::State_Absent;
    return absent;
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

void AdapterThread::Forget(const std::wstring& name)
{
    const std::lock_guard hold(m_mutex);
    m_speeds.erase(name);
}

void AdapterThread::Watch(const std::wstring& name)
{
    const std::uint64_t speed = GetSubscription().source->Read(name).statistics.speed;
    const std::lock_guard hold(m_mutex);
    // What the thread read meanwhile, because of news, is younger.
    m_speeds.try_emplace(name, speed);
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
        const AdapterLink before = Find(m_links, event.link.name);
        const AdapterLink former = known == m_links.end() ? before : known->second;
        m_links[event.link.index] = event.link;
        if (former.name != event.link.name)
            Check(former, 0);
        Check(before, 0);
        break;
    }
    case AdapterEvent::Kind::Removed:
        if (known != m_links.end()) {
            const AdapterLink before = known->second;
            m_links.erase(known);
            Check(before, 0);
        }
        break;
    case AdapterEvent::Kind::Settings:
        if (known != m_links.end())
            Check(known->second, NetworkAdapterMonitor::Event_Settings);
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
    const Links before = std::exchange(m_links, ToMap(*links));
    for (const std::wstring& name : m_callbacks.GetNames())
        Check(Find(before, name), AnyEvent);
}

/// Calls back where the adapter of that name differs from what it was, or @p events happened
/// anyway.
void AdapterThread::Check(const AdapterLink& before, unsigned events)
{
    const std::wstring& name = before.name;
    if (!m_callbacks.IsWatched(name))
        return;
    // As the news have it: what it is by now has news of its own, and no state may be skipped.
    const AdapterLink now = Find(m_links, name);
    AdapterFacts facts;
    if (now.state != NetworkAdapter::State_Absent)
        facts = GetSubscription().source->Read(name);
    events |= Compare(before, now);
    const std::uint64_t speed = facts.statistics.speed;
    const auto speedBefore = KeepSpeed(name, speed);
    // Not known while a registration is reading it: then the speed may be what has changed.
    if (speedBefore ? *speedBefore != speed : events == 0)
        events |= NetworkAdapterMonitor::Event_Settings;
    if (events != 0)
        m_callbacks.Call(ToAdapter(now, facts), before.state, events, m_isStopping);
}

/// @return the speed before, if it was known
std::optional<std::uint64_t> AdapterThread::KeepSpeed(const std::wstring& name, std::uint64_t speed)
{
    const std::lock_guard hold(m_mutex);
    const auto [known, isNew] = m_speeds.try_emplace(name, speed);
    if (isNew)
        return std::nullopt;
    return std::exchange(known->second, speed);
}

} // namespace Standalone
