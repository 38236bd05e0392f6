#include "asciiexporter.h"

#include "delimiterchoice.h"
#include "headerblock.h"

#include <exportsource.h>

#include <QFileDevice>
#include <QTextStream>

AsciiExporter::AsciiExporter(ExportSource *source, SettingsSynchronizer *settings, QObject *parent)
    : AbstractExporter(parent)
    , source(source)
    , settings(settings)
    , delimiter(makeDelimiter(settings))
    , emptyFieldText(makeEmptyFieldText(settings))
    , rows(source, settings, delimiter, emptyFieldText)
{ }

// The stream is left alone on purpose: finish() is the one place that releases
// it, and the host calls it before deleting the exporter.
AsciiExporter::~AsciiExporter() = default;

bool AsciiExporter::start(QFileDevice *device)
{
    if (!device->open(QIODevice::WriteOnly)) {
        source->reportMessage(ExportSource::ErrorMessage, device->fileName());
        return false;
    }
    stream = new QTextStream(device);
    HeaderBlock::write(*stream, *source);
    *stream << Qt::endl;
    rows.writeColumnHeader(*stream);
    *stream << Qt::endl;
    return true;
}

bool AsciiExporter::writeSample()
{
    if (!source || !stream)
        return false;
    if (rows.writeSampleRow(*stream))
        *stream << '\n';
    return true;
}

bool AsciiExporter::finish()
{
    delete stream;
    stream = nullptr;
    return true;
}

QString AsciiExporter::name() const
{
    return QStringLiteral("ASCII");
}
