// SPDX-License-Identifier: MIT
#pragma once

#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QSize>
#include <QTabWidget>
#include <QTimer>

#include "virtual-desk/desk_controller.h"
#include "virtual-desk/line_label.h"

namespace VirtualDesk
{

class SurfacePanel;

/// The window: a tab for each panel, the events, and the lines of text that everything becomes.
///
/// Names of its children: "tabs", "events", "lines" (what was done, with what went wrong), "line"
/// (a box to type one), "save" (keeps the lines as a script), and in the status line "message"
/// (what the desk is, or what went wrong last), "progress" (what is under way, when it takes its
/// time) and "stopScript".
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    static constexpr QSize PreferredSize{1280, 900};

    explicit MainWindow(DeskController& desk, QWidget* parent = nullptr);

    /// Has the lines of a file done, up to the first that fails.
    void RunScriptFile(const QString& name);
    /// The same for a script's text. False when it has no line to do.
    bool DoScript(const QByteArray& text);
    /// Lines that went wrong so far.
    int CountFailures() const { return m_failures; }
    /// Makes a picture of the window, of a size whatever the screen, with each of its tabs, named
    /// by the tab. False when one cannot be written.
    bool SavePictures(const QString& folder, QSize size = PreferredSize);
    /// Keeps the window's size and place, its docks and how large wings are shown.
    void SaveLayout(QSettings& settings) const;
    /// Takes what was kept; what was not stays as it is.
    void RestoreLayout(const QSettings& settings);
    /// Lines that were done and went well, oldest first: a script that does it all again.
    QStringList GetScript() const { return m_script; }

private:
    void AddPanels();
    /// @param docks what shows and hides the docks
    void AddMenus(const QList<QAction*>& docks);
    QWidget* MakeLinePane();
    void ShowEvents(const std::vector<Tools::MonitorEvent>& events, std::size_t dropped);
    void ShowDone(const QString& line, const QString& error);
    void ShowProgress();
    void MakeStatusBar();
    void SaveScript();
    void RunScript();
    void OpenDesk();

    DeskController& m_desk;
    QTabWidget* m_tabs;
    SurfacePanel* m_surface = nullptr;
    QPlainTextEdit* m_events;
    QPlainTextEdit* m_lines;
    LineLabel* m_message;
    QTimer m_messageEnd; // then what went wrong makes room
    LineLabel* m_progress;
    QPushButton* m_stop;
    QStringList m_script;
    int m_failures = 0;
};

} // namespace VirtualDesk
