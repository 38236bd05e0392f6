#pragma once

#include <QString>

/**
 * The file that a path given on the command line names. Qt takes a path that
 * starts with ':' for one of its built-in resources; on the command line it
 * is a file relative to the current folder, and is returned as "./" + path.
 * Any other path is returned as it is.
 */
QString localFilePath(const QString &argument);
