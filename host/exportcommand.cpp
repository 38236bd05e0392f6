#include "commands.h"

#include "commandline.h"
#include "exportjob.h"
#include "groupselection.h"
#include "localfilepath.h"
#include "outputfile.h"
#include "outputnamer.h"
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
        tr("Export up to N recordings at a time, each in a process of its own; the "
           "files and messages are those of one export after another."),
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
    QSet<QString> recordingFiles;
    for (const QString &recording : qAsConst(recordings)) {
        const QFileInfo info(recording);
        if (info.exists())
            recordingFiles.insert(info.canonicalFilePath());
    }

    const bool showProgress =
        parser.isSet(progress) || (!parser.isSet(quiet) && ::isatty(STDERR_FILENO));
    ProgressBar bar(stderr);
    const OutputNamer namer(store->setting(QStringLiteral("outputFileFormat")).toString(),
                            factory->fileExtension(), parser.value(outputDir),
                            QDateTime::currentDateTime());
    QHash<QString, QString> written; // output file -> recording
    const auto outputName = [&](int i, const QVariantMap &properties, QString *problem) {
        const QString &recording = recordings.at(i);
        if (parser.isSet(output) && parser.value(output) == OutputFile::standardOutputName())
            return OutputFile::standardOutputName();
        QString file = parser.isSet(output)
            ? QFileInfo(localFilePath(parser.value(output))).absoluteFilePath()
            : namer.fileName(recording, i + 1, properties, problem);
        if (file.isEmpty())
            return QString();
        if (written.contains(file)) {
            *problem = tr("%1: the output file %2 was written for %3 already")
                           .arg(recording, file, written.value(file));
            return QString();
        }
        // A later recording of the batch must still be there when its turn comes.
        const QFileInfo target(file);
        if (target.exists() && recordingFiles.contains(target.canonicalFilePath())
            && target.canonicalFilePath() != QFileInfo(recording).canonicalFilePath()) {
            *problem = tr("%1: the output file %2 would replace a recording of this run")
                           .arg(recording, file);
            return QString();
        }
        written.insert(file, recording);
        return file;
    };

    const bool sideBySide = jobCount > 1 && recordings.size() > 1;
    ExportJob job(factory);
    job.setReadAhead(!sideBySide && QThread::idealThreadCount() > 1);
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
        const QString shownName =
            recording == QLatin1String("-") ? ExportJob::standardInputName() : recording;
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

    if (sideBySide) {
        // The names are worked out here, in the order of the command line, so
        // that the same recordings clash as they would one after another.
        QVector<qint64> sizes;
        for (int i = 0; i < recordings.size(); ++i) {
            RecordingInput input;
            QString nameProblem;
            const QString name = input.open(recordings.at(i))
                ? outputName(i, input.properties(), &nameProblem)
                : QString();
            givenNames.append({name, nameProblem});
            sizes.append(QFileInfo(recordings.at(i)).isFile() ? QFileInfo(recordings.at(i)).size()
                                                              : 0);
        }
        const QString label = tr("%1 recordings").arg(recordings.size());
        return ParallelExports::run(
            sizes, jobCount,
            [&exportOne](int i, const ParallelExports::TaskProgress &report) {
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
        status = std::max(status, exportOne(i, followReading));
    }
    return status;
}

} // namespace Commands
