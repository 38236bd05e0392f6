#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QtTest>

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
    void lastLineWithoutLineEnd();
    void recordingIsAFolder();
    void unreadableRecording();
    void nonAsciiTextsAreUtf8InEveryLocale_data();
    void nonAsciiTextsAreUtf8InEveryLocale();
    void unusualTexts_data();
    void unusualTexts();
    void textsFromTheSettingsFile();
    void fullDevice();
    void outputFolderRemovedDuringTheExport();
    void namesQtWouldTakeForResources();
    void propertiesCannotLeaveTheOutputFolder();
    void damagedPluginFiles_data();
    void damagedPluginFiles();

private:
    struct Result
    {
        int status = -1;
        QByteArray out;
        QByteArray err;
    };

    Result run(const QStringList &arguments, const QProcessEnvironment &environment = QProcessEnvironment());
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

const QByteArray recordingObject =
    "{\"properties\": {\"StartTime\": \"2026-11-21 09:30:00\", \"FilterProfile\": \"general\", "
    "\"FilterProfileVersion\": 1, \"FilterProfileType\": 39, \"OptionFlags\": 0, "
    "\"FirmwareVersion\": \"1.2.3\", \"DeviceId\": \"0123ABCD\", \"ProductCode\": \"T100\"}, "
    "\"updateRate\": 100}\n";

const QByteArray goodSample = "{\"packetCounter\": 1, \"sampleTimeFine\": 100, \"orientationEuler\": [1, 2, 3]}\n";

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
    return {"--set", "useOtherDelimiter=true", "--set", "otherDelimiter=" + delimiter,
            "--set", "insertNothing=false", "--set", "insertOtherPlaceholder=true",
            "--set", "otherPlaceholder=" + placeholder};
}

// The environment with every locale variable replaced by @p locale.
QProcessEnvironment withLocale(const QString &locale)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &key : environment.keys()) {
        if (key == QLatin1String("LANG") || key == QLatin1String("LANGUAGE") || key.startsWith(QLatin1String("LC_")))
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

tst_Hostile::Result tst_Hostile::run(const QStringList &arguments, const QProcessEnvironment &environment)
{
    QProcess process;
    process.setWorkingDirectory(dir->path());
    if (!environment.isEmpty())
        process.setProcessEnvironment(environment);
    QStringList withSettings = arguments;
    withSettings.insert(1, QStringLiteral("--settings"));
    withSettings.insert(2, path(QStringLiteral("settings.ini")));
    process.start(program, withSettings);
    Result result;
    if (!process.waitForFinished(300000) || process.exitStatus() != QProcess::NormalExit)
        return result;
    result.status = process.exitCode();
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
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

    const Result result = run({"export", "--quiet", path("huge.jsonl"), path("good.jsonl")});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.err, (path("huge.jsonl") + ":2: the line is longer than 4194304 bytes\n").toUtf8());
    // the next recording is exported all the same
    QCOMPARE(files(), (QStringList{"good-002.txt", "good.jsonl", "huge.jsonl"}));
}

void tst_Hostile::badRecordings_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");

    QTest::newRow("an empty recording")
        << QByteArray() << ":1: the file holds no recording object";
    QTest::newRow("a recording of blank lines")
        << QByteArray("\n\r\n  \n") << ":4: the file holds no recording object";
    QTest::newRow("a million opening brackets in a sample")
        << recordingObject + QByteArray(1000000, '[') << ":2: lists and objects nested deeper than 32 levels";
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
        << recordingObject + QByteArray("{\"packetCounter\": 1}\0\n", 22) << ":2: NUL byte at column 21";
}

void tst_Hostile::badRecordings()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, message);

    writeFile(path("bad.jsonl"), content);
    writeFile(path("bad-001.txt"), "an older export\n");
    const Result result = run({"export", "--quiet", path("bad.jsonl")});
    QCOMPARE(result.status, 1);
    QCOMPARE(QString::fromUtf8(result.err), path("bad.jsonl") + message + QLatin1Char('\n'));
    // the older file is kept as it was, and nothing is added
    QCOMPARE(readFile(path("bad-001.txt")), QByteArray("an older export\n"));
    QCOMPARE(files(), (QStringList{"bad-001.txt", "bad.jsonl"}));
}

void tst_Hostile::lastLineWithoutLineEnd()
{
    writeFile(path("rec.jsonl"), smallRecording.chopped(1));
    const Result result = run({"export", "--quiet", "-o", path("out.txt"), path("rec.jsonl")});
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(readFile(path("out.txt")), expectedExport(QStringLiteral("\t"), QString()));
}

void tst_Hostile::recordingIsAFolder()
{
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("folder.jsonl")));
    const Result result = run({"export", "--quiet", path("folder.jsonl")});
    QCOMPARE(result.status, 1);
    QCOMPARE(QString::fromUtf8(result.err),
             path("folder.jsonl") + QStringLiteral(": is a directory, not a recording\n"));
    QCOMPARE(files(), QStringList());
}

void tst_Hostile::unreadableRecording()
{
    writeFile(path("locked.jsonl"), smallRecording);
    QVERIFY(QFile::setPermissions(path("locked.jsonl"), QFileDevice::WriteOwner));
    QStringList arguments{"export", "--quiet", "--output-dir", dir->path(), path("locked.jsonl")};
    QString command = program;
    if (::geteuid() == 0) {
        // root reads any file: run the program as an ordinary user, who may
        // enter the folder but not read the file
        command = QStandardPaths::findExecutable(QStringLiteral("setpriv"));
        if (command.isEmpty())
            QSKIP("running as root, and setpriv is not there to run as another user");
        QVERIFY(QFile::setPermissions(dir->path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner
                                                       | QFileDevice::ExeOwner | QFileDevice::ExeOther));
        arguments = QStringList{"--reuid=65534", "--regid=65534", "--clear-groups", program} + arguments;
    }
    QProcess process;
    process.start(command, arguments);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(QString::fromUtf8(process.readAllStandardError()),
             path("locked.jsonl") + QStringLiteral(": cannot be read: Permission denied\n"));
    QCOMPARE(files(), QStringList{"locked.jsonl"});
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
    const Result result = run(QStringList{"export", "--quiet", "-o", path("out.txt")}
                                  + customTexts(QStringLiteral("→"), QStringLiteral("∅"))
                                  + QStringList{path("small.jsonl")},
                              withLocale(locale));
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(readFile(path("out.txt")),
             headerBlock + "PacketCounter\xe2\x86\x92SampleTimeFine\xe2\x86\x92Roll\xe2\x86\x92Pitch\xe2\x86\x92Yaw\n"
                 "00001\xe2\x86\x92" "00100\xe2\x86\x92" "1.000000\xe2\x86\x92" "2.000000\xe2\x86\x92" "3.000000\n"
                 "00002\xe2\x86\x92\xe2\x88\x85\xe2\x86\x92-1.500000\xe2\x86\x92" "0.000000\xe2\x86\x92" "90.000000\n");
}

void tst_Hostile::unusualTexts_data()
{
    QTest::addColumn<QString>("delimiter");
    QTest::addColumn<QString>("placeholder");
    QTest::addColumn<QString>("locale");

    for (const char *locale : {"C", "C.UTF-8"}) {
        const auto row = [locale](const char *name) -> QTestData & {
            return QTest::addRow("%s, %s", name, locale == QByteArray("C") ? "C locale" : "UTF-8 locale");
        };
        row("a delimiter outside the Basic Multilingual Plane stays whole at the line end")
            << QStringLiteral("\U0001D11E") << QStringLiteral("\u00e9") << locale;
        row("a line feed as the delimiter") << "\n" << "-" << locale;
        row("CR LF as the delimiter") << "\r\n" << "-" << locale;
        row("a placeholder with line ends") << ";" << "a\nb\r\nc" << locale;
        row("a delimiter of 64 KiB")
            << QString(QLatin1Char('<') + QString(65534, QLatin1Char('x')) + QLatin1Char('>')) << "?" << locale;
        row("a placeholder of 64 KiB in Greek") << "," << QString(32768, QChar(0x03A9)) << locale;
    }
}

void tst_Hostile::unusualTexts()
{
    QFETCH(QString, delimiter);
    QFETCH(QString, placeholder);
    QFETCH(QString, locale);

    writeFile(path("small.jsonl"), smallRecording);
    const Result result = run(QStringList{"export", "--quiet", "-o", path("out.txt")}
                                  + customTexts(delimiter, placeholder) + QStringList{path("small.jsonl")},
                              withLocale(locale));
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
        const Result result = run({"export", "--quiet", "-o", path("out.txt"), path("small.jsonl")},
                                  withLocale(QString::fromLatin1(locale)));
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
    const Result result = run({"export", "--quiet", "-o", "/dev/full", path("small.jsonl")});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.err, QByteArray("/dev/full: cannot be written: No space left on device\n"));
    QCOMPARE(files(), QStringList{"small.jsonl"});
}

// The program writes into the folder through a file that takes its name only
// when the export is done; with the folder gone, that fails.
void tst_Hostile::outputFolderRemovedDuringTheExport()
{
    {
        QFile file(path("big.jsonl"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(recordingObject);
        const QByteArray block = goodSample.repeated(1000);
        for (int i = 0; i < 200; ++i)
            file.write(block);
    }
    const QString folder = path(QStringLiteral("out"));
    QVERIFY(QDir().mkdir(folder));

    QProcess process;
    process.setWorkingDirectory(dir->path());
    process.start(program, {"export", "--settings", path("settings.ini"), "--progress", "--output-dir", folder,
                            path("big.jsonl")});
    QVERIFY(process.waitForStarted());
    // Once the progress bar has moved, the export is under way.
    const QRegularExpression moved(QStringLiteral("\\] +[1-9]\\d*% "));
    QByteArray err;
    while (!moved.match(QString::fromUtf8(err)).hasMatch()) {
        QVERIFY2(process.state() == QProcess::Running, err.constData());
        process.waitForReadyRead(50);
        err += process.readAllStandardError();
    }
    QVERIFY(QDir(folder).removeRecursively());
    QVERIFY(process.waitForFinished(300000));
    err += process.readAllStandardError();

    QCOMPARE(process.exitCode(), 1);
    const QByteArray message = err.mid(err.lastIndexOf('\r') + 1);
    QCOMPARE(QString::fromUtf8(message), folder + QStringLiteral("/big-001.txt: cannot be written: the folder ")
                                             + folder + QStringLiteral(" no longer exists\n"));
    QCOMPARE(err.count('\n'), 1);
    QVERIFY(!QFileInfo::exists(folder));
    QCOMPARE(files(), QStringList{"big.jsonl"});
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

    QProcess process;
    process.setWorkingDirectory(dir->path());
    process.start(program, {"export", "--quiet", "--plugin", ":plugin.so", "--settings", ":settings.ini",
                            "--output-dir", ":out", "--set", "outputFileFormat=:<inputfile>", ":rec.jsonl"});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(QDir(folder + ":out").entryList(QDir::Files), QStringList{"::rec.txt"});
    // the settings file was read: no packet counter
    QVERIFY(readFile(folder + ":out/::rec.txt").contains("\nSampleTimeFine\tRoll\tPitch\tYaw\n"));

    process.start(program, {"generate", "--samples", "1", "-o", ":generated.jsonl"});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitCode(), 0);
    QVERIFY(QFileInfo::exists(folder + ":generated.jsonl"));
}

void tst_Hostile::propertiesCannotLeaveTheOutputFolder()
{
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("in")));
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("out")));
    writeFile(path("in/rec.jsonl"), "{\"properties\": {\"DeviceId\": \"../../escaped\", \"ProductCode\": \"/tmp/x\"}}\n"
                                        + goodSample);
    const Result result = run({"export", "--quiet", "--output-dir", path("out"), "--set",
                               "outputFileFormat=<deviceid>-<productcode>", path("in/rec.jsonl")});
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(QDir(path("out")).entryList(QDir::Files | QDir::Hidden), QStringList{".._.._escaped-_tmp_x.txt"});
    QCOMPARE(files(), QStringList());
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
    const Result result = run({"export", "--quiet", "--plugin", path("damaged.so"), path("small.jsonl")});
    QCOMPARE(result.status, 1);
    QVERIFY2(result.err.startsWith((path("damaged.so") + ": not a usable Qt plug-in: ").toUtf8()),
             result.err.constData());
    QCOMPARE(result.err.count('\n'), 1);
    QCOMPARE(files(), (QStringList{"damaged.so", "small.jsonl"}));
}

QTEST_GUILESS_MAIN(tst_Hostile)
#include "tst_hostile.moc"
