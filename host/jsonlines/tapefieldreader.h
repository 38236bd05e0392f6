#pragma once

#include "jsontape.h"
#include "keypath.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QString>

#include <string_view>

/**
 * Reads typed values from a line parsed into a JsonTape. When a value does
 * not fit, the reader keeps the message that says what is wrong with it and
 * names its key path, and answers false.
 *
 * The sample reader's key table reads through this class or through
 * OnDemandFieldReader; both offer the same operations.
 */
class TapeFieldReader
{
    Q_DECLARE_TR_FUNCTIONS(TapeFieldReader)

public:
    using Value = JsonTape::Value;
    using Key = std::string_view;

    static bool equals(Key key, std::string_view name) { return key == name; }
    static bool isNull(const Value &value) { return value.isNull(); }

    /** An integer literal within [@p minimum, @p maximum]. */
    bool integer(const Value &value, const KeyPath &path, qint64 minimum, qint64 maximum,
                 qint64 *out);
    /** Any number, to the nearest double. */
    bool number(const Value &value, const KeyPath &path, double *out);
    /** A list of exactly @p count numbers. */
    bool numbers(const Value &value, const KeyPath &path, int count, double *out);
    /** An ISO 8601 date and time, with or without milliseconds. */
    bool dateTime(const Value &value, const KeyPath &path, QDateTime *out);

    /**
     * A list: read(entry, index) for each entry. @p describe() names what is
     * expected, for the message when @p value is no list.
     */
    template <typename Describe, typename Read>
    bool list(const Value &value, const KeyPath &path, Describe describe, Read read)
    {
        if (!value.isList())
            return wrongType(value, path, describe());
        int index = 0;
        for (Value entry : value.entries()) {
            if (!read(entry, index++))
                return false;
        }
        return true;
    }

    /** A list of exactly @p count entries. */
    template <typename Describe, typename Read>
    bool list(const Value &value, const KeyPath &path, int count, Describe describe, Read read)
    {
        if (value.isList() && value.size() != std::size_t(count))
            return fail(tr("\"%1\": expected %2, got %3 entries")
                            .arg(path.text(), describe())
                            .arg(value.size()));
        return list(value, path, describe, read);
    }

    /** An object: read(key, value) for each member, in the order of the text. */
    template <typename Read>
    bool object(const Value &value, const KeyPath &path, Read read)
    {
        if (!value.isObject())
            return wrongType(value, path, tr("an object"));
        for (const JsonTape::Member member : value.members()) {
            Value memberValue = member.value;
            if (!read(member.key, memberValue))
                return false;
        }
        return true;
    }

    /** A member whose key the reader does not know: the parser has checked it, and it is ignored.
     */
    bool unknown(Key, const Value &) { return true; }

    bool duplicate(const KeyPath &path);
    bool wrongType(const Value &value, const KeyPath &path, const QString &expected);
    bool fail(const QString &what);

    QString errorString() const { return error; }

    /** The JSON type of @p value as a message names it: "a list", "null". */
    static QString typeName(const Value &value);
    static QString duplicateText(const KeyPath &path);

private:
    QString error;
};
