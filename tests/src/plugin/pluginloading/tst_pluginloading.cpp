#include <abstractexporter.h>
#include <abstractexporterfactory.h>
#include <abstractoptionspage.h>
#include <exportrun.h>
#include <settingssynchronizer.h>

#include <QApplication>
#include <QCborMap>
#include <QCborValue>
#include <QFile>
#include <QLibrary>
#include <QLibraryInfo>
#include <QPluginLoader>
#include <QPointer>
#include <QProcess>
#include <QtTest>

#include <memory>

// The plug-in as a host meets it: a file loaded with Qt's plug-in loader,
// reached only through the framework's interfaces.
class tst_PluginLoading : public QObject
{
    Q_OBJECT

private slots:
    void loadsAsAnExporterFactory();
    void metaData();
    void metaDataRecordInTheFile();
    void qtPluginInfoReadsTheRecord();
    void sameInstanceTwice();
    void newFactoryAfterDeletion();
    void castsByName_data();
    void castsByName();
    void names();
    void exportersShareOneStore();
    void pagesAreDistinct();
    void fileExtensionFollowsTheStore();
    void endToEndExport();

private:
    static QObject *instance(QPluginLoader &loader);
};

namespace {

const QString pluginPath = QStringLiteral(ASCIIEXPORTER_PLUGIN);

using InstanceFunction = QObject *(*)();

} // namespace

QObject *tst_PluginLoading::instance(QPluginLoader &loader)
{
    if (!loader.load()) {
        qWarning("%s", qPrintable(loader.errorString()));
        return nullptr;
    }
    return loader.instance();
}

void tst_PluginLoading::loadsAsAnExporterFactory()
{
    QPluginLoader loader(pluginPath);
    QVERIFY2(loader.load(), qPrintable(loader.errorString()));
    QObject *root = loader.instance();
    QVERIFY(root);
    QVERIFY(qobject_cast<AbstractExporterFactory *>(root));
    QVERIFY(qobject_cast<AbstractPluginFactory *>(root));
    QCOMPARE(root->metaObject()->className(), "AsciiExporterFactory");
    QCOMPARE(root->metaObject()->superClass(), &QObject::staticMetaObject);
}

void tst_PluginLoading::metaData()
{
    QPluginLoader loader(pluginPath);
    const QJsonObject metaData = loader.metaData();
    QCOMPARE(metaData.value(QStringLiteral("IID")).toString(),
             QStringLiteral("AsciiExporterFactory"));
    QCOMPARE(metaData.value(QStringLiteral("className")).toString(),
             QStringLiteral("AsciiExporterFactory"));
    QCOMPARE(metaData.value(QStringLiteral("debug")).toBool(true), false);
    QVERIFY(metaData.value(QStringLiteral("debug")).isBool());
    // the loader records the major and minor version of the Qt moc wrote for
    QCOMPARE(metaData.value(QStringLiteral("version")).toInt(), QT_VERSION & 0xFFFF00);
    const QJsonValue user = metaData.value(QStringLiteral("MetaData"));
    QVERIFY(user.isUndefined() || (user.isObject() && user.toObject().isEmpty()));
}

void tst_PluginLoading::metaDataRecordInTheFile()
{
    QFile file(pluginPath);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    // Qt 5.15 lays the record out as: marker, format version 0, the Qt major
    // and minor version, an architecture byte, then a CBOR map keyed by
    // small integers (2: IID, 3: class name).
    const QByteArray marker("QTMETADATA !");
    const int at = bytes.indexOf(marker);
    QVERIFY(at >= 0);
    QCOMPARE(bytes.indexOf(marker, at + 1), -1);
    const QByteArray header = bytes.mid(at + marker.size(), 4);
    QCOMPARE(quint8(header.at(0)), quint8(0));
    QCOMPARE(quint8(header.at(1)), quint8(QT_VERSION_MAJOR));
    QCOMPARE(quint8(header.at(2)), quint8(QT_VERSION_MINOR));
    QCOMPARE(quint8(header.at(3)) & 1, 0); // not a debug build

    QCborParserError error;
    const QCborValue record = QCborValue::fromCbor(bytes.mid(at + marker.size() + 4), &error);
    QCOMPARE(error.error, QCborError::NoError);
    QVERIFY(record.isMap());
    const QCborMap map = record.toMap();
    QCOMPARE(map.size(), 2);
    QCOMPARE(map.value(2).toString(), QStringLiteral("AsciiExporterFactory"));
    QCOMPARE(map.value(3).toString(), QStringLiteral("AsciiExporterFactory"));
}

void tst_PluginLoading::qtPluginInfoReadsTheRecord()
{
    const QString tool =
        QLibraryInfo::location(QLibraryInfo::BinariesPath) + QStringLiteral("/qtplugininfo");
    if (!QFile::exists(tool))
        QSKIP("qtplugininfo is not installed");
    QProcess process;
    process.start(tool, {QStringLiteral("--full-json"), pluginPath});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    const QJsonObject json = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    QCOMPARE(json.value(QStringLiteral("IID")).toString(), QStringLiteral("AsciiExporterFactory"));
    QCOMPARE(json.value(QStringLiteral("className")).toString(),
             QStringLiteral("AsciiExporterFactory"));
    QCOMPARE(json.value(QStringLiteral("debug")).toBool(true), false);
    QCOMPARE(json.value(QStringLiteral("version")).toInt(), QT_VERSION & 0xFFFF00);
}

void tst_PluginLoading::sameInstanceTwice()
{
    QLibrary library(pluginPath);
    const auto entry = reinterpret_cast<InstanceFunction>(library.resolve("qt_plugin_instance"));
    QVERIFY2(entry, qPrintable(library.errorString()));
    QObject *first = entry();
    QVERIFY(first);
    QCOMPARE(entry(), first);

    QPluginLoader loader(pluginPath);
    QCOMPARE(instance(loader), first);
}

void tst_PluginLoading::newFactoryAfterDeletion()
{
    QLibrary library(pluginPath);
    const auto entry = reinterpret_cast<InstanceFunction>(library.resolve("qt_plugin_instance"));
    QVERIFY(entry);
    QPointer<QObject> first = entry();
    QVERIFY(first);
    auto *store = qobject_cast<AbstractPluginFactory *>(first)->settings();
    store->setSetting(QStringLiteral("outputFileExtension"), QStringLiteral("csv"));
    delete first.data();
    QVERIFY(first.isNull());

    QObject *second = entry();
    QVERIFY(second);
    QCOMPARE(entry(), second);
    // a fresh factory has a fresh store
    QCOMPARE(qobject_cast<AbstractPluginFactory *>(second)->fileExtension(), QStringLiteral("txt"));
}

void tst_PluginLoading::castsByName_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("answer");

    QTest::newRow("the class itself") << QByteArray("AsciiExporterFactory") << "object";
    QTest::newRow("the exporter factory base")
        << QByteArray("AbstractExporterFactory") << "factory";
    QTest::newRow("the plug-in factory identifier")
        << QByteArray("com.korvat.Zentrel.AbstractPluginFactory/1.0") << "factory";
    QTest::newRow("the exporter factory identifier")
        << QByteArray("com.korvat.Zentrel.AbstractExporterFactory/1.0") << "factory";
    QTest::newRow("QObject") << QByteArray("QObject") << "object";
    QTest::newRow("the exporter is something else") << QByteArray("AsciiExporter") << "null";
    QTest::newRow("the plug-in factory class name is not declared")
        << QByteArray("AbstractPluginFactory") << "null";
}

void tst_PluginLoading::castsByName()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, answer);

    QPluginLoader loader(pluginPath);
    QObject *root = instance(loader);
    QVERIFY(root);
    void *result = root->qt_metacast(name.constData());
    if (answer == QLatin1String("object"))
        QCOMPARE(result, static_cast<void *>(root));
    else if (answer == QLatin1String("factory"))
        QCOMPARE(result, static_cast<void *>(qobject_cast<AbstractExporterFactory *>(root)));
    else
        QVERIFY(!result);
    QVERIFY(!root->qt_metacast(nullptr));
}

void tst_PluginLoading::names()
{
    QPluginLoader loader(pluginPath);
    auto *factory = qobject_cast<AbstractExporterFactory *>(instance(loader));
    QVERIFY(factory);
    QCOMPARE(factory->name(), QStringLiteral("ASCII Exporter"));
    QCOMPARE(factory->version(), QStringLiteral("3.6"));
    QVERIFY(factory->pluginFlag());
    QVERIFY(factory->exporterFlag());
    QVERIFY(factory->isAvailable());
    TestSource source;
    std::unique_ptr<AbstractExporter> exporter(factory->createExporter(&source));
    QCOMPARE(exporter->name(), QStringLiteral("ASCII"));
    QVERIFY(!exporter->parent());
}

void tst_PluginLoading::exportersShareOneStore()
{
    QPluginLoader loader(pluginPath);
    auto *factory = qobject_cast<AbstractExporterFactory *>(instance(loader));
    QVERIFY(factory);
    SettingsSynchronizer *store = factory->settings();
    QVERIFY(store);
    QCOMPARE(store->parent(), instance(loader));

    TestSource source;
    std::unique_ptr<AbstractExporter> first(factory->createExporter(&source));
    std::unique_ptr<AbstractExporter> second(factory->createExporter(&source));
    QVERIFY(first && second);
    QVERIFY(first.get() != second.get());

    // both read the one store: a change after their creation reaches both
    store->setSetting(QStringLiteral("exportOrientation"), QStringLiteral("None"));
    const QStringList a = linesAfterHeaderBlock(exportSamples(first.get(), &source, {}));
    const QStringList b = linesAfterHeaderBlock(exportSamples(second.get(), &source, {}));
    store->resetSetting(QStringLiteral("exportOrientation"));
    QCOMPARE(a, QStringList{QStringLiteral("PacketCounter\tSampleTimeFine")});
    QCOMPARE(b, a);
}

void tst_PluginLoading::pagesAreDistinct()
{
    QPluginLoader loader(pluginPath);
    auto *factory = qobject_cast<AbstractExporterFactory *>(instance(loader));
    QVERIFY(factory);
    const QList<AbstractOptionsPage *> first = factory->optionsPages();
    const QList<AbstractOptionsPage *> second = factory->optionsPages();
    QCOMPARE(first.size(), 1);
    QCOMPARE(second.size(), 1);
    QVERIFY(first.first() != second.first());
    QVERIFY(!first.first()->parent());
    QCOMPARE(first.first()->pageId(), QStringLiteral("ASCII Exporter"));
    QCOMPARE(first.first()->categoryId(), QStringLiteral("Exporters"));
    qDeleteAll(first);
    qDeleteAll(second);
}

void tst_PluginLoading::fileExtensionFollowsTheStore()
{
    QPluginLoader loader(pluginPath);
    auto *factory = qobject_cast<AbstractExporterFactory *>(instance(loader));
    QVERIFY(factory);
    QCOMPARE(factory->fileExtension(), QStringLiteral("txt"));
    factory->settings()->setSetting(QStringLiteral("outputFileExtension"), QStringLiteral("csv"));
    QCOMPARE(factory->fileExtension(), QStringLiteral("csv"));
    factory->settings()->resetSetting(QStringLiteral("outputFileExtension"));
    QCOMPARE(factory->fileExtension(), QStringLiteral("txt"));
}

void tst_PluginLoading::endToEndExport()
{
    QPluginLoader loader(pluginPath);
    auto *factory = qobject_cast<AbstractExporterFactory *>(instance(loader));
    QVERIFY(factory);
    TestSource source;
    source.properties = recordingProperties();
    source.rate = 100.0;
    std::unique_ptr<AbstractExporter> exporter(factory->createExporter(&source));
    const QByteArray actual = exportSamples(exporter.get(), &source, recordingSamples());

    QFile expected(QStringLiteral(TEST_DATA_DIR "/export-defaults.txt"));
    QVERIFY(expected.open(QIODevice::ReadOnly));
    QCOMPARE(actual, expected.readAll());
}

QTEST_MAIN(tst_PluginLoading)
#include "tst_pluginloading.moc"
