// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/abstract_backlight.h"

/// Backlights of the left, right and centre display through registers of the display controllers,
/// mapped from /dev/mem.
///
/// Each register stands at two alternative places, of which a console has one; both are always
/// written. A register is a 32-bit word that is read, changed and written back without a lock;
/// of two threads that set the same one at once, one wins.
///
/// Brightness register: duty cycle in bits 8 to 15, enable in bit 0. Frequency register: the
/// frequency's field in bits 20 to 27. All other bits stay as they are.
class HARDWARE_EXPORT Vex4Backlight final : public AbstractBacklight
{
public:
    /// A register that is not mapped: all bits set. Never read and never written.
    static unsigned int* const InvalidReg;

    /// On a console maps the registers, gives the left and right display their frequency unless
    /// the environment variable GUT_CCFL_BACKLIGHT says that their lamps keep their own (set, and
    /// not beginning with '0'), and sets the centre display to 100.0. On anything else, and where
    /// /dev/mem cannot be opened, the object does nothing. Logs failures and never throws.
    Vex4Backlight();
    /// Releases the mappings.
    ~Vex4Backlight() override;
    Vex4Backlight(const Vex4Backlight&) = delete;
    Vex4Backlight& operator=(const Vex4Backlight&) = delete;

    // A side is set when one of its two registers could be written; only then is the result true.
    // Levels go up to 100.0 and are not cut there: above, they reach into bits beside the field.

    bool SetLeftBacklight(uires16 level) override;
    bool SetRightBacklight(uires16 level) override;
    /// The centre display is dimmed the other way round and over less of its range: 100.0 is a
    /// duty cycle of 50 percent, 0 one of 85 percent.
    bool SetCenterBacklight(uires16 level) override;

    // Frequencies are the field already in its place, bits 20 to 27, and neither hertz nor a
    // number from 0: 43, the usual one, is 0x02B00000. Other bits of hz are written as they are.
    // Getters tell the field of the first of the two registers, 0 when that is not mapped.

    bool SetLeftBacklightFrequency(unsigned int hz) override;
    unsigned int GetLeftBacklightFrequency() override;
    bool SetRightBacklightFrequency(unsigned int hz) override;
    unsigned int GetRightBacklightFrequency() override;
    bool SetCenterBacklightFrequency(unsigned int hz) override;
    unsigned int GetCenterBacklightFrequency() override;

    // Single registers.

    /// Maps the page of a register.
    /// @param base   physical address of the register's block
    /// @param offset of the register from there, in bytes
    /// @return the register; InvalidReg, with a log line, when it cannot be mapped or its address
    ///         is not a multiple of 4
    unsigned int* Map(void* base, unsigned int offset);
    /// Releases what Map() returned, InvalidReg included.
    void Unmap(unsigned int* reg);
    // False and 0 for a null or invalid register.
    bool SetBacklight(unsigned int* reg, uires16 level);
    bool SetBacklightFrequency(unsigned int* reg, unsigned int field);
    unsigned int GetBacklightFrequency(unsigned int* reg);

private:
    void MapRegisters();

    /// A kind of register of one side, at its two places.
    struct Pair {
        unsigned int* first = InvalidReg;
        unsigned int* second = InvalidReg;
    };
    void Unmap(const Pair& pair);
    bool SetBacklight(const Pair& pair, uires16 level);
    bool SetBacklightFrequency(const Pair& pair, unsigned int field);

    int m_descriptor = -1;
    Pair m_leftBrightness;
    Pair m_rightBrightness;
    Pair m_centerBrightness;
    Pair m_leftFrequency;
    Pair m_rightFrequency;
    Pair m_centerFrequency;
};
