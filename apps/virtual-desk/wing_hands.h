// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QString>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "virtual-desk/wing_controls.h"

namespace VirtualDesk
{

/// The hands on one widget: what they hold, where they left faders, and the verbs that tell the
/// widget so. It outlives views, as hands and controls do when a widget is unplugged.
///
/// What moves fast, such as a fader that is dragged, is told at once the first time, and then what
/// has gathered with each Flush().
class WingHands
{
public:
    typedef std::function<void(const QString& line)> Send;

    /// @param address how verbs begin, such as "widget motor"
    /// @param isTrackball the ball is a device of its own, and so has axes
    WingHands(QString address, bool isTrackball, Send send);

    /// Presses a key, touches a button of the bar, or moves the drawer to its other end.
    void Press(ControlId id);
    void Release(ControlId id);
    /// Presses it and leaves it down, or lets it go.
    void ToggleLatch(ControlId id);
    /// Lets go of everything.
    void ReleaseAll();
    void MoveFader(int fader, int value);
    void Turn(int encoder, int delta);
    void Roll(int dx, int dy);
    void TurnRing(int delta);
    /// Tells what has gathered.
    void Flush();

    /// A line for the widget was done, or could not be. Where these hands did not ask for it,
    /// another hand moved the control.
    void Follow(const QString& line, const std::vector<std::string>& words, bool isDone);
    /// A motor took a fader along.
    void FollowMotor(int fader, int position);

    bool IsDown(ControlId id) const { return m_down.contains(id); }
    bool IsLatched(ControlId id) const { return m_latched.contains(id); }
    /// -1 while unknown.
    int GetFader(int fader) const;
    /// Steps that an encoder was turned; the ring's is in GetRingSteps().
    int GetSteps(int encoder) const;
    int GetRingSteps() const { return m_ringSteps; }
    QPoint GetRoll() const { return m_roll; }
    /// Nothing while unknown.
    std::optional<bool> IsDrawerOpen() const { return m_isDrawerOpen; }

private:
    void Tell(const QString& verb);
    void Gather(ControlId id);
    void TellGathered(ControlId id);

    const QString m_address;
    const bool m_isTrackball;
    const Send m_send;
    std::map<QString, int> m_asked; ///< lines not done yet, and how often
    std::set<ControlId> m_down;
    std::set<ControlId> m_latched;
    std::map<int, int> m_faders;
    std::map<int, int> m_motors;
    std::map<int, int> m_steps;
    int m_ringSteps = 0;
    QPoint m_roll;
    std::optional<bool> m_isDrawerOpen;

    std::set<ControlId> m_told;     ///< since the last flush
    std::set<ControlId> m_gathered; ///< with more to tell
    std::map<int, int> m_untoldSteps;
    int m_untoldRing = 0;
    QPoint m_untoldRoll;
};

} // namespace VirtualDesk
