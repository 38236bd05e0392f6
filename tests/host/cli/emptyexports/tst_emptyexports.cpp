#include "programrun.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

// Exports whose file would hold no data of the chosen groups: the program
// warns and names the groups the recording holds, and --strict refuses them,
// one export after another and side by side.
class tst_EmptyExports : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void warnings_data();
    void warnings();
    void strictLeavesNoFile_data();
    void strictLeavesNoFile();
    void strictToStandardOutput();
    void sideBySide_data();
    void sideBySide();

private:
    QString path(const QString &name) const { return dir->filePath(name); }
    ProgramRun run(const QStringList &arguments) const;
    // Writes the recordings the cases use into the test's folder.
    bool writeRecordings();

    QTemporaryDir *dir = nullptr;
};

namespace {

const QString program = QStringLiteral(ASCIIEXPORT_PROGRAM);

const QByteArray recordingObject = "{\"properties\": {}, \"updateRate\": 100}\n";

} // namespace

void tst_EmptyExports::init()
{
    dir = new QTemporaryDir;
    QVERIFY(dir->isValid());
    QVERIFY(writeRecordings());
}

void tst_EmptyExports::cleanup()
{
    delete dir;
}

ProgramRun tst_EmptyExports::run(const QStringList &arguments) const
{
    QStringList withSettings = arguments;
    withSettings.insert(1, QStringLiteral("--settings"));
    withSettings.insert(2, path(QStringLiteral("settings.ini")));
    return ProgramRun::start(program, withSettings, dir->path());
}

bool tst_EmptyExports::writeRecordings()
{
    const auto generate = [this](const QStringList &options) {
        const ProgramRun result =
            ProgramRun::start(program,
                              QStringList{QStringLiteral("generate"), QStringLiteral("--samples"),
                                          QStringLiteral("10")}
                                  + options,
                              dir->path());
        return result.status == 0 && result.err.isEmpty();
    };
    QFile empty(path(QStringLiteral("nothing.jsonl")));
    // Samples whose keys are all null hold no data at all.
    return generate({"--groups", "packetCounter,sampleTimeFine,calibratedAcceleration", "-o",
                     "acceleration.jsonl"})
        && generate({"--format", "ubx", "-o", "receiver.ubx"})
        && generate({"--format", "ulog", "-o", "flight.ulg"}) && empty.open(QIODevice::WriteOnly)
        && empty.write(recordingObject + "{}\n{\"packetCounter\": null}\n") > 0;
}

void tst_EmptyExports::warnings_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("recording");
    QTest::addColumn<QString>("warning");

    QTest::newRow("a UBX log with the default settings")
        << QStringList() << "receiver.ubx"
        << "receiver.ubx: no sample holds data of the chosen groups; the recording holds: "
           "Packet Counter, GPS Receiver Message, GNSS Receiver Message\n";
    QTest::newRow("groups the recording lacks")
        << QStringList{"--groups", "rate of turn,quaternion"} << "acceleration.jsonl"
        << "acceleration.jsonl: no sample holds data of the chosen groups; the recording holds: "
           "Packet Counter, Sample Time Fine, Acceleration\n";
    QTest::newRow("a flight log without its receiver")
        << QStringList{"--groups", "gps receiver message,trigger in 1"} << "flight.ulg"
        << "flight.ulg: no sample holds data of the chosen groups; the recording holds: "
           "Packet Counter, Sample Time Fine, Date and time, UTC Time, Clipping Flags, "
           "Acceleration, Free Acceleration, Rate Of Turn, Magnetic Field, Position, Velocity, "
           "Temperature, Barometric Pressure, Euler Angles, Quaternion, Matrix\n";
    QTest::newRow("a recording without data of any group")
        << QStringList{"--groups", "all"} << "nothing.jsonl"
        << "nothing.jsonl: no sample holds data of the chosen groups; the recording holds no "
           "data of any group\n";
    QTest::newRow("only groups that go with other data")
        << QStringList{"--groups", "packet counter,sample time fine"} << "acceleration.jsonl"
        << "acceleration.jsonl: none of the chosen groups makes a row of its own (counters, "
           "times, status words, clipping flags and RSSI go with other data); the recording "
           "holds: Packet Counter, Sample Time Fine, Acceleration\n";
    QTest::newRow("a selection that ends before the recording")
        << QStringList{"--groups", "rate of turn", "--to", "5"} << "acceleration.jsonl"
        << "acceleration.jsonl: no sample holds data of the chosen groups; the samples read, 0 "
           "to 4, hold: Packet Counter, Sample Time Fine, Acceleration\n";
    QTest::newRow("--from past the end")
        << QStringList{"--groups", "acceleration", "--from", "10"} << "acceleration.jsonl"
        << "acceleration.jsonl: no sample was selected; the recording's samples go from 0 to 9\n";
    QTest::newRow("--from past the end in seconds")
        << QStringList{"--groups", "acceleration", "--from", "2s"} << "acceleration.jsonl"
        << "acceleration.jsonl: no sample was selected; the recording's samples go from 0 to 9\n";
    QTest::newRow("--to at the first sample")
        << QStringList{"--groups", "acceleration", "--to", "0s"} << "acceleration.jsonl"
        << "acceleration.jsonl: no sample was selected\n";
    QTest::newRow("data of a chosen group: no warning")
        << QStringList{"--groups", "packet counter,acceleration,quaternion"} << "acceleration.jsonl"
        << QString();
    QTest::newRow("data of a chosen group in the part selected only: no warning")
        << QStringList{"--groups", "acceleration", "--from", "9"} << "acceleration.jsonl"
        << QString();
    QTest::newRow("a UBX log with its receiver's messages: no warning")
        << QStringList{"--groups", "gnss receiver message"} << "receiver.ubx" << QString();
}

void tst_EmptyExports::warnings()
{
    QFETCH(QStringList, options);
    QFETCH(QString, recording);
    QFETCH(QString, warning);
    const ProgramRun result =
        run(QStringList{"export", "--quiet", "-o", "out.txt"} + options + QStringList{recording});
    QCOMPARE(QString::fromUtf8(result.err), warning);
    QCOMPARE(result.status, 0);
    QVERIFY(QFile::exists(path(QStringLiteral("out.txt"))));
}

void tst_EmptyExports::strictLeavesNoFile_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("recording");
    QTest::addColumn<QString>("message");

    QTest::newRow("a UBX log with the default settings")
        << QStringList() << "receiver.ubx"
        << "receiver.ubx: no sample holds data of the chosen groups; the recording holds: "
           "Packet Counter, GPS Receiver Message, GNSS Receiver Message (--strict: no file "
           "written)\n";
    QTest::newRow("--from past the end")
        << QStringList{"--from", "20"} << "acceleration.jsonl"
        << "acceleration.jsonl: no sample was selected; the recording's samples go from 0 to 9 "
           "(--strict: no file written)\n";
}

void tst_EmptyExports::strictLeavesNoFile()
{
    QFETCH(QStringList, options);
    QFETCH(QString, recording);
    QFETCH(QString, message);
    const ProgramRun result = run(QStringList{"export", "--quiet", "--strict", "-o", "out.txt"}
                                  + options + QStringList{recording});
    QCOMPARE(QString::fromUtf8(result.err), message);
    QCOMPARE(result.status, 1);
    QVERIFY(!QFile::exists(path(QStringLiteral("out.txt"))));
    // Nothing else is left in the folder either: no half-written file.
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files, QDir::Name),
             QStringList({"acceleration.jsonl", "flight.ulg", "nothing.jsonl", "receiver.ubx"}));
}

// The header lines are out already; the export fails all the same.
void tst_EmptyExports::strictToStandardOutput()
{
    const ProgramRun result = run({"export", "--quiet", "--strict", "-o", "-", "receiver.ubx"});
    QCOMPARE(
        QString::fromUtf8(result.err),
        QStringLiteral("receiver.ubx: no sample holds data of the chosen groups; the recording "
                       "holds: Packet Counter, GPS Receiver Message, GNSS Receiver Message "
                       "(--strict)\n"));
    QCOMPARE(result.status, 1);
    QVERIFY(result.out.startsWith("// "));
}

void tst_EmptyExports::sideBySide_data()
{
    QTest::addColumn<bool>("strict");
    QTest::newRow("warned") << false;
    QTest::newRow("refused under --strict") << true;
}

void tst_EmptyExports::sideBySide()
{
    QFETCH(bool, strict);
    QStringList arguments{"export",       "--quiet", "--jobs",   "2",
                          "--output-dir", "out",     "--groups", "acceleration"};
    if (strict)
        arguments.append(QStringLiteral("--strict"));
    const ProgramRun result =
        run(arguments + QStringList{"acceleration.jsonl", "receiver.ubx", "flight.ulg"});
    QString warning = QStringLiteral("receiver.ubx: no sample holds data of the chosen groups; "
                                     "the recording holds: Packet Counter, GPS Receiver Message, "
                                     "GNSS Receiver Message");
    if (strict)
        warning += QStringLiteral(" (--strict: no file written)");
    QCOMPARE(QString::fromUtf8(result.err), warning + QLatin1Char('\n'));
    QCOMPARE(result.status, strict ? 1 : 0);
    QStringList written{"acceleration-001.txt", "flight-003.txt"};
    if (!strict)
        written.append(QStringLiteral("receiver-002.txt"));
    QCOMPARE(QDir(path(QStringLiteral("out"))).entryList(QDir::Files, QDir::Name), written);
}

QTEST_GUILESS_MAIN(tst_EmptyExports)
#include "tst_emptyexports.moc"
