#include "commands.h"

#include "commandline.h"
#include "localfilepath.h"
#include "recordinggenerator.h"
#include "ubxgenerator.h"
#include "uloggenerator.h"

#include <QCommandLineParser>

#include <cmath>
#include <functional>

namespace Commands {

using namespace CommandLine;

namespace {

using Generator = std::function<bool(const GeneratorOptions &, QIODevice *, QString *)>;

// The options of the generate command.
struct GenerateOptions
{
    QCommandLineOption samples, rate, groups, seed, output, format, layout;
};

GenerateOptions generateOptions()
{
    return {
        {QStringLiteral("samples"), tr("Number of samples (default 1000)."), tr("N"),
         QStringLiteral("1000")},
        {QStringLiteral("rate"), tr("Samples per second (default 100)."), tr("HZ"),
         QStringLiteral("100")},
        {QStringLiteral("groups"),
         tr("Comma-separated sample keys to write, or all (the default)."), tr("LIST"),
         QStringLiteral("all")},
        {QStringLiteral("seed"), tr("Seed of the noise (default 1)."), tr("S"),
         QStringLiteral("1")},
        {{QStringLiteral("o"), QStringLiteral("output")},
         tr("The recording file to write; - writes to standard output."),
         tr("FILE")},
        {QStringLiteral("format"),
         tr("jsonl (the default); ubx for a receiver log of --samples navigation epochs at --rate "
            "a second; ulog for a PX4 flight log of --samples IMU samples at --rate a second."),
         tr("FORMAT"), QStringLiteral("jsonl")},
        {QStringLiteral("layout"),
         tr("For ulog: current (the default), or older for the layout in which sensor_combined "
            "carries the magnetometer and the barometer's temperature."),
         tr("LAYOUT"), QStringLiteral("current")},
    };
}

// The generator that --format and --layout ask for; empty after a usage error in @p message.
Generator chosenGenerator(const QCommandLineParser &parser, const GenerateOptions &o,
                          QString *message)
{
    const QString format = parser.value(o.format);
    if (format != QLatin1String("ulog") && parser.isSet(o.layout)) {
        *message = tr("--layout applies to ULog logs only");
        return {};
    }
    if (format != QLatin1String("jsonl") && parser.isSet(o.groups)) {
        *message = tr("--groups applies to JSON Lines recordings only");
        return {};
    }
    if (format == QLatin1String("jsonl"))
        return generateRecording;
    if (format == QLatin1String("ubx"))
        return generateUbxLog;
    if (format != QLatin1String("ulog")) {
        *message = tr("--format takes jsonl, ubx or ulog, not \"%1\"").arg(format);
        return {};
    }
    const QString layout = parser.value(o.layout);
    if (layout != QLatin1String("current") && layout != QLatin1String("older")) {
        *message = tr("--layout takes current or older, not \"%1\"").arg(layout);
        return {};
    }
    const UlogLayout chosen =
        layout == QLatin1String("older") ? UlogLayout::Older : UlogLayout::Current;
    return [chosen](const GeneratorOptions &options, QIODevice *out, QString *error) {
        return generateUlog(options, chosen, out, error);
    };
}

// The numbers and keys of the options; false after a usage error in @p message.
bool readGeneratorOptions(const QCommandLineParser &parser, const GenerateOptions &o,
                          GeneratorOptions *options, QString *message)
{
    bool ok = false;
    options->samples = parser.value(o.samples).toLongLong(&ok);
    if (!ok || options->samples < 0)
        *message = tr("--samples takes a whole number of 0 or more");
    options->rate = parser.value(o.rate).toDouble(&ok);
    if (message->isEmpty() && (!ok || !std::isfinite(options->rate) || options->rate <= 0.0))
        *message = tr("--rate takes a number greater than 0");
    options->seed = parser.value(o.seed).toULongLong(&ok);
    if (message->isEmpty() && !ok)
        *message = tr("--seed takes a whole number of 0 or more");
    if (message->isEmpty() && parser.value(o.groups) != QLatin1String("all")) {
        const QStringList known = recordingKeys();
        for (const QString &key : parser.value(o.groups).split(QLatin1Char(','))) {
            const QString trimmed = key.trimmed();
            if (!known.contains(trimmed)) {
                *message = tr("unknown sample key \"%1\"").arg(trimmed);
                break;
            }
            options->keys.append(trimmed);
        }
    }
    return message->isEmpty();
}

} // namespace

int generate(const QStringList &arguments)
{
    const QString command = QStringLiteral("generate");
    const GenerateOptions o = generateOptions();
    QCommandLineParser parser;
    int status = 0;
    if (!parseOptionsOnly(
            parser, {o.samples, o.rate, o.groups, o.seed, o.output, o.format, o.layout}, command,
            tr("Writes a synthetic recording: the same options give the same bytes. Keys: %1.")
                .arg(recordingKeys().join(QStringLiteral(", "))),
            arguments, &status))
        return status;
    if (!parser.isSet(o.output))
        return usageError(command, tr("--output is required"));
    QString message;
    const Generator generator = chosenGenerator(parser, o, &message);
    GeneratorOptions options;
    if (!generator || !readGeneratorOptions(parser, o, &options, &message))
        return usageError(command, message);

    const QString fileName = localFilePath(parser.value(o.output));
    if (fileName.isEmpty())
        return usageError(command, tr("--output takes a file name, or - for standard output"));
    return writeOutput(fileName,
                       [&](QIODevice *device, const QString &shownName, QString *message) {
                           QString error;
                           if (generator(options, device, &error))
                               return true;
                           *message = tr("%1: %2").arg(shownName, error);
                           return false;
                       });
}

} // namespace Commands
