// SPDX-License-Identifier: MIT
#include "support/stepping_clock.h"

namespace TestSupport
{

SteppingClock::SteppingClock(Os::TimeMs start)
    : m_now(start), m_previous(Standalone::SetClockSource(this))
{
}

SteppingClock::~SteppingClock()
{
    Release();
    Standalone::SetClockSource(m_previous);
}

Os::TimeMs SteppingClock::GetMillisecs()
{
    const std::lock_guard hold(m_mutex);
    return m_now;
}

void SteppingClock::Sleep(unsigned milliseconds)
{
    std::unique_lock hold(m_mutex);
    const Os::TimeMs start = m_now;
    m_sleeps.push_back(milliseconds);
    m_changed.notify_all();
    m_changed.wait(hold, [&] { return m_released || m_now - start >= milliseconds; });
}

void SteppingClock::WaitForSleeps(std::size_t count)
{
    std::unique_lock hold(m_mutex);
    m_changed.wait(hold, [&] { return m_sleeps.size() >= count; });
}

void SteppingClock::Advance(unsigned milliseconds)
{
    const std::lock_guard hold(m_mutex);
    m_now += milliseconds;
    m_changed.notify_all();
}

unsigned SteppingClock::FinishNextSleep()
{
    std::unique_lock hold(m_mutex);
    m_changed.wait(hold, [&] { return m_sleeps.size() > m_finished; });
    const unsigned length = m_sleeps[m_finished];
    ++m_finished;
    m_now += length;
    m_changed.notify_all();
    return length;
}

std::vector<unsigned> SteppingClock::GetSleeps() const
{
    const std::lock_guard hold(m_mutex);
    return m_sleeps;
}

void SteppingClock::Release()
{
    const std::lock_guard hold(m_mutex);
    m_released = true;
    m_changed.notify_all();
}

} // namespace TestSupport
