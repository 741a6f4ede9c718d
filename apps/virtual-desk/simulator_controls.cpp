// SPDX-License-Identifier: MIT
#include "virtual-desk/simulator_controls.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <set>

#include "virtual-desk/panel_parts.h"
#include "virtual-desk/timecode_readout.h"

namespace VirtualDesk
{

namespace
{

constexpr char Prefix[] = "sim ";
/// Of an item, its source's number.
constexpr int NumberRole = Qt::UserRole;
constexpr double HighestRate = 1000;
constexpr int ListRows = 4;

const QStringList& GetFormats()
{
    static const QStringList formats{"film24", "ebu25", "ntsc30", "smpte30"};
    return formats;
}

QLabel* MakeBuddyLabel(const QString& text, QWidget* buddy)
{
    auto* const label = new QLabel(text);
    label->setBuddy(buddy);
    return label;
}

QString Describe(const QString& source, const Console::TimecodeReading& reading)
{
    return source + (TimecodeReadout::IsSilent(reading) ? " \u2013 silent" : " \u2013 runs");
}

/// The numbers of the simulated sources, in their order, and their readings.
std::map<int, const Console::TimecodeReading*>
FindSources(const std::map<std::string, Console::TimecodeReading>& readings)
{
    std::map<int, const Console::TimecodeReading*> sources;
    for (const auto& [name, reading] : readings)
        if (name.starts_with(Prefix))
            sources[std::stoi(name.substr(sizeof Prefix - 1))] = &reading;
    return sources;
}

} // namespace

SimulatorControls::SimulatorControls(PendingLines& lines, QWidget* parent)
    : QWidget(parent), m_lines(lines)
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(MakeCreation());
    layout->addLayout(MakeList());
    layout->addLayout(MakeChanges());
    connect(&m_lines, &PendingLines::done, this, &SimulatorControls::TakeOutcome);
    RefreshButtons();
}

QLayout* SimulatorControls::MakeCreation()
{
    m_newRate = new QComboBox;
    m_newRate->setObjectName("simNewRate");
    m_newRate->setAccessibleName("Rate or format of the new source");
    m_newRate->setToolTip("Frames per second, or a format");
    m_newRate->setEditable(true);
    m_newRate->addItems(QStringList{"25", "24", "30", "29.97"} + GetFormats());
    m_newStart = MakeFrameEdit("simNewStart", "First frame of the new source");
    m_newBackwards = new QCheckBox("Bac&kwards");
    m_newBackwards->setObjectName("simNewBackwards");
    m_newBackwards->setAccessibleName("The new source runs backwards");
    m_create = MakeButton("simCreate", "&Create", "Create a simulated source");
    connect(m_create, &QPushButton::clicked, this, &SimulatorControls::Create);
    connect(m_newRate, &QComboBox::editTextChanged, this, &SimulatorControls::RefreshButtons);
    connect(m_newStart, &QLineEdit::textChanged, this, &SimulatorControls::RefreshButtons);

    auto* const grid = new QGridLayout;
    grid->addWidget(MakeBuddyLabel("New: rate", m_newRate), 0, 0);
    grid->addWidget(m_newRate, 0, 1);
    grid->addWidget(MakeBuddyLabel("from", m_newStart), 0, 2);
    grid->addWidget(m_newStart, 0, 3);
    grid->addWidget(m_newBackwards, 1, 1);
    grid->addWidget(m_create, 1, 3);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    return grid;
}

QLayout* SimulatorControls::MakeList()
{
    m_list = new QListWidget;
    m_list->setObjectName("simList");
    m_list->setAccessibleName("Simulated sources");
    m_list->setFixedHeight(ListRows * (fontMetrics().height() + 4));
    connect(m_list, &QListWidget::currentRowChanged, this, &SimulatorControls::RefreshButtons);

    auto* const verbs = new QGridLayout;
    verbs->addWidget(MakeVerb("simStart", "&Start", "start"), 0, 0);
    verbs->addWidget(MakeVerb("simStop", "S&top", "stop"), 0, 1);
    verbs->addWidget(MakeVerb("simEnable", "E&nable", "enable"), 1, 0);
    verbs->addWidget(MakeVerb("simDisable", "Disa&ble", "disable"), 1, 1);
    verbs->addWidget(MakeVerb("simDestroy", "&Destroy", "destroy"), 2, 0, 1, 2);
    auto* const row = new QHBoxLayout;
    row->addWidget(m_list, 1);
    row->addLayout(verbs);
    return row;
}

QLayout* SimulatorControls::MakeChanges()
{
    m_rate = new QDoubleSpinBox;
    m_rate->setObjectName("simRate");
    m_rate->setAccessibleName("Rate in frames per second; below 0 it runs backwards");
    m_rate->setToolTip("Below 0 it runs backwards");
    m_rate->setRange(-HighestRate, HighestRate);
    m_rate->setValue(25);
    m_rate->setSuffix(" frames/s");
    m_format = new QComboBox;
    m_format->setObjectName("simFormat");
    m_format->setAccessibleName("Format");
    m_format->addItems(GetFormats());
    m_format->setCurrentText("ebu25");
    m_frame = MakeFrameEdit("simFrame", "Frame to go to");
    QPushButton* const setRate = MakeVerb("simSetRate", "Set &rate", {});
    QPushButton* const setFormat = MakeVerb("simSetFormat", "Set format", {});
    m_jump = MakeVerb("simJump", "&Go to", {});
    connect(setRate, &QPushButton::clicked, this,
            [this] { Do("rate " + ToNumber(m_rate->value())); });
    connect(setFormat, &QPushButton::clicked, this,
            [this] { Do("format " + m_format->currentText()); });
    connect(m_jump, &QPushButton::clicked, this, [this] { Do("jump " + m_frame->text()); });
    connect(m_frame, &QLineEdit::textChanged, this, &SimulatorControls::RefreshButtons);
    connect(m_frame, &QLineEdit::returnPressed, m_jump, &QPushButton::click);

    auto* const grid = new QGridLayout;
    grid->addWidget(m_rate, 0, 0);
    grid->addWidget(setRate, 0, 1);
    grid->addWidget(m_format, 1, 0);
    grid->addWidget(setFormat, 1, 1);
    grid->addWidget(m_frame, 2, 0);
    grid->addWidget(m_jump, 2, 1);
    grid->setColumnStretch(0, 1);
    return grid;
}

/// @param verb empty for a button that its maker connects
QPushButton* SimulatorControls::MakeVerb(const QString& name, const QString& text,
                                         const QString& verb)
{
    QPushButton* const button =
        MakeButton(name, text, QString(text).remove('&') + " for the selected source");
    m_verbs.append(button);
    if (!verb.isEmpty())
        connect(button, &QPushButton::clicked, this, [this, verb] { Do(verb); });
    return button;
}

void SimulatorControls::Create()
{
    QString description = m_newRate->currentText().trimmed() + ",start=" + m_newStart->text();
    if (m_newBackwards->isChecked())
        description += ",backwards";
    const int number = GetFreeNumber();
    const QString line = QString("sim %1 create %2").arg(number).arg(ToWord(description));
    m_asked[line] = number;
    m_lines.Do(line);
}

/// A source that was made is listed when its first frame came.
void SimulatorControls::TakeOutcome(const QString& line, const QString& error)
{
    if (!error.isEmpty())
        m_asked.erase(line);
}

void SimulatorControls::Do(const QString& verb)
{
    if (const QListWidgetItem* const item = m_list->currentItem())
        m_lines.Do(QString("sim %1 ").arg(item->data(NumberRole).toInt()) + verb);
}

/// The lowest number that no source has or will have.
int SimulatorControls::GetFreeNumber() const
{
    std::set<int> taken;
    for (int row = 0; row < m_list->count(); ++row)
        taken.insert(m_list->item(row)->data(NumberRole).toInt());
    for (const auto& [line, number] : m_asked)
        taken.insert(number);
    int number = 1;
    while (taken.contains(number))
        ++number;
    return number;
}

void SimulatorControls::Refresh(const std::map<std::string, Console::TimecodeReading>& readings)
{
    const auto sources = FindSources(readings);
    std::erase_if(m_asked, [&](const auto& asked) { return sources.contains(asked.second); });
    int row = 0;
    for (const auto& [number, reading] : sources) {
        while (row < m_list->count() && m_list->item(row)->data(NumberRole).toInt() < number)
            delete m_list->takeItem(row);
        if (row == m_list->count() || m_list->item(row)->data(NumberRole).toInt() != number) {
            auto* const item = new QListWidgetItem;
            item->setData(NumberRole, number);
            m_list->insertItem(row, item);
        }
        SetTextOf(*m_list->item(row), Describe(Prefix + QString::number(number), *reading));
        ++row;
    }
    while (m_list->count() > row)
        delete m_list->takeItem(row);
    if (!m_list->currentItem() && m_list->count() > 0)
        m_list->setCurrentRow(0);
}

void SimulatorControls::RefreshButtons()
{
    const bool isSelected = m_list->currentItem() != nullptr;
    for (QPushButton* const button : m_verbs)
        button->setEnabled(isSelected);
    m_jump->setEnabled(isSelected && m_frame->hasAcceptableInput());
    m_create->setEnabled(!m_newRate->currentText().trimmed().isEmpty() &&
                         m_newStart->hasAcceptableInput());
}

} // namespace VirtualDesk
