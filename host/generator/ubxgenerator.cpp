#include "ubxgenerator.h"

#include "ubxmessages.h"

#include <QCoreApplication>
#include <QFileDevice>
#include <QIODevice>

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

} // namespace

bool generateUbxLog(const GeneratorOptions &options, QIODevice *out, QString *error)
{
    std::string block;
    const auto writeBlock = [&] {
        if (out->write(block.data(), qint64(block.size())) != qint64(block.size())) {
            *error =
                QCoreApplication::translate("RecordingGenerator", "cannot write the recording: %1")
                    .arg(out->errorString());
            return false;
        }
        block.clear();
        return true;
    };

    UbxMessages::appendFrame(
        block, UbxMessages::monVer,
        UbxMessages::monVerPayload(QStringLiteral("1.2.3"), QStringLiteral("00080000")));
    constexpr std::size_t blockSize = 1 << 20;
    const bool generated = generateReceiverEpochs(
        options,
        [&](const RecordingSample &epoch) {
            using namespace UbxMessages;
            appendFrame(block, navSol, navSolPayload(epoch.gpsSolution));
            appendFrame(block, navPvt, navPvtPayload(epoch.gnssPvt));
            appendFrame(block, navStatus, navStatusPayload(epoch.gnssPvt));
            appendFrame(block, navDop, navDopPayload(epoch.gpsDop));
            appendFrame(block, navTimeUtc, navTimeUtcPayload(epoch.gpsUtcTime));
            appendFrame(block, navSvInfo, navSvInfoPayload(epoch.gpsSatellites));
            appendFrame(block, navSat, navSatPayload(epoch.gnssSatellites));
            block += ggaSentence(epoch.gnssPvt);
            return block.size() < blockSize || writeBlock();
        },
        error);
    if (!generated || !writeBlock())
        return false;
    // A file holds the last bytes in its buffer: a full disk shows only here.
    auto *file = qobject_cast<QFileDevice *>(out);
    if (file && !file->flush()) {
        *error = QCoreApplication::translate("RecordingGenerator", "cannot write the recording: %1")
                     .arg(out->errorString());
        return false;
    }
    return true;
}
