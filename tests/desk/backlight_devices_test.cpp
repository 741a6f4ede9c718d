// SPDX-License-Identifier: MIT

// The virtual physical memory and the virtual sensor chip, worked by plain system calls.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>

#include "desk/kernel_testbed.h"
#include "desk/physical_memory.h"
#include "desk/sensor_chip.h"

namespace
{

constexpr char ChipPath[] = "/sys/devices/platform/w83627ehf.656/pwm3";

class DeskMemory : public testing::Test
{
protected:
    ~DeskMemory() override { close(m_descriptor); }

    bool Open() { return (m_descriptor = open("/dev/mem", O_RDWR)) != -1; }
    void* Map(off_t page) const
    {
        return mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, m_descriptor, page);
    }

    Desk::KernelTestbed m_testbed;
    Desk::PhysicalMemory m_memory{m_testbed};
    int m_descriptor = -1;
};

class DeskSensorChip : public testing::Test
{
protected:
    /// Writes the text as a program does; returns what write() does, or -2 where it cannot open.
    static ssize_t Write(const std::string& text)
    {
        const int descriptor = open(ChipPath, O_RDWR | O_DSYNC);
        if (descriptor == -1)
            return -2;
        const ssize_t result = write(descriptor, text.data(), text.size());
        const int error = errno;
        close(descriptor);
        errno = error;
        return result;
    }

    Desk::KernelTestbed m_testbed;
    Desk::SensorChip m_chip{m_testbed};
};

} // namespace

TEST_F(DeskMemory, IsSharedWithWhoMapsIt)
{
    ASSERT_TRUE(Open());
    auto* const words = static_cast<volatile std::uint32_t*>(Map(0xFE627000));
    ASSERT_NE(const_cast<std::uint32_t*>(words), MAP_FAILED);
    EXPECT_EQ(words[0xAFC / 4], 0U);
    m_memory.Write(0xFE627AFC, 0x12345678);
    EXPECT_EQ(words[0xAFC / 4], 0x12345678U);
    words[0xAFC / 4] = 9;
    EXPECT_EQ(m_memory.Read(0xFE627AFC), 9U);
    EXPECT_EQ(m_memory.Read(0xFE627AF8), 0U);
    EXPECT_EQ(m_memory.CountOpen(), 1);
    m_memory.SetPresent(0xFFFFF000, true);
    m_memory.Write(0xFFFFFFFC, 5);
    EXPECT_EQ(m_memory.Read(0xFFFFFFFC), 5U);
}

TEST_F(DeskMemory, KeepsNothingWhereThereIsNothing)
{
    ASSERT_TRUE(Open());
    constexpr std::uint32_t Nothing = 0xFFFFFFFF;
    m_memory.Write(0x1000, 5);
    EXPECT_EQ(m_memory.Read(0x1000), Nothing);
    auto* const words = static_cast<volatile std::uint32_t*>(Map(0x1000));
    EXPECT_EQ(words[0], Nothing);
    EXPECT_EQ(words[1023], Nothing);
    words[0] = 6;
    EXPECT_EQ(m_memory.Read(0x1000), Nothing);
    EXPECT_EQ(*static_cast<volatile std::uint32_t*>(Map(0x1000)), Nothing);
    m_memory.SetPresent(0xFE627AFC, false);
    EXPECT_EQ(*static_cast<volatile std::uint32_t*>(Map(0xFE627000)), Nothing);
    m_memory.SetPresent(0x1004, true);
    EXPECT_EQ(*static_cast<volatile std::uint32_t*>(Map(0x1000)), 0U);
}

TEST_F(DeskMemory, MapsOfSeveralPagesHaveWhatThereIs)
{
    ASSERT_TRUE(Open());
    void* const map = mmap(nullptr, 3 * 4096, PROT_READ, MAP_SHARED, m_descriptor, 0xFE626000);
    ASSERT_NE(map, MAP_FAILED);
    m_memory.Write(0xFE627000, 3);
    const auto* const words = static_cast<volatile std::uint32_t*>(map);
    EXPECT_EQ(words[0], 0xFFFFFFFF);
    EXPECT_EQ(words[1024], 3U);
    EXPECT_EQ(words[2048], 0xFFFFFFFF);
    EXPECT_EQ(mmap(nullptr, std::size_t{1} << 30U, PROT_READ, MAP_SHARED, m_descriptor, 0),
              MAP_FAILED);
    EXPECT_EQ(errno, EPERM);
}

TEST_F(DeskMemory, HasThirtyTwoPagesAtMost)
{
    std::uint32_t page = 0x1000;
    for (int count = 6; count < 32; ++count, page += 0x1000)
        m_memory.SetPresent(page, true);
    EXPECT_THROW(m_memory.SetPresent(page, true), std::invalid_argument);
    m_memory.SetPresent(0x1000, true); // is there
    m_memory.SetPresent(0x1000, false);
    m_memory.SetPresent(page, true);
}

TEST_F(DeskMemory, RefusesToMapSomePages)
{
    ASSERT_TRUE(Open());
    m_memory.RefuseMap(0xFE627AFC, EPERM);
    EXPECT_EQ(Map(0xFE627000), MAP_FAILED);
    EXPECT_EQ(errno, EPERM);
    EXPECT_NE(Map(0xFE628000), MAP_FAILED);
    m_memory.RefuseMap(0xFE627000, 0);
    EXPECT_NE(Map(0xFE627000), MAP_FAILED);
    m_memory.RefuseMaps(ENOMEM);
    EXPECT_EQ(Map(0), MAP_FAILED);
    EXPECT_EQ(errno, ENOMEM);
    m_memory.RefuseMaps(0);
    EXPECT_NE(Map(0), MAP_FAILED);
}

TEST_F(DeskMemory, CanBeAbsentOrClosed)
{
    m_memory.RefuseOpen(EACCES);
    EXPECT_FALSE(Open());
    EXPECT_EQ(errno, EACCES);
    m_memory.RefuseOpen(0);
    m_memory.Write(0xFE627AFC, 7);
    m_memory.Vanish();
    EXPECT_FALSE(Open());
    EXPECT_EQ(errno, ENOENT);
    m_memory.Appear();
    EXPECT_TRUE(Open());
    EXPECT_EQ(m_memory.Read(0xFE627AFC), 0U);
}

TEST_F(DeskSensorChip, KeepsTheTextThatWasWritten)
{
    EXPECT_EQ(m_chip.GetText(), "127\n");
    m_chip.SetStrict(false);
    EXPECT_EQ(Write("  0\n"), 4);
    EXPECT_EQ(m_chip.GetText(), "  0\n");
    EXPECT_EQ(m_chip.CountOpened(), 1);
    EXPECT_EQ(m_chip.CountOpen(), 0);
}

TEST_F(DeskSensorChip, TakesNumbersAsTheKernelReadsThem)
{
    for (const char* const good : {"0\n", "255", "007\n", "+12\n", "999\n"}) {
        m_chip.SetText("");
        EXPECT_GT(Write(good), 0) << good;
        EXPECT_EQ(m_chip.GetText(), good);
    }
    m_chip.SetText("1\n");
    for (const char* const bad :
         {"  0\n", " 99\n", "", "\n", "+\n", "-1\n", "12x\n", "0x10\n", "1\n\n", "1 \n"}) {
        EXPECT_EQ(Write(bad), -1) << bad;
        EXPECT_EQ(errno, EINVAL);
        EXPECT_EQ(m_chip.GetText(), "1\n");
    }
    m_chip.SetStrict(false);
    EXPECT_EQ(Write("  0\n"), 4);
}

TEST_F(DeskSensorChip, GoesAndComes)
{
    const int descriptor = open(ChipPath, O_RDWR);
    ASSERT_NE(descriptor, -1);
    m_chip.Vanish();
    EXPECT_EQ(write(descriptor, "1\n", 2), -1);
    EXPECT_EQ(errno, ENODEV);
    close(descriptor);
    EXPECT_EQ(Write("1\n"), -2);
    EXPECT_EQ(errno, ENOENT);
    m_chip.Appear();
    EXPECT_EQ(Write("1\n"), 2);
    m_chip.RefuseOpen(EACCES);
    EXPECT_EQ(Write("1\n"), -2);
    EXPECT_EQ(errno, EACCES);
    m_chip.RefuseOpen(0);
    m_chip.RefuseWrites(EIO);
    EXPECT_EQ(Write("1\n"), -1);
    EXPECT_EQ(errno, EIO);
}
