// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "desk/cd_drive.h"
#include "desk/desk_data.h"
#include "desk/flat_panel.h"
#include "desk/kernel_testbed.h"
#include "desk/ltc_player.h"
#include "desk/ltc_time.h"
#include "desk/midi_port.h"
#include "desk/physical_memory.h"
#include "desk/sensor_chip.h"
#include "desk/sequencer.h"
#include "desk/serial_peer.h"
#include "desk/serial_port.h"
#include "desk/virtual_network.h"
#include "desk/virtual_widget.h"
#include "desk/widget_bus.h"

namespace Desk
{

/// Has a board deliver a time that was read off its audio.
void SendTimecode(VirtualWidget& board, const LtcTime& time);

/// Everything that a desk's data names, as virtual devices. One per process; made after the
/// platform was configured and before the library first looks.
///
/// Devices are reached by their names. What is said of each device's own threads holds, but one
/// thread at a time works devices that allow only one; GetDisplays() and GetCondition() may be
/// called from any thread beside.
class VirtualDesk
{
public:
    /// Throws std::invalid_argument and std::runtime_error for what cannot be made.
    explicit VirtualDesk(DeskData data);
    ~VirtualDesk();
    VirtualDesk(const VirtualDesk&) = delete;
    VirtualDesk& operator=(const VirtualDesk&) = delete;

    const DeskData& GetData() const { return m_data; }
    WidgetBus& GetBus() { return m_bus; }
    const WidgetBus& GetBus() const { return m_bus; }
    VirtualNetwork& GetNetwork() { return m_network; }
    const VirtualNetwork& GetNetwork() const { return m_network; }
    /// Null without a drive.
    CdDrive* GetCdDrive() const { return m_cd.get(); }

    // These throw std::invalid_argument for a name that the desk does not have.
    VirtualWidget& GetWidget(const std::string& path) const;
    VirtualWidget& GetBoard(const std::string& path) const; ///< of LTC
    MidiPort& GetPort(const std::string& name) const;
    SerialPort& GetLine(const std::string& device) const;

    /// The panel at a line; null where somebody else is, or nobody.
    FlatPanel* FindPanel(const std::string& device) const;

    /// Which of the left, right and centre display the library dims on a console of this model.
    std::array<bool, 3> GetDimmedDisplays() const;
    /// How bright the left, right and centre display are made by what drives them, 0 to 1; 1 for
    /// one that the console's model does not dim.
    std::array<double, 3> GetDisplays() const;

    /// Plays timecode audio into an LTC board, in real time, in place of what plays. Throws
    /// std::runtime_error when the file cannot be read.
    void PlayTimecode(const std::string& path, const std::string& file, bool loop);
    void StopTimecode(const std::string& path);
    bool IsTimecodePlaying(const std::string& path) const;
    /// Lets the board hear nothing for so many seconds of the audio, as a bad cable does. Only
    /// while it plays: otherwise throws std::runtime_error.
    void DropTimecode(const std::string& path, double seconds);
    /// Whether the board hears nothing because of that.
    bool IsTimecodeDropped(const std::string& path) const;

    /// What was done to a device and lasts, such as "midi/Keys/busy" or "cd/scratch"; empty where
    /// nothing was. Any thread.
    std::string GetCondition(const std::string& name) const;
    std::map<std::string, std::string> GetConditions() const;
    void SetCondition(const std::string& name, const std::string& value);

private:
    struct Line;
    struct Tape;

    DeskData m_data;
    KernelTestbed m_testbed;
    Sequencer m_sequencer;
    std::vector<std::unique_ptr<MidiPort>> m_ports;
    std::vector<std::unique_ptr<Line>> m_lines;
    mutable std::mutex m_displayMutex; // one thread at a time reads what drives the displays
    PhysicalMemory m_memory;
    SensorChip m_chip;
    std::unique_ptr<CdDrive> m_cd;
    WidgetBus m_bus;
    VirtualNetwork m_network;
    mutable std::mutex m_mutex;
    std::map<std::string, std::string> m_conditions;      // guarded by m_mutex
    std::map<std::string, std::shared_ptr<Tape>> m_tapes; // guarded by m_mutex; play into the bus
};

} // namespace Desk
