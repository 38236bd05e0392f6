#include "readahead.h"
#include "recordinggenerator.h"
#include "recordinginput.h"

#include <QtTest>

#include <atomic>
#include <optional>

#include <pthread.h>
#include <sys/resource.h>

namespace {

/**
 * A recording of @p lines lines, made up as it is read: line i is the sample
 * with packet counter i, unless it is one of the bad lines or the line of a
 * fatal error.
 */
class ScriptedReader : public AbstractRecordingReader
{
public:
    ScriptedReader(int lines, const QVector<int> &badLines, int fatalLine)
        : lines(lines)
        , badLines(badLines)
        , fatalLine(fatalLine)
    { }

    bool readNext() override
    {
        if (!error.isEmpty() || next == lines)
            return false;
        const int line = next++;
        ++reads;
        if (line == fatalLine) {
            error = QStringLiteral("recording:%1: cannot be read").arg(line + 1);
            return false;
        }
        if (badLines.contains(line)) {
            error = QStringLiteral("recording:%1: not a sample").arg(line + 1);
            bad = true;
            return false;
        }
        current.packetCounter = quint16(line);
        current.temperature = line * 0.5;
        current.gyroTemperatures = {quint16(line), quint16(line + 1)};
        current.sampleDateTime = QDateTime::fromMSecsSinceEpoch(qint64(line) * 10, Qt::UTC);
        return true;
    }
    bool hasError() const override { return !error.isEmpty(); }
    QString errorString() const override { return error; }
    bool hasBadLine() const override { return bad; }
    void skipBadLine() override
    {
        error.clear();
        bad = false;
    }
    QVariant property(const QString &key) const override { return properties().value(key); }
    QVariantMap properties() const override
    {
        return {{QStringLiteral("DeviceId"), QStringLiteral("00B4")},
                {QStringLiteral("StartTime"), QStringLiteral("12:00")}};
    }
    double updateRate() const override { return 60.0; }
    const RecordingSample &sample() const override { return current; }
    qint64 position() const override { return qint64(next) * 100; }
    qint64 size() const override { return qint64(lines) * 100; }
    QString readingNotice() const override { return QStringLiteral("nothing passed over"); }

    // Counted on the reading thread, looked at by the test's.
    std::atomic<int> reads{0};

private:
    const int lines;
    const QVector<int> badLines;
    const int fatalLine;
    int next = 0;
    RecordingSample current;
    QString error;
    bool bad = false;
};

// Much of a sample of a generated recording, to tell two readings apart.
QString fingerprint(const RecordingSample &sample)
{
    QStringList parts{QString::number(sample.packetCounter),
                      QString::number(sample.sampleTimeFine),
                      sample.sampleDateTime.toString(Qt::ISODateWithMs),
                      QString::number(sample.utcTime.nano),
                      QString::number(sample.temperature),
                      QString::number(sample.pressure)};
    for (const KvVector *vector :
         {&sample.calibratedAcceleration, &sample.freeAcceleration,
          &sample.calibratedAngularVelocity, &sample.magneticField, &sample.latitudeLongitude}) {
        for (int i = 0; i < vector->size(); ++i)
            parts << QString::number(vector->at(i), 'g', 17);
    }
    for (int i = 0; i < 4; ++i)
        parts << QString::number(sample.orientationQuaternion.at(i), 'g', 17);
    for (quint16 temperature : sample.gyroTemperatures)
        parts << QString::number(temperature);
    parts << QString::number(sample.gnssPvt.iTOW) << QString::number(sample.gnssPvt.lat)
          << QString::number(sample.gnssSatellites.numSvs)
          << QString::number(sample.triggerIn1.timestamp);
    return parts.join(QLatin1Char(' '));
}

QString describe(const RecordingSample &sample)
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(sample.packetCounter)
        .arg(sample.temperature)
        .arg(sample.gyroTemperatures.value(1))
        .arg(sample.sampleDateTime.toMSecsSinceEpoch());
}

/**
 * Everything a caller sees while reading @p reader: each sample and its
 * position, each stop with its error, the sample shown after it. Bad lines
 * are skipped when @p skip; the caller stops after @p wanted samples when
 * that is not negative.
 */
QStringList observe(AbstractRecordingReader &reader, bool skip, int wanted)
{
    QStringList seen;
    for (int got = 0; wanted < 0 || got < wanted;) {
        if (reader.readNext()) {
            seen << QStringLiteral("sample %1 at %2")
                        .arg(describe(reader.sample()))
                        .arg(reader.position());
            ++got;
            continue;
        }
        seen << QStringLiteral("stop, error %1 \"%2\", bad line %3, at %4, showing %5")
                    .arg(reader.hasError())
                    .arg(reader.errorString())
                    .arg(reader.hasBadLine())
                    .arg(reader.position())
                    .arg(describe(reader.sample()));
        if (skip && reader.hasBadLine()) {
            reader.skipBadLine();
            continue;
        }
        seen << QStringLiteral("then %1").arg(reader.readNext() ? "more" : "still stopped");
        break;
    }
    return seen;
}

/**
 * While it lives, the system refuses new threads: each thread's stack is
 * made larger than what the address-space limit leaves free. Both are put
 * back afterwards.
 */
class ThreadsRefused
{
public:
    ThreadsRefused()
    {
        pthread_attr_t attributes;
        if (pthread_getattr_default_np(&attributes) != 0)
            return;
        pthread_attr_getstacksize(&attributes, &stackSize);
        pthread_attr_setstacksize(&attributes, refusedStack);
        const bool stackSet = pthread_setattr_default_np(&attributes) == 0;
        pthread_attr_destroy(&attributes);
        if (!stackSet || getrlimit(RLIMIT_AS, &limit) != 0)
            return;
        rlimit lowered = limit;
        lowered.rlim_cur = addressSpace() + leftFree;
        set = setrlimit(RLIMIT_AS, &lowered) == 0;
    }
    ~ThreadsRefused()
    {
        if (set)
            setrlimit(RLIMIT_AS, &limit);
        pthread_attr_t attributes;
        if (pthread_getattr_default_np(&attributes) == 0) {
            pthread_attr_setstacksize(&attributes, stackSize);
            pthread_setattr_default_np(&attributes);
            pthread_attr_destroy(&attributes);
        }
    }
    ThreadsRefused(const ThreadsRefused &) = delete;
    ThreadsRefused &operator=(const ThreadsRefused &) = delete;

    bool inForce() const { return set; }

private:
    static constexpr rlim_t leftFree = 16 << 20;
    static constexpr std::size_t refusedStack = 64 << 20;

    // The process's address space now, from /proc/self/status.
    static rlim_t addressSpace()
    {
        QFile status(QStringLiteral("/proc/self/status"));
        if (!status.open(QIODevice::ReadOnly))
            return 0;
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("VmSize:"))
                return rlim_t(line.mid(7).trimmed().split(' ').first().toULongLong()) * 1024;
        }
        return 0;
    }

    std::size_t stackSize = 0;
    rlimit limit{};
    bool set = false;
};

} // namespace

// Reading on a thread of its own: the caller must see what the reader alone
// would show, sample for sample, stop for stop.
class tst_ReadAhead : public QObject
{
    Q_OBJECT

private slots:
    void sameAsTheReader_data();
    void sameAsTheReader();
    void sameAsTheReaderOnARecording();
    void whatDoesNotChange();
    void readsAheadBoundedly();
    void finishStopsTheReading();
    void noticeLeavesTheReadingAlone();
    void endsWithoutReading();
    void endsAtABadLineNotSkipped();
};

void tst_ReadAhead::sameAsTheReader_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<QVector<int>>("badLines");
    QTest::addColumn<int>("fatalLine");
    QTest::addColumn<bool>("skip");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<bool>("threadRefused");

    // Every case twice: read ahead, and in the caller's thread where the
    // system refuses the reading thread.
    const auto add = [](const char *name, int lines, const QVector<int> &badLines, int fatalLine,
                        bool skip, int wanted) {
        for (const bool refused : {false, true}) {
            QTest::addRow("%s%s", name, refused ? ", no thread" : "")
                << lines << badLines << fatalLine << skip << wanted << refused;
        }
    };
    const int batch = ReadAhead::batchSize;
    const int inFlight = ReadAhead::batchSize * ReadAhead::batchCount;
    add("an empty recording", 0, {}, -1, false, -1);
    add("one sample", 1, {}, -1, false, -1);
    add("a batch less one", batch - 1, {}, -1, false, -1);
    add("a batch", batch, {}, -1, false, -1);
    add("a batch and one", batch + 1, {}, -1, false, -1);
    add("three times all batches and more", 3 * inFlight + 5, {}, -1, false, -1);
    add("a bad first line, skipped", 10, {0}, -1, true, -1);
    add("bad lines at the edges of batches, skipped", 3 * batch,
        {batch - 1, batch, 2 * batch - 1, 2 * batch + 1, 3 * batch - 1}, -1, true, -1);
    add("bad lines one after another, skipped", 50, {10, 11, 12}, -1, true, -1);
    add("only bad lines, skipped", 3, {0, 1, 2}, -1, true, -1);
    add("a bad line, not skipped", 1000, {300}, -1, false, -1);
    add("a bad line after all batches, not skipped", 2 * inFlight, {inFlight + 3}, -1, false, -1);
    add("a fatal error", 1000, {}, 500, false, -1);
    add("a fatal error in the first line", 10, {}, 0, false, -1);
    add("a fatal error after a skipped bad line", 1000, {200}, 201, true, -1);
    add("the caller stops early", 100000, {}, -1, false, 5);
    add("the caller stops at the edge of a batch", 100000, {}, -1, false, batch);
    add("the caller stops after a skipped bad line", 100000, {3}, -1, true, 4);
}

void tst_ReadAhead::sameAsTheReader()
{
    QFETCH(int, lines);
    QFETCH(QVector<int>, badLines);
    QFETCH(int, fatalLine);
    QFETCH(bool, skip);
    QFETCH(int, wanted);
    QFETCH(bool, threadRefused);
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    if (threadRefused)
        QSKIP("the sanitizers need more address space than the limit leaves");
#endif

    ScriptedReader alone(lines, badLines, fatalLine);
    const QStringList expected = observe(alone, skip, wanted) << alone.readingNotice();

    ScriptedReader wrapped(lines, badLines, fatalLine);
    ReadAhead ahead(&wrapped);
    QStringList seen;
    {
        std::optional<ThreadsRefused> refused;
        if (threadRefused) {
            refused.emplace();
            QVERIFY(refused->inForce());
        }
        seen = observe(ahead, skip, wanted);
        ahead.finish();
        seen << ahead.readingNotice();
    }
    QCOMPARE(ahead.readsAhead(), !threadRefused);
    QCOMPARE(seen, expected);
}

void tst_ReadAhead::sameAsTheReaderOnARecording()
{
    GeneratorOptions options;
    options.samples = 3000;
    QBuffer generated;
    generated.open(QIODevice::WriteOnly);
    QString error;
    QVERIFY2(generateRecording(options, &generated, &error), qPrintable(error));
    // A bad line among them, to be skipped.
    QList<QByteArray> lines = generated.data().split('\n');
    lines.insert(1500, QByteArrayLiteral("{\"packetCounter\": \"none\"}"));
    const QByteArray recording = lines.join('\n');

    const auto readAll = [&recording](bool ahead) {
        QBuffer device;
        device.setData(recording);
        device.open(QIODevice::ReadOnly);
        RecordingInput input;
        QStringList seen;
        if (!input.open(&device, QStringLiteral("recording")))
            return QStringList{input.errorString()};
        ReadAhead readAhead(&input);
        AbstractRecordingReader &reader = ahead ? static_cast<AbstractRecordingReader &>(readAhead)
                                                : static_cast<AbstractRecordingReader &>(input);
        for (;;) {
            if (reader.readNext()) {
                seen << fingerprint(reader.sample());
            } else if (reader.hasBadLine()) {
                seen << reader.errorString();
                reader.skipBadLine();
            } else {
                seen << QStringLiteral("end, error \"%1\"").arg(reader.errorString());
                return seen;
            }
        }
    };
    const QStringList alone = readAll(false);
    QCOMPARE(alone.size(), 3000 + 2);
    QVERIFY2(alone.at(1499).startsWith(QLatin1String("recording:1501:")),
             qPrintable(alone.at(1499)));
    QCOMPARE(readAll(true), alone);
}

void tst_ReadAhead::whatDoesNotChange()
{
    ScriptedReader reader(10, {}, -1);
    QVERIFY(reader.readNext());
    ReadAhead ahead(&reader);
    QCOMPARE(ahead.properties(), reader.properties());
    QCOMPARE(ahead.property(QStringLiteral("DeviceId")), QVariant(QStringLiteral("00B4")));
    QVERIFY(!ahead.property(QStringLiteral("Missing")).isValid());
    QCOMPARE(ahead.updateRate(), 60.0);
    QCOMPARE(ahead.size(), qint64(1000));
    // Before the first readNext() it stands where the reader stood.
    QCOMPARE(ahead.position(), qint64(100));
    QCOMPARE(ahead.sample().packetCounter, quint16(0));
    QVERIFY(!ahead.hasError());
    QVERIFY(ahead.readNext());
    QCOMPARE(ahead.sample().packetCounter, quint16(1));
}

void tst_ReadAhead::readsAheadBoundedly()
{
    ScriptedReader reader(1000000, {}, -1);
    {
        ReadAhead ahead(&reader);
        for (int i = 0; i < 3; ++i)
            QVERIFY(ahead.readNext());
        QVERIFY(ahead.readsAhead());
        // The thread fills every batch while the caller holds the first, then waits.
        const int bound = ReadAhead::batchSize * ReadAhead::batchCount;
        QTRY_COMPARE(reader.reads.load(), bound);
        QTest::qWait(50);
        QCOMPARE(reader.reads.load(), bound);
    }
}

void tst_ReadAhead::finishStopsTheReading()
{
    ScriptedReader reader(1000000, {}, -1);
    ReadAhead ahead(&reader);
    QVERIFY(ahead.readNext());
    ahead.finish();
    QCOMPARE(ahead.readingNotice(), QStringLiteral("nothing passed over"));
    const int reads = reader.reads.load();
    QVERIFY(!ahead.readNext());
    QVERIFY(!ahead.hasError());
    QCOMPARE(reader.reads.load(), reads);
}

// Asking for the notice is no end of the reading: the thread reads on, and
// the notice waits for finish().
void tst_ReadAhead::noticeLeavesTheReadingAlone()
{
    const int lines = 3 * ReadAhead::batchSize * ReadAhead::batchCount;
    ScriptedReader reader(lines, {}, -1);
    ReadAhead ahead(&reader);
    QVERIFY(ahead.readNext());
    QCOMPARE(ahead.readingNotice(), QString());
    int samples = 1;
    while (ahead.readNext())
        ++samples;
    QCOMPARE(samples, lines);
    QVERIFY(!ahead.hasError());
    ahead.finish();
    QCOMPARE(ahead.readingNotice(), QStringLiteral("nothing passed over"));
}

void tst_ReadAhead::endsWithoutReading()
{
    ScriptedReader reader(10, {}, -1);
    {
        ReadAhead ahead(&reader);
    }
    QCOMPARE(reader.reads.load(), 0);
}

void tst_ReadAhead::endsAtABadLineNotSkipped()
{
    ScriptedReader reader(1000, {2}, -1);
    {
        ReadAhead ahead(&reader);
        QVERIFY(ahead.readNext());
        QVERIFY(ahead.readNext());
        QVERIFY(!ahead.readNext());
        QVERIFY(ahead.hasBadLine());
        // The thread waits at the bad line; going away must end it.
    }
    QCOMPARE(reader.reads.load(), 3);
}

QTEST_GUILESS_MAIN(tst_ReadAhead)
#include "tst_readahead.moc"
