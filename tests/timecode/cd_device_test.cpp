// SPDX-License-Identifier: MIT
// The CD device: enabling and disabling it, what it reports, its thread.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <thread>

#include "support/process_facts.h"
#include "timecode/cd_timecode_bench.h"
#include "timecode/proc_self.h"

namespace
{

using Hardware::Timecode::DeviceCd;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::WaitUntil;

using CdDevice = TestSupport::CdTimecodeBench;

std::size_t CountCdThreads()
{
    return TestSupport::FindThreads("CD Timecode Input").size();
}

} // namespace

TEST_F(CdDevice, IsOfTypeCdAndDisabledAtFirst)
{
    EXPECT_EQ(m_device->GetType(), Hardware::TimecodeType_Cd);
    EXPECT_EQ(static_cast<int>(m_device->GetType()), 4);
    EXPECT_FALSE(m_device->IsEnabled());
    EXPECT_FALSE(m_device->IsActive());
    EXPECT_EQ(m_drive.CountOpen(), 1) << "the player's";
    EXPECT_EQ(CountCdThreads(), 0U);
}

TEST_F(CdDevice, HasAMetaObjectWithoutSignalsOrSlotsOfItsOwn)
{
    const QMetaObject& meta = DeviceCd::staticMetaObject;
    EXPECT_STREQ(meta.className(), "Hardware::Timecode::DeviceCd");
    EXPECT_EQ(meta.methodCount(), meta.methodOffset());
}

TEST_F(CdDevice, BelongsToItsParent)
{
    QObject parent;
    EXPECT_EQ((new DeviceCd(&parent))->parent(), &parent);
}

TEST_F(CdDevice, OpensTheDriveForReadingAndNotBlocking)
{
    m_player.Close();
    EXPECT_TRUE(m_device->Enable());
    EXPECT_TRUE(m_device->IsEnabled());
    EXPECT_EQ(m_drive.CountOpen(), 1);
    EXPECT_EQ(m_drive.GetLastOpenFlags(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

TEST_F(CdDevice, ReportsItsSourceBeforeItsThreadStarts)
{
    std::size_t threads = 99;
    bool isEnabled = false;
    QObject::connect(m_device.get(), &DeviceCd::deviceAdded, [&](const DeviceCd::Id& id) {
        threads = CountCdThreads();
        isEnabled = m_device->IsEnabled();
        EXPECT_EQ(id.device, m_device.get());
    });
    m_device->Enable();
    EXPECT_EQ(threads, 0U);
    EXPECT_TRUE(isEnabled);
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0"));
    EXPECT_TRUE(WaitUntil([] { return CountCdThreads() == 1; }));
}

TEST_F(CdDevice, EnabledTwiceOpensAndReportsOnce)
{
    EXPECT_TRUE(m_device->Enable());
    EXPECT_TRUE(m_device->Enable());
    EXPECT_EQ(m_drive.CountOpen(), 2) << "with the player's";
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0"));
    EXPECT_EQ(m_log.Count("Enabling CD timecode device"), 1U);
    EXPECT_TRUE(WaitUntil([] { return CountCdThreads() == 1; }));
}

TEST_F(CdDevice, WithoutADriveCannotBeEnabled)
{
    m_drive.Vanish();
    EXPECT_FALSE(m_device->Enable());
    EXPECT_FALSE(m_device->IsEnabled());
    EXPECT_THAT(m_frames.GetEvents(), IsEmpty());
    EXPECT_EQ(CountCdThreads(), 0U);
    const auto lines = m_log.GetLines();
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_EQ(lines[0].text, "Enabling CD timecode device");
    EXPECT_EQ(lines[0].level, Os::Log::Trace);
    EXPECT_EQ(lines[1].text, "CD device not readable");
    EXPECT_EQ(lines[1].level, Os::Log::Error);
    EXPECT_EQ(lines[1].context, "Hardware/Timecode/Cd");
}

TEST_F(CdDevice, WithADriveThatIsBusyCannotBeEnabled)
{
    m_drive.SetBusy(true);
    EXPECT_FALSE(m_device->Enable());
    EXPECT_EQ(m_log.Count("CD device not readable"), 1U);
    m_drive.SetBusy(false);
    EXPECT_TRUE(m_device->Enable());
}

TEST_F(CdDevice, HasAContextThatDropsTracesUnderTimecode)
{
    const Os::Log::Context* const context = Os::Log::Context::Find("Hardware/Timecode/Cd");
    ASSERT_NE(context, nullptr);
    EXPECT_STREQ(context->GetParent()->GetName(), "Timecode");
}

TEST(CdDeviceLog, HasTheMaskThatDropsTraces)
{
    const DeviceCd device(nullptr);
    ASSERT_NE(Os::Log::Context::Find("Hardware/Timecode/Cd"), nullptr);
    EXPECT_EQ(Os::Log::Context::Find("Hardware/Timecode/Cd")->GetMask(), 30U);
}

TEST_F(CdDevice, DisabledClosesEndsItsThreadAndThenReports)
{
    m_player.Close();
    int open = 99;
    std::size_t threads = 99;
    std::vector<std::string> texts;
    QObject::connect(m_device.get(), &DeviceCd::deviceRemoved, [&](const DeviceCd::Id&) {
        open = m_drive.CountOpen();
        threads = CountCdThreads();
        texts = m_log.GetTexts();
        EXPECT_FALSE(m_device->IsEnabled());
    });
    m_device->Enable();
    EXPECT_TRUE(AwaitPolls(3));
    m_log.Clear();
    EXPECT_TRUE(m_device->Disable());
    EXPECT_EQ(open, 0);
    EXPECT_EQ(threads, 0U);
    EXPECT_THAT(texts, ElementsAre("Disabling CD timecode device"));
    EXPECT_EQ(m_log.GetLines().front().level, Os::Log::Trace);
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0", "removed 0"));
}

TEST_F(CdDevice, DisabledClosesTheDriveBeforeItWaitsForASlot)
{
    bool wasClosed = false;
    QObject::connect(m_device.get(), &DeviceCd::frameRead,
                     [&] { wasClosed = WaitUntil([this] { return m_drive.CountOpen() == 1; }); });
    PlayFrom(0, 2, 0);
    m_device->Enable();
    ASSERT_TRUE(WaitUntil([this] { return m_frames.CountFrames() == 1; }));
    End();
    EXPECT_TRUE(wasClosed) << "only the player's is left open";
}

TEST_F(CdDevice, DisabledTwiceReportsOnce)
{
    m_device->Enable();
    EXPECT_TRUE(m_device->Disable());
    m_log.Clear();
    EXPECT_TRUE(m_device->Disable());
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0", "removed 0"));
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(CdDevice, NeverEnabledDisablesWithoutAReport)
{
    EXPECT_TRUE(m_device->Disable());
    EXPECT_THAT(m_frames.GetEvents(), IsEmpty());
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(CdDevice, KeepsTheLastAnswerAboutActivityWhenDisabled)
{
    m_device->Enable();
    EXPECT_TRUE(AwaitPolls(2));
    m_device->Disable();
    EXPECT_TRUE(m_device->IsActive());
    m_drive.Eject();
    m_device->Enable();
    m_clock.WaitForSleeps(1);
    m_clock.Release();
    m_device->Disable();
    EXPECT_FALSE(m_device->IsActive());
}

TEST_F(CdDevice, EnabledAgainOpensAgainAndReadsOnANewThread)
{
    PlayFrom(0, 2, 0);
    for (std::size_t round = 1; round <= 3; ++round) {
        EXPECT_TRUE(m_device->Enable());
        m_clock.WaitForSleeps(round);
        m_player.Pause(); // so that the thread does not sleep when it is to end
        m_clock.Advance(40);
        ASSERT_TRUE(AwaitPolls(2));
        EXPECT_TRUE(m_device->Disable());
        m_player.Pause();
    }
    EXPECT_EQ(m_drive.CountOpened(), 4) << "with the player's";
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0", "removed 0", "added 0", "removed 0",
                                                  "added 0", "removed 0"));
    EXPECT_EQ(m_frames.CountFrames(), 3U);
}

TEST_F(CdDevice, DestroyedWhileEnabledClosesAndReports)
{
    m_player.Close();
    bool wasAsked = false;
    DeviceCd* const device = m_device.get();
    QObject::connect(device, &DeviceCd::deviceRemoved, [&](const DeviceCd::Id& id) {
        wasAsked = id.device == device && !device->IsEnabled();
    });
    m_device->Enable();
    m_device.reset();
    EXPECT_TRUE(wasAsked) << "it still answers";
    EXPECT_EQ(m_drive.CountOpen(), 0);
    EXPECT_EQ(CountCdThreads(), 0U);
    EXPECT_THAT(m_frames.GetEvents(), ElementsAre("added 0", "removed 0"));
}

TEST_F(CdDevice, DestroyedWhileDisabledReportsNothing)
{
    m_device.reset();
    EXPECT_THAT(m_frames.GetEvents(), IsEmpty());
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(CdDevice, ThatASlotDisablesAtOnceStaysDisabled)
{
    QObject::connect(m_device.get(), &DeviceCd::deviceAdded, [this] { m_device->Disable(); });
    m_device->Enable();
    EXPECT_FALSE(m_device->IsEnabled());
    EXPECT_EQ(CountCdThreads(), 0U);
    EXPECT_EQ(m_drive.CountOpen(), 1) << "the player's";
}

TEST_F(CdDevice, ThatASlotDisablesAndEnablesAtOnceHasOneThread)
{
    bool isFirst = true;
    QObject::connect(m_device.get(), &DeviceCd::deviceAdded, [&] {
        if (std::exchange(isFirst, false)) {
            m_device->Disable();
            m_device->Enable();
        }
    });
    EXPECT_TRUE(m_device->Enable());
    EXPECT_TRUE(m_device->IsEnabled());
    EXPECT_TRUE(WaitUntil([] { return CountCdThreads() == 1; }));
    EXPECT_TRUE(m_device->Disable());
    EXPECT_EQ(CountCdThreads(), 0U);
}

TEST_F(CdDevice, ThatASlotEnablesDuringItsDestructionEndsAllTheSame)
{
    DeviceCd* const device = m_device.get();
    QObject::connect(device, &DeviceCd::deviceRemoved, [device] { device->Enable(); });
    m_device->Enable();
    m_device.reset();
    EXPECT_EQ(m_drive.CountOpen(), 1) << "the player's";
    EXPECT_EQ(CountCdThreads(), 0U);
}

TEST_F(CdDevice, SharesTheDriveWithAnother)
{
    auto other = std::make_unique<DeviceCd>(nullptr);
    const TestSupport::FrameLog otherFrames(*other);
    PlayFrom(0, 2, 0);
    m_device->Enable();
    other->Enable();
    m_clock.WaitForSleeps(2);
    EXPECT_THAT(m_frames.GetFrames(), ElementsAre("00:00:02:00"));
    EXPECT_THAT(otherFrames.GetFrames(), ElementsAre("00:00:02:00"));
    m_clock.Release();
    other.reset();
}

TEST_F(CdDevice, HasAThreadWithItsNameAsFarAsTheSystemKeepsIt)
{
    PlayFrom(0, 2, 0);
    m_device->Enable();
    m_clock.WaitForSleeps(1);
    EXPECT_EQ(TestSupport::GetThreadName(m_frames.GetThreads().front()), "CD Timecode Inp");
}

TEST_F(CdDevice, HasAThreadThatASignalDoesNotEndButInterrupts)
{
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    std::atomic<bool> isReading{false};
    std::atomic<int> error{0};
    QObject::connect(m_device.get(), &DeviceCd::frameRead, [&] {
        char byte = 0;
        isReading = true;
        error = read(pipe[0], &byte, 1) == -1 ? errno : -1;
    });
    PlayFrom(0, 2, 0);
    m_device->Enable();
    ASSERT_TRUE(WaitUntil([this] { return m_frames.CountFrames() == 1; }));
    const int thread = m_frames.GetThreads().front();
    EXPECT_TRUE(WaitUntil([&] {
        if (isReading)
            TestSupport::SignalThread(thread, SIGUSR1);
        return error != 0;
    }));
    EXPECT_EQ(error, EINTR);
    close(pipe[1]); // later reads find the end
    End();
    close(pipe[0]);
}

TEST_F(CdDevice, CanBeSwitchedAtAnyTime)
{
    m_clock.Release();
    PlayFrom(0, 2, 0);
    for (int round = 0; round < 200; ++round) {
        m_device->Enable();
        if (round % 3 == 0 && !AwaitPolls(1))
            FAIL() << "the drive is not polled";
        m_device->Disable();
        // Numbers of descriptors are taken by others as soon as they are free.
        close(open("/dev/null", O_RDONLY));
    }
    EXPECT_EQ(m_drive.CountOpen(), 1);
    EXPECT_THAT(m_frames.GetEvents(), SizeIs(400));
}
