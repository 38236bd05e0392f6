#include "asciistringdelimiter.h"

#include <QTextStream>

AsciiStringDelimiter::AsciiStringDelimiter(const QString &text)
    : text(text)
{ }

AsciiStringDelimiter::~AsciiStringDelimiter() = default;

QTextStream &AsciiStringDelimiter::write(QTextStream &stream) const
{
    return stream << text;
}
