#pragma once

#include <exportsource.h>

#include <kvconstants.h>

#include <QList>
#include <QPair>
#include <QVariantMap>

#include <limits>

/** The data of one sample; every member starts as "missing". */
struct TestSample
{
    QDateTime dateTime;
    KvUtcTime utc;
    quint16 packetCounter = 0;
    quint32 sampleTimeFine = 0;
    bool hasSampleTimeFine = false;
    double temperature = std::numeric_limits<double>::quiet_NaN();
    quint16 scrTemperature = 0;
    QVector<quint16> gyroTemperatures;
    KvVector calibratedAcceleration;
    KvVector freeAcceleration;
    KvVector scrAcceleration;
    KvVector velocityIncrement;
    KvVector calibratedAngularVelocity;
    KvVector scrGyroscopeData;
    KvQuaternion orientationIncrement;
    KvVector magneticField;
    KvVector scrMagneticField;
    KvQuaternion orientationQuaternion;
    KvEulerAngles orientationEuler;
    KvMatrix orientationMatrix;
    KvVector latitudeLongitude;
    double altitude = KvConstants::infinity;
    KvVector velocity;
    qint32 statusWord = 0;
    double pressure = std::numeric_limits<double>::quiet_NaN();
    double rssi = 0.0;
    quint16 clippingFlags = 0;
    KvGpsDop gpsDop;
    KvGpsSolution gpsSolution;
    KvGpsUtcTime gpsUtcTime;
    KvGpsSatelliteInfo gpsSatellites;
    KvGnssPvt gnssPvt;
    KvGnssSatelliteInfo gnssSatellites;
    KvTriggerIndication triggerIn1;
    KvTriggerIndication triggerIn2;
};

/**
 * An export source over properties, a rate and one current sample, all set by
 * the test. It records every message the exporter reports.
 */
class TestSource : public ExportSource
{
public:
    QVariantMap properties;
    double rate = 0.0;
    TestSample sample;
    QList<QPair<int, QString>> messages;

    double updateRate() const override { return rate; }
    QVariant property(const QString &key) const override { return properties.value(key); }
    void reportMessage(int kind, const QString &text) override { messages.append({kind, text}); }

    quint32 orientationSelector() const override { return 0x2010; }
    quint32 velocitySelector() const override { return 0xD010; }
    QDateTime sampleDateTime() const override { return sample.dateTime; }
    KvUtcTime utcTime() const override { return sample.utc; }
    quint16 packetCounter() const override { return sample.packetCounter; }
    quint32 sampleTimeFine() const override { return sample.sampleTimeFine; }
    bool hasSampleTimeFine() const override { return sample.hasSampleTimeFine; }
    double temperature() const override { return sample.temperature; }
    quint16 scrTemperature() const override { return sample.scrTemperature; }
    QVector<quint16> gyroTemperatures() const override { return sample.gyroTemperatures; }
    KvVector calibratedAcceleration() const override { return sample.calibratedAcceleration; }
    KvVector freeAcceleration() const override { return sample.freeAcceleration; }
    KvVector scrAcceleration() const override { return sample.scrAcceleration; }
    KvVector velocityIncrement() const override { return sample.velocityIncrement; }
    KvVector calibratedAngularVelocity() const override { return sample.calibratedAngularVelocity; }
    KvVector scrGyroscopeData() const override { return sample.scrGyroscopeData; }
    KvQuaternion orientationIncrement() const override { return sample.orientationIncrement; }
    KvVector magneticField() const override { return sample.magneticField; }
    KvVector scrMagneticField() const override { return sample.scrMagneticField; }
    KvQuaternion orientationQuaternion(quint32) const override { return sample.orientationQuaternion; }
    KvEulerAngles orientationEuler(quint32) const override { return sample.orientationEuler; }
    KvMatrix orientationMatrix(quint32) const override { return sample.orientationMatrix; }
    KvVector latitudeLongitude() const override { return sample.latitudeLongitude; }
    double altitude() const override { return sample.altitude; }
    KvVector velocity(quint32) const override { return sample.velocity; }
    qint32 statusWord() const override { return sample.statusWord; }
    double pressure() const override { return sample.pressure; }
    double rssi() const override { return sample.rssi; }
    quint16 clippingFlags() const override { return sample.clippingFlags; }
    KvGpsDop gpsDopRecord() const override { return sample.gpsDop; }
    KvGpsSolution gpsSolutionRecord() const override { return sample.gpsSolution; }
    KvGpsUtcTime gpsUtcTimeRecord() const override { return sample.gpsUtcTime; }
    KvGpsSatelliteInfo gpsSatelliteRecord() const override { return sample.gpsSatellites; }
    KvGnssPvt gnssPvtRecord() const override { return sample.gnssPvt; }
    KvGnssSatelliteInfo gnssSatelliteRecord() const override { return sample.gnssSatellites; }
    KvTriggerIndication triggerIndication(quint32 dataId) const override;
};
