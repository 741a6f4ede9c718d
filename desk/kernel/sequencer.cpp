// SPDX-License-Identifier: MIT
#include "desk/sequencer.h"

#include <linux/soundcard.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <vector>

#include "kernel/request_handler.h"
#include "kernel/testbed_private.h"

namespace Desk
{

namespace
{

constexpr char Path[] = "/dev/sequencer";
/// Name under which a client carries the count that its open saw.
constexpr char CountAtOpen[] = "count-at-open";

} // namespace

struct Sequencer::Private {
    explicit Private(KernelTestbed& itsTestbed) : testbed(itsTestbed) {}

    KernelTestbed& testbed;
    UMockdevIoctlBase* handler = nullptr;
    int device = -1;

    std::mutex mutex;
    std::vector<std::optional<std::string>> ports; // guarded by mutex, as all below
    bool present = true;
    int countError = 0;
    std::map<int, int> informationErrors;
    int opensSeen = 0;
    std::condition_variable openSeen;

    void AwaitOpens(std::unique_lock<std::mutex>& hold);

    void RefreshLocked();
    gboolean Answer(UMockdevIoctlClient* client);
    int AnswerCount(UMockdevIoctlClient* client);
    int AnswerInformation(UMockdevIoctlClient* client);
};

namespace
{

using Owner = std::shared_ptr<Sequencer::Private>;

gboolean HandleRequest(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer owner)
{
    return (*static_cast<Owner*>(owner))->Answer(client);
}

void HandleOpen(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer owner)
{
    Sequencer::Private& sequencer = **static_cast<Owner*>(owner);
    const std::lock_guard hold(sequencer.mutex);
    g_object_set_data(G_OBJECT(client), CountAtOpen, GSIZE_TO_POINTER(sequencer.ports.size()));
    ++sequencer.opensSeen;
    sequencer.openSeen.notify_all();
}

} // namespace

/// Waits until every open so far has its count: the handler's thread learns of them a little later.
void Sequencer::Private::AwaitOpens(std::unique_lock<std::mutex>& hold)
{
    const int openedEver = testbed.GetPrivate().GetUse(device).openedEver;
    openSeen.wait_for(hold, std::chrono::seconds(5), [&] { return opensSeen >= openedEver; });
}

/// Makes the node openable or not, as the state says.
void Sequencer::Private::RefreshLocked()
{
    const std::string file = testbed.GetPathOf(Path);
    if (present)
        std::ofstream(file, std::ios::app);
    else
        std::filesystem::remove(file);
    const bool anyPort =
        std::any_of(ports.begin(), ports.end(), [](const auto& port) { return port.has_value(); });
    DeskDeviceFaults faults = DeskNoFaults;
    faults.openError = present && !anyPort ? ENODEV : 0;
    testbed.GetPrivate().setFaults(device, &faults);
}

gboolean Sequencer::Private::Answer(UMockdevIoctlClient* client)
{
    int error = ENOTTY;
    switch (umockdev_ioctl_client_get_request(client)) {
    case SNDCTL_SEQ_NRMIDIS:
        error = AnswerCount(client);
        break;
    case SNDCTL_MIDI_INFO:
        error = AnswerInformation(client);
        break;
    default:
        break;
    }
    umockdev_ioctl_client_complete(client, error ? -1 : 0, error);
    return TRUE;
}

int Sequencer::Private::AnswerCount(UMockdevIoctlClient* client)
{
    const std::lock_guard hold(mutex);
    if (countError != 0)
        return countError;
    WriteArgument(client, static_cast<int>(
                              GPOINTER_TO_SIZE(g_object_get_data(G_OBJECT(client), CountAtOpen))));
    return 0;
}

int Sequencer::Private::AnswerInformation(UMockdevIoctlClient* client)
{
    midi_info info{};
    if (!ReadArgument(client, info))
        return EFAULT;
    const std::lock_guard hold(mutex);
    const auto failure = informationErrors.find(info.device);
    if (failure != informationErrors.end())
        return failure->second;
    const auto index = static_cast<std::size_t>(info.device);
    if (info.device < 0 || index >= ports.size() || !ports[index])
        return EINVAL;
    const std::string& name = *ports[index];
    // As long as the field the name has no terminator, as with the kernel.
    std::memset(info.name, 0, sizeof info.name);
    std::memcpy(info.name, name.data(), std::min(name.size(), sizeof info.name));
    WriteArgument(client, info);
    return 0;
}

Sequencer::Sequencer(KernelTestbed& testbed) : m_private(new Private(testbed))
{
    KernelTestbed::Private& bed = testbed.GetPrivate();
    m_private->device = bed.addDevice(Path);
    m_private->handler = umockdev_ioctl_base_new();
    ConnectHandler(m_private->handler, "handle-ioctl", HandleRequest, m_private);
    ConnectHandler(m_private->handler, "client-connected", HandleOpen, m_private);
    const std::lock_guard hold(m_private->mutex);
    m_private->RefreshLocked();
    if (!umockdev_testbed_attach_ioctl(bed.testbed, Path, m_private->handler, nullptr))
        throw std::runtime_error("the test bed takes no handler for /dev/sequencer");
}

Sequencer::~Sequencer()
{
    KernelTestbed::Private& bed = m_private->testbed.GetPrivate();
    umockdev_testbed_detach_ioctl(bed.testbed, Path, nullptr);
    g_object_unref(m_private->handler);
    bed.releaseDevice(m_private->device);
    std::filesystem::remove(m_private->testbed.GetPathOf(Path));
}

int Sequencer::AddPort(const std::string& name, const std::function<void(int)>& prepare)
{
    std::unique_lock hold(m_private->mutex);
    m_private->AwaitOpens(hold);
    auto& ports = m_private->ports;
    const auto free = std::find_if(ports.begin(), ports.end(),
                                   [](const auto& port) { return !port.has_value(); });
    const auto index = static_cast<int>(free - ports.begin());
    if (prepare)
        prepare(index);
    if (free == ports.end())
        ports.emplace_back(name);
    else
        *free = name;
    m_private->RefreshLocked();
    return index;
}

void Sequencer::RemovePort(int index)
{
    std::unique_lock hold(m_private->mutex);
    m_private->AwaitOpens(hold);
    auto& ports = m_private->ports;
    ports.at(static_cast<std::size_t>(index)).reset();
    while (!ports.empty() && !ports.back())
        ports.pop_back();
    m_private->RefreshLocked();
}

int Sequencer::CountOpen() const
{
    return m_private->testbed.GetPrivate().GetUse(m_private->device).openNow;
}

int Sequencer::CountOpened() const
{
    return m_private->testbed.GetPrivate().GetUse(m_private->device).openedEver;
}

int Sequencer::GetLastOpenFlags() const
{
    return m_private->testbed.GetPrivate().GetUse(m_private->device).lastFlags;
}

void Sequencer::Vanish()
{
    const std::lock_guard hold(m_private->mutex);
    m_private->present = false;
    m_private->RefreshLocked();
}

void Sequencer::Appear()
{
    const std::lock_guard hold(m_private->mutex);
    m_private->present = true;
    m_private->RefreshLocked();
}

void Sequencer::FailCount(int error)
{
    const std::lock_guard hold(m_private->mutex);
    m_private->countError = error;
}

void Sequencer::FailInformation(int index, int error)
{
    const std::lock_guard hold(m_private->mutex);
    if (error == 0)
        m_private->informationErrors.erase(index);
    else
        m_private->informationErrors[index] = error;
}

} // namespace Desk
