#include "tapefieldreader.h"

#include "jsonnumber.h"

#include <cmath>

namespace {

// A string value in quotes, shortened when long.
QString quoted(const JsonTape::Value &value)
{
    constexpr int shown = 60;
    const std::string_view bytes = value.text();
    QString text = QString::fromUtf8(bytes.data(), int(bytes.size()));
    if (text.size() > shown)
        text = text.left(shown) + QStringLiteral("...");
    return QLatin1Char('"') + text + QLatin1Char('"');
}

} // namespace

bool TapeFieldReader::integer(const Value &value, const KeyPath &path, qint64 minimum,
                              qint64 maximum, qint64 *out)
{
    if (!value.isNumber())
        return wrongType(value, path, tr("an integer"));
    const JsonNumber::Integer integer = JsonNumber::toInteger(value.text());
    if (integer.kind == JsonNumber::Integer::Kind::Signed) {
        if (integer.value >= minimum && integer.value <= maximum) {
            *out = integer.value;
            return true;
        }
    } else if (integer.kind == JsonNumber::Integer::Kind::Other) {
        // Whole numbers beyond 64 bits, however written, are out of range;
        // any other number that is not an integer literal is no integer.
        const double number = JsonNumber::toDouble(value.text());
        if (!(std::isfinite(number) && std::trunc(number) == number && std::fabs(number) >= 0x1p63))
            return fail(tr("\"%1\": %2 is not an integer")
                            .arg(path.text(), JsonNumber::display(value.text())));
    }
    return fail(tr("\"%1\": %2 is out of range (%3..%4)")
                    .arg(path.text(), JsonNumber::display(value.text()), QString::number(minimum),
                         QString::number(maximum)));
}

bool TapeFieldReader::number(const Value &value, const KeyPath &path, double *out)
{
    if (!value.isNumber())
        return wrongType(value, path, tr("a number"));
    *out = JsonNumber::toDouble(value.text());
    return true;
}

bool TapeFieldReader::numbers(const Value &value, const KeyPath &path, int count, double *out)
{
    return list(
        value, path, count, [count] { return tr("a list of %1 numbers").arg(count); },
        [&](Value &entry, int index) { return number(entry, path.entry(index), out + index); });
}

bool TapeFieldReader::dateTime(const Value &value, const KeyPath &path, QDateTime *out)
{
    if (!value.isString())
        return wrongType(value, path, tr("a string"));
    const std::string_view bytes = value.text();
    *out = QDateTime::fromString(QString::fromUtf8(bytes.data(), int(bytes.size())),
                                 Qt::ISODateWithMs);
    if (!out->isValid())
        return fail(
            tr("\"%1\": %2 is not an ISO 8601 date and time").arg(path.text(), quoted(value)));
    return true;
}

bool TapeFieldReader::duplicate(const KeyPath &path)
{
    return fail(duplicateText(path));
}

bool TapeFieldReader::wrongType(const Value &value, const KeyPath &path, const QString &expected)
{
    return fail(tr("\"%1\": expected %2, got %3").arg(path.text(), expected, typeName(value)));
}

bool TapeFieldReader::fail(const QString &what)
{
    error = what;
    return false;
}

QString TapeFieldReader::typeName(const Value &value)
{
    switch (value.kind()) {
    case JsonTape::Kind::Null:
        return tr("null");
    case JsonTape::Kind::False:
    case JsonTape::Kind::True:
        return tr("a boolean");
    case JsonTape::Kind::Object:
        return tr("an object");
    case JsonTape::Kind::List:
        return tr("a list");
    case JsonTape::Kind::String:
    case JsonTape::Kind::Key:
        return tr("a string");
    case JsonTape::Kind::Number:
        break;
    }
    return tr("a number");
}

QString TapeFieldReader::duplicateText(const KeyPath &path)
{
    return tr("\"%1\": the key appears more than once").arg(path.text());
}
