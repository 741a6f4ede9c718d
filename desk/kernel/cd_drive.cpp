// SPDX-License-Identifier: MIT
#include "desk/cd_drive.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "kernel/cd_records.h"
#include "kernel/cd_transport.h"
#include "kernel/request_handler.h"
#include "kernel/testbed_private.h"

namespace Desk
{

namespace
{

constexpr char Path[] = "/dev/cdrom";
/// Name under which a client carries which device it opened, of those that had the name in turn.
constexpr char DeviceAtOpen[] = "device-at-open";
std::uint32_t ReadSystemClock()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

} // namespace

struct CdDrive::Private {
    Private(KernelTestbed& itsTestbed, Clock itsClock)
        : testbed(itsTestbed), clock(itsClock ? std::move(itsClock) : Clock(ReadSystemClock))
    {
    }

    KernelTestbed& testbed;
    const Clock clock;
    UMockdevIoctlBase* handler = nullptr;
    int device = -1;

    std::mutex observerMutex; // held while the observer runs
    std::function<void(unsigned long)> observer;

    mutable std::mutex mutex;
    CdTransport transport; // guarded by mutex, as all below
    bool present = true;
    bool scratched = false;
    bool busy = false;
    unsigned delay = 0;
    std::size_t deviceNumber = 0; // how often the drive was unplugged
    std::map<unsigned long, int> failures;
    std::map<unsigned long, std::size_t> requests;
    std::vector<std::string> commands;
    int opensSeen = 0;
    std::condition_variable openSeen;

    void RefreshLocked();
    void AwaitOpens(std::unique_lock<std::mutex>& hold);
    int Answer(UMockdevIoctlClient* client);
    int FindFailure(UMockdevIoctlClient* client, unsigned long request) const;
    int AnswerRequest(UMockdevIoctlClient* client, unsigned long request);
    int AnswerSubchannel(UMockdevIoctlClient* client);
    int AnswerHeader(UMockdevIoctlClient* client) const;
    int AnswerEntry(UMockdevIoctlClient* client) const;
    template <class Range, class Play> int AnswerPlay(UMockdevIoctlClient* client, Play play);
    int Note(const std::string& command, int error);
};

namespace
{

using Owner = std::shared_ptr<CdDrive::Private>;

gboolean HandleRequest(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer owner)
{
    const int error = (*static_cast<Owner*>(owner))->Answer(client);
    umockdev_ioctl_client_complete(client, error != 0 ? -1 : 0, error);
    return TRUE;
}

void HandleOpen(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer owner)
{
    CdDrive::Private& drive = **static_cast<Owner*>(owner);
    const std::lock_guard hold(drive.mutex);
    g_object_set_data(G_OBJECT(client), DeviceAtOpen, GSIZE_TO_POINTER(drive.deviceNumber));
    ++drive.opensSeen;
    drive.openSeen.notify_all();
}

} // namespace

/// Makes the node openable or not, as the state says.
void CdDrive::Private::RefreshLocked()
{
    const std::string file = testbed.GetPathOf(Path);
    if (present)
        std::ofstream(file, std::ios::app);
    else
        std::filesystem::remove(file);
    DeskDeviceFaults faults = DeskNoFaults;
    faults.openError = present && busy ? EBUSY : 0;
    faults.delay = static_cast<long>(delay);
    testbed.GetPrivate().setFaults(device, &faults);
}

/// Waits until every open so far is known: the handler's thread learns of them a little later.
void CdDrive::Private::AwaitOpens(std::unique_lock<std::mutex>& hold)
{
    const int openedEver = testbed.GetPrivate().GetUse(device).openedEver;
    openSeen.wait_for(hold, std::chrono::seconds(5), [&] { return opensSeen >= openedEver; });
}

int CdDrive::Private::Answer(UMockdevIoctlClient* client)
{
    const unsigned long request = umockdev_ioctl_client_get_request(client);
    {
        const std::lock_guard hold(observerMutex);
        if (observer)
            observer(request);
    }
    const std::lock_guard hold(mutex);
    ++requests[request];
    transport.Advance(clock());
    const int failure = FindFailure(client, request);
    return failure != 0 ? failure : AnswerRequest(client, request);
}

/// Why the drive does not answer, or 0.
int CdDrive::Private::FindFailure(UMockdevIoctlClient* client, unsigned long request) const
{
    const auto opened = GPOINTER_TO_SIZE(g_object_get_data(G_OBJECT(client), DeviceAtOpen));
    if (!present || opened != deviceNumber)
        return ENODEV;
    if (busy)
        return EBUSY;
    const auto failure = failures.find(request);
    if (failure != failures.end())
        return failure->second;
    if (!transport.GetDisc())
        return ENOMEDIUM;
    return scratched ? EIO : 0;
}

/// With a disc. The errno value of the answer.
int CdDrive::Private::AnswerRequest(UMockdevIoctlClient* client, unsigned long request)
{
    switch (request) {
    case CDROMSUBCHNL:
        return AnswerSubchannel(client);
    case CDROMREADTOCHDR:
        return AnswerHeader(client);
    case CDROMREADTOCENTRY:
        return AnswerEntry(client);
    case CDROMPLAYTRKIND:
        return AnswerPlay<cdrom_ti>(
            client, [this](const cdrom_ti& range) { return transport.PlayTracks(range, clock()); });
    case CDROMPLAYMSF:
        return AnswerPlay<cdrom_msf>(
            client, [this](const cdrom_msf& range) { return transport.PlayRange(range, clock()); });
    case CDROMPAUSE:
        return Note("pause", transport.Pause(clock()));
    case CDROMRESUME:
        return Note("resume", transport.Resume(clock()));
    case CDROMSTOP:
        return Note("stop", transport.Stop());
    default:
        return ENOTTY;
    }
}

int CdDrive::Private::AnswerSubchannel(UMockdevIoctlClient* client)
{
    cdrom_subchnl subchannel{};
    if (!ReadArgument(client, subchannel))
        return EFAULT;
    const int format = subchannel.cdsc_format;
    if (!IsCdFormat(format))
        return EINVAL;
    const CdDisc& disc = *transport.GetDisc();
    if (!disc.HasAudio())
        return EOPNOTSUPP;
    const int position = transport.GetPosition();
    const CdDisc::Place place = disc.Locate(position);
    subchannel = {};
    subchannel.cdsc_format = static_cast<unsigned char>(format);
    subchannel.cdsc_audiostatus = static_cast<unsigned char>(transport.TakeAudioStatus());
    subchannel.cdsc_adr = 1; // what follows is a position
    subchannel.cdsc_ctrl = GetCdControl(place.isData) & 0xF;
    subchannel.cdsc_trk = static_cast<unsigned char>(place.track);
    subchannel.cdsc_ind = static_cast<unsigned char>(place.index);
    subchannel.cdsc_absaddr = ToCdAddress(position, format);
    subchannel.cdsc_reladdr = ToCdDistance(place.relative, format);
    WriteArgument(client, subchannel);
    return 0;
}

int CdDrive::Private::AnswerHeader(UMockdevIoctlClient* client) const
{
    const CdDisc& disc = *transport.GetDisc();
    WriteArgument(client, cdrom_tochdr{static_cast<unsigned char>(disc.firstNumber),
                                       static_cast<unsigned char>(disc.GetLastNumber())});
    return 0;
}

int CdDrive::Private::AnswerEntry(UMockdevIoctlClient* client) const
{
    cdrom_tocentry entry{};
    if (!ReadArgument(client, entry))
        return EFAULT;
    if (!IsCdFormat(entry.cdte_format))
        return EINVAL;
    const CdDisc& disc = *transport.GetDisc();
    const bool isLeadOut = entry.cdte_track == CDROM_LEADOUT;
    // A drive lists from the number asked for on, so that 0 is the first track's entry.
    const CdTrack* const track =
        isLeadOut ? &disc.tracks.back()
                  : disc.FindTrack(entry.cdte_track == 0 ? disc.firstNumber : entry.cdte_track);
    if (!track)
        return EIO;
    entry.cdte_adr = 1;
    entry.cdte_ctrl = GetCdControl(track->isData) & 0xF;
    entry.cdte_datamode = track->isData ? 1 : 0;
    entry.cdte_addr = ToCdAddress(isLeadOut ? disc.leadOut : track->GetStart(), entry.cdte_format);
    WriteArgument(client, entry);
    return 0;
}

template <class Range, class Play>
int CdDrive::Private::AnswerPlay(UMockdevIoctlClient* client, Play play)
{
    Range range{};
    return ReadArgument(client, range) ? Note(Describe(range), play(range)) : EFAULT;
}

int CdDrive::Private::Note(const std::string& command, int error)
{
    if (error == 0)
        commands.push_back(command);
    return error;
}

CdDrive::CdDrive(KernelTestbed& testbed, Clock clock)
    : m_private(new Private(testbed, std::move(clock)))
{
    KernelTestbed::Private& bed = testbed.GetPrivate();
    m_private->device = bed.addDevice(Path);
    m_private->handler = umockdev_ioctl_base_new();
    ConnectHandler(m_private->handler, "handle-ioctl", HandleRequest, m_private);
    ConnectHandler(m_private->handler, "client-connected", HandleOpen, m_private);
    const std::lock_guard hold(m_private->mutex);
    m_private->RefreshLocked();
    if (!umockdev_testbed_attach_ioctl(bed.testbed, Path, m_private->handler, nullptr))
        throw std::runtime_error("the test bed takes no handler for /dev/cdrom");
}

CdDrive::~CdDrive()
{
    KernelTestbed::Private& bed = m_private->testbed.GetPrivate();
    umockdev_testbed_detach_ioctl(bed.testbed, Path, nullptr);
    g_object_unref(m_private->handler);
    bed.releaseDevice(m_private->device);
    std::filesystem::remove(m_private->testbed.GetPathOf(Path));
}

void CdDrive::Insert(const CdDisc& disc)
{
    disc.Check();
    const std::lock_guard hold(m_private->mutex);
    m_private->transport.Load(disc);
}

void CdDrive::Eject()
{
    const std::lock_guard hold(m_private->mutex);
    m_private->transport.Unload();
}

void CdDrive::SetScratched(bool scratched)
{
    const std::lock_guard hold(m_private->mutex);
    m_private->scratched = scratched;
}

void CdDrive::SetBusy(bool busy)
{
    const std::lock_guard hold(m_private->mutex);
    m_private->busy = busy;
    m_private->RefreshLocked();
}

void CdDrive::SetDelay(unsigned microseconds)
{
    const std::lock_guard hold(m_private->mutex);
    m_private->delay = microseconds;
    m_private->RefreshLocked();
}

void CdDrive::FailRequest(unsigned long request, int error)
{
    const std::lock_guard hold(m_private->mutex);
    if (error == 0)
        m_private->failures.erase(request);
    else
        m_private->failures[request] = error;
}

void CdDrive::Vanish()
{
    std::unique_lock hold(m_private->mutex);
    if (!m_private->present)
        return;
    m_private->AwaitOpens(hold);
    m_private->present = false;
    ++m_private->deviceNumber;
    m_private->transport.Stop();
    m_private->RefreshLocked();
}

void CdDrive::Appear()
{
    const std::lock_guard hold(m_private->mutex);
    m_private->present = true;
    m_private->RefreshLocked();
}

CdDrive::State CdDrive::GetState() const
{
    const std::lock_guard hold(m_private->mutex);
    CdTransport& transport = m_private->transport;
    transport.Advance(m_private->clock());
    const bool hasDisc = transport.GetDisc().has_value();
    const int audio = transport.GetAudioStatus();
    return {hasDisc,
            audio == CDROM_AUDIO_PLAY     ? Status::Playing
            : audio == CDROM_AUDIO_PAUSED ? Status::Paused
                                          : Status::Stopped,
            transport.GetPosition(),
            hasDisc ? transport.GetDisc()->Locate(transport.GetPosition()) : CdDisc::Place{}};
}

CdDisc CdDrive::GetDisc() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->transport.GetDisc().value_or(CdDisc());
}

std::vector<std::string> CdDrive::GetCommands() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->commands;
}

std::size_t CdDrive::CountRequests(unsigned long request) const
{
    const std::lock_guard hold(m_private->mutex);
    const auto count = m_private->requests.find(request);
    return count == m_private->requests.end() ? 0 : count->second;
}

void CdDrive::SetObserver(std::function<void(unsigned long request)> observer)
{
    const std::lock_guard hold(m_private->observerMutex);
    m_private->observer = std::move(observer);
}

int CdDrive::CountOpen() const
{
    return m_private->testbed.GetPrivate().GetUse(m_private->device).openNow;
}

int CdDrive::CountOpened() const
{
    return m_private->testbed.GetPrivate().GetUse(m_private->device).openedEver;
}

int CdDrive::GetLastOpenFlags() const
{
    return m_private->testbed.GetPrivate().GetUse(m_private->device).lastFlags;
}

long CdDrive::GetDelayed() const
{
    return m_private->testbed.GetPrivate().GetUse(m_private->device).delayed;
}

} // namespace Desk
