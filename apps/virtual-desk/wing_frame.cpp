// SPDX-License-Identifier: MIT
#include "virtual-desk/wing_frame.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "virtual-desk/wing_words.h"

namespace VirtualDesk
{

namespace
{

constexpr int Spacing = 4;
constexpr int HeaderWidth = 260; ///< so that small widgets' headers can be read

QString GetPath(const Desk::VirtualWidget& widget)
{
    return QString::fromStdWString(widget.GetData().path);
}

} // namespace

WingFrame::WingFrame(const Desk::VirtualWidget& widget, WingHands& hands, QWidget* parent)
    : QFrame(parent), m_widget(widget), m_hands(hands), m_unplug(new QToolButton(this)),
      m_plug(new QPushButton(QStringLiteral("Plug in"), this)), m_identity(new LineLabel(this)),
      m_levels(new LineLabel(this)), m_status(new LineLabel(this)),
      m_naturalSize(WingLayout(widget.GetModel(), CountDisplays(widget)).GetSize())
{
    const QString path = GetPath(widget);
    setFrameShape(QFrame::StyledPanel);
    m_identity->setObjectName("identity-" + path);
    m_levels->setObjectName("levels-" + path);
    m_status->setObjectName("status-" + path);
    m_status->setAlignment(Qt::AlignRight);
    m_status->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(Spacing * 2, Spacing, Spacing * 2, Spacing * 2);
    layout->setSpacing(2);
    layout->addWidget(MakeHeader());
    layout->addWidget(m_identity);
    auto* const facts = new QHBoxLayout();
    facts->addWidget(m_levels, 1);
    facts->addWidget(m_status);
    layout->addLayout(facts);
    layout->addWidget(MakeEmptyPlace(), 0, Qt::AlignLeft | Qt::AlignTop);
    m_identity->ShowText(GetIdentity(widget));
    m_unplug->hide();
    Refresh({});
}

/// Name and path, and the button that unplugs.
QWidget* WingFrame::MakeHeader()
{
    const QString path = GetPath(m_widget);
    auto* const header = new QWidget(this);
    header->setMinimumWidth(HeaderWidth);
    auto* const name =
        new QLabel(QStringLiteral("<b>%1</b>&nbsp; %2")
                       .arg(QString::fromStdString(m_widget.GetModel().name), path.toHtmlEscaped()),
                   header);
    name->setTextFormat(Qt::RichText);
    m_unplug->setObjectName("unplug-" + path);
    m_unplug->setText(QStringLiteral("Unplug"));
    m_unplug->setFocusPolicy(Qt::StrongFocus);
    m_unplug->setAccessibleName("Unplug " + path);
    m_unplug->setToolTip(QStringLiteral("Pull %1 out").arg(path));
    QSizePolicy policy = m_unplug->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_unplug->setSizePolicy(policy);
    connect(m_unplug, &QToolButton::clicked, this, &WingFrame::unplugWanted);
    auto* const row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(name);
    row->addStretch();
    row->addWidget(m_unplug);
    return header;
}

/// The button stands in the middle: where "Unplug" was, a second click must not plug in again.
QWidget* WingFrame::MakeEmptyPlace()
{
    const QString path = GetPath(m_widget);
    m_plug->setObjectName("plug-" + path);
    m_plug->setAccessibleName("Plug in " + path);
    m_plug->setToolTip(QStringLiteral("Plug %1 in").arg(path));
    m_plug->setAutoDefault(false);
    connect(m_plug, &QPushButton::clicked, this, &WingFrame::plugWanted);
    m_emptyPlace = new QWidget(this);
    auto* const layout = new QVBoxLayout(m_emptyPlace);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_plug, 0, Qt::AlignCenter);
    ResizeEmptyPlace();
    return m_emptyPlace;
}

void WingFrame::ResizeEmptyPlace()
{
    m_emptyPlace->setFixedSize(
        (QSizeF(m_naturalSize) * m_zoom).toSize().expandedTo(m_plug->sizeHint()));
}

void WingFrame::SetPlugged(bool isPlugged)
{
    if (isPlugged == (m_view != nullptr))
        return;
    if (isPlugged) {
        m_view = new WingView(m_widget, m_hands, this);
        m_view->SetZoom(m_zoom);
        layout()->addWidget(m_view);
        layout()->setAlignment(m_view, Qt::AlignLeft | Qt::AlignTop);
    } else {
        m_naturalSize = m_view->GetLayout().GetSize();
        m_view->LetGo();
        layout()->removeWidget(m_view);
        m_view->hide();
        m_view->deleteLater();
        m_view = nullptr;
        ResizeEmptyPlace();
    }
    m_unplug->setVisible(isPlugged);
    m_emptyPlace->setVisible(!isPlugged);
}

void WingFrame::SetZoom(double zoom)
{
    m_zoom = zoom;
    ResizeEmptyPlace();
    if (m_view)
        m_view->SetZoom(zoom);
}

int WingFrame::GetNaturalWidth() const
{
    return m_view ? m_view->GetLayout().GetSize().width() : m_naturalSize.width();
}

int WingFrame::GetBorderWidth() const
{
    const QMargins margins = layout()->contentsMargins() + contentsMargins();
    return margins.left() + margins.right();
}

void WingFrame::Refresh(std::chrono::milliseconds now)
{
    if (!m_view) {
        m_hands.Flush();
        m_levels->ShowText(QString());
        m_status->ShowText(QStringLiteral("unplugged"));
        return;
    }
    const WingFacts facts = ReadFacts(m_widget);
    m_view->Refresh(now, facts);
    m_levels->ShowText(facts.levels.isEmpty() ? QStringLiteral("no lights set") : facts.levels);
    QString status;
    if (facts.isStuck)
        status += QStringLiteral("\u26A0 stuck, ");
    if (facts.isAsleep)
        status += QStringLiteral("asleep, ");
    if (m_view->IsBeaconing())
        status += QStringLiteral("beacon %1, ").arg(GetSectionName(facts.section));
    m_status->ShowText(status + facts.status);
}

} // namespace VirtualDesk
