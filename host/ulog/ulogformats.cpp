#include "ulogformats.h"

#include <charconv>

namespace {

struct TypeName
{
    std::string_view name;
    UlogType type;
};

constexpr TypeName typeNames[] = {
    {"int8_t", UlogType::Int8},     {"uint8_t", UlogType::UInt8},   {"int16_t", UlogType::Int16},
    {"uint16_t", UlogType::UInt16}, {"int32_t", UlogType::Int32},   {"uint32_t", UlogType::UInt32},
    {"int64_t", UlogType::Int64},   {"uint64_t", UlogType::UInt64}, {"float", UlogType::Float},
    {"double", UlogType::Double},   {"bool", UlogType::Bool},       {"char", UlogType::Char},
};

// Deeper nesting than this is taken for a loop of formats.
constexpr int maximumDepth = 32;

template <typename T>
T load(const char *at)
{
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

// Splits "name[3]" into "name" and 3; -1 without an index, -2 for a bad one.
std::string_view splitIndex(std::string_view text, int *index)
{
    *index = -1;
    const auto open = text.find('[');
    if (open == std::string_view::npos)
        return text;
    if (text.back() != ']' || open + 2 >= text.size()) {
        *index = -2;
        return text.substr(0, open);
    }
    const std::string_view digits = text.substr(open + 1, text.size() - open - 2);
    int value = 0;
    const auto [end, failure] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value);
    *index =
        (failure == std::errc() && end == digits.data() + digits.size() && value >= 0) ? value : -2;
    return text.substr(0, open);
}

} // namespace

UlogType ulogType(std::string_view name)
{
    for (const TypeName &entry : typeNames) {
        if (entry.name == name)
            return entry.type;
    }
    return UlogType::Invalid;
}

int ulogTypeSize(UlogType type)
{
    switch (type) {
    case UlogType::Int8:
    case UlogType::UInt8:
    case UlogType::Bool:
    case UlogType::Char:
        return 1;
    case UlogType::Int16:
    case UlogType::UInt16:
        return 2;
    case UlogType::Int32:
    case UlogType::UInt32:
    case UlogType::Float:
        return 4;
    case UlogType::Int64:
    case UlogType::UInt64:
    case UlogType::Double:
        return 8;
    case UlogType::Invalid:
    case UlogType::Nested:
        break;
    }
    return 0;
}

double UlogField::value(const char *payload, int index) const
{
    const char *at = payload + offset + index * ulogTypeSize(type);
    switch (type) {
    case UlogType::Int8:
        return load<qint8>(at);
    case UlogType::UInt8:
    case UlogType::Bool:
    case UlogType::Char:
        return load<quint8>(at);
    case UlogType::Int16:
        return load<qint16>(at);
    case UlogType::UInt16:
        return load<quint16>(at);
    case UlogType::Int32:
        return load<qint32>(at);
    case UlogType::UInt32:
        return load<quint32>(at);
    case UlogType::Int64:
        return double(load<qint64>(at));
    case UlogType::UInt64:
        return double(load<quint64>(at));
    case UlogType::Float:
        return load<float>(at);
    case UlogType::Double:
        return load<double>(at);
    case UlogType::Invalid:
    case UlogType::Nested:
        break;
    }
    return 0.0;
}

quint64 UlogField::unsignedValue(const char *payload, int index) const
{
    const char *at = payload + offset + index * ulogTypeSize(type);
    switch (type) {
    case UlogType::UInt64:
        return load<quint64>(at);
    case UlogType::Int64:
        return quint64(load<qint64>(at));
    case UlogType::Float:
    case UlogType::Double:
        return quint64(value(payload, index));
    default:
        return quint64(signedValue(payload, index));
    }
}

qint64 UlogField::signedValue(const char *payload, int index) const
{
    const char *at = payload + offset + index * ulogTypeSize(type);
    switch (type) {
    case UlogType::UInt64:
        return qint64(load<quint64>(at));
    case UlogType::Int64:
        return load<qint64>(at);
    default:
        // Every other integer fits a double exactly.
        return qint64(value(payload, index));
    }
}

bool UlogFormats::add(std::string_view definition, QString *error)
{
    const auto fail = [&](const QString &why) {
        if (error)
            *error = QStringLiteral("format definition \"%1\": %2")
                         .arg(QString::fromUtf8(definition.data(), int(definition.size())), why);
        return false;
    };
    const auto colon = definition.find(':');
    if (colon == std::string_view::npos || colon == 0)
        return fail(QStringLiteral("no name before ':'"));
    const std::string name(definition.substr(0, colon));
    Definition parsed;
    std::string_view rest = definition.substr(colon + 1);
    while (!rest.empty()) {
        const auto end = rest.find(';');
        const std::string_view item = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        if (item.empty())
            continue;
        const auto space = item.find(' ');
        if (space == std::string_view::npos || space == 0 || space + 1 == item.size())
            return fail(QStringLiteral("field \"%1\" is not \"type name\"")
                            .arg(QString::fromUtf8(item.data(), int(item.size()))));
        Member member;
        member.name = std::string(item.substr(space + 1));
        int length = -1;
        const std::string_view typeName = splitIndex(item.substr(0, space), &length);
        if (length == -2 || length == 0)
            return fail(QStringLiteral("field \"%1\" has a bad array length")
                            .arg(QString::fromStdString(member.name)));
        member.array = length > 0;
        member.count = member.array ? length : 1;
        member.type = ulogType(typeName);
        if (member.type == UlogType::Invalid) {
            member.type = UlogType::Nested;
            member.typeName = std::string(typeName);
        }
        member.padding = member.name.rfind("_padding", 0) == 0;
        parsed.members.push_back(std::move(member));
    }
    definitions[name] = std::move(parsed);
    layouts.clear();
    return true;
}

bool UlogFormats::contains(std::string_view format) const
{
    return definitions.find(format) != definitions.end();
}

std::vector<std::string> UlogFormats::names() const
{
    std::vector<std::string> result;
    for (const auto &entry : definitions)
        result.push_back(entry.first);
    return result;
}

const UlogFormats::Layout *UlogFormats::layout(std::string_view format) const
{
    const auto known = layouts.find(format);
    if (known != layouts.end())
        return known->second.get();
    return resolve(std::string(format), 0);
}

const UlogFormats::Layout *UlogFormats::resolve(const std::string &name, int depth) const
{
    const auto known = layouts.find(name);
    if (known != layouts.end())
        return known->second.get();
    const auto definition = definitions.find(name);
    if (definition == definitions.end() || depth > maximumDepth)
        return nullptr;
    auto result = std::make_unique<Layout>();
    result->name = name;
    int offset = 0;
    for (Member member : definition->second.members) {
        int elementSize = ulogTypeSize(member.type);
        if (member.type == UlogType::Nested) {
            const Layout *nested = resolve(member.typeName, depth + 1);
            if (!nested)
                return nullptr;
            elementSize = nested->size;
        }
        member.offset = offset;
        member.size = elementSize * member.count;
        offset += member.size;
        if (!member.padding)
            result->minimumSize = offset;
        result->members.push_back(std::move(member));
    }
    result->size = offset;
    const Layout *laidOut = result.get();
    layouts.emplace(name, std::move(result));
    return laidOut;
}

UlogField UlogFormats::field(std::string_view format, std::string_view path) const
{
    const Layout *current = layout(format);
    UlogField result;
    int base = 0;
    while (current) {
        const auto dot = path.find('.');
        int index = -1;
        const std::string_view name = splitIndex(path.substr(0, dot), &index);
        if (index == -2)
            return {};
        const Member *member = nullptr;
        for (const Member &candidate : current->members) {
            if (!candidate.padding && candidate.name == name) {
                member = &candidate;
                break;
            }
        }
        if (!member || (index >= 0 && (!member->array || index >= member->count)))
            return {};
        const int elementSize = member->size / member->count;
        base += member->offset + (index >= 0 ? index * elementSize : 0);
        if (dot == std::string_view::npos) {
            result.type = member->type;
            result.offset = base;
            result.count = index >= 0 ? 1 : member->count;
            result.array = index < 0 && member->array;
            result.size = index >= 0 ? elementSize : member->size;
            result.nestedFormat = member->typeName;
            return result;
        }
        // A path goes into a nested format only through one element.
        if (member->type != UlogType::Nested || (member->array && index < 0))
            return {};
        current = layout(member->typeName);
        path = path.substr(dot + 1);
    }
    return {};
}

bool UlogFormats::has(std::string_view format, std::string_view path) const
{
    return field(format, path).valid();
}
