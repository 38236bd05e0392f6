#include "exportjob.h"
#include "exportrun.h"
#include "pluginhost.h"
#include "recordinggenerator.h"
#include "sampleselection.h"
#include "ubxgenerator.h"

#include <abstractexporterfactory.h>
#include <settingssynchronizer.h>

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <memory>
#include <numeric>

#include <fcntl.h>
#include <unistd.h>

// One export through the plug-in, in this process: the bytes the program
// writes, the samples selected and skipped, and what made an export fail.
class tst_ExportJob : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void exportsAsTheProgram_data();
    void exportsAsTheProgram();
    void receiverLogAsTheProgram_data();
    void receiverLogAsTheProgram();
    void fromStandardInput_data();
    void fromStandardInput();
    void selection_data();
    void selection();
    void badLines_data();
    void badLines();
    void failures_data();
    void failures();
    void recordingIsNotReplaced_data();
    void recordingIsNotReplaced();
    void progressFollowsTheReading();

private:
    QString path(const QString &name) const { return dir->filePath(name); }
    // @p text with "{dir}" standing for the test's folder.
    QString inDir(QString text) const { return text.replace(QLatin1String("{dir}"), dir->path()); }
    // Changes the settings as --set KEY=VALUE does.
    void set(const QStringList &assignments);

    PluginHost host{QStringLiteral(ASCIIEXPORTER_PLUGIN)};
    SettingsSynchronizer *store = nullptr;
    std::unique_ptr<QTemporaryDir> dir;
};

Q_DECLARE_METATYPE(ExportJob::Failure)
Q_DECLARE_METATYPE(SampleSelection)

namespace {

QByteArray readFile(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

bool writeFile(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray testData(const char *name)
{
    return readFile(QStringLiteral(TEST_DATA_DIR "/") + QLatin1String(name));
}

// The lines of the recording that tests/data/host-*.txt are exported from:
// the recording object, then its 25 samples at 50 Hz.
QList<QByteArray> recordingLines()
{
    QList<QByteArray> lines = testData("host-recording.jsonl").split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

QByteArray joined(const QList<QByteArray> &lines)
{
    return lines.join('\n') + '\n';
}

// The recording without its update rate.
QByteArray recordingWithoutRate()
{
    QList<QByteArray> lines = recordingLines();
    lines[0].replace(",\"updateRate\":50", "");
    return joined(lines);
}

// An output name that is always @p fileName.
ExportJob::OutputName named(const QString &fileName)
{
    return [fileName](const QVariantMap &, QString *) { return fileName; };
}

QList<QByteArray> rowsOf(const QByteArray &file, QByteArray *header)
{
    QList<QByteArray> lines = file.split('\n');
    lines.removeLast();
    int rows = 0;
    while (rows < lines.size() && lines.at(rows).startsWith("//"))
        ++rows;
    ++rows; // the column names
    *header = joined(lines.mid(0, rows));
    return lines.mid(rows);
}

// While it lives, standard input reads @p fileName.
class StandardInputFrom
{
public:
    explicit StandardInputFrom(const QString &fileName)
        : saved(::dup(STDIN_FILENO))
    {
        const int file = ::open(QFile::encodeName(fileName).constData(), O_RDONLY);
        redirected = saved >= 0 && file >= 0 && ::dup2(file, STDIN_FILENO) == STDIN_FILENO;
        if (file >= 0)
            ::close(file);
    }
    ~StandardInputFrom()
    {
        if (saved >= 0) {
            ::dup2(saved, STDIN_FILENO);
            ::close(saved);
        }
    }
    StandardInputFrom(const StandardInputFrom &) = delete;
    StandardInputFrom &operator=(const StandardInputFrom &) = delete;

    bool inForce() const { return redirected; }

private:
    const int saved;
    bool redirected = false;
};

} // namespace

void tst_ExportJob::initTestCase()
{
    QVERIFY2(host.load(), qPrintable(host.errorString()));
    store = host.factory()->settings();
}

void tst_ExportJob::init()
{
    for (const QString &key : store->keys())
        store->resetSetting(key);
    dir = std::make_unique<QTemporaryDir>();
    QVERIFY(dir->isValid());
}

void tst_ExportJob::cleanup()
{
    dir.reset();
}

void tst_ExportJob::set(const QStringList &assignments)
{
    for (const QString &assignment : assignments) {
        const int equals = assignment.indexOf(QLatin1Char('='));
        QVariant value;
        QVERIFY2(store->valueFromText(assignment.left(equals), assignment.mid(equals + 1), &value),
                 qPrintable(assignment));
        store->setSetting(assignment.left(equals), value);
    }
}

void tst_ExportJob::exportsAsTheProgram_data()
{
    QTest::addColumn<QStringList>("settings");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("readAhead");

    QStringList everyGroup;
    for (const QString &key : dataGroupKeys())
        everyGroup << key + QStringLiteral("=true");
    const QStringList matrix = everyGroup
        + QStringList{"exportOrientation=Matrix", "useCommaDelimiter=1", "insertNan=true",
                      "highPrecision=true"};
    for (const bool readAhead : {true, false}) {
        const char *how = readAhead ? "read ahead" : "read in this thread";
        QTest::addRow("default settings, %s", how)
            << QStringList() << "host-defaults.txt" << readAhead;
        QTest::addRow("every group with Euler angles, %s", how)
            << everyGroup << "host-all-euler.txt" << readAhead;
        QTest::addRow("every group with a matrix, commas, NaN and high precision, %s", how)
            << matrix << "host-all-matrix.txt" << readAhead;
    }
}

// The files of tests/data are what the program writes for this recording.
void tst_ExportJob::exportsAsTheProgram()
{
    QFETCH(QStringList, settings);
    QFETCH(QString, expected);
    QFETCH(bool, readAhead);

    set(settings);
    const QString recording = path(QStringLiteral("rec.jsonl"));
    QVERIFY(writeFile(recording, testData("host-recording.jsonl")));
    ExportJob job(host.factory());
    job.setReadAhead(readAhead);
    const QString output = path(QStringLiteral("out.txt"));
    QVERIFY2(job.run(recording, named(output), ExportJob::Progress()),
             qPrintable(job.errorString()));
    QCOMPARE(job.failure(), ExportJob::Failure::None);
    QCOMPARE(job.errorString(), QString());
    QCOMPARE(job.outputFile(), output);
    QCOMPARE(job.samplesWritten(), qint64(25));
    QCOMPARE(job.linesSkipped(), qint64(0));
    QCOMPARE(job.readingNotice(), QString());
    QCOMPARE(readFile(output), readFile(QStringLiteral(TEST_DATA_DIR "/") + expected));
}

void tst_ExportJob::receiverLogAsTheProgram_data()
{
    QTest::addColumn<bool>("readAhead");

    QTest::newRow("read ahead") << true;
    QTest::newRow("read in this thread") << false;
}

// A generated receiver log, exported here and by the program: the same
// bytes, and the same word on what the reading passed over.
void tst_ExportJob::receiverLogAsTheProgram()
{
    QFETCH(bool, readAhead);

    GeneratorOptions options;
    options.samples = 120;
    options.rate = 10.0;
    options.seed = 5;
    const QString log = path(QStringLiteral("drive.ubx"));
    QFile logFile(log);
    QVERIFY(logFile.open(QIODevice::WriteOnly));
    QString error;
    QVERIFY2(generateUbxLog(options, &logFile, &error), qPrintable(error));
    logFile.close();
    QVERIFY(writeFile(path(QStringLiteral("settings.ini")), QByteArray()));
    const QStringList settings{"exportRawGps=true", "exportRawGnss=true"};

    QProcess program;
    program.setWorkingDirectory(dir->path());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    environment.insert(QStringLiteral("LANGUAGE"), QStringLiteral("C"));
    program.setProcessEnvironment(environment);
    const QString programOutput = path(QStringLiteral("program.txt"));
    QStringList arguments{"export", "--settings", path(QStringLiteral("settings.ini"))};
    for (const QString &setting : settings)
        arguments << QStringLiteral("--set") << setting;
    program.start(QStringLiteral(ASCIIEXPORT_PROGRAM),
                  arguments
                      + QStringList{"--plugin", ASCIIEXPORTER_PLUGIN, "-o", programOutput, log});
    QVERIFY(program.waitForFinished(120000));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    const QByteArray programSaid = program.readAllStandardError();
    QCOMPARE(program.exitCode(), 0);

    set(settings);
    ExportJob job(host.factory());
    job.setReadAhead(readAhead);
    const QString output = path(QStringLiteral("job.txt"));
    QVERIFY2(job.run(log, named(output), ExportJob::Progress()), qPrintable(job.errorString()));
    QCOMPARE(job.samplesWritten(), qint64(120));
    const QByteArray exported = readFile(output);
    QCOMPARE(exported, readFile(programOutput));
    QVERIFY(exported.count('\n') > 120);
    // The log holds NMEA between its frames, which the reading passes over.
    QVERIFY(job.readingNotice().startsWith(log + QStringLiteral(": passed over: ")));
    QCOMPARE(QString::fromLocal8Bit(programSaid),
             job.readingNotice() + QStringLiteral("\n%1 -> %2\n").arg(log, programOutput));
}

void tst_ExportJob::fromStandardInput_data()
{
    QTest::addColumn<QByteArray>("recording");
    QTest::addColumn<SampleSelection>("samples");
    QTest::addColumn<ExportJob::Failure>("failure");
    QTest::addColumn<QString>("error");

    SampleSelection inSeconds;
    inSeconds.from = {SampleSelection::Bound::Kind::Seconds, 0.1};
    QTest::newRow("a recording") << testData("host-recording.jsonl") << SampleSelection()
                                 << ExportJob::Failure::None << "";
    QTest::newRow("seconds in a recording without an update rate")
        << recordingWithoutRate() << inSeconds << ExportJob::Failure::NoUpdateRate
        << "(standard input): gives no update rate, so its samples cannot be selected by time";
}

void tst_ExportJob::fromStandardInput()
{
    QFETCH(QByteArray, recording);
    QFETCH(SampleSelection, samples);
    QFETCH(ExportJob::Failure, failure);
    QFETCH(QString, error);

    const QString input = path(QStringLiteral("input.jsonl"));
    QVERIFY(writeFile(input, recording));
    ExportJob job(host.factory());
    job.setSelection(samples);
    QVariantMap properties;
    const ExportJob::OutputName output = [&](const QVariantMap &given, QString *) {
        properties = given;
        return path(QStringLiteral("out.txt"));
    };
    bool exported = false;
    {
        const StandardInputFrom standardInput(input);
        QVERIFY(standardInput.inForce());
        exported = job.run(QStringLiteral("-"), output, ExportJob::Progress());
    }
    QCOMPARE(exported, failure == ExportJob::Failure::None);
    QCOMPARE(job.failure(), failure);
    QCOMPARE(job.errorString(), error);
    QCOMPARE(properties.value(QStringLiteral("ProductCode")), QVariant(QStringLiteral("T100")));
    if (exported)
        QCOMPARE(readFile(path(QStringLiteral("out.txt"))), testData("host-defaults.txt"));
    else
        QVERIFY(!QFileInfo::exists(path(QStringLiteral("out.txt"))));
}

void tst_ExportJob::selection_data()
{
    QTest::addColumn<SampleSelection>("samples");
    QTest::addColumn<QVector<int>>("selected");

    using Kind = SampleSelection::Bound::Kind;
    const auto select = [](SampleSelection::Bound from, SampleSelection::Bound to, qint64 every) {
        SampleSelection samples;
        samples.from = from;
        samples.to = to;
        samples.every = every;
        return samples;
    };
    const SampleSelection::Bound none;
    // The recording has 25 samples at 50 Hz: sample i is at i/50 seconds.
    QVector<int> all(25);
    std::iota(all.begin(), all.end(), 0);
    QTest::newRow("everything") << SampleSelection() << all;
    QTest::newRow("from an index on")
        << select({Kind::Index, 20}, none, 1) << QVector<int>{20, 21, 22, 23, 24};
    QTest::newRow("up to an index, which is not exported")
        << select(none, {Kind::Index, 3}, 1) << QVector<int>{0, 1, 2};
    QTest::newRow("every tenth") << select(none, none, 10) << QVector<int>{0, 10, 20};
    QTest::newRow("from and to in seconds, between samples")
        << select({Kind::Seconds, 0.11}, {Kind::Seconds, 0.21}, 1) << QVector<int>{6, 7, 8, 9, 10};
    QTest::newRow("every third from a time on")
        << select({Kind::Seconds, 0.3}, none, 3) << QVector<int>{15, 18, 21, 24};
    QTest::newRow("an index up to a time")
        << select({Kind::Index, 4}, {Kind::Seconds, 0.1}, 1) << QVector<int>{4};
    QTest::newRow("from past the end") << select({Kind::Index, 30}, none, 1) << QVector<int>();
}

// The header of the whole export, and the rows of the samples selected.
void tst_ExportJob::selection()
{
    QFETCH(SampleSelection, samples);
    QFETCH(QVector<int>, selected);

    QByteArray header;
    const QList<QByteArray> rows = rowsOf(testData("host-defaults.txt"), &header);
    QCOMPARE(rows.size(), 25);
    QByteArray expected = header;
    for (const int index : selected)
        expected += rows.at(index) + '\n';

    const QString recording = path(QStringLiteral("rec.jsonl"));
    QVERIFY(writeFile(recording, testData("host-recording.jsonl")));
    ExportJob job(host.factory());
    job.setSelection(samples);
    const QString output = path(QStringLiteral("out.txt"));
    QVERIFY2(job.run(recording, named(output), ExportJob::Progress()),
             qPrintable(job.errorString()));
    QCOMPARE(job.samplesWritten(), qint64(selected.size()));
    QCOMPARE(readFile(output), expected);
}

void tst_ExportJob::badLines_data()
{
    QTest::addColumn<bool>("skip");
    QTest::addColumn<bool>("readAhead");

    QTest::newRow("skipped, read ahead") << true << true;
    QTest::newRow("skipped, read in this thread") << true << false;
    QTest::newRow("not skipped, read ahead") << false << true;
    QTest::newRow("not skipped, read in this thread") << false << false;
}

// Two bad sample lines among the samples: skipped, each is a warning and
// the export is that of the recording without them; else the first fails
// the export.
void tst_ExportJob::badLines()
{
    QFETCH(bool, skip);
    QFETCH(bool, readAhead);

    QList<QByteArray> lines = recordingLines();
    lines.insert(4, "{\"packetCounter\": \"three\"}");
    lines.insert(13, "{broken");
    const QString recording = path(QStringLiteral("damaged.jsonl"));
    QVERIFY(writeFile(recording, joined(lines)));
    const QString firstBad =
        recording + QStringLiteral(":5: \"packetCounter\": expected an integer, got a string");
    const QString secondBad = recording
        + QStringLiteral(":14: malformed JSON at column 2: Missing a name for object member.");

    ExportJob job(host.factory());
    job.setReadAhead(readAhead);
    QStringList warnings;
    job.setSkipBadLines(skip, [&warnings](const QString &text) { warnings << text; });
    const QString output = path(QStringLiteral("out.txt"));
    const bool exported = job.run(recording, named(output), ExportJob::Progress());
    if (skip) {
        QVERIFY2(exported, qPrintable(job.errorString()));
        QCOMPARE(warnings,
                 (QStringList{firstBad + QStringLiteral(" (skipped)"),
                              secondBad + QStringLiteral(" (skipped)")}));
        QCOMPARE(job.samplesWritten(), qint64(25));
        QCOMPARE(job.linesSkipped(), qint64(2));
        QCOMPARE(readFile(output), testData("host-defaults.txt"));
    } else {
        QVERIFY(!exported);
        QCOMPARE(job.failure(), ExportJob::Failure::BadLine);
        QCOMPARE(job.errorString(), firstBad);
        QCOMPARE(warnings, QStringList());
        QCOMPARE(job.linesSkipped(), qint64(0));
        QVERIFY(!QFileInfo::exists(output));
    }
}

void tst_ExportJob::failures_data()
{
    QTest::addColumn<QByteArray>("recording");
    QTest::addColumn<QString>("output");
    QTest::addColumn<bool>("skip");
    QTest::addColumn<SampleSelection>("samples");
    QTest::addColumn<ExportJob::Failure>("failure");
    QTest::addColumn<QString>("error");

    // "{dir}" stands for the test's folder; the recording is {dir}/rec.jsonl,
    // or nothing when its bytes are null.
    const QByteArray recording = testData("host-recording.jsonl");
    QList<QByteArray> badFirst = recordingLines();
    badFirst[0] = "{bad";
    SampleSelection inSeconds;
    inSeconds.to = {SampleSelection::Bound::Kind::Seconds, 0.1};
    using Failure = ExportJob::Failure;

    QTest::newRow("a recording that is not there")
        << QByteArray() << "{dir}/out.txt" << false << SampleSelection() << Failure::Unreadable
        << "{dir}/rec.jsonl: cannot be read: No such file or directory";
    QTest::newRow("a bad first line")
        << joined(badFirst) << "{dir}/out.txt" << false << SampleSelection()
        << Failure::BadRecordingObject
        << "{dir}/rec.jsonl:1: malformed JSON at column 2: Missing a name for object member.";
    QTest::newRow("a bad first line, bad lines skipped")
        << joined(badFirst) << "{dir}/out.txt" << true << SampleSelection()
        << Failure::BadRecordingObject
        << "{dir}/rec.jsonl:1: malformed JSON at column 2: Missing a name for object member.";
    QTest::newRow("no name for the output") << recording << "" << false << SampleSelection()
                                            << Failure::NoOutputName << "no name for this one";
    QTest::newRow("seconds in a recording without an update rate")
        << recordingWithoutRate() << "{dir}/out.txt" << false << inSeconds << Failure::NoUpdateRate
        << "{dir}/rec.jsonl: gives no update rate, so its samples cannot be selected by time";
    QTest::newRow("an output folder that is not there")
        << recording << "{dir}/missing/out.txt" << false << SampleSelection() << Failure::Unwritable
        << "{dir}/missing/out.txt: No such file or directory";
    QTest::newRow("an output that is a folder")
        << recording << "{dir}/folder" << false << SampleSelection() << Failure::Unwritable
        << "{dir}/folder: Is a directory";
    QTest::newRow("a pipe whose reader went away")
        << recording << "{pipe}" << false << SampleSelection() << Failure::ReaderWentAway << "";
}

void tst_ExportJob::failures()
{
    QFETCH(QByteArray, recording);
    QFETCH(QString, output);
    QFETCH(bool, skip);
    QFETCH(SampleSelection, samples);
    QFETCH(ExportJob::Failure, failure);
    QFETCH(QString, error);

    const QString recordingName = path(QStringLiteral("rec.jsonl"));
    if (!recording.isNull())
        QVERIFY(writeFile(recordingName, recording));
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("folder")));
    int pipeEnds[2] = {-1, -1};
    if (output == QLatin1String("{pipe}")) {
        QCOMPARE(::pipe(pipeEnds), 0);
        ::close(pipeEnds[0]);
        output = QStringLiteral("/dev/fd/%1").arg(pipeEnds[1]);
    }
    output = inDir(output);
    const QStringList before = QDir(dir->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);

    ExportJob job(host.factory());
    job.setSelection(samples);
    QStringList warnings;
    job.setSkipBadLines(skip, [&warnings](const QString &text) { warnings << text; });
    const ExportJob::OutputName name = [&output](const QVariantMap &, QString *problem) {
        if (output.isEmpty())
            *problem = QStringLiteral("no name for this one");
        return output;
    };
    bool exported = true;
    {
        // As in the program, a closed pipe is an error to write, not a signal.
        const auto previous = std::signal(SIGPIPE, SIG_IGN);
        exported = job.run(recordingName, name, ExportJob::Progress());
        std::signal(SIGPIPE, previous);
    }
    if (pipeEnds[1] >= 0)
        ::close(pipeEnds[1]);
    QVERIFY(!exported);
    QCOMPARE(job.failure(), failure);
    QCOMPARE(job.errorString(), inDir(error));
    QCOMPARE(warnings, QStringList());
    // No partial file is left behind.
    QCOMPARE(QDir(dir->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), before);
}

void tst_ExportJob::recordingIsNotReplaced_data()
{
    QTest::addColumn<QString>("output");

    QTest::newRow("by its own name") << "{dir}/rec.jsonl";
    QTest::newRow("by a symbolic link") << "{dir}/symbolic.txt";
    QTest::newRow("by a hard link") << "{dir}/hard.txt";
    QTest::newRow("by the name of a descriptor open on it") << "{descriptor}";
}

void tst_ExportJob::recordingIsNotReplaced()
{
    QFETCH(QString, output);

    const QString recording = path(QStringLiteral("rec.jsonl"));
    const QByteArray bytes = testData("host-recording.jsonl");
    QVERIFY(writeFile(recording, bytes));
    QVERIFY(QFile::link(recording, path(QStringLiteral("symbolic.txt"))));
    QCOMPARE(::link(QFile::encodeName(recording).constData(),
                    QFile::encodeName(path(QStringLiteral("hard.txt"))).constData()),
             0);
    const int descriptor = ::open(QFile::encodeName(recording).constData(), O_RDONLY);
    QVERIFY(descriptor >= 0);
    output.replace(QLatin1String("{descriptor}"), QStringLiteral("/dev/fd/%1").arg(descriptor));
    output = inDir(output);

    ExportJob job(host.factory());
    const bool exported = job.run(recording, named(output), ExportJob::Progress());
    ::close(descriptor);
    QVERIFY(!exported);
    QCOMPARE(job.failure(), ExportJob::Failure::WouldReplaceRecording);
    QCOMPARE(job.errorString(),
             output + QStringLiteral(": the output file would replace the recording itself"));
    QCOMPARE(job.outputFile(), output);
    QCOMPARE(readFile(recording), bytes);
}

void tst_ExportJob::progressFollowsTheReading()
{
    const QString recording = path(QStringLiteral("rec.jsonl"));
    const QByteArray bytes = testData("host-recording.jsonl");
    QVERIFY(writeFile(recording, bytes));
    QVector<qint64> positions;
    QVector<qint64> sizes;
    ExportJob job(host.factory());
    QVERIFY(job.run(recording, named(path(QStringLiteral("out.txt"))),
                    [&](qint64 position, qint64 size) {
                        positions << position;
                        sizes << size;
                    }));
    // Once a sample, each further into the recording, the last at its end.
    QCOMPARE(positions.size(), 25);
    QVERIFY(std::is_sorted(positions.begin(), positions.end()));
    QVERIFY(positions.first() > 0);
    QCOMPARE(positions.last(), qint64(bytes.size()));
    QCOMPARE(sizes, QVector<qint64>(25, bytes.size()));
}

QTEST_GUILESS_MAIN(tst_ExportJob)
#include "tst_exportjob.moc"
