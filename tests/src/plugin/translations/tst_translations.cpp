#include <abstractexporter.h>
#include <abstractexporterfactory.h>
#include <abstractoptionspage.h>
#include <exportrun.h>
#include <settingssynchronizer.h>

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QPluginLoader>
#include <QTranslator>
#include <QtTest>

#include <memory>

// The German translation, compiled by lrelease, installed before the plug-in
// is loaded, as a host does at start-up. User-visible texts change; texts
// that are data (column names, the names and the version) do not.
class tst_Translations : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void descriptionsOfTheStore();
    void headerBlockButNotColumns();
    void namesAreData();
    void optionsPage();

private:
    QTranslator translator;
    QPluginLoader loader{QStringLiteral(ASCIIEXPORTER_PLUGIN)};
    AbstractExporterFactory *factory = nullptr;
};

void tst_Translations::initTestCase()
{
    QVERIFY(translator.load(QStringLiteral(TRANSLATIONS_DIR "/asciiexporter_de.qm")));
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QVERIFY2(loader.load(), qPrintable(loader.errorString()));
    factory = qobject_cast<AbstractExporterFactory *>(loader.instance());
    QVERIFY(factory);
}

void tst_Translations::descriptionsOfTheStore()
{
    const SettingsSynchronizer *store = factory->settings();
    QCOMPARE(store->description(QStringLiteral("exportRssi")), QStringLiteral("RSSI exportieren"));
    QCOMPARE(store->description(QStringLiteral("exportPacketCounter")),
             QString::fromUtf8("Paketz\u00e4hler exportieren"));
    QCOMPARE(store->description(QStringLiteral("exportUtc")),
             QStringLiteral("12-Byte-UTC-Zeit exportieren"));
    // keys and defaults are data
    QCOMPARE(store->defaultSetting(QStringLiteral("exportOrientation")),
             QVariant(QStringLiteral("Euler")));
}

void tst_Translations::headerBlockButNotColumns()
{
    TestSource source;
    source.properties = recordingProperties();
    source.rate = 100.0;
    std::unique_ptr<AbstractExporter> exporter(factory->createExporter(&source));
    const QByteArray file = exportSamples(exporter.get(), &source, recordingSamples());
    QCOMPARE(QString::fromUtf8(file),
             QStringLiteral("// Startzeit: 2026-11-21 09:30:00\n"
                            "// Abtastrate: 100.0Hz\n"
                            "// Filterprofil: general (39.1)\n"
                            "// Optionsflags: 0\n"
                            "// Firmwareversion: 1.2.3\n"
                            "PacketCounter\tSampleTimeFine\tRoll\tPitch\tYaw\n"
                            "00042\t123456\t1.500000\t-2.250000\t45.000000\n"));

    TestSource empty;
    std::unique_ptr<AbstractExporter> second(factory->createExporter(&empty));
    const QStringList lines =
        QString::fromUtf8(exportSamples(second.get(), &empty, {})).split(QLatin1Char('\n'));
    QCOMPARE(
        lines.mid(0, 5),
        (QStringList{QStringLiteral("// Startzeit: "), QStringLiteral("// Abtastrate: Verschieden"),
                     QStringLiteral("// Filterprofil: Fehler: Kein KVA-Filterprofil"),
                     QStringLiteral("// Optionsflags: Fehler: Keine Optionsflags"),
                     QStringLiteral("// Firmwareversion: Fehler: Keine Firmwareversion")}));
}

void tst_Translations::namesAreData()
{
    QCOMPARE(factory->name(), QStringLiteral("ASCII Exporter"));
    QCOMPARE(factory->version(), QStringLiteral("3.6"));
    TestSource source;
    std::unique_ptr<AbstractExporter> exporter(factory->createExporter(&source));
    QCOMPARE(exporter->name(), QStringLiteral("ASCII"));
}

void tst_Translations::optionsPage()
{
    const QList<AbstractOptionsPage *> pages = factory->optionsPages();
    QCOMPARE(pages.size(), 1);
    std::unique_ptr<AbstractOptionsPage> page(pages.first());
    QCOMPARE(page->pageTitle(), QStringLiteral("ASCII-Exporter"));
    QCOMPARE(page->pageId(), QStringLiteral("ASCII Exporter"));
    QCOMPARE(page->categoryTitle(), QStringLiteral("Exporter"));
    QCOMPARE(page->categoryId(), QStringLiteral("Exporters"));
    QCOMPARE(page->windowTitle(), QStringLiteral("ASCII-Exporter-Optionen"));
    QCOMPARE(page->findChild<QGroupBox *>(QStringLiteral("fileNameGroup"))->title(),
             QStringLiteral("Dateiname"));
    QCOMPARE(page->findChild<QCheckBox *>(QStringLiteral("exportCalibratedAcceleration"))->text(),
             QStringLiteral("Beschleunigung"));
    QCOMPARE(page->findChild<QCheckBox *>(QStringLiteral("useTabDelimiter"))->text(),
             QStringLiteral("&Tabulator"));
    const QComboBox *orientation =
        page->findChild<QComboBox *>(QStringLiteral("exportOrientation"));
    QCOMPARE(orientation->itemText(2), QStringLiteral("Eulerwinkel"));
    QCOMPARE(orientation->itemData(2), QVariant(QStringLiteral("Euler")));
    // the setting's value is data: Euler is still stored as "Euler"
    QCOMPARE(orientation->currentText(), QStringLiteral("Eulerwinkel"));
}

QTEST_MAIN(tst_Translations)
#include "tst_translations.moc"
