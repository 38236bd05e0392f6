#pragma once

#include "pluginframework_global.h"

#include <kveulerangles.h>
#include <kvmatrix.h>
#include <kvquaternion.h>
#include <kvreceiverrecords.h>
#include <kvtriggerindication.h>
#include <kvutctime.h>
#include <kvvector.h>

#include <QDateTime>
#include <QString>
#include <QVariant>
#include <QVector>

/**
 * The host's view of a recording during an export: its properties, its update
 * rate and the sample it currently presents. The host positions the source on
 * each sample before it asks the exporter to write it.
 *
 * Every accessor answers for the current sample. Data the sample does not hold
 * is answered with the "missing" value named at each accessor.
 *
 * The order of the virtual operations is part of the binary interface; do not
 * reorder them.
 */
class PLUGINFRAMEWORK_EXPORT ExportSource
{
public:
    /** Kind of message that tells the user an output file could not be written. */
    static constexpr int ErrorMessage = 2;

    virtual ~ExportSource();

    /** Samples per second; 0 when the recording has no single rate. */
    virtual double updateRate() const = 0;
    /** A property of the recording, or an invalid variant. */
    virtual QVariant property(const QString &key) const = 0;
    /** Shows @p text to the user; @p kind 2 is an error about the output. */
    virtual void reportMessage(int kind, const QString &text) = 0;

    /** Opaque value to pass back to the orientation accessors. */
    virtual quint32 orientationSelector() const = 0;
    /** Opaque value to pass back to velocity(). */
    virtual quint32 velocitySelector() const = 0;
    /** Date and time of the sample; null when unknown. */
    virtual QDateTime sampleDateTime() const = 0;
    /** The UTC time record; all zero when missing. */
    virtual KvUtcTime utcTime() const = 0;
    /** Packet counter; 0 when missing. */
    virtual quint16 packetCounter() const = 0;
    virtual quint32 sampleTimeFine() const = 0;
    virtual bool hasSampleTimeFine() const = 0;
    /** Temperature in degrees Celsius; NaN when missing. */
    virtual double temperature() const = 0;
    /** Raw temperature readout; 0 when missing. */
    virtual quint16 scrTemperature() const = 0;
    /** Gyroscope temperature words (8.8 fixed point); empty when missing. */
    virtual QVector<quint16> gyroTemperatures() const = 0;
    /** The vector accessors answer an empty vector when missing. */
    virtual KvVector calibratedAcceleration() const = 0;
    virtual KvVector freeAcceleration() const = 0;
    virtual KvVector scrAcceleration() const = 0;
    virtual KvVector velocityIncrement() const = 0;
    virtual KvVector calibratedAngularVelocity() const = 0;
    virtual KvVector scrGyroscopeData() const = 0;
    /** Empty quaternion when missing. */
    virtual KvQuaternion orientationIncrement() const = 0;
    virtual KvVector magneticField() const = 0;
    virtual KvVector scrMagneticField() const = 0;
    /** Empty quaternion when missing. */
    virtual KvQuaternion orientationQuaternion(quint32 selector) const = 0;
    /** Roll, pitch and yaw in degrees; all zero when missing. */
    virtual KvEulerAngles orientationEuler(quint32 selector) const = 0;
    /** Rotation matrix; empty when missing. */
    virtual KvMatrix orientationMatrix(quint32 selector) const = 0;
    /** Latitude and longitude in degrees; empty when missing. */
    virtual KvVector latitudeLongitude() const = 0;
    /** Altitude in metres; KvConstants::infinity when missing. */
    virtual double altitude() const = 0;
    virtual KvVector velocity(quint32 selector) const = 0;
    virtual qint32 statusWord() const = 0;
    /** Pressure; NaN when missing. */
    virtual double pressure() const = 0;
    virtual double rssi() const = 0;
    virtual quint16 clippingFlags() const = 0;
    /** The receiver records are all zero when missing. */
    virtual KvGpsDop gpsDopRecord() const = 0;
    virtual KvGpsSolution gpsSolutionRecord() const = 0;
    virtual KvGpsUtcTime gpsUtcTimeRecord() const = 0;
    virtual KvGpsSatelliteInfo gpsSatelliteRecord() const = 0;
    virtual KvGnssPvt gnssPvtRecord() const = 0;
    virtual KvGnssSatelliteInfo gnssSatelliteRecord() const = 0;
    /** The trigger of data identifier @p dataId; invalid when missing. */
    virtual KvTriggerIndication triggerIndication(quint32 dataId) const = 0;
};
