#include "jsonlinewriter.h"

#include <charconv>
#include <cmath>
#include <iterator>

namespace {

// Rounds to a number of decimals, so the file stays short and every number's
// shortest form has at most that many decimals. Adding 0.0 turns -0 into 0,
// which reads back with the same bits.
double rounded(double value, int decimals)
{
    const double scale = std::pow(10.0, decimals);
    return std::round(value * scale) / scale + 0.0;
}

} // namespace

void JsonLineWriter::clear()
{
    text.clear();
    firstInLevel.clear();
    afterKey = false;
}

void JsonLineWriter::key(const char *name)
{
    separate();
    text += '"';
    text += name;
    text += "\":";
    afterKey = true;
}

void JsonLineWriter::integer(qint64 value)
{
    beforeValue();
    char buffer[24];
    text.append(buffer, std::to_chars(std::begin(buffer), std::end(buffer), value).ptr);
}

void JsonLineWriter::number(double value, int decimals)
{
    exactNumber(rounded(value, decimals));
}

void JsonLineWriter::exactNumber(double value)
{
    beforeValue();
    char buffer[32];
    text.append(buffer, std::to_chars(std::begin(buffer), std::end(buffer), value).ptr);
}

void JsonLineWriter::numbers(const double *values, int count, int decimals)
{
    beginList();
    for (int i = 0; i < count; ++i)
        number(values[i], decimals);
    endList();
}

void JsonLineWriter::quaternion(const KvQuaternion &q, int decimals)
{
    const double components[4] = {q[0], q[1], q[2], q[3]};
    numbers(components, 4, decimals);
}

// Texts from a log may hold anything; quotes, backslashes and control
// characters are escaped, everything else is written as UTF-8.
void JsonLineWriter::string(const QString &value)
{
    beforeValue();
    text += '"';
    for (const char c : value.toStdString()) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            text += '\\';
            text += c;
        } else if (byte < 0x20) {
            static const char hex[] = "0123456789abcdef";
            text += "\\u00";
            text += hex[byte >> 4];
            text += hex[byte & 0xF];
        } else {
            text += c;
        }
    }
    text += '"';
}

void JsonLineWriter::boolean(bool value)
{
    beforeValue();
    text += value ? "true" : "false";
}

void JsonLineWriter::open(char bracket)
{
    beforeValue();
    text += bracket;
    firstInLevel.push_back(true);
}

void JsonLineWriter::close(char bracket)
{
    text += bracket;
    firstInLevel.pop_back();
}

void JsonLineWriter::separate()
{
    if (!firstInLevel.back())
        text += ',';
    firstInLevel.back() = false;
}

// A value after a key follows its colon; any other value inside a list
// is separated from the one before.
void JsonLineWriter::beforeValue()
{
    if (afterKey)
        afterKey = false;
    else if (!firstInLevel.empty())
        separate();
}
