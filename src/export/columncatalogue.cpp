#include "columncatalogue.h"

#include "groupwriters.h"
#include "settingkeys.h"

#include <kvreceiverrecords.h>

#include <iterator>

namespace ColumnCatalogue {

int FieldsList::columnCount() const
{
    int columns = 0;
    for (const Fields &fields : *this)
        columns += fields.count();
    return columns;
}

namespace {

template <int N>
constexpr Names names(const char *const (&list)[N])
{
    return {list, N};
}

template <int N>
constexpr FieldsList list(const Fields (&runs)[N])
{
    return {runs, N};
}

constexpr RepeatedBlock noBlock{{nullptr, 0}, 0};

constexpr const char *packetCounter[] = {"PacketCounter"};
constexpr const char *sampleTimeFine[] = {"SampleTimeFine"};
constexpr const char *dateTime[] = {"Year", "Month", "Day", "Second"};
constexpr const char *utc[] = {"UTC_Nano", "UTC_Year",   "UTC_Month",  "UTC_Day",
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
constexpr const char *latitudeLongitude[] = {"Latitude", "Longitude"};
constexpr const char *altitude[] = {"Altitude"};
constexpr const char *velocity[] = {"Vel_X", "Vel_Y", "Vel_Z"};
constexpr const char *temperature[] = {"Temperature"};
constexpr const char *gyroTemperature[] = {"GyrTemp_X", "GyrTemp_Y", "GyrTemp_Z"};
constexpr const char *scrAcceleration[] = {"SCRAcc_X", "SCRAcc_Y", "SCRAcc_Z"};
constexpr const char *scrGyroscope[] = {"SCRGyr_X", "SCRGyr_Y", "SCRGyr_Z"};
constexpr const char *scrMagneticField[] = {"SCRMag_X", "SCRMag_Y", "SCRMag_Z"};
constexpr const char *scrTemperature[] = {"SCRTemperature"};
constexpr const char *scrGyroTemperature[] = {"SCRGyrTemp_X", "SCRGyrTemp_Y", "SCRGyrTemp_Z"};

// Four records (solution, dilution of precision, UTC time, satellite
// information), each opening with its own time of week. "PositionDOP" stands
// in both the solution and the precision record.
constexpr const char *gpsSolution[] = {
    "NSTimeOfWeek",        "NanoSecRemainder", "GPSWeek",    "GPSFixtype",
    "GPSFixStatusFlags",   "ECEF_X",           "ECEF_Y",     "ECEF_Z",
    "PositionAccuracyEst", "ECEFVel_X",        "ECEFVel_Y",  "ECEFVel_Z",
    "SpeedAccuracyEst",    "PositionDOP",      "NumberOfSV",
};
constexpr const char *gpsDop[] = {
    "NDTimeOfWeek", "GeometricDOP",  "PositionDOP", "TimeDOP",
    "VerticalDOP",  "HorizontalDOP", "NorthingDOP", "EastingDOP",
};
constexpr const char *gpsUtcTime[] = {
    "NUTimeOfWeek", "TimeAccuracyEst", "GPSNanoSecOfSec", "GPSYear", "GPSMonth",
    "GPSDay",       "GPSHour",         "GPSMin",          "GPSSec",  "GPSTimeValidity",
};
constexpr const char *gpsSatellites[] = {"NSVTimeOfWeek"};
constexpr const char *gpsChannelBlock[] = {"SVID[%d]", "SVQI[%d]"};

// Longitude before latitude here, and "HeadingAccurayEst" spelt so: files
// written so far carry these names and readers match them.
constexpr const char *gnssPvt[] = {
    "NUTimeOfWeek",
    "TimeAccuracyEst",
    "GNSSNanoSecOfSec",
    "GNSSYear",
    "GNSSMonth",
    "GNSSDay",
    "GNSSHour",
    "GNSSMin",
    "GNSSSec",
    "GNSSTimeValidity",
    "GNSSFixtype",
    "GNSSFixStatusFlags",
    "NumberOfSV",
    "Longitude",
    "Latitude",
    "Height",
    "HeightMeanSeaLevel",
    "HorizontalAccuracyEst",
    "VerticalAccuracyEst",
    "VelocityN",
    "VelocityE",
    "VelocityD",
    "GroundSpeed",
    "MotionHeading",
    "SpeedAccuracyEst",
    "HeadingAccurayEst",
    "Heading",
    "GeometricDOP",
    "PositionDOP",
    "TimeDOP",
    "VerticalDOP",
    "HorizontalDOP",
    "NorthingDOP",
    "EastingDOP",
};
constexpr const char *gnssSatellites[] = {"NSVTimeOfWeek"};
constexpr const char *gnssSatelliteBlock[] = {"GnssId[%d]", "SvId[%d]", "Cno[%d]", "Flags[%d]"};

constexpr const char *triggerIn1[] = {"TrigIn1_Polarity", "TrigIn1_Timestamp",
                                      "TrigIn1_FrameNumber"};
constexpr const char *triggerIn2[] = {"TrigIn2_Polarity", "TrigIn2_Timestamp",
                                      "TrigIn2_FrameNumber"};

constexpr const char *euler[] = {"Roll", "Pitch", "Yaw"};
// Row index first, column index second; the row index runs fastest.
constexpr const char *matrix[] = {"Mat[1][1]", "Mat[2][1]", "Mat[3][1]", "Mat[1][2]", "Mat[2][2]",
                                  "Mat[3][2]", "Mat[1][3]", "Mat[2][3]", "Mat[3][3]"};
constexpr const char *quaternion[] = {"Quat_q0", "Quat_q1", "Quat_q2", "Quat_q3"};

namespace W = GroupWriters;

// Each group's runs of columns with the writer that fills each run.
constexpr Fields packetCounterFields[] = {{names(packetCounter), noBlock, W::packetCounter}};
constexpr Fields sampleTimeFineFields[] = {{names(sampleTimeFine), noBlock, W::sampleTimeFine}};
constexpr Fields dateTimeFields[] = {{names(dateTime), noBlock, W::dateTime}};
constexpr Fields utcFields[] = {{names(utc), noBlock, W::utc}};
constexpr Fields statusWordFields[] = {{names(statusWord), noBlock, W::statusWord}};
constexpr Fields clippingFlagsFields[] = {{names(clippingFlags), noBlock, W::clippingFlags}};
constexpr Fields rssiFields[] = {{names(rssi), noBlock, W::rssi}};
constexpr Fields accelerationFields[] = {{names(acceleration), noBlock, W::calibratedAcceleration}};
constexpr Fields freeAccelerationFields[] = {
    {names(freeAcceleration), noBlock, W::freeAcceleration}};
constexpr Fields angularVelocityFields[] = {
    {names(angularVelocity), noBlock, W::calibratedAngularVelocity}};
constexpr Fields magneticFieldFields[] = {{names(magneticField), noBlock, W::magneticField}};
constexpr Fields velocityIncrementFields[] = {
    {names(velocityIncrement), noBlock, W::velocityIncrement}};
constexpr Fields orientationIncrementFields[] = {
    {names(orientationIncrement), noBlock, W::orientationIncrement}};
constexpr Fields pressureFields[] = {{names(pressure), noBlock, W::pressure}};
constexpr Fields positionFields[] = {
    {names(latitudeLongitude), noBlock, W::latitudeLongitude},
    {names(altitude), noBlock, W::altitude},
};
constexpr Fields velocityFields[] = {{names(velocity), noBlock, W::velocity}};
constexpr Fields temperatureFields[] = {{names(temperature), noBlock, W::temperature}};
constexpr Fields gyroTemperatureFields[] = {{names(gyroTemperature), noBlock, W::gyroTemperature}};
constexpr Fields scrAccelerationFields[] = {{names(scrAcceleration), noBlock, W::scrAcceleration}};
constexpr Fields scrGyroscopeFields[] = {{names(scrGyroscope), noBlock, W::scrGyroscopeData}};
constexpr Fields scrMagneticFieldFields[] = {
    {names(scrMagneticField), noBlock, W::scrMagneticField}};
constexpr Fields scrTemperatureFields[] = {{names(scrTemperature), noBlock, W::scrTemperature}};
constexpr Fields scrGyroTemperatureFields[] = {
    {names(scrGyroTemperature), noBlock, W::scrGyroTemperature}};
// A block per channel or satellite the receiver's record can hold.
constexpr Fields rawGpsFields[] = {
    {names(gpsSolution), noBlock, W::gpsSolution},
    {names(gpsDop), noBlock, W::gpsDop},
    {names(gpsUtcTime), noBlock, W::gpsUtcTime},
    {names(gpsSatellites),
     {names(gpsChannelBlock), KvGpsSatelliteInfo::maxChannels},
     W::gpsSatellites},
};
constexpr Fields rawGnssFields[] = {
    {names(gnssPvt), noBlock, W::gnssPvt},
    {names(gnssSatellites),
     {names(gnssSatelliteBlock), KvGnssSatelliteInfo::maxSatellites},
     W::gnssSatellites},
};
constexpr Fields triggerIn1Fields[] = {{names(triggerIn1), noBlock, W::triggerIn1}};
constexpr Fields triggerIn2Fields[] = {{names(triggerIn2), noBlock, W::triggerIn2}};

constexpr Fields eulerFields[] = {{names(euler), noBlock, W::euler}};
constexpr Fields matrixFields[] = {{names(matrix), noBlock, W::matrix}};
constexpr Fields quaternionFields[] = {{names(quaternion), noBlock, W::quaternion}};

constexpr DataGroup onOff(const char *settingKey, FieldsList fields)
{
    return {settingKey, Selection::OnOff, fields};
}

namespace K = SettingKeys;

constexpr DataGroup catalogue[] = {
    onOff(K::exportPacketCounter, list(packetCounterFields)),
    onOff(K::exportSampleTimeFine, list(sampleTimeFineFields)),
    onOff(K::exportDateTime, list(dateTimeFields)),
    onOff(K::exportUtc, list(utcFields)),
    onOff(K::exportStatusFlags, list(statusWordFields)),
    onOff(K::exportClipFlags, list(clippingFlagsFields)),
    onOff(K::exportRssi, list(rssiFields)),
    onOff(K::exportCalibratedAcceleration, list(accelerationFields)),
    onOff(K::exportFreeAcceleration, list(freeAccelerationFields)),
    onOff(K::exportCalibratedAngularVelocity, list(angularVelocityFields)),
    onOff(K::exportMagneticField, list(magneticFieldFields)),
    onOff(K::exportVelocityIncrement, list(velocityIncrementFields)),
    onOff(K::exportOrientationIncrement, list(orientationIncrementFields)),
    onOff(K::exportPressure, list(pressureFields)),
    {K::exportOrientation, Selection::OrientationFormat, {nullptr, 0}},
    onOff(K::exportPosition, list(positionFields)),
    onOff(K::exportVelocity, list(velocityFields)),
    onOff(K::exportTemperature, list(temperatureFields)),
    onOff(K::exportGyroTemperature, list(gyroTemperatureFields)),
    onOff(K::exportScrAcceleration, list(scrAccelerationFields)),
    onOff(K::exportScrGyroscopeData, list(scrGyroscopeFields)),
    onOff(K::exportScrMagneticField, list(scrMagneticFieldFields)),
    onOff(K::exportScrTemperature, list(scrTemperatureFields)),
    onOff(K::exportScrGyroTemperature, list(scrGyroTemperatureFields)),
    onOff(K::exportRawGps, list(rawGpsFields)),
    onOff(K::exportRawGnss, list(rawGnssFields)),
    onOff(K::exportTriggerIn1, list(triggerIn1Fields)),
    onOff(K::exportTriggerIn2, list(triggerIn2Fields)),
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

FieldsList orientationFields(OrientationFormat format)
{
    switch (format) {
    case OrientationFormat::Euler:
        return list(eulerFields);
    case OrientationFormat::Matrix:
        return list(matrixFields);
    case OrientationFormat::Quaternion:
        return list(quaternionFields);
    case OrientationFormat::None:
        break;
    }
    return {nullptr, 0};
}

} // namespace ColumnCatalogue
