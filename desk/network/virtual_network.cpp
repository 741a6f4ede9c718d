// SPDX-License-Identifier: MIT
#include "desk/virtual_network.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace Desk
{

namespace
{

using Standalone::AdapterEvent;
using Standalone::AdapterFacts;
using Standalone::AdapterLink;

/// Events that one listener has not taken yet. Of too many the last ones are lost, as the kernel's.
class Queue
{
public:
    Queue() : m_descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~Queue() { close(m_descriptor); }
    Queue(const Queue&) = delete;
    Queue& operator=(const Queue&) = delete;

    int GetDescriptor() const { return m_descriptor; }

    void Put(const AdapterEvent& event)
    {
        constexpr std::size_t Limit = 1000;
        const std::lock_guard hold(m_mutex);
        if (m_events.size() < Limit)
            m_events.push_back(event);
        else
            m_events.back() = {AdapterEvent::Kind::Lost, {}};
        eventfd_write(m_descriptor, 1);
    }

    std::vector<AdapterEvent> Take()
    {
        const std::lock_guard hold(m_mutex);
        eventfd_t count = 0;
        eventfd_read(m_descriptor, &count);
        return std::exchange(m_events, {});
    }

private:
    const int m_descriptor;
    std::mutex m_mutex;
    std::vector<AdapterEvent> m_events; // guarded by m_mutex
};

class News final : public Standalone::AdapterNews
{
public:
    explicit News(std::shared_ptr<Queue> queue) : m_queue(std::move(queue)) {}
    int GetDescriptor() const override { return m_queue->GetDescriptor(); }
    std::vector<AdapterEvent> Take() override { return m_queue->Take(); }

private:
    const std::shared_ptr<Queue> m_queue;
};

struct Adapter {
    int index;
    AdapterData data;
};

AdapterLink ToLink(const Adapter& adapter)
{
    // Locally administered, with the index in its last two bytes.
    const auto index = static_cast<unsigned>(adapter.index);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "02:00:00:00:%02x:%02x", index >> 8U & 0xFFU,
                  index & 0xFFU);
    const std::string address = text.data();
    return {adapter.index, adapter.data.name,
            adapter.data.isUp ? Os::NetworkAdapter::State_Up : Os::NetworkAdapter::State_Down,
            std::wstring(address.begin(), address.end())};
}

[[noreturn]] void Refuse(const char* reason, const std::wstring& name)
{
    throw std::invalid_argument(reason + (" '" + Standalone::NarrowAdapterName(name) + "'"));
}

} // namespace

struct VirtualNetwork::Private final : Standalone::NetworkSource {
    std::optional<std::vector<AdapterLink>> Enumerate() override
    {
        const std::lock_guard hold(mutex);
        std::vector<AdapterLink> links;
        for (const Adapter& adapter : adapters)
            links.push_back(ToLink(adapter));
        return links;
    }

    AdapterFacts Read(const std::wstring& name) override
    {
        const std::lock_guard hold(mutex);
        AdapterFacts facts;
        const auto found = Find(name);
        if (found == adapters.end()) {
            facts.link = {0, name, Os::NetworkAdapter::State_Absent, {}};
            return facts;
        }
        facts.link = ToLink(*found);
        facts.statistics.speed = found->data.speed;
        return facts;
    }

    std::unique_ptr<Standalone::AdapterNews> Subscribe() override
    {
        const std::lock_guard hold(mutex);
        auto queue = std::make_shared<Queue>();
        std::erase_if(queues, [](const auto& each) { return each.expired(); });
        queues.push_back(queue);
        return std::make_unique<News>(std::move(queue));
    }

    // The caller holds the lock.

    std::vector<Adapter>::iterator Find(const std::wstring& name)
    {
        return std::find_if(adapters.begin(), adapters.end(),
                            [&name](const Adapter& adapter) { return adapter.data.name == name; });
    }

    Adapter& Get(const std::wstring& name)
    {
        const auto found = Find(name);
        if (found == adapters.end())
            Refuse("there is no network adapter", name);
        return *found;
    }

    void CheckNew(const std::wstring& name)
    {
        if (!Standalone::IsAdapterName(name))
            Refuse("no network adapter can have the name", name);
        if (Find(name) != adapters.end())
            Refuse("there is already a network adapter", name);
    }

    void Tell(const AdapterEvent& event)
    {
        if (isLosing)
            return;
        for (const auto& each : queues)
            if (const std::shared_ptr<Queue> queue = each.lock())
                queue->Put(event);
    }

    void Tell(AdapterEvent::Kind kind, const Adapter& adapter) { Tell({kind, ToLink(adapter)}); }

    void SetState(Adapter& adapter, bool isUp)
    {
        if (std::exchange(adapter.data.isUp, isUp) != isUp)
            Tell(AdapterEvent::Kind::Changed, adapter);
    }

    std::mutex mutex; // guards all below
    std::vector<Adapter> adapters;
    int lastIndex = 0;
    std::vector<std::weak_ptr<Queue>> queues;
    bool isLosing = false;
    std::atomic<bool> isWaiting{true}; // but this
};

VirtualNetwork::VirtualNetwork() : m_private(std::make_shared<Private>())
{
    Standalone::SetNetworkSource(m_private);
    WaitIfWaiting();
}

VirtualNetwork::~VirtualNetwork()
{
    Standalone::SetNetworkSource(nullptr);
}

void VirtualNetwork::Add(const AdapterData& data)
{
    {
        const std::lock_guard hold(m_private->mutex);
        m_private->CheckNew(data.name);
        m_private->adapters.push_back({++m_private->lastIndex, data});
        m_private->Tell(AdapterEvent::Kind::Changed, m_private->adapters.back());
    }
    WaitIfWaiting();
}

void VirtualNetwork::SetUp(const std::wstring& name)
{
    {
        const std::lock_guard hold(m_private->mutex);
        m_private->SetState(m_private->Get(name), true);
    }
    WaitIfWaiting();
}

void VirtualNetwork::SetDown(const std::wstring& name)
{
    {
        const std::lock_guard hold(m_private->mutex);
        m_private->SetState(m_private->Get(name), false);
    }
    WaitIfWaiting();
}

void VirtualNetwork::SetSpeed(const std::wstring& name, std::uint64_t speed)
{
    {
        const std::lock_guard hold(m_private->mutex);
        Adapter& adapter = m_private->Get(name);
        if (std::exchange(adapter.data.speed, speed) != speed)
            m_private->Tell(AdapterEvent::Kind::Settings, adapter);
    }
    WaitIfWaiting();
}

void VirtualNetwork::Remove(const std::wstring& name)
{
    // The kernel takes an adapter down before it lets it go.
    SetDown(name);
    {
        const std::lock_guard hold(m_private->mutex);
        const Adapter adapter = m_private->Get(name);
        m_private->adapters.erase(m_private->Find(name));
        m_private->Tell(AdapterEvent::Kind::Removed, adapter);
    }
    WaitIfWaiting();
}

void VirtualNetwork::Rename(const std::wstring& name, const std::wstring& newName)
{
    {
        const std::lock_guard hold(m_private->mutex);
        Adapter& adapter = m_private->Get(name);
        if (adapter.data.isUp)
            Refuse("the kernel renames no network adapter that is up, take it down first:", name);
        m_private->CheckNew(newName);
        adapter.data.name = newName;
        m_private->Tell(AdapterEvent::Kind::Changed, adapter);
    }
    WaitIfWaiting();
}

void VirtualNetwork::Flap(const std::wstring& name, unsigned count)
{
    for (unsigned i = 0; i < count; ++i) {
        const std::lock_guard hold(m_private->mutex);
        Adapter& adapter = m_private->Get(name);
        m_private->SetState(adapter, !adapter.data.isUp);
        m_private->SetState(adapter, !adapter.data.isUp);
    }
    WaitIfWaiting();
}

void VirtualNetwork::Overrun(const std::function<void()>& meanwhile)
{
    const auto setLosing = [this](bool isLosing) {
        const std::lock_guard hold(m_private->mutex);
        m_private->isLosing = isLosing;
    };
    setLosing(true);
    if (meanwhile)
        meanwhile();
    setLosing(false);
    {
        const std::lock_guard hold(m_private->mutex);
        m_private->Tell({AdapterEvent::Kind::Lost, {}});
    }
    WaitIfWaiting();
}

bool VirtualNetwork::Has(const std::wstring& name) const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->Find(name) != m_private->adapters.end();
}

std::vector<AdapterData> VirtualNetwork::GetAdapters() const
{
    const std::lock_guard hold(m_private->mutex);
    std::vector<AdapterData> adapters;
    for (const Adapter& adapter : m_private->adapters)
        adapters.push_back(adapter.data);
    return adapters;
}

void VirtualNetwork::SetWaiting(bool waiting)
{
    m_private->isWaiting.store(waiting, std::memory_order_relaxed);
}

void VirtualNetwork::Flush() const
{
    Standalone::FlushNetworkMonitor();
}

void VirtualNetwork::WaitIfWaiting() const
{
    if (m_private->isWaiting.load(std::memory_order_relaxed))
        Flush();
}

} // namespace Desk
