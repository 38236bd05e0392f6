#pragma once

#include <recordingsample.h>

#include <QByteArray>
#include <QString>
#include <QVector>

/** What JsonLinesReader read of a recording: its samples, and the error it ended with. */
struct RecordingRead
{
    QVector<RecordingSample> samples;
    QString error;
};

/** A recording's first line with no properties at 100 Hz, its line feed included. */
QByteArray recordingHeader();

/**
 * Reads @p content from rec.jsonl in a fresh folder; the error's path is
 * shortened to "rec.jsonl".
 */
RecordingRead readRecording(const QByteArray &content);

/**
 * The sample of @p sampleLine, read after recordingHeader(); an empty sample,
 * with a warning, when the line does not read as one sample.
 */
RecordingSample readSample(const QByteArray &sampleLine);
