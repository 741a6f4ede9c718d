// SPDX-License-Identifier: MIT
#include "os/stderr_output.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

namespace Standalone
{

namespace
{

bool IsReady(int milliseconds)
{
    pollfd descriptor{STDERR_FILENO, POLLOUT, 0};
    return poll(&descriptor, 1, milliseconds) == 1;
}

/// Writes to a pipe or a terminal. O_NONBLOCK of standard error itself would hold for every process
/// that shares it, so it is opened a second time; for one write, so that nobody waits for the end
/// of a pipe that only this holds open.
ssize_t WriteToReader(std::string_view text)
{
    const int second = open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (second == -1) {
        if (errno == ENXIO) // nobody reads it
            return -1;
        // Not allowed, or without /proc. A ready pipe takes so much at once, unless somebody else
        // fills it in between.
        if (IsReady(0))
            return write(STDERR_FILENO, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
        errno = EAGAIN;
        return -1;
    }
    const ssize_t written = write(second, text.data(), text.size());
    const int error = errno;
    close(second);
    errno = error;
    return written;
}

ssize_t WriteSome(std::string_view text)
{
    struct stat status {
    };
    if (fstat(STDERR_FILENO, &status) != 0)
        return -1;
    if (S_ISSOCK(status.st_mode))
        return send(STDERR_FILENO, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (S_ISFIFO(status.st_mode) || isatty(STDERR_FILENO) == 1)
        return WriteToReader(text);
    return write(STDERR_FILENO, text.data(), text.size()); // a file waits for no reader
}

} // namespace

bool WriteToStandardError(std::string_view& text)
{
    while (!text.empty()) {
        const ssize_t written = WriteSome(text);
        if (written > 0)
            text.remove_prefix(static_cast<std::size_t>(written));
        else if (written == -1 && errno == EAGAIN)
            return false;
        else if (written == 0 || errno != EINTR)
            text = {};
    }
    return true;
}

void WaitForStandardError()
{
    constexpr int Moment = 100; // in milliseconds
    IsReady(Moment);
}

} // namespace Standalone
