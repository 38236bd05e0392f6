#include "recordingread.h"

#include <jsonlinesreader.h>

#include <QFile>
#include <QTemporaryDir>

QByteArray recordingHeader()
{
    return R"({"properties": {}, "updateRate": 100})"
           "\n";
}

RecordingRead readRecording(const QByteArray &content)
{
    RecordingRead result;
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("rec.jsonl"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        result.error = QStringLiteral("<test file not written>");
        return result;
    }
    file.close();
    JsonLinesReader reader;
    if (reader.open(path)) {
        while (reader.readNext())
            result.samples.append(reader.sample());
    }
    result.error = reader.errorString();
    if (result.error.startsWith(path))
        result.error.replace(0, path.size(), QStringLiteral("rec.jsonl"));
    return result;
}

RecordingSample readSample(const QByteArray &sampleLine)
{
    const RecordingRead result = readRecording(recordingHeader() + sampleLine + '\n');
    if (!result.error.isEmpty() || result.samples.size() != 1) {
        qWarning("%s", qPrintable(result.error));
        return RecordingSample();
    }
    return result.samples.first();
}
