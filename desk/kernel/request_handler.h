// SPDX-License-Identifier: MIT
#pragma once

#include <umockdev.h>

#include <cstring>
#include <memory>

namespace Desk
{

// Copy between a request's argument, which lies in the client's memory, and @p record. The client
// owns what get_arg() returns, the caller what resolve() returns.

template <class Record> bool ReadArgument(UMockdevIoctlClient* client, Record& record)
{
    UMockdevIoctlData* const pointer = umockdev_ioctl_client_get_arg(client);
    UMockdevIoctlData* const memory =
        umockdev_ioctl_data_resolve(pointer, 0, sizeof record, nullptr);
    const bool found = memory != nullptr;
    if (found) {
        std::memcpy(&record, memory->data, sizeof record);
        umockdev_ioctl_data_unref(memory);
    }
    return found;
}

template <class Record> void WriteArgument(UMockdevIoctlClient* client, Record record)
{
    UMockdevIoctlData* const pointer = umockdev_ioctl_client_get_arg(client);
    UMockdevIoctlData* const memory =
        umockdev_ioctl_data_resolve(pointer, 0, sizeof record, nullptr);
    if (memory) {
        umockdev_ioctl_data_update(memory, 0, reinterpret_cast<guint8*>(&record), sizeof record);
        umockdev_ioctl_data_unref(memory);
    }
}

/// Connects a signal of a device's handler, which then carries a share in the device's state: the
/// handler's thread may still be about to emit one when the device has gone.
template <class Callback, class State>
void ConnectHandler(UMockdevIoctlBase* handler, const char* signal, Callback* callback,
                    const std::shared_ptr<State>& state)
{
    using Owner = std::shared_ptr<State>;
    const auto release = [](gpointer data, GClosure*) { delete static_cast<Owner*>(data); };
    g_signal_connect_data(handler, signal, G_CALLBACK(callback), new Owner(state), release,
                          GConnectFlags(0));
}

} // namespace Desk
