#include "groupselection.h"
#include "pluginhost.h"

#include <abstractexporterfactory.h>
#include <abstractoptionspage.h>
#include <exportrun.h>
#include <settingssynchronizer.h>

#include <QCheckBox>
#include <QComboBox>
#include <QtTest>

#include <memory>

// --groups: the names are those the options page shows, and a list switches
// exactly the groups it names.
class tst_GroupSelection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void namesAreThoseOfTheOptionsPage();
    void lists_data();
    void lists();
    void badLists_data();
    void badLists();

private:
    // The "export" settings that are on, and the orientation.
    QStringList switchedOn() const;

    PluginHost host{QStringLiteral(ASCIIEXPORTER_PLUGIN)};
    SettingsSynchronizer *store = nullptr;
};

void tst_GroupSelection::initTestCase()
{
    QVERIFY2(host.load(), qPrintable(host.errorString()));
    store = host.factory()->settings();
}

void tst_GroupSelection::init()
{
    for (const QString &key : store->keys())
        store->resetSetting(key);
}

QStringList tst_GroupSelection::switchedOn() const
{
    QStringList on;
    for (const QString &key : store->keys()) {
        if (key.startsWith(QLatin1String("export")) && key != QLatin1String("exportOrientation")
            && store->setting(key).toBool())
            on.append(key);
    }
    on.append(store->setting(QStringLiteral("exportOrientation")).toString());
    return on;
}

void tst_GroupSelection::namesAreThoseOfTheOptionsPage()
{
    const QList<AbstractOptionsPage *> pages = host.factory()->optionsPages();
    QCOMPARE(pages.size(), 1);
    std::unique_ptr<AbstractOptionsPage> page(pages.first());
    QStringList boxes;
    for (const QCheckBox *box : page->findChildren<QCheckBox *>()) {
        if (box->objectName().startsWith(QLatin1String("export")))
            boxes.append(box->objectName() + QLatin1Char('=')
                         + box->text().remove(QLatin1Char('&')));
    }
    QStringList table;
    for (int i = 0; i < GroupSelection::groupCount; ++i) {
        table.append(QLatin1String(GroupSelection::groups[i].key) + QLatin1Char('=')
                     + QLatin1String(GroupSelection::groups[i].label));
    }
    boxes.sort();
    table.sort();
    QCOMPARE(table, boxes);

    const QComboBox *orientation =
        page->findChild<QComboBox *>(QStringLiteral("exportOrientation"));
    QVERIFY(orientation);
    for (int i = 0; i < orientation->count(); ++i) {
        if (orientation->itemData(i).toString() != QLatin1String("None"))
            QVERIFY2(GroupSelection::names().contains(orientation->itemText(i)),
                     qPrintable(orientation->itemText(i)));
    }
}

void tst_GroupSelection::lists_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QStringList>("on");

    QTest::newRow("names as the page shows them")
        << "Packet Counter,Rate Of Turn,Quaternion"
        << QStringList{"exportCalibratedAngularVelocity", "exportPacketCounter", "Quaternion"};
    QTest::newRow("any case, any blanks")
        << " packet counter , RATEOFTURN,euler angles"
        << QStringList{"exportCalibratedAngularVelocity", "exportPacketCounter", "Euler"};
    QTest::newRow("Euler alone") << "euler" << QStringList{"Euler"};
    QTest::newRow("no orientation named") << "RSSI" << QStringList{"exportRssi", "None"};
    QTest::newRow("a name twice") << "rssi,RSSI" << QStringList{"exportRssi", "None"};
    QTest::newRow("none") << "none" << QStringList{"None"};
    // Every group, in the order the store lists its keys, and the orientation's default.
    QStringList every = dataGroupKeys();
    every.sort();
    QTest::newRow("all") << "ALL" << every + QStringList{"Euler"};
}

void tst_GroupSelection::lists()
{
    QFETCH(QString, list);
    QFETCH(QStringList, on);
    QString problem;
    QVERIFY2(GroupSelection::apply(list, store, &problem), qPrintable(problem));
    QCOMPARE(switchedOn(), on);
}

void tst_GroupSelection::badLists_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("problem");
    QTest::newRow("an unknown name") << "rssi,speed"
                                     << "--groups: unknown group \"speed\"; the groups are: ";
    QTest::newRow("an empty name") << "rssi,,temperature"
                                   << "--groups: unknown group \"\"; the groups are: ";
    QTest::newRow("the setting's key") << "exportRssi"
                                       << "--groups: unknown group \"exportRssi\"";
    QTest::newRow("two orientations") << "matrix,quaternion"
                                      << "--groups names two orientations; the file holds one";
}

void tst_GroupSelection::badLists()
{
    QFETCH(QString, list);
    QFETCH(QString, problem);
    const QStringList before = switchedOn();
    QString message;
    QVERIFY(!GroupSelection::apply(list, store, &message));
    QVERIFY2(message.startsWith(problem), qPrintable(message));
    QCOMPARE(switchedOn(), before);
}

QTEST_MAIN(tst_GroupSelection)
#include "tst_groupselection.moc"
