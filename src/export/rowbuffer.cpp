#include "rowbuffer.h"

#include "iasciidelimiter.h"
#include "numberformat.h"

namespace {

QString textOf(const DelimiterHandle &delimiter)
{
    QString text;
    QTextStream probe(&text);
    delimiter->write(probe);
    probe.flush();
    return text;
}

} // namespace

RowBuffer::RowBuffer(const DelimiterHandle &delimiter, const DelimiterHandle &emptyFieldText)
    : stream(&text, QIODevice::ReadWrite)
    , delimiter(textOf(delimiter))
    , emptyFieldText(textOf(emptyFieldText))
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
        text.append(emptyFieldText);
        endField();
    }
}
