#include "fuzzinput.h"

#include <jsonlinesreader.h>
#include <recordingsource.h>

#include <cstdlib>

// Arbitrary bytes as a recording file: the reader either reads them or says
// which line is bad, and every accessor of the source answers for every
// sample it read.

namespace {

// Folds a value into the checksum, so that no accessor's work is left out.
template <typename Value>
void fold(double &sum, const Value &value)
{
    sum += double(value);
}

void fold(double &sum, const KvVector &vector)
{
    for (int i = 0; i < vector.size(); ++i)
        sum += vector.at(i);
}

void fold(double &sum, const KvQuaternion &quaternion)
{
    for (int i = 0; i < 4; ++i)
        sum += quaternion.at(i);
}

void askEverything(const RecordingSource &source, double &sum)
{
    fold(sum, source.updateRate());
    fold(sum, source.property(QStringLiteral("DeviceId")).toString().size());
    fold(sum, source.sampleDateTime().toMSecsSinceEpoch());
    fold(sum, source.utcTime().nano);
    fold(sum, source.packetCounter());
    fold(sum, source.sampleTimeFine());
    fold(sum, source.hasSampleTimeFine());
    fold(sum, source.temperature());
    fold(sum, source.scrTemperature());
    fold(sum, source.gyroTemperatures().size());
    fold(sum, source.calibratedAcceleration());
    fold(sum, source.freeAcceleration());
    fold(sum, source.scrAcceleration());
    fold(sum, source.velocityIncrement());
    fold(sum, source.calibratedAngularVelocity());
    fold(sum, source.scrGyroscopeData());
    fold(sum, source.orientationIncrement());
    fold(sum, source.magneticField());
    fold(sum, source.scrMagneticField());
    const quint32 selector = source.orientationSelector();
    fold(sum, source.orientationQuaternion(selector));
    const KvEulerAngles euler = source.orientationEuler(selector);
    fold(sum, euler.roll + euler.pitch + euler.yaw);
    const KvMatrix matrix = source.orientationMatrix(selector);
    for (int i = 0; i < 9; ++i)
        fold(sum, matrix.at(i));
    fold(sum, source.latitudeLongitude());
    fold(sum, source.altitude());
    fold(sum, source.velocity(source.velocitySelector()));
    fold(sum, source.statusWord());
    fold(sum, source.pressure());
    fold(sum, source.rssi());
    fold(sum, source.clippingFlags());
    fold(sum, source.gpsDopRecord().iTOW);
    fold(sum, source.gpsSolutionRecord().iTOW);
    fold(sum, source.gpsUtcTimeRecord().iTOW);
    fold(sum, source.gpsSatelliteRecord().numCh);
    fold(sum, source.gnssPvtRecord().iTOW);
    fold(sum, source.gnssSatelliteRecord().numSvs);
    fold(sum, source.triggerIndication(KvTriggerIndication::triggerIn1Id).timestamp);
    fold(sum, source.triggerIndication(KvTriggerIndication::triggerIn2Id).frameNumber);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const quint8 *bytes, std::size_t size)
{
    const QString path = FuzzInput::file("recording.jsonl", bytes, size);

    JsonLinesReader reader;
    double sum = 0.0;
    const bool opened = reader.open(path);
    if (opened) {
        RecordingSource source(&reader);
        while (reader.readNext())
            askEverything(source, sum);
    }
    // A failed read always names the file.
    if ((!opened || reader.hasError()) && !reader.errorString().startsWith(path + QLatin1Char(':')))
        std::abort();
    volatile double kept = sum;
    (void)kept;
    return 0;
}
