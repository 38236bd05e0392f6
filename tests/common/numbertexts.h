#pragma once

#include <QString>
#include <QVector>

#include <random>
#include <string>
#include <string_view>

/**
 * Texts of JSON numbers of every form a recording may hold, and the double
 * each must be read as. The texts are deterministic for a seed.
 */
namespace NumberTexts {

enum class Form {
    Shortest, ///< the shortest text that reads back as the same double
    SeventeenDigits, ///< 17 significant digits, as printf's %.17g writes them
    LongMantissa, ///< 20 to 41 significant digits, many right at a tie between two doubles
    RangeEnds, ///< near the largest and the smallest normal double, and beyond both
    Subnormal, ///< below the smallest normal double
    BeyondTwoTo53, ///< integers that a double cannot hold exactly, within 64 bits and beyond
    NegativeZero, ///< every spelling of -0
    Literals ///< NaN, Infinity and -Infinity
};

QVector<Form> forms();
/** The form as a row name: "long mantissas". */
QString name(Form form);

/** Draws texts of one form. */
class Generator
{
public:
    Generator(Form form, quint64 seed);

    std::string next();

private:
    double finite();
    std::string shortest(double value);
    std::string digits(double value, int significant);

    Form form;
    std::mt19937_64 random;
    quint64 count = 0;
};

/**
 * The double @p text stands for, as std::from_chars gives it; where the
 * value lies beyond the range of doubles, as strtod gives it in the C
 * locale (infinity or zero, with the text's sign).
 */
double expected(std::string_view text);

/** The double strtod reads @p text as, in the C locale. */
double byStrtod(std::string_view text);

/** A number text and what it stands for, as a row name. */
struct LongText
{
    QString name;
    std::string text;
};

/**
 * Numbers with @p zeros zeros or digits in their integer part or fraction,
 * whose exponent brings them back into the range of doubles, to its ends
 * and beyond: "0." 655,359 zeros "1e655360" is 1.
 */
QVector<LongText> longTexts(int zeros);

} // namespace NumberTexts
