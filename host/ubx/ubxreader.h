#pragma once

#include "recordingfilereader.h"
#include "ubxframescanner.h"
#include "ubxlogstatistics.h"
#include "ubxmessages.h"

#include <QCoreApplication>
#include <QString>

#include <deque>
#include <optional>
#include <vector>

class UbxTimeline;

/**
 * Reads a u-blox UBX receiver log as a recording: one sample per navigation
 * epoch, with the receiver records of the epoch's NAV-SOL, NAV-DOP,
 * NAV-TIMEUTC, NAV-SVINFO, NAV-PVT and NAV-SAT messages and a packet counter.
 *
 * An epoch's time is its GPS week and time of week (see UbxTimeline), so a
 * log may cross the end of a week or hold several weeks; a week shown by one
 * of an epoch's messages is the week of those that came before it in the
 * epoch too, as where two logs are joined. Messages are
 * grouped into epochs by that time, the first message of each kind
 * counting, and the epochs come out in ascending time even when the log
 * holds them out of order. An epoch at time of week 0 comes out without
 * data, as a record with iTOW 0 holds none.
 *
 * A first pass over the log finds the frames and keeps, per epoch, only its
 * time and where its messages start (an entry of 48 bytes); each readNext()
 * then reads that epoch's frames back. Memory thus grows with the number of
 * epochs, but not with the size of the log. The log must be one that can be
 * read twice: a file, or a copy of a pipe.
 *
 * Properties: "StartTime" from the first epoch in time whose NAV-PVT or
 * NAV-TIMEUTC date is valid by its flags ("0", the host's mark of an unknown
 * start, without one), "FirmwareVersion" from MON-VER when the log holds
 * one; the update rate follows from the median step between epochs.
 */
class UbxReader : public RecordingFileReader
{
    Q_DECLARE_TR_FUNCTIONS(UbxReader)

public:
    UbxReader();
    ~UbxReader() override;

    using RecordingFileReader::open;
    /** Finds the epochs of the log in @p device, which must also be able to seek. */
    bool open(QIODevice *device, const QString &name) override;

    bool readNext() override;
    qint64 position() const override;
    qint64 size() const override;
    /** Says what the reading passed over, by reason, when it passed over anything. */
    QString readingNotice() const override;

    const UbxLogStatistics &statistics() const;

protected:
    void reset(const QString &name) override;

private:
    // An epoch keeps one frame of each kind of its records.
    static constexpr int kindCount = UbxMessages::epochRecordKinds;

    // An epoch as the first pass finds it. Frame offsets take 48 bits, as
    // many as a log can need, so that a million epochs fit in 48 MB.
    struct Epoch
    {
        // GPS time, ms from the start of week 0.
        qint64 time = 0;
        // Where the frame of each kind starts in the log, plus 1; 0 for none.
        quint32 startLow[kindCount] = {};
        quint16 startHigh[kindCount] = {};
        // Which frames carry a valid date (bit per kind), weekShown and
        // atTimeOfWeekZero.
        quint8 marks = 0;

        // One of its messages showed the week.
        static constexpr quint8 weekShown = 0x40;
        static constexpr quint8 atTimeOfWeekZero = 0x80;

        bool hasFrame(int kind) const { return startLow[kind] != 0 || startHigh[kind] != 0; }
        qint64 frame(int kind) const
        {
            return (qint64(startHigh[kind]) << 32 | startLow[kind]) - 1;
        }
        void setFrame(int kind, qint64 offset)
        {
            startLow[kind] = quint32(offset + 1);
            startHigh[kind] = quint16((offset + 1) >> 32);
        }
        qint64 firstFrame() const;
    };

    bool indexFrames(QIODevice *source);
    void takeFirmwareVersion(const uchar *payload, int length, bool *versionSeen);
    void countSatellites(UbxMessages::MessageKind kind, const uchar *payload);
    void placeFrame(UbxMessages::MessageKind kind, const UbxFrameScanner::Frame &frame,
                    UbxTimeline &timeline);
    qint64 timeOf(quint32 timeOfWeek, std::optional<qint32> week, UbxTimeline &timeline);
    Epoch &entryAt(qint64 time, quint32 timeOfWeek);
    void orderEpochs();
    void findProperties();
    bool load(qint64 offset, qint64 size);
    const uchar *frameAt(qint64 offset, quint16 key, int *length);
    bool fail(const QString &what);

    // The log as read the second time: the file or the caller's device.
    QIODevice *device = nullptr;
    std::deque<Epoch> epochs;
    std::size_t nextEpoch = 0;
    // A window on the log that the frames of the coming epochs are read from;
    // it reads further ahead while the frames taken fill much of it.
    std::vector<uchar> window;
    qint64 windowStart = 0;
    qint64 windowSize = 0;
    qint64 windowUsed = 0;
    qint64 readAhead = 0;
    UbxLogStatistics counts;
};
