#include "recordingconverter.h"

#include "abstractrecordingreader.h"
#include "blockwriter.h"
#include "jsonlinewriter.h"
#include "recordfields.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

void writeProperty(JsonLineWriter &line, const QString &key, const QVariant &value)
{
    line.key(key.toUtf8().constData());
    switch (value.userType()) {
    case QMetaType::Bool:
        line.boolean(value.toBool());
        break;
    case QMetaType::Int:
    case QMetaType::LongLong:
        line.integer(value.toLongLong());
        break;
    case QMetaType::Double:
        line.exactNumber(value.toDouble());
        break;
    default:
        line.string(value.toString());
        break;
    }
}

// The vectors of a sample under their keys; an empty one is absent.
const std::pair<const char *, KvVector RecordingSample::*> vectorKeys[] = {
    {"calibratedAcceleration", &RecordingSample::calibratedAcceleration},
    {"freeAcceleration", &RecordingSample::freeAcceleration},
    {"calibratedAngularVelocity", &RecordingSample::calibratedAngularVelocity},
    {"magneticField", &RecordingSample::magneticField},
    {"velocityIncrement", &RecordingSample::velocityIncrement},
    {"velocity", &RecordingSample::velocity},
    {"latitudeLongitude", &RecordingSample::latitudeLongitude},
};

// A vector or quaternion as a list of its exact values.
template <typename Values>
void writeExactNumbers(JsonLineWriter &line, const char *key, const Values &values, int count)
{
    line.key(key);
    line.beginList();
    for (int i = 0; i < count; ++i)
        line.exactNumber(values[i]);
    line.endList();
}

// What a flight log gives a sample, each key only where the sample holds
// it: the reader answers the same for a key that is absent.
void writeInertialKeys(JsonLineWriter &line, const RecordingSample &sample)
{
    if (sample.hasSampleTimeFine) {
        line.key("sampleTimeFine");
        line.integer(sample.sampleTimeFine);
    }
    if (sample.sampleDateTime.isValid()) {
        line.key("sampleDateTime");
        line.string(sample.sampleDateTime.toString(Qt::ISODateWithMs));
    }
    if (!sample.utcTime.isZero()) {
        line.key("utcTime");
        line.record(RecordFields::utcTime, sample.utcTime);
    }
    if (sample.hasClippingFlags) {
        line.key("clippingFlags");
        line.integer(sample.clippingFlags);
    }
    for (const auto &[key, member] : vectorKeys) {
        const KvVector &vector = sample.*member;
        if (!vector.isEmpty())
            writeExactNumbers(line, key, vector, vector.size());
    }
    if (!sample.orientationQuaternion.isEmpty()) {
        writeExactNumbers(line, "orientationQuaternion", sample.orientationQuaternion, 4);
    }
    const std::pair<const char *, double> scalars[] = {{"altitude", sample.altitude},
                                                       {"temperature", sample.temperature},
                                                       {"pressure", sample.pressure}};
    for (const auto &[key, value] : scalars) {
        // Not a number, or (altitude) infinite, is how a sample says it has none.
        if (std::isfinite(value)) {
            line.key(key);
            line.exactNumber(value);
        }
    }
}

// A record with time of week 0 holds no data, so it is left out, which
// reads back the same.
void writeSample(JsonLineWriter &line, const RecordingSample &sample)
{
    using namespace RecordFields;
    line.beginObject();
    line.key("packetCounter");
    line.integer(sample.packetCounter);
    writeInertialKeys(line, sample);
    if (sample.gpsSolution.iTOW != 0) {
        line.key("gpsSolution");
        line.record(gpsSolution, sample.gpsSolution);
    }
    if (sample.gpsDop.iTOW != 0) {
        line.key("gpsDop");
        line.record(gpsDop, sample.gpsDop);
    }
    if (sample.gpsUtcTime.iTOW != 0) {
        line.key("gpsUtcTime");
        line.record(gpsUtcTime, sample.gpsUtcTime);
    }
    if (sample.gpsSatellites.iTOW != 0) {
        const KvGpsSatelliteInfo &info = sample.gpsSatellites;
        line.key("gpsSatellites");
        line.listRecord(gpsSatellites, info, gpsChannelList, gpsChannel, info.channels,
                        std::min(int(info.numCh), KvGpsSatelliteInfo::maxChannels));
    }
    if (sample.gnssPvt.iTOW != 0) {
        line.key("gnssPvt");
        line.record(gnssPvt, sample.gnssPvt);
    }
    if (sample.gnssSatellites.iTOW != 0) {
        const KvGnssSatelliteInfo &info = sample.gnssSatellites;
        line.key("gnssSatellites");
        line.listRecord(gnssSatellites, info, gnssSatelliteList, gnssSatellite, info.satellites,
                        std::min(int(info.numSvs), KvGnssSatelliteInfo::maxSatellites));
    }
    line.endObject();
}

} // namespace

bool RecordingConverter::convert(AbstractRecordingReader &reader, QIODevice *out, QString *error)
{
    JsonLineWriter line;
    line.beginObject();
    line.key("properties");
    line.beginObject();
    const QVariantMap properties = reader.properties();
    for (auto property = properties.cbegin(); property != properties.cend(); ++property) {
        if (property.value().isValid())
            writeProperty(line, property.key(), property.value());
    }
    line.endObject();
    line.key("updateRate");
    line.exactNumber(reader.updateRate());
    line.endObject();
    BlockWriter blocks(out);
    bool written = blocks.appendLine(line.data());

    while (written && reader.readNext()) {
        line.clear();
        writeSample(line, reader.sample());
        written = blocks.appendLine(line.data());
    }
    if (reader.hasError()) {
        *error = reader.errorString();
        return false;
    }
    if (written && blocks.finish())
        return true;
    *error = blocks.errorString();
    return false;
}
