#pragma once

#include "recordinggenerator.h"

#include <QString>

class QIODevice;

/** The two layouts of a flight controller's topics that logs in use hold. */
enum class UlogLayout {
    /**
     * Today's: magnetometer and barometer in topics of their own
     * (vehicle_magnetometer, vehicle_air_data), clipping counts in
     * sensor_combined, sample times beside the publication times, and the
     * receiver's position in degrees.
     */
    Current,
    /**
     * The older one: sensor_combined carries the magnetometer and the
     * barometer's temperature with times relative to its own, and the
     * receiver's position is in 1e-7 degrees and millimetres.
     */
    Older
};

/**
 * Writes a synthetic PX4 ULog to @p out, which must be open for writing:
 * options.samples IMU samples (sensor_combined) of the generator's walk at
 * options.rate a second (keys are not looked at), with the attitude at half
 * that rate, the magnetometer at a quarter, the local position at a fifth,
 * the barometer at a tenth and the receiver five times a second, each topic
 * published a moment after its sample. Information and parameters describe
 * the vehicle; the log also holds a second magnetometer (instance 1), a
 * topic of nested types, logged messages and sync messages, as real logs
 * do. The same options give the same bytes.
 *
 * Returns false and sets @p error when an option is out of range or writing
 * fails.
 */
bool generateUlog(const GeneratorOptions &options, UlogLayout layout, QIODevice *out,
                  QString *error);
