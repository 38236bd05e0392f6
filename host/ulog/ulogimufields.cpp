#include "ulogimufields.h"

#include <cmath>
#include <string>

namespace {

bool finite(const UlogField (&fields)[3], const char *payload)
{
    for (const UlogField &field : fields) {
        if (!std::isfinite(field.value(payload)))
            return false;
    }
    return true;
}

KvVector vectorOf(const UlogField (&fields)[3], const char *payload)
{
    return {fields[0].value(payload), fields[1].value(payload), fields[2].value(payload)};
}

} // namespace

void UlogImuFields::find(const UlogFormats &formats)
{
    const std::string_view topic = "sensor_combined";
    timestamp = formats.field(topic, "timestamp");
    for (int i = 0; i < 3; ++i) {
        const std::string index = "[" + std::to_string(i) + "]";
        acceleration[i] = formats.field(topic, "accelerometer_m_s2" + index);
        angularVelocity[i] = formats.field(topic, "gyro_rad" + index);
    }
    accelerometerClipping = formats.field(topic, "accelerometer_clipping");
    gyroClipping = formats.field(topic, "gyro_clipping");
}

bool UlogImuFields::accelerationFinite(const char *payload) const
{
    return hasAcceleration() && finite(acceleration, payload);
}

bool UlogImuFields::angularVelocityFinite(const char *payload) const
{
    return hasAngularVelocity() && finite(angularVelocity, payload);
}

void UlogImuFields::fill(const char *payload, RecordingSample &sample) const
{
    if (accelerationFinite(payload))
        sample.calibratedAcceleration = vectorOf(acceleration, payload);
    if (angularVelocityFinite(payload))
        sample.calibratedAngularVelocity = vectorOf(angularVelocity, payload);
    // Each clipping count names the axes that clipped, one bit an axis.
    quint16 flags = 0;
    if (accelerometerClipping.valid())
        flags |= quint16(accelerometerClipping.unsignedValue(payload) & 7);
    if (gyroClipping.valid())
        flags |= quint16((gyroClipping.unsignedValue(payload) & 7) << 3);
    sample.clippingFlags = flags;
    sample.hasClippingFlags = accelerometerClipping.valid() || gyroClipping.valid();
}
