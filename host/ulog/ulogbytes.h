#pragma once

#include <QtGlobal>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

/**
 * The bytes of a topic's payload or a value, little-endian, put together
 * field after field as a format definition lays them out.
 */
class UlogBytes
{
public:
    template <typename T>
    UlogBytes &put(T value)
    {
        static_assert(std::is_arithmetic_v<T>, "a ULog field holds numbers");
        char at[sizeof(T)];
        std::memcpy(at, &value, sizeof(T));
        bytes.append(at, sizeof(T));
        return *this;
    }
    /** @p count bytes of padding, zero. */
    UlogBytes &pad(int count)
    {
        bytes.append(std::size_t(count), '\0');
        return *this;
    }
    /** @p text in a char[@p length] field, filled up with NULs. */
    UlogBytes &text(std::string_view text, int length)
    {
        bytes.append(text.substr(0, std::size_t(length)));
        return pad(length - int(std::min<std::size_t>(text.size(), std::size_t(length))));
    }

    const std::string &data() const { return bytes; }
    operator std::string_view() const { return bytes; }

private:
    std::string bytes;
};
