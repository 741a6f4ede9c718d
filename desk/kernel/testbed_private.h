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
    DeskReleaseDevice* releaseDevice;
    DeskGetUse* getUse;
    DeskHideMachine* hideMachine;
    DeskRefuseMap* refuseMap;
    DeskSetLine* setLine;
    DeskGetLine* getLine;
    DeskLimitLine* limitLine;
    DeskStallLine* stallLine;
    DeskResumeLine* resumeLine;
    DeskSetPages* setPages;

    DeskDeviceUse GetUse(int device) const
    {
        DeskDeviceUse use{};
        getUse(device, &use);
        return use;
    }
};

} // namespace Desk
