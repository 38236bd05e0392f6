#include "settingscatalogue.h"

#include <markingtranslator.h>
#include <settingssynchronizer.h>

#include <QCoreApplication>
#include <QtTest>

class tst_SettingsCatalogue : public QObject
{
    Q_OBJECT

private slots:
    void countsAndTypes();
    void defaultValue_data();
    void defaultValue();
    void description_data();
    void description();
    void highPrecisionIsNotDeclared();
    void scrAccelerationSpellings();
    void customTextsAreEmptyNotNull();
    void choiceGroupDefaults_data();
    void choiceGroupDefaults();
    void descriptionsAreTranslatedInTheFactoryContext();
};

void tst_SettingsCatalogue::countsAndTypes()
{
    const QMap<QString, QVariant> defaults = SettingsCatalogue::defaults();
    QCOMPARE(defaults.size(), 42);
    int booleans = 0;
    int strings = 0;
    for (const QVariant &value : defaults) {
        if (value.userType() == QMetaType::Bool)
            ++booleans;
        else if (value.userType() == QMetaType::QString)
            ++strings;
    }
    QCOMPARE(booleans, 37);
    QCOMPARE(strings, 5);
    QCOMPARE(SettingsCatalogue::descriptions().size(), 42);
}

void tst_SettingsCatalogue::defaultValue_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");

    const auto row = [](const char *key, const QVariant &value) {
        QTest::newRow(key) << QString::fromLatin1(key) << value;
    };
    row("outputFileFormat", QStringLiteral("<inputfile>-<seqnr>"));
    row("outputFileExtension", QStringLiteral("txt"));
    row("exportDateTime", false);
    row("exportUtc", false);
    row("exportPacketCounter", true);
    row("exportSampleTimeFine", true);
    row("exportStatusFlags", false);
    row("exportClipFlags", false);
    row("exportRssi", false);
    row("exportCalibratedAcceleration", false);
    row("exportFreeAcceleration", false);
    row("exportCalibratedAngularVelocity", false);
    row("exportMagneticField", false);
    row("exportVelocityIncrement", false);
    row("exportOrientationIncrement", false);
    row("exportOrientation", QStringLiteral("Euler"));
    row("exportPosition", false);
    row("exportVelocity", false);
    row("exportHeading", false);
    row("exportTemperature", false);
    row("exportGyroTemperature", false);
    row("exportPressure", false);
    row("exportScrAcceleration", false);
    row("exportScrGyroscopeData", false);
    row("exportScrMagneticField", false);
    row("exportScrTemperature", false);
    row("exportScrGyroTemperature", false);
    row("exportRawGps", false);
    row("exportRawGnss", false);
    row("exportTriggerIn1", false);
    row("exportTriggerIn2", false);
    row("insertNothing", true);
    row("insertNan", false);
    row("insertZero", false);
    row("insertOtherPlaceholder", false);
    row("otherPlaceholder", QStringLiteral(""));
    row("useCommaDelimiter", false);
    row("useOtherDelimiter", false);
    row("useSemiColonDelimiter", false);
    row("useSpaceDelimiter", false);
    row("useTabDelimiter", true);
    row("otherDelimiter", QStringLiteral(""));
}

void tst_SettingsCatalogue::defaultValue()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);

    const QMap<QString, QVariant> defaults = SettingsCatalogue::defaults();
    QVERIFY(defaults.contains(key));
    QCOMPARE(defaults.value(key).userType(), value.userType());
    QCOMPARE(defaults.value(key), value);
}

void tst_SettingsCatalogue::description_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");

    const auto row = [](const char *key, const char *text) {
        QTest::newRow(key) << QString::fromLatin1(key) << QString::fromLatin1(text);
    };
    row("outputFileFormat",
        "The format of the output file name. e.g. <inputfile>-<seqnr>. The .txt extension is "
        "automatically appended.");
    row("outputFileExtension", "The extension of the output file name");
    row("exportDateTime", "Export date (yyyy-mm-dd seconds)");
    row("exportUtc", "Export 12 byte UTC Time");
    row("exportPacketCounter", "Export the packet counter");
    row("exportSampleTimeFine", "Export the sample time fine");
    row("exportStatusFlags", "Export the status flags");
    row("exportClipFlags", "Export the clip flags");
    row("exportRssi", "Export the RSSI");
    row("exportCalibratedAcceleration", "Export calibrated acceleration data");
    row("exportFreeAcceleration", "Export the free acceleration");
    row("exportCalibratedAngularVelocity", "Export calibrated rate gyroscope data");
    row("exportMagneticField", "Export the calibrated magnetic field");
    row("exportVelocityIncrement",
        "Export the incremental velocity value since the last successful transmission");
    row("exportOrientationIncrement",
        "Export the incremental orientation value since the last successful transmission");
    row("exportOrientation",
        "Export orientation data in the format of the orientations \"Quaternion\", \"Euler\", "
        "\"Matrix\" or no orientation output: \"None\"");
    row("exportPosition", "Export position data");
    row("exportVelocity", "Export velocity data");
    row("exportHeading", "Export the heading");
    row("exportTemperature", "Export temperature data");
    row("exportGyroTemperature", "Export gyroscope temperature data");
    row("exportPressure", "Export the calibrated pressure data in hPa");
    row("exportScrcceleration", "Export SCR acceleration data");
    row("exportScrGyroscopeData", "Export SCR gyroscope data");
    row("exportScrMagneticField", "Export the SCR magnetic field");
    row("exportScrTemperature", "Export RAW temperature data");
    row("exportScrGyroTemperature", "Export SCR gyroscope temperature data");
    row("exportRawGps", "Export the raw gps data");
    row("exportRawGnss", "Export the raw gnss data");
    row("exportTriggerIn1", "Export Trigger Indication 1");
    row("exportTriggerIn2", "Export Trigger Indication 2");
    row("insertNothing", "Insert nothing for empty fields");
    row("insertNan", "Insert \"NaN\" for empty fields");
    row("insertZero", "Insert 0 for empty fields");
    row("insertOtherPlaceholder", "Insert custom text for empty fields");
    row("otherPlaceholder", "Use this custom placeholder for empty fields");
    row("useCommaDelimiter", "Use \",\" as a delimiter");
    row("useOtherDelimiter", "Use a custom delimiter (enter custom delimiter)");
    row("useSemiColonDelimiter", "Use \";\" as a delimiter");
    row("useSpaceDelimiter", "Use \" \" as a delimiter");
    row("useTabDelimiter", "Use \"\\t\" as a delimiter");
    row("otherDelimiter", "Use this custom delimiter");
}

void tst_SettingsCatalogue::description()
{
    QFETCH(QString, key);
    QFETCH(QString, text);

    const QMap<QString, QString> descriptions = SettingsCatalogue::descriptions();
    QVERIFY(descriptions.contains(key));
    QCOMPARE(descriptions.value(key), text);
}

void tst_SettingsCatalogue::highPrecisionIsNotDeclared()
{
    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    QVERIFY(!SettingsCatalogue::defaults().contains(QStringLiteral("highPrecision")));
    QVERIFY(!store.defaultSetting(QStringLiteral("highPrecision")).isValid());
    QVERIFY(!store.setting(QStringLiteral("highPrecision")).isValid());
    QCOMPARE(store.setting(QStringLiteral("highPrecision")).toBool(), false);
}

void tst_SettingsCatalogue::scrAccelerationSpellings()
{
    const QMap<QString, QVariant> defaults = SettingsCatalogue::defaults();
    const QMap<QString, QString> descriptions = SettingsCatalogue::descriptions();
    QVERIFY(defaults.contains(QStringLiteral("exportScrAcceleration")));
    QVERIFY(!descriptions.contains(QStringLiteral("exportScrAcceleration")));
    QVERIFY(descriptions.contains(QStringLiteral("exportScrcceleration")));
    QVERIFY(!defaults.contains(QStringLiteral("exportScrcceleration")));

    // exactly one description has no default, and exactly one default no description
    int withoutDefault = 0;
    for (auto it = descriptions.cbegin(); it != descriptions.cend(); ++it)
        withoutDefault += defaults.contains(it.key()) ? 0 : 1;
    QCOMPARE(withoutDefault, 1);
    int withoutDescription = 0;
    for (auto it = defaults.cbegin(); it != defaults.cend(); ++it)
        withoutDescription += descriptions.contains(it.key()) ? 0 : 1;
    QCOMPARE(withoutDescription, 1);
}

void tst_SettingsCatalogue::customTextsAreEmptyNotNull()
{
    const QMap<QString, QVariant> defaults = SettingsCatalogue::defaults();
    for (const char *key : {"otherDelimiter", "otherPlaceholder"}) {
        const QString text = defaults.value(QString::fromLatin1(key)).toString();
        QVERIFY2(text.isEmpty(), key);
        QVERIFY2(!text.isNull(), key);
    }
}

void tst_SettingsCatalogue::choiceGroupDefaults_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("on");

    QTest::newRow("tab is the default delimiter") << "useTabDelimiter" << true;
    QTest::newRow("comma is off") << "useCommaDelimiter" << false;
    QTest::newRow("semicolon is off") << "useSemiColonDelimiter" << false;
    QTest::newRow("space is off") << "useSpaceDelimiter" << false;
    QTest::newRow("custom delimiter is off") << "useOtherDelimiter" << false;
    QTest::newRow("empty fields stay empty") << "insertNothing" << true;
    QTest::newRow("NaN is off") << "insertNan" << false;
    QTest::newRow("zero is off") << "insertZero" << false;
    QTest::newRow("custom placeholder is off") << "insertOtherPlaceholder" << false;
}

void tst_SettingsCatalogue::choiceGroupDefaults()
{
    QFETCH(QString, key);
    QFETCH(bool, on);

    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    QCOMPARE(store.defaultSetting(key).userType(), int(QMetaType::Bool));
    QCOMPARE(store.defaultSetting(key).toBool(), on);
}

void tst_SettingsCatalogue::descriptionsAreTranslatedInTheFactoryContext()
{
    MarkingTranslator factoryContext("AsciiExporterFactory");
    QVERIFY(QCoreApplication::installTranslator(&factoryContext));
    const QMap<QString, QString> translated = SettingsCatalogue::descriptions();
    QCoreApplication::removeTranslator(&factoryContext);

    QCOMPARE(translated.value(QStringLiteral("exportRssi")), QStringLiteral("~Export the RSSI"));
    QCOMPARE(translated.value(QStringLiteral("useTabDelimiter")),
             QStringLiteral("~Use \"\\t\" as a delimiter"));
    for (auto it = translated.cbegin(); it != translated.cend(); ++it)
        QVERIFY2(it.value().startsWith(QLatin1Char('~')), qPrintable(it.key()));

    MarkingTranslator otherContext("AsciiExporter");
    QVERIFY(QCoreApplication::installTranslator(&otherContext));
    const QString untouched = SettingsCatalogue::descriptions().value(QStringLiteral("exportRssi"));
    QCoreApplication::removeTranslator(&otherContext);
    QCOMPARE(untouched, QStringLiteral("Export the RSSI"));
}

QTEST_GUILESS_MAIN(tst_SettingsCatalogue)
#include "tst_settingscatalogue.moc"
