// SPDX-License-Identifier: MIT
#pragma once

#include <linux/cdrom.h>

#include <cstdint>
#include <optional>

#include "desk/cd_disc.h"

namespace Desk
{

/// What turns a disc: it plays, pauses and stops by a clock that is handed in, and answers as a
/// drive that follows the MMC standard does. No thread, no device.
///
/// Verbs return an errno value, 0 for success. Times are milliseconds, which may wrap.
class CdTransport
{
public:
    void Load(const CdDisc& disc);
    void Unload();
    const std::optional<CdDisc>& GetDisc() const { return m_disc; }

    /// Plays from an index of a track to the end of another.
    int PlayTracks(const cdrom_ti& range, std::uint32_t now);
    /// Plays from a place up to another.
    int PlayRange(const cdrom_msf& range, std::uint32_t now);
    int Pause(std::uint32_t now);
    int Resume(std::uint32_t now);
    int Stop();

    /// Moves on to @p now.
    void Advance(std::uint32_t now);
    /// The kernel's number for what the transport does. Once, behind the end of play, it tells how
    /// that came.
    int TakeAudioStatus();
    /// The same without taking it.
    int GetAudioStatus() const { return m_status; }
    /// Where it is, or was last.
    int GetPosition() const;

private:
    int Play(int from, int to, std::uint32_t now);

    std::optional<CdDisc> m_disc;
    int m_status = CDROM_AUDIO_NO_STATUS;
    int m_from = 0;             // where play began
    int m_to = 0;               // where it ends
    int m_ending = 0;           // the status behind that
    std::uint64_t m_played = 0; // milliseconds since then, without pauses
    std::uint32_t m_last = 0;   // when it was moved on last
};

} // namespace Desk
