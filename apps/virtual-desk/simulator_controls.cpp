// SPDX-License-Identifier: MIT
#include "virtual-desk/simulator_controls.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QScopedValueRollback>
#include <QVBoxLayout>
#include <set>
#include <utility>

#include "common/timecode_source.h"
#include "virtual-desk/panel_parts.h"
#include "virtual-desk/timecode_readout.h"

namespace VirtualDesk
{

namespace
{

/// Of an item, its source's number.
constexpr int NumberRole = Qt::UserRole;
constexpr double HighestRate = 1000;
constexpr int ListRows = 4;

QStringList ListFormats()
{
    QStringList names;
    for (const auto& [name, format] : Tools::TimecodeSource::GetFormats())
        names += QString::fromStdString(name);
    return names;
}

/// In the list of formats; -1 for none of them.
int GetPlace(Hardware::TimecodeFormat wanted)
{
    int place = 0;
    for (const auto& [name, format] : Tools::TimecodeSource::GetFormats()) {
        if (format == wanted)
            return place;
        ++place;
    }
    return -1;
}

QLabel* MakeBuddyLabel(const QString& text, QWidget* buddy)
{
    auto* const label = new QLabel(text);
    label->setBuddy(buddy);
    return label;
}

std::string GetName(unsigned number)
{
    return "sim " + std::to_string(number);
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
    m_newRate->addItems(QStringList{"25", "24", "30", "29.97"} + ListFormats());
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
    connect(m_list, &QListWidget::currentRowChanged, this, &SimulatorControls::ShowSelected);

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
    m_rate->setSuffix(" frames/s");
    m_format = new QComboBox;
    m_format->setObjectName("simFormat");
    m_format->setAccessibleName("Format");
    m_format->addItems(ListFormats());
    m_format->setCurrentIndex(-1);
    m_format->setPlaceholderText("no format");
    m_frame = MakeFrameEdit("simFrame", "Frame to go to");
    QPushButton* const setRate = MakeVerb("simSetRate", "Set &rate", {});
    m_setFormat = MakeVerb("simSetFormat", "Set format", {});
    m_jump = MakeVerb("simJump", "&Go to", {});
    connect(setRate, &QPushButton::clicked, this,
            [this] { Do("rate " + ToNumber(m_rate->value())); });
    connect(m_setFormat, &QPushButton::clicked, this,
            [this] { Do("format " + m_format->currentText()); });
    connect(m_jump, &QPushButton::clicked, this, [this] { Do("jump " + m_frame->text()); });
    connect(m_frame, &QLineEdit::returnPressed, m_jump, &QPushButton::click);
    const auto noteEdit = [this](bool Edits::*edit) {
        return [this, edit] {
            m_edits.*edit = m_edits.*edit || !m_isFollowing;
            RefreshButtons();
        };
    };
    connect(m_rate, &QDoubleSpinBox::valueChanged, this, noteEdit(&Edits::rate));
    connect(m_format, &QComboBox::currentIndexChanged, this, noteEdit(&Edits::format));
    connect(m_frame, &QLineEdit::textChanged, this, noteEdit(&Edits::frame));

    auto* const grid = new QGridLayout;
    grid->addWidget(m_rate, 0, 0);
    grid->addWidget(setRate, 0, 1);
    grid->addWidget(m_format, 1, 0);
    grid->addWidget(m_setFormat, 1, 1);
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

/// What was edited is set, or a source was made or could not be.
void SimulatorControls::TakeOutcome(const QString& line, const QString& error)
{
    m_asked.erase(line);
    const QString begin = QStringLiteral("sim %1 ").arg(m_shown);
    if (!error.isEmpty() || !line.startsWith(begin))
        return;
    const QString verb = line.mid(begin.size()).section(' ', 0, 0);
    m_edits.rate = m_edits.rate && verb != "rate";
    m_edits.format = m_edits.format && verb != "format";
    m_edits.frame = m_edits.frame && verb != "jump";
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
    for (const auto& [number, source] : m_sources)
        taken.insert(static_cast<int>(number));
    for (const auto& [line, number] : m_asked)
        taken.insert(number);
    int number = 1;
    while (taken.contains(number))
        ++number;
    return number;
}

void SimulatorControls::Refresh(std::map<unsigned, Console::SimulatorState> sources,
                                std::map<std::string, Console::TimecodeReading> readings)
{
    m_sources = std::move(sources);
    m_readings = std::move(readings);
    RefreshList();
    ShowSelected();
}

const Console::TimecodeReading* SimulatorControls::FindReading(unsigned number) const
{
    const auto found = m_readings.find(GetName(number));
    return found == m_readings.end() ? nullptr : &found->second;
}

void SimulatorControls::RefreshList()
{
    int row = 0;
    for (const auto& [number, source] : m_sources) {
        const auto getNumber = [this](int at) {
            return m_list->item(at)->data(NumberRole).toUInt();
        };
        while (row < m_list->count() && getNumber(row) < number)
            delete m_list->takeItem(row);
        if (row == m_list->count() || getNumber(row) != number) {
            auto* const item = new QListWidgetItem;
            item->setData(NumberRole, number);
            m_list->insertItem(row, item);
        }
        const Console::TimecodeReading* const reading = FindReading(number);
        const bool runs = reading && !TimecodeReadout::IsSilent(*reading);
        SetTextOf(*m_list->item(row), QString::fromStdString(GetName(number)) +
                                          (runs ? " \u2013 runs" : " \u2013 silent"));
        ++row;
    }
    while (m_list->count() > row)
        delete m_list->takeItem(row);
    if (!m_list->currentItem() && m_list->count() > 0)
        m_list->setCurrentRow(0);
}

void SimulatorControls::ShowSelected()
{
    const QListWidgetItem* const item = m_list->currentItem();
    const int number = item ? item->data(NumberRole).toInt() : NoSource;
    if (std::exchange(m_shown, number) != number) {
        m_edits = {};
        m_framesShown.reset();
    }
    const QScopedValueRollback<bool> following(m_isFollowing, true);
    const auto source = m_sources.find(static_cast<unsigned>(number));
    if (item && source != m_sources.end())
        ShowRate(source->second);
    if (const auto* const reading = FindReading(static_cast<unsigned>(number)))
        ShowFrame(*reading);
    RefreshButtons();
}

void SimulatorControls::ShowRate(const Console::SimulatorState& source)
{
    if (!m_edits.rate)
        m_rate->setValue(source.rate);
    if (!m_edits.format)
        m_format->setCurrentIndex(GetPlace(source.format));
}

/// Nobody could edit a frame that runs along, so it is the one when the source was selected. Where
/// the source stands still, it is the last one, unless the user sent it elsewhere since.
void SimulatorControls::ShowFrame(const Console::TimecodeReading& reading)
{
    const bool isNew =
        !m_framesShown || (*m_framesShown != reading.frames && TimecodeReadout::IsSilent(reading));
    if (m_edits.frame || !isNew)
        return;
    SetTextOf(*m_frame, QString::fromStdString(reading.frame.toString()));
    m_framesShown = reading.frames;
}

void SimulatorControls::RefreshButtons()
{
    const bool isSelected = m_list->currentItem() != nullptr;
    for (QPushButton* const button : m_verbs)
        button->setEnabled(isSelected);
    m_setFormat->setEnabled(isSelected && m_format->currentIndex() >= 0);
    m_jump->setEnabled(isSelected && m_frame->hasAcceptableInput());
    m_create->setEnabled(!m_newRate->currentText().trimmed().isEmpty() &&
                         m_newStart->hasAcceptableInput());
}

} // namespace VirtualDesk
