#include "outputnamer.h"

#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

// The output file of each recording: the pattern expanded with the
// recording's name, number, the moment and its properties, in the output
// folder or beside the recording; the names refused; the folders made.
class tst_OutputNamer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void names_data();
    void names();
    void refused_data();
    void refused();
    void foldersMade_data();
    void foldersMade();
    void folderInTheWay();

private:
    // @p name with "{dir}" standing for the test's folder.
    QString inDir(QString name) const { return name.replace(QLatin1String("{dir}"), dir->path()); }

    std::unique_ptr<QTemporaryDir> dir;
    QString previousFolder;
};

namespace {

// The moment the program started, for <date> and <time>.
const QDateTime started(QDate(2026, 11, 21), QTime(9, 5, 42));

QVariantMap walkProperties()
{
    return {{QStringLiteral("DeviceId"), QStringLiteral("0123ABCD")},
            {QStringLiteral("ProductCode"), QStringLiteral("T100")},
            {QStringLiteral("FilterProfile"), QStringLiteral("general")}};
}

QVariantMap with(const QString &key, const QString &value)
{
    QVariantMap properties = walkProperties();
    properties.insert(key, value);
    return properties;
}

} // namespace

void tst_OutputNamer::init()
{
    dir = std::make_unique<QTemporaryDir>();
    QVERIFY(dir->isValid());
    // Standard input's file goes to the current folder.
    previousFolder = QDir::currentPath();
    QVERIFY(QDir::setCurrent(dir->path()));
}

void tst_OutputNamer::cleanup()
{
    QDir::setCurrent(previousFolder);
    dir.reset();
}

void tst_OutputNamer::names_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("outputDir");
    QTest::addColumn<QString>("recording");
    QTest::addColumn<int>("sequenceNumber");
    QTest::addColumn<QVariantMap>("properties");
    QTest::addColumn<QString>("expected");

    const QVariantMap walk = walkProperties();
    QTest::newRow("every placeholder, beside the recording")
        << "<inputfile>_<seqnr>_<date>_<time>_<deviceid>_<productcode>_<filterprofile>"
        << "txt"
        << ""
        << "{dir}/rec/walk.jsonl" << 7 << walk
        << "{dir}/rec/walk_007_2026-11-21_09h05_0123ABCD_T100_general.txt";
    QTest::newRow("the default pattern in the output folder")
        << "<inputfile>-<seqnr>"
        << "txt"
        << "{dir}/out"
        << "{dir}/rec/walk.jsonl" << 1 << walk << "{dir}/out/walk-001.txt";
    QTest::newRow("a relative output folder is the current folder's")
        << "<inputfile>-<seqnr>"
        << "txt"
        << "out"
        << "{dir}/rec/walk.jsonl" << 2 << walk << "{dir}/out/walk-002.txt";
    QTest::newRow("a relative recording lies in the current folder")
        << "<inputfile>"
        << "txt"
        << ""
        << "walk.jsonl" << 1 << walk << "{dir}/walk.txt";
    QTest::newRow("standard input is stdin, in the current folder")
        << "<inputfile>-<seqnr>"
        << "txt"
        << ""
        << "-" << 1 << walk << "{dir}/stdin-001.txt";
    QTest::newRow("standard input in the output folder")
        << "<inputfile>-<seqnr>"
        << "txt"
        << "{dir}/out"
        << "-" << 3 << walk << "{dir}/out/stdin-003.txt";
    // A device or pipe has no folder to write beside: /dev is the system's.
    QTest::newRow("a device is named after itself, in the current folder")
        << "<inputfile>-<seqnr>"
        << "txt"
        << ""
        << "/dev/null" << 1 << walk << "{dir}/null-001.txt";
    QTest::newRow("standard input by its device name, in the current folder")
        << "<inputfile>-<seqnr>"
        << "txt"
        << ""
        << "/dev/stdin" << 1 << walk << "{dir}/stdin-001.txt";
    QTest::newRow("a descriptor of this process, in the current folder")
        << "<inputfile>"
        << "txt"
        << ""
        << "/proc/self/fd/0" << 1 << walk << "{dir}/0.txt";
    QTest::newRow("a file in a folder below /dev, beside it")
        << "<inputfile>"
        << "txt"
        << ""
        << "/dev/shm/walk.jsonl" << 1 << walk << "/dev/shm/walk.txt";
    QTest::newRow("a pipe, in the current folder")
        << "<inputfile>"
        << "txt"
        << ""
        << "{dir}/rec/pipe.jsonl" << 1 << walk << "{dir}/pipe.txt";
    QTest::newRow("a device in the output folder")
        << "<inputfile>"
        << "txt"
        << "{dir}/out"
        << "/dev/zero" << 1 << walk << "{dir}/out/zero.txt";
    QTest::newRow("only the last suffix of the recording goes")
        << "<inputfile>"
        << "txt"
        << ""
        << "{dir}/walk.2026.jsonl" << 1 << walk << "{dir}/walk.2026.txt";
    QTest::newRow("a number of four digits")
        << "<seqnr>"
        << "txt"
        << ""
        << "{dir}/walk.jsonl" << 1234 << walk << "{dir}/1234.txt";
    QTest::newRow("the plug-in's extension") << "<inputfile>"
                                             << "csv"
                                             << ""
                                             << "{dir}/walk.jsonl" << 1 << walk << "{dir}/walk.csv";
    QTest::newRow("a property that is missing is empty")
        << "<inputfile>-<deviceid>"
        << "txt"
        << ""
        << "{dir}/walk.jsonl" << 1 << QVariantMap() << "{dir}/walk-.txt";
    QTest::newRow("a slash in a property becomes an underscore")
        << "<deviceid>"
        << "txt"
        << ""
        << "{dir}/walk.jsonl" << 1 << with(QStringLiteral("DeviceId"), QStringLiteral("a/b/c"))
        << "{dir}/a_b_c.txt";
    QTest::newRow("a NUL in a property becomes an underscore")
        << "<filterprofile>"
        << "txt"
        << ""
        << "{dir}/walk.jsonl" << 1
        << with(QStringLiteral("FilterProfile"), QStringLiteral("x") + QChar(QChar::Null) + "y")
        << "{dir}/x_y.txt";
    QTest::newRow("a property cannot climb out of the folder")
        << "<productcode>"
        << "txt"
        << "{dir}/out"
        << "{dir}/walk.jsonl" << 1
        << with(QStringLiteral("ProductCode"), QStringLiteral("../../etc/passwd"))
        << "{dir}/out/.._.._etc_passwd.txt";
    QTest::newRow("the folders of the pattern are kept")
        << "<date>/<deviceid>/<inputfile>"
        << "txt"
        << "{dir}/out"
        << "{dir}/walk.jsonl" << 1 << walk << "{dir}/out/2026-11-21/0123ABCD/walk.txt";
    QTest::newRow("the pattern's own climbing is the pattern's")
        << "../<inputfile>"
        << "txt"
        << "{dir}/out"
        << "{dir}/walk.jsonl" << 1 << walk << "{dir}/walk.txt";
    QTest::newRow("the pattern's own \".\" folder is the pattern's")
        << "./<inputfile>"
        << "txt"
        << "{dir}/out"
        << "{dir}/walk.jsonl" << 1 << walk << "{dir}/out/walk.txt";
    QTest::newRow("a line break in a property the pattern does not name is no matter")
        << "<inputfile>"
        << "txt"
        << ""
        << "{dir}/walk.jsonl" << 1 << with(QStringLiteral("DeviceId"), QStringLiteral("a\nb"))
        << "{dir}/walk.txt";
    QTest::newRow("a file name that starts with a dot is a name")
        << "<deviceid>"
        << "txt"
        << ""
        << "{dir}/walk.jsonl" << 1 << with(QStringLiteral("DeviceId"), QStringLiteral(".hidden"))
        << "{dir}/.hidden.txt";
}

void tst_OutputNamer::names()
{
    QFETCH(QString, pattern);
    QFETCH(QString, extension);
    QFETCH(QString, outputDir);
    QFETCH(QString, recording);
    QFETCH(int, sequenceNumber);
    QFETCH(QVariantMap, properties);
    QFETCH(QString, expected);

    // The pipe that rows may name.
    QVERIFY(QDir(dir->path()).mkdir(QStringLiteral("rec")));
    QCOMPARE(::mkfifo(QFile::encodeName(inDir(QStringLiteral("{dir}/rec/pipe.jsonl"))), 0600), 0);

    const OutputNamer namer(pattern, extension, inDir(outputDir), started);
    QString problem;
    QCOMPARE(namer.fileName(inDir(recording), sequenceNumber, properties, &problem),
             inDir(expected));
    QCOMPARE(problem, QString());
}

void tst_OutputNamer::refused_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QVariantMap>("properties");
    QTest::addColumn<QString>("expected");

    const QString noFile = QStringLiteral(
        "{dir}/walk.jsonl: the output file name pattern \"%1\" gives the file name \"%2\" for "
        "this recording, which names no file");
    const QString noFolder = QStringLiteral(
        "{dir}/walk.jsonl: the output file name pattern \"%1\" gives the folder name \"%2\" for "
        "this recording; a recording's properties may not remove or climb a folder level");
    const QString lineBreak = QStringLiteral(
        "{dir}/walk.jsonl: the property %1 holds a line break, which the output file name "
        "pattern \"%2\" would put into the file name");

    QTest::newRow("a file name that a property leaves empty")
        << "<deviceid>" << with(QStringLiteral("DeviceId"), QString())
        << noFile.arg("<deviceid>", ".txt");
    QTest::newRow("a file name that a property makes \".\"")
        << "<deviceid>" << with(QStringLiteral("DeviceId"), QStringLiteral("."))
        << noFile.arg("<deviceid>", "..txt");
    QTest::newRow("a file name that a property makes \"..\"")
        << "out/<productcode>" << with(QStringLiteral("ProductCode"), QStringLiteral(".."))
        << noFile.arg("out/<productcode>", "...txt");
    QTest::newRow("a pattern that names no file by itself")
        << "sub/" << walkProperties() << noFile.arg("sub/", ".txt");
    QTest::newRow("a folder that a property leaves empty")
        << "<deviceid>/<inputfile>" << with(QStringLiteral("DeviceId"), QString())
        << noFolder.arg("<deviceid>/<inputfile>", "");
    QTest::newRow("a folder that a property makes \".\"")
        << "<filterprofile>/<inputfile>" << with(QStringLiteral("FilterProfile"), ".")
        << noFolder.arg("<filterprofile>/<inputfile>", ".");
    QTest::newRow("a folder that a property makes \"..\", climbing")
        << "a/<deviceid>/<inputfile>" << with(QStringLiteral("DeviceId"), QStringLiteral(".."))
        << noFolder.arg("a/<deviceid>/<inputfile>", "..");
    QTest::newRow("a line break in the device id")
        << "<inputfile>-<deviceid>" << with(QStringLiteral("DeviceId"), QStringLiteral("a\nb"))
        << lineBreak.arg("DeviceId", "<inputfile>-<deviceid>");
    QTest::newRow("a carriage return in the product code")
        << "<productcode>" << with(QStringLiteral("ProductCode"), QStringLiteral("T\r100"))
        << lineBreak.arg("ProductCode", "<productcode>");
    QTest::newRow("a line break in the filter profile of a folder")
        << "<filterprofile>/<inputfile>"
        << with(QStringLiteral("FilterProfile"), QStringLiteral("general\n"))
        << lineBreak.arg("FilterProfile", "<filterprofile>/<inputfile>");
}

void tst_OutputNamer::refused()
{
    QFETCH(QString, pattern);
    QFETCH(QVariantMap, properties);
    QFETCH(QString, expected);

    const OutputNamer namer(pattern, QStringLiteral("txt"), QString(), started);
    QString problem;
    QCOMPARE(namer.fileName(inDir("{dir}/walk.jsonl"), 1, properties, &problem), QString());
    QCOMPARE(problem, inDir(expected));
}

void tst_OutputNamer::foldersMade_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("outputDir");
    QTest::addColumn<QString>("recording");
    QTest::addColumn<QStringList>("made");
    QTest::addColumn<QStringList>("notMade");

    QTest::newRow("the pattern's folders below the output folder")
        << "a/b/<inputfile>"
        << "{dir}/out"
        << "{dir}/rec/walk.jsonl" << QStringList{"{dir}/out/a/b"} << QStringList{"{dir}/rec/a"};
    QTest::newRow("below the recording's folder without an output folder")
        << "sub/<inputfile>"
        << ""
        << "{dir}/rec/walk.jsonl" << QStringList{"{dir}/rec/sub"} << QStringList{"{dir}/sub"};
    QTest::newRow("below the current folder for standard input")
        << "sub/<inputfile>"
        << ""
        << "-" << QStringList{"{dir}/sub"} << QStringList();
    QTest::newRow("not above the output folder")
        << "../up/<inputfile>"
        << "{dir}/out"
        << "{dir}/rec/walk.jsonl" << QStringList() << QStringList{"{dir}/up"};
    QTest::newRow("not beside the output folder")
        << "../out2/<inputfile>"
        << "{dir}/out"
        << "{dir}/rec/walk.jsonl" << QStringList() << QStringList{"{dir}/out2"};
    QTest::newRow("no folder for a name in the output folder itself")
        << "<inputfile>"
        << "{dir}/out"
        << "{dir}/rec/walk.jsonl" << QStringList() << QStringList{"{dir}/out/walk"};
}

void tst_OutputNamer::foldersMade()
{
    QFETCH(QString, pattern);
    QFETCH(QString, outputDir);
    QFETCH(QString, recording);
    QFETCH(QStringList, made);
    QFETCH(QStringList, notMade);

    // The output folder and the recording's folder exist, as they do when
    // the program names a file.
    QVERIFY(QDir().mkpath(inDir("{dir}/out")));
    QVERIFY(QDir().mkpath(inDir("{dir}/rec")));
    const OutputNamer namer(pattern, QStringLiteral("txt"), inDir(outputDir), started);
    QString problem;
    const QString fileName = namer.fileName(inDir(recording), 1, walkProperties(), &problem);
    QVERIFY2(!fileName.isEmpty(), qPrintable(problem));
    for (const QString &folder : qAsConst(made))
        QVERIFY2(!QFileInfo::exists(inDir(folder)), qPrintable(folder));

    QVERIFY2(namer.makeFolders(inDir(recording), fileName, &problem), qPrintable(problem));
    for (const QString &folder : qAsConst(made))
        QVERIFY2(QFileInfo(inDir(folder)).isDir(), qPrintable(folder));
    for (const QString &folder : qAsConst(notMade))
        QVERIFY2(!QFileInfo::exists(inDir(folder)), qPrintable(folder));
}

void tst_OutputNamer::folderInTheWay()
{
    // A file where the pattern wants a folder: even root cannot make it.
    QVERIFY(QDir().mkpath(inDir("{dir}/out")));
    QFile blocking(inDir("{dir}/out/a"));
    QVERIFY(blocking.open(QIODevice::WriteOnly));
    blocking.close();

    const OutputNamer namer(QStringLiteral("a/b/<inputfile>"), QStringLiteral("txt"),
                            inDir("{dir}/out"), started);
    QString problem;
    const QString fileName =
        namer.fileName(inDir("{dir}/walk.jsonl"), 1, walkProperties(), &problem);
    QCOMPARE(fileName, inDir("{dir}/out/a/b/walk.txt"));
    QVERIFY(!namer.makeFolders(inDir("{dir}/walk.jsonl"), fileName, &problem));
    const QString start = inDir("{dir}/walk.jsonl: the folder {dir}/out/a/b cannot be made: ");
    QVERIFY2(problem.startsWith(start) && problem.size() > start.size(), qPrintable(problem));
    QVERIFY(QFileInfo(inDir("{dir}/out/a")).isFile());
}

QTEST_GUILESS_MAIN(tst_OutputNamer)
#include "tst_outputnamer.moc"
