// SPDX-License-Identifier: MIT
#include "hwctl/command.h"

namespace Hwctl
{

void AddLtcCommand(CLI::App& app, const CommonOptions&, Action& action)
{
    CLI::App* const command =
        app.add_subcommand("ltc", "Read and make longitudinal timecode as audio");
    command->require_subcommand(1);
    AddLtcDecodeCommand(*command, action);
    AddLtcGenerateCommand(*command, action);
}

} // namespace Hwctl
