#include "exportrun.h"

#include <abstractexporter.h>

#include <QFile>
#include <QTemporaryDir>

QByteArray exportSamples(AbstractExporter *exporter, TestSource *source,
                         const QVector<TestSample> &samples)
{
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("export.txt")));
    if (!exporter->start(&file))
        return QByteArray();
    for (const TestSample &sample : samples) {
        source->sample = sample;
        if (!exporter->writeSample())
            return QByteArray();
    }
    exporter->finish();
    file.close();
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

QStringList linesAfterHeaderBlock(const QByteArray &file)
{
    QStringList lines = QString::fromUtf8(file).split(QLatin1Char('\n'));
    // the last line end leaves an empty piece behind
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines.mid(5);
}

QStringList dataGroupKeys()
{
    return {
        QStringLiteral("exportPacketCounter"),
        QStringLiteral("exportSampleTimeFine"),
        QStringLiteral("exportDateTime"),
        QStringLiteral("exportUtc"),
        QStringLiteral("exportStatusFlags"),
        QStringLiteral("exportClipFlags"),
        QStringLiteral("exportRssi"),
        QStringLiteral("exportCalibratedAcceleration"),
        QStringLiteral("exportFreeAcceleration"),
        QStringLiteral("exportCalibratedAngularVelocity"),
        QStringLiteral("exportMagneticField"),
        QStringLiteral("exportVelocityIncrement"),
        QStringLiteral("exportOrientationIncrement"),
        QStringLiteral("exportPressure"),
        QStringLiteral("exportPosition"),
        QStringLiteral("exportVelocity"),
        QStringLiteral("exportTemperature"),
        QStringLiteral("exportGyroTemperature"),
        QStringLiteral("exportScrAcceleration"),
        QStringLiteral("exportScrGyroscopeData"),
        QStringLiteral("exportScrMagneticField"),
        QStringLiteral("exportScrTemperature"),
        QStringLiteral("exportScrGyroTemperature"),
        QStringLiteral("exportRawGps"),
        QStringLiteral("exportRawGnss"),
        QStringLiteral("exportTriggerIn1"),
        QStringLiteral("exportTriggerIn2"),
    };
}

TestSample fullSample()
{
    TestSample s;
    s.dateTime = QDateTime(QDate(2026, 11, 21), QTime(9, 30, 0, 250), Qt::UTC);
    s.utc.nano = 250000000;
    s.utc.year = 2026;
    s.utc.month = 11;
    s.utc.day = 21;
    s.utc.hour = 9;
    s.utc.minute = 30;
    s.utc.second = 0;
    s.utc.valid = 7;
    s.packetCounter = 42;
    s.sampleTimeFine = 123456;
    s.hasSampleTimeFine = true;
    s.temperature = 25.125;
    s.scrTemperature = 2048;
    s.gyroTemperatures = {0x1900, 0xFF00, 0x1980};
    s.calibratedAcceleration = {0.125, -0.5, 9.81};
    s.freeAcceleration = {0.0, -0.0, 0.02};
    s.scrAcceleration = {32768.9, -12.7, 0.0};
    s.velocityIncrement = {0.00125, 0.0, 0.098};
    s.calibratedAngularVelocity = {0.001, -0.002, 0.0035};
    s.scrGyroscopeData = {1000.0, 2000.5, -3000.99};
    s.orientationIncrement = KvQuaternion(1.0, 0.0001, -0.0002, 0.0003);
    s.magneticField = {0.4, -0.1, 0.85};
    s.scrMagneticField = {1.0, 2.0, 3.0};
    s.orientationQuaternion = KvQuaternion(0.5, -0.5, 0.5, 0.5);
    s.orientationEuler = {1.5, -2.25, 45.0};
    s.orientationMatrix = KvMatrix({0.0, -1.0, 0.0, 0.0, 0.0, -1.0, 1.0, 0.0, 0.0});
    s.latitudeLongitude = {52.2215, 6.8937};
    s.altitude = 42.5;
    s.velocity = {1.5, -0.25, 0.0};
    s.statusWord = qint32(0x80000003u);
    s.pressure = 1013.25;
    s.rssi = -57.5;
    s.clippingFlags = 0x0102;

    s.gpsSolution.iTOW = 345600000;
    s.gpsSolution.fTOW = -12345;
    s.gpsSolution.week = 2345;
    s.gpsSolution.gpsFix = 3;
    s.gpsSolution.flags = 0x0D;
    s.gpsSolution.ecefX = 388155620;
    s.gpsSolution.ecefY = 48463123;
    s.gpsSolution.ecefZ = 509015587;
    s.gpsSolution.pAcc = 250;
    s.gpsSolution.ecefVX = -12;
    s.gpsSolution.ecefVY = 5;
    s.gpsSolution.ecefVZ = 0;
    s.gpsSolution.sAcc = 35;
    s.gpsSolution.pDOP = 145;
    s.gpsSolution.numSV = 9;

    s.gpsDop.iTOW = 345600000;
    s.gpsDop.gDOP = 210;
    s.gpsDop.pDOP = 145;
    s.gpsDop.tDOP = 98;
    s.gpsDop.vDOP = 120;
    s.gpsDop.hDOP = 87;
    s.gpsDop.nDOP = 60;
    s.gpsDop.eDOP = 55;

    s.gpsUtcTime.iTOW = 345600000;
    s.gpsUtcTime.tAcc = 25;
    s.gpsUtcTime.nano = -5000;
    s.gpsUtcTime.year = 2026;
    s.gpsUtcTime.month = 11;
    s.gpsUtcTime.day = 21;
    s.gpsUtcTime.hour = 9;
    s.gpsUtcTime.min = 30;
    s.gpsUtcTime.sec = 0;
    s.gpsUtcTime.valid = 7;

    s.gpsSatellites.iTOW = 345600000;
    s.gpsSatellites.numCh = 5;
    const KvGpsChannel channels[] = {{2, 7}, {5, 6}, {12, 7}, {25, 4}, {29, 5}};
    for (int i = 0; i < 5; ++i)
        s.gpsSatellites.channels[i] = channels[i];

    s.gnssPvt.iTOW = 345600000;
    s.gnssPvt.year = 2026;
    s.gnssPvt.month = 11;
    s.gnssPvt.day = 21;
    s.gnssPvt.hour = 9;
    s.gnssPvt.min = 30;
    s.gnssPvt.sec = 0;
    s.gnssPvt.valid = 7;
    s.gnssPvt.tAcc = 25;
    s.gnssPvt.nano = -5000;
    s.gnssPvt.fixType = 3;
    s.gnssPvt.flags = 1;
    s.gnssPvt.numSV = 14;
    s.gnssPvt.lon = 68937000;
    s.gnssPvt.lat = 522215000;
    s.gnssPvt.height = 42500;
    s.gnssPvt.hMSL = 1234;
    s.gnssPvt.hAcc = 1500;
    s.gnssPvt.vAcc = 2500;
    s.gnssPvt.velN = 150;
    s.gnssPvt.velE = -25;
    s.gnssPvt.velD = 3;
    s.gnssPvt.gSpeed = 152;
    s.gnssPvt.headMot = 9000000;
    s.gnssPvt.sAcc = 200;
    s.gnssPvt.headAcc = 1234567;
    s.gnssPvt.headVeh = -4500000;
    s.gnssPvt.gDOP = 210;
    s.gnssPvt.pDOP = 145;
    s.gnssPvt.tDOP = 98;
    s.gnssPvt.vDOP = 120;
    s.gnssPvt.hDOP = 87;
    s.gnssPvt.nDOP = 60;
    s.gnssPvt.eDOP = 55;

    s.gnssSatellites.iTOW = 345600000;
    s.gnssSatellites.numSvs = 5;
    const KvGnssSatellite satellites[] = {
        {0, 2, 44, 0x1F}, {0, 5, 38, 0x1D}, {2, 11, 41, 0x5F}, {3, 23, 30, 0x0C}, {6, 7, 0, 0}};
    for (int i = 0; i < 5; ++i)
        s.gnssSatellites.satellites[i] = satellites[i];

    s.triggerIn2.line = 2;
    s.triggerIn2.polarity = 1;
    s.triggerIn2.timestamp = 123456;
    s.triggerIn2.frameNumber = 42;
    s.triggerIn2.valid = true;
    return s;
}

TestSample sparseSample()
{
    TestSample s;
    s.packetCounter = 43;
    s.calibratedAcceleration = {0.0, 0.0, -9.81};
    return s;
}

QVariantMap recordingProperties()
{
    return {
        {QStringLiteral("StartTime"), QStringLiteral("2026-11-21 09:30:00")},
        {QStringLiteral("FilterProfile"), QStringLiteral("general")},
        {QStringLiteral("FilterProfileVersion"), 1},
        {QStringLiteral("FilterProfileType"), 39},
        {QStringLiteral("OptionFlags"), 0},
        {QStringLiteral("FirmwareVersion"), QStringLiteral("1.2.3")},
    };
}

QVector<TestSample> recordingSamples()
{
    TestSample countersOnly;
    countersOnly.packetCounter = 44;
    countersOnly.sampleTimeFine = 123556;
    countersOnly.hasSampleTimeFine = true;
    return {fullSample(), sparseSample(), countersOnly};
}
