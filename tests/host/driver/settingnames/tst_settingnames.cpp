#include "settingnames.h"

#include <settingssynchronizer.h>

#include <QTemporaryDir>
#include <QtTest>

// The keys a plug-in knows.
class tst_SettingNames : public QObject
{
    Q_OBJECT

private slots:
    void knownKeysLeaveOutWhatAFileBrought();
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

QTEST_GUILESS_MAIN(tst_SettingNames)
#include "tst_settingnames.moc"
