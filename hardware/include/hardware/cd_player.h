// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/cd_time.h"
#include "hardware/export.h"

/// Plays audio CDs in "/dev/cdrom". The drive plays by itself: a player that is closed or destroyed
/// leaves it at what it does.
///
/// One thread at a time. Every operation asks the drive anew and returns when that has answered. No
/// failure is reported: without a drive or a disc, and when a request fails, questions are answered
/// by 0 and verbs do nothing. Tracks are numbered as on the disc, times are absolute: they count
/// from the start of the disc, so that the first track usually begins at two seconds.
class HARDWARE_EXPORT CdPlayer
{
public:
    enum Status : int { Status_Stopped = 0, Status_Playing = 1, Status_Paused = 2 };

    /// The application's one player, for whoever wants to share it. The library neither sets nor
    /// reads it, and owns nothing by it.
    static CdPlayer* pInstance;

    /// Opens.
    CdPlayer();
    /// Closes.
    ~CdPlayer();
    CdPlayer(const CdPlayer&) = delete;
    CdPlayer& operator=(const CdPlayer&) = delete;

    /// Opens the drive, which need not have a disc. A drive that is open already is closed first.
    void Open();
    void Close();

    /// Stopped, too, at the end of the disc, without a disc and without a drive.
    Status GetStatus() const;
    /// The track being played, also while paused; otherwise 0.
    int GetCurrentTrack() const;
    /// The number of the last track, which is how many there are on a disc that begins with 1.
    int GetTrackCount() const;
    /// Where a track begins. @param track -1 for the current one; above the last one the lead-out,
    /// the end of what can be played; 0 is handed to the drive, which usually takes it for the
    /// first
    CdTime GetTrackStart(int track, bool ignored = false) const;
    /// @param track -1 for the current one; the last one reaches to the lead-out
    CdTime GetTrackLength(int track) const;
    /// Where the lead-out begins, with the gap ahead of the first track.
    CdTime GetDiscLength() const;
    /// Where the disc plays; 0 while paused.
    CdTime GetCurrentDiscTime(bool ignored = false) const;
    /// The same from the start of the current track; of no meaning unless the disc plays.
    CdTime GetCurrentTrackTime() const;

    /// Plays from a track to the end of the disc; nothing for a number that the disc does not have.
    void PlayTrack(int n);
    /// Plays from a time, taken without its sign, to the end of the disc. @param t below 4 hours 16
    /// minutes: minutes are sent in 8 bits
    void PlayTime(CdTime t);
    /// Plays from so much later, or earlier where @p delta is negative; a sum below zero is taken
    /// without its sign. While paused, from @p delta itself.
    void Jog(CdTime delta);
    /// Plays the track before the current one, or the last one.
    void PreviousTrack();
    /// Plays the track behind the current one, or the first one.
    void NextTrack();
    void Stop();
    /// Pauses a disc that plays, and lets one that is paused play on.
    void Pause();
    /// Plays the disc from its first track, or lets a paused one play on.
    void Play();

private:
    int m_fd = -1;
};
