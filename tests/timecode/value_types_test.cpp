// SPDX-License-Identifier: MIT
// Shapes and signatures of the timecode values. The compiler runs these tests.
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "hardware/timecode/frame.h"
#include "hardware/timecode/interval_calc.h"
#include "timecode/offers.h"

namespace
{

using Hardware::TimecodeFormat;
using Hardware::Timecode::Frame;
using Hardware::Timecode::Index;
using Hardware::Timecode::Interval;
using Hardware::Timecode::IntervalCalc;
using TestSupport::Offers;

template <class T>
concept HasEquality = requires(const T& a, const T& b)
{
    a == b;
};
template <class T>
concept HasInequality = requires(const T& a, const T& b)
{
    a != b;
};

static_assert(sizeof(TimecodeFormat) == 4 && std::is_enum_v<TimecodeFormat>);
static_assert(Hardware::TimecodeFormat_Smpte30 == 0);
static_assert(Hardware::TimecodeFormat_Ntsc30 == 1);
static_assert(Hardware::TimecodeFormat_Ebu25 == 2);
static_assert(Hardware::TimecodeFormat_Film24 == 3);
static_assert(Hardware::TimecodeFormat_Invalid == 4);

// One double each, and not the same type.
static_assert(sizeof(Index) == 8 && sizeof(Interval) == 8);
static_assert(std::is_trivially_copyable_v<Index> && std::is_trivially_copyable_v<Interval>);
static_assert(std::is_convertible_v<double, Index> && std::is_convertible_v<Index, double>);
static_assert(std::is_convertible_v<double, Interval> && std::is_convertible_v<Interval, double>);
static_assert(!std::is_same_v<Index, Interval>);
static_assert(static_cast<double>(Index(24.6)) == 24.6);
static_assert(static_cast<double>(Interval(40.0)) == 40.0);

static_assert(std::is_same_v<decltype(Frame::hours), std::int32_t>);
static_assert(std::is_same_v<decltype(Frame::minutes), std::int32_t>);
static_assert(std::is_same_v<decltype(Frame::seconds), std::int32_t>);
static_assert(std::is_same_v<decltype(Frame::frames), std::int32_t>);
static_assert(std::is_same_v<decltype(Frame::dropFrame), bool>);
static_assert(!std::is_polymorphic_v<Frame> && std::is_trivially_copyable_v<Frame>);
static_assert(!HasEquality<Frame> && !HasInequality<Frame>, "say which equality is meant");

static_assert(std::is_constructible_v<Frame, int, int, int, int, bool>);
static_assert(std::is_constructible_v<Frame, const std::string&>);
static_assert(std::is_constructible_v<Frame, Index, double>);
static_assert(std::is_constructible_v<Frame, Index, Interval>);
static_assert(std::is_constructible_v<Frame, Index, TimecodeFormat>);

// Each cast compiles only when a member of exactly that signature is there.
static_assert(Offers<static_cast<bool (Frame::*)(const std::string&)>(&Frame::fromString)>);
static_assert(Offers<static_cast<std::string (Frame::*)() const>(&Frame::toString)>);
static_assert(Offers<static_cast<Index (Frame::*)(double) const>(&Frame::toIndex)>);
static_assert(Offers<static_cast<Index (Frame::*)(Interval) const>(&Frame::toIndex)>);
static_assert(Offers<static_cast<Index (Frame::*)(TimecodeFormat) const>(&Frame::toIndex)>);
static_assert(Offers<static_cast<void (Frame::*)(Index, double)>(&Frame::fromIndex)>);
static_assert(Offers<static_cast<void (Frame::*)(Index, Interval)>(&Frame::fromIndex)>);
static_assert(Offers<static_cast<void (Frame::*)(Index, TimecodeFormat)>(&Frame::fromIndex)>);
static_assert(Offers<static_cast<void (Frame::*)(Index, double)>(&Frame::add)>);
static_assert(Offers<static_cast<void (Frame::*)(Index, Interval)>(&Frame::add)>);
static_assert(Offers<static_cast<void (Frame::*)(Index, TimecodeFormat)>(&Frame::add)>);
static_assert(Offers<(static_cast<bool (Frame::*)(const Frame&) const>(&Frame::operator<))>);
static_assert(Offers<(static_cast<bool (Frame::*)(const Frame&) const>(&Frame::operator>))>);
static_assert(Offers<(static_cast<bool (Frame::*)(const Frame&) const>(&Frame::operator<=))>);
static_assert(Offers<(static_cast<bool (Frame::*)(const Frame&) const>(&Frame::operator>=))>);

static_assert(Offers<static_cast<double (*)(TimecodeFormat)>(&Hardware::Timecode::toRate)>);
static_assert(Offers<static_cast<double (*)(Interval)>(&Hardware::Timecode::toRate)>);
static_assert(Offers<static_cast<Interval (*)(double)>(&Hardware::Timecode::toInterval)>);
static_assert(Offers<static_cast<Interval (*)(TimecodeFormat)>(&Hardware::Timecode::toInterval)>);
static_assert(Offers<static_cast<TimecodeFormat (*)(double)>(&Hardware::Timecode::toFormat)>);
static_assert(Offers<static_cast<TimecodeFormat (*)(Interval)>(&Hardware::Timecode::toFormat)>);

static_assert(std::is_constructible_v<IntervalCalc, Interval>);
static_assert(Offers<static_cast<void (IntervalCalc::*)(Interval)>(&IntervalCalc::SetInterval)>);
static_assert(Offers<static_cast<Interval (IntervalCalc::*)() const>(&IntervalCalc::GetInterval)>);
static_assert(Offers<static_cast<std::uint32_t (IntervalCalc::*)()>(&IntervalCalc::GetMillisecs)>);

} // namespace
