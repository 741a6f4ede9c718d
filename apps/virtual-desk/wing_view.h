// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <chrono>
#include <optional>
#include <vector>

#include "desk/virtual_widget.h"
#include "virtual-desk/wing_faces.h"
#include "virtual-desk/wing_hands.h"
#include "virtual-desk/wing_layout.h"

namespace VirtualDesk
{

/// One widget's controls, painted as its model has them, to be worked with the mouse and the
/// keyboard. Its objectName is "wing-" and the widget's path. To those who read screens each
/// control is a child of the view.
///
/// Tab goes from group to group and on to the next view. The arrows go from control to control;
/// where up and down turn or move one, Ctrl and an arrow do.
class WingView : public QWidget
{
    Q_OBJECT

public:
    /// Both outlive the view.
    WingView(const Desk::VirtualWidget& widget, WingHands& hands, QWidget* parent = nullptr);
    ~WingView() override;

    /// Looks at the widget, and repaints the controls that have changed.
    /// @param now of a clock that all views share, so that they blink together
    void Refresh(std::chrono::milliseconds now, const WingFacts& facts);
    /// 1 for natural size.
    void SetZoom(double zoom);
    /// Lets go of what is held and latched.
    void LetGo();

    const WingLayout& GetLayout() const { return m_layout; }
    WingHands& GetHands() const { return m_hands; }
    /// In the view's coordinates; empty for what the widget does not have.
    QRect GetRectOf(ControlKind kind, int index) const;
    /// What the view shows of a control; one that it does not have shows nothing.
    ControlFace GetFace(ControlKind kind, int index) const;
    /// The control that has the keyboard.
    ControlId GetFocused() const;
    void SetFocused(ControlId id);
    /// It flashes since it was told to identify itself.
    bool IsBeaconing() const { return m_isBeaconing; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    /// The user wants it larger, or smaller where negative; 0 for natural size.
    void zoomWanted(int steps);
    /// The keyboard went to a control, which should come into view.
    void focusMoved(const QRect& rect);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    /// What the mouse holds, and since where.
    struct Grip {
        std::size_t place;
        QPointF from;   ///< in units of the layout
        int position;   ///< of a fader, when it was gripped
        bool isHolding; ///< a key, to be let go with the mouse
    };

    QRect MapRect(const QRect& rect) const;
    QPointF MapPoint(QPointF point) const { return point / m_zoom; }
    void RepaintControl(std::size_t place);
    void RefreshFaces();
    void RefreshLayout();
    void RefreshBeacon(std::chrono::milliseconds now, const WingFacts& facts);
    void RefreshBlink(std::chrono::milliseconds now);
    QRect GetBeaconRect() const;
    void DescribeFocused();
    QString GetToolTip(std::size_t place) const;
    void MoveFocus(std::size_t place);

    void Grab(std::size_t place, const QMouseEvent& event);
    void GrabFader(std::size_t place, QPointF point);
    bool PressKeyed(ControlId id, const QKeyEvent& event);
    bool TurnKeyed(ControlId id, const QKeyEvent& event);
    bool MoveFaderKeyed(int fader, int key);
    bool RollKeyed(const QKeyEvent& event);
    bool StepFocus(const QKeyEvent& event);
    bool ZoomKeyed(const QKeyEvent& event);
    void ReleaseKeyed();

    const Desk::VirtualWidget& m_widget;
    WingHands& m_hands;
    WingLayout m_layout;
    int m_displays;
    std::vector<ControlFace> m_faces; ///< of the layout's controls
    double m_zoom = 1;
    std::size_t m_focus = 0;
    std::optional<Grip> m_grip;
    std::optional<ControlId> m_keyed; ///< held with the keyboard
    QPoint m_wheel;                   ///< of the wheel, what was no full step
    bool m_isBlinkOn = true;
    bool m_isAsleep = false;
    bool m_isBeaconing = false;
    std::optional<std::size_t> m_beacons;
    int m_section = 0;
    std::chrono::milliseconds m_beaconEnd{0};
};

} // namespace VirtualDesk
