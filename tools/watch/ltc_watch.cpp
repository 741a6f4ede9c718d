// SPDX-License-Identifier: MIT
#include "watch/ltc_watch.h"

#include <string>
#include <utility>

namespace Tools
{

using Hardware::Timecode::DeviceLtc;

LtcWatch::LtcWatch(EventTaker take, FrameTaker takeFrame)
    : m_take(std::move(take)), m_takeFrame(std::move(takeFrame))
{
    const auto report = [this](const char* signal, unsigned board, const char* text) {
        m_take({0, "timecode ltc " + std::to_string(board), signal, text, {{"number", board}}});
    };
    QObject::connect(
        &m_device, &DeviceLtc::deviceAdded, &m_device,
        [report](const DeviceLtc::Id& id) { report("deviceAdded", id.number, "added"); },
        Qt::DirectConnection);
    QObject::connect(
        &m_device, &DeviceLtc::deviceRemoved, &m_device,
        [report](const DeviceLtc::Id& id) { report("deviceRemoved", id.number, "removed"); },
        Qt::DirectConnection);
    QObject::connect(
        &m_device, &DeviceLtc::frameRead, &m_device,
        [this](const DeviceLtc::Id& id, const Hardware::Timecode::Frame& frame) {
            m_takeFrame(id.number, frame);
        },
        Qt::DirectConnection);
}

} // namespace Tools
