#include <recordinginput.h>
#include <recordingsource.h>
#include <samplefingerprint.h>
#include <systemreason.h>
#include <ubxgenerator.h>
#include <ubxreader.h>

#include <QBuffer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <random>
#include <vector>

// Frames are built here from the public message layouts, byte by byte, so
// that the reader is checked against the layouts and not against itself.

namespace {

class Payload
{
public:
    explicit Payload(int size)
        : bytes(size, '\0')
    { }

    Payload &u8(int offset, quint8 value) { return put(offset, value, 1); }
    Payload &i8(int offset, qint8 value) { return put(offset, quint8(value), 1); }
    Payload &u16(int offset, quint16 value) { return put(offset, value, 2); }
    Payload &i16(int offset, qint16 value) { return put(offset, quint16(value), 2); }
    Payload &u32(int offset, quint32 value) { return put(offset, value, 4); }
    Payload &i32(int offset, qint32 value) { return put(offset, quint32(value), 4); }

    QByteArray frame(quint8 messageClass, quint8 messageId) const
    {
        QByteArray frame;
        frame.append(char(0xB5))
            .append(char(0x62))
            .append(char(messageClass))
            .append(char(messageId));
        frame.append(char(bytes.size() & 0xFF)).append(char(bytes.size() >> 8));
        frame.append(bytes);
        quint8 a = 0, b = 0;
        for (int i = 2; i < frame.size(); ++i) {
            a = quint8(a + quint8(frame[i]));
            b = quint8(b + a);
        }
        frame.append(char(a)).append(char(b));
        return frame;
    }

private:
    Payload &put(int offset, quint64 value, int size)
    {
        for (int i = 0; i < size; ++i)
            bytes[offset + i] = char(value >> (8 * i));
        return *this;
    }

    QByteArray bytes;
};

QByteArray navSol(quint32 iTOW, qint32 fTOW = 5, qint16 week = 2000)
{
    return Payload(52).u32(0, iTOW).i32(4, fTOW).i16(8, week).u8(10, 3).u8(11, 0x0D).frame(0x01,
                                                                                           0x06);
}

QByteArray navDop(quint32 iTOW, quint16 first = 100)
{
    Payload payload(18);
    payload.u32(0, iTOW);
    for (int i = 0; i < 7; ++i)
        payload.u16(4 + 2 * i, quint16(first + i));
    return payload.frame(0x01, 0x04);
}

// NAV-TIMEUTC's validity flags: time of week, week number and UTC known.
constexpr quint8 utcValid = 0x07;
// NAV-PVT's: date and time valid.
constexpr quint8 pvtValid = 0x03;

QByteArray navTimeUtc(quint32 iTOW, quint16 year, quint8 month, quint8 day, quint8 hour = 12,
                      quint8 valid = utcValid)
{
    return Payload(20)
        .u32(0, iTOW)
        .u16(12, year)
        .u8(14, month)
        .u8(15, day)
        .u8(16, hour)
        .u8(17, 34)
        .u8(18, 56)
        .u8(19, valid)
        .frame(0x01, 0x21);
}

QByteArray navPvt(quint32 iTOW, int length = 92, quint16 year = 2026, quint8 month = 11,
                  quint8 day = 21, quint8 valid = pvtValid)
{
    Payload payload(length);
    payload.u32(0, iTOW).u16(4, year).u8(6, month).u8(7, day).u8(8, 9).u8(9, 30).u8(10, 15).u8(
        11, valid);
    payload.u16(76, 999);
    if (length == 92)
        payload.i32(84, -1234567);
    return payload.frame(0x01, 0x07);
}

constexpr qint64 msPerWeek = 7 * 24 * 3600 * 1000LL;

// The UTC date and time of GPS week @p week, time of week @p iTOW: UTC runs
// 18 leap seconds behind.
QDateTime utcAt(int week, quint32 iTOW)
{
    return QDateTime(QDate(1980, 1, 6), QTime(0, 0), Qt::UTC)
        .addMSecs(week * msPerWeek + iTOW - 18000);
}

// The date and time as both messages hold them: year, month, day, hour,
// minute, second, then the validity flags.
Payload &dated(Payload &payload, int offset, const QDateTime &utc, quint8 valid)
{
    return payload.u16(offset, quint16(utc.date().year()))
        .u8(offset + 2, quint8(utc.date().month()))
        .u8(offset + 3, quint8(utc.date().day()))
        .u8(offset + 4, quint8(utc.time().hour()))
        .u8(offset + 5, quint8(utc.time().minute()))
        .u8(offset + 6, quint8(utc.time().second()))
        .u8(offset + 7, valid);
}

QByteArray navPvtAt(int week, quint32 iTOW, quint8 valid = pvtValid)
{
    Payload payload(92);
    return dated(payload.u32(0, iTOW), 4, utcAt(week, iTOW), valid).frame(0x01, 0x07);
}

QByteArray navTimeUtcAt(int week, quint32 iTOW, quint8 valid = utcValid)
{
    Payload payload(20);
    return dated(payload.u32(0, iTOW), 12, utcAt(week, iTOW), valid).frame(0x01, 0x21);
}

QString startTimeAt(int week, quint32 iTOW)
{
    return utcAt(week, iTOW).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QByteArray navSvInfo(quint32 iTOW, int channels, int firstSvid = 1)
{
    Payload payload(8 + 12 * channels);
    payload.u32(0, iTOW).u8(4, quint8(channels));
    for (int i = 0; i < channels; ++i)
        payload.u8(8 + 12 * i, quint8(i))
            .u8(9 + 12 * i, quint8(firstSvid + i))
            .u8(11 + 12 * i, quint8(i % 8));
    return payload.frame(0x01, 0x30);
}

QByteArray navSat(quint32 iTOW, int satellites)
{
    Payload payload(8 + 12 * satellites);
    payload.u32(0, iTOW).u8(4, 1).u8(5, quint8(satellites));
    for (int i = 0; i < satellites; ++i) {
        payload.u8(8 + 12 * i, quint8(i % 7))
            .u8(9 + 12 * i, quint8(i + 1))
            .u8(10 + 12 * i, quint8(20 + i % 30))
            .u32(16 + 12 * i, 0x80000000u | quint32(i));
    }
    return payload.frame(0x01, 0x35);
}

QByteArray monVer(const QByteArray &software)
{
    QByteArray payload(40 + 30, '\0');
    payload.replace(0, software.size(), software);
    payload.replace(30, 8, "00080000");
    QByteArray frame;
    frame.append(char(0xB5)).append(char(0x62)).append(char(0x0A)).append(char(0x04));
    frame.append(char(payload.size())).append(char(0));
    frame.append(payload);
    quint8 a = 0, b = 0;
    for (int i = 2; i < frame.size(); ++i) {
        a = quint8(a + quint8(frame[i]));
        b = quint8(b + a);
    }
    return frame.append(char(a)).append(char(b));
}

const QByteArray gga = "$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*76\r\n";

struct Samples
{
    std::vector<RecordingSample> samples;
    QVariantMap properties;
    double rate = 0.0;
    UbxLogStatistics statistics;
    QString error;
};

} // namespace

class tst_UbxReader : public QObject
{
    Q_OBJECT

private:
    Samples read(const QByteArray &log)
    {
        const QString path = dir.filePath(QStringLiteral("log.ubx"));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(log) != log.size())
            qFatal("cannot write %s", qPrintable(path));
        file.close();
        UbxReader reader;
        Samples result;
        if (!reader.open(path)) {
            result.error = reader.errorString();
            return result;
        }
        while (reader.readNext())
            result.samples.push_back(reader.sample());
        result.error = reader.errorString();
        result.properties = reader.properties();
        result.rate = reader.updateRate();
        result.statistics = reader.statistics();
        return result;
    }

    QTemporaryDir dir;

private slots:
    void navSolFieldsAtTheirLimits_data();
    void navSolFieldsAtTheirLimits();
    void navPvtFieldsAtTheirLimits_data();
    void navPvtFieldsAtTheirLimits();
    void timeUtcAndDopFields();
    void shortNavPvtHasNoVehicleHeading();
    void pvtTakesTheDilutionsOfItsEpoch();
    void badChecksumIsSkippedFromTheNextByte();
    void frameCutAtTheEnd();
    void nmeaBetweenFrames();
    void epochsOutOfOrder();
    void repeatedMessageFirstCounts();
    void satelliteListsBeyondCapacity();
    void timeOfWeekZeroHoldsNoData();
    void properties_data();
    void properties();
    void wrongLengthIsNotUsed();
    void frameAcrossBlocks();
    void pipeIsReadThroughACopy();
    void noFrameIsAnError();
    void failedOpenForgetsTheLogBefore_data();
    void failedOpenForgetsTheLogBefore();
    void detection_data();
    void detection();
    void sourceAnswersFromTheEpoch();
    void weeksApartWithTheSameTimeOfWeek();
    void logsOfDifferentWeeksJoined_data();
    void logsOfDifferentWeeksJoined();
    void logAcrossTheEndOfAWeek();
    void weekCarriedAcrossAWrap_data();
    void weekCarriedAcrossAWrap();
    void generatedLogAcrossTheEndOfAWeek();
    void noticeCountsEveryMessagePassedOver();
    void epochsOutOfOrderGiveTheSameSamples_data();
    void epochsOutOfOrderGiveTheSameSamples();
    void craftedSyncBytesAreScannedOnce();
    void framesBeyondFourGibibytes();
};

void tst_UbxReader::navSolFieldsAtTheirLimits_data()
{
    QTest::addColumn<quint32>("iTOW");
    QTest::addColumn<qint32>("signedValue");
    QTest::addColumn<quint32>("unsignedValue");
    QTest::addColumn<qint16>("week");
    QTest::addColumn<quint8>("byte");
    QTest::addColumn<quint16>("word");

    QTest::newRow("every field at its maximum")
        << std::numeric_limits<quint32>::max() << std::numeric_limits<qint32>::max()
        << std::numeric_limits<quint32>::max() << std::numeric_limits<qint16>::max() << quint8(255)
        << quint16(65535);
    QTest::newRow("signed fields at their minimum")
        << 1u << std::numeric_limits<qint32>::min() << 0u << std::numeric_limits<qint16>::min()
        << quint8(0) << quint16(0);
    QTest::newRow("minus one in every signed field")
        << 604799999u << -1 << 1u << qint16(-1) << quint8(1) << quint16(1);
}

void tst_UbxReader::navSolFieldsAtTheirLimits()
{
    QFETCH(quint32, iTOW);
    QFETCH(qint32, signedValue);
    QFETCH(quint32, unsignedValue);
    QFETCH(qint16, week);
    QFETCH(quint8, byte);
    QFETCH(quint16, word);

    Payload payload(52);
    payload.u32(0, iTOW).i32(4, signedValue).i16(8, week).u8(10, byte).u8(11, byte);
    payload.i32(12, signedValue).i32(16, signedValue).i32(20, signedValue).u32(24, unsignedValue);
    payload.i32(28, signedValue).i32(32, signedValue).i32(36, signedValue).u32(40, unsignedValue);
    payload.u16(44, word).u8(46, 0xAA).u8(47, byte).u32(48, 0xDEADBEEF);
    const Samples read = this->read(payload.frame(0x01, 0x06));
    QCOMPARE(read.error, QString());
    QCOMPARE(read.samples.size(), std::size_t(1));
    const KvGpsSolution &sol = read.samples[0].gpsSolution;
    QCOMPARE(sol.iTOW, iTOW);
    QCOMPARE(sol.fTOW, signedValue);
    QCOMPARE(sol.week, week);
    QCOMPARE(sol.gpsFix, byte);
    QCOMPARE(sol.flags, byte);
    QCOMPARE(sol.ecefX, signedValue);
    QCOMPARE(sol.ecefY, signedValue);
    QCOMPARE(sol.ecefZ, signedValue);
    QCOMPARE(sol.pAcc, unsignedValue);
    QCOMPARE(sol.ecefVX, signedValue);
    QCOMPARE(sol.ecefVY, signedValue);
    QCOMPARE(sol.ecefVZ, signedValue);
    QCOMPARE(sol.sAcc, unsignedValue);
    QCOMPARE(sol.pDOP, word);
    QCOMPARE(sol.numSV, byte);
}

void tst_UbxReader::navPvtFieldsAtTheirLimits_data()
{
    QTest::addColumn<qint32>("signedValue");
    QTest::addColumn<quint32>("unsignedValue");
    QTest::addColumn<quint8>("byte");
    QTest::addColumn<quint16>("word");

    QTest::newRow("maximum") << std::numeric_limits<qint32>::max()
                             << std::numeric_limits<quint32>::max() << quint8(255)
                             << quint16(65535);
    QTest::newRow("minimum") << std::numeric_limits<qint32>::min() << 0u << quint8(0) << quint16(0);
    QTest::newRow("minus one") << -1 << 1u << quint8(1) << quint16(1);
}

void tst_UbxReader::navPvtFieldsAtTheirLimits()
{
    QFETCH(qint32, signedValue);
    QFETCH(quint32, unsignedValue);
    QFETCH(quint8, byte);
    QFETCH(quint16, word);

    Payload payload(92);
    payload.u32(0, 4000)
        .u16(4, word)
        .u8(6, byte)
        .u8(7, byte)
        .u8(8, byte)
        .u8(9, byte)
        .u8(10, byte)
        .u8(11, byte);
    payload.u32(12, unsignedValue)
        .i32(16, signedValue)
        .u8(20, byte)
        .u8(21, byte)
        .u8(22, 0x55)
        .u8(23, byte);
    for (int offset = 24; offset <= 36; offset += 4)
        payload.i32(offset, signedValue);
    payload.u32(40, unsignedValue).u32(44, unsignedValue);
    for (int offset = 48; offset <= 64; offset += 4)
        payload.i32(offset, signedValue);
    payload.u32(68, unsignedValue)
        .u32(72, unsignedValue)
        .u16(76, 4321)
        .i32(84, signedValue)
        .i16(88, -5)
        .u16(90, 7);
    const Samples read = this->read(payload.frame(0x01, 0x07));
    QCOMPARE(read.samples.size(), std::size_t(1));
    const KvGnssPvt &pvt = read.samples[0].gnssPvt;
    QCOMPARE(pvt.iTOW, 4000u);
    QCOMPARE(pvt.year, word);
    for (const quint8 value : {pvt.month, pvt.day, pvt.hour, pvt.min, pvt.sec, pvt.valid,
                               pvt.fixType, pvt.flags, pvt.numSV})
        QCOMPARE(value, byte);
    QCOMPARE(pvt.tAcc, unsignedValue);
    QCOMPARE(pvt.nano, signedValue);
    for (const qint32 value : {pvt.lon, pvt.lat, pvt.height, pvt.hMSL, pvt.velN, pvt.velE, pvt.velD,
                               pvt.gSpeed, pvt.headMot, pvt.headVeh})
        QCOMPARE(value, signedValue);
    for (const quint32 value : {pvt.hAcc, pvt.vAcc, pvt.sAcc, pvt.headAcc})
        QCOMPARE(value, unsignedValue);
    // NAV-PVT's own pDOP is not taken: the epoch has no NAV-DOP.
    QCOMPARE(pvt.pDOP, quint16(0));
}

void tst_UbxReader::timeUtcAndDopFields()
{
    Payload utc(20);
    utc.u32(0, 7000)
        .u32(4, 0xFFFFFFFF)
        .i32(8, -999999999)
        .u16(12, 65535)
        .u8(14, 12)
        .u8(15, 31)
        .u8(16, 23)
        .u8(17, 59)
        .u8(18, 60)
        .u8(19, 0xF7);
    const Samples read = this->read(utc.frame(0x01, 0x21) + navDop(7000, 65529));
    QCOMPARE(read.samples.size(), std::size_t(1));
    const KvGpsUtcTime &time = read.samples[0].gpsUtcTime;
    QCOMPARE(time.iTOW, 7000u);
    QCOMPARE(time.tAcc, 0xFFFFFFFFu);
    QCOMPARE(time.nano, -999999999);
    QCOMPARE(time.year, quint16(65535));
    QCOMPARE(time.month, quint8(12));
    QCOMPARE(time.day, quint8(31));
    QCOMPARE(time.hour, quint8(23));
    QCOMPARE(time.min, quint8(59));
    QCOMPARE(time.sec, quint8(60));
    QCOMPARE(time.valid, quint8(0xF7));
    const KvGpsDop &dop = read.samples[0].gpsDop;
    QCOMPARE(dop.iTOW, 7000u);
    QCOMPARE(dop.gDOP, quint16(65529));
    QCOMPARE(dop.eDOP, quint16(65535));
    QCOMPARE(read.properties.value(QStringLiteral("StartTime")).toString(),
             QStringLiteral("65535-12-31 23:59:60"));
}

void tst_UbxReader::shortNavPvtHasNoVehicleHeading()
{
    const Samples read = this->read(navPvt(1000, 84) + navPvt(2000, 92));
    QCOMPARE(read.samples.size(), std::size_t(2));
    QCOMPARE(read.samples[0].gnssPvt.iTOW, 1000u);
    QCOMPARE(read.samples[0].gnssPvt.headVeh, 0);
    QCOMPARE(read.samples[0].gnssPvt.sec, quint8(15));
    QCOMPARE(read.samples[1].gnssPvt.headVeh, -1234567);
}

void tst_UbxReader::pvtTakesTheDilutionsOfItsEpoch()
{
    const Samples read =
        this->read(navPvt(1000) + navDop(1000, 200) + navPvt(2000) + navDop(3000, 300));
    QCOMPARE(read.samples.size(), std::size_t(3));
    const KvGnssPvt &first = read.samples[0].gnssPvt;
    QCOMPARE(first.gDOP, quint16(200));
    QCOMPARE(first.pDOP, quint16(201));
    QCOMPARE(first.tDOP, quint16(202));
    QCOMPARE(first.vDOP, quint16(203));
    QCOMPARE(first.hDOP, quint16(204));
    QCOMPARE(first.nDOP, quint16(205));
    QCOMPARE(first.eDOP, quint16(206));
    QCOMPARE(read.samples[1].gnssPvt.pDOP, quint16(0));
    QCOMPARE(read.samples[1].gnssPvt.gDOP, quint16(0));
    // An epoch with NAV-DOP alone has no PVT record.
    QCOMPARE(read.samples[2].gnssPvt.iTOW, 0u);
    QCOMPARE(read.samples[2].gpsDop.gDOP, quint16(300));
}

void tst_UbxReader::badChecksumIsSkippedFromTheNextByte()
{
    QByteArray bad = navSol(1000);
    bad[bad.size() - 1] = char(bad[bad.size() - 1] ^ 1);
    // A good frame hidden inside a bad one's payload is found, as the scan goes on after the bad
    // sync.
    Payload carrier(navDop(2000).size() + 4);
    QByteArray inner = carrier.frame(0x01, 0x99);
    inner.replace(8, navDop(2000).size(), navDop(2000));
    inner[inner.size() - 2] = char(inner[inner.size() - 2] ^ 0xFF);
    const Samples read = this->read(bad + navSol(3000) + inner);
    QCOMPARE(read.error, QString());
    QCOMPARE(read.samples.size(), std::size_t(2));
    QCOMPARE(read.samples[0].gpsDop.iTOW, 2000u);
    QCOMPARE(read.samples[1].gpsSolution.iTOW, 3000u);
    QCOMPARE(read.statistics.badChecksums, qint64(2));
    QCOMPARE(read.statistics.frames, qint64(2));
    QCOMPARE(read.statistics.skippedBytes(),
             qint64(bad.size() + inner.size() - navDop(2000).size()));
}

void tst_UbxReader::frameCutAtTheEnd()
{
    const QByteArray cut = navPvt(2000).left(50);
    const Samples read = this->read(navPvt(1000) + cut);
    QCOMPARE(read.samples.size(), std::size_t(1));
    QCOMPARE(read.statistics.cutFrames, qint64(1));
    QCOMPARE(read.statistics.skippedBytes(), qint64(cut.size()));
    // Cut within its header too.
    const Samples header = this->read(navPvt(1000) + navPvt(2000).left(4));
    QCOMPARE(header.samples.size(), std::size_t(1));
    QCOMPARE(header.statistics.cutFrames, qint64(1));
}

void tst_UbxReader::nmeaBetweenFrames()
{
    const QByteArray log =
        gga + navSol(1000) + gga + gga + navSol(1200) + "\xB5" + gga + navSol(1400) + gga;
    const Samples read = this->read(log);
    QCOMPARE(read.samples.size(), std::size_t(3));
    QCOMPARE(read.statistics.skippedBytes(), qint64(5 * gga.size() + 1));
    QCOMPARE(read.statistics.bytes, qint64(log.size()));
    QCOMPARE(read.rate, 5.0);
}

void tst_UbxReader::epochsOutOfOrder()
{
    const Samples read = this->read(navSol(3000) + navDop(3000) + navSol(1000) + navSol(2000)
                                    + navDop(1000) + navSat(2000, 3));
    QCOMPARE(read.samples.size(), std::size_t(3));
    for (std::size_t i = 0; i < 3; ++i) {
        QCOMPARE(read.samples[i].packetCounter, quint16(i));
        QCOMPARE(read.samples[i].gpsSolution.iTOW, quint32(1000 * (i + 1)));
    }
    QCOMPARE(read.samples[0].gpsDop.iTOW, 1000u);
    QCOMPARE(read.samples[1].gnssSatellites.numSvs, quint8(3));
    QCOMPARE(read.samples[1].gpsDop.iTOW, 0u);
    QCOMPARE(read.samples[2].gpsDop.iTOW, 3000u);
    QCOMPARE(read.statistics.epochs, qint64(3));
}

void tst_UbxReader::repeatedMessageFirstCounts()
{
    // Again right after, and again after another epoch.
    const Samples read =
        this->read(navSol(1000, 1) + navSol(1000, 2) + navSol(2000, 3) + navSol(1000, 4));
    QCOMPARE(read.samples.size(), std::size_t(2));
    QCOMPARE(read.samples[0].gpsSolution.fTOW, 1);
    QCOMPARE(read.samples[1].gpsSolution.fTOW, 3);
    QCOMPARE(read.statistics.repeated, qint64(2));
}

void tst_UbxReader::satelliteListsBeyondCapacity()
{
    const Samples read = this->read(navSvInfo(1000, 20, 3) + navSat(1000, 70));
    QCOMPARE(read.samples.size(), std::size_t(1));
    const KvGpsSatelliteInfo &gps = read.samples[0].gpsSatellites;
    QCOMPARE(gps.numCh, quint8(20));
    QCOMPARE(gps.channels[0].svid, quint8(3));
    QCOMPARE(gps.channels[15].svid, quint8(18));
    QCOMPARE(gps.channels[15].quality, quint8(7));
    const KvGnssSatelliteInfo &gnss = read.samples[0].gnssSatellites;
    QCOMPARE(gnss.numSvs, quint8(70));
    QCOMPARE(gnss.satellites[59].svId, quint8(60));
    QCOMPARE(gnss.satellites[59].gnssId, quint8(59 % 7));
    QCOMPARE(gnss.satellites[59].cno, quint8(20 + 59 % 30));
    QCOMPARE(gnss.satellites[59].flags, 0x80000000u | 59u);
    QCOMPARE(read.statistics.gpsSatellites.size(), 20);
    QCOMPARE(read.statistics.gnssSatellites.size(), 70);
}

void tst_UbxReader::timeOfWeekZeroHoldsNoData()
{
    // The first epoch of a week, between the last of the week before and the second.
    const Samples read =
        this->read(navSol(604799800, 5, 2445) + navPvtAt(2446, 0) + navSol(0, 5, 2446)
                   + navTimeUtcAt(2446, 0) + navSol(200, 5, 2446));
    QCOMPARE(read.samples.size(), std::size_t(3));
    QCOMPARE(read.samples[0].gpsSolution.iTOW, 604799800u);
    QCOMPARE(read.samples[1].packetCounter, quint16(1));
    QCOMPARE(read.samples[1].gpsSolution.iTOW, 0u);
    QCOMPARE(read.samples[1].gpsSolution.week, qint16(0));
    QCOMPARE(read.samples[1].gnssPvt.year, quint16(0));
    QCOMPARE(read.samples[1].gpsUtcTime.year, quint16(0));
    QCOMPARE(read.samples[2].gpsSolution.iTOW, 200u);
    // Its date does not start the recording either, and what it held is counted.
    QCOMPARE(read.properties.value(QStringLiteral("StartTime")).toString(), QStringLiteral("0"));
    QCOMPARE(read.statistics.atTimeOfWeekZero, qint64(3));
    QCOMPARE(read.rate, 5.0);
}

void tst_UbxReader::properties_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QString>("startTime");
    QTest::addColumn<double>("rate");
    QTest::addColumn<QVariant>("firmware");

    QTest::newRow("start from the first epoch's PVT, in time order")
        << navPvtAt(2445, 2000) + navPvtAt(2445, 1000) + monVer("ROM 1.00 (x)")
        << startTimeAt(2445, 1000) << 1.0 << QVariant(QStringLiteral("ROM 1.00 (x)"));
    QTest::newRow("a PVT whose flags call its date not valid does not start the recording")
        << navPvtAt(2445, 1000, 0) + navPvtAt(2445, 2000) << startTimeAt(2445, 2000) << 1.0
        << QVariant();
    QTest::newRow("nor one with a valid date but not a valid time") << navPvtAt(2445, 1000, 0x01)
            + navPvtAt(2445, 2000) << startTimeAt(2445, 2000) << 1.0 << QVariant();
    QTest::newRow("nor a UTC time that is not valid UTC")
        << navTimeUtcAt(2445, 1000, 0x03) + navTimeUtcAt(2445, 2000) << startTimeAt(2445, 2000)
        << 1.0 << QVariant();
    QTest::newRow("the first dated epoch in time, across the end of a week")
        << navPvtAt(2446, 500) + navPvtAt(2445, 604799500) << startTimeAt(2445, 604799500) << 1.0
        << QVariant();
    QTest::newRow("an undated PVT gives way to the epoch's UTC time")
        << navPvt(1000, 92, 2026, 0, 21) + navTimeUtc(1000, 2025, 2, 3)
        << QStringLiteral("2025-02-03 12:34:56") << 0.0 << QVariant();
    QTest::newRow("an undated epoch gives way to the next")
        << navTimeUtc(1000, 0, 1, 1) + navTimeUtc(1100, 2024, 7, 8, 0)
        << QStringLiteral("2024-07-08 00:34:56") << 10.0 << QVariant();
    QTest::newRow("no date at all") << navSol(1000) << QStringLiteral("0") << 0.0 << QVariant();
    QTest::newRow("median of an odd number of steps")
        << navSol(1000) + navSol(1100) + navSol(1300) + navSol(1350) << QStringLiteral("0") << 10.0
        << QVariant();
    QTest::newRow("median of an even number of steps, between the middle two")
        << navSol(1000) + navSol(1100) + navSol(1400) << QStringLiteral("0") << 1000.0 / 200.0
        << QVariant();
    QTest::newRow("an empty software version makes no property")
        << navSol(1000) + monVer("") + monVer("later") << QStringLiteral("0") << 0.0 << QVariant();
    QTest::newRow("a software version cannot break the header's line")
        << navSol(1000) + monVer("ROM 1.00\r\n// Forged: yes\t\x7f") << QStringLiteral("0") << 0.0
        << QVariant(QStringLiteral("ROM 1.00  // Forged: yes"));
}

void tst_UbxReader::properties()
{
    QFETCH(QByteArray, log);
    QFETCH(QString, startTime);
    QFETCH(double, rate);
    QFETCH(QVariant, firmware);

    const Samples read = this->read(log);
    QCOMPARE(read.error, QString());
    QCOMPARE(read.properties.value(QStringLiteral("StartTime")).toString(), startTime);
    QCOMPARE(read.rate, rate);
    QCOMPARE(read.properties.value(QStringLiteral("FirmwareVersion")), firmware);
    // Nothing else is made up.
    QCOMPARE(read.properties.size(), firmware.isValid() ? 2 : 1);
}

void tst_UbxReader::wrongLengthIsNotUsed()
{
    const QByteArray longSol = Payload(53).u32(0, 5000).frame(0x01, 0x06);
    const QByteArray badSvInfo = Payload(8 + 12 * 2).u32(0, 6000).u8(4, 3).frame(0x01, 0x30);
    const Samples read = this->read(longSol + badSvInfo + navSol(7000));
    QCOMPARE(read.samples.size(), std::size_t(1));
    QCOMPARE(read.statistics.wrongLengths, qint64(2));
    QCOMPARE(read.statistics.frames, qint64(3));
}

void tst_UbxReader::frameAcrossBlocks()
{
    // Frames on both sides of every boundary of the scanner's 1 MiB blocks.
    QByteArray log;
    // One append at a time may grow the array only by what it appends.
    log.reserve(3 * (1 << 20) + 1024);
    quint32 iTOW = 1000;
    while (log.size() < 3 * (1 << 20)) {
        iTOW += 100;
        log += navSat(iTOW, 50) + gga.left(int(iTOW / 100 % 50));
    }
    const Samples read = this->read(log);
    QCOMPARE(read.error, QString());
    QCOMPARE(read.samples.size(), std::size_t((iTOW - 1000) / 100));
    QCOMPARE(read.statistics.badChecksums, qint64(0));
    for (std::size_t i = 0; i < read.samples.size(); ++i)
        QCOMPARE(read.samples[i].gnssSatellites.iTOW, quint32(1100 + 100 * i));
}

void tst_UbxReader::pipeIsReadThroughACopy()
{
    const QByteArray log =
        gga + navSol(3000) + navSol(1000) + navPvt(2000, 92, 2026, 11, 21, 0) + navSol(2000);
    const QString path = dir.filePath(QStringLiteral("piped.ubx"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(log);
    file.close();
    QProcess cat;
    cat.start(QStringLiteral("cat"), {path}, QIODevice::ReadOnly);
    QVERIFY(cat.waitForStarted());
    RecordingInput input;
    QVERIFY2(input.open(&cat, QStringLiteral("-")), qPrintable(input.errorString()));
    QCOMPARE(input.format(), RecordingInput::Format::Ubx);
    std::vector<quint32> times;
    while (input.readNext())
        times.push_back(input.sample().gpsSolution.iTOW);
    QCOMPARE(input.errorString(), QString());
    QCOMPARE(times, (std::vector<quint32>{1000, 2000, 3000}));
    QCOMPARE(input.size(), qint64(log.size()));
    cat.waitForFinished();
}

void tst_UbxReader::noFrameIsAnError()
{
    const Samples read = this->read(gga + "\xB5\x62\x01");
    QVERIFY(
        read.error.endsWith(QStringLiteral("log.ubx: holds no UBX frame with a good checksum")));
}

void tst_UbxReader::failedOpenForgetsTheLogBefore_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("error");

    QTest::newRow("a folder") << QStringLiteral("folder")
                              << QStringLiteral("%1: is a directory, not a recording");
    QTest::newRow("a file that is not there")
        << QStringLiteral("missing.ubx")
        << QStringLiteral("%1: cannot be read: ") + systemReason(ENOENT);
}

void tst_UbxReader::failedOpenForgetsTheLogBefore()
{
    QFETCH(QString, name);
    QFETCH(QString, error);
    const QString path = dir.filePath(QStringLiteral("before.ubx"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(monVer("ROM CORE 3.01") + navSol(1000) + navSol(2000));
    file.close();
    QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("folder")));

    UbxReader reader;
    QVERIFY2(reader.open(path), qPrintable(reader.errorString()));
    QVERIFY(reader.readNext());
    const QString next = dir.filePath(name);
    QVERIFY(!reader.open(next));
    QCOMPARE(reader.errorString(), error.arg(next));
    QVERIFY(reader.hasError());
    QCOMPARE(reader.properties(), QVariantMap());
    QCOMPARE(reader.updateRate(), 0.0);
    QCOMPARE(reader.sample().gpsSolution.iTOW, 0u);
    QCOMPARE(reader.statistics().frames, qint64(0));
    QCOMPARE(reader.size(), qint64(0));
    QVERIFY(!reader.readNext());
}

void tst_UbxReader::detection_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("ubx");

    QTest::newRow("a JSON object") << QByteArray("{\"properties\":{}}\n") << false;
    QTest::newRow("a JSON object after a byte-order mark and blanks")
        << QByteArray("\xEF\xBB\xBF \r\n\t{") << false;
    QTest::newRow("a JSON object holding the sync bytes")
        << QByteArray("{\"x\":\"\xB5\x62\"}") << false;
    QTest::newRow("a frame") << navSol(1) << true;
    QTest::newRow("NMEA, then a frame") << gga + navSol(1) << true;
    QTest::newRow("more NMEA than one read, then a frame")
        << gga.repeated(2000) + navSol(1) << true;
    QTest::newRow("sync bytes split by a read")
        << QByteArray((1 << 16) - 1, 'x') + "\xB5\x62" << true;
    QTest::newRow("a first sync byte alone at the end") << QByteArray("abc\xB5") << false;
    QTest::newRow("text without sync bytes") << QByteArray("hello") << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void tst_UbxReader::detection()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, ubx);

    QBuffer buffer(&content);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QCOMPARE(RecordingInput::detect(&buffer) == RecordingInput::Format::Ubx, ubx);

    // The same through a pipe, which a recording is read from only once.
    const QString path = dir.filePath(QStringLiteral("detected"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
    file.close();
    QProcess cat;
    cat.start(QStringLiteral("cat"), {path}, QIODevice::ReadOnly);
    QVERIFY(cat.waitForStarted());
    RecordingInput input;
    input.open(&cat, QStringLiteral("-"));
    QCOMPARE(input.format() == RecordingInput::Format::Ubx, ubx);
    cat.waitForFinished();
}

void tst_UbxReader::sourceAnswersFromTheEpoch()
{
    const QString path = dir.filePath(QStringLiteral("source.ubx"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(navSol(1000) + navSvInfo(1000, 2) + navSol(1200));
    file.close();
    RecordingInput input;
    QVERIFY2(input.open(path), qPrintable(input.errorString()));
    RecordingSource source(&input);
    QVERIFY(input.readNext());
    QCOMPARE(source.gpsSolutionRecord().iTOW, 1000u);
    QCOMPARE(source.gpsSatelliteRecord().numCh, quint8(2));
    QCOMPARE(source.updateRate(), 5.0);
    QVERIFY(input.readNext());
    QCOMPARE(source.packetCounter(), quint16(1));
    QCOMPARE(source.gpsSatelliteRecord().numCh, quint8(0));
    // Nothing is made up for the other groups.
    QVERIFY(source.calibratedAcceleration().isEmpty());
    QVERIFY(!source.hasSampleTimeFine());
    QVERIFY(!input.readNext());
    QVERIFY(!input.hasError());
}

void tst_UbxReader::weeksApartWithTheSameTimeOfWeek()
{
    // A log over more than a week holds every time of week more than once.
    const Samples read = this->read(navSol(100000, 1, 2401) + navDop(100000, 10)
                                    + navSol(100000, 2, 2400) + navDop(100000, 20));
    QCOMPARE(read.error, QString());
    QCOMPARE(read.samples.size(), std::size_t(2));
    QCOMPARE(read.samples[0].gpsSolution.week, qint16(2400));
    QCOMPARE(read.samples[0].gpsDop.gDOP, quint16(20));
    QCOMPARE(read.samples[1].gpsSolution.week, qint16(2401));
    QCOMPARE(read.samples[1].gpsDop.gDOP, quint16(10));
    QCOMPARE(read.statistics.repeated, qint64(0));
}

void tst_UbxReader::logsOfDifferentWeeksJoined_data()
{
    QTest::addColumn<bool>("weekFirst");

    QTest::newRow("each epoch opens with the message that shows its week") << true;
    QTest::newRow("a message without a week comes first") << false;
}

void tst_UbxReader::logsOfDifferentWeeksJoined()
{
    QFETCH(bool, weekFirst);

    // Two logs joined with cat, the later one first. The week comes from
    // NAV-PVT's date and NAV-SOL.
    QByteArray later, earlier;
    for (quint32 iTOW = 1000; iTOW <= 3000; iTOW += 1000) {
        if (weekFirst) {
            later += navPvtAt(2401, iTOW) + navSol(iTOW, 1, 2401) + navDop(iTOW, 1);
            earlier += navPvtAt(2400, iTOW) + navSol(iTOW, 0, 2400) + navDop(iTOW, 0);
        } else {
            later += navDop(iTOW, 1) + navSol(iTOW, 1, 2401) + navPvtAt(2401, iTOW);
            earlier += navDop(iTOW, 0) + navSol(iTOW, 0, 2400) + navPvtAt(2400, iTOW);
        }
    }
    const Samples read = this->read(later + earlier);
    QCOMPARE(read.samples.size(), std::size_t(6));
    for (std::size_t i = 0; i < 6; ++i) {
        QCOMPARE(read.samples[i].gpsSolution.week, qint16(i < 3 ? 2400 : 2401));
        QCOMPARE(read.samples[i].gpsSolution.iTOW, quint32(1000 * (i % 3 + 1)));
        QCOMPARE(read.samples[i].gnssPvt.iTOW, quint32(1000 * (i % 3 + 1)));
        QCOMPARE(read.samples[i].gpsDop.gDOP, quint16(i < 3 ? 0 : 1));
    }
    QCOMPARE(read.properties.value(QStringLiteral("StartTime")).toString(),
             startTimeAt(2400, 1000));
    QCOMPARE(read.statistics.repeated, qint64(0));
    QCOMPARE(read.statistics.firstTime, 2400 * msPerWeek + 1000);
    QCOMPARE(read.statistics.lastTime, 2401 * msPerWeek + 3000);
}

void tst_UbxReader::logAcrossTheEndOfAWeek()
{
    QByteArray log;
    for (quint32 iTOW : {604798000u, 604799000u, 0u, 1000u}) {
        const int week = iTOW > 1000 ? 2445 : 2446;
        log += navSol(iTOW, 0, qint16(week)) + navPvtAt(week, iTOW) + navDop(iTOW);
    }
    const Samples read = this->read(log);
    QCOMPARE(read.samples.size(), std::size_t(4));
    const quint32 times[] = {604798000u, 604799000u, 0u, 1000u};
    for (std::size_t i = 0; i < 4; ++i) {
        QCOMPARE(read.samples[i].packetCounter, quint16(i));
        QCOMPARE(read.samples[i].gpsSolution.iTOW, times[i]);
    }
    QCOMPARE(read.samples[3].gpsSolution.week, qint16(2446));
    QCOMPARE(read.properties.value(QStringLiteral("StartTime")).toString(),
             startTimeAt(2445, 604798000));
    QCOMPARE(read.rate, 1.0);
    QCOMPARE(read.statistics.atTimeOfWeekZero, qint64(3));
}

void tst_UbxReader::weekCarriedAcrossAWrap_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QVector<quint16>>("order");

    // Messages without a week of their own; the samples name them by gDOP.
    QTest::newRow("on into the next week")
        << navDop(604799000, 0) + navDop(400, 1) + navDop(1400, 2) << QVector<quint16>{0, 1, 2};
    QTest::newRow("back into the week before")
        << navDop(1400, 0) + navDop(604799000, 1) + navDop(400, 2) << QVector<quint16>{1, 2, 0};
    QTest::newRow("less than half a week back stays in the week")
        << navDop(302400000, 0) + navDop(1000, 1) << QVector<quint16>{1, 0};
    QTest::newRow("the first week shown places the messages before it") << navDop(604799800, 0)
            + navDop(200, 1) + navSol(400, 0, 2446) + navDop(400, 2)
            + navDop(100, 3) << QVector<quint16>{0, 3, 1, 2};
}

void tst_UbxReader::weekCarriedAcrossAWrap()
{
    QFETCH(QByteArray, log);
    QFETCH(QVector<quint16>, order);

    const Samples read = this->read(log);
    QVector<quint16> got;
    for (const RecordingSample &sample : read.samples)
        got.append(sample.gpsDop.gDOP);
    QCOMPARE(got, order);
}

void tst_UbxReader::generatedLogAcrossTheEndOfAWeek()
{
    // From Saturday morning, an epoch every ten seconds for a week's end and more.
    GeneratorOptions options;
    options.samples = 6000;
    options.rate = 0.1;
    QByteArray log;
    QBuffer buffer(&log);
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QString error;
    QVERIFY2(generateUbxLog(options, &buffer, &error), qPrintable(error));
    const Samples read = this->read(log);
    QCOMPARE(read.error, QString());
    QCOMPARE(read.samples.size(), std::size_t(6000));
    qint64 previous = -1;
    int weeks = 0;
    for (const RecordingSample &sample : read.samples) {
        const qint64 time = sample.gpsSolution.week * msPerWeek + sample.gpsSolution.iTOW;
        QVERIFY(time > previous);
        QCOMPARE(sample.gnssPvt.iTOW, sample.gpsSolution.iTOW);
        weeks += previous >= 0 && sample.gpsSolution.week != read.samples[0].gpsSolution.week;
        previous = time;
    }
    QVERIFY(weeks > 0);
    QCOMPARE(read.samples.back().gpsSolution.week, qint16(read.samples[0].gpsSolution.week + 1));
    QCOMPARE(read.properties.value(QStringLiteral("StartTime")).toString(),
             QStringLiteral("2026-11-21 09:30:00"));
    QCOMPARE(read.statistics.repeated, qint64(0));
}

void tst_UbxReader::noticeCountsEveryMessagePassedOver()
{
    QByteArray badChecksum = navSol(1000);
    badChecksum[badChecksum.size() - 1] = char(badChecksum[badChecksum.size() - 1] ^ 1);
    const QByteArray wrongLength = Payload(53).u32(0, 2000).frame(0x01, 0x06);
    const QByteArray cut = navDop(5000).left(10);
    const QByteArray log = gga + badChecksum + navSol(2000) + wrongLength + navSol(2000, 9)
        + navDop(0) + navSvInfo(0, 1) + navDop(3000) + cut;
    const QString path = dir.filePath(QStringLiteral("notice.ubx"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(log);
    file.close();
    UbxReader reader;
    QVERIFY2(reader.open(path), qPrintable(reader.errorString()));
    while (reader.readNext()) { }
    const qint64 skipped = gga.size() + badChecksum.size() + cut.size();
    QCOMPARE(reader.readingNotice(),
             QStringLiteral("%1: passed over: %2 of %3 bytes outside good UBX frames (frames with "
                            "a bad checksum: 1, cut short at the end: 1); messages of a wrong "
                            "length: 1; repeated messages: 1; messages at time of week 0, which "
                            "hold no data: 2")
                 .arg(path)
                 .arg(skipped)
                 .arg(log.size()));

    // Nothing passed over, nothing to say.
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(navSol(1000) + navDop(1000));
    file.close();
    QVERIFY(reader.open(path));
    QCOMPARE(reader.readingNotice(), QString());
}

void tst_UbxReader::epochsOutOfOrderGiveTheSameSamples_data()
{
    QTest::addColumn<QString>("order");

    QTest::newRow("reversed") << QStringLiteral("reversed");
    QTest::newRow("the second half first") << QStringLiteral("halves");
    QTest::newRow("shuffled within stretches") << QStringLiteral("local");
    QTest::newRow("shuffled") << QStringLiteral("shuffled");
}

void tst_UbxReader::epochsOutOfOrderGiveTheSameSamples()
{
    QFETCH(QString, order);

    GeneratorOptions options;
    options.samples = 3000;
    options.rate = 10;
    QByteArray log;
    QBuffer buffer(&log);
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QString error;
    QVERIFY2(generateUbxLog(options, &buffer, &error), qPrintable(error));
    // Each epoch of the generated log opens with its NAV-SOL.
    const QByteArray solStart("\xB5\x62\x01\x06", 4);
    QVector<QByteArray> epochs;
    int start = log.indexOf(solStart);
    const QByteArray head = log.left(start);
    while (start >= 0) {
        const int next = log.indexOf(solStart, start + 1);
        epochs.append(log.mid(start, next < 0 ? -1 : next - start));
        start = next;
    }
    QCOMPARE(epochs.size(), 3000);
    std::mt19937 random(7);
    if (order == QLatin1String("reversed")) {
        std::reverse(epochs.begin(), epochs.end());
    } else if (order == QLatin1String("halves")) {
        std::rotate(epochs.begin(), epochs.begin() + epochs.size() / 2, epochs.end());
    } else if (order == QLatin1String("local")) {
        for (int i = 0; i < epochs.size(); i += 64)
            std::shuffle(epochs.begin() + i, epochs.begin() + std::min(i + 64, epochs.size()),
                         random);
    } else {
        std::shuffle(epochs.begin(), epochs.end(), random);
    }
    QByteArray shuffled = head;
    for (const QByteArray &epoch : qAsConst(epochs))
        shuffled += epoch;

    const Samples inOrder = this->read(log);
    const Samples outOfOrder = this->read(shuffled);
    QCOMPARE(outOfOrder.error, QString());
    QCOMPARE(outOfOrder.samples.size(), inOrder.samples.size());
    for (std::size_t i = 0; i < inOrder.samples.size(); ++i)
        QCOMPARE(sampleFingerprint(outOfOrder.samples[i]), sampleFingerprint(inOrder.samples[i]));
    QCOMPARE(outOfOrder.properties, inOrder.properties);
    QCOMPARE(outOfOrder.rate, inOrder.rate);
}

void tst_UbxReader::craftedSyncBytesAreScannedOnce()
{
    // A long frame's start at every sixth byte, none of them a frame; then a real one.
    const QByteArray candidate("\xB5\x62\x01\x07\xFF\xFF", 6);
    const QByteArray log = candidate.repeated(100000) + navSol(1000);
    const Samples read = this->read(log);
    QCOMPARE(read.error, QString());
    QCOMPARE(read.samples.size(), std::size_t(1));
    QCOMPARE(read.statistics.frames, qint64(1));
    // Those near the end run past it; the others fail their checksum.
    QCOMPARE(read.statistics.badChecksums + read.statistics.cutFrames, qint64(100000));
    QCOMPARE(read.statistics.skippedBytes(), qint64(candidate.size()) * 100000);
}

void tst_UbxReader::framesBeyondFourGibibytes()
{
#ifdef SANITIZED_BUILD
    QSKIP("4 GiB of zeros take a minute to scan under AddressSanitizer; the plain build reads "
          "them");
#endif
    // A sparse file: frames at its start and beyond 4 GiB, where an offset
    // needs more than 32 bits.
    const QString path = dir.filePath(QStringLiteral("large.ubx"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(navSol(3000) + navDop(3000));
    const qint64 far = (qint64(1) << 32) + 12345;
    QVERIFY(file.seek(far));
    file.write(navSol(1000) + navDop(1000, 7) + navSol(2000));
    file.close();
    UbxReader reader;
    QVERIFY2(reader.open(path), qPrintable(reader.errorString()));
    QVERIFY(reader.readNext());
    QCOMPARE(reader.sample().gpsSolution.iTOW, 1000u);
    QCOMPARE(reader.sample().gpsDop.gDOP, quint16(7));
    QVERIFY(reader.readNext());
    QCOMPARE(reader.sample().gpsSolution.iTOW, 2000u);
    QVERIFY(reader.readNext());
    QCOMPARE(reader.sample().gpsSolution.iTOW, 3000u);
    QCOMPARE(reader.sample().gpsDop.iTOW, 3000u);
    QVERIFY(!reader.readNext());
    QCOMPARE(reader.errorString(), QString());
    file.remove();
}

QTEST_GUILESS_MAIN(tst_UbxReader)
#include "tst_ubxreader.moc"
