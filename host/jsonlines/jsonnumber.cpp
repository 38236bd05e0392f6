#include "jsonnumber.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace JsonNumber {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// NaN, Infinity and -Infinity; the parser also takes -NaN and Inf.
bool isLiteral(std::string_view text)
{
    const char first = text.front() == '-' ? text[1] : text.front();
    return first == 'N' || first == 'I';
}

// Whether the value of @p text, a number that is not zero, is below 1 in
// magnitude: that tells an underflow from an overflow when the value lies
// beyond the range of doubles.
bool belowOne(std::string_view text)
{
    const char *p = text.data();
    const char *const end = p + text.size();
    if (*p == '-')
        ++p;
    // The decimal exponent of the first significant digit, before the
    // exponent part is added.
    long magnitude = -1;
    if (*p != '0') {
        const char *const digits = p;
        while (p != end && isDigit(*p))
            ++p;
        magnitude = long(p - digits) - 1;
    } else if (++p != end && *p == '.') {
        for (++p; p != end && *p == '0'; ++p)
            --magnitude;
    }
    while (p != end && *p != 'e' && *p != 'E')
        ++p;
    long exponent = 0;
    if (p != end) {
        ++p;
        const bool negative = *p == '-';
        if (*p == '-' || *p == '+')
            ++p;
        // Saturated beyond the digits' own magnitude, which the text's length
        // bounds: from there on the sign alone decides.
        const long limit = long(text.size()) + 1;
        for (; p != end; ++p)
            exponent = std::min(exponent * 10 + (*p - '0'), limit);
        if (negative)
            exponent = -exponent;
    }
    return magnitude + exponent < 0;
}

} // namespace

Integer toInteger(std::string_view text)
{
    Integer integer;
    for (const char c : text) {
        if (!isDigit(c) && c != '-')
            return integer;
    }
    const char *const first = text.data();
    const char *const last = first + text.size();
    if (text.front() == '-') {
        if (std::from_chars(first, last, integer.value).ec == std::errc())
            integer.kind = Integer::Kind::Signed;
    } else if (std::from_chars(first, last, integer.unsignedValue).ec == std::errc()) {
        if (integer.unsignedValue <= quint64(std::numeric_limits<qint64>::max())) {
            integer.kind = Integer::Kind::Signed;
            integer.value = qint64(integer.unsignedValue);
        } else {
            integer.kind = Integer::Kind::Unsigned;
        }
    }
    return integer;
}

double toDouble(std::string_view text)
{
    if (isLiteral(text)) {
        if (text.back() == 'N')
            return std::numeric_limits<double>::quiet_NaN();
        return text.front() == '-' ? -std::numeric_limits<double>::infinity()
                                   : std::numeric_limits<double>::infinity();
    }
    double value = 0.0;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec
        == std::errc::result_out_of_range) {
        value = belowOne(text) ? 0.0 : std::numeric_limits<double>::infinity();
        if (text.front() == '-')
            value = -value;
    }
    return value;
}

QString display(std::string_view text)
{
    const Integer integer = toInteger(text);
    if (integer.kind == Integer::Kind::Signed)
        return QString::number(integer.value);
    if (integer.kind == Integer::Kind::Unsigned)
        return QString::number(integer.unsignedValue);
    const double number = toDouble(text);
    if (std::isnan(number))
        return QStringLiteral("NaN");
    if (std::isinf(number))
        return number > 0 ? QStringLiteral("Infinity") : QStringLiteral("-Infinity");
    char buffer[32];
    const auto result = std::to_chars(std::begin(buffer), std::end(buffer), number);
    QString shown = QString::fromLatin1(buffer, int(result.ptr - buffer));
    if (!shown.contains(QLatin1Char('.')) && !shown.contains(QLatin1Char('e')))
        shown += QLatin1String(".0");
    return shown;
}

} // namespace JsonNumber
