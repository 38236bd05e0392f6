#include "numberformatcase.h"

#include "numberformatappend.h"

#include <QtTest>

#include <cfloat>
#include <cstring>
#include <limits>

namespace {

#ifdef SANITIZED_BUILD
// The plain build checks the full count; under the sanitizers, which look
// for faults of memory rather than of digits, a fifth does.
constexpr int valuesPerCase = 40000;
#else
constexpr int valuesPerCase = 200000;
#endif
constexpr quint64 seed = 0x5eed2015;
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

const QString digitsOf1e300 = QStringLiteral("10000000000000000525047602552044202487044685811081591"
                                             "54915854115511802457988908195786371375080447864"
                                             "04370444383288387817694252323536043057564479218478670"
                                             "69828483872009265758037378302337947880900593689"
                                             "53234970799945081119038967640880074652742780142494579"
                                             "25878882005684283811566947219638686545940054016"
                                             "0");
const QString digitsOfDblMax = QStringLiteral("1797693134862315708145274237317043567980705675258449"
                                              "965989174768031572607800285387605895586327668781"
                                              "7154045895351438246423432132688946418276846754670353"
                                              "751698604991057655128207624549009038932894407586"
                                              "8508455133942304583236903222948165808559332123348274"
                                              "797826204144723168738177180919299881250404026184"
                                              "124858368");

QByteArray printfPattern(int precision, char notation)
{
    return "%." + QByteArray::number(precision) + notation;
}

} // namespace

class tst_NumberFormat : public QObject
{
    Q_OBJECT

private slots:
    void fixedText_data();
    void fixedText();
    void generalText_data();
    void generalText();
    void integerText_data();
    void integerText();
    void unsignedText_data();
    void unsignedText();
    void appendKeepsTheLine();
    void longestTextFillsMaxLength();
    void matchesQt_data();
    void matchesQt();
};

void tst_NumberFormat::fixedText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("expected");

    QTest::newRow("20.125 with two decimals is 20.13, where C's printf gives 20.12")
        << 20.125 << 2 << QStringLiteral("20.13");
    QTest::newRow("-20.125 with two decimals is -20.13")
        << -20.125 << 2 << QStringLiteral("-20.13");
    QTest::newRow("0.125 with two decimals is 0.13") << 0.125 << 2 << QStringLiteral("0.13");
    QTest::newRow("0.5 with no decimals is 1") << 0.5 << 0 << QStringLiteral("1");
    QTest::newRow("1.5 with no decimals is 2") << 1.5 << 0 << QStringLiteral("2");
    QTest::newRow("2.5 with no decimals is 3") << 2.5 << 0 << QStringLiteral("3");
    QTest::newRow("-2.5 with no decimals is -3") << -2.5 << 0 << QStringLiteral("-3");
    QTest::newRow("2.675 with two decimals is 2.67, the double lies below the tie")
        << 2.675 << 2 << QStringLiteral("2.67");
    QTest::newRow("0.05 with one decimal is 0.1, the double lies above the tie")
        << 0.05 << 1 << QStringLiteral("0.1");
    QTest::newRow("9.9999995 with six decimals is 9.999999, the double lies below the tie")
        << 9.9999995 << 6 << QStringLiteral("9.999999");
    QTest::newRow("0.0000005 with six decimals is 0.000000, the double lies below the tie")
        << 0.0000005 << 6 << QStringLiteral("0.000000");
    QTest::newRow("negative zero with six decimals has no sign")
        << -0.0 << 6 << QStringLiteral("0.000000");
    QTest::newRow("-0.0000001 with six decimals keeps its sign")
        << -0.0000001 << 6 << QStringLiteral("-0.000000");
    QTest::newRow("-0.4 with no decimals is -0") << -0.4 << 0 << QStringLiteral("-0");
    QTest::newRow("NaN is nan") << notANumber << 3 << QStringLiteral("nan");
    QTest::newRow("negative NaN is nan too") << -notANumber << 3 << QStringLiteral("nan");
    QTest::newRow("infinity is inf") << infinity << 3 << QStringLiteral("inf");
    QTest::newRow("negative infinity is -inf") << -infinity << 3 << QStringLiteral("-inf");
    QTest::newRow("the smallest subnormal with nine decimals is zero")
        << std::numeric_limits<double>::denorm_min() << 9 << QStringLiteral("0.000000000");
    QTest::newRow("2^53 + 2 with one decimal is a whole number")
        << 9007199254740994.0 << 1 << QStringLiteral("9007199254740994.0");
    QTest::newRow("1e22 with three decimals is exact")
        << 1e22 << 3 << QStringLiteral("10000000000000000000000.000");
    QTest::newRow("1e300 with nine decimals prints every digit of the double")
        << 1e300 << 9 << QString(digitsOf1e300 + QStringLiteral(".000000000"));
    QTest::newRow("-1e300 with two decimals prints every digit of the double")
        << -1e300 << 2 << QString(QLatin1Char('-') + digitsOf1e300 + QStringLiteral(".00"));
    QTest::newRow("the largest double with two decimals has 309 digits")
        << DBL_MAX << 2 << QString(digitsOfDblMax + QStringLiteral(".00"));
}

void tst_NumberFormat::fixedText()
{
    QFETCH(double, value);
    QFETCH(int, decimals);
    QFETCH(QString, expected);

    QCOMPARE(QString::asprintf(printfPattern(decimals, 'f').constData(), value), expected);
    QString ours;
    NumberFormat::appendFixed(ours, value, decimals);
    QCOMPARE(ours, expected);
}

void tst_NumberFormat::generalText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("digits");
    QTest::addColumn<QString>("expected");

    QTest::newRow("0.1 with 18 digits shows the double's error")
        << 0.1 << 18 << QStringLiteral("0.100000000000000006");
    QTest::newRow("1e-5 with 18 digits switches to exponent form")
        << 1e-5 << 18 << QStringLiteral("1.00000000000000008e-05");
    QTest::newRow("1e100 with 18 digits has a three-digit exponent")
        << 1e100 << 18 << QStringLiteral("1.00000000000000002e+100");
    QTest::newRow("1000000000000000.125 with 18 digits is ...13, where C gives ...12")
        << 1000000000000000.125 << 18 << QStringLiteral("1000000000000000.13");
    QTest::newRow("the largest double with 18 digits")
        << DBL_MAX << 18 << QStringLiteral("1.79769313486231571e+308");
    QTest::newRow("the smallest subnormal with two digits")
        << std::numeric_limits<double>::denorm_min() << 2 << QStringLiteral("4.9e-324");
    QTest::newRow("negative zero in general notation is 0") << -0.0 << 18 << QStringLiteral("0");
    QTest::newRow("10 with two digits is 10") << 10.0 << 2 << QStringLiteral("10");
    QTest::newRow("100 with two digits is 1e+02") << 100.0 << 2 << QStringLiteral("1e+02");
    QTest::newRow("99.5 with two digits rounds up to 1e+02")
        << 99.5 << 2 << QStringLiteral("1e+02");
    QTest::newRow("125 with two digits is 1.3e+02") << 125.0 << 2 << QStringLiteral("1.3e+02");
    QTest::newRow("0.125 with two digits is 0.13") << 0.125 << 2 << QStringLiteral("0.13");
    QTest::newRow("-0.125 with two digits is -0.13") << -0.125 << 2 << QStringLiteral("-0.13");
    QTest::newRow("0.0001 with two digits stays in decimal form")
        << 0.0001 << 2 << QStringLiteral("0.0001");
    QTest::newRow("0.00001 with two digits is 1e-05") << 0.00001 << 2 << QStringLiteral("1e-05");
    QTest::newRow("negative NaN in general notation is nan")
        << -notANumber << 2 << QStringLiteral("nan");
    QTest::newRow("negative infinity in general notation is -inf")
        << -infinity << 18 << QStringLiteral("-inf");
}

void tst_NumberFormat::generalText()
{
    QFETCH(double, value);
    QFETCH(int, digits);
    QFETCH(QString, expected);

    QCOMPARE(QString::asprintf(printfPattern(digits, 'g').constData(), value), expected);
    QCOMPARE(QString::number(value, 'g', digits), expected);
    QString ours;
    NumberFormat::appendGeneral(ours, value, digits);
    QCOMPARE(ours, expected);
}

void tst_NumberFormat::integerText_data()
{
    QTest::addColumn<qint64>("value");
    QTest::addColumn<int>("width");
    QTest::addColumn<char>("fill");
    QTest::addColumn<QString>("expected");

    QTest::newRow("zero is 0") << qint64(0) << 0 << ' ' << QStringLiteral("0");
    QTest::newRow("the lowest qint64 has all its digits")
        << std::numeric_limits<qint64>::min() << 0 << ' ' << QStringLiteral("-9223372036854775808");
    QTest::newRow("-42 in width five with zero fill puts the zeros after the sign")
        << qint64(-42) << 5 << '0' << QStringLiteral("-0042");
    QTest::newRow("-42 in width five with space fill puts the spaces before the sign")
        << qint64(-42) << 5 << ' ' << QStringLiteral("  -42");
    QTest::newRow("42 in width ten with zero fill")
        << qint64(42) << 10 << '0' << QStringLiteral("0000000042");
    QTest::newRow("123456 in width five is not cut")
        << qint64(123456) << 5 << '0' << QStringLiteral("123456");
    QTest::newRow("-12345 in width five with zero fill is not cut")
        << qint64(-12345) << 5 << '0' << QStringLiteral("-12345");
}

void tst_NumberFormat::integerText()
{
    QFETCH(qint64, value);
    QFETCH(int, width);
    QFETCH(char, fill);
    QFETCH(QString, expected);

    QCOMPARE(width == 0 ? QString::number(value)
                        : QStringLiteral("%1").arg(value, width, 10, QLatin1Char(fill)),
             expected);
    QString ours;
    NumberFormat::appendInteger(ours, value, width, fill);
    QCOMPARE(ours, expected);
}

void tst_NumberFormat::unsignedText_data()
{
    QTest::addColumn<quint64>("value");
    QTest::addColumn<int>("width");
    QTest::addColumn<char>("fill");
    QTest::addColumn<QString>("expected");

    QTest::newRow("the highest quint64 has all its digits")
        << std::numeric_limits<quint64>::max() << 0 << ' '
        << QStringLiteral("18446744073709551615");
    QTest::newRow("7 in width five with zero fill")
        << quint64(7) << 5 << '0' << QStringLiteral("00007");
    QTest::newRow("7 in width ten with space fill")
        << quint64(7) << 10 << ' ' << QStringLiteral("         7");
}

void tst_NumberFormat::unsignedText()
{
    QFETCH(quint64, value);
    QFETCH(int, width);
    QFETCH(char, fill);
    QFETCH(QString, expected);

    QCOMPARE(width == 0 ? QString::number(value)
                        : QStringLiteral("%1").arg(value, width, 10, QLatin1Char(fill)),
             expected);
    QString ours;
    NumberFormat::appendUnsigned(ours, value, width, fill);
    QCOMPARE(ours, expected);
}

void tst_NumberFormat::appendKeepsTheLine()
{
    QString line = QStringLiteral("7;");
    NumberFormat::appendFixed(line, 1.25, 1);
    line += QLatin1Char(';');
    NumberFormat::appendGeneral(line, 1e-7, 2);
    line += QLatin1Char(';');
    NumberFormat::appendInteger(line, -3, 5, '0');
    line += QLatin1Char(';');
    NumberFormat::appendUnsigned(line, 3, 5, ' ');
    QCOMPARE(line, QStringLiteral("7;1.3;1e-07;-0003;    3"));
}

void tst_NumberFormat::longestTextFillsMaxLength()
{
    char buffer[NumberFormat::MaxLength + 1];
    std::memset(buffer, '#', sizeof buffer);
    const char *end = NumberFormat::writeFixed(buffer, -DBL_MAX, NumberFormat::MaxDecimals);
    QCOMPARE(end - buffer, qptrdiff(NumberFormat::MaxLength));
    QCOMPARE(buffer[NumberFormat::MaxLength], '#');
    QCOMPARE(QLatin1String(buffer, end),
             QString(QLatin1Char('-') + digitsOfDblMax + QStringLiteral(".000000000")));
}

void tst_NumberFormat::matchesQt_data()
{
    QTest::addColumn<int>("index");

    const QVector<NumberFormatCase> cases = NumberFormatCase::all();
    for (int i = 0; i < cases.size(); ++i)
        QTest::newRow(
            qPrintable(QStringLiteral("ours gives the bytes of %1").arg(cases.at(i).name)))
            << i;
}

void tst_NumberFormat::matchesQt()
{
    QFETCH(int, index);
    const NumberFormatCase c = NumberFormatCase::all().at(index);

    const QVector<quint64> values = c.values(valuesPerCase, seed);
    QVERIFY(values.size() >= valuesPerCase);
    int mismatches = 0;
    QString firstMismatches;
    QString ours;
    for (quint64 value : values) {
        ours.resize(0);
        c.appendOurs(ours, value);
        const QString qt = c.qtText(value);
        if (ours != qt && ++mismatches <= 5)
            firstMismatches +=
                QStringLiteral("\n  %1: Qt \"%2\", ours \"%3\"").arg(c.describe(value), qt, ours);
    }
    QVERIFY2(mismatches == 0,
             qPrintable(QStringLiteral("%1 of %2 values differ:%3")
                            .arg(mismatches)
                            .arg(values.size())
                            .arg(firstMismatches)));
}

QTEST_GUILESS_MAIN(tst_NumberFormat)

#include "tst_numberformat.moc"
