#include "commands.h"

#include "commandline.h"
#include "localfilepath.h"
#include "recordinggenerator.h"
#include "ubxgenerator.h"

#include <QCommandLineParser>

#include <cmath>

namespace Commands {

using namespace CommandLine;

int generate(const QStringList &arguments)
{
    const QString command = QStringLiteral("generate");
    QCommandLineParser parser;
    const QCommandLineOption samples(QStringLiteral("samples"),
                                     tr("Number of samples (default 1000)."), tr("N"),
                                     QStringLiteral("1000"));
    const QCommandLineOption rate(QStringLiteral("rate"), tr("Samples per second (default 100)."),
                                  tr("HZ"), QStringLiteral("100"));
    const QCommandLineOption groups(
        QStringLiteral("groups"), tr("Comma-separated sample keys to write, or all (the default)."),
        tr("LIST"), QStringLiteral("all"));
    const QCommandLineOption seed(QStringLiteral("seed"), tr("Seed of the noise (default 1)."),
                                  tr("S"), QStringLiteral("1"));
    const QCommandLineOption output({QStringLiteral("o"), QStringLiteral("output")},
                                    tr("The recording file to write; - writes to standard output."),
                                    tr("FILE"));
    const QCommandLineOption format(
        QStringLiteral("format"),
        tr("jsonl (the default), or ubx for a receiver log of --samples navigation "
           "epochs at --rate a second."),
        tr("FORMAT"), QStringLiteral("jsonl"));
    parser.addOptions({samples, rate, groups, seed, output, format});
    int status = 0;
    if (!parseOptionsOnly(
            parser, command,
            tr("Writes a synthetic recording: the same options give the same bytes. Keys: %1.")
                .arg(recordingKeys().join(QStringLiteral(", "))),
            arguments, &status))
        return status;
    if (!parser.isSet(output))
        return usageError(command, tr("--output is required"));
    const bool ubx = parser.value(format) == QLatin1String("ubx");
    if (!ubx && parser.value(format) != QLatin1String("jsonl"))
        return usageError(command,
                          tr("--format takes jsonl or ubx, not \"%1\"").arg(parser.value(format)));
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
        const QStringList known = recordingKeys();
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
    return writeOutput(fileName,
                       [&](QIODevice *device, const QString &shownName, QString *message) {
                           QString error;
                           if (ubx ? generateUbxLog(options, device, &error)
                                   : generateRecording(options, device, &error))
                               return true;
                           *message = tr("%1: %2").arg(shownName, error);
                           return false;
                       });
}

} // namespace Commands
