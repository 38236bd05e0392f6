#include "choicegroup.h"
#include "pluginhost.h"

#include <abstractexporter.h>
#include <abstractexporterfactory.h>
#include <exportrun.h>
#include <settingssynchronizer.h>

#include <QtTest>

#include <memory>

// The delimiter and empty-field groups: --delimiter and --empty put a choice
// into the store as the options page does, and what the warnings say the
// plug-in writes is what the loaded plug-in writes.
class tst_ChoiceGroup : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void membersAreThePlugInsInItsOrder();
    void choose_data();
    void choose();
    void storedGroups_data();
    void storedGroups();
    void textsAreShownReadably_data();
    void textsAreShownReadably();

private:
    PluginHost host{QStringLiteral(ASCIIEXPORTER_PLUGIN)};
    SettingsSynchronizer *store = nullptr;
};

void tst_ChoiceGroup::initTestCase()
{
    QVERIFY2(host.load(), qPrintable(host.errorString()));
    store = host.factory()->settings();
}

void tst_ChoiceGroup::init()
{
    for (const QString &key : store->keys())
        store->resetSetting(key);
}

// The plug-in looks at the members in the order of their keys.
void tst_ChoiceGroup::membersAreThePlugInsInItsOrder()
{
    for (const ChoiceGroup *group : {&ChoiceGroup::delimiter(), &ChoiceGroup::emptyField()}) {
        QStringList members = group->keys();
        members.removeLast();
        QStringList sorted = members;
        sorted.sort();
        QCOMPARE(members, sorted);
        for (const QString &key : group->keys())
            QVERIFY2(store->defaultSetting(key).isValid(), qPrintable(key));
        QCOMPARE(group->contradiction(store), QString());
    }
    QCOMPARE(ChoiceGroup::delimiter().writtenText(store), QStringLiteral("\t"));
    QCOMPARE(ChoiceGroup::emptyField().writtenText(store), QString());
}

void tst_ChoiceGroup::choose_data()
{
    QTest::addColumn<bool>("delimiter");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("written");

    QTest::newRow("tab by name") << true << "tab"
                                 << "useTabDelimiter"
                                 << "\t";
    QTest::newRow("tab in capitals") << true << "TAB"
                                     << "useTabDelimiter"
                                     << "\t";
    QTest::newRow("tab as backslash t") << true << "\\t"
                                        << "useTabDelimiter"
                                        << "\t";
    QTest::newRow("a tab character") << true << "\t"
                                     << "useTabDelimiter"
                                     << "\t";
    QTest::newRow("space by name") << true << "space"
                                   << "useSpaceDelimiter"
                                   << " ";
    QTest::newRow("a blank") << true << " "
                             << "useSpaceDelimiter"
                             << " ";
    QTest::newRow("a comma") << true << ","
                             << "useCommaDelimiter"
                             << ",";
    QTest::newRow("comma by name") << true << "Comma"
                                   << "useCommaDelimiter"
                                   << ",";
    QTest::newRow("a semicolon") << true << ";"
                                 << "useSemiColonDelimiter"
                                 << ";";
    QTest::newRow("semicolon by name") << true << "semicolon"
                                       << "useSemiColonDelimiter"
                                       << ";";
    QTest::newRow("a bar is the custom delimiter") << true << "|"
                                                   << "useOtherDelimiter"
                                                   << "|";
    QTest::newRow("two characters are the custom delimiter") << true << "; "
                                                             << "useOtherDelimiter"
                                                             << "; ";
    QTest::newRow("empty fields stay empty by name") << false << "nothing"
                                                     << "insertNothing"
                                                     << "";
    QTest::newRow("empty fields stay empty") << false << ""
                                             << "insertNothing"
                                             << "";
    QTest::newRow("NaN") << false << "NaN"
                         << "insertNan"
                         << "NaN";
    QTest::newRow("nan in small letters is a text of its own") << false << "nan"
                                                               << "insertOtherPlaceholder"
                                                               << "nan";
    QTest::newRow("zero") << false << "0"
                          << "insertZero"
                          << "0";
    QTest::newRow("a dash is the custom text") << false << "-"
                                               << "insertOtherPlaceholder"
                                               << "-";
}

void tst_ChoiceGroup::choose()
{
    QFETCH(bool, delimiter);
    QFETCH(QString, text);
    QFETCH(QString, key);
    QFETCH(QString, written);

    const ChoiceGroup &group = delimiter ? ChoiceGroup::delimiter() : ChoiceGroup::emptyField();
    // A stored contradiction is replaced as a whole.
    for (const QString &member : group.keys().mid(0, group.memberCount))
        store->setSetting(member, true);
    group.choose(text, store);
    for (const QString &member : group.keys().mid(0, group.memberCount))
        QCOMPARE(store->setting(member).toBool(), member == key);
    QCOMPARE(group.contradiction(store), QString());
    QCOMPARE(group.writtenText(store), written);
    const QString textKey = QLatin1String(group.textKey);
    QCOMPARE(store->hasStoredSetting(textKey), key.contains(QLatin1String("Other")));
}

void tst_ChoiceGroup::storedGroups_data()
{
    QTest::addColumn<QStringList>("on");
    QTest::addColumn<QString>("otherText");
    QTest::addColumn<QString>("delimiter");
    QTest::addColumn<QString>("emptyField");
    QTest::addColumn<QString>("warning");

    const QStringList allEmpty{"insertNan", "insertNothing", "insertOtherPlaceholder",
                               "insertZero"};
    QTest::newRow("comma wins over tab")
        << QStringList{"useCommaDelimiter", "useTabDelimiter", "insertNothing"} << ""
        << ","
        << ""
        << "useCommaDelimiter and useTabDelimiter are both on: the plug-in uses \",\" between "
           "fields (useCommaDelimiter wins)";
    QTest::newRow("the custom delimiter wins over semicolon and blank")
        << QStringList{"useOtherDelimiter", "useSemiColonDelimiter", "useSpaceDelimiter",
                       "insertNothing"}
        << "|"
        << "|"
        << ""
        << "useOtherDelimiter, useSemiColonDelimiter and useSpaceDelimiter are all on: the "
           "plug-in uses \"|\" between fields (useOtherDelimiter wins)";
    QTest::newRow("blank wins over tab")
        << QStringList{"useSpaceDelimiter", "useTabDelimiter", "insertNothing"} << ""
        << " "
        << ""
        << "useSpaceDelimiter and useTabDelimiter are both on: the plug-in uses a blank between "
           "fields (useSpaceDelimiter wins)";
    QTest::newRow("no delimiter on is a tab")
        << QStringList{"insertNothing"} << ""
        << "\t"
        << ""
        << "none of useCommaDelimiter, useOtherDelimiter, useSemiColonDelimiter, "
           "useSpaceDelimiter and useTabDelimiter is on: the plug-in uses a tab between fields";
    QTest::newRow("nothing wins over zero")
        << QStringList{"useTabDelimiter", "insertNothing", "insertZero"} << ""
        << "\t"
        << ""
        << "insertNothing and insertZero are both on: the plug-in writes nothing into empty "
           "fields (insertNothing wins)";
    QTest::newRow("NaN wins over everything")
        << (QStringList{"useTabDelimiter"} + allEmpty) << "x"
        << "\t"
        << "NaN"
        << "insertNan, insertNothing, insertOtherPlaceholder and insertZero are all on: the "
           "plug-in writes \"NaN\" into empty fields (insertNan wins)";
    QTest::newRow("the custom text wins over zero")
        << QStringList{"useTabDelimiter", "insertOtherPlaceholder", "insertZero"} << "n/a"
        << "\t"
        << "n/a"
        << "insertOtherPlaceholder and insertZero are both on: the plug-in writes \"n/a\" into "
           "empty fields (insertOtherPlaceholder wins)";
    QTest::newRow("no empty-field text on is a tab")
        << QStringList{"useTabDelimiter"} << ""
        << "\t"
        << "\t"
        << "none of insertNan, insertNothing, insertOtherPlaceholder and insertZero is on: the "
           "plug-in writes a tab into empty fields";
    QTest::newRow("one of each is no contradiction")
        << QStringList{"useOtherDelimiter", "insertOtherPlaceholder"} << "%1"
        << "%1"
        << "%1"
        << "";
    QTest::newRow("an empty custom delimiter")
        << QStringList{"useOtherDelimiter", "insertNan"} << ""
        << ""
        << "NaN"
        << "";
}

// What the warning says the plug-in writes, the plug-in writes: the column
// line shows the delimiter, the missing sample time of the sparse sample the
// empty-field text.
void tst_ChoiceGroup::storedGroups()
{
    QFETCH(QStringList, on);
    QFETCH(QString, otherText);
    QFETCH(QString, delimiter);
    QFETCH(QString, emptyField);
    QFETCH(QString, warning);

    for (const ChoiceGroup *group : {&ChoiceGroup::delimiter(), &ChoiceGroup::emptyField()}) {
        for (const QString &member : group->keys().mid(0, group->memberCount))
            store->setSetting(member, on.contains(member));
        store->setSetting(QLatin1String(group->textKey), otherText);
    }
    QCOMPARE(ChoiceGroup::delimiter().writtenText(store), delimiter);
    QCOMPARE(ChoiceGroup::emptyField().writtenText(store), emptyField);
    QStringList warnings;
    for (const ChoiceGroup *group : {&ChoiceGroup::delimiter(), &ChoiceGroup::emptyField()}) {
        const QString contradiction = group->contradiction(store);
        if (!contradiction.isEmpty())
            warnings.append(contradiction);
    }
    QCOMPARE(warnings.join(QLatin1Char('\n')), warning);

    // The sparse sample's acceleration makes it a line.
    store->setSetting(QStringLiteral("exportCalibratedAcceleration"), true);
    TestSource source;
    std::unique_ptr<AbstractExporter> exporter(host.factory()->createExporter(&source));
    const QStringList lines =
        linesAfterHeaderBlock(exportSamples(exporter.get(), &source, {sparseSample()}));
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines.at(0).startsWith(QStringLiteral("PacketCounter") + delimiter
                                    + QStringLiteral("SampleTimeFine") + delimiter),
             qPrintable(lines.at(0)));
    // Fields run together leave no way to find the empty one.
    if (delimiter.isEmpty())
        return;
    const QString row = lines.at(1);
    const int counterEnd = row.indexOf(delimiter);
    QVERIFY2(counterEnd > 0, qPrintable(row));
    QVERIFY2(row.mid(counterEnd + delimiter.size()).startsWith(emptyField + delimiter),
             qPrintable(row));
}

void tst_ChoiceGroup::textsAreShownReadably_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");

    QTest::newRow("a line feed") << "\n"
                                 << "\"\\n\"";
    QTest::newRow("CR LF") << "\r\n"
                           << "\"\\r\\n\"";
    QTest::newRow("a tab among others") << "\t|"
                                        << "\"\\t|\"";
    QTest::newRow("a control character") << QString(QChar(0x1b)) << "\"\\x1b\"";
    QTest::newRow("a character outside the Basic Multilingual Plane")
        << QString::fromUtf8("\xf0\x9d\x84\x9e") << QString::fromUtf8("\"\xf0\x9d\x84\x9e\"");
    QTest::newRow("a long text is cut short")
        << QString(1000, QLatin1Char('x'))
        << "\"" + QString(40, QLatin1Char('x')) + "\"... (1000 characters)";
    QTest::newRow("not between the halves of a surrogate pair")
        << QString(39, QLatin1Char('x')) + QString::fromUtf8("\xf0\x9d\x84\x9e")
        << "\"" + QString(39, QLatin1Char('x')) + "\"... (41 characters)";
}

// A custom text in a warning stays on its line and within reason.
void tst_ChoiceGroup::textsAreShownReadably()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);

    store->setSetting(QStringLiteral("useOtherDelimiter"), true);
    store->setSetting(QStringLiteral("otherDelimiter"), text);
    QCOMPARE(ChoiceGroup::delimiter().contradiction(store),
             QStringLiteral("useOtherDelimiter and useTabDelimiter are both on: the plug-in uses "
                            "%1 between fields (useOtherDelimiter wins)")
                 .arg(shown));
}

QTEST_GUILESS_MAIN(tst_ChoiceGroup)
#include "tst_choicegroup.moc"
