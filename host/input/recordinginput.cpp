#include "recordinginput.h"

#include "ubxmessages.h"

#include <QFileInfo>

#include <cstring>
#include <vector>

namespace {

constexpr qint64 blockSize = 1 << 16;

// Where the content starts after a byte-order mark and blanks; -1 when
// @p head holds nothing else.
int contentStart(const QByteArray &head)
{
    int start = head.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    while (start < head.size()
           && (head[start] == ' ' || head[start] == '\t' || head[start] == '\r'
               || head[start] == '\n'))
        ++start;
    return start < head.size() ? start : -1;
}

constexpr char ulogMagic[] = {'U', 'L', 'o', 'g', 0x01, 0x12, 0x35};

bool startsUlog(const char *head, qint64 size)
{
    return size >= qint64(sizeof ulogMagic) && std::memcmp(head, ulogMagic, sizeof ulogMagic) == 0;
}

bool startsJsonLines(const QByteArray &head)
{
    const int start = contentStart(head);
    return start >= 0 && head[start] == '{';
}

} // namespace

bool RecordingInput::open(const QString &fileName)
{
    detected = Format::JsonLines;
    active = &jsonLines;
    error.clear();
    copy.reset();
    file.close();
    file.setFileName(fileName);
    // What cannot be opened the JSON Lines reader reports.
    if (QFileInfo(fileName).isDir() || !file.open(QIODevice::ReadOnly))
        return jsonLines.open(fileName);
    if (file.isSequential())
        return open(&file, fileName);
    detected = detect(&file);
    file.close();
    if (detected == Format::Ubx) {
        active = &ubx;
        return ubx.open(fileName);
    }
    if (detected == Format::Ulog) {
        active = &ulog;
        return ulog.open(fileName);
    }
    return jsonLines.open(fileName);
}

bool RecordingInput::open(QIODevice *device, const QString &name)
{
    detected = Format::JsonLines;
    active = &jsonLines;
    error.clear();
    if (!device->isSequential())
        return openSeekable(device, name);
    // The first bytes that are not blanks tell JSON Lines; a pipe may not
    // have delivered them yet.
    QByteArray head = device->peek(blockSize);
    while (contentStart(head) < 0 && head.size() < blockSize && device->waitForReadyRead(-1))
        head = device->peek(blockSize);
    if (startsJsonLines(head))
        return jsonLines.open(device, name);
    copy = std::make_unique<TemporaryCopy>();
    if (!copy->copy(device, name)) {
        error = copy->errorString();
        return false;
    }
    return openSeekable(copy->device(), name);
}

bool RecordingInput::openSeekable(QIODevice *device, const QString &name)
{
    const qint64 start = device->pos();
    detected = detect(device);
    if (!device->seek(start)) {
        error = QStringLiteral("%1: %2").arg(name, device->errorString());
        return false;
    }
    if (detected == Format::Ubx) {
        active = &ubx;
        return ubx.open(device, name);
    }
    if (detected == Format::Ulog) {
        active = &ulog;
        return ulog.open(device, name);
    }
    return jsonLines.open(device, name);
}

RecordingInput::Format RecordingInput::format() const
{
    return detected;
}

const UbxReader &RecordingInput::ubxLog() const
{
    return ubx;
}

const UlogReader &RecordingInput::ulogLog() const
{
    return ulog;
}

void RecordingInput::setUlogFillPolicy(const UlogFillPolicy &policy)
{
    ulog.setFillPolicy(policy);
}

RecordingInput::Format RecordingInput::detect(QIODevice *device)
{
    std::vector<char> block(std::size_t(blockSize) + 1);
    qint64 got = device->read(block.data() + 1, blockSize);
    if (startsUlog(block.data() + 1, got))
        return Format::Ulog;
    if (got <= 0 || startsJsonLines(QByteArray::fromRawData(block.data() + 1, int(got))))
        return Format::JsonLines;
    // Sync bytes may stand across two blocks: the last byte of one is kept
    // before the next.
    char previous = 0;
    while (got > 0) {
        block[0] = previous;
        const char *const end = block.data() + 1 + got;
        for (const char *p = block.data(); p + 1 < end; ++p) {
            p = static_cast<const char *>(
                std::memchr(p, char(UbxMessages::sync1), std::size_t(end - p)));
            if (!p || p + 1 >= end)
                break;
            if (p[1] == char(UbxMessages::sync2))
                return Format::Ubx;
        }
        previous = end[-1];
        got = device->read(block.data() + 1, blockSize);
    }
    return Format::JsonLines;
}

bool RecordingInput::readNext()
{
    return active->readNext();
}

bool RecordingInput::hasBadLine() const
{
    return error.isEmpty() && active->hasBadLine();
}

void RecordingInput::skipBadLine()
{
    active->skipBadLine();
}

bool RecordingInput::hasError() const
{
    return !error.isEmpty() || active->hasError();
}

QString RecordingInput::errorString() const
{
    return error.isEmpty() ? active->errorString() : error;
}

QVariant RecordingInput::property(const QString &key) const
{
    return active->property(key);
}

QVariantMap RecordingInput::properties() const
{
    return active->properties();
}

double RecordingInput::updateRate() const
{
    return active->updateRate();
}

const RecordingSample &RecordingInput::sample() const
{
    return active->sample();
}

qint64 RecordingInput::position() const
{
    return active->position();
}

qint64 RecordingInput::size() const
{
    return active->size();
}

QString RecordingInput::readingNotice() const
{
    return active->readingNotice();
}
