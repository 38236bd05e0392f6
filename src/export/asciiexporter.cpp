#include "asciiexporter.h"

#include "delimiterchoice.h"
#include "iasciidelimiter.h"

#include <exportsource.h>
#include <settingssynchronizer.h>

#include <QFileDevice>
#include <QTextStream>

AsciiExporter::AsciiExporter(ExportSource *source, SettingsSynchronizer *settings, QObject *parent)
    : AbstractExporter(parent)
    , source(source)
    , settings(settings)
    , delimiter(makeDelimiter(settings))
    , emptyFieldText(makeEmptyFieldText(settings))
{
}

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
    writeHeaderBlock(*stream);
    *stream << Qt::endl;
    writeColumnHeader(*stream);
    *stream << Qt::endl;
    return true;
}

bool AsciiExporter::writeSample()
{
    if (!source || !stream)
        return false;
    if (writeSampleRow(*stream))
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

void AsciiExporter::writeHeaderBlock(QTextStream &out)
{
    out << tr("// Start Time: ");
    if (source->property(QStringLiteral("StartTime")).toString() != QLatin1String("0"))
        out << QStringLiteral("%1\n").arg(source->property(QStringLiteral("StartTime")).toString());
    else
        out << QStringLiteral("Unknown\n");

    out << tr("// Update Rate: ");
    if (source->updateRate() != 0.0)
        out << QStringLiteral("%1Hz\n").arg(source->updateRate(), 0, 'f', 1);
    else
        out << tr("Various\n");

    const QString profile = source->property(QStringLiteral("FilterProfile")).toString();
    const QString version = source->property(QStringLiteral("FilterProfileVersion")).toString();
    const QString type = source->property(QStringLiteral("FilterProfileType")).toString();
    if (!profile.isEmpty() && !version.isEmpty() && !type.isEmpty())
        out << tr("// Filter Profile: %1 (%3.%2)\n").arg(profile).arg(version).arg(type);
    else
        out << tr("// Filter Profile: Error: No KVA filter profile\n");

    const QString optionFlags = source->property(QStringLiteral("OptionFlags")).toString();
    if (!optionFlags.isEmpty())
        out << tr("// Option Flags: %1\n").arg(optionFlags);
    else
        out << tr("// Option Flags: Error: No option flags\n");

    // Unlike the lines above, this one has no line end of its own: start()
    // ends it.
    const QString firmware = source->property(QStringLiteral("FirmwareVersion")).toString();
    if (!firmware.isEmpty())
        out << tr("// Firmware Version: %1").arg(firmware);
    else
        out << tr("// Firmware Version: Error: No firmware version");
}

void AsciiExporter::writeColumnHeader(QTextStream &)
{
}

void AsciiExporter::trimTrailingDelimiter(QString &line) const
{
    QString text;
    QTextStream probe(&text);
    delimiter->write(probe);
    probe.flush();
    const QChar last = text.isEmpty() ? QChar(QChar::Null) : text.at(0);
    if (line.endsWith(last))
        line.chop(1);
}

bool AsciiExporter::writeSampleRow(QTextStream &)
{
    return false;
}
