#pragma once

#include <exportsource.h>

#include <functional>

class AbstractRecordingReader;

/**
 * The export source over a recording file: properties and update rate of the
 * recording, and the sample the reader read last. The caller moves the reader
 * on; the source only answers for its current sample.
 *
 * Messages for the user go to the message handler, by default to standard
 * error.
 */
class RecordingSource : public ExportSource
{
public:
    using MessageHandler = std::function<void(int kind, const QString &text)>;

    /** Answers for @p reader, which must outlive the source. */
    explicit RecordingSource(const AbstractRecordingReader *reader);

    void setMessageHandler(const MessageHandler &handler);

    double updateRate() const override;
    QVariant property(const QString &key) const override;
    void reportMessage(int kind, const QString &text) override;

    quint32 orientationSelector() const override;
    quint32 velocitySelector() const override;
    QDateTime sampleDateTime() const override;
    KvUtcTime utcTime() const override;
    quint16 packetCounter() const override;
    quint32 sampleTimeFine() const override;
    bool hasSampleTimeFine() const override;
    double temperature() const override;
    quint16 scrTemperature() const override;
    QVector<quint16> gyroTemperatures() const override;
    KvVector calibratedAcceleration() const override;
    KvVector freeAcceleration() const override;
    KvVector scrAcceleration() const override;
    KvVector velocityIncrement() const override;
    KvVector calibratedAngularVelocity() const override;
    KvVector scrGyroscopeData() const override;
    KvQuaternion orientationIncrement() const override;
    KvVector magneticField() const override;
    KvVector scrMagneticField() const override;
    KvQuaternion orientationQuaternion(quint32 selector) const override;
    KvEulerAngles orientationEuler(quint32 selector) const override;
    KvMatrix orientationMatrix(quint32 selector) const override;
    KvVector latitudeLongitude() const override;
    double altitude() const override;
    KvVector velocity(quint32 selector) const override;
    qint32 statusWord() const override;
    double pressure() const override;
    double rssi() const override;
    quint16 clippingFlags() const override;
    KvGpsDop gpsDopRecord() const override;
    KvGpsSolution gpsSolutionRecord() const override;
    KvGpsUtcTime gpsUtcTimeRecord() const override;
    KvGpsSatelliteInfo gpsSatelliteRecord() const override;
    KvGnssPvt gnssPvtRecord() const override;
    KvGnssSatelliteInfo gnssSatelliteRecord() const override;
    KvTriggerIndication triggerIndication(quint32 dataId) const override;

private:
    const AbstractRecordingReader *reader;
    MessageHandler messageHandler;
};
