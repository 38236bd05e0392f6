#include "asciiexporter.h"

#include "columncatalogue.h"
#include "delimiterchoice.h"
#include "iasciidelimiter.h"

#include <exportsource.h>
#include <kvconstants.h>
#include <settingssynchronizer.h>

#include <QFileDevice>
#include <QTextStream>

#include <cmath>
#include <limits>

namespace {

constexpr quint32 triggerIn1Id = 0x4810;
constexpr quint32 triggerIn2Id = 0x4820;

QString padded(qint64 value, int width, char fill)
{
    return QStringLiteral("%1").arg(value, width, 10, QLatin1Char(fill));
}

QString decimal(qint64 value)
{
    return QString::number(value);
}

QString fixed(double value, int decimals)
{
    return QString::asprintf("%.*f", decimals, value);
}

// Truncates toward zero to a 64-bit integer. Values without such an integer
// (NaN, beyond the range) give the lowest one, as the processor's own
// conversion does, instead of undefined behaviour.
qint64 truncated(double value)
{
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (!(value >= -limit && value < limit))
        return std::numeric_limits<qint64>::min();
    return qint64(value);
}

} // namespace

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

void AsciiExporter::writeColumnHeader(QTextStream &out)
{
    using namespace ColumnCatalogue;

    QString line;
    QTextStream header(&line, QIODevice::ReadWrite);
    const auto writeName = [&](const QString &name) {
        header << name;
        delimiter->write(header);
    };
    for (const DataGroup &group : groups()) {
        const QVariant setting = settings->setting(QLatin1String(group.settingKey));
        Names columns = group.columns;
        if (group.group == Group::Orientation)
            columns = orientationColumns(orientationFormat(setting.toString()));
        else if (!setting.toBool())
            continue;
        for (const char *name : columns)
            writeName(QLatin1String(name));
        for (int index = 0; index < group.block.repeat; ++index) {
            for (const char *format : group.block.formats)
                writeName(QString::asprintf(format, index));
        }
    }
    header.flush();
    trimTrailingDelimiter(line);
    out << line;
}

// Removes one character, the delimiter's first, from the end of the line. A
// delimiter of several characters is thus only removed in part, or not at
// all when its first and last characters differ; files written so far look
// like this and readers rely on it.
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

QString AsciiExporter::formatValue(double value, int precision) const
{
    if (settings->setting(QStringLiteral("highPrecision")).toBool())
        return QString::asprintf("%.18g", value);
    const int decimals = precision == Geographic ? 9 : precision == Coarse ? 4 : 6;
    const QByteArray format = QStringLiteral("%.%1f").arg(decimals).toLatin1();
    return QString::asprintf(format.constData(), value);
}

void AsciiExporter::writeField(QTextStream &row, const QString &text) const
{
    row << text;
    delimiter->write(row);
}

void AsciiExporter::writeEmptyFields(QTextStream &row, int count) const
{
    for (int i = 0; i < count; ++i) {
        emptyFieldText->write(row);
        delimiter->write(row);
    }
}

// Writes the first @p count elements, or placeholders for an empty vector.
// An element the vector lacks is missing data as well.
bool AsciiExporter::writeValues(QTextStream &row, const KvVector &vector, int count,
                                int precision) const
{
    if (vector.isEmpty()) {
        writeEmptyFields(row, count);
        return false;
    }
    for (int i = 0; i < count; ++i) {
        if (i < vector.size())
            writeField(row, formatValue(vector.at(i), precision));
        else
            writeEmptyFields(row, 1);
    }
    return true;
}

bool AsciiExporter::writeTruncated(QTextStream &row, const KvVector &vector) const
{
    if (vector.isEmpty()) {
        writeEmptyFields(row, 3);
        return false;
    }
    for (int i = 0; i < 3; ++i) {
        if (i < vector.size())
            writeField(row, decimal(truncated(vector.at(i))));
        else
            writeEmptyFields(row, 1);
    }
    return true;
}

bool AsciiExporter::writeOrientation(QTextStream &row, ColumnCatalogue::OrientationFormat format)
{
    using ColumnCatalogue::OrientationFormat;

    switch (format) {
    case OrientationFormat::Euler: {
        const KvEulerAngles euler = source->orientationEuler(source->orientationSelector());
        // An attitude of exactly zero is how the source says it has none.
        if (euler.roll == 0.0 && euler.pitch == 0.0 && euler.yaw == 0.0) {
            writeEmptyFields(row, 3);
            return false;
        }
        writeField(row, formatValue(euler.roll, Ordinary));
        writeField(row, formatValue(euler.pitch, Ordinary));
        writeField(row, formatValue(euler.yaw, Ordinary));
        return true;
    }
    case OrientationFormat::Matrix: {
        const KvMatrix matrix = source->orientationMatrix(source->orientationSelector());
        if (matrix.isEmpty()) {
            writeEmptyFields(row, 9);
            return false;
        }
        // column by column, as the header names them
        for (int column = 0; column < 3; ++column) {
            for (int rowIndex = 0; rowIndex < 3; ++rowIndex)
                writeField(row, formatValue(matrix.value(rowIndex, column), Ordinary));
        }
        return true;
    }
    case OrientationFormat::Quaternion: {
        const KvQuaternion quaternion = source->orientationQuaternion(source->orientationSelector());
        if (quaternion.isEmpty()) {
            writeEmptyFields(row, 4);
            return false;
        }
        for (int i = 0; i < 4; ++i)
            writeField(row, formatValue(quaternion.at(i), Ordinary));
        return true;
    }
    case OrientationFormat::None:
        break;
    }
    return false;
}

bool AsciiExporter::writeTrigger(QTextStream &row, quint32 dataId)
{
    const KvTriggerIndication trigger = source->triggerIndication(dataId);
    if (!trigger.isValid()) {
        writeEmptyFields(row, 3);
        return false;
    }
    writeField(row, padded(trigger.polarity, 1, ' '));
    writeField(row, padded(trigger.timestamp, 10, ' '));
    writeField(row, padded(trigger.frameNumber, 5, ' '));
    return true;
}

QString AsciiExporter::gpsSolutionFields(const KvGpsSolution &record) const
{
    QString text;
    QTextStream fields(&text, QIODevice::ReadWrite);
    if (record.iTOW == 0) {
        writeEmptyFields(fields, 15);
        return text;
    }
    writeField(fields, QString::asprintf("%d", record.iTOW));
    writeField(fields, QString::asprintf("%d", record.fTOW));
    writeField(fields, QString::asprintf("%d", record.week));
    writeField(fields, QString::asprintf("%d", record.gpsFix));
    writeField(fields, QString::asprintf("%d", record.flags));
    // centimetres to metres
    writeField(fields, QString::asprintf("%.2lf", record.ecefX * 0.01));
    writeField(fields, QString::asprintf("%.2lf", record.ecefY * 0.01));
    writeField(fields, QString::asprintf("%.2lf", record.ecefZ * 0.01));
    writeField(fields, QString::asprintf("%.2lf", record.pAcc * 0.01));
    writeField(fields, QString::asprintf("%.2lf", record.ecefVX * 0.01));
    writeField(fields, QString::asprintf("%.2lf", record.ecefVY * 0.01));
    writeField(fields, QString::asprintf("%.2lf", record.ecefVZ * 0.01));
    writeField(fields, QString::asprintf("%.2lf", record.sAcc * 0.01));
    writeField(fields, QString::asprintf("%.2lf", record.pDOP * 0.01));
    writeField(fields, QString::asprintf("%d", record.numSV));
    return text;
}

QString AsciiExporter::gpsDopFields(const KvGpsDop &record) const
{
    QString text;
    QTextStream fields(&text, QIODevice::ReadWrite);
    if (record.iTOW == 0) {
        writeEmptyFields(fields, 8);
        return text;
    }
    writeField(fields, QString::asprintf("%d", record.iTOW));
    for (const quint16 dop : {record.gDOP, record.pDOP, record.tDOP, record.vDOP,
                              record.hDOP, record.nDOP, record.eDOP})
        writeField(fields, QString::asprintf("%.2lf", dop * 0.01));
    return text;
}

QString AsciiExporter::gpsUtcTimeFields(const KvGpsUtcTime &record) const
{
    QString text;
    QTextStream fields(&text, QIODevice::ReadWrite);
    if (record.iTOW == 0) {
        writeEmptyFields(fields, 10);
        return text;
    }
    writeField(fields, QString::asprintf("%d", record.iTOW));
    writeField(fields, QString::asprintf("%u", record.tAcc));
    writeField(fields, QString::asprintf("%d", record.nano));
    writeField(fields, QString::asprintf("%d", record.year));
    writeField(fields, QString::asprintf("%d", record.month));
    writeField(fields, QString::asprintf("%d", record.day));
    writeField(fields, QString::asprintf("%d", record.hour));
    writeField(fields, QString::asprintf("%d", record.min));
    writeField(fields, QString::asprintf("%d", record.sec));
    writeField(fields, QString::asprintf("%d", record.valid));
    return text;
}

QString AsciiExporter::gpsSatelliteFields(const KvGpsSatelliteInfo &record) const
{
    QString text;
    QTextStream fields(&text, QIODevice::ReadWrite);
    if (record.iTOW == 0) {
        writeEmptyFields(fields, 1 + 2 * KvGpsSatelliteInfo::maxChannels);
        return text;
    }
    writeField(fields, QString::asprintf("%u", record.iTOW));
    for (int i = 0; i < KvGpsSatelliteInfo::maxChannels; ++i) {
        if (i < record.numCh) {
            writeField(fields, QString::asprintf("%d", record.channels[i].svid));
            writeField(fields, QString::asprintf("%d", record.channels[i].quality));
        } else {
            writeEmptyFields(fields, 2);
        }
    }
    return text;
}

QString AsciiExporter::gnssPvtFields(const KvGnssPvt &record) const
{
    QString text;
    QTextStream fields(&text, QIODevice::ReadWrite);
    if (record.iTOW == 0) {
        writeEmptyFields(fields, 34);
        return text;
    }
    writeField(fields, QString::asprintf("%d", record.iTOW));
    writeField(fields, QString::asprintf("%u", record.tAcc));
    writeField(fields, QString::asprintf("%d", record.nano));
    writeField(fields, QString::asprintf("%d", record.year));
    writeField(fields, QString::asprintf("%d", record.month));
    writeField(fields, QString::asprintf("%d", record.day));
    writeField(fields, QString::asprintf("%d", record.hour));
    writeField(fields, QString::asprintf("%d", record.min));
    writeField(fields, QString::asprintf("%d", record.sec));
    writeField(fields, QString::asprintf("%d", record.valid));
    writeField(fields, QString::asprintf("%d", record.fixType));
    writeField(fields, QString::asprintf("%d", record.flags));
    writeField(fields, QString::asprintf("%d", record.numSV));
    writeField(fields, QString::asprintf("%.7lf", record.lon * 1e-7));
    writeField(fields, QString::asprintf("%.7lf", record.lat * 1e-7));
    writeField(fields, QString::asprintf("%d", record.height));
    writeField(fields, QString::asprintf("%d", record.hMSL));
    writeField(fields, QString::asprintf("%u", record.hAcc));
    writeField(fields, QString::asprintf("%u", record.vAcc));
    writeField(fields, QString::asprintf("%d", record.velN));
    writeField(fields, QString::asprintf("%d", record.velE));
    writeField(fields, QString::asprintf("%d", record.velD));
    writeField(fields, QString::asprintf("%d", record.gSpeed));
    writeField(fields, QString::asprintf("%.2lf", record.headMot * 1e-5));
    writeField(fields, QString::asprintf("%u", record.sAcc));
    writeField(fields, QString::asprintf("%.2lf", record.headAcc * 1e-5));
    writeField(fields, QString::asprintf("%.2lf", record.headVeh * 1e-5));
    for (const quint16 dop : {record.gDOP, record.pDOP, record.tDOP, record.vDOP,
                              record.hDOP, record.nDOP, record.eDOP})
        writeField(fields, QString::asprintf("%.2lf", dop * 0.01));
    return text;
}

QString AsciiExporter::gnssSatelliteFields(const KvGnssSatelliteInfo &record) const
{
    QString text;
    QTextStream fields(&text, QIODevice::ReadWrite);
    if (record.iTOW == 0) {
        writeEmptyFields(fields, 1 + 4 * KvGnssSatelliteInfo::maxSatellites);
        return text;
    }
    writeField(fields, QString::asprintf("%u", record.iTOW));
    for (int i = 0; i < KvGnssSatelliteInfo::maxSatellites; ++i) {
        if (i < record.numSvs) {
            const KvGnssSatellite &satellite = record.satellites[i];
            writeField(fields, QString::asprintf("%d", satellite.gnssId));
            writeField(fields, QString::asprintf("%d", satellite.svId));
            writeField(fields, QString::asprintf("%d", satellite.cno));
            writeField(fields, QString::asprintf("%d", satellite.flags));
        } else {
            writeEmptyFields(fields, 4);
        }
    }
    return text;
}

bool AsciiExporter::writeSampleRow(QTextStream &out)
{
    using namespace ColumnCatalogue;

    QString line;
    QTextStream row(&line, QIODevice::ReadWrite);
    // Only sensor data makes a line: counters, time, status, clipping and
    // RSSI alone do not.
    bool hasData = false;

    for (const DataGroup &group : groups()) {
        const QVariant setting = settings->setting(QLatin1String(group.settingKey));
        if (group.group != Group::Orientation && !setting.toBool())
            continue;

        switch (group.group) {
        case Group::PacketCounter:
            writeField(row, padded(source->packetCounter(), 5, '0'));
            break;
        case Group::SampleTimeFine:
            if (source->hasSampleTimeFine())
                writeField(row, padded(source->sampleTimeFine(), 5, '0'));
            else
                writeEmptyFields(row, 1);
            break;
        case Group::DateTime: {
            const QDateTime dateTime = source->sampleDateTime();
            if (dateTime.isNull()) {
                writeEmptyFields(row, 4);
                break;
            }
            const QDate date = dateTime.date();
            writeField(row, decimal(date.year()));
            writeField(row, padded(date.month(), 2, '0'));
            writeField(row, padded(date.day(), 2, '0'));
            // Measured from a null time, which makes the toolkit answer 0:
            // files have always carried zero seconds here.
            writeField(row, formatValue(QTime().msecsTo(dateTime.time()) / 1000.0, Coarse));
            break;
        }
        case Group::Utc: {
            const KvUtcTime utc = source->utcTime();
            if (utc.isZero()) {
                writeEmptyFields(row, 8);
                break;
            }
            writeField(row, decimal(utc.nano));
            writeField(row, decimal(utc.year));
            writeField(row, decimal(utc.month));
            writeField(row, decimal(utc.day));
            writeField(row, decimal(utc.hour));
            writeField(row, decimal(utc.minute));
            writeField(row, decimal(utc.second));
            writeField(row, decimal(utc.valid));
            break;
        }
        case Group::StatusWord:
            writeField(row, decimal(source->statusWord()));
            break;
        case Group::ClippingFlags:
            writeField(row, decimal(source->clippingFlags()));
            break;
        case Group::Rssi:
            writeField(row, formatValue(source->rssi(), Coarse));
            break;
        case Group::CalibratedAcceleration:
            hasData |= writeValues(row, source->calibratedAcceleration(), 3, Ordinary);
            break;
        case Group::FreeAcceleration:
            hasData |= writeValues(row, source->freeAcceleration(), 3, Ordinary);
            break;
        case Group::CalibratedAngularVelocity:
            hasData |= writeValues(row, source->calibratedAngularVelocity(), 3, Ordinary);
            break;
        case Group::MagneticField:
            hasData |= writeValues(row, source->magneticField(), 3, Ordinary);
            break;
        case Group::VelocityIncrement:
            hasData |= writeValues(row, source->velocityIncrement(), 3, Ordinary);
            break;
        case Group::OrientationIncrement: {
            const KvQuaternion increment = source->orientationIncrement();
            if (increment.isEmpty()) {
                writeEmptyFields(row, 4);
                break;
            }
            for (int i = 0; i < 4; ++i)
                writeField(row, formatValue(increment.at(i), Ordinary));
            hasData = true;
            break;
        }
        case Group::Pressure: {
            const double pressure = source->pressure();
            if (!(pressure > 0.0)) {
                writeEmptyFields(row, 1);
                break;
            }
            writeField(row, formatValue(pressure, Coarse));
            hasData = true;
            break;
        }
        case Group::Orientation:
            hasData |= writeOrientation(row, orientationFormat(setting.toString()));
            break;
        case Group::Position: {
            hasData |= writeValues(row, source->latitudeLongitude(), 2, Geographic);
            const double altitude = source->altitude();
            if (altitude == KvConstants::infinity) {
                writeEmptyFields(row, 1);
                break;
            }
            writeField(row, formatValue(altitude, Ordinary));
            hasData = true;
            break;
        }
        case Group::Velocity:
            hasData |= writeValues(row, source->velocity(source->velocitySelector()), 3, Ordinary);
            break;
        case Group::Temperature: {
            const double temperature = source->temperature();
            if (!(temperature > -999.99)) {
                writeEmptyFields(row, 1);
                break;
            }
            writeField(row, fixed(temperature, 2));
            hasData = true;
            break;
        }
        case Group::GyroTemperature: {
            const QVector<quint16> words = source->gyroTemperatures();
            for (int i = 0; i < 3; ++i) {
                if (i < words.size()) {
                    // 8.8 fixed point, signed
                    writeField(row, QString::number(qint16(words.at(i)) / 256.0, 'g', 2));
                    hasData = true;
                } else {
                    writeEmptyFields(row, 1);
                }
            }
            break;
        }
        case Group::ScrAcceleration:
            hasData |= writeTruncated(row, source->scrAcceleration());
            break;
        case Group::ScrGyroscopeData:
            hasData |= writeTruncated(row, source->scrGyroscopeData());
            break;
        case Group::ScrMagneticField:
            hasData |= writeTruncated(row, source->scrMagneticField());
            break;
        case Group::ScrTemperature:
            writeField(row, decimal(source->scrTemperature()));
            hasData = true;
            break;
        case Group::ScrGyroTemperature: {
            const QVector<quint16> words = source->gyroTemperatures();
            for (int i = 0; i < 3; ++i) {
                if (i < words.size()) {
                    writeField(row, decimal(words.at(i)));
                    hasData = true;
                } else {
                    writeEmptyFields(row, 1);
                }
            }
            break;
        }
        case Group::RawGps:
            row << gpsSolutionFields(source->gpsSolutionRecord())
                << gpsDopFields(source->gpsDopRecord())
                << gpsUtcTimeFields(source->gpsUtcTimeRecord())
                << gpsSatelliteFields(source->gpsSatelliteRecord());
            hasData = true;
            break;
        case Group::RawGnss:
            row << gnssPvtFields(source->gnssPvtRecord())
                << gnssSatelliteFields(source->gnssSatelliteRecord());
            hasData = true;
            break;
        case Group::TriggerIn1:
            hasData |= writeTrigger(row, triggerIn1Id);
            break;
        case Group::TriggerIn2:
            hasData |= writeTrigger(row, triggerIn2Id);
            break;
        }
    }

    if (!hasData)
        return false;
    row.flush();
    trimTrailingDelimiter(line);
    out << line;
    return true;
}
