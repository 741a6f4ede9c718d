// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include <QObject>

#include "os/fatal.h"
#include "standalone/log_sink.h"

using testing::HasSubstr;
using testing::KilledBySignal;

namespace
{

constexpr char File[] = "macros.cpp (Jan  1 2024)";

class FatalMacrosDeathTest : public testing::Test
{
protected:
    FatalMacrosDeathTest()
    {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        m_previous = Standalone::SetLogSink(nullptr);
    }
    ~FatalMacrosDeathTest() override { Standalone::SetLogSink(m_previous); }

private:
    std::shared_ptr<Standalone::LogSink> m_previous;
};

struct Insertion {
    bool second = false;
};

void TrapAt(const Insertion& pInsert)
{
    OS_TRAP_AT(!pInsert.second, 428, File);
}

TEST_F(FatalMacrosDeathTest, ATrapTellsItsConditionAndTheSiteNumberGiven)
{
    EXPECT_EXIT(TrapAt({}), KilledBySignal(SIGABRT),
                HasSubstr("Trap: '!pInsert.second' is TRUE, line 428, " + std::string(File)));
}

constexpr unsigned TrapLine = __LINE__ + 4;

void TrapHere(int index)
{
    OS_TRAP(index == -1, File);
}

TEST_F(FatalMacrosDeathTest, ATrapWithoutANumberTellsItsSourceLine)
{
    EXPECT_EXIT(
        TrapHere(-1), KilledBySignal(SIGABRT),
        HasSubstr("Trap: 'index == -1' is TRUE, line " + std::to_string(TrapLine) + ", " + File));
}

void VerifyAt(bool ready)
{
    OS_VERIFY_AT(ready, 58, File);
}

TEST_F(FatalMacrosDeathTest, AVerificationTellsItsExpressionAndTheSiteNumberGiven)
{
    EXPECT_EXIT(VerifyAt(false), KilledBySignal(SIGABRT),
                HasSubstr("Verify: 'ready' is FALSE, line 58, " + std::string(File)));
}

constexpr unsigned VerifyLine = __LINE__ + 4;

void VerifyHere(int count)
{
    OS_VERIFY(count > 0 && count < 3, File);
}

TEST_F(FatalMacrosDeathTest, AVerificationWithoutANumberTellsItsSourceLine)
{
    EXPECT_EXIT(VerifyHere(3), KilledBySignal(SIGABRT),
                HasSubstr("Verify: 'count > 0 && count < 3' is FALSE, line " +
                          std::to_string(VerifyLine) + ", " + File));
}

void VerifyBadConnect()
{
    QObject device, panel;
    // clang-format off
    OS_VERIFY_AT(QObject::connect(&device, SIGNAL( objectNameChanged( const QString& ) ),
                                  &panel, SLOT(missing( unsigned long, bool ))), 64, File);
    // clang-format on
}

TEST_F(FatalMacrosDeathTest, AFailedConnectIsToldAsItWasWritten)
{
    EXPECT_EXIT(VerifyBadConnect(), KilledBySignal(SIGABRT),
                HasSubstr("Verify: 'QObject::connect(&device, SIGNAL( objectNameChanged( "
                          "const QString& ) ), &panel, SLOT(missing( unsigned long, bool )))' is "
                          "FALSE, line 64, "));
}

TEST_F(FatalMacrosDeathTest, AGoodConnectHolds)
{
    QObject device, panel;
    OS_VERIFY(QObject::connect(&device, SIGNAL(destroyed(QObject*)), &panel, SLOT(deleteLater())),
              File);
}

TEST(FatalMacros, EvaluateTheirExpressionOnceAndGoOn)
{
    int evaluated = 0;
    OS_TRAP(++evaluated != 1, File);
    OS_TRAP_AT(++evaluated != 2, 1, File);
    OS_VERIFY(++evaluated == 3, File);
    OS_VERIFY_AT(++evaluated == 4, 1, File);
    EXPECT_EQ(evaluated, 4);
}

TEST(FatalMacros, AreOneStatement)
{
    bool other = false;
    if (other)
        OS_TRAP(other, File);
    else
        other = true;
    EXPECT_TRUE(other);
}

} // namespace
