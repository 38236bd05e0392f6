#pragma once

#include "recordingsample.h"

#include <QString>
#include <QVariant>
#include <QVariantMap>

/**
 * A recording being read sample by sample, whatever its file format. The
 * export source answers the exporter from the sample read last.
 */
class AbstractRecordingReader
{
public:
    virtual ~AbstractRecordingReader() = default;

    /**
     * Moves to the next sample. Returns false at the end of the recording and
     * on an error; hasError() tells the two apart.
     */
    virtual bool readNext() = 0;

    virtual bool hasError() const = 0;
    virtual QString errorString() const = 0;
    /**
     * Whether the error is one bad piece of the recording, such as a line,
     * that reading can go on after, rather than a recording that cannot be
     * read at all.
     */
    virtual bool hasBadLine() const { return false; }
    /** After an error that hasBadLine(): forgets it, so that readNext() goes on after it. */
    virtual void skipBadLine() { }

    /** The recording's property @p key; invalid when missing. */
    virtual QVariant property(const QString &key) const = 0;
    virtual QVariantMap properties() const = 0;
    /** Samples per second; 0 when not known. */
    virtual double updateRate() const = 0;
    /** The sample read last by readNext(). */
    virtual const RecordingSample &sample() const = 0;

    /** How far reading has come into the recording, in bytes; for progress. */
    virtual qint64 position() const = 0;
    /** The size of the recording in bytes; 0 when it is not known. */
    virtual qint64 size() const = 0;

    /**
     * One line for the user about what the reading passed over, such as
     * bytes that were not part of the recording; empty when there is nothing
     * to say.
     */
    virtual QString readingNotice() const { return QString(); }
};
