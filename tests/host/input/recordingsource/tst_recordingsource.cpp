#include "jsonlinesreader.h"
#include "recordingsource.h"

#include <kvconstants.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <memory>

namespace {

const QByteArray header =
    R"({"properties": {"DeviceId": "0123ABCD", "FilterProfileVersion": 1, "Gain": 2.5, "Flag": true,)"
    R"( "Nothing": null}, "updateRate": 400})"
    "\n";

// A reader positioned on the one sample of a file made for the test, and the
// source over it.
struct Fixture
{
    QTemporaryDir dir;
    JsonLinesReader reader;
    std::unique_ptr<RecordingSource> source;

    bool load(const QByteArray &content)
    {
        QFile file(dir.filePath(QStringLiteral("rec.jsonl")));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            return false;
        file.close();
        source = std::make_unique<RecordingSource>(&reader);
        return reader.open(file.fileName()) && reader.readNext();
    }
};

} // namespace

// The export source answers for the reader's current sample with the host's
// values for missing data, and derives Euler angles and the matrix from the
// quaternion when the sample lacks them.
class tst_RecordingSource : public QObject
{
    Q_OBJECT

private slots:
    void propertiesAndRate();
    void rateIsZeroWithoutOne();
    void accessorsAnswerForTheCurrentSample();
    void accessorsFollowTheReader();
    void missingData();
    void derivedOrientation_data();
    void derivedOrientation();
    void ownEulerAnglesAndMatrixWin();
    void eulerAnglesWithoutQuaternion();
    void triggersByDataIdentifier();
    void messagesGoToTheHandler();
};

void tst_RecordingSource::propertiesAndRate()
{
    Fixture f;
    QVERIFY2(f.load(header + "{}\n"), qPrintable(f.reader.errorString()));
    const ExportSource &source = *f.source;
    QCOMPARE(source.updateRate(), 400.0);
    QCOMPARE(source.property(QStringLiteral("DeviceId")), QVariant(QStringLiteral("0123ABCD")));
    QCOMPARE(source.property(QStringLiteral("FilterProfileVersion")), QVariant(qint64(1)));
    QCOMPARE(source.property(QStringLiteral("FilterProfileVersion")).toString(),
             QStringLiteral("1"));
    QCOMPARE(source.property(QStringLiteral("Gain")), QVariant(2.5));
    QCOMPARE(source.property(QStringLiteral("Flag")), QVariant(true));
    QVERIFY(!source.property(QStringLiteral("Nothing")).isValid());
    QVERIFY(!source.property(QStringLiteral("StartTime")).isValid());
}

void tst_RecordingSource::rateIsZeroWithoutOne()
{
    Fixture f;
    QVERIFY2(f.load(R"({"properties": {}})"
                    "\n{}\n"),
             qPrintable(f.reader.errorString()));
    QCOMPARE(f.source->updateRate(), 0.0);
}

void tst_RecordingSource::accessorsAnswerForTheCurrentSample()
{
    Fixture f;
    QVERIFY2(
        f.load(
            header
            + R"({"packetCounter": 42, "sampleTimeFine": 123456, "sampleDateTime": "2026-11-21T09:30:00.250",)"
              R"( "utcTime": {"nano": 5, "year": 2026, "month": 11, "day": 21, "hour": 9, "minute": 30,)"
              R"( "second": 1, "valid": 7}, "statusWord": 2147483648, "clippingFlags": 9, "rssi": -60,)"
              R"( "calibratedAcceleration": [1, 2, 3], "freeAcceleration": [4, 5, 6],)"
              R"( "calibratedAngularVelocity": [7, 8, 9], "magneticField": [10, 11, 12],)"
              R"( "velocityIncrement": [13, 14, 15], "scrAcceleration": [16, 17, 18],)"
              R"( "scrGyroscopeData": [19, 20, 21], "scrMagneticField": [22, 23, 24], "velocity": [25, 26, 27],)"
              R"( "orientationIncrement": [1, 0, 0, 0], "orientationQuaternion": [0, 1, 0, 0],)"
              R"( "latitudeLongitude": [47.5, 8.5], "altitude": 0, "temperature": 25.5, "pressure": 96000,)"
              R"( "scrTemperature": 11500, "gyroTemperatures": [6400],)"
              R"( "gpsSolution": {"iTOW": 1, "numSV": 9}, "gpsDop": {"iTOW": 2, "pDOP": 150},)"
              R"( "gpsUtcTime": {"iTOW": 3, "sec": 59}, "gpsSatellites": {"iTOW": 4, "numCh": 1,)"
              R"( "channels": [{"svid": 12, "quality": 7}]}, "gnssPvt": {"iTOW": 5, "lat": -12345},)"
              R"( "gnssSatellites": {"iTOW": 6, "numSvs": 1, "satellites": [{"gnssId": 2, "cno": 40}]}})"
              "\n"),
        qPrintable(f.reader.errorString()));
    const ExportSource &s = *f.source;

    QCOMPARE(s.packetCounter(), quint16(42));
    QVERIFY(s.hasSampleTimeFine());
    QCOMPARE(s.sampleTimeFine(), quint32(123456));
    QCOMPARE(s.sampleDateTime(), QDateTime(QDate(2026, 11, 21), QTime(9, 30, 0, 250)));
    QCOMPARE(s.utcTime().nano, quint32(5));
    QCOMPARE(s.utcTime().second, quint8(1));
    QVERIFY(!s.utcTime().isZero());
    QCOMPARE(s.statusWord(), qint32(INT_MIN));
    QCOMPARE(s.clippingFlags(), quint16(9));
    QCOMPARE(s.rssi(), -60.0);
    QCOMPARE(s.calibratedAcceleration().at(2), 3.0);
    QCOMPARE(s.freeAcceleration().at(0), 4.0);
    QCOMPARE(s.calibratedAngularVelocity().at(1), 8.0);
    QCOMPARE(s.magneticField().at(2), 12.0);
    QCOMPARE(s.velocityIncrement().at(0), 13.0);
    QCOMPARE(s.scrAcceleration().at(1), 17.0);
    QCOMPARE(s.scrGyroscopeData().at(2), 21.0);
    QCOMPARE(s.scrMagneticField().at(0), 22.0);
    QCOMPARE(s.velocity(s.velocitySelector()).at(2), 27.0);
    QCOMPARE(s.orientationIncrement()[0], 1.0);
    QCOMPARE(s.orientationQuaternion(s.orientationSelector())[1], 1.0);
    QCOMPARE(s.latitudeLongitude().at(0), 47.5);
    QCOMPARE(s.latitudeLongitude().at(1), 8.5);
    QCOMPARE(s.altitude(), 0.0);
    QCOMPARE(s.temperature(), 25.5);
    QCOMPARE(s.pressure(), 96000.0);
    QCOMPARE(s.scrTemperature(), quint16(11500));
    QCOMPARE(s.gyroTemperatures(), QVector<quint16>{6400});
    QCOMPARE(s.gpsSolutionRecord().numSV, quint8(9));
    QCOMPARE(s.gpsDopRecord().pDOP, quint16(150));
    QCOMPARE(s.gpsUtcTimeRecord().sec, quint8(59));
    QCOMPARE(s.gpsSatelliteRecord().channels[0].svid, quint8(12));
    QCOMPARE(s.gnssPvtRecord().lat, qint32(-12345));
    QCOMPARE(s.gnssSatelliteRecord().satellites[0].cno, quint8(40));
}

void tst_RecordingSource::accessorsFollowTheReader()
{
    Fixture f;
    QVERIFY2(f.load(header
                    + R"({"packetCounter": 1, "temperature": 20})"
                      "\n"
                      R"({"packetCounter": 2})"
                      "\n"),
             qPrintable(f.reader.errorString()));
    QCOMPARE(f.source->packetCounter(), quint16(1));
    QCOMPARE(f.source->temperature(), 20.0);
    QVERIFY(f.reader.readNext());
    QCOMPARE(f.source->packetCounter(), quint16(2));
    QVERIFY(std::isnan(f.source->temperature()));
}

void tst_RecordingSource::missingData()
{
    Fixture f;
    QVERIFY2(f.load(header + "{}\n"), qPrintable(f.reader.errorString()));
    const ExportSource &s = *f.source;

    QCOMPARE(s.packetCounter(), quint16(0));
    QVERIFY(!s.hasSampleTimeFine());
    QVERIFY(s.sampleDateTime().isNull());
    QVERIFY(s.utcTime().isZero());
    QCOMPARE(s.statusWord(), 0);
    QCOMPARE(s.clippingFlags(), quint16(0));
    QCOMPARE(s.rssi(), 0.0);
    QVERIFY(s.calibratedAcceleration().isEmpty());
    QVERIFY(s.freeAcceleration().isEmpty());
    QVERIFY(s.calibratedAngularVelocity().isEmpty());
    QVERIFY(s.magneticField().isEmpty());
    QVERIFY(s.velocityIncrement().isEmpty());
    QVERIFY(s.scrAcceleration().isEmpty());
    QVERIFY(s.scrGyroscopeData().isEmpty());
    QVERIFY(s.scrMagneticField().isEmpty());
    QVERIFY(s.velocity(s.velocitySelector()).isEmpty());
    QVERIFY(s.orientationIncrement().isEmpty());
    QVERIFY(s.orientationQuaternion(s.orientationSelector()).isEmpty());
    const KvEulerAngles euler = s.orientationEuler(s.orientationSelector());
    QCOMPARE(euler.roll, 0.0);
    QCOMPARE(euler.pitch, 0.0);
    QCOMPARE(euler.yaw, 0.0);
    QVERIFY(s.orientationMatrix(s.orientationSelector()).isEmpty());
    QVERIFY(s.latitudeLongitude().isEmpty());
    QCOMPARE(s.altitude(), KvConstants::infinity);
    QVERIFY(std::isnan(s.temperature()));
    QVERIFY(std::isnan(s.pressure()));
    QCOMPARE(s.scrTemperature(), quint16(0));
    QVERIFY(s.gyroTemperatures().isEmpty());
    QCOMPARE(s.gpsSolutionRecord().iTOW, quint32(0));
    QCOMPARE(s.gpsDopRecord().iTOW, quint32(0));
    QCOMPARE(s.gpsUtcTimeRecord().iTOW, quint32(0));
    QCOMPARE(s.gpsSatelliteRecord().numCh, quint8(0));
    QCOMPARE(s.gnssPvtRecord().iTOW, quint32(0));
    QCOMPARE(s.gnssSatelliteRecord().numSvs, quint8(0));
    QVERIFY(!s.triggerIndication(KvTriggerIndication::triggerIn1Id).isValid());
    QVERIFY(!s.triggerIndication(KvTriggerIndication::triggerIn2Id).isValid());
}

void tst_RecordingSource::derivedOrientation_data()
{
    QTest::addColumn<QByteArray>("quaternion");
    QTest::addColumn<QVector<double>>("euler");
    QTest::addColumn<QVector<double>>("matrix");

    const double h = std::sqrt(0.5);
    const QByteArray half = QByteArray::number(h, 'g', 17);
    QTest::newRow("the identity is no rotation")
        << QByteArray("[1, 0, 0, 0]") << QVector<double>{0, 0, 0}
        << QVector<double>{1, 0, 0, 0, 1, 0, 0, 0, 1};
    QTest::newRow("a 90 degree yaw turns x onto y")
        << QByteArray("[" + half + ", 0, 0, " + half + "]") << QVector<double>{0, 0, 90}
        << QVector<double>{0, -1, 0, 1, 0, 0, 0, 0, 1};
    QTest::newRow("a 90 degree roll turns y onto z")
        << QByteArray("[" + half + ", " + half + ", 0, 0]") << QVector<double>{90, 0, 0}
        << QVector<double>{1, 0, 0, 0, 0, -1, 0, 1, 0};
    const double c15 = std::cos(M_PI / 12), s15 = std::sin(M_PI / 12);
    QTest::newRow("a 30 degree pitch tilts z towards x")
        << QByteArray("[" + QByteArray::number(c15, 'g', 17) + ", 0, "
                      + QByteArray::number(s15, 'g', 17) + ", 0]")
        << QVector<double>{0, 30, 0}
        << QVector<double>{std::sqrt(3.0) / 2, 0, 0.5, 0, 1, 0, -0.5, 0, std::sqrt(3.0) / 2};
    QTest::newRow("a half turn about z is a yaw of 180 degrees")
        << QByteArray("[0, 0, 0, 1]") << QVector<double>{0, 0, 180}
        << QVector<double>{-1, 0, 0, 0, -1, 0, 0, 0, 1};
    // Yaw 90 degrees, then pitch 45 degrees: q = q(yaw) * q(pitch).
    const double c45 = std::cos(M_PI / 4), s45 = std::sin(M_PI / 4);
    const double c22 = std::cos(M_PI / 8), s22 = std::sin(M_PI / 8);
    QTest::newRow("yaw 90 then pitch 45 degrees")
        << QByteArray("[" + QByteArray::number(c45 * c22, 'g', 17) + ", "
                      + QByteArray::number(-s45 * s22, 'g', 17) + ", "
                      + QByteArray::number(c45 * s22, 'g', 17) + ", "
                      + QByteArray::number(s45 * c22, 'g', 17) + "]")
        << QVector<double>{0, 45, 90} << QVector<double>{0, -1, 0, h, 0, h, -h, 0, h};
    QTest::newRow("a quaternion of length 2 is taken as its unit direction")
        << QByteArray("[" + QByteArray::number(2 * h, 'g', 17) + ", 0, 0, "
                      + QByteArray::number(2 * h, 'g', 17) + "]")
        << QVector<double>{0, 0, 90} << QVector<double>{0, -1, 0, 1, 0, 0, 0, 0, 1};
}

void tst_RecordingSource::derivedOrientation()
{
    QFETCH(QByteArray, quaternion);
    QFETCH(QVector<double>, euler);
    QFETCH(QVector<double>, matrix);
    Fixture f;
    QVERIFY2(f.load(header + R"({"orientationQuaternion": )" + quaternion + "}\n"),
             qPrintable(f.reader.errorString()));

    const quint32 selector = f.source->orientationSelector();
    const KvEulerAngles angles = f.source->orientationEuler(selector);
    QVERIFY2(std::fabs(angles.roll - euler[0]) < 1e-9, qPrintable(QString::number(angles.roll)));
    QVERIFY2(std::fabs(angles.pitch - euler[1]) < 1e-9, qPrintable(QString::number(angles.pitch)));
    QVERIFY2(std::fabs(angles.yaw - euler[2]) < 1e-9, qPrintable(QString::number(angles.yaw)));

    const KvMatrix derived = f.source->orientationMatrix(selector);
    QVERIFY(!derived.isEmpty());
    for (int i = 0; i < 9; ++i) {
        QVERIFY2(std::fabs(derived.at(i) - matrix[i]) < 1e-12,
                 qPrintable(QStringLiteral("element %1 is %2").arg(i).arg(derived.at(i))));
    }
    // Row-major storage: the element at row 1, column 0 is the fourth.
    QCOMPARE(derived.value(1, 0), derived.at(3));
}

void tst_RecordingSource::ownEulerAnglesAndMatrixWin()
{
    Fixture f;
    QVERIFY2(f.load(header
                    + R"({"orientationQuaternion": [1, 0, 0, 0], "orientationEuler": [1, 2, 3],)"
                      R"( "orientationMatrix": [[9, 8, 7], [6, 5, 4], [3, 2, 1]]})"
                      "\n"),
             qPrintable(f.reader.errorString()));
    const KvEulerAngles angles = f.source->orientationEuler(f.source->orientationSelector());
    QCOMPARE(angles.roll, 1.0);
    QCOMPARE(angles.pitch, 2.0);
    QCOMPARE(angles.yaw, 3.0);
    const KvMatrix matrix = f.source->orientationMatrix(f.source->orientationSelector());
    QCOMPARE(matrix.value(0, 0), 9.0);
    QCOMPARE(matrix.value(2, 2), 1.0);
}

void tst_RecordingSource::eulerAnglesWithoutQuaternion()
{
    Fixture f;
    QVERIFY2(f.load(header
                    + R"({"orientationEuler": [0, 0, 0.000001]})"
                      "\n"),
             qPrintable(f.reader.errorString()));
    QCOMPARE(f.source->orientationEuler(f.source->orientationSelector()).yaw, 0.000001);
    QVERIFY(f.source->orientationMatrix(f.source->orientationSelector()).isEmpty());
    QVERIFY(f.source->orientationQuaternion(f.source->orientationSelector()).isEmpty());
}

void tst_RecordingSource::triggersByDataIdentifier()
{
    Fixture f;
    QVERIFY2(
        f.load(header
               + R"({"triggerIn2": {"line": 2, "polarity": 1, "timestamp": 777, "frameNumber": 3}})"
                 "\n"),
        qPrintable(f.reader.errorString()));
    QVERIFY(!f.source->triggerIndication(0x4810).isValid());
    const KvTriggerIndication second = f.source->triggerIndication(0x4820);
    QVERIFY(second.isValid());
    QCOMPARE(second.line, quint8(2));
    QCOMPARE(second.polarity, quint8(1));
    QCOMPARE(second.timestamp, quint32(777));
    QCOMPARE(second.frameNumber, quint16(3));
    QVERIFY(!f.source->triggerIndication(0x4830).isValid());
}

void tst_RecordingSource::messagesGoToTheHandler()
{
    Fixture f;
    QVERIFY2(f.load(header + "{}\n"), qPrintable(f.reader.errorString()));
    QList<QPair<int, QString>> messages;
    f.source->setMessageHandler([&](int kind, const QString &text) {
        messages.append({kind, text});
    });
    f.source->reportMessage(ExportSource::ErrorMessage, QStringLiteral("/tmp/out.txt"));
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first().first, ExportSource::ErrorMessage);
    QCOMPARE(messages.first().second, QStringLiteral("/tmp/out.txt"));
}

QTEST_GUILESS_MAIN(tst_RecordingSource)

#include "tst_recordingsource.moc"
