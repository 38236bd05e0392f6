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
 *
 * The current sample is `sample`, or one kept elsewhere after show(), which
 * lets a benchmark step through samples without copying them.
 */
class TestSource : public ExportSource
{
public:
    QVariantMap properties;
    double rate = 0.0;
    TestSample sample;
    QList<QPair<int, QString>> messages;

    TestSource() = default;
    TestSource(const TestSource &) = delete;
    TestSource &operator=(const TestSource &) = delete;

    /** Presents @p other, which must outlive its showing; null presents `sample` again. */
    void show(const TestSample *other) { shown = other; }

    double updateRate() const override { return rate; }
    QVariant property(const QString &key) const override { return properties.value(key); }
    void reportMessage(int kind, const QString &text) override { messages.append({kind, text}); }

    quint32 orientationSelector() const override { return 0x2010; }
    quint32 velocitySelector() const override { return 0xD010; }
    QDateTime sampleDateTime() const override { return current().dateTime; }
    KvUtcTime utcTime() const override { return current().utc; }
    quint16 packetCounter() const override { return current().packetCounter; }
    quint32 sampleTimeFine() const override { return current().sampleTimeFine; }
    bool hasSampleTimeFine() const override { return current().hasSampleTimeFine; }
    double temperature() const override { return current().temperature; }
    quint16 scrTemperature() const override { return current().scrTemperature; }
    QVector<quint16> gyroTemperatures() const override { return current().gyroTemperatures; }
    KvVector calibratedAcceleration() const override { return current().calibratedAcceleration; }
    KvVector freeAcceleration() const override { return current().freeAcceleration; }
    KvVector scrAcceleration() const override { return current().scrAcceleration; }
    KvVector velocityIncrement() const override { return current().velocityIncrement; }
    KvVector calibratedAngularVelocity() const override
    {
        return current().calibratedAngularVelocity;
    }
    KvVector scrGyroscopeData() const override { return current().scrGyroscopeData; }
    KvQuaternion orientationIncrement() const override { return current().orientationIncrement; }
    KvVector magneticField() const override { return current().magneticField; }
    KvVector scrMagneticField() const override { return current().scrMagneticField; }
    KvQuaternion orientationQuaternion(quint32) const override
    {
        return current().orientationQuaternion;
    }
    KvEulerAngles orientationEuler(quint32) const override { return current().orientationEuler; }
    KvMatrix orientationMatrix(quint32) const override { return current().orientationMatrix; }
    KvVector latitudeLongitude() const override { return current().latitudeLongitude; }
    double altitude() const override { return current().altitude; }
    KvVector velocity(quint32) const override { return current().velocity; }
    qint32 statusWord() const override { return current().statusWord; }
    double pressure() const override { return current().pressure; }
    double rssi() const override { return current().rssi; }
    quint16 clippingFlags() const override { return current().clippingFlags; }
    KvGpsDop gpsDopRecord() const override { return current().gpsDop; }
    KvGpsSolution gpsSolutionRecord() const override { return current().gpsSolution; }
    KvGpsUtcTime gpsUtcTimeRecord() const override { return current().gpsUtcTime; }
    KvGpsSatelliteInfo gpsSatelliteRecord() const override { return current().gpsSatellites; }
    KvGnssPvt gnssPvtRecord() const override { return current().gnssPvt; }
    KvGnssSatelliteInfo gnssSatelliteRecord() const override { return current().gnssSatellites; }
    KvTriggerIndication triggerIndication(quint32 dataId) const override;

private:
    const TestSample &current() const { return shown ? *shown : sample; }

    const TestSample *shown = nullptr;
};
