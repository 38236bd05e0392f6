#include "programrun.h"

#include <QTemporaryDir>
#include <QtTest>

// The program's command line as a user meets it: typos answered with what
// was likely meant, help on each command however asked for, help whose
// paths are never broken, and a device or pipe named as the recording.
class tst_CommandLine : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void typos_data();
    void typos();
    void helpCommand_data();
    void helpCommand();
    void defaultFilesWholeInHelp_data();
    void defaultFilesWholeInHelp();
    void deviceAsTheRecording_data();
    void deviceAsTheRecording();

private:
    QString path(const QString &name) const { return dir->filePath(name); }

    std::unique_ptr<QTemporaryDir> dir;
};

namespace {

const QString program = QStringLiteral(ASCIIEXPORT_PROGRAM);
const QString plugin = QStringLiteral(ASCIIEXPORTER_PLUGIN);

const QStringList commands = {"export", "settings", "options", "info", "generate", "convert"};

QByteArray firstLine(const QByteArray &text)
{
    return text.left(text.indexOf('\n'));
}

} // namespace

void tst_CommandLine::init()
{
    dir = std::make_unique<QTemporaryDir>();
    QVERIFY(dir->isValid());
}

void tst_CommandLine::cleanup()
{
    dir.reset();
}

void tst_CommandLine::typos_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");

    QTest::newRow("a command") << QStringList{"exprot", "walk.jsonl"}
                               << QByteArray("asciiexport: unknown command \"exprot\"; did you "
                                             "mean \"export\"?");
    QTest::newRow("a command, case aside")
        << QStringList{"Settings"}
        << QByteArray("asciiexport: unknown command \"Settings\"; did you mean \"settings\"?");
    QTest::newRow("a command that is like none")
        << QStringList{"transcode"} << QByteArray("asciiexport: unknown command \"transcode\"");
    QTest::newRow("an option") << QStringList{"export", "--ouput", "x.txt", "walk.jsonl"}
                               << QByteArray("asciiexport export: unknown option \"--ouput\"; did "
                                             "you mean \"--output\"?");
    QTest::newRow("an option of generate")
        << QStringList{"generate", "--sed", "3", "-o", "x"}
        << QByteArray("asciiexport generate: unknown option \"--sed\"; did you mean \"--seed\"?");
    QTest::newRow("an option of info")
        << QStringList{"info", "--recordng", "x"}
        << QByteArray(
               "asciiexport info: unknown option \"--recordng\"; did you mean \"--recording\"?");
    QTest::newRow("a letter too many")
        << QStringList{"export", "--quiett", "walk.jsonl"}
        << QByteArray("asciiexport export: unknown option \"--quiett\"; did you mean \"--quiet\"?");
    QTest::newRow("an option that is like none")
        << QStringList{"export", "--fast", "walk.jsonl"}
        << QByteArray("asciiexport export: Unknown option 'fast'.");
    QTest::newRow("help on a misspelt command")
        << QStringList{"help", "exprot"}
        << QByteArray("asciiexport: unknown command \"exprot\"; did you mean \"export\"?");
}

void tst_CommandLine::typos()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, message);

    const ProgramRun result = ProgramRun::start(program, arguments, dir->path());
    QCOMPARE(result.status, 2);
    QCOMPARE(firstLine(result.err), message);
    QCOMPARE(result.out, QByteArray());
}

void tst_CommandLine::helpCommand_data()
{
    QTest::addColumn<QString>("command");
    for (const QString &command : commands)
        QTest::newRow(qPrintable(command)) << command;
}

// "help COMMAND" is "COMMAND --help", not the overview.
void tst_CommandLine::helpCommand()
{
    QFETCH(QString, command);

    const ProgramRun asked = ProgramRun::start(program, {"help", command}, dir->path());
    const ProgramRun option = ProgramRun::start(program, {command, "--help"}, dir->path());
    QCOMPARE(asked.status, 0);
    QCOMPARE(option.status, 0);
    QVERIFY2(asked.out.startsWith("Usage: asciiexport " + command.toUtf8() + " [options]"),
             asked.out.constData());
    QCOMPARE(asked.out, option.out);
    QCOMPARE(asked.err, QByteArray());
}

void tst_CommandLine::defaultFilesWholeInHelp_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("takesFiles");
    for (const QString &command : commands) {
        const bool takesFiles =
            command != QLatin1String("generate") && command != QLatin1String("convert");
        QTest::newRow(qPrintable(command)) << command << takesFiles;
    }
}

// Qt breaks a word longer than an option's description column anywhere; the
// default plug-in and settings files, long paths, stand on lines of their own.
void tst_CommandLine::defaultFilesWholeInHelp()
{
    QFETCH(QString, command);
    QFETCH(bool, takesFiles);

    const QString plugins =
        path(QStringLiteral("a-folder-with-a-rather-long-name/for-the-plug-ins-of-this-test"));
    QVERIFY(QDir().mkpath(plugins));
    QVERIFY(QFile::copy(plugin, plugins + QStringLiteral("/libasciiexporter.so")));
    const QString config = path(QStringLiteral("another-long-folder-name/of-the-user's-settings"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ASCIIEXPORT_PLUGIN_PATH"), plugins);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config);

    const ProgramRun result =
        ProgramRun::start(program, {command, QStringLiteral("--help")}, dir->path(), environment);
    QCOMPARE(result.status, 0);
    const QByteArray defaults = "\nDefault files:\n  plug-in:  " + QFile::encodeName(plugins)
        + "/libasciiexporter.so\n  settings: " + QFile::encodeName(config)
        + "/asciiexport/asciiexport.ini\n";
    QCOMPARE(result.out.endsWith(defaults), takesFiles);
    QVERIFY2(!takesFiles || result.out.count(QFile::encodeName(plugins)) == 1,
             result.out.constData());
    // Everything else fits a terminal of 80 columns, as Qt wraps it.
    const QList<QByteArray> lines =
        result.out.left(result.out.size() - defaults.size()).split('\n');
    for (const QByteArray &line : lines)
        QVERIFY2(line.size() <= 80, line.constData());
}

void tst_CommandLine::deviceAsTheRecording_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("written");

    QTest::newRow("/dev/stdin from a file") << "exec \"$0\" \"$@\" /dev/stdin < walk.jsonl"
                                            << "stdin-001.txt";
    QTest::newRow("/dev/stdin from a pipe") << "cat walk.jsonl | \"$0\" \"$@\" /dev/stdin"
                                            << "stdin-001.txt";
    QTest::newRow("a descriptor of the program") << "exec \"$0\" \"$@\" /dev/fd/3 3< walk.jsonl"
                                                 << "3-001.txt";
}

// The output of a recording read through /dev goes into the current folder,
// not into /dev (where root could write it).
void tst_CommandLine::deviceAsTheRecording()
{
    QFETCH(QString, script);
    QFETCH(QString, written);

    const ProgramRun generated = ProgramRun::start(
        program, {"generate", "--samples", "20", "-o", path("walk.jsonl")}, dir->path());
    QCOMPARE(generated.status, 0);
    const QString inDev = QStringLiteral("/dev/") + written;
    QVERIFY2(!QFile::exists(inDev), qPrintable(inDev));
    const ProgramRun result = ProgramRun::inShell(
        script, program,
        {"export", "--quiet", "--settings", path("settings.ini"), "-o", path("expected.txt")},
        dir->path());
    QCOMPARE(result.status, 0);

    const ProgramRun named = ProgramRun::inShell(
        script, program, {"export", "--quiet", "--settings", path("settings.ini")}, dir->path());
    QCOMPARE(named.err, QByteArray());
    QCOMPARE(named.status, 0);
    const bool leftInDev = QFile::exists(inDev);
    if (leftInDev)
        QFile::remove(inDev);
    QVERIFY2(!leftInDev, qPrintable(inDev));
    QFile file(path(written));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
    QFile expected(path("expected.txt"));
    QVERIFY(expected.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), expected.readAll());
}

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_commandline.moc"
