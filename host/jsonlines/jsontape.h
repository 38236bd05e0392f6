#pragma once

#include <QCoreApplication>
#include <QString>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/**
 * One JSON text parsed into a flat list of tokens, in document order: each
 * list or object is followed by its entries, each object member by its key
 * token and then its value. Strings and numbers point into the tape's own
 * copy of the text, which the parse rewrites in place (strings unescaped).
 * Numbers are kept as their text, so that the reader converts each one
 * exactly, to the type its field has, whatever its number of digits.
 *
 * The tape keeps its memory from one parse to the next: parsing line after
 * line allocates nothing once the longest line has been seen.
 */
class JsonTape
{
    Q_DECLARE_TR_FUNCTIONS(JsonTape)

public:
    enum class Kind : unsigned char { Null, False, True, Number, String, Key, List, Object };

    struct Token
    {
        Kind kind;
        /** Bytes of a string or number; entries of a list; members of an object. */
        std::size_t size;
        /** Tokens of this value, its entries included. */
        std::size_t span;
        const char *text;
    };

    class Value;
    struct Member;

    /** Lists and objects nested deeper than this are refused. */
    static constexpr int maxNesting = 32;

    /**
     * Parses the JSON text in @p text (NUL bytes are refused), which must be
     * a whole JSON value and nothing else. Besides standard JSON the bare
     * literals NaN, Infinity and -Infinity are numbers. Returns false with
     * @p error set when the text is not JSON, holds invalid UTF-8 in a string,
     * nests too deep or holds a number whose value lies beyond the largest
     * double. The tape's values stay valid until the next parse.
     */
    bool parse(std::string_view text, QString *error);

    /** The parsed value: the root of the text. */
    Value root() const;

private:
    std::vector<Token> tokens;
    // The text as parsed in place, with padding after it.
    std::string copy;
};

/** A view of one value on a tape, as cheap to copy as a pointer. */
class JsonTape::Value
{
public:
    explicit Value(const Token *token)
        : token(token)
    { }

    Kind kind() const { return token->kind; }
    bool isNull() const { return token->kind == Kind::Null; }
    bool isNumber() const { return token->kind == Kind::Number; }
    bool isString() const { return token->kind == Kind::String; }
    bool isList() const { return token->kind == Kind::List; }
    bool isObject() const { return token->kind == Kind::Object; }

    bool toBool() const { return token->kind == Kind::True; }
    /** The unescaped text of a string, or the text of a number as written. */
    std::string_view text() const { return {token->text, token->size}; }
    /** Entries of a list, members of an object. */
    std::size_t size() const { return token->size; }

    class Entries;
    class Members;
    /** The entries of a list. */
    Entries entries() const;
    /** The members of an object, in the order of the text. */
    Members members() const;

private:
    const Token *token;
};

/** One member of an object: its key and its value. */
struct JsonTape::Member
{
    std::string_view key;
    Value value;
};

/** The entries of a list, for a range-based for loop. */
class JsonTape::Value::Entries
{
public:
    class Iterator
    {
    public:
        explicit Iterator(const Token *token)
            : token(token)
        { }
        Value operator*() const { return Value(token); }
        Iterator &operator++()
        {
            token += token->span;
            return *this;
        }
        bool operator!=(const Iterator &other) const { return token != other.token; }

    private:
        const Token *token;
    };

    explicit Entries(const Token *list)
        : list(list)
    { }
    Iterator begin() const { return Iterator(list + 1); }
    Iterator end() const { return Iterator(list + list->span); }

private:
    const Token *list;
};

/** The members of an object, for a range-based for loop. */
class JsonTape::Value::Members
{
public:
    class Iterator
    {
    public:
        explicit Iterator(const Token *key)
            : key(key)
        { }
        Member operator*() const { return {{key->text, key->size}, Value(key + 1)}; }
        Iterator &operator++()
        {
            key += 1 + key[1].span;
            return *this;
        }
        bool operator!=(const Iterator &other) const { return key != other.key; }

    private:
        const Token *key;
    };

    explicit Members(const Token *object)
        : object(object)
    { }
    Iterator begin() const { return Iterator(object + 1); }
    Iterator end() const { return Iterator(object + object->span); }

private:
    const Token *object;
};

inline JsonTape::Value::Entries JsonTape::Value::entries() const
{
    return Entries(token);
}

inline JsonTape::Value::Members JsonTape::Value::members() const
{
    return Members(token);
}

inline JsonTape::Value JsonTape::root() const
{
    return Value(tokens.data());
}
