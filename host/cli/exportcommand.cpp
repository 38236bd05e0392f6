#include "commands.h"

#include "commandline.h"
#include "exportjob.h"
#include "groupselection.h"
#include "localfilepath.h"
#include "outputfile.h"
#include "outputnamer.h"
#include "outputnames.h"
#include "parallelexports.h"
#include "pluginhost.h"
#include "progressbar.h"
#include "recordinginput.h"
#include "sampleselection.h"

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
#include <climits>
#include <cstdio>
#include <cstring>
#include <vector>

#include <unistd.h>

namespace Commands {

using namespace CommandLine;

namespace {

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
            row[std::size_t(j)] =
                std::min({above + 1, row[std::size_t(j - 1)] + 1, diagonal + (same ? 0 : 1)});
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

QString reasonText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// What the user is told of a failed export of @p recording: the job's own
// words, with what the options could do about it.
QString failureText(const ExportJob &job, bool skipBadLines, const QString &recording)
{
    switch (job.failure()) {
    case ExportJob::Failure::BadLine:
        return tr("%1 (--skip-bad-lines exports the other samples)").arg(job.errorString());
    case ExportJob::Failure::BadRecordingObject:
        if (!skipBadLines)
            break;
        return tr("%1 (a recording cannot be salvaged without its first line, the recording "
                  "object)")
            .arg(job.errorString());
    case ExportJob::Failure::NoUpdateRate:
        return tr("%1: gives no update rate, so --from and --to cannot be in seconds")
            .arg(recording);
    default:
        break;
    }
    return job.errorString();
}

} // namespace

int exportRecordings(const QStringList &arguments)
{
    const QString command = QStringLiteral("export");
    QCommandLineParser parser;
    const QCommandLineOption plugin = pluginOption();
    const QCommandLineOption settings = settingsOption();
    const QCommandLineOption set(
        QStringLiteral("set"),
        tr("Change one setting for this run only; may be given again. An unknown "
           "key is an error."),
        tr("KEY=VALUE"));
    const QCommandLineOption strict(
        QStringLiteral("strict"),
        tr("Refuse setting values that the options page cannot make, instead of "
           "warning about them."));
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
    parser.addOptions({plugin, settings, set, strict, groups, from, to, every, output, outputDir,
                       skipBadLines, jobs, progress, quiet});
    parser.addPositionalArgument(
        QStringLiteral("RECORDING"),
        tr("Recordings to export (JSON Lines or UBX logs); - reads one from standard "
           "input."),
        QStringLiteral("RECORDING..."));
    int status = 0;
    if (!parse(parser, command,
               tr("Exports recordings as delimited text, one file per recording. The output file "
                  "is named "
                  "by the settings outputFileFormat and outputFileExtension unless --output is "
                  "given.\n"
                  "Exit status: 0 when every recording was exported, 1 when one failed, 2 for a "
                  "usage error "
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
        return usageError(command,
                          tr("--output takes one recording only; use --output-dir for several"));
    if (parser.isSet(progress) && parser.isSet(quiet))
        return usageError(command, tr("--progress and --quiet exclude each other"));
    SampleSelection selection;
    QString problem;
    if (parser.isSet(from)
        && !SampleSelection::parseBound(parser.value(from), &selection.from, &problem))
        return usageError(command, QStringLiteral("--from ") + problem);
    if (parser.isSet(to) && !SampleSelection::parseBound(parser.value(to), &selection.to, &problem))
        return usageError(command, QStringLiteral("--to ") + problem);
    if (selection.from.kind == selection.to.kind
        && selection.to.kind != SampleSelection::Bound::Kind::None
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
            return usageError(command,
                              tr("--jobs cannot share standard input (-) between processes"));
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
            return usageError(command,
                              tr("unknown setting \"%1\"; did you mean \"%2\"?")
                                  .arg(change.first, nearest(change.first, knownKeys)));
        }
        QVariant value;
        if (!store->valueFromText(change.first, change.second, &value))
            return usageError(
                command,
                tr("%1 takes true, false, 1 or 0, not \"%2\"").arg(change.first, change.second));
        const QString odd = oddValue(change.first, value);
        if (!odd.isEmpty())
            warnings.append(tr("--set %1=%2: %3").arg(change.first, change.second, odd));
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
            warnings.append(tr("%1: %2=%3: %4").arg(settingsFileName, key, value.toString(), odd));
    }
    for (const QString &warning : qAsConst(warnings)) {
        if (parser.isSet(strict))
            return usageError(command, warning);
        printError(tr("asciiexport export: warning: %1").arg(warning));
    }

    if (parser.isSet(outputDir) && !QDir().mkpath(localFilePath(parser.value(outputDir)))) {
        printError(tr("%1: the folder cannot be made: %2")
                       .arg(parser.value(outputDir), reasonText(errno)));
        return 1;
    }
    const bool showProgress =
        parser.isSet(progress) || (!parser.isSet(quiet) && ::isatty(STDERR_FILENO));
    ProgressBar bar(stderr);
    const OutputNamer namer(store->setting(QStringLiteral("outputFileFormat")).toString(),
                            factory->fileExtension(), parser.value(outputDir),
                            QDateTime::currentDateTime());
    OutputNames names(recordings);
    // The file recording i would be written to, before the batch has a say.
    const auto wantedName = [&](int i, const QVariantMap &properties, QString *problem) {
        if (!parser.isSet(output))
            return namer.fileName(recordings.at(i), i + 1, properties, problem);
        if (parser.value(output) == OutputFile::standardOutputName())
            return OutputFile::standardOutputName();
        return QFileInfo(localFilePath(parser.value(output))).absoluteFilePath();
    };
    const auto shownName = [&recordings](int i) {
        return recordings.at(i) == QLatin1String("-") ? ExportJob::standardInputName()
                                                      : recordings.at(i);
    };

    const bool sideBySide = jobCount > 1 && recordings.size() > 1;
    ExportJob job(factory);
    job.setReadAhead(!sideBySide && QThread::idealThreadCount() > 1);
    job.setSelection(selection);
    job.setSkipBadLines(parser.isSet(skipBadLines), [&bar](const QString &warning) {
        bar.clear();
        printError(warning);
    });
    // Asks the batch for the file that recording i wants; false, with the
    // problem set, when another recording of the batch has it.
    using Claim = std::function<bool(const QString &fileName, QString *problem)>;
    // Exports one recording, says on standard error what there is to say and
    // gives the exit status.
    const auto exportOne = [&](int i, const ExportJob::Progress &followReading,
                               const Claim &claim) {
        const QString &recording = recordings.at(i);
        const auto name = [&](const QVariantMap &properties, QString *problem) {
            const QString file = wantedName(i, properties, problem);
            if (file.isEmpty() || file == OutputFile::standardOutputName())
                return file;
            if (!claim(file, problem))
                return QString();
            // The folders of a pattern are made, below the output folder only.
            if (!parser.isSet(output) && !namer.makeFolders(recording, file, problem))
                return QString();
            return file;
        };
        const bool done = job.run(recording, name, followReading);
        bar.clear();
        if (job.linesSkipped() > 0) {
            printError(tr("%1: samples written: %2, bad lines skipped: %3")
                           .arg(shownName(i))
                           .arg(job.samplesWritten())
                           .arg(job.linesSkipped()));
        }
        if (!parser.isSet(quiet) && !job.readingNotice().isEmpty())
            printError(job.readingNotice());
        if (!done) {
            const QString failure = failureText(job, parser.isSet(skipBadLines), shownName(i));
            if (!failure.isEmpty())
                printError(failure);
            return 1;
        }
        // Standard output is the file itself; any other file is named.
        if (!parser.isSet(quiet) && job.outputFile() != OutputFile::standardOutputName())
            printError(tr("%1 -> %2").arg(shownName(i), job.outputFile()));
        return 0;
    };

    if (sideBySide) {
        // The workers ask this process for their output files, so that the
        // same recordings clash as they would one after another.
        QStringList shownNames;
        QVector<qint64> sizes;
        for (int i = 0; i < recordings.size(); ++i) {
            shownNames.append(shownName(i));
            const QFileInfo info(recordings.at(i));
            sizes.append(info.isFile() ? info.size() : 0);
        }
        ParallelExports exports(
            [&exportOne](int i, const ParallelExports::TaskProgress &report,
                         const ParallelExports::Ask &ask) {
                return exportOne(
                    i, [&report](qint64 position, qint64) { report(position); },
                    [&ask](const QString &fileName, QString *problem) {
                        *problem = QString::fromUtf8(ask(fileName.toUtf8()));
                        return problem->isEmpty();
                    });
            },
            [&names](int i, const QByteArray &fileName, QByteArray *answer) {
                QString problem;
                const OutputNames::Answer given =
                    names.claim(i, QString::fromUtf8(fileName), &problem);
                *answer = problem.toUtf8();
                return given != OutputNames::Answer::Wait;
            },
            [&names](int i, int exitStatus) { names.finished(i, exitStatus == 0); },
            [&bar](const QByteArray &text) {
                bar.clear();
                std::fwrite(text.constData(), 1, std::size_t(text.size()), stderr);
                std::fflush(stderr);
            });
        const QString label = tr("%1 recordings").arg(recordings.size());
        if (showProgress)
            exports.setProgress([&](qint64 done, qint64 total) { bar.update(label, done, total); });
        return exports.run(shownNames, sizes, jobCount);
    }

    for (int i = 0; i < recordings.size(); ++i) {
        const QString label = recordings.at(i) == QLatin1String("-")
            ? ExportJob::standardInputName()
            : QFileInfo(recordings.at(i)).fileName();
        // Without a bar the reading is not followed at all: it costs per sample.
        ExportJob::Progress followReading;
        if (showProgress) {
            followReading = [&bar, label](qint64 position, qint64 size) {
                bar.update(label, position, size);
            };
        }
        const int exported =
            exportOne(i, followReading, [&](const QString &fileName, QString *problem) {
                return names.claim(i, fileName, problem) == OutputNames::Answer::Given;
            });
        names.finished(i, exported == 0);
        status = std::max(status, exported);
    }
    return status;
}

} // namespace Commands
