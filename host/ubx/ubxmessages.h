#pragma once

#include <kvreceiverrecords.h>

#include <QString>
#include <QtGlobal>

#include <cstddef>
#include <string>

/**
 * The UBX messages a receiver log is read from, with their public payload
 * layouts (little-endian, each field of its own width and sign), and the
 * framing around them: sync bytes 0xB5 0x62, class, id, 16-bit length,
 * payload, and an 8-bit Fletcher checksum over class, id, length and payload.
 *
 * The decoders fill the receiver records with the raw integers of the
 * message; nothing is scaled. Each takes the whole payload and returns false
 * when its length does not fit the message.
 */
namespace UbxMessages {

constexpr quint8 sync1 = 0xB5;
constexpr quint8 sync2 = 0x62;
/** Sync bytes, class, id and length before the payload. */
constexpr int headerSize = 6;
/** Header and checksum around the payload. */
constexpr int frameOverhead = 8;
constexpr int maxPayload = 0xFFFF;

/** Class and id of a message in one number, class in the high byte. */
constexpr quint16 messageKey(quint8 messageClass, quint8 messageId)
{
    return quint16(messageClass << 8 | messageId);
}

constexpr quint16 navSol = messageKey(0x01, 0x06);
constexpr quint16 navDop = messageKey(0x01, 0x04);
constexpr quint16 navTimeUtc = messageKey(0x01, 0x21);
constexpr quint16 navSvInfo = messageKey(0x01, 0x30);
constexpr quint16 navPvt = messageKey(0x01, 0x07);
constexpr quint16 navSat = messageKey(0x01, 0x35);
constexpr quint16 monVer = messageKey(0x0A, 0x04);

/** Payload lengths of NAV-PVT: current receivers, and older ones without headVeh and the fields
 * after it. */
constexpr int navPvtLength = 92;
constexpr int navPvtShortLength = 84;

/**
 * What a message is read for: one of the receiver records of an epoch (the
 * kinds before epochRecordKinds, which also number an epoch's frames), or
 * the firmware version of the log.
 */
enum MessageKind { Solution, Dop, UtcTime, SvInfo, Pvt, Sat, FirmwareVersion };
constexpr int epochRecordKinds = FirmwareVersion;

/** A message that a receiver log is read from. */
struct MessageRead
{
    quint16 key;
    /** Its name in reports. */
    const char *name;
    MessageKind kind;
};

/** Every message read, one of each kind; any other message is passed over. */
constexpr MessageRead messagesRead[] = {
    {navSol, "NAV-SOL", Solution},
    {navDop, "NAV-DOP", Dop},
    {navTimeUtc, "NAV-TIMEUTC", UtcTime},
    {navSvInfo, "NAV-SVINFO", SvInfo},
    {navPvt, "NAV-PVT", Pvt},
    {navSat, "NAV-SAT", Sat},
    {monVer, "MON-VER", FirmwareVersion},
};

/** The message read with @p key; null for a message that is not read. */
const MessageRead *messageRead(quint16 key);
/** The key of the message read for @p kind. */
quint16 keyOf(MessageKind kind);
/** "NAV-PVT" for the messages read, else class and id in hex ("0x01 0x03"). */
QString messageName(quint16 key);

/** The two checksum bytes, first in the low byte, over @p size bytes from class to payload end. */
quint16 checksum(const uchar *bytes, std::size_t size);

/** The time of week that starts every navigation message read; 0 for a shorter payload. */
quint32 timeOfWeek(const uchar *payload, int length);

bool readNavSol(const uchar *payload, int length, KvGpsSolution &record);
bool readNavDop(const uchar *payload, int length, KvGpsDop &record);
bool readNavTimeUtc(const uchar *payload, int length, KvGpsUtcTime &record);
/** Keeps the first KvGpsSatelliteInfo::maxChannels channels; numCh as the message states it. */
bool readNavSvInfo(const uchar *payload, int length, KvGpsSatelliteInfo &record);
/** Takes 92 or 84 bytes; headVeh stays 0 in the shorter one. The dilutions are not NAV-PVT's. */
bool readNavPvt(const uchar *payload, int length, KvGnssPvt &record);
/** Keeps the first KvGnssSatelliteInfo::maxSatellites satellites; numSvs as the message states it.
 */
bool readNavSat(const uchar *payload, int length, KvGnssSatelliteInfo &record);
/** The software version of MON-VER, up to its first NUL byte, control characters made blanks. */
bool readMonVer(const uchar *payload, int length, QString *softwareVersion);

/** True when @p length fits the message @p key, whose payload starts @p payload. */
bool hasValidLength(quint16 key, const uchar *payload, int length);

/** Appends one whole frame of message @p key with @p payload to @p out. */
void appendFrame(std::string &out, quint16 key, const std::string &payload);

/** Payloads as a receiver writes them, the fields the records do not hold set to 0. */
std::string navSolPayload(const KvGpsSolution &record);
std::string navDopPayload(const KvGpsDop &record);
std::string navTimeUtcPayload(const KvGpsUtcTime &record);
std::string navSvInfoPayload(const KvGpsSatelliteInfo &record);
std::string navPvtPayload(const KvGnssPvt &record);
std::string navSatPayload(const KvGnssSatelliteInfo &record);
std::string monVerPayload(const QString &softwareVersion, const QString &hardwareVersion);

} // namespace UbxMessages
