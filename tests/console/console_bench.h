// SPDX-License-Identifier: MIT
#pragma once

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <memory>
#include <mutex>
#include <vector>

#include "console/script.h"
#include "console/session.h"

namespace TestSupport
{

/// A session on a desk of a widget of each kind.
class ConsoleBench : public testing::Test
{
protected:
    explicit ConsoleBench(int productType = 8);
    ~ConsoleBench() override;

    /// Does a line of a script. Returns what went wrong; nothing when all went well.
    std::string Do(const std::string& line);
    /// Does it and fails the test unless it went well.
    void Expect(const std::string& line) { EXPECT_EQ(Do(line), "") << line; }
    nlohmann::json Get(const std::string& path);
    /// Events so far whose source begins so, as "SOURCE: TEXT".
    std::vector<std::string> GetEvents(const std::string& source);
    /// What "show" printed.
    const std::vector<std::string>& GetShown() const { return m_shown; }
    Console::Session& GetSession() { return *m_session; }

    /// The desk of the bench, with panels at two lines.
    static Desk::DeskData MakeDesk(int productType);

private:
    std::mutex m_mutex;
    std::vector<std::string> m_events; // guarded by m_mutex
    std::vector<std::string> m_shown;
    std::unique_ptr<QCoreApplication> m_application;
    std::unique_ptr<Console::Session> m_session;
};

} // namespace TestSupport
