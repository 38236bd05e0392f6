#include "rowbuffer.h"

#include "iasciidelimiter.h"
#include "numberformat.h"

RowBuffer::RowBuffer(const DelimiterHandle &delimiter, const DelimiterHandle &emptyFieldText)
    : stream(&text, QIODevice::ReadWrite)
    , delimiter(delimiter)
    , emptyFieldText(emptyFieldText)
{ }

void RowBuffer::clear()
{
    // resize(0) keeps the allocation for the next line
    text.resize(0);
}

void RowBuffer::endField()
{
    delimiter->write(stream);
}

void RowBuffer::field(const QString &value)
{
    stream << value;
    endField();
}

// Numbers go straight into the line: a text stream over a string writes
// through to it at once, so the delimiter's write() that follows lands
// after them.
void RowBuffer::field(QLatin1String value)
{
    text.append(value);
    endField();
}

void RowBuffer::fixed(double value, int decimals)
{
    char buffer[NumberFormat::MaxLength];
    field(QLatin1String(buffer, int(NumberFormat::writeFixed(buffer, value, decimals) - buffer)));
}

void RowBuffer::general(double value, int digits)
{
    char buffer[NumberFormat::MaxLength];
    field(QLatin1String(buffer, int(NumberFormat::writeGeneral(buffer, value, digits) - buffer)));
}

void RowBuffer::integer(qint64 value, int width, char fill)
{
    char buffer[NumberFormat::MaxLength];
    field(QLatin1String(buffer,
                        int(NumberFormat::writeInteger(buffer, value, width, fill) - buffer)));
}

void RowBuffer::natural(quint64 value, int width, char fill)
{
    char buffer[NumberFormat::MaxLength];
    field(QLatin1String(buffer,
                        int(NumberFormat::writeUnsigned(buffer, value, width, fill) - buffer)));
}

void RowBuffer::empty(int count)
{
    for (int i = 0; i < count; ++i) {
        emptyFieldText->write(stream);
        endField();
    }
}
