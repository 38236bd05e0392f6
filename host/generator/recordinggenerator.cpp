#include "recordinggenerator.h"

#include "blockwriter.h"
#include "jsonlinewriter.h"
#include "samplewriters.h"
#include "walk.h"

#include <QCoreApplication>

#include <algorithm>
#include <vector>

namespace {

// The receiver of a JSON Lines recording reports four times a second.
constexpr double recordingReceiverRate = 4.0;

// The properties of the sensor that walks, and the rate of its samples.
void writeRecordingObject(JsonLineWriter &line, const Walk &walk, double rate)
{
    line.beginObject();
    line.key("properties");
    line.beginObject();
    line.key("StartTime");
    line.string(Walk::startTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    line.key("FilterProfile");
    line.string(QStringLiteral("general"));
    line.key("FilterProfileVersion");
    line.integer(1);
    line.key("FilterProfileType");
    line.integer(39);
    line.key("OptionFlags");
    line.integer(0);
    line.key("FirmwareVersion");
    line.string(QStringLiteral("1.2.3"));
    line.key("DeviceId");
    line.string(walk.deviceId());
    line.key("ProductCode");
    line.string(QStringLiteral("T100"));
    line.endObject();
    line.key("updateRate");
    line.number(rate, 6);
    line.endObject();
}

} // namespace

bool checkGeneratorOptions(const GeneratorOptions &options, QString *error)
{
    if (options.samples < 0) {
        *error = QCoreApplication::translate("RecordingGenerator",
                                             "the number of samples must not be negative");
        return false;
    }
    if (!(options.rate > 0.0 && options.rate <= 10000.0)) {
        *error = QCoreApplication::translate("RecordingGenerator",
                                             "the rate must be above 0 and at most 10000 Hz");
        return false;
    }
    return true;
}

QStringList recordingKeys()
{
    QStringList keys;
    for (std::size_t i = 0; i < sampleWriterCount; ++i)
        keys.append(QLatin1String(sampleWriters[i].key));
    return keys;
}

bool generateRecording(const GeneratorOptions &options, QIODevice *out, QString *error)
{
    if (!checkGeneratorOptions(options, error))
        return false;
    std::vector<bool> wanted(sampleWriterCount, options.keys.isEmpty());
    for (const QString &key : options.keys) {
        const SampleWriter *end = sampleWriters + sampleWriterCount;
        const SampleWriter *writer = std::find_if(
            sampleWriters, end, [&](const SampleWriter &w) { return key == QLatin1String(w.key); });
        if (writer == end) {
            *error = QCoreApplication::translate("RecordingGenerator", "unknown sample key \"%1\"")
                         .arg(key);
            return false;
        }
        wanted[std::size_t(writer - sampleWriters)] = true;
    }

    Walk walk(options, recordingReceiverRate);
    BlockWriter blocks(out);
    JsonLineWriter line;
    writeRecordingObject(line, walk, options.rate);
    bool written = blocks.appendLine(line.data());
    for (qint64 index = 0; written && index < options.samples; ++index) {
        const SampleState &state = walk.step(index);
        line.clear();
        line.beginObject();
        for (std::size_t i = 0; i < sampleWriterCount; ++i) {
            const SampleWriter &writer = sampleWriters[i];
            if (!wanted[i] || (writer.present && !writer.present(state)))
                continue;
            line.key(writer.key);
            writer.write(state, line);
        }
        line.endObject();
        written = blocks.appendLine(line.data());
    }
    if (written && blocks.finish())
        return true;
    *error = blocks.errorString();
    return false;
}

bool generateReceiverEpochs(const GeneratorOptions &options,
                            const std::function<bool(const RecordingSample &)> &write,
                            QString *error)
{
    if (!checkGeneratorOptions(options, error))
        return false;
    Walk walk(options, options.rate);
    RecordingSample epoch;
    for (qint64 index = 0; index < options.samples; ++index) {
        const SampleState &state = walk.step(index);
        epoch.packetCounter = quint16(index);
        epoch.gpsSolution = state.gpsSolution;
        epoch.gpsDop = state.gpsDop;
        epoch.gpsUtcTime = state.gpsUtcTime;
        epoch.gpsSatellites = state.gpsSatellites;
        epoch.gnssPvt = state.gnssPvt;
        epoch.gnssSatellites = state.gnssSatellites;
        if (!write(epoch))
            return false;
    }
    return true;
}
