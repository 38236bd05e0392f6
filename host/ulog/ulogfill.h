#pragma once

#include "ulogfillpolicy.h"

#include <QtGlobal>

#include <vector>

/**
 * Which message of a slower topic each sample takes, under a fill policy.
 * Sample and message times are µs, both ascending; of messages of the same
 * time, the first counts.
 *
 * None: each message goes onto the one sample nearest its time (the earlier
 * sample on a tie) when it lies within one median sample step of it;
 * otherwise it is dropped. Of messages nearest to the same sample, the
 * nearer stays (the earlier on a tie) and the others collided. Hold: each
 * sample takes the latest message at or before it, at most the policy's
 * maximum age old. Nearest: the nearest message on either side within the
 * maximum age, the earlier on a tie. Under Hold and Nearest a message no
 * sample takes counts as dropped.
 *
 * prepare() works the placing out and counts; the samples then ask in
 * ascending order with messageFor(). Memory: under None one entry per
 * message placed, else none.
 */
class UlogFill
{
public:
    struct Counts
    {
        qint64 used = 0;
        qint64 dropped = 0;
        qint64 collided = 0;
    };

    /** @p step: the median step between samples, µs, for None. */
    UlogFill(const UlogFillPolicy &policy, double step);

    /** Places @p messageTimes on @p sampleTimes; both must outlive the fill. */
    void prepare(const std::vector<quint64> &sampleTimes, const std::vector<quint64> &messageTimes);
    const Counts &counts() const { return placed; }

    /** The message sample @p sample takes, -1 for none; asked for samples 0, 1, 2, ... */
    qint64 messageFor(std::size_t sample);
    /** Starts asking from sample 0 again. */
    void rewind();

private:
    struct Placement
    {
        quint32 sample;
        quint32 message;
        quint64 distance;
    };

    void placeEach();
    std::size_t nearestSample(quint64 time) const;
    qint64 heldOrNearest(quint64 time);
    std::size_t firstOfItsTime(std::size_t message) const;

    UlogFillPolicy policy;
    double step;
    quint64 maxAge;
    const std::vector<quint64> *samples = nullptr;
    const std::vector<quint64> *messages = nullptr;
    std::vector<Placement> placements;
    std::size_t nextPlacement = 0;
    // The first message after the sample asked for last.
    std::size_t after = 0;
    Counts placed;
};
