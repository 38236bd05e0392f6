#include "numbertexts.h"

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>

#include <locale.h>

namespace NumberTexts {

namespace {

double fromBits(quint64 bits)
{
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace

QVector<Form> forms()
{
    return {Form::Shortest,  Form::SeventeenDigits, Form::LongMantissa, Form::RangeEnds,
            Form::Subnormal, Form::BeyondTwoTo53,   Form::NegativeZero, Form::Literals};
}

QString name(Form form)
{
    switch (form) {
    case Form::Shortest:
        return QStringLiteral("shortest round-trip texts");
    case Form::SeventeenDigits:
        return QStringLiteral("17 significant digits");
    case Form::LongMantissa:
        return QStringLiteral("long mantissas");
    case Form::RangeEnds:
        return QStringLiteral("exponents at both ends of the range");
    case Form::Subnormal:
        return QStringLiteral("subnormals");
    case Form::BeyondTwoTo53:
        return QStringLiteral("integers beyond 2^53");
    case Form::NegativeZero:
        return QStringLiteral("negative zero");
    case Form::Literals:
        return QStringLiteral("NaN and infinities");
    }
    return QString();
}

Generator::Generator(Form form, quint64 seed)
    : form(form)
    , random(seed)
{ }

// Half of all values are arbitrary bit patterns, half are of the size a
// sensor reports, where the fixed notation shows most digits.
double Generator::finite()
{
    if (random() & 1) {
        const double unit = double(random() >> 11) * 0x1p-53;
        const double scale = std::pow(10.0, int(random() % 19) - 9);
        return (random() & 1 ? -unit : unit) * scale;
    }
    for (;;) {
        const double value = fromBits(random());
        if (std::isfinite(value))
            return value;
    }
}

std::string Generator::shortest(double value)
{
    char buffer[64];
    return std::string(buffer, std::to_chars(std::begin(buffer), std::end(buffer), value).ptr);
}

std::string Generator::digits(double value, int significant)
{
    char buffer[64];
    const auto result = std::to_chars(std::begin(buffer), std::end(buffer), value,
                                      std::chars_format::general, significant);
    return std::string(buffer, result.ptr);
}

std::string Generator::next()
{
    const quint64 n = count++;
    switch (form) {
    case Form::Shortest:
        return shortest(finite());
    case Form::SeventeenDigits:
        return digits(finite(), 17);
    case Form::LongMantissa: {
        // Magnitudes the parser takes in every spelling.
        double value = finite();
        while (std::fabs(value) > 1e300 || (value != 0.0 && std::fabs(value) < 1e-300))
            value = finite();
        const int precision = 19 + int(random() % 22);
        char buffer[128];
        switch (n % 3) {
        case 0: {
            // Right beside the tie between a double and the next one, where
            // a conversion that is not exact goes wrong.
            const long double low = value;
            const long double high = std::nextafter(value, std::numeric_limits<double>::infinity());
            std::snprintf(buffer, sizeof buffer, "%.*Le", precision, low + (high - low) / 2);
            return buffer;
        }
        case 1:
            std::snprintf(buffer, sizeof buffer, "%.*e", precision, value);
            return buffer;
        default: {
            // Long integer parts too.
            std::string text = random() & 1 ? "-" : "";
            const int whole = 1 + int(random() % 25);
            text += char('1' + random() % 9);
            for (int i = 1; i < whole; ++i)
                text += char('0' + random() % 10);
            text += '.';
            const int fraction = std::max(1, precision + 1 - whole);
            for (int i = 0; i < fraction; ++i)
                text += char('0' + random() % 10);
            return text;
        }
        }
    }
    case Form::RangeEnds: {
        const quint64 sign = random() & 0x8000000000000000ull;
        const quint64 mantissa = random() & 0x000FFFFFFFFFFFFFull;
        char buffer[64];
        switch (n % 5) {
        case 0:
            return shortest(fromBits(sign | (quint64(2000 + random() % 47) << 52) | mantissa));
        case 1:
            return digits(fromBits(sign | (quint64(1 + random() % 40) << 52) | mantissa), 17);
        case 2:
            // At the largest double and beyond it.
            std::snprintf(buffer, sizeof buffer, "%s%d.%03de308", sign ? "-" : "",
                          1 + int(random() % 9), int(random() % 1000));
            return buffer;
        case 3:
            // Below the smallest subnormal, or just at it.
            std::snprintf(buffer, sizeof buffer, "%s%d.%05de-%d", sign ? "-" : "",
                          1 + int(random() % 9), int(random() % 100000), 324 + int(random() % 80));
            return buffer;
        default:
            return digits(fromBits(sign | (quint64(2046) << 52) | mantissa),
                          20 + int(random() % 10));
        }
    }
    case Form::Subnormal: {
        const double value = fromBits((random() & 0x800FFFFFFFFFFFFFull) | 1);
        return n % 2 ? shortest(value) : digits(value, 17);
    }
    case Form::BeyondTwoTo53: {
        char buffer[32];
        switch (n % 4) {
        case 0:
        case 1: {
            const quint64 value =
                (quint64(1) << 53) + random() % (~quint64(0) - (quint64(1) << 53));
            return std::string(buffer,
                               std::to_chars(std::begin(buffer), std::end(buffer), value).ptr);
        }
        case 2: {
            const qint64 value =
                -qint64((quint64(1) << 53) + random() % ((quint64(1) << 63) - (quint64(1) << 53)));
            return std::string(buffer,
                               std::to_chars(std::begin(buffer), std::end(buffer), value).ptr);
        }
        default: {
            std::string text = random() & 1 ? "-" : "";
            text += char('1' + random() % 9);
            const int length = 20 + int(random() % 20);
            for (int i = 1; i < length; ++i)
                text += char('0' + random() % 10);
            return text;
        }
        }
    }
    case Form::NegativeZero: {
        static const char *const spellings[] = {
            "-0", "-0.0", "-0e0", "-0E+3", "-0.000e-5", "-0.00000000000000000000000", "-0e-400"};
        return spellings[n % std::size(spellings)];
    }
    case Form::Literals: {
        static const char *const literals[] = {"NaN", "Infinity", "-Infinity"};
        return literals[n % std::size(literals)];
    }
    }
    return "0";
}

double expected(std::string_view text)
{
    double value = 0.0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc::result_out_of_range)
        return value;
    return byStrtod(text);
}

double byStrtod(std::string_view text)
{
    static const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t(0));
    return strtod_l(std::string(text).c_str(), nullptr, c);
}

QVector<LongText> longTexts(int zeros)
{
    const std::string n(std::size_t(zeros), '0');
    const auto exponent = [zeros](int offset) { return std::to_string(zeros + offset); };
    std::string digits;
    digits.reserve(std::size_t(zeros));
    while (digits.size() < std::size_t(zeros))
        digits += "142857";
    digits.resize(std::size_t(zeros));
    const QString of = QStringLiteral(" in %1 digits").arg(zeros);
    return {
        {"one as a long fraction" + of, "0." + n.substr(1) + "1e" + exponent(0)},
        {"one as a long integer" + of, "1" + n + "e-" + exponent(0)},
        {"minus one as a long fraction" + of, "-0." + n.substr(1) + "1E+" + exponent(0)},
        {"minus one as a long integer" + of, "-1" + n + "e-" + exponent(0)},
        {"the largest double" + of, "0." + n.substr(1) + "17976931348623157e" + exponent(308)},
        {"just beyond the largest double" + of, "0." + n.substr(1) + "18e" + exponent(308)},
        {"the smallest subnormal" + of, "5" + n + "e-" + exponent(324)},
        {"minus the smallest subnormal, rounded up" + of, "-4" + n + "e-" + exponent(324)},
        {"far below the smallest subnormal" + of, "1" + n + "e-" + exponent(400)},
        {"a fraction of as many significant digits" + of, "0." + digits + "e1"},
    };
}

} // namespace NumberTexts
