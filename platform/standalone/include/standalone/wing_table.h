// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform_export.h"
#include "widget/class_ids.h"

namespace Hardware
{

/// What is known of one class of widgets: a row of the table in platform/standalone/widget/
/// wing_models.json. The numbers are the stand-alone platform's own, but for those that the wing
/// mapper and the beacon rely on.
struct WingModel {
    /// Part id and master id of each control, by index.
    typedef std::vector<std::pair<unsigned short, unsigned short>> Map;

    const GUID* classId = nullptr;
    std::string name;             ///< the model's class, such as "PlaybackWing"
    std::optional<unsigned> kind; ///< bits 16 to 23 of its keys; none for what has no key
    unsigned short productId = 0;
    bool isFrontPanel = false;
    int sections = 0;          ///< metric 0
    int mastersPerSection = 0; ///< metric 1
    Map buttons;
    Map leds;
    Map faders;
    bool hasMotorFaders = false; ///< all of its faders have a motor, or none
    Map encoders;
    Map lcds; ///< small displays
    /// Dimmer channels that have a light; the wing ignores levels for all others.
    std::vector<unsigned char> dimmers;
};

} // namespace Hardware

namespace Standalone
{

/// Every class of widgets, in the order of the class identifiers.
PLATFORM_EXPORT const std::vector<Hardware::WingModel>& GetWingModels();
/// A class's row. There is one for every identifier.
PLATFORM_EXPORT const Hardware::WingModel& GetWingModel(const GUID& classId);
/// The row of a model's name; null for an unknown one.
PLATFORM_EXPORT const Hardware::WingModel* FindWingModel(const std::string& name);

} // namespace Standalone
