#include "outputfile.h"

#include <QFileDevice>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

// The file an export writes: a regular file takes its name only when it is
// committed, anything else is written where it is, and every failure keeps
// the system's reason.
class tst_OutputFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void regularFileTakesItsNameAtCommit_data();
    void regularFileTakesItsNameAtCommit();
    void failedWriteKeepsTheOlderFile_data();
    void failedWriteKeepsTheOlderFile();
    void refusedBeforeTheFirstByte_data();
    void refusedBeforeTheFirstByte();
    void folderRemovedBeforeCommit();
    void fifoIsWrittenDirectly();
    void deviceIsWrittenDirectly();
    void standardOutputWritesThroughItsDescriptor();
    void descriptorNamesWriteThroughTheDescriptor_data();
    void descriptorNamesWriteThroughTheDescriptor();
    void readerWentAway_data();
    void readerWentAway();

private:
    QString path(const QString &name) const { return dir->filePath(name); }
    QStringList entries() const;

    std::unique_ptr<QTemporaryDir> dir;
};

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

QString reasonText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// Writes @p bytes into @p file and commits it; false at the first failure.
bool writeAndCommit(OutputFile &file, const QByteArray &bytes)
{
    return file.device()->open(QIODevice::WriteOnly) && file.device()->write(bytes) == bytes.size()
        && file.commit();
}

// While it lives, @p number is ignored, as the program ignores SIGPIPE and
// SIGXFSZ so that their failures come back as errors.
class SignalIgnored
{
public:
    explicit SignalIgnored(int number)
        : number(number)
        , previous(std::signal(number, SIG_IGN))
    { }
    ~SignalIgnored() { std::signal(number, previous); }
    SignalIgnored(const SignalIgnored &) = delete;
    SignalIgnored &operator=(const SignalIgnored &) = delete;

private:
    const int number;
    void (*const previous)(int);
};

// While it lives, no file of this process grows beyond @p bytes (root
// included); nothing else may be written meanwhile.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        if (::getrlimit(RLIMIT_FSIZE, &previous) != 0)
            return;
        rlimit lowered = previous;
        lowered.rlim_cur = bytes;
        set = ::setrlimit(RLIMIT_FSIZE, &lowered) == 0;
    }
    ~FileSizeLimit()
    {
        if (set)
            ::setrlimit(RLIMIT_FSIZE, &previous);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

    bool inForce() const { return set; }

private:
    SignalIgnored fileSizeSignal{SIGXFSZ};
    rlimit previous{};
    bool set = false;
};

// An open descriptor, closed when this goes.
class Descriptor
{
public:
    explicit Descriptor(int descriptor = -1)
        : descriptor(descriptor)
    { }
    ~Descriptor() { close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int get() const { return descriptor; }
    bool isOpen() const { return descriptor >= 0 && ::fcntl(descriptor, F_GETFD) != -1; }
    void close()
    {
        if (descriptor >= 0)
            ::close(descriptor);
        descriptor = -1;
    }
    void reset(int other)
    {
        close();
        descriptor = other;
    }

private:
    int descriptor;
};

// What can be read from @p descriptor now, which does not wait.
QByteArray readAvailable(int descriptor)
{
    QByteArray bytes;
    char buffer[4096];
    for (;;) {
        const ssize_t count = ::read(descriptor, buffer, sizeof buffer);
        if (count <= 0)
            return bytes;
        bytes.append(buffer, int(count));
    }
}

} // namespace

void tst_OutputFile::init()
{
    dir = std::make_unique<QTemporaryDir>();
    QVERIFY(dir->isValid());
}

void tst_OutputFile::cleanup()
{
    dir.reset();
}

QStringList tst_OutputFile::entries() const
{
    return QDir(dir->path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

void tst_OutputFile::regularFileTakesItsNameAtCommit_data()
{
    QTest::addColumn<QByteArray>("older");

    QTest::newRow("a new file") << QByteArray();
    QTest::newRow("over an older file") << QByteArray("older contents\n");
}

void tst_OutputFile::regularFileTakesItsNameAtCommit()
{
    QFETCH(QByteArray, older);

    const QString name = path(QStringLiteral("out.txt"));
    if (!older.isEmpty())
        QVERIFY(writeFile(name, older));
    OutputFile file(name);
    QVERIFY2(file.device()->open(QIODevice::WriteOnly), qPrintable(file.errorString()));
    QCOMPARE(file.device()->write("new contents\n"), qint64(13));
    // Everything is written, and the name still holds what it held.
    QCOMPARE(QFileInfo::exists(name), !older.isEmpty());
    if (!older.isEmpty())
        QCOMPARE(readFile(name), older);

    QVERIFY2(file.commit(), qPrintable(file.errorString()));
    QCOMPARE(readFile(name), QByteArray("new contents\n"));
    QCOMPARE(entries(), QStringList{"out.txt"});
}

void tst_OutputFile::failedWriteKeepsTheOlderFile_data()
{
    QTest::addColumn<QByteArray>("older");

    QTest::newRow("no file where there was none") << QByteArray();
    QTest::newRow("the older file kept") << QByteArray("older contents\n");
}

void tst_OutputFile::failedWriteKeepsTheOlderFile()
{
    QFETCH(QByteArray, older);

    const QString name = path(QStringLiteral("out.txt"));
    if (!older.isEmpty())
        QVERIFY(writeFile(name, older));
    {
        OutputFile file(name);
        QVERIFY2(file.device()->open(QIODevice::WriteOnly), qPrintable(file.errorString()));
        bool limited = false;
        qint64 written = 0;
        {
            FileSizeLimit limit(4096);
            limited = limit.inForce();
            written = file.device()->write(QByteArray(3 * 4096, 'x'));
        }
        QVERIFY(limited);
        QCOMPARE(written, qint64(-1));
        QVERIFY(!file.commit());
        QCOMPARE(file.errorString(), reasonText(EFBIG));
        QVERIFY(!file.readerWentAway());
    }
    QCOMPARE(QFileInfo::exists(name), !older.isEmpty());
    if (!older.isEmpty())
        QCOMPARE(readFile(name), older);
    QCOMPARE(entries(), older.isEmpty() ? QStringList() : QStringList{"out.txt"});
}

void tst_OutputFile::refusedBeforeTheFirstByte_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("reason");

    QTest::newRow("a folder") << "folder" << EISDIR;
    QTest::newRow("in a folder that does not exist") << "missing/out.txt" << ENOENT;
    QTest::newRow("a name longer than the folder takes")
        << QString(300, QLatin1Char('n')) << ENAMETOOLONG;
}

void tst_OutputFile::refusedBeforeTheFirstByte()
{
    QFETCH(QString, name);
    QFETCH(int, reason);

    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("folder")));
    OutputFile file(path(name));
    QVERIFY(!file.device()->open(QIODevice::WriteOnly));
    QCOMPARE(file.errorString(), reasonText(reason));
    QVERIFY(!file.commit());
    QCOMPARE(file.errorString(), reasonText(reason));
    QCOMPARE(entries(), QStringList{"folder"});
    QVERIFY(QFileInfo(path(QStringLiteral("folder"))).isDir());
}

void tst_OutputFile::folderRemovedBeforeCommit()
{
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("sub")));
    OutputFile file(path(QStringLiteral("sub/out.txt")));
    QVERIFY(file.device()->open(QIODevice::WriteOnly));
    QCOMPARE(file.device()->write("written\n"), qint64(8));
    QVERIFY(QDir(path(QStringLiteral("sub"))).removeRecursively());

    QVERIFY(!file.commit());
    QCOMPARE(file.errorString(),
             QStringLiteral("the folder %1 no longer exists").arg(path(QStringLiteral("sub"))));
    QVERIFY(!file.readerWentAway());
    QCOMPARE(entries(), QStringList());
}

void tst_OutputFile::fifoIsWrittenDirectly()
{
    const QString name = path(QStringLiteral("fifo"));
    QCOMPARE(::mkfifo(QFile::encodeName(name).constData(), 0600), 0);
    // A reader that is there already, so that opening to write does not wait.
    const Descriptor reader(::open(QFile::encodeName(name).constData(), O_RDONLY | O_NONBLOCK));
    QVERIFY(reader.isOpen());

    OutputFile file(name);
    QVERIFY2(writeAndCommit(file, "through the pipe\n"), qPrintable(file.errorString()));
    QCOMPARE(readAvailable(reader.get()), QByteArray("through the pipe\n"));
    struct stat status;
    QCOMPARE(::stat(QFile::encodeName(name).constData(), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));
    QCOMPARE(entries(), QStringList{"fifo"});
}

void tst_OutputFile::deviceIsWrittenDirectly()
{
    // A terminal of this test's own, in raw mode so that its bytes come
    // through unchanged.
    const Descriptor master(::posix_openpt(O_RDWR | O_NOCTTY));
    QVERIFY(master.isOpen());
    QCOMPARE(::grantpt(master.get()), 0);
    QCOMPARE(::unlockpt(master.get()), 0);
    const QString name = QString::fromLocal8Bit(::ptsname(master.get()));
    const Descriptor terminal(::open(QFile::encodeName(name).constData(), O_RDWR | O_NOCTTY));
    QVERIFY(terminal.isOpen());
    termios mode;
    QCOMPARE(::tcgetattr(terminal.get(), &mode), 0);
    ::cfmakeraw(&mode);
    QCOMPARE(::tcsetattr(terminal.get(), TCSANOW, &mode), 0);
    ::fcntl(master.get(), F_SETFL, O_NONBLOCK);

    OutputFile file(name);
    QVERIFY2(writeAndCommit(file, "on the terminal\n"), qPrintable(file.errorString()));
    QByteArray seen;
    for (int tries = 0; tries < 100 && seen.size() < 16; ++tries) {
        seen += readAvailable(master.get());
        if (seen.size() < 16)
            QTest::qWait(10);
    }
    QCOMPARE(seen, QByteArray("on the terminal\n"));
    struct stat status;
    QCOMPARE(::stat(QFile::encodeName(name).constData(), &status), 0);
    QVERIFY(S_ISCHR(status.st_mode));
}

void tst_OutputFile::standardOutputWritesThroughItsDescriptor()
{
    // Standard output is a file that holds a line already, standing after it.
    const QString name = path(QStringLiteral("stdout.txt"));
    QVERIFY(writeFile(name, "kept\n"));
    const Descriptor target(::open(QFile::encodeName(name).constData(), O_WRONLY));
    QVERIFY(target.isOpen());
    QCOMPARE(::lseek(target.get(), 0, SEEK_END), off_t(5));
    std::fflush(stdout);
    const Descriptor saved(::dup(STDOUT_FILENO));
    QVERIFY(saved.isOpen());
    QCOMPARE(::dup2(target.get(), STDOUT_FILENO), STDOUT_FILENO);
    bool committed = false;
    bool stillOpen = false;
    {
        OutputFile file(OutputFile::standardOutputName());
        committed = writeAndCommit(file, "written\n");
    }
    stillOpen = ::fcntl(STDOUT_FILENO, F_GETFD) != -1;
    ::dup2(saved.get(), STDOUT_FILENO);

    QVERIFY(committed);
    QVERIFY(stillOpen);
    QCOMPARE(readFile(name), QByteArray("kept\nwritten\n"));
    QCOMPARE(entries(), QStringList{"stdout.txt"});
}

void tst_OutputFile::descriptorNamesWriteThroughTheDescriptor_data()
{
    QTest::addColumn<QString>("name");

    // "N" stands for the descriptor, "{dir}" for the test's folder.
    QTest::newRow("/dev/fd/N") << "/dev/fd/N";
    QTest::newRow("/proc/self/fd/N") << "/proc/self/fd/N";
    QTest::newRow("the process's own /proc/PID/fd/N")
        << QStringLiteral("/proc/%1/fd/N").arg(::getpid());
    QTest::newRow("/proc/thread-self/fd/N") << "/proc/thread-self/fd/N";
    QTest::newRow("a link that leads to /dev/fd/N") << "{dir}/link";
}

void tst_OutputFile::descriptorNamesWriteThroughTheDescriptor()
{
    QFETCH(QString, name);

    // Opened by its name, the file would lose its first line.
    const QString target = path(QStringLiteral("target.txt"));
    QVERIFY(writeFile(target, "kept\n"));
    const Descriptor descriptor(::open(QFile::encodeName(target).constData(), O_WRONLY));
    QVERIFY(descriptor.isOpen());
    QCOMPARE(::lseek(descriptor.get(), 0, SEEK_END), off_t(5));
    const QString number = QString::number(descriptor.get());
    QVERIFY(QFile::link(QStringLiteral("/dev/fd/") + number, path(QStringLiteral("link"))));
    name.replace(QLatin1Char('N'), number).replace(QLatin1String("{dir}"), dir->path());

    OutputFile file(name);
    QVERIFY2(writeAndCommit(file, "written\n"), qPrintable(file.errorString()));
    QVERIFY(descriptor.isOpen());
    QCOMPARE(readFile(target), QByteArray("kept\nwritten\n"));
    QCOMPARE(entries(), (QStringList{"link", "target.txt"}));
}

void tst_OutputFile::readerWentAway_data()
{
    QTest::addColumn<bool>("fifo");

    QTest::newRow("a FIFO by its name") << true;
    QTest::newRow("a pipe by its descriptor's name") << false;
}

void tst_OutputFile::readerWentAway()
{
    QFETCH(bool, fifo);

    Descriptor reader;
    Descriptor writer;
    QString name;
    if (fifo) {
        name = path(QStringLiteral("fifo"));
        QCOMPARE(::mkfifo(QFile::encodeName(name).constData(), 0600), 0);
        reader.reset(::open(QFile::encodeName(name).constData(), O_RDONLY | O_NONBLOCK));
    } else {
        int ends[2];
        QCOMPARE(::pipe(ends), 0);
        reader.reset(ends[0]);
        writer.reset(ends[1]);
        name = QStringLiteral("/dev/fd/%1").arg(writer.get());
    }
    QVERIFY(reader.isOpen());
    OutputFile file(name);
    QVERIFY(file.device()->open(QIODevice::WriteOnly));
    reader.close();
    {
        const SignalIgnored brokenPipe(SIGPIPE);
        QCOMPARE(file.device()->write("nobody reads this\n"), qint64(-1));
    }
    QVERIFY(!file.commit());
    QVERIFY(file.readerWentAway());
    QCOMPARE(file.errorString(), reasonText(EPIPE));
}

QTEST_GUILESS_MAIN(tst_OutputFile)
#include "tst_outputfile.moc"
