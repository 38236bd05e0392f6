#include "ulogwriter.h"

#include <QIODevice>

namespace {

constexpr char magic[7] = {'U', 'L', 'o', 'g', 0x01, 0x12, 0x35};
constexpr char syncMagic[8] = {0x2F, 0x73, 0x13, 0x20, 0x25, 0x0C, char(0xBB), 0x12};

// The payload of 'I', 'P' and the tail of 'M' and 'Q': key length, key, value.
std::string keyValue(std::string_view key, std::string_view value)
{
    std::string bytes(1, char(quint8(key.size())));
    bytes.append(key);
    bytes.append(value);
    return bytes;
}

std::string flagBitsPayload(const std::array<quint8, 8> &compat,
                            const std::array<quint8, 8> &incompat,
                            const std::array<quint64, 3> &offsets)
{
    UlogBytes bytes;
    for (quint8 flag : compat)
        bytes.put(flag);
    for (quint8 flag : incompat)
        bytes.put(flag);
    for (quint64 offset : offsets)
        bytes.put(offset);
    return bytes.data();
}

} // namespace

UlogWriter::UlogWriter(QIODevice *out)
    : device(out)
    , blocks(out)
{ }

bool UlogWriter::writeHeader(quint64 startTimestamp, quint8 version)
{
    UlogBytes header;
    header.put(version).put(startTimestamp);
    return writeBytes(std::string_view(magic, sizeof magic)) && writeBytes(header);
}

bool UlogWriter::writeFlagBits(const std::array<quint8, 8> &compat,
                               const std::array<quint8, 8> &incompat,
                               const std::array<quint64, 3> &appendedOffsets)
{
    compatFlags = compat;
    incompatFlags = incompat;
    offsets = appendedOffsets;
    flagBitsAt = written + 3;
    return writeMessage('B', flagBitsPayload(compat, incompat, appendedOffsets));
}

bool UlogWriter::writeFormat(std::string_view definition)
{
    return writeMessage('F', definition);
}

bool UlogWriter::writeInfo(std::string_view key, std::string_view value)
{
    return writeMessage('I', keyValue(key, value));
}

bool UlogWriter::writeInfoText(std::string_view name, std::string_view text)
{
    const std::string key = "char[" + std::to_string(text.size()) + "] " + std::string(name);
    return writeInfo(key, text);
}

bool UlogWriter::writeInfoUInt32(std::string_view name, quint32 value)
{
    return writeInfo("uint32_t " + std::string(name), UlogBytes().put(value));
}

bool UlogWriter::writeMultiInfo(std::string_view key, std::string_view value, bool continued)
{
    return writeMessage('M', char(continued ? 1 : 0) + keyValue(key, value));
}

bool UlogWriter::writeParameter(std::string_view name, float value)
{
    return writeMessage('P', keyValue("float " + std::string(name), UlogBytes().put(value)));
}

bool UlogWriter::writeParameter(std::string_view name, qint32 value)
{
    return writeMessage('P', keyValue("int32_t " + std::string(name), UlogBytes().put(value)));
}

bool UlogWriter::writeDefaultParameter(quint8 defaultTypes, std::string_view name, float value)
{
    return writeMessage(
        'Q', char(defaultTypes) + keyValue("float " + std::string(name), UlogBytes().put(value)));
}

bool UlogWriter::writeDefaultParameter(quint8 defaultTypes, std::string_view name, qint32 value)
{
    return writeMessage(
        'Q', char(defaultTypes) + keyValue("int32_t " + std::string(name), UlogBytes().put(value)));
}

bool UlogWriter::writeSubscription(quint8 multiId, quint16 msgId, std::string_view topic)
{
    UlogBytes payload;
    payload.put(multiId).put(msgId);
    return writeMessage('A', payload.data() + std::string(topic));
}

bool UlogWriter::writeUnsubscription(quint16 msgId)
{
    return writeMessage('R', UlogBytes().put(msgId));
}

bool UlogWriter::writeData(quint16 msgId, std::string_view payload)
{
    return writeMessage('D', UlogBytes().put(msgId).data() + std::string(payload));
}

bool UlogWriter::writeLogging(quint8 level, quint64 timestamp, std::string_view text)
{
    UlogBytes payload;
    payload.put(level).put(timestamp);
    return writeMessage('L', payload.data() + std::string(text));
}

bool UlogWriter::writeTaggedLogging(quint8 level, quint16 tag, quint64 timestamp,
                                    std::string_view text)
{
    UlogBytes payload;
    payload.put(level).put(tag).put(timestamp);
    return writeMessage('C', payload.data() + std::string(text));
}

bool UlogWriter::writeSync()
{
    return writeMessage('S', std::string_view(syncMagic, sizeof syncMagic));
}

bool UlogWriter::writeDropout(quint16 durationMs)
{
    return writeMessage('O', UlogBytes().put(durationMs));
}

bool UlogWriter::writeMessage(char type, std::string_view payload)
{
    UlogBytes header;
    header.put(quint16(payload.size())).put(type);
    return writeBytes(header) && writeBytes(payload);
}

bool UlogWriter::writeBytes(std::string_view bytes)
{
    written += qint64(bytes.size());
    return blocks.append(bytes);
}

void UlogWriter::beginAppendedPart()
{
    if (parts < int(offsets.size()))
        offsets[std::size_t(parts++)] = quint64(written);
    incompatFlags[0] |= 0x01;
}

bool UlogWriter::finish()
{
    if (!blocks.finish())
        return false;
    if (parts == 0 || flagBitsAt < 0)
        return true;
    // The offsets are known only now; the flag bits near the start take them.
    const std::string payload = flagBitsPayload(compatFlags, incompatFlags, offsets);
    const qint64 end = device->pos();
    if (!device->seek(flagBitsAt)
        || device->write(payload.data(), qint64(payload.size())) != qint64(payload.size())
        || !device->seek(end)) {
        error = QStringLiteral("cannot write the appended offsets: %1").arg(device->errorString());
        return false;
    }
    return true;
}

QString UlogWriter::errorString() const
{
    return error.isEmpty() ? blocks.errorString() : error;
}
