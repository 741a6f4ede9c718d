// SPDX-License-Identifier: MIT
#include "watch/network_watch.h"

#include <gmock/gmock.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <mutex>

#include "standalone/network_source.h"
#include "standalone/platform_settings.h"

namespace
{

using Os::NetworkAdapter;

/// Reports no change.
class NoNews : public Standalone::AdapterNews
{
public:
    NoNews() : m_descriptor(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}
    ~NoNews() override { close(m_descriptor); }
    int GetDescriptor() const override { return m_descriptor; }
    std::vector<Standalone::AdapterEvent> Take() override { return {}; }

private:
    const int m_descriptor;
};

/// An adapter whose link goes down as soon as it has been read once, before anybody watches it.
class HastySource : public Standalone::NetworkSource
{
public:
    std::optional<std::vector<Standalone::AdapterLink>> Enumerate() override
    {
        const std::lock_guard hold(m_mutex);
        return std::vector{MakeLink(m_wasRead)};
    }
    Standalone::AdapterFacts Read(const std::wstring&) override
    {
        const std::lock_guard hold(m_mutex);
        return {MakeLink(std::exchange(m_wasRead, true)), {}};
    }
    std::unique_ptr<Standalone::AdapterNews> Subscribe() override
    {
        return std::make_unique<NoNews>();
    }

private:
    static Standalone::AdapterLink MakeLink(bool isDown)
    {
        return {1, L"eth0", isDown ? NetworkAdapter::State_Down : NetworkAdapter::State_Up, {}};
    }

    std::mutex m_mutex;
    bool m_wasRead = false; // guarded by m_mutex
};

} // namespace

TEST(NetworkWatch, ReportsALinkThatChangesBeforeItIsWatched)
{
    Standalone::PlatformSettings settings;
    settings.productType = 7;
    settings.consoleNetwork = {L"eth0"};
    Standalone::ConfigurePlatform(settings);
    Standalone::SetNetworkSource(std::make_shared<HastySource>());
    std::mutex mutex;
    std::vector<std::string> texts;
    {
        Tools::NetworkWatch watch([&](const Tools::MonitorEvent& event) {
            const std::lock_guard hold(mutex);
            texts.push_back(event.text);
        });
        watch.Start();
        Standalone::FlushNetworkMonitor();
        watch.Stop();
    }
    Standalone::SetNetworkSource(nullptr);
    const std::lock_guard hold(mutex);
    ASSERT_FALSE(texts.empty());
    EXPECT_EQ(texts.back(), "eth0 down");
}
