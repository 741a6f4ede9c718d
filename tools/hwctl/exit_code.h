// SPDX-License-Identifier: MIT
#pragma once

namespace Hwctl
{

/// What hwctl returns to whoever started it.
enum ExitCode {
    ExitCode_Success = 0, ///< all done, nothing lost
    ExitCode_Failure = 1, ///< what was asked for could not be done, or something was lost
    ExitCode_Usage = 2    ///< the command line is wrong
};

} // namespace Hwctl
