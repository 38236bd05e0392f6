#pragma once

#include <QStringList>

/**
 * The subcommands of asciiexport. Each takes its own arguments (without the
 * program and subcommand names) and returns the exit status: 0 when all went
 * well, 1 when something failed, 2 for a usage error.
 */
namespace Commands {

int exportRecordings(const QStringList &arguments);
int listSettings(const QStringList &arguments);
int editOptions(const QStringList &arguments);
int showInfo(const QStringList &arguments);
int generate(const QStringList &arguments);
int convert(const QStringList &arguments);

/** @p text translated in the commands' context. */
QString tr(const char *text);

} // namespace Commands
