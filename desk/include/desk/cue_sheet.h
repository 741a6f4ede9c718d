// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "desk/cd_disc.h"

namespace Desk
{

/// Asks for the length of a file that a sheet names, in frames of a disc.
/// @param sectorBytes for a file of nothing but sectors, how many bytes each has; otherwise 0: the
///                    file has a header that tells
/// @return nothing where the length is not known
typedef std::function<std::optional<int>(const std::string& name, int sectorBytes)> CueFileLength;

/// Reads a disc's table of contents from a CUE sheet's text.
///
/// Understood are FILE, TRACK, INDEX, PREGAP, POSTGAP and TITLE; what else such sheets hold is
/// looked over, and a word that is none of theirs is an error. A sheet does not say how long its
/// last tracks are, so the files are asked. Behind a FILE, the remark "REM LENGTH mm:ss:ff" tells
/// its length instead, so that a sheet can stand alone.
///
/// Throws std::runtime_error with the number of the line and what is wrong with it, such as
/// "line 7: '00:61:00' is no time, which is mm:ss:ff".
CdDisc ParseCueSheet(const std::string& text, const CueFileLength& lengthOf);

/// The same for a file; the files that it names are looked for in its folder. Errors name the sheet
/// too.
CdDisc ReadCueSheet(const std::string& path);

} // namespace Desk
