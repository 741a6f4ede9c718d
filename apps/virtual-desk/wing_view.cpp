// SPDX-License-Identifier: MIT
#include "virtual-desk/wing_view.h"

#include <QHelpEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>
#include <utility>

#include "virtual-desk/wing_accessible.h"
#include "virtual-desk/wing_painter.h"
#include "virtual-desk/wing_words.h"

namespace VirtualDesk
{

namespace
{

using std::chrono::milliseconds;

constexpr milliseconds BlinkTime{400}; ///< on, and as long off
constexpr milliseconds BeaconTime{2000};
/// The focus ring stands so far out.
constexpr int RingWidth = 4;
constexpr std::size_t GroupsOfSections = 3; ///< of a model that beacons by section

} // namespace

WingView::WingView(const Desk::VirtualWidget& widget, WingHands& hands, QWidget* parent)
    : QWidget(parent), m_widget(widget), m_hands(hands),
      m_layout(widget.GetModel(), CountDisplays(widget)), m_displays(CountDisplays(widget)),
      m_faces(m_layout.GetControls().size())
{
    MakeWingsAccessible(); // before the first name, which has Qt ask how the view is to be known
    const QString path = QString::fromStdWString(widget.GetData().path);
    setObjectName("wing-" + path);
    setAccessibleName(QString::fromStdString(widget.GetModel().name) + ' ' + path);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setMouseTracking(true);
    RefreshFaces();
    DescribeFocused();
}

WingView::~WingView() = default;

QSize WingView::sizeHint() const
{
    return (QSizeF(m_layout.GetSize()) * m_zoom).toSize();
}

void WingView::SetZoom(double zoom)
{
    m_zoom = zoom;
    updateGeometry();
    update();
}

void WingView::LetGo()
{
    m_grip.reset();
    m_keyed.reset();
    m_hands.ReleaseAll();
}

QRect WingView::MapRect(const QRect& rect) const
{
    return QRectF(rect.x() * m_zoom, rect.y() * m_zoom, rect.width() * m_zoom,
                  rect.height() * m_zoom)
        .toAlignedRect();
}

QRect WingView::GetRectOf(ControlKind kind, int index) const
{
    const auto place = m_layout.Find({kind, index});
    return place ? MapRect(m_layout.GetControls()[*place].rect) : QRect();
}

ControlFace WingView::GetFace(ControlKind kind, int index) const
{
    const auto place = m_layout.Find({kind, index});
    return place ? m_faces[*place] : ControlFace();
}

void WingView::Refresh(milliseconds now, const WingFacts& facts)
{
    m_hands.Flush();
    if (std::exchange(m_isAsleep, facts.isAsleep) != facts.isAsleep)
        update();
    RefreshLayout();
    RefreshBlink(now);
    RefreshBeacon(now, facts);
    for (const PlacedControl& control : m_layout.GetControls())
        if (control.id.kind == ControlKind::Fader)
            m_hands.FollowMotor(control.id.index,
                                m_widget.GetFader(static_cast<std::uint16_t>(control.id.index)));
    RefreshFaces();
}

/// More displays of an expansion wing may be in use than there were.
void WingView::RefreshLayout()
{
    const int displays = CountDisplays(m_widget);
    if (std::exchange(m_displays, displays) == displays)
        return;
    const ControlId focused = GetFocused();
    m_grip.reset();
    m_layout = WingLayout(m_widget.GetModel(), displays);
    m_faces.assign(m_layout.GetControls().size(), ControlFace());
    m_focus = m_layout.Find(focused).value_or(0);
    updateGeometry();
    update();
}

void WingView::RefreshFaces()
{
    const auto& controls = m_layout.GetControls();
    for (std::size_t place = 0; place < controls.size(); ++place) {
        ControlFace face = ReadFace(m_widget, m_hands, controls[place]);
        if (face == m_faces[place])
            continue;
        const ControlFace before = std::exchange(m_faces[place], std::move(face));
        RepaintControl(place);
        TellOfFace(*this, place, before);
        if (place == m_focus)
            DescribeFocused();
    }
}

void WingView::RefreshBlink(milliseconds now)
{
    const bool isOn = now / BlinkTime % 2 == 0;
    if (std::exchange(m_isBlinkOn, isOn) == isOn)
        return;
    for (std::size_t place = 0; place < m_faces.size(); ++place)
        if (m_faces[place].lamp == Lamp::Flash)
            RepaintControl(place);
    if (m_isBeaconing)
        update();
}

/// What the widget beaconed before the view was made is past.
void WingView::RefreshBeacon(milliseconds now, const WingFacts& facts)
{
    const std::size_t before = std::exchange(m_beacons, facts.beacons).value_or(facts.beacons);
    if (facts.beacons > before) {
        m_section = facts.section;
        m_beaconEnd = now + BeaconTime;
    }
    const bool isBeaconing = now < m_beaconEnd;
    if (std::exchange(m_isBeaconing, isBeaconing) != isBeaconing)
        update();
}

void WingView::RepaintControl(std::size_t place)
{
    const QRect& rect = m_layout.GetControls()[place].rect;
    update(MapRect(rect.adjusted(-RingWidth, -RingWidth, RingWidth, RingWidth)));
}

/// The part of the wing that identifies itself.
QRect WingView::GetBeaconRect() const
{
    const auto& groups = m_layout.GetGroups();
    if (m_section <= 0 || groups.size() < GroupsOfSections)
        return {QPoint(), m_layout.GetSize()};
    if (m_section < static_cast<int>(GroupsOfSections))
        return groups[static_cast<std::size_t>(m_section - 1)].rect;
    QRect rest;
    for (std::size_t group = GroupsOfSections - 1; group < groups.size(); ++group)
        rest = rest.united(groups[group].rect);
    return rest;
}

void WingView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.setFont(font());
    painter.scale(m_zoom, m_zoom);
    const WingPainter wing(painter, palette(), m_isBlinkOn, m_isAsleep);
    wing.PaintBody(m_layout);
    const auto& controls = m_layout.GetControls();
    for (std::size_t place = 0; place < controls.size(); ++place)
        if (event->region().intersects(MapRect(controls[place].rect)))
            wing.Paint(controls[place], m_faces[place]);
    if (hasFocus() && m_focus < controls.size())
        wing.PaintFocus(controls[m_focus].rect);
    if (m_isBeaconing)
        wing.PaintBeacon(GetBeaconRect());
}

ControlId WingView::GetFocused() const
{
    const auto& controls = m_layout.GetControls();
    return m_focus < controls.size() ? controls[m_focus].id : ControlId();
}

void WingView::SetFocused(ControlId id)
{
    if (const auto place = m_layout.Find(id))
        MoveFocus(*place);
}

void WingView::MoveFocus(std::size_t place)
{
    if (place != m_focus) {
        ReleaseKeyed();
        RepaintControl(m_focus);
        m_focus = place;
    }
    RepaintControl(m_focus);
    DescribeFocused();
    TellOfFocus(*this, place);
    Q_EMIT focusMoved(MapRect(m_layout.GetControls()[place].rect));
}

/// Tells who does not see it which control has the keyboard, and how it stands.
void WingView::DescribeFocused()
{
    if (m_focus >= m_faces.size())
        return;
    const PlacedControl& control = m_layout.GetControls()[m_focus];
    QString text = GetControlName(control.id);
    if (control.hasIds)
        text += ", " + GetIdsText(control);
    setAccessibleDescription(text + ": " + GetStateText(control.id, m_faces[m_focus]));
}

QString WingView::GetToolTip(std::size_t place) const
{
    const PlacedControl& control = m_layout.GetControls()[place];
    QString text = GetControlName(control.id);
    if (control.hasIds)
        text += QStringLiteral(" (%1)").arg(GetIdsText(control));
    text += '\n' + GetStateText(control.id, m_faces[place]);
    const QString hint = GetHint(control.id.kind);
    return hint.isEmpty() ? text : text + '\n' + hint;
}

bool WingView::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* const help = static_cast<QHelpEvent*>(event);
    const auto place = m_layout.FindAt(MapPoint(help->pos()).toPoint());
    if (place)
        QToolTip::showText(help->globalPos(), GetToolTip(*place), this,
                           MapRect(m_layout.GetControls()[*place].rect));
    else
        QToolTip::hideText();
    return true;
}

} // namespace VirtualDesk
