#pragma once

#include <recordingsample.h>

#include <QByteArray>

/**
 * Every member of @p sample as bytes, doubles by their bits: two samples
 * have the same fingerprint only when they hold exactly the same data.
 */
QByteArray sampleFingerprint(const RecordingSample &sample);
