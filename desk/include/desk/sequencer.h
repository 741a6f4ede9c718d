// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "desk/kernel_testbed.h"

namespace Desk
{

/// A virtual /dev/sequencer that lists MIDI ports as the kernel's does: the count is the one at the
/// open, a port that has gone answers EINVAL, and the node cannot be opened (ENODEV) without any
/// port. Any thread may call any operation.
class Sequencer
{
public:
    /// Stands the node in the test bed, which must outlive the sequencer.
    explicit Sequencer(KernelTestbed& testbed);
    ~Sequencer();
    Sequencer(const Sequencer&) = delete;
    Sequencer& operator=(const Sequencer&) = delete;

    /// Lists a port under the lowest free index and returns that. A name longer than the 30 bytes
    /// of the kernel's record is cut there, without a terminator.
    /// @param prepare makes the port's device file for that index, before the port is listed
    int AddPort(const std::string& name, const std::function<void(int)>& prepare = {});
    /// Takes a port off the list.
    void RemovePort(int index);

    /// Takes the node away, as when the driver is unloaded; the list stays.
    void Vanish();
    /// Puts the node back.
    void Appear();
    /// Lets the count request fail with this errno; 0 for no more.
    void FailCount(int error);
    /// Lets the information request for one port fail with this errno; 0 for no more.
    void FailInformation(int index, int error);

    /// Descriptors that the program has open now.
    int CountOpen() const;
    /// Opens that succeeded, since the start.
    int CountOpened() const;
    /// Flags of the last of them, as passed to open().
    int GetLastOpenFlags() const;

    struct Private;

private:
    const std::shared_ptr<Private> m_private;
};

} // namespace Desk
