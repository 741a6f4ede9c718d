// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <QTest>
#include <QWidget>
#include <memory>

#include "desk/desk_data.h"
#include "virtual-desk/desk_controller.h"

namespace TestSupport
{

/// A window's application without a screen, and a desk under it.
class WindowBench : public testing::Test
{
protected:
    /// @param keepsLog leaves the log since the desk's start to the first log panel
    explicit WindowBench(const Desk::DeskData& data, bool keepsLog = false);
    ~WindowBench() override;

    VirtualDesk::DeskController& Desk() { return *m_desk; }
    /// Waits until everything asked for is done and shown.
    void Settle();
    /// Does a line and settles; fails the test when it went wrong.
    void Do(const char* line);
    /// What stands at a path of the session's state; null where there is nothing.
    nlohmann::json Get(const std::string& path);
    /// Settles until @p holds; false when it does not come to within 20 s.
    bool SettleUntil(const std::function<bool()>& holds);

    /// A child by its object name; fails the test when there is none.
    template <class Child> static Child& Find(const QWidget& parent, const char* name)
    {
        auto* const child = parent.findChild<Child*>(QString::fromLatin1(name));
        if (!child)
            throw std::runtime_error(std::string("there is no child ") + name);
        return *child;
    }

    /// A console of model 7 with widgets of each kind by the paths that are their models' common
    /// names: playback, expansion, motor, panel, keyboard, trackball, bar, ltc; two MIDI ports,
    /// Keys and Show; a disc of two tracks; eth0 and eth1; panels at two serial lines.
    static Desk::DeskData MakeDesk();

private:
    std::unique_ptr<VirtualDesk::DeskController> m_desk;
};

} // namespace TestSupport
