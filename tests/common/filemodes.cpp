#include "filemodes.h"

#include <QStandardPaths>

#include <unistd.h>

bool FileModes::obeyed(Refused refused, QString *command, QStringList *arguments, QString *why)
{
    if (::geteuid() != 0)
        return true;
    const QString setpriv = QStandardPaths::findExecutable(QStringLiteral("setpriv"));
    if (setpriv.isEmpty()) {
        *why = QStringLiteral("running as root, and setpriv is not there to drop root's powers "
                              "over file modes");
        return false;
    }
    const QString dropped = refused == Refused::Writing
        ? QStringLiteral("-dac_override")
        : QStringLiteral("-dac_override,-dac_read_search");
    *arguments =
        QStringList{"--inh-caps=" + dropped, "--bounding-set=" + dropped, *command} + *arguments;
    *command = setpriv;
    return true;
}
