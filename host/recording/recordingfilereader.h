#pragma once

#include "abstractrecordingreader.h"
#include "recordingsample.h"

#include <QCoreApplication>
#include <QFile>
#include <QString>
#include <QVariantMap>

class QIODevice;

/**
 * What the readers of a recording file have in common, whatever its format:
 * the opening of the file, the error, the properties, the update rate and
 * the sample read last. A reader fills them in its open() and readNext().
 */
class RecordingFileReader : public AbstractRecordingReader
{
    Q_DECLARE_TR_FUNCTIONS(RecordingFileReader)

public:
    /**
     * Opens @p fileName and reads it as open(QIODevice *, const QString &)
     * does. On failure returns false and errorString() tells why.
     */
    bool open(const QString &fileName);
    /**
     * Reads the recording from @p device, which must be open for reading and
     * outlive the reader; @p name names it in messages. On failure returns
     * false and errorString() tells why.
     */
    virtual bool open(QIODevice *device, const QString &name) = 0;

    bool hasError() const override;
    QString errorString() const override;
    /** The recording's property @p key; invalid when missing or null. */
    QVariant property(const QString &key) const override;
    QVariantMap properties() const override;
    /** Samples per second; 0 when the recording does not tell. */
    double updateRate() const override;
    const RecordingSample &sample() const override;

protected:
    /**
     * Forgets the recording read before, so that nothing of it shows after
     * an open() that fails; @p name names the next one in messages.
     */
    virtual void reset(const QString &name);
    /** Fails with "NAME: cannot be read: @p reason". */
    bool failToRead(const QString &reason);

    QString fileName;
    QString error;
    QVariantMap recordingProperties;
    double rate = 0.0;
    RecordingSample current;

private:
    QFile file;
};
