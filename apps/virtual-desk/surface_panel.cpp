// SPDX-License-Identifier: MIT
#include "virtual-desk/surface_panel.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>
#include <QScrollArea>
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
constexpr int ZoomLimit = 5; ///< steps in either direction
constexpr double ZoomStep = 1.15;
constexpr int FocusMargin = 24; ///< shown around what has the keyboard

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
    m_scroll->setWidget(wings);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_empty->setText(QStringLiteral("Nothing is plugged in."));
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setMargin(Spacing * 2);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(MakeTools());
    layout->addWidget(m_empty);
    layout->addWidget(m_scroll, 1);
    layout->addWidget(MakePlugStrip());
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
        if (entry.frame)
            entry.frame->GetView().LetGo();
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
    AddTool(*row, "zoom-fit", QStringLiteral("Fit"), QStringLiteral("The widest wing fits"),
            QKeySequence(Qt::CTRL | Qt::Key_9), [this] { FitWidth(); });
    return row;
}

void SurfacePanel::AddTool(QHBoxLayout& row, const char* name, const QString& text,
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
}

/// A menu of the wings that are plugged.
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
            if (entry.frame)
                menu->addAction(GetPath(*entry.widget), this,
                                [this, path = GetPath(*entry.widget)] { GoTo(path); });
    });
    return button;
}

void SurfacePanel::GoTo(const QString& path)
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
        return entry.frame && GetPath(*entry.widget) == path;
    });
    if (found == m_entries.end())
        return; // pulled out meanwhile
    // Its upper left corner where all of it has no room.
    const QRect rect = found->frame->geometry();
    m_scroll->ensureVisible(rect.right(), rect.bottom(), Spacing, Spacing);
    m_scroll->ensureVisible(rect.left(), rect.top(), Spacing, Spacing);
    found->frame->GetView().setFocus();
}

QWidget* SurfacePanel::MakePlugStrip()
{
    m_strip = new QWidget(this);
    m_strip->setAccessibleName("Not plugged");
    m_plugs = new FlowLayout(m_strip);
    m_plugs->setContentsMargins(Spacing, Spacing / 2, Spacing, Spacing / 2);
    m_plugs->setSpacing(Spacing / 2);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    m_strip->setSizePolicy(policy);
    return m_strip;
}

void SurfacePanel::Refresh()
{
    AddNewWidgets();
    const std::chrono::milliseconds now(m_clock.elapsed());
    bool isAnyPlugged = false;
    bool isAnyUnplugged = false;
    for (Entry& entry : m_entries) {
        FollowPlug(entry);
        if (entry.frame)
            entry.frame->Refresh(now);
        else
            entry.hands->Flush();
        isAnyPlugged = isAnyPlugged || entry.frame;
        isAnyUnplugged = isAnyUnplugged || !entry.frame;
    }
    m_empty->setVisible(!isAnyPlugged);
    m_strip->setVisible(isAnyUnplugged);
}

/// Widgets live as long as the desk, and new ones come behind the others.
void SurfacePanel::AddNewWidgets()
{
    const auto widgets = m_desk.GetDesk().GetBus().GetWidgets();
    for (std::size_t place = m_entries.size(); place < widgets.size(); ++place)
        AddWidget(*widgets[place]);
}

void SurfacePanel::AddWidget(Desk::VirtualWidget& widget)
{
    const QString path = GetPath(widget);
    const QString address = GetAddress(widget);
    auto* const plug = new QPushButton(
        QStringLiteral("Plug in %1 %2").arg(QString::fromStdString(widget.GetModel().name), path));
    plug->setObjectName("plug-" + path);
    plug->setAccessibleName(plug->text());
    connect(plug, &QPushButton::clicked, this, [this, address] { m_desk.Do(address + " plug"); });
    m_plugs->addWidget(plug);
    const bool isTrackball = Desk::IsTrackball(widget.GetModel());
    m_entries.push_back(
        {&widget,
         std::make_unique<WingHands>(address, isTrackball,
                                     [this](const QString& line) { m_desk.Do(line); }),
         plug, nullptr});
}

void SurfacePanel::FollowPlug(Entry& entry)
{
    const bool isPlugged = entry.widget->IsPlugged();
    if (isPlugged && !entry.frame)
        AddFrame(entry);
    else if (!isPlugged && entry.frame)
        RemoveFrame(entry);
    entry.plug->setVisible(!isPlugged);
}

/// Wings stand in the order of the bus.
void SurfacePanel::AddFrame(Entry& entry)
{
    int place = 0;
    for (const Entry& other : m_entries) {
        if (&other == &entry)
            break;
        place += other.frame ? 1 : 0;
    }
    entry.frame = new WingFrame(*entry.widget, *entry.hands, m_scroll->widget());
    m_wings->InsertWidget(place, entry.frame);
    WingView& view = entry.frame->GetView();
    view.SetZoom(GetZoom());
    connect(&view, &WingView::zoomWanted, this, &SurfacePanel::Zoom);
    connect(&view, &WingView::focusMoved, this, [this, &view](const QRect& rect) {
        const QPoint middle = view.mapTo(m_scroll->widget(), rect.center());
        m_scroll->ensureVisible(middle.x(), middle.y(), rect.width() / 2 + FocusMargin,
                                rect.height() / 2 + FocusMargin);
    });
    const QString address = GetAddress(*entry.widget);
    connect(entry.frame, &WingFrame::unplugWanted, this,
            [this, address] { m_desk.Do(address + " unplug"); });
    entry.frame->show();
    OrderTabs();
    if (entry.plug->hasFocus())
        view.setFocus();
}

/// Tab goes through the wings as they stand, whenever they came, and then to what is not plugged.
void SurfacePanel::OrderTabs() const
{
    QWidget* last = m_scroll;
    const auto follow = [&last](QWidget* next) {
        QWidget::setTabOrder(last, next);
        last = next;
    };
    for (const Entry& entry : m_entries)
        if (entry.frame) {
            follow(&entry.frame->GetUnplugButton());
            follow(&entry.frame->GetView());
        }
    for (const Entry& entry : m_entries)
        follow(entry.plug);
}

void SurfacePanel::RemoveFrame(Entry& entry)
{
    const bool hadFocus = entry.frame->isAncestorOf(focusWidget());
    entry.frame->GetView().LetGo();
    entry.plug->setVisible(true);
    if (hadFocus)
        entry.plug->setFocus();
    m_wings->removeWidget(entry.frame);
    entry.frame->hide();
    entry.frame->deleteLater();
    entry.frame = nullptr;
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
        if (entry.frame && GetPath(*entry.widget) == path)
            return &entry.frame->GetView();
    return nullptr;
}

double SurfacePanel::GetZoom() const
{
    return std::pow(ZoomStep, m_zoom);
}

void SurfacePanel::Zoom(int steps)
{
    m_zoom = steps == 0 ? 0 : std::clamp(m_zoom + steps, -ZoomLimit, ZoomLimit);
    ShowZoom();
}

/// As large as the widest wing allows, and no smaller than there is.
void SurfacePanel::FitWidth()
{
    double widest = 0;
    for (const Entry& entry : m_entries)
        if (entry.frame)
            widest = std::max(widest, entry.frame->GetView().sizeHint().width() / GetZoom());
    if (widest == 0)
        return;                // nothing is plugged
    constexpr int Around = 60; // frames and the scroll bar
    const double room = m_scroll->width() - Around;
    for (m_zoom = ZoomLimit; m_zoom > -ZoomLimit && widest * GetZoom() > room;)
        --m_zoom;
    ShowZoom();
}

void SurfacePanel::ShowZoom()
{
    constexpr int Percent = 100;
    m_zoomLabel->setText(QStringLiteral("%1 %").arg(std::lround(GetZoom() * Percent)));
    for (const Entry& entry : m_entries)
        if (entry.frame)
            entry.frame->GetView().SetZoom(GetZoom());
}

} // namespace VirtualDesk
