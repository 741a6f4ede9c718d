// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform_export.h"
#include "standalone/widget_report.h"
#include "widget/class_ids.h"

namespace Standalone
{

/// One attached device, as a transport tells the driver of it.
struct WidgetDescription {
    const GUID* classId = nullptr;             ///< address of an identifier; others are ignored
    std::wstring path;                         ///< where it is plugged; names the device
    std::optional<std::uint16_t> serialNumber; ///< none when it cannot be read
};

/// The driver's end of what a transport has to tell. Any thread may call any operation, also while
/// holding a lock of its own: the driver takes note and works on a thread of its own.
class WidgetObserver
{
public:
    virtual void Attached(const WidgetDescription& device) = 0;
    /// Of a device's last reports and its detachment, the one told first is acted on first.
    virtual void Detached(const std::wstring& path) = 0;
    virtual void Received(const std::wstring& path, Report::Bytes report) = 0;

protected:
    ~WidgetObserver() = default;
};

/// An open device. Destruction closes it. Any thread may write.
class PLATFORM_EXPORT WidgetConnection
{
public:
    virtual ~WidgetConnection();
    /// Sends one report. False when the device did not take it. Must return in bounded time.
    virtual bool Write(const Report::Bytes& report) = 0;
};

/// What carries reports between the driver and devices: a bus, or devices made of software.
class PLATFORM_EXPORT WidgetTransport
{
public:
    virtual ~WidgetTransport();
    /// Starts telling the observer of devices and reports. Null ends it: no call is running or
    /// comes after this has returned.
    virtual void SetObserver(WidgetObserver* observer) = 0;
    /// Devices attached now. The driver asks once, after setting the observer and on a thread of
    /// its own; a device it learns of twice is one device.
    virtual std::vector<WidgetDescription> Enumerate() = 0;
    /// Opens a device; null when it cannot. Must return in bounded time: other operations on the
    /// device wait for it, and the driver's thread may be the one that opens. A device reports
    /// whether or not it is open.
    virtual std::unique_ptr<WidgetConnection> Open(const std::wstring& path) = 0;
};

/// Puts a transport under the widget driver in place of the one before, whose devices count as
/// detached from now on. Null for none, as at the start. Returns when all slots and callbacks for
/// that have run; not to be called on the driver's thread.
PLATFORM_EXPORT void SetWidgetTransport(std::shared_ptr<WidgetTransport> transport);

/// Waits until the driver has acted on all that it was told before, slots included. On the
/// driver's own thread it returns at once.
PLATFORM_EXPORT void FlushWidgetDriver();

} // namespace Standalone
