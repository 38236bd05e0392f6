#include "exportrun.h"
#include "filemodes.h"
#include "programrun.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

// The program asciiexport driven as a user drives it, in its own process:
// exit statuses, messages, and the files it writes, byte for byte.
class tst_HostProgram : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void generatedExports_data();
    void generatedExports();
    void generateIsDeterministic();
    void setTyping_data();
    void setTyping();
    void setIsNotSaved();
    void patternNaming();
    void outputFileAndFolder();
    void foldersOfThePatternAreMade_data();
    void foldersOfThePatternAreMade();
    void failedRecordingLeavesItsNameFree_data();
    void failedRecordingLeavesItsNameFree();
    void lineBreakCannotReachAFileName();
    void progress();
    void badLine_data();
    void badLine();
    void failedExportKeepsAnOlderFile();
    void unwritableOutputFolder();
    void sameOutputTwice();
    void usageErrors_data();
    void usageErrors();
    void unknownSettingKeys_data();
    void unknownSettingKeys();
    void oddSettingValues_data();
    void oddSettingValues();
    void delimiterAndEmptyFields_data();
    void delimiterAndEmptyFields();
    void settingsFileIsChecked_data();
    void settingsFileIsChecked();
    void unknownKeysOfTheFileAreNoSettings();
    void missingSettingsFile();
    void outputFolderIsMade();
    void recordingFromStandardInput();
    void exportToStandardOutput();
    void namesOfOpenDescriptorsAreWrittenInPlace_data();
    void namesOfOpenDescriptorsAreWrittenInPlace();
    void recordingsFromPipes();
    void exportWithoutAThread();
    void groupsShorthand();
    void partOfARecording_data();
    void partOfARecording();
    void writtenFilesAreNamed();
    void parallelExportsAsOneAfterAnother();
    void pluginFaults_data();
    void pluginFaults();
    void helpForEveryCommand_data();
    void helpForEveryCommand();
    void settingsListing();
    void info();

private:
    // Writes a recording with generate; an empty name on failure.
    QString generated(const QString &name, const QStringList &options);
    QString path(const QString &name) const { return dir->filePath(name); }
    QStringList withSettings(QStringList arguments) const;
    static QByteArray readFile(const QString &fileName);
    static void writeFile(const QString &fileName, const QByteArray &bytes);

    QTemporaryDir *dir = nullptr;
};

namespace {

const QString program = QStringLiteral(ASCIIEXPORT_PROGRAM);

QStringList setAll(const QStringList &keys)
{
    QStringList arguments;
    for (const QString &key : keys)
        arguments << QStringLiteral("--set") << key + QStringLiteral("=true");
    return arguments;
}

const QByteArray recordingObject =
    "{\"properties\": {\"StartTime\": \"2026-11-21 09:30:00\", \"FilterProfile\": \"general\", "
    "\"FilterProfileVersion\": 1, \"FilterProfileType\": 39, \"OptionFlags\": 0, "
    "\"FirmwareVersion\": \"1.2.3\", \"DeviceId\": \"0123ABCD\", \"ProductCode\": \"T100\"}, "
    "\"updateRate\": 100}\n";

// The columns of the default groups without orientation: counters and a
// time, which make no row of their own.
const QByteArray countersOnly("PacketCounter\tSampleTimeFine");

// The warning about an export of counters only from a generated recording of
// two samples, which hold every group but the triggers.
QString countersOnlyWarning(const QString &recording)
{
    return recording
        + QStringLiteral(
               ": none of the chosen groups makes a row of its own (counters, times, status words, "
               "clipping flags and RSSI go with other data); the recording holds: Packet Counter, "
               "Sample Time Fine, Date and time, UTC Time, Status Word, Clipping Flags, RSSI, "
               "Acceleration, Free Acceleration, Rate Of Turn, Magnetic Field, Velocity Increment, "
               "Orientation Increment, Position, Velocity, Temperature, Gyro Temperatures, "
               "Barometric Pressure, SCR Acceleration, SCR Gyroscope Data, SCR Magnetic Field, SCR "
               "Temperature, SCR Gyro Temperatures, GPS Receiver Message, GNSS Receiver Message, "
               "Euler Angles, Quaternion, Matrix\n");
}

} // namespace

void tst_HostProgram::init()
{
    dir = new QTemporaryDir;
    QVERIFY(dir->isValid());
}

void tst_HostProgram::cleanup()
{
    delete dir;
}

QStringList tst_HostProgram::withSettings(QStringList arguments) const
{
    arguments.insert(1, QStringLiteral("--settings"));
    arguments.insert(2, path(QStringLiteral("settings.ini")));
    return arguments;
}

QString tst_HostProgram::generated(const QString &name, const QStringList &options)
{
    const ProgramRun result = ProgramRun::start(
        program,
        QStringList{QStringLiteral("generate"), QStringLiteral("-o"), path(name)} + options,
        dir->path());
    return result.status == 0 ? path(name) : QString();
}

QByteArray tst_HostProgram::readFile(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

void tst_HostProgram::writeFile(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

void tst_HostProgram::generatedExports_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("expected");

    QTest::newRow("default settings") << QStringList() << "host-defaults.txt";
    QTest::newRow("every group with Euler angles")
        << setAll(dataGroupKeys()) << "host-all-euler.txt";
    QTest::newRow("every group with a matrix, commas, NaN and high precision")
        << setAll(dataGroupKeys())
            + QStringList{"--set", "exportOrientation=Matrix", "--delimiter", ",", "--empty", "NaN",
                          "--set", "highPrecision=true"}
        << "host-all-matrix.txt";
}

// Checked by hand against the recording (tests/data/host-recording.jsonl is
// what generate writes for the options below), first row of
// host-all-euler.txt: packet counter 00000, sample time 1200000, the date
// 2026 11 21 with 0.0000 seconds, RSSI -60.0000, acceleration -0.293909
// 0.018725 9.808920, pressure 965.0280, the Euler angles 0.000000 1.610544
// 30.000000 worked out from the quaternion (0.965830427, -0.003637491,
// 0.013575302, 0.258793483), position 47.376900000 8.541700000 412.000000,
// temperature 24.52, gyroscope words 6277 6380 6482 as 25 25 25, the GNSS
// time of week 552618000, longitude 8.5416991, latitude 47.3768999, motion
// heading 60.91, geometric DOP 2.16, and 410 fields in header and row.
void tst_HostProgram::generatedExports()
{
    QFETCH(QStringList, options);
    QFETCH(QString, expected);

    const QString recording =
        generated(QStringLiteral("rec.jsonl"), {"--samples", "25", "--seed", "7", "--rate", "50"});
    QVERIFY(!recording.isEmpty());
    QCOMPARE(readFile(recording), readFile(QStringLiteral(TEST_DATA_DIR "/host-recording.jsonl")));

    const ProgramRun result =
        ProgramRun::start(program,
                          withSettings(QStringList{"export", "--quiet", "-o", path("out.txt")}
                                       + options + QStringList{recording}),
                          dir->path());
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(readFile(path("out.txt")), readFile(QStringLiteral(TEST_DATA_DIR "/") + expected));
}

void tst_HostProgram::generateIsDeterministic()
{
    const QString first =
        generated(QStringLiteral("a.jsonl"), {"--samples", "300", "--seed", "42"});
    const QString second =
        generated(QStringLiteral("b.jsonl"), {"--samples", "300", "--seed", "42"});
    const QString other =
        generated(QStringLiteral("c.jsonl"), {"--samples", "300", "--seed", "43"});
    QVERIFY(!first.isEmpty() && !second.isEmpty() && !other.isEmpty());
    QCOMPARE(readFile(first), readFile(second));
    QVERIFY(readFile(first) != readFile(other));

    const QString some =
        generated(QStringLiteral("d.jsonl"),
                  {"--samples", "3", "--groups", "packetCounter,orientationQuaternion"});
    const QList<QByteArray> lines = readFile(some).trimmed().split('\n');
    QCOMPARE(lines.size(), 4);
    QVERIFY(lines.at(1).startsWith("{\"packetCounter\":"));
    QVERIFY(lines.at(1).contains("\"orientationQuaternion\":"));
    QVERIFY(!lines.at(1).contains("calibratedAcceleration"));
}

void tst_HostProgram::setTyping_data()
{
    QTest::addColumn<QStringList>("sets");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("columnLine");
    QTest::addColumn<QByteArray>("error");

    QTest::newRow("true for a boolean key")
        << QStringList{"exportRssi=true"} << 0
        << QByteArray("PacketCounter\tSampleTimeFine\tRSSI\tRoll\tPitch\tYaw") << QByteArray();
    QTest::newRow("1 for a boolean key")
        << QStringList{"exportRssi=1"} << 0
        << QByteArray("PacketCounter\tSampleTimeFine\tRSSI\tRoll\tPitch\tYaw") << QByteArray();
    QTest::newRow("0 for a boolean key")
        << QStringList{"exportSampleTimeFine=0"} << 0
        << QByteArray("PacketCounter\tRoll\tPitch\tYaw") << QByteArray();
    QTest::newRow("false for a boolean key")
        << QStringList{"exportSampleTimeFine=false"} << 0
        << QByteArray("PacketCounter\tRoll\tPitch\tYaw") << QByteArray();
    QTest::newRow("yes is a usage error for a boolean key")
        << QStringList{"exportRssi=yes"} << 2 << QByteArray()
        << QByteArray("asciiexport export: exportRssi takes true, false, 1 or 0, not \"yes\"\n"
                      "Try 'asciiexport export --help'.\n");
    QTest::newRow("an empty value is a usage error for a boolean key")
        << QStringList{"exportRssi="} << 2 << QByteArray()
        << QByteArray("asciiexport export: exportRssi takes true, false, 1 or 0, not \"\"\n"
                      "Try 'asciiexport export --help'.\n");
    // " = " loses its last blank only: one character comes off the line
    QTest::newRow("a string key takes the text after the first = verbatim")
        << QStringList{"useOtherDelimiter=true", "useTabDelimiter=false", "otherDelimiter= = "} << 0
        << QByteArray("PacketCounter = SampleTimeFine = Roll = Pitch = Yaw =") << QByteArray();
    // read as ever, with a warning, since no options page offers it
    QTest::newRow("a string key keeps true as text")
        << QStringList{"exportOrientation=true"} << 0 << QByteArray("PacketCounter\tSampleTimeFine")
        << QByteArray("asciiexport export: warning: --set exportOrientation=true: not one of "
                      "Euler, Matrix, "
                      "Quaternion and None: the plug-in writes no orientation columns\n");
    QTest::newRow("later changes win")
        << QStringList{"exportRssi=true", "exportRssi=false"} << 0
        << QByteArray("PacketCounter\tSampleTimeFine\tRoll\tPitch\tYaw") << QByteArray();
    QTest::newRow("no = is a usage error")
        << QStringList{"exportRssi"} << 2 << QByteArray()
        << QByteArray("asciiexport export: --set takes KEY=VALUE, not \"exportRssi\"\n"
                      "Try 'asciiexport export --help'.\n");
}

void tst_HostProgram::setTyping()
{
    QFETCH(QStringList, sets);
    QFETCH(int, status);
    QFETCH(QByteArray, columnLine);
    QFETCH(QByteArray, error);

    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "2"});
    QStringList arguments{"export", "--quiet", "-o", path("out.txt")};
    for (const QString &set : sets)
        arguments << QStringLiteral("--set") << set;
    const ProgramRun result =
        ProgramRun::start(program, withSettings(arguments << recording), dir->path());
    if (status == 0 && columnLine == countersOnly)
        error += countersOnlyWarning(recording).toUtf8();
    QCOMPARE(result.err, error);
    QCOMPARE(result.status, status);
    if (status == 0)
        QCOMPARE(readFile(path("out.txt")).split('\n').value(5), columnLine);
    else
        QVERIFY(!QFile::exists(path("out.txt")));
}

void tst_HostProgram::setIsNotSaved()
{
    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "2"});
    writeFile(path("settings.ini"), "[General]\nexportRssi=false\n");
    const ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--quiet", "--set", "exportRssi=true", recording}),
        dir->path());
    QCOMPARE(result.status, 0);
    QCOMPARE(readFile(path("settings.ini")), QByteArray("[General]\nexportRssi=false\n"));
}

void tst_HostProgram::patternNaming()
{
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("in")));
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("out")));
    const QByteArray sample = "{\"packetCounter\": 1, \"orientationEuler\": [1, 2, 3]}\n";
    writeFile(path("in/walk.jsonl"), recordingObject + sample);
    writeFile(path("in/run.day2.jsonl"), recordingObject + sample);
    // the same recording twice on the command line: <seqnr> keeps them apart
    const QStringList recordings{path("in/walk.jsonl"), path("in/run.day2.jsonl"),
                                 path("in/walk.jsonl")};
    const ProgramRun beside = ProgramRun::start(
        program,
        withSettings(QStringList{"export", "--quiet", "--set",
                                 "outputFileFormat=<inputfile>_<seqnr>_<deviceid>-<productcode>"}
                     + recordings),
        dir->path());
    QCOMPARE(beside.err, QByteArray());
    QCOMPARE(beside.status, 0);
    QCOMPARE(QDir(path("in")).entryList(QDir::Files, QDir::Name),
             (QStringList{"run.day2.jsonl", "run.day2_002_0123ABCD-T100.txt", "walk.jsonl",
                          "walk_001_0123ABCD-T100.txt", "walk_003_0123ABCD-T100.txt"}));

    const ProgramRun inFolder =
        ProgramRun::start(program,
                          withSettings(QStringList{"export", "--quiet", "--output-dir", path("out"),
                                                   "--set", "outputFileExtension=csv", "--set",
                                                   "outputFileFormat=<filterprofile>-<seqnr>"}
                                       + recordings.mid(0, 2)),
                          dir->path());
    QCOMPARE(inFolder.status, 0);
    QCOMPARE(QDir(path("out")).entryList(QDir::Files, QDir::Name),
             (QStringList{"general-001.csv", "general-002.csv"}));

    const ProgramRun dated =
        ProgramRun::start(program,
                          withSettings({"export", "--quiet", "--output-dir", path("out"), "--set",
                                        "outputFileFormat=<date>_<time>", recordings.first()}),
                          dir->path());
    QCOMPARE(dated.status, 0);
    const QStringList names = QDir(path("out")).entryList({"*.txt"}, QDir::Files);
    QCOMPARE(names.size(), 1);
    QVERIFY2(QRegularExpression(QStringLiteral("^\\d{4}-\\d\\d-\\d\\d_\\d\\dh\\d\\d\\.txt$"))
                 .match(names.first())
                 .hasMatch(),
             qPrintable(names.first()));
}

void tst_HostProgram::foldersOfThePatternAreMade_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<bool>("intoOutputFolder");
    QTest::addColumn<QString>("file");

    QTest::newRow("a folder in the output folder")
        << QStringLiteral("sub/<inputfile>") << true << QStringLiteral("out/sub/rec.txt");
    QTest::newRow("folders in folders beside the recording")
        << QStringLiteral("by product/<productcode>/<inputfile>") << false
        << QStringLiteral("by product/T100/rec.txt");
    QTest::newRow("a folder that is there already")
        << QStringLiteral("../out/<inputfile>") << true << QStringLiteral("out/rec.txt");
}

void tst_HostProgram::foldersOfThePatternAreMade()
{
    QFETCH(QString, pattern);
    QFETCH(bool, intoOutputFolder);
    QFETCH(QString, file);

    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "3"});
    QStringList arguments{"export", "--quiet", "--set", "outputFileFormat=" + pattern};
    if (intoOutputFolder)
        arguments << "--output-dir" << path("out");
    for (const int jobs : {1, 2}) {
        // Two at a time, the same recording twice: the second gets its name
        // once the first has written the file, and is refused it.
        const ProgramRun result = ProgramRun::start(
            program,
            withSettings(arguments
                         + QStringList{"--jobs", QString::number(jobs), recording, recording}),
            dir->path());
        QCOMPARE(result.status, 1);
        QCOMPARE(QString::fromUtf8(result.err),
                 recording + ": the output file " + path(file) + " was written for " + recording
                     + " already\n");
        QVERIFY(QFile::exists(path(file)));
        QVERIFY(QFile::remove(path(file)));
    }
}

void tst_HostProgram::failedRecordingLeavesItsNameFree_data()
{
    QTest::addColumn<int>("jobs");

    QTest::newRow("one after another") << 1;
    QTest::newRow("two at a time") << 2;
}

void tst_HostProgram::failedRecordingLeavesItsNameFree()
{
    writeFile(path("settings.ini"), QByteArray()); // the defaults, without a note
    QFETCH(int, jobs);

    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("bad")));
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("good")));
    // It fails after its name was given: at a bad sample line.
    writeFile(path("bad/x.jsonl"), recordingObject + "{\"packetCounter\": 1}\nnot a sample\n");
    const QString good = generated(QStringLiteral("good/x.jsonl"), {"--samples", "3"});
    const QString alone = generated(QStringLiteral("alone.jsonl"), {"--samples", "3"});
    QCOMPARE(ProgramRun::start(
                 program, withSettings({"export", "--quiet", "-o", path("expected.txt"), alone}),
                 dir->path())
                 .status,
             0);
    const ProgramRun result =
        ProgramRun::start(program,
                          withSettings({"export", "--jobs", QString::number(jobs), "--set",
                                        "outputFileFormat=<inputfile>", "--output-dir", path("out"),
                                        path("bad/x.jsonl"), good}),
                          dir->path());
    QCOMPARE(result.status, 1);
    QCOMPARE(QString::fromUtf8(result.err),
             path("bad/x.jsonl")
                 + ":3: malformed JSON at column 2: Invalid value. (--skip-bad-lines exports the "
                   "other samples)\n"
                 + good + " -> " + path("out/x.txt") + "\n");
    QCOMPARE(readFile(path("out/x.txt")), readFile(path("expected.txt")));
}

void tst_HostProgram::lineBreakCannotReachAFileName()
{
    writeFile(path("settings.ini"), QByteArray()); // the defaults, without a note
    writeFile(path("noted.jsonl"),
              "{\"properties\": {\"DeviceId\": \"01\\n23\"}, \"updateRate\": 100}\n"
              "{\"packetCounter\": 1, \"orientationEuler\": [1, 2, 3]}\n");
    // The default pattern does not use the device: the text may hold anything.
    QCOMPARE(ProgramRun::start(program, withSettings({"export", "--quiet", path("noted.jsonl")}),
                               dir->path())
                 .status,
             0);
    QVERIFY(QFile::exists(path("noted-001.txt")));
    const ProgramRun named = ProgramRun::start(
        program,
        withSettings(
            {"export", "--set", "outputFileFormat=<inputfile>-<deviceid>", path("noted.jsonl")}),
        dir->path());
    QCOMPARE(named.status, 1);
    QCOMPARE(QString::fromUtf8(named.err),
             path("noted.jsonl")
                 + ": the property DeviceId holds a line break, which the output file name "
                   "pattern \"<inputfile>-<deviceid>\" would put into the file name\n");
    QCOMPARE(QDir(dir->path()).entryList({"noted-01*"}, QDir::Files), QStringList());
}

void tst_HostProgram::outputFileAndFolder()
{
    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "3"});
    const ProgramRun result =
        ProgramRun::start(program,
                          withSettings({"export", "--quiet", "--output",
                                        QStringLiteral("exact name.dat"), recording}),
                          dir->path());
    QCOMPARE(result.status, 0);
    QVERIFY(QFile::exists(path("exact name.dat")));
    QVERIFY(!QFile::exists(path("rec-001.txt")));
}

void tst_HostProgram::progress()
{
    writeFile(path("settings.ini"), QByteArray()); // the defaults, without a note
    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "2000"});
    const ProgramRun shown =
        ProgramRun::start(program, withSettings({"export", "--progress", recording}), dir->path());
    QCOMPARE(shown.status, 0);
    QVERIFY2(shown.err.startsWith("\r[") && shown.err.contains("] 100% rec.jsonl"),
             shown.err.constData());
    // the bar is wiped at the end, and the file written is named on a line of its own
    const QByteArray named = recording.toUtf8() + " -> " + path("rec-001.txt").toUtf8() + '\n';
    QVERIFY2(shown.err.endsWith('\r' + named), shown.err.constData());
    QCOMPARE(shown.err.count('\n'), 1);

    // not a terminal: no progress unless asked for
    const ProgramRun silent =
        ProgramRun::start(program, withSettings({"export", recording}), dir->path());
    QCOMPARE(silent.status, 0);
    QCOMPARE(silent.err, named);
}

void tst_HostProgram::badLine_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("message");

    const QByteArray good = "{\"packetCounter\": 1, \"orientationEuler\": [1, 2, 3]}\n";
    QTest::newRow("at line 1: no recording object")
        << QByteArray("[1, 2, 3]\n") + good << QByteArray(":1: ");
    QTest::newRow("in the middle: out of range")
        << recordingObject + good + "{\"packetCounter\": 70000}\n" + good
        << QByteArray(":3: \"packetCounter\": 70000 is out of range (0..65535)");
    QTest::newRow("at the end: not an object") << recordingObject + good + good + "42\n"
                                               << QByteArray(":4: ");
    QTest::newRow("at the end: a line cut short")
        << recordingObject + good + "{\"packetCounter\": 1, \"orientationEuler\": [1, 2"
        << QByteArray(":3: ");
    QTest::newRow("a list of the wrong length") << recordingObject
            + "{\"orientationEuler\": [1, 2]}\n" << QByteArray(":2: \"orientationEuler\"");
    QTest::newRow("a value of the wrong type") << recordingObject + "{\"pressure\": \"high\"}\n"
                                               << QByteArray(":2: \"pressure\"");
}

void tst_HostProgram::badLine()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, message);

    writeFile(path("bad.jsonl"), content);
    const QString good = generated(QStringLiteral("good.jsonl"), {"--samples", "2"});
    const ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--quiet", path("bad.jsonl"), good}), dir->path());
    QCOMPARE(result.status, 1);
    const QList<QByteArray> lines = result.err.split('\n');
    QCOMPARE(lines.size(), 2); // one line, then the final line end
    QVERIFY2(lines.first().startsWith(path("bad.jsonl").toUtf8() + message),
             result.err.constData());
    // a bad sample line names the way to export the rest
    QCOMPARE(lines.first().endsWith(" (--skip-bad-lines exports the other samples)"),
             !message.startsWith(":1:"));
    QVERIFY(!QFile::exists(path("bad-001.txt")));
    // nothing else is left behind either
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files, QDir::Name),
             (QStringList{"bad.jsonl", "good-002.txt", "good.jsonl"}));
}

void tst_HostProgram::failedExportKeepsAnOlderFile()
{
    writeFile(path("rec.jsonl"), recordingObject + "{\"packetCounter\": -1}\n");
    writeFile(path("rec-001.txt"), "an older export\n");
    const ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--quiet", path("rec.jsonl")}), dir->path());
    QCOMPARE(result.status, 1);
    QCOMPARE(readFile(path("rec-001.txt")), QByteArray("an older export\n"));
}

void tst_HostProgram::unwritableOutputFolder()
{
    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "2"});
    QString folder = path(QStringLiteral("locked"));
    QVERIFY(QDir().mkdir(folder));
    QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
    QStringList arguments = withSettings({"export", "--quiet", "--output-dir", folder, recording});
    QString command = program;
    QString why;
    // Only writing: the program must still reach the recording in this test's folder.
    if (!FileModes::obeyed(FileModes::Refused::Writing, &command, &arguments, &why))
        QSKIP(qPrintable(why));
    const ProgramRun result = ProgramRun::start(command, arguments, dir->path(), 60000);
    QCOMPARE(result.status, 1);
    // the plug-in's message, the name of the file it could not open, and the system's reason
    QCOMPARE(result.err, (folder + QStringLiteral("/rec-001.txt: Permission denied\n")).toUtf8());
    QFile::setPermissions(path(QStringLiteral("locked")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void tst_HostProgram::sameOutputTwice()
{
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("a")));
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("b")));
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("out")));
    const QString first =
        generated(QStringLiteral("a/rec.jsonl"), {"--samples", "2", "--seed", "1"});
    const QString second =
        generated(QStringLiteral("b/rec.jsonl"), {"--samples", "2", "--seed", "2"});
    const ProgramRun result =
        ProgramRun::start(program,
                          withSettings({"export", "--quiet", "--output-dir", path("out"), "--set",
                                        "outputFileFormat=<inputfile>", first, second}),
                          dir->path());
    QCOMPARE(result.status, 1);
    QVERIFY2(result.err.contains("was written for"), result.err.constData());
    // the first export is kept, not overwritten by the second
    QVERIFY(readFile(path("out/rec.txt")).contains("00000\t"));
}

void tst_HostProgram::usageErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");

    QTest::newRow("no command") << QStringList() << QByteArray("asciiexport: no command given");
    QTest::newRow("an unknown command")
        << QStringList{"transcode"} << QByteArray("asciiexport: unknown command \"transcode\"");
    QTest::newRow("no recording") << QStringList{"export"}
                                  << QByteArray("asciiexport export: no recording given");
    QTest::newRow("an unknown option") << QStringList{"export", "--fast", "x.jsonl"}
                                       << QByteArray("asciiexport export: Unknown option 'fast'.");
    QTest::newRow("--output with two recordings")
        << QStringList{"export", "-o", "x.txt", "a.jsonl", "b.jsonl"}
        << QByteArray("asciiexport export: --output takes one recording only; use --output-dir for "
                      "several");
    QTest::newRow("--output and --output-dir")
        << QStringList{"export", "-o", "x.txt", "--output-dir", ".", "a.jsonl"}
        << QByteArray("asciiexport export: --output and --output-dir exclude each other");
    QTest::newRow("--progress and --quiet")
        << QStringList{"export", "--progress", "--quiet", "a.jsonl"}
        << QByteArray("asciiexport export: --progress and --quiet exclude each other");
    QTest::newRow("generate without output")
        << QStringList{"generate"} << QByteArray("asciiexport generate: --output is required");
    QTest::newRow("generate with a bad count")
        << QStringList{"generate", "--samples", "-3", "-o", "x"}
        << QByteArray("asciiexport generate: --samples takes a whole number of 0 or more");
    QTest::newRow("generate with a zero rate")
        << QStringList{"generate", "--rate", "0", "-o", "x"}
        << QByteArray("asciiexport generate: --rate takes a number greater than 0");
    QTest::newRow("generate with an unknown key")
        << QStringList{"generate", "--groups", "packetCounter,speed", "-o", "x"}
        << QByteArray("asciiexport generate: unknown sample key \"speed\"");
    QTest::newRow("an empty output name")
        << QStringList{"export", "-o", "", "a.jsonl"}
        << QByteArray("asciiexport export: --output takes a file name, or - for standard output");
    QTest::newRow("an empty output folder")
        << QStringList{"export", "--output-dir", "", "a.jsonl"}
        << QByteArray("asciiexport export: --output-dir takes a folder name");
    QTest::newRow("standard input twice")
        << QStringList{"export", "-", "-"}
        << QByteArray("asciiexport export: standard input (-) can be read once only");
    QTest::newRow("--every 0") << QStringList{
        "export", "--every", "0",
        "a.jsonl"} << QByteArray("asciiexport export: --every takes a whole number of 1 or more");
    QTest::newRow("--from after --to")
        << QStringList{"export", "--from", "20", "--to", "10", "a.jsonl"}
        << QByteArray("asciiexport export: --from must come before --to");
    QTest::newRow("--to in minutes") << QStringList{"export", "--to", "2m", "a.jsonl"}
                                     << QByteArray("asciiexport export: --to takes a sample index "
                                                   "(0 is the first sample) or seconds from the "
                                                   "start such as 12.5s, not \"2m\"");
    QTest::newRow("--jobs 0") << QStringList{
        "export", "--jobs", "0",
        "a.jsonl"} << QByteArray("asciiexport export: --jobs takes a whole number of 1 or more");
    QTest::newRow("--jobs with standard input")
        << QStringList{"export", "--jobs", "2", "a.jsonl", "-"}
        << QByteArray(
               "asciiexport export: --jobs cannot share standard input (-) between processes");
    QTest::newRow("generate with an empty output name")
        << QStringList{"generate", "-o", ""}
        << QByteArray("asciiexport generate: --output takes a file name, or - for standard output");
    QTest::newRow("settings with an argument")
        << QStringList{"settings", "extra"}
        << QByteArray("asciiexport settings: unexpected argument \"extra\"");
}

void tst_HostProgram::usageErrors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, message);

    const ProgramRun result = ProgramRun::start(program, arguments, dir->path());
    QCOMPARE(result.status, 2);
    QVERIFY2(result.err.startsWith(message), result.err.constData());
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files), QStringList());
}

void tst_HostProgram::unknownSettingKeys_data()
{
    QTest::addColumn<QString>("set");
    QTest::addColumn<QString>("suggestion");
    QTest::newRow("a letter missing") << "exportAccleration=true"
                                      << "exportScrAcceleration";
    QTest::newRow("another case") << "exportrssi=true"
                                  << "exportRssi";
    QTest::newRow("a letter too many") << "highPrecission=true"
                                       << "highPrecision";
    QTest::newRow("letters swapped") << "outputFileFromat=x"
                                     << "outputFileFormat";
}

void tst_HostProgram::unknownSettingKeys()
{
    QFETCH(QString, set);
    QFETCH(QString, suggestion);
    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "2"});
    const ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--quiet", "--set", set, recording}), dir->path());
    QCOMPARE(result.status, 2);
    QCOMPARE(QString::fromUtf8(result.err),
             QStringLiteral("asciiexport export: unknown setting \"%1\"; did you mean \"%2\"?\n"
                            "Try 'asciiexport export --help'.\n")
                 .arg(set.left(set.indexOf(QLatin1Char('='))), suggestion));
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files), QStringList{"rec.jsonl"});
}

void tst_HostProgram::oddSettingValues_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("warning"); // empty for none
    QTest::addColumn<QByteArray>("columnLine");

    const QString noOrientation =
        "not one of Euler, Matrix, Quaternion and None: the plug-in writes no "
        "orientation columns";
    QTest::newRow("an orientation of another word")
        << "exportOrientation"
        << "Sideways" << noOrientation << QByteArray("PacketCounter\tSampleTimeFine");
    QTest::newRow("an empty orientation")
        << "exportOrientation"
        << "" << noOrientation << QByteArray("PacketCounter\tSampleTimeFine");
    QTest::newRow("an orientation in odd case")
        << "exportOrientation"
        << "qUATERNION" << QString()
        << QByteArray("PacketCounter\tSampleTimeFine\tQuat_q0\tQuat_q1\tQuat_q2\tQuat_q3");
    QTest::newRow("no orientation")
        << "exportOrientation"
        << "none" << QString() << QByteArray("PacketCounter\tSampleTimeFine");
    QTest::newRow("high precision read as on")
        << "highPrecision"
        << "no"
        << "not one of true, false, 1 and 0: the plug-in reads it as true"
        << QByteArray("PacketCounter\tSampleTimeFine\tRoll\tPitch\tYaw");
    QTest::newRow("high precision read as off")
        << "highPrecision"
        << "FALSE"
        << "not one of true, false, 1 and 0: the plug-in reads it as false"
        << QByteArray("PacketCounter\tSampleTimeFine\tRoll\tPitch\tYaw");
    QTest::newRow("high precision 0")
        << "highPrecision"
        << "0" << QString() << QByteArray("PacketCounter\tSampleTimeFine\tRoll\tPitch\tYaw");
}

// A value no options page could have stored is read as the plug-in always
// reads it, with a warning; --strict refuses it. The same for values from the
// settings file.
void tst_HostProgram::oddSettingValues()
{
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QString, warning);
    QFETCH(QByteArray, columnLine);

    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "2"});
    const QString set = key + QLatin1Char('=') + value;
    ProgramRun result = ProgramRun::start(
        program,
        withSettings({"export", "--quiet", "-o", path("set.txt"), "--set", set, recording}),
        dir->path());
    // Without orientation the file has no rows, which is warned about too,
    // and refused under --strict.
    const QString noRows = columnLine == countersOnly ? countersOnlyWarning(recording) : QString();
    QCOMPARE(QString::fromUtf8(result.err),
             (warning.isEmpty()
                  ? QString()
                  : QStringLiteral("asciiexport export: warning: --set %1: %2\n").arg(set, warning))
                 + noRows);
    QCOMPARE(result.status, 0);
    const QByteArray exported = readFile(path("set.txt"));
    QCOMPARE(exported.split('\n').value(5), columnLine);

    result = ProgramRun::start(program,
                               withSettings({"export", "--quiet", "--strict", "-o",
                                             path("strict.txt"), "--set", set, recording}),
                               dir->path());
    if (warning.isEmpty()) {
        QCOMPARE(result.status, noRows.isEmpty() ? 0 : 1);
    } else {
        QCOMPARE(
            QString::fromUtf8(result.err),
            QStringLiteral("asciiexport export: --set %1: %2\nTry 'asciiexport export --help'.\n")
                .arg(set, warning));
        QCOMPARE(result.status, 2);
        QVERIFY(!QFile::exists(path("strict.txt")));
    }

    writeFile(path("settings.ini"), "[General]\n" + set.toUtf8() + "\n");
    result = ProgramRun::start(
        program, withSettings({"export", "--quiet", "-o", path("file.txt"), recording}),
        dir->path());
    QCOMPARE(QString::fromUtf8(result.err),
             (warning.isEmpty() ? QString()
                                : QStringLiteral("asciiexport export: warning: %1: %2: %3\n")
                                      .arg(path("settings.ini"), set, warning))
                 + noRows);
    QCOMPARE(result.status, 0);
    QCOMPARE(readFile(path("file.txt")), exported);
    result = ProgramRun::start(
        program,
        withSettings({"export", "--quiet", "--strict", "-o", path("strict.txt"), recording}),
        dir->path());
    QCOMPARE(result.status, !warning.isEmpty() ? 2 : noRows.isEmpty() ? 0 : 1);
}

namespace {

// A recording whose first sample has no sample time: its field is empty.
const QByteArray gapRecording = recordingObject
    + "{\"packetCounter\": 1, \"calibratedAcceleration\": [1, 2, 3]}\n"
      "{\"packetCounter\": 2, \"sampleTimeFine\": 40, \"calibratedAcceleration\": [4, 5, 6]}\n";

// The column line and the rows of gapRecording exported with @p delimiter
// after every field, less the line's last character, and @p empty in empty
// fields (Euler angles of a sample without orientation are empty as well).
QByteArray gapRows(const QByteArray &delimiter, const QByteArray &empty)
{
    const QList<QList<QByteArray>> lines{
        {"PacketCounter", "SampleTimeFine", "Acc_X", "Acc_Y", "Acc_Z", "Roll", "Pitch", "Yaw"},
        {"00001", empty, "1.000000", "2.000000", "3.000000", empty, empty, empty},
        {"00002", "00040", "4.000000", "5.000000", "6.000000", empty, empty, empty},
    };
    QByteArray rows;
    for (const QList<QByteArray> &fields : lines) {
        QByteArray line;
        for (const QByteArray &field : fields)
            line += field + delimiter;
        line.chop(1);
        rows += line + '\n';
    }
    return rows;
}

} // namespace

void tst_HostProgram::delimiterAndEmptyFields_data()
{
    QTest::addColumn<QByteArray>("settingsFile"); // empty: none
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("error"); // {settings} stands for the settings file
    QTest::addColumn<QByteArray>("rows"); // empty: no file written

    const QByteArray usage = "Try 'asciiexport export --help'.\n";
    QTest::newRow("--delimiter ,")
        << QByteArray() << QStringList{"--delimiter", ","} << 0 << QByteArray() << gapRows(",", "");
    QTest::newRow("--delimiter comma") << QByteArray() << QStringList{"--delimiter", "comma"} << 0
                                       << QByteArray() << gapRows(",", "");
    QTest::newRow("--delimiter ;")
        << QByteArray() << QStringList{"--delimiter", ";"} << 0 << QByteArray() << gapRows(";", "");
    QTest::newRow("--delimiter space") << QByteArray() << QStringList{"--delimiter", "space"} << 0
                                       << QByteArray() << gapRows(" ", "");
    QTest::newRow("--delimiter tab over a comma of the file")
        << QByteArray("[General]\nuseCommaDelimiter=true\nuseTabDelimiter=false\n")
        << QStringList{"--delimiter", "tab"} << 0 << QByteArray() << gapRows("\t", "");
    QTest::newRow("--delimiter with a text of its own")
        << QByteArray() << QStringList{"--delimiter", " | "} << 0 << QByteArray()
        << gapRows(" | ", "");
    QTest::newRow("--empty 0") << QByteArray() << QStringList{"--empty", "0"} << 0 << QByteArray()
                               << gapRows("\t", "0");
    QTest::newRow("--empty NaN with commas")
        << QByteArray() << QStringList{"--empty", "NaN", "--delimiter", ","} << 0 << QByteArray()
        << gapRows(",", "NaN");
    QTest::newRow("--empty with a text of its own") << QByteArray() << QStringList{"--empty", "n/a"}
                                                    << 0 << QByteArray() << gapRows("\t", "n/a");
    QTest::newRow("--empty nothing over zero of the file")
        << QByteArray("[General]\ninsertZero=true\ninsertNothing=false\n")
        << QStringList{"--empty", "nothing"} << 0 << QByteArray() << gapRows("\t", "");
    QTest::newRow("--set insertZero alone changes nothing, and says so")
        << QByteArray() << QStringList{"--set", "insertZero=true"} << 0
        << QByteArray("asciiexport export: warning: insertNothing and insertZero are both on: "
                      "the plug-in writes nothing into empty fields (insertNothing wins)\n")
        << gapRows("\t", "");
    QTest::newRow("--set of a comma beside the tab")
        << QByteArray() << QStringList{"--set", "useCommaDelimiter=true"} << 0
        << QByteArray("asciiexport export: warning: useCommaDelimiter and useTabDelimiter are "
                      "both on: the plug-in uses \",\" between fields (useCommaDelimiter wins)\n")
        << gapRows(",", "");
    QTest::newRow("no delimiter on")
        << QByteArray() << QStringList{"--set", "useTabDelimiter=false"} << 0
        << QByteArray("asciiexport export: warning: none of useCommaDelimiter, "
                      "useOtherDelimiter, useSemiColonDelimiter, useSpaceDelimiter and "
                      "useTabDelimiter is on: the plug-in uses a tab between fields\n")
        << gapRows("\t", "");
    QTest::newRow("no empty-field text on in the file")
        << QByteArray("[General]\ninsertNothing=false\n") << QStringList() << 0
        << QByteArray("asciiexport export: warning: {settings}: none of insertNan, insertNothing, "
                      "insertOtherPlaceholder and insertZero is on: the plug-in writes a tab "
                      "into empty fields\n")
        << gapRows("\t", "\t");
    QTest::newRow("three delimiters of the file")
        << QByteArray("[General]\nuseSemiColonDelimiter=true\nuseSpaceDelimiter=true\n")
        << QStringList() << 0
        << QByteArray("asciiexport export: warning: {settings}: useSemiColonDelimiter, "
                      "useSpaceDelimiter and useTabDelimiter are all on: the plug-in uses \";\" "
                      "between fields (useSemiColonDelimiter wins)\n")
        << gapRows(";", "");
    QTest::newRow("--strict refuses a contradiction")
        << QByteArray() << QStringList{"--strict", "--set", "useCommaDelimiter=true"} << 2
        << "asciiexport export: useCommaDelimiter and useTabDelimiter are both on: the plug-in "
           "uses \",\" between fields (useCommaDelimiter wins)\n"
            + usage
        << QByteArray();
    QTest::newRow("an empty custom delimiter")
        << QByteArray()
        << QStringList{"--set", "useOtherDelimiter=true", "--set", "useTabDelimiter=false"} << 2
        << "asciiexport export: useOtherDelimiter is on with an empty otherDelimiter: the fields "
           "of a line would run together\n"
            + usage
        << QByteArray();
    QTest::newRow("an empty custom delimiter of the file")
        << QByteArray("[General]\nuseOtherDelimiter=true\nuseTabDelimiter=false\n") << QStringList()
        << 2
        << "asciiexport export: {settings}: useOtherDelimiter is on with an empty "
           "otherDelimiter: the fields of a line would run together\n"
            + usage
        << QByteArray();
    QTest::newRow("an empty --delimiter")
        << QByteArray() << QStringList{"--delimiter", ""} << 2
        << "asciiexport export: --delimiter takes a text, such as tab, space, ; or ,\n" + usage
        << QByteArray();
    QTest::newRow("--delimiter with --set of its group")
        << QByteArray() << QStringList{"--delimiter", ",", "--set", "otherDelimiter=|"} << 2
        << "asciiexport export: --delimiter and --set otherDelimiter exclude each other\n" + usage
        << QByteArray();
    QTest::newRow("--empty with --set of its group")
        << QByteArray() << QStringList{"--set", "insertZero=true", "--empty", "NaN"} << 2
        << "asciiexport export: --empty and --set insertZero exclude each other\n" + usage
        << QByteArray();
}

// --delimiter and --empty set their group as the options page does; a group
// that contradicts itself is warned about, naming what the plug-in does, and
// an empty delimiter is refused. The rows show what the plug-in wrote.
void tst_HostProgram::delimiterAndEmptyFields()
{
    QFETCH(QByteArray, settingsFile);
    QFETCH(QStringList, options);
    QFETCH(int, status);
    QFETCH(QByteArray, error);
    QFETCH(QByteArray, rows);

    writeFile(path("gap.jsonl"), gapRecording);
    writeFile(path("settings.ini"), settingsFile);
    const ProgramRun result =
        ProgramRun::start(program,
                          withSettings(QStringList{"export", "--quiet", "-o", path("out.txt"),
                                                   "--set", "exportCalibratedAcceleration=true"}
                                       + options + QStringList{path("gap.jsonl")}),
                          dir->path());
    QCOMPARE(QString::fromUtf8(result.err),
             QString::fromUtf8(error).replace(QStringLiteral("{settings}"), path("settings.ini")));
    QCOMPARE(result.status, status);
    if (rows.isEmpty()) {
        QVERIFY(!QFile::exists(path("out.txt")));
        return;
    }
    const QByteArray exported = readFile(path("out.txt"));
    QCOMPARE(exported.mid(exported.indexOf("PacketCounter")), rows);
    // the settings file is read, not written
    QCOMPARE(readFile(path("settings.ini")), settingsFile);
}

void tst_HostProgram::settingsFileIsChecked_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QStringList>("findings"); // {settings} stands for the settings file

    QTest::newRow("a misspelt key")
        << QByteArray("[General]\nexportRssi=true\nexportAccleration=true\n")
        << QStringList{"{settings}:3: unknown setting \"exportAccleration\"; did you mean "
                       "\"exportScrAcceleration\"?"};
    QTest::newRow("another section")
        << QByteArray("[General]\nexportRssi=true\n[Export]\nexportTemperature=true\n")
        << QStringList{"{settings}:3: section [Export] is not read: the plug-in's settings "
                       "belong in [General]"};
    QTest::newRow("lines that are no settings")
        << QByteArray("[General]\nexportRssi true\n=true\n")
        << QStringList{"{settings}:2: neither KEY=VALUE nor a [section]: ignored",
                       "{settings}:3: no key before the =: ignored"};
    QTest::newRow("random bytes") << QByteArray(
        "\x8f\x03z=\xc1\x9a\n\x7f\x00q",
        10) << QStringList{"{settings}: not a settings file: it holds bytes that are not text"};
    QTest::newRow("a value that is no boolean")
        << QByteArray("[General]\nexportRssi=yes\n")
        << QStringList{"{settings}: ignored: exportRssi: \"yes\" is not a boolean"};
}

// Whatever the settings file holds that the plug-in does not read is named,
// the export goes on with the rest; --strict refuses it and writes nothing.
void tst_HostProgram::settingsFileIsChecked()
{
    QFETCH(QByteArray, contents);
    QFETCH(QStringList, findings);

    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "2"});
    writeFile(path("settings.ini"), contents);
    ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--quiet", "-o", path("out.txt"), recording}),
        dir->path());
    QString warnings;
    QString refusals;
    for (QString finding : qAsConst(findings)) {
        finding.replace(QStringLiteral("{settings}"), path("settings.ini"));
        warnings += QStringLiteral("asciiexport export: warning: %1\n").arg(finding);
        refusals += QStringLiteral("asciiexport export: %1\n").arg(finding);
    }
    QCOMPARE(QString::fromUtf8(result.err), warnings);
    QCOMPARE(result.status, 0);
    QVERIFY(QFile::exists(path("out.txt")));

    result = ProgramRun::start(
        program,
        withSettings({"export", "--quiet", "--strict", "-o", path("strict.txt"), recording}),
        dir->path());
    QCOMPARE(QString::fromUtf8(result.err),
             refusals + QStringLiteral("Try 'asciiexport export --help'.\n"));
    QCOMPARE(result.status, 2);
    QVERIFY(!QFile::exists(path("strict.txt")));

    // settings lists the settings all the same, with the same warnings
    result = ProgramRun::start(program, withSettings({"settings"}), dir->path());
    QCOMPARE(QString::fromUtf8(result.err),
             QString(warnings).replace(QStringLiteral("export:"), QStringLiteral("settings:")));
    QCOMPARE(result.status, 0);
    QCOMPARE(result.out.count('\n'), 43);
}

// A key of the file that the plug-in does not know is no setting: settings
// does not list it, and --set does not take it.
void tst_HostProgram::unknownKeysOfTheFileAreNoSettings()
{
    writeFile(path("settings.ini"), "[General]\nexportAccleration=true\n[Other]\nkey=1\n");
    ProgramRun result = ProgramRun::start(program, withSettings({"settings"}), dir->path());
    QCOMPARE(result.status, 0);
    QVERIFY2(!result.out.contains("exportAccleration"), result.out.constData());
    QVERIFY2(!result.out.contains("Other/key"), result.out.constData());
    QCOMPARE(result.out.count('\n'), 43);

    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "2"});
    result = ProgramRun::start(
        program, withSettings({"export", "--quiet", "--set", "exportAccleration=false", recording}),
        dir->path());
    QCOMPARE(result.status, 2);
    QVERIFY2(result.err.contains("asciiexport export: unknown setting \"exportAccleration\"; did "
                                 "you mean \"exportScrAcceleration\"?\n"),
             result.err.constData());
    QVERIFY(!QFile::exists(path("rec-001.txt")));
}

// A settings file that was named but does not exist is said to hold the
// defaults (--quiet leaves that out), and nothing makes it but options.
void tst_HostProgram::missingSettingsFile()
{
    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "2"});
    const QString note = QStringLiteral("note: %1 does not exist yet: the default settings apply\n")
                             .arg(path("settings.ini"));
    ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "-o", path("out.txt"), recording}), dir->path());
    QCOMPARE(QString::fromUtf8(result.err),
             QStringLiteral("asciiexport export: ") + note
                 + QStringLiteral("%1 -> %2\n").arg(recording, path("out.txt")));
    QCOMPARE(result.status, 0);

    result = ProgramRun::start(
        program, withSettings({"export", "--quiet", "-o", path("quiet.txt"), recording}),
        dir->path());
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);

    result = ProgramRun::start(program, withSettings({"settings"}), dir->path());
    QCOMPARE(QString::fromUtf8(result.err), QStringLiteral("asciiexport settings: ") + note);
    QCOMPARE(result.status, 0);
    QVERIFY(!QFile::exists(path("settings.ini")));

    // the default file, which nobody named, is no news
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path("config"));
    result = ProgramRun::start(program, {"settings"}, dir->path(), environment);
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);
}

void tst_HostProgram::outputFolderIsMade()
{
    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "2"});
    const ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--quiet", "--output-dir", path("new/deeper"), recording}),
        dir->path());
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);
    QVERIFY(QFileInfo(path("new/deeper/rec-001.txt")).isFile());

    writeFile(path("file"), "not a folder\n");
    const ProgramRun blocked = ProgramRun::start(
        program, withSettings({"export", "--quiet", "--output-dir", path("file/sub"), recording}),
        dir->path());
    QCOMPARE(QString::fromUtf8(blocked.err),
             path("file/sub") + QStringLiteral(": the folder cannot be made: Not a directory\n"));
    QCOMPARE(blocked.status, 1);
}

void tst_HostProgram::recordingFromStandardInput()
{
    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "50"});
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("work")));
    QCOMPARE(ProgramRun::start(
                 program,
                 withSettings({"export", "--quiet", "-o", path("expected.txt"), recording}),
                 dir->path())
                 .status,
             0);

    // Named "stdin" by the pattern, in the current folder.
    QProcess process;
    process.setWorkingDirectory(path("work"));
    process.setStandardInputFile(recording);
    process.start(program, withSettings({"export", "--quiet", "-"}));
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(readFile(path("work/stdin-001.txt")), readFile(path("expected.txt")));

    // A bad line names standard input.
    writeFile(path("bad.jsonl"), recordingObject + "{\"packetCounter\": -1}\n");
    process.setStandardInputFile(path("bad.jsonl"));
    process.start(program, withSettings({"export", "--quiet", "-o", path("bad.txt"), "-"}));
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitCode(), 1);
    QVERIFY2(process.readAllStandardError().startsWith(
                 "(standard input):2: \"packetCounter\": -1 is out of range"),
             "");
    QVERIFY(!QFile::exists(path("bad.txt")));
}

// With -o - the export is all that goes to standard output.
void tst_HostProgram::exportToStandardOutput()
{
    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "50"});
    QCOMPARE(ProgramRun::start(
                 program,
                 withSettings({"export", "--quiet", "-o", path("expected.txt"), recording}),
                 dir->path())
                 .status,
             0);
    const ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--progress", "-o", "-", recording}), dir->path());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.out, readFile(path("expected.txt")));
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files), (QStringList{"expected.txt", "rec.jsonl"}));

    const ProgramRun generatedOut =
        ProgramRun::start(program, {"generate", "--samples", "3", "-o", "-"}, dir->path());
    QCOMPARE(generatedOut.status, 0);
    QCOMPARE(generatedOut.out,
             readFile(generated(QStringLiteral("three.jsonl"), {"--samples", "3"})));
}

void tst_HostProgram::namesOfOpenDescriptorsAreWrittenInPlace_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("output");
    // The shell's redirection that opens out.txt for appending.
    QTest::addColumn<QString>("redirection");

    const struct
    {
        const char *row;
        const char *output;
        const char *redirection;
    } names[] = {
        {"/dev/stdout", "/dev/stdout", ">>"},
        {"/dev/fd/1", "/dev/fd/1", ">>"},
        {"/proc/self/fd/1", "/proc/self/fd/1", ">>"},
        {"/proc/thread-self/fd/1", "/proc/thread-self/fd/1", ">>"},
        {"the program's own /proc/PID/fd/1", "/proc/$$/fd/1", ">>"},
        {"/dev/stderr", "/dev/stderr", "2>>"},
        {"a descriptor other than the standard ones", "/dev/fd/3", "3>>"},
        {"a link to /dev/stdout", "stdout-link", ">>"},
        {"a relative link to a link to /dev/fd/1", "links/to-link", ">>"},
    };
    for (const char *command : {"export", "generate", "convert"}) {
        for (const auto &name : names)
            QTest::addRow("%s into %s appends", command, name.row)
                << command << name.output << name.redirection;
    }
}

// A name that leads to an open descriptor is written through that
// descriptor, as "-o -" writes standard output: a shell's ">>" keeps what the
// file held.
void tst_HostProgram::namesOfOpenDescriptorsAreWrittenInPlace()
{
    QFETCH(QString, command);
    QFETCH(QString, output);
    QFETCH(QString, redirection);

    QVERIFY(QFile::link(QStringLiteral("/dev/stdout"), path(QStringLiteral("stdout-link"))));
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("links")));
    QVERIFY(QFile::link(QStringLiteral("/dev/fd/1"), path(QStringLiteral("fd-link"))));
    QVERIFY(QFile::link(QStringLiteral("../fd-link"), path(QStringLiteral("links/to-link"))));

    QStringList arguments;
    if (command == QLatin1String("export")) {
        arguments = withSettings(
            {"export", "--quiet", generated(QStringLiteral("rec.jsonl"), {"--samples", "20"})});
    } else if (command == QLatin1String("generate")) {
        arguments = QStringList{"generate", "--samples", "20"};
    } else {
        arguments = QStringList{
            "convert",
            generated(QStringLiteral("log.ubx"), {"--format", "ubx", "--samples", "20"})};
    }
    const ProgramRun fresh = ProgramRun::start(
        program, arguments + QStringList{"-o", path(QStringLiteral("fresh.txt"))}, dir->path());
    QCOMPARE(fresh.status, 0);
    const QByteArray older = "what the file held before\n";
    writeFile(path(QStringLiteral("out.txt")), older);

    const ProgramRun result = ProgramRun::inShell(
        QStringLiteral("exec \"$0\" \"$@\" -o %1 %2 out.txt").arg(output, redirection), program,
        arguments, dir->path(), 60000);
    QCOMPARE(result.status, 0);
    // convert's note on the bytes between frames comes after the file, into
    // the same descriptor when that is standard error.
    const bool intoStandardError = redirection == QLatin1String("2>>");
    QCOMPARE(result.err, intoStandardError ? QByteArray() : fresh.err);
    QCOMPARE(readFile(path(QStringLiteral("out.txt"))),
             older + readFile(path(QStringLiteral("fresh.txt")))
                 + (intoStandardError ? fresh.err : QByteArray()));
    QVERIFY(QFileInfo(path(QStringLiteral("stdout-link"))).isSymLink());
}

// /dev/stdin, a FIFO and process substitution are recordings like files.
void tst_HostProgram::recordingsFromPipes()
{
    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "50"});
    QCOMPARE(ProgramRun::start(
                 program,
                 withSettings({"export", "--quiet", "-o", path("expected.txt"), recording}),
                 dir->path())
                 .status,
             0);
    const QByteArray expected = readFile(path("expected.txt"));
    const QString settings = path(QStringLiteral("settings.ini"));

    QProcess process;
    process.setWorkingDirectory(dir->path());
    process.start(
        QStringLiteral("/bin/bash"),
        {"-c",
         "cat \"$1\" | \"$0\" export --settings \"$2\" --quiet -o stdin.txt /dev/stdin "
         "&& \"$0\" export --settings \"$2\" --quiet -o substituted.txt <(cat \"$1\") "
         "&& mkfifo fifo && { cat \"$1\" > fifo & \"$0\" export --settings \"$2\" --quiet "
         "-o fifo.txt fifo; }",
         program, recording, settings});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(readFile(path("stdin.txt")), expected);
    QCOMPARE(readFile(path("substituted.txt")), expected);
    QCOMPARE(readFile(path("fifo.txt")), expected);
}

// Where the system refuses the thread that reads ahead, the export reads in
// its own thread and gives the same file and messages, a skipped bad line
// included. The limits make it refuse: a thread's stack is as large as the
// stack limit, which is more than the address-space limit leaves.
void tst_HostProgram::exportWithoutAThread()
{
#if defined(__SANITIZE_ADDRESS__)
    QSKIP("AddressSanitizer needs far more address space than the limit leaves");
#endif
    const QString limits = QStringLiteral("ulimit -s 4000000 && ulimit -v 3000000 && ");
    QProcess probe;
    probe.start(QStringLiteral("/bin/bash"),
                {"-c",
                 limits
                     + "exec python3 -c 'import threading; "
                       "threading.Thread(target=print).start()'"});
    QVERIFY(probe.waitForFinished(60000));
    QVERIFY2(probe.exitCode() != 0
                 && probe.readAllStandardError().contains("can't start new thread"),
             "the limits do not refuse a thread");

    QList<QByteArray> lines =
        readFile(generated(QStringLiteral("rec.jsonl"), {"--samples", "3000"})).split('\n');
    lines.insert(1500, "{\"packetCounter\": \"none\"}");
    writeFile(path("bad.jsonl"), lines.join('\n'));
    const QStringList arguments =
        withSettings({"export", "--skip-bad-lines", "--quiet", "-o", "-", path("bad.jsonl")});
    const ProgramRun expected = ProgramRun::start(program, arguments, dir->path());
    QCOMPARE(expected.status, 0);
    QVERIFY(expected.err.contains(":1501: "));

    QProcess process;
    process.setWorkingDirectory(dir->path());
    process.start(QStringLiteral("/bin/bash"),
                  QStringList{"-c", limits + "exec \"$0\" \"$@\"", program} + arguments);
    QVERIFY(process.waitForFinished(120000));
    QCOMPARE(process.readAllStandardError(), expected.err);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardOutput(), expected.out);
}

// --groups is the same as setting the groups one by one.
void tst_HostProgram::groupsShorthand()
{
    writeFile(path("settings.ini"), QByteArray()); // the defaults, without a note
    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "20"});
    QStringList longWay{"export", "--quiet", "-o", path("long.txt")};
    for (const QString &key : dataGroupKeys())
        longWay << "--set"
                << key + QStringLiteral("=")
                + (key == QLatin1String("exportRssi") || key == QLatin1String("exportRawGps")
                       ? "true"
                       : "false");
    longWay << "--set"
            << "exportOrientation=Matrix" << recording;
    QCOMPARE(ProgramRun::start(program, withSettings(longWay), dir->path()).status, 0);
    const ProgramRun result = ProgramRun::start(
        program,
        withSettings({"export", "--quiet", "--groups", "rssi, GPS receiver message,matrix", "-o",
                      path("short.txt"), recording}),
        dir->path());
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(readFile(path("short.txt")), readFile(path("long.txt")));

    // --set goes on from what --groups made
    const ProgramRun both =
        ProgramRun::start(program,
                          withSettings({"export", "--quiet", "--groups", "none", "--set",
                                        "exportRssi=true", "-o", path("both.txt"), recording}),
                          dir->path());
    QCOMPARE(both.status, 0);
    QCOMPARE(readFile(path("both.txt")).split('\n').value(5), QByteArray("RSSI"));

    const ProgramRun unknown = ProgramRun::start(
        program, withSettings({"export", "--groups", "speed", recording}), dir->path());
    QCOMPARE(unknown.status, 2);
    QVERIFY2(unknown.err.startsWith(
                 "asciiexport export: --groups: unknown group \"speed\"; the groups are: Packet "
                 "Counter, "),
             unknown.err.constData());
}

void tst_HostProgram::partOfARecording_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QList<int>>("rows"); // sample indexes of the whole export's rows

    QTest::newRow("from an index") << QStringList{"--from", "95"} << QList<int>{95, 96, 97, 98, 99};
    QTest::newRow("up to an index") << QStringList{"--to", "3"} << QList<int>{0, 1, 2};
    QTest::newRow("an index range, every second")
        << QStringList{"--from", "10", "--to", "17", "--every", "2"} << QList<int>{10, 12, 14, 16};
    // generated at 50 Hz: sample i is at i / 50 s
    QTest::newRow("seconds") << QStringList{"--from", "0.5s", "--to", "0.6s"}
                             << QList<int>{25, 26, 27, 28, 29};
    QTest::newRow("every 30th") << QStringList{"--every", "30"} << QList<int>{0, 30, 60, 90};
    QTest::newRow("past the end") << QStringList{"--from", "500"} << QList<int>{};
}

// Part of a recording is the same rows as in the whole export.
void tst_HostProgram::partOfARecording()
{
    QFETCH(QStringList, options);
    QFETCH(QList<int>, rows);

    const QString recording =
        generated(QStringLiteral("rec.jsonl"), {"--samples", "100", "--rate", "50"});
    QCOMPARE(ProgramRun::start(
                 program, withSettings({"export", "--quiet", "-o", path("whole.txt"), recording}),
                 dir->path())
                 .status,
             0);
    const QList<QByteArray> whole = readFile(path("whole.txt")).split('\n');
    const int firstRow = 6; // after the five header lines and the column line
    QByteArray expected = whole.mid(0, firstRow).join('\n') + '\n';
    for (const int row : rows)
        expected += whole.at(firstRow + row) + '\n';

    const ProgramRun result =
        ProgramRun::start(program,
                          withSettings(QStringList{"export", "--quiet", "-o", path("part.txt")}
                                       + options + QStringList{recording}),
                          dir->path());
    QCOMPARE(QString::fromUtf8(result.err),
             rows.isEmpty()
                 ? recording
                     + QStringLiteral(
                         ": no sample was selected; the recording's samples go from 0 to 99\n")
                 : QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(readFile(path("part.txt")), expected);
}

void tst_HostProgram::writtenFilesAreNamed()
{
    writeFile(path("settings.ini"), QByteArray()); // the defaults, without a note
    const QString first = generated(QStringLiteral("a.jsonl"), {"--samples", "2"});
    const QString second = generated(QStringLiteral("b.jsonl"), {"--samples", "2"});
    const ProgramRun result =
        ProgramRun::start(program, withSettings({"export", first, second}), dir->path());
    QCOMPARE(result.status, 0);
    QCOMPARE(QString::fromUtf8(result.err),
             first + " -> " + path("a-001.txt") + "\n" + second + " -> " + path("b-002.txt")
                 + "\n");
    QCOMPARE(result.out, QByteArray());
    const ProgramRun quiet =
        ProgramRun::start(program, withSettings({"export", "--quiet", first}), dir->path());
    QCOMPARE(quiet.err, QByteArray());
    // standard output is the file itself
    const ProgramRun piped =
        ProgramRun::start(program, withSettings({"export", "-o", "-", first}), dir->path());
    QCOMPARE(piped.err, QByteArray());
    QCOMPARE(piped.out, readFile(path("a-001.txt")));
}

// --jobs: the same files, the same messages in the same order, the same
// status as one export after another.
void tst_HostProgram::parallelExportsAsOneAfterAnother()
{
    QVERIFY(QDir(dir->path()).mkpath(QStringLiteral("in")));
    QStringList recordings;
    for (int i = 1; i <= 7; ++i)
        recordings << generated(QStringLiteral("in/r%1.jsonl").arg(i),
                                {"--samples", "300", "--seed", QString::number(i)});
    writeFile(path("in/r3.jsonl"),
              recordingObject + "{\"packetCounter\": 1}\n{\"packetCounter\": -1}\n");
    writeFile(path("in/r5.jsonl"),
              recordingObject + "{\"packetCounter\": 1}\n{\"packetCounter\": 2, \"orient");
    // two recordings that name the same output file: the later one fails
    QVERIFY(QDir(dir->path()).mkpath(QStringLiteral("in/sub")));
    QVERIFY(QFile::rename(recordings.takeLast(), path("in/sub/r6.jsonl")));
    recordings << path("in/sub/r6.jsonl");
    const QStringList common{"export",   "--skip-bad-lines",
                             "--set",    "outputFileFormat=<inputfile>",
                             "--groups", "packet counter,rate of turn"};

    const ProgramRun serial = ProgramRun::start(
        program, withSettings(common + QStringList{"--output-dir", path("serial")} + recordings),
        dir->path());
    const ProgramRun parallel = ProgramRun::start(
        program,
        withSettings(common + QStringList{"--jobs", "3", "--output-dir", path("parallel")}
                     + recordings),
        dir->path());
    QCOMPARE(parallel.status, serial.status);
    QCOMPARE(QString::fromUtf8(parallel.err).replace(path("parallel"), "OUT"),
             QString::fromUtf8(serial.err).replace(path("serial"), "OUT"));
    const QStringList files = QDir(path("serial")).entryList(QDir::Files);
    QCOMPARE(QDir(path("parallel")).entryList(QDir::Files), files);
    QCOMPARE(files.size(), 6);
    QVERIFY2(serial.err.contains("was written for"), serial.err.constData());
    for (const QString &file : files)
        QCOMPARE(readFile(path("parallel/" + file)), readFile(path("serial/" + file)));
}

void tst_HostProgram::pluginFaults_data()
{
    QTest::addColumn<QString>("plugin");
    QTest::addColumn<QString>("message");

    QTest::newRow("a missing plug-in file") << "missing.so"
                                            << "no such plug-in file";
    QTest::newRow("a file that is no plug-in") << "text.so"
                                               << "not a usable Qt plug-in";
    QTest::newRow("a folder") << "."
                              << "is a folder, not a plug-in file";
    QTest::newRow("a Qt plug-in for another interface")
        << QStringLiteral(OTHER_QT_PLUGIN)
        << "not an exporter plug-in (it does not provide "
           "com.korvat.Zentrel.AbstractExporterFactory/1.0)";
}

void tst_HostProgram::pluginFaults()
{
    QFETCH(QString, plugin);
    QFETCH(QString, message);

    writeFile(path("text.so"), "not a shared object\n");
    const QString recording = generated(QStringLiteral("rec.jsonl"), {"--samples", "2"});
    for (const char *command : {"export", "settings", "info"}) {
        QStringList arguments{QString::fromLatin1(command), "--plugin", plugin};
        if (qstrcmp(command, "export") == 0)
            arguments << recording;
        const ProgramRun result = ProgramRun::start(program, withSettings(arguments), dir->path());
        QCOMPARE(result.status, 1);
        QVERIFY2(result.err.contains(message.toUtf8()), result.err.constData());
        QCOMPARE(result.err.count('\n'), 1);
    }
    QVERIFY(!QFile::exists(path("rec-001.txt")));
}

void tst_HostProgram::helpForEveryCommand_data()
{
    QTest::addColumn<QString>("command");
    for (const char *command : {"export", "settings", "options", "info", "generate"})
        QTest::newRow(command) << QString::fromLatin1(command);
}

void tst_HostProgram::helpForEveryCommand()
{
    QFETCH(QString, command);

    const ProgramRun result =
        ProgramRun::start(program, {command, QStringLiteral("--help")}, dir->path());
    QCOMPARE(result.status, 0);
    QVERIFY2(result.out.startsWith("Usage: asciiexport " + command.toUtf8() + " [options]"),
             result.out.constData());
    const ProgramRun overview = ProgramRun::start(program, {QStringLiteral("--help")}, dir->path());
    QCOMPARE(overview.status, 0);
    QVERIFY(overview.out.contains("  " + command.toUtf8() + " "));
}

void tst_HostProgram::settingsListing()
{
    writeFile(path("settings.ini"), "[General]\nexportRssi=true\notherDelimiter=|\n");
    const ProgramRun result = ProgramRun::start(program, withSettings({"settings"}), dir->path());
    QCOMPARE(result.status, 0);
    const QList<QByteArray> lines = result.out.trimmed().split('\n');
    QCOMPARE(lines.size(), 43); // 42 settings and the described spelling without a default
    QVERIFY(lines.contains("exportRssi: true (default: false)  Export the RSSI"));
    QVERIFY(lines.contains("otherDelimiter: \"|\" (default: \"\")  Use this custom delimiter"));
    QVERIFY(lines.contains(
        "exportScrcceleration: (none) (default: (none))  Export SCR acceleration data"));
    QVERIFY(lines.contains("exportScrAcceleration: false (default: false)"));
}

void tst_HostProgram::info()
{
    const ProgramRun result = ProgramRun::start(program, withSettings({"info"}), dir->path());
    QCOMPARE(result.status, 0);
    QVERIFY(result.out.contains("IID:            AsciiExporterFactory\n"));
    QVERIFY(result.out.contains("Name:           ASCII Exporter\n"));
    QVERIFY(result.out.contains("Version:        3.6\n"));
    QVERIFY(result.out.contains("File extension: txt\n"));
    QVERIFY(result.out.contains("Debug build:    no\n"));
}

QTEST_GUILESS_MAIN(tst_HostProgram)
#include "tst_hostprogram.moc"
