#pragma once

#include <QtGlobal>

/**
 * Number-to-text conversions that produce exactly the bytes of Qt 5.15's own
 * formatting in the C locale, without a temporary QString or the QLocale
 * machinery per value.
 *
 * Qt's rules, which differ from C's printf: an exact decimal tie rounds away
 * from zero (20.125 with two decimals is "20.13"), an exact zero prints
 * without a sign even when negative, a negative value that rounds to zero
 * keeps its sign ("-0.000000"), NaN prints "nan" whatever its sign and
 * payload, infinities print "inf" and "-inf".
 *
 * The write functions put ASCII into a buffer of at least MaxLength chars,
 * without a terminating zero, and return the end of what they wrote.
 */
namespace NumberFormat {

// Longest text of any write function: fixed notation of -DBL_MAX with nine
// decimals ("-" + 309 digits + "." + 9 decimals), or an integer of MaxWidth.
constexpr int MaxLength = 320;
constexpr int MaxDecimals = 9;
constexpr int MaxDigits = 18;
constexpr int MaxWidth = MaxLength;

/**
 * Fixed notation with 0 to MaxDecimals decimals: the bytes of
 * QString::asprintf("%.<decimals>f", v) (and of "%.<decimals>lf"),
 * QString::number(v, 'f', decimals) and QString("%1").arg(v, 0, 'f', decimals).
 */
char *writeFixed(char *out, double v, int decimals);

/**
 * General notation with 1 to MaxDigits significant digits: the bytes of
 * QString::asprintf("%.<digits>g", v) and QString::number(v, 'g', digits),
 * which agree with each other.
 */
char *writeGeneral(char *out, double v, int digits);

/**
 * Signed integers: the bytes of QString::number(v) and asprintf("%d") for
 * width 0, and of QString("%1").arg(v, width, 10, QChar(fill)) otherwise.
 * A '0' fill goes between the sign and the digits, any other fill before
 * the sign. width is at most MaxWidth.
 */
char *writeInteger(char *out, qint64 v, int width = 0, char fill = ' ');

/**
 * Unsigned integers: the bytes of QString::number(v) and asprintf("%u") for
 * width 0, and of QString("%1").arg(v, width, 10, QChar(fill)) otherwise.
 */
char *writeUnsigned(char *out, quint64 v, int width = 0, char fill = ' ');

} // namespace NumberFormat
