// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "hardware/timecode/interval_calc.h"
#include "source_site.h"
#include "timecode/timecode_sim_instance.h"

namespace Hardware::Timecode
{

namespace
{

constexpr char FatalSite[] = HARDWARE_FATAL_SITE("timecode/timecode_sim.cpp");

/// Sleep of a source that has no pace: its rate is 0 or not finite.
constexpr unsigned IdleMilliseconds = 10;
/// Longest single sleep, so that stopping stays quick at rates far below one frame per second.
constexpr unsigned SliceMilliseconds = 100;

/// Rate to convert positions by. The sign of a rate is the direction of play and nothing else:
/// converted by a negative rate, a falling index would count the seconds up.
double GetScale(double rate)
{
    return std::abs(rate);
}

/// Frame period to pace a rate by. Reverse play is paced as forward play is.
Interval GetPeriod(double rate)
{
    return toInterval(GetScale(rate));
}

/// What to sleep after a frame, given the pacer's result.
unsigned GetSleep(double rate, std::uint32_t result)
{
    if (rate == 0.0 || !std::isfinite(rate))
        return IdleMilliseconds;
    const auto milliseconds = static_cast<std::int32_t>(result);
    const std::int32_t least = rate < 0.0 ? 1 : 0;
    return static_cast<unsigned>(std::max(milliseconds, least));
}

} // namespace

DeviceSim::Sim::Sim(const Device::Id& id) : m_id(id) {}

DeviceSim::Sim::~Sim()
{
    Stop();
}

void DeviceSim::Sim::Start()
{
    if (IsStarted())
        return;
    m_started.store(true, std::memory_order_relaxed);
    m_thread.reset(new Os::Thread(&Sim::Main, this, "Timecode Simulator", 0,
                                  Os::Thread::DefaultSlice, Os::Thread::DefaultStack));
}

void DeviceSim::Sim::Stop()
{
    // Without the lock: the thread may be waiting for it and could then never be joined.
    RequestStop();
    m_thread.reset();
}

void DeviceSim::Sim::Jump(const Frame& frame)
{
    const Os::Key hold(m_lock);
    m_index = frame.toIndex(GetScale(m_rate));
}

void DeviceSim::Sim::SetRate(double rate)
{
    const Os::Key hold(m_lock);
    m_index = Frame(m_index, GetScale(m_rate)).toIndex(GetScale(rate));
    m_rate = rate;
    m_format = toFormat(rate);
}

void DeviceSim::Sim::SetFormat(TimecodeFormat format)
{
    const Os::Key hold(m_lock);
    // Read through the format, not the rate, on purpose: after SetRate(29.97) that is at 30.
    m_index = Frame(m_index, m_format).toIndex(format);
    m_format = format;
    m_rate = toRate(format);
}

double DeviceSim::Sim::GetRate() const
{
    const Os::Key hold(m_lock);
    return m_rate;
}

TimecodeFormat DeviceSim::Sim::GetFormat() const
{
    const Os::Key hold(m_lock);
    return m_format;
}

unsigned int DeviceSim::Sim::Main(void* args)
{
    OS_TRAP_AT(!args, 428, FatalSite);
    static_cast<Sim*>(args)->Run();
    return 0;
}

void DeviceSim::Sim::Run()
{
    IntervalCalc pacer(0.0);
    Frame frame(0, 0, 0, 0, false);
    double lastRate = 0.0;

    while (IsStarted()) {
        bool enabled = false;
        {
            const Os::Key hold(m_lock);
            enabled = IsEnabled();
            if (m_rate != lastRate) { // NaN differs from itself, so it always counts as changed
                pacer.SetInterval(GetPeriod(m_rate));
                lastRate = m_rate;
            }
            frame.fromIndex(m_index, GetScale(m_rate));
            // One frame a pass whatever the rate, which sets only the pace.
            if (m_rate > 0.0)
                m_index = m_index + 1.0;
            else if (m_rate < 0.0)
                m_index = m_index - 1.0;
        }
        if (enabled)
            m_id.device->emitFrameRead(m_id, frame);
        SleepWhileStarted(GetSleep(lastRate, pacer.GetMillisecs()));
    }
}

void DeviceSim::Sim::SleepWhileStarted(unsigned milliseconds) const
{
    do {
        const unsigned slice = std::min(milliseconds, SliceMilliseconds);
        Os::Thread::Sleep(slice);
        milliseconds -= slice;
    } while (milliseconds > 0 && IsStarted());
}

DeviceSim::DeviceSim(QObject* parent) : Device(TimecodeType_Simulated, parent) {}

DeviceSim::~DeviceSim()
{
    DeviceSim::Disable();
    // All of them first, so that their last sleeps pass side by side.
    for (const auto& [number, sim] : m_instances)
        sim->RequestStop();
    m_instances.clear();
}

void DeviceSim::Create(unsigned n)
{
    if (Find(n))
        return;
    const Id id{this, n};
    const auto pInsert = m_instances.emplace(n, kel::ptr<Sim>(new Sim(id)));
    OS_TRAP_AT(!pInsert.second, 113, FatalSite);
    emitDeviceAdded(id);
}

void DeviceSim::Destroy(unsigned n)
{
    m_instances.erase(n);
    // Reported also when there was none, on purpose unlike Create() of one that exists.
    emitDeviceRemoved({this, n});
}

bool DeviceSim::Start(unsigned n)
{
    Sim* const sim = Find(n);
    if (sim)
        sim->Start();
    return sim;
}

bool DeviceSim::Stop(unsigned n)
{
    Sim* const sim = Find(n);
    if (sim)
        sim->Stop();
    return sim;
}

bool DeviceSim::Enable(unsigned n)
{
    Sim* const sim = Find(n);
    if (sim)
        sim->Enable();
    return sim;
}

bool DeviceSim::Disable(unsigned n)
{
    Sim* const sim = Find(n);
    if (sim)
        sim->Disable();
    return sim;
}

bool DeviceSim::Jump(unsigned n, const Frame& frame)
{
    Sim* const sim = Find(n);
    if (sim)
        sim->Jump(frame);
    return sim;
}

bool DeviceSim::SetRate(unsigned n, double rate)
{
    Sim* const sim = Find(n);
    if (sim)
        sim->SetRate(rate);
    return sim;
}

bool DeviceSim::SetFormat(unsigned n, TimecodeFormat format)
{
    Sim* const sim = Find(n);
    if (sim)
        sim->SetFormat(format);
    return sim;
}

bool DeviceSim::IsStarted(unsigned n) const
{
    const Sim* const sim = Find(n);
    return sim && sim->IsStarted();
}

bool DeviceSim::IsEnabled(unsigned n) const
{
    const Sim* const sim = Find(n);
    return sim && sim->IsEnabled();
}

double DeviceSim::GetRate(unsigned n) const
{
    const Sim* const sim = Find(n);
    return sim ? sim->GetRate() : 0.0;
}

TimecodeFormat DeviceSim::GetFormat(unsigned n) const
{
    const Sim* const sim = Find(n);
    return sim ? sim->GetFormat() : TimecodeFormat_Invalid;
}

std::list<unsigned> DeviceSim::GetInstances() const
{
    std::list<unsigned> numbers;
    for (const auto& [number, sim] : m_instances)
        numbers.push_back(number);
    return numbers;
}

bool DeviceSim::Enable()
{
    for (const auto& [number, sim] : m_instances)
        sim->Enable();
    return true;
}

bool DeviceSim::Disable()
{
    for (const auto& [number, sim] : m_instances)
        sim->Disable();
    return true;
}

bool DeviceSim::IsEnabled() const
{
    return std::any_of(m_instances.begin(), m_instances.end(),
                       [](const auto& entry) { return entry.second->IsEnabled(); });
}

bool DeviceSim::IsActive() const
{
    return std::any_of(m_instances.begin(), m_instances.end(),
                       [](const auto& entry) { return entry.second->IsStarted(); });
}

DeviceSim::Sim* DeviceSim::Find(unsigned n) const
{
    const auto entry = m_instances.find(n);
    return entry == m_instances.end() ? nullptr : entry->second.get();
}

} // namespace Hardware::Timecode
