#pragma once

#include <QString>

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/** The primitive types a ULog field can have; Nested for a field of another format. */
enum class UlogType : quint8 {
    Invalid,
    Int8,
    UInt8,
    Int16,
    UInt16,
    Int32,
    UInt32,
    Int64,
    UInt64,
    Float,
    Double,
    Bool,
    Char,
    Nested
};

/** The type named by @p name ("uint64_t", "float", ...); Invalid for any other name. */
UlogType ulogType(std::string_view name);
/** Bytes of one value of @p type; 0 for Invalid and Nested. */
int ulogTypeSize(UlogType type);

/**
 * Where a field lies in a topic's payload: its offset, type and, for an
 * array, its length. A field found by its path ("q", "q[2]",
 * "esc[1].esc_rpm") is valid(); an element of an array is a field of count 1.
 */
struct UlogField
{
    UlogType type = UlogType::Invalid;
    int offset = 0;
    /** Values in the field: 1 for a scalar or an element, n for an array type[n]. */
    int count = 0;
    /** Whether the layout declares the field as an array (type[n]). */
    bool array = false;
    /** The format of a nested field, empty otherwise. */
    std::string nestedFormat;
    /** Bytes of the whole field, all elements. */
    int size = 0;

    bool valid() const { return type != UlogType::Invalid; }
    /** The field's element @p index of @p payload, which must hold the field. */
    double value(const char *payload, int index = 0) const;
    /** The element as an unsigned integer, exact for 64-bit counters and timestamps. */
    quint64 unsignedValue(const char *payload, int index = 0) const;
    /** The element as a signed integer, exact for 64-bit values. */
    qint64 signedValue(const char *payload, int index = 0) const;
};

/**
 * The formats of a log, as its format definitions ('F' messages) give them,
 * and the layout of each topic that follows from them: nested formats are
 * laid out in place, "_padding" fields take their bytes but cannot be
 * looked up. A topic's layout is worked out once, when first asked for, so
 * formats may come in any order.
 */
class UlogFormats
{
public:
    /** A field of a format, in the order of the definition. */
    struct Member
    {
        std::string name;
        UlogType type = UlogType::Invalid;
        /** The nested format's name for Nested. */
        std::string typeName;
        int count = 1;
        bool array = false;
        int offset = 0;
        int size = 0;
        bool padding = false;
    };

    /** The laid-out format of a topic. */
    struct Layout
    {
        std::string name;
        std::vector<Member> members;
        /** Bytes of the whole format, padding included. */
        int size = 0;
        /** Bytes without the padding at the end, which a log may leave out of its data. */
        int minimumSize = 0;
    };

    /**
     * Adds the definition @p definition ("name:type field;type[n] field;...").
     * Returns false and sets @p error when it does not parse; a later
     * definition of the same name replaces an earlier one.
     */
    bool add(std::string_view definition, QString *error);

    bool contains(std::string_view format) const;
    /** The names of the formats defined, sorted. */
    std::vector<std::string> names() const;

    /**
     * The layout of @p format; nullptr when it, or a format it nests, is not
     * defined, or the formats nest in a loop.
     */
    const Layout *layout(std::string_view format) const;

    /**
     * The field at @p path of @p format: a member ("timestamp"), an element
     * ("accelerometer_m_s2[1]") or a member of a nested format
     * ("esc[2].esc_rpm", "control.roll"). Invalid when the layout has none.
     */
    UlogField field(std::string_view format, std::string_view path) const;
    /** Whether the layout of @p format has the field at @p path. */
    bool has(std::string_view format, std::string_view path) const;

private:
    struct Definition
    {
        std::vector<Member> members;
    };

    const Layout *resolve(const std::string &name, int depth) const;

    std::map<std::string, Definition, std::less<>> definitions;
    // Layouts worked out so far; a new definition clears them.
    mutable std::map<std::string, std::unique_ptr<Layout>, std::less<>> layouts;
};
