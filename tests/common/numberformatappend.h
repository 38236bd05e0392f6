#pragma once

#include <numberformat.h>

#include <QString>
#include <QtGlobal>

/**
 * NumberFormat's write functions appending to a string, as the tests and
 * benchmarks compare them with Qt's own formatting. The exporter writes
 * into its row buffer instead.
 */
namespace NumberFormat {

void appendFixed(QString &out, double v, int decimals);
void appendGeneral(QString &out, double v, int digits);
void appendInteger(QString &out, qint64 v, int width = 0, char fill = ' ');
void appendUnsigned(QString &out, quint64 v, int width = 0, char fill = ' ');

} // namespace NumberFormat
