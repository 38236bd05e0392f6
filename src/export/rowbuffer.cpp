#include "rowbuffer.h"

#include "iasciidelimiter.h"
#include "numberformat.h"

#include <algorithm>

namespace {

// The longest delimiter that is written together with a number, and the
// buffer a number is written into.
constexpr int maxJoinedDelimiter = 16;
constexpr int numberBufferSize = NumberFormat::MaxLength + maxJoinedDelimiter;

QString textOf(const DelimiterHandle &delimiter)
{
    QString text;
    QTextStream probe(&text);
    delimiter->write(probe);
    probe.flush();
    return text;
}

// The delimiter as Latin-1 bytes that can follow a number in its buffer, or
// nothing when it is not Latin-1 or too long for that.
QByteArray joinableBytes(const QString &delimiter)
{
    if (delimiter.isEmpty() || delimiter.size() > maxJoinedDelimiter)
        return QByteArray();
    for (const QChar c : delimiter) {
        if (c.unicode() > 0xff)
            return QByteArray();
    }
    return delimiter.toLatin1();
}

} // namespace

RowBuffer::RowBuffer(const DelimiterHandle &delimiter, const DelimiterHandle &emptyFieldText)
    : stream(&text, QIODevice::ReadWrite)
    , delimiter(textOf(delimiter))
    , emptyFieldText(textOf(emptyFieldText))
    , joinedDelimiter(joinableBytes(this->delimiter))
{ }

void RowBuffer::clear()
{
    // resize(0) keeps the allocation for the next line
    text.resize(0);
}

void RowBuffer::endField()
{
    text.append(delimiter);
}

// A text stream over a string writes through to it at once, so what is
// appended to the string afterwards lands after it.
void RowBuffer::field(const QString &value)
{
    stream << value;
    endField();
}

void RowBuffer::field(QLatin1String value)
{
    text.append(value);
    endField();
}

void RowBuffer::fixed(double value, int decimals)
{
    char buffer[numberBufferSize];
    number(buffer, NumberFormat::writeFixed(buffer, value, decimals));
}

void RowBuffer::general(double value, int digits)
{
    char buffer[numberBufferSize];
    number(buffer, NumberFormat::writeGeneral(buffer, value, digits));
}

void RowBuffer::integer(qint64 value, int width, char fill)
{
    char buffer[numberBufferSize];
    number(buffer, NumberFormat::writeInteger(buffer, value, width, fill));
}

void RowBuffer::natural(quint64 value, int width, char fill)
{
    char buffer[numberBufferSize];
    number(buffer, NumberFormat::writeUnsigned(buffer, value, width, fill));
}

// A number and the delimiter after it go in with one append where they can:
// a row is mostly numbers, and each append costs a call and a check of room.
void RowBuffer::number(char *first, char *last)
{
    if (joinedDelimiter.isEmpty()) {
        field(QLatin1String(first, int(last - first)));
        return;
    }
    last = std::copy(joinedDelimiter.cbegin(), joinedDelimiter.cend(), last);
    text.append(QLatin1String(first, int(last - first)));
}

void RowBuffer::empty(int count)
{
    for (int i = 0; i < count; ++i) {
        text.append(emptyFieldText);
        endField();
    }
}
