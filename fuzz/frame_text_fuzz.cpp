// SPDX-License-Identifier: MIT

// Reads arbitrary texts as timecode, compares with a reader that knows nothing of scanf(), and
// checks that what is written reads back as the same.

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "hardware/timecode/frame.h"
#include "require.h"

using Fuzz::Require;
using Hardware::Timecode::Frame;

namespace
{

typedef std::array<std::int32_t, 4> Fields;

Fields GetFields(const Frame& frame)
{
    return {frame.hours, frame.minutes, frame.seconds, frame.frames};
}

bool IsSpace(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Reads a text item by item and keeps what it found before one that failed.
class NaiveFrameReader
{
public:
    NaiveFrameReader(const std::string& text, const Fields& before)
        : m_text(text.c_str()), m_fields(before), m_complete(Read())
    {
    }

    bool IsComplete() const { return m_complete; }
    bool IsDropFrame() const { return m_separator == ';'; }
    const Fields& GetNumbers() const { return m_fields; }

private:
    bool Read()
    {
        return ReadNumber(0) && ReadSeparator() && ReadNumber(1) && ReadSeparator() &&
               ReadNumber(2) && ReadSeparator() && ReadNumber(3);
    }

    bool ReadNumber(std::size_t field)
    {
        while (m_at < m_text.size() && IsSpace(m_text[m_at]))
            ++m_at;
        const bool negative = m_at < m_text.size() && m_text[m_at] == '-';
        if (m_at < m_text.size() && (m_text[m_at] == '-' || m_text[m_at] == '+'))
            ++m_at;
        std::string digits;
        for (; m_at < m_text.size() && IsDigit(m_text[m_at]); ++m_at)
            digits += m_text[m_at];
        if (digits.empty())
            return false;
        m_fields[field] = ToField(digits, negative);
        return true;
    }

    bool ReadSeparator()
    {
        if (m_at == m_text.size())
            return false;
        m_separator = m_text[m_at];
        ++m_at;
        return true;
    }

    /// The C library takes the nearest long and keeps its low 32 bits.
    static std::int32_t ToField(const std::string& digits, bool negative)
    {
        constexpr std::int64_t Lowest = std::numeric_limits<std::int64_t>::min();
        constexpr std::int64_t Highest = std::numeric_limits<std::int64_t>::max();
        std::int64_t value = 0;
        for (const char digit : digits) {
            const std::int64_t step = negative ? -(digit - '0') : digit - '0';
            if (__builtin_mul_overflow(value, 10, &value) ||
                __builtin_add_overflow(value, step, &value)) {
                value = negative ? Lowest : Highest;
                break;
            }
        }
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
    }

    const std::string m_text; // ends at the first zero
    std::size_t m_at = 0;
    char m_separator = 0;
    Fields m_fields;
    const bool m_complete;
};

void CheckRoundTrip(const Frame& frame)
{
    Frame again(-1, -2, -3, -4, !frame.dropFrame);
    Require(again.fromString(frame.toString()), "what was written does not read");
    Require(GetFields(again) == GetFields(frame), "what was written reads as other numbers");
    Require(again.dropFrame == frame.dropFrame, "what was written reads with another flag");
}

void CheckReading(const std::string& text)
{
    for (const bool flag : {false, true}) {
        Frame frame(101, 102, 103, 104, flag);
        const NaiveFrameReader naive(text, GetFields(frame));
        Require(frame.fromString(text) == naive.IsComplete(), "the two readers disagree");
        Require(GetFields(frame) == naive.GetNumbers(), "the two readers found other numbers");
        Require(frame.dropFrame == naive.IsDropFrame(),
                "the flag is not that of the last separator");
        CheckRoundTrip(frame);
    }
}

/// Takes the input itself for the four fields and the flag.
void CheckWriting(const unsigned char* data, std::size_t size)
{
    Fields fields{};
    if (size <= sizeof fields)
        return;
    std::memcpy(fields.data(), data, sizeof fields);
    const bool flag = (data[sizeof fields] & 1) != 0;
    CheckRoundTrip(Frame(fields[0], fields[1], fields[2], fields[3], flag));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    CheckReading(std::string(data, data + size));
    CheckWriting(data, size);
    return 0;
}
