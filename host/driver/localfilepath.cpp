#include "localfilepath.h"

QString localFilePath(const QString &argument)
{
    if (argument.startsWith(QLatin1Char(':')))
        return QStringLiteral("./") + argument;
    return argument;
}
