// SPDX-License-Identifier: MIT
#include "midi/allocation_counter.h"

#include <atomic>

namespace
{

std::atomic<std::size_t> g_count{0};

} // namespace

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

// Of the sanitizers' run-time library; not every compiler brings the header.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void*,
                                                                           std::size_t),
                                                         void (*freed)(const volatile void*));

namespace
{

void Count(const volatile void*, std::size_t)
{
    g_count.fetch_add(1, std::memory_order_relaxed);
}

void Ignore(const volatile void*) {}

[[maybe_unused]] const int Installed = __sanitizer_install_malloc_and_free_hooks(&Count, &Ignore);

} // namespace

#else

#include <cstdlib>

// The C library's own under the names that it keeps for those who replace them.
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);

void* malloc(std::size_t size) noexcept
{
    g_count.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept
{
    g_count.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) noexcept
{
    g_count.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(block, size);
}
}

#endif

namespace TestSupport
{

std::size_t CountAllocations()
{
    return g_count.load(std::memory_order_relaxed);
}

} // namespace TestSupport
