#pragma once

#include <QCoreApplication>
#include <QString>

/**
 * The part of a recording to export: the samples from --from up to, not
 * including, --to, and of those every N-th, starting with the first.
 *
 * A bound is a sample index (the first sample is 0) or, with the suffix "s",
 * a time in seconds from the start: the sample's index over the recording's
 * update rate.
 */
class SampleSelection
{
    Q_DECLARE_TR_FUNCTIONS(SampleSelection)

public:
    struct Bound
    {
        enum class Kind { None, Index, Seconds };
        Kind kind = Kind::None;
        double value = 0.0;
    };

    /** Reads a bound as the command line gives it; false, with @p problem set, when it is none. */
    static bool parseBound(const QString &text, Bound *bound, QString *problem);

    Bound from;
    Bound to;
    qint64 every = 1;

    /** Whether every sample is exported. */
    bool isEverything() const;
    /** Whether a bound is in seconds, which needs the recording's update rate. */
    bool needsRate() const;
    /** Whether the sample of @p index is exported, in a recording of @p rate samples a second. */
    bool selects(qint64 index, double rate) const;
    /** Whether no sample from @p index on is exported. */
    bool isPastEnd(qint64 index, double rate) const;

private:
    static bool before(qint64 index, double rate, const Bound &bound);
    qint64 firstIndex(double rate) const;
};
