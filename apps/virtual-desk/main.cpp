// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QByteArrayList>
#include <QColor>
#include <QCommandLineParser>
#include <QFile>
#include <QPalette>
#include <QStringList>
#include <clocale>
#include <cstdio>
#include <exception>
#include <utility>

#include "common/stop_signals.h"
#include "desk/preload.h"
#include "hardware/link_control.h"
#include "virtual-desk/clear_style.h"
#include "virtual-desk/main_window.h"

namespace
{

constexpr int Failure = 1;

int Fail(const char* message)
{
    std::fprintf(stderr, "virtual-desk: %s\n", message);
    return Failure;
}

// NOLINTBEGIN(clang-analyzer-cplusplus.NewDeleteLeaks): the application owns its style
void UseStyle(const QString& name)
{
    QApplication::setStyle(new VirtualDesk::ClearStyle(name));
}
// NOLINTEND(clang-analyzer-cplusplus.NewDeleteLeaks)

/// False for one that there is not.
bool UsePalette(const QString& name)
{
    if (name != "light" && name != "dark")
        return false;
    UseStyle(QStringLiteral("Fusion"));
    // Of two colours the style makes all others.
    const bool isDark = name == "dark";
    QPalette palette(isDark ? QColor(53, 53, 53) : QColor(239, 239, 239),
                     isDark ? QColor(42, 42, 42) : QColor(239, 239, 239));
    palette.setColor(QPalette::Base, isDark ? QColor(30, 30, 30) : QColor(Qt::white));
    palette.setColor(QPalette::Highlight, QColor(48, 140, 198));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    QApplication::setPalette(palette);
    return true;
}

/// Qt ends the program where it finds no display, so it is not asked there.
bool HasDisplay(const QStringList& arguments)
{
    return arguments.contains("-platform") || arguments.contains("--platform") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || !qgetenv("DISPLAY").isEmpty() ||
           !qgetenv("WAYLAND_DISPLAY").isEmpty();
}

struct Options {
    QCommandLineOption script{"script", "Script to do at the start", "file"};
    QCommandLineOption pictures{
        "pictures", "Save a picture of each tab when all scripts are done, and end", "folder"};
    QCommandLineOption palette{"palette", "light or dark, in place of the system's", "name"};
};

void Describe(QCommandLineParser& parser, const Options& options)
{
    QCoreApplication::setApplicationVersion(VIRTUAL_DESK_VERSION);
    parser.setApplicationDescription("A lighting console's hardware made of software");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("file", "Desk file; data/desk has some");
    parser.addOptions({options.script, options.pictures, options.palette});
}

/// Help and version, which need no display. They end the program.
void Answer(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    Describe(parser, Options());
    parser.parse(QCoreApplication::arguments()); // options of Qt's own are unknown to it
    if (parser.isSet("version"))
        parser.showVersion();
    if (parser.isSet("help"))
        parser.showHelp();
}

int Run(int argc, char** argv)
{
    Answer(argc, argv);
    if (!HasDisplay(QStringList(argv, argv + argc)))
        return Fail("there is no display; 'hwctl desk' does all of this in a terminal");
    if (const char* const missing = Desk::EnsurePreloaded(argv); *missing != '\0')
        return Fail(missing);
    Hardware_LinkControl();
    const QApplication application(argc, argv);
    // Qt takes the user's locale; numbers of lines are read with a point.
    // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread has begun
    std::setlocale(LC_NUMERIC, "C");
    QCommandLineParser parser;
    const Options options;
    Describe(parser, options);
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        return Fail("a desk file, please; data/desk has some");
    UseStyle(QString());
    if (parser.isSet(options.palette) && !UsePalette(parser.value(options.palette)))
        return Fail("the palette is light or dark");

    QByteArrayList scripts;
    for (const QString& name : parser.values(options.script)) {
        QFile file(name);
        if (!file.open(QIODevice::ReadOnly))
            return Fail(("cannot read '" + name + "'").toUtf8().constData());
        scripts += file.readAll();
    }

    VirtualDesk::DeskController desk(
        Desk::ReadDesk(parser.positionalArguments().front().toStdString()));
    VirtualDesk::MainWindow window(desk);
    bool isSaving = false;
    for (const QByteArray& text : scripts)
        if (!window.DoScript(text))
            return Fail("a script has no line to do");
    window.show();
    if (parser.isSet(options.pictures))
        QObject::connect(&desk, &VirtualDesk::DeskController::refreshed, &window, [&] {
            if (desk.IsIdle() && !std::exchange(isSaving, true))
                QApplication::exit(window.SavePictures(parser.value(options.pictures)) &&
                                           window.CountFailures() == 0
                                       ? 0
                                       : Failure);
        });
    const Tools::StopSignals signals([] { QApplication::quit(); });
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}
