// SPDX-License-Identifier: MIT
#include "kernel/cd_records.h"

#include "desk/cd_disc.h"

namespace Desk
{

namespace
{

/// The start of every disc, in the count of blocks, which begins behind the first gap.
constexpr int FirstBlock = -CdFirstFrame;

} // namespace

cdrom_addr ToCdAddress(int frame, int format)
{
    cdrom_addr address{};
    if (format == CDROM_LBA) {
        address.lba = frame + FirstBlock;
        return address;
    }
    const int seconds = frame / CdFramesPerSecond;
    address.msf.minute = static_cast<unsigned char>(seconds / 60);
    address.msf.second = static_cast<unsigned char>(seconds % 60);
    address.msf.frame = static_cast<unsigned char>(frame % CdFramesPerSecond);
    return address;
}

cdrom_addr ToCdDistance(int frames, int format)
{
    if (format == CDROM_LBA) {
        cdrom_addr address{};
        address.lba = frames;
        return address;
    }
    return ToCdAddress(frames < 0 ? -frames : frames, format);
}

unsigned char GetCdControl(bool isData)
{
    return isData ? CDROM_DATA_TRACK : 0;
}

bool IsCdFormat(int format)
{
    return format == CDROM_MSF || format == CDROM_LBA;
}

std::string Describe(const cdrom_ti& range)
{
    return "play track " + std::to_string(range.cdti_trk0) + " index " +
           std::to_string(range.cdti_ind0) + " to track " + std::to_string(range.cdti_trk1) +
           " index " + std::to_string(range.cdti_ind1);
}

std::string Describe(const cdrom_msf& range)
{
    const auto toFrames = [](int minute, int second, int frame) {
        return (minute * 60 + second) * CdFramesPerSecond + frame;
    };
    return "play " + ToCdText(toFrames(range.cdmsf_min0, range.cdmsf_sec0, range.cdmsf_frame0)) +
           " to " + ToCdText(toFrames(range.cdmsf_min1, range.cdmsf_sec1, range.cdmsf_frame1));
}

} // namespace Desk
