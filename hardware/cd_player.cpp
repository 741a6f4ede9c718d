// SPDX-License-Identifier: MIT
#include "hardware/cd_player.h"

#include <fcntl.h>
#include <linux/cdrom.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <utility>

#include "source_site.h"
#include "system_call.h"

namespace
{

constexpr char SourceFile[] = "cd_player.cpp";

constexpr char DrivePath[] = "/dev/cdrom";

constexpr int FramesPerSecond = 75;
constexpr int FramesPerMinute = 60 * FramesPerSecond;
constexpr int FramesPerHour = 60 * FramesPerMinute;

/// Stands for the current track.
constexpr int CurrentTrack = -1;

Os::Log::Context& LogContext()
{
    static Os::Log::Context context("CdPlayer", nullptr, Os::Log::AllButTrace);
    return context;
}

/// The magnitude; unsigned, since the lowest number has none that is signed.
unsigned GetMagnitude(std::int32_t count)
{
    const auto bits = static_cast<unsigned>(count);
    return count < 0 ? 0U - bits : bits;
}

/// Asks the drive; false where there is none or it refuses.
template <class... Argument> bool Ask(int fd, unsigned long request, Argument... argument)
{
    return fd != -1 && Hardware::Repeat([&] { return ioctl(fd, request, argument...); }) != -1;
}

/// What is being played. Audio status 0, which the kernel calls invalid, where nothing is known.
cdrom_subchnl ReadSubchannel(int fd)
{
    cdrom_subchnl subchannel{};
    subchannel.cdsc_format = CDROM_MSF;
    return Ask(fd, CDROMSUBCHNL, &subchannel) ? subchannel : cdrom_subchnl{};
}

CdTime ToTime(const cdrom_msf0& address)
{
    CdTime time;
    time.Set(static_cast<char>(address.minute / 60), static_cast<char>(address.minute % 60),
             static_cast<char>(address.second), static_cast<char>(address.frame));
    return time;
}

/// Minutes as a disc counts them, without hours, in the 8 bits that a request has for them.
unsigned char GetDiscMinute(CdTime time)
{
    return static_cast<unsigned char>(time.GetHour() * 60 + time.GetMinute());
}

} // namespace

void CdTime::Set(char hours, char minutes, char seconds, char frames)
{
    // A plain char has no sign on some machines.
    const auto widen = [](char field) { return static_cast<int>(static_cast<signed char>(field)); };
    m_count = widen(hours) * FramesPerHour + widen(minutes) * FramesPerMinute +
              widen(seconds) * FramesPerSecond + widen(frames);
}

int CdTime::GetHour() const
{
    return static_cast<int>(GetMagnitude(m_count) / FramesPerHour);
}

int CdTime::GetMinute() const
{
    return static_cast<int>(GetMagnitude(m_count) / FramesPerMinute % 60);
}

int CdTime::GetSecond() const
{
    return static_cast<int>(GetMagnitude(m_count) / FramesPerSecond % 60);
}

int CdTime::GetFrame() const
{
    return static_cast<int>(GetMagnitude(m_count) % FramesPerSecond);
}

bool CdTime::IsNegative() const
{
    return m_count < 0;
}

void CdTime::Add(CdTime time)
{
    m_count = static_cast<std::int32_t>(static_cast<unsigned>(m_count) +
                                        static_cast<unsigned>(time.m_count));
}

void CdTime::Subtract(CdTime time)
{
    m_count = static_cast<std::int32_t>(static_cast<unsigned>(m_count) -
                                        static_cast<unsigned>(time.m_count));
}

int CdTime::GetRawFrameCount() const
{
    return m_count;
}

void CdTime::SetRawFrameCount(int count)
{
    m_count = count;
}

CdPlayer* CdPlayer::pInstance = nullptr;

CdPlayer::CdPlayer()
{
    Open();
}

CdPlayer::~CdPlayer()
{
    Close();
}

void CdPlayer::Open()
{
    HARDWARE_LOG(LogContext(), Os::Log::Trace, "Opening CD player device");
    if (m_fd != -1)
        close(m_fd);
    // A failure has no message of its own, on purpose: what follows finds no drive.
    m_fd = Hardware::Repeat([] { return open(DrivePath, O_RDONLY | O_NONBLOCK | O_CLOEXEC); });
}

void CdPlayer::Close()
{
    HARDWARE_LOG(LogContext(), Os::Log::Trace, "Closing CD player device");
    const int fd = std::exchange(m_fd, -1);
    if (fd != -1)
        close(fd);
}

CdPlayer::Status CdPlayer::GetStatus() const
{
    switch (ReadSubchannel(m_fd).cdsc_audiostatus) {
    case CDROM_AUDIO_PLAY:
        return Status_Playing;
    case CDROM_AUDIO_PAUSED:
        return Status_Paused;
    default:
        return Status_Stopped;
    }
}

int CdPlayer::GetCurrentTrack() const
{
    const cdrom_subchnl subchannel = ReadSubchannel(m_fd);
    const bool isPlaying = subchannel.cdsc_audiostatus == CDROM_AUDIO_PLAY;
    return isPlaying || subchannel.cdsc_audiostatus == CDROM_AUDIO_PAUSED ? subchannel.cdsc_trk : 0;
}

int CdPlayer::GetTrackCount() const
{
    cdrom_tochdr header{};
    return Ask(m_fd, CDROMREADTOCHDR, &header) ? header.cdth_trk1 : 0;
}

CdTime CdPlayer::GetTrackStart(int track, bool /*ignored*/) const
{
    if (track == CurrentTrack)
        track = GetCurrentTrack();
    // Also where the count is not to be had, and so every track above it.
    if (track > GetTrackCount())
        track = CDROM_LEADOUT;
    cdrom_tocentry entry{};
    entry.cdte_track = static_cast<unsigned char>(track);
    entry.cdte_format = CDROM_MSF;
    return Ask(m_fd, CDROMREADTOCENTRY, &entry) ? ToTime(entry.cdte_addr.msf) : CdTime();
}

CdTime CdPlayer::GetTrackLength(int track) const
{
    if (track == CurrentTrack)
        track = GetCurrentTrack();
    CdTime length = GetTrackStart(track + 1);
    length.Subtract(GetTrackStart(track));
    return length;
}

CdTime CdPlayer::GetDiscLength() const
{
    return GetTrackStart(CDROM_LEADOUT);
}

/// Nothing while paused, on purpose.
CdTime CdPlayer::GetCurrentDiscTime(bool /*ignored*/) const
{
    const cdrom_subchnl subchannel = ReadSubchannel(m_fd);
    return subchannel.cdsc_audiostatus == CDROM_AUDIO_PLAY ? ToTime(subchannel.cdsc_absaddr.msf)
                                                           : CdTime();
}

CdTime CdPlayer::GetCurrentTrackTime() const
{
    CdTime time = GetCurrentDiscTime();
    time.Subtract(GetTrackStart(CurrentTrack));
    return time;
}

// The verbs change the drive, if not the object.
// NOLINTBEGIN(readability-make-member-function-const)

void CdPlayer::PlayTrack(int n)
{
    // Said before the number is looked at.
    HARDWARE_LOG(LogContext(), Os::Log::Trace, "Playing track " << n);
    const int last = GetTrackCount();
    if (n < 1 || n > last)
        return;
    cdrom_ti tracks{};
    tracks.cdti_trk0 = static_cast<unsigned char>(n);
    tracks.cdti_trk1 = static_cast<unsigned char>(last);
    Ask(m_fd, CDROMPLAYTRKIND, &tracks);
}

void CdPlayer::PlayTime(CdTime t)
{
    const CdTime end = GetDiscLength();
    cdrom_msf range{};
    range.cdmsf_min0 = GetDiscMinute(t);
    range.cdmsf_sec0 = static_cast<unsigned char>(t.GetSecond());
    range.cdmsf_frame0 = static_cast<unsigned char>(t.GetFrame());
    range.cdmsf_min1 = GetDiscMinute(end);
    range.cdmsf_sec1 = static_cast<unsigned char>(end.GetSecond());
    range.cdmsf_frame1 = static_cast<unsigned char>(end.GetFrame());
    Ask(m_fd, CDROMPLAYMSF, &range);
}

void CdPlayer::Jog(CdTime delta)
{
    CdTime target = GetCurrentDiscTime();
    target.Add(delta);
    PlayTime(target);
}

// Both go round the disc, on purpose; with nothing playing they play the last and the first track.

void CdPlayer::PreviousTrack()
{
    const int previous = GetCurrentTrack() - 1;
    PlayTrack(previous < 1 ? GetTrackCount() : previous);
}

void CdPlayer::NextTrack()
{
    const int next = GetCurrentTrack() + 1;
    PlayTrack(next > GetTrackCount() ? 1 : next);
}

void CdPlayer::Stop()
{
    if (GetStatus() == Status_Stopped)
        return;
    HARDWARE_LOG(LogContext(), Os::Log::Trace, "Stopping");
    Ask(m_fd, CDROMSTOP);
}

/// Goes both ways, on purpose.
void CdPlayer::Pause()
{
    switch (GetStatus()) {
    case Status_Playing:
        HARDWARE_LOG(LogContext(), Os::Log::Trace, "Pausing");
        Ask(m_fd, CDROMPAUSE);
        break;
    case Status_Paused:
        HARDWARE_LOG(LogContext(), Os::Log::Trace, "Unpausing");
        Ask(m_fd, CDROMRESUME);
        break;
    case Status_Stopped:
        break;
    }
}

void CdPlayer::Play()
{
    // Each line comes a second time from the operation called, on purpose.
    switch (GetStatus()) {
    case Status_Stopped:
        HARDWARE_LOG(LogContext(), Os::Log::Trace, "Playing track 1");
        PlayTrack(1);
        break;
    case Status_Paused:
        HARDWARE_LOG(LogContext(), Os::Log::Trace, "Unpausing");
        Pause();
        break;
    case Status_Playing:
        break;
    }
}

// NOLINTEND(readability-make-member-function-const)
