// SPDX-License-Identifier: MIT
#include "kernel/cd_transport.h"

#include <algorithm>
#include <cerrno>

namespace Desk
{

namespace
{

/// What a drive answers to a place that the disc does not have, or to a verb out of order.
constexpr int Refused = EIO;
/// What it answers to audio verbs where nothing is audio.
constexpr int NoAudio = EOPNOTSUPP;

/// The place that an address stands for; nothing where it is none.
std::optional<int> ToFrame(int minute, int second, int frame)
{
    if (second >= 60 || frame >= CdFramesPerSecond)
        return std::nullopt;
    return (minute * 60 + second) * CdFramesPerSecond + frame;
}

} // namespace

void CdTransport::Load(const CdDisc& disc)
{
    Unload();
    m_disc = disc;
}

void CdTransport::Unload()
{
    m_disc.reset();
    m_status = CDROM_AUDIO_NO_STATUS;
    m_from = m_to = 0;
    m_played = 0;
}

int CdTransport::PlayTracks(const cdrom_ti& range, std::uint32_t now)
{
    const CdTrack* const first = m_disc->FindTrack(range.cdti_trk0);
    const CdTrack* const last = m_disc->FindTrack(range.cdti_trk1);
    // Indices 0 and 1 both stand for the start of the track.
    const std::size_t index = std::max<std::size_t>(range.cdti_ind0, 1) - 1;
    if (!first || !last || last < first || index >= first->indices.size())
        return m_disc->HasAudio() ? Refused : NoAudio;
    const CdTrack* const next = m_disc->FindTrack(range.cdti_trk1 + 1);
    return Play(first->indices[index], next ? next->GetStart() : m_disc->leadOut, now);
}

int CdTransport::PlayRange(const cdrom_msf& range, std::uint32_t now)
{
    const auto from = ToFrame(range.cdmsf_min0, range.cdmsf_sec0, range.cdmsf_frame0);
    const auto to = ToFrame(range.cdmsf_min1, range.cdmsf_sec1, range.cdmsf_frame1);
    if (!from || !to || *from > *to || *from >= m_disc->leadOut || *to > m_disc->leadOut)
        return m_disc->HasAudio() ? Refused : NoAudio;
    return Play(*from, *to, now);
}

int CdTransport::Play(int from, int to, std::uint32_t now)
{
    if (!m_disc->HasAudio())
        return NoAudio;
    if (m_disc->Locate(from).isData)
        return Refused;
    m_ending = CDROM_AUDIO_COMPLETED;
    for (const CdTrack& track : m_disc->tracks)
        if (track.isData && track.GetStart() > from && track.GetStart() < to) {
            // As far as the audio goes.
            to = track.GetStart();
            m_ending = CDROM_AUDIO_ERROR;
            break;
        }
    m_status = CDROM_AUDIO_PLAY;
    m_from = from;
    m_to = to;
    m_played = 0;
    m_last = now;
    return 0;
}

int CdTransport::Pause(std::uint32_t now)
{
    Advance(now);
    if (!m_disc->HasAudio())
        return NoAudio;
    if (m_status != CDROM_AUDIO_PLAY && m_status != CDROM_AUDIO_PAUSED)
        return Refused;
    m_status = CDROM_AUDIO_PAUSED;
    return 0;
}

int CdTransport::Resume(std::uint32_t now)
{
    Advance(now);
    if (!m_disc->HasAudio())
        return NoAudio;
    if (m_status != CDROM_AUDIO_PLAY && m_status != CDROM_AUDIO_PAUSED)
        return Refused;
    m_status = CDROM_AUDIO_PLAY;
    return 0;
}

int CdTransport::Stop()
{
    m_status = CDROM_AUDIO_NO_STATUS;
    return 0;
}

void CdTransport::Advance(std::uint32_t now)
{
    const std::uint32_t passed = now - m_last;
    m_last = now;
    if (m_status != CDROM_AUDIO_PLAY)
        return;
    m_played += passed;
    if (GetPosition() == m_to)
        m_status = m_ending;
}

int CdTransport::TakeAudioStatus()
{
    const int status = m_status;
    if (status == CDROM_AUDIO_COMPLETED || status == CDROM_AUDIO_ERROR)
        m_status = CDROM_AUDIO_NO_STATUS;
    return status;
}

int CdTransport::GetPosition() const
{
    const std::uint64_t gone = m_played * CdFramesPerSecond / 1000;
    return gone < static_cast<std::uint64_t>(m_to - m_from) ? m_from + static_cast<int>(gone)
                                                            : m_to;
}

} // namespace Desk
