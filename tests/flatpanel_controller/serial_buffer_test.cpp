// SPDX-License-Identifier: MIT

// Reading a serial port byte by byte.

#include "hardware/flatpanel_controller/serial_buffer.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include <cerrno>

#include "flatpanel_controller/serial_bench.h"
#include "support/system_calls.h"

namespace
{

using Hardware::Serial;
using Hardware::SerialBuffer;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StrEq;

typedef std::vector<std::uint8_t> Bytes;

/// Microseconds that a byte which is on its way may take.
constexpr int Patience = 20'000'000;

class SerialBufferTest : public TestSupport::SerialBench
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(Open(), 0);
        m_log.Clear();
        m_calls.Clear();
        m_buffer.BlockDuration(Patience);
    }

    /// Sends bytes and waits until all lie ready for one read.
    void Deliver(const Bytes& bytes)
    {
        ASSERT_TRUE(m_port.Send(bytes));
        ASSERT_EQ(Serial::WaitForInput({m_serial.GetDeviceHandle()}, Patience), 1);
        m_calls.Clear();
    }

    TestSupport::SystemCalls m_calls{"/dev/tty"};
    SerialBuffer m_buffer{m_serial, 16};
};

/// The fields in their order, behind the virtual table.
struct BufferFields {
    void* table;
    const Serial* port;
    int trace;
    int blockDuration;
    unsigned position;
    unsigned fill;
    unsigned size;
    unsigned char* buffer;
};
static_assert(sizeof(BufferFields) == sizeof(SerialBuffer));
static_assert(std::has_virtual_destructor_v<SerialBuffer>);

} // namespace

TEST_F(SerialBufferTest, FieldsStandInTheirOrder)
{
    const SerialBuffer fresh(m_serial, 12);
    const auto& fields = reinterpret_cast<const BufferFields&>(fresh);
    EXPECT_EQ(fields.port, &m_serial);
    EXPECT_EQ(fields.trace, 1);
    EXPECT_EQ(fields.blockDuration, 100);
    EXPECT_EQ(fields.position, 1U);
    EXPECT_EQ(fields.fill, 0U);
    EXPECT_EQ(fields.size, 12U);
    EXPECT_NE(fields.buffer, nullptr);
}

TEST_F(SerialBufferTest, SettersAreChained)
{
    EXPECT_EQ(&m_buffer.Trace(0).BlockDuration(7).Trace(1), &m_buffer);
}

TEST_F(SerialBufferTest, TimesOutWithoutAWord)
{
    m_buffer.BlockDuration(1000);
    EXPECT_EQ(m_buffer.Read(), -1);
    EXPECT_EQ(m_buffer.Read(), -1);
    EXPECT_THAT(m_calls.GetCalls(), Each(StrEq("select 1024 0 s 1000 us device")));
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(SerialBufferTest, WaitsAHundredMicrosecondsAtFirst)
{
    SerialBuffer fresh(m_serial, 4);
    EXPECT_EQ(fresh.Read(), -1);
    EXPECT_THAT(m_calls.GetCalls(), ElementsAre("select 1024 0 s 100 us device"));
}

TEST_F(SerialBufferTest, FailedWaitIsATimeOut)
{
    Deliver({1});
    m_calls.Fail("select", {EBADF});
    EXPECT_EQ(m_buffer.Read(), -1);
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
    m_serial.Close();
    m_buffer.BlockDuration(1000);
    EXPECT_EQ(m_buffer.Read(), -1);
}

TEST_F(SerialBufferTest, HandsOutBytesInOrderFromOneReadOfTheDevice)
{
    Deliver({7, 0, 255});
    EXPECT_EQ(m_buffer.Read(), 7);
    EXPECT_EQ(m_buffer.Read(), 0);
    EXPECT_EQ(m_buffer.Read(), 255);
    EXPECT_EQ(m_calls.Count("select"), 1);
    EXPECT_EQ(m_calls.Count("read"), 1);
    EXPECT_EQ(m_calls.Count("read 16"), 1);
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("read 7 (7)", "read 0 (0)", "read 255 (255)"));
    m_buffer.BlockDuration(1000);
    EXPECT_EQ(m_buffer.Read(), -1);
    EXPECT_EQ(m_calls.Count("read"), 1);
}

TEST_F(SerialBufferTest, TakesNoMoreThanItsSizeAtOnce)
{
    SerialBuffer small(m_serial, 2);
    small.BlockDuration(Patience);
    Deliver({1, 2, 3});
    EXPECT_EQ(small.Read(), 1);
    EXPECT_EQ(small.Read(), 2);
    EXPECT_EQ(small.Read(), 3);
    EXPECT_EQ(m_calls.Count("read 2"), 2);
}

TEST_F(SerialBufferTest, EndOfTheLineIsATimeOut)
{
    m_port.Unplug();
    EXPECT_EQ(m_buffer.Read(), -1);
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("timeout"));
    m_buffer.Trace(0);
    EXPECT_EQ(m_buffer.Read(), -1);
    EXPECT_EQ(m_log.GetTexts().size(), 1U);
}

TEST_F(SerialBufferTest, FailedReadCountsAsSoManyBytes)
{
    Deliver({10, 20, 30});
    EXPECT_EQ(m_buffer.Read(), 10);
    EXPECT_EQ(m_buffer.Read(), 20);
    EXPECT_EQ(m_buffer.Read(), 30);
    Deliver({40});
    m_log.Clear();
    // Five: the bytes from before, and what the buffer held at first.
    m_calls.Fail("read", {EIO});
    for (const int byte : {10, 20, 30, 0, 0})
        EXPECT_EQ(m_buffer.Read(), byte);
    EXPECT_EQ(m_log.Count("Failed to read from /dev/ttyS0 error Input/output error"), 1U);
    EXPECT_EQ(m_buffer.Read(), 40);
}

TEST_F(SerialBufferTest, FailedReadNeverReachesOutsideTheBuffer)
{
    SerialBuffer small(m_serial, 2);
    small.BlockDuration(Patience).Trace(0);
    Deliver({1, 2});
    EXPECT_EQ(small.Read(), 1);
    EXPECT_EQ(small.Read(), 2);
    Deliver({3});
    m_calls.Fail("read", {ENOTCONN});
    EXPECT_EQ(small.Read(), 1);
    EXPECT_EQ(small.Read(), 2);
    for (int i = 2; i < ENOTCONN; ++i)
        EXPECT_EQ(small.Read(), 0);
    EXPECT_EQ(small.Read(), 3);
}

TEST_F(SerialBufferTest, ErrorOfThePortIsOne)
{
    // No system call fails with such a number; it is what a port would have to return.
    Deliver({1});
    m_calls.Fail("read", {-1, -1});
    m_log.Clear();
    EXPECT_EQ(m_buffer.Read(), -2);
    EXPECT_EQ(m_log.Count("error"), 1U);
    EXPECT_THAT(m_log.GetLines().back().function, testing::HasSubstr("SerialBuffer::Read"));
    m_buffer.Trace(0);
    EXPECT_EQ(m_buffer.Read(), -2);
    EXPECT_EQ(m_log.Count("error"), 1U);
}

TEST_F(SerialBufferTest, BufferWithoutRoomTimesOut)
{
    SerialBuffer none(m_serial, 0);
    none.BlockDuration(Patience);
    Deliver({1});
    EXPECT_EQ(none.Read(), -1);
}

TEST_F(SerialBufferTest, WritesInOneCallAndNamesEachByteBefore)
{
    unsigned char bytes[] = {2, 7};
    std::size_t linesBefore = 0;
    m_calls.Before("write", [&] { linesBefore = m_log.GetTexts().size(); });
    EXPECT_EQ(m_buffer.Write(bytes, 2), 2);
    EXPECT_EQ(linesBefore, 2U);
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("wrote (1/2) 2", "wrote (2/2) 7"));
    EXPECT_THAT(m_calls.GetCalls(), ElementsAre("write 2"));
    EXPECT_THAT(m_port.ReceiveCount(2), ElementsAre(2, 7));
}

TEST_F(SerialBufferTest, WritesNothingByACallToo)
{
    unsigned char byte = 1;
    EXPECT_EQ(m_buffer.Write(&byte, 0), 0);
    EXPECT_THAT(m_calls.GetCalls(), ElementsAre("write 0"));
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(SerialBufferTest, WriteReturnsWhatThePortDoes)
{
    unsigned char byte = 1;
    m_calls.Fail("write", {EIO});
    EXPECT_EQ(m_buffer.Write(&byte, 1), EIO);
    m_serial.Close();
    EXPECT_EQ(m_buffer.Write(&byte, 1), 22);
}

TEST_F(SerialBufferTest, SaysNothingWithoutTrace)
{
    m_buffer.Trace(0);
    unsigned char bytes[] = {2, 7};
    EXPECT_EQ(m_buffer.Write(bytes, 2), 2);
    Deliver({1});
    EXPECT_EQ(m_buffer.Read(), 1);
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(SerialBufferTest, LogsInItsOwnName)
{
    Deliver({1});
    m_buffer.Read();
    ASSERT_EQ(m_log.GetLines().size(), 1U);
    EXPECT_EQ(m_log.GetLines()[0].context, "Hardware/Serial");
    EXPECT_EQ(m_log.GetLines()[0].level, 1U);
    EXPECT_EQ(m_log.GetLines()[0].file, "flatpanel_controller/serial_buffer.cpp");
}
