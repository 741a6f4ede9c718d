// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "desk/cd_disc.h"
#include "hardware/cd_player.h"

namespace Tools
{

/// Where the library looks for the drive.
inline constexpr char CdDrivePath[] = "/dev/cdrom";

/// Why there is nothing to play, such as "no CD drive: /dev/cdrom: No such file or directory" or
/// "no disc: No medium found", as the player never tells; nothing when there is a table of
/// contents.
std::string FindCdProblem();

/// What a CD drive and its disc tell: status, track and times, and what stands on the disc.
nlohmann::json GetCdStatus(const CdPlayer& player);
nlohmann::json GetCdContents(const CdPlayer& player);
/// One drive of an inventory: whether it is present, and its contents.
nlohmann::json GetCdDrive();

/// The same in words; of the contents, a line each.
std::string DescribeCdStatus(const nlohmann::json& status);
std::string DescribeCdContents(const nlohmann::json& contents);
std::string DescribeCdDrive(const nlohmann::json& drive);

/// A time on a disc as minutes, seconds and frames.
std::string ToText(CdTime time);

/// The disc for a virtual drive. @param sheet a CUE sheet; empty for a disc of six tracks. Throws
/// std::runtime_error for a sheet that is wrong.
Desk::CdDisc MakeVirtualDisc(const std::string& sheet);

} // namespace Tools
