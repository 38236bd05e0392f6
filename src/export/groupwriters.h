#pragma once

#include "columncatalogue.h"

/**
 * The writers of the column catalogue's runs, one for each run of columns:
 * each writes one field per column of the run it is given, taking the
 * number of empty fields for missing data from that run.
 */
namespace GroupWriters {

using ColumnCatalogue::Fields;

bool packetCounter(RowWriter &writer, const Fields &fields);
bool sampleTimeFine(RowWriter &writer, const Fields &fields);
bool dateTime(RowWriter &writer, const Fields &fields);
bool utc(RowWriter &writer, const Fields &fields);
bool statusWord(RowWriter &writer, const Fields &fields);
bool clippingFlags(RowWriter &writer, const Fields &fields);
bool rssi(RowWriter &writer, const Fields &fields);
bool calibratedAcceleration(RowWriter &writer, const Fields &fields);
bool freeAcceleration(RowWriter &writer, const Fields &fields);
bool calibratedAngularVelocity(RowWriter &writer, const Fields &fields);
bool magneticField(RowWriter &writer, const Fields &fields);
bool velocityIncrement(RowWriter &writer, const Fields &fields);
bool orientationIncrement(RowWriter &writer, const Fields &fields);
bool pressure(RowWriter &writer, const Fields &fields);
bool euler(RowWriter &writer, const Fields &fields);
bool matrix(RowWriter &writer, const Fields &fields);
bool quaternion(RowWriter &writer, const Fields &fields);
bool latitudeLongitude(RowWriter &writer, const Fields &fields);
bool altitude(RowWriter &writer, const Fields &fields);
bool velocity(RowWriter &writer, const Fields &fields);
bool temperature(RowWriter &writer, const Fields &fields);
bool gyroTemperature(RowWriter &writer, const Fields &fields);
bool scrAcceleration(RowWriter &writer, const Fields &fields);
bool scrGyroscopeData(RowWriter &writer, const Fields &fields);
bool scrMagneticField(RowWriter &writer, const Fields &fields);
bool scrTemperature(RowWriter &writer, const Fields &fields);
bool scrGyroTemperature(RowWriter &writer, const Fields &fields);
bool gpsSolution(RowWriter &writer, const Fields &fields);
bool gpsDop(RowWriter &writer, const Fields &fields);
bool gpsUtcTime(RowWriter &writer, const Fields &fields);
bool gpsSatellites(RowWriter &writer, const Fields &fields);
bool gnssPvt(RowWriter &writer, const Fields &fields);
bool gnssSatellites(RowWriter &writer, const Fields &fields);
bool triggerIn1(RowWriter &writer, const Fields &fields);
bool triggerIn2(RowWriter &writer, const Fields &fields);

} // namespace GroupWriters
