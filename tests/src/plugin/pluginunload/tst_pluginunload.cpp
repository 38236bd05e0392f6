#include <abstractexporter.h>
#include <abstractexporterfactory.h>
#include <abstractoptionspage.h>
#include <exportrun.h>

#include <QApplication>
#include <QFile>
#include <QPluginLoader>
#include <QtTest>

#include <memory>

#include <unistd.h>

#if __has_include(<valgrind/valgrind.h>)
#include <valgrind/valgrind.h>
#else
#define RUNNING_ON_VALGRIND 0
#endif

// Loading, using and unloading the plug-in over and over, as a host that
// rescans its plug-ins does. A program of its own, so that no other loader
// keeps the module loaded.
class tst_PluginUnload : public QObject
{
    Q_OBJECT

private slots:
    void loadUseUnloadWithoutGrowth();
};

namespace {

const QString pluginPath = QStringLiteral(ASCIIEXPORTER_PLUGIN);

qint64 residentBytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
}

void cycle()
{
    QPluginLoader loader(pluginPath);
    QVERIFY2(loader.load(), qPrintable(loader.errorString()));
    auto *factory = qobject_cast<AbstractExporterFactory *>(loader.instance());
    QVERIFY(factory);
    TestSource source;
    source.properties = recordingProperties();
    std::unique_ptr<AbstractExporter> exporter(factory->createExporter(&source));
    QVERIFY(!exportSamples(exporter.get(), &source, recordingSamples()).isEmpty());
    exporter.reset();
    qDeleteAll(factory->optionsPages());
    QVERIFY(loader.unload());
    QVERIFY(!loader.isLoaded());
}

} // namespace

void tst_PluginUnload::loadUseUnloadWithoutGrowth()
{
    // the first rounds fill caches of Qt's own
    for (int i = 0; i < 10; ++i) {
        cycle();
        if (QTest::currentTestFailed())
            return;
    }
    const qint64 before = residentBytes();
    for (int i = 0; i < 100; ++i) {
        cycle();
        if (QTest::currentTestFailed())
            return;
    }
    const qint64 growth = residentBytes() - before;
    qInfo("resident memory grew by %lld bytes over 100 rounds", growth);
#ifdef __SANITIZE_ADDRESS__
    // The sanitizer holds freed blocks back and keeps a record of every
    // allocation, so resident memory grows whatever the plug-in does; its
    // leak check at exit takes the place of this one.
    QSKIP("resident memory is not the program's own under AddressSanitizer");
#else
    // So does memcheck, which holds freed blocks back to catch their use.
    if (RUNNING_ON_VALGRIND)
        QSKIP("resident memory is not the program's own under valgrind");
    QVERIFY2(growth < 1024 * 1024, qPrintable(QStringLiteral("grew by %1 bytes").arg(growth)));
#endif
}

QTEST_MAIN(tst_PluginUnload)
#include "tst_pluginunload.moc"
