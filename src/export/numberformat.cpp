#include "numberformat.h"

#include <QtAlgorithms>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

using quint128 = unsigned __int128;

constexpr quint64 powersOf10[] = {
    1ull,
    10ull,
    100ull,
    1000ull,
    10000ull,
    100000ull,
    1000000ull,
    10000000ull,
    100000000ull,
    1000000000ull,
    10000000000ull,
    100000000000ull,
    1000000000000ull,
    10000000000000ull,
    100000000000000ull,
    1000000000000000ull,
    10000000000000000ull,
    100000000000000000ull,
    1000000000000000000ull,
    10000000000000000000ull,
};

// Up to 5^27, the largest power of five in 64 bits.
constexpr quint64 powersOf5[] = {
    1ull,
    5ull,
    25ull,
    125ull,
    625ull,
    3125ull,
    15625ull,
    78125ull,
    390625ull,
    1953125ull,
    9765625ull,
    48828125ull,
    244140625ull,
    1220703125ull,
    6103515625ull,
    30517578125ull,
    152587890625ull,
    762939453125ull,
    3814697265625ull,
    19073486328125ull,
    95367431640625ull,
    476837158203125ull,
    2384185791015625ull,
    11920928955078125ull,
    59604644775390625ull,
    298023223876953125ull,
    1490116119384765625ull,
    7450580596923828125ull,
};

struct DigitPairs
{
    char text[200];
};

constexpr DigitPairs makeDigitPairs()
{
    DigitPairs pairs{};
    for (int i = 0; i < 100; ++i) {
        pairs.text[2 * i] = char('0' + i / 10);
        pairs.text[2 * i + 1] = char('0' + i % 10);
    }
    return pairs;
}

constexpr DigitPairs digitPairs = makeDigitPairs();

// A double taken apart: |v| = mantissa * 2^exponent.
struct Binary
{
    bool negative;
    bool special; // infinity or NaN
    quint64 mantissa;
    int exponent;
};

Binary decompose(double v)
{
    quint64 bits;
    std::memcpy(&bits, &v, sizeof bits);
    const int biased = int(bits >> 52) & 0x7ff;
    const quint64 fraction = bits & ((quint64(1) << 52) - 1);
    if (biased == 0)
        return {bool(bits >> 63), false, fraction, -1074};
    return {bool(bits >> 63), biased == 0x7ff, fraction | (quint64(1) << 52), biased - 1075};
}

char *writeText(char *out, const char *text)
{
    const size_t length = std::strlen(text);
    // Text goes into the middle of a row: no terminator is wanted.
    // NOLINTNEXTLINE(bugprone-not-null-terminated-result)
    std::memcpy(out, text, length);
    return out + length;
}

// Qt prints no sign for NaN, whatever its sign bit says.
char *writeSpecial(char *out, const Binary &b)
{
    if (b.mantissa != quint64(1) << 52)
        return writeText(out, "nan");
    return writeText(out, b.negative ? "-inf" : "inf");
}

int decimalLength(quint64 n)
{
    n |= 1; // same length, and zero has one digit
    // Numbers of this bit length have guess or guess + 1 digits (1233 / 4096 ~ log10(2)).
    const int guess = ((64 - qCountLeadingZeroBits(n)) * 1233) >> 12;
    return guess + 1 - (n < powersOf10[guess]);
}

// Writes exactly count digits of n, with leading zeros.
void writeDigits(char *out, quint64 n, int count)
{
    char *p = out + count;
    while (p - out >= 2) {
        p -= 2;
        std::memcpy(p, digitPairs.text + 2 * (n % 100), 2);
        n /= 100;
    }
    if (p != out)
        *out = char('0' + n % 10);
}

char *writeDecimal(char *out, quint64 n)
{
    const int length = decimalLength(n);
    writeDigits(out, n, length);
    return out + length;
}

char *writeRepeated(char *out, char c, int count)
{
    if (count <= 0)
        return out;
    std::memset(out, c, size_t(count));
    return out + count;
}

char *writePadded(char *out, bool negative, quint64 magnitude, int width, char fill)
{
    Q_ASSERT(width <= NumberFormat::MaxWidth);
    const int length = decimalLength(magnitude);
    const int padding = width - length - int(negative);
    if (fill != '0')
        out = writeRepeated(out, fill, padding);
    if (negative)
        *out++ = '-';
    if (fill == '0')
        out = writeRepeated(out, '0', padding);
    writeDigits(out, magnitude, length);
    return out + length;
}

// Whether mantissa * 2^exponent lies exactly halfway between two numbers of
// `digits` significant digits. If so, *rounded gets the digits of the upper
// one, where Qt rounds to, and *decpt the position of the decimal point
// relative to the digits.
bool isDecimalTie(quint64 mantissa, int exponent, int digits, quint64 *rounded, int *decpt)
{
    const int zeroBits = qCountTrailingZeroBits(mantissa);
    mantissa >>= zeroBits;
    exponent += zeroBits;
    // A tie is (2 * lower + 1) / 2 * 10^q. With an odd mantissa the powers of
    // two on both sides only match for q = exponent + 1.
    const int q = exponent + 1;
    quint64 odd;
    if (q >= 0) {
        if (q >= int(std::size(powersOf5)) || mantissa % powersOf5[q] != 0)
            return false;
        odd = mantissa / powersOf5[q];
    } else {
        if (-q >= int(std::size(powersOf5)))
            return false;
        const quint128 product = quint128(mantissa) * powersOf5[-q];
        if (product >= 2 * quint128(powersOf10[digits]))
            return false;
        odd = quint64(product);
    }
    const quint64 lower = odd / 2;
    if (lower < powersOf10[digits - 1] || lower >= powersOf10[digits])
        return false;
    *rounded = lower + 1;
    *decpt = digits + q;
    return true;
}

// The `digits` significant digits of mantissa * 2^exponent, rounded half away
// from zero, as a number of `digits` digits (or 10^digits after a carry), and
// the position of the decimal point relative to them. Works in 128 bits, for
// normal values below 2^53 that are not too small for that.
bool roundExactly(quint64 mantissa, int exponent, int digits, quint64 *rounded, int *decpt)
{
    if (exponent >= 0 || exponent < -127 || mantissa < quint64(1) << 52)
        return false;
    const int shift = -exponent;
    // The value lies in [2^(52 - shift), 2^(53 - shift)); 78913 / 2^18 is just
    // below log10(2), so this is floor(log10(value)) or one less.
    int power = ((52 - shift) * 78913) >> 18;
    for (;;) {
        const int scale = digits - 1 - power;
        if (scale > 22)
            return false;
        quint64 truncated;
        quint64 n;
        if (scale >= 0) {
            quint128 scaled = quint128(mantissa) * powersOf10[qMin(scale, 19)];
            if (scale > 19)
                scaled *= powersOf10[scale - 19];
            truncated = quint64(scaled >> shift);
            n = quint64(((scaled >> (shift - 1)) + 1) >> 1);
        } else {
            // Dropping whole digits: the part below the point cannot tip the
            // rounding, as half of 10^-scale is a whole number.
            const quint64 whole = mantissa >> shift;
            const quint64 unit = powersOf10[-scale];
            truncated = whole / unit;
            n = truncated + (whole - truncated * unit >= unit / 2);
        }
        if (truncated >= powersOf10[digits]) {
            ++power;
            continue;
        }
        *rounded = n;
        *decpt = power + 1;
        return true;
    }
}

} // namespace

char *NumberFormat::writeFixed(char *out, double v, int decimals)
{
    Q_ASSERT(decimals >= 0 && decimals <= MaxDecimals);
    const Binary b = decompose(v);
    if (b.special)
        return writeSpecial(out, b);
    if (b.negative && b.mantissa != 0)
        *out++ = '-';

    if (b.exponent >= 0) {
        // A whole number; beyond 64 bits to_chars prints its exact digits.
        if (b.exponent < 12)
            out = writeDecimal(out, b.mantissa << b.exponent);
        else
            out = std::to_chars(out, out + 309, std::fabs(v), std::chars_format::fixed, 0).ptr;
        if (decimals > 0) {
            *out++ = '.';
            out = writeRepeated(out, '0', decimals);
        }
        return out;
    }

    // |v| = mantissa / 2^shift: the whole part is the bits above the point,
    // the decimals those below it times 10^decimals, rounded half away from zero.
    const int shift = -b.exponent;
    const quint64 unit = powersOf10[decimals];
    quint64 integral = 0;
    quint64 below = b.mantissa;
    if (shift < 64) {
        integral = b.mantissa >> shift;
        below = b.mantissa & ((quint64(1) << shift) - 1);
    }
    quint64 fraction = 0;
    if (shift <= 128) {
        const quint128 scaled = quint128(below) * unit;
        fraction = quint64(((scaled >> (shift - 1)) + 1) >> 1);
        if (fraction == unit) {
            ++integral;
            fraction = 0;
        }
    }
    out = writeDecimal(out, integral);
    if (decimals > 0) {
        *out++ = '.';
        writeDigits(out, fraction, decimals);
        out += decimals;
    }
    return out;
}

char *NumberFormat::writeGeneral(char *out, double v, int digits)
{
    Q_ASSERT(digits >= 1 && digits <= MaxDigits);
    const Binary b = decompose(v);
    if (b.special)
        return writeSpecial(out, b);
    if (b.mantissa == 0) {
        *out++ = '0';
        return out;
    }
    if (b.negative)
        *out++ = '-';

    // Exactly rounded digits as a number and the decimal point after them.
    quint64 rounded;
    int decpt;
    char text[MaxDigits + 1];
    int length = digits;
    if (roundExactly(b.mantissa, b.exponent, digits, &rounded, &decpt)
        || isDecimalTie(b.mantissa, b.exponent, digits, &rounded, &decpt)) {
        if (rounded == powersOf10[digits]) {
            text[0] = '1';
            length = 1;
            ++decpt;
        } else {
            writeDigits(text, rounded, digits);
        }
    } else {
        // to_chars rounds exactly too, and only sends ties, handled above, to even.
        // It gives "d.ddde+xx": the digits, then the exponent of the first one.
        char scientific[32];
        const char *end = std::to_chars(scientific, scientific + sizeof scientific, std::fabs(v),
                                        std::chars_format::scientific, digits - 1)
                              .ptr;
        text[0] = scientific[0];
        length = 1;
        const char *p = scientific + (digits > 1 ? 2 : 1);
        while (*p != 'e')
            text[length++] = *p++;
        ++p;
        const bool negativeExponent = *p++ == '-';
        int exponent = 0;
        while (p != end)
            exponent = exponent * 10 + (*p++ - '0');
        decpt = (negativeExponent ? -exponent : exponent) + 1;
    }
    while (length > 1 && text[length - 1] == '0')
        --length;

    if (decpt != length && (decpt <= -4 || decpt > digits)) {
        *out++ = text[0];
        if (length > 1) {
            *out++ = '.';
            std::memcpy(out, text + 1, size_t(length - 1));
            out += length - 1;
        }
        *out++ = 'e';
        const int exponent = decpt - 1;
        *out++ = exponent < 0 ? '-' : '+';
        const int magnitude = std::abs(exponent);
        writeDigits(out, quint64(magnitude), magnitude < 100 ? 2 : 3);
        return out + (magnitude < 100 ? 2 : 3);
    }
    if (decpt <= 0) {
        *out++ = '0';
        *out++ = '.';
        out = writeRepeated(out, '0', -decpt);
        std::memcpy(out, text, size_t(length));
        return out + length;
    }
    if (decpt >= length) {
        std::memcpy(out, text, size_t(length));
        return writeRepeated(out + length, '0', decpt - length);
    }
    std::memcpy(out, text, size_t(decpt));
    out += decpt;
    *out++ = '.';
    std::memcpy(out, text + decpt, size_t(length - decpt));
    return out + length - decpt;
}

char *NumberFormat::writeInteger(char *out, qint64 v, int width, char fill)
{
    const bool negative = v < 0;
    // 0 - quint64(v) also holds for the lowest qint64, which has no positive twin.
    return writePadded(out, negative, negative ? 0 - quint64(v) : quint64(v), width, fill);
}

char *NumberFormat::writeUnsigned(char *out, quint64 v, int width, char fill)
{
    return writePadded(out, false, v, width, fill);
}
