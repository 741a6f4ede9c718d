// SPDX-License-Identifier: MIT
#include "virtual-desk/light_list.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>
#include <cmath>

#include "common/light_name.h"

namespace VirtualDesk
{

namespace
{

using Hardware::ConsoleLightId;
using Hardware::ConsoleLights;

constexpr double Full = 0x00640000;
constexpr double MostPercent = 100;
constexpr int ButtonMargin = 12; // beside a button's text

QString GetName(ConsoleLightId id)
{
    return QString::fromLatin1(Tools::GetLightName(id));
}

const QString NotWanted = QStringLiteral(" (not wanted)");

/// "KeyboardDrawerLight" as words.
QString GetTitle(ConsoleLightId id)
{
    QString title;
    for (const QChar letter : GetName(id)) {
        if (!title.isEmpty() && (letter.isUpper() || letter.isDigit()))
            title += ' ';
        title += title.isEmpty() ? letter : letter.toLower();
    }
    return title.replace("Center", "Centre").replace("leds", "LEDs").replace("Lcds", "LCDs");
}

} // namespace

LightList::LightList(PendingLines& lines, QWidget* parent) : QWidget(parent), m_lines(lines)
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);

    m_seconds = new QDoubleSpinBox(this);
    m_seconds->setObjectName("fadeSeconds");
    m_seconds->setAccessibleName("Seconds that a light takes to its new level");
    m_seconds->setRange(0, 60);
    m_seconds->setDecimals(1);
    m_seconds->setSingleStep(0.5);
    m_seconds->setSuffix(" s");
    m_seconds->setSpecialValueText("at once");
    auto* const label = new QLabel("Set lights &over", this);
    label->setBuddy(m_seconds);
    auto* const legend = new QLabel(QString::fromUtf8("\u25B2 is what the user prefers"), this);
    legend->setForegroundRole(QPalette::PlaceholderText);
    legend->setToolTip("What a light goes back to behind the screen saver and at the next start. "
                       "Until settings are applied it is the library's own value.");

    auto* const top = new QHBoxLayout;
    top->addWidget(label);
    top->addWidget(m_seconds);
    top->addStretch();
    top->addWidget(legend);
    layout->addLayout(top);

    auto* const grid = new QGridLayout;
    grid->setVerticalSpacing(2);
    grid->setColumnStretch(1, 1);
    for (unsigned id = 0; id < Hardware::ConsoleLightCount; ++id)
        m_rows.at(id) = AddRow(*grid, static_cast<ConsoleLightId>(id));
    // Nothing moves when the longest title grows.
    grid->setColumnMinimumWidth(
        0, fontMetrics().horizontalAdvance(GetTitle(Hardware::KeyboardDrawerLight) + NotWanted));
    layout->addLayout(grid);
}

LightList::Row LightList::AddRow(QGridLayout& grid, ConsoleLightId id)
{
    const QString name = GetName(id);
    const auto row = static_cast<int>(id);
    auto* const bar = new LevelBar(this);
    bar->setObjectName("bar " + name);
    bar->setAccessibleName(GetTitle(id));

    QDoubleSpinBox* const target = MakeTarget(id);
    auto* const set = new QPushButton("Set", this);
    set->setObjectName("set " + name);
    set->setAccessibleName("Set " + GetTitle(id));
    set->setAutoDefault(false);
    set->setMaximumWidth(fontMetrics().horizontalAdvance(set->text()) + 2 * ButtonMargin);
    connect(set, &QPushButton::clicked, this, [this, id] { Send(id); });

    auto* const title = new QLabel(GetTitle(id), this);
    title->setObjectName("title " + name);
    grid.addWidget(title, row, 0);
    grid.addWidget(bar, row, 1);
    grid.addWidget(target, row, 2);
    grid.addWidget(set, row, 3);
    return {title, bar, target, false, std::nullopt};
}

QDoubleSpinBox* LightList::MakeTarget(ConsoleLightId id)
{
    auto* const target = new QDoubleSpinBox(this);
    target->setObjectName("level " + GetName(id));
    target->setAccessibleName("New level of " + GetTitle(id));
    target->setRange(0, MostPercent);
    target->setDecimals(1);
    target->setSingleStep(5);
    target->setSuffix(" %");
    target->setValue(ConsoleLights::Get().get(id) / Full * MostPercent);
    connect(target, &QDoubleSpinBox::valueChanged, this, [this, id] {
        if (!m_isFollowing)
            m_rows.at(id).isEdited = true;
    });
    if (const auto* const edit = target->findChild<QLineEdit*>())
        connect(edit, &QLineEdit::returnPressed, this, [this, id] { Send(id); });
    return target;
}

void LightList::Send(ConsoleLightId id)
{
    QDoubleSpinBox* const target = m_rows.at(id).target;
    target->interpretText();
    m_rows.at(id).isEdited = false;
    m_rows.at(id).sent = target->value();
    QString line = "light " + GetName(id) + '=' + ToNumber(target->value());
    if (m_seconds->value() > 0)
        line += '/' + ToNumber(m_seconds->value());
    m_lines.Do(line);
}

void LightList::Follow(Row& row, double percent)
{
    constexpr double Near = 0.1;
    if (row.sent && std::abs(percent - *row.sent) < Near)
        row.sent.reset();
    if (row.isEdited || row.sent || row.target->hasFocus())
        return;
    const QScopedValueRollback<bool> following(m_isFollowing, true);
    row.target->setValue(percent);
}

void LightList::Refresh()
{
    ConsoleLights& lights = ConsoleLights::Get();
    for (unsigned number = 0; number < Hardware::ConsoleLightCount; ++number) {
        const auto id = static_cast<ConsoleLightId>(number);
        const uires16 level = lights.get(id);
        m_rows.at(number).bar->SetLevel(level / Full,
                                        QString::fromStdString(Tools::FormatLevel(level)));
        m_rows.at(number).bar->SetMark(lights.get_preference(id) / Full);
        Follow(m_rows.at(number), level / Full * MostPercent);
    }
    // The only light that is asked for so.
    const auto drawer = Hardware::KeyboardDrawerLight;
    m_rows.at(drawer).title->setText(GetTitle(drawer) +
                                     (lights.get_preference_state(drawer) ? QString() : NotWanted));
}

} // namespace VirtualDesk
