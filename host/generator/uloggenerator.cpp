#include "uloggenerator.h"

#include "samplestate.h"
#include "ulogbytes.h"
#include "ulogwriter.h"
#include "walk.h"

#include <QDateTime>

#include <cmath>

namespace {

// Message ids of the topics, in the order they are subscribed.
enum Topic : quint16 {
    SensorCombined,
    Attitude,
    Magnetometer,
    SecondMagnetometer,
    AirData,
    LocalPosition,
    GpsPosition,
    EscStatus,
};

// Divisors of the IMU rate: every how many samples a topic publishes.
constexpr qint64 attitudeEvery = 2;
constexpr qint64 magnetometerEvery = 4;
constexpr qint64 localPositionEvery = 5;
constexpr qint64 airDataEvery = 10;
constexpr double receiverRate = 5.0;
// How long after its sample a topic is published, µs.
constexpr quint64 latency = 700;
// Logging starts a second before the walk's first sample, µs since boot.
constexpr quint64 logStart = 119000000;
// A sync message a second, as the logger writes them.
constexpr quint64 syncEvery = 1000000;

const char *const currentFormats[] = {
    "sensor_combined:uint64_t timestamp;float[3] gyro_rad;uint32_t gyro_integral_dt;"
    "int32_t accelerometer_timestamp_relative;float[3] accelerometer_m_s2;"
    "uint32_t accelerometer_integral_dt;uint8_t accelerometer_clipping;uint8_t gyro_clipping;"
    "uint8_t accel_calibration_count;uint8_t gyro_calibration_count;",
    "vehicle_attitude:uint64_t timestamp;uint64_t timestamp_sample;float[4] q;"
    "float[4] delta_q_reset;uint8_t quat_reset_counter;uint8_t[7] _padding0;",
    "vehicle_magnetometer:uint64_t timestamp;uint64_t timestamp_sample;uint32_t device_id;"
    "float[3] magnetometer_ga;uint8_t calibration_count;uint8_t[3] _padding0;",
    "vehicle_air_data:uint64_t timestamp;uint64_t timestamp_sample;uint32_t baro_device_id;"
    "float baro_alt_meter;float baro_temp_celcius;float baro_pressure_pa;float rho;"
    "uint8_t calibration_count;uint8_t[3] _padding0;",
    "vehicle_local_position:uint64_t timestamp;uint64_t timestamp_sample;float x;float y;"
    "float z;float vx;float vy;float vz;float ax;float ay;float az;bool xy_valid;bool z_valid;"
    "uint8_t[6] _padding0;",
    "vehicle_gps_position:uint64_t timestamp;uint64_t timestamp_sample;uint64_t time_utc_usec;"
    "double latitude_deg;double longitude_deg;double altitude_msl_m;"
    "double altitude_ellipsoid_m;float eph;float epv;float vel_m_s;float vel_n_m_s;"
    "float vel_e_m_s;float vel_d_m_s;uint32_t device_id;uint8_t fix_type;bool vel_ned_valid;"
    "uint8_t satellites_used;uint8_t[1] _padding0;",
    "esc_report:uint32_t esc_errorcount;int32_t esc_rpm;float esc_voltage;uint8_t esc_address;"
    "uint8_t[3] _padding0;",
    "esc_status:uint64_t timestamp;uint8_t esc_count;uint8_t[7] _padding0;esc_report[2] esc;",
};

const char *const olderFormats[] = {
    "sensor_combined:uint64_t timestamp;float[3] gyro_rad;uint32_t gyro_integral_dt;"
    "int32_t accelerometer_timestamp_relative;float[3] accelerometer_m_s2;"
    "uint32_t accelerometer_integral_dt;int32_t magnetometer_timestamp_relative;"
    "float[3] magnetometer_ga;int32_t baro_timestamp_relative;float baro_alt_meter;"
    "float baro_temp_celcius;",
    "vehicle_attitude:uint64_t timestamp;float rollspeed;float pitchspeed;float yawspeed;"
    "float[4] q;float[4] delta_q_reset;uint8_t quat_reset_counter;uint8_t[7] _padding0;",
    "vehicle_local_position:uint64_t timestamp;float x;float y;float z;float vx;float vy;"
    "float vz;float ax;float ay;float az;bool xy_valid;bool z_valid;uint8_t[6] _padding0;",
    "vehicle_gps_position:uint64_t timestamp;uint64_t time_utc_usec;int32_t lat;int32_t lon;"
    "int32_t alt;int32_t alt_ellipsoid;float eph;float epv;float vel_m_s;float vel_n_m_s;"
    "float vel_e_m_s;float vel_d_m_s;uint8_t fix_type;bool vel_ned_valid;"
    "uint8_t satellites_used;uint8_t[5] _padding0;",
};

class UlogGenerator
{
public:
    UlogGenerator(const GeneratorOptions &options, UlogLayout layout, QIODevice *out)
        : options(options)
        , layout(layout)
        , writer(out)
        , walk(options, receiverRate)
    { }

    bool run(QString *error)
    {
        if (!writeDefinitions() || !writeSubscriptions())
            return fail(error);
        quint64 lastSync = 0;
        for (qint64 index = 0; index < options.samples; ++index) {
            const SampleState &state = walk.step(index);
            const quint64 time = quint64(state.sampleTimeFine) * 100;
            if (index == 0 && !writer.writeLogging('6', time, "[logger] logging started"))
                return fail(error);
            if (time - lastSync >= syncEvery) {
                lastSync = time;
                if (!writer.writeSync())
                    return fail(error);
            }
            if (!writeSample(index, time, state))
                return fail(error);
        }
        if (!writer.writeLogging('6', lastTime, "[logger] logging stopped") || !writer.finish())
            return fail(error);
        return true;
    }

private:
    bool current() const { return layout == UlogLayout::Current; }

    bool fail(QString *error)
    {
        *error = writer.errorString();
        return false;
    }

    bool writeDefinitions()
    {
        bool written = writer.writeHeader(logStart) && writer.writeFlagBits();
        if (current()) {
            for (const char *format : currentFormats)
                written = written && writer.writeFormat(format);
        } else {
            for (const char *format : olderFormats)
                written = written && writer.writeFormat(format);
        }
        return written && writer.writeInfoText("sys_name", "PX4")
            && writer.writeInfoText("ver_hw", current() ? "PX4_FMU_V6X" : "PX4_FMU_V4")
            && writer.writeInfoText("ver_sw",
                                    current() ? "a1b2c3d4e5f60718293a4b5c6d7e8f9012345678"
                                              : "0f1e2d3c4b5a69788796a5b4c3d2e1f0aabbccdd")
            && writer.writeInfoUInt32("ver_sw_release", current() ? 0x010e03ff : 0x01070300)
            && writer.writeInfoText("sys_uuid", walk.deviceId().toStdString() + "0035002B3434")
            && writer.writeMultiInfo("char[8] perf_counter_preflight", "sensors:", false)
            && writer.writeMultiInfo("char[9] perf_counter_preflight", " 2 events", true)
            && writer.writeParameter("IMU_GYRO_RATEMAX", qint32(std::lround(options.rate)))
            && writer.writeParameter("MC_ROLL_P", 6.5f);
    }

    bool writeSubscriptions()
    {
        bool written = writer.writeSubscription(0, SensorCombined, "sensor_combined")
            && writer.writeSubscription(0, Attitude, "vehicle_attitude")
            && writer.writeSubscription(0, LocalPosition, "vehicle_local_position")
            && writer.writeSubscription(0, GpsPosition, "vehicle_gps_position");
        if (current()) {
            written = written && writer.writeSubscription(0, Magnetometer, "vehicle_magnetometer")
                && writer.writeSubscription(1, SecondMagnetometer, "vehicle_magnetometer")
                && writer.writeSubscription(0, AirData, "vehicle_air_data")
                && writer.writeSubscription(0, EscStatus, "esc_status");
        }
        return written;
    }

    bool writeSample(qint64 index, quint64 time, const SampleState &state)
    {
        lastTime = time;
        bool written = writer.writeData(SensorCombined, sensorCombined(index, time, state));
        if (index % attitudeEvery == 0)
            written = written && writer.writeData(Attitude, attitude(time, state));
        if (current() && index % magnetometerEvery == 0) {
            written = written && writer.writeData(Magnetometer, magnetometer(time, state, 1.0))
                && writer.writeData(SecondMagnetometer, magnetometer(time, state, 1.02));
        }
        if (current() && index % airDataEvery == 0)
            written = written && writer.writeData(AirData, airData(time, state));
        if (index % localPositionEvery == 0)
            written = written && writer.writeData(LocalPosition, localPosition(time, state));
        if (state.gnssPvt.iTOW != lastFix) {
            lastFix = state.gnssPvt.iTOW;
            written = written && writer.writeData(GpsPosition, gpsPosition(time, state))
                && (!current() || writer.writeData(EscStatus, escStatus(time, index)));
        }
        return written;
    }

    // The publication time of a topic whose sample is at @p time.
    static quint64 published(quint64 time) { return time + latency; }

    template <int n>
    static void putFloats(UlogBytes &bytes, const double (&values)[n])
    {
        for (double value : values)
            bytes.put(float(value));
    }

    UlogBytes sensorCombined(qint64 index, quint64 time, const SampleState &state)
    {
        UlogBytes bytes;
        bytes.put(time);
        putFloats(bytes, state.angularVelocity);
        bytes.put(quint32(1000000 / options.rate)).put(qint32(0));
        putFloats(bytes, state.acceleration);
        bytes.put(quint32(1000000 / options.rate));
        if (current()) {
            return bytes.put(quint8(state.clippingFlags & 7))
                .put(quint8(state.clippingFlags >> 3 & 7))
                .put(quint8(1))
                .put(quint8(1));
        }
        // The magnetometer's and barometer's latest samples, relative to this one.
        const qint64 sinceMagnetometer = index % magnetometerEvery;
        if (sinceMagnetometer == 0)
            std::copy(std::begin(state.magneticField), std::end(state.magneticField), olderField);
        bytes.put(qint32(-qint64(sinceMagnetometer) * qint64(1000000 / options.rate)));
        putFloats(bytes, olderField);
        const qint64 sinceBarometer = index % airDataEvery;
        if (sinceBarometer == 0)
            olderTemperature = state.temperature;
        return bytes.put(qint32(-qint64(sinceBarometer) * qint64(1000000 / options.rate)))
            .put(float(state.altitude))
            .put(float(olderTemperature));
    }

    UlogBytes attitude(quint64 time, const SampleState &state)
    {
        UlogBytes bytes;
        bytes.put(published(time));
        if (current())
            bytes.put(time);
        else
            putFloats(bytes, state.angularVelocity);
        for (int i = 0; i < 4; ++i)
            bytes.put(float(state.quaternion[i]));
        return bytes.put(1.0f).put(0.0f).put(0.0f).put(0.0f).put(quint8(0)).pad(7);
    }

    UlogBytes magnetometer(quint64 time, const SampleState &state, double scale)
    {
        UlogBytes bytes;
        bytes.put(published(time)).put(time).put(quint32(scale == 1.0 ? 396825 : 396826));
        for (double value : state.magneticField)
            bytes.put(float(value * scale));
        return bytes.put(quint8(1)).pad(3);
    }

    UlogBytes airData(quint64 time, const SampleState &state)
    {
        UlogBytes bytes;
        return bytes.put(published(time))
            .put(time)
            .put(quint32(6620441))
            .put(float(state.altitude))
            .put(float(state.temperature))
            .put(float(state.pressure * 100.0))
            .put(1.18f)
            .put(quint8(0))
            .pad(3);
    }

    UlogBytes localPosition(quint64 time, const SampleState &state)
    {
        UlogBytes bytes;
        bytes.put(published(time));
        if (current())
            bytes.put(time);
        bytes.put(0.0f).put(0.0f).put(float(-state.altitude));
        // North, east, down from the walk's east, north, up.
        bytes.put(float(state.velocity[1])).put(float(state.velocity[0]));
        bytes.put(float(-state.velocity[2]));
        putFloats(bytes, state.freeAcceleration);
        return bytes.put(true).put(true).pad(6);
    }

    UlogBytes gpsPosition(quint64 time, const SampleState &state)
    {
        const KvGnssPvt &pvt = state.gnssPvt;
        const QDateTime utc(QDate(pvt.year, pvt.month, pvt.day), QTime(pvt.hour, pvt.min, pvt.sec),
                            Qt::UTC);
        const quint64 utcUs = quint64(utc.toMSecsSinceEpoch()) * 1000 + quint64(pvt.nano / 1000);
        const double speed = std::hypot(pvt.velN, pvt.velE) * 1e-3;
        // The receiver's fix is published as it comes, so that the log's UTC
        // lines up with the walk's.
        UlogBytes bytes;
        bytes.put(time);
        if (current()) {
            bytes.put(time).put(utcUs).put(pvt.lat * 1e-7).put(pvt.lon * 1e-7);
            bytes.put(pvt.hMSL * 1e-3).put(pvt.height * 1e-3);
        } else {
            bytes.put(utcUs).put(pvt.lat).put(pvt.lon).put(pvt.hMSL).put(pvt.height);
        }
        bytes.put(float(pvt.hAcc * 1e-3)).put(float(pvt.vAcc * 1e-3)).put(float(speed));
        bytes.put(float(pvt.velN * 1e-3)).put(float(pvt.velE * 1e-3)).put(float(pvt.velD * 1e-3));
        if (current())
            bytes.put(quint32(11272457));
        bytes.put(pvt.fixType).put(true).put(pvt.numSV);
        return bytes.pad(current() ? 1 : 5);
    }

    // Two motor controllers, reported as one topic of nested types.
    UlogBytes escStatus(quint64 time, qint64 index)
    {
        UlogBytes bytes;
        bytes.put(published(time)).put(quint8(2)).pad(7);
        for (quint8 esc = 0; esc < 2; ++esc) {
            bytes.put(quint32(0)).put(qint32(4000 + (index + esc) % 97)).put(15.8f).put(esc).pad(3);
        }
        return bytes;
    }

    const GeneratorOptions &options;
    UlogLayout layout;
    UlogWriter writer;
    Walk walk;
    quint32 lastFix = quint32(-1);
    quint64 lastTime = 0;
    double olderField[3] = {};
    double olderTemperature = 0.0;
};

} // namespace

bool generateUlog(const GeneratorOptions &options, UlogLayout layout, QIODevice *out,
                  QString *error)
{
    if (!checkGeneratorOptions(options, error))
        return false;
    return UlogGenerator(options, layout, out).run(error);
}
