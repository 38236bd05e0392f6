#pragma once

#include <QCoreApplication>
#include <QJsonObject>
#include <QPluginLoader>
#include <QString>

class AbstractExporterFactory;

/**
 * Loads an exporter plug-in as the desktop application does: with Qt's
 * plug-in loader, reaching the plug-in only through the framework's
 * interfaces.
 */
class PluginHost
{
    Q_DECLARE_TR_FUNCTIONS(PluginHost)

public:
    /**
     * The plug-in the program loads when none is named: the first
     * libasciiexporter.so in the folders of ASCIIEXPORT_PLUGIN_PATH
     * (separated by colons), else the one installed or built with the program.
     */
    static QString defaultPluginPath();

    explicit PluginHost(const QString &fileName);
    ~PluginHost();

    /**
     * Loads the plug-in and takes its exporter factory. On failure returns
     * false, and errorString() says what is wrong with the file.
     */
    bool load();
    QString errorString() const;

    AbstractExporterFactory *factory() const { return exporterFactory; }
    /** The metadata the plug-in declares, readable without loading it. */
    QJsonObject metaData() const;
    QString fileName() const;

private:
    QString requested; // as given: the loader forgets a name it cannot use
    QPluginLoader loader;
    AbstractExporterFactory *exporterFactory = nullptr;
    QString error;
};
