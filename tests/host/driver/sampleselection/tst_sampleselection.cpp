#include "sampleselection.h"

#include <QtTest>

// --from, --to and --every: which samples of a recording are exported.
class tst_SampleSelection : public QObject
{
    Q_OBJECT

private slots:
    void bounds_data();
    void bounds();
    void selected_data();
    void selected();
};

void tst_SampleSelection::bounds_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("value");

    using Kind = SampleSelection::Bound::Kind;
    QTest::newRow("an index") << "120" << true << int(Kind::Index) << 120.0;
    QTest::newRow("the first sample") << "0" << true << int(Kind::Index) << 0.0;
    QTest::newRow("seconds") << "12.5s" << true << int(Kind::Seconds) << 12.5;
    QTest::newRow("whole seconds") << "3s" << true << int(Kind::Seconds) << 3.0;
    QTest::newRow("a negative index") << "-1" << false << 0 << 0.0;
    QTest::newRow("negative seconds") << "-2s" << false << 0 << 0.0;
    QTest::newRow("a fraction of an index") << "1.5" << false << 0 << 0.0;
    QTest::newRow("infinite seconds") << "infs" << false << 0 << 0.0;
    QTest::newRow("another unit") << "3ms" << false << 0 << 0.0;
    QTest::newRow("nothing") << "" << false << 0 << 0.0;
    QTest::newRow("a bare unit") << "s" << false << 0 << 0.0;
}

void tst_SampleSelection::bounds()
{
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QFETCH(int, kind);
    QFETCH(double, value);

    SampleSelection::Bound bound;
    QString problem;
    QCOMPARE(SampleSelection::parseBound(text, &bound, &problem), valid);
    if (valid) {
        QCOMPARE(int(bound.kind), kind);
        QCOMPARE(bound.value, value);
    } else {
        QCOMPARE(
            problem,
            QStringLiteral("takes a sample index (0 is the first sample) or seconds from the start "
                           "such as 12.5s, not \"%1\"")
                .arg(text));
    }
}

void tst_SampleSelection::selected_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<int>("every");
    QTest::addColumn<double>("rate");
    QTest::addColumn<QList<int>>("indexes"); // of the first 12 samples

    QTest::newRow("everything") << ""
                                << "" << 1 << 100.0
                                << QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    QTest::newRow("from an index up to another") << "3"
                                                 << "6" << 1 << 100.0 << QList<int>{3, 4, 5};
    QTest::newRow("every third from the first") << ""
                                                << "" << 3 << 100.0 << QList<int>{0, 3, 6, 9};
    QTest::newRow("every fourth from the second") << "2"
                                                  << "" << 4 << 100.0 << QList<int>{2, 6, 10};
    // 10 Hz: sample i is at i / 10 s
    QTest::newRow("seconds") << "0.3s"
                             << "0.7s" << 1 << 10.0 << QList<int>{3, 4, 5, 6};
    QTest::newRow("seconds between samples") << "0.25s"
                                             << "0.75s" << 1 << 10.0 << QList<int>{3, 4, 5, 6, 7};
    QTest::newRow("seconds and every second sample")
        << "0.25s"
        << "" << 2 << 10.0 << QList<int>{3, 5, 7, 9, 11};
    QTest::newRow("an index up to seconds") << "1"
                                            << "0.4s" << 1 << 10.0 << QList<int>{1, 2, 3};
    // at 3 Hz, 1 s is sample 3 exactly, though 3 / 3.0 is computed
    QTest::newRow("a bound on a sample at an odd rate") << "1s"
                                                        << "2s" << 1 << 3.0 << QList<int>{3, 4, 5};
    QTest::newRow("past the end") << "20"
                                  << "" << 1 << 100.0 << QList<int>{};
    QTest::newRow("seconds far away") << "1e300s"
                                      << "" << 1 << 100.0 << QList<int>{};
}

void tst_SampleSelection::selected()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(int, every);
    QFETCH(double, rate);
    QFETCH(QList<int>, indexes);

    SampleSelection selection;
    QString problem;
    if (!from.isEmpty())
        QVERIFY(SampleSelection::parseBound(from, &selection.from, &problem));
    if (!to.isEmpty())
        QVERIFY(SampleSelection::parseBound(to, &selection.to, &problem));
    selection.every = every;
    QList<int> chosen;
    for (int index = 0; index < 12; ++index) {
        if (selection.selects(index, rate))
            chosen.append(index);
        // nothing after the end is chosen
        if (selection.isPastEnd(index, rate))
            QVERIFY(!selection.selects(index, rate));
    }
    QCOMPARE(chosen, indexes);
    QCOMPARE(selection.isEverything(), from.isEmpty() && to.isEmpty() && every == 1);
}

QTEST_GUILESS_MAIN(tst_SampleSelection)
#include "tst_sampleselection.moc"
