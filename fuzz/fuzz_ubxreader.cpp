#include "fuzzinput.h"

#include <recordingsource.h>
#include <ubxreader.h>

#include <cstdlib>
#include <limits>

// Arbitrary bytes as a UBX log: the reader either finds no frame and says
// so, or reads its epochs, each with one time of week in all its records,
// in ascending GPS time where a NAV-SOL gives the week, with packet counters
// that count, satellite counts as the messages state them, and the bytes it
// passed over adding up.

extern "C" int LLVMFuzzerTestOneInput(const quint8 *bytes, std::size_t size)
{
    const QString path = FuzzInput::file("log.ubx", bytes, size);

    UbxReader reader;
    if (!reader.open(path)) {
        if (!reader.errorString().startsWith(path + QLatin1Char(':')))
            std::abort();
        return 0;
    }
    const UbxLogStatistics &counts = reader.statistics();
    if (counts.bytes != qint64(size) || counts.frameBytes > counts.bytes || counts.frames == 0)
        std::abort();
    if (counts.firstTime > counts.lastTime)
        std::abort();
    RecordingSource source(&reader);
    qint64 epochs = 0;
    qint64 last = std::numeric_limits<qint64>::min();
    while (reader.readNext()) {
        const quint32 times[] = {
            source.gpsSolutionRecord().iTOW, source.gpsDopRecord().iTOW,
            source.gpsUtcTimeRecord().iTOW,  source.gpsSatelliteRecord().iTOW,
            source.gnssPvtRecord().iTOW,     source.gnssSatelliteRecord().iTOW};
        quint32 time = 0;
        for (const quint32 t : times) {
            if (t != 0 && time != 0 && t != time)
                std::abort();
            time = t != 0 ? t : time;
        }
        // Only a NAV-SOL shows its week in the record.
        const KvGpsSolution &solution = source.gpsSolutionRecord();
        if (solution.iTOW != 0) {
            const qint64 gpsTime = qint64(solution.week) * 604800000 + solution.iTOW;
            if (gpsTime <= last)
                std::abort();
            last = gpsTime;
        }
        if (source.packetCounter() != quint16(epochs))
            std::abort();
        if (source.gpsSatelliteRecord().iTOW == 0 && source.gpsSatelliteRecord().numCh != 0)
            std::abort();
        ++epochs;
    }
    if (reader.hasError() || epochs != counts.epochs)
        std::abort();
    return 0;
}
