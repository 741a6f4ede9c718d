// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>
#include <QToolButton>
#include <chrono>

#include "virtual-desk/line_label.h"
#include "virtual-desk/wing_view.h"

namespace VirtualDesk
{

/// A plugged widget: what it is and how it does, a button that unplugs it, and its view.
///
/// Names: "unplug-PATH", "identity-PATH", "levels-PATH", "status-PATH", and the view's.
class WingFrame : public QFrame
{
    Q_OBJECT

public:
    WingFrame(const Desk::VirtualWidget& widget, WingHands& hands, QWidget* parent = nullptr);

    WingView& GetView() const { return *m_view; }
    QWidget& GetUnplugButton() const { return *m_unplug; }
    void Refresh(std::chrono::milliseconds now);

Q_SIGNALS:
    void unplugWanted();

private:
    QWidget* MakeHeader();

    const Desk::VirtualWidget& m_widget;
    WingView* m_view;
    QToolButton* m_unplug;
    LineLabel* m_identity;
    LineLabel* m_levels;
    LineLabel* m_status;
};

} // namespace VirtualDesk
