#include "settingnames.h"

#include <settingssynchronizer.h>

#include <QTemporaryDir>
#include <QtTest>

// The keys a plug-in knows, and the one a misspelt key was meant to be.
class tst_SettingNames : public QObject
{
    Q_OBJECT

private slots:
    void knownKeysLeaveOutWhatAFileBrought();
    void nearest_data();
    void nearest();
};

void tst_SettingNames::knownKeysLeaveOutWhatAFileBrought()
{
    SettingsSynchronizer store(
        {{QStringLiteral("exportRssi"), false}, {QStringLiteral("otherDelimiter"), QString()}},
        {{QStringLiteral("exportRssi"), QStringLiteral("RSSI")},
         {QStringLiteral("exportScrcceleration"), QStringLiteral("SCR")}});
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString fileName = dir.filePath(QStringLiteral("settings.ini"));
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[General]\nexportRsi=true\nexportRssi=true\n[Other]\nkey=1\n");
    file.close();
    QVERIFY(store.load(fileName));
    // the store holds them all, the plug-in knows its own only
    QVERIFY(store.keys().contains(QStringLiteral("exportRsi")));
    QVERIFY(store.keys().contains(QStringLiteral("Other/key")));
    QCOMPARE(
        SettingNames::known(&store),
        (QStringList{"exportRssi", "exportScrcceleration", "highPrecision", "otherDelimiter"}));
}

void tst_SettingNames::nearest_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("nearest");
    QTest::newRow("a letter missing") << "exportRsi"
                                      << "exportRssi";
    QTest::newRow("another case") << "EXPORTRSSI"
                                  << "exportRssi";
    QTest::newRow("a letter too many") << "highPrecission"
                                       << "highPrecision";
    QTest::newRow("the first of two as near") << "x"
                                              << "exportRssi";
}

void tst_SettingNames::nearest()
{
    QFETCH(QString, key);
    QFETCH(QString, nearest);
    QCOMPARE(SettingNames::nearest(key, {"exportRssi", "highPrecision", "otherDelimiter"}),
             nearest);
}

QTEST_GUILESS_MAIN(tst_SettingNames)
#include "tst_settingnames.moc"
