#include "commands.h"

#include "commandline.h"
#include "localfilepath.h"
#include "outputfile.h"
#include "pluginhost.h"
#include "recordingconverter.h"
#include "recordinggenerator.h"
#include "recordinginput.h"
#include "recordingreport.h"
#include "samefile.h"
#include "samplereader.h"
#include "settingsdialog.h"
#include "ubxgenerator.h"

#include <abstractexporterfactory.h>
#include <abstractoptionspage.h>
#include <settingssynchronizer.h>

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>

#include <cmath>
#include <functional>

namespace Commands {

namespace {

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

// Writes @p fileName ("-": standard output) with @p write, which sets the
// message when it fails. The file takes its name only when everything was
// written. Gives the exit status, after saying what went wrong; nothing when
// the reader of a pipe went away.
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

bool saveSettings(SettingsSynchronizer *store, const QString &fileName)
{
    const QFileInfo file(fileName);
    if (!QDir().mkpath(file.absolutePath()))
        return false;
    return store->save(fileName);
}

} // namespace

int listSettings(const QStringList &arguments)
{
    const QString command = QStringLiteral("settings");
    QCommandLineParser parser;
    const QCommandLineOption plugin = pluginOption();
    const QCommandLineOption settings = settingsOption();
    parser.addOptions({plugin, settings});
    int status = 0;
    if (!parseOptionsOnly(parser, command,
                          tr("Lists every setting of the plug-in: its current value, its default "
                             "and its description."),
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
    if (!parseOptionsOnly(parser, command,
                          tr("Shows the settings dialog with the plug-in's options page."),
                          arguments, &status))
        return status;

    const QString fileName = settingsFile(parser, settings);
    PluginHost host(pluginFile(parser, plugin));
    if (!loadPlugin(host, fileName))
        return 1;
    SettingsSynchronizer *store = host.factory()->settings();
    SettingsDialog dialog(host.factory()->optionsPages(),
                          [store, fileName] { return saveSettings(store, fileName); });
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
                                       tr("Show what this recording or UBX log holds instead."),
                                       tr("FILE"));
    parser.addOptions({plugin, settings, recording});
    int status = 0;
    if (!parseOptionsOnly(parser, command,
                          tr("Shows the plug-in's metadata, name, version and file extension."),
                          arguments, &status))
        return status;
    if (parser.isSet(recording))
        return describeRecording(localFilePath(parser.value(recording)));

    PluginHost host(pluginFile(parser, plugin));
    if (!loadPlugin(host,
                    parser.isSet(settings) ? localFilePath(parser.value(settings)) : QString()))
        return 1;
    const QJsonObject metaData = host.metaData();
    const int qtVersion = metaData.value(QStringLiteral("version")).toInt();
    const AbstractExporterFactory *factory = host.factory();
    const QList<QPair<QString, QString>> rows{
        {tr("Plug-in"), QDir::toNativeSeparators(host.fileName())},
        {tr("IID"), metaData.value(QStringLiteral("IID")).toString()},
        {tr("Class"), metaData.value(QStringLiteral("className")).toString()},
        {tr("Built for Qt"),
         QStringLiteral("%1.%2").arg(qtVersion >> 16).arg((qtVersion >> 8) & 0xFF)},
        {tr("Debug build"),
         metaData.value(QStringLiteral("debug")).toBool() ? tr("yes") : tr("no")},
        {tr("Name"), factory->name()},
        {tr("Version"), factory->version()},
        {tr("File extension"), factory->fileExtension()},
    };
    for (const auto &row : rows)
        printLine(stdout,
                  QStringLiteral("%1 %2").arg(row.first + QLatin1Char(':'), -15).arg(row.second));
    return 0;
}

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
                .arg(SampleReader::keys().join(QStringLiteral(", "))),
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

int convert(const QStringList &arguments)
{
    const QString command = QStringLiteral("convert");
    QCommandLineParser parser;
    const QCommandLineOption output(
        {QStringLiteral("o"), QStringLiteral("output")},
        tr("The JSON Lines recording to write; - writes to standard output."), tr("FILE"));
    parser.addOption(output);
    parser.addPositionalArgument(QStringLiteral("LOG"), tr("The UBX receiver log to convert."));
    int status = 0;
    if (!parse(parser, command,
               tr("Writes a UBX receiver log as a recording in the JSON Lines format, which "
                  "exports to the same "
                  "bytes as the log."),
               arguments, &status))
        return status;
    if (parser.positionalArguments().size() != 1)
        return usageError(command, tr("give one log"));
    if (!parser.isSet(output))
        return usageError(command, tr("--output is required"));

    const QString log = localFilePath(parser.positionalArguments().first());
    const QString fileName = localFilePath(parser.value(output));
    if (fileName.isEmpty())
        return usageError(command, tr("--output takes a file name, or - for standard output"));
    // The log is read while its conversion is written: whichever name leads
    // to it, writing there would lose it.
    const bool toStandardOutput = fileName == OutputFile::standardOutputName();
    if (isSameFile(log, toStandardOutput ? QStringLiteral("/dev/stdout") : fileName)) {
        printError(tr("%1: the output file is the log %2 itself")
                       .arg(toStandardOutput ? tr("(standard output)") : fileName, log));
        return 1;
    }
    RecordingInput input;
    if (!input.open(log)) {
        printError(input.errorString());
        return 1;
    }
    if (input.format() != RecordingInput::Format::Ubx) {
        printError(tr("%1: is not a UBX log").arg(log));
        return 1;
    }
    status =
        writeOutput(fileName, [&](QIODevice *device, const QString &shownName, QString *message) {
            QString error;
            if (RecordingConverter::convert(input, device, &error))
                return true;
            *message = error.startsWith(log) ? error : tr("%1: %2").arg(shownName, error);
            return false;
        });
    if (status != 0)
        return status;
    if (!input.readingNotice().isEmpty())
        printError(input.readingNotice());
    return 0;
}

} // namespace Commands
