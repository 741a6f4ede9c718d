// SPDX-License-Identifier: MIT
#include "os/wakeup.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include "os/fatal.h"
#include "os/fatal_site.h"

namespace Standalone
{

namespace
{

constexpr char FatalSite[] = PLATFORM_FATAL_SITE("os/wakeup.cpp");

} // namespace

Wakeup::Wakeup() : m_descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    // Without it a thread could not be ended.
    OS_TRAP(m_descriptor == -1, FatalSite);
}

Wakeup::~Wakeup()
{
    close(m_descriptor);
}

void Wakeup::Set() const
{
    eventfd_write(m_descriptor, 1);
}

void Wakeup::Clear() const
{
    eventfd_t count = 0;
    eventfd_read(m_descriptor, &count);
}

} // namespace Standalone
