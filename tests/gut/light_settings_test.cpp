// SPDX-License-Identifier: MIT

// Changes of the light settings, and the messages that tell of them.

#include "standalone/light_settings.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <future>
#include <stdexcept>

#include "gut/other_settings.h"
#include "message_mapper.h"
#include "standalone/messages.h"
#include "support/log_capture.h"

namespace
{

using Standalone::LightSettings;
using testing::ElementsAre;
using TestSupport::MakeOtherSettings;

constexpr uires16 Full = 0x00640000;
constexpr uires16 Half = 0x00320000;

} // namespace

TEST(LightSettings, ALevelAboveFullIsRefused)
{
    const TestSupport::LogCapture log;
    LightSettings settings = MakeOtherSettings();
    settings.ventlight = Full + 0x8000;
    EXPECT_FALSE(Standalone::SetLightSettings(settings));
    EXPECT_EQ(Standalone::GetLightSettings(), LightSettings());
    EXPECT_THAT(log.GetTexts(),
                ElementsAre("Cannot change the light settings: ventlight would be 100.5, "
                            "above 100"));
    settings.ventlight = Full;
    EXPECT_TRUE(Standalone::SetLightSettings(settings));
    EXPECT_EQ(Standalone::GetLightSettings(), settings);
}

TEST(LightSettings, AChangeOfOneLeavesTheOthersAlone)
{
    Standalone::SetLightSettings(MakeOtherSettings());
    EXPECT_TRUE(
        Standalone::ChangeLightSettings([](LightSettings& settings) { settings.leds = Half; }));
    LightSettings expected = MakeOtherSettings();
    expected.leds = Half;
    EXPECT_EQ(Standalone::GetLightSettings(), expected);
}

TEST(LightSettings, AKeyPressDuringAChangeIsNotLost)
{
    std::future<void> press;
    Standalone::ChangeLightSettings([&press](LightSettings& settings) {
        press = std::async(std::launch::async, [] { MessageMapper::SetWorklightOn(false); });
        press.wait_for(std::chrono::milliseconds(50)); // one that is not held back gets its turn
        settings.desklight = Half;
    });
    press.wait();
    EXPECT_FALSE(MessageMapper::GetWorklightOn());
    EXPECT_EQ(MessageMapper::GetDesklightLevel(), Half);
}

TEST(LightSettings, MayBeAskedDuringAChange)
{
    Standalone::ChangeLightSettings([](LightSettings& settings) {
        settings.desklight = Half;
        auto asked = std::async(std::launch::async, &MessageMapper::GetDesklightLevel);
        EXPECT_EQ(asked.wait_for(std::chrono::seconds(20)), std::future_status::ready);
        EXPECT_EQ(asked.get(), Full);
    });
    EXPECT_EQ(MessageMapper::GetDesklightLevel(), Half);
}

TEST(LightSettings, AChangeThatThrowsChangesNothing)
{
    EXPECT_THROW(Standalone::ChangeLightSettings([](LightSettings& settings) {
                     settings.desklight = Half;
                     throw std::invalid_argument("no");
                 }),
                 std::invalid_argument);
    EXPECT_EQ(Standalone::GetLightSettings(), LightSettings());
    EXPECT_TRUE(Standalone::SetLightSettings(MakeOtherSettings())); // and holds nobody up
}

TEST(LightSettingsMessage, TellsOfChangesToFadeToOrToShowAtOnce)
{
    std::vector<std::vector<std::uint32_t>> posted;
    Standalone::SetPostObserver([&posted](const Gut::Message& message, unsigned systemObject) {
        std::vector<std::uint32_t> words(message.Size() / 4);
        std::memcpy(words.data(), message.Data(), message.Size());
        words.push_back(systemObject);
        posted.push_back(words);
    });
    Standalone::AnnounceLightSettings(true);
    Standalone::AnnounceLightSettings(false);
    EXPECT_THAT(posted, ElementsAre(ElementsAre(22, 12, 1, 3), ElementsAre(22, 11, 1, 3)));
}

TEST(LightSettingsMessage, IsNotPostedByASettingAlone)
{
    bool isPosted = false;
    Standalone::SetPostObserver([&isPosted](const Gut::Message&, unsigned) { isPosted = true; });
    Standalone::SetLightSettings(MakeOtherSettings());
    MessageMapper::SetWorklightOn(true);
    EXPECT_FALSE(isPosted);
}
