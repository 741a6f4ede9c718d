// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/sample_type.h"
#include "standalone/memory_stream.h"

using namespace std::string_view_literals;

using TestSupport::Tint;

namespace
{

class EnumBinary : public testing::Test
{
protected:
    const TestSupport::TintType m_type;
};

struct BinaryCase {
    std::int32_t value;
    std::string_view bytes;
};

constexpr BinaryCase Stored[] = {
    {-2, "\xFF\xFF\xFF\xFE"sv}, {-1, "\xFF\xFF\xFF\xFF"sv}, {0, "\0\0\0\0"sv},
    {1, "\0\0\0\x01"sv},        {255, "\0\0\0\xFF"sv},      {260, "\0\0\x01\x04"sv},
};

TEST_F(EnumBinary, IsSavedMostSignificantByteFirst)
{
    for (const BinaryCase& c : Stored) {
        Standalone::MemoryOutput output;
        m_type.save(m_type, &c.value, output);
        EXPECT_EQ(output.GetBytes(), c.bytes) << c.value;
    }
}

TEST_F(EnumBinary, IsSavedWholeWhateverTheRange)
{
    const std::int32_t value = 0x12345678;
    Standalone::MemoryOutput output;
    m_type.save(m_type, &value, output);
    EXPECT_EQ(output.GetBytes(), "\x12\x34\x56\x78"sv);
}

/// Counts the calls.
class CountingOutput : public kel::ostream
{
public:
    void write(const void*, unsigned count) override
    {
        ++writes;
        bytes += count;
    }
    int writes = 0;
    unsigned bytes = 0;
};

TEST_F(EnumBinary, IsSavedInOneWriteOfFourBytes)
{
    const Tint value = Tint::Blue;
    CountingOutput output;
    m_type.save(m_type, &value, output);
    EXPECT_EQ(output.writes, 1);
    EXPECT_EQ(output.bytes, 4u);
}

TEST_F(EnumBinary, IsLoadedAsItWasSaved)
{
    for (const BinaryCase& c : Stored) {
        Standalone::MemoryInput input{std::string(c.bytes)};
        std::int32_t value = 77;
        EXPECT_TRUE(m_type.load(m_type, &value, input)) << c.value;
        EXPECT_EQ(value, c.value);
    }
}

TEST_F(EnumBinary, OutsideTheRangeIsRefused)
{
    for (const std::string_view bytes :
         {"\xFF\xFF\xFF\xFD"sv, "\0\0\x01\x05"sv, "\x80\0\0\0"sv, "\x7F\xFF\xFF\xFF"sv}) {
        Standalone::MemoryInput input{std::string(bytes)};
        auto value = Tint::Green;
        EXPECT_FALSE(m_type.load(m_type, &value, input));
        EXPECT_EQ(value, Tint::Green);
    }
}

TEST_F(EnumBinary, ThatEndsTooEarlyIsRefused)
{
    for (std::size_t length = 0; length < 4; ++length) {
        Standalone::MemoryInput input(std::string(length, '\0'));
        auto value = Tint::Green;
        EXPECT_FALSE(m_type.load(m_type, &value, input)) << length;
        EXPECT_EQ(value, Tint::Green) << length;
    }
}

TEST_F(EnumBinary, TakesFourBytesAndLeavesTheRest)
{
    Standalone::MemoryInput input(std::string("\0\0\0\x02\0\0\0\x03"sv));
    auto value = Tint::Red;
    EXPECT_TRUE(m_type.load(m_type, &value, input));
    EXPECT_EQ(value, Tint::Green);
    EXPECT_TRUE(m_type.load(m_type, &value, input));
    EXPECT_EQ(value, Tint::Blue);
}

} // namespace
