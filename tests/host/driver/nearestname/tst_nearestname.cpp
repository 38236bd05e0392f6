#include "nearestname.h"

#include <QtTest>

// The name a typo most likely meant, and when a name is like none.
class tst_NearestName : public QObject
{
    Q_OBJECT

private slots:
    void nearest_data();
    void nearest();
};

void tst_NearestName::nearest_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("known");
    QTest::addColumn<bool>("closeOnly");
    QTest::addColumn<QString>("expected");

    const QStringList commands = {"export", "settings", "options", "info", "generate", "convert"};
    QTest::newRow("two letters swapped") << "exprot" << commands << true << "export";
    QTest::newRow("a letter missing") << "setings" << commands << true << "settings";
    QTest::newRow("a letter too many") << "infoo" << commands << true << "info";
    QTest::newRow("case does not count") << "EXPORT" << commands << true << "export";
    QTest::newRow("like none") << "transcode" << commands << true << "";
    QTest::newRow("a short name, two edits away") << "foo" << commands << true << "";
    QTest::newRow("like none, the nearest all the same")
        << "transcode" << commands << false << "info";
    QTest::newRow("the first of equally near ones")
        << "ab" << QStringList{"ac", "ad"} << false << "ac";
    QTest::newRow("nothing known") << "export" << QStringList() << false << "";
    QTest::newRow("an option") << "--ouput" << QStringList{"--output", "--output-dir", "--quiet"}
                               << true << "--output";
}

void tst_NearestName::nearest()
{
    QFETCH(QString, name);
    QFETCH(QStringList, known);
    QFETCH(bool, closeOnly);
    QFETCH(QString, expected);

    QCOMPARE(nearestName(name, known, closeOnly), expected);
}

QTEST_APPLESS_MAIN(tst_NearestName)
#include "tst_nearestname.moc"
