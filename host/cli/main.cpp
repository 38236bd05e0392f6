#include "commands.h"
#include "localtimezone.h"
#include "nearestname.h"
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
                      "  convert    write a UBX receiver log or a PX4 flight log as JSON Lines\n"
                      "\n"
                      "'asciiexport COMMAND --help' or 'asciiexport help COMMAND' tells more\n"
                      "about each command; 'asciiexport --version' shows the versions of the\n"
                      "program and the plug-in.\n");

struct Command
{
    const char *name;
    int (*run)(const QStringList &arguments);
};

const Command commands[] = {
    {"export", Commands::exportRecordings}, {"settings", Commands::listSettings},
    {"options", Commands::editOptions},     {"info", Commands::showInfo},
    {"generate", Commands::generate},       {"convert", Commands::convert},
};

QByteArray translated(const char *text)
{
    return QCoreApplication::translate("main", text).toLocal8Bit();
}

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

    QStringList arguments = QCoreApplication::arguments().mid(2);
    // "help COMMAND" is "COMMAND --help".
    QString name = command;
    if (name == QLatin1String("help") && !arguments.isEmpty()) {
        name = arguments.takeFirst();
        arguments = QStringList{QStringLiteral("--help")};
    }
    for (const Command &entry : commands) {
        if (name == QLatin1String(entry.name))
            return entry.run(arguments);
    }
    if (name == QLatin1String("-h") || name == QLatin1String("--help")
        || name == QLatin1String("help")) {
        std::fputs(translated(overview).constData(), stdout);
        return 0;
    }
    if (name == QLatin1String("--version"))
        return printVersion(PluginHost::defaultPluginPath());
    if (name.isEmpty()) {
        std::fprintf(
            stderr, "asciiexport: %s\n",
            QCoreApplication::translate("main", "no command given").toLocal8Bit().constData());
    } else {
        QStringList names;
        for (const Command &entry : commands)
            names.append(QLatin1String(entry.name));
        const QString meant = nearestName(name, names, true);
        const QString problem = meant.isEmpty()
            ? QCoreApplication::translate("main", "unknown command \"%1\"").arg(name)
            : QCoreApplication::translate("main", "unknown command \"%1\"; did you mean \"%2\"?")
                  .arg(name, meant);
        std::fprintf(stderr, "asciiexport: %s\n", problem.toLocal8Bit().constData());
    }
    std::fputs(translated(overview).constData(), stderr);
    return 2;
}
