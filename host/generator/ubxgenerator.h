#pragma once

#include "recordinggenerator.h"

#include <QString>

class QIODevice;

/**
 * Writes a synthetic UBX receiver log to @p out, which must be open for
 * writing: options.samples navigation epochs of the generator's walk at
 * options.rate epochs a second (keys are not looked at). The log opens with
 * MON-VER; each epoch holds NAV-SOL, NAV-PVT, NAV-STATUS (a message the
 * reader does not use), NAV-DOP, NAV-TIMEUTC, NAV-SVINFO and NAV-SAT, and an
 * NMEA GGA sentence between the frames, as receivers that mix both outputs
 * write them. The same options give the same bytes.
 *
 * Returns false and sets @p error when an option is out of range or writing
 * fails.
 */
bool generateUbxLog(const GeneratorOptions &options, QIODevice *out, QString *error);
