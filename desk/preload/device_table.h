// SPDX-License-Identifier: MIT
#pragma once

// The devices that the preloaded library knows, and how its wrappers find the next function of a
// name.

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <climits>
#include <cstddef>

#include "preload/device_faults.h"

#define DESK_EXPORT __attribute__((visibility("default")))

namespace Preload
{

constexpr int DeviceCount = 256;
constexpr int DescriptorCount = 65536;
constexpr std::size_t PathLength = PATH_MAX;
constexpr int RefusedMapCount = 16;

struct RefusedMap {
    unsigned long page;
    int error; // 0: no entry
};

// In the order that takes the least room: there are many, and each is long.
struct Device {
    long fastest;    // speed of its clock; 0 for no limit
    long bufferRoom; // bytes that a stalled line's buffer takes still; -1 while the line goes
    long bufferedCount;
    DeskDeviceUse use; // a device that is not held and has no descriptor open is free
    DeskDeviceFaults faults;
    RefusedMap refusedMaps[RefusedMapCount];
    unsigned long pages[DeskPageLimit];
    int pageCount;       // pages that have memory; -1 where all have
    struct termios line; // settings, as set last
    bool held;           // its handle is in use
    bool named;          // its path opens it
    bool isSerial;       // has line settings
    char path[PathLength];
    char buffered[DeskLineBuffer];
};

inline pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
inline Device g_devices[DeviceCount];                  // guarded by g_lock
inline std::atomic<short> g_deviceOf[DescriptorCount]; // device number + 1, 0 for none
inline std::atomic<bool> g_inUse{false};               // any device was ever added
inline char g_root[PathLength];                        // guarded by g_lock; empty hides nothing

// Held while a virtual device is opened or closed: the test bed's library would otherwise take a
// number that one thread gives back and another gets at once for the same descriptor.
inline pthread_mutex_t g_openLock = PTHREAD_MUTEX_INITIALIZER;

class Hold
{
public:
    explicit Hold(pthread_mutex_t& lock = g_lock) : m_lock(lock) { pthread_mutex_lock(&m_lock); }
    ~Hold() { pthread_mutex_unlock(&m_lock); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

private:
    pthread_mutex_t& m_lock;
};

template <class Function> Function* FindNext(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// The virtual device that a descriptor is open for, or -1.
inline int GetDevice(int descriptor)
{
    if (descriptor < 0 || descriptor >= DescriptorCount)
        return -1;
    return g_deviceOf[descriptor].load(std::memory_order_acquire) - 1;
}

} // namespace Preload
