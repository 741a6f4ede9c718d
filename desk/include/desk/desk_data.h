// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desk/virtual_network.h"
#include "desk/widget_bus.h"
#include "standalone/light_settings.h"
#include "standalone/platform_settings.h"

namespace Desk
{

/// A MIDI port of a desk.
struct MidiPortData {
    std::string name;      ///< at most 30 bytes
    bool isPlugged = true; ///< at the start
};

/// A serial line of a desk and who is at its far end.
struct SerialLineData {
    enum class Peer {
        Nobody,
        Panel, ///< a flat-panel controller
        Echo   ///< sends back what it gets
    };
    std::string device; ///< such as "/dev/ttyS0"
    Peer peer = Peer::Nobody;
};

/// A serial line's name in a path: the last part of its device, "ttyS0" of "/dev/ttyS0".
std::string GetLineName(const std::string& device);

/// What is in the drive at the start; at most one of the three says so.
struct CdData {
    std::string sheet;           ///< path of a CUE sheet
    std::vector<int> tracks;     ///< lengths of audio tracks, in seconds
    std::optional<int> dataDisc; ///< length of a disc of data, in seconds
};

/// A whole desk as data: what the console is, and everything that is plugged into it.
struct DeskData {
    std::string name;        ///< to be shown
    std::string description; ///< a sentence; may be empty
    Standalone::PlatformSettings platform;
    std::vector<WidgetData> widgets;
    std::vector<MidiPortData> midiPorts;
    std::vector<SerialLineData> serialLines;
    std::optional<CdData> cd; ///< no drive where there is none
    std::vector<AdapterData> adapters;
    std::vector<std::string> simulate; ///< timecode sources, such as "25,start=10:00:00:00"
    Standalone::LightSettings settings;
};

/// Throws std::invalid_argument for a timecode source that there cannot be. What a source can be is
/// known to whoever makes it.
typedef std::function<void(const std::string& source)> SourceCheck;

/// Reads a desk from JSON, in the form that data/desk/desk.schema.json describes.
///
/// Throws std::invalid_argument with "NAME:LINE: REASON" for the first thing that is wrong, names
/// that the form does not have included.
/// @param name   of the text, for what is said
/// @param folder that relative names of other files begin in; empty for the working folder
/// @param check  of the timecode sources
DeskData ParseDesk(const std::string& text, const std::string& name, const std::string& folder,
                   const SourceCheck& check = {});
/// The same for a file. Throws std::runtime_error when it cannot be read.
DeskData ReadDesk(const std::string& file, const SourceCheck& check = {});

} // namespace Desk
