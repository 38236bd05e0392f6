#include "asciiexporter.h"
#include "settingscatalogue.h"

#include <markingtranslator.h>
#include <settingssynchronizer.h>
#include <testsource.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>

// Whole-file checks of the comment block that opens every export. Every data
// group is off, so the file is the block, its line end, and an empty
// column-header line with its line end.
class tst_HeaderBlock : public QObject
{
    Q_OBJECT

private slots:
    void block_data();
    void block();
    void lastLineIsEndedOnlyByStart();
    void translatedInTheExporterContext();

private:
    static QByteArray exportWith(const QVariantMap &properties, double rate);
};

QByteArray tst_HeaderBlock::exportWith(const QVariantMap &properties, double rate)
{
    QTemporaryDir dir;
    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    store.setSetting(QStringLiteral("exportPacketCounter"), false);
    store.setSetting(QStringLiteral("exportSampleTimeFine"), false);
    store.setSetting(QStringLiteral("exportOrientation"), QStringLiteral("None"));
    TestSource source;
    source.properties = properties;
    source.rate = rate;

    QFile file(dir.filePath(QStringLiteral("out.txt")));
    {
        AsciiExporter exporter(&source, &store);
        if (!exporter.start(&file))
            return QByteArrayLiteral("<start failed>");
        exporter.finish();
    }
    file.close();
    if (!file.open(QIODevice::ReadOnly))
        return QByteArrayLiteral("<unreadable>");
    return file.readAll();
}

void tst_HeaderBlock::block_data()
{
    QTest::addColumn<QVariantMap>("properties");
    QTest::addColumn<double>("rate");
    QTest::addColumn<QByteArray>("expected");

    const QVariantMap full{
        {"StartTime", "2026-11-21 09:30:00"},
        {"FilterProfile", "general"},
        {"FilterProfileVersion", 1},
        {"FilterProfileType", 39},
        {"OptionFlags", 0},
        {"FirmwareVersion", "1.2.3"},
    };
    QTest::newRow("every property present") << full << 100.0
                                            << QByteArray("// Start Time: 2026-11-21 09:30:00\n"
                                                          "// Update Rate: 100.0Hz\n"
                                                          "// Filter Profile: general (39.1)\n"
                                                          "// Option Flags: 0\n"
                                                          "// Firmware Version: 1.2.3\n"
                                                          "\n");

    QTest::newRow("every property missing and no rate")
        << QVariantMap() << 0.0
        << QByteArray("// Start Time: \n"
                      "// Update Rate: Various\n"
                      "// Filter Profile: Error: No KVA filter profile\n"
                      "// Option Flags: Error: No option flags\n"
                      "// Firmware Version: Error: No firmware version\n"
                      "\n");

    QVariantMap zeroStart = full;
    zeroStart.insert("StartTime", 0);
    QTest::newRow("a start time of 0 is unknown")
        << zeroStart << 100.0
        << QByteArray("// Start Time: Unknown\n"
                      "// Update Rate: 100.0Hz\n"
                      "// Filter Profile: general (39.1)\n"
                      "// Option Flags: 0\n"
                      "// Firmware Version: 1.2.3\n"
                      "\n");

    QVariantMap doubleZero = full;
    doubleZero.insert("StartTime", "00");
    QTest::newRow("a start time of 00 is written as it stands")
        << doubleZero << 100.0
        << QByteArray("// Start Time: 00\n"
                      "// Update Rate: 100.0Hz\n"
                      "// Filter Profile: general (39.1)\n"
                      "// Option Flags: 0\n"
                      "// Firmware Version: 1.2.3\n"
                      "\n");

    QVariantMap blankZero = full;
    blankZero.insert("StartTime", " 0");
    QTest::newRow("a start time of blank and 0 is written as it stands")
        << blankZero << 100.0
        << QByteArray("// Start Time:  0\n"
                      "// Update Rate: 100.0Hz\n"
                      "// Filter Profile: general (39.1)\n"
                      "// Option Flags: 0\n"
                      "// Firmware Version: 1.2.3\n"
                      "\n");

    QTest::newRow("a negative rate keeps its sign and one decimal")
        << full << -1.0
        << QByteArray("// Start Time: 2026-11-21 09:30:00\n"
                      "// Update Rate: -1.0Hz\n"
                      "// Filter Profile: general (39.1)\n"
                      "// Option Flags: 0\n"
                      "// Firmware Version: 1.2.3\n"
                      "\n");

    QTest::newRow("a fractional rate is rounded to one decimal")
        << full << 59.94
        << QByteArray("// Start Time: 2026-11-21 09:30:00\n"
                      "// Update Rate: 59.9Hz\n"
                      "// Filter Profile: general (39.1)\n"
                      "// Option Flags: 0\n"
                      "// Firmware Version: 1.2.3\n"
                      "\n");

    QTest::newRow("a NaN rate is written as the number formatting writes NaN")
        << full << std::numeric_limits<double>::quiet_NaN()
        << QByteArray("// Start Time: 2026-11-21 09:30:00\n"
                      "// Update Rate: nanHz\n"
                      "// Filter Profile: general (39.1)\n"
                      "// Option Flags: 0\n"
                      "// Firmware Version: 1.2.3\n"
                      "\n");

    QVariantMap noType = full;
    noType.remove("FilterProfileType");
    QTest::newRow("a filter profile without type gives the error line")
        << noType << 100.0
        << QByteArray("// Start Time: 2026-11-21 09:30:00\n"
                      "// Update Rate: 100.0Hz\n"
                      "// Filter Profile: Error: No KVA filter profile\n"
                      "// Option Flags: 0\n"
                      "// Firmware Version: 1.2.3\n"
                      "\n");

    QVariantMap emptyVersion = full;
    emptyVersion.insert("FilterProfileVersion", "");
    QTest::newRow("an empty filter profile version gives the error line")
        << emptyVersion << 100.0
        << QByteArray("// Start Time: 2026-11-21 09:30:00\n"
                      "// Update Rate: 100.0Hz\n"
                      "// Filter Profile: Error: No KVA filter profile\n"
                      "// Option Flags: 0\n"
                      "// Firmware Version: 1.2.3\n"
                      "\n");

    QVariantMap chained = full;
    chained.insert("FilterProfile", "p%2");
    QTest::newRow("the filter profile is filled one value at a time")
        << chained << 100.0
        << QByteArray("// Start Time: 2026-11-21 09:30:00\n"
                      "// Update Rate: 100.0Hz\n"
                      "// Filter Profile: p1 (39.1)\n"
                      "// Option Flags: 0\n"
                      "// Firmware Version: 1.2.3\n"
                      "\n");

    QVariantMap oddTexts = full;
    oddTexts.insert("OptionFlags", "0x0003");
    oddTexts.insert("FirmwareVersion", "4.5\nbeta");
    oddTexts.insert("StartTime", QDateTime(QDate(2026, 11, 21), QTime(9, 30, 0, 250)));
    QTest::newRow("values are written as their text, line ends included")
        << oddTexts << 400.0
        << QByteArray("// Start Time: 2026-11-21T09:30:00.250\n"
                      "// Update Rate: 400.0Hz\n"
                      "// Filter Profile: general (39.1)\n"
                      "// Option Flags: 0x0003\n"
                      "// Firmware Version: 4.5\nbeta\n"
                      "\n");
}

void tst_HeaderBlock::block()
{
    QFETCH(QVariantMap, properties);
    QFETCH(double, rate);
    QFETCH(QByteArray, expected);

    QCOMPARE(exportWith(properties, rate), expected);
}

void tst_HeaderBlock::lastLineIsEndedOnlyByStart()
{
    const QByteArray file = exportWith({{"FirmwareVersion", "1.2.3"}}, 0.0);
    // one line end after the firmware line (from start), one after the
    // empty column-header line
    QVERIFY(file.endsWith("// Firmware Version: 1.2.3\n\n"));
    QCOMPARE(file.count('\n'), 6);
}

void tst_HeaderBlock::translatedInTheExporterContext()
{
    MarkingTranslator translator("AsciiExporter");
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const QByteArray missing = exportWith(QVariantMap(), 0.0);
    const QByteArray present = exportWith({{"StartTime", 0},
                                           {"FilterProfile", "general"},
                                           {"FilterProfileVersion", 1},
                                           {"FilterProfileType", 39},
                                           {"OptionFlags", 0},
                                           {"FirmwareVersion", "1.2.3"}},
                                          100.0);
    QCoreApplication::removeTranslator(&translator);

    QCOMPARE(missing,
             QByteArray("~// Start Time: \n"
                        "~// Update Rate: ~Various\n"
                        "~// Filter Profile: Error: No KVA filter profile\n"
                        "~// Option Flags: Error: No option flags\n"
                        "~// Firmware Version: Error: No firmware version\n"
                        "\n"));
    // "Unknown" and the value formats are data, not translated
    QCOMPARE(present,
             QByteArray("~// Start Time: Unknown\n"
                        "~// Update Rate: 100.0Hz\n"
                        "~// Filter Profile: general (39.1)\n"
                        "~// Option Flags: 0\n"
                        "~// Firmware Version: 1.2.3\n"
                        "\n"));
}

QTEST_GUILESS_MAIN(tst_HeaderBlock)
#include "tst_headerblock.moc"
