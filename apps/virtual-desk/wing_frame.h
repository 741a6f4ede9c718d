// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>
#include <QPushButton>
#include <QToolButton>
#include <chrono>

#include "virtual-desk/line_label.h"
#include "virtual-desk/wing_view.h"

namespace VirtualDesk
{

/// The place of a widget: what it is, how it does, a button that unplugs it, and its view. While
/// the widget is unplugged, the frame keeps its size and has a button that plugs it in, so that
/// nothing moves under the mouse.
///
/// Names: "unplug-PATH", "plug-PATH", "identity-PATH", "levels-PATH", "status-PATH", and the
/// view's.
class WingFrame : public QFrame
{
    Q_OBJECT

public:
    /// Shows the widget as unplugged. Both outlive the frame.
    WingFrame(const Desk::VirtualWidget& widget, WingHands& hands, QWidget* parent = nullptr);

    /// Null while the widget is unplugged.
    WingView* GetView() const { return m_view; }
    QWidget& GetUnplugButton() const { return *m_unplug; }
    QWidget& GetPlugButton() const { return *m_plug; }
    /// Makes the view, or takes it away and lets go of what the hands hold.
    void SetPlugged(bool isPlugged);
    /// 1 for natural size.
    void SetZoom(double zoom);
    /// The view's width at natural size, also while the widget is unplugged.
    int GetNaturalWidth() const;
    /// What of the frame's width is not the view's.
    int GetBorderWidth() const;
    void Refresh(std::chrono::milliseconds now);

Q_SIGNALS:
    void unplugWanted();
    void plugWanted();

private:
    QWidget* MakeHeader();
    QWidget* MakeEmptyPlace();
    void ResizeEmptyPlace();

    const Desk::VirtualWidget& m_widget;
    WingHands& m_hands;
    WingView* m_view = nullptr;
    QWidget* m_emptyPlace = nullptr; ///< where the view stands while the widget is plugged
    QToolButton* m_unplug;
    QPushButton* m_plug;
    LineLabel* m_identity;
    LineLabel* m_levels;
    LineLabel* m_status;
    QSize m_naturalSize; ///< of the view
    double m_zoom = 1;
};

} // namespace VirtualDesk
