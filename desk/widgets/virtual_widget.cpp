// SPDX-License-Identifier: MIT
#include "desk/virtual_widget.h"

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>
#include <type_traits>
#include <utility>

#include "widgets/bus_private.h"
#include "widgets/drawer_switch.h"
#include "widgets/signal_queue.h"
#include "widgets/widget_outputs.h"

namespace Desk
{

namespace Report = Standalone::Report;

namespace
{

/// The kind of a configuration that tells of displays.
constexpr std::int32_t DisplayConfiguration = 8;
constexpr unsigned CellsPerDisplay = 10;

template <class Map> int GetOr(const Map& map, typename Map::key_type key, int otherwise)
{
    const auto found = map.find(key);
    return found == map.end() ? otherwise : found->second;
}

} // namespace

struct VirtualWidget::Private {
    Private(std::weak_ptr<WidgetBus::Private> itsBus, WidgetData itsData)
        : bus(std::move(itsBus)), data(std::move(itsData)),
          model(*Standalone::FindWingModel(data.model))
    {
    }

    Report::Input MakeFaderReport(std::uint16_t fader, std::int32_t value) const
    {
        if (model.hasMotorFaders)
            return Report::MotorFader{fader, value};
        return Report::Fader{fader, value};
    }

    /// What is remembered of a report beside the outputs. The caller holds the lock.
    void Note(const Report::Output& report)
    {
        log.push_back(report);
        if (log.size() > LogLimit)
            log.pop_front();
        if (const auto* const beacon = std::get_if<Report::Beacon>(&report)) {
            beacons.push_back(beacon->section);
            if (beacons.size() > LogLimit)
                beacons.erase(beacons.begin());
        }
        if (const auto* const fader = std::get_if<Report::SetFader>(&report))
            faders[fader->index] = fader->position;
    }

    const std::weak_ptr<WidgetBus::Private> bus;
    const WidgetData data;
    const Hardware::WingModel& model;

    /// Keeps plugging, moving and telling in one order; taken before the other and before the
    /// bus's.
    std::mutex order;

    mutable std::mutex mutex; // guards all below
    bool isPlugged = false;
    bool isFailing = false;
    std::map<std::uint16_t, int> buttons;
    std::map<std::uint16_t, int> faders;
    std::uint32_t configurationVersion = 0;
    WidgetOutputs outputs;
    std::vector<std::uint8_t> beacons;
    int openNow = 0;
    int openedEver = 0;
    std::deque<Report::Output> log;

    /// Signals are put in under the lock, with the change that they report.
    SignalQueue signals;
};

VirtualWidget::VirtualWidget(std::weak_ptr<WidgetBus::Private> bus, WidgetData data)
    : m_private(new Private(std::move(bus), std::move(data)))
{
}

VirtualWidget::~VirtualWidget() = default;

const WidgetData& VirtualWidget::GetData() const
{
    return m_private->data;
}

const Hardware::WingModel& VirtualWidget::GetModel() const
{
    return m_private->model;
}

std::uint32_t VirtualWidget::GetKey() const
{
    const auto kind = GetModel().kind;
    const auto serialNumber = GetData().serialNumber;
    return kind && serialNumber ? *kind << 16U | *serialNumber : 0xFFFFFFFF;
}

void VirtualWidget::Plug()
{
    SetPlugged(true);
}

void VirtualWidget::Unplug()
{
    SetPlugged(false);
}

void VirtualWidget::SetPlugged(bool isPlugged)
{
    const auto bus = m_private->bus.lock();
    {
        const std::lock_guard keepOrder(m_private->order);
        {
            const std::lock_guard hold(m_private->mutex);
            if (std::exchange(m_private->isPlugged, isPlugged) == isPlugged)
                return;
            m_private->outputs = {}; // what it showed, it showed by its power
            m_private->signals.Put([this, isPlugged] { Q_EMIT plugged(isPlugged); });
        }
        if (bus && isPlugged)
            bus->TellAttached(*this);
        else if (bus)
            bus->TellDetached(*this);
    }
    if (bus)
        bus->WaitIfWaiting();
    m_private->signals.Raise();
}

bool VirtualWidget::IsPlugged() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->isPlugged;
}

/// Does what a hand does: changes a control, which makes a report, and tells of it, with nothing
/// told in between. So what was told last is how the control stands.
template <class Change> void VirtualWidget::Act(Change change)
{
    {
        const std::lock_guard keepOrder(m_private->order);
        std::unique_lock hold(m_private->mutex);
        const Report::Input report = change(*m_private);
        hold.unlock();
        Tell(Report::Encode(report));
    }
    if (const auto bus = m_private->bus.lock())
        bus->WaitIfWaiting();
}

/// With the order held.
void VirtualWidget::Tell(const Report::Bytes& bytes)
{
    const auto bus = m_private->bus.lock();
    if (bus && IsPlugged())
        bus->TellReport(*this, bytes);
}

void VirtualWidget::SendBytes(const Report::Bytes& bytes)
{
    {
        const std::lock_guard keepOrder(m_private->order);
        Tell(bytes);
    }
    if (const auto bus = m_private->bus.lock())
        bus->WaitIfWaiting();
}

void VirtualWidget::Send(const Report::Input& report)
{
    SendBytes(Report::Encode(report));
}

void VirtualWidget::Press(std::uint16_t button)
{
    Act([&](Private& state) {
        state.buttons[button] = 1;
        return Report::Button{button, 1};
    });
}

void VirtualWidget::Release(std::uint16_t button)
{
    Act([&](Private& state) {
        state.buttons[button] = 0;
        return Report::Button{button, 0};
    });
}

void VirtualWidget::MoveFader(std::uint16_t fader, std::int32_t value)
{
    Act([&](Private& state) {
        state.faders[fader] = value;
        return state.MakeFaderReport(fader, value);
    });
}

void VirtualWidget::TurnEncoder(std::uint16_t encoder, std::int32_t delta)
{
    Send(Report::Encoder{encoder, delta});
}

void VirtualWidget::RollTrackball(std::int32_t dx, std::int32_t dy)
{
    Send(Report::WingTrackball{dx, dy});
}

void VirtualWidget::RollAxis(std::int32_t axis, std::int32_t value)
{
    Send(Report::TrackballAxis{axis, value});
}

void VirtualWidget::TouchBar(std::int32_t button, bool pressed)
{
    Send(Report::BarButton{button, pressed});
}

void VirtualWidget::ChangeLed(std::uint16_t led, std::uint8_t state)
{
    Act([&](Private& widget) {
        if (widget.isPlugged)
            widget.outputs.leds[led] = state;
        return Report::LedChange{led, state};
    });
}

void VirtualWidget::OpenDrawer()
{
    MoveDrawer(true);
}

void VirtualWidget::CloseDrawer()
{
    MoveDrawer(false);
}

/// The drawer works its switch, and the wing tells of it besides.
void VirtualWidget::MoveDrawer(bool open)
{
    const auto& buttons = GetModel().buttons;
    const auto found = std::find(buttons.begin(), buttons.end(), DrawerSwitch);
    if (found == buttons.end())
        return;
    const auto button = static_cast<std::uint16_t>(found - buttons.begin());
    if (open)
        Release(button);
    else
        Press(button);
    Send(Report::KeyboardDrawer{0, open ? 0 : 1});
}

void VirtualWidget::Configure(const std::vector<std::uint8_t>& surfaces)
{
    Act([&](Private& state) {
        return Report::Configuration{DisplayConfiguration, ++state.configurationVersion, surfaces};
    });
}

void VirtualWidget::SendTimecode(const Report::Timecode& timecode)
{
    Send(timecode);
}

/// Answers a refresh. It never waits: the writer may be a slot, or hold locks that slots take.
void VirtualWidget::ReportAll()
{
    const std::lock_guard keepOrder(m_private->order);
    std::vector<Report::Input> reports;
    {
        const std::lock_guard hold(m_private->mutex);
        for (const auto& [button, state] : m_private->buttons)
            reports.emplace_back(Report::Button{button, static_cast<std::uint8_t>(state)});
        for (const auto& [fader, value] : m_private->faders)
            reports.push_back(m_private->MakeFaderReport(fader, value));
    }
    for (const Report::Input& report : reports)
        Tell(Report::Encode(report));
}

void VirtualWidget::SetFailing(bool failing)
{
    const std::lock_guard hold(m_private->mutex);
    m_private->isFailing = failing;
}

bool VirtualWidget::IsFailing() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->isFailing;
}

bool VirtualWidget::Accept(const Report::Bytes& bytes)
{
    const auto report = Report::DecodeOutput(bytes);
    if (!report)
        return false;
    {
        // Looked at, changed and put in line in one step: no output outlives the widget's power.
        const std::lock_guard hold(m_private->mutex);
        if (!m_private->isPlugged || m_private->isFailing)
            return false;
        m_private->Note(*report);
        if (auto signal = Apply(*report, m_private->outputs, *this))
            m_private->signals.Put(std::move(signal));
    }
    m_private->signals.Raise();
    if (std::holds_alternative<Report::Refresh>(*report))
        ReportAll();
    return true;
}

void VirtualWidget::CountConnection(int change)
{
    const std::lock_guard hold(m_private->mutex);
    m_private->openNow += change;
    if (change > 0)
        m_private->openedEver += change;
}

int VirtualWidget::GetLed(std::uint16_t led) const
{
    const std::lock_guard hold(m_private->mutex);
    return GetOr(m_private->outputs.leds, led, -1);
}

int VirtualWidget::GetFader(std::uint16_t fader) const
{
    const std::lock_guard hold(m_private->mutex);
    return GetOr(m_private->outputs.motorFaders, fader, -1);
}

int VirtualWidget::GetDimmer(std::uint8_t channel) const
{
    const std::lock_guard hold(m_private->mutex);
    return GetOr(m_private->outputs.dimmers, channel, -1);
}

int VirtualWidget::GetLcdBrightness(std::uint16_t lcd) const
{
    const std::lock_guard hold(m_private->mutex);
    return GetOr(m_private->outputs.lcdBrightness, lcd, m_private->outputs.allLcds);
}

std::u32string VirtualWidget::GetLcdText(std::uint16_t lcd) const
{
    const std::lock_guard hold(m_private->mutex);
    const auto found = m_private->outputs.lcdTexts.find(lcd);
    return found == m_private->outputs.lcdTexts.end() ? std::u32string() : found->second;
}

std::uint32_t VirtualWidget::GetCell(unsigned display, unsigned cell) const
{
    const std::lock_guard hold(m_private->mutex);
    const std::size_t place = std::size_t{display} * CellsPerDisplay + cell;
    return place < m_private->outputs.cells.cells.size() ? m_private->outputs.cells.cells[place]
                                                         : 0;
}

std::uint8_t VirtualWidget::GetSurface(unsigned display) const
{
    const std::lock_guard hold(m_private->mutex);
    return display < m_private->outputs.cells.surfaces.size()
               ? m_private->outputs.cells.surfaces[display]
               : std::uint8_t{0};
}

bool VirtualWidget::IsAsleep() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->outputs.isAsleep;
}

Report::SetLinkLights VirtualWidget::GetLinkLights() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->outputs.linkLights;
}

std::vector<std::uint8_t> VirtualWidget::GetBeacons() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->beacons;
}

int VirtualWidget::CountOpen() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->openNow;
}

int VirtualWidget::CountOpened() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->openedEver;
}

std::vector<Report::Output> VirtualWidget::GetLog() const
{
    const std::lock_guard hold(m_private->mutex);
    return {m_private->log.begin(), m_private->log.end()};
}

void VirtualWidget::ClearLog()
{
    const std::lock_guard hold(m_private->mutex);
    m_private->log.clear();
    m_private->beacons.clear();
}

} // namespace Desk
