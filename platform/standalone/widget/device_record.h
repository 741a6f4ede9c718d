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

    int GetButtonState(unsigned short index) const;
    int GetLedState(unsigned short index) const;
    int GetFaderState(unsigned short index) const;
    void SetLedState(unsigned short index, int state);
    void SetAllLedStates(int state);
    void SetHash(unsigned int hash);
    unsigned int GetHash() const;
    QRT_XWING_CONFIGURATION GetConfiguration() const;

    // The driver's thread only: the report that readers decode.

    /// Keeps a report for readers, and in the state what it tells of that.
    void Accept(Standalone::Report::Input report);
    const Standalone::Report::Input& GetReport() const { return m_report; }

private:
    typedef std::map<unsigned short, int> States;

    /// Null when it cannot be opened.
    std::shared_ptr<Standalone::WidgetConnection> OpenLocked();
    void CloseIfUnusedLocked();
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
    States m_leds;
    States m_faders;
    unsigned int m_hash = 0;
    QRT_XWING_CONFIGURATION m_configuration{};
};

} // namespace Hardware
