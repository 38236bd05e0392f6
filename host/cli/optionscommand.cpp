#include "commands.h"

#include "commandline.h"
#include "pluginhost.h"
#include "settingsdialog.h"

#include <abstractexporterfactory.h>
#include <settingssynchronizer.h>

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

namespace Commands {

using namespace CommandLine;

namespace {

bool saveSettings(SettingsSynchronizer *store, const QString &fileName)
{
    const QFileInfo file(fileName);
    if (!QDir().mkpath(file.absolutePath()))
        return false;
    return store->save(fileName);
}

} // namespace

int editOptions(const QStringList &arguments)
{
    const QString command = QStringLiteral("options");
    QCommandLineParser parser;
    const QCommandLineOption plugin = pluginOption();
    const QCommandLineOption settings = settingsOption();
    int status = 0;
    if (!parseOptionsOnly(parser, {plugin, settings}, command,
                          tr("Shows the settings dialog with the plug-in's options page."),
                          arguments, &status))
        return status;

    const QString fileName = settingsFile(parser, settings);
    PluginHost host(pluginFile(parser, plugin));
    SettingsFileState fileState;
    if (!loadPlugin(host, fileName, &fileState))
        return 1;
    if (fileState.missing && parser.isSet(settings))
        noteMissingSettings(command, fileName);
    // The dialog is where such settings are put right.
    warnOrRefuse(command, fileState.warnings, false, &status);
    SettingsSynchronizer *store = host.factory()->settings();
    SettingsDialog dialog(host.factory()->optionsPages(),
                          [store, fileName] { return saveSettings(store, fileName); });
    dialog.exec();
    return 0;
}

} // namespace Commands
