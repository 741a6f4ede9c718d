// SPDX-License-Identifier: MIT
#pragma once

namespace kel
{

/// Sink of raw bytes. Errors are the implementation's affair; writers do not ask.
class ostream
{
public:
    virtual ~ostream() = default;
    /// Writes @p count bytes starting at @p bytes.
    virtual void write(const void* bytes, unsigned count) = 0;
};

/// Source of raw bytes.
class istream
{
public:
    virtual ~istream() = default;
    /// Reads up to @p count bytes into @p bytes and returns how many arrived.
    virtual unsigned read(void* bytes, unsigned count) = 0;
};

} // namespace kel
