#pragma once

#include <QString>

#include <vector>

class QIODevice;

/**
 * Finds the UBX frames in a byte stream, reading it front to back in large
 * blocks: the sync bytes, class, id, length, payload and a checksum that
 * holds. A frame whose checksum fails, or that runs past the end of the
 * data, is not taken; the scan goes on one byte after its first sync byte.
 * Every byte outside the frames taken (NMEA sentences, RTCM, noise) is
 * passed over and counted.
 *
 * The checksum of a candidate frame is worked out from running sums of the
 * bytes, in constant time whatever its length: a stream crafted to hold a
 * long candidate at every pair of sync bytes is scanned as fast as any other.
 * Memory stays that of one block and one largest frame, whatever the length
 * of the stream.
 */
class UbxFrameScanner
{
public:
    struct Frame
    {
        quint16 key = 0; ///< class and id, see UbxMessages::messageKey()
        const uchar *payload = nullptr;
        int length = 0;
        qint64 offset = 0; ///< of the first sync byte in the stream
    };

    enum class Status { Frame, End, Failed };

    /** Scans @p device, which must be open for reading. */
    explicit UbxFrameScanner(QIODevice *device);

    /** The next frame; its payload stays valid until the next call. */
    Status next(Frame *frame);

    QString errorString() const;

    /** Bytes read so far. */
    qint64 bytes() const;
    /** Bytes inside frames taken so far. */
    qint64 frameBytes() const;
    qint64 frames() const;
    qint64 badChecksums() const;
    /** Frames whose length ran past the end of the data. */
    qint64 cutFrames() const;

private:
    void refill();
    bool checksumHolds(std::size_t start, std::size_t length);

    QIODevice *device;
    std::vector<uchar> buffer;
    // sums[i] is the sum of buffer[0..i), sumsOfSums[i] that of sums[0..i),
    // both modulo 256, for the first summed bytes of the buffer.
    std::vector<uchar> sums;
    std::vector<uchar> sumsOfSums;
    std::size_t summed = 0;
    std::size_t filled = 0;
    std::size_t position = 0;
    // Stream offset of buffer[0].
    qint64 base = 0;
    bool atEnd = false;
    QString error;
    qint64 frameCount = 0;
    qint64 frameByteCount = 0;
    qint64 badChecksumCount = 0;
    qint64 cutFrameCount = 0;
};
