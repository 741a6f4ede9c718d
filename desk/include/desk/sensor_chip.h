// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "desk/kernel_testbed.h"

namespace Desk
{

/// The w83627ehf hardware-monitor chip's third pulse-width output, as a virtual attribute in /sys.
/// One thread at a time.
class SensorChip
{
public:
    /// Strict, until told otherwise: see SetStrict().
    explicit SensorChip(KernelTestbed& testbed);
    ~SensorChip();
    SensorChip(const SensorChip&) = delete;
    SensorChip& operator=(const SensorChip&) = delete;

    /// What the attribute holds, as a file does: what was written last stands over the beginning of
    /// what was there before.
    std::string GetText() const;
    void SetText(const std::string& text);

    /// Takes only what the kernel reads a number from, and answers EINVAL to the rest, blanks in
    /// front of a number included. The library writes numbers below 100 with blanks in front and
    /// does not look at the answer, so levels of the right display above 61 % leave the brightness
    /// as it is: here as with a real kernel. Not strict, the attribute takes every text, as no
    /// kernel does; that shows what the library wrote.
    void SetStrict(bool strict);
    /// The chip's driver is unloaded: the attribute goes; who has it open gets ENODEV.
    void Vanish();
    /// Ends Vanish().
    void Appear();
    /// Lets further opens fail with that errno value; 0 ends it.
    void RefuseOpen(int error);
    /// Lets every write fail with that errno value; 0 ends it.
    void RefuseWrites(int error);
    /// Lets every open, read and write take so much longer; 0 ends it.
    void SetDelay(unsigned microseconds);

    /// Descriptors open now, and opens that ever succeeded.
    int CountOpen() const;
    int CountOpened() const;
    /// Flags of the last open, as passed to open().
    int GetLastOpenFlags() const;
    /// Microseconds by which its calls were delayed, together.
    long GetDelayed() const;

private:
    struct Private;

    const std::unique_ptr<Private> m_private;
};

} // namespace Desk
