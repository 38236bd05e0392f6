#include "jsonnumber.h"

#include <numbertexts.h>

#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

std::string_view view(const QByteArray &text)
{
    return std::string_view(text.constData(), std::size_t(text.size()));
}

quint64 bits(double value)
{
    quint64 word;
    std::memcpy(&word, &value, sizeof word);
    return word;
}

} // namespace

Q_DECLARE_METATYPE(JsonNumber::Integer::Kind)

class tst_JsonNumber : public QObject
{
    Q_OBJECT

private slots:
    void integers_data();
    void integers();
    void doublesAtTheEdges_data();
    void doublesAtTheEdges();
    void longNumbersAsStrtodReadsThem_data();
    void longNumbersAsStrtodReadsThem();
    void display_data();
    void display();
};

void tst_JsonNumber::integers_data()
{
    using Kind = JsonNumber::Integer::Kind;
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<qint64>("value");
    QTest::addColumn<quint64>("unsignedValue");
    QTest::newRow("zero") << QByteArray("0") << Kind::Signed << qint64(0) << quint64(0);
    QTest::newRow("negative zero is zero")
        << QByteArray("-0") << Kind::Signed << qint64(0) << quint64(0);
    QTest::newRow("the highest signed")
        << QByteArray("9223372036854775807") << Kind::Signed << std::numeric_limits<qint64>::max()
        << quint64(0x7FFFFFFFFFFFFFFF);
    QTest::newRow("the lowest signed") << QByteArray("-9223372036854775808") << Kind::Signed
                                       << std::numeric_limits<qint64>::min() << quint64(0);
    QTest::newRow("just beyond signed") << QByteArray("9223372036854775808") << Kind::Unsigned
                                        << qint64(0) << quint64(0x8000000000000000);
    QTest::newRow("the highest unsigned") << QByteArray("18446744073709551615") << Kind::Unsigned
                                          << qint64(0) << std::numeric_limits<quint64>::max();
    QTest::newRow("beyond 64 bits")
        << QByteArray("18446744073709551616") << Kind::Other << qint64(0) << quint64(0);
    QTest::newRow("below the lowest signed")
        << QByteArray("-9223372036854775809") << Kind::Other << qint64(0) << quint64(0);
    QTest::newRow("a decimal point") << QByteArray("1.0") << Kind::Other << qint64(0) << quint64(0);
    QTest::newRow("an exponent") << QByteArray("1e3") << Kind::Other << qint64(0) << quint64(0);
    QTest::newRow("NaN") << QByteArray("NaN") << Kind::Other << qint64(0) << quint64(0);
    QTest::newRow("-Infinity") << QByteArray("-Infinity") << Kind::Other << qint64(0) << quint64(0);
}

void tst_JsonNumber::integers()
{
    QFETCH(QByteArray, text);
    QFETCH(JsonNumber::Integer::Kind, kind);
    QFETCH(qint64, value);
    QFETCH(quint64, unsignedValue);
    const JsonNumber::Integer integer = JsonNumber::toInteger(view(text));
    QCOMPARE(integer.kind, kind);
    if (kind == JsonNumber::Integer::Kind::Signed)
        QCOMPARE(integer.value, value);
    if (kind == JsonNumber::Integer::Kind::Unsigned)
        QCOMPARE(integer.unsignedValue, unsignedValue);
}

void tst_JsonNumber::doublesAtTheEdges_data()
{
    const double infinity = std::numeric_limits<double>::infinity();
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("negative zero keeps its sign") << QByteArray("-0") << -0.0;
    QTest::newRow("an underflow is zero") << QByteArray("1e-400") << 0.0;
    QTest::newRow("a negative underflow is negative zero") << QByteArray("-1e-400") << -0.0;
    QTest::newRow("an underflow in a long fraction")
        << QByteArray("0.000000000000000000001e-320") << 0.0;
    QTest::newRow("an overflow is infinity") << QByteArray("10e308") << infinity;
    QTest::newRow("a negative overflow is -infinity") << QByteArray("-1.8e308") << -infinity;
    QTest::newRow("an overflow in a long integer part")
        << QByteArray("1" + QByteArray(309, '0')) << infinity;
    QTest::newRow("Infinity") << QByteArray("Infinity") << infinity;
    QTest::newRow("Inf, which the parser also takes") << QByteArray("Inf") << infinity;
    QTest::newRow("-Infinity") << QByteArray("-Infinity") << -infinity;
}

void tst_JsonNumber::doublesAtTheEdges()
{
    QFETCH(QByteArray, text);
    QFETCH(double, value);
    const double read = JsonNumber::toDouble(view(text));
    QCOMPARE(read, value);
    QCOMPARE(std::signbit(read), std::signbit(value));
}

void tst_JsonNumber::longNumbersAsStrtodReadsThem_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const int zeros : {65536, 655359, 655360, 655361, 1000000, 1500000, 4000000}) {
        for (const NumberTexts::LongText &number : NumberTexts::longTexts(zeros))
            QTest::newRow(qPrintable(number.name)) << QByteArray::fromStdString(number.text);
    }
}

void tst_JsonNumber::longNumbersAsStrtodReadsThem()
{
    QFETCH(QByteArray, text);
    // Bit for bit: the same double, with the same sign.
    QCOMPARE(bits(JsonNumber::toDouble(view(text))), bits(NumberTexts::byStrtod(view(text))));
}

void tst_JsonNumber::display_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("an integer") << QByteArray("-42") << QStringLiteral("-42");
    QTest::newRow("negative zero as an integer") << QByteArray("-0") << QStringLiteral("0");
    QTest::newRow("beyond signed 64 bits")
        << QByteArray("9223372036854775808") << QStringLiteral("9223372036854775808");
    QTest::newRow("beyond 64 bits, as a double")
        << QByteArray("100000000000000000000") << QStringLiteral("1e+20");
    QTest::newRow("a whole number with a point") << QByteArray("3.0") << QStringLiteral("3.0");
    QTest::newRow("a whole number with an exponent")
        << QByteArray("1e3") << QStringLiteral("1000.0");
    QTest::newRow("a fraction") << QByteArray("1.50") << QStringLiteral("1.5");
    QTest::newRow("NaN, also with a sign") << QByteArray("-NaN") << QStringLiteral("NaN");
    QTest::newRow("-Infinity") << QByteArray("-Infinity") << QStringLiteral("-Infinity");
}

void tst_JsonNumber::display()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, shown);
    QCOMPARE(JsonNumber::display(view(text)), shown);
}

QTEST_GUILESS_MAIN(tst_JsonNumber)

#include "tst_jsonnumber.moc"
