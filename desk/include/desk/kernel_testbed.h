// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

namespace Desk
{

/// A private tree of device nodes that this process sees in place of the machine's /dev and /sys.
///
/// While one lives, a device file that nobody stood in it does not exist for the program, whatever
/// the machine has. One per process, made before the devices and destroyed after them. Needs the
/// preloaded libraries (see preload.h); construction throws std::runtime_error without them.
class KernelTestbed
{
public:
    KernelTestbed();
    ~KernelTestbed();
    KernelTestbed(const KernelTestbed&) = delete;
    KernelTestbed& operator=(const KernelTestbed&) = delete;

    /// Where the test bed keeps the file that the program sees as @p path.
    std::string GetPathOf(const std::string& path) const;

    struct Private;
    Private& GetPrivate() { return *m_private; }

private:
    const std::unique_ptr<Private> m_private;
};

} // namespace Desk
