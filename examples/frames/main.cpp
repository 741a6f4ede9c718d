// SPDX-License-Identifier: MIT
//
// The smallest application: a simulated timecode, received on the application's own thread.

#include <hardware/link_control.h>
#include <hardware/timecode/device_sim.h>

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char** argv)
{
    Hardware_LinkControl();
    QCoreApplication application(argc, argv);

    Hardware::Timecode::DeviceSim simulator(nullptr);
    int left = 25;
    // Queued, because frames are read on the simulator's thread.
    QObject::connect(
        &simulator, &Hardware::Timecode::DeviceSim::frameRead, &application,
        [&](const Hardware::Timecode::Device::Id& id, const Hardware::Timecode::Frame& frame) {
            std::printf("source %u: %s\n", id.number, frame.toString().c_str());
            if (--left == 0)
                QCoreApplication::quit();
        },
        Qt::QueuedConnection);

    simulator.Create(1);
    simulator.SetFormat(1, Hardware::TimecodeFormat_Ebu25);
    simulator.Jump(1, Hardware::Timecode::Frame(10, 0, 0, 0, false));
    simulator.Start(1);
    const int result = QCoreApplication::exec();
    simulator.Stop(1);
    return result;
}
