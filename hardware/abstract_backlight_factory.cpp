// SPDX-License-Identifier: MIT
#include "hardware/abstract_backlight_factory.h"

#include "hardware/tarnel4_backlight.h"
#include "hardware/vex4_backlight.h"
#include "hardware/zr4_backlight.h"
#include "os/platform.h"

namespace
{

AbstractBacklight* ChooseController()
{
    switch (Os::Platform::GetKelProductType()) {
    case 9:
    case 10:
    case 12:
    case 13:
    case 14: {
        static Tarnel4Backlight tn4;
        return &tn4;
    }
    case 8: {
        static Hardware::Zr4Backlight zr4;
        return &zr4;
    }
    default: {
        static Vex4Backlight vex4;
        return &vex4;
    }
    }
}

} // namespace

AbstractBacklight* AbstractBacklightFactory::GetBacklightController()
{
    static AbstractBacklight* const chosen = ChooseController();
    return chosen;
}
