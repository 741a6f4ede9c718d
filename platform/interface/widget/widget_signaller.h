// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <list>
#include <memory>

#include "platform_export.h"
#include "widget/um_widget.h"

namespace Hardware
{

/// Watches classes of widgets and signals what becomes of them.
///
/// Signals are raised on the driver's thread. Any thread may call any operation, but one that
/// holds a lock which a connected slot takes must not call RegisterWidgetClass() or the
/// destructor: both wait for slots.
class PLATFORM_EXPORT WidgetSignaller : public QObject
{
    Q_OBJECT

public:
    /// What a widget reported.
    struct Event {
        WidgetMapData mapData;
        const UmWidget::Event* event = nullptr; ///< may be null; valid during the signal only
    };

    /// @param reader decodes reports where widgets are read automatically; null for none
    /// @param parent the owner, and the context that the reader is given
    explicit WidgetSignaller(WidgetReader reader = nullptr, QObject* parent = nullptr);
    /// Ends the signals and waits for one that is being raised, unless on the driver's thread.
    ~WidgetSignaller() override;

    /// Whether widgets of registered classes are opened and read as soon as they appear. At first
    /// they are not. Call it before registering.
    void SetAutoReadRegister(bool autoRead);

    /// Starts to watch a class. widgetAdded() is raised for every widget of it that is attached
    /// already, and those slots have run when this returns. True also when the class was
    /// registered; nothing is reported then. False when the driver is shutting down.
    bool RegisterWidgetClass(const GUID* classId);
    /// Ends that and raises nothing; widgets that were read stay open. Widgets of the class are
    /// still counted: those that are attached keep their index until they are detached, and those
    /// that are attached later get one. Does not wait for a signal that is being raised. False when
    /// the class was not registered.
    bool UnregisterWidgetClass(const GUID* classId);

    /// A widget's index, the lowest that was free when it appeared; -1 when it is unknown.
    int GetWidgetIndex(const WidgetMapData& mapData) const;
    /// The widget of an index; one that stands for no device when the index is free.
    WidgetMapData GetWidget(int index) const;
    /// Attached widgets of every class that was registered at least once, in the order of their
    /// index.
    std::list<WidgetMapData> GetActiveWidgets() const;
    int GetActiveWidgetCount() const;

    struct State;

Q_SIGNALS:
    void widgetAdded(const Hardware::WidgetMapData& mapData);
    /// Raised while the widget's index is still known.
    void widgetRemoved(const Hardware::WidgetMapData& mapData);
    void widgetRead(const Hardware::WidgetSignaller::Event& event);

private:
    friend class WidgetDriver;

    const std::shared_ptr<State> m_state;
};

} // namespace Hardware
