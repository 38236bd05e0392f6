#include "ubxreader.h"

#include "dilutions.h"
#include "ubxframescanner.h"
#include "ubxmessages.h"

#include <QFileInfo>

#include <algorithm>

namespace {

// Frames of the coming epochs are read back through a window of this size:
// a log in order is then read front to back in large blocks.
constexpr qint64 windowCapacity = 1 << 20;

quint16 loadWord(const uchar *bytes)
{
    return quint16(bytes[0] | bytes[1] << 8);
}

bool hasDate(const uchar *date)
{
    return loadWord(date) != 0 && date[2] != 0 && date[3] != 0;
}

QString dateTimeText(int year, int month, int day, int hour, int minute, int second)
{
    return QString::asprintf("%04d-%02d-%02d %02d:%02d:%02d", year, month, day, hour, minute,
                             second);
}

} // namespace

UbxReader::UbxReader() = default;

UbxReader::~UbxReader() = default;

bool UbxReader::open(const QString &name)
{
    file.close();
    fileName = name;
    if (QFileInfo(name).isDir())
        return fail(tr("%1: is a directory, not a recording").arg(name));
    file.setFileName(name);
    // The scanner and the window read in large blocks of their own.
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return fail(tr("%1: cannot be read: %2").arg(name, file.errorString()));
    return open(&file, name);
}

bool UbxReader::open(QIODevice *source, const QString &name)
{
    fileName = name;
    error.clear();
    epochs.clear();
    nextEpoch = 0;
    windowStart = 0;
    windowSize = 0;
    counts = UbxLogStatistics();
    recordingProperties.clear();
    rate = 0.0;
    current = RecordingSample();
    device = source;
    if (source->isSequential())
        return fail(tr("%1: a UBX log is read twice, which a pipe cannot be").arg(name));
    if (source->pos() != 0 && !source->seek(0))
        return fail(tr("%1: cannot be read: %2").arg(name, source->errorString()));
    if (!indexFrames(source))
        return false;
    orderEpochs();
    findProperties();
    return error.isEmpty();
}

bool UbxReader::indexFrames(QIODevice *source)
{
    UbxFrameScanner scanner(source);
    UbxFrameScanner::Frame frame;
    UbxFrameScanner::Status status;
    bool versionSeen = false;
    while ((status = scanner.next(&frame)) == UbxFrameScanner::Status::Frame) {
        ++counts.messages[frame.key];
        Kind kind;
        switch (frame.key) {
        case UbxMessages::navSol:
            kind = Solution;
            break;
        case UbxMessages::navDop:
            kind = Dop;
            break;
        case UbxMessages::navTimeUtc:
            kind = UtcTime;
            break;
        case UbxMessages::navSvInfo:
            kind = SvInfo;
            break;
        case UbxMessages::navPvt:
            kind = Pvt;
            break;
        case UbxMessages::navSat:
            kind = Sat;
            break;
        case UbxMessages::monVer: {
            QString version;
            if (!UbxMessages::readMonVer(frame.payload, frame.length, &version)) {
                ++counts.wrongLengths;
            } else if (!versionSeen) {
                versionSeen = true;
                if (!version.trimmed().isEmpty())
                    recordingProperties.insert(QStringLiteral("FirmwareVersion"),
                                               version.trimmed());
            }
            continue;
        }
        default:
            continue;
        }
        if (!UbxMessages::hasValidLength(frame.key, frame.payload, frame.length)) {
            ++counts.wrongLengths;
            continue;
        }
        if (kind == SvInfo) {
            for (int i = 0; i < frame.payload[4]; ++i)
                counts.gpsSatellites.insert(frame.payload[8 + 12 * i + 1]);
        } else if (kind == Sat) {
            for (int i = 0; i < frame.payload[5]; ++i) {
                const uchar *block = frame.payload + 8 + 12 * i;
                counts.gnssSatellites.insert(quint16(block[0] << 8 | block[1]));
            }
        }
        const quint32 timeOfWeek = UbxMessages::timeOfWeek(frame.payload, frame.length);
        // An epoch's messages mostly come together; one that comes apart
        // makes an entry of its own, merged once the entries are in order.
        if (epochs.empty() || epochs.back().timeOfWeek != timeOfWeek) {
            epochs.emplace_back();
            epochs.back().timeOfWeek = timeOfWeek;
        }
        Epoch &epoch = epochs.back();
        if (epoch.frames[kind] >= 0) {
            ++counts.repeated;
            continue;
        }
        epoch.frames[kind] = frame.offset;
        if ((kind == Pvt && hasDate(frame.payload + 4))
            || (kind == UtcTime && hasDate(frame.payload + 12)))
            epoch.dated |= quint8(1 << kind);
    }
    counts.bytes = scanner.bytes();
    counts.frames = scanner.frames();
    counts.frameBytes = scanner.frameBytes();
    counts.badChecksums = scanner.badChecksums();
    counts.cutFrames = scanner.cutFrames();
    if (status == UbxFrameScanner::Status::Failed)
        return fail(tr("%1: cannot be read: %2").arg(fileName, scanner.errorString()));
    if (counts.frames == 0)
        return fail(tr("%1: holds no UBX frame with a good checksum").arg(fileName));
    return true;
}

// Sorts the entries by time of week, keeping the log's order among equal
// ones, and merges those of one epoch: the first frame of each kind counts.
void UbxReader::orderEpochs()
{
    const auto earlier = [](const Epoch &a, const Epoch &b) { return a.timeOfWeek < b.timeOfWeek; };
    if (!std::is_sorted(epochs.begin(), epochs.end(), earlier))
        std::stable_sort(epochs.begin(), epochs.end(), earlier);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < epochs.size(); ++i) {
        if (kept > 0 && epochs[kept - 1].timeOfWeek == epochs[i].timeOfWeek) {
            Epoch &epoch = epochs[kept - 1];
            for (int kind = 0; kind < kindCount; ++kind) {
                if (epochs[i].frames[kind] < 0)
                    continue;
                if (epoch.frames[kind] >= 0) {
                    ++counts.repeated;
                    continue;
                }
                epoch.frames[kind] = epochs[i].frames[kind];
                epoch.dated |= quint8(epochs[i].dated & (1 << kind));
            }
        } else {
            epochs[kept++] = epochs[i];
        }
    }
    epochs.resize(kept);
    epochs.shrink_to_fit();
    counts.epochs = qint64(epochs.size());
    if (!epochs.empty()) {
        counts.firstTimeOfWeek = epochs.front().timeOfWeek;
        counts.lastTimeOfWeek = epochs.back().timeOfWeek;
    }
}

void UbxReader::findProperties()
{
    // The start: the date and time of the first epoch that has one. An
    // epoch at time of week 0 holds no data.
    QString start = QStringLiteral("0");
    for (const Epoch &epoch : epochs) {
        if (epoch.timeOfWeek == 0 || epoch.dated == 0)
            continue;
        const Kind kind = (epoch.dated & (1 << Pvt)) ? Pvt : UtcTime;
        int length = 0;
        const uchar *frame =
            frameAt(epoch.frames[kind], kind == Pvt ? UbxMessages::navPvt : UbxMessages::navTimeUtc,
                    &length);
        if (!frame)
            return;
        const uchar *date = frame + UbxMessages::headerSize + (kind == Pvt ? 4 : 12);
        start = dateTimeText(loadWord(date), date[2], date[3], date[4], date[5], date[6]);
        break;
    }
    recordingProperties.insert(QStringLiteral("StartTime"), start);

    // The rate: from the median step between epochs, which gaps and
    // stray epochs do not move.
    if (epochs.size() < 2)
        return;
    std::vector<quint32> steps(epochs.size() - 1);
    for (std::size_t i = 1; i < epochs.size(); ++i)
        steps[i - 1] = epochs[i].timeOfWeek - epochs[i - 1].timeOfWeek;
    const std::size_t middle = steps.size() / 2;
    std::nth_element(steps.begin(), steps.begin() + std::ptrdiff_t(middle), steps.end());
    if (steps.size() % 2 == 1) {
        rate = 1000.0 / steps[middle];
    } else {
        const quint32 below =
            *std::max_element(steps.begin(), steps.begin() + std::ptrdiff_t(middle));
        rate = 2000.0 / (double(below) + double(steps[middle]));
    }
}

// The whole frame of message @p key that starts at @p offset, as the first
// pass found it; null after failing when the log no longer holds it.
const uchar *UbxReader::frameAt(qint64 offset, quint16 key, int *length)
{
    const auto inWindow = [&](qint64 size) {
        return offset >= windowStart && offset + size <= windowStart + windowSize;
    };
    const auto frameSize = [&] {
        const uchar *frame = window.data() + (offset - windowStart);
        return qint64(loadWord(frame + 4)) + UbxMessages::frameOverhead;
    };
    if (!inWindow(UbxMessages::headerSize) || !inWindow(frameSize())) {
        window.resize(std::size_t(windowCapacity));
        windowStart = offset;
        windowSize = 0;
        if (!device->seek(offset)) {
            fail(tr("%1: cannot be read: %2").arg(fileName, device->errorString()));
            return nullptr;
        }
        while (windowSize < windowCapacity) {
            const qint64 got = device->read(reinterpret_cast<char *>(window.data() + windowSize),
                                            windowCapacity - windowSize);
            if (got < 0) {
                fail(tr("%1: cannot be read: %2").arg(fileName, device->errorString()));
                return nullptr;
            }
            if (got == 0)
                break;
            windowSize += got;
        }
    }
    const uchar *frame = window.data() + (offset - windowStart);
    if (!inWindow(UbxMessages::headerSize) || !inWindow(frameSize())
        || frame[0] != UbxMessages::sync1 || frame[1] != UbxMessages::sync2
        || UbxMessages::messageKey(frame[2], frame[3]) != key) {
        fail(tr("%1: the log changed while it was read").arg(fileName));
        return nullptr;
    }
    *length = loadWord(frame + 4);
    const quint16 sum = UbxMessages::checksum(frame + 2, std::size_t(*length) + 4);
    if (frame[UbxMessages::headerSize + *length] != (sum & 0xFF)
        || frame[UbxMessages::headerSize + *length + 1] != (sum >> 8)) {
        fail(tr("%1: the log changed while it was read").arg(fileName));
        return nullptr;
    }
    return frame;
}

bool UbxReader::readNext()
{
    if (!error.isEmpty() || nextEpoch >= epochs.size())
        return false;
    const Epoch &epoch = epochs[nextEpoch];
    current.packetCounter = quint16(nextEpoch);
    current.gpsSolution = KvGpsSolution();
    current.gpsDop = KvGpsDop();
    current.gpsUtcTime = KvGpsUtcTime();
    current.gpsSatellites = KvGpsSatelliteInfo();
    current.gnssPvt = KvGnssPvt();
    current.gnssSatellites = KvGnssSatelliteInfo();
    // An epoch at time of week 0 holds no data, as a record with iTOW 0 does.
    if (epoch.timeOfWeek != 0) {
        static constexpr quint16 keys[kindCount] = {UbxMessages::navSol,     UbxMessages::navDop,
                                                    UbxMessages::navTimeUtc, UbxMessages::navSvInfo,
                                                    UbxMessages::navPvt,     UbxMessages::navSat};
        for (int kind = 0; kind < kindCount; ++kind) {
            if (epoch.frames[kind] < 0)
                continue;
            int length = 0;
            const uchar *frame = frameAt(epoch.frames[kind], keys[kind], &length);
            if (!frame)
                return false;
            const uchar *payload = frame + UbxMessages::headerSize;
            switch (Kind(kind)) {
            case Solution:
                UbxMessages::readNavSol(payload, length, current.gpsSolution);
                break;
            case Dop:
                UbxMessages::readNavDop(payload, length, current.gpsDop);
                break;
            case UtcTime:
                UbxMessages::readNavTimeUtc(payload, length, current.gpsUtcTime);
                break;
            case SvInfo:
                UbxMessages::readNavSvInfo(payload, length, current.gpsSatellites);
                break;
            case Pvt:
                UbxMessages::readNavPvt(payload, length, current.gnssPvt);
                break;
            case Sat:
                UbxMessages::readNavSat(payload, length, current.gnssSatellites);
                break;
            case kindCount:
                break;
            }
        }
        // NAV-PVT's dilutions are those of the epoch's NAV-DOP.
        if (epoch.frames[Pvt] >= 0)
            copyDilutions(current.gpsDop, current.gnssPvt);
    }
    ++nextEpoch;
    return true;
}

bool UbxReader::hasError() const
{
    return !error.isEmpty();
}

QString UbxReader::errorString() const
{
    return error;
}

QVariant UbxReader::property(const QString &key) const
{
    return recordingProperties.value(key);
}

QVariantMap UbxReader::properties() const
{
    return recordingProperties;
}

double UbxReader::updateRate() const
{
    return rate;
}

const RecordingSample &UbxReader::sample() const
{
    return current;
}

qint64 UbxReader::position() const
{
    if (epochs.empty())
        return counts.bytes;
    return qint64(double(counts.bytes) * double(nextEpoch) / double(epochs.size()));
}

qint64 UbxReader::size() const
{
    return counts.bytes;
}

QString UbxReader::readingNotice() const
{
    if (counts.skippedBytes() == 0)
        return QString();
    return tr("%1: skipped %2 of %3 bytes outside good UBX frames (%4 frames with a bad checksum, "
              "%5 cut short "
              "at the end)")
        .arg(fileName)
        .arg(counts.skippedBytes())
        .arg(counts.bytes)
        .arg(counts.badChecksums)
        .arg(counts.cutFrames);
}

const UbxLogStatistics &UbxReader::statistics() const
{
    return counts;
}

bool UbxReader::fail(const QString &what)
{
    error = what;
    return false;
}
