// SPDX-License-Identifier: MIT
#include "virtual-desk/surface_panel.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "console/script.h"
#include "desk/widget_controls.h"
#include "virtual-desk/pending_lines.h"

namespace VirtualDesk
{

namespace
{

constexpr int Spacing = 8;
constexpr double ZoomStep = 1.15;
constexpr double LeastZoom = 0.25;
constexpr double MostZoom = 2;
constexpr char ZoomKey[] = "surface/zoom";
const QString FitValue = QStringLiteral("fit"); ///< of the key
constexpr int FocusMargin = 24;                 ///< shown around what has the keyboard

QString GetPath(const Desk::VirtualWidget& widget)
{
    return QString::fromStdWString(widget.GetData().path);
}

QString GetAddress(const Desk::VirtualWidget& widget)
{
    return "widget " + ToWord(widget.GetData().path);
}

std::vector<std::string> SplitLine(const QString& line)
{
    try {
        return Console::SplitWords(line.toStdString());
    } catch (const std::invalid_argument&) {
        return {}; // it was no line that does anything
    }
}

} // namespace

SurfacePanel::SurfacePanel(DeskController& desk, QWidget* parent)
    : QWidget(parent), m_desk(desk), m_scroll(new QScrollArea(this)), m_empty(new QLabel(this)),
      m_zoomLabel(new QLabel(this))
{
    setObjectName("surface");
    setAccessibleName("Control surface");
    auto* const wings = new QWidget();
    m_wings = new FlowLayout(wings);
    m_wings->setContentsMargins(Spacing, Spacing, Spacing, Spacing);
    m_wings->setSpacing(Spacing);
    m_scroll->setObjectName("wings-area");
    m_scroll->setWidget(wings);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_empty->setText(QStringLiteral("This desk has no wings."));
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setMargin(Spacing * 2);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(MakeTools());
    layout->addWidget(m_empty);
    layout->addWidget(m_scroll, 1);
    m_scroll->installEventFilter(this);
    m_clock.start();
    connect(&m_desk, &DeskController::refreshed, this, &SurfacePanel::Refresh);
    connect(&m_desk, &DeskController::done, this, &SurfacePanel::FollowLine);
    Zoom(0);
    Refresh();
}

SurfacePanel::~SurfacePanel()
{
    // The views are children, and go after the hands.
    for (const Entry& entry : m_entries)
        if (WingView* const view = entry.frame->GetView())
            view->LetGo();
}

QLayout* SurfacePanel::MakeTools()
{
    auto* const row = new QHBoxLayout();
    row->setContentsMargins(Spacing, Spacing / 2, Spacing, 0);
    row->addWidget(MakeGoTo());
    row->addStretch();
    AddTool(*row, "zoom-out", QStringLiteral("\u2212"), QStringLiteral("Smaller"),
            QKeySequence::ZoomOut, [this] { Zoom(-1); });
    m_zoomLabel->setObjectName("zoom");
    m_zoomLabel->setAlignment(Qt::AlignCenter);
    m_zoomLabel->setMinimumWidth(m_zoomLabel->fontMetrics().horizontalAdvance("000 %"));
    row->addWidget(m_zoomLabel);
    AddTool(*row, "zoom-in", QStringLiteral("+"), QStringLiteral("Larger"), QKeySequence::ZoomIn,
            [this] { Zoom(1); });
    AddTool(*row, "zoom-reset", QStringLiteral("1:1"), QStringLiteral("Natural size"),
            QKeySequence(Qt::CTRL | Qt::Key_0), [this] { Zoom(0); });
    m_fit = AddTool(*row, "zoom-fit", QStringLiteral("Fit"),
                    QStringLiteral("The widest wing fits, also when the window changes"),
                    QKeySequence(Qt::CTRL | Qt::Key_9), [this] { SetFitting(true); });
    m_fit->setCheckable(true);
    return row;
}

QToolButton* SurfacePanel::AddTool(QHBoxLayout& row, const char* name, const QString& text,
                                   const QString& tip, const QKeySequence& shortcut,
                                   const std::function<void()>& act)
{
    auto* const button = new QToolButton(this);
    button->setObjectName(name);
    button->setText(text);
    button->setAccessibleName(tip);
    button->setToolTip(
        QStringLiteral("%1 (%2)").arg(tip, shortcut.toString(QKeySequence::NativeText)));
    button->setFocusPolicy(Qt::StrongFocus);
    row.addWidget(button);
    connect(button, &QToolButton::clicked, this, act);
    auto* const keys = new QShortcut(shortcut, this);
    keys->setContext(Qt::WidgetWithChildrenShortcut);
    connect(keys, &QShortcut::activated, this, act);
    return button;
}

/// A menu of the wings.
QToolButton* SurfacePanel::MakeGoTo()
{
    auto* const button = new QToolButton(this);
    button->setObjectName("go-to");
    button->setText(QStringLiteral("&Go to"));
    button->setToolTip(QStringLiteral("Shows a wing and gives it the keyboard"));
    button->setFocusPolicy(Qt::StrongFocus);
    button->setPopupMode(QToolButton::InstantPopup);
    auto* const menu = new QMenu(button);
    menu->setObjectName("wings");
    button->setMenu(menu);
    connect(menu, &QMenu::aboutToShow, this, [this, menu] {
        menu->clear();
        for (const Entry& entry : m_entries)
            menu->addAction(GetPath(*entry.widget), this,
                            [this, path = GetPath(*entry.widget)] { GoTo(path); });
    });
    return button;
}

void SurfacePanel::GoTo(const QString& path)
{
    for (const Entry& entry : m_entries) {
        if (GetPath(*entry.widget) != path)
            continue;
        // Its upper left corner where all of it has no room.
        const QRect rect = entry.frame->geometry();
        m_scroll->ensureVisible(rect.right(), rect.bottom(), Spacing, Spacing);
        m_scroll->ensureVisible(rect.left(), rect.top(), Spacing, Spacing);
        if (WingView* const view = entry.frame->GetView())
            view->setFocus();
        else
            entry.frame->GetPlugButton().setFocus();
    }
}

void SurfacePanel::Refresh()
{
    AddNewWidgets();
    const std::chrono::milliseconds now(m_clock.elapsed());
    for (Entry& entry : m_entries) {
        FollowPlug(entry);
        entry.frame->Refresh(now);
    }
    m_empty->setVisible(m_entries.empty());
}

/// Widgets live as long as the desk, and new ones come after the others.
void SurfacePanel::AddNewWidgets()
{
    const auto widgets = m_desk.GetDesk().GetBus().GetWidgets();
    for (std::size_t place = m_entries.size(); place < widgets.size(); ++place)
        AddWidget(*widgets[place]);
}

void SurfacePanel::AddWidget(Desk::VirtualWidget& widget)
{
    const QString address = GetAddress(widget);
    const bool isTrackball = Desk::IsTrackball(widget.GetModel());
    auto hands = std::make_unique<WingHands>(address, isTrackball,
                                             [this](const QString& line) { m_desk.Do(line); });
    auto* const frame = new WingFrame(widget, *hands, m_scroll->widget());
    frame->SetZoom(m_zoom);
    connect(frame, &WingFrame::unplugWanted, this,
            [this, address] { m_desk.Do(address + " unplug"); });
    connect(frame, &WingFrame::plugWanted, this, [this, address] { m_desk.Do(address + " plug"); });
    m_wings->addWidget(frame);
    frame->show();
    m_entries.push_back({&widget, std::move(hands), frame});
    OrderTabs();
    FitWidth();
}

/// The keyboard stays with the widget.
void SurfacePanel::FollowPlug(Entry& entry)
{
    WingFrame& frame = *entry.frame;
    const bool isPlugged = entry.widget->IsPlugged();
    if (isPlugged == (frame.GetView() != nullptr))
        return;
    const bool hadFocus = frame.isAncestorOf(focusWidget());
    frame.SetPlugged(isPlugged);
    if (WingView* const view = frame.GetView())
        ConnectView(*view);
    OrderTabs();
    if (hadFocus && isPlugged)
        frame.GetView()->setFocus();
    else if (hadFocus)
        frame.GetPlugButton().setFocus();
}

void SurfacePanel::ConnectView(WingView& view)
{
    connect(&view, &WingView::zoomWanted, this, &SurfacePanel::Zoom);
    connect(&view, &WingView::focusMoved, this, [this, &view](const QRect& rect) {
        const QPoint middle = view.mapTo(m_scroll->widget(), rect.center());
        m_scroll->ensureVisible(middle.x(), middle.y(), rect.width() / 2 + FocusMargin,
                                rect.height() / 2 + FocusMargin);
    });
}

/// Tab goes through the wings as they stand, whenever they came.
void SurfacePanel::OrderTabs() const
{
    QWidget* last = m_scroll;
    const auto follow = [&last](QWidget* next) {
        QWidget::setTabOrder(last, next);
        last = next;
    };
    for (const Entry& entry : m_entries) {
        follow(&entry.frame->GetUnplugButton());
        follow(&entry.frame->GetPlugButton());
        if (WingView* const view = entry.frame->GetView())
            follow(view);
    }
}

void SurfacePanel::FollowLine(const QString& line, const QString& error)
{
    const auto words = SplitLine(line);
    if (words.size() < 3 || words[0] != "widget")
        return;
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
        return GetPath(*entry.widget).toStdString() == words[1];
    });
    if (found != m_entries.end())
        found->hands->Follow(line, words, error.isEmpty());
}

WingView* SurfacePanel::FindView(const QString& path) const
{
    for (const Entry& entry : m_entries)
        if (GetPath(*entry.widget) == path)
            return entry.frame->GetView();
    return nullptr;
}

/// To the next step in a direction, or to natural size.
void SurfacePanel::Zoom(int steps)
{
    constexpr double Near = 0.01;
    SetFitting(false);
    const double step = std::log(m_zoom) / std::log(ZoomStep);
    const double from = steps > 0 ? std::floor(step + Near) : std::ceil(step - Near);
    SetZoom(steps == 0 ? 1 : std::pow(ZoomStep, from + steps));
}

void SurfacePanel::SetZoom(double zoom)
{
    constexpr int Percent = 100;
    m_zoom = std::clamp(zoom, LeastZoom, MostZoom);
    m_zoomLabel->setText(QStringLiteral("%1 %").arg(std::lround(m_zoom * Percent)));
    for (const Entry& entry : m_entries)
        entry.frame->SetZoom(m_zoom);
}

void SurfacePanel::SetFitting(bool isFitting)
{
    m_isFitting = isFitting;
    m_fit->setChecked(isFitting);
    FitWidth();
}

/// While it is to fit, as large as the widest wing allows.
void SurfacePanel::FitWidth()
{
    if (!m_isFitting || m_entries.empty())
        return;
    const QMargins margins = m_wings->contentsMargins();
    const int around = margins.left() + margins.right() + m_scroll->frameWidth() * 2 +
                       m_scroll->verticalScrollBar()->sizeHint().width();
    double zoom = MostZoom;
    for (const Entry& entry : m_entries)
        zoom = std::min(zoom, (m_scroll->width() - around - entry.frame->GetBorderWidth()) /
                                  static_cast<double>(entry.frame->GetNaturalWidth()));
    SetZoom(zoom);
}

bool SurfacePanel::eventFilter(QObject* object, QEvent* event)
{
    if (object == m_scroll && event->type() == QEvent::Resize)
        FitWidth();
    return QWidget::eventFilter(object, event);
}

void SurfacePanel::SaveZoom(QSettings& settings) const
{
    settings.setValue(ZoomKey, m_isFitting ? QVariant(FitValue) : QVariant(m_zoom));
}

void SurfacePanel::RestoreZoom(const QSettings& settings)
{
    const QVariant value = settings.value(ZoomKey);
    if (value.toString() == FitValue) {
        SetFitting(true);
        return;
    }
    bool isNumber = false;
    const double zoom = value.toDouble(&isNumber);
    if (isNumber && std::isfinite(zoom))
        SetZoom(zoom);
}

} // namespace VirtualDesk
