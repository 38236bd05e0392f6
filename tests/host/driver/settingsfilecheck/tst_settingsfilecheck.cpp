#include "settingsfilecheck.h"

#include <QtTest>

// What a settings file holds besides the plug-in's settings, line by line.
class tst_SettingsFileCheck : public QObject
{
    Q_OBJECT

private slots:
    void findings_data();
    void findings();
};

void tst_SettingsFileCheck::findings_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QStringList>("findings");

    QTest::newRow("a file the options page saved")
        << QByteArray("[General]\r\nexportRssi=true\r\notherDelimiter=\"a, b\"\r\n")
        << QStringList();
    QTest::newRow("an empty file") << QByteArray() << QStringList();
    QTest::newRow("keys before any section, comments and blank lines")
        << QByteArray("; made by hand\n# so was this\n\n  exportRssi = true  \n") << QStringList();
    QTest::newRow("a misspelt key")
        << QByteArray("[General]\nexportRssi=true\nexportAccleration=true\n")
        << QStringList{"s.ini:3: unknown setting \"exportAccleration\"; did you mean "
                       "\"exportScrAcceleration\"?"};
    QTest::newRow("a key in another case")
        << QByteArray("[general]\nexportrssi=true\n")
        << QStringList{"s.ini:2: unknown setting \"exportrssi\"; did you mean \"exportRssi\"?"};
    QTest::newRow("a key written with escapes is the key")
        << QByteArray("[General]\nexport%52ssi=true\nexport%U0052ssi=false\n") << QStringList();
    QTest::newRow("another section")
        << QByteArray("[General]\nexportRssi=true\n[Export]\nexportRssi=false\nwhatever=1\n")
        << QStringList{"s.ini:3: section [Export] is not read: the plug-in's settings belong in "
                       "[General]"};
    QTest::newRow("back in the plug-in's section")
        << QByteArray("[Export]\nx=1\n[GENERAL]\nexportRsi=1\n")
        << QStringList{"s.ini:1: section [Export] is not read: the plug-in's settings belong in "
                       "[General]",
                       "s.ini:4: unknown setting \"exportRsi\"; did you mean \"exportRssi\"?"};
    QTest::newRow("a line that is no setting")
        << QByteArray("[General]\nexportRssi true\n")
        << QStringList{"s.ini:2: neither KEY=VALUE nor a [section]: ignored"};
    QTest::newRow("a value without a key")
        << QByteArray("=true\n") << QStringList{"s.ini:1: no key before the =: ignored"};
    QTest::newRow("a value that goes on on the next line")
        << QByteArray("otherDelimiter=a\\\n b\notherPlaceholder=c\\\\\nexportRssi true\n")
        << QStringList{"s.ini:4: neither KEY=VALUE nor a [section]: ignored"};
    QTest::newRow("bytes that are not text")
        << QByteArray("[General]\nexportRssi=true\n\x01\x02\xff\xfe", 30)
        << QStringList{"s.ini: not a settings file: it holds bytes that are not text"};
    QTest::newRow("a NUL") << QByteArray("exportRssi=true\0", 16)
                           << QStringList{"s.ini: not a settings file: it holds bytes that are "
                                          "not text"};
    QTest::newRow("UTF-8 text is text")
        << QByteArray("otherPlaceholder=\xe2\x80\x93\n") << QStringList();
}

void tst_SettingsFileCheck::findings()
{
    QFETCH(QByteArray, contents);
    QFETCH(QStringList, findings);
    const QStringList known{"exportScrAcceleration", "exportRssi", "highPrecision",
                            "otherDelimiter", "otherPlaceholder"};
    QCOMPARE(SettingsFileCheck::findings(QStringLiteral("s.ini"), contents, known), findings);
}

QTEST_GUILESS_MAIN(tst_SettingsFileCheck)
#include "tst_settingsfilecheck.moc"
