#pragma once

#include "gapfinder.h"
#include "heldgroups.h"

#include <QCoreApplication>
#include <QStringList>

class RecordingInput;
struct RecordingSample;
struct UbxLogStatistics;
struct UlogSummary;

/**
 * What a recording holds, as lines for the user: its format, number of
 * samples, duration and rate, the data groups its samples hold (as the
 * options page names them) and the gaps in their packet counter and sample
 * time, update rate and properties; for a UBX log what the reader found
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
    // Sample times count in tenths of a millisecond; a receiver's time of
    // week in milliseconds.
    static constexpr double ticksPerSecond = 10000.0;
    static constexpr quint64 millisecondsPerWeek = 604800000;

    struct Samples
    {
        qint64 count = 0;
        HeldGroups::Mask groups = 0;
        GapFinder counters{GapFinder::Rule::StepOfOne, 0x10000};
        GapFinder times{GapFinder::Rule::TypicalStep, 0x100000000};
        // For samples without a sample time: their receiver records' time.
        GapFinder receiverTimes{GapFinder::Rule::TypicalStep, millisecondsPerWeek};
    };

    static void readSample(const RecordingSample &sample, Samples *samples);
    static QString timeGaps(const GapFinder &times, double perSecond);

    static void describeSamples(const RecordingInput &input, const Samples &samples,
                                QStringList *lines);
    static void describeUbx(const UbxLogStatistics &log, QStringList *lines);
    static void describeUlog(const UlogSummary &log, QStringList *lines);
};
