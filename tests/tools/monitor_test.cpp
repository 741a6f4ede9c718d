// SPDX-License-Identifier: MIT
#include "hwctl/monitor.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <array>
#include <csignal>
#include <fstream>
#include <sstream>
#include <thread>
#include <unistd.h>

#include "desk/cd_drive.h"
#include "desk/midi_port.h"
#include "desk/sequencer.h"
#include "support/wait.h"

namespace
{

using testing::HasSubstr;

typedef std::vector<std::uint8_t> Bytes;

/// A monitor on a desk without anything, whose output can be looked at while it runs.
class HwctlMonitorRun : public testing::Test
{
protected:
    ~HwctlMonitorRun() override { std::fclose(m_out); }

    std::string GetText() const
    {
        std::ostringstream text;
        text << std::ifstream(m_file).rdbuf();
        return text.str();
    }
    bool WaitFor(const std::string& text) const
    {
        return TestSupport::WaitUntil([&] { return GetText().find(text) != std::string::npos; });
    }
    /// Runs the monitor while somebody does something, and interrupts it then.
    template <class Hand> int RunWhile(const Hwctl::MonitorOptions& options, Hand hand)
    {
        Hwctl::Monitor monitor(options, m_out);
        std::thread thread([&] {
            hand();
            kill(getpid(), SIGINT);
        });
        const int code = monitor.Run();
        thread.join();
        return code;
    }

    char m_name[8] = "monitor";
    std::array<char*, 2> m_words{m_name, nullptr};
    int m_wordCount = 1;
    QCoreApplication m_application{m_wordCount, m_words.data()};
    const QTemporaryDir m_folder;
    const std::string m_file = m_folder.filePath("out").toStdString();
    std::FILE* const m_out = std::fopen(m_file.c_str(), "w");
    Desk::KernelTestbed m_testbed;
};

} // namespace

TEST_F(HwctlMonitorRun, SaysWhatIsMissing)
{
    Hwctl::MonitorOptions options;
    options.midi = options.wings = options.networks = options.cd = true;
    const int code = RunWhile(options, [this] { EXPECT_TRUE(WaitFor("see --fixture-network")); });
    EXPECT_EQ(code, 0);
    for (const char* const line :
         {"  midi                  no port yet: there is no /dev/sequencer\n",
          "  wings                 none is attached yet\n",
          "  timecode ltc          no board is attached yet\n",
          "  network console       no adapter was named: see --console-network\n",
          "  timecode cd           no CD drive: /dev/cdrom: No such file or directory\n"})
        EXPECT_THAT(GetText(), HasSubstr(line));
}

TEST_F(HwctlMonitorRun, TakesAPortThatComesLater)
{
    Desk::Sequencer sequencer(m_testbed);
    Hwctl::MonitorOptions options;
    options.midi = true;
    const int code = RunWhile(options, [&] {
        EXPECT_TRUE(WaitFor("  no port yet\n"));
        Desk::MidiPort port(m_testbed, sequencer, "Late Keys");
        EXPECT_TRUE(TestSupport::WaitUntil([&] { return port.CountOpen() == 1; }));
        EXPECT_TRUE(port.Send(Bytes{0x90, 0x3C, 0x64}));
        EXPECT_TRUE(WaitFor("midi Late Keys        note on ch 1 C4 vel 100\n"));
        port.Unplug();
        EXPECT_TRUE(WaitFor("midi Late Keys        is gone\n"));
        port.Plug();
        EXPECT_TRUE(WaitFor("midi Late Keys        is there\n"));
    });
    EXPECT_EQ(code, 0);
    EXPECT_THAT(GetText(), HasSubstr("summary: 1 messages, 3 bytes, "));
}

TEST_F(HwctlMonitorRun, WaitsForAPortThatWasNamed)
{
    Desk::Sequencer sequencer(m_testbed);
    Desk::MidiPort other(m_testbed, sequencer, "Other");
    Hwctl::MonitorOptions options;
    options.midi = true;
    options.ports = {"Late Keys"};
    const int code = RunWhile(options, [&] {
        EXPECT_TRUE(WaitFor("midi Late Keys        not there yet\n"));
        Desk::MidiPort port(m_testbed, sequencer, "Late Keys");
        EXPECT_TRUE(WaitFor("midi Late Keys        is there\n"));
        EXPECT_TRUE(TestSupport::WaitUntil([&] { return port.CountOpen() == 1; }));
        EXPECT_TRUE(port.Send(Bytes{0xFA}));
        EXPECT_TRUE(WaitFor("midi Late Keys        start\n"));
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(other.CountOpened(), 0);
}

TEST_F(HwctlMonitorRun, TakesADriveThatComesLater)
{
    Hwctl::MonitorOptions options;
    options.cd = true;
    const int code = RunWhile(options, [&] {
        EXPECT_TRUE(WaitFor("no CD drive"));
        Desk::CdDrive drive(m_testbed);
        drive.Insert(Desk::CdDisc::MakeAudio({180}));
        EXPECT_TRUE(WaitFor("timecode cd           added\n"));
        drive.Vanish();
        EXPECT_TRUE(WaitFor("timecode cd           removed\n"));
    });
    EXPECT_EQ(code, 0);
}
