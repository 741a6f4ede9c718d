// SPDX-License-Identifier: MIT
#include "watch/cd_transport.h"

#include <stdexcept>
#include <string>

#include "watch/cd_facts.h"

namespace Tools
{

namespace
{

void PlayTrack(CdPlayer& player, int track)
{
    const int last = player.GetTrackCount();
    if (track < 1 || track > last)
        throw std::runtime_error("there is no track " + std::to_string(track) +
                                 ", the last one is " + std::to_string(last));
    player.PlayTrack(track);
}

CdTime ToDiscTime(const CdPlayer& player, int frames)
{
    const CdTime end = player.GetDiscLength();
    if (frames < 0 || frames >= end.GetRawFrameCount())
        throw std::runtime_error("the disc goes from 00:00:00 to " + ToText(end));
    CdTime time;
    time.SetRawFrameCount(frames);
    return time;
}

/// Only while the disc plays: the player takes the place of a paused one for 0.
void Jog(CdPlayer& player, int frames)
{
    if (player.GetStatus() != CdPlayer::Status_Playing)
        throw std::runtime_error("nothing plays to jog from");
    ToDiscTime(player, player.GetCurrentDiscTime().GetRawFrameCount() + frames);
    CdTime delta;
    delta.SetRawFrameCount(frames);
    player.Jog(delta);
}

/// Goes to a status by the player's Pause(), which goes both ways, unless that is the status
/// already.
void Pause(CdPlayer& player, CdPlayer::Status wanted, const char* complaint)
{
    const CdPlayer::Status status = player.GetStatus();
    if (status == CdPlayer::Status_Stopped)
        throw std::runtime_error(complaint);
    if (status != wanted)
        player.Pause();
}

} // namespace

void DoCdStep(CdPlayer& player, const CdStep& step)
{
    switch (step.verb) {
    case CdStep::Verb::Play:
        player.Play();
        break;
    case CdStep::Verb::PlayTrack:
        PlayTrack(player, step.number);
        break;
    case CdStep::Verb::PlayTime:
        player.PlayTime(ToDiscTime(player, step.number));
        break;
    case CdStep::Verb::Next:
        player.NextTrack();
        break;
    case CdStep::Verb::Previous:
        player.PreviousTrack();
        break;
    case CdStep::Verb::Jog:
        Jog(player, step.number);
        break;
    case CdStep::Verb::Resume:
        Pause(player, CdPlayer::Status_Playing, "nothing is paused");
        break;
    case CdStep::Verb::Pause:
        Pause(player, CdPlayer::Status_Paused, "nothing plays");
        break;
    case CdStep::Verb::Stop:
        player.Stop();
        break;
    case CdStep::Verb::Status:
    case CdStep::Verb::Contents:
    case CdStep::Verb::Follow:
        throw std::invalid_argument("that is not for a desk");
    }
}

void CheckCdStep(const CdPlayer& player, const CdStep& step)
{
    if (step.verb == CdStep::Verb::Stop)
        return;
    const bool isPause = step.verb == CdStep::Verb::Pause;
    if (player.GetStatus() != (isPause ? CdPlayer::Status_Paused : CdPlayer::Status_Playing))
        throw std::runtime_error(isPause || step.verb == CdStep::Verb::Resume
                                     ? "the drive does not obey"
                                     : "the drive does not play");
}

} // namespace Tools
