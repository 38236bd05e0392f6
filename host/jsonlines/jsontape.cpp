#include "jsontape.h"

#include "jsonnumber.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

// In situ: strings are unescaped where they stand and numbers are handed
// over as their text, so that nothing is copied and no number is rounded
// by the parser.
constexpr unsigned fastFlags = rapidjson::kParseInsituFlag | rapidjson::kParseNumbersAsStringsFlag
    | rapidjson::kParseNanAndInfFlag;
// Checking the encoding costs a look at every byte of every string; a text
// of ASCII alone has nothing to check, and both parses agree on it.
constexpr unsigned validatingFlags = fastFlags | rapidjson::kParseValidateEncodingFlag;

// The parser's UTF-8 check takes all continuation bytes of a character
// without looking for the end of the text: a text that stops after the first
// byte of a four-byte character would have it read three bytes on.
constexpr std::size_t continuationBytes = 3;

bool isAscii(const char *text, std::size_t size)
{
    unsigned char any = 0;
    for (std::size_t i = 0; i < size; ++i)
        any |= static_cast<unsigned char>(text[i]);
    return any < 0x80;
}

bool fail(QString *error, const QString &what)
{
    *error = what;
    return false;
}

} // namespace

// Turns the parser's events into tokens. Containers get their size and span
// when they close; the open ones wait on a stack of their token positions.
class TapeBuilder : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, TapeBuilder>
{
public:
    explicit TapeBuilder(std::vector<JsonTape::Token> &tokens)
        : tokens(tokens)
    { }

    bool tooDeep() const { return exceeded; }

    bool Null() { return add(JsonTape::Kind::Null, nullptr, 0); }
    bool Bool(bool value)
    {
        return add(value ? JsonTape::Kind::True : JsonTape::Kind::False, nullptr, 0);
    }
    bool RawNumber(const char *text, rapidjson::SizeType length, bool)
    {
        return add(JsonTape::Kind::Number, text, length);
    }
    bool String(const char *text, rapidjson::SizeType length, bool)
    {
        return add(JsonTape::Kind::String, text, length);
    }
    bool Key(const char *text, rapidjson::SizeType length, bool)
    {
        return add(JsonTape::Kind::Key, text, length);
    }
    bool StartObject() { return open(JsonTape::Kind::Object); }
    bool EndObject(rapidjson::SizeType count) { return close(count); }
    bool StartArray() { return open(JsonTape::Kind::List); }
    bool EndArray(rapidjson::SizeType count) { return close(count); }

private:
    bool add(JsonTape::Kind kind, const char *text, std::size_t size)
    {
        tokens.push_back({kind, size, 1, text});
        return true;
    }

    bool open(JsonTape::Kind kind)
    {
        if (depth == JsonTape::maxNesting) {
            exceeded = true;
            return false;
        }
        openTokens[depth++] = tokens.size();
        return add(kind, nullptr, 0);
    }

    bool close(std::size_t count)
    {
        JsonTape::Token &token = tokens[openTokens[--depth]];
        token.size = count;
        token.span = tokens.size() - openTokens[depth];
        return true;
    }

    std::vector<JsonTape::Token> &tokens;
    std::size_t openTokens[JsonTape::maxNesting];
    int depth = 0;
    bool exceeded = false;
};

namespace {

// Where a number stands in a text.
struct Span
{
    std::size_t start;
    std::size_t size;
};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// The numbers of @p text that the parser refuses as too big although their
// value is a finite double: it gives up on an integer part of more than 308
// digits, and on an exponent beyond 308 less the digits after the point,
// whatever the other digits make of it ("1" and 400 zeros "e-400" is 1).
// Found by a scan of their own, outside strings; texts that are no JSON
// numbers are left to the parser.
std::vector<Span> finiteNumbersTooBigForTheParser(std::string_view text)
{
    std::vector<Span> spans;
    const std::size_t size = text.size();
    std::size_t i = 0;
    while (i < size) {
        const char c = text[i];
        if (c == '"') {
            for (++i; i < size && text[i] != '"'; ++i) {
                if (text[i] == '\\')
                    ++i;
            }
            ++i;
            continue;
        }
        if (c != '-' && !isDigit(c)) {
            ++i;
            continue;
        }
        const std::size_t start = i;
        if (text[i] == '-')
            ++i;
        const std::size_t integerStart = i;
        while (i < size && isDigit(text[i]))
            ++i;
        const std::size_t integerDigits = i - integerStart;
        bool valid = integerDigits == 1 || (integerDigits > 1 && text[integerStart] != '0');
        if (i < size && text[i] == '.') {
            const std::size_t fractionStart = ++i;
            while (i < size && isDigit(text[i]))
                ++i;
            valid = valid && i > fractionStart;
        }
        bool bigExponent = false;
        if (i < size && (text[i] == 'e' || text[i] == 'E')) {
            ++i;
            const bool negative = i < size && text[i] == '-';
            if (i < size && (text[i] == '-' || text[i] == '+'))
                ++i;
            const std::size_t exponentStart = i;
            long exponent = 0;
            for (; i < size && isDigit(text[i]); ++i)
                exponent = std::min(exponent * 10 + (text[i] - '0'), 1000L);
            valid = valid && i > exponentStart;
            bigExponent = !negative && exponent > 308;
        }
        const std::string_view number = text.substr(start, i - start);
        if (valid && (integerDigits > 308 || bigExponent)
            && std::isfinite(JsonNumber::toDouble(number)))
            spans.push_back({start, number.size()});
    }
    return spans;
}

struct Outcome
{
    rapidjson::ParseErrorCode code;
    std::size_t offset;
    bool tooDeep;
};

// Parses @p copy in place into @p tokens.
Outcome parseInPlace(std::string &copy, bool ascii, std::vector<JsonTape::Token> &tokens)
{
    tokens.clear();
    rapidjson::Reader reader;
    rapidjson::InsituStringStream stream(copy.data());
    TapeBuilder builder(tokens);
    if (ascii)
        reader.Parse<fastFlags>(stream, builder);
    else
        reader.Parse<validatingFlags>(stream, builder);
    return {reader.GetParseErrorCode(), reader.GetErrorOffset(), builder.tooDeep()};
}

} // namespace

bool JsonTape::parse(std::string_view text, QString *error)
{
    tokens.clear();
    // memchr looks for the terminator; it needs none.
    // NOLINTNEXTLINE(bugprone-not-null-terminated-result)
    if (const void *nul = std::memchr(text.data(), '\0', text.size()))
        return fail(
            error,
            tr("NUL byte at column %1").arg(static_cast<const char *>(nul) - text.data() + 1));
    const bool ascii = isAscii(text.data(), text.size());
    copy.assign(text);
    copy.append(continuationBytes, '\0');
    Outcome outcome = parseInPlace(copy, ascii, tokens);

    if (outcome.code == rapidjson::kParseErrorNumberTooBig) {
        // The parser judges the size of a number by a few of its digits; each
        // number it refused, but whose value is finite, is parsed as a zero of
        // the same length, and gets its own digits back for the reader.
        const std::vector<Span> spans = finiteNumbersTooBigForTheParser(text);
        if (!spans.empty()) {
            copy.assign(text);
            copy.append(continuationBytes, '\0');
            for (const Span &span : spans)
                copy.replace(span.start, span.size, "0." + std::string(span.size - 2, '0'));
            outcome = parseInPlace(copy, ascii, tokens);
            for (const Span &span : spans)
                copy.replace(span.start, span.size, text.substr(span.start, span.size));
        }
    }
    if (outcome.tooDeep)
        return fail(error, tr("lists and objects nested deeper than %1 levels").arg(maxNesting));
    if (outcome.code != rapidjson::kParseErrorNone)
        return fail(error,
                    tr("malformed JSON at column %1: %2")
                        .arg(outcome.offset + 1)
                        .arg(QString::fromLatin1(rapidjson::GetParseError_En(outcome.code))));
    return true;
}
