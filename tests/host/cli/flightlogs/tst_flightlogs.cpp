#include "exportrun.h"
#include "programrun.h"
#include "ulogbytes.h"
#include "ulogwriter.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

// The program asciiexport on PX4 flight logs, in its own process: logs it
// generates in both layouts, exported as they are and through their JSON
// Lines conversion, from files and pipes, with each fill policy.
class tst_FlightLogs : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void rowsOfAWrittenLog_data();
    void rowsOfAWrittenLog();
    void generatedLogs_data();
    void generatedLogs();
    void exportIsTheExportOfTheConversion_data();
    void exportIsTheExportOfTheConversion();
    void fillPoliciesDiffer();
    void logFromAPipe();
    void info();
    void cutLog();
    void notAFlightLog();
    void usageErrors_data();
    void usageErrors();

private:
    QString path(const QString &name) const { return dir->filePath(name); }
    // Writes a log with generate; an empty name on failure.
    QString generated(const QString &name, const QStringList &options);
    ProgramRun run(const QStringList &arguments) const;
    // Exports @p recording with every group and the quaternion; its bytes.
    QByteArray exported(const QString &recording, const QStringList &options = {});
    static QByteArray readFile(const QString &fileName);

    QTemporaryDir *dir = nullptr;
};

namespace {

const QString program = QStringLiteral(ASCIIEXPORT_PROGRAM);
const QByteArray ulogMagic("ULog\x01\x12\x35", 7);

} // namespace

void tst_FlightLogs::init()
{
    dir = new QTemporaryDir;
    QVERIFY(dir->isValid());
}

void tst_FlightLogs::cleanup()
{
    delete dir;
}

QString tst_FlightLogs::generated(const QString &name, const QStringList &options)
{
    const ProgramRun result =
        run(QStringList{QStringLiteral("generate"), QStringLiteral("--format"),
                        QStringLiteral("ulog"), QStringLiteral("-o"), path(name)}
            + options);
    return result.status == 0 && result.err.isEmpty() ? path(name) : QString();
}

ProgramRun tst_FlightLogs::run(const QStringList &arguments) const
{
    return ProgramRun::start(program, arguments, dir->path());
}

QByteArray tst_FlightLogs::exported(const QString &recording, const QStringList &options)
{
    QStringList arguments{
        QStringLiteral("export"),     QStringLiteral("--quiet"),
        QStringLiteral("--settings"), path(QStringLiteral("settings.ini")),
        QStringLiteral("--groups"),   QStringLiteral("all"),
        QStringLiteral("--set"),      QStringLiteral("exportOrientation=Quaternion"),
        QStringLiteral("-o"),         QStringLiteral("-")};
    const ProgramRun result = run(arguments + options + QStringList{recording});
    if (result.status != 0)
        return "<status " + QByteArray::number(result.status) + ": " + result.err + ">";
    return result.out;
}

QByteArray tst_FlightLogs::readFile(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

// A log of three IMU samples 4 ms apart, an attitude 0.1 ms after the
// second and a barometer at the first, written here: its rows are worked
// out by hand.
QString writeSmallLog(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return QString();
    UlogWriter writer(&file);
    bool written = writer.writeHeader(900000) && writer.writeFlagBits()
        && writer.writeFormat("sensor_combined:uint64_t timestamp;float[3] gyro_rad;"
                              "float[3] accelerometer_m_s2;")
        && writer.writeFormat("vehicle_attitude:uint64_t timestamp;float[4] q;")
        && writer.writeFormat("vehicle_air_data:uint64_t timestamp;float baro_temp_celcius;"
                              "float baro_pressure_pa;")
        && writer.writeSubscription(0, 0, "sensor_combined")
        && writer.writeSubscription(0, 1, "vehicle_attitude")
        && writer.writeSubscription(0, 2, "vehicle_air_data");
    const float accelerations[3][3] = {
        {0.5f, -0.25f, 9.75f}, {0.625f, 0.0f, 9.8125f}, {-1.5f, 2.0f, 10.0f}};
    for (int i = 0; i < 3; ++i) {
        UlogBytes imu;
        imu.put(quint64(1000000 + 4000 * i)).put(0.0f).put(0.0f).put(0.0f);
        for (float value : accelerations[i])
            imu.put(value);
        written = written && writer.writeData(0, imu);
        if (i == 0) {
            written = written
                && writer.writeData(2, UlogBytes().put(quint64(1000000)).put(20.5f).put(101325.0f));
        }
        if (i == 1) {
            written = written
                && writer.writeData(
                    1, UlogBytes().put(quint64(1004100)).put(0.5f).put(0.5f).put(-0.5f).put(0.5f));
        }
    }
    return written && writer.finish() ? fileName : QString();
}

void tst_FlightLogs::rowsOfAWrittenLog_data()
{
    QTest::addColumn<QStringList>("fill");
    QTest::addColumn<QByteArray>("rows");
    // Sample times 1000000, 1004000 and 1008000 µs are 10000, 10040 and
    // 10080 in 100 µs; the pressure 101325 Pa is 1013.25 hPa. The attitude
    // lies 0.1 ms after the second sample, 3.9 ms before the third; the
    // barometer at the first, 4 ms before the second and 8 ms before the
    // third.
    QTest::newRow("none: each message on its nearest sample")
        << QStringList()
        << QByteArray("00000\t10000\t0.500000\t-0.250000\t9.750000\t1013.2500\t\t\t\t\t20.50\n"
                      "00001\t10040\t0.625000\t0.000000\t9.812500\t\t0.500000\t0.500000\t-0."
                      "500000\t0.500000\t\n"
                      "00002\t10080\t-1.500000\t2.000000\t10.000000\t\t\t\t\t\t\n");
    QTest::newRow("hold: the latest message before each sample")
        << QStringList{"--fill", "hold"}
        << QByteArray("00000\t10000\t0.500000\t-0.250000\t9.750000\t1013.2500\t\t\t\t\t20.50\n"
                      "00001\t10040\t0.625000\t0.000000\t9.812500\t1013.2500\t\t\t\t\t20.50\n"
                      "00002\t10080\t-1.500000\t2.000000\t10.000000\t1013.2500\t0.500000\t0."
                      "500000\t-0.500000\t0.500000\t20.50\n");
    QTest::newRow("hold, at most 5 ms old")
        << QStringList{"--fill", "hold", "--max-age", "5"}
        << QByteArray("00000\t10000\t0.500000\t-0.250000\t9.750000\t1013.2500\t\t\t\t\t20.50\n"
                      "00001\t10040\t0.625000\t0.000000\t9.812500\t1013.2500\t\t\t\t\t20.50\n"
                      "00002\t10080\t-1.500000\t2.000000\t10.000000\t\t0.500000\t0.500000\t-0."
                      "500000\t0.500000\t\n");
    QTest::newRow("nearest, at most 4 ms away: the edge counts")
        << QStringList{"--fill", "nearest", "--max-age", "4"}
        << QByteArray("00000\t10000\t0.500000\t-0.250000\t9.750000\t1013.2500\t\t\t\t\t20.50\n"
                      "00001\t10040\t0.625000\t0.000000\t9.812500\t1013.2500\t0.500000\t0.500000\t-"
                      "0.500000\t0.500000\t20.50\n"
                      "00002\t10080\t-1.500000\t2.000000\t10.000000\t\t0.500000\t0.500000\t-0."
                      "500000\t0.500000\t\n");
}

void tst_FlightLogs::rowsOfAWrittenLog()
{
    QFETCH(QStringList, fill);
    QFETCH(QByteArray, rows);
    const QString log = writeSmallLog(path(QStringLiteral("small.ulg")));
    QVERIFY(!log.isEmpty());
    const ProgramRun result = run(QStringList{"export",     "--quiet",
                                              "--settings", path(QStringLiteral("settings.ini")),
                                              "--groups",   "none",
                                              "--set",      "exportPacketCounter=true",
                                              "--set",      "exportSampleTimeFine=true",
                                              "--set",      "exportCalibratedAcceleration=true",
                                              "--set",      "exportOrientation=Quaternion",
                                              "--set",      "exportPressure=true",
                                              "--set",      "exportTemperature=true",
                                              "-o",         "-"}
                                  + fill + QStringList{log});
    QVERIFY2(result.status == 0, result.err.constData());
    QCOMPARE(result.out,
             QByteArray("// Start Time: Unknown\n"
                        "// Update Rate: 250.0Hz\n"
                        "// Filter Profile: Error: No KVA filter profile\n"
                        "// Option Flags: Error: No option flags\n"
                        "// Firmware Version: Error: No firmware version\n"
                        "PacketCounter\tSampleTimeFine\tAcc_X\tAcc_Y\tAcc_Z\tPressure\tQuat_q0\t"
                        "Quat_q1\tQuat_q2\tQuat_q3\tTemperature\n")
                 + rows);
}

void tst_FlightLogs::generatedLogs_data()
{
    QTest::addColumn<QString>("layout");
    QTest::newRow("current") << "current";
    QTest::newRow("older") << "older";
}

// The same options give the same bytes; the log reads as one of as many
// samples, at the rate asked for, with a start time from the receiver.
void tst_FlightLogs::generatedLogs()
{
    QFETCH(QString, layout);
    const QStringList options{"--samples", "600", "--rate", "200", "--layout", layout};
    const QString log = generated(QStringLiteral("a.ulg"), options);
    QVERIFY(!log.isEmpty());
    QVERIFY(readFile(log).startsWith(ulogMagic));
    QCOMPARE(readFile(generated(QStringLiteral("b.ulg"), options)), readFile(log));

    const QByteArray text = exported(log);
    const QList<QByteArray> lines = text.split('\n');
    QVERIFY2(lines.size() > 600, text.left(2000).constData());
    QVERIFY2(lines.at(0).startsWith("// Start Time: ") && !lines.at(0).endsWith("Unknown"),
             lines.at(0).constData());
    QCOMPARE(lines.at(1), QByteArray("// Update Rate: 200.0Hz"));
    // The header's five lines, the column line, a row per sample and the
    // empty rest after the last line end.
    QCOMPARE(lines.size(), 5 + 1 + 600 + 1);
}

void tst_FlightLogs::exportIsTheExportOfTheConversion_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QStringList>("fill");
    for (const char *layout : {"current", "older"}) {
        QTest::addRow("%s, fill none", layout) << layout << QStringList();
        QTest::addRow("%s, fill hold", layout) << layout << QStringList{"--fill", "hold"};
        QTest::addRow("%s, fill nearest within 3 ms", layout)
            << layout << QStringList{"--fill", "nearest", "--max-age", "3"};
    }
}

// Converting a log to JSON Lines loses nothing an export shows.
void tst_FlightLogs::exportIsTheExportOfTheConversion()
{
    QFETCH(QString, layout);
    QFETCH(QStringList, fill);
    const QString log = generated(QStringLiteral("flight.ulg"),
                                  {"--samples", "1000", "--rate", "250", "--layout", layout});
    QVERIFY(!log.isEmpty());
    const QString converted = path(QStringLiteral("flight.jsonl"));
    const ProgramRun conversion =
        run(QStringList{"convert"} + fill + QStringList{log, "-o", converted});
    QVERIFY2(conversion.status == 0, conversion.err.constData());
    QVERIFY(readFile(converted).startsWith("{"));

    const QByteArray fromLog = exported(log, fill);
    QVERIFY2(fromLog.count('\n') > 1000, fromLog.left(500).constData());
    QCOMPARE(exported(converted), fromLog);
}

// Hold fills every sample once a slower topic has spoken; none places each
// message once: the two differ, and hold leaves fewer fields empty.
void tst_FlightLogs::fillPoliciesDiffer()
{
    const QString log = generated(QStringLiteral("flight.ulg"), {"--samples", "400"});
    QVERIFY(!log.isEmpty());
    const QByteArray none = exported(log);
    const QByteArray hold = exported(log, {"--fill", "hold"});
    QVERIFY(none != hold);
    QCOMPARE(none.count('\n'), hold.count('\n'));
    QVERIFY2(none.count("\t\t") > hold.count("\t\t"), hold.left(1000).constData());
}

// A log through a pipe is copied first, and exports as the file does.
void tst_FlightLogs::logFromAPipe()
{
    const QString log = generated(QStringLiteral("flight.ulg"), {"--samples", "300"});
    QVERIFY(!log.isEmpty());
    const ProgramRun piped = ProgramRun::inShell(
        QStringLiteral("cat \"$1\" | \"$0\" export --quiet --settings \"$2\" --groups all "
                       "--set exportOrientation=Quaternion -o - -"),
        program, {log, path(QStringLiteral("settings.ini"))}, dir->path());
    QVERIFY2(piped.status == 0, piped.err.constData());
    QCOMPARE(piped.out, exported(log));
}

void tst_FlightLogs::info()
{
    const QString log = generated(QStringLiteral("flight.ulg"), {"--samples", "500"});
    QVERIFY(!log.isEmpty());
    const ProgramRun result = run({"info", "--recording", log});
    QVERIFY2(result.status == 0, result.err.constData());
    const QString text = QString::fromUtf8(result.out);
    QVERIFY2(text.contains(QStringLiteral("Format:           PX4 flight log (ULog)\n")),
             qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("Samples:          500\n")), qPrintable(text));
    for (const char *topic :
         {"sensor_combined", "vehicle_attitude", "vehicle_magnetometer", "vehicle_air_data",
          "vehicle_local_position", "vehicle_gps_position", "esc_status"})
        QVERIFY2(text.contains(QLatin1String(topic)), topic);
    for (const char *key : {"magneticField", "orientationQuaternion", "pressure", "temperature",
                            "freeAcceleration", "latitudeLongitude", "altitude", "velocity"})
        QVERIFY2(text.contains(QStringLiteral("  %1 ").arg(QLatin1String(key))), key);
    QVERIFY2(text.contains(QStringLiteral("[logger] logging started")), qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("SourceFormat:     PX4 ULog\n")), qPrintable(text));
}

// A log cut short exports what it holds up to the cut, and says so.
void tst_FlightLogs::cutLog()
{
    // the defaults, from a settings file that exists: no note about it
    QVERIFY(QFile(path(QStringLiteral("settings.ini"))).open(QIODevice::WriteOnly));
    const QString log = generated(QStringLiteral("flight.ulg"), {"--samples", "500"});
    QVERIFY(!log.isEmpty());
    const QByteArray whole = readFile(log);
    const QString cut = path(QStringLiteral("cut.ulg"));
    {
        QFile file(cut);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(whole.left(whole.size() * 2 / 3 + 5));
    }
    const ProgramRun result = run({"export", "--settings", path(QStringLiteral("settings.ini")),
                                   "--groups", "all", "-o", path(QStringLiteral("cut.txt")), cut});
    QVERIFY2(result.status == 0, result.err.constData());
    QVERIFY2(result.err.startsWith(QFile::encodeName(cut) + ": passed over: byte "),
             result.err.constData());
    QVERIFY2(result.err.contains("(cut)"), result.err.constData());
    const int rows = readFile(path(QStringLiteral("cut.txt"))).count('\n') - 6;
    QVERIFY2(rows > 250 && rows < 500, QByteArray::number(rows).constData());
}

// Bytes that start as a flight log but hold no samples are refused, naming the log.
void tst_FlightLogs::notAFlightLog()
{
    // the defaults, from a settings file that exists: no note about it
    QVERIFY(QFile(path(QStringLiteral("settings.ini"))).open(QIODevice::WriteOnly));
    const QString log = path(QStringLiteral("empty.ulg"));
    {
        QFile file(log);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(ulogMagic + QByteArray(9, '\1'));
    }
    const ProgramRun result = run({"export", "--settings", path(QStringLiteral("settings.ini")),
                                   "-o", path(QStringLiteral("out.txt")), log});
    QCOMPARE(result.status, 1);
    QVERIFY2(result.err.startsWith(QFile::encodeName(log) + ": "), result.err.constData());
    QVERIFY(!QFile::exists(path(QStringLiteral("out.txt"))));
}

void tst_FlightLogs::usageErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("unknown policy")
        << QStringList{"export", "--fill", "latest", "x.ulg"}
        << QByteArray("asciiexport export: --fill takes none, hold or nearest, not \"latest\"\n");
    QTest::newRow("negative age")
        << QStringList{"convert", "--fill", "hold", "--max-age", "-1", "x.ulg", "-o", "x.jsonl"}
        << QByteArray("asciiexport convert: --max-age takes a whole number of milliseconds, 0 "
                      "or more\n");
    QTest::newRow("age without a policy that uses it")
        << QStringList{"export", "--max-age", "100", "x.ulg"}
        << QByteArray("asciiexport export: --max-age applies to --fill hold and nearest only\n");
    QTest::newRow("layout of a JSON Lines recording")
        << QStringList{"generate", "--layout", "older", "-o", "x.jsonl"}
        << QByteArray("asciiexport generate: --layout applies to ULog logs only\n");
    QTest::newRow("unknown layout")
        << QStringList{"generate", "--format", "ulog", "--layout", "newest", "-o", "x.ulg"}
        << QByteArray("asciiexport generate: --layout takes current or older, not \"newest\"\n");
    QTest::newRow("unknown format")
        << QStringList{"generate", "--format", "csv", "-o", "x.csv"}
        << QByteArray("asciiexport generate: --format takes jsonl, ubx or ulog, not \"csv\"\n");
}

void tst_FlightLogs::usageErrors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, message);
    const ProgramRun result = run(arguments);
    QCOMPARE(result.status, 2);
    QCOMPARE(result.err.left(result.err.indexOf('\n') + 1), message);
    QVERIFY(QDir(dir->path()).entryList(QDir::Files).isEmpty());
}

QTEST_GUILESS_MAIN(tst_FlightLogs)
#include "tst_flightlogs.moc"
