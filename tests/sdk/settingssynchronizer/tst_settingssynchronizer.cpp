#include <settingssynchronizer.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

class tst_SettingsSynchronizer : public QObject
{
    Q_OBJECT

private slots:
    void storedValueWinsOverDefault();
    void unknownKeyIsInvalid();
    void resetBringsBackTheDefault();
    void keysAreSortedAndComplete();
    void settingChangedOnlyOnChange();
    void valueFromText_data();
    void valueFromText();
    void saveAndLoadRoundTrip();
    void loadTypesByDefaultAndSkipsBadBooleans();
    void loadOfMissingFileStoresNothing();
    void loadSkipsAValueWithoutKey();
    void loadOfUnreadableFileFails();
    void answersFollowChanges();
    void freshKeyStringsGetTheirOwnAnswers();

private:
    static SettingsSynchronizer *makeStore(QObject *parent = nullptr);
};

SettingsSynchronizer *tst_SettingsSynchronizer::makeStore(QObject *parent)
{
    const QMap<QString, QVariant> defaults{
        {QStringLiteral("flag"), true},
        {QStringLiteral("text"), QStringLiteral("abc")},
    };
    const QMap<QString, QString> descriptions{
        {QStringLiteral("flag"), QStringLiteral("A flag")},
        {QStringLiteral("described"), QStringLiteral("Only a description")},
    };
    return new SettingsSynchronizer(defaults, descriptions, parent);
}

void tst_SettingsSynchronizer::storedValueWinsOverDefault()
{
    QScopedPointer<SettingsSynchronizer> store(makeStore());
    QCOMPARE(store->setting(QStringLiteral("flag")), QVariant(true));
    store->setSetting(QStringLiteral("flag"), false);
    QCOMPARE(store->setting(QStringLiteral("flag")), QVariant(false));
    QCOMPARE(store->defaultSetting(QStringLiteral("flag")), QVariant(true));
    QCOMPARE(store->description(QStringLiteral("flag")), QStringLiteral("A flag"));
}

void tst_SettingsSynchronizer::unknownKeyIsInvalid()
{
    QScopedPointer<SettingsSynchronizer> store(makeStore());
    const QVariant value = store->setting(QStringLiteral("highPrecision"));
    QVERIFY(!value.isValid());
    QCOMPARE(value.toBool(), false);
    QCOMPARE(value.toString(), QString());
    QVERIFY(!store->defaultSetting(QStringLiteral("highPrecision")).isValid());
}

void tst_SettingsSynchronizer::resetBringsBackTheDefault()
{
    QScopedPointer<SettingsSynchronizer> store(makeStore());
    store->setSetting(QStringLiteral("text"), QStringLiteral("xyz"));
    QVERIFY(store->hasStoredSetting(QStringLiteral("text")));
    store->resetSetting(QStringLiteral("text"));
    QVERIFY(!store->hasStoredSetting(QStringLiteral("text")));
    QCOMPARE(store->setting(QStringLiteral("text")).toString(), QStringLiteral("abc"));
}

void tst_SettingsSynchronizer::keysAreSortedAndComplete()
{
    QScopedPointer<SettingsSynchronizer> store(makeStore());
    store->setSetting(QStringLiteral("extra"), 1);
    QCOMPARE(store->keys(),
             (QStringList{QStringLiteral("described"), QStringLiteral("extra"),
                          QStringLiteral("flag"), QStringLiteral("text")}));
}

void tst_SettingsSynchronizer::settingChangedOnlyOnChange()
{
    QScopedPointer<SettingsSynchronizer> store(makeStore());
    QSignalSpy spy(store.data(), &SettingsSynchronizer::settingChanged);
    QVERIFY(spy.isValid());
    store->setSetting(QStringLiteral("flag"), false);
    store->setSetting(QStringLiteral("flag"), false);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("flag"));
}

void tst_SettingsSynchronizer::valueFromText_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("fits");
    QTest::addColumn<QVariant>("value");

    QTest::newRow("true for a boolean key") << "flag"
                                            << "true" << true << QVariant(true);
    QTest::newRow("0 for a boolean key") << "flag"
                                         << "0" << true << QVariant(false);
    QTest::newRow("yes is no boolean") << "flag"
                                       << "yes" << false << QVariant();
    QTest::newRow("TRUE is no boolean") << "flag"
                                        << "TRUE" << false << QVariant();
    QTest::newRow("a string key takes any text")
        << "text"
        << "a = b " << true << QVariant(QStringLiteral("a = b "));
    QTest::newRow("a string key keeps true as text")
        << "text"
        << "true" << true << QVariant(QStringLiteral("true"));
    QTest::newRow("an undeclared key takes true as a boolean") << "highPrecision"
                                                               << "true" << true << QVariant(true);
    QTest::newRow("an undeclared key takes 1 as text")
        << "highPrecision"
        << "1" << true << QVariant(QStringLiteral("1"));
}

void tst_SettingsSynchronizer::valueFromText()
{
    QFETCH(QString, key);
    QFETCH(QString, text);
    QFETCH(bool, fits);
    QFETCH(QVariant, value);

    QScopedPointer<SettingsSynchronizer> store(makeStore());
    QVariant result;
    QCOMPARE(store->valueFromText(key, text, &result), fits);
    if (fits) {
        QCOMPARE(result.userType(), value.userType());
        QCOMPARE(result, value);
    }
}

void tst_SettingsSynchronizer::saveAndLoadRoundTrip()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString fileName = dir.filePath(QStringLiteral("settings.ini"));

    QScopedPointer<SettingsSynchronizer> first(makeStore());
    first->setSetting(QStringLiteral("flag"), false);
    first->setSetting(QStringLiteral("text"), QStringLiteral("a, b; \"c\" @d"));
    first->setSetting(QStringLiteral("highPrecision"), true);
    QVERIFY(first->save(fileName));

    QScopedPointer<SettingsSynchronizer> second(makeStore());
    QStringList problems;
    QVERIFY(second->load(fileName, &problems));
    QVERIFY(problems.isEmpty());
    QCOMPARE(second->setting(QStringLiteral("flag")), QVariant(false));
    QCOMPARE(second->setting(QStringLiteral("flag")).userType(), int(QMetaType::Bool));
    QCOMPARE(second->setting(QStringLiteral("text")), QVariant(QStringLiteral("a, b; \"c\" @d")));
    QCOMPARE(second->setting(QStringLiteral("highPrecision")), QVariant(true));
}

void tst_SettingsSynchronizer::loadTypesByDefaultAndSkipsBadBooleans()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString fileName = dir.filePath(QStringLiteral("settings.ini"));
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[General]\nflag=maybe\ntext=1\n");
    file.close();

    QScopedPointer<SettingsSynchronizer> store(makeStore());
    QStringList problems;
    QVERIFY(store->load(fileName, &problems));
    QCOMPARE(problems.size(), 1);
    QVERIFY(problems.first().contains(QStringLiteral("flag")));
    QCOMPARE(store->setting(QStringLiteral("flag")), QVariant(true));
    QCOMPARE(store->setting(QStringLiteral("text")), QVariant(QStringLiteral("1")));
}

void tst_SettingsSynchronizer::loadOfMissingFileStoresNothing()
{
    QTemporaryDir dir;
    QScopedPointer<SettingsSynchronizer> store(makeStore());
    QVERIFY(store->load(dir.filePath(QStringLiteral("absent.ini"))));
    QVERIFY(!store->hasStoredSetting(QStringLiteral("flag")));
}

void tst_SettingsSynchronizer::loadSkipsAValueWithoutKey()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString fileName = dir.filePath(QStringLiteral("settings.ini"));
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[General]\n=true\ntext=x\n");
    file.close();

    QScopedPointer<SettingsSynchronizer> store(makeStore());
    QVERIFY(store->load(fileName));
    QVERIFY(!store->hasStoredSetting(QString()));
    QCOMPARE(store->keys(), (QStringList{"described", "flag", "text"}));
}

void tst_SettingsSynchronizer::loadOfUnreadableFileFails()
{
    QTemporaryDir dir;
    QScopedPointer<SettingsSynchronizer> store(makeStore());
    // a folder where the file should be
    QVERIFY(!store->load(dir.path()));
}

void tst_SettingsSynchronizer::answersFollowChanges()
{
    QScopedPointer<SettingsSynchronizer> store(makeStore());
    const QString key = QStringLiteral("flag");
    QCOMPARE(store->setting(key), QVariant(true));
    QCOMPARE(store->setting(key), QVariant(true));
    store->setSetting(key, false);
    QCOMPARE(store->setting(key), QVariant(false));
    store->resetSetting(key);
    QCOMPARE(store->setting(key), QVariant(true));
    store->setSetting(QStringLiteral("other"), 5);
    QCOMPARE(store->setting(key), QVariant(true));
    QCOMPARE(store->setting(QStringLiteral("other")), QVariant(5));
}

void tst_SettingsSynchronizer::freshKeyStringsGetTheirOwnAnswers()
{
    // Keys made and dropped one after the other tend to reuse the same
    // memory: each must still get the answer of its own text.
    QScopedPointer<SettingsSynchronizer> store(makeStore());
    for (int i = 0; i < 500; ++i)
        store->setSetting(QStringLiteral("key%1").arg(i), i);
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 500; ++i) {
            const QString key = QStringLiteral("key%1").arg(i);
            QCOMPARE(store->setting(key), QVariant(i));
        }
    }
    QString changing = QStringLiteral("key1");
    QCOMPARE(store->setting(changing), QVariant(1));
    changing[3] = QLatin1Char('2');
    QCOMPARE(store->setting(changing), QVariant(2));
}

QTEST_GUILESS_MAIN(tst_SettingsSynchronizer)
#include "tst_settingssynchronizer.moc"
