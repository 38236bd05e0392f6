#include "fuzzinput.h"

#include <recordingsource.h>
#include <ulogreader.h>

#include <cstdlib>

// Arbitrary bytes as a PX4 ULog: the reader either refuses them and says
// why, or reads one sample per IMU message, in ascending time, with packet
// counters that count; no key of its summary drops more messages than the
// log held of it.

extern "C" int LLVMFuzzerTestOneInput(const quint8 *bytes, std::size_t size)
{
    const QString path = FuzzInput::file("log.ulg", bytes, size);

    UlogReader reader;
    if (!reader.open(path)) {
        if (!reader.errorString().startsWith(path + QLatin1Char(':')))
            std::abort();
        return 0;
    }
    for (const UlogSummary::Key &key : reader.summary().keys) {
        if (key.used < 0 || key.dropped < 0 || key.collided < 0
            || key.dropped + key.collided > key.messages)
            std::abort();
    }
    RecordingSource source(&reader);
    qint64 samples = 0;
    while (reader.readNext()) {
        if (source.packetCounter() != quint16(samples))
            std::abort();
        ++samples;
    }
    if (reader.hasError())
        std::abort();
    reader.readingNotice();
    return 0;
}
