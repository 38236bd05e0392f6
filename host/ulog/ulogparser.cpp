#include "ulogparser.h"

#include <QFileDevice>
#include <QIODevice>

#include <algorithm>
#include <cstring>
#include <limits>

#include <unistd.h>

namespace {

constexpr char magic[7] = {'U', 'L', 'o', 'g', 0x01, 0x12, 0x35};
constexpr int fileHeaderSize = 16;
constexpr int messageHeaderSize = 3;
constexpr char syncMagic[8] = {0x2F, 0x73, 0x13, 0x20, 0x25, 0x0C, char(0xBB), 0x12};
// Bytes read at a time; a message takes at most 3 + 65535.
constexpr std::size_t blockSize = 1 << 20;
// The one incompatible flag this parser knows: data appended at the offsets.
constexpr quint8 dataAppended = 0x01;

template <typename T>
T load(const char *at)
{
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

bool isLetter(char type)
{
    return (type >= 'A' && type <= 'Z') || (type >= 'a' && type <= 'z');
}

std::string_view upToNul(std::string_view text)
{
    return text.substr(0, text.find('\0'));
}

QString typeText(char type)
{
    return isLetter(type) ? QStringLiteral("'%1'").arg(QLatin1Char(type))
                          : QStringLiteral("0x%1").arg(quint8(type), 2, 16, QLatin1Char('0'));
}

} // namespace

QString UlogDamage::text() const
{
    QString result = QStringLiteral("byte %1: %2").arg(offset).arg(what);
    if (resumedAt >= 0)
        result += QStringLiteral("; read on at byte %1").arg(resumedAt);
    return result;
}

UlogParser::UlogParser(QIODevice *device)
    : device(device)
    , buffer(blockSize)
{ }

const UlogParser::Subscription *UlogParser::subscription(quint16 msgId) const
{
    if (msgId >= subscriptions.size() || subscriptions[msgId].topic.empty())
        return nullptr;
    return &subscriptions[msgId];
}

quint64 UlogParser::timestamp() const
{
    return body.size() >= sizeof(quint64) ? load<quint64>(body.data()) : 0;
}

UlogParser::Message UlogParser::next()
{
    if (!headerRead) {
        if (!readHeader())
            return Message::Failed;
    }
    if (!error.isEmpty())
        return Message::Failed;
    while (!ended) {
        const qint64 here = position();
        const qint64 end = partEnd();
        if (here >= end) {
            ++currentPart;
            continue;
        }
        if (!available(messageHeaderSize)) {
            if (filled > cursor)
                note(here, -1, QStringLiteral("the log ends inside a message header (cut)"));
            ended = true;
            break;
        }
        const char *header = buffer.data() + cursor;
        const int size = load<quint16>(header);
        const char type = header[2];
        if (!isLetter(type) || size == 0) {
            resynchronise(here,
                          QStringLiteral("a damaged message header (type %1, %2 bytes)")
                              .arg(typeText(type))
                              .arg(size));
            continue;
        }
        const qint64 total = messageHeaderSize + size;
        if (here + total > end) {
            note(here, end,
                 QStringLiteral("a message of type %1 and %2 bytes runs past the end of its "
                                "part at byte %3")
                     .arg(typeText(type))
                     .arg(size)
                     .arg(end));
            skipTo(end);
            continue;
        }
        if (!available(std::size_t(total))) {
            note(here, -1,
                 QStringLiteral("the log ends inside a message of type %1 and %2 bytes (cut)")
                     .arg(typeText(type))
                     .arg(size));
            ended = true;
            break;
        }
        messageStart = here;
        const std::string_view content(buffer.data() + cursor + messageHeaderSize,
                                       std::size_t(size));
        cursor += std::size_t(total);
        Message kind = Message::End;
        if (readMessage(type, content, &kind) == Framing::Message)
            return kind;
        if (!error.isEmpty())
            return Message::Failed;
    }
    return Message::End;
}

bool UlogParser::readHeader()
{
    headerRead = true;
    const bool whole = available(fileHeaderSize);
    const std::size_t have = std::min<std::size_t>(filled - cursor, sizeof magic);
    if (have == 0 || std::memcmp(buffer.data() + cursor, magic, have) != 0) {
        error = QStringLiteral("is no ULog: it does not start with the ULog magic");
        return false;
    }
    if (!whole) {
        error = QStringLiteral("the log ends at byte %1, inside its header of %2 bytes (cut)")
                    .arg(filled - cursor)
                    .arg(fileHeaderSize);
        return false;
    }
    fileVersion = quint8(buffer[cursor + 7]);
    start = load<quint64>(buffer.data() + cursor + 8);
    cursor += fileHeaderSize;
    return true;
}

bool UlogParser::available(std::size_t count)
{
    if (filled - cursor >= count)
        return true;
    if (cursor > 0) {
        std::memmove(buffer.data(), buffer.data() + cursor, filled - cursor);
        filled -= cursor;
        bufferOffset += qint64(cursor);
        cursor = 0;
    }
    if (buffer.size() < count)
        buffer.resize(count);
    while (filled < count && !deviceAtEnd) {
        const qint64 got = device->read(buffer.data() + filled, qint64(buffer.size() - filled));
        if (got <= 0)
            deviceAtEnd = true;
        else
            filled += std::size_t(got);
    }
    return filled - cursor >= count;
}

bool UlogParser::skipTo(qint64 offset)
{
    if (offset <= bufferOffset + qint64(filled)) {
        cursor = std::size_t(offset - bufferOffset);
        return true;
    }
    qint64 skip = offset - (bufferOffset + qint64(filled));
    bufferOffset = offset;
    cursor = filled = 0;
    if (!device->isSequential())
        return device->seek(offset);
    while (skip > 0) {
        const qint64 got =
            device->read(buffer.data(), std::min<qint64>(skip, qint64(buffer.size())));
        if (got <= 0) {
            deviceAtEnd = true;
            return false;
        }
        skip -= got;
    }
    return true;
}

qint64 UlogParser::partEnd() const
{
    return currentPart < int(appended.size()) ? appended[std::size_t(currentPart)]
                                              : std::numeric_limits<qint64>::max();
}

bool UlogParser::resynchronise(qint64 from, const QString &what)
{
    const qint64 end = partEnd();
    skipTo(from + 1);
    for (;;) {
        available(blockSize / 2);
        const char *begin = buffer.data() + cursor;
        const qint64 left = std::min<qint64>(qint64(filled - cursor), end - position());
        const char *stop = begin + left;
        const char *found = std::search(begin, stop, syncMagic, syncMagic + sizeof syncMagic);
        if (found != stop) {
            const qint64 after = bufferOffset + (found - buffer.data()) + qint64(sizeof syncMagic);
            note(from, after, what + QStringLiteral(", passed over to the end of a sync message"));
            skipTo(after);
            return true;
        }
        const bool reachedEnd = position() + left >= end;
        if (reachedEnd || deviceAtEnd) {
            if (end != std::numeric_limits<qint64>::max()) {
                note(from, end, what + QStringLiteral(", no sync message after it in its part"));
                skipTo(end);
                return true;
            }
            note(from, -1,
                 what
                     + QStringLiteral(", no sync message after it: the %1 bytes after it are "
                                      "not read")
                           .arg(position() + left - from));
            ended = true;
            return false;
        }
        // Keep the bytes a magic that runs into the next block starts with.
        cursor += std::size_t(std::max<qint64>(0, left - qint64(sizeof syncMagic - 1)));
    }
}

void UlogParser::note(qint64 offset, qint64 resumedAt, const QString &what)
{
    ++damageTotal;
    if (damages.size() < std::size_t(keptDamage))
        damages.push_back({offset, resumedAt, what});
}

UlogParser::Message UlogParser::fail(const QString &why)
{
    error = why;
    ended = true;
    return Message::Failed;
}

UlogParser::Message UlogParser::readFlagBits(std::string_view content)
{
    std::memcpy(compat.data(), content.data(), compat.size());
    std::memcpy(incompat.data(), content.data() + 8, incompat.size());
    bool unknown = (incompat[0] & ~dataAppended) != 0;
    for (std::size_t i = 1; i < incompat.size(); ++i)
        unknown = unknown || incompat[i] != 0;
    if (unknown)
        return fail(QStringLiteral("byte %1: the log sets incompatible flags this reader does "
                                   "not know")
                        .arg(messageStart));
    if (incompat[0] & dataAppended) {
        qint64 after = position();
        for (int i = 0; i < 3; ++i) {
            const quint64 offset = load<quint64>(content.data() + 16 + 8 * i);
            if (offset == 0)
                break;
            if (offset < quint64(after) || offset > quint64(std::numeric_limits<qint64>::max())) {
                note(messageStart, -1,
                     QStringLiteral("appended data offset %1 lies before the data it follows; "
                                    "it and those after it are not used")
                         .arg(offset));
                break;
            }
            appended.push_back(qint64(offset));
            after = qint64(offset);
        }
    }
    return Message::FlagBits;
}

UlogParser::Framing UlogParser::readMessage(char type, std::string_view content, Message *kind)
{
    const qint64 next = position();
    const auto malformed = [&](const QString &why) {
        note(messageStart, next,
             QStringLiteral("a message of type %1 that does not hold together (%2)")
                 .arg(typeText(type), why));
        return Framing::Skip;
    };
    const auto keyValue = [&](std::size_t at) {
        if (content.size() <= at)
            return false;
        const std::size_t keyLength = quint8(content[at]);
        if (content.size() < at + 1 + keyLength)
            return false;
        return entry.set(content.substr(at + 1, keyLength), content.substr(at + 1 + keyLength));
    };
    body = content;
    switch (type) {
    case 'B':
        if (content.size() < 40)
            return malformed(QStringLiteral("flag bits of %1 bytes").arg(content.size()));
        if (dataSection || !appended.empty())
            return malformed(QStringLiteral("flag bits after the definitions"));
        *kind = readFlagBits(content);
        return *kind == Message::Failed ? Framing::Skip : Framing::Message;
    case 'F': {
        QString why;
        body = upToNul(content);
        if (!formatTable.add(body, &why))
            return malformed(why);
        *kind = Message::Format;
        return Framing::Message;
    }
    case 'I':
    case 'P':
        if (!keyValue(0))
            return malformed(QStringLiteral("no \"type name\" key"));
        entry.continued = false;
        *kind = type == 'I' ? Message::Info : Message::Parameter;
        return Framing::Message;
    case 'Q':
        if (!keyValue(1))
            return malformed(QStringLiteral("no \"type name\" key"));
        defaults = quint8(content[0]);
        entry.continued = false;
        *kind = Message::DefaultParameter;
        return Framing::Message;
    case 'M': {
        if (!keyValue(1))
            return malformed(QStringLiteral("no \"type name\" key"));
        entry.continued = content[0] != 0;
        // Parts are joined by name: each part's type gives its own length.
        if (!entry.continued || joinedKey != entry.name) {
            joined.clear();
            joinedKey = std::string(entry.name);
        }
        joined.append(entry.bytes);
        *kind = Message::MultiInfo;
        return Framing::Message;
    }
    default:
        break;
    }

    // The definitions end with the first message that only the data section holds.
    if (std::strchr("ARDLCSO", type))
        dataSection = true;
    switch (type) {
    case 'A': {
        if (content.size() < 4)
            return malformed(QStringLiteral("%1 bytes").arg(content.size()));
        const quint16 id = load<quint16>(content.data() + 1);
        if (subscriptions.size() <= id)
            subscriptions.resize(std::size_t(id) + 1);
        Subscription &added = subscriptions[id];
        added.topic = std::string(upToNul(content.substr(3)));
        added.msgId = id;
        added.multiId = quint8(content[0]);
        added.active = true;
        if (!formatTable.layout(added.topic))
            note(messageStart, next,
                 QStringLiteral("a subscription to %1, whose format the log does not define")
                     .arg(QString::fromStdString(added.topic)));
        current = &added;
        *kind = Message::Subscription;
        return Framing::Message;
    }
    case 'R': {
        if (content.size() < 2)
            return malformed(QStringLiteral("%1 bytes").arg(content.size()));
        const quint16 id = load<quint16>(content.data());
        if (!subscription(id))
            return malformed(QStringLiteral("message id %1 was never added").arg(id));
        subscriptions[id].active = false;
        current = &subscriptions[id];
        *kind = Message::Unsubscription;
        return Framing::Message;
    }
    case 'D': {
        if (content.size() < 2)
            return malformed(QStringLiteral("%1 bytes").arg(content.size()));
        const quint16 id = load<quint16>(content.data());
        const Subscription *of = subscription(id);
        if (!of || !of->active) {
            // One word per message id, not one per message.
            if (missingNoted.size() <= id)
                missingNoted.resize(std::size_t(id) + 1);
            if (missingNoted[id])
                return Framing::Skip;
            missingNoted[id] = true;
            return malformed(
                QStringLiteral("data of message id %1, which no subscription holds").arg(id));
        }
        body = content.substr(2);
        bodyOffset = messageStart + messageHeaderSize + 2;
        if (const UlogFormats::Layout *layout = formatTable.layout(of->topic)) {
            if (body.size() < std::size_t(layout->minimumSize)
                || body.size() > std::size_t(layout->size))
                return malformed(QStringLiteral("data of %1 with %2 bytes, where its format has "
                                                "%3 and %4 without the padding at its end")
                                     .arg(QString::fromStdString(of->topic))
                                     .arg(body.size())
                                     .arg(layout->size)
                                     .arg(layout->minimumSize));
        }
        current = of;
        *kind = Message::Data;
        return Framing::Message;
    }
    case 'L':
    case 'C': {
        const std::size_t fixed = type == 'L' ? 9 : 11;
        if (content.size() < fixed)
            return malformed(QStringLiteral("%1 bytes").arg(content.size()));
        logged.level = quint8(content[0]);
        logged.tagged = type == 'C';
        logged.tag = logged.tagged ? load<quint16>(content.data() + 1) : 0;
        logged.timestamp = load<quint64>(content.data() + fixed - 8);
        logged.text = upToNul(content.substr(fixed));
        *kind = Message::Logging;
        return Framing::Message;
    }
    case 'S':
        if (content.size() < sizeof syncMagic
            || std::memcmp(content.data(), syncMagic, sizeof syncMagic) != 0)
            return malformed(QStringLiteral("no sync magic"));
        *kind = Message::Sync;
        return Framing::Message;
    case 'O':
        if (content.size() < 2)
            return malformed(QStringLiteral("%1 bytes").arg(content.size()));
        dropout = load<quint16>(content.data());
        *kind = Message::Dropout;
        return Framing::Message;
    default:
        ++unknownCount;
        return Framing::Skip;
    }
}

bool UlogParser::readAt(qint64 offset, char *into, qint64 size)
{
    auto *file = qobject_cast<QFileDevice *>(device);
    const int handle = file ? file->handle() : -1;
    if (handle >= 0) {
        qint64 done = 0;
        while (done < size) {
            const ssize_t got =
                ::pread(handle, into + done, std::size_t(size - done), offset + done);
            if (got <= 0)
                return false;
            done += got;
        }
        return true;
    }
    if (device->isSequential())
        return false;
    const qint64 resume = bufferOffset + qint64(filled);
    const bool read = device->seek(offset) && device->read(into, size) == size;
    return device->seek(resume) && read;
}
