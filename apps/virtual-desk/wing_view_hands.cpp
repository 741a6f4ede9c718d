// SPDX-License-Identifier: MIT
// The part of a wing's view that takes the mouse and the keyboard.
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <cmath>
#include <utility>

#include "virtual-desk/fader_travel.h"
#include "virtual-desk/wing_view.h"

namespace VirtualDesk
{

namespace
{

constexpr int WheelStep = 120; ///< of the wheel, one notch
constexpr int FaderWheelStep = 4;
constexpr int FaderPage = 16;
constexpr int DragPerStep = 4; ///< units of the layout for a step of an encoder
constexpr int RollStep = 8;
constexpr int FineRollStep = 1;

bool IsKey(ControlKind kind)
{
    return kind == ControlKind::Button || kind == ControlKind::Touch;
}

bool IsTurned(ControlKind kind)
{
    return kind == ControlKind::Encoder || kind == ControlKind::Ring;
}

QPoint GetDirection(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return {-1, 0};
    case Qt::Key_Right:
        return {1, 0};
    case Qt::Key_Up:
        return {0, -1};
    case Qt::Key_Down:
        return {0, 1};
    default:
        return {};
    }
}

void TurnBy(WingHands& hands, ControlId id, int delta)
{
    if (id.kind == ControlKind::Ring)
        hands.TurnRing(delta);
    else
        hands.Turn(id.index, delta);
}

} // namespace

void WingView::mousePressEvent(QMouseEvent* event)
{
    const auto place = m_layout.FindAt(MapPoint(event->position()).toPoint());
    if (!place) {
        event->ignore();
        return;
    }
    setFocus(Qt::MouseFocusReason);
    MoveFocus(*place);
    const ControlId id = m_layout.GetControls()[*place].id;
    if (event->button() == Qt::RightButton) {
        if (IsKey(id.kind))
            m_hands.ToggleLatch(id);
    } else if (event->button() == Qt::LeftButton) {
        Grab(*place, *event);
    }
    RefreshFaces();
}

void WingView::Grab(std::size_t place, const QMouseEvent& event)
{
    const ControlId id = m_layout.GetControls()[place].id;
    const QPointF point = MapPoint(event.position());
    m_grip = Grip{place, point, 0, false};
    if (id.kind == ControlKind::Fader) {
        GrabFader(place, point);
    } else if (id.kind == ControlKind::Drawer) {
        m_hands.Press(id);
    } else if (IsKey(id.kind)) {
        if (m_hands.IsLatched(id) || (event.modifiers() & Qt::ShiftModifier) != 0) {
            m_hands.ToggleLatch(id);
        } else {
            m_hands.Press(id);
            m_grip->isHolding = true;
        }
    }
}

/// The cap is dragged from where it is gripped; elsewhere it comes under the mouse.
void WingView::GrabFader(std::size_t place, QPointF point)
{
    const PlacedControl& control = m_layout.GetControls()[place];
    const double cap = GetFaderY(control.rect, std::max(m_faces[place].position, 0));
    if (std::abs(point.y() - cap) > HalfFaderCap)
        m_hands.MoveFader(control.id.index, GetFaderPosition(control.rect, point.y()));
    m_grip->position = std::max(m_hands.GetFader(control.id.index), 0);
}

void WingView::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_grip)
        return;
    const PlacedControl& control = m_layout.GetControls()[m_grip->place];
    const QPointF point = MapPoint(event->position());
    const QPointF way = point - m_grip->from;
    if (control.id.kind == ControlKind::Fader) {
        const int offset = GetFaderPosition(control.rect, point.y()) -
                           GetFaderPosition(control.rect, m_grip->from.y());
        m_hands.MoveFader(control.id.index, m_grip->position + offset);
    } else if (IsTurned(control.id.kind)) {
        const int steps = static_cast<int>((way.x() - way.y()) / DragPerStep);
        TurnBy(m_hands, control.id, steps);
        if (steps != 0)
            m_grip->from = point;
    } else if (control.id.kind == ControlKind::Ball) {
        const QPoint whole(static_cast<int>(way.x()), static_cast<int>(way.y()));
        m_hands.Roll(whole.x(), whole.y());
        m_grip->from += whole;
    }
    RefreshFaces();
}

void WingView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !m_grip)
        return;
    const Grip grip = *std::exchange(m_grip, std::nullopt);
    if (grip.isHolding)
        m_hands.Release(m_layout.GetControls()[grip.place].id);
    m_hands.Flush();
    RefreshFaces();
}

void WingView::wheelEvent(QWheelEvent* event)
{
    m_wheel += event->angleDelta();
    // Some platforms make a horizontal wheel of one that is turned with Alt.
    const int whole = (m_wheel.y() != 0 ? m_wheel.y() : m_wheel.x()) / WheelStep;
    if ((event->modifiers() & Qt::ControlModifier) != 0) {
        if (whole != 0)
            Q_EMIT zoomWanted(whole);
        m_wheel = whole != 0 ? QPoint() : m_wheel;
        return;
    }
    const auto place = m_layout.FindAt(MapPoint(event->position()).toPoint());
    const ControlId id = place ? m_layout.GetControls()[*place].id : ControlId();
    if (!place || (id.kind != ControlKind::Fader && !IsTurned(id.kind))) {
        m_wheel = QPoint();
        event->ignore();
        return;
    }
    if (whole == 0)
        return;
    m_wheel = QPoint();
    const bool isFine = (event->modifiers() & Qt::ShiftModifier) != 0;
    if (id.kind == ControlKind::Fader)
        m_hands.MoveFader(id.index, std::max(m_hands.GetFader(id.index), 0) +
                                        whole * (isFine ? 1 : FaderWheelStep));
    else
        TurnBy(m_hands, id, whole);
    RefreshFaces();
}

void WingView::keyPressEvent(QKeyEvent* event)
{
    const ControlId id = GetFocused();
    const bool isDone =
        ZoomKeyed(*event) || PressKeyed(id, *event) || TurnKeyed(id, *event) || StepFocus(*event);
    if (isDone)
        RefreshFaces();
    else
        QWidget::keyPressEvent(event);
}

bool WingView::ZoomKeyed(const QKeyEvent& event)
{
    switch (event.key()) {
    case Qt::Key_Plus:
        Q_EMIT zoomWanted(1);
        return true;
    case Qt::Key_Minus:
        Q_EMIT zoomWanted(-1);
        return true;
    case Qt::Key_0:
        Q_EMIT zoomWanted(0);
        return true;
    default:
        return false;
    }
}

bool WingView::PressKeyed(ControlId id, const QKeyEvent& event)
{
    const bool isPress = event.key() == Qt::Key_Space || event.key() == Qt::Key_Return ||
                         event.key() == Qt::Key_Enter;
    if (!isPress || (!IsKey(id.kind) && id.kind != ControlKind::Drawer))
        return false;
    if (event.isAutoRepeat())
        return true;
    if (id.kind == ControlKind::Drawer) {
        m_hands.Press(id);
    } else if (m_hands.IsLatched(id) || (event.modifiers() & Qt::ShiftModifier) != 0) {
        m_hands.ToggleLatch(id);
    } else {
        m_hands.Press(id);
        m_keyed = id;
    }
    return true;
}

void WingView::keyReleaseEvent(QKeyEvent* event)
{
    const bool isPress = event->key() == Qt::Key_Space || event->key() == Qt::Key_Return ||
                         event->key() == Qt::Key_Enter;
    if (!isPress || !m_keyed) {
        QWidget::keyReleaseEvent(event);
        return;
    }
    if (!event->isAutoRepeat())
        ReleaseKeyed();
}

void WingView::ReleaseKeyed()
{
    if (!m_keyed)
        return;
    m_hands.Release(*std::exchange(m_keyed, std::nullopt));
    RefreshFaces();
}

/// Keys that work what can be moved.
bool WingView::TurnKeyed(ControlId id, const QKeyEvent& event)
{
    if ((event.modifiers() & Qt::ControlModifier) != 0)
        return false;
    if (id.kind == ControlKind::Fader)
        return MoveFaderKeyed(id.index, event.key());
    if (id.kind == ControlKind::Ball)
        return RollKeyed(event);
    const int delta = -GetDirection(event.key()).y();
    if (!IsTurned(id.kind) || delta == 0)
        return false;
    TurnBy(m_hands, id, delta);
    return true;
}

bool WingView::MoveFaderKeyed(int fader, int key)
{
    const int position = std::max(m_hands.GetFader(fader), 0);
    switch (key) {
    case Qt::Key_Up:
        m_hands.MoveFader(fader, position + 1);
        return true;
    case Qt::Key_Down:
        m_hands.MoveFader(fader, position - 1);
        return true;
    case Qt::Key_PageUp:
        m_hands.MoveFader(fader, position + FaderPage);
        return true;
    case Qt::Key_PageDown:
        m_hands.MoveFader(fader, position - FaderPage);
        return true;
    case Qt::Key_Home:
        m_hands.MoveFader(fader, 0);
        return true;
    case Qt::Key_End:
        m_hands.MoveFader(fader, FaderEnd);
        return true;
    default:
        return false;
    }
}

bool WingView::RollKeyed(const QKeyEvent& event)
{
    const QPoint direction = GetDirection(event.key());
    if (direction.isNull())
        return false;
    const bool isFine = (event.modifiers() & Qt::ShiftModifier) != 0;
    const QPoint way = direction * (isFine ? FineRollStep : RollStep);
    m_hands.Roll(way.x(), way.y());
    return true;
}

/// Arrows go to the control beside, Home and End to the first and the last.
bool WingView::StepFocus(const QKeyEvent& event)
{
    const auto& controls = m_layout.GetControls();
    if (controls.empty())
        return false;
    if (event.key() == Qt::Key_Home || event.key() == Qt::Key_End) {
        MoveFocus(event.key() == Qt::Key_Home ? 0 : controls.size() - 1);
        return true;
    }
    const QPoint direction = GetDirection(event.key());
    if (direction.isNull())
        return false;
    MoveFocus(m_layout.FindBeside(m_focus, direction));
    return true;
}

bool WingView::focusNextPrevChild(bool next)
{
    if (const auto place = m_layout.FindNextStop(m_focus, next)) {
        MoveFocus(*place);
        return true;
    }
    return QWidget::focusNextPrevChild(next);
}

/// Who comes by Tab comes to the first control, and backwards to the last stop.
void WingView::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason) {
        MoveFocus(0);
    } else if (event->reason() == Qt::BacktabFocusReason) {
        std::size_t last = 0;
        for (auto next = m_layout.FindNextStop(last, true); next;
             next = m_layout.FindNextStop(last, true))
            last = *next;
        MoveFocus(last);
    }
    update();
}

void WingView::focusOutEvent(QFocusEvent* event)
{
    ReleaseKeyed();
    update();
    QWidget::focusOutEvent(event);
}

void WingView::hideEvent(QHideEvent* event)
{
    if (m_grip && m_grip->isHolding)
        m_hands.Release(m_layout.GetControls()[m_grip->place].id);
    m_grip.reset();
    ReleaseKeyed();
    QWidget::hideEvent(event);
}

} // namespace VirtualDesk
