#pragma once

#include <QString>
#include <QVariant>

#include <string>
#include <string_view>

/**
 * The key and value of an information, multi-information or parameter
 * message. The key is "type name" ("char[40] ver_sw", "uint32_t
 * ver_sw_release", "float MC_ROLL_P"); the value is the raw little-endian
 * bytes the type describes. The bytes point into the parser's buffer and
 * stay valid until its next message.
 */
struct UlogKeyValue
{
    /** The type as written, "char[40]" or "int32_t". */
    std::string_view type;
    std::string_view name;
    std::string_view bytes;
    /** A multi-information part that continues the previous part of its key. */
    bool continued = false;

    /**
     * Parses @p key into type and name, and takes @p value. Returns false
     * when the key has no space between them.
     */
    bool set(std::string_view key, std::string_view value);

    /** Whether the type is a char array, the form of texts. */
    bool isText() const;
    /** A char array's text, up to its first NUL, as UTF-8. */
    QString text() const;
    /**
     * The value typed: a text for char arrays, qlonglong or qulonglong for
     * integers, double for float and double, bool, a QVariantList for other
     * arrays, and the bytes as QByteArray for a type the format has no
     * meaning for. Invalid when the bytes are fewer than the type needs.
     */
    QVariant value() const;
};
