#include "asciiexporter.h"
#include "settingscatalogue.h"

#include <settingssynchronizer.h>
#include <testsource.h>

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

class tst_AsciiExporter : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void name();
    void metaObject();
    void deletionThroughEitherBase();
    void unopenableOutput_data();
    void unopenableOutput();
    void writeSampleBeforeStart();
    void writeSampleAfterFinish();
    void finishTwice();
    void finishWithoutStart();
    void zeroSamples();
    void sampleWithoutRowAddsNothing();
    void deviceIsOpenedWriteOnlyAndLeftOpen();
    void existingFileIsReplaced();

private:
    QString readAll(const QString &fileName);
    QString headerOfEmptySource() const;

    QTemporaryDir *dir = nullptr;
    SettingsSynchronizer *store = nullptr;
    TestSource *source = nullptr;
};

void tst_AsciiExporter::init()
{
    dir = new QTemporaryDir;
    QVERIFY(dir->isValid());
    store =
        new SettingsSynchronizer(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    // no data group: the column-header line is empty
    store->setSetting(QStringLiteral("exportPacketCounter"), false);
    store->setSetting(QStringLiteral("exportSampleTimeFine"), false);
    store->setSetting(QStringLiteral("exportOrientation"), QStringLiteral("None"));
    source = new TestSource;
}

void tst_AsciiExporter::cleanup()
{
    delete source;
    delete store;
    delete dir;
}

QString tst_AsciiExporter::readAll(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("<unreadable>");
    return QString::fromUtf8(file.readAll());
}

QString tst_AsciiExporter::headerOfEmptySource() const
{
    return QStringLiteral("// Start Time: \n"
                          "// Update Rate: Various\n"
                          "// Filter Profile: Error: No KVA filter profile\n"
                          "// Option Flags: Error: No option flags\n"
                          "// Firmware Version: Error: No firmware version\n");
}

void tst_AsciiExporter::name()
{
    AsciiExporter exporter(source, store);
    QCOMPARE(exporter.name(), QStringLiteral("ASCII"));
}

void tst_AsciiExporter::metaObject()
{
    AsciiExporter exporter(source, store);
    QCOMPARE(exporter.metaObject()->className(), "AsciiExporter");
    QCOMPARE(exporter.metaObject()->superClass(), &AbstractExporter::staticMetaObject);
    QCOMPARE(exporter.qt_metacast("AsciiExporter"), static_cast<void *>(&exporter));
    QVERIFY(exporter.qt_metacast("AbstractExporter"));
    QVERIFY(!exporter.qt_metacast("AsciiExporterFactory"));
    QCOMPARE(exporter.metaObject()->methodCount(),
             AbstractExporter::staticMetaObject.methodCount());
    QVERIFY(qobject_cast<AbstractExporter *>(&exporter));
}

void tst_AsciiExporter::deletionThroughEitherBase()
{
    bool destroyed = false;
    AbstractPlugin *asPlugin = new AsciiExporter(source, store);
    connect(dynamic_cast<QObject *>(asPlugin), &QObject::destroyed, this,
            [&] { destroyed = true; });
    delete asPlugin;
    QVERIFY(destroyed);

    destroyed = false;
    QObject *asObject = new AsciiExporter(source, store);
    connect(asObject, &QObject::destroyed, this, [&] { destroyed = true; });
    delete asObject;
    QVERIFY(destroyed);
}

void tst_AsciiExporter::unopenableOutput_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("a path in a missing folder") << "missing";
    QTest::newRow("a path in a read-only folder") << "readonly";
    QTest::newRow("a folder in place of the file") << "folder";
}

void tst_AsciiExporter::unopenableOutput()
{
    QFETCH(QString, kind);

    QString fileName;
    if (kind == QLatin1String("missing")) {
        fileName = dir->filePath(QStringLiteral("absent/out.txt"));
    } else if (kind == QLatin1String("folder")) {
        fileName = dir->path();
    } else {
        const QString folder = dir->filePath(QStringLiteral("locked"));
        QVERIFY(QDir().mkdir(folder));
        QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
        fileName = folder + QStringLiteral("/out.txt");
        if (::geteuid() == 0) {
            // Permissions do not hold back root; a pseudo file system does.
            fileName = QStringLiteral("/proc/asciiexporter-test.txt");
        }
    }

    AsciiExporter exporter(source, store);
    QFile file(fileName);
    QVERIFY(!exporter.start(&file));
    QCOMPARE(source->messages.size(), 1);
    QCOMPARE(source->messages.first().first, 2);
    QCOMPARE(source->messages.first().second, fileName);
    QVERIFY(!exporter.writeSample());
    QVERIFY(exporter.finish());
    QCOMPARE(source->messages.size(), 1);
    if (kind != QLatin1String("folder"))
        QVERIFY(!QFile::exists(fileName));
}

void tst_AsciiExporter::writeSampleBeforeStart()
{
    AsciiExporter exporter(source, store);
    QVERIFY(!exporter.writeSample());
    QVERIFY(source->messages.isEmpty());
}

void tst_AsciiExporter::writeSampleAfterFinish()
{
    const QString fileName = dir->filePath(QStringLiteral("out.txt"));
    QFile file(fileName);
    AsciiExporter exporter(source, store);
    QVERIFY(exporter.start(&file));
    QVERIFY(exporter.finish());
    const QString written = readAll(fileName);
    QVERIFY(!exporter.writeSample());
    file.close();
    QCOMPARE(readAll(fileName), written);
}

void tst_AsciiExporter::finishTwice()
{
    const QString fileName = dir->filePath(QStringLiteral("out.txt"));
    QFile file(fileName);
    AsciiExporter exporter(source, store);
    QVERIFY(exporter.start(&file));
    QVERIFY(exporter.finish());
    QVERIFY(exporter.finish());
    file.close();
    QCOMPARE(readAll(fileName), headerOfEmptySource() + QStringLiteral("\n"));
}

void tst_AsciiExporter::finishWithoutStart()
{
    AsciiExporter exporter(source, store);
    QVERIFY(exporter.finish());
}

void tst_AsciiExporter::zeroSamples()
{
    const QString fileName = dir->filePath(QStringLiteral("out.txt"));
    QFile file(fileName);
    AsciiExporter exporter(source, store);
    QVERIFY(exporter.start(&file));
    QVERIFY(exporter.finish());
    file.close();
    // the header block, then the (empty) column-header line with its line end
    QCOMPARE(readAll(fileName), headerOfEmptySource() + QStringLiteral("\n"));
    QVERIFY(source->messages.isEmpty());
}

void tst_AsciiExporter::sampleWithoutRowAddsNothing()
{
    store->setSetting(QStringLiteral("exportPacketCounter"), true);
    const QString fileName = dir->filePath(QStringLiteral("out.txt"));
    QFile file(fileName);
    AsciiExporter exporter(source, store);
    QVERIFY(exporter.start(&file));
    source->sample.packetCounter = 7;
    QVERIFY(exporter.writeSample());
    QVERIFY(exporter.writeSample());
    QVERIFY(exporter.finish());
    file.close();
    QCOMPARE(readAll(fileName), headerOfEmptySource() + QStringLiteral("PacketCounter\n"));
}

void tst_AsciiExporter::deviceIsOpenedWriteOnlyAndLeftOpen()
{
    QFile file(dir->filePath(QStringLiteral("out.txt")));
    AsciiExporter exporter(source, store);
    QVERIFY(exporter.start(&file));
    QCOMPARE(file.openMode(), QIODevice::OpenMode(QIODevice::WriteOnly));
    QVERIFY(exporter.finish());
    QVERIFY(file.isOpen());
}

void tst_AsciiExporter::existingFileIsReplaced()
{
    const QString fileName = dir->filePath(QStringLiteral("out.txt"));
    {
        QFile old(fileName);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write(QByteArray(10000, 'x'));
    }
    QFile file(fileName);
    AsciiExporter exporter(source, store);
    QVERIFY(exporter.start(&file));
    QVERIFY(exporter.finish());
    file.close();
    QCOMPARE(readAll(fileName), headerOfEmptySource() + QStringLiteral("\n"));
}

QTEST_GUILESS_MAIN(tst_AsciiExporter)
#include "tst_asciiexporter.moc"
