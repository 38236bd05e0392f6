#include <kvconstants.h>

#include <QtTest>

#include <cmath>

// The named values of the type library, as a plug-in linked against it reads them.
class tst_KvConstants : public QObject
{
    Q_OBJECT

private slots:
    void zeroIsPositiveZero();
    void infinityIsPositiveInfinity();
};

void tst_KvConstants::zeroIsPositiveZero()
{
    QCOMPARE(KvConstants::zero, 0.0);
    QVERIFY(!std::signbit(KvConstants::zero));
}

void tst_KvConstants::infinityIsPositiveInfinity()
{
    QVERIFY(std::isinf(KvConstants::infinity));
    QVERIFY(KvConstants::infinity > 0.0);
}

QTEST_GUILESS_MAIN(tst_KvConstants)
#include "tst_kvconstants.moc"
