// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>
#include <condition_variable>
#include <mutex>
#include <optional>

#include "hardware/midi/device.h"

using Hardware::Midi::Device;

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

/// An application's object with slots for everything that a device reports.
class Application : public QObject
{
    Q_OBJECT

public:
    struct Received {
        const Device* device;
        std::uint32_t message;
        bool onOwnThread;
    };

    int added = 0;
    int removed = 0;
    std::uint32_t lengths = 0;

    /// Waits for a short message; none when it does not come within 20 s.
    std::optional<Received> WaitForShortMessage()
    {
        std::unique_lock hold(m_mutex);
        m_changed.wait_for(hold, std::chrono::seconds(20), [&] { return m_received.has_value(); });
        return m_received;
    }

public Q_SLOTS:
    void add(const Hardware::Midi::Device::Id&) { ++added; }
    void remove(const Hardware::Midi::Device::Id&) { ++removed; }
    void takeSystemExclusive(const Hardware::Midi::Device::SysExMessage& message)
    {
        lengths += message.length;
    }
    void takeShort(const Hardware::Midi::Device::ShortMessage& message)
    {
        const std::lock_guard hold(m_mutex);
        m_received = {message.id->device, message.message, QThread::currentThread() == thread()};
        m_changed.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<Received> m_received;
};

/// An application's object on a thread of its own, with an event loop.
class ApplicationThread
{
public:
    ApplicationThread() : m_program(m_count, m_arguments)
    {
        application.moveToThread(&m_thread);
        m_thread.start();
    }
    ~ApplicationThread()
    {
        m_thread.quit();
        EXPECT_TRUE(m_thread.wait(20000));
    }

    Application application;

private:
    int m_count = 1;
    char m_name[5] = "test";
    char* m_arguments[2] = {m_name, nullptr};
    QCoreApplication m_program;
    QThread m_thread;
};

void ExpectShortMessageThrough(ApplicationThread& other, Device& device)
{
    const Device::Id id{&device, 0};
    Q_EMIT device.txShortMessage({&id, 0x00643C90});
    const auto received = other.application.WaitForShortMessage();
    ASSERT_TRUE(received);
    EXPECT_EQ(received->device, &device);
    EXPECT_EQ(received->message, 0x00643C90U);
    EXPECT_TRUE(received->onOwnThread);
}

} // namespace

TEST(MidiConnections, WorkByNameForEverySignal)
{
    Device device;
    Application application;
    ASSERT_TRUE(QObject::connect(&device, SIGNAL(txMidiDeviceAdded(Hardware::Midi::Device::Id)),
                                 &application, SLOT(add(Hardware::Midi::Device::Id)),
                                 Qt::DirectConnection));
    ASSERT_TRUE(QObject::connect(&device, SIGNAL(txMidiDeviceRemoved(Hardware::Midi::Device::Id)),
                                 &application, SLOT(remove(Hardware::Midi::Device::Id)),
                                 Qt::DirectConnection));
    ASSERT_TRUE(QObject::connect(
        &device, SIGNAL(txSysExMessage(Hardware::Midi::Device::SysExMessage)), &application,
        SLOT(takeSystemExclusive(Hardware::Midi::Device::SysExMessage)), Qt::DirectConnection));
    ASSERT_TRUE(QObject::connect(
        &device, SIGNAL(txShortMessage(Hardware::Midi::Device::ShortMessage)), &application,
        SLOT(takeShort(Hardware::Midi::Device::ShortMessage)), Qt::DirectConnection));

    const Device::Id id{&device, 0};
    Q_EMIT device.txMidiDeviceAdded(id);
    Q_EMIT device.txMidiDeviceRemoved(id);
    Q_EMIT device.txSysExMessage({&id, nullptr, 129});
    Q_EMIT device.txShortMessage({&id, 0xF8});
    EXPECT_EQ(application.added, 1);
    EXPECT_EQ(application.removed, 1);
    EXPECT_EQ(application.lengths, 129U);
    EXPECT_TRUE(application.WaitForShortMessage());
}

TEST(MidiConnections, WorkByPointerForEverySignal)
{
    Device device;
    Application application;
    QObject::connect(&device, &Device::txMidiDeviceAdded, &application, &Application::add);
    QObject::connect(&device, &Device::txMidiDeviceRemoved, &application, &Application::remove);
    QObject::connect(&device, &Device::txSysExMessage, &application,
                     &Application::takeSystemExclusive);
    QObject::connect(&device, &Device::txShortMessage, &application, &Application::takeShort);

    const Device::Id id{&device, 0};
    Q_EMIT device.txMidiDeviceAdded(id);
    Q_EMIT device.txMidiDeviceRemoved(id);
    Q_EMIT device.txSysExMessage({&id, nullptr, 129});
    Q_EMIT device.txShortMessage({&id, 0xF8});
    EXPECT_EQ(application.added, 1);
    EXPECT_EQ(application.removed, 1);
    EXPECT_EQ(application.lengths, 129U);
    EXPECT_TRUE(application.WaitForShortMessage());
}

TEST(MidiConnections, CarryShortMessagesToAnotherThreadByName)
{
    Device device;
    ApplicationThread other;
    ASSERT_TRUE(QObject::connect(
        &device, SIGNAL(txShortMessage(Hardware::Midi::Device::ShortMessage)), &other.application,
        SLOT(takeShort(Hardware::Midi::Device::ShortMessage)), Qt::QueuedConnection));
    ExpectShortMessageThrough(other, device);
}

TEST(MidiConnections, CarryShortMessagesToAnotherThreadByPointer)
{
    Device device;
    ApplicationThread other;
    QObject::connect(&device, &Device::txShortMessage, &other.application, &Application::takeShort);
    ExpectShortMessageThrough(other, device);
}

#include "connection_test.moc"
