#include <numberreading.h>
#include <numbertexts.h>

#include <QtTest>

// Every number a recording holds is read to the nearest double, exactly as
// std::from_chars reads it, whichever way the reader takes through the line.
class tst_NumberReading : public QObject
{
    Q_OBJECT

private slots:
    void everyFormIsExact_data();
    void everyFormIsExact();
    void expectedValuesOfKnownTexts_data();
    void expectedValuesOfKnownTexts();
};

void tst_NumberReading::everyFormIsExact_data()
{
    QTest::addColumn<int>("form");
    for (const NumberTexts::Form form : NumberTexts::forms())
        QTest::newRow(qPrintable(NumberTexts::name(form))) << int(form);
}

void tst_NumberReading::everyFormIsExact()
{
    QFETCH(int, form);
#ifdef SANITIZED_BUILD
    // The plain build checks the full count; under the sanitizers, which
    // look for faults of memory rather than of digits, a fifth does.
    constexpr qint64 count = 200000;
#else
    constexpr qint64 count = 1000000;
#endif
    qint64 checked = 0;
    const QString mismatch =
        checkNumberReading(NumberTexts::Form(form), count, 20261123 + quint64(form), &checked);
    QVERIFY2(mismatch.isEmpty(), qPrintable(mismatch));
    QCOMPARE(checked, count);
}

// The oracle itself, on texts whose doubles are known.
void tst_NumberReading::expectedValuesOfKnownTexts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("the recording whose last digits went astray")
        << QByteArray("123456789.12345679") << 0x1.d6f34547e6b75p+26;
    QTest::newRow("an integer velocity") << QByteArray("-8821589224548996") << -8821589224548996.0;
    QTest::newRow("2^53 + 1 rounds to even")
        << QByteArray("9007199254740993") << 9007199254740992.0;
    QTest::newRow("the smallest subnormal") << QByteArray("4.9e-324") << 0x1p-1074;
    QTest::newRow("half the smallest subnormal rounds to zero")
        << QByteArray("2.4703282292062327e-324") << 0.0;
    QTest::newRow("far below the range is zero") << QByteArray("-1e-400") << -0.0;
    QTest::newRow("beyond the largest double is infinity")
        << QByteArray("1.8e308") << std::numeric_limits<double>::infinity();
    QTest::newRow("the largest double")
        << QByteArray("1.7976931348623157e308") << std::numeric_limits<double>::max();
}

void tst_NumberReading::expectedValuesOfKnownTexts()
{
    QFETCH(QByteArray, text);
    QFETCH(double, value);
    const double expected =
        NumberTexts::expected(std::string_view(text.constData(), std::size_t(text.size())));
    QCOMPARE(expected, value);
    QCOMPARE(std::signbit(expected), std::signbit(value));
}

QTEST_GUILESS_MAIN(tst_NumberReading)

#include "tst_numberreading.moc"
