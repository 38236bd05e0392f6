#include "commands.h"

#include "exportjob.h"
#include "groupselection.h"
#include "localfilepath.h"
#include "outputfile.h"
#include "outputnamer.h"
#include "parallelexports.h"
#include "pluginhost.h"
#include "progressbar.h"
#include "recordingconverter.h"
#include "recordinggenerator.h"
#include "recordinginput.h"
#include "recordingreport.h"
#include "sampleselection.h"
#include "samplereader.h"
#include "settingsdialog.h"
#include "ubxgenerator.h"
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
#include <QSet>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

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

int describeRecording(const QString &fileName)
{
    RecordingInput input;
    QStringList lines;
    QString error;
    if (!input.open(fileName) || !RecordingReport::describe(input, fileName, &lines, &error)) {
        printError(error.isEmpty() ? input.errorString() : error);
        return 1;
    }
    for (const QString &line : qAsConst(lines))
        printLine(stdout, line);
    return 0;
}

bool saveSettings(SettingsSynchronizer *store, const QString &fileName)
{
    const QFileInfo file(fileName);
    if (!QDir().mkpath(file.absolutePath()))
        return false;
    return store->save(fileName);
}

// The number of single-character edits between @p a and @p b, ignoring case.
int editDistance(const QString &a, const QString &b)
{
    std::vector<int> row(std::size_t(b.size()) + 1);
    for (int j = 0; j <= b.size(); ++j)
        row[std::size_t(j)] = j;
    for (int i = 1; i <= a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int above = row[std::size_t(j)];
            const bool same = a.at(i - 1).toCaseFolded() == b.at(j - 1).toCaseFolded();
            row[std::size_t(j)] = std::min({above + 1, row[std::size_t(j - 1)] + 1, diagonal + (same ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[std::size_t(b.size())];
}

QString nearest(const QString &key, const QStringList &known)
{
    QString best;
    int bestDistance = INT_MAX;
    for (const QString &candidate : known) {
        const int distance = editDistance(key, candidate);
        if (distance < bestDistance) {
            best = candidate;
            bestDistance = distance;
        }
    }
    return best;
}

// The keys --set takes: the store's, and "highPrecision", which the plug-in
// reads although the store has no default for it.
QStringList knownSettingKeys(const SettingsSynchronizer *store)
{
    QStringList keys = store->keys();
    if (!keys.contains(QStringLiteral("highPrecision")))
        keys.append(QStringLiteral("highPrecision"));
    return keys;
}

// What the plug-in makes of a value that no options page could have stored,
// or an empty text for an ordinary value.
QString oddValue(const QString &key, const QVariant &value)
{
    const QString text = value.toString();
    if (key == QLatin1String("exportOrientation")) {
        for (const char *word : {"Euler", "Matrix", "Quaternion", "None"}) {
            if (text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0)
                return QString();
        }
        return tr("not one of Euler, Matrix, Quaternion and None: the plug-in writes no orientation columns");
    }
    if (key == QLatin1String("highPrecision")) {
        for (const char *word : {"true", "false", "1", "0"}) {
            if (text == QLatin1String(word))
                return QString();
        }
        return value.toBool() ? tr("not one of true, false, 1 and 0: the plug-in reads it as true")
                              : tr("not one of true, false, 1 and 0: the plug-in reads it as false");
    }
    return QString();
}

QString reasonText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace

int exportRecordings(const QStringList &arguments)
{
    const QString command = QStringLiteral("export");
    QCommandLineParser parser;
    const QCommandLineOption plugin = pluginOption();
    const QCommandLineOption settings = settingsOption();
    const QCommandLineOption set(QStringLiteral("set"),
                                 tr("Change one setting for this run only; may be given again. An unknown "
                                    "key is an error."),
                                 tr("KEY=VALUE"));
    const QCommandLineOption strict(QStringLiteral("strict"),
                                    tr("Refuse setting values that the options page cannot make, instead of "
                                       "warning about them."));
    const QCommandLineOption output({QStringLiteral("o"), QStringLiteral("output")},
                                    tr("Write exactly this file (one recording only); - writes to standard "
                                       "output."),
                                    tr("FILE"));
    const QCommandLineOption outputDir(QStringLiteral("output-dir"),
                                       tr("Write the files into this folder, made if need be, instead of beside "
                                          "the recordings."),
                                       tr("DIR"));
    const QCommandLineOption skipBadLines(QStringLiteral("skip-bad-lines"),
                                          tr("Export the good samples of a damaged recording: warn about each "
                                             "bad line and go on."));
    const QCommandLineOption groups(QStringLiteral("groups"),
                                    tr("The data groups to export, comma-separated, as the options page names "
                                       "them (such as \"packet counter,rate of turn,quaternion\"), or all or "
                                       "none; --set goes on from there."),
                                    tr("LIST"));
    const QCommandLineOption from(QStringLiteral("from"),
                                  tr("Export from this sample on: an index (0 is the first sample) or seconds "
                                     "from the start such as 12.5s."),
                                  tr("WHERE"));
    const QCommandLineOption to(QStringLiteral("to"),
                                tr("Export up to this sample, which is not exported itself: an index or "
                                   "seconds from the start."),
                                tr("WHERE"));
    const QCommandLineOption every(QStringLiteral("every"), tr("Export every N-th of these samples."), tr("N"));
    const QCommandLineOption jobs(QStringLiteral("jobs"),
                                  tr("Export up to N recordings at a time, each in a process of its own; the "
                                     "files and messages are those of one export after another."),
                                  tr("N"));
    const QCommandLineOption progress(QStringLiteral("progress"),
                                      tr("Show progress even when standard error is not a terminal."));
    const QCommandLineOption quiet({QStringLiteral("q"), QStringLiteral("quiet")},
                                   tr("Show no progress, and do not name the files written."));
    parser.addOptions({plugin, settings, set, strict, groups, from, to, every, output, outputDir, skipBadLines,
                       jobs, progress, quiet});
    parser.addPositionalArgument(QStringLiteral("RECORDING"),
                                 tr("Recordings to export (JSON Lines or UBX logs); - reads one from standard "
                                    "input."),
                                 QStringLiteral("RECORDING..."));
    int status = 0;
    if (!parse(parser, command,
               tr("Exports recordings as delimited text, one file per recording. The output file is named "
                  "by the settings outputFileFormat and outputFileExtension unless --output is given.\n"
                  "Exit status: 0 when every recording was exported, 1 when one failed, 2 for a usage error "
                  "(an unknown option or setting key, a value a setting cannot take)."),
               arguments, &status))
        return status;

    QStringList recordings;
    for (const QString &recording : parser.positionalArguments())
        recordings.append(localFilePath(recording));
    if (recordings.isEmpty())
        return usageError(command, tr("no recording given"));
    if (recordings.count(QStringLiteral("-")) > 1)
        return usageError(command, tr("standard input (-) can be read once only"));
    if (parser.isSet(output) && parser.isSet(outputDir))
        return usageError(command, tr("--output and --output-dir exclude each other"));
    if (parser.isSet(output) && parser.value(output).isEmpty())
        return usageError(command, tr("--output takes a file name, or - for standard output"));
    if (parser.isSet(outputDir) && parser.value(outputDir).isEmpty())
        return usageError(command, tr("--output-dir takes a folder name"));
    if (parser.isSet(output) && recordings.size() > 1)
        return usageError(command, tr("--output takes one recording only; use --output-dir for several"));
    if (parser.isSet(progress) && parser.isSet(quiet))
        return usageError(command, tr("--progress and --quiet exclude each other"));
    SampleSelection selection;
    QString problem;
    if (parser.isSet(from) && !SampleSelection::parseBound(parser.value(from), &selection.from, &problem))
        return usageError(command, QStringLiteral("--from ") + problem);
    if (parser.isSet(to) && !SampleSelection::parseBound(parser.value(to), &selection.to, &problem))
        return usageError(command, QStringLiteral("--to ") + problem);
    if (selection.from.kind == selection.to.kind && selection.to.kind != SampleSelection::Bound::Kind::None
        && selection.from.value >= selection.to.value)
        return usageError(command, tr("--from must come before --to"));
    bool ok = true;
    if (parser.isSet(every)) {
        selection.every = parser.value(every).toLongLong(&ok);
        if (!ok || selection.every < 1)
            return usageError(command, tr("--every takes a whole number of 1 or more"));
    }
    int jobCount = 1;
    if (parser.isSet(jobs)) {
        jobCount = parser.value(jobs).toInt(&ok);
        if (!ok || jobCount < 1)
            return usageError(command, tr("--jobs takes a whole number of 1 or more"));
        if (jobCount > 1 && recordings.contains(QStringLiteral("-")))
            return usageError(command, tr("--jobs cannot share standard input (-) between processes"));
    }
    QList<QPair<QString, QString>> changes;
    for (const QString &change : parser.values(set)) {
        const int equals = change.indexOf(QLatin1Char('='));
        if (equals <= 0)
            return usageError(command, tr("--set takes KEY=VALUE, not \"%1\"").arg(change));
        changes.append({change.left(equals), change.mid(equals + 1)});
    }

    PluginHost host(pluginFile(parser, plugin));
    const QString settingsFileName = settingsFile(parser, settings);
    if (!loadPlugin(host, settingsFileName))
        return 1;
    AbstractExporterFactory *factory = host.factory();
    SettingsSynchronizer *store = factory->settings();
    if (parser.isSet(groups) && !GroupSelection::apply(parser.value(groups), store, &problem))
        return usageError(command, problem);
    const QStringList knownKeys = knownSettingKeys(store);
    // Odd values are warned about, or refused with --strict; the plug-in
    // reads them as it always does.
    QStringList warnings;
    QSet<QString> changed;
    for (const auto &change : qAsConst(changes)) {
        if (!knownKeys.contains(change.first)) {
            return usageError(command, tr("unknown setting \"%1\"; did you mean \"%2\"?")
                                           .arg(change.first, nearest(change.first, knownKeys)));
        }
        QVariant value;
        if (!store->valueFromText(change.first, change.second, &value))
            return usageError(command, tr("%1 takes true, false, 1 or 0, not \"%2\"").arg(change.first, change.second));
        const QString odd = oddValue(change.first, value);
        if (!odd.isEmpty())
            warnings.append(tr("--set %1=%2: %3").arg(change.first, change.second, odd));
        store->setSetting(change.first, value);
        changed.insert(change.first);
    }
    for (const QString &key : {QStringLiteral("exportOrientation"), QStringLiteral("highPrecision")}) {
        if (changed.contains(key) || !store->hasStoredSetting(key))
            continue;
        const QVariant value = store->setting(key);
        const QString odd = oddValue(key, value);
        if (!odd.isEmpty())
            warnings.append(tr("%1: %2=%3: %4").arg(settingsFileName, key, value.toString(), odd));
    }
    for (const QString &warning : qAsConst(warnings)) {
        if (parser.isSet(strict))
            return usageError(command, warning);
        printError(tr("asciiexport export: warning: %1").arg(warning));
    }

    if (parser.isSet(outputDir) && !QDir().mkpath(localFilePath(parser.value(outputDir)))) {
        printError(tr("%1: the folder cannot be made: %2").arg(parser.value(outputDir), reasonText(errno)));
        return 1;
    }
    QSet<QString> recordingFiles;
    for (const QString &recording : qAsConst(recordings)) {
        const QFileInfo info(recording);
        if (info.exists())
            recordingFiles.insert(info.canonicalFilePath());
    }

    const bool showProgress = parser.isSet(progress) || (!parser.isSet(quiet) && ::isatty(STDERR_FILENO));
    ProgressBar bar(stderr);
    const OutputNamer namer(store->setting(QStringLiteral("outputFileFormat")).toString(),
                            factory->fileExtension(), parser.value(outputDir), QDateTime::currentDateTime());
    QHash<QString, QString> written;  // output file -> recording
    const auto outputName = [&](int i, const QVariantMap &properties, QString *problem) {
        const QString &recording = recordings.at(i);
        if (parser.isSet(output) && parser.value(output) == OutputFile::standardOutputName())
            return OutputFile::standardOutputName();
        const QString file = parser.isSet(output)
            ? QFileInfo(localFilePath(parser.value(output))).absoluteFilePath()
            : namer.fileName(recording, i + 1, properties, problem);
        if (file.isEmpty())
            return QString();
        if (written.contains(file)) {
            *problem = tr("%1: the output file %2 was written for %3 already").arg(recording, file, written.value(file));
            return QString();
        }
        // A later recording of the batch must still be there when its turn comes.
        const QFileInfo target(file);
        if (target.exists() && recordingFiles.contains(target.canonicalFilePath())
            && target.canonicalFilePath() != QFileInfo(recording).canonicalFilePath()) {
            *problem = tr("%1: the output file %2 would replace a recording of this run").arg(recording, file);
            return QString();
        }
        written.insert(file, recording);
        return file;
    };

    ExportJob job(factory);
    job.setSelection(selection);
    job.setSkipBadLines(parser.isSet(skipBadLines), [&bar](const QString &warning) {
        bar.clear();
        printError(warning);
    });
    // Names given beforehand, when the exports run side by side; a problem
    // instead of a name where the recording must not be exported.
    QVector<QPair<QString, QString>> givenNames;
    // Exports one recording, says on standard error what there is to say and
    // gives the exit status.
    const auto exportOne = [&](int i, const ExportJob::Progress &followReading) {
        const QString &recording = recordings.at(i);
        const auto name = [&](const QVariantMap &properties, QString *problem) {
            if (givenNames.isEmpty())
                return outputName(i, properties, problem);
            *problem = givenNames.at(i).second;
            return givenNames.at(i).first;
        };
        const bool done = job.run(recording, name, followReading);
        bar.clear();
        const QString shownName = recording == QLatin1String("-") ? ExportJob::standardInputName() : recording;
        if (job.linesSkipped() > 0) {
            printError(tr("%1: samples written: %2, bad lines skipped: %3")
                           .arg(shownName)
                           .arg(job.samplesWritten())
                           .arg(job.linesSkipped()));
        }
        if (!parser.isSet(quiet) && !job.readingNotice().isEmpty())
            printError(job.readingNotice());
        if (!done) {
            if (!job.errorString().isEmpty())
                printError(job.errorString());
            return 1;
        }
        // Standard output is the file itself; any other file is named.
        if (!parser.isSet(quiet) && job.outputFile() != OutputFile::standardOutputName())
            printError(tr("%1 -> %2").arg(shownName, job.outputFile()));
        return 0;
    };

    if (jobCount > 1 && recordings.size() > 1) {
        // The names are worked out here, in the order of the command line, so
        // that the same recordings clash as they would one after another.
        QVector<qint64> sizes;
        for (int i = 0; i < recordings.size(); ++i) {
            RecordingInput input;
            QString nameProblem;
            const QString name = input.open(recordings.at(i)) ? outputName(i, input.properties(), &nameProblem)
                                                               : QString();
            givenNames.append({name, nameProblem});
            sizes.append(QFileInfo(recordings.at(i)).isFile() ? QFileInfo(recordings.at(i)).size() : 0);
        }
        const QString label = tr("%1 recordings").arg(recordings.size());
        return ParallelExports::run(
            sizes, jobCount, [&exportOne](int i, const ParallelExports::TaskProgress &report) {
                return exportOne(i, [&report](qint64 position, qint64) { report(position); });
            },
            [&](qint64 done, qint64 total) {
                if (showProgress)
                    bar.update(label, done, total);
            },
            [&bar](const QByteArray &text) {
                bar.clear();
                std::fwrite(text.constData(), 1, std::size_t(text.size()), stderr);
                std::fflush(stderr);
            });
    }

    for (int i = 0; i < recordings.size(); ++i) {
        const QString label = recordings.at(i) == QLatin1String("-") ? ExportJob::standardInputName()
                                                                     : QFileInfo(recordings.at(i)).fileName();
        const auto followReading = [&](qint64 position, qint64 size) {
            if (showProgress)
                bar.update(label, position, size);
        };
        status = std::max(status, exportOne(i, followReading));
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
    const QCommandLineOption recording(QStringLiteral("recording"),
                                       tr("Show what this recording or UBX log holds instead."), tr("FILE"));
    parser.addOptions({plugin, settings, recording});
    int status = 0;
    if (!parseOptionsOnly(parser, command, tr("Shows the plug-in's metadata, name, version and file extension."),
                          arguments, &status))
        return status;
    if (parser.isSet(recording))
        return describeRecording(localFilePath(parser.value(recording)));

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
                                    tr("The recording file to write; - writes to standard output."), tr("FILE"));
    const QCommandLineOption format(QStringLiteral("format"),
                                    tr("jsonl (the default), or ubx for a receiver log of --samples navigation "
                                       "epochs at --rate a second."),
                                    tr("FORMAT"), QStringLiteral("jsonl"));
    parser.addOptions({samples, rate, groups, seed, output, format});
    int status = 0;
    if (!parseOptionsOnly(parser, command,
                          tr("Writes a synthetic recording: the same options give the same bytes. Keys: %1.")
                          .arg(SampleReader::keys().join(QStringLiteral(", "))),
                          arguments, &status))
        return status;
    if (!parser.isSet(output))
        return usageError(command, tr("--output is required"));
    const bool ubx = parser.value(format) == QLatin1String("ubx");
    if (!ubx && parser.value(format) != QLatin1String("jsonl"))
        return usageError(command, tr("--format takes jsonl or ubx, not \"%1\"").arg(parser.value(format)));
    if (ubx && parser.isSet(groups))
        return usageError(command, tr("--groups applies to JSON Lines recordings only"));

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

    const QString fileName = localFilePath(parser.value(output));
    if (fileName.isEmpty())
        return usageError(command, tr("--output takes a file name, or - for standard output"));
    OutputFile file(fileName);
    const QString shownName = fileName == OutputFile::standardOutputName() ? tr("(standard output)") : fileName;
    if (!file.device()->open(QIODevice::WriteOnly)) {
        printError(tr("%1: cannot be written: %2").arg(shownName, file.errorString()));
        return 1;
    }
    // An output file that is not committed is not made.
    QString error;
    if (!(ubx ? generateUbxLog(options, file.device(), &error)
              : generateRecording(options, file.device(), &error))) {
        if (!file.readerWentAway())
            printError(tr("%1: %2").arg(shownName, error));
        return 1;
    }
    if (!file.commit()) {
        if (!file.readerWentAway())
            printError(tr("%1: cannot be written: %2").arg(shownName, file.errorString()));
        return 1;
    }
    return 0;
}

int convert(const QStringList &arguments)
{
    const QString command = QStringLiteral("convert");
    QCommandLineParser parser;
    const QCommandLineOption output({QStringLiteral("o"), QStringLiteral("output")},
                                    tr("The JSON Lines recording to write; - writes to standard output."),
                                    tr("FILE"));
    parser.addOption(output);
    parser.addPositionalArgument(QStringLiteral("LOG"), tr("The UBX receiver log to convert."));
    int status = 0;
    if (!parse(parser, command,
               tr("Writes a UBX receiver log as a recording in the JSON Lines format, which exports to the same "
                  "bytes as the log."),
               arguments, &status))
        return status;
    if (parser.positionalArguments().size() != 1)
        return usageError(command, tr("give one log"));
    if (!parser.isSet(output))
        return usageError(command, tr("--output is required"));

    const QString log = localFilePath(parser.positionalArguments().first());
    RecordingInput input;
    if (!input.open(log)) {
        printError(input.errorString());
        return 1;
    }
    if (input.format() != RecordingInput::Format::Ubx) {
        printError(tr("%1: is not a UBX log").arg(log));
        return 1;
    }
    const QString fileName = localFilePath(parser.value(output));
    if (fileName.isEmpty())
        return usageError(command, tr("--output takes a file name, or - for standard output"));
    OutputFile file(fileName);
    const QString shownName = fileName == OutputFile::standardOutputName() ? tr("(standard output)") : fileName;
    if (!file.device()->open(QIODevice::WriteOnly)) {
        printError(tr("%1: cannot be written: %2").arg(shownName, file.errorString()));
        return 1;
    }
    QString error;
    if (!RecordingConverter::convert(input, file.device(), &error)) {
        if (!file.readerWentAway())
            printError(error.startsWith(log) ? error : tr("%1: %2").arg(shownName, error));
        return 1;
    }
    if (!file.commit()) {
        if (!file.readerWentAway())
            printError(tr("%1: cannot be written: %2").arg(shownName, file.errorString()));
        return 1;
    }
    if (!input.readingNotice().isEmpty())
        printError(input.readingNotice());
    return 0;
}

} // namespace Commands
