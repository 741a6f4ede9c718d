// SPDX-License-Identifier: MIT
// A socket stands for a serial port: it too says how much of what was written is still on its way,
// and its far end can leave that there.
#include "hwctl/serial_talk.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QTimer>
#include <array>
#include <atomic>
#include <string>
#include <thread>

#include "support/wait.h"

namespace
{

using Hwctl::SerialTalk;
using testing::ElementsAre;

typedef std::vector<std::uint8_t> Bytes;

class HwctlSerialTalk : public testing::Test
{
protected:
    HwctlSerialTalk()
    {
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, m_ends.data()), 0);
        m_options.baud = 115200;
        m_options.take = [this](std::span<const std::uint8_t> bytes) {
            m_taken.insert(m_taken.end(), bytes.begin(), bytes.end());
            return true;
        };
        m_options.tellSent = [this] { m_isToldSent = true; };
    }
    ~HwctlSerialTalk() override
    {
        for (const int end : m_ends)
            close(end);
    }

    int GetPort() const { return m_ends[0]; }
    int GetFarEnd() const { return m_ends[1]; }
    void Say(const std::string& text) const
    {
        EXPECT_EQ(write(GetFarEnd(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void Hear(std::size_t count) const
    {
        Bytes bytes(count);
        EXPECT_EQ(recv(GetFarEnd(), bytes.data(), count, MSG_WAITALL), static_cast<ssize_t>(count));
    }

    char m_name[8] = "talk";
    std::array<char*, 2> m_words{m_name, nullptr};
    int m_wordCount = 1;
    QCoreApplication m_application{m_wordCount, m_words.data()};
    std::array<int, 2> m_ends{};
    SerialTalk::Options m_options;
    Bytes m_taken;
    bool m_isToldSent = false;
};

} // namespace

TEST_F(HwctlSerialTalk, TakesBytesUpToTheCount)
{
    Say("abcdef");
    m_options.count = 4;
    const auto result = SerialTalk(GetPort(), m_options).Run();
    EXPECT_EQ(result.problem, "");
    EXPECT_EQ(result.received, 4U);
    EXPECT_THAT(m_taken, ElementsAre('a', 'b', 'c', 'd'));
}

TEST_F(HwctlSerialTalk, EndsWhenAnotherProgramTakesTheBytes)
{
    // Two others, so that one of them reads first, in whatever order the loop wakes them. Each
    // finds the byte in the round of the loop in which this one is to read it.
    const auto steal = [this] {
        char byte = 0;
        recv(GetPort(), &byte, 1, MSG_DONTWAIT);
    };
    const int first = dup(GetPort());
    const int second = dup(GetPort());
    std::atomic<bool> hasEnded{false};
    std::atomic<bool> wasStuck{false};
    std::thread rescuer;
    {
        QSocketNotifier before(first, QSocketNotifier::Read);
        QObject::connect(&before, &QSocketNotifier::activated, &before, steal);
        m_options.seconds = 0.2;
        SerialTalk talk(GetPort(), m_options);
        QSocketNotifier after(second, QSocketNotifier::Read);
        QObject::connect(&after, &QSocketNotifier::activated, &after, steal);
        Say("x");
        rescuer = std::thread([&] {
            if (TestSupport::WaitUntil([&] { return hasEnded.load(); }))
                return;
            wasStuck = true;
            Say(std::string(1000, 'x')); // so that a read that is stuck comes back
        });
        talk.Run();
        hasEnded = true;
    }
    rescuer.join();
    close(first);
    close(second);
    EXPECT_FALSE(wasStuck);
}

TEST_F(HwctlSerialTalk, CountsBytesAsSentOnceTheyHaveLeft)
{
    m_options.send = Bytes(100, 'x');
    m_options.count = 1;
    SerialTalk talk(GetPort(), m_options);
    bool wasToldEarly = false;
    QTimer::singleShot(200, [&] {
        wasToldEarly = m_isToldSent;
        Hear(100);
        // The answer ends the talk, whether or not it has looked at the queue again by then.
        Say("!");
    });
    const auto result = talk.Run();
    EXPECT_FALSE(wasToldEarly);
    EXPECT_TRUE(m_isToldSent);
    EXPECT_EQ(result.unsent, 0U);
}

TEST_F(HwctlSerialTalk, ReportsWhatTheDriverCouldNotSend)
{
    m_options.send = Bytes(100, 'x');
    m_options.seconds = 0.05;
    const auto result = SerialTalk(GetPort(), m_options).Run();
    EXPECT_FALSE(m_isToldSent);
    EXPECT_EQ(result.problem, "");
    EXPECT_GT(result.unsent, 0U);
    EXPECT_LE(result.unsent, 100U);
}

TEST_F(HwctlSerialTalk, ReportsWhatTheDriverDidNotTake)
{
    m_options.send = Bytes(10'000'000, 'x');
    m_options.seconds = 0.05;
    SerialTalk talk(GetPort(), m_options);
    QTimer::singleShot(10, [&] { talk.Stop(); });
    EXPECT_GT(talk.Run().unsent, 5'000'000U);
}

TEST_F(HwctlSerialTalk, StoppedItWaitsForNothingThatIsStillToBeSent)
{
    m_options.baud = 300;
    m_options.send = Bytes(4000, 'x'); // more than two minutes of line
    SerialTalk talk(GetPort(), m_options);
    std::atomic<bool> hasEnded{false};
    std::atomic<bool> wasStuck{false};
    std::thread rescuer([&] {
        if (TestSupport::WaitUntil([&] { return hasEnded.load(); }))
            return;
        wasStuck = true;
        Hear(4000);
    });
    QTimer::singleShot(10, [&] { talk.Stop(); });
    EXPECT_GT(talk.Run().unsent, 0U);
    hasEnded = true;
    rescuer.join();
    EXPECT_FALSE(wasStuck);
}

TEST_F(HwctlSerialTalk, SaysThatTheLineIsGone)
{
    shutdown(GetFarEnd(), SHUT_RDWR);
    EXPECT_EQ(SerialTalk(GetPort(), m_options).Run().problem, "the line is gone");
}

TEST_F(HwctlSerialTalk, EndsWhenNobodyTakesWhatComes)
{
    m_options.take = [](std::span<const std::uint8_t>) { return false; };
    Say("x");
    EXPECT_EQ(SerialTalk(GetPort(), m_options).Run().received, 1U);
}

TEST_F(HwctlSerialTalk, ReadsNothingWhileTheOutputTakesNothing)
{
    std::array<int, 2> output{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, output.data()), 0);
    const Bytes piece(4096);
    while (write(output[0], piece.data(), piece.size()) > 0)
        continue;
    m_options.output = output[0];
    m_options.count = 1;
    SerialTalk talk(GetPort(), m_options);
    Say("x");
    bool wasTakenEarly = false;
    QTimer::singleShot(100, [&] {
        wasTakenEarly = !m_taken.empty();
        Bytes bytes(1'000'000);
        while (read(output[1], bytes.data(), bytes.size()) > 0)
            continue;
    });
    EXPECT_EQ(talk.Run().received, 1U);
    EXPECT_FALSE(wasTakenEarly);
    close(output[0]);
    close(output[1]);
}
