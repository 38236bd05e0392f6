#pragma once

#include <QtGlobal>

#include <vector>

/**
 * Finds the gaps in a value that steps on from sample to sample and wraps
 * around to 0 at a modulus: a packet counter, whose every step is 1, or a
 * sample time, whose typical step is the median of its steps.
 *
 * A step counts forwards through the wrap: a 16-bit counter (modulus 65536)
 * going from 65535 to 0 steps by 1, one going back from 7 to 5 by 65534. A gap is a step other
 * than 1 for a counter, a step of more than 1.5 times the median step for a
 * time.
 */
class GapFinder
{
public:
    enum class Rule { StepOfOne, TypicalStep };

    /** A step from one value to the next of the sample @p sample. */
    struct Gap
    {
        qint64 sample = -1;
        quint32 from = 0;
        quint32 to = 0;
        quint32 step = 0;
    };

    /** For values below @p modulus, at most 2^32. */
    GapFinder(Rule rule, quint64 modulus);

    /** The value of sample @p sample; samples come in order, those without a value are left out. */
    void add(qint64 sample, quint32 value);
    /** After the last value: finds the gaps of a time. */
    void finish();

    /** The number of values given. */
    qint64 values() const { return count; }
    /** The sum of the steps: how far the last value lies beyond the first. */
    quint64 span() const { return total; }
    /** The step that is no gap: 1 for a counter, the median step for a time. */
    quint32 typicalStep() const { return typical; }
    qint64 gaps() const { return gapCount; }
    /** The largest gap; its sample is -1 when there is none. */
    Gap largest() const { return widest; }

private:
    void note(const Gap &gap);

    Rule rule;
    quint64 modulus;
    qint64 count = 0;
    quint32 last = 0;
    quint64 total = 0;
    quint32 typical = 1;
    qint64 gapCount = 0;
    Gap widest;
    // For a time: every step, and the largest with where it is.
    std::vector<quint32> steps;
    Gap largestStep;
};
