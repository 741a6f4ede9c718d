// SPDX-License-Identifier: MIT
#include "virtual-desk/wing_accessible.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>
#include <map>

#include "virtual-desk/wing_words.h"

namespace VirtualDesk
{

namespace
{

QAccessible::Role GetRole(ControlKind kind)
{
    switch (kind) {
    case ControlKind::Button:
    case ControlKind::Touch:
        return QAccessible::Button;
    case ControlKind::Fader:
        return QAccessible::Slider;
    case ControlKind::Encoder:
    case ControlKind::Ring:
        return QAccessible::Dial;
    case ControlKind::Lcd:
    case ControlKind::Display:
        return QAccessible::StaticText;
    case ControlKind::Ball:
        return QAccessible::Graphic;
    case ControlKind::Drawer:
        return QAccessible::CheckBox;
    case ControlKind::Link:
        return QAccessible::Indicator;
    }
    return QAccessible::NoRole;
}

bool IsPressed(ControlKind kind)
{
    return kind == ControlKind::Button || kind == ControlKind::Touch;
}

bool HasNumber(ControlKind kind)
{
    return kind == ControlKind::Fader || kind == ControlKind::Encoder || kind == ControlKind::Ring;
}

/// One control of a view.
class ControlAccessible : public QAccessibleInterface,
                          public QAccessibleActionInterface,
                          public QAccessibleValueInterface
{
public:
    ControlAccessible(WingView& view, ControlId id) : m_view(&view), m_id(id) {}

    bool isValid() const override { return m_view && m_view->GetLayout().Find(m_id).has_value(); }
    QObject* object() const override { return nullptr; } // the view's part, not a widget
    QWindow* window() const override { return parent()->window(); }
    QAccessibleInterface* parent() const override
    {
        return QAccessible::queryAccessibleInterface(m_view);
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QAccessible::Role role() const override { return GetRole(m_id.kind); }

    QString text(QAccessible::Text kind) const override
    {
        switch (kind) {
        case QAccessible::Name:
            return GetFullName();
        case QAccessible::Value:
        case QAccessible::Description:
            return GetStateText(m_id, GetFace());
        case QAccessible::Help:
            return GetHint(m_id.kind);
        default:
            return {};
        }
    }
    void setText(QAccessible::Text, const QString&) override {}

    QRect rect() const override
    {
        const QRect rect = m_view->GetRectOf(m_id.kind, m_id.index);
        return {m_view->mapToGlobal(rect.topLeft()), rect.size()};
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        const ControlFace face = GetFace();
        state.focusable = true;
        state.focused = m_view->hasFocus() && m_view->GetFocused() == m_id;
        state.invisible = !m_view->isVisible();
        state.pressed = face.isDown;
        state.readOnly = actionNames().size() == 1;
        if (m_id.kind == ControlKind::Drawer) {
            state.checkable = true;
            state.checked = face.position == 1;
        }
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ActionInterface)
            return static_cast<QAccessibleActionInterface*>(this);
        if (type == QAccessible::ValueInterface && HasNumber(m_id.kind))
            return static_cast<QAccessibleValueInterface*>(this);
        return nullptr;
    }

    QStringList actionNames() const override
    {
        QStringList names{setFocusAction()};
        if (IsPressed(m_id.kind))
            names += pressAction();
        else if (m_id.kind == ControlKind::Drawer)
            names += toggleAction();
        else if (HasNumber(m_id.kind))
            names += {increaseAction(), decreaseAction()};
        return names;
    }

    void doAction(const QString& name) override
    {
        if (!isValid() || !actionNames().contains(name))
            return;
        WingHands& hands = m_view->GetHands();
        if (name == setFocusAction()) {
            m_view->setFocus();
            m_view->SetFocused(m_id);
        } else if (name == increaseAction() || name == decreaseAction()) {
            MoveBy(name == increaseAction() ? 1 : -1);
        } else {
            hands.Press(m_id);
            if (IsPressed(m_id.kind))
                hands.Release(m_id);
        }
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

    QVariant currentValue() const override { return GetFace().position; }
    void setCurrentValue(const QVariant& value) override
    {
        if (isValid() && value.canConvert<int>())
            MoveBy(value.toInt() - GetFace().position);
    }
    /// Only faders have ends.
    QVariant maximumValue() const override
    {
        return m_id.kind == ControlKind::Fader ? QVariant(FaderEnd) : QVariant();
    }
    QVariant minimumValue() const override
    {
        return m_id.kind == ControlKind::Fader ? QVariant(0) : QVariant();
    }
    QVariant minimumStepSize() const override { return 1; }

private:
    ControlFace GetFace() const { return m_view->GetFace(m_id.kind, m_id.index); }

    QString GetFullName() const
    {
        const QString name = GetControlName(m_id);
        const auto place = m_view->GetLayout().Find(m_id);
        const QString ids = place ? GetIdsText(m_view->GetLayout().GetControls()[*place]) : "";
        return ids.isEmpty() ? name : name + ", " + ids;
    }

    void MoveBy(int steps)
    {
        WingHands& hands = m_view->GetHands();
        if (m_id.kind == ControlKind::Fader)
            hands.MoveFader(m_id.index, GetFace().position + steps);
        else if (m_id.kind == ControlKind::Ring)
            hands.TurnRing(steps);
        else
            hands.Turn(m_id.index, steps);
    }

    const QPointer<WingView> m_view;
    const ControlId m_id;
};

/// A view, and its controls as children. Each is made when somebody first asks for it.
class ViewAccessible : public QAccessibleWidget
{
public:
    explicit ViewAccessible(WingView& view)
        : QAccessibleWidget(&view, QAccessible::Grouping), m_view(view)
    {
    }
    ~ViewAccessible() override
    {
        for (const auto& [control, id] : m_children)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override
    {
        return static_cast<int>(m_view.GetLayout().GetControls().size());
    }
    QAccessibleInterface* child(int index) const override
    {
        if (index < 0 || index >= childCount())
            return nullptr;
        const ControlId control =
            m_view.GetLayout().GetControls()[static_cast<std::size_t>(index)].id;
        const auto found = m_children.find(control);
        if (found != m_children.end())
            return QAccessible::accessibleInterface(found->second);
        auto* const made = new ControlAccessible(m_view, control);
        m_children[control] = QAccessible::registerAccessibleInterface(made);
        return made;
    }
    int indexOfChild(const QAccessibleInterface* child) const override
    {
        for (const auto& [control, id] : m_children)
            if (QAccessible::accessibleInterface(id) == child)
                return FindIndex(control);
        return -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        for (int index = 0; index < childCount(); ++index) {
            const ControlId id =
                m_view.GetLayout().GetControls()[static_cast<std::size_t>(index)].id;
            const QRect rect = m_view.GetRectOf(id.kind, id.index);
            if (rect.contains(m_view.mapFromGlobal(QPoint(x, y))))
                return child(index);
        }
        return nullptr;
    }
    QAccessibleInterface* focusChild() const override
    {
        return m_view.hasFocus() ? child(FindIndex(m_view.GetFocused())) : nullptr;
    }

private:
    int FindIndex(ControlId control) const
    {
        const auto place = m_view.GetLayout().Find(control);
        return place ? static_cast<int>(*place) : -1;
    }

    WingView& m_view;
    mutable std::map<ControlId, QAccessible::Id> m_children;
};

QAccessibleInterface* MakeAccessible(const QString&, QObject* object)
{
    auto* const view = qobject_cast<WingView*>(object);
    return view ? new ViewAccessible(*view) : nullptr;
}

} // namespace

void MakeWingsAccessible()
{
    static const bool isInstalled = [] {
        QAccessible::installFactory(MakeAccessible);
        return true;
    }();
    static_cast<void>(isInstalled);
}

void TellOfFace(WingView& view, std::size_t place, const ControlFace& before)
{
    if (!QAccessible::isActive())
        return;
    const ControlId id = view.GetLayout().GetControls()[place].id;
    const ControlFace face = view.GetFace(id.kind, id.index);
    const auto send = [&](QAccessibleEvent&& event) {
        event.setChild(static_cast<int>(place));
        QAccessible::updateAccessibility(&event);
    };
    if (face.isDown != before.isDown) {
        QAccessible::State changed;
        changed.pressed = true;
        send(QAccessibleStateChangeEvent(&view, changed));
    }
    if (HasNumber(id.kind) && face.position != before.position)
        send(QAccessibleValueChangeEvent(&view, face.position));
    else
        send(QAccessibleEvent(&view, QAccessible::DescriptionChanged));
}

void TellOfFocus(WingView& view, std::size_t place)
{
    if (!view.hasFocus())
        return;
    QAccessibleEvent event(&view, QAccessible::Focus);
    event.setChild(static_cast<int>(place));
    QAccessible::updateAccessibility(&event);
}

} // namespace VirtualDesk
