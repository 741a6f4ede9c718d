// SPDX-License-Identifier: MIT
#pragma once

#include <pthread.h>

#include <string>

#include "kel/text_base.h"
#include "platform_export.h"

namespace Os
{

/// One running thread. Construction starts it; destruction waits until its entry returned.
class PLATFORM_EXPORT Thread
{
public:
    /// What the thread runs. The result has no reader here.
    typedef unsigned int (*Entry)(void* argument);

    /// Default time slice: what the system gives.
    static constexpr unsigned DefaultSlice = 0;
    /// Default stack size: what the system gives.
    static constexpr unsigned DefaultStack = 0;

    /// Starts @p entry with @p argument. A thread that cannot be created is fatal.
    ///
    /// @param name     shown by debuggers; the system keeps the first 15 characters
    /// @param priority 0 for ordinary scheduling; 1 to 99 asks for real-time round robin and is
    ///                 ignored where the process may not have it
    /// @param slice    time slice in milliseconds, DefaultSlice for the system's own; kept as a
    ///                 wish, Linux has no slice of one thread's own
    /// @param stack    stack size in bytes, DefaultStack for the system's own
    Thread(Entry entry, void* argument, const char* name, int priority, unsigned slice,
           unsigned stack);

    /// Waits for the entry to return. Fatal on the thread itself, which would wait for ever.
    ~Thread();

    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// The full name, as passed.
    const std::string& GetName() const noexcept { return m_name; }
    unsigned GetSlice() const noexcept { return m_slice; }

    /// Suspends the calling thread for @p milliseconds; a signal does not shorten it.
    static void Sleep(unsigned milliseconds);

    /// Appends the calling thread's call stack, innermost frame first, one frame a line.
    static void GetCallStack(kel::text_base<char>& out);

private:
    static void* Run(void* self);

    const Entry m_entry;
    void* const m_argument;
    const std::string m_name;
    const unsigned m_slice;
    pthread_t m_handle{};
};

} // namespace Os
