#include "commandline.h"

#include "choicegroup.h"
#include "commands.h"
#include "localfilepath.h"
#include "nearestname.h"
#include "outputfile.h"
#include "pluginhost.h"
#include "settingnames.h"
#include "settingsfilecheck.h"
#include "ulogfillpolicy.h"
#include "versiontext.h"

#include <abstractexporterfactory.h>
#include <settingssynchronizer.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Commands {

QString tr(const char *text)
{
    return QCoreApplication::translate("Commands", text);
}

} // namespace Commands

namespace CommandLine {

namespace {

// The system's reason why the settings file @p fileName cannot be read, or
// an empty text when the system sees none. Opened without waiting for a
// writer, should it be a FIFO.
QString unreadableReason(const QString &fileName)
{
    const int descriptor =
        ::open(QFile::encodeName(fileName).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return QString::fromLocal8Bit(std::strerror(errno));
    struct stat status;
    const bool known = ::fstat(descriptor, &status) == 0;
    ::close(descriptor);
    if (known && S_ISDIR(status.st_mode))
        return QString::fromLocal8Bit(std::strerror(EISDIR));
    if (known && !S_ISREG(status.st_mode))
        return tr("not a regular file");
    return QString();
}

QString defaultSettingsFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)
        + QStringLiteral("/asciiexport.ini");
}

// @p text with its lines broken at blanks to fit 80 columns, as Qt breaks
// the options' descriptions: Qt prints a command's own description as it is.
QString wrapped(const QString &text)
{
    constexpr int width = 79;
    QStringList lines;
    for (const QString &paragraph : text.split(QLatin1Char('\n'))) {
        QString line;
        for (const QString &word : paragraph.split(QLatin1Char(' '))) {
            if (!line.isEmpty() && line.size() + 1 + word.size() > width) {
                lines.append(line);
                line.clear();
            }
            if (!line.isEmpty())
                line += QLatin1Char(' ');
            line += word;
        }
        lines.append(line);
    }
    return lines.join(QLatin1Char('\n'));
}

// What is wrong with the command line: Qt's words, or for an unknown option
// that misspells a known one, that one.
QString parseError(const QCommandLineParser &parser, const QList<QCommandLineOption> &options)
{
    const QStringList unknown = parser.unknownOptionNames();
    if (unknown.isEmpty())
        return parser.errorText();
    const auto dashed = [](const QString &name) -> QString {
        return QLatin1String(name.size() == 1 ? "-" : "--") + name;
    };
    QStringList known;
    for (const QCommandLineOption &option : options) {
        for (const QString &name : option.names()) {
            if (name.size() > 1)
                known.append(dashed(name));
        }
    }
    const QString meant = nearestName(dashed(unknown.first()), known, true);
    if (meant.isEmpty())
        return parser.errorText();
    return tr("unknown option \"%1\"; did you mean \"%2\"?").arg(dashed(unknown.first()), meant);
}

// Qt's help, which names the command, and the files the command reads when
// no option names others. Those paths go on lines of their own: Qt wraps an
// option's description at any character once a word is longer than its
// column, and a path is such a word.
QString helpText(const QCommandLineParser &parser, const QString &command,
                 const QList<QCommandLineOption> &options)
{
    QString text = parser.helpText();
    // The first line names the program as it was called.
    const int start = text.indexOf(QLatin1Char(' ')) + 1;
    text.replace(start, text.indexOf(QLatin1Char(' '), start) - start,
                 QStringLiteral("asciiexport ") + command);
    QStringList defaults;
    for (const QCommandLineOption &option : options) {
        const QString name = option.names().constLast();
        if (name == QLatin1String("plugin"))
            defaults.append(tr("  plug-in:  %1").arg(PluginHost::defaultPluginPath()));
        else if (name == QLatin1String("settings"))
            defaults.append(tr("  settings: %1").arg(defaultSettingsFile()));
    }
    if (!defaults.isEmpty())
        text += QLatin1Char('\n') + tr("Default files:") + QLatin1Char('\n')
            + defaults.join(QLatin1Char('\n')) + QLatin1Char('\n');
    return text;
}

} // namespace

QString tr(const char *text)
{
    return QCoreApplication::translate("CommandLine", text);
}

void printLine(std::FILE *stream, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fputc('\n', stream);
}

void printError(const QString &text)
{
    printLine(stderr, text);
}

int usageError(const QString &command, const QString &text)
{
    printError(QStringLiteral("asciiexport %1: %2").arg(command, text));
    printError(tr("Try 'asciiexport %1 --help'.").arg(command));
    return 2;
}

bool parse(QCommandLineParser &parser, const QList<QCommandLineOption> &options,
           const QString &command, const QString &description, const QStringList &arguments,
           int *status)
{
    parser.setApplicationDescription(wrapped(description));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  tr("Show this help."));
    const QCommandLineOption version(QStringLiteral("version"),
                                     tr("Show the versions of the program and the plug-in."));
    const QList<QCommandLineOption> all = options + QList<QCommandLineOption>{help, version};
    parser.addOptions(all);
    if (!parser.parse(QStringList{QStringLiteral("asciiexport")} + arguments)) {
        *status = usageError(command, parseError(parser, all));
        return false;
    }
    if (parser.isSet(help)) {
        std::fputs(helpText(parser, command, all).toLocal8Bit().constData(), stdout);
        *status = 0;
        return false;
    }
    if (parser.isSet(version)) {
        // The plug-in the command would load; only some commands take --plugin.
        const QString plugin = QStringLiteral("plugin");
        *status =
            printVersion(parser.optionNames().contains(plugin) ? localFilePath(parser.value(plugin))
                                                               : PluginHost::defaultPluginPath());
        return false;
    }
    return true;
}

QCommandLineOption pluginOption()
{
    return QCommandLineOption(
        QStringLiteral("plugin"),
        tr("The plug-in file to load (default: the first libasciiexporter.so in the folders "
           "of ASCIIEXPORT_PLUGIN_PATH, else the one installed with the program; see below)."),
        tr("PATH"));
}

QCommandLineOption settingsOption()
{
    return QCommandLineOption(QStringLiteral("settings"),
                              tr("The INI file that holds the settings (default: see below)."),
                              tr("FILE"));
}

QCommandLineOption fillOption()
{
    return QCommandLineOption(
        QStringLiteral("fill"),
        tr("For PX4 flight logs, how the samples of the IMU take the messages of slower topics: "
           "none (the default: each message goes onto the one sample nearest to it), hold (each "
           "sample takes the latest message before it) or nearest (the nearest message on "
           "either side)."),
        tr("POLICY"), QStringLiteral("none"));
}

QCommandLineOption maxAgeOption()
{
    return QCommandLineOption(
        QStringLiteral("max-age"),
        tr("For --fill hold and nearest: how far from a sample, in milliseconds, a message may "
           "lie at most (default 500)."),
        tr("MS"), QStringLiteral("500"));
}

bool readFillPolicy(const QCommandLineParser &parser, const QCommandLineOption &fill,
                    const QCommandLineOption &maxAge, UlogFillPolicy *policy, QString *message)
{
    const QString kind = parser.value(fill);
    if (kind == QLatin1String("none"))
        policy->kind = UlogFillPolicy::Kind::None;
    else if (kind == QLatin1String("hold"))
        policy->kind = UlogFillPolicy::Kind::Hold;
    else if (kind == QLatin1String("nearest"))
        policy->kind = UlogFillPolicy::Kind::Nearest;
    else {
        *message = tr("--fill takes none, hold or nearest, not \"%1\"").arg(kind);
        return false;
    }
    bool ok = false;
    policy->maxAgeMs = parser.value(maxAge).toInt(&ok);
    if (!ok || policy->maxAgeMs < 0) {
        *message = tr("--max-age takes a whole number of milliseconds, 0 or more");
        return false;
    }
    if (parser.isSet(maxAge) && policy->kind == UlogFillPolicy::Kind::None) {
        *message = tr("--max-age applies to --fill hold and nearest only");
        return false;
    }
    return true;
}

bool parseOptionsOnly(QCommandLineParser &parser, const QList<QCommandLineOption> &options,
                      const QString &command, const QString &description,
                      const QStringList &arguments, int *status)
{
    if (!parse(parser, options, command, description, arguments, status))
        return false;
    if (!parser.positionalArguments().isEmpty()) {
        *status = usageError(
            command, tr("unexpected argument \"%1\"").arg(parser.positionalArguments().first()));
        return false;
    }
    return true;
}

QString pluginFile(const QCommandLineParser &parser, const QCommandLineOption &option)
{
    return parser.isSet(option) ? localFilePath(parser.value(option))
                                : PluginHost::defaultPluginPath();
}

QString settingsFile(const QCommandLineParser &parser, const QCommandLineOption &option)
{
    if (parser.isSet(option))
        return localFilePath(parser.value(option));
    return defaultSettingsFile();
}

bool loadPlugin(PluginHost &host, const QString &settings, SettingsFileState *state)
{
    if (!host.load()) {
        printError(host.errorString());
        return false;
    }
    if (settings.isEmpty())
        return true;
    state->missing = !QFileInfo::exists(settings);
    SettingsSynchronizer *store = host.factory()->settings();
    QStringList problems;
    if (!store->load(settings, &problems)) {
        const QString reason = unreadableReason(settings);
        printError(reason.isEmpty()
                       ? tr("%1: the settings cannot be read").arg(settings)
                       : tr("%1: the settings cannot be read: %2").arg(settings, reason));
        return false;
    }
    // The store has taken what QSettings found; what it found besides the
    // plug-in's settings is told here, line by line.
    QFile file(settings);
    if (!state->missing && file.open(QIODevice::ReadOnly)) {
        state->warnings =
            SettingsFileCheck::findings(settings, file.readAll(), SettingNames::known(store));
    }
    for (const QString &problem : qAsConst(problems))
        state->warnings.append(tr("%1: ignored: %2").arg(settings, problem));
    return true;
}

void noteMissingSettings(const QString &command, const QString &fileName)
{
    const QString consequence = command == QLatin1String("options")
        ? tr("%1 does not exist yet: OK or Apply makes it")
        : tr("%1 does not exist yet: the default settings apply");
    printError(QStringLiteral("asciiexport %1: ").arg(command)
               + tr("note: %1").arg(consequence.arg(fileName)));
}

QStringList choiceWarnings(const SettingsSynchronizer *store, const QString &fileName)
{
    QStringList warnings;
    for (const ChoiceGroup *group : {&ChoiceGroup::delimiter(), &ChoiceGroup::emptyField()}) {
        const QString contradiction = group->contradiction(store);
        if (!contradiction.isEmpty())
            warnings.append(tr("%1: %2").arg(fileName, contradiction));
    }
    if (ChoiceGroup::delimiter().writtenText(store).isEmpty())
        warnings.append(tr("%1: %2").arg(fileName, emptyDelimiterText()));
    return warnings;
}

QString emptyDelimiterText()
{
    return tr("useOtherDelimiter is on with an empty otherDelimiter: the fields of a line "
              "would run together");
}

bool warnOrRefuse(const QString &command, const QStringList &warnings, bool strict, int *status)
{
    for (int i = 0; i < warnings.size(); ++i) {
        const QString &warning = warnings.at(i);
        if (!strict) {
            printError(QStringLiteral("asciiexport %1: ").arg(command)
                       + tr("warning: %1").arg(warning));
        } else if (i + 1 < warnings.size()) {
            printError(QStringLiteral("asciiexport %1: %2").arg(command, warning));
        } else {
            *status = usageError(command, warning);
            return false;
        }
    }
    return true;
}

int writeOutput(
    const QString &fileName,
    const std::function<bool(QIODevice *device, const QString &shownName, QString *message)> &write)
{
    OutputFile file(fileName);
    const QString shownName =
        fileName == OutputFile::standardOutputName() ? tr("(standard output)") : fileName;
    if (!file.device()->open(QIODevice::WriteOnly)) {
        printError(tr("%1: cannot be written: %2").arg(shownName, file.errorString()));
        return 1;
    }
    QString message;
    if (!write(file.device(), shownName, &message)) {
        if (!file.readerWentAway())
            printError(message);
        return 1;
    }
    if (!file.commit()) {
        if (!file.readerWentAway())
            printError(tr("%1: cannot be written: %2").arg(shownName, file.errorString()));
        return 1;
    }
    return 0;
}

} // namespace CommandLine
