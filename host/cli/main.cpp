#include "commands.h"
#include "localtimezone.h"
#include "pluginhost.h"
#include "translations.h"
#include "versiontext.h"

#include <QApplication>
#include <QCoreApplication>
#include <QTextCodec>

#include <csignal>
#include <cstdio>
#include <memory>

namespace {

const char overview[] =
    QT_TRANSLATE_NOOP("main",
                      "Usage: asciiexport COMMAND [options]\n"
                      "\n"
                      "Exports motion-tracker recordings as delimited text through the ASCII\n"
                      "exporter plug-in, and edits its settings.\n"
                      "\n"
                      "Commands:\n"
                      "  export     export recordings, one text file each\n"
                      "  settings   list every setting: value, default, description\n"
                      "  options    edit the settings in the settings dialog\n"
                      "  info       show the plug-in's metadata, name, version and extension\n"
                      "  generate   write a synthetic recording\n"
                      "  convert    write a UBX receiver log as a JSON Lines recording\n"
                      "\n"
                      "'asciiexport COMMAND --help' tells more about each command; 'asciiexport\n"
                      "--version' shows the versions of the program and the plug-in.\n");

} // namespace

int main(int argc, char *argv[])
{
    pinLocalTimeZone();
    // A reader that closes a pipe early is a failed write, not a crash; so is
    // a write past the file size limit, which then fails with "File too large".
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    const QString command = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    bool help = false;
    for (int i = 2; i < argc; ++i)
        help = help || qstrcmp(argv[i], "-h") == 0 || qstrcmp(argv[i], "--help") == 0
            || qstrcmp(argv[i], "--version") == 0;
    // Only the dialog needs a display, not its help or versions.
    std::unique_ptr<QCoreApplication> application;
    if (command == QLatin1String("options") && !help) {
        if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
            && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
            std::fputs("asciiexport options: no display to show the dialog on "
                       "(set DISPLAY, or QT_QPA_PLATFORM=offscreen)\n",
                       stderr);
            return 1;
        }
        application = std::make_unique<QApplication>(argc, argv);
    } else {
        application = std::make_unique<QCoreApplication>(argc, argv);
    }
    QCoreApplication::setApplicationName(QStringLiteral("asciiexport"));
    QCoreApplication::setApplicationVersion(programVersion());
    installTranslations();
    // Files are written in UTF-8 whatever the locale: text the user types
    // (a custom delimiter, say) must not turn into question marks.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));

    const QStringList arguments = QCoreApplication::arguments().mid(2);
    if (command == QLatin1String("export"))
        return Commands::exportRecordings(arguments);
    if (command == QLatin1String("settings"))
        return Commands::listSettings(arguments);
    if (command == QLatin1String("options"))
        return Commands::editOptions(arguments);
    if (command == QLatin1String("info"))
        return Commands::showInfo(arguments);
    if (command == QLatin1String("generate"))
        return Commands::generate(arguments);
    if (command == QLatin1String("convert"))
        return Commands::convert(arguments);
    if (command == QLatin1String("-h") || command == QLatin1String("--help")
        || command == QLatin1String("help")) {
        std::fputs(QCoreApplication::translate("main", overview).toLocal8Bit().constData(), stdout);
        return 0;
    }
    if (command == QLatin1String("--version"))
        return printVersion(PluginHost::defaultPluginPath());
    if (command.isEmpty())
        std::fprintf(
            stderr, "asciiexport: %s\n",
            QCoreApplication::translate("main", "no command given").toLocal8Bit().constData());
    else
        std::fprintf(stderr, "asciiexport: %s\n",
                     QCoreApplication::translate("main", "unknown command \"%1\"")
                         .arg(command)
                         .toLocal8Bit()
                         .constData());
    std::fputs(QCoreApplication::translate("main", overview).toLocal8Bit().constData(), stderr);
    return 2;
}
