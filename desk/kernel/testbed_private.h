// SPDX-License-Identifier: MIT
#pragma once

#include <umockdev.h>

#include <string>

#include "desk/kernel_testbed.h"
#include "preload/device_faults.h"

namespace Desk
{

struct KernelTestbed::Private {
    UMockdevTestbed* testbed;
    std::string root;
    DeskAddDevice* addDevice;
    DeskSetFaults* setFaults;
    DeskRemoveDevice* removeDevice;
    DeskCountOpens* countOpens;
    DeskHideMachine* hideMachine;
};

} // namespace Desk
