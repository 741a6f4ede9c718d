// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QtTest/QTest>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "hardware/wing_mapper.h"
#include "support/bench_desk.h"
#include "virtual-desk/surface_panel.h"
#include "window/window_bench.h"

namespace TestSupport
{

/// What the application hears of wings, oldest first.
class Listener : public QObject
{
public:
    Listener()
    {
        using Hardware::WingMapper;
        auto& mapper = WingMapper::Get();
        const auto add = [this](const QString& text) {
            const std::lock_guard hold(m_mutex);
            m_heard.push_back(text.toStdString());
        };
        connect(
            &mapper, &WingMapper::button_press, this,
            [add](auto, unsigned short part, unsigned short master, bool isDown) {
                add(QStringLiteral("%1 %2/%3")
                        .arg(isDown ? "press" : "release")
                        .arg(part)
                        .arg(master));
            },
            Qt::DirectConnection);
        const auto addMove = [add](const char* what) {
            return [add, what](auto, unsigned short index, int value) {
                add(QStringLiteral("%1 %2 %3").arg(what).arg(index).arg(value));
            };
        };
        connect(&mapper, &WingMapper::fader_move, this, addMove("fader"), Qt::DirectConnection);
        connect(&mapper, &WingMapper::fader_motor_move, this, addMove("motor"),
                Qt::DirectConnection);
        connect(&mapper, &WingMapper::encoder_move, this, addMove("encoder"), Qt::DirectConnection);
        connect(
            &mapper, &WingMapper::trackball_move, this,
            [add](auto, int dx, int dy, int dz) {
                add(QStringLiteral("roll %1 %2 %3").arg(dx).arg(dy).arg(dz));
            },
            Qt::DirectConnection);
        connect(
            &mapper, &WingMapper::keyboard_change, this,
            [add](auto, int drawer, int state) {
                add(QStringLiteral("drawer %1 %2").arg(drawer).arg(state));
            },
            Qt::DirectConnection);
    }

    /// Nothing may be on its way. Takes the lock once more, since the driver's thread may have been
    /// the last to hold it.
    ~Listener() override { Take(); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// What was heard since the last call.
    std::vector<std::string> Take()
    {
        const std::lock_guard hold(m_mutex);
        return std::exchange(m_heard, {});
    }

private:
    std::mutex m_mutex;
    std::vector<std::string> m_heard;
};

inline Desk::DeskData MakeSurfaceDesk()
{
    Desk::DeskData data = MakeBenchDesk(7);
    data.widgets.insert(data.widgets.begin(), {"PlaybackWing", 291, L"playback"});
    data.widgets.push_back({"Vex4Pixi", 9, L"left hand"});
    data.widgets.push_back({"Vex4Keystone", 10, L"stone"});
    return data;
}

/// The surface of a desk with one widget of each kind.
class SurfaceBench : public WindowBench
{
protected:
    SurfaceBench()
        : WindowBench(MakeSurfaceDesk()),
          m_panel(std::make_unique<VirtualDesk::SurfacePanel>(Desk()))
    {
        m_panel->resize(1200, 800);
        m_panel->show();
        QApplication::setActiveWindow(m_panel.get());
        Settle();
        m_listener.Take();
    }

    VirtualDesk::WingView& View(const char* path)
    {
        VirtualDesk::WingView* const view = m_panel->FindView(path);
        if (!view)
            throw std::runtime_error(std::string("there is no view of ") + path);
        return *view;
    }
    static QPoint Middle(const VirtualDesk::WingView& view, VirtualDesk::ControlKind kind,
                         int index)
    {
        const QRect rect = view.GetRectOf(kind, index);
        EXPECT_FALSE(rect.isEmpty()) << index;
        return rect.center();
    }
    void Press(VirtualDesk::WingView& view, VirtualDesk::ControlKind kind, int index,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier,
               Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mousePress(&view, button, modifiers, Middle(view, kind, index));
        Settle();
    }
    void Release(VirtualDesk::WingView& view, VirtualDesk::ControlKind kind, int index)
    {
        QTest::mouseRelease(&view, Qt::LeftButton, Qt::NoModifier, Middle(view, kind, index));
        Settle();
    }
    void Click(VirtualDesk::WingView& view, VirtualDesk::ControlKind kind, int index,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier,
               Qt::MouseButton button = Qt::LeftButton)
    {
        Press(view, kind, index, modifiers, button);
        QTest::mouseRelease(&view, button, modifiers, Middle(view, kind, index));
        Settle();
    }
    void Key(VirtualDesk::WingView& view, Qt::Key key,
             Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&view, key, modifiers);
        Settle();
    }
    void Wheel(VirtualDesk::WingView& view, VirtualDesk::ControlKind kind, int index, int notches,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        const QPointF at = Middle(view, kind, index);
        QWheelEvent event(at, view.mapToGlobal(at), {}, {0, 120 * notches}, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view, &event);
        Settle();
    }
    /// Drags from a control's middle without letting go.
    void Drag(VirtualDesk::WingView& view, VirtualDesk::ControlKind kind, int index, QPoint way)
    {
        const QPoint from = Middle(view, kind, index);
        QTest::mousePress(&view, Qt::LeftButton, Qt::NoModifier, from);
        QMouseEvent move(QEvent::MouseMove, from + way, view.mapToGlobal(from + way), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&view, &move);
        Settle();
    }

    Listener m_listener;
    std::unique_ptr<VirtualDesk::SurfacePanel> m_panel;
};

} // namespace TestSupport
