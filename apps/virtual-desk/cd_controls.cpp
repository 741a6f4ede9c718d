// SPDX-License-Identifier: MIT
#include "virtual-desk/cd_controls.h"

#include <QFileDialog>
#include <QGridLayout>
#include <QHeaderView>
#include <QVBoxLayout>
#include <algorithm>

#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

using Status = Desk::CdDrive::Status;

enum Column { Column_Number, Column_Title, Column_Start, Column_Length, ColumnCount };

constexpr int ShownRows = 6;

QString ToText(int frames)
{
    return QString::fromStdString(Desk::ToCdText(frames));
}

bool IsSame(const Desk::CdTrack& left, const Desk::CdTrack& right)
{
    return left.title == right.title && left.isData == right.isData &&
           left.pregap == right.pregap && left.indices == right.indices;
}

bool IsSame(const Desk::CdDisc& left, const Desk::CdDisc& right)
{
    return left.title == right.title && left.firstNumber == right.firstNumber &&
           left.leadOut == right.leadOut &&
           std::equal(left.tracks.begin(), left.tracks.end(), right.tracks.begin(),
                      right.tracks.end(),
                      [](const auto& one, const auto& other) { return IsSame(one, other); });
}

QString GetTitle(const Desk::CdTrack& track)
{
    if (track.isData)
        return "(data)";
    return track.title.empty() ? QString("(no title)") : QString::fromStdString(track.title);
}

QString Describe(Status status)
{
    switch (status) {
    case Status::Playing:
        return "\u25B6 playing";
    case Status::Paused:
        return "\u275A\u275A paused";
    default:
        return "\u25A0 stopped";
    }
}

} // namespace

CdControls::CdControls(PendingLines& lines, const Desk::VirtualDesk& desk, QWidget* parent)
    : QWidget(parent), m_lines(lines), m_desk(desk),
      m_status(MakeLabel("cdStatus", "What the CD drive does")),
      m_place(MakeLabel("cdPlace", "Where the disc is"))
{
    m_status->setWordWrap(true);
    MakeTable();
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_status);
    layout->addWidget(m_place);
    layout->addWidget(m_tracks);
    layout->addLayout(MakeKeys());
    Refresh();
}

void CdControls::MakeTable()
{
    m_tracks = new QTableWidget(0, ColumnCount);
    m_tracks->setObjectName("cdTracks");
    m_tracks->setAccessibleName("Tracks of the disc");
    m_tracks->setToolTip("A double click plays a track");
    m_tracks->setHorizontalHeaderLabels({"No.", "Title", "Start", "Length"});
    m_tracks->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_tracks->horizontalHeader()->setSectionResizeMode(Column_Title, QHeaderView::Stretch);
    m_tracks->verticalHeader()->hide();
    m_tracks->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    m_tracks->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_tracks->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tracks->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tracks->setTabKeyNavigation(false);
    m_tracks->setMinimumHeight((ShownRows + 1) * (fontMetrics().height() + 6));
    // A style may activate rows by the double click, too, so that only one of the two is heard.
    connect(m_tracks, &QTableWidget::cellActivated, this, &CdControls::PlayRow);
}

QLayout* CdControls::MakeKeys()
{
    m_play = MakeKey("cdPlay", "&Play", "Play the disc", "play");
    m_pause = MakeKey("cdPause", "P&ause", "Pause, or play on", {});
    connect(m_pause, &QPushButton::clicked, this, [this] {
        const Desk::CdDrive* const drive = m_desk.GetCdDrive();
        const bool isPaused = drive && drive->GetState().status == Status::Paused;
        m_lines.Do(isPaused ? "cd resume" : "cd pause");
    });
    QPushButton* const stop = MakeKey("cdStop", "St&op", "Stop the disc", "stop");
    QPushButton* const previous =
        MakeKey("cdPrevious", "Previous", "Play the track before", "previous");
    QPushButton* const next = MakeKey("cdNext", "Ne&xt", "Play the track behind", "next");
    QPushButton* const back = MakeKey("cdBack", "\u221210 s", "Ten seconds back", "jog -10");
    QPushButton* const forward = MakeKey("cdForward", "+10 s", "Ten seconds forward", "jog 10");
    QPushButton* const insert =
        MakeKey("cdInsert", "&Insert sheet\u2026", "Insert the disc of a CUE sheet", {});
    connect(insert, &QPushButton::clicked, this, &CdControls::ChooseSheet);
    QPushButton* const sample =
        MakeKey("cdSample", "Sa&mple disc", "Insert a sample disc", "insert");
    m_eject = MakeKey("cdEject", "E&ject", "Open the tray", "eject");
    m_whilePlaying = {back, forward};

    auto* const grid = new QGridLayout;
    int column = 0;
    for (QPushButton* const key : {m_play, m_pause, stop})
        grid->addWidget(key, 0, column++ * 4, 1, 4);
    column = 0;
    for (QPushButton* const key : {previous, next, back, forward})
        grid->addWidget(key, 1, column++ * 3, 1, 3);
    column = 0;
    for (QPushButton* const key : {insert, sample, m_eject})
        grid->addWidget(key, 2, column++ * 4, 1, 4);
    return grid;
}

/// @param verb empty for a key that its maker connects
QPushButton* CdControls::MakeKey(const QString& name, const QString& text, const QString& meaning,
                                 const QString& verb)
{
    QPushButton* const button = MakeButton(name, text, meaning);
    // Keys stand in a row that may be narrow.
    button->setMinimumWidth(fontMetrics().horizontalAdvance(text) + fontMetrics().height());
    if (!verb.isEmpty())
        connect(button, &QPushButton::clicked, this, [this, verb] { m_lines.Do("cd " + verb); });
    return button;
}

void CdControls::PlayRow(int row)
{
    m_lines.Do("cd play " + m_tracks->item(row, Column_Number)->text());
}

void CdControls::ChooseSheet()
{
    auto* const dialog = new QFileDialog(this, "CUE sheet");
    dialog->setObjectName("cdDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters({"CUE sheets (*.cue)", "All files (*)"});
    connect(dialog, &QFileDialog::fileSelected, this,
            [this](const QString& file) { m_lines.Do("cd insert " + ToWord(file)); });
    dialog->open();
}

void CdControls::Refresh()
{
    const Desk::CdDrive* const drive = m_desk.GetCdDrive();
    if (!drive) {
        setEnabled(false);
        SetTextOf(*m_status, QString("The desk has no CD drive."));
        return;
    }
    const Desk::CdDisc disc = drive->GetDisc();
    if (!IsSame(disc, m_disc))
        ShowDisc(disc);
    ShowState(drive->GetState());
}

void CdControls::ShowDisc(const Desk::CdDisc& disc)
{
    m_disc = disc;
    m_marked = 0;
    m_tracks->setRowCount(static_cast<int>(disc.tracks.size()));
    for (int row = 0; row < m_tracks->rowCount(); ++row) {
        const auto index = static_cast<std::size_t>(row);
        const Desk::CdTrack& track = disc.tracks[index];
        const bool isLast = index + 1 == disc.tracks.size();
        const int end = isLast ? disc.leadOut : disc.tracks[index + 1].GetStart();
        const QStringList texts{QString::number(disc.firstNumber + row), GetTitle(track),
                                ToText(track.GetStart()), ToText(end - track.GetStart())};
        for (int column = 0; column < ColumnCount; ++column)
            m_tracks->setItem(row, column, new QTableWidgetItem(texts[column]));
    }
}

void CdControls::ShowState(const Desk::CdDrive::State& state)
{
    const QString conditions = DescribeConditions();
    QString status = state.hasDisc ? Describe(state.status) : QString("\u23CF no disc");
    if (state.hasDisc && !m_disc.title.empty())
        status += " \u2013 " + QString::fromStdString(m_disc.title);
    SetTextOf(*m_status, conditions.isEmpty() ? status : status + "\n" + conditions);

    const bool isAtRest = !state.hasDisc || state.status == Status::Stopped;
    const QString sign = state.place.relative < 0 ? "-" : "";
    SetTextOf(*m_place, isAtRest ? QString("at rest")
                                 : QString("Track %1 of %2, %3%4 \u2013 disc %5")
                                       .arg(state.place.track)
                                       .arg(m_disc.GetLastNumber())
                                       .arg(sign, ToText(std::abs(state.place.relative)),
                                            ToText(state.position)));
    MarkTrack(isAtRest ? 0 : state.place.track);
    SetTextOf(*m_pause, QString(state.status == Status::Paused ? "Pl&ay on" : "P&ause"));
    m_pause->setEnabled(!isAtRest);
    m_eject->setEnabled(state.hasDisc);
    for (QPushButton* const key : m_whilePlaying)
        key->setEnabled(state.hasDisc && state.status == Status::Playing);
}

/// By bold type and an arrow, which need no colour.
void CdControls::MarkTrack(int number)
{
    if (number == m_marked)
        return;
    for (int row = 0; row < m_tracks->rowCount(); ++row) {
        const bool isMarked = m_disc.firstNumber + row == number;
        QFont font = m_tracks->font();
        font.setBold(isMarked);
        for (int column = 0; column < ColumnCount; ++column)
            m_tracks->item(row, column)->setFont(font);
        const QString title = GetTitle(m_disc.tracks[static_cast<std::size_t>(row)]);
        m_tracks->item(row, Column_Title)->setText(isMarked ? "\u25B6 " + title : title);
    }
    m_marked = number;
}

QString CdControls::DescribeConditions() const
{
    QStringList texts;
    if (!m_desk.GetCondition("cd/plugged").empty())
        texts << "unplugged";
    if (!m_desk.GetCondition("cd/busy").empty())
        texts << "held by another program";
    if (!m_desk.GetCondition("cd/scratch").empty())
        texts << "scratched";
    const std::string slow = m_desk.GetCondition("cd/slow");
    if (!slow.empty())
        texts << QString::fromStdString(slow) + " ms slower";
    return texts.isEmpty() ? QString() : "\u26A0 " + texts.join(", ");
}

} // namespace VirtualDesk
