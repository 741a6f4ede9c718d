// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "desk/kernel_testbed.h"

namespace Desk
{

/// A pseudo-terminal whose near end is a device file of the test bed.
class Terminal
{
public:
    Terminal() = default;
    ~Terminal() { Close(); }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Makes it, raw, under the name @p path. Throws std::runtime_error where there is none to get.
    /// @param prepare what is done to it before it has the name
    void Open(const KernelTestbed& testbed, const std::string& path,
              const std::function<void()>& prepare = {});
    /// Hangs up and takes the name away.
    void Close();
    bool IsOpen() const { return m_farEnd != -1; }

    /// The desk's end, which never blocks.
    int GetFarEnd() const { return m_farEnd; }
    /// The program's end, kept open, since a terminal without any near end reports a hang-up.
    int GetNearEnd() const { return m_nearEnd; }
    /// Hangs up and leaves the name.
    void HangUp() const;

private:
    std::string m_node;
    int m_farEnd = -1;
    int m_nearEnd = -1;
};

/// Longest wait for the other side of a device.
inline constexpr std::chrono::seconds Patience(20);

} // namespace Desk
