#include "jsonlinesreader.h"
#include "orientationmath.h"
#include "recordinggenerator.h"
#include "uloggenerator.h"
#include "ulogparser.h"

#include <QBuffer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include <charconv>
#include <cmath>
#include <iterator>

namespace {

GeneratorOptions options(qint64 samples, double rate = 100.0, quint64 seed = 1,
                         const QStringList &keys = {})
{
    GeneratorOptions o;
    o.samples = samples;
    o.rate = rate;
    o.seed = seed;
    o.keys = keys;
    return o;
}

QByteArray generated(const GeneratorOptions &o)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QString error;
    if (!generateRecording(o, &buffer, &error))
        return "<failed: " + error.toUtf8() + ">";
    return bytes;
}

QList<QByteArray> sampleLines(const QByteArray &recording)
{
    QList<QByteArray> lines = recording.split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    if (!lines.isEmpty())
        lines.removeFirst();
    return lines;
}

QSet<QString> keysOf(const QByteArray &line)
{
    const QStringList keys = QJsonDocument::fromJson(line).object().keys();
    return QSet<QString>(keys.begin(), keys.end());
}

} // namespace

// The synthetic recordings: deterministic bytes, lines the reader takes
// without complaint, plausible motion, and the key list honoured.
class tst_RecordingGenerator : public QObject
{
    Q_OBJECT

private slots:
    void sameSeedGivesSameBytes();
    void otherSeedGivesOtherNoise();
    void everyLineReadsBack_data();
    void everyLineReadsBack();
    void motionIsPlausible();
    void numbersAreInShortestRoundTripForm();
    void everyKeyTheReaderKnowsIsWritten();
    void keyListLimitsTheKeys_data();
    void keyListLimitsTheKeys();
    void keyListKeepsTheValues();
    void badOptions_data();
    void badOptions();
    void writeFailureIsReported();
    void bundledExampleIsGeneratorOutput();
    void flightLogsReadBack_data();
    void flightLogsReadBack();
};

void tst_RecordingGenerator::sameSeedGivesSameBytes()
{
    const QByteArray first = generated(options(500, 100.0, 42));
    QVERIFY(first.startsWith("{\"properties\""));
    QCOMPARE(generated(options(500, 100.0, 42)), first);
}

void tst_RecordingGenerator::otherSeedGivesOtherNoise()
{
    const QList<QByteArray> a = sampleLines(generated(options(10, 100.0, 1)));
    const QList<QByteArray> b = sampleLines(generated(options(10, 100.0, 2)));
    QCOMPARE(a.size(), 10);
    QCOMPARE(b.size(), 10);
    const QJsonObject first = QJsonDocument::fromJson(a.first()).object();
    const QJsonObject second = QJsonDocument::fromJson(b.first()).object();
    QCOMPARE(first.value(QStringLiteral("orientationQuaternion")),
             second.value(QStringLiteral("orientationQuaternion")));
    QVERIFY(first.value(QStringLiteral("calibratedAcceleration"))
            != second.value(QStringLiteral("calibratedAcceleration")));
}

void tst_RecordingGenerator::everyLineReadsBack_data()
{
    QTest::addColumn<qint64>("samples");
    QTest::addColumn<double>("rate");
    QTest::addColumn<quint64>("seed");

    QTest::newRow("ten seconds at 100 Hz") << qint64(1000) << 100.0 << quint64(1);
    QTest::newRow("one sample a second for ten minutes") << qint64(600) << 1.0 << quint64(7);
    QTest::newRow("two seconds at 2000 Hz") << qint64(4000) << 2000.0 << quint64(8);
    QTest::newRow("a rate with a fraction") << qint64(500) << 33.3 << quint64(9);
    QTest::newRow("more samples than the packet counter counts")
        << qint64(70000) << 400.0 << quint64(10);
    QTest::newRow("the largest seed") << qint64(100) << 100.0 << quint64(~0ULL);
    QTest::newRow("no samples at all") << qint64(0) << 100.0 << quint64(1);
}

void tst_RecordingGenerator::everyLineReadsBack()
{
    QFETCH(qint64, samples);
    QFETCH(double, rate);
    QFETCH(quint64, seed);
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("gen.jsonl")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QString error;
    QVERIFY2(generateRecording(options(samples, rate, seed), &file, &error), qPrintable(error));
    file.close();

    JsonLinesReader reader;
    QVERIFY2(reader.open(file.fileName()), qPrintable(reader.errorString()));
    QCOMPARE(reader.updateRate(), rate);
    QCOMPARE(reader.property(QStringLiteral("ProductCode")), QVariant(QStringLiteral("T100")));
    qint64 count = 0;
    quint32 lastTime = 0;
    QDateTime lastDate;
    while (reader.readNext()) {
        const RecordingSample &s = reader.sample();
        QCOMPARE(s.packetCounter, quint16(count & 0xFFFF));
        QVERIFY(s.hasSampleTimeFine);
        QVERIFY(s.sampleDateTime.isValid());
        if (count > 0) {
            // Both clocks step by the sample spacing, rounded to their ticks.
            QVERIFY(std::fabs(double(s.sampleTimeFine - lastTime) - 10000.0 / rate) <= 1.0);
            QVERIFY(std::fabs(double(lastDate.msecsTo(s.sampleDateTime)) - 1000.0 / rate) <= 1.0);
        }
        lastTime = s.sampleTimeFine;
        lastDate = s.sampleDateTime;
        ++count;
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QCOMPARE(count, samples);
}

void tst_RecordingGenerator::motionIsPlausible()
{
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("walk.jsonl")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QString error;
    QVERIFY2(generateRecording(options(1000), &file, &error), qPrintable(error));
    file.close();

    JsonLinesReader reader;
    QVERIFY2(reader.open(file.fileName()), qPrintable(reader.errorString()));
    int triggers1 = 0, triggers2 = 0, index = 0;
    quint32 lastTimeOfWeek = 0;
    KvVector firstPosition, lastPosition;
    while (reader.readNext()) {
        const RecordingSample &s = reader.sample();
        const KvQuaternion &q = s.orientationQuaternion;
        QVERIFY(!q.isEmpty());
        QVERIFY(std::fabs(std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]) - 1.0)
                < 1e-8);

        const KvEulerAngles derived = OrientationMath::eulerFromQuaternion(q);
        QVERIFY(s.hasOrientationEuler);
        QVERIFY(std::fabs(s.orientationEuler.roll - derived.roll) < 1e-4);
        QVERIFY(std::fabs(s.orientationEuler.pitch - derived.pitch) < 1e-4);
        QVERIFY(std::fabs(s.orientationEuler.yaw - derived.yaw) < 1e-4);
        const KvMatrix matrix = OrientationMath::matrixFromQuaternion(q);
        for (int i = 0; i < 9; ++i)
            QVERIFY(std::fabs(s.orientationMatrix.at(i) - matrix.at(i)) < 1e-8);

        // Gravity dominates the accelerometer of a walking sensor.
        const KvVector &a = s.calibratedAcceleration;
        const double g = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
        QVERIFY2(g > 6.5 && g < 13.0, qPrintable(QString::number(g)));
        QVERIFY(std::fabs(s.velocityIncrement[2] - a[2] / 100.0) < 1e-7);

        // The receiver reports four times a second.
        QVERIFY(s.gnssPvt.iTOW != 0);
        if (index % 25 == 0 && index > 0)
            QCOMPARE(s.gnssPvt.iTOW - lastTimeOfWeek, quint32(250));
        else if (index > 0)
            QCOMPARE(s.gnssPvt.iTOW, lastTimeOfWeek);
        lastTimeOfWeek = s.gnssPvt.iTOW;
        QCOMPARE(s.gpsSolution.iTOW, s.gnssPvt.iTOW);
        QCOMPARE(s.gpsSatellites.numCh, quint8(12));
        QCOMPARE(s.gnssSatellites.numSvs, quint8(30));
        QCOMPARE(s.gnssPvt.fixType, quint8(3));
        QVERIFY(std::abs(s.gnssPvt.lat / 1e7 - s.latitudeLongitude[0]) < 1e-3);

        QCOMPARE(s.gyroTemperatures.size(), 3);
        QVERIFY(s.temperature > 20.0 && s.temperature < 30.0);
        // Some 965 hPa, the pressure a few hundred metres up.
        QVERIFY(s.pressure > 950.0 && s.pressure < 980.0);

        if (s.triggerIn1.isValid())
            ++triggers1;
        if (s.triggerIn2.isValid())
            ++triggers2;
        if (index == 0)
            firstPosition = s.latitudeLongitude;
        lastPosition = s.latitudeLongitude;
        ++index;
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QCOMPARE(index, 1000);
    QVERIFY(triggers1 > 0);
    QCOMPARE(triggers2, 4);
    // About 13 m of walking in ten seconds.
    const double northMetres = (lastPosition[0] - firstPosition[0]) * 111132.954;
    const double eastMetres =
        (lastPosition[1] - firstPosition[1]) * 111319.49 * std::cos(47.3769 * M_PI / 180);
    const double walked = std::sqrt(northMetres * northMetres + eastMetres * eastMetres);
    QVERIFY2(walked > 10.0 && walked < 14.0, qPrintable(QString::number(walked)));
}

void tst_RecordingGenerator::numbersAreInShortestRoundTripForm()
{
    const QRegularExpression strings(QStringLiteral(R"("[^"]*")"));
    const QRegularExpression number(QStringLiteral(R"(-?\d+(\.\d+)?([eE][+-]?\d+)?)"));
    const QByteArray recording = generated(options(200));
    int checked = 0;
    for (const QByteArray &line : recording.split('\n')) {
        const QString text = QString::fromLatin1(line).replace(strings, QString());
        auto tokens = number.globalMatch(text);
        while (tokens.hasNext()) {
            const QByteArray token = tokens.next().captured().toLatin1();
            const char *begin = token.constData();
            const char *end = begin + token.size();
            char buffer[32];
            char *printed = nullptr;
            if (!token.contains('.') && !token.contains('e')) {
                qint64 integer = 0;
                QVERIFY(std::from_chars(begin, end, integer).ptr == end);
                printed = std::to_chars(std::begin(buffer), std::end(buffer), integer).ptr;
            } else {
                double value = 0.0;
                QVERIFY(std::from_chars(begin, end, value).ptr == end);
                printed = std::to_chars(std::begin(buffer), std::end(buffer), value).ptr;
            }
            QCOMPARE(QByteArray(buffer, int(printed - buffer)), token);
            ++checked;
        }
    }
    // Some 280 numbers a sample.
    QVERIFY(checked > 200 * 250);
}

void tst_RecordingGenerator::everyKeyTheReaderKnowsIsWritten()
{
    const QStringList known = SampleReader::keys();
    QSet<QString> written;
    for (const QByteArray &line : sampleLines(generated(options(1000)))) {
        const QJsonDocument document = QJsonDocument::fromJson(line);
        QVERIFY(document.isObject());
        const QStringList keys = document.object().keys();
        written.unite(QSet<QString>(keys.begin(), keys.end()));
    }
    QCOMPARE(written, QSet<QString>(known.begin(), known.end()));

    // Keys follow the order of the format's table.
    const QByteArray line = sampleLines(generated(options(1))).first();
    int position = -1;
    for (const QString &key : known) {
        const int at = line.indexOf("\"" + key.toLatin1() + "\":");
        if (at < 0)
            continue;
        QVERIFY2(at > position, qPrintable(key));
        position = at;
    }
}

void tst_RecordingGenerator::keyListLimitsTheKeys_data()
{
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QStringList>("allowed");
    QTest::addColumn<bool>("everyLineHoldsEveryKey");

    const QStringList basic = {QStringLiteral("packetCounter"), QStringLiteral("sampleTimeFine"),
                               QStringLiteral("calibratedAcceleration"),
                               QStringLiteral("orientationQuaternion")};
    QTest::newRow("counter, time, acceleration and quaternion") << basic << basic << true;
    QTest::newRow("a key given twice is written once")
        << QStringList{QStringLiteral("gnssPvt"), QStringLiteral("gnssPvt")}
        << QStringList{QStringLiteral("gnssPvt")} << true;
    QTest::newRow("triggers only appear where they fire")
        << QStringList{QStringLiteral("triggerIn1"), QStringLiteral("triggerIn2")}
        << QStringList{QStringLiteral("triggerIn1"), QStringLiteral("triggerIn2")} << false;
}

void tst_RecordingGenerator::keyListLimitsTheKeys()
{
    QFETCH(QStringList, keys);
    QFETCH(QStringList, allowed);
    QFETCH(bool, everyLineHoldsEveryKey);
    const QSet<QString> allowedSet(allowed.begin(), allowed.end());
    const QList<QByteArray> lines = sampleLines(generated(options(300, 100.0, 3, keys)));
    QCOMPARE(lines.size(), 300);
    int empty = 0;
    for (const QByteArray &line : lines) {
        const QSet<QString> written = keysOf(line);
        if (everyLineHoldsEveryKey)
            QCOMPARE(written, allowedSet);
        else
            QVERIFY(allowedSet.contains(written));
        if (written.isEmpty())
            ++empty;
    }
    if (!everyLineHoldsEveryKey) {
        QVERIFY(empty > 0);
        QVERIFY(empty < lines.size());
    }
}

void tst_RecordingGenerator::keyListKeepsTheValues()
{
    const QStringList keys = {QStringLiteral("calibratedAcceleration"),
                              QStringLiteral("gnssSatellites"), QStringLiteral("triggerIn1")};
    const QList<QByteArray> all = sampleLines(generated(options(300, 100.0, 5)));
    const QList<QByteArray> some = sampleLines(generated(options(300, 100.0, 5, keys)));
    QCOMPARE(some.size(), all.size());
    for (int i = 0; i < all.size(); ++i) {
        const QJsonObject full = QJsonDocument::fromJson(all.at(i)).object();
        const QJsonObject limited = QJsonDocument::fromJson(some.at(i)).object();
        for (const QString &key : keys)
            QCOMPARE(limited.value(key), full.value(key));
    }
}

void tst_RecordingGenerator::badOptions_data()
{
    QTest::addColumn<qint64>("samples");
    QTest::addColumn<double>("rate");
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QString>("message");

    QTest::newRow("a negative number of samples")
        << qint64(-1) << 100.0 << QStringList() << "the number of samples must not be negative";
    QTest::newRow("a rate of 0") << qint64(10) << 0.0 << QStringList()
                                 << "the rate must be above 0 and at most 10000 Hz";
    QTest::newRow("a negative rate")
        << qint64(10) << -100.0 << QStringList() << "the rate must be above 0 and at most 10000 Hz";
    QTest::newRow("a rate that is not a number") << qint64(10) << std::nan("") << QStringList()
                                                 << "the rate must be above 0 and at most 10000 Hz";
    QTest::newRow("a rate above the fine clock's ticks")
        << qint64(10) << 10001.0 << QStringList()
        << "the rate must be above 0 and at most 10000 Hz";
    QTest::newRow("an unknown key")
        << qint64(10) << 100.0
        << QStringList{QStringLiteral("packetCounter"), QStringLiteral("acceleration")}
        << "unknown sample key \"acceleration\"";
    QTest::newRow("the word all is not a key")
        << qint64(10) << 100.0 << QStringList{QStringLiteral("all")}
        << "unknown sample key \"all\"";
}

void tst_RecordingGenerator::badOptions()
{
    QFETCH(qint64, samples);
    QFETCH(double, rate);
    QFETCH(QStringList, keys);
    QFETCH(QString, message);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QString error;
    QVERIFY(!generateRecording(options(samples, rate, 1, keys), &buffer, &error));
    QCOMPARE(error, message);
    QVERIFY(bytes.isEmpty());
}

void tst_RecordingGenerator::writeFailureIsReported()
{
    QFile full(QStringLiteral("/dev/full"));
    if (!full.exists())
        QSKIP("needs /dev/full");
    QVERIFY(full.open(QIODevice::WriteOnly));
    QString error;
    QVERIFY(!generateRecording(options(100), &full, &error));
    QCOMPARE(error, QStringLiteral("cannot write the recording: No space left on device"));
}

void tst_RecordingGenerator::bundledExampleIsGeneratorOutput()
{
    QFile example(QStringLiteral(EXAMPLES_DIR "/walk.jsonl"));
    QVERIFY2(example.open(QIODevice::ReadOnly), qPrintable(example.errorString()));
    const QByteArray bundled = example.readAll();
    QCOMPARE(bundled.count('\n'), 1001);
    QVERIFY(bundled == generated(options(1000, 100.0, 1)));
}

void tst_RecordingGenerator::flightLogsReadBack_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<QStringList>("topics");
    QTest::newRow("current") << int(UlogLayout::Current)
                             << QStringList{"sensor_combined",        "vehicle_attitude",
                                            "vehicle_local_position", "vehicle_gps_position",
                                            "vehicle_magnetometer",   "vehicle_magnetometer",
                                            "vehicle_air_data",       "esc_status"};
    QTest::newRow("older") << int(UlogLayout::Older)
                           << QStringList{"sensor_combined", "vehicle_attitude",
                                          "vehicle_local_position", "vehicle_gps_position"};
}

// A generated flight log parses without damage: one IMU message per sample,
// in ascending time, the topics of its layout, the same bytes for the same
// options.
void tst_RecordingGenerator::flightLogsReadBack()
{
    QFETCH(int, layout);
    QFETCH(QStringList, topics);
    GeneratorOptions options;
    options.samples = 500;
    options.rate = 250.0;
    QByteArray bytes;
    QByteArray again;
    for (QByteArray *into : {&bytes, &again}) {
        QBuffer buffer(into);
        QVERIFY(buffer.open(QIODevice::WriteOnly));
        QString error;
        QVERIFY2(generateUlog(options, UlogLayout(layout), &buffer, &error), qPrintable(error));
    }
    QCOMPARE(again, bytes);

    QBuffer buffer(&bytes);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    UlogParser parser(&buffer);
    QStringList subscribed;
    qint64 imuMessages = 0;
    quint64 lastImuTime = 0;
    for (auto kind = parser.next(); kind != UlogParser::Message::End; kind = parser.next()) {
        QVERIFY2(kind != UlogParser::Message::Failed, qPrintable(parser.errorString()));
        if (kind == UlogParser::Message::Subscription)
            subscribed.append(QString::fromStdString(parser.currentSubscription().topic));
        if (kind == UlogParser::Message::Data
            && parser.currentSubscription().topic == "sensor_combined") {
            QVERIFY(parser.timestamp() > lastImuTime);
            lastImuTime = parser.timestamp();
            ++imuMessages;
        }
    }
    QVERIFY(parser.damage().empty());
    QCOMPARE(parser.unknownMessages(), qint64(0));
    QCOMPARE(imuMessages, options.samples);
    QCOMPARE(subscribed, topics);
}

QTEST_GUILESS_MAIN(tst_RecordingGenerator)
#include "tst_recordinggenerator.moc"
