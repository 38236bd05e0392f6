#include "programrun.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

// Exports side by side (--jobs) as the user runs them, in real processes:
// recordings that can be read once only, workers that die or are killed,
// a program that is interrupted, and limits on descriptors and processes.
// Whatever happens, the files and messages are those of one export after
// another, or every failure is named.
class tst_ParallelExports : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void pipesAreReadOnce_data();
    void pipesAreReadOnce();
    void deadWorkerIsNamed_data();
    void deadWorkerIsNamed();
    void endingTheProgramEndsItsWorkers_data();
    void endingTheProgramEndsItsWorkers();
    void fewerAtATimeUnderLimits_data();
    void fewerAtATimeUnderLimits();
    void oneWorkerPerJobForManyRecordings();
    void laterRecordingWaitsForTheNameOfAnEarlierOne();

private:
    QString path(const QString &name) const { return dir->filePath(name); }
    QString generated(const QString &name, const QStringList &options = {});
    // @p count small recordings, copies of one generated recording.
    QStringList smallRecordings(const QString &prefix, int count);
    QStringList files(const QString &folder) const;
    QByteArray readFile(const QString &name) const;
    // The program, its plug-in and libraries copied into the test's folder,
    // all of it open to other users; empty on failure.
    QString copyOfTheProgram();
    // Starts an export of a.jsonl, b.jsonl and a FIFO nobody writes, two at
    // a time, and waits until only the worker stuck on the FIFO is left.
    pid_t startStuckExport(QProcess &process);

    QTemporaryDir *dir = nullptr;
};

namespace {

const QString program = QStringLiteral(ASCIIEXPORT_PROGRAM);

// The processes whose parent is @p parent.
QVector<pid_t> childrenOf(pid_t parent)
{
    QVector<pid_t> children;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &entry : entries) {
        bool number = false;
        const pid_t pid = entry.toInt(&number);
        QFile stat(QStringLiteral("/proc/%1/stat").arg(entry));
        if (!number || !stat.open(QIODevice::ReadOnly))
            continue;
        // "pid (name) state ppid ...", where the name may hold anything.
        const QByteArray text = stat.readAll();
        const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
        if (fields.size() > 1 && fields.at(1).toInt() == parent)
            children.append(pid);
    }
    return children;
}

// Whether @p pid has ended: gone, or a zombie that nobody reaps.
bool hasEnded(pid_t pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return true;
    const QByteArray text = stat.readAll();
    return text.mid(text.lastIndexOf(')') + 2, 1) == "Z";
}

// The settings of AddressSanitizer without its leak check, which needs a
// thread of its own and cannot run under ptrace; nothing without the sanitizers.
QStringList withoutLeakCheck()
{
    const QByteArray options = qgetenv("ASAN_OPTIONS");
    if (options.isEmpty())
        return {};
    return {QStringLiteral("ASAN_OPTIONS=") + QString::fromLocal8Bit(options)
            + QStringLiteral(":detect_leaks=0")};
}

bool waitUntil(const std::function<bool()> &condition, int milliseconds = 60000)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > milliseconds)
            return false;
        QThread::msleep(20);
    }
    return true;
}

} // namespace

void tst_ParallelExports::init()
{
    dir = new QTemporaryDir;
    QVERIFY(dir->isValid());
    // the defaults, from a settings file that exists: no note about it
    QVERIFY(QFile(dir->filePath(QStringLiteral("settings.ini"))).open(QIODevice::WriteOnly));
}

void tst_ParallelExports::cleanup()
{
    delete dir;
}

QString tst_ParallelExports::generated(const QString &name, const QStringList &options)
{
    const ProgramRun run = ProgramRun::start(
        program,
        QStringList{QStringLiteral("generate"), QStringLiteral("-o"), path(name)} + options,
        dir->path());
    return run.status == 0 ? path(name) : QString();
}

QStringList tst_ParallelExports::smallRecordings(const QString &prefix, int count)
{
    const QString first = generated(prefix + QStringLiteral("1.jsonl"), {"--samples", "20"});
    if (first.isEmpty())
        return {};
    QStringList recordings{first};
    for (int i = 2; i <= count; ++i) {
        recordings.append(path(prefix + QString::number(i) + QStringLiteral(".jsonl")));
        if (!QFile::copy(first, recordings.last()))
            return {};
    }
    return recordings;
}

QStringList tst_ParallelExports::files(const QString &folder) const
{
    return QDir(path(folder)).entryList(QDir::Files, QDir::Name);
}

QByteArray tst_ParallelExports::readFile(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

QString tst_ParallelExports::copyOfTheProgram()
{
    const QString copy = path(QStringLiteral("program/bin/asciiexport"));
    // The program finds its plug-in beside its own folder, and the libraries
    // where LD_LIBRARY_PATH says.
    const QList<QPair<QString, QString>> files{
        {program, copy},
        {QStringLiteral(ASCIIEXPORTER_PLUGIN),
         path(QStringLiteral("program/plugins/exporters/libasciiexporter.so"))},
        {QStringLiteral(PLUGINFRAMEWORK_LIBRARY),
         path(QStringLiteral("program/lib/" PLUGINFRAMEWORK_SONAME))},
        {QStringLiteral(KVTYPES_LIBRARY), path(QStringLiteral("program/lib/" KVTYPES_SONAME))},
    };
    for (const auto &[from, to] : files) {
        if (!QDir().mkpath(QFileInfo(to).path()) || !QFile::copy(from, to)
            || !QFile::setPermissions(to, QFile::Permissions(0x7555)))
            return QString();
    }
    for (const char *folder : {"program", "program/bin", "program/lib", "program/plugins",
                               "program/plugins/exporters"}) {
        if (!QFile::setPermissions(path(QLatin1String(folder)), QFile::Permissions(0x7755)))
            return QString();
    }
    return copy;
}

void tst_ParallelExports::pipesAreReadOnce_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("recording");

    // The same recordings are set up anew for each run of the program.
    QTest::newRow("a UBX log through a FIFO")
        << QStringLiteral("rm -f log.fifo && mkfifo log.fifo && (cat log.ubx > log.fifo &) && "
                          "exec \"$0\" \"$@\"")
        << QStringLiteral("log.fifo");
    QTest::newRow("JSON Lines through a FIFO")
        << QStringLiteral("rm -f b.fifo && mkfifo b.fifo && (cat b.jsonl > b.fifo &) && "
                          "exec \"$0\" \"$@\"")
        << QStringLiteral("b.fifo");
    QTest::newRow("JSON Lines piped into standard input")
        << QStringLiteral("cat b.jsonl | \"$0\" \"$@\"") << QStringLiteral("/dev/stdin");
    QTest::newRow("a UBX log piped into standard input")
        << QStringLiteral("cat log.ubx | \"$0\" \"$@\"") << QStringLiteral("/dev/stdin");
}

void tst_ParallelExports::pipesAreReadOnce()
{
    QFETCH(QString, script);
    QFETCH(QString, recording);

    QVERIFY(!generated(QStringLiteral("a.jsonl"), {"--samples", "300"}).isEmpty());
    QVERIFY(!generated(QStringLiteral("b.jsonl"), {"--samples", "500", "--seed", "2"}).isEmpty());
    QVERIFY(!generated(QStringLiteral("c.jsonl"), {"--samples", "200", "--seed", "3"}).isEmpty());
    QVERIFY(
        !generated(QStringLiteral("log.ubx"), {"--format", "ubx", "--samples", "40"}).isEmpty());
    const QStringList exportArguments{
        "export",  "--settings", path("settings.ini"), "--set", "exportRawGnss=true", "a.jsonl",
        recording, "c.jsonl"};
    const ProgramRun once = ProgramRun::inShell(
        script, program, exportArguments + QStringList{"--output-dir", "once"}, dir->path(), 60000);
    const ProgramRun sideBySide = ProgramRun::inShell(
        script, program, exportArguments + QStringList{"--jobs", "2", "--output-dir", "apart"},
        dir->path(), 60000);
    QCOMPARE(once.status, 0);
    QCOMPARE(sideBySide.status, 0);
    QCOMPARE(files(QStringLiteral("apart")).size(), 3);
    QCOMPARE(files(QStringLiteral("apart")), files(QStringLiteral("once")));
    for (const QString &file : files(QStringLiteral("once")))
        QCOMPARE(readFile("apart/" + file), readFile("once/" + file));
    QCOMPARE(
        QString::fromUtf8(sideBySide.err).replace(QStringLiteral("/apart/"), QStringLiteral("/")),
        QString::fromUtf8(once.err).replace(QStringLiteral("/once/"), QStringLiteral("/")));
}

pid_t tst_ParallelExports::startStuckExport(QProcess &process)
{
    const QString fifo = path(QStringLiteral("stuck.fifo"));
    if (generated(QStringLiteral("a.jsonl"), {"--samples", "300"}).isEmpty()
        || generated(QStringLiteral("b.jsonl"), {"--samples", "300", "--seed", "2"}).isEmpty()
        || ::mkfifo(QFile::encodeName(fifo).constData(), 0600) != 0)
        return -1;
    process.setWorkingDirectory(dir->path());
    process.start(program,
                  {"export", "--settings", path("settings.ini"), "--jobs", "2", "--output-dir",
                   path("out"), path("a.jsonl"), path("b.jsonl"), fifo});
    if (!process.waitForStarted())
        return -1;
    // One worker exports b and ends; the other, after a, waits for a writer
    // of the FIFO that never comes.
    const pid_t parent = pid_t(process.processId());
    QVector<pid_t> children;
    const bool stuck = waitUntil([&] {
        children = childrenOf(parent);
        return QFile::exists(path("out/a-001.txt")) && QFile::exists(path("out/b-002.txt"))
            && children.size() == 1;
    });
    return stuck ? children.first() : -1;
}

void tst_ParallelExports::deadWorkerIsNamed_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("reason");

    QTest::newRow("killed, as the out-of-memory killer does")
        << int(SIGKILL) << QStringLiteral("was killed by signal 9 (Killed)");
#ifdef SANITIZED_BUILD
    // AddressSanitizer reports a crash and ends the process with a status of its own.
    QTest::newRow("crashed") << int(SIGSEGV) << QStringLiteral("ended with status 66");
#else
    QTest::newRow("crashed") << int(SIGSEGV)
                             << QStringLiteral("was killed by signal 11 (Segmentation fault)");
#endif
    QTest::newRow("aborted") << int(SIGABRT) << QStringLiteral("was killed by signal 6 (Aborted)");
}

void tst_ParallelExports::deadWorkerIsNamed()
{
    QFETCH(int, signal);
    QFETCH(QString, reason);

    QProcess process;
    const pid_t worker = startStuckExport(process);
    QVERIFY(worker > 0);
    QCOMPARE(::kill(worker, signal), 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 1);
    const QString error = QString::fromUtf8(process.readAllStandardError());
    const QString exported = path("a.jsonl") + " -> " + path("out/a-001.txt") + "\n"
        + path("b.jsonl") + " -> " + path("out/b-002.txt") + "\n";
    const QString lost =
        path("stuck.fifo") + ": the export process " + reason + " before it finished\n";
#ifdef SANITIZED_BUILD
    // What AddressSanitizer says of a crash stands between the two.
    QVERIFY2(error.startsWith(exported) && error.endsWith(lost), qPrintable(error));
#else
    QCOMPARE(error, exported + lost);
#endif
    QCOMPARE(files(QStringLiteral("out")), (QStringList{"a-001.txt", "b-002.txt"}));
}

void tst_ParallelExports::endingTheProgramEndsItsWorkers_data()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("interrupted") << int(SIGINT);
    QTest::newRow("terminated") << int(SIGTERM);
    QTest::newRow("hung up") << int(SIGHUP);
    QTest::newRow("killed") << int(SIGKILL);
}

void tst_ParallelExports::endingTheProgramEndsItsWorkers()
{
    QFETCH(int, signal);

    QProcess process;
    const pid_t worker = startStuckExport(process);
    QVERIFY(worker > 0);
    QCOMPARE(::kill(pid_t(process.processId()), signal), 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QVERIFY(waitUntil([worker] { return hasEnded(worker); }, 10000));
    // Nobody reads the FIFO any more, and nothing was written for it.
    const int fifo =
        ::open(QFile::encodeName(path("stuck.fifo")).constData(), O_WRONLY | O_NONBLOCK);
    QCOMPARE(fifo, -1);
    QCOMPARE(errno, ENXIO);
    QCOMPARE(files(QStringLiteral("out")), (QStringList{"a-001.txt", "b-002.txt"}));
}

void tst_ParallelExports::fewerAtATimeUnderLimits_data()
{
    QTest::addColumn<QString>("limit");
    QTest::addColumn<bool>("asAnotherUser");

    QTest::newRow("few descriptors") << QStringLiteral("--nofile=16") << false;
    QTest::newRow("too few descriptors for even one worker")
        << QStringLiteral("--nofile=9") << false;
    QTest::newRow("no process beside the program") << QStringLiteral("--nproc=1") << true;
}

void tst_ParallelExports::fewerAtATimeUnderLimits()
{
    QFETCH(QString, limit);
    QFETCH(bool, asAnotherUser);

    const QString prlimit = QStandardPaths::findExecutable(QStringLiteral("prlimit"));
    if (prlimit.isEmpty())
        QSKIP("prlimit is not there to set the limit");
    QStringList command{prlimit, limit, "--", program};
    // Root has no process limit: the program runs as nobody then, from a
    // copy in the test's folder, which the build's folder may not let it reach.
    if (asAnotherUser) {
        const QString setpriv = QStandardPaths::findExecutable(QStringLiteral("setpriv"));
        if (::geteuid() != 0 || setpriv.isEmpty())
            QSKIP("a process limit holds for another user only, which root and setpriv can make");
        for (QDir up(dir->path()); up.cdUp() && !up.isRoot();) {
            if (!(QFileInfo(up.path()).permissions() & QFile::ExeOther))
                QSKIP("another user cannot reach the test's temporary folder");
        }
        const QString copy = copyOfTheProgram();
        QVERIFY(!copy.isEmpty());
        QVERIFY(QFile::setPermissions(dir->path(), QFile::Permissions(0x7777)));
        command = QStringList{setpriv,
                              "--reuid=nobody",
                              "--regid=nogroup",
                              "--clear-groups",
                              QStandardPaths::findExecutable(QStringLiteral("env")),
                              "LD_LIBRARY_PATH=" + path("program/lib")}
            + withoutLeakCheck() + QStringList{prlimit, limit, "--", copy};
    }
    const QStringList recordings = smallRecordings(QStringLiteral("r"), 12);
    QCOMPARE(recordings.size(), 12);
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("once")));
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("apart")));
    QVERIFY(QFile::setPermissions(path("apart"), QFile::Permissions(0x7777)));
    const QStringList arguments =
        QStringList{"export", "--settings", path("settings.ini"), "--quiet"} + recordings;
    QCOMPARE(
        ProgramRun::start(program, arguments + QStringList{"--output-dir", "once"}, dir->path())
            .status,
        0);
    const ProgramRun limited = ProgramRun::start(
        command.first(),
        command.mid(1) + arguments + QStringList{"--jobs", "8", "--output-dir", "apart"},
        dir->path());
    QCOMPARE(QString::fromUtf8(limited.err), QString());
    QCOMPARE(limited.status, 0);
    QCOMPARE(files(QStringLiteral("apart")), files(QStringLiteral("once")));
    for (const QString &file : files(QStringLiteral("once")))
        QCOMPARE(readFile("apart/" + file), readFile("once/" + file));
}

void tst_ParallelExports::oneWorkerPerJobForManyRecordings()
{
    const QString strace = QStandardPaths::findExecutable(QStringLiteral("strace"));
    if (strace.isEmpty())
        QSKIP("strace is not there to count the processes the program makes");
    const QStringList recordings = smallRecordings(QStringLiteral("t"), 40);
    QCOMPARE(recordings.size(), 40);
    QStringList environment;
    for (const QString &setting : withoutLeakCheck())
        environment << QStringLiteral("-E") << setting;
    const ProgramRun traced = ProgramRun::start(
        strace,
        QStringList{"-f", "-qq", "-e", "trace=fork,vfork,clone,clone3", "-o", path("forks.txt")}
            + environment
            + QStringList{program, "export", "--settings", path("settings.ini"), "--quiet",
                          "--jobs", "3", "--output-dir", path("out")}
            + recordings,
        dir->path());
    QCOMPARE(traced.status, 0);
    QCOMPARE(files(QStringLiteral("out")).size(), 40);
    // A new process, unlike a thread, shares no memory with its parent.
    int processes = 0;
    for (const QByteArray &line : readFile(QStringLiteral("forks.txt")).split('\n')) {
        if ((line.contains("clone") || line.contains("fork")) && !line.contains("CLONE_VM"))
            ++processes;
    }
    QCOMPARE(processes, 3);
}

void tst_ParallelExports::laterRecordingWaitsForTheNameOfAnEarlierOne()
{
    // Both are named x.txt: the later one, done first, must wait for the
    // earlier one, and is refused as it would be one after another.
    QVERIFY(QDir(dir->path()).mkpath(QStringLiteral("long")));
    QVERIFY(QDir(dir->path()).mkpath(QStringLiteral("short")));
    QVERIFY(!generated(QStringLiteral("long/x.jsonl"), {"--samples", "20000"}).isEmpty());
    QVERIFY(!generated(QStringLiteral("short/x.jsonl"), {"--samples", "10"}).isEmpty());
    const QStringList arguments{"export",
                                "--settings",
                                path("settings.ini"),
                                "--set",
                                "outputFileFormat=<inputfile>",
                                path("long/x.jsonl"),
                                path("short/x.jsonl")};
    const ProgramRun once = ProgramRun::start(
        program, arguments + QStringList{"--output-dir", path("once")}, dir->path());
    const ProgramRun sideBySide = ProgramRun::start(
        program, arguments + QStringList{"--jobs", "2", "--output-dir", path("apart")},
        dir->path());
    QCOMPARE(once.status, 1);
    QCOMPARE(sideBySide.status, 1);
    QCOMPARE(
        QString::fromUtf8(sideBySide.err).replace(QStringLiteral("/apart/"), QStringLiteral("/")),
        QString::fromUtf8(once.err).replace(QStringLiteral("/once/"), QStringLiteral("/")));
    QVERIFY(
        sideBySide.err.contains("was written for " + path("long/x.jsonl").toUtf8() + " already"));
    QCOMPARE(readFile(QStringLiteral("apart/x.txt")), readFile(QStringLiteral("once/x.txt")));
}

QTEST_GUILESS_MAIN(tst_ParallelExports)
#include "tst_parallelexports.moc"
