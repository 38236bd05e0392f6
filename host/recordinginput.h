#pragma once

#include "abstractrecordingreader.h"
#include "recordingreader.h"
#include "ubxreader.h"

#include <QByteArray>
#include <QFile>
#include <QString>

/**
 * Reads a recording in whichever format its content shows: a JSON Lines
 * recording starts with "{" (after blanks and a byte-order mark); anything
 * else in whose first bytes the UBX sync bytes 0xB5 0x62 stand is read as a
 * UBX receiver log; everything else goes to the JSON Lines reader, which says
 * what is wrong with it.
 */
class RecordingInput : public AbstractRecordingReader
{
public:
    enum class Format { JsonLines, Ubx };

    /** Opens @p fileName in the format of its content. */
    bool open(const QString &fileName);
    /**
     * Reads the recording from @p device, which must be open for reading and
     * outlive the reader; the format is told from the bytes it lets peek at.
     */
    bool open(QIODevice *device, const QString &name);

    Format format() const;
    /** The UBX reader, which holds what the log held when format() is Ubx. */
    const UbxReader &ubxLog() const;
    /** The format that the first bytes @p head of a recording show. */
    static Format detect(const QByteArray &head);
    /** How many first bytes detect() is given. */
    static constexpr qint64 headSize = 1 << 16;

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
    Format detected = Format::JsonLines;
    QFile file;
    RecordingReader jsonLines;
    UbxReader ubx;
    AbstractRecordingReader *active = &jsonLines;
};
