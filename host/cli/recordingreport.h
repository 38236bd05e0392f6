#pragma once

#include <QCoreApplication>
#include <QStringList>

class RecordingInput;
struct UbxLogStatistics;
struct UlogSummary;

/**
 * What a recording holds, as lines for the user: its format, properties,
 * update rate and number of samples; for a UBX log what the reader found
 * in it (frames, bad checksums, skipped bytes, messages used and not used,
 * epochs, satellites), for a flight log its topics, dropouts, logged
 * messages and what each key of the samples takes from where.
 */
class RecordingReport
{
    Q_DECLARE_TR_FUNCTIONS(RecordingReport)

public:
    /**
     * Reads @p input, open and before its first sample, to its end. Returns
     * false with @p error set when it cannot be read.
     */
    static bool describe(RecordingInput &input, const QString &name, QStringList *lines,
                         QString *error);

private:
    static void describeUbx(const UbxLogStatistics &log, QStringList *lines);
    static void describeUlog(const UlogSummary &log, QStringList *lines);
};
