#pragma once

#include <abstractexporterfactory.h>

#include <QObject>

/**
 * The plug-in's root object: the host recognises it as an exporter factory,
 * asks it for the plug-in's name, version, file extension and settings, and
 * for a new exporter per export and new options pages for its settings
 * dialog. The factory owns the one settings store that all of them share.
 */
class AsciiExporterFactory : public QObject, public AbstractExporterFactory
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "AsciiExporterFactory")
    Q_INTERFACES(AbstractPluginFactory AbstractExporterFactory)

public:
    explicit AsciiExporterFactory(QObject *parent = nullptr);
    ~AsciiExporterFactory() override;

    QString name() const override;
    QString fileExtension() const override;
    bool pluginFlag() const override;
    QString version() const override;
    SettingsSynchronizer *settings() const override;
    QList<AbstractOptionsPage *> optionsPages() override;
    AbstractExporter *createExporter(ExportSource *source) override;
    bool exporterFlag() const override;
    bool isAvailable() const override;

private:
    // A child of the factory, so it lives exactly as long.
    SettingsSynchronizer *settingsStore = nullptr;
};
