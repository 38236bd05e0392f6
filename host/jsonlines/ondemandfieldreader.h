#pragma once

#include "jsontape.h"
#include "keypath.h"

#include <QDateTime>

#include <cmath>

#include <simdjson.h>

#include <string_view>

/**
 * Reads typed values from a line as simdjson's on-demand parser walks it:
 * the fast way through a sample line. It offers the operations of
 * TapeFieldReader, but keeps no messages: whatever it cannot take with
 * certainty (a bad line, a literal other than NaN, Infinity and -Infinity, a
 * number the careful reading might refuse) it answers false for, and the
 * line is read again through the tape, which then has the last word.
 */
class OnDemandFieldReader
{
public:
    using Value = simdjson::ondemand::value;
    using Key = simdjson::ondemand::raw_json_string;

    /**
     * Whether @p key is @p name, a literal without quotes or escapes. The
     * names are short: a loop costs less than a call of memcmp. Reading up
     * to name.size() bytes into the key stays within the line's padding.
     */
    static bool equals(Key key, std::string_view name)
    {
        const char *const raw = key.raw();
        if (raw[name.size()] != '"')
            return false;
        for (std::size_t i = 0; i < name.size(); ++i) {
            if (raw[i] != name[i])
                return false;
        }
        return true;
    }
    static bool isNull(Value &value)
    {
        bool null = false;
        return !value.is_null().get(null) && null;
    }

    /** Starts a line: the nesting count begins again. */
    void begin() { depth = 0; }

    // The leaves are defined here, so that they are inlined into the key
    // readers: a sample line holds dozens of numbers.
    bool integer(Value &value, const KeyPath &, qint64 minimum, qint64 maximum, qint64 *out)
    {
        int64_t number = 0;
        if (value.get_int64().get(number) || number < minimum || number > maximum)
            return false;
        *out = number;
        return true;
    }

    bool number(Value &value, const KeyPath &, double *out)
    {
        double number = 0.0;
        if (value.get_double().get(number))
            return literal(value, out);
        // Near the largest double the tape's parser refuses some numbers
        // that are still finite; those lines are left to it.
        if (std::fabs(number) >= 1e308)
            return false;
        *out = number;
        return true;
    }

    bool numbers(Value &value, const KeyPath &path, int count, double *out)
    {
        return list(
            value, path, count, [] {},
            [&](Value &entry, int index) { return number(entry, path, out + index); });
    }

    bool dateTime(Value &value, const KeyPath &path, QDateTime *out);

    template <typename Describe, typename Read>
    bool list(Value &value, const KeyPath &, Describe, Read read)
    {
        simdjson::ondemand::array array;
        if (value.get_array().get(array) || !enter())
            return false;
        int index = 0;
        // Entries and members are used where they stand: copying them out
        // of their results stalls the processor on every one.
        for (auto entry : array) {
            if (entry.error() || !read(entry.value_unsafe(), index++))
                return false;
        }
        return leave();
    }

    template <typename Describe, typename Read>
    bool list(Value &value, const KeyPath &path, int count, Describe describe, Read read)
    {
        int entries = 0;
        return list(value, path, describe,
                    [&](Value &item, int index) { return ++entries <= count && read(item, index); })
            && entries == count;
    }

    template <typename Read>
    bool object(Value &value, const KeyPath &, Read read)
    {
        simdjson::ondemand::object members;
        if (value.get_object().get(members) || !enter())
            return false;
        for (auto member : members) {
            if (member.error())
                return false;
            simdjson::ondemand::field &field = member.value_unsafe();
            if (!read(field.key(), field.value()))
                return false;
        }
        return leave();
    }

    /** A member whose key the reader does not know: checked as the tape's parser would, then
     * ignored. */
    bool unknown(Key key, Value &value);

    bool duplicate(const KeyPath &) { return false; }

private:
    bool enter() { return ++depth <= JsonTape::maxNesting; }
    bool leave()
    {
        --depth;
        return true;
    }
    bool check(Value &value);
    static bool literal(Value &value, double *out);

    int depth = 0;
};
