#include "programrun.h"
#include "progressbar.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

// The progress bar: its line at each width, with the rate and the time left
// once they are known; and the program's bar on a terminal of 50 columns.
class tst_ProgressBar : public QObject
{
    Q_OBJECT

private slots:
    void line_data();
    void line();
    void neverWiderThanTheTerminal();
    void onANarrowTerminal();
};

namespace {

const QString program = QStringLiteral(ASCIIEXPORT_PROGRAM);

// Each line drawn: the text between carriage returns and line breaks.
QList<QByteArray> redraws(const QByteArray &written)
{
    QList<QByteArray> lines;
    for (const QByteArray &line : written.split('\r')) {
        for (const QByteArray &part : line.split('\n')) {
            if (!part.trimmed().isEmpty())
                lines.append(part);
        }
    }
    return lines;
}

} // namespace

void tst_ProgressBar::line_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<qint64>("done");
    QTest::addColumn<qint64>("total");
    QTest::addColumn<double>("bytesPerSecond");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("expected");

    QTest::newRow("halfway, the rate not yet known")
        << "walk.jsonl" << qint64(500) << qint64(1000) << 0.0 << 80
        << "[###############               ]  50% walk.jsonl";
    QTest::newRow("halfway at 2.5 MB/s")
        << "walk.jsonl" << qint64(5000000) << qint64(10000000) << 2.5e6 << 80
        << "[###############               ]  50%  2.5 MB/s  0:02 left walk.jsonl";
    QTest::newRow("the time left in hours")
        << "big.jsonl" << qint64(1000000000) << qint64(5000000000) << 1e5 << 80
        << "[######                        ]  20%  100.0 kB/s  11:06:40 left big.jsonl";
    QTest::newRow("the time left rounds up")
        << "walk.jsonl" << qint64(0) << qint64(1001) << 1000.0 << 80
        << "[                              ]   0%  1.0 kB/s  0:02 left walk.jsonl";
    QTest::newRow("done: no time left")
        << "walk.jsonl" << qint64(1000) << qint64(1000) << 5e3 << 80
        << "[##############################] 100%  5.0 kB/s walk.jsonl";
    QTest::newRow("a pipe: bytes read instead of a bar")
        << "stdin" << qint64(1234567) << qint64(0) << 3.4e6 << 80 << "1.2 MB  3.4 MB/s stdin";
    QTest::newRow("50 columns: a shorter bar, the label's end")
        << "recordings/of/a/long/walk/through/town.jsonl" << qint64(500) << qint64(1000) << 2e6
        << 50 << "[####    ]  50%  2.0 MB/s  0:01 left ...own.jsonl";
    QTest::newRow("30 columns: no bar")
        << "walk.jsonl" << qint64(500) << qint64(1000) << 2e6 << 30 << " 50%  2.0 MB/s  0:01 left";
    QTest::newRow("20 columns: the time left goes first")
        << "walk.jsonl" << qint64(500) << qint64(1000) << 2e6 << 20 << " 50%  2.0 MB/s";
    QTest::newRow("8 columns: the percentage alone")
        << "walk.jsonl" << qint64(500) << qint64(1000) << 2e6 << 8 << " 50%";
    QTest::newRow("4 columns: nothing")
        << "walk.jsonl" << qint64(500) << qint64(1000) << 2e6 << 4 << "";
}

void tst_ProgressBar::line()
{
    QFETCH(QString, label);
    QFETCH(qint64, done);
    QFETCH(qint64, total);
    QFETCH(double, bytesPerSecond);
    QFETCH(int, columns);
    QFETCH(QString, expected);

    QCOMPARE(ProgressBar::line(label, done, total, bytesPerSecond, columns), expected);
}

// A line as wide as the terminal would wrap at once: every line is shorter.
void tst_ProgressBar::neverWiderThanTheTerminal()
{
    const QString label = QStringLiteral("a/rather/long/name/of/a/recording.jsonl");
    for (int columns = 1; columns <= 140; ++columns) {
        for (const qint64 total : {qint64(0), qint64(123456789)}) {
            const QString text = ProgressBar::line(label, 12345678, total, 1.5e6, columns);
            QVERIFY2(text.size() < columns, qPrintable(QString::number(columns) + ": " + text));
        }
    }
}

// The program on a terminal of 50 columns: its bar fits.
void tst_ProgressBar::onANarrowTerminal()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const ProgramRun generated = ProgramRun::start(
        program, {"generate", "--samples", "20000", "-o", dir.filePath("walk.jsonl")}, dir.path());
    QCOMPARE(generated.status, 0);
    // the defaults, from a settings file that exists: no note about it
    QVERIFY(QFile(dir.filePath(QStringLiteral("settings.ini"))).open(QIODevice::WriteOnly));

    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    QVERIFY(terminal >= 0);
    QCOMPARE(::grantpt(terminal), 0);
    QCOMPARE(::unlockpt(terminal), 0);
    struct winsize size = {};
    size.ws_row = 24;
    size.ws_col = 50;
    QCOMPARE(::ioctl(terminal, TIOCSWINSZ, &size), 0);
    // The program writes its standard error onto the terminal, whose other
    // end this test reads while it runs.
    QProcess process;
    process.setStandardErrorFile(QString::fromLocal8Bit(::ptsname(terminal)));
    process.setWorkingDirectory(dir.path());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("COLUMNS"), QStringLiteral("200"));
    process.setProcessEnvironment(environment);
    process.setStandardOutputFile(dir.filePath("walk.txt"));
    process.start(program,
                  {"export", "--settings", dir.filePath("settings.ini"), "-o", "-",
                   dir.filePath("walk.jsonl")});
    QVERIFY(process.waitForStarted());
    QCOMPARE(::fcntl(terminal, F_SETFL, O_NONBLOCK), 0);
    QByteArray written;
    const auto drain = [&] {
        char buffer[4096];
        ssize_t count;
        while ((count = ::read(terminal, buffer, sizeof buffer)) > 0)
            written.append(buffer, int(count));
    };
    while (!process.waitForFinished(20))
        drain();
    drain();
    ::close(terminal);
    QCOMPARE(process.exitCode(), 0);

    const QList<QByteArray> lines = redraws(written);
    QVERIFY2(!lines.isEmpty(), written.constData());
    QVERIFY2(lines.first().startsWith("[") && lines.first().contains("%"), written.constData());
    for (const QByteArray &line : lines)
        QVERIFY2(line.size() < 50, line.constData());
}

QTEST_GUILESS_MAIN(tst_ProgressBar)
#include "tst_progressbar.moc"
