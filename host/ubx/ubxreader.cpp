#include "ubxreader.h"

#include "dilutions.h"
#include "systemreason.h"
#include "ubxframescanner.h"
#include "ubxmessages.h"
#include "ubxtimeline.h"

#include <algorithm>
#include <cerrno>
#include <optional>

#include <unistd.h>

namespace {

// The coming epochs' frames are read through a window that doubles while
// the frames taken from it fill a good part of it, and halves when they do
// not: a log in order, or with its epochs shuffled within stretches of it,
// is read in large blocks, one whose epochs stand far apart in small ones.
constexpr qint64 smallestReadAhead = 2 << 10;
constexpr qint64 largestReadAhead = 1 << 20;

// A frame offset must fit the 48 bits an epoch keeps of it, less the 1 added.
constexpr qint64 offsetLimit = (qint64(1) << 48) - 1;

quint16 loadWord(const uchar *bytes)
{
    return quint16(bytes[0] | bytes[1] << 8);
}

// Where the date starts in a payload (year, month, day, hour, minute,
// second), and the flag in the validity byte after it that makes it valid:
// NAV-PVT's validDate and validTime; NAV-TIMEUTC's validUTC.
constexpr int pvtDate = 4;
constexpr quint8 pvtValidDate = 0x03;
constexpr int timeUtcDate = 12;
constexpr quint8 timeUtcValidDate = 0x04;
constexpr int dateValidity = 7;

bool isValidDate(const uchar *date, quint8 flags)
{
    return (date[dateValidity] & flags) == flags && loadWord(date) != 0 && date[2] >= 1
        && date[2] <= 12 && date[3] >= 1 && date[3] <= 31 && date[4] < 24 && date[5] < 60
        && date[6] <= 60;
}

// The date of a NAV-PVT or NAV-TIMEUTC payload when its flags make it
// valid; null otherwise.
const uchar *validDate(UbxMessages::MessageKind kind, const uchar *payload)
{
    if (kind == UbxMessages::Pvt)
        return isValidDate(payload + pvtDate, pvtValidDate) ? payload + pvtDate : nullptr;
    if (kind == UbxMessages::UtcTime)
        return isValidDate(payload + timeUtcDate, timeUtcValidDate) ? payload + timeUtcDate
                                                                    : nullptr;
    return nullptr;
}

// The GPS week that a message shows: NAV-SOL's own, or that of a valid
// @p date at @p timeOfWeek; none for any other.
std::optional<qint32> shownWeek(UbxMessages::MessageKind kind, const uchar *payload,
                                const uchar *date, quint32 timeOfWeek)
{
    if (kind == UbxMessages::Solution)
        return qint16(loadWord(payload + 8));
    if (date)
        return UbxTimeline::weekOfDate(loadWord(date), date[2], date[3], date[4], date[5], date[6],
                                       timeOfWeek);
    return std::nullopt;
}

QString dateTimeText(const uchar *date)
{
    return QString::asprintf("%04d-%02d-%02d %02d:%02d:%02d", loadWord(date), date[2], date[3],
                             date[4], date[5], date[6]);
}

} // namespace

qint64 UbxReader::Epoch::firstFrame() const
{
    qint64 first = offsetLimit;
    for (int kind = 0; kind < kindCount; ++kind) {
        if (hasFrame(kind))
            first = std::min(first, frame(kind));
    }
    return first;
}

UbxReader::UbxReader() = default;

UbxReader::~UbxReader() = default;

bool UbxReader::open(QIODevice *source, const QString &name)
{
    reset(name);
    device = source;
    if (source->isSequential())
        return fail(tr("%1: a UBX log is read twice, which a pipe cannot be").arg(name));
    if (source->pos() != 0 && !source->seek(0))
        return failToRead(source->errorString());
    if (!indexFrames(source))
        return false;
    orderEpochs();
    findProperties();
    return error.isEmpty();
}

void UbxReader::reset(const QString &name)
{
    RecordingFileReader::reset(name);
    device = nullptr;
    epochs.clear();
    nextEpoch = 0;
    windowStart = 0;
    windowSize = 0;
    windowUsed = 0;
    readAhead = 0;
    counts = UbxLogStatistics();
}

bool UbxReader::indexFrames(QIODevice *source)
{
    UbxFrameScanner scanner(source);
    UbxFrameScanner::Frame frame;
    UbxFrameScanner::Status status;
    UbxTimeline timeline;
    bool versionSeen = false;
    while ((status = scanner.next(&frame)) == UbxFrameScanner::Status::Frame) {
        ++counts.messages[frame.key];
        const UbxMessages::MessageRead *message = UbxMessages::messageRead(frame.key);
        if (!message)
            continue;
        if (message->kind == UbxMessages::FirmwareVersion) {
            takeFirmwareVersion(frame.payload, frame.length, &versionSeen);
            continue;
        }
        if (!UbxMessages::hasValidLength(frame.key, frame.payload, frame.length)) {
            ++counts.wrongLengths;
            continue;
        }
        if (frame.offset >= offsetLimit)
            return fail(tr("%1: is too large to be read as a UBX log").arg(fileName));
        countSatellites(message->kind, frame.payload);
        placeFrame(message->kind, frame, timeline);
    }
    counts.bytes = scanner.bytes();
    counts.frames = scanner.frames();
    counts.frameBytes = scanner.frameBytes();
    counts.badChecksums = scanner.badChecksums();
    counts.cutFrames = scanner.cutFrames();
    counts.weekKnown = timeline.knowsWeek();
    if (status == UbxFrameScanner::Status::Failed)
        return failToRead(scanner.errorString());
    if (counts.frames == 0)
        return fail(tr("%1: holds no UBX frame with a good checksum").arg(fileName));
    return true;
}

// The software version of the first MON-VER is the firmware version.
void UbxReader::takeFirmwareVersion(const uchar *payload, int length, bool *versionSeen)
{
    QString version;
    if (!UbxMessages::readMonVer(payload, length, &version)) {
        ++counts.wrongLengths;
    } else if (!*versionSeen) {
        *versionSeen = true;
        if (!version.trimmed().isEmpty())
            recordingProperties.insert(QStringLiteral("FirmwareVersion"), version.trimmed());
    }
}

// The satellites that NAV-SVINFO and NAV-SAT name, for the statistics.
void UbxReader::countSatellites(UbxMessages::MessageKind kind, const uchar *payload)
{
    if (kind == UbxMessages::SvInfo) {
        for (int i = 0; i < payload[4]; ++i)
            counts.gpsSatellites.insert(payload[8 + 12 * i + 1]);
    } else if (kind == UbxMessages::Sat) {
        for (int i = 0; i < payload[5]; ++i) {
            const uchar *block = payload + 8 + 12 * i;
            counts.gnssSatellites.insert(quint16(block[0] << 8 | block[1]));
        }
    }
}

// Keeps where the frame of a navigation message starts, in the entry of its
// epoch; the first frame of a kind in an epoch counts.
void UbxReader::placeFrame(UbxMessages::MessageKind kind, const UbxFrameScanner::Frame &frame,
                           UbxTimeline &timeline)
{
    const quint32 timeOfWeek = UbxMessages::timeOfWeek(frame.payload, frame.length);
    const uchar *date = validDate(kind, frame.payload);
    const std::optional<qint32> week = shownWeek(kind, frame.payload, date, timeOfWeek);
    Epoch &epoch = entryAt(timeOf(timeOfWeek, week, timeline), timeOfWeek);
    if (week)
        epoch.marks |= Epoch::weekShown;
    if (epoch.hasFrame(kind)) {
        ++counts.repeated;
        return;
    }
    epoch.setFrame(kind, frame.offset);
    if (date)
        epoch.marks |= quint8(1 << kind);
}

// The GPS time of a message at @p timeOfWeek; the @p week it shows may move
// the entries before it into their week.
qint64 UbxReader::timeOf(quint32 timeOfWeek, std::optional<qint32> week, UbxTimeline &timeline)
{
    qint64 shift = 0;
    const qint64 time = timeline.place(timeOfWeek, week, &shift);
    // The first week shown tells the week of every message before it.
    if (shift != 0) {
        for (Epoch &epoch : epochs)
            epoch.time += shift;
    }
    // So does a week shown among an epoch's messages for those of them
    // before it, which carried a week the log had not shown for them:
    // the week of the log before, where two logs are joined.
    if (week && !epochs.empty() && !(epochs.back().marks & Epoch::weekShown)
        && epochs.back().time != time && (time - epochs.back().time) % UbxTimeline::msPerWeek == 0)
        epochs.back().time = time;
    return time;
}

// The entry of the epoch at @p time. An epoch's messages mostly come
// together; one that comes apart makes an entry of its own, merged once the
// entries are in order.
UbxReader::Epoch &UbxReader::entryAt(qint64 time, quint32 timeOfWeek)
{
    if (epochs.empty() || epochs.back().time != time) {
        epochs.emplace_back();
        epochs.back().time = time;
        if (timeOfWeek == 0)
            epochs.back().marks |= Epoch::atTimeOfWeekZero;
    }
    return epochs.back();
}

// Sorts the entries by time, keeping the log's order among equal ones, and
// merges those of one epoch: the first frame of each kind counts.
void UbxReader::orderEpochs()
{
    const auto earlier = [](const Epoch &a, const Epoch &b) {
        return a.time != b.time ? a.time < b.time : a.firstFrame() < b.firstFrame();
    };
    if (!std::is_sorted(epochs.begin(), epochs.end(), earlier))
        std::sort(epochs.begin(), epochs.end(), earlier);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < epochs.size(); ++i) {
        if (kept > 0 && epochs[kept - 1].time == epochs[i].time) {
            Epoch &epoch = epochs[kept - 1];
            for (int kind = 0; kind < kindCount; ++kind) {
                if (!epochs[i].hasFrame(kind))
                    continue;
                if (epoch.hasFrame(kind)) {
                    ++counts.repeated;
                    continue;
                }
                epoch.setFrame(kind, epochs[i].frame(kind));
                epoch.marks |= quint8(epochs[i].marks & (1 << kind));
            }
        } else {
            epochs[kept++] = epochs[i];
        }
    }
    epochs.resize(kept);
    epochs.shrink_to_fit();
    counts.epochs = qint64(epochs.size());
    for (const Epoch &epoch : epochs) {
        if (!(epoch.marks & Epoch::atTimeOfWeekZero))
            continue;
        for (int kind = 0; kind < kindCount; ++kind)
            counts.atTimeOfWeekZero += epoch.hasFrame(kind) ? 1 : 0;
    }
    if (!epochs.empty()) {
        counts.firstTime = epochs.front().time;
        counts.lastTime = epochs.back().time;
    }
}

void UbxReader::findProperties()
{
    // The start: the date and time of the first epoch that has a valid one.
    // An epoch at time of week 0 holds no data.
    QString start = QStringLiteral("0");
    for (const Epoch &epoch : epochs) {
        if (epoch.marks & Epoch::atTimeOfWeekZero
            || !(epoch.marks & (1 << UbxMessages::Pvt | 1 << UbxMessages::UtcTime)))
            continue;
        const UbxMessages::MessageKind kind =
            (epoch.marks & (1 << UbxMessages::Pvt)) ? UbxMessages::Pvt : UbxMessages::UtcTime;
        int length = 0;
        const uchar *frame = frameAt(epoch.frame(kind), UbxMessages::keyOf(kind), &length);
        if (!frame)
            return;
        start = dateTimeText(frame + UbxMessages::headerSize
                             + (kind == UbxMessages::Pvt ? pvtDate : timeUtcDate));
        break;
    }
    recordingProperties.insert(QStringLiteral("StartTime"), start);

    // The rate: from the median step between epochs, which gaps and
    // stray epochs do not move.
    if (epochs.size() < 2)
        return;
    std::vector<quint32> steps(epochs.size() - 1);
    for (std::size_t i = 1; i < epochs.size(); ++i)
        steps[i - 1] = quint32(std::min<qint64>(epochs[i].time - epochs[i - 1].time, 0xFFFFFFFF));
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

// Makes the window hold the @p size bytes from @p offset on; false after
// failing when the log no longer holds them.
bool UbxReader::load(qint64 offset, qint64 size)
{
    const qint64 windowEnd = windowStart + windowSize;
    if (offset >= windowStart && offset + size <= windowEnd)
        return true;
    const bool onward = windowSize > 0 && offset >= windowStart && offset <= windowEnd;
    const bool used = windowUsed * 4 >= windowSize;
    readAhead = used ? std::min(2 * readAhead, largestReadAhead)
                     : std::max(readAhead / 2, smallestReadAhead);
    // A short jump asks for a window that would have held both ends of it.
    const qint64 jump = std::abs(offset - windowStart);
    if (!onward && jump <= largestReadAhead / 4)
        readAhead = std::max(readAhead, 4 * jump);
    windowUsed = 0;
    // After a jump, a large window reaches back as far as ahead: the epochs
    // around this one may come next.
    const qint64 start = onward || readAhead == smallestReadAhead
        ? offset
        : std::max<qint64>(0, offset - readAhead / 2);
    const qint64 wanted = std::max(size + offset - start, readAhead);
    if (qint64(window.size()) < wanted)
        window.resize(std::size_t(wanted));
    windowStart = start;
    windowSize = 0;
    // A file is read where it stands, in one call each: a log out of order
    // asks for many small reads.
    const auto *fileDevice = qobject_cast<const QFileDevice *>(device);
    const int handle = fileDevice ? fileDevice->handle() : -1;
    if (handle < 0 && !device->seek(start))
        return failToRead(device->errorString());
    while (windowSize < wanted) {
        auto *into = reinterpret_cast<char *>(window.data() + windowSize);
        const qint64 got = handle >= 0
            ? ::pread(handle, into, std::size_t(wanted - windowSize), start + windowSize)
            : device->read(into, wanted - windowSize);
        if (got < 0 && handle >= 0 && errno == EINTR)
            continue;
        if (got < 0) {
            return failToRead(handle >= 0 ? systemReason(errno) : device->errorString());
        }
        if (got == 0)
            break;
        windowSize += got;
    }
    if (windowSize < size + offset - start)
        return fail(tr("%1: the log changed while it was read").arg(fileName));
    return true;
}

// The whole frame of message @p key that starts at @p offset, as the first
// pass found it; null after failing when the log no longer holds it.
const uchar *UbxReader::frameAt(qint64 offset, quint16 key, int *length)
{
    if (!load(offset, UbxMessages::headerSize))
        return nullptr;
    *length = loadWord(window.data() + (offset - windowStart) + 4);
    if (!load(offset, qint64(*length) + UbxMessages::frameOverhead))
        return nullptr;
    const uchar *frame = window.data() + (offset - windowStart);
    const quint16 sum = UbxMessages::checksum(frame + 2, std::size_t(*length) + 4);
    if (frame[0] != UbxMessages::sync1 || frame[1] != UbxMessages::sync2
        || UbxMessages::messageKey(frame[2], frame[3]) != key
        || frame[UbxMessages::headerSize + *length] != (sum & 0xFF)
        || frame[UbxMessages::headerSize + *length + 1] != (sum >> 8)) {
        fail(tr("%1: the log changed while it was read").arg(fileName));
        return nullptr;
    }
    windowUsed += qint64(*length) + UbxMessages::frameOverhead;
    return frame;
}

bool UbxReader::readNext()
{
    if (!error.isEmpty() || nextEpoch >= epochs.size())
        return false;
    const Epoch &epoch = epochs[nextEpoch];
    current.packetCounter = quint16(nextEpoch);
    current.hasPacketCounter = true;
    current.gpsSolution = KvGpsSolution();
    current.gpsDop = KvGpsDop();
    current.gpsUtcTime = KvGpsUtcTime();
    current.gpsSatellites = KvGpsSatelliteInfo();
    current.gnssPvt = KvGnssPvt();
    current.gnssSatellites = KvGnssSatelliteInfo();
    // An epoch at time of week 0 holds no data, as a record with iTOW 0 does.
    if (!(epoch.marks & Epoch::atTimeOfWeekZero)) {
        // The epoch's frames mostly stand together: one read brings them all.
        qint64 first = offsetLimit;
        qint64 last = 0;
        for (int kind = 0; kind < kindCount; ++kind) {
            if (epoch.hasFrame(kind)) {
                first = std::min(first, epoch.frame(kind));
                last = std::max(last, epoch.frame(kind));
            }
        }
        if (!load(first, last - first + UbxMessages::headerSize))
            return false;
        for (int kind = 0; kind < kindCount; ++kind) {
            if (!epoch.hasFrame(kind))
                continue;
            int length = 0;
            const auto recordKind = UbxMessages::MessageKind(kind);
            const uchar *frame =
                frameAt(epoch.frame(kind), UbxMessages::keyOf(recordKind), &length);
            if (!frame)
                return false;
            const uchar *payload = frame + UbxMessages::headerSize;
            switch (recordKind) {
            case UbxMessages::Solution:
                UbxMessages::readNavSol(payload, length, current.gpsSolution);
                break;
            case UbxMessages::Dop:
                UbxMessages::readNavDop(payload, length, current.gpsDop);
                break;
            case UbxMessages::UtcTime:
                UbxMessages::readNavTimeUtc(payload, length, current.gpsUtcTime);
                break;
            case UbxMessages::SvInfo:
                UbxMessages::readNavSvInfo(payload, length, current.gpsSatellites);
                break;
            case UbxMessages::Pvt:
                UbxMessages::readNavPvt(payload, length, current.gnssPvt);
                break;
            case UbxMessages::Sat:
                UbxMessages::readNavSat(payload, length, current.gnssSatellites);
                break;
            case UbxMessages::FirmwareVersion:
                break;
            }
        }
        // NAV-PVT's dilutions are those of the epoch's NAV-DOP.
        if (epoch.hasFrame(UbxMessages::Pvt))
            copyDilutions(current.gpsDop, current.gnssPvt);
    }
    ++nextEpoch;
    return true;
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
    QStringList passedOver;
    if (counts.skippedBytes() > 0) {
        passedOver.append(tr("%1 of %2 bytes outside good UBX frames (frames with a bad checksum: "
                             "%3, cut short at the end: %4)")
                              .arg(counts.skippedBytes())
                              .arg(counts.bytes)
                              .arg(counts.badChecksums)
                              .arg(counts.cutFrames));
    }
    if (counts.wrongLengths > 0)
        passedOver.append(tr("messages of a wrong length: %1").arg(counts.wrongLengths));
    if (counts.repeated > 0)
        passedOver.append(tr("repeated messages: %1").arg(counts.repeated));
    if (counts.atTimeOfWeekZero > 0)
        passedOver.append(
            tr("messages at time of week 0, which hold no data: %1").arg(counts.atTimeOfWeekZero));
    if (passedOver.isEmpty())
        return QString();
    return tr("%1: passed over: %2").arg(fileName, passedOver.join(QStringLiteral("; ")));
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
