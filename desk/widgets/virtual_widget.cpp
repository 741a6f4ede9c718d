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
    std::map<std::uint16_t, int> leds;
    std::map<std::uint16_t, int> motorFaders;
    std::map<std::uint8_t, int> dimmers;
    std::map<std::uint16_t, int> lcdBrightness;
    int allLcds = -1;
    std::map<std::uint16_t, std::u32string> lcdTexts;
    Report::WriteCells cells;
    bool isAsleep = false;
    Report::SetLinkLights linkLights;
    std::vector<std::uint8_t> beacons;
    int openNow = 0;
    int openedEver = 0;
    std::deque<Report::Output> log;
};

/// What each output does to the widget: a change of state under the lock, then a signal.
struct VirtualWidget::OutputHandler {
    VirtualWidget& widget;
    Private& state;

    template <class Change> void Do(Change change)
    {
        const std::lock_guard hold(state.mutex);
        change();
    }
    void operator()(const Report::SetLed& report)
    {
        Do([&] { state.leds[report.index] = report.state; });
        Q_EMIT widget.ledChanged(report.index, report.state);
    }
    void operator()(const Report::SetAllLed& report)
    {
        Do([&] {
            for (std::size_t led = 0; led < state.model.leds.size(); ++led)
                state.leds[static_cast<std::uint16_t>(led)] = report.state;
        });
        Q_EMIT widget.allLedsChanged(report.state);
    }
    void operator()(const Report::SetDimmer& report)
    {
        Do([&] { state.dimmers[report.channel] = report.level; });
        Q_EMIT widget.dimmerChanged(report.channel, report.level);
    }
    void operator()(const Report::SetFader& report)
    {
        Do([&] {
            state.motorFaders[report.index] = report.position;
            state.faders[report.index] = report.position;
        });
        Q_EMIT widget.faderMoved(report.index, report.position);
    }
    void operator()(const Report::SetLcdColor& report) { Q_EMIT widget.lcdChanged(report.lcd); }
    void operator()(const Report::SetLcdBrightness& report)
    {
        Do([&] { state.lcdBrightness[report.lcd] = report.brightness; });
        Q_EMIT widget.lcdChanged(report.lcd);
    }
    void operator()(const Report::SetAllLcdBrightness& report)
    {
        Do([&] {
            state.allLcds = report.brightness;
            state.lcdBrightness.clear();
        });
        Q_EMIT widget.allLcdsChanged(report.brightness);
    }
    void operator()(const Report::SetLcdText& report)
    {
        Do([&] { state.lcdTexts[report.lcd].assign(report.text.begin(), report.text.end()); });
        Q_EMIT widget.lcdChanged(report.lcd);
    }
    void operator()(const Report::SetLcdFlash& report) { Q_EMIT widget.lcdChanged(report.lcd); }
    void operator()(const Report::SetHash&) {}
    void operator()(const Report::SetSleep& report)
    {
        Do([&] { state.isAsleep = report.sleep != 0; });
        Q_EMIT widget.sleepChanged(report.sleep != 0);
    }
    void operator()(const Report::Beacon& report)
    {
        Do([&] {
            state.beacons.push_back(report.section);
            if (state.beacons.size() > LogLimit)
                state.beacons.erase(state.beacons.begin());
        });
        Q_EMIT widget.beaconed(report.section);
    }
    void operator()(const Report::Refresh&) { widget.ReportAll(); }
    void operator()(const Report::WriteCells& report)
    {
        Do([&] { state.cells = report; });
        Q_EMIT widget.cellsWritten();
    }
    void operator()(const Report::SetLinkLights& report)
    {
        Do([&] { state.linkLights = report; });
        Q_EMIT widget.linkLightsChanged();
    }
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
    const auto bus = m_private->bus.lock();
    {
        const std::lock_guard keepOrder(m_private->order);
        {
            const std::lock_guard hold(m_private->mutex);
            if (std::exchange(m_private->isPlugged, true))
                return;
        }
        if (bus)
            bus->TellAttached(*this);
    }
    if (bus)
        bus->WaitIfWaiting();
    Q_EMIT plugged(true);
}

void VirtualWidget::Unplug()
{
    const auto bus = m_private->bus.lock();
    {
        const std::lock_guard keepOrder(m_private->order);
        {
            const std::lock_guard hold(m_private->mutex);
            if (!std::exchange(m_private->isPlugged, false))
                return;
        }
        if (bus)
            bus->TellDetached(*this);
    }
    if (bus)
        bus->WaitIfWaiting();
    Q_EMIT plugged(false);
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
        widget.leds[led] = state;
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
        const std::lock_guard hold(m_private->mutex);
        if (!m_private->isPlugged || m_private->isFailing)
            return false;
        m_private->log.push_back(*report);
        if (m_private->log.size() > LogLimit)
            m_private->log.pop_front();
    }
    OutputHandler handler{*this, *m_private};
    std::visit(handler, *report);
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
    return GetOr(m_private->leds, led, -1);
}

int VirtualWidget::GetFader(std::uint16_t fader) const
{
    const std::lock_guard hold(m_private->mutex);
    return GetOr(m_private->motorFaders, fader, -1);
}

int VirtualWidget::GetDimmer(std::uint8_t channel) const
{
    const std::lock_guard hold(m_private->mutex);
    return GetOr(m_private->dimmers, channel, -1);
}

int VirtualWidget::GetLcdBrightness(std::uint16_t lcd) const
{
    const std::lock_guard hold(m_private->mutex);
    return GetOr(m_private->lcdBrightness, lcd, m_private->allLcds);
}

std::u32string VirtualWidget::GetLcdText(std::uint16_t lcd) const
{
    const std::lock_guard hold(m_private->mutex);
    const auto found = m_private->lcdTexts.find(lcd);
    return found == m_private->lcdTexts.end() ? std::u32string() : found->second;
}

std::uint32_t VirtualWidget::GetCell(unsigned display, unsigned cell) const
{
    const std::lock_guard hold(m_private->mutex);
    const std::size_t place = std::size_t{display} * CellsPerDisplay + cell;
    return place < m_private->cells.cells.size() ? m_private->cells.cells[place] : 0;
}

std::uint8_t VirtualWidget::GetSurface(unsigned display) const
{
    const std::lock_guard hold(m_private->mutex);
    return display < m_private->cells.surfaces.size() ? m_private->cells.surfaces[display]
                                                      : std::uint8_t{0};
}

bool VirtualWidget::IsAsleep() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->isAsleep;
}

Report::SetLinkLights VirtualWidget::GetLinkLights() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->linkLights;
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
