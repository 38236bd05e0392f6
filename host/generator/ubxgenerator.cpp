#include "ubxgenerator.h"

#include "blockwriter.h"
#include "ubxmessages.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr quint16 navStatus = UbxMessages::messageKey(0x01, 0x03);
constexpr int navStatusLength = 16;

// The GGA sentence of the epoch, with its checksum.
std::string ggaSentence(const KvGnssPvt &pvt)
{
    const auto degreesMinutes = [](qint32 scaled, int degreeDigits) {
        const qint64 magnitude = std::llabs(qint64(scaled));
        const qint64 degrees = magnitude / 10000000;
        const double minutes = double(magnitude % 10000000) * 60.0 / 1e7;
        char text[32];
        std::snprintf(text, sizeof text, "%0*lld%08.5f", degreeDigits,
                      static_cast<long long>(degrees), minutes);
        return std::string(text);
    };
    char body[160];
    std::snprintf(
        body, sizeof body, "GNGGA,%02d%02d%02d.%02d,%s,%c,%s,%c,%d,%02d,%.2f,%.1f,M,%.1f,M,,",
        pvt.hour, pvt.min, pvt.sec, int(pvt.nano > 0 ? pvt.nano / 10000000 : 0),
        degreesMinutes(pvt.lat, 2).c_str(), pvt.lat < 0 ? 'S' : 'N',
        degreesMinutes(pvt.lon, 3).c_str(), pvt.lon < 0 ? 'W' : 'E', pvt.fixType >= 2 ? 1 : 0,
        pvt.numSV, pvt.hDOP * 0.01, pvt.hMSL * 0.001, (pvt.height - pvt.hMSL) * 0.001);
    quint8 sum = 0;
    for (const char *c = body; *c; ++c)
        sum ^= quint8(*c);
    char sentence[200];
    std::snprintf(sentence, sizeof sentence, "$%s*%02X\r\n", body, sum);
    return sentence;
}

std::string navStatusPayload(const KvGnssPvt &pvt)
{
    std::string payload(navStatusLength, '\0');
    for (int i = 0; i < 4; ++i)
        payload[std::size_t(i)] = char(pvt.iTOW >> (8 * i));
    payload[4] = char(pvt.fixType);
    payload[5] = char(pvt.flags);
    return payload;
}

// The frames of one epoch, in the order a receiver sends them, and its GGA sentence.
void appendEpoch(std::string &bytes, const RecordingSample &epoch)
{
    using namespace UbxMessages;
    appendFrame(bytes, navSol, navSolPayload(epoch.gpsSolution));
    appendFrame(bytes, navPvt, navPvtPayload(epoch.gnssPvt));
    appendFrame(bytes, navStatus, navStatusPayload(epoch.gnssPvt));
    appendFrame(bytes, navDop, navDopPayload(epoch.gpsDop));
    appendFrame(bytes, navTimeUtc, navTimeUtcPayload(epoch.gpsUtcTime));
    appendFrame(bytes, navSvInfo, navSvInfoPayload(epoch.gpsSatellites));
    appendFrame(bytes, navSat, navSatPayload(epoch.gnssSatellites));
    bytes += ggaSentence(epoch.gnssPvt);
}

} // namespace

bool generateUbxLog(const GeneratorOptions &options, QIODevice *out, QString *error)
{
    std::string bytes;
    UbxMessages::appendFrame(
        bytes, UbxMessages::monVer,
        UbxMessages::monVerPayload(QStringLiteral("1.2.3"), QStringLiteral("00080000")));
    BlockWriter blocks(out);
    const bool generated = generateReceiverEpochs(
        options,
        [&](const RecordingSample &epoch) {
            appendEpoch(bytes, epoch);
            const bool written = blocks.append(bytes);
            bytes.clear();
            return written;
        },
        error);
    if (generated && blocks.append(bytes) && blocks.finish())
        return true;
    // The options' error, unless writing failed.
    if (!blocks.errorString().isEmpty())
        *error = blocks.errorString();
    return false;
}
