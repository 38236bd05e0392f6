#include "numberformatcase.h"

#include "numberformatappend.h"

#include <QHash>
#include <QRandomGenerator>
#include <QtMath>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

using quint128 = unsigned __int128;

constexpr double infinity = std::numeric_limits<double>::infinity();

quint64 power(quint64 base, int exponent)
{
    quint64 result = 1;
    for (int i = 0; i < exponent; ++i)
        result *= base;
    return result;
}

double withRandomSign(QRandomGenerator &rng, double v)
{
    return rng.generate() & 1 ? -v : v;
}

// Inclusive range; QRandomGenerator::bounded() stops short of 64 bits.
quint64 between(QRandomGenerator &rng, quint64 low, quint64 high)
{
    const quint64 span = high - low;
    if (span == std::numeric_limits<quint64>::max())
        return rng.generate64();
    return low + rng.generate64() % (span + 1);
}

double uniform(QRandomGenerator &rng, double low, double high)
{
    return low + (high - low) * rng.generateDouble();
}

QVector<double> edgeDoubles()
{
    quint64 quietNaN = NumberFormatCase::fromDouble(std::numeric_limits<double>::quiet_NaN());
    QVector<double> edges = {
        0.0,
        0.5,
        1.5,
        2.5,
        9.5,
        99.5,
        999.5,
        0.05,
        0.15,
        0.25,
        0.35,
        0.125,
        0.95,
        0.995,
        0.9995,
        9.995,
        99.95,
        2.675,
        20.125,
        1.005,
        9.9999995,
        0.0000005,
        0.00000049999999999999997,
        0.1,
        0.2,
        0.3,
        1.0 / 3,
        2.0 / 3,
        M_PI,
        M_E,
        1e-4,
        1e-5,
        1e-7,
        1e-10,
        1e-300,
        1e-320,
        1e15,
        1e16,
        1e17,
        1e18,
        1e19,
        1e20,
        1e21,
        1e22,
        1e23,
        1e100,
        1e300,
        1e308,
        DBL_MAX,
        DBL_MIN,
        std::numeric_limits<double>::denorm_min(),
        DBL_EPSILON,
        1 - DBL_EPSILON / 2,
        1 + DBL_EPSILON,
        std::ldexp(1.0, 19),
        std::ldexp(1.0, 19) + 0.5,
        std::ldexp(1.0, 20),
        std::ldexp(1.0, 52) - 0.5,
        std::ldexp(1.0, 53),
        std::ldexp(1.0, 53) + 2,
        std::ldexp(1.0, 63),
        std::ldexp(1.0, 64),
        std::ldexp(1.0, 64) + 4096,
        std::ldexp(1.0, 75),
        999999.9999999995,
        123456789.125,
        562949953421311.9375,
        99999999999999999.0,
        999999999999999999.0,
        1.8446744073709552e19,
        infinity,
        NumberFormatCase::toDouble(quietNaN),
        NumberFormatCase::toDouble(quietNaN | 1),
        NumberFormatCase::toDouble(0x7ff0000000000001ull),
    };
    const int positives = edges.size();
    for (int i = 0; i < positives; ++i)
        edges.append(-edges.at(i));
    return edges;
}

QVector<quint64> edgeIntegers()
{
    QVector<quint64> edges = {
        0x7f,
        0x80,
        0xff,
        0x7fff,
        0x8000,
        0xffff,
        0x7fffffff,
        0x80000000,
        0xffffffff,
        0x7fffffffffffffffull,
        0x8000000000000000ull,
        0xffffffffffffffffull,
    };
    for (int k = 0; k <= 19; ++k) {
        const quint64 p = power(10, k);
        for (quint64 n : {p - 1, p, p + 1}) {
            edges.append(n);
            edges.append(0 - n);
        }
    }
    return edges;
}

// Any bit pattern, with extra weight on subnormals, NaN payloads and the
// exponents around the limits of 64- and 128-bit arithmetic.
double randomBits(QRandomGenerator &rng)
{
    const quint64 sign = quint64(rng.generate() & 1) << 63;
    const quint64 fraction = rng.generate64() & ((quint64(1) << 52) - 1);
    switch (rng.bounded(10)) {
    case 0:
        return NumberFormatCase::toDouble(sign | fraction);
    case 1:
        return NumberFormatCase::toDouble(sign | (quint64(0x7ff) << 52) | (fraction | 1));
    case 2:
    case 3:
        return NumberFormatCase::toDouble(sign | (between(rng, 1023 - 80, 1023 + 130) << 52)
                                          | fraction);
    default:
        return NumberFormatCase::toDouble(rng.generate64());
    }
}

// Values as a motion tracker records them.
double sensorValue(QRandomGenerator &rng)
{
    switch (rng.bounded(6)) {
    case 0:
        return withRandomSign(rng, std::pow(10.0, uniform(rng, -3, 5)));
    case 1:
        return uniform(rng, -90, 90);
    case 2:
        return uniform(rng, -180, 180);
    case 3:
        return uniform(rng, 900, 1100);
    case 4:
        return uniform(rng, 80000, 110000);
    default: {
        // Read from short decimal text, so close to the ties one decimal shorter.
        const int decimals = int(between(rng, 1, 9));
        return withRandomSign(rng, double(rng.bounded(1000000000)) / double(power(10, decimals)));
    }
    }
}

// k / 2^(decimals + 1) for odd k is exactly halfway at `decimals` decimals.
double fixedTie(quint64 k, int decimals)
{
    return std::ldexp(double(k | 1), -(decimals + 1));
}

// The odd numbers whose halves, scaled by 10^q, lie exactly halfway between
// two numbers of `digits` significant digits: (2 * D + 1) / 2 * 10^q for a D
// of `digits` digits. For q >= 0 that is (2D + 1) * 5^q * 2^(q - 1); for q < 0
// the odd number 2D + 1 must hold 5^-q, leaving an odd mantissa over 2^(1 - q).
struct TieRange
{
    int q;
    quint64 first;
    quint64 last;
};

QVector<TieRange> generalTieRanges(int digits)
{
    const quint128 low = 2 * quint128(power(10, digits - 1)) + 1;
    const quint128 high = 2 * quint128(power(10, digits)) - 1;
    const quint128 maxMantissa = (quint64(1) << 53) - 1;
    QVector<TieRange> ranges;
    for (int q = -27; q <= 22; ++q) {
        const quint128 five = power(5, std::abs(q));
        quint128 first = q >= 0 ? low : (low + five - 1) / five;
        quint128 last = q >= 0 ? qMin(high, maxMantissa / five) : qMin(high / five, maxMantissa);
        first |= 1;
        if (first <= last)
            ranges.append({q, quint64(first), quint64(last)});
    }
    return ranges;
}

double generalTie(QRandomGenerator &rng, const QVector<TieRange> &ranges)
{
    const TieRange &range = ranges.at(int(rng.bounded(ranges.size())));
    quint64 odd = between(rng, range.first, range.last) | 1;
    if (odd > range.last)
        odd -= 2;
    const double v = range.q >= 0 ? std::ldexp(double(odd * power(5, range.q)), range.q - 1)
                                  : std::ldexp(double(odd), range.q - 1);
    return withRandomSign(rng, v);
}

quint64 smallInteger(QRandomGenerator &rng)
{
    const quint64 limit = power(10, int(between(rng, 1, 10)));
    return between(rng, 0, 2 * limit) - limit;
}

NumberFormatCase doubleCase(NumberFormatCase::Call call, char notation, int precision,
                            const QByteArray &pattern = QByteArray())
{
    NumberFormatCase c;
    c.call = call;
    c.kind = NumberFormatCase::Double;
    c.notation = notation;
    c.precision = precision;
    c.pattern = pattern;
    switch (call) {
    case NumberFormatCase::Asprintf:
        c.name = QStringLiteral("asprintf(\"%1\")").arg(QString::fromLatin1(pattern));
        break;
    case NumberFormatCase::Number:
        c.name = QStringLiteral("number(v, '%1', %2)").arg(QLatin1Char(notation)).arg(precision);
        break;
    case NumberFormatCase::Arg:
        c.name = QStringLiteral("arg(v, 0, '%1', %2)").arg(QLatin1Char(notation)).arg(precision);
        break;
    }
    return c;
}

NumberFormatCase integerCase(NumberFormatCase::Call call, NumberFormatCase::Kind kind, int bits,
                             int width = 0, char fill = ' ')
{
    NumberFormatCase c;
    c.call = call;
    c.kind = kind;
    c.bits = bits;
    c.width = width;
    c.fill = fill;
    const QString type =
        QStringLiteral("%1int%2")
            .arg(kind == NumberFormatCase::Unsigned ? QStringLiteral("qu") : QStringLiteral("q"))
            .arg(bits);
    switch (call) {
    case NumberFormatCase::Asprintf:
        c.pattern = kind == NumberFormatCase::Unsigned ? "%u" : "%d";
        c.name = QStringLiteral("asprintf(\"%1\")").arg(QString::fromLatin1(c.pattern));
        break;
    case NumberFormatCase::Number:
        c.name = QStringLiteral("number(%1)").arg(type);
        break;
    case NumberFormatCase::Arg:
        c.name =
            QStringLiteral("arg(%1, %2, 10, '%3')").arg(type).arg(width).arg(QLatin1Char(fill));
        break;
    }
    return c;
}

} // namespace

QVector<NumberFormatCase> NumberFormatCase::all()
{
    QVector<NumberFormatCase> cases;
    for (int decimals = 0; decimals <= 9; ++decimals)
        cases.append(
            doubleCase(Asprintf, 'f', decimals, "%." + QByteArray::number(decimals) + 'f'));
    cases.append(doubleCase(Asprintf, 'f', 2, "%.2lf"));
    cases.append(doubleCase(Asprintf, 'f', 7, "%.7lf"));
    cases.append(doubleCase(Number, 'f', 2));
    cases.append(doubleCase(Arg, 'f', 1));
    cases.append(doubleCase(Asprintf, 'g', 18, "%.18g"));
    cases.append(doubleCase(Number, 'g', 18));
    cases.append(doubleCase(Number, 'g', 2));
    cases.append(doubleCase(Asprintf, 'g', 2, "%.2g"));

    for (Kind kind : {Signed, Unsigned}) {
        for (int bits : {8, 16, 32, 64})
            cases.append(integerCase(Number, kind, bits));
        cases.append(integerCase(Asprintf, kind, 32));
    }
    for (Kind kind : {Signed, Unsigned}) {
        for (int width : {5, 10}) {
            for (char fill : {'0', ' '}) {
                cases.append(integerCase(Arg, kind, 32, width, fill));
                cases.append(integerCase(Arg, kind, 64, width, fill));
            }
        }
    }
    return cases;
}

double NumberFormatCase::toDouble(quint64 value)
{
    double v;
    std::memcpy(&v, &value, sizeof v);
    return v;
}

quint64 NumberFormatCase::fromDouble(double v)
{
    quint64 value;
    std::memcpy(&value, &v, sizeof value);
    return value;
}

qint64 NumberFormatCase::toSigned(quint64 value) const
{
    const int unused = 64 - bits;
    return qint64(value << unused) >> unused;
}

quint64 NumberFormatCase::toUnsigned(quint64 value) const
{
    return bits == 64 ? value : value & ((quint64(1) << bits) - 1);
}

QString NumberFormatCase::qtText(quint64 value) const
{
    switch (kind) {
    case Double: {
        const double v = toDouble(value);
        switch (call) {
        case Asprintf:
            return QString::asprintf(pattern.constData(), v);
        case Number:
            return QString::number(v, notation, precision);
        case Arg:
            return QStringLiteral("%1").arg(v, 0, notation, precision);
        }
        break;
    }
    case Signed: {
        const qint64 n = toSigned(value);
        switch (call) {
        case Asprintf:
            return QString::asprintf(pattern.constData(), int(n));
        case Number:
            switch (bits) {
            case 8:
                return QString::number(qint8(n));
            case 16:
                return QString::number(qint16(n));
            case 32:
                return QString::number(qint32(n));
            default:
                return QString::number(n);
            }
        case Arg:
            if (bits == 32)
                return QStringLiteral("%1").arg(qint32(n), width, 10, QLatin1Char(fill));
            return QStringLiteral("%1").arg(n, width, 10, QLatin1Char(fill));
        }
        break;
    }
    case Unsigned: {
        const quint64 n = toUnsigned(value);
        switch (call) {
        case Asprintf:
            return QString::asprintf(pattern.constData(), uint(n));
        case Number:
            switch (bits) {
            case 8:
                return QString::number(quint8(n));
            case 16:
                return QString::number(quint16(n));
            case 32:
                return QString::number(quint32(n));
            default:
                return QString::number(n);
            }
        case Arg:
            if (bits == 32)
                return QStringLiteral("%1").arg(quint32(n), width, 10, QLatin1Char(fill));
            return QStringLiteral("%1").arg(n, width, 10, QLatin1Char(fill));
        }
        break;
    }
    }
    Q_UNREACHABLE();
    return QString();
}

void NumberFormatCase::appendOurs(QString &out, quint64 value) const
{
    switch (kind) {
    case Double:
        if (notation == 'f')
            NumberFormat::appendFixed(out, toDouble(value), precision);
        else
            NumberFormat::appendGeneral(out, toDouble(value), precision);
        break;
    case Signed:
        NumberFormat::appendInteger(out, toSigned(value), width, fill);
        break;
    case Unsigned:
        NumberFormat::appendUnsigned(out, toUnsigned(value), width, fill);
        break;
    }
}

QString NumberFormatCase::describe(quint64 value) const
{
    switch (kind) {
    case Double:
        return QString::asprintf("%a (bits %016llx)", toDouble(value), value);
    case Signed:
        return QString::number(toSigned(value));
    case Unsigned:
        return QString::number(toUnsigned(value));
    }
    Q_UNREACHABLE();
    return QString();
}

QVector<quint64> NumberFormatCase::values(int count, quint64 seed) const
{
    QRandomGenerator rng(quint32(seed) ^ quint32(seed >> 32) ^ qHash(name));
    QVector<quint64> values;
    values.reserve(count);
    if (kind == Double) {
        for (double v : edgeDoubles())
            values.append(fromDouble(v));
        // A fifth arbitrary bits, two fifths sensor readings, two fifths ties:
        // the ties from the smallest up, then spread up to 2^20.
        quint64 nextTie = 1;
        const QVector<TieRange> tieRanges =
            notation == 'g' ? generalTieRanges(precision) : QVector<TieRange>();
        for (int i = values.size(); i < count; ++i) {
            double v;
            switch (i % 5) {
            case 0:
                v = randomBits(rng);
                break;
            case 1:
            case 2:
                v = sensorValue(rng);
                break;
            case 3:
                if (notation == 'g') {
                    v = generalTie(rng, tieRanges);
                } else {
                    v = fixedTie(nextTie, precision) * (nextTie & 2 ? -1 : 1);
                    nextTie += 2;
                }
                break;
            default:
                v = notation == 'g'
                    ? generalTie(rng, tieRanges)
                    : withRandomSign(
                        rng,
                        fixedTie(between(rng, 0, (quint64(1) << (21 + precision)) - 1), precision));
                break;
            }
            values.append(fromDouble(v));
        }
    } else {
        values.append(edgeIntegers());
        for (int i = values.size(); i < count; ++i)
            values.append(i % 2 ? rng.generate64() : smallInteger(rng));
    }
    return values;
}

QVector<quint64> NumberFormatCase::typicalValues(int count, quint64 seed) const
{
    QRandomGenerator rng(quint32(seed) ^ quint32(seed >> 32) ^ qHash(name));
    QVector<quint64> values;
    values.reserve(count);
    for (int i = 0; i < count; ++i)
        values.append(kind == Double ? fromDouble(sensorValue(rng)) : smallInteger(rng));
    return values;
}
