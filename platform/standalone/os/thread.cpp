// SPDX-License-Identifier: MIT
#include "os/thread.h"

#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "os/clock_implementation.h"
#include "os/fatal.h"
#include "os/fatal_site.h"

namespace Os
{

namespace
{

constexpr char FatalSite[] = PLATFORM_FATAL_SITE("os/thread.cpp");

/// The kernel's limit for the name of a thread, without the terminating zero.
constexpr std::size_t SystemNameLength = 15;

void SetStackSize(pthread_attr_t& attributes, unsigned stack)
{
    if (stack == Thread::DefaultStack)
        return;
    const auto smallest = static_cast<std::size_t>(sysconf(_SC_THREAD_STACK_MIN));
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t wanted = std::max<std::size_t>(stack, smallest);
    OS_VERIFY(pthread_attr_setstacksize(&attributes, (wanted + page - 1) / page * page) == 0,
              FatalSite);
}

void SetPriority(pthread_t thread, int priority)
{
    if (priority <= 0)
        return;
    sched_param parameters{};
    parameters.sched_priority =
        std::clamp(priority, sched_get_priority_min(SCHED_RR), sched_get_priority_max(SCHED_RR));
    // Refused to a process without the right to real-time scheduling: then it stays ordinary.
    pthread_setschedparam(thread, SCHED_RR, &parameters);
}

} // namespace

Thread::Thread(Entry entry, void* argument, const char* name, int priority, unsigned slice,
               unsigned stack)
    : m_entry(entry), m_argument(argument), m_name(name), m_slice(slice)
{
    pthread_attr_t attributes;
    OS_VERIFY(pthread_attr_init(&attributes) == 0, FatalSite);
    SetStackSize(attributes, stack);
    OS_VERIFY(pthread_create(&m_handle, &attributes, &Thread::Run, this) == 0, FatalSite);
    pthread_attr_destroy(&attributes);
    SetPriority(m_handle, priority);
}

Thread::~Thread()
{
    OS_TRAP(pthread_equal(m_handle, pthread_self()), FatalSite);
    OS_VERIFY(pthread_join(m_handle, nullptr) == 0, FatalSite);
}

void* Thread::Run(void* self)
{
    // Only members that are set before the thread is created are read here.
    const Thread& thread = *static_cast<const Thread*>(self);
    pthread_setname_np(pthread_self(), thread.m_name.substr(0, SystemNameLength).c_str());
    thread.m_entry(thread.m_argument);
    return nullptr;
}

void Thread::Sleep(unsigned milliseconds)
{
    SleepOnClock(milliseconds);
}

} // namespace Os
