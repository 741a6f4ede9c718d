// SPDX-License-Identifier: MIT
#include "support/system_calls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/select.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <sstream>

namespace TestSupport
{

namespace
{

thread_local SystemCalls* t_watch = nullptr;

/// The function of that name that stands behind this program's. Looked up once; without a guard as
/// a static variable has one, since a sanitizer's runtime calls from its own start.
template <class Function> class Next
{
public:
    explicit constexpr Next(const char* name) : m_name(name) {}

    template <class... Arguments> auto operator()(Arguments... arguments)
    {
        void* function = m_function.load(std::memory_order_relaxed);
        if (!function) {
            function = dlsym(RTLD_NEXT, m_name);
            m_function.store(function, std::memory_order_relaxed);
        }
        return reinterpret_cast<Function*>(function)(arguments...);
    }

private:
    const char* const m_name;
    std::atomic<void*> m_function{nullptr};
};

std::string ToHex(unsigned long number)
{
    std::ostringstream text;
    text << std::hex << number;
    return text.str();
}

/// Whether a call on @p descriptor may go on.
bool MayCall(int descriptor, const std::string& call)
{
    return !t_watch || !t_watch->IsWatched(descriptor) || t_watch->Note(call);
}

} // namespace

SystemCalls::SystemCalls(std::string prefix) : m_prefix(std::move(prefix))
{
    t_watch = this;
}

SystemCalls::~SystemCalls()
{
    t_watch = nullptr;
}

int SystemCalls::Count(const std::string& name) const
{
    return static_cast<int>(
        std::count_if(m_calls.begin(), m_calls.end(),
                      [&name](const std::string& call) { return call.starts_with(name); }));
}

bool SystemCalls::IsWatched(int descriptor) const
{
    return std::find(m_descriptors.begin(), m_descriptors.end(), descriptor) != m_descriptors.end();
}

bool SystemCalls::Note(const std::string& call)
{
    m_calls.push_back(call);
    for (const auto& [name, action] : m_actions)
        if (call.starts_with(name))
            action();
    for (auto& [name, errors] : m_failures) {
        if (!call.starts_with(name) || errors.empty())
            continue;
        const int error = errors.front();
        errors.pop_front();
        if (error != 0) {
            errno = error;
            return false;
        }
    }
    return true;
}

void SystemCalls::NoteClose(int descriptor)
{
    m_descriptors.erase(std::remove(m_descriptors.begin(), m_descriptors.end(), descriptor),
                        m_descriptors.end());
}

int SystemCalls::FindMap(void* page) const
{
    const auto found = std::find(m_maps.rbegin(), m_maps.rend(), page);
    return static_cast<int>(m_maps.rend() - found);
}

} // namespace TestSupport

using TestSupport::MayCall;
using TestSupport::Next;
using TestSupport::t_watch;

extern "C" {

#define TEST_EXPORT __attribute__((visibility("default")))

TEST_EXPORT int open(const char* path, int flags, ...)
{
    static constinit Next<int(const char*, int, ...)> next("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
    va_end(arguments);
    if (!t_watch || !t_watch->IsWatched(std::string(path)))
        return next(path, flags, mode);
    if (!t_watch->Note(std::string("open ") + path))
        return -1;
    const int descriptor = next(path, flags, mode);
    if (descriptor != -1)
        t_watch->NoteOpen(descriptor);
    return descriptor;
}

TEST_EXPORT int close(int descriptor)
{
    static constinit Next<int(int)> next("close");
    if (!MayCall(descriptor, "close"))
        return -1;
    if (t_watch)
        t_watch->NoteClose(descriptor);
    return next(descriptor);
}

TEST_EXPORT ssize_t read(int descriptor, void* buffer, size_t count)
{
    static constinit Next<ssize_t(int, void*, size_t)> next("read");
    return MayCall(descriptor, "read " + std::to_string(count)) ? next(descriptor, buffer, count)
                                                                : -1;
}

TEST_EXPORT ssize_t write(int descriptor, const void* buffer, size_t count)
{
    static constinit Next<ssize_t(int, const void*, size_t)> next("write");
    return MayCall(descriptor, "write " + std::to_string(count)) ? next(descriptor, buffer, count)
                                                                 : -1;
}

TEST_EXPORT int fcntl(int descriptor, int command, ...)
{
    static constinit Next<int(int, int, ...)> next("fcntl");
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    const char* const name = command == F_GETFL   ? "fcntl get flags"
                             : command == F_SETFL ? "fcntl set flags"
                                                  : "fcntl";
    return MayCall(descriptor, name) ? next(descriptor, command, argument) : -1;
}

TEST_EXPORT int ioctl(int descriptor, unsigned long request, ...)
{
    static constinit Next<int(int, unsigned long, ...)> next("ioctl");
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return MayCall(descriptor, "ioctl " + TestSupport::ToHex(request))
               ? next(descriptor, request, argument)
               : -1;
}

TEST_EXPORT int tcgetattr(int descriptor, struct termios* settings)
{
    static constinit Next<int(int, struct termios*)> next("tcgetattr");
    return MayCall(descriptor, "tcgetattr") ? next(descriptor, settings) : -1;
}

TEST_EXPORT int tcsetattr(int descriptor, int action, const struct termios* settings)
{
    static constinit Next<int(int, int, const struct termios*)> next("tcsetattr");
    const char* const name = action == TCSANOW     ? "tcsetattr now"
                             : action == TCSAFLUSH ? "tcsetattr flush"
                                                   : "tcsetattr";
    return MayCall(descriptor, name) ? next(descriptor, action, settings) : -1;
}

TEST_EXPORT int tcflush(int descriptor, int queue)
{
    static constinit Next<int(int, int)> next("tcflush");
    const char* const name = queue == TCIFLUSH    ? "tcflush in"
                             : queue == TCIOFLUSH ? "tcflush both"
                                                  : "tcflush out";
    return MayCall(descriptor, name) ? next(descriptor, queue) : -1;
}

/// Taken down with the time-out where it watches one of the files, or nothing at all.
TEST_EXPORT int select(int count, fd_set* readable, fd_set* writable, fd_set* failed,
                       timeval* limit)
{
    static constinit Next<int(int, fd_set*, fd_set*, fd_set*, timeval*)> next("select");
    if (t_watch && limit) {
        std::string watched;
        for (int i = 0; readable && i < FD_SETSIZE; ++i)
            if (FD_ISSET(i, readable))
                watched += t_watch->IsWatched(i) ? " device" : " other";
        if (!t_watch->Note("select " + std::to_string(count) + " " + std::to_string(limit->tv_sec) +
                           " s " + std::to_string(limit->tv_usec) + " us" + watched +
                           (readable ? "" : " nothing"))) {
            // As the system does, it tells how much time is left.
            if (errno == EINTR && limit->tv_sec > 0)
                --limit->tv_sec;
            return -1;
        }
    }
    return next(count, readable, writable, failed, limit);
}

TEST_EXPORT void* mmap(void* address, size_t length, int protection, int flags, int descriptor,
                       off_t offset)
{
    static constinit Next<void*(void*, size_t, int, int, int, off_t)> next("mmap");
    const bool isWatched = t_watch && t_watch->IsWatched(descriptor);
    if (isWatched) {
        std::string call = "map " + TestSupport::ToHex(static_cast<unsigned long>(offset));
        call += " of " + std::to_string(length);
        call += protection == (PROT_READ | PROT_WRITE) ? " to read and write" : " otherwise";
        call += flags == MAP_SHARED ? ", shared" : ", not shared";
        if (!t_watch->Note(call))
            return MAP_FAILED;
    }
    void* const page = next(address, length, protection, flags, descriptor, offset);
    if (isWatched)
        t_watch->NoteMap(page);
    return page;
}

TEST_EXPORT int munmap(void* address, size_t length)
{
    static constinit Next<int(void*, size_t)> next("munmap");
    const int number = t_watch ? t_watch->FindMap(address) : 0;
    if (number > 0 &&
        !t_watch->Note("unmap " + std::to_string(number) + " of " + std::to_string(length)))
        return -1;
    return next(address, length);
}
}
