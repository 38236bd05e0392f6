#include "countexporterfactory.h"

#include <abstractexporter.h>
#include <exportsource.h>
#include <kvvector.h>
#include <settingssynchronizer.h>

#include <QFileDevice>

namespace {

// One line per sample: its packet counter, and whether it holds an acceleration.
class CountExporter : public AbstractExporter
{
public:
    explicit CountExporter(ExportSource *source)
        : source(source)
    { }

    bool start(QFileDevice *device) override
    {
        this->device = device;
        return device->open(QIODevice::WriteOnly) && device->write("count\n") == 6;
    }
    bool writeSample() override
    {
        const QByteArray line = QByteArray::number(source->packetCounter())
            + (source->calibratedAcceleration().isEmpty() ? " -\n" : " acc\n");
        return device->write(line) == line.size();
    }
    bool finish() override { return true; }
    QString name() const override { return QStringLiteral("Count"); }

private:
    ExportSource *source;
    QFileDevice *device = nullptr;
};

} // namespace

CountExporterFactory::CountExporterFactory(QObject *parent)
    : QObject(parent)
    , store(new SettingsSynchronizer(
          {{QStringLiteral("outputFileFormat"), QStringLiteral("<inputfile>")},
           {QStringLiteral("outputFileExtension"), QStringLiteral("count")}},
          {}, this))
{ }

QString CountExporterFactory::name() const
{
    return QStringLiteral("Count Exporter");
}
QString CountExporterFactory::fileExtension() const
{
    return store->setting(QStringLiteral("outputFileExtension")).toString();
}
bool CountExporterFactory::pluginFlag() const
{
    return true;
}
QString CountExporterFactory::version() const
{
    return QStringLiteral("0.1");
}
SettingsSynchronizer *CountExporterFactory::settings() const
{
    return store;
}
QList<AbstractOptionsPage *> CountExporterFactory::optionsPages()
{
    return {};
}
AbstractExporter *CountExporterFactory::createExporter(ExportSource *source)
{
    return new CountExporter(source);
}
bool CountExporterFactory::exporterFlag() const
{
    return true;
}
bool CountExporterFactory::isAvailable() const
{
    return true;
}
