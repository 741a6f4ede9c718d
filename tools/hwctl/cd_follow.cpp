// SPDX-License-Identifier: MIT
#include "hwctl/cd_follow.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <cmath>

#include "common/stop_signals.h"
#include "hwctl/event_queue.h"
#include "watch/cd_facts.h"
#include "watch/cd_watch.h"

namespace Hwctl
{

namespace
{

/// How often the drive is asked whether it still plays.
constexpr std::chrono::milliseconds CheckInterval(250);

} // namespace

CdFollowResult FollowCd(const CdPlayer& player, double seconds, EventPrinter& printer)
{
    QEventLoop loop;
    EventQueue queue;
    QElapsedTimer clock;
    CdFollowResult result;
    clock.start();
    const Tools::StopSignals signals([&loop] { loop.quit(); });
    const auto getSeconds = [&clock] { return static_cast<double>(clock.nsecsElapsed()) / 1e9; };
    // Last, so that its thread ends before what it reports to.
    Tools::CdWatch watch([](const Tools::MonitorEvent&) {},
                         [&](const Hardware::Timecode::Frame& frame) {
                             queue.Post([&, frame, now = getSeconds()] {
                                 ++result.frames;
                                 printer.Print({now,
                                                Tools::CdSource,
                                                "frameRead",
                                                frame.toString(),
                                                {{"number", 0},
                                                 {"hours", frame.hours},
                                                 {"minutes", frame.minutes},
                                                 {"seconds", frame.seconds},
                                                 {"frames", frame.frames},
                                                 {"dropFrame", frame.dropFrame}}});
                             });
                         });
    QTimer check;
    QObject::connect(&check, &QTimer::timeout, &loop, [&] {
        if (player.GetStatus() != CdPlayer::Status_Stopped)
            return;
        // A drive or a disc that is gone has stopped for the player as well.
        result.problem = Tools::FindCdProblem();
        loop.quit();
    });
    check.start(CheckInterval);
    QTimer end;
    end.setSingleShot(true);
    QObject::connect(&end, &QTimer::timeout, &loop, &QEventLoop::quit);
    if (seconds > 0)
        end.start(std::chrono::milliseconds(std::llround(seconds * 1000)));
    watch.Start();
    loop.exec();
    watch.Stop();
    queue.Drain();
    return result;
}

} // namespace Hwctl
