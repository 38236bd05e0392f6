#include "columncatalogue.h"

#include <iterator>

namespace ColumnCatalogue {

namespace {

template <int N>
constexpr Names names(const char *const (&list)[N])
{
    return {list, N};
}

constexpr Names noNames{nullptr, 0};
constexpr RepeatedBlock noBlock{noNames, 0};

constexpr const char *packetCounter[] = {"PacketCounter"};
constexpr const char *sampleTimeFine[] = {"SampleTimeFine"};
constexpr const char *dateTime[] = {"Year", "Month", "Day", "Second"};
constexpr const char *utc[] = {"UTC_Nano", "UTC_Year", "UTC_Month", "UTC_Day",
                               "UTC_Hour", "UTC_Minute", "UTC_Second", "UTC_Valid"};
constexpr const char *statusWord[] = {"StatusWord"};
constexpr const char *clippingFlags[] = {"ClippingFlags"};
constexpr const char *rssi[] = {"RSSI"};
constexpr const char *acceleration[] = {"Acc_X", "Acc_Y", "Acc_Z"};
constexpr const char *freeAcceleration[] = {"FreeAcc_X", "FreeAcc_Y", "FreeAcc_Z"};
constexpr const char *angularVelocity[] = {"Gyr_X", "Gyr_Y", "Gyr_Z"};
constexpr const char *magneticField[] = {"Mag_X", "Mag_Y", "Mag_Z"};
constexpr const char *velocityIncrement[] = {"VelInc_X", "VelInc_Y", "VelInc_Z"};
constexpr const char *orientationIncrement[] = {"OriInc_q0", "OriInc_q1", "OriInc_q2", "OriInc_q3"};
constexpr const char *pressure[] = {"Pressure"};
constexpr const char *position[] = {"Latitude", "Longitude", "Altitude"};
constexpr const char *velocity[] = {"Vel_X", "Vel_Y", "Vel_Z"};
constexpr const char *temperature[] = {"Temperature"};
constexpr const char *gyroTemperature[] = {"GyrTemp_X", "GyrTemp_Y", "GyrTemp_Z"};
constexpr const char *scrAcceleration[] = {"SCRAcc_X", "SCRAcc_Y", "SCRAcc_Z"};
constexpr const char *scrGyroscope[] = {"SCRGyr_X", "SCRGyr_Y", "SCRGyr_Z"};
constexpr const char *scrMagneticField[] = {"SCRMag_X", "SCRMag_Y", "SCRMag_Z"};
constexpr const char *scrTemperature[] = {"SCRTemperature"};
constexpr const char *scrGyroTemperature[] = {"SCRGyrTemp_X", "SCRGyrTemp_Y", "SCRGyrTemp_Z"};

// Four sub-blocks (solution, dilution of precision, UTC time, satellite
// information), each opening with its own time of week. "PositionDOP" stands
// in both the solution and the precision block.
constexpr const char *rawGps[] = {
    "NSTimeOfWeek", "NanoSecRemainder", "GPSWeek", "GPSFixtype", "GPSFixStatusFlags",
    "ECEF_X", "ECEF_Y", "ECEF_Z", "PositionAccuracyEst", "ECEFVel_X", "ECEFVel_Y", "ECEFVel_Z",
    "SpeedAccuracyEst", "PositionDOP", "NumberOfSV",
    "NDTimeOfWeek", "GeometricDOP", "PositionDOP", "TimeDOP", "VerticalDOP", "HorizontalDOP",
    "NorthingDOP", "EastingDOP",
    "NUTimeOfWeek", "TimeAccuracyEst", "GPSNanoSecOfSec", "GPSYear", "GPSMonth", "GPSDay",
    "GPSHour", "GPSMin", "GPSSec", "GPSTimeValidity",
    "NSVTimeOfWeek",
};
constexpr const char *rawGpsBlock[] = {"SVID[%d]", "SVQI[%d]"};

// Longitude before latitude here, and "HeadingAccurayEst" spelt so: files
// written so far carry these names and readers match them.
constexpr const char *rawGnss[] = {
    "NUTimeOfWeek", "TimeAccuracyEst", "GNSSNanoSecOfSec", "GNSSYear", "GNSSMonth", "GNSSDay",
    "GNSSHour", "GNSSMin", "GNSSSec", "GNSSTimeValidity", "GNSSFixtype", "GNSSFixStatusFlags",
    "NumberOfSV", "Longitude", "Latitude", "Height", "HeightMeanSeaLevel",
    "HorizontalAccuracyEst", "VerticalAccuracyEst", "VelocityN", "VelocityE", "VelocityD",
    "GroundSpeed", "MotionHeading", "SpeedAccuracyEst", "HeadingAccurayEst", "Heading",
    "GeometricDOP", "PositionDOP", "TimeDOP", "VerticalDOP", "HorizontalDOP", "NorthingDOP",
    "EastingDOP",
    "NSVTimeOfWeek",
};
constexpr const char *rawGnssBlock[] = {"GnssId[%d]", "SvId[%d]", "Cno[%d]", "Flags[%d]"};

constexpr const char *triggerIn1[] = {"TrigIn1_Polarity", "TrigIn1_Timestamp", "TrigIn1_FrameNumber"};
constexpr const char *triggerIn2[] = {"TrigIn2_Polarity", "TrigIn2_Timestamp", "TrigIn2_FrameNumber"};

constexpr const char *euler[] = {"Roll", "Pitch", "Yaw"};
// Row index first, column index second; the row index runs fastest.
constexpr const char *matrix[] = {"Mat[1][1]", "Mat[2][1]", "Mat[3][1]",
                                  "Mat[1][2]", "Mat[2][2]", "Mat[3][2]",
                                  "Mat[1][3]", "Mat[2][3]", "Mat[3][3]"};
constexpr const char *quaternion[] = {"Quat_q0", "Quat_q1", "Quat_q2", "Quat_q3"};

constexpr DataGroup catalogue[] = {
    {Group::PacketCounter, "exportPacketCounter", names(packetCounter), noBlock},
    {Group::SampleTimeFine, "exportSampleTimeFine", names(sampleTimeFine), noBlock},
    {Group::DateTime, "exportDateTime", names(dateTime), noBlock},
    {Group::Utc, "exportUtc", names(utc), noBlock},
    {Group::StatusWord, "exportStatusFlags", names(statusWord), noBlock},
    {Group::ClippingFlags, "exportClipFlags", names(clippingFlags), noBlock},
    {Group::Rssi, "exportRssi", names(rssi), noBlock},
    {Group::CalibratedAcceleration, "exportCalibratedAcceleration", names(acceleration), noBlock},
    {Group::FreeAcceleration, "exportFreeAcceleration", names(freeAcceleration), noBlock},
    {Group::CalibratedAngularVelocity, "exportCalibratedAngularVelocity", names(angularVelocity), noBlock},
    {Group::MagneticField, "exportMagneticField", names(magneticField), noBlock},
    {Group::VelocityIncrement, "exportVelocityIncrement", names(velocityIncrement), noBlock},
    {Group::OrientationIncrement, "exportOrientationIncrement", names(orientationIncrement), noBlock},
    {Group::Pressure, "exportPressure", names(pressure), noBlock},
    {Group::Orientation, "exportOrientation", noNames, noBlock},
    {Group::Position, "exportPosition", names(position), noBlock},
    {Group::Velocity, "exportVelocity", names(velocity), noBlock},
    {Group::Temperature, "exportTemperature", names(temperature), noBlock},
    {Group::GyroTemperature, "exportGyroTemperature", names(gyroTemperature), noBlock},
    {Group::ScrAcceleration, "exportScrAcceleration", names(scrAcceleration), noBlock},
    {Group::ScrGyroscopeData, "exportScrGyroscopeData", names(scrGyroscope), noBlock},
    {Group::ScrMagneticField, "exportScrMagneticField", names(scrMagneticField), noBlock},
    {Group::ScrTemperature, "exportScrTemperature", names(scrTemperature), noBlock},
    {Group::ScrGyroTemperature, "exportScrGyroTemperature", names(scrGyroTemperature), noBlock},
    {Group::RawGps, "exportRawGps", names(rawGps), {names(rawGpsBlock), 16}},
    {Group::RawGnss, "exportRawGnss", names(rawGnss), {names(rawGnssBlock), 60}},
    {Group::TriggerIn1, "exportTriggerIn1", names(triggerIn1), noBlock},
    {Group::TriggerIn2, "exportTriggerIn2", names(triggerIn2), noBlock},
};

static_assert(std::size(catalogue) == 28, "the catalogue has 28 groups");

} // namespace

Groups groups()
{
    return {catalogue, int(std::size(catalogue))};
}

OrientationFormat orientationFormat(const QString &value)
{
    // Asked for every sample: the cheap tests first, the slow case folding
    // only for a word of the right length in other case.
    const auto is = [&value](QLatin1String word) {
        return value.size() == word.size()
            && (value == word || value.compare(word, Qt::CaseInsensitive) == 0);
    };
    if (is(QLatin1String("Euler")))
        return OrientationFormat::Euler;
    if (is(QLatin1String("Matrix")))
        return OrientationFormat::Matrix;
    if (is(QLatin1String("Quaternion")))
        return OrientationFormat::Quaternion;
    return OrientationFormat::None;
}

Names orientationColumns(OrientationFormat format)
{
    switch (format) {
    case OrientationFormat::Euler:
        return names(euler);
    case OrientationFormat::Matrix:
        return names(matrix);
    case OrientationFormat::Quaternion:
        return names(quaternion);
    case OrientationFormat::None:
        break;
    }
    return noNames;
}

} // namespace ColumnCatalogue
