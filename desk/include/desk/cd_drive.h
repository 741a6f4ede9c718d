// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "desk/cd_disc.h"
#include "desk/kernel_testbed.h"

namespace Desk
{

/// A virtual "/dev/cdrom" that plays discs, if without a sound: it answers the kernel's requests
/// for audio CDs as a real drive does, and the position of a disc that plays moves with the clock.
///
/// Without a disc, or with an open tray, it can be opened and answers ENOMEDIUM. A disc of data has
/// a table of contents and can be stopped; all else gets EOPNOTSUPP. Play that comes to its end is
/// told of once, then there is no more to tell. Any thread may call any operation; verbs hold for
/// descriptors that are open too.
class CdDrive
{
public:
    /// Milliseconds of a clock that may wrap. Called with a lock of the drive's held, on the thread
    /// that answers and on those that call verbs.
    typedef std::function<std::uint32_t()> Clock;

    enum class Status { Stopped, Playing, Paused };
    struct State {
        bool hasDisc;
        Status status;
        int position;        ///< frames from the start of the disc; where it was last when stopped
        CdDisc::Place place; ///< what is there; zeros without a disc
    };

    /// Empty, with its tray closed, in a test bed that must outlive it.
    /// @param clock what discs turn by; the system's monotonic clock where there is none
    explicit CdDrive(KernelTestbed& testbed, Clock clock = {});
    ~CdDrive();
    CdDrive(const CdDrive&) = delete;
    CdDrive& operator=(const CdDrive&) = delete;

    /// Puts a disc in, in place of another one, and closes the tray. Throws std::invalid_argument
    /// for a disc that there cannot be.
    void Insert(const CdDisc& disc);
    /// Opens the tray, also while the disc plays, which ends that.
    void Eject();
    /// The disc cannot be read: every request fails with EIO, and it goes on turning.
    void SetScratched(bool scratched);
    /// As while another program has the drive: every open and every request fails with EBUSY.
    void SetBusy(bool busy);
    /// Lets every open and every request take so much longer, in real time; 0 ends it.
    void SetDelay(unsigned microseconds);
    /// Lets one kind of request, such as CDROMREADTOCHDR, fail with that errno value; 0 ends it.
    void FailRequest(unsigned long request, int error);
    /// Pulls the plug: the node goes, and who has it open gets ENODEV from then on.
    void Vanish();
    /// Plugs it in again, as a new device, with the disc at rest.
    void Appear();

    State GetState() const;
    /// The disc in it; a disc without tracks where there is none.
    CdDisc GetDisc() const;
    /// Verbs that the program asked for and the drive took, oldest first: "play track 2 index 0 to
    /// track 9 index 0", "play 00:02:00 to 61:05:74", "pause", "resume", "stop".
    std::vector<std::string> GetCommands() const;
    /// Requests of one kind that came so far, whatever the answer.
    std::size_t CountRequests(unsigned long request) const;
    /// Calls @p observer for each request that comes, before it is answered, on the thread that
    /// answers. It must not call the drive. An empty one ends it.
    void SetObserver(std::function<void(unsigned long request)> observer);

    /// Descriptors that the program has open now, and opens that succeeded so far.
    int CountOpen() const;
    int CountOpened() const;
    /// Flags of the last of them, as passed to open().
    int GetLastOpenFlags() const;
    /// Microseconds by which opens and requests were delayed, together.
    long GetDelayed() const;

    struct Private;

private:
    const std::shared_ptr<Private> m_private;
};

} // namespace Desk
