// SPDX-License-Identifier: MIT
// Frames on their way to a thread of the application's.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>
#include <mutex>
#include <string>
#include <vector>

#include "support/wait.h"
#include "timecode/stub_device.h"
#include "timecode/watchdog.h"

#if defined(__SANITIZE_THREAD__)
// Neither Qt nor GLib is instrumented, so that the sanitizer does not see the locks of the event
// queue between the two threads. For this program only.
extern "C" [[gnu::visibility("default")]] const char* __tsan_default_suppressions()
{
    return "race:libglib-2.0.so\nrace:libQt6Core.so\n";
}
#endif

namespace
{

using Hardware::Timecode::Device;
using Hardware::Timecode::Frame;

/// Lives in a thread of its own, and notes what arrives there.
class Receiver : public QObject
{
    Q_OBJECT

public:
    struct Arrival {
        Device::Id id;
        std::string frame;
        QThread* thread;
    };

    std::vector<Arrival> GetArrivals() const
    {
        const std::lock_guard hold(m_mutex);
        return m_arrivals;
    }

public Q_SLOTS:
    void onFrame(const Hardware::Timecode::Device::Id& id, const Hardware::Timecode::Frame& frame)
    {
        const std::lock_guard hold(m_mutex);
        m_arrivals.push_back({id, frame.toString(), QThread::currentThread()});
    }

private:
    mutable std::mutex m_mutex;
    std::vector<Arrival> m_arrivals;
};

class QueuedFrames : public testing::Test
{
protected:
    QueuedFrames()
    {
        m_receiver.moveToThread(&m_thread);
        m_thread.start();
    }
    ~QueuedFrames() override
    {
        m_thread.quit();
        m_thread.wait();
    }

    void ExpectDelivery()
    {
        m_device.emitFrameRead({&m_device, 7}, Frame(1, 2, 3, 4, true));
        m_device.emitFrameRead({&m_device, 0xFFFFFFFF}, Frame(-1, 0, 0, 99, false));
        ASSERT_TRUE(
            TestSupport::WaitUntil([this] { return m_receiver.GetArrivals().size() == 2; }));
        const std::vector<Receiver::Arrival> arrivals = m_receiver.GetArrivals();
        EXPECT_EQ(arrivals[0].id.device, &m_device);
        EXPECT_EQ(arrivals[0].id.number, 7U);
        EXPECT_EQ(arrivals[0].frame, "01;02;03;04");
        EXPECT_EQ(arrivals[0].thread, &m_thread);
        EXPECT_EQ(arrivals[1].id.number, 0xFFFFFFFFU);
        EXPECT_EQ(arrivals[1].frame, "-1:00:00:99");
    }

    const TestSupport::Watchdog m_watchdog;
    int m_count = 1;
    char m_name[5] = "test";
    char* m_arguments[2] = {m_name, nullptr};
    QCoreApplication m_application{m_count, m_arguments};
    TestSupport::StubDevice m_device;
    Receiver m_receiver;
    QThread m_thread;
};

TEST_F(QueuedFrames, ArriveWhenConnectedByName)
{
    ASSERT_TRUE(QObject::connect(
        &m_device, SIGNAL(frameRead(Hardware::Timecode::Device::Id, Hardware::Timecode::Frame)),
        &m_receiver, SLOT(onFrame(Hardware::Timecode::Device::Id, Hardware::Timecode::Frame)),
        Qt::QueuedConnection));
    ExpectDelivery();
}

TEST_F(QueuedFrames, ArriveWhenConnectedByPointer)
{
    ASSERT_TRUE(QObject::connect(&m_device, &Device::frameRead, &m_receiver, &Receiver::onFrame,
                                 Qt::QueuedConnection));
    ExpectDelivery();
}

TEST_F(QueuedFrames, AreQueuedByDefaultForAReceiverInAnotherThread)
{
    ASSERT_TRUE(QObject::connect(&m_device, &Device::frameRead, &m_receiver, &Receiver::onFrame));
    ExpectDelivery();
}

} // namespace

#include "queued_frames_test.moc"
