#pragma once

#include <QString>

class AbstractRecordingReader;
class QIODevice;

/**
 * Writes a receiver recording in the JSON Lines format: the recording object
 * with the properties and update rate, then per sample its packet counter
 * and the receiver records it holds. Read again, the file gives the same
 * properties, rate and records, so that its export has the same bytes as
 * that of the log it came from. Other sample data is not written: a
 * receiver log has none.
 */
class RecordingConverter
{
public:
    /**
     * Writes the samples of @p reader, which is open and before its first
     * sample, to @p out. Returns false with @p error set when reading or
     * writing fails.
     */
    static bool convert(AbstractRecordingReader &reader, QIODevice *out, QString *error);
};
