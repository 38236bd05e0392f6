#include "recordingsource.h"

#include "abstractrecordingreader.h"
#include "orientationmath.h"

#include <QTextStream>

namespace {

// The data identifiers of the orientation and velocity outputs this source
// presents; the exporter only hands them back.
constexpr quint32 quaternionId = 0x2010;
constexpr quint32 velocityId = 0xD010;

} // namespace

RecordingSource::RecordingSource(const AbstractRecordingReader *reader)
    : reader(reader)
{ }

void RecordingSource::setMessageHandler(const MessageHandler &handler)
{
    messageHandler = handler;
}

double RecordingSource::updateRate() const
{
    return reader->updateRate();
}

QVariant RecordingSource::property(const QString &key) const
{
    return reader->property(key);
}

void RecordingSource::reportMessage(int kind, const QString &text)
{
    if (messageHandler) {
        messageHandler(kind, text);
        return;
    }
    QTextStream(stderr) << text << Qt::endl;
}

quint32 RecordingSource::orientationSelector() const
{
    return quaternionId;
}

quint32 RecordingSource::velocitySelector() const
{
    return velocityId;
}

QDateTime RecordingSource::sampleDateTime() const
{
    return reader->sample().sampleDateTime;
}

KvUtcTime RecordingSource::utcTime() const
{
    return reader->sample().utcTime;
}

quint16 RecordingSource::packetCounter() const
{
    return reader->sample().packetCounter;
}

quint32 RecordingSource::sampleTimeFine() const
{
    return reader->sample().sampleTimeFine;
}

bool RecordingSource::hasSampleTimeFine() const
{
    return reader->sample().hasSampleTimeFine;
}

double RecordingSource::temperature() const
{
    return reader->sample().temperature;
}

quint16 RecordingSource::scrTemperature() const
{
    return reader->sample().scrTemperature;
}

QVector<quint16> RecordingSource::gyroTemperatures() const
{
    return reader->sample().gyroTemperatures;
}

KvVector RecordingSource::calibratedAcceleration() const
{
    return reader->sample().calibratedAcceleration;
}

KvVector RecordingSource::freeAcceleration() const
{
    return reader->sample().freeAcceleration;
}

KvVector RecordingSource::scrAcceleration() const
{
    return reader->sample().scrAcceleration;
}

KvVector RecordingSource::velocityIncrement() const
{
    return reader->sample().velocityIncrement;
}

KvVector RecordingSource::calibratedAngularVelocity() const
{
    return reader->sample().calibratedAngularVelocity;
}

KvVector RecordingSource::scrGyroscopeData() const
{
    return reader->sample().scrGyroscopeData;
}

KvQuaternion RecordingSource::orientationIncrement() const
{
    return reader->sample().orientationIncrement;
}

KvVector RecordingSource::magneticField() const
{
    return reader->sample().magneticField;
}

KvVector RecordingSource::scrMagneticField() const
{
    return reader->sample().scrMagneticField;
}

KvQuaternion RecordingSource::orientationQuaternion(quint32) const
{
    return reader->sample().orientationQuaternion;
}

KvEulerAngles RecordingSource::orientationEuler(quint32) const
{
    const RecordingSample &sample = reader->sample();
    if (sample.hasOrientationEuler)
        return sample.orientationEuler;
    if (!sample.orientationQuaternion.isEmpty())
        return OrientationMath::eulerFromQuaternion(sample.orientationQuaternion);
    return KvEulerAngles();
}

KvMatrix RecordingSource::orientationMatrix(quint32) const
{
    const RecordingSample &sample = reader->sample();
    if (sample.orientationMatrix.isEmpty() && !sample.orientationQuaternion.isEmpty())
        return OrientationMath::matrixFromQuaternion(sample.orientationQuaternion);
    return sample.orientationMatrix;
}

KvVector RecordingSource::latitudeLongitude() const
{
    return reader->sample().latitudeLongitude;
}

double RecordingSource::altitude() const
{
    return reader->sample().altitude;
}

KvVector RecordingSource::velocity(quint32) const
{
    return reader->sample().velocity;
}

qint32 RecordingSource::statusWord() const
{
    return reader->sample().statusWord;
}

double RecordingSource::pressure() const
{
    return reader->sample().pressure;
}

double RecordingSource::rssi() const
{
    return reader->sample().rssi;
}

quint16 RecordingSource::clippingFlags() const
{
    return reader->sample().clippingFlags;
}

KvGpsDop RecordingSource::gpsDopRecord() const
{
    return reader->sample().gpsDop;
}

KvGpsSolution RecordingSource::gpsSolutionRecord() const
{
    return reader->sample().gpsSolution;
}

KvGpsUtcTime RecordingSource::gpsUtcTimeRecord() const
{
    return reader->sample().gpsUtcTime;
}

KvGpsSatelliteInfo RecordingSource::gpsSatelliteRecord() const
{
    return reader->sample().gpsSatellites;
}

KvGnssPvt RecordingSource::gnssPvtRecord() const
{
    return reader->sample().gnssPvt;
}

KvGnssSatelliteInfo RecordingSource::gnssSatelliteRecord() const
{
    return reader->sample().gnssSatellites;
}

KvTriggerIndication RecordingSource::triggerIndication(quint32 dataId) const
{
    switch (dataId) {
    case KvTriggerIndication::triggerIn1Id:
        return reader->sample().triggerIn1;
    case KvTriggerIndication::triggerIn2Id:
        return reader->sample().triggerIn2;
    default:
        return KvTriggerIndication();
    }
}
