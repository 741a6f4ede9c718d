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
    : QFrame(parent), m_widget(widget), m_view(new WingView(widget, hands, this)),
      m_unplug(new QToolButton(this)), m_identity(new LineLabel(this)),
      m_levels(new LineLabel(this)), m_status(new LineLabel(this))
{
    const QString path = GetPath(widget);
    setFrameShape(QFrame::StyledPanel);
    m_identity->setObjectName("identity-" + path);
    m_levels->setObjectName("levels-" + path);
    m_status->setObjectName("status-" + path);
    m_status->setAlignment(Qt::AlignRight);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(Spacing * 2, Spacing, Spacing * 2, Spacing * 2);
    layout->setSpacing(2);
    layout->addWidget(MakeHeader());
    layout->addWidget(m_identity);
    auto* const facts = new QHBoxLayout();
    facts->addWidget(m_levels, 2);
    facts->addWidget(m_status, 1);
    layout->addLayout(facts);
    layout->addWidget(m_view, 0, Qt::AlignLeft | Qt::AlignTop);
    m_identity->ShowText(GetIdentity(widget));
    Refresh({});
}

/// Name and path, and the button.
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
    connect(m_unplug, &QToolButton::clicked, this, &WingFrame::unplugWanted);
    auto* const row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(name);
    row->addStretch();
    row->addWidget(m_unplug);
    return header;
}

void WingFrame::Refresh(std::chrono::milliseconds now)
{
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
