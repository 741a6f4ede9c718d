// SPDX-License-Identifier: MIT
#include "kernel/terminal.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace Desk
{

namespace
{

void CloseEnd(int& end)
{
    if (end != -1)
        close(std::exchange(end, -1));
}

} // namespace

void Terminal::Open(const KernelTestbed& testbed, const std::string& path,
                    const std::function<void()>& prepare)
{
    m_farEnd = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    std::array<char, 64> terminal{};
    if (m_farEnd == -1 || grantpt(m_farEnd) != 0 || unlockpt(m_farEnd) != 0 ||
        ptsname_r(m_farEnd, terminal.data(), terminal.size()) != 0)
        throw std::runtime_error("no pseudo-terminal for " + path);
    termios settings{};
    tcgetattr(m_farEnd, &settings);
    cfmakeraw(&settings);
    tcsetattr(m_farEnd, TCSANOW, &settings);
    m_nearEnd = ioctl(m_farEnd, TIOCGPTPEER, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_nearEnd == -1)
        throw std::runtime_error("no near end for " + path);
    if (prepare)
        prepare();
    m_node = testbed.GetPathOf(path);
    std::filesystem::create_directories(std::filesystem::path(m_node).parent_path());
    std::filesystem::create_symlink(terminal.data(), m_node);
}

void Terminal::Close()
{
    if (!m_node.empty()) {
        std::error_code ignored;
        std::filesystem::remove(std::exchange(m_node, {}), ignored);
    }
    CloseEnd(m_farEnd);
    CloseEnd(m_nearEnd);
}

void Terminal::HangUp() const
{
    // Another terminal's end takes the number's place, so that nobody meanwhile gets the number.
    const int other = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    dup2(other, m_farEnd);
    close(other);
}

} // namespace Desk
