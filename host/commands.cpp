#include "commands.h"

#include "exportjob.h"
#include "localfilepath.h"
#include "outputnamer.h"
#include "pluginhost.h"
#include "progressbar.h"
#include "recordinggenerator.h"
#include "samplereader.h"
#include "settingsdialog.h"
#include "versiontext.h"

#include <abstractexporterfactory.h>
#include <abstractoptionspage.h>
#include <settingssynchronizer.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <QStandardPaths>

#include <cmath>
#include <cstdio>

#include <unistd.h>

namespace Commands {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Commands", text);
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

// Parses @p arguments; on --help prints the help and sets @p status to 0,
// on --version prints the versions and sets @p status as printVersion()
// does, on a parse error reports it and sets @p status to 2.
bool parse(QCommandLineParser &parser, const QString &command, const QString &description,
           const QStringList &arguments, int *status)
{
    parser.setApplicationDescription(description);
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, tr("Show this help."));
    const QCommandLineOption version(QStringLiteral("version"),
                                     tr("Show the versions of the program and the plug-in."));
    parser.addOptions({help, version});
    if (!parser.parse(QStringList{QStringLiteral("asciiexport")} + arguments)) {
        *status = usageError(command, parser.errorText());
        return false;
    }
    if (parser.isSet(help)) {
        // The first line names the program as it was called; name the command too.
        QString text = parser.helpText();
        const int start = text.indexOf(QLatin1Char(' ')) + 1;
        text.replace(start, text.indexOf(QLatin1Char(' '), start) - start, QStringLiteral("asciiexport ") + command);
        std::fputs(text.toLocal8Bit().constData(), stdout);
        *status = 0;
        return false;
    }
    if (parser.isSet(version)) {
        // The plug-in the command would load; only some commands take --plugin.
        const QString plugin = QStringLiteral("plugin");
        *status = printVersion(parser.optionNames().contains(plugin) ? localFilePath(parser.value(plugin))
                                                                     : PluginHost::defaultPluginPath());
        return false;
    }
    return true;
}

QCommandLineOption pluginOption()
{
    return QCommandLineOption(QStringLiteral("plugin"),
                              tr("The plug-in file to load (default: %1, the first libasciiexporter.so in the "
                                 "folders of ASCIIEXPORT_PLUGIN_PATH, else the one installed with the program).")
                                  .arg(PluginHost::defaultPluginPath()),
                              tr("PATH"));
}

QCommandLineOption settingsOption()
{
    return QCommandLineOption(QStringLiteral("settings"),
                              tr("The INI file that holds the settings (default: %1).")
                                  .arg(QDir::toNativeSeparators(QStandardPaths::writableLocation(
                                           QStandardPaths::AppConfigLocation) + QStringLiteral("/asciiexport.ini"))),
                              tr("FILE"));
}

// As parse(), for a command that takes options only.
bool parseOptionsOnly(QCommandLineParser &parser, const QString &command, const QString &description,
                      const QStringList &arguments, int *status)
{
    if (!parse(parser, command, description, arguments, status))
        return false;
    if (!parser.positionalArguments().isEmpty()) {
        *status = usageError(command, tr("unexpected argument \"%1\"").arg(parser.positionalArguments().first()));
        return false;
    }
    return true;
}

// The plug-in file the user named, or the one beside the program.
QString pluginFile(const QCommandLineParser &parser, const QCommandLineOption &option)
{
    return parser.isSet(option) ? localFilePath(parser.value(option)) : PluginHost::defaultPluginPath();
}

QString settingsFile(const QCommandLineParser &parser, const QCommandLineOption &option)
{
    if (parser.isSet(option))
        return localFilePath(parser.value(option));
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + QStringLiteral("/asciiexport.ini");
}

// Loads the plug-in and its stored settings; false after reporting why not.
bool loadPlugin(PluginHost &host, const QString &settings)
{
    if (!host.load()) {
        printError(host.errorString());
        return false;
    }
    if (settings.isEmpty())
        return true;
    QStringList problems;
    if (!host.factory()->settings()->load(settings, &problems)) {
        printError(tr("%1: the settings cannot be read").arg(settings));
        return false;
    }
    for (const QString &problem : qAsConst(problems))
        printError(tr("%1: ignored: %2").arg(settings, problem));
    return true;
}

bool saveSettings(SettingsSynchronizer *store, const QString &fileName)
{
    const QFileInfo file(fileName);
    if (!QDir().mkpath(file.absolutePath()))
        return false;
    return store->save(fileName);
}

} // namespace

int exportRecordings(const QStringList &arguments)
{
    const QString command = QStringLiteral("export");
    QCommandLineParser parser;
    const QCommandLineOption plugin = pluginOption();
    const QCommandLineOption settings = settingsOption();
    const QCommandLineOption set(QStringLiteral("set"),
                                 tr("Change one setting for this run only; may be given again."),
                                 tr("KEY=VALUE"));
    const QCommandLineOption output({QStringLiteral("o"), QStringLiteral("output")},
                                    tr("Write exactly this file (one recording only)."), tr("FILE"));
    const QCommandLineOption outputDir(QStringLiteral("output-dir"),
                                       tr("Write the files into this folder instead of beside the recordings."),
                                       tr("DIR"));
    const QCommandLineOption progress(QStringLiteral("progress"),
                                      tr("Show progress even when standard error is not a terminal."));
    const QCommandLineOption quiet({QStringLiteral("q"), QStringLiteral("quiet")}, tr("Show no progress."));
    parser.addOptions({plugin, settings, set, output, outputDir, progress, quiet});
    parser.addPositionalArgument(QStringLiteral("RECORDING"), tr("Recordings to export (JSON Lines)."),
                                 QStringLiteral("RECORDING..."));
    int status = 0;
    if (!parse(parser, command,
               tr("Exports recordings as delimited text, one file per recording. The output file is named "
                  "by the settings outputFileFormat and outputFileExtension unless --output is given."),
               arguments, &status))
        return status;

    QStringList recordings;
    for (const QString &recording : parser.positionalArguments())
        recordings.append(localFilePath(recording));
    if (recordings.isEmpty())
        return usageError(command, tr("no recording given"));
    if (parser.isSet(output) && parser.isSet(outputDir))
        return usageError(command, tr("--output and --output-dir exclude each other"));
    if (parser.isSet(output) && recordings.size() > 1)
        return usageError(command, tr("--output takes one recording only; use --output-dir for several"));
    if (parser.isSet(progress) && parser.isSet(quiet))
        return usageError(command, tr("--progress and --quiet exclude each other"));
    QList<QPair<QString, QString>> changes;
    for (const QString &change : parser.values(set)) {
        const int equals = change.indexOf(QLatin1Char('='));
        if (equals <= 0)
            return usageError(command, tr("--set takes KEY=VALUE, not \"%1\"").arg(change));
        changes.append({change.left(equals), change.mid(equals + 1)});
    }

    PluginHost host(pluginFile(parser, plugin));
    if (!loadPlugin(host, settingsFile(parser, settings)))
        return 1;
    AbstractExporterFactory *factory = host.factory();
    SettingsSynchronizer *store = factory->settings();
    for (const auto &change : qAsConst(changes)) {
        QVariant value;
        if (!store->valueFromText(change.first, change.second, &value))
            return usageError(command, tr("%1 takes true, false, 1 or 0, not \"%2\"").arg(change.first, change.second));
        store->setSetting(change.first, value);
    }

    const bool showProgress = parser.isSet(progress) || (!parser.isSet(quiet) && ::isatty(STDERR_FILENO));
    ProgressBar bar(stderr);
    const OutputNamer namer(store->setting(QStringLiteral("outputFileFormat")).toString(),
                            factory->fileExtension(), parser.value(outputDir), QDateTime::currentDateTime());
    QHash<QString, QString> written;  // output file -> recording
    ExportJob job(factory);
    for (int i = 0; i < recordings.size(); ++i) {
        const QString &recording = recordings.at(i);
        const auto name = [&](const QVariantMap &properties, QString *problem) {
            const QString file = parser.isSet(output)
                ? QFileInfo(localFilePath(parser.value(output))).absoluteFilePath()
                : namer.fileName(recording, i + 1, properties);
            if (written.contains(file)) {
                *problem = tr("%1: the output file %2 was written for %3 already")
                               .arg(recording, file, written.value(file));
                return QString();
            }
            written.insert(file, recording);
            return file;
        };
        const bool done = job.run(recording, name, showProgress ? &bar : nullptr);
        bar.clear();
        if (!done) {
            printError(job.errorString());
            status = 1;
        }
    }
    return status;
}

int listSettings(const QStringList &arguments)
{
    const QString command = QStringLiteral("settings");
    QCommandLineParser parser;
    const QCommandLineOption plugin = pluginOption();
    const QCommandLineOption settings = settingsOption();
    parser.addOptions({plugin, settings});
    int status = 0;
    if (!parseOptionsOnly(parser, command,
                          tr("Lists every setting of the plug-in: its current value, its default and its description."),
                          arguments, &status))
        return status;

    PluginHost host(pluginFile(parser, plugin));
    if (!loadPlugin(host, settingsFile(parser, settings)))
        return 1;
    const SettingsSynchronizer *store = host.factory()->settings();
    const auto text = [](const QVariant &value) -> QString {
        if (!value.isValid())
            return tr("(none)");
        if (value.userType() == QMetaType::Bool)
            return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
        return QLatin1Char('"') + value.toString() + QLatin1Char('"');
    };
    for (const QString &key : store->keys()) {
        QString line = QStringLiteral("%1: %2 (default: %3)")
                           .arg(key, text(store->setting(key)), text(store->defaultSetting(key)));
        const QString description = store->description(key);
        if (!description.isEmpty())
            line += QStringLiteral("  ") + description;
        printLine(stdout, line);
    }
    return 0;
}

int editOptions(const QStringList &arguments)
{
    const QString command = QStringLiteral("options");
    QCommandLineParser parser;
    const QCommandLineOption plugin = pluginOption();
    const QCommandLineOption settings = settingsOption();
    parser.addOptions({plugin, settings});
    int status = 0;
    if (!parseOptionsOnly(parser, command, tr("Shows the settings dialog with the plug-in's options page."), arguments,
                          &status))
        return status;

    const QString fileName = settingsFile(parser, settings);
    PluginHost host(pluginFile(parser, plugin));
    if (!loadPlugin(host, fileName))
        return 1;
    SettingsSynchronizer *store = host.factory()->settings();
    SettingsDialog dialog(host.factory()->optionsPages(), [store, fileName] {
        return saveSettings(store, fileName);
    });
    dialog.exec();
    return 0;
}

int showInfo(const QStringList &arguments)
{
    const QString command = QStringLiteral("info");
    QCommandLineParser parser;
    const QCommandLineOption plugin = pluginOption();
    const QCommandLineOption settings = settingsOption();
    parser.addOptions({plugin, settings});
    int status = 0;
    if (!parseOptionsOnly(parser, command, tr("Shows the plug-in's metadata, name, version and file extension."),
                          arguments, &status))
        return status;

    PluginHost host(pluginFile(parser, plugin));
    if (!loadPlugin(host, parser.isSet(settings) ? localFilePath(parser.value(settings)) : QString()))
        return 1;
    const QJsonObject metaData = host.metaData();
    const int qtVersion = metaData.value(QStringLiteral("version")).toInt();
    const AbstractExporterFactory *factory = host.factory();
    const QList<QPair<QString, QString>> rows{
        {tr("Plug-in"), QDir::toNativeSeparators(host.fileName())},
        {tr("IID"), metaData.value(QStringLiteral("IID")).toString()},
        {tr("Class"), metaData.value(QStringLiteral("className")).toString()},
        {tr("Built for Qt"), QStringLiteral("%1.%2").arg(qtVersion >> 16).arg((qtVersion >> 8) & 0xFF)},
        {tr("Debug build"), metaData.value(QStringLiteral("debug")).toBool() ? tr("yes") : tr("no")},
        {tr("Name"), factory->name()},
        {tr("Version"), factory->version()},
        {tr("File extension"), factory->fileExtension()},
    };
    for (const auto &row : rows)
        printLine(stdout, QStringLiteral("%1 %2").arg(row.first + QLatin1Char(':'), -15).arg(row.second));
    return 0;
}

int generate(const QStringList &arguments)
{
    const QString command = QStringLiteral("generate");
    QCommandLineParser parser;
    const QCommandLineOption samples(QStringLiteral("samples"), tr("Number of samples (default 1000)."),
                                     tr("N"), QStringLiteral("1000"));
    const QCommandLineOption rate(QStringLiteral("rate"), tr("Samples per second (default 100)."), tr("HZ"),
                                  QStringLiteral("100"));
    const QCommandLineOption groups(QStringLiteral("groups"),
                                    tr("Comma-separated sample keys to write, or all (the default)."),
                                    tr("LIST"), QStringLiteral("all"));
    const QCommandLineOption seed(QStringLiteral("seed"), tr("Seed of the noise (default 1)."), tr("S"),
                                  QStringLiteral("1"));
    const QCommandLineOption output({QStringLiteral("o"), QStringLiteral("output")},
                                    tr("The recording file to write."), tr("FILE"));
    parser.addOptions({samples, rate, groups, seed, output});
    int status = 0;
    if (!parseOptionsOnly(parser, command,
                          tr("Writes a synthetic recording: the same options give the same bytes. Keys: %1.")
                          .arg(SampleReader::keys().join(QStringLiteral(", "))),
                          arguments, &status))
        return status;
    if (!parser.isSet(output))
        return usageError(command, tr("--output is required"));

    GeneratorOptions options;
    bool ok = false;
    options.samples = parser.value(samples).toLongLong(&ok);
    if (!ok || options.samples < 0)
        return usageError(command, tr("--samples takes a whole number of 0 or more"));
    options.rate = parser.value(rate).toDouble(&ok);
    if (!ok || !std::isfinite(options.rate) || options.rate <= 0.0)
        return usageError(command, tr("--rate takes a number greater than 0"));
    options.seed = parser.value(seed).toULongLong(&ok);
    if (!ok)
        return usageError(command, tr("--seed takes a whole number of 0 or more"));
    if (parser.value(groups) != QLatin1String("all")) {
        const QStringList known = SampleReader::keys();
        for (const QString &key : parser.value(groups).split(QLatin1Char(','))) {
            const QString trimmed = key.trimmed();
            if (!known.contains(trimmed))
                return usageError(command, tr("unknown sample key \"%1\"").arg(trimmed));
            options.keys.append(trimmed);
        }
    }

    QSaveFile file(localFilePath(parser.value(output)));
    if (!file.open(QIODevice::WriteOnly)) {
        printError(tr("%1: cannot be written: %2").arg(file.fileName(), file.errorString()));
        return 1;
    }
    QString error;
    if (!generateRecording(options, &file, &error)) {
        printError(tr("%1: %2").arg(file.fileName(), error));
        return 1;
    }
    if (!file.commit()) {
        printError(tr("%1: cannot be written: %2").arg(file.fileName(), file.errorString()));
        return 1;
    }
    return 0;
}

} // namespace Commands
