#pragma once

#include "ulogformats.h"
#include "ulogseries.h"

#include <QCoreApplication>
#include <QString>

#include <string>
#include <string_view>
#include <vector>

/** The keys of a recording that topics slower than the IMU fill. */
enum class UlogKey {
    MagneticField,
    Orientation,
    Pressure,
    Temperature,
    FreeAcceleration,
    LatitudeLongitude,
    Altitude,
    Velocity
};
constexpr int ulogKeyCount = 8;

/**
 * The values of the slower topics, gathered from a log's data messages on
 * the first pass: for each key the series of each topic that can give it,
 * and of the GPS messages the offsets of UTC from the log's clock. After
 * the pass, each key takes the first of its topics that the log holds
 * messages of: vehicle_magnetometer, else the older layout's magnetometer
 * in sensor_combined, else sensor_mag; vehicle_air_data's temperature,
 * else the older layout's in sensor_combined.
 */
class UlogSources
{
    Q_DECLARE_TR_FUNCTIONS(UlogSources)

public:
    struct Source
    {
        UlogKey key;
        QString text;
        UlogSeries series;
        /** Messages of the topic that could give the key a value, valid or not. */
        qint64 seen = 0;
        qint64 notFinite = 0;
    };

    UlogSources();
    ~UlogSources();

    /** Reads the data of message id @p msgId, the instance 0 of @p topic, from now on. */
    void subscribe(quint16 msgId, const std::string &topic, const UlogFormats &formats);
    /** A data message of @p msgId; ignored unless subscribe() named it. */
    void take(quint16 msgId, std::string_view payload);
    /** Orders each key's chosen series; returns the exact repeats dropped. */
    qint64 finish();

    /** The source each key takes its values from; nullptr when the log gives it none. */
    const Source *chosen(UlogKey key) const;
    /** time_utc_usec - timestamp of each GPS message with a UTC time and a fix. */
    const std::vector<qint64> &utcOffsets() const { return offsets; }
    /** How many GPS messages could have given a UTC time. */
    qint64 utcSeen() const { return gpsSeen; }

private:
    struct Binding;

    void takePlain(const Binding &binding, const char *payload, quint64 time);
    void takeOlderImu(const Binding &binding, const char *payload);
    void takeGps(const Binding &binding, const char *payload, quint64 time);
    void add(int source, quint64 time, const double *values, int width);

    std::vector<Source> sources;
    std::vector<int> chosenSource;
    std::vector<std::vector<Binding>> bindings;
    std::vector<qint64> offsets;
    qint64 gpsSeen = 0;
    // The older layout's last magnetometer and temperature, for changes.
    float lastMagnetometer[3] = {};
    float lastTemperature = 0.0f;
    bool magnetometerSeen = false;
    bool temperatureSeen = false;
};
