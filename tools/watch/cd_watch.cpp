// SPDX-License-Identifier: MIT
#include "watch/cd_watch.h"

#include <utility>

#include "watch/cd_facts.h"

namespace Tools
{

using Hardware::Timecode::DeviceCd;

CdWatch::CdWatch(EventTaker take, FrameTaker takeFrame)
    : m_take(std::move(take)), m_takeFrame(std::move(takeFrame))
{
    const auto report = [this](const char* signal, const DeviceCd::Id& id, const char* text) {
        m_take({0, CdSource, signal, text, {{"number", id.number}}});
    };
    QObject::connect(
        &m_device, &DeviceCd::deviceAdded, &m_device,
        [report](const DeviceCd::Id& id) { report("deviceAdded", id, "added"); },
        Qt::DirectConnection);
    QObject::connect(
        &m_device, &DeviceCd::deviceRemoved, &m_device,
        [report](const DeviceCd::Id& id) { report("deviceRemoved", id, "removed"); },
        Qt::DirectConnection);
    QObject::connect(
        &m_device, &DeviceCd::frameRead, &m_device,
        [this](const DeviceCd::Id&, const Hardware::Timecode::Frame& frame) { m_takeFrame(frame); },
        Qt::DirectConnection);
}

void CdWatch::Start()
{
    if (!m_device.Enable())
        throw std::runtime_error(FindCdProblem());
}

} // namespace Tools
