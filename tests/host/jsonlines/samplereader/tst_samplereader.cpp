#include "jsontape.h"
#include "samplereader.h"

#include <samplefingerprint.h>
#include <samplelines.h>

#include <QtTest>

#include <string>

namespace {

// Reads @p line the fast way into @p sample; the line is copied with the
// padding the fast way may read.
bool readFast(SampleReader &reader, const QByteArray &line, RecordingSample &sample)
{
    std::string text(line.constData(), std::size_t(line.size()));
    text.append(SampleReader::padding, '\0');
    return reader.readFast(text.data(), std::size_t(line.size()), sample);
}

// Reads @p line the careful way into @p sample; false with @p error set for
// a bad line.
bool readCarefully(SampleReader &reader, const QByteArray &line, RecordingSample &sample,
                   QString *error)
{
    std::string text(line.constData(), std::size_t(line.size()));
    JsonTape tape;
    if (!tape.parse(text, error))
        return false;
    if (!tape.root().isObject()) {
        *error = QStringLiteral("not an object");
        return false;
    }
    if (!reader.read(tape.root(), sample)) {
        *error = reader.errorString();
        return false;
    }
    return true;
}

// A sample line of exactly @p length bytes, made long by an unknown text.
QByteArray lineOfLength(std::size_t length)
{
    const QByteArray start = R"({"temperature": 21.5, "note": ")";
    const QByteArray end = R"("})";
    return start + QByteArray(int(length) - start.size() - end.size(), 'a') + end;
}

QByteArray manySatellites()
{
    QByteArray line = R"({"gnssSatellites": {"iTOW": 1, "numSvs": 70, "satellites": [)";
    for (int i = 0; i < 70; ++i)
        line += (i ? ", " : "") + QByteArray(R"({"gnssId": 1, "svId": )") + QByteArray::number(i)
            + R"(, "cno": 40, "flags": 7})";
    return line + "]}}";
}

} // namespace

// The two ways through a sample line: the fast one takes every good line it
// can be sure of and reads it exactly as the careful one does; everything
// else it leaves to the careful one.
class tst_SampleReader : public QObject
{
    Q_OBJECT

private slots:
    void bothWaysReadTheSame_data();
    void bothWaysReadTheSame();
    void fastWayLeavesGoodLinesToTheTape_data();
    void fastWayLeavesGoodLinesToTheTape();
    void fastWayRefusesBadLines_data();
    void fastWayRefusesBadLines();
    void keysALineLacksAreMissing_data();
    void keysALineLacksAreMissing();
    void aRefusedLineLeavesNoTrace();
    void keysMayChangeTheirOrder();
};

void tst_SampleReader::bothWaysReadTheSame_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("every key") << everyKeySampleLine();
    QTest::newRow("an empty object") << QByteArray("{}");
    QTest::newRow("no blanks at all")
        << QByteArray(R"({"packetCounter":1,"calibratedAcceleration":[1,2,3]})");
    QTest::newRow("blanks, tabs and a carriage return")
        << QByteArray("{ \"packetCounter\" :\t1 ,\"temperature\" : 2.5 }\r");
    QTest::newRow("the format's literals") << QByteArray(
        R"({"temperature": NaN, "pressure": Infinity, "altitude": -Infinity, "calibratedAcceleration": [NaN, Infinity, -Infinity]})");
    QTest::newRow("negative zero")
        << QByteArray(R"({"rssi": -0, "temperature": -0.0, "pressure": -0e5})");
    QTest::newRow("digits beyond what a double holds") << QByteArray(
        R"({"calibratedAcceleration": [123456789.12345679, -8821589224548996, 1.00000000000000011102230246251565404236316680908203125]})");
    QTest::newRow("subnormals and tiny numbers")
        << QByteArray(R"({"rssi": 4.9e-324, "temperature": -1e-400})");
    QTest::newRow("integers beyond 64 bits in a double field")
        << QByteArray(R"({"pressure": 100000000000000000000000})");
    QTest::newRow("null values are missing data") << QByteArray(
        R"({"packetCounter": null, "gnssPvt": {"iTOW": 3, "lon": null}, "gpsSatellites": {"iTOW": 1, "channels": null}})");
    QTest::newRow("unknown keys of every kind") << QByteArray(
        R"({"note": "caf\u00e9 \"x\" \\ \/", "list": [1, [2, {"a": null}], true, false], "n": NaN, "i": -Infinity, "packetCounter": 4})");
    QTest::newRow("unknown members in records") << QByteArray(
        R"({"gnssPvt": {"iTOW": 9, "extra": {"deep": [1, 2]}}, "triggerIn1": {"colour": "red"}})");
    QTest::newRow("satellites beyond the record's capacity") << manySatellites();
    QTest::newRow("a receiver record without a time of week")
        << QByteArray(R"({"gpsDop": {"gDOP": 5}})");
    QTest::newRow("a date with a zone")
        << QByteArray(R"({"sampleDateTime": "2026-11-21T09:30:00.250Z"})");
    QTest::newRow("status words written unsigned") << QByteArray(R"({"statusWord": 4294967295})");
    QTest::newRow("text in UTF-8 under an unknown key")
        << QByteArray("{\"name\": \"\xc3\xa9t\xc3\xa9 \xf0\x9f\x9b\xb0\"}");
    QTest::newRow("the longest line the fast way takes")
        << lineOfLength(SampleReader::longestFastLine);
}

void tst_SampleReader::bothWaysReadTheSame()
{
    QFETCH(QByteArray, line);
    SampleReader fastReader;
    RecordingSample fast;
    QVERIFY(readFast(fastReader, line, fast));
    SampleReader carefulReader;
    RecordingSample careful;
    QString error;
    QVERIFY2(readCarefully(carefulReader, line, careful, &error), qPrintable(error));
    QCOMPARE(sampleFingerprint(fast), sampleFingerprint(careful));
}

void tst_SampleReader::fastWayLeavesGoodLinesToTheTape_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("Inf, which the careful parser takes for Infinity")
        << QByteArray(R"({"temperature": Inf})");
    QTest::newRow("-NaN") << QByteArray(R"({"pressure": -NaN})");
    QTest::newRow("a number near the largest double") << QByteArray(R"({"altitude": 1.5e308})");
    QTest::newRow("a key written with an escape") << QByteArray(R"({"packet\u0043ounter": 9})");
    QTest::newRow("an unknown key written with an escape")
        << QByteArray(R"({"n\u00e9": 1, "packetCounter": 2})");
    QTest::newRow("a line longer than the fast way takes")
        << lineOfLength(SampleReader::longestFastLine + 1);
    QTest::newRow("a long fraction whose exponent simdjson would misread")
        << "{\"temperature\": 0." + QByteArray(655359, '0') + "1e655360}";
}

void tst_SampleReader::fastWayLeavesGoodLinesToTheTape()
{
    QFETCH(QByteArray, line);
    SampleReader reader;
    RecordingSample sample;
    QVERIFY(!readFast(reader, line, sample));
    QString error;
    QVERIFY2(readCarefully(reader, line, sample, &error), qPrintable(error));
}

void tst_SampleReader::fastWayRefusesBadLines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("a second object after the first") << QByteArray(R"({"packetCounter": 1} {})");
    QTest::newRow("a stray closing brace") << QByteArray(R"({"packetCounter": 1}})");
    QTest::newRow("a key given twice") << QByteArray(R"({"packetCounter": 1, "packetCounter": 2})");
    QTest::newRow("a record field given twice")
        << QByteArray(R"({"gpsDop": {"iTOW": 1, "iTOW": 2}})");
    QTest::newRow("an unknown value nested too deep")
        << QByteArray(R"({"x": )" + QByteArray(40, '[') + QByteArray(40, ']') + "}");
    QTest::newRow("an invalid escape in an unknown key") << QByteArray(R"({"a\x": 1})");
    QTest::newRow("a misspelled literal in an unknown value") << QByteArray(R"({"x": nulll})");
    QTest::newRow("a cut literal") << QByteArray(R"({"x": tru})");
    QTest::newRow("a tab inside a string") << QByteArray("{\"x\": \"a\tb\"}");
    QTest::newRow("invalid UTF-8") << QByteArray("{\"x\": \"\xff\"}");
    QTest::newRow("a leading zero") << QByteArray(R"({"x": 01})");
    QTest::newRow("a number without its fraction") << QByteArray(R"({"temperature": 1.})");
    QTest::newRow("a comma too many") << QByteArray(R"({"packetCounter": 1,})");
    QTest::newRow("a fraction in an integer field") << QByteArray(R"({"packetCounter": 1.5})");
    QTest::newRow("an integer out of range") << QByteArray(R"({"packetCounter": 65536})");
    QTest::newRow("a vector of two numbers") << QByteArray(R"({"magneticField": [1, 2]})");
    QTest::newRow("a number too large for a double") << QByteArray(R"({"rssi": 1e999})");
    QTest::newRow("a date that is no date") << QByteArray(R"({"sampleDateTime": "yesterday"})");
    QTest::newRow("a list where an object belongs") << QByteArray("[1]");
    QTest::newRow("a NUL byte after the object") << QByteArray("{}\0x", 4);
}

void tst_SampleReader::fastWayRefusesBadLines()
{
    QFETCH(QByteArray, line);
    SampleReader reader;
    RecordingSample sample;
    QVERIFY(!readFast(reader, line, sample));
    QString error;
    QVERIFY(!readCarefully(reader, line, sample, &error));
    QVERIFY(!error.isEmpty());
}

void tst_SampleReader::keysALineLacksAreMissing_data()
{
    QTest::addColumn<bool>("fast");
    QTest::newRow("the fast way") << true;
    QTest::newRow("the careful way") << false;
}

// The storage of the sample before is used again; nothing of its data may
// stay behind.
void tst_SampleReader::keysALineLacksAreMissing()
{
    QFETCH(bool, fast);
    SampleReader reader;
    RecordingSample sample;
    QString error;
    const auto read = [&](const QByteArray &line) {
        return fast ? readFast(reader, line, sample) : readCarefully(reader, line, sample, &error);
    };
    QVERIFY(read(everyKeySampleLine()));
    QVERIFY(read("{}"));
    QCOMPARE(sampleFingerprint(sample), sampleFingerprint(RecordingSample()));
    QVERIFY(read(everyKeySampleLine()));
    QVERIFY(read(R"({"packetCounter": 65535, "calibratedAcceleration": null})"));
    RecordingSample expected;
    expected.packetCounter = 65535;
    expected.hasPacketCounter = true;
    QCOMPARE(sampleFingerprint(sample), sampleFingerprint(expected));
}

// A line the fast way gives up on halfway, then read the careful way, reads
// as if it had been the only one.
void tst_SampleReader::aRefusedLineLeavesNoTrace()
{
    const QByteArray line =
        R"({"packetCounter": 5, "calibratedAcceleration": [1, 2, 3], "temperature": Inf})";
    SampleReader reader;
    RecordingSample sample;
    QVERIFY(readFast(reader, everyKeySampleLine(), sample));
    QVERIFY(!readFast(reader, line, sample));
    QString error;
    QVERIFY2(readCarefully(reader, line, sample, &error), qPrintable(error));

    SampleReader fresh;
    RecordingSample alone;
    QVERIFY(readCarefully(fresh, line, alone, &error));
    QCOMPARE(sampleFingerprint(sample), sampleFingerprint(alone));
}

void tst_SampleReader::keysMayChangeTheirOrder()
{
    SampleReader reader;
    RecordingSample sample;
    QVERIFY(readFast(reader, R"({"packetCounter": 1, "temperature": 2, "pressure": 3})", sample));
    QVERIFY(readFast(reader, R"({"pressure": 6, "packetCounter": 4, "rssi": 7})", sample));
    QCOMPARE(sample.packetCounter, quint16(4));
    QCOMPARE(sample.pressure, 6.0);
    QCOMPARE(sample.rssi, 7.0);
    QVERIFY(std::isnan(sample.temperature));
}

QTEST_GUILESS_MAIN(tst_SampleReader)

#include "tst_samplereader.moc"
