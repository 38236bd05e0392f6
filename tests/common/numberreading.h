#pragma once

#include "numbertexts.h"

#include <QString>

/**
 * Writes @p count texts of @p form into recording lines, as the values of a
 * sample's double fields, reads them back through JsonLinesReader and
 * compares every value, bit for bit, with what the text stands for
 * (NumberTexts::expected). Returns an empty string when all agree, else what
 * differs first. @p checked, when given, counts the values compared.
 */
QString checkNumberReading(NumberTexts::Form form, qint64 count, quint64 seed,
                           qint64 *checked = nullptr);
