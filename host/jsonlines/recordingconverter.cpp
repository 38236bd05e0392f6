#include "recordingconverter.h"

#include "abstractrecordingreader.h"
#include "blockwriter.h"
#include "jsonlinewriter.h"
#include "recordfields.h"

#include <algorithm>

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

// A record with time of week 0 holds no data, so it is left out, which
// reads back the same.
void writeSample(JsonLineWriter &line, const RecordingSample &sample)
{
    using namespace RecordFields;
    line.beginObject();
    line.key("packetCounter");
    line.integer(sample.packetCounter);
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
