#include "jsontape.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

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

bool JsonTape::parse(std::string &text, QString *error)
{
    tokens.clear();
    // memchr looks for the terminator; it needs none.
    // NOLINTNEXTLINE(bugprone-not-null-terminated-result)
    if (const void *nul = std::memchr(text.data(), '\0', text.size()))
        return fail(
            error,
            tr("NUL byte at column %1").arg(static_cast<const char *>(nul) - text.data() + 1));
    const bool ascii = isAscii(text.data(), text.size());
    text.append(continuationBytes, '\0');

    rapidjson::Reader reader;
    rapidjson::InsituStringStream stream(text.data());
    TapeBuilder builder(tokens);
    if (ascii)
        reader.Parse<fastFlags>(stream, builder);
    else
        reader.Parse<validatingFlags>(stream, builder);
    if (builder.tooDeep())
        return fail(error, tr("lists and objects nested deeper than %1 levels").arg(maxNesting));
    if (reader.HasParseError())
        return fail(
            error,
            tr("malformed JSON at column %1: %2")
                .arg(reader.GetErrorOffset() + 1)
                .arg(QString::fromLatin1(rapidjson::GetParseError_En(reader.GetParseErrorCode()))));
    return true;
}
