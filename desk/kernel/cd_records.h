// SPDX-License-Identifier: MIT
#pragma once

#include <linux/cdrom.h>

#include <string>

namespace Desk
{

// Between frames of a disc and the records of the kernel's requests for CDs.

/// Whether an address may be asked for in this form.
bool IsCdFormat(int format);
/// A place, in either form.
cdrom_addr ToCdAddress(int frame, int format);
/// A distance from a track's start. Ahead of it a drive counts down to 0, in minutes too.
cdrom_addr ToCdDistance(int frames, int format);
/// The control bits of a track.
unsigned char GetCdControl(bool isData);

/// A request to play in words.
std::string Describe(const cdrom_ti& range);
std::string Describe(const cdrom_msf& range);

} // namespace Desk
