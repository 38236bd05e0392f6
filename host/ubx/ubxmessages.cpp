#include "ubxmessages.h"

#include "recordmember.h"

#include <algorithm>
#include <iterator>

namespace UbxMessages {

namespace {

// Where a record member sits in a payload; its width and sign are the
// member's own, which are those of the message field.
template <typename Record>
struct Place
{
    int offset;
    int size;
    void (*store)(Record &record, qint64 value);
    qint64 (*load)(const Record &record);
};

template <auto member>
constexpr Place<typename RecordMember::Of<decltype(member)>::RecordType> at(int offset)
{
    using Type = typename RecordMember::Of<decltype(member)>::MemberType;
    return {offset, int(sizeof(Type)), &RecordMember::store<member>, &RecordMember::load<member>};
}

constexpr Place<KvGpsSolution> navSolLayout[] = {
    at<&KvGpsSolution::iTOW>(0),    at<&KvGpsSolution::fTOW>(4),    at<&KvGpsSolution::week>(8),
    at<&KvGpsSolution::gpsFix>(10), at<&KvGpsSolution::flags>(11),  at<&KvGpsSolution::ecefX>(12),
    at<&KvGpsSolution::ecefY>(16),  at<&KvGpsSolution::ecefZ>(20),  at<&KvGpsSolution::pAcc>(24),
    at<&KvGpsSolution::ecefVX>(28), at<&KvGpsSolution::ecefVY>(32), at<&KvGpsSolution::ecefVZ>(36),
    at<&KvGpsSolution::sAcc>(40),   at<&KvGpsSolution::pDOP>(44),   at<&KvGpsSolution::numSV>(47),
};
constexpr int navSolLength = 52;

constexpr Place<KvGpsDop> navDopLayout[] = {
    at<&KvGpsDop::iTOW>(0),  at<&KvGpsDop::gDOP>(4),  at<&KvGpsDop::pDOP>(6),
    at<&KvGpsDop::tDOP>(8),  at<&KvGpsDop::vDOP>(10), at<&KvGpsDop::hDOP>(12),
    at<&KvGpsDop::nDOP>(14), at<&KvGpsDop::eDOP>(16),
};
constexpr int navDopLength = 18;

constexpr Place<KvGpsUtcTime> navTimeUtcLayout[] = {
    at<&KvGpsUtcTime::iTOW>(0),   at<&KvGpsUtcTime::tAcc>(4),   at<&KvGpsUtcTime::nano>(8),
    at<&KvGpsUtcTime::year>(12),  at<&KvGpsUtcTime::month>(14), at<&KvGpsUtcTime::day>(15),
    at<&KvGpsUtcTime::hour>(16),  at<&KvGpsUtcTime::min>(17),   at<&KvGpsUtcTime::sec>(18),
    at<&KvGpsUtcTime::valid>(19),
};
constexpr int navTimeUtcLength = 20;

// The fields up to pDOP are common to both lengths; headVeh comes only in
// the longer one.
constexpr Place<KvGnssPvt> navPvtLayout[] = {
    at<&KvGnssPvt::iTOW>(0),    at<&KvGnssPvt::year>(4),     at<&KvGnssPvt::month>(6),
    at<&KvGnssPvt::day>(7),     at<&KvGnssPvt::hour>(8),     at<&KvGnssPvt::min>(9),
    at<&KvGnssPvt::sec>(10),    at<&KvGnssPvt::valid>(11),   at<&KvGnssPvt::tAcc>(12),
    at<&KvGnssPvt::nano>(16),   at<&KvGnssPvt::fixType>(20), at<&KvGnssPvt::flags>(21),
    at<&KvGnssPvt::numSV>(23),  at<&KvGnssPvt::lon>(24),     at<&KvGnssPvt::lat>(28),
    at<&KvGnssPvt::height>(32), at<&KvGnssPvt::hMSL>(36),    at<&KvGnssPvt::hAcc>(40),
    at<&KvGnssPvt::vAcc>(44),   at<&KvGnssPvt::velN>(48),    at<&KvGnssPvt::velE>(52),
    at<&KvGnssPvt::velD>(56),   at<&KvGnssPvt::gSpeed>(60),  at<&KvGnssPvt::headMot>(64),
    at<&KvGnssPvt::sAcc>(68),   at<&KvGnssPvt::headAcc>(72),
};
constexpr Place<KvGnssPvt> navPvtHeadVeh = at<&KvGnssPvt::headVeh>(84);

// NAV-SVINFO: iTOW, numCh, then 12 bytes a channel.
constexpr Place<KvGpsSatelliteInfo> navSvInfoLayout[] = {
    at<&KvGpsSatelliteInfo::iTOW>(0),
    at<&KvGpsSatelliteInfo::numCh>(4),
};
constexpr Place<KvGpsChannel> svInfoChannelLayout[] = {
    at<&KvGpsChannel::svid>(1),
    at<&KvGpsChannel::quality>(3),
};

// NAV-SAT: iTOW, version, numSvs, then 12 bytes a satellite.
constexpr Place<KvGnssSatelliteInfo> navSatLayout[] = {
    at<&KvGnssSatelliteInfo::iTOW>(0),
    at<&KvGnssSatelliteInfo::numSvs>(5),
};
constexpr Place<KvGnssSatellite> navSatSatelliteLayout[] = {
    at<&KvGnssSatellite::gnssId>(0),
    at<&KvGnssSatellite::svId>(1),
    at<&KvGnssSatellite::cno>(2),
    at<&KvGnssSatellite::flags>(8),
};
constexpr int satelliteBlockStart = 8;
constexpr int satelliteBlockSize = 12;
constexpr quint8 navSatVersion = 1;

constexpr int monVerSoftwareSize = 30;
constexpr int monVerHardwareSize = 10;
constexpr int monVerExtensionSize = 30;

// Little-endian, unsigned; the member's store gives it its sign.
qint64 loadBytes(const uchar *bytes, int size)
{
    quint64 value = 0;
    for (int i = size - 1; i >= 0; --i)
        value = value << 8 | bytes[i];
    return qint64(value);
}

void storeBytes(uchar *bytes, int size, qint64 value)
{
    for (int i = 0; i < size; ++i)
        bytes[i] = uchar(quint64(value) >> (8 * i));
}

template <typename Record, std::size_t count>
void readPlaces(const uchar *payload, const Place<Record> (&layout)[count], Record &record)
{
    for (const Place<Record> &place : layout)
        place.store(record, loadBytes(payload + place.offset, place.size));
}

template <typename Record, std::size_t count>
void writePlaces(uchar *payload, const Place<Record> (&layout)[count], const Record &record)
{
    for (const Place<Record> &place : layout)
        storeBytes(payload + place.offset, place.size, place.load(record));
}

uchar *bytesOf(std::string &payload)
{
    return reinterpret_cast<uchar *>(payload.data());
}

bool blocksFit(int length, int countOffset, const uchar *payload)
{
    return length >= satelliteBlockStart
        && length == satelliteBlockStart + satelliteBlockSize * int(payload[countOffset]);
}

// Reads the blocks of a satellite list; @p used of the message's blocks fit the record.
template <typename Entry, std::size_t count, std::size_t capacity>
void readBlocks(const uchar *payload, int blocks, const Place<Entry> (&layout)[count],
                Entry (&entries)[capacity])
{
    const int used = std::min(blocks, int(capacity));
    for (int i = 0; i < used; ++i) {
        entries[i] = Entry();
        readPlaces(payload + satelliteBlockStart + satelliteBlockSize * i, layout, entries[i]);
    }
}

template <typename Entry, std::size_t count, std::size_t capacity>
std::string listPayload(int countOffset, int blocks, const Place<Entry> (&layout)[count],
                        const Entry (&entries)[capacity])
{
    const int used = std::min(blocks, int(capacity));
    std::string payload(std::size_t(satelliteBlockStart + satelliteBlockSize * used), '\0');
    payload[std::size_t(countOffset)] = char(used);
    for (int i = 0; i < used; ++i)
        writePlaces(bytesOf(payload) + satelliteBlockStart + satelliteBlockSize * i, layout,
                    entries[i]);
    return payload;
}

} // namespace

namespace {

constexpr bool oneMessageOfEachKind()
{
    for (int kind = 0; kind <= FirmwareVersion; ++kind) {
        int messages = 0;
        for (const MessageRead &message : messagesRead)
            messages += message.kind == kind ? 1 : 0;
        if (messages != 1)
            return false;
    }
    return true;
}
static_assert(oneMessageOfEachKind(), "each kind is read from one message, which keyOf() gives");

} // namespace

const MessageRead *messageRead(quint16 key)
{
    const auto message = std::find_if(std::begin(messagesRead), std::end(messagesRead),
                                      [key](const MessageRead &m) { return m.key == key; });
    return message != std::end(messagesRead) ? message : nullptr;
}

quint16 keyOf(MessageKind kind)
{
    const auto message = std::find_if(std::begin(messagesRead), std::end(messagesRead),
                                      [kind](const MessageRead &m) { return m.kind == kind; });
    return message->key;
}

QString messageName(quint16 key)
{
    if (const MessageRead *message = messageRead(key))
        return QLatin1String(message->name);
    return QStringLiteral("0x%1 0x%2")
        .arg(key >> 8, 2, 16, QLatin1Char('0'))
        .arg(key & 0xFF, 2, 16, QLatin1Char('0'));
}

quint16 checksum(const uchar *bytes, std::size_t size)
{
    quint8 a = 0;
    quint8 b = 0;
    for (std::size_t i = 0; i < size; ++i) {
        a = quint8(a + bytes[i]);
        b = quint8(b + a);
    }
    return quint16(b << 8 | a);
}

quint32 timeOfWeek(const uchar *payload, int length)
{
    return length >= 4 ? quint32(loadBytes(payload, 4)) : 0;
}

bool hasValidLength(quint16 key, const uchar *payload, int length)
{
    switch (key) {
    case navSol:
        return length == navSolLength;
    case navDop:
        return length == navDopLength;
    case navTimeUtc:
        return length == navTimeUtcLength;
    case navSvInfo:
        return blocksFit(length, 4, payload);
    case navPvt:
        return length == navPvtLength || length == navPvtShortLength;
    case navSat:
        return blocksFit(length, 5, payload);
    case monVer:
        return length >= monVerSoftwareSize + monVerHardwareSize
            && (length - monVerSoftwareSize - monVerHardwareSize) % monVerExtensionSize == 0;
    default:
        return false;
    }
}

bool readNavSol(const uchar *payload, int length, KvGpsSolution &record)
{
    if (!hasValidLength(navSol, payload, length))
        return false;
    readPlaces(payload, navSolLayout, record);
    return true;
}

bool readNavDop(const uchar *payload, int length, KvGpsDop &record)
{
    if (!hasValidLength(navDop, payload, length))
        return false;
    readPlaces(payload, navDopLayout, record);
    return true;
}

bool readNavTimeUtc(const uchar *payload, int length, KvGpsUtcTime &record)
{
    if (!hasValidLength(navTimeUtc, payload, length))
        return false;
    readPlaces(payload, navTimeUtcLayout, record);
    return true;
}

bool readNavSvInfo(const uchar *payload, int length, KvGpsSatelliteInfo &record)
{
    if (!hasValidLength(navSvInfo, payload, length))
        return false;
    record = KvGpsSatelliteInfo();
    readPlaces(payload, navSvInfoLayout, record);
    readBlocks(payload, record.numCh, svInfoChannelLayout, record.channels);
    return true;
}

bool readNavPvt(const uchar *payload, int length, KvGnssPvt &record)
{
    if (!hasValidLength(navPvt, payload, length))
        return false;
    readPlaces(payload, navPvtLayout, record);
    record.headVeh = 0;
    if (length == navPvtLength)
        navPvtHeadVeh.store(record, loadBytes(payload + navPvtHeadVeh.offset, navPvtHeadVeh.size));
    return true;
}

bool readNavSat(const uchar *payload, int length, KvGnssSatelliteInfo &record)
{
    if (!hasValidLength(navSat, payload, length))
        return false;
    record = KvGnssSatelliteInfo();
    readPlaces(payload, navSatLayout, record);
    readBlocks(payload, record.numSvs, navSatSatelliteLayout, record.satellites);
    return true;
}

bool readMonVer(const uchar *payload, int length, QString *softwareVersion)
{
    if (!hasValidLength(monVer, payload, length))
        return false;
    const auto *text = reinterpret_cast<const char *>(payload);
    *softwareVersion =
        QString::fromLatin1(text, int(std::find(text, text + monVerSoftwareSize, '\0') - text));
    // The text ends up on a line of the exported file's header: a line break
    // or another control character must not end or mangle that line.
    for (QChar &c : *softwareVersion) {
        if (!c.isPrint())
            c = QLatin1Char(' ');
    }
    return true;
}

void appendFrame(std::string &out, quint16 key, const std::string &payload)
{
    const std::size_t start = out.size();
    out += char(sync1);
    out += char(sync2);
    out += char(key >> 8);
    out += char(key & 0xFF);
    out += char(payload.size() & 0xFF);
    out += char(payload.size() >> 8);
    out += payload;
    const quint16 sum =
        checksum(reinterpret_cast<const uchar *>(out.data()) + start + 2, out.size() - start - 2);
    out += char(sum & 0xFF);
    out += char(sum >> 8);
}

std::string navSolPayload(const KvGpsSolution &record)
{
    std::string payload(navSolLength, '\0');
    writePlaces(bytesOf(payload), navSolLayout, record);
    return payload;
}

std::string navDopPayload(const KvGpsDop &record)
{
    std::string payload(navDopLength, '\0');
    writePlaces(bytesOf(payload), navDopLayout, record);
    return payload;
}

std::string navTimeUtcPayload(const KvGpsUtcTime &record)
{
    std::string payload(navTimeUtcLength, '\0');
    writePlaces(bytesOf(payload), navTimeUtcLayout, record);
    return payload;
}

std::string navSvInfoPayload(const KvGpsSatelliteInfo &record)
{
    std::string payload = listPayload(4, record.numCh, svInfoChannelLayout, record.channels);
    storeBytes(bytesOf(payload), 4, record.iTOW);
    // Channel numbers as a receiver counts them.
    for (std::size_t i = 0; i * satelliteBlockSize + satelliteBlockStart < payload.size(); ++i)
        payload[satelliteBlockStart + satelliteBlockSize * i] = char(i);
    return payload;
}

std::string navPvtPayload(const KvGnssPvt &record)
{
    std::string payload(navPvtLength, '\0');
    writePlaces(bytesOf(payload), navPvtLayout, record);
    storeBytes(bytesOf(payload) + navPvtHeadVeh.offset, navPvtHeadVeh.size,
               navPvtHeadVeh.load(record));
    // NAV-PVT carries its own position dilution.
    storeBytes(bytesOf(payload) + 76, 2, record.pDOP);
    return payload;
}

std::string navSatPayload(const KvGnssSatelliteInfo &record)
{
    std::string payload = listPayload(5, record.numSvs, navSatSatelliteLayout, record.satellites);
    storeBytes(bytesOf(payload), 4, record.iTOW);
    payload[4] = char(navSatVersion);
    return payload;
}

std::string monVerPayload(const QString &softwareVersion, const QString &hardwareVersion)
{
    std::string payload(monVerSoftwareSize + monVerHardwareSize, '\0');
    const QByteArray software = softwareVersion.toLatin1().left(monVerSoftwareSize - 1);
    const QByteArray hardware = hardwareVersion.toLatin1().left(monVerHardwareSize - 1);
    std::copy(software.begin(), software.end(), payload.begin());
    std::copy(hardware.begin(), hardware.end(), payload.begin() + monVerSoftwareSize);
    return payload;
}

} // namespace UbxMessages
