// SPDX-License-Identifier: MIT
#pragma once

#include "os/network_adapter.h"

namespace Os
{

/// Tells of network adapters that change. Any thread may call any operation.
///
/// One thread of its own makes all calls, one after the other and with no lock of the monitor held.
/// It runs only while anybody is registered, and sleeps while nothing changes.
class PLATFORM_EXPORT NetworkAdapterMonitor
{
public:
    class Callback;

    /// What can change. Single bits, so that a mask can ask for any set of them.
    enum Event : unsigned {
        Event_Link = 1,     ///< the link's state; an adapter that comes or goes
        Event_Address = 2,  ///< the hardware address
        Event_Settings = 4, ///< the speed, or another setting of the link
        Event_All = 65535
    };

    /// The only instance. Never destroyed.
    static NetworkAdapterMonitor& Get();

    /// Has @p callback called whenever the adapter of that name changes from now on, also one that
    /// does not exist yet. Registered again, it gets what either mask asks for, once. A change
    /// during the registration is reported, perhaps before this returns; whoever wants to know the
    /// state registers first and reads it then.
    ///
    /// @param mask events to be told of
    /// @return false for what cannot be a name, for a mask without events, and when the system
    ///         does not let itself be watched
    bool Register(const kel::wstring& name, unsigned mask, Callback* callback);
    /// Ends that for the events of @p mask. Waits for nothing: a call that has begun may still be
    /// running.
    /// @return false when nothing of it was registered
    bool Unregister(const kel::wstring& name, unsigned mask, Callback* callback);
    /// Ends all registrations of @p callback, and waits for a call of it that is running, unless on
    /// the monitor's own thread: hold no lock that the call takes. None is made afterwards.
    void Unregister(Callback* callback);

    NetworkAdapterMonitor(const NetworkAdapterMonitor&) = delete;
    NetworkAdapterMonitor& operator=(const NetworkAdapterMonitor&) = delete;

private:
    NetworkAdapterMonitor() = default;
    ~NetworkAdapterMonitor() = default;
};

/// Whom the monitor calls.
class PLATFORM_EXPORT NetworkAdapterMonitor::Callback
{
public:
    Callback();
    /// Ends its registrations. A derived class whose Changed() uses its members ends them itself,
    /// first thing in its destructor: here they are gone.
    virtual ~Callback();
    Callback(const Callback&) = delete;
    Callback& operator=(const Callback&) = delete;

    /// On the monitor's thread.
    /// @param adapter  as it is now; one that is gone keeps its name here and is absent
    /// @param previous the state before
    /// @param events   what has changed; after changes that the system dropped, all that may have
    virtual void Changed(const NetworkAdapter& adapter, const NetworkAdapter::State& previous,
                         int events) = 0;
};

} // namespace Os
