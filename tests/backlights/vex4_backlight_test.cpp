// SPDX-License-Identifier: MIT

// Backlights through the display controllers' registers.

#include "hardware/vex4_backlight.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <sstream>

#include "desk/kernel_testbed.h"
#include "desk/physical_memory.h"
#include "os/log.h"
#include "standalone/log_masks.h"
#include "standalone/platform_settings.h"
#include "support/log_capture.h"
#include "support/system_calls.h"

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr uires16 Percent = 0x10000;

/// Physical addresses of a side's registers, brightness and frequency.
struct Registers {
    std::uint32_t brightness[2];
    std::uint32_t frequency[2];
};
constexpr Registers Left{{0xFE627AFC, 0xF7E27AFC}, {0xFE627AE8, 0xF7E27AE8}};
constexpr Registers Right{{0xFE127AFC, 0xF7B27AFC}, {0xFE127AE8, 0xF7B27AE8}};
constexpr Registers Center{{0xFE327AFC, 0xF7C27AFC}, {0xFE327AE8, 0xF7C27AE8}};

/// The fields in their order, behind the virtual table.
struct Fields {
    void* table;
    int descriptor;
    unsigned* registers[12];
};
static_assert(sizeof(Fields) == sizeof(Vex4Backlight));

class Vex4BacklightTest : public testing::Test
{
protected:
    Vex4BacklightTest()
    {
        unsetenv("GUT_CCFL_BACKLIGHT");
        Standalone::SetLogMask("Vex4Backlight/Set", 31);
        Standalone::ConfigurePlatform(Standalone::MakeConsoleSettings(7));
        for (const Registers& side : {Left, Right, Center})
            for (int i = 0; i < 2; ++i) {
                m_memory.Write(side.brightness[i], 0x12345600);
                m_memory.Write(side.frequency[i], 0xFFFFFFFF);
            }
    }

    /// Words of the two brightness or frequency registers.
    std::vector<std::uint32_t> ReadBoth(const std::uint32_t (&addresses)[2]) const
    {
        return {m_memory.Read(addresses[0]), m_memory.Read(addresses[1])};
    }

    Desk::KernelTestbed m_testbed;
    Desk::PhysicalMemory m_memory{m_testbed};
    TestSupport::LogCapture m_log{"Vex4Backlight", 31};
};

/// Both registers of a side hold that word.
auto Both(std::uint32_t word)
{
    return ElementsAre(word, word);
}

} // namespace

TEST_F(Vex4BacklightTest, InvalidRegisterHasAllBitsSet)
{
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(Vex4Backlight::InvalidReg), UINTPTR_MAX);
}

TEST_F(Vex4BacklightTest, FieldsStandInTheirOrder)
{
    Standalone::ConfigurePlatform({});
    const Vex4Backlight inert;
    EXPECT_EQ(reinterpret_cast<const Fields&>(inert).descriptor, -1);
    EXPECT_THAT(reinterpret_cast<const Fields&>(inert).registers,
                testing::Each(Vex4Backlight::InvalidReg));

    Standalone::ConfigurePlatform(Standalone::MakeConsoleSettings(7));
    const Vex4Backlight mapped;
    const Fields& fields = reinterpret_cast<const Fields&>(mapped);
    EXPECT_GE(fields.descriptor, 0);
    int place = 0;
    for (const bool isFrequency : {false, true})
        for (const Registers& side : {Left, Right, Center})
            for (int i = 0; i < 2; ++i) {
                const std::uint32_t mark = 0xA0000000U + static_cast<unsigned>(place);
                m_memory.Write(isFrequency ? side.frequency[i] : side.brightness[i], mark);
                EXPECT_EQ(*fields.registers[place], mark) << place;
                ++place;
            }
}

TEST_F(Vex4BacklightTest, ConstructionGivesTheSidesTheirFrequencyAndTheCentreItsLevel)
{
    const Vex4Backlight backlight;
    EXPECT_EQ(m_memory.GetLastOpenFlags(), O_RDWR | O_DSYNC | O_CLOEXEC);
    EXPECT_THAT(ReadBoth(Left.frequency), Both(0xF2BFFFFF));
    EXPECT_THAT(ReadBoth(Right.frequency), Both(0xF2BFFFFF));
    EXPECT_THAT(ReadBoth(Center.frequency), Both(0xFFFFFFFF));
    EXPECT_THAT(ReadBoth(Left.brightness), Both(0x12345600));
    EXPECT_THAT(ReadBoth(Right.brightness), Both(0x12345600));
    EXPECT_THAT(ReadBoth(Center.brightness), Both(0x12347F01));
}

TEST_F(Vex4BacklightTest, LampsOfTheirOwnFrequencyKeepIt)
{
    struct Case {
        const char* setting;
        bool keeps;
    };
    for (const auto& [setting, keeps] : {Case{"1", true}, Case{"", true}, Case{"yes", true},
                                         Case{" 0", true}, Case{"0", false}, Case{"01", false}}) {
        setenv("GUT_CCFL_BACKLIGHT", setting, 1);
        for (const Registers& side : {Left, Right}) {
            m_memory.Write(side.frequency[0], 0x0FF00000);
            m_memory.Write(side.frequency[1], 0x0FF00000);
        }
        m_memory.Write(Center.brightness[0], 0);
        const Vex4Backlight backlight;
        const std::uint32_t expected = keeps ? 0x0FF00000 : 0x02B00000;
        EXPECT_THAT(ReadBoth(Left.frequency), Both(expected)) << setting;
        EXPECT_THAT(ReadBoth(Right.frequency), Both(expected)) << setting;
        EXPECT_EQ(m_memory.Read(Center.brightness[0]), 0x7F01U) << setting;
    }
}

TEST_F(Vex4BacklightTest, OnAComputerThatIsNoConsoleNothingIsTouched)
{
    Standalone::PlatformSettings settings = Standalone::MakeConsoleSettings(7);
    settings.isConsole = false;
    Standalone::ConfigurePlatform(settings);
    Vex4Backlight backlight;
    EXPECT_EQ(m_memory.CountOpened(), 0);
    ASSERT_EQ(m_log.GetLines().size(), 1U);
    const auto line = m_log.GetLines()[0];
    EXPECT_EQ(line.text, "Vex4 backlight not supported");
    EXPECT_EQ(line.context, "Vex4Backlight");
    EXPECT_EQ(line.level, 1U);
    EXPECT_EQ(line.line, 60U);
    EXPECT_EQ(line.file, "vex4_backlight.cpp");
    EXPECT_FALSE(backlight.SetLeftBacklight(100 * Percent));
    EXPECT_FALSE(backlight.SetCenterBacklight(0));
    EXPECT_FALSE(backlight.SetRightBacklightFrequency(0x02B00000));
    EXPECT_EQ(backlight.GetLeftBacklightFrequency(), 0U);
    EXPECT_THAT(ReadBoth(Left.frequency), Both(0xFFFFFFFF));
    EXPECT_THAT(ReadBoth(Center.brightness), Both(0x12345600));
}

TEST_F(Vex4BacklightTest, MemoryThatCannotBeOpenedLeavesItInert)
{
    const std::pair<int, const char*> cases[] = {{ENOENT, "No such file or directory"},
                                                 {EACCES, "Permission denied"},
                                                 {EPERM, "Operation not permitted"}};
    for (const auto& [error, text] : cases) {
        m_log.Clear();
        m_memory.RefuseOpen(error);
        Vex4Backlight backlight;
        ASSERT_EQ(m_log.GetLines().size(), 1U);
        const auto line = m_log.GetLines()[0];
        EXPECT_EQ(line.text, std::string("Open on /dev/mem failed: ") + text);
        EXPECT_EQ(line.context, "Vex4Backlight");
        EXPECT_EQ(line.level, 8U);
        EXPECT_EQ(line.line, 70U);
        EXPECT_FALSE(backlight.SetRightBacklight(100 * Percent));
        EXPECT_EQ(backlight.GetRightBacklightFrequency(), 0U);
    }
    EXPECT_THAT(ReadBoth(Left.frequency), Both(0xFFFFFFFF));
}

TEST_F(Vex4BacklightTest, NoMemoryAtAllLeavesItInert)
{
    m_memory.Vanish();
    Vex4Backlight backlight;
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Open on /dev/mem failed: No such file or directory"));
    EXPECT_FALSE(backlight.SetLeftBacklight(0));
}

TEST_F(Vex4BacklightTest, MemoryThatGoesAfterwardsStaysMapped)
{
    Vex4Backlight backlight;
    m_memory.Vanish();
    EXPECT_TRUE(backlight.SetLeftBacklight(100 * Percent));
    EXPECT_EQ(m_memory.Read(Left.brightness[0]), 0x1234FF01U);
}

TEST_F(Vex4BacklightTest, LevelsGoToBothPlacesAndKeepOtherBits)
{
    struct Case {
        uires16 level;
        std::uint32_t word;
    };
    Vex4Backlight backlight;
    for (const auto& [level, word] :
         {Case{100 * Percent, 0x1234FF01}, Case{0, 0x12340001}, Case{50 * Percent, 0x12347F01},
          Case{1, 0x12340001}, Case{1 * Percent, 0x12340201}, Case{99 * Percent, 0x1234FC01}}) {
        EXPECT_TRUE(backlight.SetLeftBacklight(level));
        EXPECT_THAT(ReadBoth(Left.brightness), Both(word)) << level;
        EXPECT_THAT(ReadBoth(Right.brightness), Both(0x12345600));
    }
    EXPECT_TRUE(backlight.SetRightBacklight(25 * Percent));
    EXPECT_THAT(ReadBoth(Right.brightness), Both(0x12343F01));
    EXPECT_THAT(ReadBoth(Left.brightness), Both(0x1234FC01));
    EXPECT_THAT(ReadBoth(Center.brightness), Both(0x12347F01));
}

TEST_F(Vex4BacklightTest, EnableBitStaysWhereItIsSet)
{
    Vex4Backlight backlight;
    m_memory.Write(Left.brightness[0], 0xFFFFFFFF);
    m_memory.Write(Left.brightness[1], 0);
    EXPECT_TRUE(backlight.SetLeftBacklight(0));
    EXPECT_THAT(ReadBoth(Left.brightness), ElementsAre(0xFFFF00FF, 1));
}

TEST_F(Vex4BacklightTest, CentreIsInvertedAndCompressed)
{
    struct Case {
        uires16 level;
        unsigned duty;
    };
    Vex4Backlight backlight;
    for (const auto& [level, duty] :
         {Case{100 * Percent, 127}, Case{0, 216}, Case{50 * Percent, 173}, Case{1 * Percent, 216},
          Case{3 * Percent, 214}, Case{100 * Percent - 1, 130}}) {
        EXPECT_TRUE(backlight.SetCenterBacklight(level));
        EXPECT_THAT(ReadBoth(Center.brightness), Both(0x12340001U | duty << 8U)) << level;
    }
    EXPECT_THAT(ReadBoth(Left.brightness), Both(0x12345600));
    EXPECT_THAT(ReadBoth(Right.brightness), Both(0x12345600));
}

TEST_F(Vex4BacklightTest, FrequenciesGoToBothPlacesAsTheyAre)
{
    Vex4Backlight backlight;
    for (const Registers& side : {Left, Right, Center})
        for (const std::uint32_t address : side.frequency)
            m_memory.Write(address, 0xA5512345);
    EXPECT_TRUE(backlight.SetLeftBacklightFrequency(0x0FF00000));
    EXPECT_THAT(ReadBoth(Left.frequency), Both(0xAFF12345));
    EXPECT_TRUE(backlight.SetRightBacklightFrequency(0x00100000));
    EXPECT_THAT(ReadBoth(Right.frequency), Both(0xA0112345));
    // Neither moved into its place nor cut to it.
    EXPECT_TRUE(backlight.SetCenterBacklightFrequency(0x5000000A));
    EXPECT_THAT(ReadBoth(Center.frequency), Both(0xF001234F));
}

TEST_F(Vex4BacklightTest, FrequencyIsReadFromTheFirstPlace)
{
    Vex4Backlight backlight;
    for (const Registers& side : {Left, Right, Center})
        m_memory.Write(side.frequency[1], 0);
    m_memory.Write(Left.frequency[0], 0xF12FFFFF);
    m_memory.Write(Right.frequency[0], 0x03400000);
    m_memory.Write(Center.frequency[0], 0xFFFFFFFF);
    EXPECT_EQ(backlight.GetLeftBacklightFrequency(), 0x01200000U);
    EXPECT_EQ(backlight.GetRightBacklightFrequency(), 0x03400000U);
    EXPECT_EQ(backlight.GetCenterBacklightFrequency(), 0x0FF00000U);
}

TEST_F(Vex4BacklightTest, OnePlaceIsEnough)
{
    for (const int missing : {0, 1}) {
        Desk::PhysicalMemory& memory = m_memory;
        memory.RefuseMap(Left.brightness[missing], EPERM);
        Vex4Backlight backlight;
        EXPECT_TRUE(backlight.SetLeftBacklight(100 * Percent));
        EXPECT_EQ(memory.Read(Left.brightness[missing]), 0x12345600U);
        EXPECT_EQ(memory.Read(Left.brightness[1 - missing]), 0x1234FF01U);
        EXPECT_TRUE(backlight.SetLeftBacklightFrequency(0));
        EXPECT_EQ(backlight.GetLeftBacklightFrequency(), 0U);
        memory.RefuseMap(Left.brightness[missing], 0);
        memory.Write(Left.brightness[1 - missing], 0x12345600);
    }
}

TEST_F(Vex4BacklightTest, RegisterThatCouldNotBeMappedIsNeverTouched)
{
    m_memory.RefuseMaps(EPERM);
    {
        Vex4Backlight backlight;
        const auto lines = m_log.GetLines();
        ASSERT_EQ(lines.size(), 12U);
        const char* const addresses[] = {"fe627afc", "fe627ae8", "f7e27afc", "f7e27ae8",
                                         "fe127afc", "fe127ae8", "f7b27afc", "f7b27ae8",
                                         "fe327afc", "fe327ae8", "f7c27afc", "f7c27ae8"};
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ(lines[i].text, std::string("Map of address ") + addresses[i] +
                                         " failed : Operation not permitted");
            EXPECT_EQ(lines[i].context, "Vex4Backlight");
            EXPECT_EQ(lines[i].level, 8U);
        }
        m_log.Clear();
        EXPECT_FALSE(backlight.SetLeftBacklight(100 * Percent));
        EXPECT_FALSE(backlight.SetRightBacklight(100 * Percent));
        EXPECT_FALSE(backlight.SetCenterBacklight(100 * Percent));
        EXPECT_FALSE(backlight.SetLeftBacklightFrequency(1));
        EXPECT_FALSE(backlight.SetRightBacklightFrequency(1));
        EXPECT_FALSE(backlight.SetCenterBacklightFrequency(1));
        EXPECT_EQ(backlight.GetLeftBacklightFrequency(), 0U);
        EXPECT_EQ(backlight.GetRightBacklightFrequency(), 0U);
        EXPECT_EQ(backlight.GetCenterBacklightFrequency(), 0U);
    }
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
    EXPECT_EQ(m_memory.CountOpen(), 0);
}

TEST_F(Vex4BacklightTest, SingleRegisters)
{
    Vex4Backlight backlight;
    unsigned word = 0xABCD0000;
    EXPECT_TRUE(backlight.SetBacklight(&word, 100 * Percent));
    EXPECT_EQ(word, 0xABCDFF01U);
    EXPECT_TRUE(backlight.SetBacklightFrequency(&word, 0x07700000));
    EXPECT_EQ(word, 0xA77DFF01U);
    EXPECT_EQ(backlight.GetBacklightFrequency(&word), 0x07700000U);
    for (unsigned* const none : {static_cast<unsigned*>(nullptr), Vex4Backlight::InvalidReg}) {
        EXPECT_FALSE(backlight.SetBacklight(none, 0));
        EXPECT_FALSE(backlight.SetBacklightFrequency(none, 0));
        EXPECT_EQ(backlight.GetBacklightFrequency(none), 0U);
    }
}

TEST_F(Vex4BacklightTest, MapsAnyRegister)
{
    Vex4Backlight backlight;
    m_memory.SetPresent(0x00012344, true);
    m_memory.Write(0x00012344, 0x600DF00D);
    unsigned* const reg = backlight.Map(reinterpret_cast<void*>(0x00012000), 0x344);
    ASSERT_NE(reg, Vex4Backlight::InvalidReg);
    EXPECT_EQ(*reg, 0x600DF00DU);
    *reg = 1;
    EXPECT_EQ(m_memory.Read(0x00012344), 1U);
    backlight.Unmap(reg);
    backlight.Unmap(Vex4Backlight::InvalidReg);
    EXPECT_NE(reg, nullptr);
}

TEST_F(Vex4BacklightTest, MapsNoRegisterThatIsNotAligned)
{
    Vex4Backlight backlight;
    for (const unsigned offset : {0x341U, 0x342U, 0x343U, 0xFFDU, 0xFFFU}) {
        m_log.Clear();
        EXPECT_EQ(backlight.Map(reinterpret_cast<void*>(0x00012000), offset),
                  Vex4Backlight::InvalidReg);
        EXPECT_THAT(m_log.GetTexts(), ElementsAre(testing::EndsWith(" failed : Invalid argument")));
    }
    EXPECT_EQ(backlight.Map(reinterpret_cast<void*>(0x00012001), 0), Vex4Backlight::InvalidReg);
    unsigned* const last = backlight.Map(reinterpret_cast<void*>(0x00012001), 0xFFB);
    ASSERT_NE(last, Vex4Backlight::InvalidReg);
    backlight.Unmap(last);
}

TEST_F(Vex4BacklightTest, TracesEachRegister)
{
    Vex4Backlight backlight;
    m_log.Clear();
    unsigned word = 0x1000;
    std::ostringstream address;
    address << std::hex << reinterpret_cast<std::uintptr_t>(&word);
    backlight.SetBacklight(&word, 100 * Percent);
    backlight.SetBacklightFrequency(&word, 0x02B00000);
    ASSERT_EQ(m_log.GetLines().size(), 2U);
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Setting backlight of register address " + address.str() + " to ff01",
                            "Setting back light, frequency 2b0ff01"));
    for (const auto& line : m_log.GetLines()) {
        EXPECT_EQ(line.context, "Vex4Backlight/Set");
        EXPECT_EQ(line.level, 1U);
        EXPECT_EQ(line.file, "vex4_backlight.cpp");
    }
}

TEST(Vex4BacklightLog, KeepsTracesBackUntilWidened)
{
    TestSupport::LogCapture log;
    const Vex4Backlight inert;
    EXPECT_THAT(log.GetTexts(), IsEmpty());
    EXPECT_EQ(Os::Log::Context::Find("Vex4Backlight")->GetMask(), 30U);
    EXPECT_EQ(Os::Log::Context::Find("Vex4Backlight")->GetParent(), nullptr);
    EXPECT_EQ(Os::Log::Context::Find("Vex4Backlight/Set")->GetMask(), 30U);
}

TEST_F(Vex4BacklightTest, MapsPageByPageAndReleasesInAnotherOrder)
{
    TestSupport::SystemCalls calls("/dev/mem");
    {
        const Vex4Backlight backlight;
        std::vector<std::string> expected{"open /dev/mem"};
        for (const char* const page :
             {"fe627000", "f7e27000", "fe127000", "f7b27000", "fe327000", "f7c27000"})
            for (int i = 0; i < 2; ++i)
                expected.push_back(std::string("map ") + page +
                                   " of 4096 to read and write, shared");
        EXPECT_EQ(calls.GetCalls(), expected);
        calls.Clear();
    }
    std::vector<std::string> expected;
    for (const int side : {0, 4, 8})
        for (const int map : {1, 3, 2, 4})
            expected.push_back("unmap " + std::to_string(side + map) + " of 4096");
    expected.emplace_back("close");
    EXPECT_EQ(calls.GetCalls(), expected);
    EXPECT_EQ(m_memory.CountOpen(), 0);
}

TEST_F(Vex4BacklightTest, SecondPlaceIsWrittenBeforeTheFirst)
{
    Vex4Backlight backlight;
    const Fields& fields = reinterpret_cast<const Fields&>(backlight);
    m_log.Clear();
    backlight.SetLeftBacklight(0);
    backlight.SetRightBacklight(0);
    backlight.SetCenterBacklight(0);
    std::vector<std::string> addresses;
    for (const std::string& text : m_log.GetTexts()) {
        const std::string start = "Setting backlight of register address ";
        ASSERT_THAT(text, StartsWith(start));
        addresses.push_back(text.substr(start.size(), text.find(" to ") - start.size()));
    }
    std::vector<std::string> expected;
    for (const int place : {1, 0, 3, 2, 5, 4}) {
        std::ostringstream address;
        address << std::hex << reinterpret_cast<std::uintptr_t>(fields.registers[place]);
        expected.push_back(address.str());
    }
    EXPECT_EQ(addresses, expected);
}

TEST_F(Vex4BacklightTest, SecondFrequencyIsWrittenBeforeTheFirst)
{
    Vex4Backlight backlight;
    for (const Registers& side : {Left, Right, Center}) {
        m_memory.Write(side.frequency[0], 1);
        m_memory.Write(side.frequency[1], 2);
    }
    m_log.Clear();
    backlight.SetLeftBacklightFrequency(0x00100000);
    backlight.SetRightBacklightFrequency(0x00200000);
    backlight.SetCenterBacklightFrequency(0x00300000);
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Setting back light, frequency 100002",
                                              "Setting back light, frequency 100001",
                                              "Setting back light, frequency 200002",
                                              "Setting back light, frequency 200001",
                                              "Setting back light, frequency 300002",
                                              "Setting back light, frequency 300001"));
}

TEST_F(Vex4BacklightTest, MappingThatCannotBeReleasedIsLogged)
{
    TestSupport::SystemCalls calls("/dev/mem");
    std::optional<Vex4Backlight> backlight;
    backlight.emplace();
    m_log.Clear();
    calls.Fail("unmap 2", {EINVAL});
    backlight.reset();
    ASSERT_EQ(m_log.GetLines().size(), 1U);
    EXPECT_THAT(m_log.GetTexts()[0],
                testing::MatchesRegex("Unmap of address [0-9a-f]+ae8 failed : Invalid argument"));
    EXPECT_EQ(m_log.GetLines()[0].context, "Vex4Backlight");
    EXPECT_EQ(m_log.GetLines()[0].level, 8U);
    EXPECT_EQ(calls.Count("close"), 1);
}
