// SPDX-License-Identifier: MIT
#include "virtual-desk/ltc_controls.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>

#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

constexpr int LongestGap = 60000;
constexpr int UsualGap = 500;
constexpr double MillisecondsPerSecond = 1000;

} // namespace

LtcControls::LtcControls(DeskController& desk, PendingLines& lines, const std::wstring& path,
                         QWidget* parent)
    : QWidget(parent), m_desk(desk), m_lines(lines), m_path(QString::fromStdWString(path)),
      m_file(new QLineEdit(this)),
      m_browse(MakeButton("ltcBrowse " + m_path, "Bro&wse\u2026", "Choose audio for " + m_path)),
      m_loop(new QCheckBox("&Loop", this)),
      m_play(MakeButton("ltcPlay " + m_path, "Pla&y tape", "Play audio into " + m_path)),
      m_stop(MakeButton("ltcStop " + m_path, "Stop tap&e", "Stop the audio into " + m_path)),
      m_gap(new QSpinBox(this)),
      m_dropout(MakeButton("ltcDropout " + m_path, "Drop o&ut", "Let " + m_path + " hear nothing")),
      m_state(MakeLabel("ltcState " + m_path, "What " + m_path + " hears"))
{
    m_file->setObjectName("ltcFile " + m_path);
    m_file->setAccessibleName("Audio file for " + m_path);
    m_file->setPlaceholderText("Audio with timecode, such as a FLAC or WAV file");
    m_loop->setObjectName("ltcLoop " + m_path);
    m_loop->setAccessibleName("Play the audio again and again");
    m_gap->setObjectName("ltcGap " + m_path);
    m_gap->setAccessibleName("Length of a dropout");
    m_gap->setRange(1, LongestGap);
    m_gap->setValue(UsualGap);
    m_gap->setSuffix(" ms");
    Arrange();

    connect(m_browse, &QPushButton::clicked, this, &LtcControls::Browse);
    connect(m_play, &QPushButton::clicked, this, &LtcControls::Play);
    connect(m_file, &QLineEdit::returnPressed, m_play, &QPushButton::click);
    connect(m_stop, &QPushButton::clicked, this, [this] { Do("stop"); });
    connect(m_dropout, &QPushButton::clicked, this,
            [this] { Do("dropout " + ToNumber(m_gap->value() / MillisecondsPerSecond)); });
    connect(m_file, &QLineEdit::textChanged, this, &LtcControls::Refresh);
    Refresh();
}

void LtcControls::Arrange()
{
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(m_file, 0, 0, 1, 3);
    grid->addWidget(m_browse, 0, 3);
    grid->addWidget(m_play, 1, 0);
    grid->addWidget(m_stop, 1, 1);
    grid->addWidget(m_loop, 1, 2);
    grid->addWidget(m_state, 1, 3);
    grid->addWidget(m_gap, 2, 0, 1, 2);
    grid->addWidget(m_dropout, 2, 2, 1, 2);
    grid->setColumnStretch(2, 1);
}

void LtcControls::Browse()
{
    auto* const dialog = new QFileDialog(this, "Timecode audio");
    dialog->setObjectName("ltcDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters({"Audio (*.flac *.wav *.ogg *.aiff *.aif)", "All files (*)"});
    if (!m_file->text().isEmpty())
        dialog->setDirectory(QFileInfo(m_file->text()).absolutePath());
    connect(dialog, &QFileDialog::fileSelected, m_file, &QLineEdit::setText);
    dialog->open();
}

void LtcControls::Play()
{
    Do("play " + ToWord(m_file->text().trimmed()) + (m_loop->isChecked() ? " loop" : ""));
}

void LtcControls::Refresh()
{
    const bool isPlaying = m_desk.GetDesk().IsTimecodePlaying(m_path.toStdString());
    SetTextOf(*m_state, QString::fromUtf8(isPlaying ? "\u25B6 plays" : "\u25A0 stopped"));
    m_play->setEnabled(!m_file->text().trimmed().isEmpty());
    m_stop->setEnabled(isPlaying);
    m_dropout->setEnabled(isPlaying);
}

} // namespace VirtualDesk
