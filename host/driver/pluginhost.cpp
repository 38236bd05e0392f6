#include "pluginhost.h"

#include <abstractexporterfactory.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

constexpr char pluginFileName[] = "/libasciiexporter.so";

} // namespace

QString PluginHost::defaultPluginPath()
{
    // The user's folders first, so that a plug-in of one's own build can
    // stand in for the installed one without touching the installation.
    const QString searchPath = qEnvironmentVariable("ASCIIEXPORT_PLUGIN_PATH");
    for (const QString &folder : searchPath.split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
        const QFileInfo file(folder + QLatin1String(pluginFileName));
        if (file.exists())
            return file.absoluteFilePath();
    }
    // An installed program has its plug-in under lib/, a built one beside
    // its bin/ folder; the installed place is named when neither is there.
    const QDir programDir(QCoreApplication::applicationDirPath());
    const QFileInfo installed(programDir,
                              QStringLiteral(INSTALLED_PLUGIN_DIR) + QLatin1String(pluginFileName));
    const QFileInfo built(programDir,
                          QStringLiteral(BUILD_PLUGIN_DIR) + QLatin1String(pluginFileName));
    return QFileInfo(!installed.exists() && built.exists() ? built : installed).absoluteFilePath();
}

PluginHost::PluginHost(const QString &fileName)
    : requested(QFileInfo(fileName).absoluteFilePath())
{ }

// The factory belongs to the loader, which keeps the module loaded for the
// rest of the process: objects the plug-in made may still be around.
PluginHost::~PluginHost() = default;

bool PluginHost::load()
{
    const QFileInfo file(requested);
    if (!file.exists()) {
        error = tr("%1: no such plug-in file").arg(file.filePath());
        return false;
    }
    if (file.isDir()) {
        error = tr("%1: is a folder, not a plug-in file").arg(file.filePath());
        return false;
    }
    if (!file.isReadable()) {
        error = tr("%1: not a readable file").arg(file.filePath());
        return false;
    }
    loader.setFileName(requested);
    if (!loader.load()) {
        error = tr("%1: not a usable Qt plug-in: %2").arg(file.filePath(), loader.errorString());
        return false;
    }
    QObject *root = loader.instance();
    exporterFactory = qobject_cast<AbstractExporterFactory *>(root);
    if (!exporterFactory) {
        error = tr("%1: not an exporter plug-in (it does not provide %2)")
                    .arg(file.filePath(), QStringLiteral(AbstractExporterFactory_iid));
        return false;
    }
    return true;
}

QString PluginHost::errorString() const
{
    return error;
}

QJsonObject PluginHost::metaData() const
{
    return loader.metaData();
}

QString PluginHost::fileName() const
{
    return requested;
}
