#pragma once

#include <abstractexporterfactory.h>

#include <QObject>

class CountExporterFactory : public QObject, public AbstractExporterFactory
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "CountExporterFactory")
    Q_INTERFACES(AbstractPluginFactory AbstractExporterFactory)

public:
    explicit CountExporterFactory(QObject *parent = nullptr);

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
    SettingsSynchronizer *store;
};
