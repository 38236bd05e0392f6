#pragma once

#include "recordingsample.h"

#include <QCoreApplication>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <string>

/**
 * Reads a recording in the JSON Lines format, one sample at a time.
 *
 * The first non-empty line is the recording object ("properties" and
 * "updateRate"); every further non-empty line is one sample. Only the current
 * sample is held, so memory does not grow with the length of the recording.
 * Besides standard JSON the bare literals NaN, Infinity and -Infinity are
 * accepted as numbers.
 *
 * A bad line stops the reading: errorString() then reads
 * "FILE:LINE: what is wrong". Keys the format does not know are ignored; a
 * known key given twice in one object is a bad line.
 */
class RecordingReader
{
    Q_DECLARE_TR_FUNCTIONS(RecordingReader)

public:
    /**
     * Longer lines are refused. A sample takes a few kilobytes; the limit
     * bounds what one line may cost to parse, some twenty times its size.
     */
    static constexpr qint64 maxLineLength = 4 * 1024 * 1024;
    /** Lists and objects nested deeper than this are refused. */
    static constexpr int maxNesting = 32;

    /** The keys a sample line may hold, in the order of the format's table. */
    static QStringList sampleKeys();

    /**
     * Opens @p fileName and reads its recording object. On failure returns
     * false and errorString() tells why.
     */
    bool open(const QString &fileName);
    /**
     * Moves to the next sample. Returns false at the end of the file and on a
     * bad line; hasError() tells the two apart.
     */
    bool readNext();

    bool hasError() const;
    QString errorString() const;

    /** The recording's property @p key; invalid when missing or null. */
    QVariant property(const QString &key) const;
    QVariantMap properties() const;
    /** Samples per second; 0 when the recording object gives none. */
    double updateRate() const;
    /** The sample read last by readNext(). */
    const RecordingSample &sample() const;

    /** How far reading has come into the file, in bytes; for progress. */
    qint64 position() const { return file.pos(); }
    /** The size of the file, in bytes. */
    qint64 size() const { return file.size(); }

private:
    enum class LineStatus { Read, End, Failed };

    LineStatus readLine();
    bool nextContentLine();
    bool readRecordingObject();
    bool fail(const QString &what);

    QString fileName;
    QFile file;
    std::string line;
    std::size_t lineStart = 0;
    qint64 lineNumber = 0;
    QString error;
    QVariantMap recordingProperties;
    double rate = 0.0;
    RecordingSample current;
};
