// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QToolButton>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "virtual-desk/desk_controller.h"
#include "virtual-desk/flow_layout.h"
#include "virtual-desk/wing_frame.h"

class QPushButton;
class QScrollArea;
class QHBoxLayout;

namespace VirtualDesk
{

/// The control surface: a view of each widget that is plugged, and a button for each that is not.
///
/// Names: "surface" itself; "wing-PATH" a WingView; "unplug-PATH" and "plug-PATH" buttons;
/// "zoom-in", "zoom-out" and "zoom-reset"; and those of WingFrame.
class SurfacePanel : public QWidget
{
    Q_OBJECT

public:
    explicit SurfacePanel(DeskController& desk, QWidget* parent = nullptr);
    ~SurfacePanel() override;

    /// The view of a widget by its path; null while it is not plugged.
    WingView* FindView(const QString& path) const;
    double GetZoom() const;

private:
    /// A widget of the desk, plugged or not.
    struct Entry {
        Desk::VirtualWidget* widget;
        std::unique_ptr<WingHands> hands;
        QPushButton* plug;
        WingFrame* frame; ///< null while it is not plugged
    };

    QLayout* MakeTools();
    QWidget* MakePlugStrip();
    void AddTool(QHBoxLayout& row, const char* name, const QString& text, const QString& tip,
                 const QKeySequence& shortcut, const std::function<void()>& act);
    void Refresh();
    void AddNewWidgets();
    void AddWidget(Desk::VirtualWidget& widget);
    void FollowPlug(Entry& entry);
    void AddFrame(Entry& entry);
    void RemoveFrame(Entry& entry);
    void OrderTabs() const;
    void FollowLine(const QString& line, const QString& error);
    void Zoom(int steps);
    void ShowZoom();
    void FitWidth();
    QToolButton* MakeGoTo();
    void GoTo(const QString& path);

    DeskController& m_desk;
    std::vector<Entry> m_entries;
    QScrollArea* m_scroll;
    FlowLayout* m_wings = nullptr;
    QWidget* m_strip = nullptr;
    FlowLayout* m_plugs = nullptr;
    QLabel* m_empty;
    QLabel* m_zoomLabel;
    int m_zoom = 0; ///< steps from natural size
    QElapsedTimer m_clock;
};

} // namespace VirtualDesk
