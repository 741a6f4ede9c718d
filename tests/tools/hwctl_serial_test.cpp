// SPDX-License-Identifier: MIT
// `hwctl serial` on the kernel's own pseudo-terminals: what becomes of their settings.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <cstdlib>

#include "tools/hwctl_process.h"

namespace
{

using testing::HasSubstr;
using TestSupport::RunHwctl;

constexpr int PatienceMilliseconds = 20000;

/// A terminal that is held open, so that its settings last.
class HwctlSerialLine : public testing::Test
{
protected:
    HwctlSerialLine() : m_far(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK))
    {
        EXPECT_EQ(grantpt(m_far), 0);
        EXPECT_EQ(unlockpt(m_far), 0);
        char name[64] = {};
        EXPECT_EQ(ptsname_r(m_far, name, sizeof name), 0);
        m_path = name;
        m_near = open(name, O_RDWR | O_NOCTTY);
        EXPECT_EQ(tcgetattr(m_near, &m_before), 0);
        // Whoever runs this may ignore hangups, which a child takes over and the command respects.
        m_process.setChildProcessModifier([] { std::signal(SIGHUP, SIG_DFL); });
    }
    ~HwctlSerialLine() override
    {
        close(m_near);
        close(m_far);
    }

    /// Starts the command and returns once the port is open.
    void Start(const QStringList& more = {})
    {
        m_process.start(HWCTL_PROGRAM,
                        QStringList{"serial", QString::fromStdString(m_path)} + more);
        QByteArray out;
        while (!out.contains("open: ") && m_process.waitForReadyRead(PatienceMilliseconds))
            out += m_process.readAllStandardOutput();
        ASSERT_THAT(out.toStdString(), HasSubstr("open: "));
        EXPECT_FALSE(HasSettingsBack());
    }
    void Send(int signal) { kill(static_cast<pid_t>(m_process.processId()), signal); }
    /// The exit code; -1 where the process does not end, or not by itself.
    int Finish()
    {
        if (!m_process.waitForFinished(PatienceMilliseconds)) {
            m_process.kill();
            m_process.waitForFinished();
            return -1;
        }
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    bool HasSettingsBack() const
    {
        termios now{};
        EXPECT_EQ(tcgetattr(m_near, &now), 0);
        return now.c_iflag == m_before.c_iflag && now.c_oflag == m_before.c_oflag &&
               now.c_cflag == m_before.c_cflag && now.c_lflag == m_before.c_lflag;
    }

    const int m_far;
    int m_near = -1;
    std::string m_path;
    termios m_before{};
    QProcess m_process;
};

} // namespace

TEST_F(HwctlSerialLine, HasItsSettingsBackAfterEverySignalThatEnds)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        Start();
        Send(signal);
        EXPECT_EQ(Finish(), 0) << "signal " << signal;
        EXPECT_TRUE(HasSettingsBack()) << "signal " << signal;
    }
}

TEST_F(HwctlSerialLine, HasItsSettingsBackWhenTheReaderOfTheOutputHasEnded)
{
    const QTemporaryDir folder;
    const std::string pipe = folder.filePath("pipe").toStdString();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    m_process.setStandardOutputFile(QString::fromStdString(pipe));
    m_process.start(HWCTL_PROGRAM, {"serial", QString::fromStdString(m_path)});
    pollfd waiting{reader, POLLIN, 0};
    EXPECT_EQ(poll(&waiting, 1, PatienceMilliseconds), 1);
    EXPECT_FALSE(HasSettingsBack());
    close(reader);
    EXPECT_EQ(write(m_far, "x", 1), 1);
    EXPECT_EQ(Finish(), 1);
    EXPECT_TRUE(HasSettingsBack());
}

TEST_F(HwctlSerialLine, ReportsBytesThatAStoppedLineDidNotTake)
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): it works on a descriptor and nothing else
    ASSERT_EQ(tcflow(m_near, TCOOFF), 0);
    const auto run = RunHwctl({"serial", m_path, "--send", "41 42 43", "--for", "0.1"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr(m_path + ": 3 of 3 bytes were not sent\n"));
    EXPECT_THAT(run.out, testing::Not(HasSubstr("bytes sent")));
    EXPECT_TRUE(HasSettingsBack());
}

TEST_F(HwctlSerialLine, DoesNotWaitForALineAfterASignal)
{
    // A slow line takes a minute for these; the terminal itself takes them at once.
    Start({"--baud", "300", "--send", QString("41").repeated(1500)});
    Send(SIGINT);
    EXPECT_NE(Finish(), -1);
    EXPECT_TRUE(HasSettingsBack());
}

TEST_F(HwctlSerialLine, IsNotUsedWithOtherSettingsThanAskedFor)
{
    // A pseudo-terminal has no parity and drops the flag.
    const auto run = RunHwctl({"serial", m_path, "--parity", "odd", "--for", "0.1"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(m_path + " does not take 9600 baud, parity odd, flow control "
                                            "none; it holds 9600 baud, parity none, flow control "
                                            "none\n"));
    EXPECT_TRUE(HasSettingsBack());
}
