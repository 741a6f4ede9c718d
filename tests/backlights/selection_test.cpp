// SPDX-License-Identifier: MIT

// Which controller a console gets. Every case is a process of its own, since a process has one.

#include <gmock/gmock.h>

#include <thread>

#include "desk/kernel_testbed.h"
#include "desk/physical_memory.h"
#include "desk/sensor_chip.h"
#include "desk/serial_port.h"
#include "hardware/abstract_backlight_factory.h"
#include "hardware/tarnel4_backlight.h"
#include "hardware/vex4_backlight.h"
#include "hardware/zr4_backlight.h"
#include "standalone/platform_settings.h"

namespace
{

enum class Kind { Vex4, Zr4, Tarnel4 };

Kind GetKind(AbstractBacklight* controller)
{
    if (dynamic_cast<Tarnel4Backlight*>(controller))
        return Kind::Tarnel4;
    if (dynamic_cast<Hardware::Zr4Backlight*>(controller))
        return Kind::Zr4;
    EXPECT_NE(dynamic_cast<Vex4Backlight*>(controller), nullptr);
    return Kind::Vex4;
}

Kind GetExpectedKind(int productType)
{
    switch (productType) {
    case 9:
    case 10:
    case 12:
    case 13:
    case 14:
        return Kind::Tarnel4;
    case 8:
        return Kind::Zr4;
    default:
        return Kind::Vex4;
    }
}

class BacklightSelection : public testing::TestWithParam<int>
{
protected:
    Desk::KernelTestbed m_testbed;
    Desk::PhysicalMemory m_memory{m_testbed};
    Desk::SensorChip m_chip{m_testbed};
    Desk::SerialPort m_left{m_testbed, "/dev/ttyS0"};
    Desk::SerialPort m_right{m_testbed, "/dev/ttyS1"};
};

} // namespace

TEST_P(BacklightSelection, FollowsTheProductTypeOfTheFirstCall)
{
    Standalone::ConfigurePlatform(Standalone::MakeConsoleSettings(GetParam()));
    EXPECT_EQ(m_memory.CountOpened() + m_left.CountOpened() + m_right.CountOpened(), 0);
    AbstractBacklight* const controller = AbstractBacklightFactory::GetBacklightController();
    const Kind kind = GetExpectedKind(GetParam());
    EXPECT_EQ(GetKind(controller), kind);
    // Only its own devices are opened.
    EXPECT_EQ(m_memory.CountOpened(), kind == Kind::Vex4 ? 1 : 0);
    EXPECT_EQ(m_left.CountOpened(), kind == Kind::Zr4 ? 1 : 0);
    EXPECT_EQ(m_right.CountOpened(), kind == Kind::Zr4 ? 1 : 0);

    // Whatever the platform says afterwards.
    Standalone::ConfigurePlatform(Standalone::MakeConsoleSettings(kind == Kind::Tarnel4 ? 8 : 9));
    EXPECT_EQ(AbstractBacklightFactory::GetBacklightController(), controller);
    EXPECT_EQ(m_left.CountOpened(), kind == Kind::Zr4 ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(AllTypes, BacklightSelection,
                         testing::Values(-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15,
                                         16, 20, 255));

TEST_F(BacklightSelection, IsMadeOnceForManyThreads)
{
    Standalone::ConfigurePlatform(Standalone::MakeConsoleSettings(8));
    std::vector<AbstractBacklight*> found(4);
    std::vector<std::thread> threads;
    for (AbstractBacklight*& controller : found)
        threads.emplace_back(
            [&controller] { controller = AbstractBacklightFactory::GetBacklightController(); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(found, testing::Each(found[0]));
    EXPECT_EQ(m_left.CountOpened(), 1);
}

TEST(AbstractBacklight, OperationsStandInTheirOrder)
{
    /// Notes which operation was called.
    class Probe final : public AbstractBacklight
    {
    public:
        bool SetLeftBacklight(uires16) override { return Note(2); }
        bool SetRightBacklight(uires16) override { return Note(3); }
        bool SetCenterBacklight(uires16) override { return Note(4); }
        bool SetLeftBacklightFrequency(unsigned) override { return Note(5); }
        unsigned GetLeftBacklightFrequency() override { return Note(6); }
        bool SetRightBacklightFrequency(unsigned) override { return Note(7); }
        unsigned GetRightBacklightFrequency() override { return Note(8); }
        bool SetCenterBacklightFrequency(unsigned) override { return Note(9); }
        unsigned GetCenterBacklightFrequency() override { return Note(10); }
        bool Note(int number)
        {
            last = number;
            return true;
        }
        int last = 0;
    };
    Probe probe;
    // Two slots of the virtual table are the destructor's.
    typedef unsigned Operation(AbstractBacklight*, unsigned);
    Operation* const* const table = *reinterpret_cast<Operation***>(&probe);
    for (int slot = 2; slot <= 10; ++slot) {
        table[slot](&probe, 0);
        EXPECT_EQ(probe.last, slot);
    }
    static_assert(std::is_abstract_v<AbstractBacklight>);
    static_assert(std::has_virtual_destructor_v<AbstractBacklight>);
    static_assert(sizeof(AbstractBacklight) == sizeof(void*)); // no data
}

static_assert(std::is_same_v<uires16, unsigned int>);
