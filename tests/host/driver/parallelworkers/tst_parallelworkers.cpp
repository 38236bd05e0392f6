#include "parallelexports.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>

#include <unistd.h>

// Exports side by side in worker processes, with tasks of this test's own
// in place of exports: what they say comes back in the order of the
// recordings, questions are answered when they can be, a worker that dies
// is named, and the reading is followed across the workers.
class tst_ParallelWorkers : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void messagesInTheOrderOfTheRecordings_data();
    void messagesInTheOrderOfTheRecordings();
    void laterRecordingsFinishFirst();
    void answersGivenLate();
    void deadWorkerIsNamed_data();
    void deadWorkerIsNamed();
    void progressOfAllWorkers();

private:
    QString path(const QString &name) const { return dir->filePath(name); }

    std::unique_ptr<QTemporaryDir> dir;
};

namespace {

// What a batch gave back: the text passed on for each recording, in the
// order passed on, and each recording's exit status in the order finished.
struct Heard
{
    QList<QByteArray> texts;
    QVector<int> finishedOrder;
    QMap<int, int> statuses;
};

ParallelExports::Finished finishedInto(Heard &heard)
{
    return [&heard](int index, int status) {
        heard.finishedOrder << index;
        heard.statuses.insert(index, status);
    };
}

ParallelExports::Output outputInto(Heard &heard)
{
    return [&heard](const QByteArray &text) { heard.texts << text; };
}

ParallelExports::Answer noQuestions()
{
    return [](int, const QByteArray &, QByteArray *) { return true; };
}

QStringList namesOf(int count)
{
    QStringList names;
    for (int i = 0; i < count; ++i)
        names << QStringLiteral("recording-%1.jsonl").arg(i);
    return names;
}

// Waits in a worker, at most some seconds, until @p fileName exists.
bool waitFor(const QByteArray &fileName)
{
    for (int tries = 0; tries < 2000; ++tries) {
        if (::access(fileName.constData(), F_OK) == 0)
            return true;
        ::usleep(10000);
    }
    return false;
}

void touch(const QByteArray &fileName)
{
    if (std::FILE *file = std::fopen(fileName.constData(), "w"))
        std::fclose(file);
}

// The process that a text of messagesInTheOrderOfTheRecordings() came from.
pid_t processOf(const QByteArray &text)
{
    const int start = text.indexOf("process ") + 8;
    return pid_t(text.mid(start, text.indexOf('\n', start) - start).toInt());
}

} // namespace

void tst_ParallelWorkers::init()
{
    dir = std::make_unique<QTemporaryDir>();
    QVERIFY(dir->isValid());
}

void tst_ParallelWorkers::cleanup()
{
    dir.reset();
}

void tst_ParallelWorkers::messagesInTheOrderOfTheRecordings_data()
{
    QTest::addColumn<int>("jobs");
    QTest::addColumn<int>("count");

    QTest::newRow("one job: one worker, one recording after another") << 1 << 5;
    QTest::newRow("two jobs") << 2 << 6;
    QTest::newRow("four jobs") << 4 << 9;
    QTest::newRow("more jobs than recordings") << 8 << 3;
    QTest::newRow("one recording") << 4 << 1;
}

void tst_ParallelWorkers::messagesInTheOrderOfTheRecordings()
{
    QFETCH(int, jobs);
    QFETCH(int, count);

    Heard heard;
    ParallelExports exports(
        [count](int index, const ParallelExports::TaskProgress &, const ParallelExports::Ask &) {
            // Later recordings take less time.
            ::usleep(useconds_t(count - index) * 5000);
            std::fprintf(stderr, "recording %d, in process %d\n", index, int(::getpid()));
            std::fprintf(stderr, "recording %d done\n", index);
            return index % 3 == 1 ? 1 : 0;
        },
        noQuestions(), finishedInto(heard), outputInto(heard));
    const int status = exports.run(namesOf(count), QVector<qint64>(count, 0), jobs);

    QCOMPARE(status, count > 1 ? 1 : 0);
    QCOMPARE(heard.texts.size(), count);
    QSet<pid_t> workers;
    for (int i = 0; i < count; ++i) {
        const pid_t worker = processOf(heard.texts.at(i));
        QCOMPARE(heard.texts.at(i),
                 QStringLiteral("recording %1, in process %2\nrecording %1 done\n")
                     .arg(i)
                     .arg(worker)
                     .toLocal8Bit());
        QVERIFY(worker > 0 && worker != ::getpid());
        workers.insert(worker);
        QCOMPARE(heard.statuses.value(i, -1), i % 3 == 1 ? 1 : 0);
    }
    QCOMPARE(heard.finishedOrder.size(), count);
    // Each worker takes one recording after another.
    QVERIFY(workers.size() <= std::min(jobs, count));
    if (jobs == 1)
        QCOMPARE(workers.size(), 1);
}

void tst_ParallelWorkers::laterRecordingsFinishFirst()
{
    // The first recording waits until this process has heard that the
    // last one finished.
    const QByteArray lastFinished = QFile::encodeName(path(QStringLiteral("last finished")));
    Heard heard;
    ParallelExports exports(
        [&lastFinished](int index, const ParallelExports::TaskProgress &,
                        const ParallelExports::Ask &) {
            if (index == 0 && !waitFor(lastFinished))
                return 2;
            std::fprintf(stderr, "recording %d\n", index);
            return 0;
        },
        noQuestions(),
        [&](int index, int status) {
            if (index == 2)
                touch(lastFinished);
            finishedInto(heard)(index, status);
        },
        outputInto(heard));
    QCOMPARE(exports.run(namesOf(3), QVector<qint64>(3, 0), 3), 0);
    QVERIFY(heard.finishedOrder.indexOf(2) < heard.finishedOrder.indexOf(0));
    QCOMPARE(heard.texts, (QList<QByteArray>{"recording 0\n", "recording 1\n", "recording 2\n"}));
}

void tst_ParallelWorkers::answersGivenLate()
{
    // The second recording asks before the first has finished: it is told
    // to wait, and the first finishes only once it was.
    const QByteArray refused = QFile::encodeName(path(QStringLiteral("refused")));
    Heard heard;
    bool firstFinished = false;
    QStringList answered;
    ParallelExports exports(
        [&refused](int index, const ParallelExports::TaskProgress &,
                   const ParallelExports::Ask &ask) {
            if (index == 0) {
                if (!waitFor(refused))
                    return 2;
                std::fprintf(stderr, "recording 0\n");
                return 0;
            }
            const QByteArray answer = ask("may I write x.txt?");
            std::fprintf(stderr, "recording 1 was told: %s\n", answer.constData());
            return 0;
        },
        [&](int index, const QByteArray &question, QByteArray *answer) {
            answered << QStringLiteral("%1 asked \"%2\" %3")
                            .arg(index)
                            .arg(QString::fromUtf8(question))
                            .arg(firstFinished ? "after the first finished" : "before");
            if (!firstFinished) {
                touch(refused);
                return false;
            }
            *answer = "yes, now";
            return true;
        },
        [&](int index, int status) {
            firstFinished = firstFinished || index == 0;
            finishedInto(heard)(index, status);
        },
        outputInto(heard));
    QCOMPARE(exports.run(namesOf(2), QVector<qint64>(2, 0), 2), 0);

    QCOMPARE(heard.texts, (QList<QByteArray>{"recording 0\n", "recording 1 was told: yes, now\n"}));
    QVERIFY(answered.size() >= 2);
    QCOMPARE(answered.first(), QStringLiteral("1 asked \"may I write x.txt?\" before"));
    QCOMPARE(answered.last(),
             QStringLiteral("1 asked \"may I write x.txt?\" after the first finished"));
}

void tst_ParallelWorkers::deadWorkerIsNamed_data()
{
    QTest::addColumn<int>("jobs");
    QTest::addColumn<bool>("killed");
    QTest::addColumn<int>("exitStatus");

    QTest::newRow("killed, one job") << 1 << true << 0;
    QTest::newRow("killed, two jobs") << 2 << true << 0;
    QTest::newRow("ended with a status of its own") << 2 << false << 3;
    QTest::newRow("ended with status 0 before it was done") << 1 << false << 0;
}

// The second of three recordings takes its worker with it; the others are
// exported all the same, by another worker where need be.
void tst_ParallelWorkers::deadWorkerIsNamed()
{
    QFETCH(int, jobs);
    QFETCH(bool, killed);
    QFETCH(int, exitStatus);

    Heard heard;
    ParallelExports exports(
        [killed, exitStatus](int index, const ParallelExports::TaskProgress &,
                             const ParallelExports::Ask &) {
            std::fprintf(stderr, "recording %d began\n", index);
            if (index == 1) {
                if (killed)
                    ::raise(SIGKILL);
                ::_exit(exitStatus);
            }
            return 0;
        },
        noQuestions(), finishedInto(heard), outputInto(heard));
    const QStringList names{"first.jsonl", "second.jsonl", "third.jsonl"};
    QCOMPARE(exports.run(names, QVector<qint64>(3, 0), jobs), 1);

    const QString end = killed
        ? QStringLiteral("second.jsonl: the export process was killed by signal %1 (%2) before it "
                         "finished\n")
              .arg(SIGKILL)
              .arg(QString::fromLocal8Bit(::strsignal(SIGKILL)))
        : QStringLiteral("second.jsonl: the export process ended with status %1 before it "
                         "finished\n")
              .arg(exitStatus);
    QCOMPARE(heard.texts,
             (QList<QByteArray>{"recording 0 began\n", "recording 1 began\n" + end.toLocal8Bit(),
                                "recording 2 began\n"}));
    QCOMPARE(heard.statuses, (QMap<int, int>{{0, 0}, {1, 1}, {2, 0}}));
}

void tst_ParallelWorkers::progressOfAllWorkers()
{
    constexpr qint64 mebibyte = 1 << 20;
    const QVector<qint64> sizes{8 * mebibyte, 4 * mebibyte, 6 * mebibyte};
    const qint64 total = 18 * mebibyte;
    // The first two recordings, read side by side, finish only once this
    // process has heard that both were read to their ends.
    const qint64 bothRead = 12 * mebibyte;
    const QByteArray heardBothRead = QFile::encodeName(path(QStringLiteral("both read")));
    Heard heard;
    QVector<qint64> done;
    int reportsBeforeAnyFinished = -1;
    ParallelExports exports(
        [&](int index, const ParallelExports::TaskProgress &progress,
            const ParallelExports::Ask &) {
            for (qint64 position = 0; position <= sizes.at(index); position += mebibyte / 4)
                progress(position);
            return index < 2 && !waitFor(heardBothRead) ? 2 : 0;
        },
        noQuestions(),
        [&](int index, int status) {
            if (reportsBeforeAnyFinished < 0)
                reportsBeforeAnyFinished = done.size();
            finishedInto(heard)(index, status);
        },
        outputInto(heard));
    QVector<qint64> totals;
    exports.setProgress([&](qint64 bytes, qint64 of) {
        done << bytes;
        totals << of;
        if (bytes == bothRead)
            touch(heardBothRead);
    });
    QCOMPARE(exports.run(namesOf(3), sizes, 2), 0);

    QCOMPARE(totals, QVector<qint64>(done.size(), total));
    // While they are read, the bytes of both count, as each worker reports
    // them a mebibyte at a time.
    const QVector<qint64> whileReading = done.mid(0, reportsBeforeAnyFinished);
    QVERIFY(!whileReading.isEmpty());
    QVERIFY(std::is_sorted(whileReading.begin(), whileReading.end()));
    QCOMPARE(whileReading.last(), bothRead);
    for (const qint64 bytes : whileReading)
        QCOMPARE(bytes % mebibyte, qint64(0));
    // Every recording's bytes count once it has finished.
    QVERIFY(done.last() >= total);
}

QTEST_GUILESS_MAIN(tst_ParallelWorkers)
#include "tst_parallelworkers.moc"
