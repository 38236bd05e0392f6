#include "jsonlinesreader.h"
#include "recordfields.h"

#include <recordingread.h>
#include <samplelines.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace {

template <typename Record, std::size_t count>
bool allZero(const RecordFields::Field<Record> (&fields)[count], const Record &record)
{
    for (const RecordFields::Field<Record> &field : fields) {
        if (field.load(record) != 0)
            return false;
    }
    return true;
}

void verifyVector(const KvVector &vector, std::initializer_list<double> expected)
{
    QCOMPARE(vector.size(), int(expected.size()));
    int i = 0;
    for (double value : expected)
        QCOMPARE(vector.at(i++), value);
}

} // namespace

// The file format as the reader takes it: every key, the rules for missing
// data, the recording object and the message for every kind of bad line.
// How far it goes with numbers and lines: tests/host/jsonlines/readerlimits.
class tst_JsonLinesReader : public QObject
{
    Q_OBJECT

private slots:
    void everyKeyIsRead();
    void missingData_data();
    void missingData();
    void properties();
    void lineBreaksInPropertyTexts_data();
    void lineBreaksInPropertyTexts();
    void updateRate_data();
    void updateRate();
    void sampleDateTime_data();
    void sampleDateTime();
    void receiverRecordWithoutTimeOfWeekIsAbsent();
    void emptyTriggerObjectIsAPresentTrigger();
    void unknownKeysAreIgnored();
    void emptyLinesAreSkipped();
    void windowsLineEndsAndByteOrderMark();
    void samplesAreReadOneAtATime();
    void badLines_data();
    void badLines();
    void readingStopsAfterABadLine();
    void directoryAsInput();
    void missingFile();
    void unreadableFile();

private:
    static void verifyMissing(const RecordingSample &sample);
};

void tst_JsonLinesReader::verifyMissing(const RecordingSample &s)
{
    QCOMPARE(s.packetCounter, quint16(0));
    QVERIFY(!s.hasSampleTimeFine);
    QCOMPARE(s.sampleTimeFine, quint32(0));
    QVERIFY(s.sampleDateTime.isNull());
    QVERIFY(s.utcTime.isZero());
    QCOMPARE(s.statusWord, 0);
    QCOMPARE(s.clippingFlags, quint16(0));
    QCOMPARE(s.rssi, 0.0);
    QVERIFY(s.calibratedAcceleration.isEmpty());
    QVERIFY(s.freeAcceleration.isEmpty());
    QVERIFY(s.calibratedAngularVelocity.isEmpty());
    QVERIFY(s.magneticField.isEmpty());
    QVERIFY(s.velocityIncrement.isEmpty());
    QVERIFY(s.scrAcceleration.isEmpty());
    QVERIFY(s.scrGyroscopeData.isEmpty());
    QVERIFY(s.scrMagneticField.isEmpty());
    QVERIFY(s.velocity.isEmpty());
    QVERIFY(s.orientationIncrement.isEmpty());
    QVERIFY(s.orientationQuaternion.isEmpty());
    QVERIFY(!s.hasOrientationEuler);
    QVERIFY(s.orientationMatrix.isEmpty());
    QVERIFY(s.latitudeLongitude.isEmpty());
    QCOMPARE(s.altitude, KvConstants::infinity);
    QVERIFY(std::isnan(s.temperature));
    QVERIFY(std::isnan(s.pressure));
    QCOMPARE(s.scrTemperature, quint16(0));
    QVERIFY(s.gyroTemperatures.isEmpty());
    QVERIFY(allZero(RecordFields::gpsSolution, s.gpsSolution));
    QVERIFY(allZero(RecordFields::gpsDop, s.gpsDop));
    QVERIFY(allZero(RecordFields::gpsUtcTime, s.gpsUtcTime));
    QVERIFY(allZero(RecordFields::gpsSatellites, s.gpsSatellites));
    for (const KvGpsChannel &channel : s.gpsSatellites.channels)
        QVERIFY(allZero(RecordFields::gpsChannel, channel));
    QVERIFY(allZero(RecordFields::gnssPvt, s.gnssPvt));
    QVERIFY(allZero(RecordFields::gnssSatellites, s.gnssSatellites));
    for (const KvGnssSatellite &satellite : s.gnssSatellites.satellites)
        QVERIFY(allZero(RecordFields::gnssSatellite, satellite));
    QVERIFY(!s.triggerIn1.isValid());
    QVERIFY(!s.triggerIn2.isValid());
}

void tst_JsonLinesReader::everyKeyIsRead()
{
    const RecordingRead result = readRecording(recordingHeader() + everyKeySampleLine() + "\n");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.samples.size(), 1);
    const RecordingSample &s = result.samples.first();

    QCOMPARE(s.packetCounter, quint16(65535));
    QVERIFY(s.hasSampleTimeFine);
    QCOMPARE(s.sampleTimeFine, quint32(4294967295u));
    QCOMPARE(s.sampleDateTime, QDateTime(QDate(2026, 11, 21), QTime(9, 30, 0, 250)));
    QCOMPARE(s.utcTime.nano, quint32(250000000));
    QCOMPARE(s.utcTime.year, quint16(2026));
    QCOMPARE(s.utcTime.month, quint8(11));
    QCOMPARE(s.utcTime.day, quint8(21));
    QCOMPARE(s.utcTime.hour, quint8(9));
    QCOMPARE(s.utcTime.minute, quint8(30));
    QCOMPARE(s.utcTime.second, quint8(1));
    QCOMPARE(s.utcTime.valid, quint8(7));
    QCOMPARE(s.statusWord, -2);
    QCOMPARE(s.clippingFlags, quint16(3));
    QCOMPARE(s.rssi, -61.5);
    verifyVector(s.calibratedAcceleration, {0.1, 0.2, 9.81});
    verifyVector(s.freeAcceleration, {1, 2, 3});
    verifyVector(s.calibratedAngularVelocity, {4, 5, 6});
    verifyVector(s.magneticField, {7, 8, 9});
    verifyVector(s.velocityIncrement, {10, 11, 12});
    verifyVector(s.scrAcceleration, {13, 14, 15});
    verifyVector(s.scrGyroscopeData, {16, 17, 18});
    verifyVector(s.scrMagneticField, {19, 20, 21});
    verifyVector(s.velocity, {22, 23, 24});
    QVERIFY(!s.orientationIncrement.isEmpty());
    QCOMPARE(s.orientationIncrement[0], 1.0);
    QCOMPARE(s.orientationIncrement[1], 0.001);
    QCOMPARE(s.orientationIncrement[2], 0.002);
    QCOMPARE(s.orientationIncrement[3], 0.003);
    QVERIFY(!s.orientationQuaternion.isEmpty());
    for (int i = 0; i < 4; ++i)
        QCOMPARE(s.orientationQuaternion[i], 0.5);
    QVERIFY(s.hasOrientationEuler);
    QCOMPARE(s.orientationEuler.roll, 10.0);
    QCOMPARE(s.orientationEuler.pitch, 20.0);
    QCOMPARE(s.orientationEuler.yaw, 30.0);
    QVERIFY(!s.orientationMatrix.isEmpty());
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            QCOMPARE(s.orientationMatrix.value(row, column), double(row * 3 + column + 1));
    }
    verifyVector(s.latitudeLongitude, {47.5, 8.25});
    QCOMPARE(s.altitude, 412.5);
    QCOMPARE(s.temperature, 24.75);
    QCOMPARE(s.pressure, 96500.5);
    QCOMPARE(s.scrTemperature, quint16(11500));
    QCOMPARE(s.gyroTemperatures, (QVector<quint16>{6400, 65535, 65535}));

    const KvGpsSolution &sol = s.gpsSolution;
    QCOMPARE(sol.iTOW, quint32(1));
    QCOMPARE(sol.fTOW, qint32(-2));
    QCOMPARE(sol.week, qint16(-3));
    QCOMPARE(sol.gpsFix, quint8(4));
    QCOMPARE(sol.flags, quint8(5));
    QCOMPARE(sol.ecefX, qint32(-6));
    QCOMPARE(sol.ecefY, qint32(7));
    QCOMPARE(sol.ecefZ, qint32(-8));
    QCOMPARE(sol.pAcc, quint32(4294967295u));
    QCOMPARE(sol.ecefVX, qint32(-10));
    QCOMPARE(sol.ecefVY, qint32(11));
    QCOMPARE(sol.ecefVZ, qint32(-12));
    QCOMPARE(sol.sAcc, quint32(13));
    QCOMPARE(sol.pDOP, quint16(65535));
    QCOMPARE(sol.numSV, quint8(255));

    const KvGpsDop &dop = s.gpsDop;
    QCOMPARE(dop.iTOW, quint32(21));
    QCOMPARE(dop.gDOP, quint16(22));
    QCOMPARE(dop.pDOP, quint16(23));
    QCOMPARE(dop.tDOP, quint16(24));
    QCOMPARE(dop.vDOP, quint16(25));
    QCOMPARE(dop.hDOP, quint16(26));
    QCOMPARE(dop.nDOP, quint16(27));
    QCOMPARE(dop.eDOP, quint16(28));

    const KvGpsUtcTime &utc = s.gpsUtcTime;
    QCOMPARE(utc.iTOW, quint32(31));
    QCOMPARE(utc.tAcc, quint32(32));
    QCOMPARE(utc.nano, qint32(-33));
    QCOMPARE(utc.year, quint16(2026));
    QCOMPARE(utc.month, quint8(11));
    QCOMPARE(utc.day, quint8(21));
    QCOMPARE(utc.hour, quint8(9));
    QCOMPARE(utc.min, quint8(30));
    QCOMPARE(utc.sec, quint8(59));
    QCOMPARE(utc.valid, quint8(7));

    const KvGpsSatelliteInfo &svInfo = s.gpsSatellites;
    QCOMPARE(svInfo.iTOW, quint32(41));
    QCOMPARE(svInfo.numCh, quint8(2));
    QCOMPARE(svInfo.channels[0].svid, quint8(42));
    QCOMPARE(svInfo.channels[0].quality, quint8(7));
    QCOMPARE(svInfo.channels[1].svid, quint8(43));
    QCOMPARE(svInfo.channels[1].quality, quint8(4));
    QCOMPARE(svInfo.channels[2].svid, quint8(0));

    const KvGnssPvt &pvt = s.gnssPvt;
    QCOMPARE(pvt.iTOW, quint32(51));
    QCOMPARE(pvt.year, quint16(2026));
    QCOMPARE(pvt.month, quint8(11));
    QCOMPARE(pvt.day, quint8(21));
    QCOMPARE(pvt.hour, quint8(9));
    QCOMPARE(pvt.min, quint8(30));
    QCOMPARE(pvt.sec, quint8(2));
    QCOMPARE(pvt.valid, quint8(55));
    QCOMPARE(pvt.tAcc, quint32(52));
    QCOMPARE(pvt.nano, qint32(-53));
    QCOMPARE(pvt.fixType, quint8(3));
    QCOMPARE(pvt.flags, quint8(1));
    QCOMPARE(pvt.numSV, quint8(20));
    QCOMPARE(pvt.lon, qint32(85417000));
    QCOMPARE(pvt.lat, qint32(-473769000));
    QCOMPARE(pvt.height, qint32(-54));
    QCOMPARE(pvt.hMSL, qint32(55));
    QCOMPARE(pvt.hAcc, quint32(56));
    QCOMPARE(pvt.vAcc, quint32(57));
    QCOMPARE(pvt.velN, qint32(-58));
    QCOMPARE(pvt.velE, qint32(59));
    QCOMPARE(pvt.velD, qint32(-60));
    QCOMPARE(pvt.gSpeed, qint32(61));
    QCOMPARE(pvt.headMot, qint32(-62));
    QCOMPARE(pvt.sAcc, quint32(63));
    QCOMPARE(pvt.headAcc, quint32(64));
    QCOMPARE(pvt.headVeh, qint32(-65));
    QCOMPARE(pvt.gDOP, quint16(66));
    QCOMPARE(pvt.pDOP, quint16(67));
    QCOMPARE(pvt.tDOP, quint16(68));
    QCOMPARE(pvt.vDOP, quint16(69));
    QCOMPARE(pvt.hDOP, quint16(70));
    QCOMPARE(pvt.nDOP, quint16(71));
    QCOMPARE(pvt.eDOP, quint16(72));

    const KvGnssSatelliteInfo &sat = s.gnssSatellites;
    QCOMPARE(sat.iTOW, quint32(81));
    QCOMPARE(sat.numSvs, quint8(1));
    QCOMPARE(sat.satellites[0].gnssId, quint8(2));
    QCOMPARE(sat.satellites[0].svId, quint8(11));
    QCOMPARE(sat.satellites[0].cno, quint8(44));
    QCOMPARE(sat.satellites[0].flags, quint32(4294967295u));
    QCOMPARE(sat.satellites[1].svId, quint8(0));

    QVERIFY(s.triggerIn1.isValid());
    QCOMPARE(s.triggerIn1.line, quint8(1));
    QCOMPARE(s.triggerIn1.polarity, quint8(2));
    QCOMPARE(s.triggerIn1.timestamp, quint32(4294967295u));
    QCOMPARE(s.triggerIn1.frameNumber, quint16(65535));
    QVERIFY(s.triggerIn2.isValid());
    QCOMPARE(s.triggerIn2.line, quint8(2));
    QCOMPARE(s.triggerIn2.polarity, quint8(1));
    QCOMPARE(s.triggerIn2.timestamp, quint32(5));
    QCOMPARE(s.triggerIn2.frameNumber, quint16(6));
}

void tst_JsonLinesReader::missingData_data()
{
    QTest::addColumn<QByteArray>("line");

    QTest::newRow("an empty object holds no data") << QByteArray("{}");
    QTest::newRow("receiver records and triggers with every field null hold no data")
        << QByteArray(R"({"gpsSolution": {"iTOW": null}, "gnssPvt": {"iTOW": null, "lat": null},)"
                      R"( "gpsSatellites": {"channels": null}, "utcTime": {"nano": null}})");
    for (const QString &key : SampleReader::keys()) {
        const QByteArray row = "a null " + key.toLatin1() + " counts as absent";
        QTest::newRow(row.constData()) << QByteArray("{\"" + key.toLatin1() + "\": null}");
    }
}

void tst_JsonLinesReader::missingData()
{
    QFETCH(QByteArray, line);
    const RecordingRead result = readRecording(recordingHeader() + line + '\n');
    QCOMPARE(result.error, QString());
    QCOMPARE(result.samples.size(), 1);
    verifyMissing(result.samples.first());
}

void tst_JsonLinesReader::properties()
{
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("p.jsonl")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        R"({"properties": {"StartTime": "2026-11-21 09:30:00", "FilterProfileVersion": 1,)"
        R"( "Big": 9223372036854775807, "Bigger": 9223372036854775808, "Negative": -5, "Ratio": 1.5,)"
        R"( "Whole": 2.0, "Flag": true, "Off": false, "Nothing": null, "Text": "\u00e9\"\t"}})");
    file.close();
    JsonLinesReader reader;
    QVERIFY2(reader.open(file.fileName()), qPrintable(reader.errorString()));

    QCOMPARE(reader.property(QStringLiteral("StartTime")),
             QVariant(QStringLiteral("2026-11-21 09:30:00")));
    QCOMPARE(reader.property(QStringLiteral("FilterProfileVersion")).userType(),
             int(QMetaType::LongLong));
    QCOMPARE(reader.property(QStringLiteral("FilterProfileVersion")).toLongLong(), 1);
    QCOMPARE(reader.property(QStringLiteral("Big")), QVariant(qint64(9223372036854775807LL)));
    QCOMPARE(reader.property(QStringLiteral("Bigger")).userType(), int(QMetaType::Double));
    QCOMPARE(reader.property(QStringLiteral("Bigger")).toDouble(), 9223372036854775808.0);
    QCOMPARE(reader.property(QStringLiteral("Negative")), QVariant(qint64(-5)));
    QCOMPARE(reader.property(QStringLiteral("Ratio")), QVariant(1.5));
    QCOMPARE(reader.property(QStringLiteral("Whole")).userType(), int(QMetaType::Double));
    QCOMPARE(reader.property(QStringLiteral("Flag")), QVariant(true));
    QCOMPARE(reader.property(QStringLiteral("Off")), QVariant(false));
    QVERIFY(!reader.property(QStringLiteral("Nothing")).isValid());
    QVERIFY(!reader.property(QStringLiteral("Missing")).isValid());
    QCOMPARE(reader.property(QStringLiteral("Text")), QVariant(QString::fromUtf8("\xc3\xa9\"\t")));
    QVERIFY(!reader.readNext());
    QVERIFY(!reader.hasError());
}

void tst_JsonLinesReader::updateRate_data()
{
    QTest::addColumn<QByteArray>("firstLine");
    QTest::addColumn<double>("rate");

    QTest::newRow("an integer rate")
        << QByteArray(R"({"properties": {}, "updateRate": 100})") << 100.0;
    QTest::newRow("a fractional rate")
        << QByteArray(R"({"properties": {}, "updateRate": 99.5})") << 99.5;
    QTest::newRow("no rate reads as 0") << QByteArray(R"({"properties": {}})") << 0.0;
    QTest::newRow("a null rate reads as 0")
        << QByteArray(R"({"properties": {}, "updateRate": null})") << 0.0;
}

void tst_JsonLinesReader::updateRate()
{
    QFETCH(QByteArray, firstLine);
    QFETCH(double, rate);
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("r.jsonl")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(firstLine + '\n');
    file.close();
    JsonLinesReader reader;
    QVERIFY2(reader.open(file.fileName()), qPrintable(reader.errorString()));
    QCOMPARE(reader.updateRate(), rate);
}

void tst_JsonLinesReader::sampleDateTime_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QDateTime>("expected");

    QTest::newRow("milliseconds without a zone are local time")
        << QByteArray(R"({"sampleDateTime": "2026-11-21T09:30:00.250"})")
        << QDateTime(QDate(2026, 11, 21), QTime(9, 30, 0, 250), Qt::LocalTime);
    QTest::newRow("a trailing Z is UTC")
        << QByteArray(R"({"sampleDateTime": "2026-11-21T09:30:00.250Z"})")
        << QDateTime(QDate(2026, 11, 21), QTime(9, 30, 0, 250), Qt::UTC);
    QTest::newRow("whole seconds are accepted")
        << QByteArray(R"({"sampleDateTime": "2026-11-21T09:30:07"})")
        << QDateTime(QDate(2026, 11, 21), QTime(9, 30, 7));
}

void tst_JsonLinesReader::sampleDateTime()
{
    QFETCH(QByteArray, line);
    QFETCH(QDateTime, expected);
    const QDateTime read = readSample(line).sampleDateTime;
    QCOMPARE(read, expected);
    QCOMPARE(read.timeSpec(), expected.timeSpec());
}

void tst_JsonLinesReader::receiverRecordWithoutTimeOfWeekIsAbsent()
{
    const RecordingSample s = readSample(
        R"({"gnssPvt": {"iTOW": 0, "lat": 5}, "gpsSolution": {"week": 3}, "gpsDop": {"iTOW": 0, "pDOP": 1},)"
        R"( "gpsUtcTime": {"year": 2026}, "gpsSatellites": {"numCh": 1, "channels": [{"svid": 3}]},)"
        R"( "gnssSatellites": {"iTOW": 0, "numSvs": 1, "satellites": [{"svId": 3}]}})");
    verifyMissing(s);
}

void tst_JsonLinesReader::emptyTriggerObjectIsAPresentTrigger()
{
    const RecordingSample s = readSample(R"({"triggerIn1": {}})");
    QVERIFY(s.triggerIn1.isValid());
    QCOMPARE(s.triggerIn1.timestamp, quint32(0));
    QVERIFY(!s.triggerIn2.isValid());
}

void tst_JsonLinesReader::unknownKeysAreIgnored()
{
    const RecordingSample s = readSample(
        R"({"future": [1, {"a": "b"}], "future": 2, "packetCounter": 7,)"
        R"( "gnssPvt": {"iTOW": 9, "extra": "x", "extra": [1]}, "triggerIn1": {"colour": "red"}})");
    QCOMPARE(s.packetCounter, quint16(7));
    QCOMPARE(s.gnssPvt.iTOW, quint32(9));
    QVERIFY(s.triggerIn1.isValid());
}

void tst_JsonLinesReader::emptyLinesAreSkipped()
{
    const RecordingRead result = readRecording("\n  \n" + recordingHeader()
                                               + "\n\t\n"
                                                 R"({"packetCounter": 1})"
                                                 "\n\n"
                                                 R"({"packetCounter": 2})"
                                                 "\n \n");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.samples.size(), 2);
    QCOMPARE(result.samples.at(0).packetCounter, quint16(1));
    QCOMPARE(result.samples.at(1).packetCounter, quint16(2));
}

void tst_JsonLinesReader::windowsLineEndsAndByteOrderMark()
{
    const RecordingRead result = readRecording("\xEF\xBB\xBF"
                                               R"({"properties": {"A": "b"}, "updateRate": 50})"
                                               "\r\n"
                                               R"({"packetCounter": 1})"
                                               "\r\n\r\n"
                                               R"({"packetCounter": 2})");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.samples.size(), 2);
    QCOMPARE(result.samples.at(1).packetCounter, quint16(2));
}

void tst_JsonLinesReader::samplesAreReadOneAtATime()
{
    QByteArray content = recordingHeader();
    // One append at a time may grow the array only by what it appends.
    content.reserve(content.size() + 20000 * 48);
    for (int i = 0; i < 20000; ++i)
        content += R"({"packetCounter": )" + QByteArray::number(i % 65536)
            + R"(, "sampleTimeFine": )" + QByteArray::number(i * 100) + "}\n";
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("long.jsonl")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();

    JsonLinesReader reader;
    QVERIFY2(reader.open(file.fileName()), qPrintable(reader.errorString()));
    int count = 0;
    while (reader.readNext()) {
        QCOMPARE(reader.sample().packetCounter, quint16(count));
        QCOMPARE(reader.sample().sampleTimeFine, quint32(count * 100));
        ++count;
    }
    QVERIFY(!reader.hasError());
    QCOMPARE(count, 20000);
    QVERIFY(!reader.readNext());
}

void tst_JsonLinesReader::lineBreaksInPropertyTexts_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("text"); // as the JSON text writes it
    QTest::addColumn<bool>("refused");

    for (const char *key : {"StartTime", "FilterProfile", "FilterProfileVersion",
                            "FilterProfileType", "OptionFlags", "FirmwareVersion"}) {
        QTest::addRow("a line feed in %s, a header line, is refused", key)
            << key << QByteArray("a\\nb") << true;
        QTest::addRow("a carriage return in %s, a header line, is refused", key)
            << key << QByteArray("a\\r") << true;
        QTest::addRow("a NUL in %s, a header line, is refused", key)
            << key << QByteArray("\\u0000") << true;
    }
    QTest::newRow("a line feed in a free text is kept")
        << "Notes" << QByteArray("walked\\nthen ran") << false;
    QTest::newRow("line ends and a NUL in a free text are kept")
        << "Notes" << QByteArray("\\r\\n\\u0000") << false;
    QTest::newRow("a line feed in a device id is kept for the file name to judge")
        << "DeviceId" << QByteArray("01\\n23") << false;
}

void tst_JsonLinesReader::lineBreaksInPropertyTexts()
{
    QFETCH(QString, key);
    QFETCH(QByteArray, text);
    QFETCH(bool, refused);

    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("rec.jsonl")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{\"properties\": {\"" + key.toUtf8() + "\": \"" + text
               + "\"}}\n{\"packetCounter\": 1}\n");
    file.close();
    JsonLinesReader reader;
    if (refused) {
        QVERIFY(!reader.open(file.fileName()));
        QCOMPARE(reader.errorString(),
                 file.fileName()
                     + QStringLiteral(":1: \"properties.%1\": the text holds a line break or a "
                                      "NUL character")
                           .arg(key));
        return;
    }
    QVERIFY2(reader.open(file.fileName()), qPrintable(reader.errorString()));
    QString expected = QString::fromLatin1(text);
    expected.replace(QLatin1String("\\n"), QLatin1String("\n"))
        .replace(QLatin1String("\\r"), QLatin1String("\r"))
        .replace(QLatin1String("\\u0000"), QString(QChar(0)));
    QCOMPARE(reader.property(key), QVariant(expected));
    QVERIFY(reader.readNext());
    QCOMPARE(reader.sample().packetCounter, quint16(1));
}

void tst_JsonLinesReader::badLines_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("samplesBefore");

    const QByteArray good = R"({"packetCounter": 1})"
                            "\n";
    const auto file = [](const QByteArray &body) { return QByteArray(recordingHeader() + body); };

    QTest::newRow("an empty file has no recording object")
        << QByteArray() << "rec.jsonl:1: the file holds no recording object" << 0;
    QTest::newRow("a file of empty lines has no recording object")
        << QByteArray("\n \n\n") << "rec.jsonl:4: the file holds no recording object" << 0;
    QTest::newRow("a first line that is a list")
        << QByteArray("[1, 2]\n") << "rec.jsonl:1: expected a JSON object, got a list" << 0;
    QTest::newRow("a first line without properties")
        << QByteArray(R"({"updateRate": 100})"
                      "\n")
        << "rec.jsonl:1: the first line must be the recording object, with \"properties\"" << 0;
    QTest::newRow("a sample as the first line")
        << QByteArray(good)
        << "rec.jsonl:1: the first line must be the recording object, with \"properties\"" << 0;
    QTest::newRow("properties that are a list")
        << QByteArray(R"({"properties": []})"
                      "\n")
        << "rec.jsonl:1: \"properties\": expected an object, got a list" << 0;
    QTest::newRow("a property that is an object")
        << QByteArray(R"({"properties": {"DeviceId": {"a": 1}}})"
                      "\n")
        << "rec.jsonl:1: \"properties.DeviceId\": expected a string, a number, a boolean or null, "
           "got an object"
        << 0;
    QTest::newRow("an update rate that is a string")
        << QByteArray(R"({"properties": {}, "updateRate": "100"})"
                      "\n")
        << "rec.jsonl:1: \"updateRate\": expected a number, got a string" << 0;
    QTest::newRow("a property given twice")
        << QByteArray(R"({"properties": {"DeviceId": "A", "DeviceId": "B"}})"
                      "\n")
        << "rec.jsonl:1: \"properties.DeviceId\": the key appears more than once" << 0;
    QTest::newRow("properties given twice")
        << QByteArray(R"({"properties": {}, "properties": {}})"
                      "\n")
        << "rec.jsonl:1: \"properties\": the key appears more than once" << 0;
    QTest::newRow("malformed JSON on the first line")
        << QByteArray(R"({"properties": {})"
                      "\n")
        << "rec.jsonl:1: malformed JSON at column 18: Missing a comma or '}' after an object "
           "member."
        << 0;

    QTest::newRow("a bad line in the middle")
        << file(good
                + R"({"packetCounter": "1"})"
                  "\n"
                + good)
        << "rec.jsonl:3: \"packetCounter\": expected an integer, got a string" << 1;
    QTest::newRow("a bad line at the end")
        << file(good + good + R"({"packetCounter": -1})")
        << "rec.jsonl:4: \"packetCounter\": -1 is out of range (0..65535)" << 2;
    QTest::newRow("empty lines count in the line number")
        << file("\n\n" + good + "\n"
                + R"({"rssi": true})"
                  "\n")
        << "rec.jsonl:6: \"rssi\": expected a number, got a boolean" << 1;
    QTest::newRow("a file ending in the middle of a line")
        << file(good + R"({"packetCounter": 2, "calibratedAcc)")
        << "rec.jsonl:3: malformed JSON at column 36: Missing a closing quotation mark in string."
        << 1;
    QTest::newRow("a file ending after a comma")
        << file(good + R"({"packetCounter": 2,)")
        << "rec.jsonl:3: malformed JSON at column 21: Missing a name for object member." << 1;
    QTest::newRow("trailing text after the object")
        << file(R"({"packetCounter": 2} x)"
                "\n")
        << "rec.jsonl:2: malformed JSON at column 22: The document root must not be followed by "
           "other values."
        << 0;
    QTest::newRow("two objects on one line")
        << file(R"({"packetCounter": 2}{"packetCounter": 3})"
                "\n")
        << "rec.jsonl:2: malformed JSON at column 21: The document root must not be followed by "
           "other values."
        << 0;
    QTest::newRow("a sample that is a number")
        << file("42\n") << "rec.jsonl:2: expected a JSON object, got a number" << 0;
    QTest::newRow("a sample that is a string")
        << file("\"text\"\n") << "rec.jsonl:2: expected a JSON object, got a string" << 0;
    QTest::newRow("a sample that is null")
        << file("null\n") << "rec.jsonl:2: expected a JSON object, got null" << 0;

    QTest::newRow("a fraction where an integer belongs")
        << file(R"({"packetCounter": 1.5})"
                "\n")
        << "rec.jsonl:2: \"packetCounter\": 1.5 is not an integer" << 0;
    QTest::newRow("an integer written with a decimal point")
        << file(R"({"clippingFlags": 3.0})"
                "\n")
        << "rec.jsonl:2: \"clippingFlags\": 3.0 is not an integer" << 0;
    QTest::newRow("an integer written with an exponent")
        << file(R"({"scrTemperature": 1e3})"
                "\n")
        << "rec.jsonl:2: \"scrTemperature\": 1000.0 is not an integer" << 0;
    QTest::newRow("NaN where an integer belongs")
        << file(R"({"packetCounter": NaN})"
                "\n")
        << "rec.jsonl:2: \"packetCounter\": NaN is not an integer" << 0;
    QTest::newRow("an integer beyond 64 bits")
        << file(R"({"sampleTimeFine": 100000000000000000000})"
                "\n")
        << "rec.jsonl:2: \"sampleTimeFine\": 1e+20 is out of range (0..4294967295)" << 0;
    QTest::newRow("an integer just beyond signed 64 bits")
        << file(R"({"sampleTimeFine": 9223372036854775808})"
                "\n")
        << "rec.jsonl:2: \"sampleTimeFine\": 9223372036854775808 is out of range (0..4294967295)"
        << 0;
    QTest::newRow("a packet counter of 65536")
        << file(R"({"packetCounter": 65536})"
                "\n")
        << "rec.jsonl:2: \"packetCounter\": 65536 is out of range (0..65535)" << 0;
    QTest::newRow("a sample time fine of 4294967296")
        << file(R"({"sampleTimeFine": 4294967296})"
                "\n")
        << "rec.jsonl:2: \"sampleTimeFine\": 4294967296 is out of range (0..4294967295)" << 0;
    QTest::newRow("a negative sample time fine")
        << file(R"({"sampleTimeFine": -1})"
                "\n")
        << "rec.jsonl:2: \"sampleTimeFine\": -1 is out of range (0..4294967295)" << 0;
    QTest::newRow("clipping flags of 65536")
        << file(R"({"clippingFlags": 65536})"
                "\n")
        << "rec.jsonl:2: \"clippingFlags\": 65536 is out of range (0..65535)" << 0;
    QTest::newRow("a raw temperature of -1")
        << file(R"({"scrTemperature": -1})"
                "\n")
        << "rec.jsonl:2: \"scrTemperature\": -1 is out of range (0..65535)" << 0;
    QTest::newRow("a status word beyond 32 bits")
        << file(R"({"statusWord": 4294967296})"
                "\n")
        << "rec.jsonl:2: \"statusWord\": 4294967296 is out of range (-2147483648..4294967295)" << 0;
    QTest::newRow("a status word below the lowest signed word")
        << file(R"({"statusWord": -2147483649})"
                "\n")
        << "rec.jsonl:2: \"statusWord\": -2147483649 is out of range (-2147483648..4294967295)"
        << 0;
    QTest::newRow("a gyroscope temperature beyond 16 bits")
        << file(R"({"gyroTemperatures": [1, 65536]})"
                "\n")
        << "rec.jsonl:2: \"gyroTemperatures[1]\": 65536 is out of range (-32768..65535)" << 0;
    QTest::newRow("a gyroscope temperature below the lowest signed word")
        << file(R"({"gyroTemperatures": [-32769]})"
                "\n")
        << "rec.jsonl:2: \"gyroTemperatures[0]\": -32769 is out of range (-32768..65535)" << 0;
    QTest::newRow("gyroscope temperatures that are a number")
        << file(R"({"gyroTemperatures": 6400})"
                "\n")
        << "rec.jsonl:2: \"gyroTemperatures\": expected a list of integers, got a number" << 0;
    QTest::newRow("an 8-bit field at 256")
        << file(R"({"utcTime": {"month": 256}})"
                "\n")
        << "rec.jsonl:2: \"utcTime.month\": 256 is out of range (0..255)" << 0;
    QTest::newRow("an unsigned 16-bit field at -1")
        << file(R"({"gpsDop": {"iTOW": 1, "hDOP": -1}})"
                "\n")
        << "rec.jsonl:2: \"gpsDop.hDOP\": -1 is out of range (0..65535)" << 0;
    QTest::newRow("a signed 16-bit field at 32768")
        << file(R"({"gpsSolution": {"iTOW": 1, "week": 32768}})"
                "\n")
        << "rec.jsonl:2: \"gpsSolution.week\": 32768 is out of range (-32768..32767)" << 0;
    QTest::newRow("a signed 32-bit field at 2147483648")
        << file(R"({"gnssPvt": {"iTOW": 1, "lat": 2147483648}})"
                "\n")
        << "rec.jsonl:2: \"gnssPvt.lat\": 2147483648 is out of range (-2147483648..2147483647)"
        << 0;
    QTest::newRow("an unsigned 32-bit field at 4294967296")
        << file(R"({"gnssPvt": {"iTOW": 4294967296}})"
                "\n")
        << "rec.jsonl:2: \"gnssPvt.iTOW\": 4294967296 is out of range (0..4294967295)" << 0;
    QTest::newRow("a trigger polarity of 256")
        << file(R"({"triggerIn2": {"polarity": 256}})"
                "\n")
        << "rec.jsonl:2: \"triggerIn2.polarity\": 256 is out of range (0..255)" << 0;
    QTest::newRow("a trigger that is true")
        << file(R"({"triggerIn1": true})"
                "\n")
        << "rec.jsonl:2: \"triggerIn1\": expected an object, got a boolean" << 0;
    QTest::newRow("a receiver record that is a list")
        << file(R"({"gnssPvt": [1, 2]})"
                "\n")
        << "rec.jsonl:2: \"gnssPvt\": expected an object, got a list" << 0;
    QTest::newRow("a receiver field that is a string")
        << file(R"({"gpsDop": {"iTOW": 1, "pDOP": "1.2"}})"
                "\n")
        << "rec.jsonl:2: \"gpsDop.pDOP\": expected an integer, got a string" << 0;
    QTest::newRow("a UTC time that is a string")
        << file(R"({"utcTime": "09:30"})"
                "\n")
        << "rec.jsonl:2: \"utcTime\": expected an object, got a string" << 0;
    QTest::newRow("a satellite list that is an object")
        << file(R"({"gnssSatellites": {"iTOW": 1, "satellites": {}}})"
                "\n")
        << "rec.jsonl:2: \"gnssSatellites.satellites\": expected a list, got an object" << 0;
    QTest::newRow("a satellite entry that is not an object")
        << file(R"({"gnssSatellites": {"iTOW": 1, "satellites": [{}, {}, 3]}})"
                "\n")
        << "rec.jsonl:2: \"gnssSatellites.satellites[2]\": expected an object, got a number" << 0;
    QTest::newRow("a bad channel beyond the sixteenth is still checked")
        << file(R"({"gpsSatellites": {"iTOW": 1, "channels": [)" + QByteArray("{}, ").repeated(16)
                + R"({"svid": 256}]}})"
                  "\n")
        << "rec.jsonl:2: \"gpsSatellites.channels[16].svid\": 256 is out of range (0..255)" << 0;
    QTest::newRow("a bad satellite beyond the sixtieth is still checked") << file(
        R"({"gnssSatellites": {"iTOW": 1, "satellites": [)" + QByteArray("{}, ").repeated(60)
        + R"({"cno": -1}]}})"
          "\n") << "rec.jsonl:2: \"gnssSatellites.satellites[60].cno\": -1 is out of range (0..255)"
                                                                          << 0;

    QTest::newRow("a vector that is a string")
        << file(R"({"calibratedAcceleration": "1 2 3"})"
                "\n")
        << "rec.jsonl:2: \"calibratedAcceleration\": expected a list of 3 numbers, got a string"
        << 0;
    QTest::newRow("a vector of two numbers")
        << file(R"({"magneticField": [1, 2]})"
                "\n")
        << "rec.jsonl:2: \"magneticField\": expected a list of 3 numbers, got 2 entries" << 0;
    QTest::newRow("a vector with a string in it")
        << file(R"({"velocity": [1, "2", 3]})"
                "\n")
        << "rec.jsonl:2: \"velocity[1]\": expected a number, got a string" << 0;
    QTest::newRow("a vector with null in it")
        << file(R"({"scrAcceleration": [1, 2, null]})"
                "\n")
        << "rec.jsonl:2: \"scrAcceleration[2]\": expected a number, got null" << 0;
    QTest::newRow("a quaternion of three numbers")
        << file(R"({"orientationQuaternion": [1, 0, 0]})"
                "\n")
        << "rec.jsonl:2: \"orientationQuaternion\": expected a list of 4 numbers, got 3 entries"
        << 0;
    QTest::newRow("Euler angles of four numbers")
        << file(R"({"orientationEuler": [1, 2, 3, 4]})"
                "\n")
        << "rec.jsonl:2: \"orientationEuler\": expected a list of 3 numbers, got 4 entries" << 0;
    QTest::newRow("a position of three numbers")
        << file(R"({"latitudeLongitude": [47, 8, 400]})"
                "\n")
        << "rec.jsonl:2: \"latitudeLongitude\": expected a list of 2 numbers, got 3 entries" << 0;
    QTest::newRow("a matrix of two rows")
        << file(R"({"orientationMatrix": [[1, 0, 0], [0, 1, 0]]})"
                "\n")
        << "rec.jsonl:2: \"orientationMatrix\": expected a list of 3 rows, got 2 entries" << 0;
    QTest::newRow("a matrix with a short row")
        << file(R"({"orientationMatrix": [[1, 0, 0], [0, 1, 0], [0, 0]]})"
                "\n")
        << "rec.jsonl:2: \"orientationMatrix[2]\": expected a list of 3 numbers, got 2 entries"
        << 0;
    QTest::newRow("a matrix written flat")
        << file(R"({"orientationMatrix": [1, 0, 0, 0, 1, 0, 0, 0, 1]})"
                "\n")
        << "rec.jsonl:2: \"orientationMatrix\": expected a list of 3 rows, got 9 entries" << 0;
    QTest::newRow("a matrix row that is a number")
        << file(R"({"orientationMatrix": [[1, 0, 0], 5, [0, 0, 1]]})"
                "\n")
        << "rec.jsonl:2: \"orientationMatrix[1]\": expected a list of 3 numbers, got a number" << 0;
    QTest::newRow("a temperature that is a string")
        << file(R"({"temperature": "25"})"
                "\n")
        << "rec.jsonl:2: \"temperature\": expected a number, got a string" << 0;
    QTest::newRow("an altitude that is a list")
        << file(R"({"altitude": [400]})"
                "\n")
        << "rec.jsonl:2: \"altitude\": expected a number, got a list" << 0;
    QTest::newRow("a date that is not a date")
        << file(R"({"sampleDateTime": "yesterday"})"
                "\n")
        << "rec.jsonl:2: \"sampleDateTime\": \"yesterday\" is not an ISO 8601 date and time" << 0;
    QTest::newRow("a date that is a number")
        << file(R"({"sampleDateTime": 20261121})"
                "\n")
        << "rec.jsonl:2: \"sampleDateTime\": expected a string, got a number" << 0;
    QTest::newRow("a long bad date is shortened in the message")
        << file(R"({"sampleDateTime": ")" + QByteArray(100, 'x') + "\"}\n")
        << QString("rec.jsonl:2: \"sampleDateTime\": \"" + QString(60, QLatin1Char('x'))
                   + "...\" is not an ISO 8601 date and time")
        << 0;

    QTest::newRow("a sample key given twice")
        << file(R"({"packetCounter": 1, "packetCounter": 2})"
                "\n")
        << "rec.jsonl:2: \"packetCounter\": the key appears more than once" << 0;
    QTest::newRow("a sample key given as null and again")
        << file(R"({"temperature": null, "temperature": 20})"
                "\n")
        << "rec.jsonl:2: \"temperature\": the key appears more than once" << 0;
    QTest::newRow("a record field given twice")
        << file(R"({"gnssPvt": {"iTOW": 1, "lat": 1, "lat": 2}})"
                "\n")
        << "rec.jsonl:2: \"gnssPvt.lat\": the key appears more than once" << 0;
    QTest::newRow("a satellite list given twice")
        << file(R"({"gpsSatellites": {"iTOW": 1, "channels": [], "channels": []}})"
                "\n")
        << "rec.jsonl:2: \"gpsSatellites.channels\": the key appears more than once" << 0;

    QTest::newRow("lists nested too deep")
        << file(QByteArray(100000, '[') + QByteArray(100000, ']') + "\n")
        << "rec.jsonl:2: lists and objects nested deeper than 32 levels" << 0;
    QTest::newRow("objects nested too deep under an unknown key")
        << file(R"({"future": )" + QByteArray(R"({"a": )").repeated(40) + "1" + QByteArray(40, '}')
                + "}\n")
        << "rec.jsonl:2: lists and objects nested deeper than 32 levels" << 0;
    QTest::newRow("an unclosed deep nesting")
        << file(QByteArray(3000000, '['))
        << "rec.jsonl:2: lists and objects nested deeper than 32 levels" << 0;
    QTest::newRow("invalid UTF-8 in a string")
        << file("{\"sampleDateTime\": \"2026\xff\"}\n")
        << "rec.jsonl:2: malformed JSON at column 25: Invalid encoding in string." << 0;
    QTest::newRow("invalid UTF-8 in a key")
        << file("{\"\xc3\x28\": 1}\n")
        << "rec.jsonl:2: malformed JSON at column 3: Invalid encoding in string." << 0;
    // The text ends right after the first byte of a four-byte character:
    // nothing past the line's end may be read for the missing three.
    QTest::newRow("a recording object cut short inside a character")
        << QByteArray("{\"properties\": {\"DeviceId\": \"\xf0")
        << "rec.jsonl:1: malformed JSON at column 30: Invalid encoding in string." << 0;
    QTest::newRow("a sample cut short inside a character")
        << file("{\"sampleDateTime\": \"2026-11-21T09:30:00\xf4")
        << "rec.jsonl:2: malformed JSON at column 40: Invalid encoding in string." << 0;
    QTest::newRow("invalid UTF-8 outside strings")
        << file("\xfe\xff\n") << "rec.jsonl:2: malformed JSON at column 1: Invalid value." << 0;
    QTest::newRow("a NUL byte after the object")
        << file(QByteArray("{}\0garbage\n", 11)) << "rec.jsonl:2: NUL byte at column 3" << 0;
    QTest::newRow("a number too large for a double")
        << file(R"({"rssi": 1e999})"
                "\n")
        << "rec.jsonl:2: malformed JSON at column 10: Number too big to be stored in double." << 0;
    QTest::newRow("a control character in a string")
        << file("{\"sampleDateTime\": \"a\tb\"}\n")
        << "rec.jsonl:2: malformed JSON at column 22: Invalid escape character in string." << 0;
}

void tst_JsonLinesReader::badLines()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, message);
    QFETCH(int, samplesBefore);
    const RecordingRead result = readRecording(content);
    QCOMPARE(result.error, message);
    QCOMPARE(result.samples.size(), samplesBefore);
}

void tst_JsonLinesReader::readingStopsAfterABadLine()
{
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("bad.jsonl")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(recordingHeader()
               + R"({"packetCounter": 1})"
                 "\n"
                 "[]\n"
                 R"({"packetCounter": 3})"
                 "\n");
    file.close();

    JsonLinesReader reader;
    QVERIFY(reader.open(file.fileName()));
    QVERIFY(reader.readNext());
    QVERIFY(!reader.hasError());
    QVERIFY(!reader.readNext());
    QVERIFY(reader.hasError());
    const QString message = reader.errorString();
    QVERIFY(!reader.readNext());
    QCOMPARE(reader.errorString(), message);
}

void tst_JsonLinesReader::directoryAsInput()
{
    QTemporaryDir dir;
    JsonLinesReader reader;
    QVERIFY(!reader.open(dir.path()));
    QCOMPARE(reader.errorString(),
             dir.path() + QStringLiteral(": is a directory, not a recording"));
    QVERIFY(!reader.readNext());
}

void tst_JsonLinesReader::missingFile()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("absent.jsonl"));
    JsonLinesReader reader;
    QVERIFY(!reader.open(path));
    QCOMPARE(reader.errorString(),
             path + QStringLiteral(": cannot be read: No such file or directory"));
    QVERIFY(!reader.readNext());
}

void tst_JsonLinesReader::unreadableFile()
{
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("locked.jsonl")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(recordingHeader());
    file.close();
    QVERIFY(file.setPermissions(QFileDevice::WriteOwner));
    if (file.open(QIODevice::ReadOnly))
        QSKIP("this user reads files without read permission (root)");

    JsonLinesReader reader;
    QVERIFY(!reader.open(file.fileName()));
    QCOMPARE(reader.errorString(),
             file.fileName() + QStringLiteral(": cannot be read: Permission denied"));
}

QTEST_GUILESS_MAIN(tst_JsonLinesReader)

#include "tst_jsonlinesreader.moc"
