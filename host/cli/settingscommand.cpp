#include "commands.h"

#include "commandline.h"
#include "pluginhost.h"
#include "settingnames.h"

#include <abstractexporterfactory.h>
#include <settingssynchronizer.h>

#include <QCommandLineParser>

namespace Commands {

using namespace CommandLine;

int listSettings(const QStringList &arguments)
{
    const QString command = QStringLiteral("settings");
    QCommandLineParser parser;
    const QCommandLineOption plugin = pluginOption();
    const QCommandLineOption settings = settingsOption();
    int status = 0;
    if (!parseOptionsOnly(parser, {plugin, settings}, command,
                          tr("Lists every setting of the plug-in: its current value, its default "
                             "and its description."),
                          arguments, &status))
        return status;

    PluginHost host(pluginFile(parser, plugin));
    const QString fileName = settingsFile(parser, settings);
    SettingsFileState fileState;
    if (!loadPlugin(host, fileName, &fileState))
        return 1;
    if (fileState.missing && parser.isSet(settings))
        noteMissingSettings(command, fileName);
    const SettingsSynchronizer *store = host.factory()->settings();
    // The listing shows the settings as they are, so what is wrong with
    // them is a warning only.
    warnOrRefuse(command, fileState.warnings + choiceWarnings(store, fileName), false, &status);
    const auto text = [](const QVariant &value) -> QString {
        if (!value.isValid())
            return tr("(none)");
        if (value.userType() == QMetaType::Bool)
            return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
        return QLatin1Char('"') + value.toString() + QLatin1Char('"');
    };
    // The store holds whatever keys the file had; only the plug-in's are settings.
    const QStringList known = SettingNames::known(store);
    for (const QString &key : store->keys()) {
        if (!known.contains(key))
            continue;
        QString line = QStringLiteral("%1: %2 (default: %3)")
                           .arg(key, text(store->setting(key)), text(store->defaultSetting(key)));
        const QString description = store->description(key);
        if (!description.isEmpty())
            line += QStringLiteral("  ") + description;
        printLine(stdout, line);
    }
    return 0;
}

} // namespace Commands
