// SPDX-License-Identifier: MIT
//
// Maps of /dev/mem: some fail, and most addresses have nothing behind them.

#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "preload/device_table.h"

using namespace Preload;

namespace
{

constexpr std::size_t PageSize = 4096;
constexpr unsigned long EveryPage = ~0UL;
/// Of a device that has memory at some pages only.
constexpr std::size_t LongestMap = std::size_t{1} << 20U;

/// The errno value with which a map is refused, or 0.
int GetMapError(int device, std::size_t length, unsigned long page)
{
    const Hold hold;
    for (const RefusedMap& refused : g_devices[device].refusedMaps)
        if (refused.error != 0 && (refused.page == page || refused.page == EveryPage))
            return refused.error;
    return g_devices[device].pageCount >= 0 && length > LongestMap ? EPERM : 0;
}

/// Whether a device has memory at a page. The caller holds the lock.
bool HasPage(const Device& device, unsigned long page)
{
    const unsigned long* const end = device.pages + device.pageCount;
    return device.pageCount < 0 || std::find(device.pages, end, page) != end;
}

/// Puts nothing in place of those pages of a map where the device has no memory.
template <class Map, class Offset>
void PutNothing(int device, char* map, std::size_t length, Offset offset, Map next)
{
    const Hold hold;
    for (std::size_t at = 0; at < length; at += PageSize) {
        if (HasPage(g_devices[device], static_cast<unsigned long>(offset) + at))
            continue;
        void* const page = next(map + at, PageSize, PROT_READ | PROT_WRITE,
                                MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, Offset{0});
        if (page != MAP_FAILED)
            std::memset(page, 0xFF, PageSize);
    }
}

} // namespace

extern "C" {

DESK_EXPORT void desk_refuse_map(int handle, unsigned long page, int error)
{
    const Hold hold;
    RefusedMap* free = nullptr;
    for (RefusedMap& refused : g_devices[handle].refusedMaps) {
        if (refused.error != 0 && refused.page == page) {
            refused.error = error;
            return;
        }
        if (refused.error == 0 && !free)
            free = &refused;
    }
    if (free)
        *free = {page, error};
}

DESK_EXPORT void desk_set_pages(int handle, const unsigned long* pages, int count)
{
    const Hold hold;
    Device& device = g_devices[handle];
    device.pageCount = std::min(count, DeskPageLimit);
    std::copy_n(pages, device.pageCount, device.pages);
}

#define DESK_WRAP_MAP(name, offset_type)                                                           \
    DESK_EXPORT void* name(void* address, size_t length, int protection, int flags,                \
                           int descriptor, offset_type offset)                                     \
    {                                                                                              \
        static auto* const next =                                                                  \
            FindNext<void*(void*, size_t, int, int, int, offset_type)>(#name);                     \
        const int device = GetDevice(descriptor);                                                  \
        if (device != -1) {                                                                        \
            const int error = GetMapError(device, length, static_cast<unsigned long>(offset));     \
            if (error != 0) {                                                                      \
                errno = error;                                                                     \
                return MAP_FAILED;                                                                 \
            }                                                                                      \
        }                                                                                          \
        void* const map = next(address, length, protection, flags, descriptor, offset);            \
        if (device != -1 && map != MAP_FAILED)                                                     \
            PutNothing(device, static_cast<char*>(map), length, offset, next);                     \
        return map;                                                                                \
    }

DESK_WRAP_MAP(mmap, off_t)
DESK_WRAP_MAP(mmap64, off64_t)
}
