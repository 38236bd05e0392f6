#include "ulogfill.h"

#include <QtTest>

#include <vector>

// The placing of a slower topic's messages on the samples, policy by
// policy: which message each sample takes, and what is counted.
class TestUlogFill : public QObject
{
    Q_OBJECT

private slots:
    void placing_data();
    void placing();
    void askedTwice();
    void textOfPolicy_data();
    void textOfPolicy();
};

namespace {

using Times = std::vector<quint64>;
using Taken = std::vector<qint64>;
using Kind = UlogFillPolicy::Kind;

UlogFillPolicy policyOf(Kind kind, int maxAgeMs)
{
    UlogFillPolicy policy;
    policy.kind = kind;
    policy.maxAgeMs = maxAgeMs;
    return policy;
}

} // namespace

void TestUlogFill::placing_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("maxAgeMs");
    QTest::addColumn<double>("step");
    QTest::addColumn<Times>("samples");
    QTest::addColumn<Times>("messages");
    QTest::addColumn<Taken>("taken");
    QTest::addColumn<qint64>("used");
    QTest::addColumn<qint64>("dropped");
    QTest::addColumn<qint64>("collided");

    const Times samples{1000, 5000, 9000, 13000};
    const auto none = int(Kind::None);
    const auto hold = int(Kind::Hold);
    const auto nearest = int(Kind::Nearest);
    QTest::newRow("none: each on its nearest sample")
        << none << 500 << 4000.0 << samples << Times{1100, 8000, 12999} << Taken{0, -1, 1, 2}
        << qint64(3) << qint64(0) << qint64(0);
    QTest::newRow("none: halfway between two, the earlier sample")
        << none << 500 << 4000.0 << samples << Times{3000} << Taken{0, -1, -1, -1} << qint64(1)
        << qint64(0) << qint64(0);
    QTest::newRow("none: exactly one step after the last sample is placed, one µs more dropped")
        << none << 500 << 4000.0 << samples << Times{17000, 17001} << Taken{-1, -1, -1, 0}
        << qint64(1) << qint64(1) << qint64(0);
    QTest::newRow("none: exactly one step before the first sample is placed, one µs more dropped")
        << none << 500 << 4000.0 << Times{5000, 9000} << Times{999, 1000} << Taken{1, -1}
        << qint64(1) << qint64(1) << qint64(0);
    QTest::newRow("none: at the first sample minus the step")
        << none << 500 << 4000.0 << Times{5000, 9000} << Times{1000, 12999, 13000} << Taken{0, 1}
        << qint64(2) << qint64(0) << qint64(1);
    QTest::newRow("none: the nearer of two on one sample stays")
        << none << 500 << 4000.0 << samples << Times{4000, 5500} << Taken{-1, 1, -1, -1}
        << qint64(1) << qint64(0) << qint64(1);
    QTest::newRow("none: two as near, the earlier stays")
        << none << 500 << 4000.0 << samples << Times{4500, 5500} << Taken{-1, 0, -1, -1}
        << qint64(1) << qint64(0) << qint64(1);
    QTest::newRow("none: three on one sample, two collided")
        << none << 500 << 4000.0 << samples << Times{8000, 9000, 10000} << Taken{-1, -1, 1, -1}
        << qint64(1) << qint64(0) << qint64(2);
    QTest::newRow("none: of the same time, the first")
        << none << 500 << 4000.0 << samples << Times{9000, 9000} << Taken{-1, -1, 0, -1}
        << qint64(1) << qint64(0) << qint64(1);
    QTest::newRow("none: samples of the same time, the first takes it")
        << none << 500 << 4000.0 << Times{1000, 5000, 5000} << Times{5000} << Taken{-1, 0, -1}
        << qint64(1) << qint64(0) << qint64(0);
    QTest::newRow("hold: the latest at or before, repeated")
        << hold << 500 << 4000.0 << samples << Times{1000, 6000} << Taken{0, 0, 1, 1} << qint64(2)
        << qint64(0) << qint64(0);
    QTest::newRow("hold: exactly max-age old is taken")
        << hold << 4 << 4000.0 << samples << Times{1000, 5000} << Taken{0, 1, 1, -1} << qint64(2)
        << qint64(0) << qint64(0);
    QTest::newRow("hold: one µs over max-age is not")
        << hold << 4 << 4000.0 << samples << Times{4999} << Taken{-1, 0, -1, -1} << qint64(1)
        << qint64(0) << qint64(0);
    QTest::newRow("hold: never a message after the sample")
        << hold << 500 << 4000.0 << samples << Times{13001} << Taken{-1, -1, -1, -1} << qint64(0)
        << qint64(1) << qint64(0);
    QTest::newRow("hold: of two between samples, the later; the earlier is dropped")
        << hold << 500 << 4000.0 << samples << Times{6000, 7000} << Taken{-1, -1, 1, 1} << qint64(1)
        << qint64(1) << qint64(0);
    QTest::newRow("hold: of the same time, the first")
        << hold << 500 << 4000.0 << samples << Times{2000, 2000} << Taken{-1, 0, 0, 0} << qint64(1)
        << qint64(1) << qint64(0);
    QTest::newRow("nearest: either side")
        << nearest << 500 << 4000.0 << samples << Times{2000, 12000} << Taken{0, 0, 1, 1}
        << qint64(2) << qint64(0) << qint64(0);
    QTest::newRow("nearest: halfway, the earlier")
        << nearest << 500 << 4000.0 << samples << Times{3000, 7000} << Taken{0, 0, 1, 1}
        << qint64(2) << qint64(0) << qint64(0);
    QTest::newRow("nearest: exactly max-age away either side is taken")
        << nearest << 3 << 4000.0 << samples << Times{4000, 10000, 16000} << Taken{0, 0, 1, 1}
        << qint64(2) << qint64(1) << qint64(0);
    QTest::newRow("nearest: one µs over max-age either side is not")
        << nearest << 3 << 4000.0 << samples << Times{4001, 9999} << Taken{-1, 0, 1, -1}
        << qint64(2) << qint64(0) << qint64(0);
    QTest::newRow("nearest: after the sample, exactly max-age")
        << nearest << 2 << 4000.0 << Times{1000} << Times{3000} << Taken{0} << qint64(1)
        << qint64(0) << qint64(0);
    QTest::newRow("nearest: after the sample, one µs over")
        << nearest << 2 << 4000.0 << Times{1000} << Times{3001} << Taken{-1} << qint64(0)
        << qint64(1) << qint64(0);
    QTest::newRow("nearest: max-age 0 takes only the same time")
        << nearest << 0 << 4000.0 << samples << Times{5000, 9001} << Taken{-1, 0, -1, -1}
        << qint64(1) << qint64(1) << qint64(0);
}

void TestUlogFill::placing()
{
    QFETCH(int, kind);
    QFETCH(int, maxAgeMs);
    QFETCH(double, step);
    QFETCH(Times, samples);
    QFETCH(Times, messages);
    QFETCH(Taken, taken);

    UlogFill fill(policyOf(Kind(kind), maxAgeMs), step);
    fill.prepare(samples, messages);
    Taken got;
    for (std::size_t sample = 0; sample < samples.size(); ++sample)
        got.push_back(fill.messageFor(sample));
    QCOMPARE(got, taken);
    QTEST(fill.counts().used, "used");
    QTEST(fill.counts().dropped, "dropped");
    QTEST(fill.counts().collided, "collided");
}

// A rewind asks again from the first sample, with the same answers.
void TestUlogFill::askedTwice()
{
    const Times samples{1000, 5000, 9000};
    const Times messages{900, 5200};
    for (const Kind kind : {Kind::None, Kind::Hold, Kind::Nearest}) {
        UlogFill fill(policyOf(kind, 500), 4000.0);
        fill.prepare(samples, messages);
        Taken first, second;
        for (std::size_t sample = 0; sample < samples.size(); ++sample)
            first.push_back(fill.messageFor(sample));
        fill.rewind();
        for (std::size_t sample = 0; sample < samples.size(); ++sample)
            second.push_back(fill.messageFor(sample));
        QCOMPARE(second, first);
    }
}

void TestUlogFill::textOfPolicy_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("maxAgeMs");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << int(Kind::None) << 500 << QStringLiteral("none");
    QTest::newRow("hold") << int(Kind::Hold) << 500 << QStringLiteral("hold, at most 500 ms old");
    QTest::newRow("nearest") << int(Kind::Nearest) << 20
                             << QStringLiteral("nearest, at most 20 ms away");
}

void TestUlogFill::textOfPolicy()
{
    QFETCH(int, kind);
    QFETCH(int, maxAgeMs);
    QTEST(policyOf(Kind(kind), maxAgeMs).text(), "text");
}

QTEST_APPLESS_MAIN(TestUlogFill)
#include "tst_ulogfill.moc"
