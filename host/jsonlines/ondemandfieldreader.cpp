#include "ondemandfieldreader.h"

#include <limits>

namespace {

// A key without escapes is the same text before and after unescaping.
bool plain(OnDemandFieldReader::Key key)
{
    for (const char *p = key.raw(); *p != '"'; ++p) {
        if (*p == '\\')
            return false;
    }
    return true;
}

} // namespace

// The bare literals of the format, which simdjson does not know. The parser
// behind the tape takes a few more spellings; those are left to it.
bool OnDemandFieldReader::literal(Value &value, double *out)
{
    std::string_view token = value.raw_json_token();
    while (!token.empty() && (token.back() == ' ' || token.back() == '\t' || token.back() == '\r'))
        token.remove_suffix(1);
    if (token == "NaN")
        *out = std::numeric_limits<double>::quiet_NaN();
    else if (token == "Infinity")
        *out = std::numeric_limits<double>::infinity();
    else if (token == "-Infinity")
        *out = -std::numeric_limits<double>::infinity();
    else
        return false;
    return true;
}

bool OnDemandFieldReader::dateTime(Value &value, const KeyPath &, QDateTime *out)
{
    std::string_view text;
    if (value.get_string().get(text))
        return false;
    *out =
        QDateTime::fromString(QString::fromUtf8(text.data(), int(text.size())), Qt::ISODateWithMs);
    return out->isValid();
}

bool OnDemandFieldReader::unknown(Key key, Value &value)
{
    return plain(key) && check(value);
}

// Walks @p value and everything in it, converting every number, as the
// tape's parser would before anything is read.
bool OnDemandFieldReader::check(Value &value)
{
    simdjson::ondemand::json_type type;
    double number = 0.0;
    if (value.type().get(type))
        return literal(value, &number);
    switch (type) {
    case simdjson::ondemand::json_type::object:
        return object(value, KeyPath::top(""),
                      [this](Key key, Value &member) { return unknown(key, member); });
    case simdjson::ondemand::json_type::array:
        return list(
            value, KeyPath::top(""), [] {}, [this](Value &entry, int) { return check(entry); });
    case simdjson::ondemand::json_type::number:
        return this->number(value, KeyPath::top(""), &number);
    case simdjson::ondemand::json_type::string: {
        std::string_view text;
        return !value.get_string().get(text);
    }
    case simdjson::ondemand::json_type::boolean: {
        bool flag = false;
        return !value.get_bool().get(flag);
    }
    case simdjson::ondemand::json_type::null:
        return isNull(value);
    }
    return false;
}
