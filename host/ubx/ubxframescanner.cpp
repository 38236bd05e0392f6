#include "ubxframescanner.h"

#include "ubxmessages.h"

#include <QIODevice>

#include <cstring>

namespace {

constexpr std::size_t blockSize = 1 << 20;
// The buffer holds a block and, before it, the start of a frame cut by the block before.
constexpr std::size_t largestFrame = UbxMessages::maxPayload + UbxMessages::frameOverhead;

} // namespace

UbxFrameScanner::UbxFrameScanner(QIODevice *device)
    : device(device)
    , buffer(blockSize + largestFrame)
    , sums(buffer.size() + 1)
    , sumsOfSums(buffer.size() + 1)
{ }

// Whether the frame of @p length payload bytes at @p start carries the
// checksum of its class, id, length and payload. Fletcher's two sums over the
// bytes [first, end) follow from the running sums:
//   a = S(end) - S(first)
//   b = sum of (S(k) - S(first)) for k in (first, end]
//     = T(end + 1) - T(first + 1) - (end - first) S(first)
bool UbxFrameScanner::checksumHolds(std::size_t start, std::size_t length)
{
    const std::size_t first = start + 2;
    const std::size_t end = start + UbxMessages::headerSize + length;
    if (summed < end) {
        uchar sum = sums[summed];
        uchar sumOfSums = sumsOfSums[summed];
        for (; summed < end; ++summed) {
            sumOfSums = uchar(sumOfSums + sum);
            sum = uchar(sum + buffer[summed]);
            sums[summed + 1] = sum;
            sumsOfSums[summed + 1] = sumOfSums;
        }
    }
    const uchar a = uchar(sums[end] - sums[first]);
    const uchar b = uchar(sumsOfSums[end] + sums[end] - sumsOfSums[first] - sums[first]
                          - (end - first) * sums[first]);
    return buffer[end] == a && buffer[end + 1] == b;
}

UbxFrameScanner::Status UbxFrameScanner::next(Frame *frame)
{
    using namespace UbxMessages;
    for (;;) {
        if (!error.isEmpty())
            return Status::Failed;
        if (position == filled) {
            if (atEnd)
                return Status::End;
            refill();
            continue;
        }
        const auto *sync = static_cast<const uchar *>(
            std::memchr(buffer.data() + position, sync1, filled - position));
        if (!sync) {
            position = filled;
            continue;
        }
        position = std::size_t(sync - buffer.data());
        const std::size_t left = filled - position;
        if (left < std::size_t(headerSize) && !atEnd) {
            refill();
            continue;
        }
        if (left < 2 || sync[1] != sync2) {
            ++position;
            continue;
        }
        const std::size_t length =
            left >= std::size_t(headerSize) ? std::size_t(sync[4] | sync[5] << 8) : 0;
        if (left < std::size_t(headerSize) || left < length + frameOverhead) {
            if (!atEnd) {
                refill();
                continue;
            }
            ++cutFrameCount;
            ++position;
            continue;
        }
        if (!checksumHolds(position, length)) {
            ++badChecksumCount;
            ++position;
            continue;
        }
        frame->key = messageKey(sync[2], sync[3]);
        frame->payload = sync + headerSize;
        frame->length = int(length);
        frame->offset = base + qint64(position);
        position += length + frameOverhead;
        ++frameCount;
        frameByteCount += qint64(length + frameOverhead);
        return Status::Frame;
    }
}

// Keeps the bytes from the scan position on, and reads a block after them.
void UbxFrameScanner::refill()
{
    const std::size_t kept = filled - position;
    std::memmove(buffer.data(), buffer.data() + position, kept);
    base += qint64(position);
    position = 0;
    filled = kept;
    summed = 0;
    while (filled < blockSize && !atEnd) {
        const qint64 got = device->read(reinterpret_cast<char *>(buffer.data() + filled),
                                        qint64(blockSize - filled));
        if (got < 0) {
            error = device->errorString();
            return;
        }
        if (got == 0) {
            // A socket may have nothing yet; a file or pipe that gives nothing has ended.
            atEnd = !device->isSequential() || !device->waitForReadyRead(-1);
            continue;
        }
        filled += std::size_t(got);
    }
}

QString UbxFrameScanner::errorString() const
{
    return error;
}

qint64 UbxFrameScanner::bytes() const
{
    return base + qint64(filled);
}

qint64 UbxFrameScanner::frameBytes() const
{
    return frameByteCount;
}

qint64 UbxFrameScanner::frames() const
{
    return frameCount;
}

qint64 UbxFrameScanner::badChecksums() const
{
    return badChecksumCount;
}

qint64 UbxFrameScanner::cutFrames() const
{
    return cutFrameCount;
}
