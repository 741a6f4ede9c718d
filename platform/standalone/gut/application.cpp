// SPDX-License-Identifier: MIT
#include "gut/application.h"

#include <atomic>

#include "gut/post_office.h"

namespace
{

std::atomic<int> g_applicationId{0};

} // namespace

namespace Standalone
{

void SetApplicationId(int id)
{
    g_applicationId.store(id, std::memory_order_relaxed);
}

} // namespace Standalone

GutApplication* GutApplication::Get()
{
    static auto* const application = new GutApplication;
    return application;
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): an operation of the instance
int GutApplication::GetId() const
{
    return g_applicationId.load(std::memory_order_relaxed);
}

GutConsoleApplication* GutConsoleApplication::Get()
{
    static auto* const application = new GutConsoleApplication;
    return application;
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): an operation of the instance
void GutConsoleApplication::InstallMessageFilter(Gut::MessageHandler* handler)
{
    if (handler)
        Standalone::PostOffice::Get().AddFilter(*handler);
}
