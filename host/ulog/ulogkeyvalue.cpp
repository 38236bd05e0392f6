#include "ulogkeyvalue.h"

#include "ulogformats.h"

#include <QVariantList>

#include <charconv>

namespace {

QVariant scalar(UlogType type, const char *at)
{
    UlogField field;
    field.type = type;
    field.count = 1;
    switch (type) {
    case UlogType::Int8:
    case UlogType::Int16:
    case UlogType::Int32:
    case UlogType::Int64:
        return qlonglong(field.signedValue(at));
    case UlogType::UInt8:
    case UlogType::UInt16:
    case UlogType::UInt32:
    case UlogType::UInt64:
    case UlogType::Char:
        return qulonglong(field.unsignedValue(at));
    case UlogType::Bool:
        return *at != 0;
    case UlogType::Float:
    case UlogType::Double:
        return field.value(at);
    case UlogType::Invalid:
    case UlogType::Nested:
        break;
    }
    return {};
}

} // namespace

bool UlogKeyValue::set(std::string_view key, std::string_view value)
{
    const auto space = key.find(' ');
    if (space == std::string_view::npos || space == 0 || space + 1 == key.size())
        return false;
    type = key.substr(0, space);
    name = key.substr(space + 1);
    bytes = value;
    return true;
}

bool UlogKeyValue::isText() const
{
    return type.rfind("char[", 0) == 0;
}

QString UlogKeyValue::text() const
{
    const auto end = bytes.find('\0');
    const std::string_view shown = bytes.substr(0, end);
    return QString::fromUtf8(shown.data(), int(shown.size()));
}

QVariant UlogKeyValue::value() const
{
    if (isText())
        return text();
    const auto open = type.find('[');
    const UlogType base = ulogType(type.substr(0, open));
    const int size = ulogTypeSize(base);
    if (size == 0)
        return QByteArray(bytes.data(), int(bytes.size()));
    if (open == std::string_view::npos) {
        if (bytes.size() < std::size_t(size))
            return {};
        return scalar(base, bytes.data());
    }
    int count = 0;
    const std::string_view digits = type.substr(open + 1, type.size() - open - 2);
    std::from_chars(digits.data(), digits.data() + digits.size(), count);
    if (count <= 0 || bytes.size() < std::size_t(count) * std::size_t(size))
        return {};
    QVariantList values;
    for (int i = 0; i < count; ++i)
        values.append(scalar(base, bytes.data() + i * size));
    return values;
}
