#include "recordinginput.h"

#include "ubxmessages.h"

#include <QFileInfo>

namespace {

// True when the first character after a byte-order mark and blanks is "{".
bool startsJsonLines(const QByteArray &head)
{
    int start = head.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    while (start < head.size()
           && (head[start] == ' ' || head[start] == '\t' || head[start] == '\r'
               || head[start] == '\n'))
        ++start;
    return start < head.size() && head[start] == '{';
}

} // namespace

bool RecordingInput::open(const QString &fileName)
{
    detected = Format::JsonLines;
    active = &jsonLines;
    file.close();
    file.setFileName(fileName);
    // What cannot be opened the JSON Lines reader reports as it always has.
    if (QFileInfo(fileName).isDir() || !file.open(QIODevice::ReadOnly))
        return jsonLines.open(fileName);
    // Pipes and devices are read once only: their first bytes are peeked at.
    if (file.isSequential())
        return open(&file, fileName);
    detected = detect(file.read(headSize));
    file.close();
    if (detected == Format::Ubx) {
        active = &ubx;
        return ubx.open(fileName);
    }
    return jsonLines.open(fileName);
}

bool RecordingInput::open(QIODevice *device, const QString &name)
{
    // A pipe may not have delivered enough to tell yet.
    QByteArray head = device->peek(headSize);
    while (head.size() < headSize && !startsJsonLines(head) && detect(head) == Format::JsonLines
           && device->waitForReadyRead(-1))
        head = device->peek(headSize);
    detected = detect(head);
    if (detected == Format::Ubx) {
        active = &ubx;
        return ubx.open(device, name);
    }
    active = &jsonLines;
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

RecordingInput::Format RecordingInput::detect(const QByteArray &head)
{
    if (startsJsonLines(head))
        return Format::JsonLines;
    const char sync[] = {char(UbxMessages::sync1), char(UbxMessages::sync2)};
    return head.contains(QByteArray::fromRawData(sync, 2)) ? Format::Ubx : Format::JsonLines;
}

bool RecordingInput::readNext()
{
    return active->readNext();
}

bool RecordingInput::hasBadLine() const
{
    return active->hasBadLine();
}

void RecordingInput::skipBadLine()
{
    active->skipBadLine();
}

bool RecordingInput::hasError() const
{
    return active->hasError();
}

QString RecordingInput::errorString() const
{
    return active->errorString();
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
