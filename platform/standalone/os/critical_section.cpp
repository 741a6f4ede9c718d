// SPDX-License-Identifier: MIT
#include "os/critical_section.h"

namespace Os
{

void CriticalSection::Enter()
{
    m_mutex.lock();
}

void CriticalSection::Leave()
{
    m_mutex.unlock();
}

} // namespace Os
