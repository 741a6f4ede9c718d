// SPDX-License-Identifier: MIT

// Posts arbitrary messages and compares what the console's lights make of them with a model that
// goes by the layout of messages.

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <vector>

#include "gut/application.h"
#include "hardware/console_light_fading.h"
#include "os/post.h"
#include "require.h"
#include "standalone/light_settings.h"
#include "standalone/messages.h"
#include "standalone/platform_settings.h"

namespace
{

using namespace Hardware;
using Fuzz::Require;
using Standalone::LightSettings;
using Standalone::PlatformSettings;

typedef std::vector<unsigned char> Bytes;

constexpr unsigned Application = 3;

constexpr uires16 Percent(unsigned percent)
{
    return percent << 16U;
}

/// Different from each other and from what the lights begin with.
LightSettings MakeSettings(unsigned choices)
{
    LightSettings settings;
    settings.backlightLeft = Percent(11);
    settings.backlightRight = Percent(12);
    settings.backlightCenter = Percent(13);
    settings.desklightBlue = (choices & 1U) != 0;
    settings.desklight = Percent(14);
    settings.ventlight = Percent(15);
    settings.worklightOn = (choices & 2U) != 0;
    settings.worklight = Percent(16);
    settings.keyboardDrawerEnabled = (choices & 4U) != 0;
    settings.keyboardDrawer = Percent(17);
    settings.leds = Percent(18);
    settings.lcds = Percent(19);
    return settings;
}

PlatformSettings MakePlatform(unsigned choices)
{
    PlatformSettings platform;
    platform.hasVentLight = (choices & 8U) != 0;
    platform.hasWorklights = (choices & 16U) != 0;
    platform.hasIlluminatedKeyboardDrawer = (choices & 32U) != 0;
    return platform;
}

/// What a light is to have, of one that begins like all.
struct Light {
    uires16 level = 0;
    uires16 preference = 0;
    bool isWanted = true;

    bool operator==(const Light&) const = default;
};

/// The lights by the layout of messages. A fade is never stepped here, so it changes no level.
class Model
{
public:
    Model(const LightSettings& settings, const PlatformSettings& platform, bool isDrawerOpen)
        : m_settings(settings), m_platform(platform), m_isDrawerOpen(isDrawerOpen)
    {
        for (const ConsoleLightId id :
             {LeftBacklight, RightBacklight, CenterBacklight, KeyboardDrawerLight, VentLight,
              WorkLight, BlueDeskLight, WhiteDeskLight})
            lights[id] = {Percent(100), Percent(100)};
    }

    /// Whether the lights consume it.
    bool Take(const Bytes& message)
    {
        const auto type = Number(message, 0, 4);
        if (type == 11 && Number(message, 6, 2) == 473)
            PressKey();
        else if (type == 22 && Number(message, 4, 4) == 11)
            ApplyAtOnce();
        else if (type == 22 && Number(message, 4, 4) == 12)
            ApplyWithFades(Number(message, 8, 1));
        else
            return false;
        return true;
    }

    std::array<Light, ConsoleLightCount> lights;
    unsigned notices = 0; // of a toggled work light, that are to be posted

private:
    /// None, as -1, where the message ends before it does.
    static std::int64_t Number(const Bytes& message, std::size_t offset, std::size_t size)
    {
        if (message.size() < offset + size)
            return -1;
        std::int64_t number = 0;
        for (std::size_t i = size; i-- > 0;)
            number = number * 256 + message[offset + i];
        return number;
    }
    uires16 GetWork() const { return m_settings.worklightOn ? m_settings.worklight : 0; }
    uires16 GetDrawer() const
    {
        return m_settings.keyboardDrawerEnabled && m_isDrawerOpen ? m_settings.keyboardDrawer
                                                                  : GetWork();
    }
    void PressKey()
    {
        ++notices;
        m_settings.worklightOn = !m_settings.worklightOn;
        lights[WorkLight].level = GetWork();
        lights[KeyboardDrawerLight].level = GetDrawer();
    }
    void ApplyAtOnce()
    {
        lights[LeftBacklight].level = m_settings.backlightLeft;
        lights[RightBacklight].level = m_settings.backlightRight;
        lights[CenterBacklight].level = m_settings.backlightCenter;
        lights[BlueDeskLight].level = m_settings.desklightBlue ? m_settings.desklight : 0;
        lights[WhiteDeskLight].level = m_settings.desklightBlue ? 0 : m_settings.desklight;
        if (m_platform.hasWorklights)
            lights[WorkLight] = {GetWork(), GetWork()};
        if (m_platform.hasVentLight)
            lights[VentLight] = {m_settings.ventlight, m_settings.ventlight};
        if (m_platform.hasIlluminatedKeyboardDrawer) {
            lights[KeyboardDrawerLight] = {GetDrawer(), m_settings.keyboardDrawer,
                                           m_settings.keyboardDrawerEnabled};
        } else {
            lights[KeyboardDrawerLight].level = GetWork();
            lights[KeyboardDrawerLight].preference = GetWork();
        }
        ApplyLeds();
    }
    void ApplyWithFades(std::int64_t flags)
    {
        if (flags > 0 && flags % 2 == 1)
            ApplyPreferences();
        ApplyLeds();
    }
    void ApplyPreferences()
    {
        if (lights[LeftBacklight].level != m_settings.backlightLeft)
            lights[LeftBacklight].preference = m_settings.backlightLeft;
        if (m_platform.hasVentLight)
            lights[VentLight].preference = m_settings.ventlight;
        if (!m_platform.hasWorklights)
            return;
        if (!m_platform.hasIlluminatedKeyboardDrawer && lights[WorkLight].preference != GetWork())
            lights[KeyboardDrawerLight].preference = GetWork();
        lights[WorkLight].preference = GetWork();
        if (m_platform.hasIlluminatedKeyboardDrawer) {
            lights[KeyboardDrawerLight].preference = m_settings.keyboardDrawer;
            lights[KeyboardDrawerLight].isWanted = m_settings.keyboardDrawerEnabled;
        }
    }
    void ApplyLeds()
    {
        lights[WingLeds].level = m_settings.leds;
        lights[ProgrammerWingLeds].level = m_settings.leds;
        lights[Lcds].level = m_settings.lcds;
    }

    LightSettings m_settings;
    const PlatformSettings m_platform;
    const bool m_isDrawerOpen;
};

/// Stands after the lights and gets what they pass on.
class Rest : public Gut::MessageHandler
{
public:
    Rest()
    {
        ConsoleLightFading::Get(); // ahead of it
        GutConsoleApplication::Get()->InstallMessageFilter(this);
    }
    bool FilterMessage(const Gut::Message& message) override
    {
        messages.emplace_back(message.Data(), message.Data() + message.Size());
        return false;
    }
    std::vector<Bytes> messages;
};

void Begin(unsigned choices, bool isDrawerOpen)
{
    Standalone::ConfigurePlatform(MakePlatform(choices));
    Standalone::SetLightSettings(MakeSettings(choices));
    ConsoleLights& lights = ConsoleLights::Get();
    lights.init();
    for (unsigned id = 0; id < ConsoleLightCount; ++id)
        lights.set_preference_state(static_cast<ConsoleLightId>(id), true);
    ConsoleLightFading::Get().keyboard_changed(0, 0, isDrawerOpen ? 0 : 1);
    ConsoleLightFading::Get().reset();
}

std::array<Light, ConsoleLightCount> GetLights()
{
    std::array<Light, ConsoleLightCount> list;
    ConsoleLights& lights = ConsoleLights::Get();
    for (unsigned number = 0; number < ConsoleLightCount; ++number) {
        const auto id = static_cast<ConsoleLightId>(number);
        list[number] = {lights.get(id), lights.get_preference(id), lights.get_preference_state(id)};
    }
    return list;
}

/// Messages on their way: those to the lights, and what the model makes of each.
class Post
{
public:
    explicit Post(Model& model) : m_model(model) {}

    void Send(const Bytes& message)
    {
        Os::Post(Gut::Message(message.data(), message.size()), Application);
        m_waiting.push_back(message);
    }
    std::size_t CountWaiting() const { return m_waiting.size(); }
    void Deliver()
    {
        Standalone::DeliverMessages();
        while (!m_waiting.empty()) {
            const Bytes message = m_waiting.front();
            m_waiting.pop_front();
            m_model.notices = 0;
            if (!m_model.Take(message))
                passed.push_back(message);
            // Behind all that waits, like anything that is posted.
            if (m_model.notices != 0)
                m_waiting.push_back({22, 0, 0, 0, 13, 0, 0, 0, 0, 0, 0, 0});
        }
    }
    std::vector<Bytes> passed; // on, by the lights

private:
    Model& m_model;
    std::deque<Bytes> m_waiting;
};

} // namespace

// The first byte says what the user has set and what the console has. Then come messages, each
// after a byte with its length in the lower six bits; where the topmost is set, it waits for the
// next one.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    constexpr std::size_t MostWaiting = 64;
    static Rest rest;
    if (size == 0)
        return 0;
    const bool isDrawerOpen = (*data & 64U) != 0;
    Begin(*data, isDrawerOpen);
    Model model(MakeSettings(*data), MakePlatform(*data), isDrawerOpen);
    Post post(model);
    rest.messages.clear();
    for (std::size_t i = 1; i < size;) {
        const std::size_t length = std::min<std::size_t>(data[i] & 63U, size - i - 1);
        const bool isLast = (data[i] & 128U) == 0;
        post.Send(Bytes(data + i + 1, data + i + 1 + length));
        i += 1 + length;
        if (isLast || post.CountWaiting() == MostWaiting)
            post.Deliver();
    }
    post.Deliver();
    Require(rest.messages == post.passed, "other messages are passed on than should be");
    Require(GetLights() == model.lights, "the lights are not what the messages say");
    return 0;
}
