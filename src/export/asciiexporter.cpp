#include "asciiexporter.h"

#include "columncatalogue.h"
#include "delimiterchoice.h"
#include "iasciidelimiter.h"

#include <exportsource.h>
#include <kvconstants.h>
#include <settingssynchronizer.h>

#include <QFileDevice>
#include <QTextStream>

#include <limits>

namespace {

constexpr quint32 triggerIn1Id = 0x4810;
constexpr quint32 triggerIn2Id = 0x4820;

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

// The time solution that both receivers' records open with: time of week,
// accuracy, nanoseconds, date, time of day and validity flags.
template <typename Record>
void writeTimeSolution(RowBuffer &row, const Record &record)
{
    row.integer(qint32(record.iTOW));
    row.natural(record.tAcc);
    row.integer(record.nano);
    row.integer(record.year);
    row.integer(record.month);
    row.integer(record.day);
    row.integer(record.hour);
    row.integer(record.min);
    row.integer(record.sec);
    row.integer(record.valid);
}

// The seven dilutions of precision, in units of 0.01.
template <typename Record>
void writeDilutions(RowBuffer &row, const Record &record)
{
    for (const quint16 dop : {record.gDOP, record.pDOP, record.tDOP, record.vDOP,
                              record.hDOP, record.nDOP, record.eDOP})
        row.fixed(dop * 0.01, 2);
}

// The first character the delimiter writes, or the null character.
QChar firstCharacter(const DelimiterHandle &delimiter)
{
    QString text;
    QTextStream probe(&text);
    delimiter->write(probe);
    probe.flush();
    return text.isEmpty() ? QChar(QChar::Null) : text.at(0);
}

} // namespace

AsciiExporter::AsciiExporter(ExportSource *source, SettingsSynchronizer *settings, QObject *parent)
    : AbstractExporter(parent)
    , source(source)
    , settings(settings)
    , delimiter(makeDelimiter(settings))
    , emptyFieldText(makeEmptyFieldText(settings))
    , delimiterStart(firstCharacter(delimiter))
    , row(delimiter, emptyFieldText)
{
    for (const ColumnCatalogue::DataGroup &group : ColumnCatalogue::groups())
        groupKeys.append(QLatin1String(group.settingKey));
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

    RowBuffer header(delimiter, emptyFieldText);
    const DataGroup *group = groups().begin();
    for (const QString &key : qAsConst(groupKeys)) {
        const QVariant setting = settings->setting(key);
        Names columns = group->columns;
        if (group->group == Group::Orientation)
            columns = orientationColumns(orientationFormat(setting.toString()));
        else if (!setting.toBool())
            columns = Names{nullptr, 0};
        for (const char *name : columns)
            header.field(QLatin1String(name));
        if (columns.count > 0) {
            for (int index = 0; index < group->block.repeat; ++index) {
                for (const char *format : group->block.formats)
                    header.field(QString::asprintf(format, index));
            }
        }
        ++group;
    }
    trimTrailingDelimiter(header.line());
    out << header.line();
}

// Removes one character, the delimiter's first, from the end of the line. A
// delimiter of several characters is thus only removed in part, or not at
// all when its first and last characters differ; files written so far look
// like this and readers rely on it.
void AsciiExporter::trimTrailingDelimiter(QString &line) const
{
    if (line.endsWith(delimiterStart))
        line.chop(1);
}

void AsciiExporter::formatValue(RowBuffer &row, double value, int precision) const
{
    if (settings->setting(QStringLiteral("highPrecision")).toBool()) {
        row.general(value, 18);
        return;
    }
    row.fixed(value, precision == Geographic ? 9 : precision == Coarse ? 4 : 6);
}

// Writes the first @p count elements, or placeholders for an empty vector.
// An element the vector lacks is missing data as well.
bool AsciiExporter::writeValues(RowBuffer &row, const KvVector &vector, int count, int precision) const
{
    if (vector.isEmpty()) {
        row.empty(count);
        return false;
    }
    for (int i = 0; i < count; ++i) {
        if (i < vector.size())
            formatValue(row, vector.at(i), precision);
        else
            row.empty(1);
    }
    return true;
}

bool AsciiExporter::writeTruncated(RowBuffer &row, const KvVector &vector) const
{
    if (vector.isEmpty()) {
        row.empty(3);
        return false;
    }
    for (int i = 0; i < 3; ++i) {
        if (i < vector.size())
            row.integer(truncated(vector.at(i)));
        else
            row.empty(1);
    }
    return true;
}

bool AsciiExporter::writeOrientation(RowBuffer &row, ColumnCatalogue::OrientationFormat format)
{
    using ColumnCatalogue::OrientationFormat;

    switch (format) {
    case OrientationFormat::Euler: {
        const KvEulerAngles euler = source->orientationEuler(source->orientationSelector());
        // An attitude of exactly zero is how the source says it has none.
        if (euler.roll == 0.0 && euler.pitch == 0.0 && euler.yaw == 0.0) {
            row.empty(3);
            return false;
        }
        formatValue(row, euler.roll, Ordinary);
        formatValue(row, euler.pitch, Ordinary);
        formatValue(row, euler.yaw, Ordinary);
        return true;
    }
    case OrientationFormat::Matrix: {
        const KvMatrix matrix = source->orientationMatrix(source->orientationSelector());
        if (matrix.isEmpty()) {
            row.empty(9);
            return false;
        }
        // column by column, as the header names them
        for (int column = 0; column < 3; ++column) {
            for (int rowIndex = 0; rowIndex < 3; ++rowIndex)
                formatValue(row, matrix.value(rowIndex, column), Ordinary);
        }
        return true;
    }
    case OrientationFormat::Quaternion: {
        const KvQuaternion quaternion = source->orientationQuaternion(source->orientationSelector());
        if (quaternion.isEmpty()) {
            row.empty(4);
            return false;
        }
        for (int i = 0; i < 4; ++i)
            formatValue(row, quaternion.at(i), Ordinary);
        return true;
    }
    case OrientationFormat::None:
        break;
    }
    return false;
}

bool AsciiExporter::writeTrigger(RowBuffer &row, quint32 dataId)
{
    const KvTriggerIndication trigger = source->triggerIndication(dataId);
    if (!trigger.isValid()) {
        row.empty(3);
        return false;
    }
    row.natural(trigger.polarity, 1);
    row.natural(trigger.timestamp, 10);
    row.natural(trigger.frameNumber, 5);
    return true;
}

// The receiver records hold the raw integers of the receiver's messages.
// Whole numbers are written as printf's "%d" writes them (a time of week
// beyond 2^31 comes out negative, as it always has) and "%u" where noted;
// scaled values in fixed notation.

void AsciiExporter::writeGpsSolution(RowBuffer &row, const KvGpsSolution &record) const
{
    if (record.iTOW == 0) {
        row.empty(15);
        return;
    }
    row.integer(qint32(record.iTOW));
    row.integer(record.fTOW);
    row.integer(record.week);
    row.integer(record.gpsFix);
    row.integer(record.flags);
    // centimetres to metres
    row.fixed(record.ecefX * 0.01, 2);
    row.fixed(record.ecefY * 0.01, 2);
    row.fixed(record.ecefZ * 0.01, 2);
    row.fixed(record.pAcc * 0.01, 2);
    row.fixed(record.ecefVX * 0.01, 2);
    row.fixed(record.ecefVY * 0.01, 2);
    row.fixed(record.ecefVZ * 0.01, 2);
    row.fixed(record.sAcc * 0.01, 2);
    row.fixed(record.pDOP * 0.01, 2);
    row.integer(record.numSV);
}

void AsciiExporter::writeGpsDop(RowBuffer &row, const KvGpsDop &record) const
{
    if (record.iTOW == 0) {
        row.empty(8);
        return;
    }
    row.integer(qint32(record.iTOW));
    writeDilutions(row, record);
}

void AsciiExporter::writeGpsUtcTime(RowBuffer &row, const KvGpsUtcTime &record) const
{
    if (record.iTOW == 0) {
        row.empty(10);
        return;
    }
    writeTimeSolution(row, record);
}

void AsciiExporter::writeGpsSatellites(RowBuffer &row, const KvGpsSatelliteInfo &record) const
{
    if (record.iTOW == 0) {
        row.empty(1 + 2 * KvGpsSatelliteInfo::maxChannels);
        return;
    }
    row.natural(record.iTOW);
    for (int i = 0; i < KvGpsSatelliteInfo::maxChannels; ++i) {
        if (i < record.numCh) {
            row.integer(record.channels[i].svid);
            row.integer(record.channels[i].quality);
        } else {
            row.empty(2);
        }
    }
}

void AsciiExporter::writeGnssPvt(RowBuffer &row, const KvGnssPvt &record) const
{
    if (record.iTOW == 0) {
        row.empty(34);
        return;
    }
    writeTimeSolution(row, record);
    row.integer(record.fixType);
    row.integer(record.flags);
    row.integer(record.numSV);
    row.fixed(record.lon * 1e-7, 7);
    row.fixed(record.lat * 1e-7, 7);
    row.integer(record.height);
    row.integer(record.hMSL);
    row.natural(record.hAcc);
    row.natural(record.vAcc);
    row.integer(record.velN);
    row.integer(record.velE);
    row.integer(record.velD);
    row.integer(record.gSpeed);
    row.fixed(record.headMot * 1e-5, 2);
    row.natural(record.sAcc);
    row.fixed(record.headAcc * 1e-5, 2);
    row.fixed(record.headVeh * 1e-5, 2);
    writeDilutions(row, record);
}

void AsciiExporter::writeGnssSatellites(RowBuffer &row, const KvGnssSatelliteInfo &record) const
{
    if (record.iTOW == 0) {
        row.empty(1 + 4 * KvGnssSatelliteInfo::maxSatellites);
        return;
    }
    row.natural(record.iTOW);
    for (int i = 0; i < KvGnssSatelliteInfo::maxSatellites; ++i) {
        if (i < record.numSvs) {
            const KvGnssSatellite &satellite = record.satellites[i];
            row.integer(satellite.gnssId);
            row.integer(satellite.svId);
            row.integer(satellite.cno);
            row.integer(qint32(satellite.flags));
        } else {
            row.empty(4);
        }
    }
}

bool AsciiExporter::writeSampleRow(QTextStream &out)
{
    using namespace ColumnCatalogue;

    row.clear();
    // Only sensor data makes a line: counters, time, status, clipping and
    // RSSI alone do not.
    bool hasData = false;

    const DataGroup *group = groups().begin();
    for (const QString &key : qAsConst(groupKeys)) {
        const Group id = (group++)->group;
        const QVariant setting = settings->setting(key);
        if (id != Group::Orientation && !setting.toBool())
            continue;

        switch (id) {
        case Group::PacketCounter:
            row.natural(source->packetCounter(), 5, '0');
            break;
        case Group::SampleTimeFine:
            if (source->hasSampleTimeFine())
                row.natural(source->sampleTimeFine(), 5, '0');
            else
                row.empty(1);
            break;
        case Group::DateTime: {
            const QDateTime dateTime = source->sampleDateTime();
            if (dateTime.isNull()) {
                row.empty(4);
                break;
            }
            const QDate date = dateTime.date();
            row.integer(date.year());
            row.integer(date.month(), 2, '0');
            row.integer(date.day(), 2, '0');
            // Measured from a null time, which makes the toolkit answer 0:
            // files have always carried zero seconds here.
            formatValue(row, QTime().msecsTo(dateTime.time()) / 1000.0, Coarse);
            break;
        }
        case Group::Utc: {
            const KvUtcTime utc = source->utcTime();
            if (utc.isZero()) {
                row.empty(8);
                break;
            }
            row.natural(utc.nano);
            row.natural(utc.year);
            row.natural(utc.month);
            row.natural(utc.day);
            row.natural(utc.hour);
            row.natural(utc.minute);
            row.natural(utc.second);
            row.natural(utc.valid);
            break;
        }
        case Group::StatusWord:
            row.integer(source->statusWord());
            break;
        case Group::ClippingFlags:
            row.natural(source->clippingFlags());
            break;
        case Group::Rssi:
            formatValue(row, source->rssi(), Coarse);
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
                row.empty(4);
                break;
            }
            for (int i = 0; i < 4; ++i)
                formatValue(row, increment.at(i), Ordinary);
            hasData = true;
            break;
        }
        case Group::Pressure: {
            const double pressure = source->pressure();
            if (!(pressure > 0.0)) {
                row.empty(1);
                break;
            }
            formatValue(row, pressure, Coarse);
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
                row.empty(1);
                break;
            }
            formatValue(row, altitude, Ordinary);
            hasData = true;
            break;
        }
        case Group::Velocity:
            hasData |= writeValues(row, source->velocity(source->velocitySelector()), 3, Ordinary);
            break;
        case Group::Temperature: {
            const double temperature = source->temperature();
            if (!(temperature > -999.99)) {
                row.empty(1);
                break;
            }
            row.fixed(temperature, 2);
            hasData = true;
            break;
        }
        case Group::GyroTemperature: {
            const QVector<quint16> words = source->gyroTemperatures();
            for (int i = 0; i < 3; ++i) {
                if (i < words.size()) {
                    // 8.8 fixed point, signed
                    row.general(qint16(words.at(i)) / 256.0, 2);
                    hasData = true;
                } else {
                    row.empty(1);
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
            row.natural(source->scrTemperature());
            hasData = true;
            break;
        case Group::ScrGyroTemperature: {
            const QVector<quint16> words = source->gyroTemperatures();
            for (int i = 0; i < 3; ++i) {
                if (i < words.size()) {
                    row.natural(words.at(i));
                    hasData = true;
                } else {
                    row.empty(1);
                }
            }
            break;
        }
        case Group::RawGps:
            writeGpsSolution(row, source->gpsSolutionRecord());
            writeGpsDop(row, source->gpsDopRecord());
            writeGpsUtcTime(row, source->gpsUtcTimeRecord());
            writeGpsSatellites(row, source->gpsSatelliteRecord());
            hasData = true;
            break;
        case Group::RawGnss:
            writeGnssPvt(row, source->gnssPvtRecord());
            writeGnssSatellites(row, source->gnssSatelliteRecord());
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
    trimTrailingDelimiter(row.line());
    out << row.line();
    return true;
}
