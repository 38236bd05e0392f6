#include "numberformatappend.h"

void NumberFormat::appendFixed(QString &out, double v, int decimals)
{
    char buffer[MaxLength];
    out.append(QLatin1String(buffer, writeFixed(buffer, v, decimals)));
}

void NumberFormat::appendGeneral(QString &out, double v, int digits)
{
    char buffer[MaxLength];
    out.append(QLatin1String(buffer, writeGeneral(buffer, v, digits)));
}

void NumberFormat::appendInteger(QString &out, qint64 v, int width, char fill)
{
    char buffer[MaxLength];
    out.append(QLatin1String(buffer, writeInteger(buffer, v, width, fill)));
}

void NumberFormat::appendUnsigned(QString &out, quint64 v, int width, char fill)
{
    char buffer[MaxLength];
    out.append(QLatin1String(buffer, writeUnsigned(buffer, v, width, fill)));
}
