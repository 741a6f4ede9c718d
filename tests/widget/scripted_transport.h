// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <functional>

#include "standalone/widget_transport.h"

namespace TestSupport
{

/// A transport that does what a test tells it to.
class ScriptedTransport : public Standalone::WidgetTransport
{
public:
    void SetObserver(Standalone::WidgetObserver* itsObserver) override { observer = itsObserver; }
    std::vector<Standalone::WidgetDescription> Enumerate() override
    {
        const std::vector<Standalone::WidgetDescription> now = attached;
        if (afterListing)
            afterListing();
        return now;
    }
    std::unique_ptr<Standalone::WidgetConnection> Open(const std::wstring&) override
    {
        return nullptr;
    }

    std::atomic<Standalone::WidgetObserver*> observer = nullptr;
    std::vector<Standalone::WidgetDescription> attached;
    std::function<void()> afterListing; ///< what happens as the list is handed over
};

} // namespace TestSupport
