#pragma once

#include <QString>

#include <string_view>

/**
 * Numbers of a JSON text, converted from the text as written: a double is
 * always the nearest one to the written value, as std::from_chars and strtod
 * give it, whatever the number of digits; an integer keeps its exact value.
 *
 * The texts are those a JSON parser accepted, plus the bare literals NaN,
 * Infinity and -Infinity.
 */
namespace JsonNumber {

/** An integer as a JSON text writes it: digits only, no fraction or exponent. */
struct Integer
{
    enum class Kind {
        Signed, ///< fits in 64 bits signed: `value`
        Unsigned, ///< beyond that, within 64 bits unsigned: `unsignedValue`
        Other ///< not an integer literal, or beyond 64 bits
    };

    Kind kind = Kind::Other;
    qint64 value = 0;
    quint64 unsignedValue = 0;
};

Integer toInteger(std::string_view text);

/**
 * The nearest double to @p text. Beyond the largest double it is infinity,
 * below the smallest subnormal zero, each with the text's sign, as strtod
 * gives them. NaN is the quiet NaN, without a sign.
 */
double toDouble(std::string_view text);

/**
 * @p text as a message shows it: integers exactly, other numbers in their
 * shortest form as doubles, with ".0" where that would look like an integer.
 */
QString display(std::string_view text);

} // namespace JsonNumber
