#include "pluginhost.h"

#include <abstractexporterfactory.h>

#include <QCoreApplication>
#include <QFileInfo>

QString PluginHost::defaultPluginPath()
{
    return QFileInfo(QCoreApplication::applicationDirPath()
                     + QStringLiteral("/../plugins/exporters/libasciiexporter.so")).absoluteFilePath();
}

PluginHost::PluginHost(const QString &fileName)
    : requested(QFileInfo(fileName).absoluteFilePath())
{
}

// The factory belongs to the loader, which keeps the module loaded for the
// rest of the process: objects the plug-in made may still be around.
PluginHost::~PluginHost() = default;

bool PluginHost::load()
{
    const QFileInfo file(requested);
    if (!file.exists()) {
        error = QCoreApplication::translate("PluginHost", "%1: no such plug-in file").arg(file.filePath());
        return false;
    }
    if (file.isDir()) {
        error = QCoreApplication::translate("PluginHost", "%1: is a folder, not a plug-in file").arg(file.filePath());
        return false;
    }
    if (!file.isReadable()) {
        error = QCoreApplication::translate("PluginHost", "%1: not a readable file").arg(file.filePath());
        return false;
    }
    loader.setFileName(requested);
    if (!loader.load()) {
        error = QCoreApplication::translate("PluginHost", "%1: not a usable Qt plug-in: %2")
                    .arg(file.filePath(), loader.errorString());
        return false;
    }
    QObject *root = loader.instance();
    exporterFactory = qobject_cast<AbstractExporterFactory *>(root);
    if (!exporterFactory) {
        error = QCoreApplication::translate("PluginHost", "%1: not an exporter plug-in (it does not provide %2)")
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
