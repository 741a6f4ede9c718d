// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QSettings>
#include <QToolButton>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "virtual-desk/desk_controller.h"
#include "virtual-desk/flow_layout.h"
#include "virtual-desk/wing_frame.h"

class QScrollArea;
class QHBoxLayout;

namespace VirtualDesk
{

/// The control surface: a frame for each widget, plugged or not, in the order of the bus.
///
/// Names: "surface" itself; "wing-PATH" a WingView; "go-to", "zoom-in", "zoom-out", "zoom-reset"
/// and "zoom-fit" buttons; "zoom" a label; "wings-area" what scrolls; and those of WingFrame.
class SurfacePanel : public QWidget
{
    Q_OBJECT

public:
    explicit SurfacePanel(DeskController& desk, QWidget* parent = nullptr);
    ~SurfacePanel() override;

    /// The view of a widget by its path; null while it is not plugged.
    WingView* FindView(const QString& path) const;
    double GetZoom() const { return m_zoom; }
    /// Keeps how large wings are shown.
    void SaveZoom(QSettings& settings) const;
    void RestoreZoom(const QSettings& settings);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    /// A widget of the desk, plugged or not.
    struct Entry {
        Desk::VirtualWidget* widget;
        std::unique_ptr<WingHands> hands;
        WingFrame* frame;
    };

    QLayout* MakeTools();
    QToolButton* AddTool(QHBoxLayout& row, const char* name, const QString& text,
                         const QString& tip, const QKeySequence& shortcut,
                         const std::function<void()>& act);
    void Refresh();
    void AddNewWidgets();
    void AddWidget(Desk::VirtualWidget& widget);
    void FollowPlug(Entry& entry);
    void ConnectView(WingView& view);
    void OrderTabs() const;
    void FollowLine(const QString& line, const QString& error);
    void Zoom(int steps);
    void SetZoom(double zoom);
    void SetFitting(bool isFitting);
    void FitWidth();
    QToolButton* MakeGoTo();
    void GoTo(const QString& path);

    DeskController& m_desk;
    std::vector<Entry> m_entries;
    QScrollArea* m_scroll;
    FlowLayout* m_wings = nullptr;
    QLabel* m_empty;
    QLabel* m_zoomLabel;
    QToolButton* m_fit = nullptr;
    double m_zoom = 1;        ///< 1 for natural size
    bool m_isFitting = false; ///< the widest wing is kept as wide as there is room
    QElapsedTimer m_clock;
};

} // namespace VirtualDesk
