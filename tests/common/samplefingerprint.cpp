#include "samplefingerprint.h"

#include <recordfields.h>

#include <QDataStream>

QByteArray sampleFingerprint(const RecordingSample &s)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    const auto vector = [&out](const KvVector &v) {
        out << v.size();
        for (int i = 0; i < v.size(); ++i)
            out << v.at(i);
    };
    const auto quaternion = [&out](const KvQuaternion &q) {
        out << q.isEmpty() << q.at(0) << q.at(1) << q.at(2) << q.at(3);
    };
    const auto fields = [&out](const auto &table, const auto &record) {
        for (const auto &field : table)
            out << field.load(record);
    };
    out << s.packetCounter << s.hasPacketCounter << s.sampleTimeFine << s.hasSampleTimeFine
        << s.sampleDateTime;
    fields(RecordFields::utcTime, s.utcTime);
    out << s.statusWord << s.hasStatusWord << s.clippingFlags << s.hasClippingFlags << s.rssi
        << s.hasRssi;
    for (const KvVector *v :
         {&s.calibratedAcceleration, &s.freeAcceleration, &s.calibratedAngularVelocity,
          &s.magneticField, &s.velocityIncrement, &s.scrAcceleration, &s.scrGyroscopeData,
          &s.scrMagneticField, &s.velocity, &s.latitudeLongitude})
        vector(*v);
    quaternion(s.orientationIncrement);
    quaternion(s.orientationQuaternion);
    out << s.hasOrientationEuler << s.orientationEuler.roll << s.orientationEuler.pitch
        << s.orientationEuler.yaw;
    out << s.orientationMatrix.isEmpty();
    for (int i = 0; i < 9; ++i)
        out << s.orientationMatrix.at(i);
    out << s.altitude << s.temperature << s.pressure << s.scrTemperature << s.hasScrTemperature
        << s.gyroTemperatures;
    fields(RecordFields::gpsSolution, s.gpsSolution);
    fields(RecordFields::gpsDop, s.gpsDop);
    fields(RecordFields::gpsUtcTime, s.gpsUtcTime);
    fields(RecordFields::gpsSatellites, s.gpsSatellites);
    for (const KvGpsChannel &channel : s.gpsSatellites.channels)
        fields(RecordFields::gpsChannel, channel);
    fields(RecordFields::gnssPvt, s.gnssPvt);
    fields(RecordFields::gnssSatellites, s.gnssSatellites);
    for (const KvGnssSatellite &satellite : s.gnssSatellites.satellites)
        fields(RecordFields::gnssSatellite, satellite);
    for (const KvTriggerIndication *t : {&s.triggerIn1, &s.triggerIn2})
        fields(RecordFields::trigger, *t);
    out << s.triggerIn1.isValid() << s.triggerIn2.isValid();
    return bytes;
}
