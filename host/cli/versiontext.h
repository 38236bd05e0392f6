#pragma once

#include <QString>

/** The program's version, the project's. */
QString programVersion();

/**
 * Prints what --version shows on standard output: the program's version and
 * the name, version and file of the plug-in in @p pluginFile. Returns the
 * exit status: 0, or 1 when the plug-in cannot be loaded (said on standard
 * error after the program's version).
 */
int printVersion(const QString &pluginFile);
