#pragma once

#include "recordingsample.h"
#include "ulogformats.h"

#include <string_view>

/**
 * The fields of sensor_combined that a sample takes as they are: the
 * timestamp, acceleration, rate of turn and the clipping counts, where the
 * layout has them.
 */
struct UlogImuFields
{
    UlogField timestamp;
    UlogField acceleration[3];
    UlogField angularVelocity[3];
    UlogField accelerometerClipping;
    UlogField gyroClipping;

    /** Finds the fields in the layout of sensor_combined in @p formats. */
    void find(const UlogFormats &formats);
    bool hasAcceleration() const { return acceleration[2].valid(); }
    bool hasAngularVelocity() const { return angularVelocity[2].valid(); }
    bool hasClipping() const { return accelerometerClipping.valid() || gyroClipping.valid(); }

    /** Whether the payload's acceleration, or rate of turn, is finite. */
    bool accelerationFinite(const char *payload) const;
    bool angularVelocityFinite(const char *payload) const;

    /** Sets @p sample's acceleration, rate of turn and clipping flags from @p payload. */
    void fill(const char *payload, RecordingSample &sample) const;
};
