// SPDX-License-Identifier: MIT
#include "widget/device_record.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Hardware
{

namespace Report = Standalone::Report;

DeviceRecord::DeviceRecord(Standalone::WidgetDescription description,
                           std::shared_ptr<Standalone::WidgetTransport> transport)
    : m_description(std::move(description)),
      m_model(Standalone::GetWingModel(*m_description.classId)), m_transport(std::move(transport))
{
}

bool DeviceRecord::IsAttached() const
{
    const std::lock_guard hold(m_mutex);
    return m_transport != nullptr;
}

void DeviceRecord::Detach()
{
    const std::lock_guard hold(m_mutex);
    m_transport.reset();
    m_connection.reset();
    m_isOpened = false;
    m_isReading = false;
}

std::shared_ptr<Standalone::WidgetConnection> DeviceRecord::OpenLocked()
{
    if (!m_connection && m_transport)
        m_connection = m_transport->Open(m_description.path);
    return m_connection;
}

void DeviceRecord::CloseIfUnusedLocked()
{
    if (m_holds == 0 && !m_isOpened && !m_isReading)
        m_connection.reset();
}

bool DeviceRecord::Open()
{
    const std::lock_guard hold(m_mutex);
    m_isOpened = OpenLocked() != nullptr;
    return m_isOpened;
}

bool DeviceRecord::Close()
{
    const std::lock_guard hold(m_mutex);
    m_isOpened = false;
    m_isReading = false;
    return std::exchange(m_connection, nullptr) != nullptr;
}

void DeviceRecord::Hold()
{
    const std::lock_guard hold(m_mutex);
    ++m_holds;
    OpenLocked();
}

void DeviceRecord::Release()
{
    const std::lock_guard hold(m_mutex);
    --m_holds;
    CloseIfUnusedLocked();
}

bool DeviceRecord::StartReader()
{
    const std::lock_guard hold(m_mutex);
    // Read also when it cannot be opened now: it reports all the same, and writing tries again.
    OpenLocked();
    m_isReading = m_transport != nullptr;
    return m_isReading;
}

bool DeviceRecord::StopReader()
{
    const std::lock_guard hold(m_mutex);
    const bool wasReading = std::exchange(m_isReading, false);
    CloseIfUnusedLocked();
    return wasReading;
}

bool DeviceRecord::IsReading() const
{
    const std::lock_guard hold(m_mutex);
    return m_isReading;
}

bool DeviceRecord::Write(const Report::Output& report)
{
    std::shared_ptr<Standalone::WidgetConnection> connection;
    {
        const std::lock_guard hold(m_mutex);
        connection = OpenLocked();
    }
    // Without the lock: a slow device must hold up nobody but its writer.
    return connection && connection->Write(Report::Encode(report));
}

int DeviceRecord::GetState(const States& states, unsigned short index) const
{
    const std::lock_guard hold(m_mutex);
    const auto found = states.find(index);
    return found == states.end() ? -1 : found->second;
}

int DeviceRecord::GetButtonState(unsigned short index) const
{
    return GetState(m_buttons, index);
}

int DeviceRecord::GetLedState(unsigned short index) const
{
    const std::lock_guard hold(m_mutex);
    const auto found = m_leds.find(index);
    return found == m_leds.end() ? -1 : found->second.state;
}

int DeviceRecord::GetFaderState(unsigned short index) const
{
    return GetState(m_faders, index);
}

bool DeviceRecord::WriteLed(unsigned short index, std::uint8_t state)
{
    unsigned long long turn = 0;
    {
        const std::lock_guard hold(m_mutex);
        turn = ++m_lastTurn;
        BeginLedLocked(index);
    }
    const bool isSent = Write(Report::SetLed{index, state});
    bool isDisputed = false;
    {
        const std::lock_guard hold(m_mutex);
        if (isSent)
            KeepLedLocked(index, state, turn);
        isDisputed = EndLedLocked(index);
    }
    if (isDisputed)
        RepeatLed(index);
    return isSent;
}

bool DeviceRecord::WriteAllLeds(std::uint8_t state)
{
    const auto count = static_cast<unsigned short>(m_model.leds.size());
    unsigned long long turn = 0;
    {
        const std::lock_guard hold(m_mutex);
        turn = ++m_lastTurn;
        for (unsigned short index = 0; index < count; ++index)
            BeginLedLocked(index);
    }
    const bool isSent = Write(Report::SetAllLed{state});
    std::vector<unsigned short> disputed;
    {
        const std::lock_guard hold(m_mutex);
        for (unsigned short index = 0; index < count; ++index) {
            if (isSent)
                KeepLedLocked(index, state, turn);
            if (EndLedLocked(index))
                disputed.push_back(index);
        }
    }
    for (const unsigned short index : disputed)
        RepeatLed(index);
    return isSent;
}

void DeviceRecord::BeginLedLocked(unsigned short index)
{
    Led& led = m_leds[index];
    led.hadSeveral = led.hadSeveral || led.writers > 0;
    ++led.writers;
}

bool DeviceRecord::EndLedLocked(unsigned short index)
{
    Led& led = m_leds[index];
    --led.writers;
    return led.writers == 0 && std::exchange(led.hadSeveral, false) && led.state != -1;
}

void DeviceRecord::KeepLedLocked(unsigned short index, int state, unsigned long long turn)
{
    Led& led = m_leds[index];
    if (turn < led.turn)
        return;
    led.turn = turn;
    led.state = state;
}

/// Again while others write the LED meanwhile; the last of them has to repeat it then.
void DeviceRecord::RepeatLed(unsigned short index)
{
    bool isDisputed = true;
    while (isDisputed) {
        int state = 0;
        {
            const std::lock_guard hold(m_mutex);
            BeginLedLocked(index);
            state = m_leds[index].state;
        }
        Write(Report::SetLed{index, static_cast<std::uint8_t>(state)});
        const std::lock_guard hold(m_mutex);
        isDisputed = EndLedLocked(index);
    }
}

void DeviceRecord::SetHash(unsigned int hash)
{
    const std::lock_guard hold(m_mutex);
    m_hash = hash;
}

unsigned int DeviceRecord::GetHash() const
{
    const std::lock_guard hold(m_mutex);
    return m_hash;
}

QRT_XWING_CONFIGURATION DeviceRecord::GetConfiguration() const
{
    const std::lock_guard hold(m_mutex);
    return m_configuration;
}

void DeviceRecord::Accept(Report::Input report)
{
    m_report = std::move(report);
    const std::lock_guard hold(m_mutex);
    if (const auto* const button = std::get_if<Report::Button>(&m_report)) {
        m_buttons[button->index] = button->pressed;
    } else if (const auto* const bar = std::get_if<Report::BarButton>(&m_report)) {
        m_buttons[static_cast<unsigned short>(bar->button)] = bar->pressed;
    } else if (const auto* const fader = std::get_if<Report::Fader>(&m_report)) {
        m_faders[fader->index] = fader->value;
    } else if (const auto* const motor = std::get_if<Report::MotorFader>(&m_report)) {
        m_faders[motor->index] = motor->value;
    } else if (const auto* const led = std::get_if<Report::LedChange>(&m_report)) {
        m_leds[led->index].state = led->state;
    } else if (const auto* const setup = std::get_if<Report::Configuration>(&m_report)) {
        m_configuration.version = setup->version;
        const std::size_t count =
            std::min(setup->surfaces.size(), std::size(m_configuration.surface));
        std::copy_n(setup->surfaces.begin(), count, std::begin(m_configuration.surface));
    }
}

} // namespace Hardware
