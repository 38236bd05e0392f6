#pragma once

#include <kvquaternion.h>
#include <kvreceiverrecords.h>
#include <kvtriggerindication.h>
#include <kvutctime.h>

#include <QString>

// Everything one sample line can hold. All of it is computed for every
// sample, so the values of a key do not depend on which keys are written.
struct SampleState
{
    qint64 index = 0;
    quint32 sampleTimeFine = 0;
    QString dateTime;
    KvUtcTime utcTime;
    qint32 statusWord = 0;
    quint16 clippingFlags = 0;
    double rssi = 0.0;
    double acceleration[3] = {};
    double freeAcceleration[3] = {};
    double angularVelocity[3] = {};
    double magneticField[3] = {};
    double velocityIncrement[3] = {};
    double scrAcceleration[3] = {};
    double scrGyroscope[3] = {};
    double scrMagneticField[3] = {};
    double velocity[3] = {};
    KvQuaternion orientationIncrement;
    KvQuaternion quaternion;
    double euler[3] = {};
    double matrix[9] = {};
    double latitudeLongitude[2] = {};
    double altitude = 0.0;
    double temperature = 0.0;
    double pressure = 0.0;
    quint16 scrTemperature = 0;
    quint16 gyroTemperatures[3] = {};
    KvGpsSolution gpsSolution;
    KvGpsDop gpsDop;
    KvGpsUtcTime gpsUtcTime;
    KvGpsSatelliteInfo gpsSatellites;
    KvGnssPvt gnssPvt;
    KvGnssSatelliteInfo gnssSatellites;
    KvTriggerIndication triggerIn1;
    KvTriggerIndication triggerIn2;
};
