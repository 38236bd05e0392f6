#include "jsonlinesreader.h"
#include "recordfields.h"

#include <numbertexts.h>
#include <recordingread.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>

// How far the reader goes with numbers and lines: every integer field at and
// past its range, what a field keeps of a wider number or a longer list, NaN
// and the infinities, numbers of any length as strtod reads them, and lines
// up to the limit of 4 MiB.
class tst_ReaderLimits : public QObject
{
    Q_OBJECT

private slots:
    void nanAndInfinityLiterals();
    void longNumbersAsStrtodReadsThem_data();
    void longNumbersAsStrtodReadsThem();
    void acceptedLimits_data();
    void acceptedLimits();
    void everyFieldAtAndPastItsRange_data();
    void everyFieldAtAndPastItsRange();
    void statusWordTakesTheLow32Bits_data();
    void statusWordTakesTheLow32Bits();
    void gyroTemperaturesKeepTheLow16Bits();
    void satelliteListsAreTruncated();
    void hugeLine();
    void largeLineBelowTheLimit();
};

void tst_ReaderLimits::nanAndInfinityLiterals()
{
    const RecordingSample s = readSample(
        R"({"temperature": NaN, "pressure": Infinity, "altitude": -Infinity, "rssi": NaN,)"
        R"( "calibratedAcceleration": [NaN, Infinity, -Infinity], "orientationQuaternion": [NaN, 0, 0, 1]})");
    QVERIFY(std::isnan(s.temperature));
    QCOMPARE(s.pressure, std::numeric_limits<double>::infinity());
    QCOMPARE(s.altitude, -std::numeric_limits<double>::infinity());
    QVERIFY(std::isnan(s.rssi));
    QCOMPARE(s.calibratedAcceleration.size(), 3);
    QVERIFY(std::isnan(s.calibratedAcceleration.at(0)));
    QCOMPARE(s.calibratedAcceleration.at(1), std::numeric_limits<double>::infinity());
    QCOMPARE(s.calibratedAcceleration.at(2), -std::numeric_limits<double>::infinity());
    QVERIFY(!s.orientationQuaternion.isEmpty());
    QVERIFY(std::isnan(s.orientationQuaternion[0]));
}

void tst_ReaderLimits::longNumbersAsStrtodReadsThem_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("place");
    for (const int zeros : {65536, 655359, 655360, 655361, 1000000, 1500000}) {
        for (const NumberTexts::LongText &number : NumberTexts::longTexts(zeros)) {
            for (const char *place : {"a property", "the update rate", "a sample"}) {
                QTest::addRow("%s, in %s", qPrintable(number.name), place)
                    << QByteArray::fromStdString(number.text) << place;
            }
        }
    }
}

// However long a number, in the recording object or a sample, it is read as
// strtod reads it, bit for bit.
void tst_ReaderLimits::longNumbersAsStrtodReadsThem()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, place);
    const auto bits = [](double value) {
        quint64 word;
        std::memcpy(&word, &value, sizeof word);
        return word;
    };
    const quint64 expected =
        bits(NumberTexts::byStrtod(std::string_view(text.constData(), std::size_t(text.size()))));

    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("long.jsonl")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    if (place == QLatin1String("a property"))
        file.write("{\"properties\": {\"Scale\": " + text + "}}\n");
    else if (place == QLatin1String("the update rate"))
        file.write("{\"properties\": {}, \"updateRate\": " + text + "}\n");
    else
        file.write(recordingHeader() + "{\"temperature\": " + text
                   + ", \"calibratedAcceleration\": [1, " + text + ", 2]}\n");
    file.close();
    JsonLinesReader reader;
    QVERIFY2(reader.open(file.fileName()), qPrintable(reader.errorString()));
    if (place == QLatin1String("a property")) {
        QCOMPARE(reader.property(QStringLiteral("Scale")).userType(), int(QMetaType::Double));
        QCOMPARE(bits(reader.property(QStringLiteral("Scale")).toDouble()), expected);
    } else if (place == QLatin1String("the update rate")) {
        QCOMPARE(bits(reader.updateRate()), expected);
    } else {
        QVERIFY2(reader.readNext(), qPrintable(reader.errorString()));
        QCOMPARE(bits(reader.sample().temperature), expected);
        QCOMPARE(reader.sample().calibratedAcceleration.size(), 3);
        QCOMPARE(bits(reader.sample().calibratedAcceleration.at(1)), expected);
    }
    QVERIFY(!reader.readNext());
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
}

void tst_ReaderLimits::acceptedLimits_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("field");
    QTest::addColumn<qint64>("value");

    QTest::newRow("packet counter 0")
        << QByteArray(R"({"packetCounter": 0})") << "packetCounter" << qint64(0);
    QTest::newRow("packet counter 65535")
        << QByteArray(R"({"packetCounter": 65535})") << "packetCounter" << qint64(65535);
    QTest::newRow("sample time fine 4294967295") << QByteArray(R"({"sampleTimeFine": 4294967295})")
                                                 << "sampleTimeFine" << qint64(4294967295LL);
    QTest::newRow("clipping flags 65535")
        << QByteArray(R"({"clippingFlags": 65535})") << "clippingFlags" << qint64(65535);
    QTest::newRow("raw temperature 65535")
        << QByteArray(R"({"scrTemperature": 65535})") << "scrTemperature" << qint64(65535);
    QTest::newRow("an 8-bit field at 255")
        << QByteArray(R"({"gnssPvt": {"iTOW": 1, "numSV": 255}})") << "gnssPvt.numSV"
        << qint64(255);
    QTest::newRow("a signed 16-bit field at -32768")
        << QByteArray(R"({"gpsSolution": {"iTOW": 1, "week": -32768}})") << "gpsSolution.week"
        << qint64(-32768);
    QTest::newRow("a signed 16-bit field at 32767")
        << QByteArray(R"({"gpsSolution": {"iTOW": 1, "week": 32767}})") << "gpsSolution.week"
        << qint64(32767);
    QTest::newRow("a signed 32-bit field at -2147483648")
        << QByteArray(R"({"gnssPvt": {"iTOW": 1, "lat": -2147483648}})") << "gnssPvt.lat"
        << qint64(-2147483648LL);
    QTest::newRow("a signed 32-bit field at 2147483647")
        << QByteArray(R"({"gnssPvt": {"iTOW": 1, "lat": 2147483647}})") << "gnssPvt.lat"
        << qint64(2147483647);
    QTest::newRow("an unsigned 32-bit field at 4294967295")
        << QByteArray(R"({"gnssPvt": {"iTOW": 4294967295}})") << "gnssPvt.iTOW"
        << qint64(4294967295LL);
    QTest::newRow("a UTC nanosecond count at 4294967295")
        << QByteArray(R"({"utcTime": {"nano": 4294967295}})") << "utcTime.nano"
        << qint64(4294967295LL);
    QTest::newRow("a trigger frame number at 65535")
        << QByteArray(R"({"triggerIn2": {"frameNumber": 65535}})") << "triggerIn2.frameNumber"
        << qint64(65535);
    QTest::newRow("satellite flags at 4294967295")
        << QByteArray(R"({"gnssSatellites": {"iTOW": 1, "satellites": [{"flags": 4294967295}]}})")
        << "gnssSatellites.satellites[0].flags" << qint64(4294967295LL);
}

void tst_ReaderLimits::acceptedLimits()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, field);
    QFETCH(qint64, value);
    const RecordingRead result = readRecording(recordingHeader() + line + '\n');
    QCOMPARE(result.error, QString());
    QCOMPARE(result.samples.size(), 1);
    const RecordingSample &s = result.samples.first();
    const QHash<QString, qint64> read = {
        {QStringLiteral("packetCounter"), s.packetCounter},
        {QStringLiteral("sampleTimeFine"), s.sampleTimeFine},
        {QStringLiteral("clippingFlags"), s.clippingFlags},
        {QStringLiteral("scrTemperature"), s.scrTemperature},
        {QStringLiteral("gnssPvt.numSV"), s.gnssPvt.numSV},
        {QStringLiteral("gpsSolution.week"), s.gpsSolution.week},
        {QStringLiteral("gnssPvt.lat"), s.gnssPvt.lat},
        {QStringLiteral("gnssPvt.iTOW"), s.gnssPvt.iTOW},
        {QStringLiteral("utcTime.nano"), s.utcTime.nano},
        {QStringLiteral("triggerIn2.frameNumber"), s.triggerIn2.frameNumber},
        {QStringLiteral("gnssSatellites.satellites[0].flags"),
         s.gnssSatellites.satellites[0].flags},
    };
    QVERIFY(read.contains(field));
    QCOMPARE(read.value(field), value);
}

namespace {

// Where an integer field sits in a sample line, and how its value is read
// back from the sample.
struct FieldPlace
{
    QByteArray before; // the line up to the value
    QByteArray after; // the rest of the line
    QString path; // as the reader's messages name it
};

// Rows for one integer field: its lowest and highest values are read, the
// values just past them are refused. @p stored gives the value a written
// number is kept as.
void addRangeRows(
    const FieldPlace &place, qint64 minimum, qint64 maximum,
    qint64 (*stored)(qint64) = [](qint64 value) { return value; })
{
    const auto line = [&place](qint64 value) -> QByteArray {
        return place.before + QByteArray::number(value) + place.after;
    };
    const QString range = QStringLiteral("(%1..%2)").arg(minimum).arg(maximum);
    const auto refused = [&](qint64 value) {
        return QStringLiteral("rec.jsonl:2: \"%1\": %2 is out of range %3")
            .arg(place.path)
            .arg(value)
            .arg(range);
    };
    const QByteArray name = place.path.toLatin1();
    QTest::addRow("%s at its lowest, %lld, is read", name.constData(), minimum)
        << line(minimum) << place.path << stored(minimum) << QString();
    QTest::addRow("%s at its highest, %lld, is read", name.constData(), maximum)
        << line(maximum) << place.path << stored(maximum) << QString();
    QTest::addRow("%s one below its lowest, %lld, is refused", name.constData(), minimum - 1)
        << line(minimum - 1) << place.path << qint64(0) << refused(minimum - 1);
    QTest::addRow("%s one above its highest, %lld, is refused", name.constData(), maximum + 1)
        << line(maximum + 1) << place.path << qint64(0) << refused(maximum + 1);
}

// Rows for every field of a record under @p key. A receiver record needs a
// time of week to count as present; entries of a satellite list sit in the
// list @p listName of a record that has one.
template <typename Record, std::size_t count>
void addRecordRows(const char *key, const RecordFields::Field<Record> (&fields)[count],
                   bool receiver, const char *listName = nullptr)
{
    for (const RecordFields::Field<Record> &field : fields) {
        FieldPlace place;
        const QByteArray name(field.name.data());
        const QByteArray timeOfWeek = receiver && name != "iTOW" ? "\"iTOW\": 1, " : "";
        if (listName) {
            place.before = "{\"" + QByteArray(key) + "\": {\"iTOW\": 1, \"" + listName + "\": [{\""
                + name + "\": ";
            place.after = "}]}}";
            place.path = QStringLiteral("%1.%2[0].%3").arg(key, listName, field.name.data());
        } else {
            place.before = "{\"" + QByteArray(key) + "\": {" + timeOfWeek + "\"" + name + "\": ";
            place.after = "}}";
            place.path = QStringLiteral("%1.%2").arg(key, field.name.data());
        }
        addRangeRows(place, field.minimum, field.maximum);
    }
}

template <typename Record, std::size_t count>
qint64 loadField(const RecordFields::Field<Record> (&fields)[count], const Record &record,
                 const QString &name)
{
    for (const RecordFields::Field<Record> &field : fields) {
        if (name == QLatin1String(field.name.data()))
            return field.load(record);
    }
    return -1;
}

// The value of the field at @p path in @p s.
qint64 readBack(const RecordingSample &s, const QString &path)
{
    const QString key = path.section(QLatin1Char('.'), 0, 0);
    const QString name = path.section(QLatin1Char('.'), -1);
    const QHash<QString, qint64> keys = {
        {QStringLiteral("packetCounter"), s.packetCounter},
        {QStringLiteral("sampleTimeFine"), s.sampleTimeFine},
        {QStringLiteral("clippingFlags"), s.clippingFlags},
        {QStringLiteral("scrTemperature"), s.scrTemperature},
        {QStringLiteral("statusWord"), s.statusWord},
        {QStringLiteral("gyroTemperatures[0]"), s.gyroTemperatures.value(0)},
    };
    if (keys.contains(path))
        return keys.value(path);
    if (key == QLatin1String("utcTime"))
        return loadField(RecordFields::utcTime, s.utcTime, name);
    if (key == QLatin1String("triggerIn1"))
        return loadField(RecordFields::trigger, s.triggerIn1, name);
    if (key == QLatin1String("gpsSolution"))
        return loadField(RecordFields::gpsSolution, s.gpsSolution, name);
    if (key == QLatin1String("gpsDop"))
        return loadField(RecordFields::gpsDop, s.gpsDop, name);
    if (key == QLatin1String("gpsUtcTime"))
        return loadField(RecordFields::gpsUtcTime, s.gpsUtcTime, name);
    if (key == QLatin1String("gnssPvt"))
        return loadField(RecordFields::gnssPvt, s.gnssPvt, name);
    if (path.startsWith(QLatin1String("gpsSatellites.channels[0].")))
        return loadField(RecordFields::gpsChannel, s.gpsSatellites.channels[0], name);
    if (key == QLatin1String("gpsSatellites"))
        return loadField(RecordFields::gpsSatellites, s.gpsSatellites, name);
    if (path.startsWith(QLatin1String("gnssSatellites.satellites[0].")))
        return loadField(RecordFields::gnssSatellite, s.gnssSatellites.satellites[0], name);
    if (key == QLatin1String("gnssSatellites"))
        return loadField(RecordFields::gnssSatellites, s.gnssSatellites, name);
    return -1;
}

} // namespace

void tst_ReaderLimits::everyFieldAtAndPastItsRange_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("path");
    QTest::addColumn<qint64>("stored");
    QTest::addColumn<QString>("message");

    const auto key = [](const char *name) {
        return FieldPlace{"{\"" + QByteArray(name) + "\": ", "}", QString::fromLatin1(name)};
    };
    addRangeRows(key("packetCounter"), 0, 65535);
    addRangeRows(key("sampleTimeFine"), 0, 4294967295LL);
    addRangeRows(key("clippingFlags"), 0, 65535);
    addRangeRows(key("scrTemperature"), 0, 65535);
    addRangeRows(key("statusWord"), -2147483648LL, 4294967295LL,
                 [](qint64 value) { return qint64(qint32(quint32(value))); });
    addRangeRows(
        FieldPlace{"{\"gyroTemperatures\": [", "]}", QStringLiteral("gyroTemperatures[0]")}, -32768,
        65535, [](qint64 value) { return qint64(quint16(value)); });
    addRecordRows("utcTime", RecordFields::utcTime, false);
    addRecordRows("triggerIn1", RecordFields::trigger, false);
    addRecordRows("gpsSolution", RecordFields::gpsSolution, true);
    addRecordRows("gpsDop", RecordFields::gpsDop, true);
    addRecordRows("gpsUtcTime", RecordFields::gpsUtcTime, true);
    addRecordRows("gpsSatellites", RecordFields::gpsSatellites, true);
    addRecordRows("gpsSatellites", RecordFields::gpsChannel, true,
                  RecordFields::gpsChannelList.data());
    addRecordRows("gnssPvt", RecordFields::gnssPvt, true);
    addRecordRows("gnssSatellites", RecordFields::gnssSatellites, true);
    addRecordRows("gnssSatellites", RecordFields::gnssSatellite, true,
                  RecordFields::gnssSatelliteList.data());
}

void tst_ReaderLimits::everyFieldAtAndPastItsRange()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, path);
    QFETCH(qint64, stored);
    QFETCH(QString, message);

    const RecordingRead result = readRecording(recordingHeader() + line + '\n');
    QCOMPARE(result.error, message);
    if (!message.isEmpty()) {
        QCOMPARE(result.samples.size(), 0);
        return;
    }
    QCOMPARE(result.samples.size(), 1);
    QCOMPARE(readBack(result.samples.first(), path), stored);
}

void tst_ReaderLimits::statusWordTakesTheLow32Bits_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<qint32>("word");

    QTest::newRow("the lowest signed word")
        << QByteArray(R"({"statusWord": -2147483648})") << qint32(INT_MIN);
    QTest::newRow("-1 stays -1") << QByteArray(R"({"statusWord": -1})") << qint32(-1);
    QTest::newRow("the highest signed word")
        << QByteArray(R"({"statusWord": 2147483647})") << qint32(INT_MAX);
    QTest::newRow("the top bit written unsigned turns negative")
        << QByteArray(R"({"statusWord": 2147483648})") << qint32(INT_MIN);
    QTest::newRow("all bits written unsigned read as -1")
        << QByteArray(R"({"statusWord": 4294967295})") << qint32(-1);
}

void tst_ReaderLimits::statusWordTakesTheLow32Bits()
{
    QFETCH(QByteArray, line);
    QFETCH(qint32, word);
    QCOMPARE(readSample(line).statusWord, word);
}

void tst_ReaderLimits::gyroTemperaturesKeepTheLow16Bits()
{
    const RecordingSample s = readSample(R"({"gyroTemperatures": [-32768, -1, 0, 6400, 65535]})");
    QCOMPARE(s.gyroTemperatures, (QVector<quint16>{32768, 65535, 0, 6400, 65535}));
    QCOMPARE(readSample(R"({"gyroTemperatures": []})").gyroTemperatures, QVector<quint16>());
}

void tst_ReaderLimits::satelliteListsAreTruncated()
{
    QByteArray gps = R"({"gpsSatellites": {"iTOW": 5, "numCh": 20, "channels": [)";
    for (int i = 0; i < 20; ++i)
        gps += (i ? ", " : "") + QByteArray(R"({"svid": )") + QByteArray::number(i + 1)
            + R"(, "quality": 7})";
    gps += "]}}";
    const RecordingSample withGps = readSample(gps);
    QCOMPARE(withGps.gpsSatellites.numCh, quint8(20));
    for (int i = 0; i < KvGpsSatelliteInfo::maxChannels; ++i)
        QCOMPARE(withGps.gpsSatellites.channels[i].svid, quint8(i + 1));

    QByteArray gnss = R"({"gnssSatellites": {"iTOW": 5, "numSvs": 70, "satellites": [)";
    for (int i = 0; i < 70; ++i)
        gnss += (i ? ", " : "") + QByteArray(R"({"svId": )") + QByteArray::number(i + 1) + "}";
    gnss += "]}}";
    const RecordingSample withGnss = readSample(gnss);
    QCOMPARE(withGnss.gnssSatellites.numSvs, quint8(70));
    for (int i = 0; i < KvGnssSatelliteInfo::maxSatellites; ++i)
        QCOMPARE(withGnss.gnssSatellites.satellites[i].svId, quint8(i + 1));
}

void tst_ReaderLimits::hugeLine()
{
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("huge.jsonl")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(recordingHeader());
    file.write(R"({"packetCounter": 1, "note": ")");
    const QByteArray block(1024 * 1024, 'a');
    for (int i = 0; i < 50; ++i)
        file.write(block);
    file.write("\"}\n{\"packetCounter\": 2}\n");
    file.close();

    JsonLinesReader reader;
    QVERIFY2(reader.open(file.fileName()), qPrintable(reader.errorString()));
    QVERIFY(!reader.readNext());
    QCOMPARE(reader.errorString(),
             file.fileName() + QStringLiteral(":2: the line is longer than 4194304 bytes"));
}

void tst_ReaderLimits::largeLineBelowTheLimit()
{
    const RecordingSample s =
        readSample(R"({"packetCounter": 3, "note": ")" + QByteArray(3 * 1024 * 1024, 'a')
                   + R"(", "temperature": 21.5})");
    QCOMPARE(s.packetCounter, quint16(3));
    QCOMPARE(s.temperature, 21.5);
}

QTEST_GUILESS_MAIN(tst_ReaderLimits)

#include "tst_readerlimits.moc"
