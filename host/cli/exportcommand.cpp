#include "exportcommand.h"

#include "choicegroup.h"
#include "commandline.h"
#include "commands.h"
#include "groupselection.h"
#include "localfilepath.h"
#include "nearestname.h"
#include "outputfile.h"
#include "parallelexports.h"
#include "pluginhost.h"
#include "recordinginput.h"
#include "settingnames.h"
#include "systemreason.h"

#include <abstractexporterfactory.h>
#include <settingssynchronizer.h>

#include <QCommandLineParser>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include <unistd.h>

namespace Commands {

using namespace CommandLine;

namespace {

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
        return tr("not one of Euler, Matrix, Quaternion and None: the plug-in writes no "
                  "orientation columns");
    }
    if (key == QLatin1String("highPrecision")) {
        for (const char *word : {"true", "false", "1", "0"}) {
            if (text == QLatin1String(word))
                return QString();
        }
        return value.toBool()
            ? tr("not one of true, false, 1 and 0: the plug-in reads it as true")
            : tr("not one of true, false, 1 and 0: the plug-in reads it as false");
    }
    return QString();
}

QString commandName()
{
    return QStringLiteral("export");
}

// Reports a usage error of the export command into @p status; false.
bool refuse(const QString &text, int *status)
{
    *status = usageError(commandName(), text);
    return false;
}

} // namespace

int exportRecordings(const QStringList &arguments)
{
    ExportCommand::Options options;
    int status = 0;
    if (!ExportCommand::readOptions(arguments, &options, &status))
        return status;
    PluginHost host(options.pluginFile);
    SettingsFileState settingsFile;
    if (!loadPlugin(host, options.settingsFile, &settingsFile))
        return 1;
    if (settingsFile.missing && options.settingsNamed && !options.quiet)
        noteMissingSettings(commandName(), options.settingsFile);
    if (!ExportCommand::changeSettings(options, host.factory()->settings(), settingsFile.warnings,
                                       &status))
        return status;
    ExportCommand command(options, host.factory());
    return command.run();
}

bool ExportCommand::readOptions(const QStringList &arguments, Options *options, int *status)
{
    QCommandLineParser parser;
    const QCommandLineOption plugin = pluginOption();
    const QCommandLineOption settings = settingsOption();
    parser.addPositionalArgument(
        QStringLiteral("RECORDING"),
        tr("Recordings to export (JSON Lines, UBX logs or PX4 flight logs); - reads one "
           "from standard input."),
        QStringLiteral("RECORDING..."));
    if (!parse(parser, commandLineOptions(plugin, settings), commandName(),
               tr("Exports recordings as delimited text, one file per recording. The output file "
                  "is named "
                  "by the settings outputFileFormat and outputFileExtension unless --output is "
                  "given.\n"
                  "Exit status: 0 when every recording was exported, 1 when one failed, 2 for a "
                  "usage error "
                  "(an unknown option or setting key, a value a setting cannot take, an empty "
                  "delimiter)."),
               arguments, status))
        return false;
    options->pluginFile = pluginFile(parser, plugin);
    options->settingsFile = settingsFile(parser, settings);
    options->settingsNamed = parser.isSet(settings);
    for (const QString &recording : parser.positionalArguments())
        options->recordings.append(localFilePath(recording));
    options->strict = parser.isSet(QStringLiteral("strict"));
    options->skipBadLines = parser.isSet(QStringLiteral("skip-bad-lines"));
    if (parser.isSet(QStringLiteral("groups")))
        options->groups = parser.value(QStringLiteral("groups"));
    QString problem;
    if (!readFillPolicy(parser, fillOption(), maxAgeOption(), &options->fill, &problem))
        return refuse(problem, status);
    return readOutputs(parser, options, status) && readSelection(parser, options, status)
        && readJobs(parser, options, status) && readChanges(parser, options, status);
}

QList<QCommandLineOption> ExportCommand::commandLineOptions(const QCommandLineOption &plugin,
                                                            const QCommandLineOption &settings)
{
    const QCommandLineOption set(
        QStringLiteral("set"),
        tr("Change one setting for this run only; may be given again. An unknown "
           "key is an error."),
        tr("KEY=VALUE"));
    const QCommandLineOption strict(
        QStringLiteral("strict"),
        tr("Refuse what the warnings about settings name (values that the options page "
           "cannot make, delimiter or empty-field settings that contradict each other, "
           "what the settings file holds besides settings), and exports that hold no data "
           "of the chosen groups, instead of warning about them."));
    const QCommandLineOption delimiter(
        QStringLiteral("delimiter"),
        tr("The field delimiter, set as the options page sets it: tab (or \\t), space, comma "
           "(or ,), semicolon (or ;), or any other text, which becomes the custom delimiter. "
           "Excludes --set of the delimiter settings."),
        tr("TEXT"));
    const QCommandLineOption empty(
        QStringLiteral("empty"),
        tr("The text of empty fields, set as the options page sets it: nothing (or \"\"), "
           "NaN, 0, or any other text, which becomes the custom placeholder. Excludes --set "
           "of the empty-field settings."),
        tr("TEXT"));
    const QCommandLineOption output(
        {QStringLiteral("o"), QStringLiteral("output")},
        tr("Write exactly this file (one recording only); - writes to standard "
           "output."),
        tr("FILE"));
    const QCommandLineOption outputDir(
        QStringLiteral("output-dir"),
        tr("Write the files into this folder, made if need be, instead of beside "
           "the recordings."),
        tr("DIR"));
    const QCommandLineOption skipBadLines(
        QStringLiteral("skip-bad-lines"),
        tr("Export the good samples of a damaged recording: warn about each "
           "bad line and go on."));
    const QCommandLineOption groups(
        QStringLiteral("groups"),
        tr("The data groups to export, comma-separated, as the options page names "
           "them (such as \"packet counter,rate of turn,quaternion\"), or all or "
           "none; --set goes on from there."),
        tr("LIST"));
    const QCommandLineOption from(
        QStringLiteral("from"),
        tr("Export from this sample on: an index (0 is the first sample) or seconds "
           "from the start such as 12.5s."),
        tr("WHERE"));
    const QCommandLineOption to(
        QStringLiteral("to"),
        tr("Export up to this sample, which is not exported itself: an index or "
           "seconds from the start."),
        tr("WHERE"));
    const QCommandLineOption every(QStringLiteral("every"),
                                   tr("Export every N-th of these samples."), tr("N"));
    const QCommandLineOption jobs(
        QStringLiteral("jobs"),
        tr("Export up to N recordings at a time, in N worker processes; the files and "
           "messages are those of one export after another."),
        tr("N"));
    const QCommandLineOption progress(
        QStringLiteral("progress"),
        tr("Show progress even when standard error is not a terminal."));
    const QCommandLineOption quiet({QStringLiteral("q"), QStringLiteral("quiet")},
                                   tr("Show no progress, and do not name the files written."));
    return {plugin,         settings, set,      delimiter, empty,     strict,       groups,
            from,           to,       every,    output,    outputDir, skipBadLines, fillOption(),
            maxAgeOption(), jobs,     progress, quiet};
}

// The recordings, where their files go, and how much is said on the way.
bool ExportCommand::readOutputs(const QCommandLineParser &parser, Options *options, int *status)
{
    const bool output = parser.isSet(QStringLiteral("output"));
    const bool outputDir = parser.isSet(QStringLiteral("output-dir"));
    options->output = parser.value(QStringLiteral("output"));
    options->outputDir = parser.value(QStringLiteral("output-dir"));
    options->progress = parser.isSet(QStringLiteral("progress"));
    options->quiet = parser.isSet(QStringLiteral("quiet"));
    const QStringList &recordings = options->recordings;
    if (recordings.isEmpty())
        return refuse(tr("no recording given"), status);
    if (recordings.count(QStringLiteral("-")) > 1)
        return refuse(tr("standard input (-) can be read once only"), status);
    if (output && outputDir)
        return refuse(tr("--output and --output-dir exclude each other"), status);
    if (output && options->output.isEmpty())
        return refuse(tr("--output takes a file name, or - for standard output"), status);
    if (outputDir && options->outputDir.isEmpty())
        return refuse(tr("--output-dir takes a folder name"), status);
    if (output && recordings.size() > 1)
        return refuse(tr("--output takes one recording only; use --output-dir for several"),
                      status);
    if (options->progress && options->quiet)
        return refuse(tr("--progress and --quiet exclude each other"), status);
    return true;
}

bool ExportCommand::readSelection(const QCommandLineParser &parser, Options *options, int *status)
{
    SampleSelection &selection = options->selection;
    QString problem;
    if (parser.isSet(QStringLiteral("from"))
        && !SampleSelection::parseBound(parser.value(QStringLiteral("from")), &selection.from,
                                        &problem))
        return refuse(QStringLiteral("--from ") + problem, status);
    if (parser.isSet(QStringLiteral("to"))
        && !SampleSelection::parseBound(parser.value(QStringLiteral("to")), &selection.to,
                                        &problem))
        return refuse(QStringLiteral("--to ") + problem, status);
    if (selection.from.kind == selection.to.kind
        && selection.to.kind != SampleSelection::Bound::Kind::None
        && selection.from.value >= selection.to.value)
        return refuse(tr("--from must come before --to"), status);
    if (parser.isSet(QStringLiteral("every"))) {
        bool ok = true;
        selection.every = parser.value(QStringLiteral("every")).toLongLong(&ok);
        if (!ok || selection.every < 1)
            return refuse(tr("--every takes a whole number of 1 or more"), status);
    }
    return true;
}

bool ExportCommand::readJobs(const QCommandLineParser &parser, Options *options, int *status)
{
    if (parser.isSet(QStringLiteral("jobs"))) {
        bool ok = true;
        options->jobs = parser.value(QStringLiteral("jobs")).toInt(&ok);
        if (!ok || options->jobs < 1)
            return refuse(tr("--jobs takes a whole number of 1 or more"), status);
        if (options->jobs > 1 && options->recordings.contains(QStringLiteral("-")))
            return refuse(tr("--jobs cannot share standard input (-) between processes"), status);
    }
    return true;
}

bool ExportCommand::readChanges(const QCommandLineParser &parser, Options *options, int *status)
{
    for (const QString &change : parser.values(QStringLiteral("set"))) {
        const int equals = change.indexOf(QLatin1Char('='));
        if (equals <= 0)
            return refuse(tr("--set takes KEY=VALUE, not \"%1\"").arg(change), status);
        options->changes.append({change.left(equals), change.mid(equals + 1)});
    }
    if (parser.isSet(QStringLiteral("delimiter"))) {
        options->delimiter = parser.value(QStringLiteral("delimiter"));
        if (options->delimiter->isEmpty())
            return refuse(tr("--delimiter takes a text, such as tab, space, ; or ,"), status);
    }
    if (parser.isSet(QStringLiteral("empty")))
        options->emptyFieldText = parser.value(QStringLiteral("empty"));
    // Either option sets its whole group; a --set beside it would be undone
    // or would undo it, depending on the order.
    const QPair<QString, const ChoiceGroup *> groups[] = {
        {QStringLiteral("--delimiter"), options->delimiter ? &ChoiceGroup::delimiter() : nullptr},
        {QStringLiteral("--empty"), options->emptyFieldText ? &ChoiceGroup::emptyField() : nullptr},
    };
    for (const auto &group : groups) {
        for (const auto &change : qAsConst(options->changes)) {
            if (group.second && group.second->keys().contains(change.first))
                return refuse(
                    tr("%1 and --set %2 exclude each other").arg(group.first, change.first),
                    status);
        }
    }
    return true;
}

bool ExportCommand::changeSettings(const Options &options, SettingsSynchronizer *store,
                                   const QStringList &fileWarnings, int *status)
{
    QString problem;
    if (options.groups && !GroupSelection::apply(*options.groups, store, &problem))
        return refuse(problem, status);
    // A value that the options page could not have made still exports: the
    // plug-in reads it in a way of its own (oddValue() says which), as it
    // would in the desktop application. So it is warned about, and refused
    // only when strict.
    QStringList warnings = fileWarnings;
    if (!applyChanges(options, store, &warnings, status))
        return false;
    // A group that --delimiter or --empty set is consistent; what is wrong
    // with another is the settings file's, unless --set changed the group.
    const auto named = [&options](const ChoiceGroup &group, const QString &text) {
        for (const auto &change : options.changes) {
            if (group.keys().contains(change.first))
                return text;
        }
        return tr("%1: %2").arg(options.settingsFile, text);
    };
    const auto check = [&](const ChoiceGroup &group, const std::optional<QString> &choice) {
        if (choice) {
            group.choose(*choice, store);
            return;
        }
        const QString contradiction = group.contradiction(store);
        if (!contradiction.isEmpty())
            warnings.append(named(group, contradiction));
    };
    check(ChoiceGroup::delimiter(), options.delimiter);
    check(ChoiceGroup::emptyField(), options.emptyFieldText);
    if (!warnOrRefuse(commandName(), warnings, options.strict, status))
        return false;
    // Fields run together cannot be read back: no file is written so.
    if (ChoiceGroup::delimiter().writtenText(store).isEmpty())
        return refuse(named(ChoiceGroup::delimiter(), emptyDelimiterText()), status);
    return true;
}

// Sets the values of --set, then adds the warnings about odd values of
// those and of the settings file.
bool ExportCommand::applyChanges(const Options &options, SettingsSynchronizer *store,
                                 QStringList *warnings, int *status)
{
    const QStringList knownKeys = SettingNames::known(store);
    QSet<QString> changed;
    for (const auto &change : options.changes) {
        if (!knownKeys.contains(change.first)) {
            return refuse(tr("unknown setting \"%1\"; did you mean \"%2\"?")
                              .arg(change.first, nearestName(change.first, knownKeys)),
                          status);
        }
        QVariant value;
        if (!store->valueFromText(change.first, change.second, &value))
            return refuse(
                tr("%1 takes true, false, 1 or 0, not \"%2\"").arg(change.first, change.second),
                status);
        const QString odd = oddValue(change.first, value);
        if (!odd.isEmpty())
            warnings->append(tr("--set %1=%2: %3").arg(change.first, change.second, odd));
        store->setSetting(change.first, value);
        changed.insert(change.first);
    }
    for (const QString &key :
         {QStringLiteral("exportOrientation"), QStringLiteral("highPrecision")}) {
        if (changed.contains(key) || !store->hasStoredSetting(key))
            continue;
        const QVariant value = store->setting(key);
        const QString odd = oddValue(key, value);
        if (!odd.isEmpty())
            warnings->append(
                tr("%1: %2=%3: %4").arg(options.settingsFile, key, value.toString(), odd));
    }
    return true;
}

ExportCommand::ExportCommand(const Options &options, AbstractExporterFactory *factory)
    : options(options)
    , sideBySide(options.jobs > 1 && options.recordings.size() > 1)
    , showProgress(options.progress || (!options.quiet && ::isatty(STDERR_FILENO)))
    , bar(stderr)
    , namer(factory->settings()->setting(QStringLiteral("outputFileFormat")).toString(),
            factory->fileExtension(), options.outputDir, QDateTime::currentDateTime())
    , names(options.recordings)
    , job(factory)
{
    job.setReadAhead(!sideBySide && QThread::idealThreadCount() > 1);
    job.setSelection(options.selection);
    job.setFillPolicy(options.fill);
    job.setRefuseNoData(options.strict);
    job.setSkipBadLines(options.skipBadLines, [this](const QString &warning) {
        bar.clear();
        printError(warning);
    });
}

int ExportCommand::run()
{
    if (!makeOutputFolder())
        return 1;
    return sideBySide ? exportSideBySide() : exportOneAfterAnother();
}

bool ExportCommand::makeOutputFolder() const
{
    if (options.outputDir.isEmpty() || QDir().mkpath(localFilePath(options.outputDir)))
        return true;
    printError(tr("%1: the folder cannot be made: %2").arg(options.outputDir, systemReason(errno)));
    return false;
}

int ExportCommand::exportOneAfterAnother()
{
    int status = 0;
    for (int i = 0; i < options.recordings.size(); ++i) {
        const QString label = options.recordings.at(i) == QLatin1String("-")
            ? ExportJob::standardInputName()
            : QFileInfo(options.recordings.at(i)).fileName();
        // Without a bar the reading is not followed at all: it costs per sample.
        ExportJob::Progress followReading;
        if (showProgress) {
            followReading = [this, label](qint64 position, qint64 size) {
                bar.update(label, position, size);
            };
        }
        const int exported =
            exportOne(i, followReading, [this, i](const QString &fileName, QString *problem) {
                return names.claim(i, fileName, problem) == OutputNames::Answer::Given;
            });
        names.finished(i, exported == 0);
        status = std::max(status, exported);
    }
    return status;
}

int ExportCommand::exportSideBySide()
{
    // The workers ask this process for their output files, so that the
    // same recordings clash as they would one after another.
    QStringList shownNames;
    QVector<qint64> sizes;
    for (int i = 0; i < options.recordings.size(); ++i) {
        shownNames.append(shownName(i));
        const QFileInfo info(options.recordings.at(i));
        sizes.append(info.isFile() ? info.size() : 0);
    }
    ParallelExports exports(
        [this](int i, const ParallelExports::TaskProgress &report,
               const ParallelExports::Ask &ask) {
            return exportOne(
                i, [&report](qint64 position, qint64) { report(position); },
                [&ask](const QString &fileName, QString *problem) {
                    *problem = QString::fromUtf8(ask(fileName.toUtf8()));
                    return problem->isEmpty();
                });
        },
        [this](int i, const QByteArray &fileName, QByteArray *answer) {
            QString problem;
            const OutputNames::Answer given = names.claim(i, QString::fromUtf8(fileName), &problem);
            *answer = problem.toUtf8();
            return given != OutputNames::Answer::Wait;
        },
        [this](int i, int exitStatus) { names.finished(i, exitStatus == 0); },
        [this](const QByteArray &text) {
            bar.clear();
            std::fwrite(text.constData(), 1, std::size_t(text.size()), stderr);
            std::fflush(stderr);
        });
    const QString label = tr("%1 recordings").arg(options.recordings.size());
    if (showProgress) {
        exports.setProgress(
            [this, label](qint64 done, qint64 total) { bar.update(label, done, total); });
    }
    return exports.run(shownNames, sizes, options.jobs);
}

// Exports recording @p index, says on standard error what there is to say
// and gives the exit status.
int ExportCommand::exportOne(int index, const ExportJob::Progress &followReading,
                             const Claim &claim)
{
    const QString &recording = options.recordings.at(index);
    const auto name = [&](const QVariantMap &properties, QString *problem) {
        const QString file = wantedName(index, properties, problem);
        if (file.isEmpty() || file == OutputFile::standardOutputName())
            return file;
        if (!claim(file, problem))
            return QString();
        // The folders of a pattern are made, below the output folder only.
        if (options.output.isEmpty() && !namer.makeFolders(recording, file, problem))
            return QString();
        return file;
    };
    const bool done = job.run(recording, name, followReading);
    bar.clear();
    if (job.linesSkipped() > 0) {
        printError(tr("%1: samples written: %2, bad lines skipped: %3")
                       .arg(shownName(index))
                       .arg(job.samplesWritten())
                       .arg(job.linesSkipped()));
    }
    if (!options.quiet && !job.readingNotice().isEmpty())
        printError(job.readingNotice());
    if (done && !job.noDataWarning().isEmpty())
        printError(job.noDataWarning());
    if (!done) {
        const QString failure = failureText(index);
        if (!failure.isEmpty())
            printError(failure);
        return 1;
    }
    // Standard output is the file itself; any other file is named.
    if (!options.quiet && job.outputFile() != OutputFile::standardOutputName())
        printError(tr("%1 -> %2").arg(shownName(index), job.outputFile()));
    return 0;
}

// The file recording @p index would be written to, before the batch has a say.
QString ExportCommand::wantedName(int index, const QVariantMap &properties, QString *problem) const
{
    if (options.output.isEmpty())
        return namer.fileName(options.recordings.at(index), index + 1, properties, problem);
    if (options.output == OutputFile::standardOutputName())
        return OutputFile::standardOutputName();
    return QFileInfo(localFilePath(options.output)).absoluteFilePath();
}

QString ExportCommand::shownName(int index) const
{
    const QString &recording = options.recordings.at(index);
    return recording == QLatin1String("-") ? ExportJob::standardInputName() : recording;
}

// What the user is told of the last export's failure: the job's own words,
// with what the options could do about it.
QString ExportCommand::failureText(int index) const
{
    switch (job.failure()) {
    case ExportJob::Failure::BadLine:
        return tr("%1 (--skip-bad-lines exports the other samples)").arg(job.errorString());
    case ExportJob::Failure::BadRecordingObject:
        if (!options.skipBadLines)
            break;
        return tr("%1 (a recording cannot be salvaged without its first line, the recording "
                  "object)")
            .arg(job.errorString());
    case ExportJob::Failure::NoData:
        // Standard output has had the header lines already.
        if (job.outputFile() == OutputFile::standardOutputName())
            return tr("%1 (--strict)").arg(job.errorString());
        return tr("%1 (--strict: no file written)").arg(job.errorString());
    case ExportJob::Failure::NoUpdateRate:
        return tr("%1: gives no update rate, so --from and --to cannot be in seconds")
            .arg(shownName(index));
    default:
        break;
    }
    return job.errorString();
}

} // namespace Commands
