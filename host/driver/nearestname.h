#pragma once

#include <QString>
#include <QStringList>

/**
 * The name of @p known that @p name most likely misspells: the one the
 * fewest single-character edits away, case ignored. Empty when @p known is
 * empty or, with @p closeOnly, when even the nearest needs more than a third
 * of the name's characters changed (then it is no longer a likely typo).
 */
QString nearestName(const QString &name, const QStringList &known, bool closeOnly = false);
