// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QByteArrayList>
#include <QCommandLineParser>
#include <QFile>
#include <QRegularExpression>
#include <QSettings>
#include <QSize>
#include <QStringList>
#include <clocale>
#include <cstdio>
#include <exception>
#include <utility>

#include "common/stop_signals.h"
#include "desk/preload.h"
#include "hardware/link_control.h"
#include "virtual-desk/main_window.h"
#include "virtual-desk/window_palette.h"

namespace
{

constexpr int Failure = 1;

int Fail(const char* message)
{
    std::fprintf(stderr, "virtual-desk: %s\n", message);
    return Failure;
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
    QCommandLineOption size{"size", "Size of the window, in place of the one it had last",
                            "WIDTHxHEIGHT"};
};

/// Empty for what is not a size.
QSize ParseSize(const QString& text)
{
    static const QRegularExpression form("^(\\d{3,5})x(\\d{3,5})$");
    const QRegularExpressionMatch match = form.match(text);
    return match.hasMatch() ? QSize(match.captured(1).toInt(), match.captured(2).toInt()) : QSize();
}

void Describe(QCommandLineParser& parser, const Options& options)
{
    QCoreApplication::setApplicationVersion(VIRTUAL_DESK_VERSION);
    parser.setApplicationDescription("A lighting console's hardware made of software");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("file", "Desk file; data/desk has some");
    parser.addOptions({options.script, options.pictures, options.palette, options.size});
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

/// Ends once all scripts are done. Pictures are the same whatever the user likes.
int SavePictures(VirtualDesk::DeskController& desk, VirtualDesk::MainWindow& window,
                 const QString& folder, QSize size)
{
    bool isSaving = false;
    const QObject context; // the connection ends with it
    window.show();
    QObject::connect(&desk, &VirtualDesk::DeskController::refreshed, &context, [&] {
        if (!desk.IsIdle() || std::exchange(isSaving, true))
            return;
        const bool isSaved = window.SavePictures(
            folder, size.isEmpty() ? VirtualDesk::MainWindow::PreferredSize : size);
        QApplication::exit(isSaved && window.CountFailures() == 0 ? 0 : Failure);
    });
    return QApplication::exec();
}

/// Shows the window as the user left it, but for a size that is not empty.
int Show(VirtualDesk::MainWindow& window, QSize size)
{
    QSettings settings(QSettings::IniFormat, QSettings::UserScope, "libhardware", "virtual-desk");
    window.RestoreLayout(settings);
    if (!size.isEmpty())
        window.resize(size);
    window.show();
    const int result = QApplication::exec();
    window.SaveLayout(settings);
    return result;
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
    VirtualDesk::UseStyle(QString());
    if (parser.isSet(options.palette) && !VirtualDesk::UsePalette(parser.value(options.palette)))
        return Fail("the palette is light or dark");
    const QSize size = ParseSize(parser.value(options.size));
    if (parser.isSet(options.size) && size.isEmpty())
        return Fail("the size is WIDTHxHEIGHT, such as 1280x900");
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
    for (const QByteArray& text : scripts)
        if (!window.DoScript(text))
            return Fail("a script has no line to do");
    const Tools::StopSignals signals([] { QApplication::quit(); });
    return parser.isSet(options.pictures)
               ? SavePictures(desk, window, parser.value(options.pictures), size)
               : Show(window, size);
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
