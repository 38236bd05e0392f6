#include "commands.h"

#include "commandline.h"
#include "localfilepath.h"
#include "pluginhost.h"
#include "recordinginput.h"
#include "recordingreport.h"

#include <abstractexporterfactory.h>

#include <QCommandLineParser>
#include <QDir>
#include <QJsonObject>

namespace Commands {

using namespace CommandLine;

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

} // namespace

int showInfo(const QStringList &arguments)
{
    const QString command = QStringLiteral("info");
    QCommandLineParser parser;
    const QCommandLineOption plugin = pluginOption();
    const QCommandLineOption settings = settingsOption();
    const QCommandLineOption recording(
        QStringLiteral("recording"),
        tr("Show what this recording, UBX log or flight log holds instead: its samples, "
           "duration, rate, data groups and gaps."),
        tr("FILE"));
    int status = 0;
    if (!parseOptionsOnly(parser, {plugin, settings, recording}, command,
                          tr("Shows the plug-in's metadata, name, version and file extension."),
                          arguments, &status))
        return status;
    if (parser.isSet(recording))
        return describeRecording(localFilePath(parser.value(recording)));

    PluginHost host(pluginFile(parser, plugin));
    const QString fileName =
        parser.isSet(settings) ? localFilePath(parser.value(settings)) : QString();
    SettingsFileState fileState;
    if (!loadPlugin(host, fileName, &fileState))
        return 1;
    if (fileState.missing)
        noteMissingSettings(command, fileName);
    warnOrRefuse(command, fileState.warnings, false, &status);
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

} // namespace Commands
