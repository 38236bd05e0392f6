#include "gapfinder.h"

#include <QtTest>

// Gaps in packet counters and sample times, across the wrap of their words.
class tst_GapFinder : public QObject
{
    Q_OBJECT

private slots:
    void counters_data();
    void counters();
    void times_data();
    void times();
    void samplesWithoutAValueAreLeftOut();
};

using Values = QVector<quint32>;

namespace {

GapFinder found(GapFinder::Rule rule, quint64 modulus, const Values &values)
{
    GapFinder gaps(rule, modulus);
    for (int i = 0; i < values.size(); ++i)
        gaps.add(i, values.at(i));
    gaps.finish();
    return gaps;
}

void addColumns()
{
    QTest::addColumn<Values>("values");
    QTest::addColumn<qint64>("gaps");
    QTest::addColumn<qint64>("sample");
    QTest::addColumn<quint32>("from");
    QTest::addColumn<quint32>("to");
    QTest::addColumn<quint32>("step");
}

void check(const GapFinder &finder)
{
    QFETCH(qint64, gaps);
    QFETCH(qint64, sample);
    QFETCH(quint32, from);
    QFETCH(quint32, to);
    QFETCH(quint32, step);
    QCOMPARE(finder.gaps(), gaps);
    const GapFinder::Gap largest = finder.largest();
    QCOMPARE(largest.sample, sample);
    if (sample >= 0) {
        QCOMPARE(largest.from, from);
        QCOMPARE(largest.to, to);
        QCOMPARE(largest.step, step);
    }
}

} // namespace

void tst_GapFinder::counters_data()
{
    addColumns();
    QTest::newRow("no values") << Values{} << qint64(0) << qint64(-1) << 0u << 0u << 0u;
    QTest::newRow("one value") << Values{7} << qint64(0) << qint64(-1) << 0u << 0u << 0u;
    QTest::newRow("steps of one") << Values{4, 5, 6, 7} << qint64(0) << qint64(-1) << 0u << 0u
                                  << 0u;
    QTest::newRow("the wrap of 16 bits is no gap")
        << Values{65534, 65535, 0, 1} << qint64(0) << qint64(-1) << 0u << 0u << 0u;
    QTest::newRow("a jump over the wrap")
        << Values{65534, 65535, 3, 4} << qint64(1) << qint64(2) << 65535u << 3u << 4u;
    QTest::newRow("the largest of two jumps")
        << Values{1, 3, 4, 9, 10} << qint64(2) << qint64(3) << 4u << 9u << 5u;
    QTest::newRow("a repeat is a gap")
        << Values{1, 2, 2, 3} << qint64(1) << qint64(2) << 2u << 2u << 0u;
    QTest::newRow("going back counts forward through the wrap")
        << Values{10, 11, 5, 6} << qint64(1) << qint64(2) << 11u << 5u << 65530u;
}

void tst_GapFinder::counters()
{
    QFETCH(Values, values);
    const GapFinder gaps = found(GapFinder::Rule::StepOfOne, 65536, values);
    QCOMPARE(gaps.values(), qint64(values.size()));
    QCOMPARE(gaps.typicalStep(), 1u);
    check(gaps);
}

void tst_GapFinder::times_data()
{
    addColumns();
    QTest::addColumn<quint32>("typical");
    QTest::addColumn<quint64>("span");
    QTest::addColumn<quint64>("modulus");

    constexpr quint64 word = quint64(1) << 32;
    constexpr quint64 weekOfMilliseconds = 604800000;
    QTest::newRow("even steps") << Values{100, 200, 300, 400} << qint64(0) << qint64(-1) << 0u << 0u
                                << 0u << 100u << quint64(300) << word;
    QTest::newRow("one step of twice the others")
        << Values{100, 200, 300, 500, 600} << qint64(1) << qint64(3) << 300u << 500u << 200u << 100u
        << quint64(500) << word;
    QTest::newRow("a step of 1.5 times the median is no gap")
        << Values{100, 200, 300, 450, 550} << qint64(0) << qint64(-1) << 0u << 0u << 0u << 100u
        << quint64(450) << word;
    QTest::newRow("just over 1.5 times is")
        << Values{100, 200, 300, 451, 551} << qint64(1) << qint64(3) << 300u << 451u << 151u << 100u
        << quint64(451) << word;
    QTest::newRow("uneven steps around the median")
        << Values{0, 9, 20, 30, 41, 50, 200} << qint64(1) << qint64(6) << 50u << 200u << 150u << 10u
        << quint64(200) << word;
    QTest::newRow("the wrap of 32 bits is no gap")
        << Values{4294967096u, 4294967196u, 0, 100} << qint64(0) << qint64(-1) << 0u << 0u << 0u
        << 100u << quint64(300) << word;
    QTest::newRow("the wrap of a week of milliseconds is no gap")
        << Values{604799800u, 604799900u, 0, 100} << qint64(0) << qint64(-1) << 0u << 0u << 0u
        << 100u << quint64(300) << weekOfMilliseconds;
    QTest::newRow("a gap across the wrap of a week")
        << Values{604799800u, 604799900u, 400, 500} << qint64(1) << qint64(2) << 604799900u << 400u
        << 500u << 100u << quint64(700) << weekOfMilliseconds;
}

void tst_GapFinder::times()
{
    QFETCH(Values, values);
    QFETCH(quint32, typical);
    QFETCH(quint64, span);
    QFETCH(quint64, modulus);
    const GapFinder gaps = found(GapFinder::Rule::TypicalStep, modulus, values);
    QCOMPARE(gaps.typicalStep(), typical);
    QCOMPARE(gaps.span(), span);
    check(gaps);
}

void tst_GapFinder::samplesWithoutAValueAreLeftOut()
{
    GapFinder gaps(GapFinder::Rule::StepOfOne, 65536);
    gaps.add(0, 5);
    gaps.add(3, 6);
    gaps.add(4, 8);
    QCOMPARE(gaps.values(), qint64(3));
    QCOMPARE(gaps.gaps(), qint64(1));
    QCOMPARE(gaps.largest().sample, qint64(4));
}

QTEST_GUILESS_MAIN(tst_GapFinder)
#include "tst_gapfinder.moc"
