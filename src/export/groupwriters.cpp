#include "groupwriters.h"

#include "rowwriter.h"

#include <exportsource.h>
#include <kvconstants.h>

#include <QDateTime>

#include <limits>

namespace GroupWriters {

namespace {

using Precision = RowWriter::Precision;

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

// One value per column, or placeholders for an empty vector. An element the
// vector lacks is missing data as well.
bool writeValues(RowWriter &writer, const KvVector &vector, const Fields &fields,
                 Precision precision)
{
    RowBuffer &row = writer.row();
    if (vector.isEmpty()) {
        row.empty(fields.count());
        return false;
    }
    for (int i = 0; i < fields.count(); ++i) {
        if (i < vector.size())
            writer.formatValue(vector.at(i), precision);
        else
            row.empty(1);
    }
    return true;
}

template <KvVector (ExportSource::*vector)() const>
bool values(RowWriter &writer, const Fields &fields)
{
    return writeValues(writer, (writer.source().*vector)(), fields, RowWriter::Ordinary);
}

// The raw readouts: whole numbers, truncated.
template <KvVector (ExportSource::*vector)() const>
bool truncatedValues(RowWriter &writer, const Fields &fields)
{
    const KvVector readout = (writer.source().*vector)();
    RowBuffer &row = writer.row();
    if (readout.isEmpty()) {
        row.empty(fields.count());
        return false;
    }
    for (int i = 0; i < fields.count(); ++i) {
        if (i < readout.size())
            row.integer(truncated(readout.at(i)));
        else
            row.empty(1);
    }
    return true;
}

bool writeQuaternion(RowWriter &writer, const KvQuaternion &quaternion, const Fields &fields)
{
    if (quaternion.isEmpty()) {
        writer.row().empty(fields.count());
        return false;
    }
    for (int i = 0; i < 4; ++i)
        writer.formatValue(quaternion.at(i), RowWriter::Ordinary);
    return true;
}

bool writeTrigger(RowWriter &writer, const Fields &fields, quint32 dataId)
{
    const KvTriggerIndication trigger = writer.source().triggerIndication(dataId);
    RowBuffer &row = writer.row();
    if (!trigger.isValid()) {
        row.empty(fields.count());
        return false;
    }
    row.natural(trigger.polarity, 1);
    row.natural(trigger.timestamp, 10);
    row.natural(trigger.frameNumber, 5);
    return true;
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
    for (const quint16 dop : {record.gDOP, record.pDOP, record.tDOP, record.vDOP, record.hDOP,
                              record.nDOP, record.eDOP})
        row.fixed(dop * 0.01, 2);
}

} // namespace

bool packetCounter(RowWriter &writer, const Fields &)
{
    writer.row().natural(writer.source().packetCounter(), 5, '0');
    return false;
}

bool sampleTimeFine(RowWriter &writer, const Fields &fields)
{
    const ExportSource &source = writer.source();
    if (source.hasSampleTimeFine())
        writer.row().natural(source.sampleTimeFine(), 5, '0');
    else
        writer.row().empty(fields.count());
    return false;
}

bool dateTime(RowWriter &writer, const Fields &fields)
{
    const QDateTime dateTime = writer.source().sampleDateTime();
    RowBuffer &row = writer.row();
    if (dateTime.isNull()) {
        row.empty(fields.count());
        return false;
    }
    const QDate date = dateTime.date();
    row.integer(date.year());
    row.integer(date.month(), 2, '0');
    row.integer(date.day(), 2, '0');
    // Measured from a null time, which makes the toolkit answer 0: files
    // have always carried zero seconds here.
    writer.formatValue(QTime().msecsTo(dateTime.time()) / 1000.0, RowWriter::Coarse);
    return false;
}

bool utc(RowWriter &writer, const Fields &fields)
{
    const KvUtcTime utc = writer.source().utcTime();
    RowBuffer &row = writer.row();
    if (utc.isZero()) {
        row.empty(fields.count());
        return false;
    }
    row.natural(utc.nano);
    row.natural(utc.year);
    row.natural(utc.month);
    row.natural(utc.day);
    row.natural(utc.hour);
    row.natural(utc.minute);
    row.natural(utc.second);
    row.natural(utc.valid);
    return false;
}

bool statusWord(RowWriter &writer, const Fields &)
{
    writer.row().integer(writer.source().statusWord());
    return false;
}

bool clippingFlags(RowWriter &writer, const Fields &)
{
    writer.row().natural(writer.source().clippingFlags());
    return false;
}

bool rssi(RowWriter &writer, const Fields &)
{
    writer.formatValue(writer.source().rssi(), RowWriter::Coarse);
    return false;
}

bool calibratedAcceleration(RowWriter &writer, const Fields &fields)
{
    return values<&ExportSource::calibratedAcceleration>(writer, fields);
}

bool freeAcceleration(RowWriter &writer, const Fields &fields)
{
    return values<&ExportSource::freeAcceleration>(writer, fields);
}

bool calibratedAngularVelocity(RowWriter &writer, const Fields &fields)
{
    return values<&ExportSource::calibratedAngularVelocity>(writer, fields);
}

bool magneticField(RowWriter &writer, const Fields &fields)
{
    return values<&ExportSource::magneticField>(writer, fields);
}

bool velocityIncrement(RowWriter &writer, const Fields &fields)
{
    return values<&ExportSource::velocityIncrement>(writer, fields);
}

bool orientationIncrement(RowWriter &writer, const Fields &fields)
{
    return writeQuaternion(writer, writer.source().orientationIncrement(), fields);
}

bool pressure(RowWriter &writer, const Fields &fields)
{
    const double pressure = writer.source().pressure();
    if (!(pressure > 0.0)) {
        writer.row().empty(fields.count());
        return false;
    }
    writer.formatValue(pressure, RowWriter::Coarse);
    return true;
}

bool euler(RowWriter &writer, const Fields &fields)
{
    const ExportSource &source = writer.source();
    const KvEulerAngles euler = source.orientationEuler(source.orientationSelector());
    // An attitude of exactly zero is how the source says it has none.
    if (euler.roll == 0.0 && euler.pitch == 0.0 && euler.yaw == 0.0) {
        writer.row().empty(fields.count());
        return false;
    }
    writer.formatValue(euler.roll, RowWriter::Ordinary);
    writer.formatValue(euler.pitch, RowWriter::Ordinary);
    writer.formatValue(euler.yaw, RowWriter::Ordinary);
    return true;
}

bool matrix(RowWriter &writer, const Fields &fields)
{
    const ExportSource &source = writer.source();
    const KvMatrix matrix = source.orientationMatrix(source.orientationSelector());
    if (matrix.isEmpty()) {
        writer.row().empty(fields.count());
        return false;
    }
    // column by column, as the header names them
    for (int column = 0; column < 3; ++column) {
        for (int rowIndex = 0; rowIndex < 3; ++rowIndex)
            writer.formatValue(matrix.value(rowIndex, column), RowWriter::Ordinary);
    }
    return true;
}

bool quaternion(RowWriter &writer, const Fields &fields)
{
    const ExportSource &source = writer.source();
    return writeQuaternion(writer, source.orientationQuaternion(source.orientationSelector()),
                           fields);
}

bool latitudeLongitude(RowWriter &writer, const Fields &fields)
{
    return writeValues(writer, writer.source().latitudeLongitude(), fields, RowWriter::Geographic);
}

bool altitude(RowWriter &writer, const Fields &fields)
{
    const double altitude = writer.source().altitude();
    if (altitude == KvConstants::infinity) {
        writer.row().empty(fields.count());
        return false;
    }
    writer.formatValue(altitude, RowWriter::Ordinary);
    return true;
}

bool velocity(RowWriter &writer, const Fields &fields)
{
    const ExportSource &source = writer.source();
    return writeValues(writer, source.velocity(source.velocitySelector()), fields,
                       RowWriter::Ordinary);
}

bool temperature(RowWriter &writer, const Fields &fields)
{
    const double temperature = writer.source().temperature();
    if (!(temperature > -999.99)) {
        writer.row().empty(fields.count());
        return false;
    }
    writer.row().fixed(temperature, 2);
    return true;
}

bool gyroTemperature(RowWriter &writer, const Fields &fields)
{
    const QVector<quint16> words = writer.source().gyroTemperatures();
    RowBuffer &row = writer.row();
    bool written = false;
    for (int i = 0; i < fields.count(); ++i) {
        if (i < words.size()) {
            // 8.8 fixed point, signed
            row.general(qint16(words.at(i)) / 256.0, 2);
            written = true;
        } else {
            row.empty(1);
        }
    }
    return written;
}

bool scrAcceleration(RowWriter &writer, const Fields &fields)
{
    return truncatedValues<&ExportSource::scrAcceleration>(writer, fields);
}

bool scrGyroscopeData(RowWriter &writer, const Fields &fields)
{
    return truncatedValues<&ExportSource::scrGyroscopeData>(writer, fields);
}

bool scrMagneticField(RowWriter &writer, const Fields &fields)
{
    return truncatedValues<&ExportSource::scrMagneticField>(writer, fields);
}

bool scrTemperature(RowWriter &writer, const Fields &)
{
    writer.row().natural(writer.source().scrTemperature());
    return true;
}

bool scrGyroTemperature(RowWriter &writer, const Fields &fields)
{
    const QVector<quint16> words = writer.source().gyroTemperatures();
    RowBuffer &row = writer.row();
    bool written = false;
    for (int i = 0; i < fields.count(); ++i) {
        if (i < words.size()) {
            row.natural(words.at(i));
            written = true;
        } else {
            row.empty(1);
        }
    }
    return written;
}

// The receiver records hold the raw integers of the receiver's messages.
// Whole numbers are written as printf's "%d" writes them, a signed 32-bit
// word (so a time of week beyond 2^31 comes out negative), and "%u" where noted;
// scaled values in fixed notation. A record missing from the sample is a
// run of empty fields, and the group still makes a line.

bool gpsSolution(RowWriter &writer, const Fields &fields)
{
    const KvGpsSolution record = writer.source().gpsSolutionRecord();
    RowBuffer &row = writer.row();
    if (record.iTOW == 0) {
        row.empty(fields.count());
        return true;
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
    return true;
}

bool gpsDop(RowWriter &writer, const Fields &fields)
{
    const KvGpsDop record = writer.source().gpsDopRecord();
    RowBuffer &row = writer.row();
    if (record.iTOW == 0) {
        row.empty(fields.count());
        return true;
    }
    row.integer(qint32(record.iTOW));
    writeDilutions(row, record);
    return true;
}

bool gpsUtcTime(RowWriter &writer, const Fields &fields)
{
    const KvGpsUtcTime record = writer.source().gpsUtcTimeRecord();
    RowBuffer &row = writer.row();
    if (record.iTOW == 0) {
        row.empty(fields.count());
        return true;
    }
    writeTimeSolution(row, record);
    return true;
}

bool gpsSatellites(RowWriter &writer, const Fields &fields)
{
    const KvGpsSatelliteInfo record = writer.source().gpsSatelliteRecord();
    RowBuffer &row = writer.row();
    if (record.iTOW == 0) {
        row.empty(fields.count());
        return true;
    }
    row.natural(record.iTOW);
    for (int i = 0; i < fields.block.repeat; ++i) {
        if (i < record.numCh && i < KvGpsSatelliteInfo::maxChannels) {
            row.integer(record.channels[i].svid);
            row.integer(record.channels[i].quality);
        } else {
            row.empty(fields.block.formats.count);
        }
    }
    return true;
}

bool gnssPvt(RowWriter &writer, const Fields &fields)
{
    const KvGnssPvt record = writer.source().gnssPvtRecord();
    RowBuffer &row = writer.row();
    if (record.iTOW == 0) {
        row.empty(fields.count());
        return true;
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
    return true;
}

bool gnssSatellites(RowWriter &writer, const Fields &fields)
{
    const KvGnssSatelliteInfo record = writer.source().gnssSatelliteRecord();
    RowBuffer &row = writer.row();
    if (record.iTOW == 0) {
        row.empty(fields.count());
        return true;
    }
    row.natural(record.iTOW);
    for (int i = 0; i < fields.block.repeat; ++i) {
        if (i < record.numSvs && i < KvGnssSatelliteInfo::maxSatellites) {
            const KvGnssSatellite &satellite = record.satellites[i];
            row.integer(satellite.gnssId);
            row.integer(satellite.svId);
            row.integer(satellite.cno);
            row.integer(qint32(satellite.flags));
        } else {
            row.empty(fields.block.formats.count);
        }
    }
    return true;
}

bool triggerIn1(RowWriter &writer, const Fields &fields)
{
    return writeTrigger(writer, fields, KvTriggerIndication::triggerIn1Id);
}

bool triggerIn2(RowWriter &writer, const Fields &fields)
{
    return writeTrigger(writer, fields, KvTriggerIndication::triggerIn2Id);
}

} // namespace GroupWriters
