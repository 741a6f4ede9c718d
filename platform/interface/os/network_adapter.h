// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "kel/wstring.h"
#include "platform_export.h"

namespace Os
{

/// A network adapter as it was at one moment. A value.
class PLATFORM_EXPORT NetworkAdapter
{
public:
    enum State : int {
        State_Unknown = 0, ///< could not be found out
        State_Absent = 1,  ///< there is no such adapter
        State_Down = 2,    ///< switched off, or without a link
        State_Up = 3       ///< switched on, and its link carries data
    };

    /// Counted since the adapter was made; all are 0 where they are not known.
    struct Statistics {
        std::uint64_t speed = 0; ///< of the link, in bits per second
        std::uint64_t receivedBytes = 0;
        std::uint64_t sentBytes = 0;

        bool operator==(const Statistics&) const = default;
    };

    /// No adapter: without a name, in an unknown state.
    NetworkAdapter();
    NetworkAdapter(kel::wstring name, State state, const Statistics& statistics,
                   kel::wstring hardwareAddress);

    /// Asks the system about the adapter of that name. The result has no name when there is none,
    /// and neither when the system could not be asked. Any thread; waits for no callback.
    static NetworkAdapter ReadSettings(const kel::wstring& name);

    const kel::wstring& GetName() const { return m_name; }
    State GetState() const { return m_state; }
    const Statistics& GetStatistics() const { return m_statistics; }
    /// Such as "02:00:5e:10:00:01"; empty for an adapter that has none.
    const kel::wstring& GetHardwareAddress() const { return m_hardwareAddress; }

private:
    kel::wstring m_name;
    kel::wstring m_hardwareAddress;
    State m_state = State_Unknown;
    Statistics m_statistics;
};

} // namespace Os
