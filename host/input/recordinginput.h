#pragma once

#include "abstractrecordingreader.h"
#include "jsonlinesreader.h"
#include "temporarycopy.h"
#include "ubxreader.h"
#include "ulogreader.h"

#include <QFile>
#include <QString>

#include <memory>

/**
 * Reads a recording in whichever format its content shows: a PX4 flight log
 * starts with the ULog magic "ULog" 0x01 0x12 0x35; a JSON Lines recording
 * starts with "{" (after blanks and a byte-order mark); anything else that
 * holds the UBX sync bytes 0xB5 0x62, wherever they stand, is read as a UBX
 * receiver log; everything else goes to the JSON Lines reader, which says
 * what is wrong with it.
 *
 * A pipe is read once only. One that starts with "{" is read as it comes;
 * anything else is copied first (see TemporaryCopy), as UBX logs and flight
 * logs are read twice.
 */
class RecordingInput : public AbstractRecordingReader
{
public:
    enum class Format { JsonLines, Ubx, Ulog };

    /** How the samples of a flight log take its slower topics; before open(). */
    void setUlogFillPolicy(const UlogFillPolicy &policy);

    /** Opens @p fileName in the format of its content. */
    bool open(const QString &fileName);
    /**
     * Reads the recording from @p device, which must be open for reading and
     * outlive the reader; @p name names it in messages.
     */
    bool open(QIODevice *device, const QString &name);

    Format format() const;
    /** The UBX reader, which holds what the log held when format() is Ubx. */
    const UbxReader &ubxLog() const;
    /** The flight log's reader, which holds what the log held when format() is Ulog. */
    const UlogReader &ulogLog() const;
    /** The format of the content of @p device, read from where it stands to its end if need be. */
    static Format detect(QIODevice *device);

    bool readNext() override;
    bool hasError() const override;
    QString errorString() const override;
    bool hasBadLine() const override;
    void skipBadLine() override;
    QVariant property(const QString &key) const override;
    QVariantMap properties() const override;
    double updateRate() const override;
    const RecordingSample &sample() const override;
    qint64 position() const override;
    qint64 size() const override;
    QString readingNotice() const override;

private:
    bool openSeekable(QIODevice *device, const QString &name);

    Format detected = Format::JsonLines;
    QFile file;
    std::unique_ptr<TemporaryCopy> copy;
    // Why the recording could not be handed to a reader at all.
    QString error;
    JsonLinesReader jsonLines;
    UbxReader ubx;
    UlogReader ulog;
    AbstractRecordingReader *active = &jsonLines;
};
