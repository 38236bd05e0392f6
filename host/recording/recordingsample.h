#pragma once

#include <kvconstants.h>
#include <kveulerangles.h>
#include <kvmatrix.h>
#include <kvquaternion.h>
#include <kvreceiverrecords.h>
#include <kvtriggerindication.h>
#include <kvutctime.h>
#include <kvvector.h>

#include <QDateTime>
#include <QVector>

#include <limits>

/**
 * The data of one sample of a recording. Every member starts as the value the
 * host answers for data that the sample does not hold.
 */
struct RecordingSample
{
    // For the words whose missing value 0 is also a valid one, the reader
    // says whether the sample holds them.
    quint16 packetCounter = 0;
    bool hasPacketCounter = false;
    quint32 sampleTimeFine = 0;
    bool hasSampleTimeFine = false;
    QDateTime sampleDateTime;
    KvUtcTime utcTime;
    qint32 statusWord = 0;
    bool hasStatusWord = false;
    quint16 clippingFlags = 0;
    bool hasClippingFlags = false;
    double rssi = 0.0;
    bool hasRssi = false;
    KvVector calibratedAcceleration;
    KvVector freeAcceleration;
    KvVector calibratedAngularVelocity;
    KvVector magneticField;
    KvVector velocityIncrement;
    KvVector scrAcceleration;
    KvVector scrGyroscopeData;
    KvVector scrMagneticField;
    KvVector velocity;
    KvQuaternion orientationIncrement;
    KvQuaternion orientationQuaternion;
    // Euler angles have no empty state of their own, so presence is kept apart:
    // without them the source derives the angles from the quaternion.
    KvEulerAngles orientationEuler;
    bool hasOrientationEuler = false;
    KvMatrix orientationMatrix;
    KvVector latitudeLongitude;
    double altitude = KvConstants::infinity;
    double temperature = std::numeric_limits<double>::quiet_NaN();
    double pressure = std::numeric_limits<double>::quiet_NaN();
    quint16 scrTemperature = 0;
    bool hasScrTemperature = false;
    QVector<quint16> gyroTemperatures;
    KvGpsSolution gpsSolution;
    KvGpsDop gpsDop;
    KvGpsUtcTime gpsUtcTime;
    KvGpsSatelliteInfo gpsSatellites;
    KvGnssPvt gnssPvt;
    KvGnssSatelliteInfo gnssSatellites;
    KvTriggerIndication triggerIn1;
    KvTriggerIndication triggerIn2;
};
