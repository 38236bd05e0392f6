#pragma once

#include "abstractrecordingreader.h"
#include "recordingsample.h"
#include "ubxlogstatistics.h"

#include <QCoreApplication>
#include <QFile>
#include <QString>
#include <QVariantMap>

#include <vector>

/**
 * Reads a u-blox UBX receiver log as a recording: one sample per navigation
 * epoch, with the receiver records of the epoch's NAV-SOL, NAV-DOP,
 * NAV-TIMEUTC, NAV-SVINFO, NAV-PVT and NAV-SAT messages and a packet counter.
 *
 * Messages are grouped into epochs by their time of week (iTOW), and the
 * epochs come out in ascending iTOW order even when the log holds them out of
 * order; in an epoch, the first message of each kind counts. A first pass
 * over the log finds the frames and keeps, per epoch, only the time of week
 * and where its messages start (an entry of fixed size); each readNext()
 * then reads that epoch's frames back. Memory thus grows with the number of
 * epochs, by some 60 bytes each, but not with the size of the log. The log
 * must be one that can be read twice: a file, or a copy of a pipe.
 *
 * Properties: "StartTime" from the first dated epoch ("0", the host's mark of
 * an unknown start, without one), "FirmwareVersion" from MON-VER when the log
 * holds one; the update rate follows from the median step between epochs.
 */
class UbxReader : public AbstractRecordingReader
{
    Q_DECLARE_TR_FUNCTIONS(UbxReader)

public:
    UbxReader();
    ~UbxReader() override;

    /** Opens @p fileName and finds its epochs. On failure returns false and errorString() tells
     * why. */
    bool open(const QString &fileName);
    /**
     * Reads the log from @p device, which must be open for reading, able to
     * seek and outlive the reader; @p name names it in messages.
     */
    bool open(QIODevice *device, const QString &name);

    bool readNext() override;
    bool hasError() const override;
    QString errorString() const override;
    QVariant property(const QString &key) const override;
    QVariantMap properties() const override;
    double updateRate() const override;
    const RecordingSample &sample() const override;
    qint64 position() const override;
    qint64 size() const override;
    /** Says how many bytes were passed over, when any were. */
    QString readingNotice() const override;

    const UbxLogStatistics &statistics() const;

private:
    // The kinds of navigation message an epoch takes, in the order of Epoch::frames.
    enum Kind { Solution, Dop, UtcTime, SvInfo, Pvt, Sat, kindCount };

    struct Epoch
    {
        quint32 timeOfWeek = 0;
        // Where the frame of each kind starts in the log; -1 for none.
        qint64 frames[kindCount] = {-1, -1, -1, -1, -1, -1};
        // Which of the NAV-PVT and NAV-TIMEUTC frames carry a date.
        quint8 dated = 0;
    };

    bool indexFrames(QIODevice *source);
    void orderEpochs();
    void findProperties();
    const uchar *frameAt(qint64 offset, quint16 key, int *length);
    bool fail(const QString &what);

    QString fileName;
    QFile file;
    // The log as read the second time: the file or the caller's device.
    QIODevice *device = nullptr;
    std::vector<Epoch> epochs;
    std::size_t nextEpoch = 0;
    // A window on the log that the frames of the coming epochs are read from.
    std::vector<uchar> window;
    qint64 windowStart = 0;
    qint64 windowSize = 0;
    UbxLogStatistics counts;
    QVariantMap recordingProperties;
    double rate = 0.0;
    QString error;
    RecordingSample current;
};
