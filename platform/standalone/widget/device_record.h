// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "standalone/widget_transport.h"
#include "standalone/wing_table.h"
#include "widget/expansion_wing.h"

namespace Hardware
{

/// One attached device: everything that the objects which stand for it share. Any thread may call
/// any operation, but for the two that are told to be the driver's own.
class DeviceRecord
{
public:
    DeviceRecord(Standalone::WidgetDescription description,
                 std::shared_ptr<Standalone::WidgetTransport> transport);
    DeviceRecord(const DeviceRecord&) = delete;
    DeviceRecord& operator=(const DeviceRecord&) = delete;

    const GUID& GetClassId() const { return *m_description.classId; }
    const std::wstring& GetPath() const { return m_description.path; }
    std::optional<std::uint16_t> GetSerialNumber() const { return m_description.serialNumber; }
    const WingModel& GetModel() const { return m_model; }

    bool IsAttached() const;
    /// From now on nothing reaches the device.
    void Detach();

    /// Opens the device on behalf of Close(). False when it is detached or cannot be opened.
    bool Open();
    /// Closes it, whoever holds it open.
    bool Close();
    /// Opens it for as long as it is held; holds are counted.
    void Hold();
    void Release();
    bool StartReader();
    bool StopReader();
    bool IsReading() const;

    /// Sends a report, opening the device if need be.
    bool Write(const Standalone::Report::Output& report);
    /// Sends the state of one LED, or of all LEDs, and keeps it. Of writers that work one LED at
    /// once, the one that began last gets its way, in the device and in what is kept.
    bool WriteLed(unsigned short index, std::uint8_t state);
    bool WriteAllLeds(std::uint8_t state);

    int GetButtonState(unsigned short index) const;
    int GetLedState(unsigned short index) const;
    int GetFaderState(unsigned short index) const;
    void SetHash(unsigned int hash);
    unsigned int GetHash() const;
    QRT_XWING_CONFIGURATION GetConfiguration() const;

    // The driver's thread only: the report that readers decode.

    /// Keeps a report for readers, and in the state what it tells of that.
    void Accept(Standalone::Report::Input report);
    const Standalone::Report::Input& GetReport() const { return m_report; }

private:
    typedef std::map<unsigned short, int> States;
    /// One LED. No lock is held over a write, which may raise a signal, so the order in which two
    /// writes at once reach the device is unknown. The last of them to end repeats what is kept.
    struct Led {
        int state = -1;              ///< as sent or reported last
        unsigned long long turn = 0; ///< of the write that sent it
        unsigned writers = 0;        ///< that are under way
        bool hadSeveral = false;     ///< since there was none under way
    };

    /// Null when it cannot be opened.
    std::shared_ptr<Standalone::WidgetConnection> OpenLocked();
    void CloseIfUnusedLocked();
    void BeginLedLocked(unsigned short index);
    /// True when several wrote the LED and none does any more: what is kept is to be repeated.
    bool EndLedLocked(unsigned short index);
    void KeepLedLocked(unsigned short index, int state, unsigned long long turn);
    void RepeatLed(unsigned short index);
    int GetState(const States& states, unsigned short index) const;

    const Standalone::WidgetDescription m_description;
    const WingModel& m_model;
    Standalone::Report::Input m_report; // the driver's thread only

    mutable std::mutex m_mutex;                               // guards all below
    std::shared_ptr<Standalone::WidgetTransport> m_transport; // null once detached
    std::shared_ptr<Standalone::WidgetConnection> m_connection;
    unsigned m_holds = 0;
    bool m_isOpened = false;
    bool m_isReading = false;
    States m_buttons;
    std::map<unsigned short, Led> m_leds;
    unsigned long long m_lastTurn = 0; // of writes to LEDs
    States m_faders;
    unsigned int m_hash = 0;
    QRT_XWING_CONFIGURATION m_configuration{};
};

} // namespace Hardware
