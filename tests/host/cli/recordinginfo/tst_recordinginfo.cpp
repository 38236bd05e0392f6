#include "programrun.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

// info --recording: the samples of a recording in every format, the data
// groups they hold as the options page names them, their duration and rate,
// and the gaps in their packet counter and sample time.
class tst_RecordingInfo : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void wholeReport();
    void lines_data();
    void lines();
    void generated_data();
    void generated();
    void conversionHoldsTheSameGroups_data();
    void conversionHoldsTheSameGroups();

private:
    QString path(const QString &name) const { return dir->filePath(name); }
    ProgramRun run(const QStringList &arguments) const;
    // The lines of the report on @p recording, or of the failure.
    QStringList report(const QString &recording) const;

    QTemporaryDir *dir = nullptr;
};

namespace {

const QString program = QStringLiteral(ASCIIEXPORT_PROGRAM);

bool writeFile(const QString &fileName, const QByteArray &data)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size();
}

// The first of @p lines that @p shown lacks, with what it shows; empty when
// it shows them all.
QString firstMissing(const QStringList &lines, const QStringList &shown)
{
    for (const QString &line : lines) {
        if (!shown.contains(line))
            return line + QLatin1String(" in:\n") + shown.join(QLatin1Char('\n'));
    }
    return QString();
}

} // namespace

void tst_RecordingInfo::init()
{
    dir = new QTemporaryDir;
    QVERIFY(dir->isValid());
}

void tst_RecordingInfo::cleanup()
{
    delete dir;
}

ProgramRun tst_RecordingInfo::run(const QStringList &arguments) const
{
    return ProgramRun::start(program, arguments, dir->path());
}

QStringList tst_RecordingInfo::report(const QString &recording) const
{
    const ProgramRun result = run({"info", "--recording", recording});
    if (result.status != 0 || !result.err.isEmpty())
        return {QStringLiteral("failed: %1").arg(QString::fromUtf8(result.err))};
    return QString::fromUtf8(result.out).split(QLatin1Char('\n'));
}

void tst_RecordingInfo::wholeReport()
{
    // The counter wraps without a gap, then jumps; the sample time wraps
    // without a gap, then steps four times as far as it does otherwise.
    QVERIFY(writeFile(
        path("rec.jsonl"),
        "{\"properties\": {\"DeviceId\": \"0123ABCD\"}, \"updateRate\": 100}\n"
        "{\"packetCounter\": 65534, \"sampleTimeFine\": 4294967000, \"statusWord\": 0, "
        "\"calibratedAcceleration\": [1, 2, 3]}\n"
        "{\"packetCounter\": 65535, \"sampleTimeFine\": 4294967100, \"statusWord\": 0}\n"
        "{\"packetCounter\": 0, \"sampleTimeFine\": 4294967200, \"statusWord\": 0}\n"
        "{\"packetCounter\": 3, \"sampleTimeFine\": 4, \"statusWord\": 0}\n"
        "{\"packetCounter\": 4, \"sampleTimeFine\": 404, \"orientationQuaternion\": [1, 0, 0, 0]}\n"
        "{\"packetCounter\": 5, \"sampleTimeFine\": 504}\n"));
    const ProgramRun result = run({"info", "--recording", "rec.jsonl"});
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(QString::fromUtf8(result.out),
             QStringLiteral(
                 "Recording:        rec.jsonl\n"
                 "Format:           JSON Lines\n"
                 "Samples:          6\n"
                 "Duration:         0.0800 s (from the sample times)\n"
                 "Rate:             62.50 samples/s\n"
                 "Data groups:      Packet Counter, Sample Time Fine, Status Word, Acceleration, "
                 "Euler Angles, Quaternion, Matrix\n"
                 "Counter gaps:     1; the largest 00000 -> 00003 before sample 3\n"
                 "Time gaps:        1 (steps over 1.5 times the median step 0.0100 s); the "
                 "largest 0.0400 s before sample 4\n"
                 "Update rate:      100 Hz\n"
                 "DeviceId:         0123ABCD\n"));
}

void tst_RecordingInfo::lines_data()
{
    QTest::addColumn<QByteArray>("samples");
    QTest::addColumn<int>("updateRate");
    QTest::addColumn<QStringList>("lines");

    const QByteArray acceleration = "{\"calibratedAcceleration\": [1, 2, 3]}\n";
    QTest::newRow("no counter and no time: the duration from the update rate")
        << acceleration + acceleration + acceleration << 50
        << QStringList{"Samples:          3",
                       "Duration:         0.0600 s (from the update rate)",
                       "Rate:             50.00 samples/s",
                       "Data groups:      Acceleration",
                       "Counter gaps:     no packet counter",
                       "Time gaps:        no sample times"};
    QTest::newRow("no update rate either")
        << acceleration + acceleration << 0
        << QStringList{"Duration:         not known", "Rate:             not known",
                       "Update rate:      not known"};
    QTest::newRow("no samples") << QByteArray() << 100
                                << QStringList{"Samples:          0", "Data groups:      none",
                                               "Counter gaps:     no packet counter",
                                               "Time gaps:        no sample times"};
    QTest::newRow("samples without data")
        << QByteArray("{}\n{\"temperature\": null}\n") << 100
        << QStringList{"Samples:          2", "Data groups:      none"};
    QTest::newRow("words of 0 that the samples hold")
        << QByteArray("{\"statusWord\": 0, \"clippingFlags\": 0, \"rssi\": 0, "
                      "\"scrTemperature\": 0, \"gyroTemperatures\": [0]}\n")
        << 100
        << QStringList{"Data groups:      Status Word, Clipping Flags, RSSI, Gyro Temperatures, "
                       "SCR Temperature, SCR Gyro Temperatures"};
    QTest::newRow("even counters and times")
        << QByteArray("{\"packetCounter\": 7, \"sampleTimeFine\": 100}\n"
                      "{\"packetCounter\": 8, \"sampleTimeFine\": 200}\n"
                      "{\"packetCounter\": 9, \"sampleTimeFine\": 300}\n")
        << 100
        << QStringList{"Duration:         0.0200 s (from the sample times)",
                       "Rate:             100.00 samples/s", "Counter gaps:     none",
                       "Time gaps:        none (median step 0.0100 s)"};
    QTest::newRow("the largest of several counter gaps, across the wrap")
        << QByteArray("{\"packetCounter\": 65530}\n{\"packetCounter\": 65532}\n"
                      "{\"packetCounter\": 2}\n{\"packetCounter\": 3}\n")
        << 100 << QStringList{"Counter gaps:     2; the largest 65532 -> 00002 before sample 2"};
    QTest::newRow("a counter going back")
        << QByteArray("{\"packetCounter\": 10}\n{\"packetCounter\": 4}\n") << 100
        << QStringList{"Counter gaps:     1; the largest 00010 -> 00004 before sample 1"};
    QTest::newRow("a sample without a counter is passed over")
        << QByteArray("{\"packetCounter\": 1}\n{}\n{\"packetCounter\": 2}\n") << 100
        << QStringList{"Counter gaps:     none"};
    QTest::newRow("the receiver's time where the samples have none")
        << QByteArray("{\"gnssPvt\": {\"iTOW\": 1000}}\n{\"gpsSolution\": {\"iTOW\": 1010}}\n"
                      "{\"gnssPvt\": {\"iTOW\": 1020}}\n{}\n{\"gnssPvt\": {\"iTOW\": 1050}}\n")
        << 100
        << QStringList{"Data groups:      GPS Receiver Message, GNSS Receiver Message",
                       "Time gaps:        in the receiver's time: 1 (steps over 1.5 times the "
                       "median step 0.0100 s); the largest 0.0300 s before sample 4"};
    QTest::newRow("a step of 1.5 times the median is no gap")
        << QByteArray("{\"sampleTimeFine\": 0}\n{\"sampleTimeFine\": 100}\n"
                      "{\"sampleTimeFine\": 250}\n{\"sampleTimeFine\": 350}\n")
        << 100 << QStringList{"Time gaps:        none (median step 0.0100 s)"};
}

void tst_RecordingInfo::lines()
{
    QFETCH(QByteArray, samples);
    QFETCH(int, updateRate);
    QFETCH(QStringList, lines);
    QVERIFY(writeFile(
        path("rec.jsonl"),
        QStringLiteral("{\"properties\": {}, \"updateRate\": %1}\n").arg(updateRate).toUtf8()
            + samples));
    const QStringList shown = report(QStringLiteral("rec.jsonl"));
    const QString missing = firstMissing(lines, shown);
    QVERIFY2(missing.isEmpty(), qPrintable(missing));
}

void tst_RecordingInfo::generated_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("lines");

    QTest::newRow("a recording of every group")
        << QStringList{"--samples", "200", "--rate", "50"}
        << QStringList{
               "Samples:          200",
               "Duration:         3.9800 s (from the sample times)",
               "Rate:             50.00 samples/s",
               "Data groups:      Packet Counter, Sample Time Fine, Date and time, UTC Time, "
               "Status "
               "Word, Clipping Flags, RSSI, Acceleration, Free Acceleration, Rate Of Turn, "
               "Magnetic Field, Velocity Increment, Orientation Increment, Position, Velocity, "
               "Temperature, Gyro Temperatures, Barometric Pressure, SCR Acceleration, SCR "
               "Gyroscope Data, SCR Magnetic Field, SCR Temperature, SCR Gyro Temperatures, GPS "
               "Receiver Message, GNSS Receiver Message, Trigger In 1, Trigger In 2, Euler "
               "Angles, Quaternion, Matrix",
               "Counter gaps:     none",
               "Time gaps:        none (median step 0.0200 s)"};
    QTest::newRow("a UBX log")
        << QStringList{"--format", "ubx", "--samples", "30"}
        << QStringList{"Format:           UBX receiver log", "Samples:          30",
                       "Data groups:      Packet Counter, GPS Receiver Message, GNSS Receiver "
                       "Message",
                       "Counter gaps:     none",
                       "Time gaps:        in the receiver's time: none (median step 0.0100 s)"};
    QTest::newRow("a flight log")
        << QStringList{"--format", "ulog", "--samples", "300"}
        << QStringList{"Format:           PX4 flight log (ULog)", "Samples:          300",
                       "Data groups:      Packet Counter, Sample Time Fine, Date and time, UTC "
                       "Time, Clipping Flags, Acceleration, Free Acceleration, Rate Of Turn, "
                       "Magnetic Field, Position, Velocity, Temperature, Barometric Pressure, "
                       "Euler Angles, Quaternion, Matrix",
                       "Counter gaps:     none"};
}

void tst_RecordingInfo::generated()
{
    QFETCH(QStringList, options);
    QFETCH(QStringList, lines);
    const ProgramRun made = run(QStringList{"generate", "-o", "generated"} + options);
    QVERIFY2(made.status == 0, made.err.constData());
    const QStringList shown = report(QStringLiteral("generated"));
    const QString missing = firstMissing(lines, shown);
    QVERIFY2(missing.isEmpty(), qPrintable(missing));
}

void tst_RecordingInfo::conversionHoldsTheSameGroups_data()
{
    QTest::addColumn<QString>("format");
    QTest::newRow("a UBX log") << "ubx";
    QTest::newRow("a flight log") << "ulog";
}

// A log and its JSON Lines conversion hold the same groups, even where a
// sample's word is 0 (a flight log's clipping flags).
void tst_RecordingInfo::conversionHoldsTheSameGroups()
{
    QFETCH(QString, format);
    QCOMPARE(run({"generate", "--format", format, "--samples", "50", "-o", "log"}).status, 0);
    QCOMPARE(run({"convert", "log", "-o", "log.jsonl"}).status, 0);
    const auto groups = [this](const QString &recording) {
        const QStringList shown = report(recording);
        for (const QString &line : shown) {
            if (line.startsWith(QLatin1String("Data groups:")))
                return line;
        }
        return shown.join(QLatin1Char('\n'));
    };
    const QString logGroups = groups(QStringLiteral("log"));
    QVERIFY2(logGroups.startsWith(QLatin1String("Data groups:      Packet Counter, ")),
             qPrintable(logGroups));
    QCOMPARE(groups(QStringLiteral("log.jsonl")), logGroups);
}

QTEST_GUILESS_MAIN(tst_RecordingInfo)
#include "tst_recordinginfo.moc"
