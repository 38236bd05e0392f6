#include "ulogbytes.h"
#include "ulogclock.h"
#include "ulogreader.h"
#include "ulogwriter.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>
#include <vector>

// The reader on logs written here with the project's own writer, in the
// layouts PX4's topics have had: every value compared with the one the
// test worked out from the message that should give it.
class TestUlogReader : public QObject
{
    Q_OBJECT

private slots:
    void newLayout();
    void properties();
    void olderLayout();
    void otherInstancesIgnored();
    void appendedPart();
    void outOfOrderAndRepeats();
    void cutLog();
    void damageNoticed();
    void notFiniteValues();
    void sensorMagWithoutOthers();
    void fillPolicies_data();
    void fillPolicies();
    void collisionsNoticed();
    void gpsValidity_data();
    void gpsValidity();
    void newerGpsLayout();
    void utcMedian_data();
    void utcMedian();
    void utcOfSamples();
    void summary();
    void noSensorCombined();
    void notAUlog();
    void pipeRefused();
    void fileOnDisk();
};

namespace {

const char *const sensorNew =
    "sensor_combined:uint64_t timestamp;float[3] gyro_rad;uint32_t gyro_integral_dt;"
    "int32_t accelerometer_timestamp_relative;float[3] accelerometer_m_s2;"
    "uint32_t accelerometer_integral_dt;uint8_t accelerometer_clipping;uint8_t gyro_clipping;"
    "uint8_t[2] _padding0;";
const char *const sensorOlder =
    "sensor_combined:uint64_t timestamp;float[3] gyro_rad;uint32_t gyro_integral_dt;"
    "int32_t accelerometer_timestamp_relative;float[3] accelerometer_m_s2;"
    "uint32_t accelerometer_integral_dt;int32_t magnetometer_timestamp_relative;"
    "float[3] magnetometer_ga;int32_t baro_timestamp_relative;float baro_alt_meter;"
    "float baro_temp_celcius;";
const char *const magnetometer = "vehicle_magnetometer:uint64_t timestamp;uint64_t "
                                 "timestamp_sample;uint32_t device_id;float[3] magnetometer_ga;"
                                 "uint8_t calibration_count;uint8_t[3] _padding0;";
const char *const airData =
    "vehicle_air_data:uint64_t timestamp;uint64_t timestamp_sample;uint32_t baro_device_id;"
    "float baro_alt_meter;float baro_temp_celcius;float baro_pressure_pa;float rho;"
    "uint8_t calibration_count;uint8_t[3] _padding0;";
const char *const attitude = "vehicle_attitude:uint64_t timestamp;uint64_t timestamp_sample;"
                             "float[4] q;float[4] delta_q_reset;uint8_t quat_reset_counter;"
                             "uint8_t[7] _padding0;";
// A nested format ahead of the fields read moves them.
const char *const estimate = "position_estimate:float x;float y;float z;bool valid;"
                             "uint8_t[3] _padding0;";
const char *const localPosition = "vehicle_local_position:uint64_t timestamp;uint64_t "
                                  "timestamp_sample;position_estimate[2] estimates;"
                                  "float ax;float ay;float az;uint8_t[4] _padding0;";
const char *const gpsOlder =
    "vehicle_gps_position:uint64_t timestamp;uint64_t time_utc_usec;int32_t lat;int32_t lon;"
    "int32_t alt;float vel_n_m_s;float vel_e_m_s;float vel_d_m_s;uint8_t fix_type;"
    "bool vel_ned_valid;uint8_t[2] _padding0;";
const char *const gpsNewer =
    "vehicle_gps_position:uint64_t timestamp;uint64_t timestamp_sample;double latitude_deg;"
    "double longitude_deg;double altitude_msl_m;uint64_t time_utc_usec;float vel_n_m_s;"
    "float vel_e_m_s;float vel_d_m_s;uint8_t fix_type;uint8_t[3] _padding0;";

enum Id : quint16 { Imu = 1, Mag, Air, Attitude, Local, Gps, ImuSecond, AttitudeSecond, SensorMag };

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

// A log in the making, in memory.
class Log
{
public:
    explicit Log(bool older = false, bool newerGps = false)
        : writer(&buffer)
    {
        buffer.setBuffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        check(writer.writeHeader(1000));
        check(writer.writeFlagBits());
        for (const char *format : {older ? sensorOlder : sensorNew, magnetometer, airData, attitude,
                                   estimate, localPosition, newerGps ? gpsNewer : gpsOlder})
            check(writer.writeFormat(format));
        check(writer.writeFormat("sensor_mag:uint64_t timestamp;float x;float y;float z;"));
    }

    UlogWriter writer;

    static void check(bool written)
    {
        if (!written)
            qFatal("the writer failed");
    }
    void subscribe(Id id, const char *topic, quint8 multiId = 0)
    {
        check(writer.writeSubscription(multiId, id, topic));
    }
    void data(Id id, const UlogBytes &payload) { check(writer.writeData(id, payload)); }

    void imu(quint64 t, float base, quint8 accelClip = 0, quint8 gyroClip = 0, Id id = Imu)
    {
        UlogBytes p;
        p.put(t).put(base + 0.5f).put(base + 0.25f).put(base - 0.125f).put(quint32(4000));
        p.put(qint32(0)).put(base * 2).put(base * 3).put(base * -4).put(quint32(4000));
        data(id, p.put(accelClip).put(gyroClip).pad(2));
    }
    void olderImu(quint64 t, float base, qint32 magRelative, float magX, qint32 baroRelative,
                  float celsius)
    {
        UlogBytes p;
        p.put(t).put(base).put(base).put(base).put(quint32(4000)).put(qint32(0));
        p.put(base).put(base).put(base).put(quint32(4000));
        p.put(magRelative).put(magX).put(0.25f).put(-0.5f);
        data(Imu, p.put(baroRelative).put(488.0f).put(celsius));
    }
    void mag(quint64 t, quint64 sampled, float x)
    {
        UlogBytes p;
        p.put(t).put(sampled).put(quint32(7)).put(x).put(x + 1).put(x + 2);
        data(Mag, p.put(quint8(1)).pad(3));
    }
    void air(quint64 t, float pascal, float celsius)
    {
        UlogBytes p;
        p.put(t).put(t).put(quint32(3)).put(488.5f).put(celsius).put(pascal).put(1.2f);
        data(Air, p.put(quint8(0)).pad(3));
    }
    void attitudeAt(quint64 t, float w, Id id = Attitude)
    {
        UlogBytes p;
        p.put(t).put(quint64(0)).put(w).put(0.125f).put(-0.25f).put(0.5f);
        data(id, p.put(0.0f).put(0.0f).put(0.0f).put(0.0f).put(quint8(0)).pad(7));
    }
    void local(quint64 t, float ax)
    {
        UlogBytes p;
        p.put(t).put(t);
        for (int i = 0; i < 2; ++i)
            p.put(99.0f).put(98.0f).put(97.0f).put(quint8(1)).pad(3);
        data(Local, p.put(ax).put(ax + 0.5f).put(-9.75f).pad(4));
    }
    void gps(quint64 t, quint64 utc, qint32 lat, qint32 lon, qint32 alt, quint8 fix,
             bool velValid = true)
    {
        UlogBytes p;
        p.put(t).put(utc).put(lat).put(lon).put(alt).put(1.5f).put(-2.25f).put(0.125f);
        data(Gps, p.put(fix).put(quint8(velValid)).pad(2));
    }

    /** The log written so far. */
    QByteArray finish()
    {
        check(writer.finish());
        return bytes;
    }

private:
    QByteArray bytes;
    QBuffer buffer;
};

// A reader of @p bytes under @p policy; the buffer outlives it.
struct Opened
{
    QByteArray bytes;
    QBuffer buffer;
    UlogReader reader;
    bool ok = false;

    Opened(const QByteArray &log, const UlogFillPolicy &policy = {})
        : bytes(log)
    {
        buffer.setBuffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        reader.setFillPolicy(policy);
        ok = reader.open(&buffer, QStringLiteral("/flights/log.ulg"));
    }

    std::vector<RecordingSample> all()
    {
        std::vector<RecordingSample> samples;
        while (reader.readNext())
            samples.push_back(reader.sample());
        return samples;
    }
};

UlogFillPolicy fillOf(UlogFillPolicy::Kind kind, int maxAgeMs = 500)
{
    UlogFillPolicy policy;
    policy.kind = kind;
    policy.maxAgeMs = maxAgeMs;
    return policy;
}

const UlogSummary::Key *keyOf(const UlogReader &reader, const QString &name)
{
    for (const UlogSummary::Key &key : reader.summary().keys) {
        if (key.key == name)
            return &key;
    }
    return nullptr;
}

// Numbers as 17 digits, which tell every double apart: QCOMPARE on the
// texts compares exactly, where on doubles it would forgive a little.
QString exact(double value)
{
    return QString::number(value, 'g', 17);
}

QString exact(const KvVector &vector)
{
    QStringList values;
    for (int i = 0; i < vector.size(); ++i)
        values.append(exact(vector[i]));
    return values.join(QLatin1Char(' '));
}

QString exact(const KvQuaternion &q)
{
    if (q.isEmpty())
        return QString();
    return QStringList{exact(q[0]), exact(q[1]), exact(q[2]), exact(q[3])}.join(QLatin1Char(' '));
}

QString exact(std::initializer_list<double> values)
{
    return exact(KvVector(values));
}

// The new layout's log: IMU at 250 Hz, and one message of each slower topic.
QByteArray newLayoutLog()
{
    Log log;
    log.check(log.writer.writeInfoUInt32("ver_sw_release", 0x010E03FF));
    log.check(log.writer.writeInfoText("ver_sw", "a5cf50ea"));
    log.check(log.writer.writeInfoText("sys_uuid", "0035002B3434511732343031"));
    log.check(log.writer.writeInfoText("ver_hw", "PX4_FMU_V5"));
    log.subscribe(Imu, "sensor_combined");
    log.subscribe(Mag, "vehicle_magnetometer");
    log.subscribe(Air, "vehicle_air_data");
    log.subscribe(Attitude, "vehicle_attitude");
    log.subscribe(Local, "vehicle_local_position");
    log.subscribe(Gps, "vehicle_gps_position");
    log.imu(10000, 1.0f, 0x0D, 0x0A);
    log.attitudeAt(10500, 0.75f);
    log.imu(14000, 2.0f);
    // Sampled at 14100, logged later: the sample time counts.
    log.mag(20000, 14100, 0.3f);
    log.imu(18000, 3.0f, 0, 0xFF);
    log.air(18000, 101325.5f, 21.75f);
    log.local(21000, 0.375f);
    log.gps(22000, 1700000000123456ull, 473977418, 85455939, 488123, 3);
    log.imu(22000, 4.0f);
    return log.finish();
}

} // namespace

void TestUlogReader::newLayout()
{
    Opened log(newLayoutLog());
    QVERIFY2(log.ok, qPrintable(log.reader.errorString()));
    const std::vector<RecordingSample> samples = log.all();
    QVERIFY(!log.reader.hasError());
    QCOMPARE(int(samples.size()), 4);
    for (int i = 0; i < 4; ++i) {
        const RecordingSample &s = samples[std::size_t(i)];
        const float base = 1.0f + float(i);
        QCOMPARE(s.packetCounter, quint16(i));
        QCOMPARE(s.sampleTimeFine, quint32((10000 + 4000 * i) / 100));
        QVERIFY(s.hasSampleTimeFine);
        QCOMPARE(exact(s.calibratedAcceleration), exact({base * 2, base * 3, base * -4}));
        QCOMPARE(exact(s.calibratedAngularVelocity),
                 exact({base + 0.5f, base + 0.25f, base - 0.125f}));
    }
    QCOMPARE(samples[0].clippingFlags, quint16(5 | 2 << 3));
    QCOMPARE(samples[1].clippingFlags, quint16(0));
    QCOMPARE(samples[2].clippingFlags, quint16(7 << 3));
    QCOMPARE(exact(samples[0].orientationQuaternion), exact(KvQuaternion(0.75, 0.125, -0.25, 0.5)));
    QVERIFY(samples[1].orientationQuaternion.isEmpty());
    QCOMPARE(exact(samples[1].magneticField), exact({0.3f, 0.3f + 1, 0.3f + 2}));
    QVERIFY(samples[2].magneticField.isEmpty() && samples[3].magneticField.isEmpty());
    QCOMPARE(exact(samples[2].pressure), exact(double(101325.5f) * 0.01));
    QCOMPARE(exact(samples[2].temperature), exact(21.75));
    QVERIFY(std::isnan(samples[1].pressure) && std::isnan(samples[3].temperature));
    QCOMPARE(exact(samples[3].freeAcceleration), exact({0.375, 0.875, -9.75}));
    QCOMPARE(exact(samples[3].latitudeLongitude), exact({473977418 * 1e-7, 85455939 * 1e-7}));
    QCOMPARE(exact(samples[3].altitude), exact(488123 * 1e-3));
    QCOMPARE(exact(samples[3].velocity), exact({1.5, -2.25, 0.125}));
    QVERIFY(samples[2].latitudeLongitude.isEmpty() && std::isinf(samples[2].altitude));
    QVERIFY(samples[2].velocity.isEmpty() && samples[2].freeAcceleration.isEmpty());
    QCOMPARE(log.reader.readingNotice(), QString());
}

void TestUlogReader::properties()
{
    Opened log(newLayoutLog());
    QVERIFY(log.ok);
    QVariantMap expected{
        {"StartTime", "2023-11-14 22:13:20"},
        {"FirmwareVersion", "1.14.3 (a5cf50ea)"},
        {"DeviceId", "0035002B3434511732343031"},
        {"ProductCode", "PX4_FMU_V5"},
        {"SourceFormat", "PX4 ULog"},
        {"SourceLog", "log.ulg"},
        {"FillPolicy", "none"},
        {"Units",
         "acceleration m/s^2, free acceleration m/s^2, rate of turn rad/s, magnetic field G, "
         "pressure hPa, temperature degC, latitude and longitude deg, altitude m, velocity m/s"},
        {"Frames",
         "acceleration, rate of turn, magnetic field: body FRD; orientation: body FRD to NED; "
         "free acceleration, velocity: NED"},
    };
    QCOMPARE(log.reader.properties(), expected);
    QCOMPARE(log.reader.updateRate(), 250.0);

    // Without GPS time, version information or a second sample.
    Log bare;
    bare.subscribe(Imu, "sensor_combined");
    bare.imu(10000, 1.0f);
    Opened one(bare.finish(), fillOf(UlogFillPolicy::Kind::Hold, 250));
    QVERIFY(one.ok);
    QCOMPARE(one.reader.property("StartTime").toString(), QStringLiteral("0"));
    QCOMPARE(one.reader.property("FillPolicy").toString(),
             QStringLiteral("hold, at most 250 ms old"));
    QVERIFY(!one.reader.property("FirmwareVersion").isValid());
    QVERIFY(!one.reader.property("DeviceId").isValid());
    QCOMPARE(one.reader.updateRate(), 0.0);
}

void TestUlogReader::olderLayout()
{
    Log log(true);
    log.subscribe(Imu, "sensor_combined");
    log.olderImu(10000, 1.0f, -200, 0.5f, 0, 20.5f);
    // No new magnetometer value; the value changed but the time says none.
    log.olderImu(14000, 2.0f, 0x7FFFFFFF, 0.75f, 0x7FFFFFFF, 20.5f);
    // The same magnetometer value again: no new message of its own.
    log.olderImu(18000, 3.0f, -3900, 0.5f, 100, 21.0f);
    log.olderImu(22000, 4.0f, 100, 0.625f, 0x7FFFFFFF, 22.0f);
    log.olderImu(26000, 5.0f, -4000, 0.625f, -4000, 21.0f);
    Opened opened(log.finish());
    QVERIFY2(opened.ok, qPrintable(opened.reader.errorString()));
    const std::vector<RecordingSample> samples = opened.all();
    QCOMPARE(int(samples.size()), 5);
    QStringList magnetic, temperature;
    for (const RecordingSample &sample : samples) {
        magnetic.append(exact(sample.magneticField));
        temperature.append(std::isnan(sample.temperature) ? QString() : exact(sample.temperature));
        QVERIFY(std::isnan(sample.pressure));
        QCOMPARE(sample.clippingFlags, quint16(0));
        QCOMPARE(exact(sample.calibratedAcceleration).isEmpty(), false);
    }
    QCOMPARE(magnetic,
             (QStringList{exact({0.5, 0.25, -0.5}), "", "", exact({0.625, 0.25, -0.5}), ""}));
    QCOMPARE(temperature, (QStringList{"20.5", "", "21", "", ""}));
    QVERIFY(!keyOf(opened.reader, "clippingFlags"));
    QVERIFY(!keyOf(opened.reader, "pressure"));
    QCOMPARE(keyOf(opened.reader, "magneticField")->source,
             QStringLiteral("sensor_combined.magnetometer_ga (older layout)"));
    QCOMPARE(keyOf(opened.reader, "magneticField")->messages, qint64(2));
    QCOMPARE(keyOf(opened.reader, "temperature")->source,
             QStringLiteral("sensor_combined.baro_temp_celcius (older layout)"));
    QCOMPARE(keyOf(opened.reader, "temperature")->messages, qint64(2));
}

// Only instance 0 of a topic is read; the others are counted as topics.
void TestUlogReader::otherInstancesIgnored()
{
    Log log;
    log.subscribe(Imu, "sensor_combined");
    log.subscribe(ImuSecond, "sensor_combined", 1);
    log.subscribe(AttitudeSecond, "vehicle_attitude", 1);
    log.subscribe(Attitude, "vehicle_attitude");
    log.imu(10000, 1.0f);
    log.imu(11000, 9.0f, 0, 0, ImuSecond);
    log.attitudeAt(10000, 0.125f, AttitudeSecond);
    log.attitudeAt(14000, 0.5f, AttitudeSecond);
    log.imu(14000, 2.0f);
    log.attitudeAt(14000, 0.75f);
    Opened opened(log.finish());
    QVERIFY(opened.ok);
    const std::vector<RecordingSample> samples = opened.all();
    QCOMPARE(int(samples.size()), 2);
    QCOMPARE(exact(samples[0].calibratedAcceleration), exact({2.0, 3.0, -4.0}));
    QVERIFY(samples[0].orientationQuaternion.isEmpty());
    QCOMPARE(samples[1].orientationQuaternion[0], 0.75);
    const UlogSummary &summary = opened.reader.summary();
    QCOMPARE(summary.topics.size(), 4);
    QCOMPARE(summary.topics[1].name, QStringLiteral("sensor_combined"));
    QCOMPARE(summary.topics[1].multiId, 1);
    QCOMPARE(summary.topics[1].messages, qint64(1));
    QCOMPARE(summary.topics[2].messages, qint64(2));
}

void TestUlogReader::appendedPart()
{
    Log log;
    log.subscribe(Imu, "sensor_combined");
    log.subscribe(Attitude, "vehicle_attitude");
    log.imu(10000, 1.0f);
    log.imu(14000, 2.0f);
    log.writer.beginAppendedPart();
    log.imu(18000, 3.0f);
    log.attitudeAt(18000, 0.5f);
    Opened opened(log.finish());
    QVERIFY(opened.ok);
    const std::vector<RecordingSample> samples = opened.all();
    QCOMPARE(int(samples.size()), 3);
    QCOMPARE(exact(samples[2].calibratedAcceleration), exact({6.0, 9.0, -12.0}));
    QCOMPARE(samples[2].orientationQuaternion[0], 0.5);
    QCOMPARE(opened.reader.readingNotice(), QString());
}

// Samples come in the order of their timestamps; an exact repeat of a
// message is dropped, a message of the same time with other bytes is not.
void TestUlogReader::outOfOrderAndRepeats()
{
    Log log;
    log.subscribe(Imu, "sensor_combined");
    log.subscribe(Attitude, "vehicle_attitude");
    log.imu(10000, 1.0f);
    log.attitudeAt(10000, 0.5f);
    log.imu(18000, 2.0f);
    log.imu(14000, 3.0f);
    log.imu(18000, 2.0f);
    log.attitudeAt(10000, 0.5f);
    log.imu(22000, 4.0f);
    log.imu(22000, 5.0f);
    Opened opened(log.finish());
    QVERIFY(opened.ok);
    const std::vector<RecordingSample> samples = opened.all();
    QList<quint32> times;
    QList<double> x;
    for (const RecordingSample &sample : samples) {
        times.append(sample.sampleTimeFine);
        x.append(sample.calibratedAcceleration[0]);
        QCOMPARE(sample.packetCounter, quint16(times.size() - 1));
    }
    QCOMPARE(times, (QList<quint32>{100, 140, 180, 220, 220}));
    QCOMPARE(x, (QList<double>{2.0, 6.0, 4.0, 8.0, 10.0}));
    QCOMPARE(samples[0].orientationQuaternion[0], 0.5);
    QCOMPARE(opened.reader.updateRate(), 250.0);
    QCOMPARE(opened.reader.readingNotice(),
             QStringLiteral("/flights/log.ulg: repeated messages dropped: 2"));
}

// A log cut inside its last message is read up to the cut, which the
// notice names.
void TestUlogReader::cutLog()
{
    const QByteArray whole = newLayoutLog();
    // The last message: an IMU message of 3 + 2 + 48 bytes.
    const int lastStart = whole.size() - 53;
    Opened opened(whole.left(whole.size() - 10));
    QVERIFY(opened.ok);
    QCOMPARE(int(opened.all().size()), 3);
    QVERIFY(!opened.reader.hasError());
    QCOMPARE(opened.reader.readingNotice(),
             QStringLiteral("/flights/log.ulg: passed over: byte %1: the log ends inside a "
                            "message of type 'D' and 50 bytes (cut)")
                 .arg(lastStart));
}

// Bytes that are no message are passed over up to the next sync message.
void TestUlogReader::damageNoticed()
{
    Log log;
    log.subscribe(Imu, "sensor_combined");
    log.imu(10000, 1.0f);
    const qint64 damageAt = log.writer.offset();
    log.check(log.writer.writeBytes(std::string("\x05\x00\x01garbage", 10)));
    const qint64 syncAt = log.writer.offset();
    log.check(log.writer.writeSync());
    log.imu(14000, 2.0f);
    Opened opened(log.finish());
    QVERIFY(opened.ok);
    QCOMPARE(int(opened.all().size()), 2);
    QCOMPARE(opened.reader.summary().damage.size(), 1);
    const QString notice = opened.reader.readingNotice();
    QVERIFY2(
        notice.startsWith(QStringLiteral("/flights/log.ulg: passed over: byte %1: ").arg(damageAt)),
        qPrintable(notice));
    QVERIFY2(notice.endsWith(QStringLiteral("read on at byte %1").arg(syncAt + 3 + 8)),
             qPrintable(notice));
}

void TestUlogReader::notFiniteValues()
{
    Log log;
    log.subscribe(Imu, "sensor_combined");
    log.subscribe(Mag, "vehicle_magnetometer");
    log.subscribe(Attitude, "vehicle_attitude");
    log.imu(10000, 1.0f);
    UlogBytes p;
    p.put(quint64(14000)).put(0.5f).put(0.25f).put(0.125f).put(quint32(0)).put(qint32(0));
    log.data(
        Imu,
        p.put(1.0f).put(notANumber).put(1.0f).put(quint32(0)).put(quint8(0)).put(quint8(0)).pad(2));
    log.mag(14000, 14000, notANumber);
    log.attitudeAt(14000, notANumber);
    log.mag(10000, 10000, 0.25f);
    Opened opened(log.finish());
    QVERIFY(opened.ok);
    const std::vector<RecordingSample> samples = opened.all();
    QCOMPARE(int(samples.size()), 2);
    QVERIFY(samples[1].calibratedAcceleration.isEmpty());
    QCOMPARE(exact(samples[1].calibratedAngularVelocity), exact({0.5, 0.25, 0.125}));
    QVERIFY(samples[1].magneticField.isEmpty() && samples[1].orientationQuaternion.isEmpty());
    QCOMPARE(exact(samples[0].magneticField), exact({0.25, 1.25, 2.25}));
    QCOMPARE(keyOf(opened.reader, "calibratedAcceleration")->notFinite, qint64(1));
    QCOMPARE(keyOf(opened.reader, "calibratedAcceleration")->messages, qint64(1));
    QCOMPARE(keyOf(opened.reader, "magneticField")->messages, qint64(1));
    QCOMPARE(opened.reader.readingNotice(),
             QStringLiteral("/flights/log.ulg: messages left out for values not finite: "
                            "calibratedAcceleration 1, magneticField 1, orientationQuaternion 1"));
}

// Without vehicle_magnetometer or the older layout, sensor_mag gives the field.
void TestUlogReader::sensorMagWithoutOthers()
{
    Log log;
    log.subscribe(Imu, "sensor_combined");
    log.subscribe(SensorMag, "sensor_mag");
    log.imu(10000, 1.0f);
    log.imu(14000, 2.0f);
    log.data(SensorMag, UlogBytes().put(quint64(10100)).put(0.5f).put(-0.25f).put(0.125f));
    Opened opened(log.finish());
    QVERIFY(opened.ok);
    const std::vector<RecordingSample> samples = opened.all();
    QCOMPARE(exact(samples[0].magneticField), exact({0.5, -0.25, 0.125}));
    QCOMPARE(keyOf(opened.reader, "magneticField")->source, QStringLiteral("sensor_mag.x, y, z"));
}

void TestUlogReader::fillPolicies_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("maxAgeMs");
    QTest::addColumn<QString>("policyText");
    // Per sample the attitude message it takes, "-" for none.
    QTest::addColumn<QString>("taken");
    using Kind = UlogFillPolicy::Kind;
    QTest::newRow("none") << int(Kind::None) << 500 << "none"
                          << "0 - 1 - -";
    QTest::newRow("hold") << int(Kind::Hold) << 500 << "hold, at most 500 ms old"
                          << "- 0 0 1 1";
    QTest::newRow("hold, 5 ms") << int(Kind::Hold) << 5 << "hold, at most 5 ms old"
                                << "- 0 - 1 -";
    QTest::newRow("nearest") << int(Kind::Nearest) << 500 << "nearest, at most 500 ms away"
                             << "0 0 1 1 1";
    QTest::newRow("nearest, 2 ms") << int(Kind::Nearest) << 2 << "nearest, at most 2 ms away"
                                   << "0 - 1 - -";
}

void TestUlogReader::fillPolicies()
{
    QFETCH(int, kind);
    QFETCH(int, maxAgeMs);
    Log log;
    log.subscribe(Imu, "sensor_combined");
    log.subscribe(Attitude, "vehicle_attitude");
    for (int i = 0; i < 5; ++i)
        log.imu(quint64(10000 + 4000 * i), float(i));
    log.attitudeAt(11000, 0.5f);
    log.attitudeAt(19500, 0.25f);
    Opened opened(log.finish(), fillOf(UlogFillPolicy::Kind(kind), maxAgeMs));
    QVERIFY(opened.ok);
    QStringList taken;
    for (const RecordingSample &sample : opened.all()) {
        const KvQuaternion &q = sample.orientationQuaternion;
        taken.append(q.isEmpty() ? "-" : q[0] == 0.5 ? "0" : "1");
    }
    QTEST(taken.join(QLatin1Char(' ')), "taken");
    QTEST(opened.reader.property("FillPolicy").toString(), "policyText");
}

void TestUlogReader::collisionsNoticed()
{
    Log log;
    log.subscribe(Imu, "sensor_combined");
    log.subscribe(Attitude, "vehicle_attitude");
    log.subscribe(Mag, "vehicle_magnetometer");
    log.subscribe(Air, "vehicle_air_data");
    for (int i = 0; i < 5; ++i)
        log.imu(quint64(10000 + 4000 * i), float(i));
    log.attitudeAt(10500, 0.5f);
    log.attitudeAt(9800, 0.25f);
    log.attitudeAt(60000, 0.125f);
    log.mag(30000, 30000, 1.0f);
    log.mag(40000, 40000, 2.0f);
    log.air(31000, 100000.0f, 20.0f);
    Opened opened(log.finish());
    QVERIFY(opened.ok);
    const std::vector<RecordingSample> samples = opened.all();
    QCOMPARE(samples[0].orientationQuaternion[0], 0.25);
    QCOMPARE(samples[4].magneticField[0], 1.0);
    QCOMPARE(opened.reader.readingNotice(),
             QStringLiteral("/flights/log.ulg: messages not placed (fill none): magneticField 1 "
                            "dropped, orientationQuaternion 1 dropped and 1 collided, pressure 1 "
                            "dropped, temperature 1 dropped"));
    const UlogSummary::Key *orientation = keyOf(opened.reader, "orientationQuaternion");
    QCOMPARE(orientation->messages, qint64(3));
    QCOMPARE(orientation->used, qint64(1));
    QCOMPARE(orientation->dropped, qint64(1));
    QCOMPARE(orientation->collided, qint64(1));
}

void TestUlogReader::gpsValidity_data()
{
    QTest::addColumn<int>("fix");
    QTest::addColumn<qint32>("lat");
    QTest::addColumn<qint32>("lon");
    QTest::addColumn<bool>("velocityValid");
    QTest::addColumn<QString>("present");
    QTest::newRow("no fix") << 0 << 473977418 << 85455939 << true << "";
    QTest::newRow("dead reckoning") << 1 << 473977418 << 85455939 << true << "";
    QTest::newRow("2D") << 2 << 473977418 << 85455939 << true << "position velocity utc";
    QTest::newRow("3D") << 3 << 473977418 << 85455939 << true << "position altitude velocity utc";
    QTest::newRow("RTK") << 6 << 473977418 << 85455939 << true << "position altitude velocity utc";
    QTest::newRow("3D at (0, 0)") << 3 << 0 << 0 << true << "altitude velocity utc";
    QTest::newRow("3D on the equator")
        << 3 << 0 << 85455939 << true << "position altitude velocity utc";
    QTest::newRow("3D, velocity not valid")
        << 3 << 473977418 << 85455939 << false << "position altitude utc";
}

void TestUlogReader::gpsValidity()
{
    QFETCH(int, fix);
    QFETCH(qint32, lat);
    QFETCH(qint32, lon);
    QFETCH(bool, velocityValid);
    Log log;
    log.subscribe(Imu, "sensor_combined");
    log.subscribe(Gps, "vehicle_gps_position");
    log.imu(10000, 1.0f);
    log.gps(10000, 1700000000000000ull, lat, lon, -2500, quint8(fix), velocityValid);
    log.imu(14000, 1.0f);
    Opened opened(log.finish());
    QVERIFY(opened.ok);
    const RecordingSample sample = opened.all().front();
    QStringList present;
    if (!sample.latitudeLongitude.isEmpty()) {
        present.append("position");
        QCOMPARE(exact(sample.latitudeLongitude), exact({lat * 1e-7, lon * 1e-7}));
    }
    if (!std::isinf(sample.altitude)) {
        present.append("altitude");
        QCOMPARE(sample.altitude, -2500 * 1e-3);
    }
    if (!sample.velocity.isEmpty())
        present.append("velocity");
    if (!sample.utcTime.isZero())
        present.append("utc");
    QTEST(present.join(QLatin1Char(' ')), "present");
}

void TestUlogReader::newerGpsLayout()
{
    Log log(false, true);
    log.subscribe(Imu, "sensor_combined");
    log.subscribe(Gps, "vehicle_gps_position");
    log.imu(10000, 1.0f);
    log.imu(14000, 1.0f);
    UlogBytes p;
    // Logged at 20000, sampled at 14000; no vel_ned_valid in this layout.
    p.put(quint64(20000)).put(quint64(14000)).put(47.397742135).put(8.5455939).put(488.125);
    p.put(quint64(1700000000000000ull)).put(1.5f).put(-2.25f).put(0.125f);
    log.data(Gps, p.put(quint8(3)).pad(3));
    Opened opened(log.finish());
    QVERIFY(opened.ok);
    const std::vector<RecordingSample> samples = opened.all();
    QVERIFY(samples[0].latitudeLongitude.isEmpty());
    QCOMPARE(exact(samples[1].latitudeLongitude), exact({47.397742135, 8.5455939}));
    QCOMPARE(exact(samples[1].altitude), exact(488.125));
    QCOMPARE(exact(samples[1].velocity), exact({1.5, -2.25, 0.125}));
    QCOMPARE(keyOf(opened.reader, "latitudeLongitude")->source,
             QStringLiteral("vehicle_gps_position.latitude_deg, longitude_deg"));
    QCOMPARE(keyOf(opened.reader, "altitude")->source,
             QStringLiteral("vehicle_gps_position.altitude_msl_m"));
    // The offset of UTC is taken from the timestamp, not the sample time.
    QCOMPARE(opened.reader.property("StartTime").toString(), QStringLiteral("2023-11-14 22:13:19"));
}

void TestUlogReader::utcMedian_data()
{
    QTest::addColumn<QList<qint64>>("offsets");
    QTest::addColumn<bool>("known");
    QTest::addColumn<qint64>("median");
    QTest::newRow("none") << QList<qint64>{} << false << qint64(0);
    QTest::newRow("one") << QList<qint64>{5} << true << qint64(5);
    QTest::newRow("odd") << QList<qint64>{30, 10, 20} << true << qint64(20);
    QTest::newRow("even") << QList<qint64>{1, 10, 2, 3} << true << qint64(2);
    QTest::newRow("even, exact") << QList<qint64>{4, 2} << true << qint64(3);
    QTest::newRow("even, negative, toward zero") << QList<qint64>{-3, -4} << true << qint64(-3);
    QTest::newRow("even, four negative") << QList<qint64>{-1, -4, -2, -3} << true << qint64(-2);
    QTest::newRow("even, across zero") << QList<qint64>{-3, 4} << true << qint64(0);
    QTest::newRow("even, across zero, negative half") << QList<qint64>{-5, 2} << true << qint64(-1);
    QTest::newRow("even, large") << QList<qint64>{1700000000000001, 1700000000000002} << true
                                 << qint64(1700000000000001);
    QTest::newRow("even, extreme")
        << QList<qint64>{std::numeric_limits<qint64>::max(), std::numeric_limits<qint64>::max() - 2}
        << true << std::numeric_limits<qint64>::max() - 1;
}

void TestUlogReader::utcMedian()
{
    QFETCH(QList<qint64>, offsets);
    QFETCH(bool, known);
    const std::optional<qint64> median =
        UlogClock::median(std::vector<qint64>(offsets.begin(), offsets.end()));
    QCOMPARE(median.has_value(), known);
    if (known)
        QTEST(*median, "median");
}

// Each sample's UTC: its timestamp plus the median offset, to the µs in
// utcTime and the ms, truncated, in sampleDateTime.
void TestUlogReader::utcOfSamples()
{
    // Sample 0 falls 1 µs before a whole second.
    const quint64 offset = 1700000000000000ull - 10000 + 999998;
    Log log;
    log.subscribe(Imu, "sensor_combined");
    log.subscribe(Gps, "vehicle_gps_position");
    log.imu(10000, 1.0f);
    log.imu(14000, 1.0f);
    // The median of offset + 1 and offset + 2 is offset + 1, truncated.
    log.gps(14000, 14000 + offset + 1, 1, 1, 0, 2);
    log.gps(18000, 18000 + offset + 2, 1, 1, 0, 3);
    // Neither a GPS without a fix nor one without UTC counts.
    log.gps(19000, 5, 1, 1, 0, 1);
    log.gps(20000, 0, 1, 1, 0, 3);
    Opened opened(log.finish());
    QVERIFY(opened.ok);
    const std::vector<RecordingSample> samples = opened.all();
    const KvUtcTime &first = samples[0].utcTime;
    QCOMPARE(first.year, quint16(2023));
    QCOMPARE(first.month, quint8(11));
    QCOMPARE(first.day, quint8(14));
    QCOMPARE(first.hour, quint8(22));
    QCOMPARE(first.minute, quint8(13));
    QCOMPARE(first.second, quint8(20));
    QCOMPARE(first.nano, quint32(999999000));
    QCOMPARE(first.valid, quint8(7));
    QCOMPARE(samples[0].sampleDateTime,
             QDateTime(QDate(2023, 11, 14), QTime(22, 13, 20, 999), Qt::UTC));
    QCOMPARE(samples[0].sampleDateTime.timeSpec(), Qt::UTC);
    QCOMPARE(samples[1].utcTime.second, quint8(21));
    QCOMPARE(samples[1].utcTime.nano, quint32(3999000));
    QCOMPARE(samples[1].sampleDateTime.time(), QTime(22, 13, 21, 3));
    QCOMPARE(opened.reader.property("StartTime").toString(), QStringLiteral("2023-11-14 22:13:20"));
    QCOMPARE(keyOf(opened.reader, "utcTime")->messages, qint64(2));
}

void TestUlogReader::summary()
{
    Log log;
    log.subscribe(Imu, "sensor_combined");
    log.subscribe(Attitude, "vehicle_attitude");
    log.subscribe(AttitudeSecond, "vehicle_attitude", 1);
    for (int i = 0; i < 5; ++i)
        log.imu(quint64(10000 + 4000 * i), float(i));
    log.attitudeAt(10000, 0.5f);
    log.attitudeAt(30000, 0.5f);
    log.check(log.writer.writeLogging('6', 12000, "Takeoff detected"));
    log.check(log.writer.writeDropout(62));
    log.check(log.writer.writeTaggedLogging('4', 3, 13000, "Preflight: GPS fix too low"));
    log.check(log.writer.writeDropout(8));
    Opened opened(log.finish());
    QVERIFY(opened.ok);
    const UlogSummary &summary = opened.reader.summary();
    QCOMPARE(summary.topics.size(), 3);
    QCOMPARE(summary.topics[0].name, QStringLiteral("sensor_combined"));
    QCOMPARE(summary.topics[0].messages, qint64(5));
    QCOMPARE(summary.topics[0].rate, 250.0);
    QCOMPARE(summary.topics[1].rate, 50.0);
    QCOMPARE(summary.topics[2].multiId, 1);
    QCOMPARE(summary.topics[2].messages, qint64(0));
    QCOMPARE(summary.topics[2].rate, 0.0);
    QCOMPARE(summary.dropouts, qint64(2));
    QCOMPARE(summary.dropoutMs, qint64(70));
    QCOMPARE(summary.logged.size(), 2);
    QCOMPARE(summary.logged[0].level, 6);
    QCOMPARE(summary.logged[0].timestamp, quint64(12000));
    QCOMPARE(summary.logged[0].text, QStringLiteral("Takeoff detected"));
    QCOMPARE(summary.logged[1].level, 4);
    QCOMPARE(summary.logged[1].text, QStringLiteral("Preflight: GPS fix too low"));
    QStringList keys;
    for (const UlogSummary::Key &key : summary.keys)
        keys.append(key.key + QLatin1String(" <- ") + key.source);
    QCOMPARE(keys,
             (QStringList{
                 "packetCounter <- sensor_combined, the sample's index",
                 "sampleTimeFine <- sensor_combined.timestamp",
                 "calibratedAcceleration <- sensor_combined.accelerometer_m_s2",
                 "calibratedAngularVelocity <- sensor_combined.gyro_rad",
                 "clippingFlags <- sensor_combined.accelerometer_clipping, "
                 "sensor_combined.gyro_clipping",
                 "orientationQuaternion <- vehicle_attitude.q",
             }));
    QCOMPARE(summary.keys.last().used, qint64(2));
    QVERIFY(summary.damage.isEmpty());
}

void TestUlogReader::noSensorCombined()
{
    Log log;
    log.subscribe(Attitude, "vehicle_attitude");
    log.subscribe(ImuSecond, "sensor_combined", 1);
    log.attitudeAt(10000, 0.5f);
    log.imu(10000, 1.0f, 0, 0, ImuSecond);
    Opened opened(log.finish());
    QVERIFY(!opened.ok);
    QCOMPARE(opened.reader.errorString(),
             QStringLiteral("/flights/log.ulg: cannot be read: the log holds no "
                            "sensor_combined messages"));
    QVERIFY(!opened.reader.readNext());
    QVERIFY(opened.reader.properties().isEmpty());
}

void TestUlogReader::notAUlog()
{
    Opened opened(QByteArray("{\"properties\": {}}\n"));
    QVERIFY(!opened.ok);
    QVERIFY2(opened.reader.errorString().startsWith(
                 QStringLiteral("/flights/log.ulg: cannot be read: ")),
             qPrintable(opened.reader.errorString()));
}

void TestUlogReader::pipeRefused()
{
    class Pipe : public QBuffer
    {
    public:
        bool isSequential() const override { return true; }
    };
    QByteArray bytes = newLayoutLog();
    Pipe pipe;
    pipe.setBuffer(&bytes);
    pipe.open(QIODevice::ReadOnly);
    UlogReader reader;
    QVERIFY(!reader.open(&pipe, QStringLiteral("-")));
    QCOMPARE(reader.errorString(),
             QStringLiteral("-: a ULog is read twice, which a pipe cannot be"));
}

// A file is read back where it stands; a reader opened again starts afresh.
void TestUlogReader::fileOnDisk()
{
    QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const QString path = folder.filePath(QStringLiteral("flight 7.ulg"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(newLayoutLog());
    file.close();
    UlogReader reader;
    for (int round = 0; round < 2; ++round) {
        QVERIFY2(reader.open(path), qPrintable(reader.errorString()));
        int count = 0;
        while (reader.readNext())
            ++count;
        QCOMPARE(count, 4);
        QCOMPARE(reader.sample().packetCounter, quint16(3));
        QCOMPARE(reader.position(), reader.size());
        QCOMPARE(reader.size(), QFileInfo(path).size());
    }
    QCOMPARE(reader.property("SourceLog").toString(), QStringLiteral("flight 7.ulg"));
    QCOMPARE(reader.summary().topics.size(), 6);
}

QTEST_GUILESS_MAIN(TestUlogReader)
#include "tst_ulogreader.moc"
