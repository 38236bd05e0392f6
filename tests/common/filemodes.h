#pragma once

#include <QString>
#include <QStringList>

namespace FileModes {

/**
 * Makes @p command and @p arguments run the program so that the modes of
 * files and folders hold for it. Root passes over them, so as root the
 * program runs through setpriv without those powers; it stays root and can
 * be started from any folder, even one no other user may enter. Returns
 * false, with @p why set, when that cannot be done here.
 */
bool obeyed(QString *command, QStringList *arguments, QString *why);

} // namespace FileModes
