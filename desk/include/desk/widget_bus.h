// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Desk
{

class VirtualWidget;

/// A virtual widget as data.
struct WidgetData {
    std::string model; ///< such as "PlaybackWing"; see platform/standalone/widget
    std::optional<std::uint16_t> serialNumber; ///< none: the driver cannot read it
    std::wstring path;                         ///< empty for a place of the bus's own choice

    bool operator==(const WidgetData&) const = default;
};

/// Widgets made of software, under the widget driver in place of a real bus. Any thread may call
/// any operation, also from slots, but a bus is not made or destroyed in one. One bus at a time: a
/// second takes the place of the first.
///
/// While the bus waits, which it does unless told otherwise, every verb of it and of its widgets
/// returns when the driver has acted on it and all directly connected slots have run. On the
/// driver's own thread verbs never wait.
class WidgetBus
{
public:
    /// Goes under the driver.
    WidgetBus();
    /// Leaves the driver without devices. The widgets go with the bus.
    ~WidgetBus();
    WidgetBus(const WidgetBus&) = delete;
    WidgetBus& operator=(const WidgetBus&) = delete;

    /// Makes a widget and plugs it. It lives as long as the bus.
    /// Throws std::invalid_argument for an unknown model and for a path that is taken.
    VirtualWidget& Add(const WidgetData& data);
    /// The widget at a path; null when there is none.
    VirtualWidget* Find(const std::wstring& path) const;
    /// Every widget, plugged or not, in the order they were made.
    std::vector<VirtualWidget*> GetWidgets() const;

    void SetWaiting(bool waiting);
    /// Waits until the driver has acted on every verb so far.
    void Flush();

    struct Private;

private:
    const std::shared_ptr<Private> m_private;
};

/// Reads widgets from JSON: a list of objects with "model", and where wanted "serial" and "path".
/// Throws std::invalid_argument with the reason when it is anything else.
std::vector<WidgetData> ReadWidgetData(const std::string& json);

} // namespace Desk
