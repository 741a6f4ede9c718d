// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "error_text.h"
#include "hardware/log_contexts.h"
#include "os/clock.h"
#include "signal_cleanup.h"
#include "source_site.h"
#include "system_call.h"
#include "timecode/linux/timecode_cd_impl.h"

namespace Hardware::Timecode
{

namespace
{

constexpr char SourceFile[] = "timecode/linux/timecode_cd.cpp";

constexpr char DrivePath[] = "/dev/cdrom";

/// Pause behind a request that failed.
constexpr unsigned RetryMilliseconds = 250;
/// Length of one frame of timecode.
constexpr unsigned FrameMilliseconds = 40;
/// A disc's frames, 75 a second, for each of timecode, 25 a second.
constexpr int DiscFrames = 3;

Os::Log::Context& LogContext()
{
    static Os::Log::Context context("Cd", &TimecodeLogContext(), Os::Log::AllButTrace);
    return context;
}

/// Does nothing: a signal merely ends a call that blocks.
void IgnoreSignal(int) {}

const SignalCleanup g_handlerCleanup(SIGUSR1, &IgnoreSignal);

} // namespace

DeviceCd::DeviceCd(QObject* parent)
    : Device(TimecodeType_Cd, parent), m_impl(new _DeviceCdImpl(*this))
{
}

DeviceCd::~DeviceCd()
{
    // While this is still a whole DeviceCd, since it reports its source's end. Not by reset(),
    // which takes m_impl away first: a slot may ask the device.
    delete m_impl.get();
    static_cast<void>(m_impl.release());
}

bool DeviceCd::Enable()
{
    return m_impl->Enable();
}

bool DeviceCd::Disable()
{
    return m_impl->Disable();
}

bool DeviceCd::IsEnabled() const
{
    return m_impl->IsEnabled();
}

bool DeviceCd::IsActive() const
{
    return m_impl->IsActive();
}

_DeviceCdImpl::_DeviceCdImpl(DeviceCd& owner) : m_owner(owner), m_id{&owner, 0}, m_log(LogContext())
{
}

_DeviceCdImpl::~_DeviceCdImpl()
{
    Disable();
    // A slot that heard of it may have enabled the device again.
    CloseDrive();
    m_thread.reset();
}

bool _DeviceCdImpl::Enable()
{
    if (IsEnabled())
        return true;
    HARDWARE_LOG(m_log, Os::Log::Trace, "Enabling CD timecode device");
    // One from before ends now, while there is no drive; with the next one it would go on.
    m_thread.reset();
    const int fd = Repeat([] { return open(DrivePath, O_RDONLY | O_NONBLOCK | O_CLOEXEC); });
    if (fd == -1) {
        HARDWARE_LOG(m_log, Os::Log::Error, "CD device not readable");
        return false;
    }
    m_fd.store(fd, std::memory_order_relaxed);
    m_owner.emitDeviceAdded(m_id);
    // A slot may have disabled the device, and may have enabled it again, with a thread.
    if (!IsEnabled() || m_thread)
        return true;
    m_thread.reset(new Os::Thread(&_DeviceCdImpl::Main, this, "CD Timecode Input", 0,
                                  Os::Thread::DefaultSlice, Os::Thread::DefaultStack));
    return true;
}

/// Leaves m_active as the last poll left it, on purpose.
bool _DeviceCdImpl::Disable()
{
    if (!IsEnabled())
        return true;
    HARDWARE_LOG(m_log, Os::Log::Trace, "Disabling CD timecode device");
    CloseDrive();
    m_thread.reset();
    m_owner.emitDeviceRemoved(m_id);
    return true;
}

void _DeviceCdImpl::CloseDrive()
{
    // First the number, so that the thread does not ask once more while this waits for the lock.
    const int fd = m_fd.exchange(-1, std::memory_order_relaxed);
    if (fd == -1)
        return;
    const Os::Key hold(m_requestLock);
    close(fd);
}

unsigned int _DeviceCdImpl::Main(void* arg)
{
    static_cast<_DeviceCdImpl*>(arg)->Poll();
    return 0;
}

void _DeviceCdImpl::Poll()
{
    // Without SA_RESTART, which would have an interrupted call go on.
    struct sigaction action {
    };
    action.sa_handler = &IgnoreSignal;
    sigaction(SIGUSR1, &action, nullptr);

    while (true) {
        const Os::TimeMs start = Os::GetMillisecs();
        cdrom_subchnl subchannel{};
        int error = 0;
        const Answer answer = ReadSubchannel(subchannel, error);
        if (answer == Answer::NotEnabled)
            return;
        m_active.store(answer == Answer::Read, std::memory_order_relaxed);
        if (answer == Answer::Failed) {
            HARDWARE_LOG(m_log, Os::Log::Trace,
                         "Subchannel read from CD failed: " << GetErrorText(error));
            Os::Thread::Sleep(RetryMilliseconds);
            continue;
        }
        // Asked again without a pause, on purpose: play that begins is seen at once.
        if (subchannel.cdsc_audiostatus != CDROM_AUDIO_PLAY)
            continue;
        Report(subchannel.cdsc_absaddr.msf);
        const Os::TimeMs elapsed = Os::GetMillisecs() - start;
        if (elapsed < FrameMilliseconds)
            Os::Thread::Sleep(FrameMilliseconds - elapsed);
    }
}

/// Asks the drive, unless the device is no longer enabled. A signal ends the request, which then
/// has failed.
_DeviceCdImpl::Answer _DeviceCdImpl::ReadSubchannel(cdrom_subchnl& subchannel, int& error)
{
    subchannel.cdsc_format = CDROM_MSF;
    const Os::Key hold(m_requestLock);
    const int fd = m_fd.load(std::memory_order_relaxed);
    if (fd == -1)
        return Answer::NotEnabled;
    if (ioctl(fd, CDROMSUBCHNL, &subchannel) == -1) {
        error = errno;
        return Answer::Failed;
    }
    return Answer::Read;
}

/// Every poll of a disc that plays is one frame, also where the position is the same.
void _DeviceCdImpl::Report(const cdrom_msf0& address)
{
    const int minute = address.minute;
    const int second = address.second;
    const int frame = address.frame;
    HARDWARE_LOG(m_log, Os::Log::Trace,
                 "Read time value " << minute << ':' << second << '.' << frame);
    m_owner.emitFrameRead(m_id, Frame(minute / 60, minute % 60, second, frame / DiscFrames, false));
}

} // namespace Hardware::Timecode
