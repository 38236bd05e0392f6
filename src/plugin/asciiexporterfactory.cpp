#include "asciiexporterfactory.h"

#include "asciiexporter.h"
#include "asciiexporteroptionspage.h"
#include "settingkeys.h"
#include "settingscatalogue.h"

#include <settingssynchronizer.h>

AsciiExporterFactory::AsciiExporterFactory(QObject *parent)
    : QObject(parent)
{
    settingsStore = new SettingsSynchronizer(SettingsCatalogue::defaults(),
                                             SettingsCatalogue::descriptions(), this);
}

AsciiExporterFactory::~AsciiExporterFactory() = default;

QString AsciiExporterFactory::name() const
{
    return QStringLiteral("ASCII Exporter");
}

QString AsciiExporterFactory::fileExtension() const
{
    return settings()->setting(QLatin1String(SettingKeys::outputFileExtension)).toString();
}

bool AsciiExporterFactory::pluginFlag() const
{
    return true;
}

QString AsciiExporterFactory::version() const
{
    return QStringLiteral(ASCIIEXPORTER_VERSION);
}

SettingsSynchronizer *AsciiExporterFactory::settings() const
{
    return settingsStore;
}

QList<AbstractOptionsPage *> AsciiExporterFactory::optionsPages()
{
    return {new AsciiExporterOptionsPage(settings(), nullptr)};
}

AbstractExporter *AsciiExporterFactory::createExporter(ExportSource *source)
{
    return new AsciiExporter(source, settings(), nullptr);
}

bool AsciiExporterFactory::exporterFlag() const
{
    return true;
}

bool AsciiExporterFactory::isAvailable() const
{
    return true;
}
