// SPDX-License-Identifier: MIT
#include "hardware/vex4_backlight.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>

#include "error_text.h"
#include "os/platform.h"
#include "source_site.h"

namespace
{

constexpr char SourceFile[] = "vex4_backlight.cpp";

/// Physical addresses of the display controllers' register blocks.
struct Bases {
    std::uintptr_t first;
    std::uintptr_t second;
};
constexpr Bases LeftBases{0xFE620000, 0xF7E20000};
constexpr Bases RightBases{0xFE120000, 0xF7B20000};
constexpr Bases CenterBases{0xFE320000, 0xF7C20000};

// Offsets in a block.
constexpr unsigned BrightnessOffset = 31484;
constexpr unsigned FrequencyOffset = 31464;

constexpr std::uintptr_t PageSize = 4096;

constexpr unsigned EnableBit = 1;
constexpr unsigned DutyShift = 8;
constexpr unsigned DutyBits = 0x0000FF00;
constexpr unsigned FrequencyBits = 0x0FF00000;
/// 43, in its place.
constexpr unsigned UsualFrequency = 0x02B00000;

constexpr uires16 FullLevel = 0x00640000;

// Lines that go by a number that support knows.
constexpr unsigned NotSupportedLine = 60;
constexpr unsigned OpenFailedLine = 70;

Os::Log::Context& GetLogContext()
{
    static Os::Log::Context context("Vex4Backlight", nullptr, Os::Log::AllButTrace);
    return context;
}

Os::Log::Context& GetSetLogContext()
{
    static Os::Log::Context context("Set", &GetLogContext(), Os::Log::AllButTrace);
    return context;
}

bool IsMapped(const unsigned* reg)
{
    return reg && reg != Vex4Backlight::InvalidReg;
}

// Levels may come from two threads at once. Each access is one of 32 bits; of two levels for one
// register the last holds.

unsigned Read(const unsigned* reg)
{
    return __atomic_load_n(static_cast<const volatile unsigned*>(reg), __ATOMIC_RELAXED);
}

// NOLINTNEXTLINE(readability-non-const-parameter): the register is written by it
void Write(unsigned* reg, unsigned word)
{
    __atomic_store_n(static_cast<volatile unsigned*>(reg), word, __ATOMIC_RELAXED);
}

std::uintptr_t GetAddress(const void* pointer)
{
    return reinterpret_cast<std::uintptr_t>(pointer);
}

/// Whether the displays have cold-cathode lamps, which keep their own frequency.
bool LampsKeepFrequency()
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody changes the variable while the console runs
    const char* const setting = std::getenv("GUT_CCFL_BACKLIGHT");
    return setting && *setting != '0';
}

} // namespace

// NOLINTNEXTLINE(performance-no-int-to-ptr): a pointer that points nowhere
unsigned int* const Vex4Backlight::InvalidReg = reinterpret_cast<unsigned*>(UINTPTR_MAX);

Vex4Backlight::Vex4Backlight()
{
    // Both contexts are made here, so that they outlive the object.
    GetSetLogContext();
    if (!Os::Platform::IsConsole()) {
        HARDWARE_LOG_AT(GetLogContext(), Os::Log::Trace, NotSupportedLine,
                        "Vex4 backlight not supported");
        return;
    }
    m_descriptor = open("/dev/mem", O_RDWR | O_DSYNC | O_CLOEXEC);
    if (m_descriptor == -1) {
        HARDWARE_LOG_AT(GetLogContext(), Os::Log::Error, OpenFailedLine,
                        "Open on /dev/mem failed: " << Hardware::GetErrorText(errno));
        return;
    }
    MapRegisters();
    if (!LampsKeepFrequency()) {
        Vex4Backlight::SetLeftBacklightFrequency(UsualFrequency);
        Vex4Backlight::SetRightBacklightFrequency(UsualFrequency);
    }
    Vex4Backlight::SetCenterBacklight(FullLevel);
}

Vex4Backlight::~Vex4Backlight()
{
    // Both brightness registers first: another order than that of mapping.
    Unmap(m_leftBrightness);
    Unmap(m_leftFrequency);
    Unmap(m_rightBrightness);
    Unmap(m_rightFrequency);
    Unmap(m_centerBrightness);
    Unmap(m_centerFrequency);
    if (m_descriptor != -1)
        close(m_descriptor);
}

void Vex4Backlight::MapRegisters()
{
    const auto map = [this](std::uintptr_t base, unsigned offset) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): a physical address
        return Map(reinterpret_cast<void*>(base), offset);
    };
    const auto mapSide = [&map](const Bases& bases, Pair& brightness, Pair& frequency) {
        brightness.first = map(bases.first, BrightnessOffset);
        frequency.first = map(bases.first, FrequencyOffset);
        brightness.second = map(bases.second, BrightnessOffset);
        frequency.second = map(bases.second, FrequencyOffset);
    };
    mapSide(LeftBases, m_leftBrightness, m_leftFrequency);
    mapSide(RightBases, m_rightBrightness, m_rightFrequency);
    mapSide(CenterBases, m_centerBrightness, m_centerFrequency);
}

// NOLINTNEXTLINE(readability-make-member-function-const): callers know it so
unsigned int* Vex4Backlight::Map(void* base, unsigned int offset)
{
    const std::uintptr_t address = GetAddress(base) + offset;
    const auto fail = [address](int error) {
        HARDWARE_LOG(GetLogContext(), Os::Log::Error,
                     "Map of address " << kel::hex(address)
                                       << " failed : " << Hardware::GetErrorText(error));
        return InvalidReg;
    };
    // The last register of a page would reach into the next one.
    if (address % sizeof(unsigned) != 0)
        return fail(EINVAL);
    const std::uintptr_t inPage = address % PageSize;
    void* const page = mmap(nullptr, PageSize, PROT_READ | PROT_WRITE, MAP_SHARED, m_descriptor,
                            static_cast<off_t>(address - inPage));
    if (page == MAP_FAILED) // NOLINT(*-no-int-to-ptr, *-cstyle-cast): the system's macro
        return fail(errno);
    return reinterpret_cast<unsigned*>(static_cast<char*>(page) + inPage);
}

void Vex4Backlight::Unmap(unsigned int* reg)
{
    if (reg == InvalidReg)
        return;
    char* const address = reinterpret_cast<char*>(reg);
    if (munmap(address - GetAddress(reg) % PageSize, PageSize) == -1)
        HARDWARE_LOG(GetLogContext(), Os::Log::Error,
                     "Unmap of address " << kel::hex(GetAddress(reg))
                                         << " failed : " << Hardware::GetErrorText(errno));
}

void Vex4Backlight::Unmap(const Pair& pair)
{
    Unmap(pair.first);
    Unmap(pair.second);
}

bool Vex4Backlight::SetBacklight(unsigned int* reg, uires16 level)
{
    if (!IsMapped(reg))
        return false;
    const unsigned duty = level * 255 / FullLevel;
    const unsigned word = duty << DutyShift | ((Read(reg) | EnableBit) & ~DutyBits);
    HARDWARE_LOG(GetSetLogContext(), Os::Log::Trace,
                 "Setting backlight of register address " << kel::hex(GetAddress(reg)) << " to "
                                                          << kel::hex(word));
    Write(reg, word);
    return true;
}

bool Vex4Backlight::SetBacklightFrequency(unsigned int* reg, unsigned int field)
{
    if (!IsMapped(reg))
        return false;
    // The field comes in its place and is not masked, on purpose.
    const unsigned word = (Read(reg) & ~FrequencyBits) | field;
    HARDWARE_LOG(GetSetLogContext(), Os::Log::Trace,
                 "Setting back light, frequency " << kel::hex(word));
    Write(reg, word);
    return true;
}

unsigned int Vex4Backlight::GetBacklightFrequency(unsigned int* reg)
{
    return IsMapped(reg) ? Read(reg) & FrequencyBits : 0;
}

bool Vex4Backlight::SetBacklight(const Pair& pair, uires16 level)
{
    // Both are written, always.
    const bool second = SetBacklight(pair.second, level);
    const bool first = SetBacklight(pair.first, level);
    return second || first;
}

bool Vex4Backlight::SetBacklightFrequency(const Pair& pair, unsigned int field)
{
    const bool second = SetBacklightFrequency(pair.second, field);
    const bool first = SetBacklightFrequency(pair.first, field);
    return second || first;
}

bool Vex4Backlight::SetLeftBacklight(uires16 level)
{
    return SetBacklight(m_leftBrightness, level);
}

bool Vex4Backlight::SetRightBacklight(uires16 level)
{
    return SetBacklight(m_rightBrightness, level);
}

bool Vex4Backlight::SetCenterBacklight(uires16 level)
{
    // Inverted and compressed on purpose: 85 down to 50 percent.
    const unsigned percent = 85 - level * 35 / FullLevel;
    return SetBacklight(m_centerBrightness, percent << 16U);
}

bool Vex4Backlight::SetLeftBacklightFrequency(unsigned int hz)
{
    return SetBacklightFrequency(m_leftFrequency, hz);
}

unsigned int Vex4Backlight::GetLeftBacklightFrequency()
{
    return GetBacklightFrequency(m_leftFrequency.first);
}

bool Vex4Backlight::SetRightBacklightFrequency(unsigned int hz)
{
    return SetBacklightFrequency(m_rightFrequency, hz);
}

unsigned int Vex4Backlight::GetRightBacklightFrequency()
{
    return GetBacklightFrequency(m_rightFrequency.first);
}

bool Vex4Backlight::SetCenterBacklightFrequency(unsigned int hz)
{
    return SetBacklightFrequency(m_centerFrequency, hz);
}

unsigned int Vex4Backlight::GetCenterBacklightFrequency()
{
    return GetBacklightFrequency(m_centerFrequency.first);
}
