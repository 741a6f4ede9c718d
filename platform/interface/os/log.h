// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <string>
#include <vector>

#include "kel/text_base.h"
#include "platform_export.h"

namespace Os::Log
{

/// Levels are single bits, so that a mask can admit any set of them.
enum Level : unsigned {
    Trace = 1,    ///< trace and progress
    Note = 2,     ///< start-up, attach and detach
    Warning = 4,  ///< the stand-alone platform's own reading of this bit
    Error = 8,    ///< errors
    Critical = 16 ///< the last words of a fatal stop
};

/// Mask that admits every level.
inline constexpr unsigned AllLevels = 31;
/// Mask that admits all but Trace.
inline constexpr unsigned AllButTrace = 30;
/// Characters that the text of one line can hold.
inline constexpr std::size_t LineCapacity = 1500;

/// A named node in the tree of log sources.
///
/// A line is written only if its level is in the mask of its context and of every ancestor. The
/// masks along that path are kept combined in each context, so a line that is not wanted costs one
/// relaxed load and a branch. Any thread may call any operation. A context is made once, usually as
/// a function-local static, and outlives its children.
class PLATFORM_EXPORT Context
{
public:
    /// @param name   the context's name, without '/'; static text
    /// @param parent the context above, or null for a root
    /// @param mask   levels admitted, unless a mask was already set for this path
    Context(const char* name, Context* parent, unsigned mask);
    ~Context();
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    /// True when a line of @p level would be written now.
    bool IsEnabled(unsigned level) const noexcept
    {
        return (m_effectiveMask.load(std::memory_order_relaxed) & level) != 0;
    }

    /// The context's own mask, whatever its ancestors admit.
    unsigned GetMask() const noexcept { return m_mask.load(std::memory_order_relaxed); }
    /// Changes the mask; lines already being written are not held back.
    void SetMask(unsigned mask);

    const char* GetName() const noexcept { return m_name; }
    /// The context above, null for a root.
    const Context* GetParent() const noexcept { return m_parent; }
    /// Names from the root down, such as "Hardware/Midi".
    const std::string& GetPath() const noexcept { return m_path; }

    /// Writes one line if its level is enabled. The call stack is captured here, only then.
    ///
    /// @param file     source file
    /// @param function full signature of the function
    /// @param text     the text, which may hold any bytes
    void Write(unsigned level, const char* file, const char* function, unsigned line,
               const kel::text_base<char>& text);

    /// The living context of that path, or null.
    static Context* Find(const char* path);

private:
    void UpdateEffectiveMask();

    const char* const m_name;
    Context* m_parent;
    const std::string m_path;
    std::atomic<unsigned> m_mask;
    std::atomic<unsigned> m_effectiveMask;
    std::vector<Context*> m_children; // guarded by the tree's lock
};

} // namespace Os::Log

/// Writes a line: @p chain is text such as "found " << name, built only when the level is
/// enabled.
#define OS_LOG(context, level, file, chain) OS_LOG_AT(context, level, file, __LINE__, chain)

/// The same with a line number of the caller's choice.
#define OS_LOG_AT(context, level, file, line, chain)                                               \
    do {                                                                                           \
        ::Os::Log::Context& osLogContext = (context);                                              \
        if (osLogContext.IsEnabled(level)) {                                                       \
            ::kel::text<char, ::Os::Log::LineCapacity> osLogText;                                  \
            osLogText << chain; /* NOLINT(bugprone-macro-parentheses): it is a chain */            \
            osLogContext.Write(level, file, static_cast<const char*>(__PRETTY_FUNCTION__), line,   \
                               osLogText);                                                         \
        }                                                                                          \
    } while (false)
