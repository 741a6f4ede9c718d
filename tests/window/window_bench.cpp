// SPDX-License-Identifier: MIT
#include "window/window_bench.h"

#include <QApplication>
#include <QElapsedTimer>

#include "support/bench_desk.h"

namespace TestSupport
{

namespace
{

constexpr qint64 PatienceMilliseconds = 20'000;

/// Made by the first bench, behind the preloading. Never destroyed: at the process's end parts of
/// Qt would be gone before it.
void MakeApplication()
{
    if (QCoreApplication::instance())
        return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "window-test";
    static char* arguments[] = {name, nullptr};
    static const auto* const application = new QApplication(count, arguments);
    static_cast<void>(application);
}

const Desk::DeskData& WithApplication(const Desk::DeskData& data)
{
    MakeApplication();
    return data;
}

} // namespace

WindowBench::WindowBench(const Desk::DeskData& data, bool keepsLog)
    : m_desk(std::make_unique<VirtualDesk::DeskController>(WithApplication(data)))
{
    if (!keepsLog)
        m_desk->TakeLog();
    Settle();
}

WindowBench::~WindowBench() = default;

void WindowBench::Settle()
{
    QElapsedTimer clock;
    clock.start();
    do
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    while (!m_desk->IsIdle() && clock.elapsed() < PatienceMilliseconds);
    QCoreApplication::processEvents(); // what the lines' ends queued
    m_desk->Refresh();
    QCoreApplication::processEvents();
}

void WindowBench::Do(const char* line)
{
    QString error;
    const auto connection =
        QObject::connect(m_desk.get(), &VirtualDesk::DeskController::done, m_desk.get(),
                         [&error](const QString&, const QString& problem) { error += problem; });
    m_desk->Do(QString::fromLatin1(line));
    Settle();
    QObject::disconnect(connection);
    EXPECT_EQ(error.toStdString(), "") << line;
}

nlohmann::json WindowBench::Get(const std::string& path)
{
    return GetState(m_desk->GetSession(), path);
}

bool WindowBench::SettleUntil(const std::function<bool()>& holds)
{
    QElapsedTimer clock;
    clock.start();
    while (!holds()) {
        if (clock.elapsed() > PatienceMilliseconds)
            return false;
        Settle();
    }
    return true;
}

Desk::DeskData WindowBench::MakeDesk()
{
    Desk::DeskData data = MakeBenchDesk(7);
    data.widgets.insert(data.widgets.begin(), {"PlaybackWing", 291, L"playback"});
    data.widgets.push_back({"Vex4DeskProgrammer", 5, L"keyboard"});
    data.midiPorts = {{"Keys"}, {"Show"}};
    return data;
}

} // namespace TestSupport
