// SPDX-License-Identifier: MIT
// Binary form of the timecode values.
#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>

#include "hardware/timecode/frame.h"
#include "timecode/counting_streams.h"

namespace
{

using namespace std::string_literals;
using namespace Hardware::Timecode;
using testing::ElementsAre;
using TestSupport::CountingInput;
using TestSupport::CountingOutput;

TEST(FrameOutput, IsSeventeenBytesMostSignificantFirst)
{
    CountingOutput out;
    out << Frame(1, 2, 3, 4, true);
    EXPECT_EQ(out.bytes, "\0\0\0\1\0\0\0\2\0\0\0\3\0\0\0\4\1"s);
}

TEST(FrameOutput, KeepsAllBitsAndTheSign)
{
    CountingOutput out;
    out << Frame(0x12345678, -2, 0x7FFFFFFF, -0x7FFFFFFF - 1, false);
    EXPECT_EQ(out.bytes, "\x12\x34\x56\x78\xFF\xFF\xFF\xFE\x7F\xFF\xFF\xFF\x80\0\0\0\0"s);
}

TEST(FrameOutput, IsFiveWrites)
{
    CountingOutput out;
    out << Frame(1, 2, 3, 4, false);
    EXPECT_THAT(out.writes, ElementsAre(4, 4, 4, 4, 1));
}

TEST(FrameInput, ReadsWhatWasWritten)
{
    const Frame written(0x12345678, -2, 59, -1, true);
    CountingOutput out;
    out << written;
    CountingInput in(out.bytes);
    Frame read;
    in >> read;
    EXPECT_EQ(read.toString(), written.toString());
    EXPECT_THAT(in.reads, ElementsAre(4, 4, 4, 4, 1));
}

TEST(FrameInput, TakesAnyFlagButZeroForTrue)
{
    for (int flag = 0; flag < 256; ++flag) {
        CountingInput in(std::string(16, '\0') + static_cast<char>(flag));
        Frame frame(0, 0, 0, 0, flag == 0);
        in >> frame;
        EXPECT_EQ(frame.dropFrame, flag != 0) << flag;
    }
}

TEST(FrameInput, TakesMissingBytesForZero)
{
    CountingInput in("\0\0\0\1\0\0\1"s);
    Frame frame(9, 9, 9, 9, true);
    in >> frame;
    EXPECT_EQ(frame.toString(), "01:256:00:00");
    EXPECT_THAT(in.reads, ElementsAre(4, 4, 4, 4, 1));
}

template <class Value> class DoubleForm : public testing::Test
{
};

using Values = testing::Types<Index, Interval>;
TYPED_TEST_SUITE(DoubleForm, Values);

TYPED_TEST(DoubleForm, IsEightBytesMostSignificantFirstInOneWrite)
{
    CountingOutput out;
    out << TypeParam(40.0);
    EXPECT_EQ(out.bytes, "\x40\x44\0\0\0\0\0\0"s);
    EXPECT_THAT(out.writes, ElementsAre(8));
}

TYPED_TEST(DoubleForm, KeepsAllBits)
{
    CountingOutput out;
    out << TypeParam(-1.0 / 3.0);
    EXPECT_EQ(out.bytes, "\xBF\xD5\x55\x55\x55\x55\x55\x55"s);
}

TYPED_TEST(DoubleForm, ReadsWhatWasWrittenInOneRead)
{
    for (const double value : {0.0, 40.0, -24.6, 1.7976931348623157e308, 5e-324}) {
        CountingOutput out;
        out << TypeParam(value);
        CountingInput in(out.bytes);
        TypeParam read(1.0);
        in >> read;
        EXPECT_EQ(read, value);
        EXPECT_THAT(in.reads, ElementsAre(8));
    }
}

TYPED_TEST(DoubleForm, TakesMissingBytesForZero)
{
    CountingInput in("\x40\x44"s);
    TypeParam read(1.0);
    in >> read;
    EXPECT_EQ(read, 40.0);

    CountingInput empty(""s);
    empty >> read;
    EXPECT_EQ(read, 0.0);
}

TYPED_TEST(DoubleForm, ReadsWhatIsNotANumber)
{
    CountingInput in("\x7F\xF8\0\0\0\0\0\0"s);
    TypeParam read(1.0);
    in >> read;
    EXPECT_TRUE(std::isnan(read));
}

TEST(Streams, AreHandedOn)
{
    CountingOutput out;
    out << Frame(1, 2, 3, 4, true) << Index(1.0) << Interval(2.0);
    ASSERT_EQ(out.bytes.size(), 33U);
    CountingInput in(out.bytes);
    Frame frame;
    Index index;
    Interval interval;
    in >> frame >> index >> interval;
    EXPECT_EQ(frame.toString(), "01;02;03;04");
    EXPECT_EQ(index, 1.0);
    EXPECT_EQ(interval, 2.0);
}

} // namespace
