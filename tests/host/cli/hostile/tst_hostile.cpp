#include "filemodes.h"
#include "programrun.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

// The program asciiexport under hostile input and faults around it: huge,
// deep, broken and empty recordings, recordings it cannot read, unusual
// delimiters and placeholders in any locale, a full device, an output folder
// that goes away, and damaged plug-in files. Each failure is one line on
// standard error and exit status 1, and no file is left that looks complete.
class tst_Hostile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void hugeLine();
    void badRecordings_data();
    void badRecordings();
    void badRecordingsSalvaged_data();
    void badRecordingsSalvaged();
    void cutOffRecordingSalvaged();
    void lastLineWithoutLineEnd();
    void recordingIsAFolder();
    void unreadableRecording();
    void unreadableSettings_data();
    void unreadableSettings();
    void nonAsciiTextsAreUtf8InEveryLocale_data();
    void nonAsciiTextsAreUtf8InEveryLocale();
    void unusualTexts_data();
    void unusualTexts();
    void textsFromTheSettingsFile();
    void fullDevice();
    void fullDisk();
    void endlessPipeStopsBeforeTheTemporaryFolderIsFull();
    void fileSizeLimit_data();
    void fileSizeLimit();
    void fileSizeLimitInABatch();
    void generateWritesIntoPipesAndDevices();
    void readerOfThePipeGoesAway();
    void outputThatCannotBeOpened_data();
    void outputThatCannotBeOpened();
    void outputFolderRemovedDuringTheExport();
    void namesQtWouldTakeForResources();
    void propertiesCannotLeaveTheOutputFolder();
    void propertiesCannotMoveOrEmptyTheName_data();
    void propertiesCannotMoveOrEmptyTheName();
    void batchCannotReplaceItsOwnRecordings();
    void exportCannotReplaceItsRecordingByAnyName_data();
    void exportCannotReplaceItsRecordingByAnyName();
    void convertCannotReplaceItsLog_data();
    void convertCannotReplaceItsLog();
    void lineBreaksInPropertyTexts_data();
    void lineBreaksInPropertyTexts();
    void damagedPluginFiles_data();
    void damagedPluginFiles();

private:
    // @p arguments with the test's own settings file after the command.
    QStringList withSettings(QStringList arguments) const;
    QString path(const QString &name) const { return dir->filePath(name); }
    QStringList files() const { return QDir(dir->path()).entryList(QDir::Files, QDir::Name); }
    static QByteArray readFile(const QString &fileName);
    static void writeFile(const QString &fileName, const QByteArray &bytes);
    // The export of small.jsonl with @p delimiter and @p placeholder.
    static QByteArray expectedExport(const QString &delimiter, const QString &placeholder);

    QTemporaryDir *dir = nullptr;
};

namespace {

const QString program = QStringLiteral(ASCIIEXPORT_PROGRAM);
const QString plugin = QStringLiteral(ASCIIEXPORTER_PLUGIN);

// How long a run may take, in milliseconds: some read or write huge files.
constexpr int longestRun = 300000;

const QByteArray recordingObject =
    "{\"properties\": {\"StartTime\": \"2026-11-21 09:30:00\", \"FilterProfile\": \"general\", "
    "\"FilterProfileVersion\": 1, \"FilterProfileType\": 39, \"OptionFlags\": 0, "
    "\"FirmwareVersion\": \"1.2.3\", \"DeviceId\": \"0123ABCD\", \"ProductCode\": \"T100\"}, "
    "\"updateRate\": 100}\n";

// What ends the message of a bad sample line.
const QByteArray skipHint = " (--skip-bad-lines exports the other samples)";

const QByteArray goodSample =
    "{\"packetCounter\": 1, \"sampleTimeFine\": 100, \"orientationEuler\": [1, 2, 3]}\n";

// Two rows: one with every default column, one without the sample time.
const QByteArray smallRecording =
    recordingObject + goodSample + "{\"packetCounter\": 2, \"orientationEuler\": [-1.5, 0, 90]}\n";

const QByteArray headerBlock = "// Start Time: 2026-11-21 09:30:00\n"
                               "// Update Rate: 100.0Hz\n"
                               "// Filter Profile: general (39.1)\n"
                               "// Option Flags: 0\n"
                               "// Firmware Version: 1.2.3\n";

// The settings that put a custom delimiter and placeholder in force.
QStringList customTexts(const QString &delimiter, const QString &placeholder)
{
    return {"--set", "useOtherDelimiter=true",      "--set", "useTabDelimiter=false",
            "--set", "otherDelimiter=" + delimiter, "--set", "insertNothing=false",
            "--set", "insertOtherPlaceholder=true", "--set", "otherPlaceholder=" + placeholder};
}

// The environment with every locale variable replaced by @p locale.
QProcessEnvironment withLocale(const QString &locale)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &key : environment.keys()) {
        if (key == QLatin1String("LANG") || key == QLatin1String("LANGUAGE")
            || key.startsWith(QLatin1String("LC_")))
            environment.remove(key);
    }
    environment.insert(QStringLiteral("LANG"), locale);
    environment.insert(QStringLiteral("LC_ALL"), locale);
    return environment;
}

} // namespace

void tst_Hostile::initTestCase()
{
    // Arguments reach the program as UTF-8, as from a UTF-8 terminal,
    // whatever locale this test runs under.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

void tst_Hostile::init()
{
    dir = new QTemporaryDir;
    QVERIFY(dir->isValid());
}

void tst_Hostile::cleanup()
{
    delete dir;
}

QStringList tst_Hostile::withSettings(QStringList arguments) const
{
    arguments.insert(1, QStringLiteral("--settings"));
    arguments.insert(2, path(QStringLiteral("settings.ini")));
    return arguments;
}

QByteArray tst_Hostile::readFile(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

void tst_Hostile::writeFile(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

QByteArray tst_Hostile::expectedExport(const QString &delimiter, const QString &placeholder)
{
    const auto line = [&](const QStringList &fields) -> QString {
        QString text = fields.join(delimiter) + delimiter;
        // The exporter takes one character, the delimiter's first, off the
        // end of a line when the line ends with it.
        if (!delimiter.isEmpty() && text.endsWith(delimiter.at(0)))
            text.chop(1);
        return text + QLatin1Char('\n');
    };
    const QString body = line({"PacketCounter", "SampleTimeFine", "Roll", "Pitch", "Yaw"})
        + line({"00001", "00100", "1.000000", "2.000000", "3.000000"})
        + line({"00002", placeholder, "-1.500000", "0.000000", "90.000000"});
    return headerBlock + body.toUtf8();
}

void tst_Hostile::hugeLine()
{
    QFile file(path("huge.jsonl"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(recordingObject);
    file.write(R"({"packetCounter": 1, "note": ")");
    const QByteArray block(1024 * 1024, 'a');
    for (int i = 0; i < 50; ++i)
        file.write(block);
    file.write("\"}\n" + goodSample);
    file.close();
    writeFile(path("good.jsonl"), smallRecording);

    const ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--quiet", path("huge.jsonl"), path("good.jsonl")}),
        dir->path(), longestRun);
    QCOMPARE(result.status, 1);
    QCOMPARE(result.err,
             (path("huge.jsonl") + ":2: the line is longer than 4194304 bytes").toUtf8() + skipHint
                 + '\n');
    // the next recording is exported all the same
    QCOMPARE(files(), (QStringList{"good-002.txt", "good.jsonl", "huge.jsonl"}));
}

void tst_Hostile::badRecordings_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");

    QTest::newRow("an empty recording") << QByteArray() << ":1: the file holds no recording object";
    QTest::newRow("a recording of blank lines")
        << QByteArray("\n\r\n  \n") << ":4: the file holds no recording object";
    QTest::newRow("a million opening brackets in a sample") << recordingObject
            + QByteArray(1000000, '[') << ":2: lists and objects nested deeper than 32 levels";
    QTest::newRow("deep objects in the recording's properties")
        << "{\"properties\": {\"x\": " + QByteArray("{\"a\": ").repeated(100000) + "1"
            + QByteArray(100000, '}') + "}}\n"
        << ":1: lists and objects nested deeper than 32 levels";
    QTest::newRow("invalid UTF-8 in a property")
        << QByteArray("{\"properties\": {\"DeviceId\": \"\xc3\x28\"}}\n") + goodSample
        << ":1: malformed JSON at column 30: Invalid encoding in string.";
    QTest::newRow("an encoded surrogate half in a sample")
        << recordingObject + "{\"sampleDateTime\": \"\xed\xa0\x80\"}\n"
        << ":2: malformed JSON at column 21: Invalid encoding in string.";
    QTest::newRow("an overlong encoding of a slash")
        << recordingObject + goodSample + "{\"sampleDateTime\": \"\xc0\xaf\"}\n"
        << ":3: malformed JSON at column 21: Invalid encoding in string.";
    QTest::newRow("a key given twice in a sample")
        << recordingObject + "{\"orientationEuler\": [1, 2, 3], \"orientationEuler\": [4, 5, 6]}\n"
        << ":2: \"orientationEuler\": the key appears more than once";
    QTest::newRow("a key given twice in the recording's properties")
        << QByteArray("{\"properties\": {\"DeviceId\": \"A\", \"DeviceId\": \"A\"}}\n") + goodSample
        << ":1: \"properties.DeviceId\": the key appears more than once";
    QTest::newRow("a recording that ends in the middle of a line")
        << recordingObject + goodSample + "{\"packetCounter\": 2, \"orientationEu"
        << ":3: malformed JSON at column 36: Missing a closing quotation mark in string.";
    QTest::newRow("a recording that ends inside a character")
        << recordingObject + goodSample + "{\"sampleDateTime\": \"\xe2\x86"
        << ":3: malformed JSON at column 21: Invalid encoding in string.";
    QTest::newRow("a number past its field's range")
        << recordingObject + "{\"gnssPvt\": {\"iTOW\": 1, \"numSV\": 256}}\n"
        << ":2: \"gnssPvt.numSV\": 256 is out of range (0..255)";
    QTest::newRow("a NUL byte in a line")
        << recordingObject + QByteArray("{\"packetCounter\": 1}\0\n", 22)
        << ":2: NUL byte at column 21";
}

void tst_Hostile::badRecordings()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, message);

    writeFile(path("bad.jsonl"), content);
    writeFile(path("bad-001.txt"), "an older export\n");
    const ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--quiet", path("bad.jsonl")}), dir->path(), longestRun);
    QCOMPARE(result.status, 1);
    // A bad sample line names the way to export the rest.
    const bool sampleLine = !message.startsWith(QLatin1String(":1:"))
        && !message.contains(QLatin1String("no recording"));
    QCOMPARE(QString::fromUtf8(result.err),
             path("bad.jsonl") + message + (sampleLine ? QString::fromUtf8(skipHint) : QString())
                 + QLatin1Char('\n'));
    // the older file is kept as it was, and nothing is added
    QCOMPARE(readFile(path("bad-001.txt")), QByteArray("an older export\n"));
    QCOMPARE(files(), (QStringList{"bad-001.txt", "bad.jsonl"}));
}

void tst_Hostile::lastLineWithoutLineEnd()
{
    writeFile(path("rec.jsonl"), smallRecording.chopped(1));
    const ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--quiet", "-o", path("out.txt"), path("rec.jsonl")}),
        dir->path(), longestRun);
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(readFile(path("out.txt")), expectedExport(QStringLiteral("\t"), QString()));
}

void tst_Hostile::recordingIsAFolder()
{
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("folder.jsonl")));
    const ProgramRun result =
        ProgramRun::start(program, withSettings({"export", "--quiet", path("folder.jsonl")}),
                          dir->path(), longestRun);
    QCOMPARE(result.status, 1);
    QCOMPARE(QString::fromUtf8(result.err),
             path("folder.jsonl") + QStringLiteral(": is a directory, not a recording\n"));
    QCOMPARE(files(), QStringList());
}

void tst_Hostile::unreadableRecording()
{
    writeFile(path("locked.jsonl"), smallRecording);
    QVERIFY(QFile::setPermissions(path("locked.jsonl"), QFileDevice::WriteOwner));
    // Named from this test's folder, which the program may not enter from outside.
    QStringList arguments{"export", "--quiet", "--output-dir", ".", "locked.jsonl"};
    QString command = program;
    QString why;
    if (!FileModes::obeyed(FileModes::Refused::ReadingAndWriting, &command, &arguments, &why))
        QSKIP(qPrintable(why));
    const ProgramRun result = ProgramRun::start(command, arguments, dir->path(), 60000);
    QCOMPARE(result.status, 1);
    QCOMPARE(QString::fromUtf8(result.err),
             QStringLiteral("locked.jsonl: cannot be read: Permission denied\n"));
    QCOMPARE(files(), QStringList{"locked.jsonl"});
}

void tst_Hostile::unreadableSettings_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("folder");
    QTest::addColumn<QString>("reason");
    for (const char *command : {"settings", "export", "info"}) {
        QTest::addRow("%s with a settings file it may not read", command)
            << command << false << "Permission denied";
        QTest::addRow("%s with a folder for a settings file", command)
            << command << true << "Is a directory";
    }
}

// The settings are the user's choices: an export without them would not be
// what was asked for, so it stops, with the system's reason.
void tst_Hostile::unreadableSettings()
{
    QFETCH(QString, command);
    QFETCH(bool, folder);
    QFETCH(QString, reason);

    writeFile(path("small.jsonl"), smallRecording);
    if (folder) {
        QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("locked.ini")));
    } else {
        writeFile(path("locked.ini"), "[General]\nexportPacketCounter=false\n");
        QVERIFY(QFile::setPermissions(path("locked.ini"), QFileDevice::Permissions()));
    }
    QStringList arguments{command, "--settings", "locked.ini"};
    if (command == QLatin1String("export"))
        arguments += QStringList{"--quiet", "small.jsonl"};
    QString program = ::program;
    QString why;
    if (!FileModes::obeyed(FileModes::Refused::ReadingAndWriting, &program, &arguments, &why))
        QSKIP(qPrintable(why));
    const ProgramRun result = ProgramRun::start(program, arguments, dir->path(), 60000);
    QCOMPARE(QString::fromUtf8(result.err),
             QStringLiteral("locked.ini: the settings cannot be read: ") + reason
                 + QLatin1Char('\n'));
    QCOMPARE(result.status, 1);
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(files(),
             (folder ? QStringList{"small.jsonl"} : QStringList{"locked.ini", "small.jsonl"}));
}

void tst_Hostile::nonAsciiTextsAreUtf8InEveryLocale_data()
{
    QTest::addColumn<QString>("locale");
    QTest::newRow("under the C locale") << "C";
    QTest::newRow("under a UTF-8 locale") << "C.UTF-8";
}

void tst_Hostile::nonAsciiTextsAreUtf8InEveryLocale()
{
    QFETCH(QString, locale);

    writeFile(path("small.jsonl"), smallRecording);
    const ProgramRun result =
        ProgramRun::start(program,
                          withSettings(QStringList{"export", "--quiet", "-o", path("out.txt")}
                                       + customTexts(QStringLiteral("→"), QStringLiteral("∅"))
                                       + QStringList{path("small.jsonl")}),
                          dir->path(), withLocale(locale), longestRun);
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(readFile(path("out.txt")),
             headerBlock
                 + "PacketCounter\xe2\x86\x92SampleTimeFine\xe2\x86\x92Roll\xe2\x86\x92Pitch\xe2"
                   "\x86\x92Yaw\n"
                   "00001\xe2\x86\x92"
                   "00100\xe2\x86\x92"
                   "1.000000\xe2\x86\x92"
                   "2.000000\xe2\x86\x92"
                   "3.000000\n"
                   "00002\xe2\x86\x92\xe2\x88\x85\xe2\x86\x92-1.500000\xe2\x86\x92"
                   "0.000000\xe2\x86\x92"
                   "90.000000\n");
}

void tst_Hostile::unusualTexts_data()
{
    QTest::addColumn<QString>("delimiter");
    QTest::addColumn<QString>("placeholder");
    QTest::addColumn<QString>("locale");

    for (const char *locale : {"C", "C.UTF-8"}) {
        const auto row = [locale](const char *name) -> QTestData & {
            return QTest::addRow("%s, %s", name,
                                 locale == QByteArray("C") ? "C locale" : "UTF-8 locale");
        };
        row("a delimiter outside the Basic Multilingual Plane stays whole at the line end")
            << QStringLiteral("\U0001D11E") << QStringLiteral("\u00e9") << locale;
        row("a line feed as the delimiter") << "\n"
                                            << "-" << locale;
        row("CR LF as the delimiter") << "\r\n"
                                      << "-" << locale;
        row("a placeholder with line ends") << ";"
                                            << "a\nb\r\nc" << locale;
        row("a delimiter of 64 KiB")
            << QString(QLatin1Char('<') + QString(65534, QLatin1Char('x')) + QLatin1Char('>'))
            << "?" << locale;
        row("a placeholder of 64 KiB in Greek") << "," << QString(32768, QChar(0x03A9)) << locale;
    }
}

void tst_Hostile::unusualTexts()
{
    QFETCH(QString, delimiter);
    QFETCH(QString, placeholder);
    QFETCH(QString, locale);

    writeFile(path("small.jsonl"), smallRecording);
    const ProgramRun result = ProgramRun::start(
        program,
        withSettings(QStringList{"export", "--quiet", "-o", path("out.txt")}
                     + customTexts(delimiter, placeholder) + QStringList{path("small.jsonl")}),
        dir->path(), withLocale(locale), longestRun);
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);
    const QByteArray written = readFile(path("out.txt"));
    const QByteArray expected = expectedExport(delimiter, placeholder);
    QCOMPARE(written.size(), expected.size());
    QVERIFY(written == expected);
}

// The settings dialog saves texts through QSettings; 144 KiB of UTF-8 is
// more than one argument on a command line may hold.
void tst_Hostile::textsFromTheSettingsFile()
{
    const QString delimiter = QStringLiteral("\u2192 \u00b7 ");
    const QString placeholder = QString(48 * 1024, QChar(0x2205));
    {
        QSettings settings(path("settings.ini"), QSettings::IniFormat);
        settings.setValue(QStringLiteral("useTabDelimiter"), QStringLiteral("false"));
        settings.setValue(QStringLiteral("useOtherDelimiter"), QStringLiteral("true"));
        settings.setValue(QStringLiteral("otherDelimiter"), delimiter);
        settings.setValue(QStringLiteral("insertNothing"), QStringLiteral("false"));
        settings.setValue(QStringLiteral("insertOtherPlaceholder"), QStringLiteral("true"));
        settings.setValue(QStringLiteral("otherPlaceholder"), placeholder);
        settings.sync();
        QCOMPARE(settings.status(), QSettings::NoError);
    }
    writeFile(path("small.jsonl"), smallRecording);
    for (const char *locale : {"C", "C.UTF-8"}) {
        const ProgramRun result = ProgramRun::start(
            program,
            withSettings({"export", "--quiet", "-o", path("out.txt"), path("small.jsonl")}),
            dir->path(), withLocale(QString::fromLatin1(locale)), longestRun);
        QCOMPARE(result.err, QByteArray());
        QCOMPARE(result.status, 0);
        QVERIFY2(readFile(path("out.txt")) == expectedExport(delimiter, placeholder), locale);
    }
}

void tst_Hostile::fullDevice()
{
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        QSKIP("this system has no /dev/full");
    writeFile(path("small.jsonl"), smallRecording);
    const ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--quiet", "-o", "/dev/full", path("small.jsonl")}),
        dir->path(), longestRun);
    QCOMPARE(result.status, 1);
    QCOMPARE(result.err, QByteArray("/dev/full: cannot be written: No space left on device\n"));
    QCOMPARE(files(), QStringList{"small.jsonl"});
}

// The program writes into the folder through a file that takes its name only
// when the export is done; with the folder gone, that fails.
void tst_Hostile::outputFolderRemovedDuringTheExport()
{
    // The recording comes through a FIFO, so that the export waits, its
    // output file open in the folder, while the folder is removed.
    const QString recording = path(QStringLiteral("big.jsonl"));
    QCOMPARE(::mkfifo(QFile::encodeName(recording).constData(), 0600), 0);
    const QString folder = path(QStringLiteral("out"));
    QVERIFY(QDir().mkdir(folder));

    QProcess process;
    process.setWorkingDirectory(dir->path());
    process.start(program,
                  {"export", "--settings", path("settings.ini"), "--quiet", "--output-dir", folder,
                   recording});
    QVERIFY(process.waitForStarted());
    QFile writer(recording);
    QVERIFY(writer.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QVERIFY(writer.write(recordingObject) > 0);
    // The output file, written under no name, stands among the program's
    // open files as a file of the folder. The program reads ahead before it
    // writes, so samples go on until it does.
    const auto outputIsOpen = [&] {
        const QString descriptors = QStringLiteral("/proc/%1/fd/").arg(process.processId());
        const QByteArray inFolder = QFile::encodeName(folder) + '/';
        for (const QString &entry : QDir(descriptors).entryList(QDir::Files | QDir::System)) {
            char target[4096];
            const ssize_t length = ::readlink(QFile::encodeName(descriptors + entry).constData(),
                                              target, sizeof target);
            if (length > 0 && QByteArray(target, int(length)).startsWith(inFolder))
                return true;
        }
        return false;
    };
    const QByteArray samples = goodSample.repeated(100);
    for (int written = 0; !outputIsOpen(); written += samples.size()) {
        QVERIFY2(written < 256 * 1024 * 1024, "the export did not open its output file");
        QVERIFY(process.state() == QProcess::Running);
        QVERIFY(writer.write(samples) == samples.size());
    }
    QVERIFY(QDir(folder).removeRecursively());
    QVERIFY(writer.write(goodSample.repeated(100)) > 0);
    writer.close();
    QVERIFY(process.waitForFinished(300000));

    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(QString::fromUtf8(process.readAllStandardError()),
             folder + QStringLiteral("/big-001.txt: cannot be written: the folder ") + folder
                 + QStringLiteral(" no longer exists\n"));
    QVERIFY(!QFileInfo::exists(folder));
}

// Qt reads a path that starts with ':' as one of its built-in resources;
// on the command line, and in a file name pattern, it is a file on disk.
void tst_Hostile::namesQtWouldTakeForResources()
{
    // QTemporaryDir::filePath() itself refuses such names.
    const QString folder = dir->path() + QLatin1Char('/');
    writeFile(folder + ":rec.jsonl", smallRecording);
    writeFile(folder + ":settings.ini", "[General]\nexportPacketCounter=false\n");
    QVERIFY(QDir().mkdir(folder + ":out"));
    QVERIFY(QFile::copy(plugin, folder + ":plugin.so"));

    const ProgramRun exported = ProgramRun::start(
        program,
        {"export", "--quiet", "--plugin", ":plugin.so", "--settings", ":settings.ini",
         "--output-dir", ":out", "--set", "outputFileFormat=:<inputfile>", ":rec.jsonl"},
        dir->path(), 60000);
    QCOMPARE(exported.err, QByteArray());
    QCOMPARE(exported.status, 0);
    QCOMPARE(QDir(folder + ":out").entryList(QDir::Files), QStringList{"::rec.txt"});
    // the settings file was read: no packet counter
    QVERIFY(readFile(folder + ":out/::rec.txt").contains("\nSampleTimeFine\tRoll\tPitch\tYaw\n"));

    const ProgramRun generated = ProgramRun::start(
        program, {"generate", "--samples", "1", "-o", ":generated.jsonl"}, dir->path(), 60000);
    QCOMPARE(generated.status, 0);
    QVERIFY(QFileInfo::exists(folder + ":generated.jsonl"));
}

void tst_Hostile::propertiesCannotLeaveTheOutputFolder()
{
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("in")));
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("out")));
    writeFile(path("in/rec.jsonl"),
              "{\"properties\": {\"DeviceId\": \"../../escaped\", \"ProductCode\": \"/tmp/x\"}}\n"
                  + goodSample);
    const ProgramRun result = ProgramRun::start(
        program,
        withSettings({"export", "--quiet", "--output-dir", path("out"), "--set",
                      "outputFileFormat=<deviceid>-<productcode>", path("in/rec.jsonl")}),
        dir->path(), longestRun);
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(QDir(path("out")).entryList(QDir::Files | QDir::Hidden),
             QStringList{".._.._escaped-_tmp_x.txt"});
    QCOMPARE(files(), QStringList());
}

// With --skip-bad-lines a bad sample line is a warning and the rest is
// exported; a bad first line leaves nothing to salvage.
void tst_Hostile::badRecordingsSalvaged_data()
{
    badRecordings_data();
}

void tst_Hostile::badRecordingsSalvaged()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, message);

    writeFile(path("bad.jsonl"), content);
    const ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--quiet", "--skip-bad-lines", path("bad.jsonl")}),
        dir->path(), longestRun);
    if (message.startsWith(QLatin1String(":1:"))
        || message.contains(QLatin1String("no recording"))) {
        QCOMPARE(result.status, 1);
        QVERIFY2(result.err.startsWith((path("bad.jsonl") + message).toUtf8()),
                 result.err.constData());
        if (!message.contains(QLatin1String("no recording"))) {
            QVERIFY2(result.err.endsWith(
                         " (a recording cannot be salvaged without its first line, the recording "
                         "object)\n"),
                     result.err.constData());
        }
        QCOMPARE(files(), QStringList{"bad.jsonl"});
        return;
    }
    const int written = content.count('\n') - 1 - (content.endsWith('\n') ? 1 : 0);
    // Without its one bad sample line, a recording holds no sample at all.
    const QString nothingLeft = written == 0
        ? path("bad.jsonl") + QStringLiteral(": the recording holds no sample\n")
        : QString();
    QCOMPARE(QString::fromUtf8(result.err),
             path("bad.jsonl") + message + QStringLiteral(" (skipped)\n") + path("bad.jsonl")
                 + QStringLiteral(": samples written: %1, bad lines skipped: 1\n").arg(written)
                 + nothingLeft);
    QCOMPARE(result.status, 0);
    QCOMPARE(files(), (QStringList{"bad-001.txt", "bad.jsonl"}));
}

// The usual end of a recording when the power goes: a cut last line, and a
// damaged one in the middle. The good samples come out exactly as without them.
void tst_Hostile::cutOffRecordingSalvaged()
{
    writeFile(path("small.jsonl"), smallRecording);
    writeFile(path("cut.jsonl"),
              recordingObject + goodSample + "{\"packetCounter\": 9, \"orientationEuler\": [1, 2\n"
                  + "{\"packetCounter\": 2, \"orientationEuler\": [-1.5, 0, 90]}\n"
                  + "{\"packetCounter\": 3, \"orientationEul");
    const ProgramRun expected = ProgramRun::start(
        program,
        withSettings({"export", "--quiet", "-o", path("expected.txt"), path("small.jsonl")}),
        dir->path(), longestRun);
    QCOMPARE(expected.status, 0);
    const ProgramRun result =
        ProgramRun::start(program,
                          withSettings({"export", "--quiet", "--skip-bad-lines", "-o",
                                        path("out.txt"), path("cut.jsonl")}),
                          dir->path(), longestRun);
    QCOMPARE(
        QString::fromUtf8(result.err),
        path("cut.jsonl")
            + QStringLiteral(":3: malformed JSON at column 47: Missing a comma or ']' after an "
                             "array element. (skipped)\n")
            + path("cut.jsonl")
            + QStringLiteral(":5: malformed JSON at column 37: Missing a closing quotation "
                             "mark in string. (skipped)\n")
            + path("cut.jsonl") + QStringLiteral(": samples written: 2, bad lines skipped: 2\n"));
    QCOMPARE(result.status, 0);
    QCOMPARE(readFile(path("out.txt")), readFile(path("expected.txt")));
}

namespace {

// A recording of @p samples samples; its export takes about 43 bytes each.
QByteArray walkRecording(int samples = 1000)
{
    QByteArray bytes = recordingObject;
    // Appending a built string reserves its exact size: without room made
    // first, every line would copy all before it.
    bytes.reserve(recordingObject.size() + samples * 100);
    for (int i = 0; i < samples; ++i)
        bytes += "{\"packetCounter\": " + QByteArray::number(i % 65536)
            + ", \"sampleTimeFine\": " + QByteArray::number(i * 100)
            + ", \"orientationEuler\": [1.5, -2.25, " + QByteArray::number(i % 360) + "]}\n";
    return bytes;
}

} // namespace

// A disk that fills up during the export: the older file stays as it was.
void tst_Hostile::fullDisk()
{
    if (::geteuid() != 0)
        QSKIP("a small file system can be mounted by root only");
    const QString unshare = QStandardPaths::findExecutable(QStringLiteral("unshare"));
    if (unshare.isEmpty())
        QSKIP("unshare is not there to mount a file system of this test's own");
    writeFile(path("walk.jsonl"), walkRecording());
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("full")));
    // The older file is made on the small file system itself, which then has
    // room for 32 KiB.
    const QString script =
        QStringLiteral("mount -t tmpfs -o size=32k tmpfs full && printf 'older\\n' > full/x.txt "
                       "&& exec \"$0\" \"$@\"");
    const ProgramRun result = ProgramRun::start(
        unshare,
        {"--mount", "/bin/sh", "-c", script + QStringLiteral(" || exit 99"), program, "export",
         "--settings", path("settings.ini"), "--quiet", "-o", "full/x.txt", "walk.jsonl"},
        dir->path(), 60000);
    if (result.status == 99)
        QSKIP("this system does not let a test mount a file system");
    QCOMPARE(QString::fromUtf8(result.err),
             path("full/x.txt") + QStringLiteral(": cannot be written: No space left on device\n"));
    QCOMPARE(result.status, 1);
    // The mount was the program's own; what it left there cannot be seen
    // from here, so the same run is checked again in the next test with a
    // file size limit, where it can.
}

void tst_Hostile::endlessPipeStopsBeforeTheTemporaryFolderIsFull()
{
    if (::geteuid() != 0)
        QSKIP("a small file system can be mounted by root only");
    const QString unshare = QStandardPaths::findExecutable(QStringLiteral("unshare"));
    if (unshare.isEmpty())
        QSKIP("unshare is not there to mount a file system of this test's own");
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("tmp")));
    // Sync bytes and a line break, for ever: a UBX log that does not end,
    // copied into a temporary folder of 8 MiB.
    const QString script =
        QStringLiteral("mount -t tmpfs -o size=8m tmpfs tmp || exit 99; "
                       "yes \"$(printf '\\265b')\" | TMPDIR=\"$PWD/tmp\" \"$0\" \"$@\"");
    const ProgramRun result =
        ProgramRun::start(unshare,
                          {"--mount", "/bin/sh", "-c", script, program, "export", "--settings",
                           path("settings.ini"), "--quiet", "-o", "out.txt", "-"},
                          dir->path(), 60000);
    if (result.status == 99)
        QSKIP("this system does not let a test mount a file system");
    const QString error = QString::fromUtf8(result.err);
    QVERIFY2(QRegularExpression(
                 QStringLiteral("^\\(standard input\\): cannot make a temporary copy: after "
                                "[^,]+, the temporary folder %1 would have less than [^ ]+ "
                                "[KM]iB free \\(TMPDIR names another folder\\)\n$")
                     .arg(QRegularExpression::escape(path("tmp"))))
                 .match(error)
                 .hasMatch(),
             qPrintable(error));
    QCOMPARE(result.status, 1);
    QVERIFY(!QFile::exists(path("out.txt")));
}

void tst_Hostile::fileSizeLimit_data()
{
    QTest::addColumn<bool>("lastWrite");
    QTest::newRow("cut in the middle") << false;
    // the very write that a buffered device would not report
    QTest::newRow("cut in the last write") << true;
}

void tst_Hostile::fileSizeLimit()
{
    QFETCH(bool, lastWrite);
    writeFile(path("walk.jsonl"), walkRecording());
    const ProgramRun whole = ProgramRun::start(
        program, withSettings({"export", "--quiet", "-o", path("whole.txt"), path("walk.jsonl")}),
        dir->path(), longestRun);
    QCOMPARE(whole.status, 0);
    const qint64 size = QFileInfo(path("whole.txt")).size();
    const qint64 limitKib = lastWrite ? (size - 1) / 1024 : size / 2048;
    // No trap of the shell's: the program itself must not die of the signal.
    const QString limit = QStringLiteral("ulimit -f %1; exec \"$0\" \"$@\"").arg(limitKib);

    writeFile(path("x.txt"), "an older export\n");
    const ProgramRun result =
        ProgramRun::inShell(limit, program,
                            {"export", "--settings", path("settings.ini"), "--quiet", "-o",
                             path("x.txt"), path("walk.jsonl")},
                            dir->path(), longestRun);
    QCOMPARE(QString::fromUtf8(result.err),
             path("x.txt") + QStringLiteral(": cannot be written: File too large\n"));
    QCOMPARE(result.status, 1);
    QCOMPARE(readFile(path("x.txt")), QByteArray("an older export\n"));
    QCOMPARE(files(), (QStringList{"walk.jsonl", "whole.txt", "x.txt"}));

    // generate keeps the same promise
    const ProgramRun generated =
        ProgramRun::inShell(limit, program, {"generate", "--samples", "1000", "-o", path("x.txt")},
                            dir->path(), longestRun);
    QVERIFY2(generated.err.endsWith("File too large\n"), generated.err.constData());
    QCOMPARE(generated.status, 1);
    QCOMPARE(readFile(path("x.txt")), QByteArray("an older export\n"));
}

// A file size limit stops the one export that reaches it; the next
// recordings of the batch are exported all the same.
void tst_Hostile::fileSizeLimitInABatch()
{
    writeFile(path("walk.jsonl"), walkRecording());
    writeFile(path("small.jsonl"), smallRecording);
    const QString limit = QStringLiteral("ulimit -f 8; exec \"$0\" \"$@\"");
    const ProgramRun result =
        ProgramRun::inShell(limit, program,
                            {"export", "--settings", path("settings.ini"), "--quiet",
                             "--output-dir", path("out"), path("walk.jsonl"), path("small.jsonl")},
                            dir->path(), longestRun);
    QCOMPARE(QString::fromUtf8(result.err),
             path("out/walk-001.txt") + QStringLiteral(": cannot be written: File too large\n"));
    QCOMPARE(result.status, 1);
    QCOMPARE(QDir(path("out")).entryList(QDir::Files), QStringList{"small-002.txt"});
    QCOMPARE(readFile(path("out/small-002.txt")), expectedExport(QStringLiteral("\t"), QString()));
}

void tst_Hostile::generateWritesIntoPipesAndDevices()
{
    const QByteArray fifo = QFile::encodeName(path("fifo"));
    QCOMPARE(::mkfifo(fifo.constData(), 0600), 0);
    QProcess reader;
    reader.start(QStringLiteral("cat"), {path("fifo")});
    QVERIFY(reader.waitForStarted());
    const ProgramRun intoFifo = ProgramRun::start(
        program, {"generate", "--samples", "5", "-o", path("fifo")}, dir->path(), 60000);
    QCOMPARE(intoFifo.status, 0);
    QVERIFY(reader.waitForFinished(60000));
    QCOMPARE(reader.readAllStandardOutput().count('\n'), 6);
    QVERIFY(QFileInfo(path("fifo")).exists() && !QFileInfo(path("fifo")).isFile());

    if (QFileInfo::exists(QStringLiteral("/dev/full"))
        && QFileInfo(QStringLiteral("/dev/full")).isWritable()) {
        const ProgramRun intoFull = ProgramRun::start(
            program, {"generate", "--samples", "5", "-o", "/dev/full"}, dir->path(), 60000);
        QCOMPARE(intoFull.status, 1);
        QVERIFY2(intoFull.err.endsWith("No space left on device\n"), "");
        QVERIFY(!QFileInfo(QStringLiteral("/dev/full")).isFile());
    }
}

// A reader that has seen enough: the export ends with status 1, no message
// and no crash.
void tst_Hostile::readerOfThePipeGoesAway()
{
    // far more than a pipe holds
    writeFile(path("walk.jsonl"), walkRecording(100000));
    for (const char *command : {"export", "generate"}) {
        const QStringList arguments = qstrcmp(command, "export") == 0
            ? QStringList{"export", "--settings", path("settings.ini"), "--quiet",
                          "-o",     "-",          path("walk.jsonl")}
            : QStringList{"generate", "--samples", "100000", "-o", "-"};
        // The status of the pipe is the program's: head's is 0.
        QProcess process;
        process.setWorkingDirectory(dir->path());
        process.start(
            QStringLiteral("/bin/bash"),
            QStringList{"-c", "set -o pipefail; \"$0\" \"$@\" | head -c 100 > /dev/null", program}
                + arguments);
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.readAllStandardError(), QByteArray());
        QCOMPARE(process.exitCode(), 1); // not 141: no death by SIGPIPE
    }
    QCOMPARE(files(), QStringList{"walk.jsonl"});
}

void tst_Hostile::outputThatCannotBeOpened_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("reason");
    QTest::newRow("a folder that does not exist") << "missing/x.txt"
                                                  << "No such file or directory";
    QTest::newRow("a folder") << "folder"
                              << "Is a directory";
    QTest::newRow("a name too long") << QString(300, QLatin1Char('n')) << "File name too long";
    QTest::newRow("a file in a file") << "small.jsonl/x.txt"
                                      << "Not a directory";
}

void tst_Hostile::outputThatCannotBeOpened()
{
    QFETCH(QString, output);
    QFETCH(QString, reason);
    writeFile(path("small.jsonl"), smallRecording);
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("folder")));
    const ProgramRun result = ProgramRun::start(
        program, withSettings({"export", "--quiet", "-o", path(output), path("small.jsonl")}),
        dir->path(), longestRun);
    QCOMPARE(QString::fromUtf8(result.err),
             path(output) + QStringLiteral(": ") + reason + QLatin1Char('\n'));
    QCOMPARE(result.status, 1);
    QCOMPARE(files(), QStringList{"small.jsonl"});
}

void tst_Hostile::propertiesCannotMoveOrEmptyTheName_data()
{
    QTest::addColumn<QByteArray>("deviceId");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("written"); // under out/, or empty when refused
    QTest::addColumn<QString>("message");

    QTest::newRow("a folder that climbs")
        << QByteArray("..") << "<deviceid>/<inputfile>" << QString()
        << "the output file name pattern \"<deviceid>/<inputfile>\" gives the folder name \"..\" "
           "for this recording; "
           "a recording's properties may not remove or climb a folder level";
    QTest::newRow("a folder that stays")
        << QByteArray(".") << "<deviceid>/<inputfile>" << QString()
        << "the output file name pattern \"<deviceid>/<inputfile>\" gives the folder name \".\" "
           "for this recording; "
           "a recording's properties may not remove or climb a folder level";
    QTest::newRow("an empty folder")
        << QByteArray("") << "<deviceid>/<inputfile>" << QString()
        << "the output file name pattern \"<deviceid>/<inputfile>\" gives the folder name \"\" for "
           "this recording; "
           "a recording's properties may not remove or climb a folder level";
    QTest::newRow("an empty name") << QByteArray("") << "<deviceid>" << QString()
                                   << "the output file name pattern \"<deviceid>\" gives the file "
                                      "name \".txt\" for this recording, which "
                                      "names no file";
    QTest::newRow("a name of a dot") << QByteArray(".") << "<deviceid>" << QString()
                                     << "the output file name pattern \"<deviceid>\" gives the "
                                        "file name \"..txt\" for this recording, which "
                                        "names no file";
    QTest::newRow("two dots in a name are a name") << QByteArray("..") << "<deviceid>-<inputfile>"
                                                   << "..-rec.txt" << QString();
    QTest::newRow("a slash adds no folder") << QByteArray("a/b") << "<deviceid>/<inputfile>"
                                            << "a_b/rec.txt" << QString();
}

void tst_Hostile::propertiesCannotMoveOrEmptyTheName()
{
    QFETCH(QByteArray, deviceId);
    QFETCH(QString, pattern);
    QFETCH(QString, written);
    QFETCH(QString, message);

    QVERIFY(QDir(dir->path()).mkpath(QStringLiteral("out/a_b")));
    writeFile(path("rec.jsonl"),
              "{\"properties\": {\"DeviceId\": \"" + deviceId + "\"}}\n" + goodSample);
    const ProgramRun result =
        ProgramRun::start(program,
                          withSettings({"export", "--quiet", "--output-dir", path("out"), "--set",
                                        "outputFileFormat=" + pattern, path("rec.jsonl")}),
                          dir->path(), longestRun);
    if (written.isEmpty()) {
        QCOMPARE(QString::fromUtf8(result.err),
                 path("rec.jsonl") + QStringLiteral(": ") + message + QLatin1Char('\n'));
        QCOMPARE(result.status, 1);
    } else {
        QCOMPARE(result.err, QByteArray());
        QCOMPARE(result.status, 0);
        QVERIFY2(QFileInfo(path("out/" + written)).isFile(), qPrintable(written));
    }
    QCOMPARE(files(), QStringList{"rec.jsonl"});
    QCOMPARE(QDir(dir->path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot), QStringList{"out"});
}

void tst_Hostile::batchCannotReplaceItsOwnRecordings()
{
    writeFile(path("a.jsonl"), smallRecording);
    writeFile(path("b.jsonl"), smallRecording);
    const ProgramRun result = ProgramRun::start(
        program,
        withSettings({"export", "--quiet", "--set", "outputFileFormat=b", "--set",
                      "outputFileExtension=jsonl", path("a.jsonl"), path("b.jsonl")}),
        dir->path(), longestRun);
    QCOMPARE(QString::fromUtf8(result.err),
             path("a.jsonl") + QStringLiteral(": the output file ") + path("b.jsonl")
                 + QStringLiteral(" would replace a recording of this run\n") + path("b.jsonl")
                 + QStringLiteral(": the output file would replace the recording itself\n"));
    QCOMPARE(result.status, 1);
    QCOMPARE(readFile(path("a.jsonl")), smallRecording);
    QCOMPARE(readFile(path("b.jsonl")), smallRecording);
}

void tst_Hostile::exportCannotReplaceItsRecordingByAnyName_data()
{
    QTest::addColumn<QString>("link");

    QTest::newRow("a hard link") << QStringLiteral("ln");
    QTest::newRow("a symbolic link") << QStringLiteral("ln -s");
}

void tst_Hostile::exportCannotReplaceItsRecordingByAnyName()
{
    QFETCH(QString, link);

    writeFile(path("a.jsonl"), smallRecording);
    const ProgramRun result = ProgramRun::inShell(
        link + QStringLiteral(" a.jsonl other.txt && exec \"$0\" \"$@\""), program,
        {"export", "--settings", path("settings.ini"), "--quiet", "-o", path("other.txt"),
         path("a.jsonl")},
        dir->path(), longestRun);
    QCOMPARE(QString::fromUtf8(result.err),
             path("other.txt")
                 + QStringLiteral(": the output file would replace the recording itself\n"));
    QCOMPARE(result.status, 1);
    QCOMPARE(readFile(path("a.jsonl")), smallRecording);
}

void tst_Hostile::convertCannotReplaceItsLog_data()
{
    QTest::addColumn<QString>("output");
    // What the shell opens before the program runs.
    QTest::addColumn<QString>("redirection");
    QTest::addColumn<QString>("shownName");
    QTest::newRow("the log's own name") << "log.ubx" << QString() << "log.ubx";
    QTest::newRow("a hard link to the log") << "hard.ubx" << QString() << "hard.ubx";
    QTest::newRow("a symbolic link to the log") << "soft.ubx" << QString() << "soft.ubx";
    QTest::newRow("a descriptor open on the log") << "/dev/fd/3"
                                                  << "3>> log.ubx"
                                                  << "/dev/fd/3";
    QTest::newRow("standard output appending to the log") << "-"
                                                          << ">> log.ubx"
                                                          << "(standard output)";
}

void tst_Hostile::convertCannotReplaceItsLog()
{
    QFETCH(QString, output);
    QFETCH(QString, redirection);
    QFETCH(QString, shownName);

    const QString plainRun = QStringLiteral("exec \"$0\" \"$@\"");
    QCOMPARE(ProgramRun::inShell(
                 plainRun, program,
                 {"generate", "--format", "ubx", "--samples", "20", "-o", path("log.ubx")},
                 dir->path(), longestRun)
                 .status,
             0);
    const QByteArray log = readFile(path("log.ubx"));
    QVERIFY(QFile::link(QStringLiteral("log.ubx"), path("soft.ubx")));
    QCOMPARE(::link(QFile::encodeName(path("log.ubx")).constData(),
                    QFile::encodeName(path("hard.ubx")).constData()),
             0);

    const ProgramRun result =
        ProgramRun::inShell(plainRun + QLatin1Char(' ') + redirection, program,
                            {"convert", "log.ubx", "-o", output}, dir->path(), longestRun);
    QCOMPARE(QString::fromUtf8(result.err),
             shownName + QStringLiteral(": the output file is the log log.ubx itself\n"));
    QCOMPARE(result.status, 1);
    QCOMPARE(readFile(path("log.ubx")), log);
    QCOMPARE(files(), (QStringList{"hard.ubx", "log.ubx", "soft.ubx"}));
}

void tst_Hostile::lineBreaksInPropertyTexts_data()
{
    QTest::addColumn<QByteArray>("property");
    // The property's row in "info --recording"; empty where it is refused.
    QTest::addColumn<QByteArray>("shown");

    QTest::newRow("a forged comment line in the firmware version is refused")
        << QByteArray("\"FirmwareVersion\": \"\\r\\n// fake header\"") << QByteArray();
    QTest::newRow("a line feed in the start time is refused")
        << QByteArray("\"StartTime\": \"2026-11-21\\n09:30:00\"") << QByteArray();
    QTest::newRow("a carriage return in the filter profile is refused")
        << QByteArray("\"FilterProfile\": \"general\\r\"") << QByteArray();
    QTest::newRow("a line feed in the filter profile version is refused")
        << QByteArray("\"FilterProfileVersion\": \"1\\n2\"") << QByteArray();
    QTest::newRow("a line feed in the filter profile type is refused")
        << QByteArray("\"FilterProfileType\": \"39\\n\"") << QByteArray();
    QTest::newRow("a NUL in the option flags is refused")
        << QByteArray("\"OptionFlags\": \"0\\u00001\"") << QByteArray();
    QTest::newRow("a line feed in a free text is kept")
        << QByteArray("\"Notes\": \"walked\\nthen ran\"")
        << QByteArray("Notes:            \"walked\\nthen ran\"");
    QTest::newRow("a carriage return, a NUL and quotes in a free text are kept")
        << QByteArray("\"Notes\": \"a \\\"b\\\"\\r\\n\\u0000\"")
        << QByteArray("Notes:            \"a \\\"b\\\"\\r\\n\\0\"");
}

// Only the properties that the header block shows must keep to one line; a
// free text leaves the export as it would be without it.
void tst_Hostile::lineBreaksInPropertyTexts()
{
    QFETCH(QByteArray, property);
    QFETCH(QByteArray, shown);
    writeFile(path("rec.jsonl"), "{\"properties\": {" + property + "}}\n" + goodSample);
    const QString key = QString::fromUtf8(property.mid(1, property.indexOf('"', 1) - 1));
    writeFile(path("plain.jsonl"), "{\"properties\": {}}\n" + goodSample);
    const ProgramRun plain = ProgramRun::start(
        program, withSettings({"export", "--quiet", "-o", path("plain.txt"), path("plain.jsonl")}),
        dir->path(), longestRun);
    QCOMPARE(plain.status, 0);

    for (const bool skipBadLines : {false, true}) {
        QStringList arguments{"export", "--quiet", "-o", path("out.txt"), path("rec.jsonl")};
        if (skipBadLines)
            arguments.insert(1, QStringLiteral("--skip-bad-lines"));
        const ProgramRun result =
            ProgramRun::start(program, withSettings(arguments), dir->path(), longestRun);
        if (shown.isEmpty()) {
            QVERIFY2(result.err.startsWith((path("rec.jsonl") + ":1: \"properties." + key
                                            + "\": the text holds a line break or a NUL character")
                                               .toUtf8()),
                     result.err.constData());
            QCOMPARE(result.status, 1);
            QCOMPARE(files(), (QStringList{"plain.jsonl", "plain.txt", "rec.jsonl"}));
        } else {
            QCOMPARE(result.err, QByteArray());
            QCOMPARE(result.status, 0);
            QCOMPARE(readFile(path("out.txt")), readFile(path("plain.txt")));
        }
    }
    if (shown.isEmpty())
        return;
    const ProgramRun info = ProgramRun::start(
        program, withSettings({"info", "--recording", path("rec.jsonl")}), dir->path(), longestRun);
    QCOMPARE(info.status, 0);
    QVERIFY2(info.out.endsWith('\n' + shown + '\n'), info.out.constData());
}

void tst_Hostile::damagedPluginFiles_data()
{
    QTest::addColumn<int>("keptBytes");
    QTest::newRow("an empty plug-in file") << 0;
    QTest::newRow("a plug-in file cut after its first 4 KiB") << 4096;
    QTest::newRow("a plug-in file cut in the middle") << -2;
}

void tst_Hostile::damagedPluginFiles()
{
    QFETCH(int, keptBytes);

    QFile original(plugin);
    QVERIFY(original.open(QIODevice::ReadOnly));
    const QByteArray bytes = original.readAll();
    writeFile(path("damaged.so"), bytes.left(keptBytes == -2 ? bytes.size() / 2 : keptBytes));
    writeFile(path("small.jsonl"), smallRecording);
    const ProgramRun result = ProgramRun::start(
        program,
        withSettings({"export", "--quiet", "--plugin", path("damaged.so"), path("small.jsonl")}),
        dir->path(), longestRun);
    QCOMPARE(result.status, 1);
    QVERIFY2(result.err.startsWith((path("damaged.so") + ": not a usable Qt plug-in: ").toUtf8()),
             result.err.constData());
    QCOMPARE(result.err.count('\n'), 1);
    QCOMPARE(files(), (QStringList{"damaged.so", "small.jsonl"}));
}

QTEST_GUILESS_MAIN(tst_Hostile)
#include "tst_hostile.moc"
