// SPDX-License-Identifier: MIT
#include "widget/widget_signaller.h"

#include <algorithm>

#include "widget/signaller_state.h"
#include "widget/widget_driver.h"

namespace Hardware
{

bool WidgetSignaller::State::Watches(const GUID* classId)
{
    const std::lock_guard hold(mutex);
    return classes.contains(classId);
}

bool WidgetSignaller::State::Counts(const GUID* classId)
{
    const std::lock_guard hold(mutex);
    return everWatched.contains(classId);
}

bool WidgetSignaller::State::Watch(const GUID* classId)
{
    const std::lock_guard hold(mutex);
    everWatched.insert(classId);
    return classes.insert(classId).second;
}

int WidgetSignaller::State::FindLocked(const WidgetMapData& mapData) const
{
    const auto found = std::find_if(slots.begin(), slots.end(), [&](const auto& slot) {
        return slot && UmWidget::IsMapDataEqual(*slot, mapData);
    });
    return found == slots.end() ? -1 : static_cast<int>(found - slots.begin());
}

int WidgetSignaller::State::Find(const WidgetMapData& mapData)
{
    const std::lock_guard hold(mutex);
    return FindLocked(mapData);
}

void WidgetSignaller::State::Keep(const WidgetMapData& mapData)
{
    const std::lock_guard hold(mutex);
    if (FindLocked(mapData) != -1)
        return;
    const auto free = std::find(slots.begin(), slots.end(), std::nullopt);
    if (free == slots.end())
        slots.emplace_back(mapData);
    else
        *free = mapData;
}

void WidgetSignaller::State::Drop(const WidgetMapData& mapData)
{
    const std::lock_guard hold(mutex);
    const int index = FindLocked(mapData);
    if (index != -1)
        slots[static_cast<std::size_t>(index)].reset();
}

WidgetSignaller::WidgetSignaller(WidgetReader reader, QObject* parent)
    : QObject(parent), m_state(std::make_shared<State>(reader, parent))
{
    WidgetDriver::Get().AddSignaller(*this);
}

WidgetSignaller::~WidgetSignaller()
{
    WidgetDriver::Get().RemoveSignaller(*this);
}

void WidgetSignaller::SetAutoReadRegister(bool autoRead)
{
    m_state->autoRead.store(autoRead, std::memory_order_relaxed);
}

bool WidgetSignaller::RegisterWidgetClass(const GUID* classId)
{
    return m_state->Watches(classId) || WidgetDriver::Get().Register(*this, classId);
}

bool WidgetSignaller::UnregisterWidgetClass(const GUID* classId)
{
    const std::lock_guard hold(m_state->mutex);
    return m_state->classes.erase(classId) != 0;
}

int WidgetSignaller::GetWidgetIndex(const WidgetMapData& mapData) const
{
    return m_state->Find(mapData);
}

WidgetMapData WidgetSignaller::GetWidget(int index) const
{
    const std::lock_guard hold(m_state->mutex);
    const auto& slots = m_state->slots;
    const bool isKnown = index >= 0 && static_cast<std::size_t>(index) < slots.size();
    return isKnown ? slots[static_cast<std::size_t>(index)].value_or(WidgetMapData())
                   : WidgetMapData();
}

std::list<WidgetMapData> WidgetSignaller::GetActiveWidgets() const
{
    const std::lock_guard hold(m_state->mutex);
    std::list<WidgetMapData> active;
    for (const auto& slot : m_state->slots)
        if (slot)
            active.push_back(*slot);
    return active;
}

int WidgetSignaller::GetActiveWidgetCount() const
{
    return static_cast<int>(GetActiveWidgets().size());
}

} // namespace Hardware
