#include "benchdata.h"

#include <columncatalogue.h>

#include <random.h>

#include <cmath>

namespace {

KvVector vector3(Random &random, double range)
{
    return {random.uniform(-range, range), random.uniform(-range, range),
            random.uniform(-range, range)};
}

} // namespace

QVector<BenchConfig> benchConfigs()
{
    BenchConfig defaults{QStringLiteral("default"), {}, 0, 0};

    BenchConfig inertial{QStringLiteral("inertial"), {}, 0, 0};
    for (const char *key : {"exportCalibratedAcceleration", "exportFreeAcceleration",
                            "exportCalibratedAngularVelocity", "exportMagneticField",
                            "exportPressure", "exportTemperature"})
        inertial.settings.insert(QString::fromLatin1(key), true);
    inertial.settings.insert(QStringLiteral("exportOrientation"), QStringLiteral("Quaternion"));

    BenchConfig full{QStringLiteral("full"), {}, 12, 30};
    // Every group of the column catalogue, orientation as Euler angles.
    for (const ColumnCatalogue::DataGroup &group : ColumnCatalogue::groups()) {
        if (group.selection == ColumnCatalogue::Selection::OnOff)
            full.settings.insert(QString::fromLatin1(group.settingKey), true);
        else
            full.settings.insert(QString::fromLatin1(group.settingKey), QStringLiteral("Euler"));
    }
    return {defaults, inertial, full};
}

QVector<TestSample> makeSamplePool(const BenchConfig &config, int count, quint64 seed)
{
    Random random(seed);
    QVector<TestSample> pool;
    pool.reserve(count);
    const QDateTime start(QDate(2026, 11, 21), QTime(9, 30), Qt::UTC);
    for (int i = 0; i < count; ++i) {
        TestSample s;
        s.packetCounter = quint16(i);
        s.sampleTimeFine = quint32(1200000 + 100 * i);
        s.hasSampleTimeFine = true;
        s.dateTime = start.addMSecs(10 * i);
        s.utc = {quint32(random.integer(0, 999999999)), 2026, 11, 21, 9, 30, quint8(i % 60), 7};
        s.statusWord = qint32(random.next());
        s.clippingFlags = quint16(random.next());
        s.rssi = random.uniform(-90, -30);
        s.calibratedAcceleration = vector3(random, 20);
        s.freeAcceleration = vector3(random, 5);
        s.calibratedAngularVelocity = vector3(random, 5);
        s.magneticField = vector3(random, 2);
        s.velocityIncrement = vector3(random, 0.2);
        const double q[4] = {random.uniform(-1, 1), random.uniform(-1, 1), random.uniform(-1, 1),
                             random.uniform(-1, 1)};
        const double norm = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
        s.orientationQuaternion = KvQuaternion(q[0] / norm, q[1] / norm, q[2] / norm, q[3] / norm);
        s.orientationIncrement =
            KvQuaternion(1.0, random.uniform(-1e-3, 1e-3), random.uniform(-1e-3, 1e-3),
                         random.uniform(-1e-3, 1e-3));
        s.orientationEuler = {random.uniform(-180, 180), random.uniform(-90, 90),
                              random.uniform(-180, 180)};
        s.latitudeLongitude = {random.uniform(-90, 90), random.uniform(-180, 180)};
        s.altitude = random.uniform(-100, 4000);
        s.velocity = vector3(random, 30);
        s.pressure = random.uniform(900, 1100);
        s.temperature = random.uniform(-20, 60);
        // not multiples of 128: no word is an exact tie at two significant digits
        s.gyroTemperatures = {quint16(random.integer(0, 127) * 128 + 1 + random.integer(0, 126)),
                              quint16(6400 + random.integer(1, 127)),
                              quint16(6300 + random.integer(1, 99))};
        s.scrAcceleration = vector3(random, 32768);
        s.scrGyroscopeData = vector3(random, 32768);
        s.scrMagneticField = vector3(random, 32768);
        s.scrTemperature = quint16(random.integer(0, 65535));

        s.gpsSolution = {quint32(345600000 + 10 * i),
                         qint32(random.integer(-500000, 500000)),
                         2345,
                         3,
                         13,
                         qint32(random.integer(-700000000, 700000000)),
                         qint32(random.integer(-700000000, 700000000)),
                         qint32(random.integer(-700000000, 700000000)),
                         quint32(random.integer(0, 10000)),
                         qint32(random.integer(-3000, 3000)),
                         qint32(random.integer(-3000, 3000)),
                         qint32(random.integer(-3000, 3000)),
                         quint32(random.integer(0, 500)),
                         quint16(random.integer(50, 900)),
                         9};
        s.gpsDop = {quint32(345600000 + 10 * i),      quint16(random.integer(50, 900)),
                    quint16(random.integer(50, 900)), quint16(random.integer(50, 900)),
                    quint16(random.integer(50, 900)), quint16(random.integer(50, 900)),
                    quint16(random.integer(50, 900)), quint16(random.integer(50, 900))};
        s.gpsUtcTime = {quint32(345600000 + 10 * i),
                        25,
                        qint32(random.integer(-500000, 500000)),
                        2026,
                        11,
                        21,
                        9,
                        30,
                        quint8(i % 60),
                        7};
        s.gpsSatellites.iTOW = quint32(345600000 + 10 * i);
        s.gpsSatellites.numCh = quint8(config.gpsChannels);
        for (int c = 0; c < config.gpsChannels; ++c)
            s.gpsSatellites.channels[c] = {quint8(random.integer(1, 32)),
                                           quint8(random.integer(0, 7))};
        KvGnssPvt &pvt = s.gnssPvt;
        pvt.iTOW = quint32(345600000 + 10 * i);
        pvt.year = 2026;
        pvt.month = 11;
        pvt.day = 21;
        pvt.hour = 9;
        pvt.min = 30;
        pvt.sec = quint8(i % 60);
        pvt.valid = 7;
        pvt.tAcc = 25;
        pvt.nano = qint32(random.integer(-500000, 500000));
        pvt.fixType = 3;
        pvt.flags = 1;
        pvt.numSV = 14;
        pvt.lon = qint32(random.integer(-1800000000, 1800000000));
        pvt.lat = qint32(random.integer(-900000000, 900000000));
        pvt.height = qint32(random.integer(-100000, 4000000));
        pvt.hMSL = qint32(random.integer(-100000, 4000000));
        pvt.hAcc = quint32(random.integer(0, 50000));
        pvt.vAcc = quint32(random.integer(0, 50000));
        pvt.velN = qint32(random.integer(-30000, 30000));
        pvt.velE = qint32(random.integer(-30000, 30000));
        pvt.velD = qint32(random.integer(-30000, 30000));
        pvt.gSpeed = qint32(random.integer(0, 30000));
        pvt.headMot = qint32(random.integer(0, 36000000));
        pvt.sAcc = quint32(random.integer(0, 5000));
        pvt.headAcc = quint32(random.integer(0, 18000000));
        pvt.headVeh = qint32(random.integer(0, 36000000));
        pvt.gDOP = quint16(random.integer(50, 900));
        pvt.pDOP = quint16(random.integer(50, 900));
        pvt.tDOP = quint16(random.integer(50, 900));
        pvt.vDOP = quint16(random.integer(50, 900));
        pvt.hDOP = quint16(random.integer(50, 900));
        pvt.nDOP = quint16(random.integer(50, 900));
        pvt.eDOP = quint16(random.integer(50, 900));
        s.gnssSatellites.iTOW = pvt.iTOW;
        s.gnssSatellites.numSvs = quint8(config.gnssSatellites);
        for (int c = 0; c < config.gnssSatellites; ++c) {
            s.gnssSatellites.satellites[c] = {
                quint8(random.integer(0, 6)), quint8(random.integer(1, 36)),
                quint8(random.integer(0, 55)), quint32(random.integer(0, 0xFFFF))};
        }
        if (i % 7 == 0)
            s.triggerIn1 = {1, 1, quint32(random.integer(0, 4000000000)), quint16(i), true};
        if (i % 11 == 0)
            s.triggerIn2 = {2, 0, quint32(random.integer(0, 4000000000)), quint16(i), true};
        pool.append(s);
    }
    return pool;
}

namespace {

class Fields
{
public:
    QVector<Field> list;

    void fixed(double value, int decimals)
    {
        list.append({Field::Fixed, value, 0, decimals, 0, ' '});
    }
    void general(double value, int digits)
    {
        list.append({Field::General, value, 0, digits, 0, ' '});
    }
    void integer(qint64 value, int width = 0, char fill = ' ')
    {
        list.append({Field::Signed, 0.0, value, 0, width, fill});
    }
    void natural(quint64 value, int width = 0, char fill = ' ')
    {
        list.append({Field::Unsigned, 0.0, qint64(value), 0, width, fill});
    }
    void empty(int count)
    {
        for (int i = 0; i < count; ++i)
            list.append(Field());
    }
};

} // namespace

QVector<Field> flatten(const TestSample &s, const QMap<QString, QVariant> &settings)
{
    const auto on = [&](const char *key) {
        return settings.value(QString::fromLatin1(key)).toBool();
    };
    const bool high = on("highPrecision");
    const auto value = [&](Fields &f, double v, int decimals) {
        if (high)
            f.general(v, 18);
        else
            f.fixed(v, decimals);
    };
    const auto vector = [&](Fields &f, const KvVector &v) {
        if (v.isEmpty())
            f.empty(3);
        else
            for (int i = 0; i < 3; ++i)
                value(f, v.at(i), 6);
    };
    Fields f;
    if (on("exportPacketCounter"))
        f.natural(s.packetCounter, 5, '0');
    if (on("exportSampleTimeFine"))
        f.natural(s.sampleTimeFine, 5, '0');
    if (on("exportDateTime")) {
        f.integer(s.dateTime.date().year());
        f.integer(s.dateTime.date().month(), 2, '0');
        f.integer(s.dateTime.date().day(), 2, '0');
        value(f, 0.0, 4);
    }
    if (on("exportUtc")) {
        for (const quint32 part : {s.utc.nano, quint32(s.utc.year), quint32(s.utc.month),
                                   quint32(s.utc.day), quint32(s.utc.hour), quint32(s.utc.minute),
                                   quint32(s.utc.second), quint32(s.utc.valid)})
            f.natural(part);
    }
    if (on("exportStatusFlags"))
        f.integer(s.statusWord);
    if (on("exportClipFlags"))
        f.natural(s.clippingFlags);
    if (on("exportRssi"))
        value(f, s.rssi, 4);
    if (on("exportCalibratedAcceleration"))
        vector(f, s.calibratedAcceleration);
    if (on("exportFreeAcceleration"))
        vector(f, s.freeAcceleration);
    if (on("exportCalibratedAngularVelocity"))
        vector(f, s.calibratedAngularVelocity);
    if (on("exportMagneticField"))
        vector(f, s.magneticField);
    if (on("exportVelocityIncrement"))
        vector(f, s.velocityIncrement);
    if (on("exportOrientationIncrement"))
        for (int i = 0; i < 4; ++i)
            value(f, s.orientationIncrement.at(i), 6);
    if (on("exportPressure"))
        value(f, s.pressure, 4);
    const QString orientation =
        settings.value(QStringLiteral("exportOrientation"), QStringLiteral("Euler")).toString();
    if (orientation == QLatin1String("Euler")) {
        value(f, s.orientationEuler.roll, 6);
        value(f, s.orientationEuler.pitch, 6);
        value(f, s.orientationEuler.yaw, 6);
    } else if (orientation == QLatin1String("Quaternion")) {
        for (int i = 0; i < 4; ++i)
            value(f, s.orientationQuaternion.at(i), 6);
    }
    if (on("exportPosition")) {
        value(f, s.latitudeLongitude.at(0), 9);
        value(f, s.latitudeLongitude.at(1), 9);
        value(f, s.altitude, 6);
    }
    if (on("exportVelocity"))
        vector(f, s.velocity);
    if (on("exportTemperature"))
        f.fixed(s.temperature, 2);
    if (on("exportGyroTemperature"))
        for (const quint16 word : s.gyroTemperatures)
            f.general(qint16(word) / 256.0, 2);
    for (const char *key :
         {"exportScrAcceleration", "exportScrGyroscopeData", "exportScrMagneticField"}) {
        if (!on(key))
            continue;
        const KvVector &v = qstrcmp(key, "exportScrAcceleration") == 0 ? s.scrAcceleration
            : qstrcmp(key, "exportScrGyroscopeData") == 0              ? s.scrGyroscopeData
                                                                       : s.scrMagneticField;
        for (int i = 0; i < 3; ++i)
            f.integer(qint64(v.at(i)));
    }
    if (on("exportScrTemperature"))
        f.natural(s.scrTemperature);
    if (on("exportScrGyroTemperature"))
        for (const quint16 word : s.gyroTemperatures)
            f.natural(word);
    if (on("exportRawGps")) {
        const KvGpsSolution &g = s.gpsSolution;
        f.integer(qint32(g.iTOW));
        f.integer(g.fTOW);
        f.integer(g.week);
        f.integer(g.gpsFix);
        f.integer(g.flags);
        for (const qint64 centimetres :
             {qint64(g.ecefX), qint64(g.ecefY), qint64(g.ecefZ), qint64(g.pAcc), qint64(g.ecefVX),
              qint64(g.ecefVY), qint64(g.ecefVZ), qint64(g.sAcc), qint64(g.pDOP)})
            f.fixed(centimetres * 0.01, 2);
        f.integer(g.numSV);
        const KvGpsDop &d = s.gpsDop;
        f.integer(qint32(d.iTOW));
        for (const quint16 dop : {d.gDOP, d.pDOP, d.tDOP, d.vDOP, d.hDOP, d.nDOP, d.eDOP})
            f.fixed(dop * 0.01, 2);
        const KvGpsUtcTime &u = s.gpsUtcTime;
        f.integer(qint32(u.iTOW));
        f.natural(u.tAcc);
        f.integer(u.nano);
        for (const int part : {int(u.year), int(u.month), int(u.day), int(u.hour), int(u.min),
                               int(u.sec), int(u.valid)})
            f.integer(part);
        f.natural(s.gpsSatellites.iTOW);
        for (int c = 0; c < KvGpsSatelliteInfo::maxChannels; ++c) {
            if (c < s.gpsSatellites.numCh) {
                f.integer(s.gpsSatellites.channels[c].svid);
                f.integer(s.gpsSatellites.channels[c].quality);
            } else {
                f.empty(2);
            }
        }
    }
    if (on("exportRawGnss")) {
        const KvGnssPvt &p = s.gnssPvt;
        f.integer(qint32(p.iTOW));
        f.natural(p.tAcc);
        f.integer(p.nano);
        for (const int part :
             {int(p.year), int(p.month), int(p.day), int(p.hour), int(p.min), int(p.sec),
              int(p.valid), int(p.fixType), int(p.flags), int(p.numSV)})
            f.integer(part);
        f.fixed(p.lon * 1e-7, 7);
        f.fixed(p.lat * 1e-7, 7);
        f.integer(p.height);
        f.integer(p.hMSL);
        f.natural(p.hAcc);
        f.natural(p.vAcc);
        f.integer(p.velN);
        f.integer(p.velE);
        f.integer(p.velD);
        f.integer(p.gSpeed);
        f.fixed(p.headMot * 1e-5, 2);
        f.natural(p.sAcc);
        f.fixed(p.headAcc * 1e-5, 2);
        f.fixed(p.headVeh * 1e-5, 2);
        for (const quint16 dop : {p.gDOP, p.pDOP, p.tDOP, p.vDOP, p.hDOP, p.nDOP, p.eDOP})
            f.fixed(dop * 0.01, 2);
        f.natural(s.gnssSatellites.iTOW);
        for (int c = 0; c < KvGnssSatelliteInfo::maxSatellites; ++c) {
            if (c < s.gnssSatellites.numSvs) {
                const KvGnssSatellite &sat = s.gnssSatellites.satellites[c];
                f.integer(sat.gnssId);
                f.integer(sat.svId);
                f.integer(sat.cno);
                f.integer(qint32(sat.flags));
            } else {
                f.empty(4);
            }
        }
    }
    for (const auto &[key, trigger] :
         {std::pair<const char *, const KvTriggerIndication &>{"exportTriggerIn1", s.triggerIn1},
          std::pair<const char *, const KvTriggerIndication &>{"exportTriggerIn2", s.triggerIn2}}) {
        if (!on(key))
            continue;
        if (!trigger.isValid()) {
            f.empty(3);
            continue;
        }
        f.natural(trigger.polarity, 1);
        f.natural(trigger.timestamp, 10);
        f.natural(trigger.frameNumber, 5);
    }
    return f.list;
}
