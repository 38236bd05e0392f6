#include "samplewriters.h"

#include "jsonlinewriter.h"
#include "recordfields.h"
#include "samplestate.h"

#include <iterator>

const SampleWriter sampleWriters[] = {
    {"packetCounter", [](const SampleState &s, JsonLineWriter &l) { l.integer(s.index & 0xFFFF); }},
    {"sampleTimeFine",
     [](const SampleState &s, JsonLineWriter &l) { l.integer(s.sampleTimeFine); }},
    {"sampleDateTime", [](const SampleState &s, JsonLineWriter &l) { l.string(s.dateTime); }},
    {"utcTime",
     [](const SampleState &s, JsonLineWriter &l) { l.record(RecordFields::utcTime, s.utcTime); }},
    {"statusWord", [](const SampleState &s, JsonLineWriter &l) { l.integer(s.statusWord); }},
    {"clippingFlags", [](const SampleState &s, JsonLineWriter &l) { l.integer(s.clippingFlags); }},
    {"rssi", [](const SampleState &s, JsonLineWriter &l) { l.number(s.rssi, 0); }},
    {"calibratedAcceleration",
     [](const SampleState &s, JsonLineWriter &l) { l.numbers(s.acceleration, 3, 6); }},
    {"freeAcceleration",
     [](const SampleState &s, JsonLineWriter &l) { l.numbers(s.freeAcceleration, 3, 6); }},
    {"calibratedAngularVelocity",
     [](const SampleState &s, JsonLineWriter &l) { l.numbers(s.angularVelocity, 3, 6); }},
    {"magneticField",
     [](const SampleState &s, JsonLineWriter &l) { l.numbers(s.magneticField, 3, 6); }},
    {"velocityIncrement",
     [](const SampleState &s, JsonLineWriter &l) { l.numbers(s.velocityIncrement, 3, 8); }},
    {"scrAcceleration",
     [](const SampleState &s, JsonLineWriter &l) { l.numbers(s.scrAcceleration, 3, 0); }},
    {"scrGyroscopeData",
     [](const SampleState &s, JsonLineWriter &l) { l.numbers(s.scrGyroscope, 3, 0); }},
    {"scrMagneticField",
     [](const SampleState &s, JsonLineWriter &l) { l.numbers(s.scrMagneticField, 3, 0); }},
    {"velocity", [](const SampleState &s, JsonLineWriter &l) { l.numbers(s.velocity, 3, 4); }},
    {"orientationIncrement",
     [](const SampleState &s, JsonLineWriter &l) { l.quaternion(s.orientationIncrement, 9); }},
    {"orientationQuaternion",
     [](const SampleState &s, JsonLineWriter &l) { l.quaternion(s.quaternion, 9); }},
    {"orientationEuler", [](const SampleState &s, JsonLineWriter &l) { l.numbers(s.euler, 3, 6); }},
    {"orientationMatrix",
     [](const SampleState &s, JsonLineWriter &l) {
         l.beginList();
         for (int row = 0; row < 3; ++row)
             l.numbers(s.matrix + 3 * row, 3, 9);
         l.endList();
     }},
    {"latitudeLongitude",
     [](const SampleState &s, JsonLineWriter &l) { l.numbers(s.latitudeLongitude, 2, 9); }},
    {"altitude", [](const SampleState &s, JsonLineWriter &l) { l.number(s.altitude, 3); }},
    {"temperature", [](const SampleState &s, JsonLineWriter &l) { l.number(s.temperature, 2); }},
    {"pressure", [](const SampleState &s, JsonLineWriter &l) { l.number(s.pressure, 3); }},
    {"scrTemperature",
     [](const SampleState &s, JsonLineWriter &l) { l.integer(s.scrTemperature); }},
    {"gyroTemperatures",
     [](const SampleState &s, JsonLineWriter &l) {
         l.beginList();
         for (quint16 word : s.gyroTemperatures)
             l.integer(word);
         l.endList();
     }},
    {"gpsSolution",
     [](const SampleState &s, JsonLineWriter &l) {
         l.record(RecordFields::gpsSolution, s.gpsSolution);
     }},
    {"gpsDop",
     [](const SampleState &s, JsonLineWriter &l) { l.record(RecordFields::gpsDop, s.gpsDop); }},
    {"gpsUtcTime",
     [](const SampleState &s, JsonLineWriter &l) {
         l.record(RecordFields::gpsUtcTime, s.gpsUtcTime);
     }},
    {"gpsSatellites",
     [](const SampleState &s, JsonLineWriter &l) {
         l.listRecord(RecordFields::gpsSatellites, s.gpsSatellites, RecordFields::gpsChannelList,
                      RecordFields::gpsChannel, s.gpsSatellites.channels, s.gpsSatellites.numCh);
     }},
    {"gnssPvt",
     [](const SampleState &s, JsonLineWriter &l) { l.record(RecordFields::gnssPvt, s.gnssPvt); }},
    {"gnssSatellites",
     [](const SampleState &s, JsonLineWriter &l) {
         l.listRecord(RecordFields::gnssSatellites, s.gnssSatellites,
                      RecordFields::gnssSatelliteList, RecordFields::gnssSatellite,
                      s.gnssSatellites.satellites, s.gnssSatellites.numSvs);
     }},
    {"triggerIn1",
     [](const SampleState &s, JsonLineWriter &l) { l.record(RecordFields::trigger, s.triggerIn1); },
     [](const SampleState &s) { return s.triggerIn1.valid; }},
    {"triggerIn2",
     [](const SampleState &s, JsonLineWriter &l) { l.record(RecordFields::trigger, s.triggerIn2); },
     [](const SampleState &s) { return s.triggerIn2.valid; }},
};

const std::size_t sampleWriterCount = std::size(sampleWriters);
