#include "ulogsources.h"

#include <cmath>
#include <cstring>

namespace {

// The sources of the keys, in the order of choice within a key.
enum SourceIndex {
    VehicleMagnetometer,
    OlderMagnetometer,
    SensorMag,
    Attitude,
    AirPressure,
    AirTemperature,
    OlderTemperature,
    LocalPosition,
    GpsPosition,
    GpsAltitude,
    GpsVelocity,
    sourceCount
};

// A topic whose fields give a key's values as they are, times a scale.
struct PlainSource
{
    std::string_view topic;
    int source;
    std::string_view paths[4];
    int width;
    double scale;
};

constexpr PlainSource plainSources[] = {
    {"vehicle_magnetometer",
     VehicleMagnetometer,
     {"magnetometer_ga[0]", "magnetometer_ga[1]", "magnetometer_ga[2]"},
     3,
     1.0},
    {"sensor_mag", SensorMag, {"x", "y", "z"}, 3, 1.0},
    {"vehicle_attitude", Attitude, {"q[0]", "q[1]", "q[2]", "q[3]"}, 4, 1.0},
    {"vehicle_air_data", AirPressure, {"baro_pressure_pa"}, 1, 0.01},
    {"vehicle_air_data", AirTemperature, {"baro_temp_celcius"}, 1, 1.0},
    {"vehicle_local_position", LocalPosition, {"ax", "ay", "az"}, 3, 1.0},
};

// The older layout's relative time that says the value was not updated.
constexpr qint64 noRelativeTime = 0x7FFFFFFF;

bool allFinite(const double *values, int width)
{
    for (int i = 0; i < width; ++i) {
        if (!std::isfinite(values[i]))
            return false;
    }
    return true;
}

} // namespace

struct UlogSources::Binding
{
    enum class Kind { Plain, OlderImu, Gps };
    Kind kind = Kind::Plain;
    const PlainSource *plain = nullptr;
    UlogField time;
    UlogField timeSample;
    UlogField values[4];
    // The older layout: magnetometer_ga and baro_temp_celcius, and their times.
    UlogField magnetometerRelative;
    UlogField temperature;
    UlogField temperatureRelative;
    // The GPS: position, altitude and velocity as values[0..2], and what says they hold.
    UlogField latitude, longitude, altitude;
    double positionScale = 1.0, altitudeScale = 1.0;
    UlogField fix, velocityValid, utc;
};

UlogSources::UlogSources()
    : chosenSource(ulogKeyCount, -1)
{
    const auto source = [](UlogKey key, const QString &text, int width) {
        return Source{key, text, UlogSeries(width), 0, 0};
    };
    const QString older = tr("%1 (older layout)");
    sources = {
        source(UlogKey::MagneticField, QStringLiteral("vehicle_magnetometer.magnetometer_ga"), 3),
        source(UlogKey::MagneticField, older.arg(QStringLiteral("sensor_combined.magnetometer_ga")),
               3),
        source(UlogKey::MagneticField, QStringLiteral("sensor_mag.x, y, z"), 3),
        source(UlogKey::Orientation, QStringLiteral("vehicle_attitude.q"), 4),
        source(UlogKey::Pressure, QStringLiteral("vehicle_air_data.baro_pressure_pa"), 1),
        source(UlogKey::Temperature, QStringLiteral("vehicle_air_data.baro_temp_celcius"), 1),
        source(UlogKey::Temperature, older.arg(QStringLiteral("sensor_combined.baro_temp_celcius")),
               1),
        source(UlogKey::FreeAcceleration, QStringLiteral("vehicle_local_position.ax, ay, az"), 3),
        source(UlogKey::LatitudeLongitude, QStringLiteral("vehicle_gps_position.lat, lon"), 2),
        source(UlogKey::Altitude, QStringLiteral("vehicle_gps_position.alt"), 1),
        source(UlogKey::Velocity,
               QStringLiteral("vehicle_gps_position.vel_n_m_s, vel_e_m_s, vel_d_m_s"), 3),
    };
}

UlogSources::~UlogSources() = default;

void UlogSources::subscribe(quint16 msgId, const std::string &topic, const UlogFormats &formats)
{
    if (bindings.size() <= msgId)
        bindings.resize(std::size_t(msgId) + 1);
    std::vector<Binding> &bound = bindings[msgId];
    bound.clear();
    Binding base;
    base.time = formats.field(topic, "timestamp");
    base.timeSample = formats.field(topic, "timestamp_sample");
    if (!base.time.valid())
        return;
    for (const PlainSource &plain : plainSources) {
        if (plain.topic != topic)
            continue;
        Binding binding = base;
        binding.plain = &plain;
        bool complete = true;
        for (int i = 0; i < plain.width; ++i) {
            binding.values[i] = formats.field(topic, plain.paths[i]);
            complete = complete && binding.values[i].valid();
        }
        if (complete)
            bound.push_back(binding);
    }
    if (topic == "sensor_combined") {
        Binding binding = base;
        binding.kind = Binding::Kind::OlderImu;
        for (int i = 0; i < 3; ++i)
            binding.values[i] = formats.field(topic, "magnetometer_ga[" + std::to_string(i) + "]");
        binding.magnetometerRelative = formats.field(topic, "magnetometer_timestamp_relative");
        binding.temperature = formats.field(topic, "baro_temp_celcius");
        binding.temperatureRelative = formats.field(topic, "baro_timestamp_relative");
        bound.push_back(binding);
    } else if (topic == "vehicle_gps_position") {
        Binding binding = base;
        binding.kind = Binding::Kind::Gps;
        const bool scaled = formats.has(topic, "lat");
        binding.latitude = formats.field(topic, scaled ? "lat" : "latitude_deg");
        binding.longitude = formats.field(topic, scaled ? "lon" : "longitude_deg");
        binding.positionScale = scaled ? 1e-7 : 1.0;
        if (!scaled)
            sources[GpsPosition].text =
                QStringLiteral("vehicle_gps_position.latitude_deg, longitude_deg");
        const bool millimetres = formats.has(topic, "alt");
        binding.altitude = formats.field(topic, millimetres ? "alt" : "altitude_msl_m");
        binding.altitudeScale = millimetres ? 1e-3 : 1.0;
        if (!millimetres)
            sources[GpsAltitude].text = QStringLiteral("vehicle_gps_position.altitude_msl_m");
        binding.values[0] = formats.field(topic, "vel_n_m_s");
        binding.values[1] = formats.field(topic, "vel_e_m_s");
        binding.values[2] = formats.field(topic, "vel_d_m_s");
        binding.fix = formats.field(topic, "fix_type");
        binding.velocityValid = formats.field(topic, "vel_ned_valid");
        binding.utc = formats.field(topic, "time_utc_usec");
        bound.push_back(binding);
    }
}

void UlogSources::take(quint16 msgId, std::string_view payload)
{
    if (msgId >= bindings.size())
        return;
    for (const Binding &binding : bindings[msgId]) {
        const char *bytes = payload.data();
        quint64 time = binding.time.unsignedValue(bytes);
        if (binding.timeSample.valid() && binding.timeSample.unsignedValue(bytes) != 0)
            time = binding.timeSample.unsignedValue(bytes);
        switch (binding.kind) {
        case Binding::Kind::Plain:
            takePlain(binding, bytes, time);
            break;
        case Binding::Kind::OlderImu:
            takeOlderImu(binding, bytes);
            break;
        case Binding::Kind::Gps:
            takeGps(binding, bytes, time);
            break;
        }
    }
}

void UlogSources::takePlain(const Binding &binding, const char *payload, quint64 time)
{
    double values[4];
    for (int i = 0; i < binding.plain->width; ++i)
        values[i] = binding.values[i].value(payload) * binding.plain->scale;
    add(binding.plain->source, time, values, binding.plain->width);
}

// Counts a message of @p source, and adds its values when they are finite.
void UlogSources::add(int source, quint64 time, const double *values, int width)
{
    Source &into = sources[std::size_t(source)];
    ++into.seen;
    if (!allFinite(values, width))
        ++into.notFinite;
    else
        into.series.append(time, values);
}

// The older layout's magnetometer and barometer ride in sensor_combined at
// a time relative to its own: a value the IMU's message repeats is no new
// message of theirs.
void UlogSources::takeOlderImu(const Binding &binding, const char *payload)
{
    const qint64 timestamp = qint64(binding.time.unsignedValue(payload));
    if (binding.values[2].valid() && binding.magnetometerRelative.valid()) {
        const qint64 relative = binding.magnetometerRelative.signedValue(payload);
        float field[3];
        for (int i = 0; i < 3; ++i)
            field[i] = float(binding.values[i].value(payload));
        if (relative != noRelativeTime
            && (!magnetometerSeen || std::memcmp(field, lastMagnetometer, sizeof field) != 0)) {
            magnetometerSeen = true;
            std::memcpy(lastMagnetometer, field, sizeof field);
            const double values[3] = {field[0], field[1], field[2]};
            add(OlderMagnetometer, quint64(timestamp + relative), values, 3);
        }
    }
    if (binding.temperature.valid() && binding.temperatureRelative.valid()) {
        const qint64 relative = binding.temperatureRelative.signedValue(payload);
        const float celsius = float(binding.temperature.value(payload));
        if (relative != noRelativeTime
            && (!temperatureSeen || std::memcmp(&celsius, &lastTemperature, sizeof celsius) != 0)) {
            temperatureSeen = true;
            lastTemperature = celsius;
            const double value = celsius;
            add(OlderTemperature, quint64(timestamp + relative), &value, 1);
        }
    }
}

// The GPS gives a position with a fix of at least 2D, away from (0, 0); an
// altitude with a 3D fix; a velocity with a fix, where the layout says
// whether it is valid, when it is; and UTC with a fix.
void UlogSources::takeGps(const Binding &binding, const char *payload, quint64 time)
{
    const quint64 fix = binding.fix.valid() ? binding.fix.unsignedValue(payload) : 0;
    if (binding.latitude.valid() && binding.longitude.valid()) {
        const double position[2] = {binding.latitude.value(payload) * binding.positionScale,
                                    binding.longitude.value(payload) * binding.positionScale};
        if (fix >= 2 && !(position[0] == 0.0 && position[1] == 0.0))
            add(GpsPosition, time, position, 2);
        else
            ++sources[GpsPosition].seen;
    }
    if (binding.altitude.valid()) {
        const double altitude = binding.altitude.value(payload) * binding.altitudeScale;
        if (fix >= 3)
            add(GpsAltitude, time, &altitude, 1);
        else
            ++sources[GpsAltitude].seen;
    }
    if (binding.values[0].valid() && binding.values[1].valid() && binding.values[2].valid()) {
        const double velocity[3] = {binding.values[0].value(payload),
                                    binding.values[1].value(payload),
                                    binding.values[2].value(payload)};
        const bool valid =
            !binding.velocityValid.valid() || binding.velocityValid.unsignedValue(payload) != 0;
        if (valid && fix >= 2)
            add(GpsVelocity, time, velocity, 3);
        else
            ++sources[GpsVelocity].seen;
    }
    if (binding.utc.valid()) {
        ++gpsSeen;
        const quint64 utc = binding.utc.unsignedValue(payload);
        if (utc > 0 && fix >= 2)
            offsets.push_back(qint64(utc) - qint64(binding.time.unsignedValue(payload)));
    }
}

qint64 UlogSources::finish()
{
    qint64 repeats = 0;
    for (int source = 0; source < sourceCount; ++source) {
        Source &candidate = sources[std::size_t(source)];
        int &chosen = chosenSource[std::size_t(candidate.key)];
        if (chosen < 0 && candidate.seen > 0) {
            chosen = source;
            repeats += candidate.series.order();
        } else if (chosen != source) {
            candidate.series = UlogSeries(candidate.series.width());
        }
    }
    return repeats;
}

const UlogSources::Source *UlogSources::chosen(UlogKey key) const
{
    const int source = chosenSource[std::size_t(key)];
    return source < 0 ? nullptr : &sources[std::size_t(source)];
}
