// SPDX-License-Identifier: MIT
#include "virtual-desk/main_window.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QMessageBox>
#include <QProcess>
#include <QScreen>
#include <QScrollBar>
#include <QStatusBar>
#include <QVBoxLayout>
#include <memory>

#include "console/script.h"
#include "virtual-desk/faults_panel.h"
#include "virtual-desk/lights_panel.h"
#include "virtual-desk/line_box.h"
#include "virtual-desk/log_panel.h"
#include "virtual-desk/midi_panel.h"
#include "virtual-desk/surface_panel.h"
#include "virtual-desk/timecode_panel.h"

namespace VirtualDesk
{

namespace
{

constexpr int MostLines = 2000;
constexpr char GeometryKey[] = "window/geometry";
constexpr char DocksKey[] = "window/docks";

/// Keeps the end in sight where it was, also when a long line brings a bar that takes some room.
void KeepEnd(QScrollBar& bar)
{
    const auto isAtEnd = std::make_shared<bool>(true);
    QObject::connect(&bar, &QScrollBar::valueChanged, &bar,
                     [&bar, isAtEnd](int value) { *isAtEnd = value == bar.maximum(); });
    QObject::connect(&bar, &QScrollBar::rangeChanged, &bar, [&bar, isAtEnd](int, int end) {
        if (*isAtEnd)
            bar.setValue(end);
    });
}

QPlainTextEdit* MakeText(const char* name, const QString& title, QWidget* parent)
{
    auto* const text = new QPlainTextEdit(parent);
    text->setObjectName(QLatin1String(name));
    text->setAccessibleName(title);
    text->setReadOnly(true);
    text->setMaximumBlockCount(MostLines);
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    KeepEnd(*text->verticalScrollBar());
    return text;
}

/// What is under way, unless it is done before it could be read.
QString Describe(const Console::Runner::Progress& progress)
{
    constexpr double Worth = 0.5;
    if (progress.line.empty() || progress.seconds < Worth)
        return {};
    QString text = MainWindow::tr("%1 s: %2")
                       .arg(progress.seconds, 0, 'f', 0)
                       .arg(QString::fromStdString(progress.line));
    if (progress.waiting > 0)
        text += MainWindow::tr(", %n more wait", nullptr, static_cast<int>(progress.waiting));
    return text;
}

} // namespace

MainWindow::MainWindow(DeskController& desk, QWidget* parent)
    : QMainWindow(parent), m_desk(desk), m_tabs(new QTabWidget(this)),
      m_events(MakeText("events", tr("Events"), this)),
      m_lines(MakeText("lines", tr("Lines that were done"), this)), m_message(new LineLabel(this)),
      m_progress(new LineLabel(this)), m_stop(new QPushButton(tr("St&op script"), this))
{
    const Desk::DeskData& facts = m_desk.GetDesk().GetData();
    setWindowTitle(tr("%1 - virtual desk").arg(QString::fromStdString(facts.name)));
    m_tabs->setObjectName("tabs");
    setCentralWidget(m_tabs);
    AddPanels();

    auto* const eventDock = new QDockWidget(tr("Events"), this);
    eventDock->setObjectName("eventDock");
    eventDock->setWidget(m_events);
    addDockWidget(Qt::BottomDockWidgetArea, eventDock);
    auto* const lineDock = new QDockWidget(tr("Script"), this);
    lineDock->setObjectName("lineDock");
    lineDock->setWidget(MakeLinePane());
    addDockWidget(Qt::BottomDockWidgetArea, lineDock);

    AddMenus({eventDock->toggleViewAction(), lineDock->toggleViewAction()});
    MakeStatusBar();
    connect(&m_desk, &DeskController::happened, this, &MainWindow::ShowEvents);
    connect(&m_desk, &DeskController::done, this, &MainWindow::ShowDone);
    connect(&m_desk, &DeskController::refreshed, this, &MainWindow::ShowProgress);
    resize(PreferredSize.boundedTo(screen()->availableSize()));
}

void MainWindow::MakeStatusBar()
{
    statusBar()->setObjectName("status");
    m_message->setObjectName("message");
    statusBar()->addWidget(m_message, 1);
    m_messageEnd.setSingleShot(true);
    const auto describe = [this] {
        m_message->ShowText(QString::fromStdString(m_desk.GetDesk().GetData().description));
    };
    connect(&m_messageEnd, &QTimer::timeout, this, describe);
    describe();
    m_progress->setObjectName("progress");
    m_progress->setAlignment(Qt::AlignRight);
    statusBar()->addPermanentWidget(m_progress, 1);
    m_stop->setObjectName("stopScript");
    m_stop->setToolTip(tr("Drops the lines of the script that have not begun"));
    m_stop->hide();
    connect(m_stop, &QPushButton::clicked, &m_desk, &DeskController::StopScript);
    statusBar()->addPermanentWidget(m_stop);
}

void MainWindow::ShowProgress()
{
    const Console::Runner::Progress script = m_desk.GetScriptProgress();
    QStringList parts{Describe(m_desk.GetProgress()), Describe(script)};
    parts.removeAll(QString());
    m_progress->ShowText(parts.join("   "));
    m_progress->setVisible(!parts.isEmpty()); // otherwise the message has its room
    m_stop->setVisible(!script.line.empty() || script.waiting > 0);
}

void MainWindow::AddPanels()
{
    m_surface = new SurfacePanel(m_desk, m_tabs);
    m_tabs->addTab(m_surface, tr("Surface"));
    m_tabs->addTab(new TimecodePanel(m_desk, m_tabs), tr("Timecode"));
    m_tabs->addTab(new MidiPanel(m_desk, m_tabs), tr("MIDI"));
    m_tabs->addTab(new LightsPanel(m_desk, m_tabs), tr("Lights"));
    m_tabs->addTab(new FaultsPanel(m_desk, m_tabs), tr("Faults"));
    m_tabs->addTab(new LogPanel(m_desk, m_tabs), tr("Log"));
}

void MainWindow::AddMenus(const QList<QAction*>& docks)
{
    QMenu* const file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&Open desk..."), QKeySequence::Open, this, &MainWindow::OpenDesk);
    file->addAction(tr("&Run script..."), QKeySequence(Qt::CTRL | Qt::Key_R), this,
                    &MainWindow::RunScript);
    file->addAction(tr("&Save what was done as a script..."), QKeySequence::Save, this,
                    &MainWindow::SaveScript);
    file->addSeparator();
    file->addAction(tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), this, &QWidget::close);
    QMenu* const view = menuBar()->addMenu(tr("&View"));
    for (int tab = 0; tab < m_tabs->count(); ++tab)
        view->addAction(m_tabs->tabText(tab), QKeySequence(Qt::ALT | (Qt::Key_1 + tab)), this,
                        [this, tab] { m_tabs->setCurrentIndex(tab); });
    view->addSeparator();
    view->addActions(docks);
}

QWidget* MainWindow::MakeLinePane()
{
    auto* const pane = new QWidget(this);
    auto* const layout = new QVBoxLayout(pane);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_lines);
    auto* const row = new QHBoxLayout;
    layout->addLayout(row);
    auto* const line = new LineBox(m_desk.GetDesk().GetData(), pane);
    connect(line, &LineBox::entered, &m_desk, &DeskController::Do);
    row->addWidget(line);
    auto* const save = new QPushButton(tr("Save..."), pane);
    save->setObjectName("save");
    save->setToolTip(tr("Keeps what was done as a script"));
    connect(save, &QPushButton::clicked, this, &MainWindow::SaveScript);
    row->addWidget(save);
    return pane;
}

void MainWindow::ShowEvents(const std::vector<Tools::MonitorEvent>& events, std::size_t dropped)
{
    if (dropped > 0)
        m_events->appendPlainText(tr("... %1 more ...").arg(dropped));
    QStringList lines;
    for (const Tools::MonitorEvent& event : events)
        lines += QStringLiteral("%1  %2  %3")
                     .arg(event.seconds, 9, 'f', 3)
                     .arg(QString::fromStdString(event.source), -24)
                     .arg(QString::fromStdString(event.text));
    m_events->appendPlainText(lines.join('\n'));
}

void MainWindow::ShowDone(const QString& line, const QString& error)
{
    if (error.isEmpty()) {
        m_script += line;
        m_lines->appendPlainText(line);
        return;
    }
    ++m_failures;
    m_lines->appendPlainText(tr("# %1: %2").arg(line, error));
    constexpr int ShownMilliseconds = 15000;
    m_message->ShowText(tr("%1: %2").arg(line, error));
    m_messageEnd.start(ShownMilliseconds);
}

void MainWindow::SaveScript()
{
    const QString name = QFileDialog::getSaveFileName(this, tr("Save what was done as a script"));
    if (name.isEmpty())
        return;
    QFile file(name);
    const QByteArray text = m_script.join('\n').toUtf8() + '\n';
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush())
        QMessageBox::warning(this, tr("Script"),
                             tr("%1 cannot be written: %2").arg(name, file.errorString()));
}

void MainWindow::RunScript()
{
    const QString name = QFileDialog::getOpenFileName(this, tr("Run a script"));
    if (!name.isEmpty())
        RunScriptFile(name);
}

/// In a window of its own: there is one desk in a process.
void MainWindow::OpenDesk()
{
    const QString name =
        QFileDialog::getOpenFileName(this, tr("Open a desk"), QString(), tr("Desk files (*.json)"));
    if (name.isEmpty())
        return;
    try {
        Desk::ReadDesk(name.toStdString());
    } catch (const std::exception& error) {
        QMessageBox::warning(this, tr("Desk"), QString::fromStdString(error.what()));
        return;
    }
    QStringList arguments{name};
    const QStringList ours = QCoreApplication::arguments();
    if (const qsizetype palette = ours.indexOf("--palette");
        palette >= 0 && palette + 1 < ours.size())
        arguments += {ours[palette], ours[palette + 1]};
    if (!QProcess::startDetached(QCoreApplication::applicationFilePath(), arguments))
        QMessageBox::warning(this, tr("Desk"), tr("%1 cannot be opened").arg(name));
}

void MainWindow::RunScriptFile(const QString& name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        QMessageBox::warning(this, tr("Script"),
                             tr("%1 cannot be read: %2").arg(name, file.errorString()));
    else if (!DoScript(file.readAll()))
        QMessageBox::warning(this, tr("Script"), tr("%1 has no line to do").arg(name));
}

bool MainWindow::DoScript(const QByteArray& text)
{
    QStringList lines;
    for (const Console::ScriptLine& line : Console::ParseDeskScript(text.toStdString()))
        lines += QString::fromStdString(line.text);
    m_desk.RunScript(lines);
    return !lines.isEmpty();
}

void MainWindow::SaveLayout(QSettings& settings) const
{
    settings.setValue(GeometryKey, saveGeometry());
    settings.setValue(DocksKey, saveState());
    m_surface->SaveZoom(settings);
}

void MainWindow::RestoreLayout(const QSettings& settings)
{
    restoreGeometry(settings.value(GeometryKey).toByteArray());
    restoreState(settings.value(DocksKey).toByteArray());
    m_surface->RestoreZoom(settings);
}

bool MainWindow::SavePictures(const QString& folder, QSize size)
{
    resize(size);
    bool isSaved = QDir().mkpath(folder);
    for (int tab = 0; tab < m_tabs->count(); ++tab) {
        m_tabs->setCurrentIndex(tab);
        m_desk.Refresh();
        QCoreApplication::processEvents();
        QString name = m_tabs->tabText(tab).toLower();
        name.remove('&');
        isSaved = grab().save(folder + '/' + name + ".png") && isSaved;
    }
    return isSaved;
}

} // namespace VirtualDesk
