#include <jsontape.h>
#include <samplefingerprint.h>
#include <samplelines.h>
#include <samplereader.h>

#include <cstdlib>
#include <string>

// Arbitrary bytes as one sample line, read both ways: whenever the fast way
// takes the line, the careful way must take it too and read the very same
// sample. Each way reads into a sample it read a full line into before, so
// that the reuse of the sample's storage is checked as well.

namespace {

bool readCarefully(SampleReader &reader, std::string text, RecordingSample &sample)
{
    JsonTape tape;
    QString error;
    return tape.parse(text, &error) && tape.root().isObject() && reader.read(tape.root(), sample);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const quint8 *bytes, std::size_t size)
{
    std::string line(reinterpret_cast<const char *>(bytes), size);
    const std::size_t lineFeed = line.find('\n');
    if (lineFeed != std::string::npos)
        line.resize(lineFeed);

    SampleReader careful;
    RecordingSample carefulSample;
    if (!readCarefully(careful, everyKeySampleLine().toStdString(), carefulSample))
        std::abort();
    const bool carefulRead = readCarefully(careful, line, carefulSample);

    SampleReader fast;
    RecordingSample fastSample;
    if (!readCarefully(fast, everyKeySampleLine().toStdString(), fastSample))
        std::abort();
    std::string padded = line;
    padded.append(SampleReader::padding, '\0');
    if (fast.readFast(padded.data(), line.size(), fastSample)) {
        if (!carefulRead || sampleFingerprint(fastSample) != sampleFingerprint(carefulSample))
            std::abort();
    }
    return 0;
}
