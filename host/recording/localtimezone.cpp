#include "localtimezone.h"

#include <QByteArray>

void pinLocalTimeZone()
{
    if (!qEnvironmentVariableIsSet("TZ"))
        qputenv("TZ", QByteArrayLiteral(":/etc/localtime"));
}
